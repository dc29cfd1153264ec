/// Portable kernels that turn H.264 scaling lists into multipliers of both directions. Quotients are made with
/// reciprocals, and what a reciprocal of 0 leaves is part of the result.
#pragma once

#include "frame/arithmetic.hpp"
#include "h264/quant_tables.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// multiplier / weight, rounded downwards. A reciprocal of 0, that of the weights 0 and 255, leaves 1.
constexpr Mox16s divided_4x4(Mox32s multiplier, Mox8u weight) {
  const Mox32s t = wrap16(multiplier * reciprocal65536[weight] >> 16);
  return wrap16(t + (wrap16(multiplier - weight + 1) > wrap16(t * weight)));
}
static_assert(divided_4x4(13107, 1) == 13107 && divided_4x4(13107, 16) == 819 && divided_4x4(13107, 255) == 1 &&
              divided_4x4(2893, 254) == 11 && divided_4x4(2893, 0) == 1);

/// multiplier / weight, rounded downwards: the estimate is up to two too low. A weight of 0 leaves 2.
constexpr Mox16s divided_8x8(Mox32s multiplier, Mox8u weight) {
  Mox16s t = sat16(multiplier * Int_16s[weight] >> 14);
  for (int step = 0; step < 2; ++step) t = wrap16(t + !(wrap16((t + 1) * weight) > multiplier));
  return t;
}
static_assert(divided_8x8(20972, 1) == 20972 && divided_8x8(13107, 16) == 819 && divided_8x8(20972, 0) == 2);

inline MoxStatus scale_levels_4x4(const Mox8u* pScalingList, Mox16s* pInvLevelScale, Mox16s* pLevelScale, int rem) {
  for (int i = 0; i < 16; ++i) {
    const Mox8u weight = pScalingList[i];
    pInvLevelScale[i] = wrap16(weight * InvQuantTable_def[rem][i]);
    pLevelScale[i] = divided_4x4(FwdQuantTable_16s[rem][i], weight);
  }
  return moxStsOk;
}

inline MoxStatus scale_levels_8x8(const Mox8u* pScalingList, Mox32s listStep, Mox16s* pInvLevelScale,
                                  Mox16s* pLevelScale, int rem) {
  for (int y = 0; y < 8; ++y, pScalingList += listStep) {
    for (int x = 0; x < 8; ++x) {
      const Mox8u weight = pScalingList[x];
      const int i = 8 * y + x;
      pInvLevelScale[i] = wrap16(weight * InvLevelScale_8x8_default[rem][i]);
      pLevelScale[i] = divided_8x8(LevelScale_8x8_default[rem][i], weight);
    }
  }
  return moxStsOk;
}

}  // namespace mox::px
