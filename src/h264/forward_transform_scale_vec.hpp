/// Vector kernels that turn H.264 scaling lists into multipliers of both directions. Quotients of numbers below 2^16 in
/// single precision are exact once they are cut.
#pragma once

#include "frame/generation.hpp"
#include "h264/forward_transform_scale_px.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// 8 weights. Those for which exceptional(weights) is set give `otherwise` in place of a quotient.
template <class Exceptional>
MOX_INLINE void scale_levels_8(const Mox8u* pWeights, const Mox16s* inverse, const Mox16s* forward,
                               Mox16s* pInvLevelScale, Mox16s* pLevelScale, Exceptional exceptional, int otherwise) {
  const auto weights = simd::load8_wide(pWeights, simd::Strips<1>{});
  const auto multipliers = simd::load_row<simd::s16, 1>(forward);
  const auto low = truncate(to_float(wide_lo(multipliers)) / to_float(wide_lo(weights)));
  const auto high = truncate(to_float(wide_hi(multipliers)) / to_float(wide_hi(weights)));
  const auto odd = exceptional(weights);
  store_row(weights * simd::load_row<simd::s16, 1>(inverse), pInvLevelScale);
  store_row(andnot(odd, packs(low, high)) | (odd & simd::splat<simd::s16, 1>(otherwise)), pLevelScale);
}

inline MoxStatus scale_levels_4x4(const Mox8u* pScalingList, Mox16s* pInvLevelScale, Mox16s* pLevelScale, int rem) {
  const auto ends = [](simd::s16<1> w) {
    return equal(w, simd::zero<simd::s16, 1>()) | equal(w, simd::splat<simd::s16, 1>(255));
  };
  for (int i = 0; i < 16; i += 8) {
    scale_levels_8(pScalingList + i, &InvQuantTable_def[rem][i], &FwdQuantTable_16s[rem][i], pInvLevelScale + i,
                   pLevelScale + i, ends, 1);
  }
  return moxStsOk;
}

inline MoxStatus scale_levels_8x8(const Mox8u* pScalingList, Mox32s listStep, Mox16s* pInvLevelScale,
                                  Mox16s* pLevelScale, int rem) {
  const auto none = [](simd::s16<1> w) { return equal(w, simd::zero<simd::s16, 1>()); };
  for (int i = 0; i < 64; i += 8, pScalingList += listStep) {
    scale_levels_8(pScalingList, &InvLevelScale_8x8_default[rem][i], &LevelScale_8x8_default[rem][i],
                   pInvLevelScale + i, pLevelScale + i, none, 2);
  }
  return moxStsOk;
}

}  // namespace mox::vec
