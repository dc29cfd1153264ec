/// State records and portable kernels of MPEG-4 quantisation.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include "frame/arguments.hpp"
#include "frame/arithmetic.hpp"
#include "frame/levels.hpp"
#include "frame/table.hpp"
#include "moxvc/mpeg4_quantization.h"

/// What a forward quantiser keeps of its matrix. The integer forms read `reciprocals`, those for more than 8 bits a
/// pixel `quotients`.
struct MoxiQuantFwdState {
  Mox16u weights[64];  ///< halved up to 8 bits a pixel
  union {
    Mox16u reciprocals[64];  ///< 65536 / weight + 1; 65535 for 1
    float quotients[64];     ///< 1 / weight
  };
  Mox32s bitsPerPixel;
  Mox32s hasMatrix;
  Mox32u tag;
};

struct MoxiQuantInvState {
  Mox16u weights[64];
  Mox32s bitsPerPixel;
  Mox32s hasMatrix;
  Mox32u tag;
};

namespace mox::px {

inline constexpr Mox32u kIntraTag = 0x434D4154, kInterTag = 0x434D4155;
inline constexpr Mox32u kInvIntraTag = 0x434D4152, kInvInterTag = 0x434D4153;

inline constexpr Mox32s kLeastDepth = 4, kMostDepth = 12, kMostIntegerDepth = 8;

/// [bits per pixel - 4]: the greatest quantiser parameter.
inline constexpr auto _p_QuantMax =
    make_table<9>([]<std::size_t I>() { return static_cast<Mox16s>((1 << (I + kLeastDepth - 3)) - 1); });
static_assert(_p_QuantMax[0] == 1 && _p_QuantMax[4] == 31 && _p_QuantMax[8] == 511);

struct CoefficientLimits {
  Mox16s low, high;
};
/// [bits per pixel - 4]: the limits of inverse quantisation.
inline constexpr auto _p_QuantInvClip = make_table<9>([]<std::size_t I>() {
  constexpr Mox32s kLimit = 1 << (I + kLeastDepth + 3);
  return CoefficientLimits{static_cast<Mox16s>(-kLimit), static_cast<Mox16s>(kLimit - 1)};
});
static_assert(_p_QuantInvClip[0].high == 127 && _p_QuantInvClip[4].low == -2048 && _p_QuantInvClip[8].low == -32768);

inline CoefficientLimits limits_of(const MoxiQuantInvState& state) {
  return _p_QuantInvClip[state.bitsPerPixel - kLeastDepth];
}

/// Whether a record carries its tag, and its depth admits the quantiser parameter. A depth that no function serves
/// admits none.
template <class State>
MoxStatus check_state(const State& state, Mox32u tag, Mox32s qp) {
  if (state.tag != tag) return moxStsBadContext;
  const bool served = !outside(state.bitsPerPixel, kLeastDepth, kMostDepth);
  return served && !outside(qp, 1, _p_QuantMax[state.bitsPerPixel - kLeastDepth]) ? moxStsOk : moxStsBadQp;
}

/// The scaler of the DC of an intra block.
constexpr Mox32s dc_scaler(Mox32s qp, bool chroma) {
  if (qp <= 4) return 8;
  if (chroma) return qp <= 24 ? (qp + 13) >> 1 : qp - 6;
  return qp <= 8 ? 2 * qp : qp <= 24 ? qp + 8 : 2 * qp - 16;
}
static_assert(dc_scaler(5, false) == 10 && dc_scaler(5, true) == 9 && dc_scaler(31, false) == 46);

// ---- Forward. ----

/// Coefficients from the first AC of an intra block, or from the first of an inter block, become level(x, index);
/// returns the number of levels other than 0. The DC of an intra block is stored later, whatever becomes of it here.
template <bool kIntra, class Level>
Mox32s quantize_each(Mox16s* block, Level level) {
  Mox32s count = 0;
  for (int i = kIntra; i < 64; ++i) {
    block[i] = static_cast<Mox16s>(level(block[i], i));
    count += block[i] != 0;
  }
  return count;
}

/// |x| less what an inter block takes off before the division, 0 at least.
template <bool kIntra>
constexpr Mox32s magnitude_past_dead_zone(Mox32s x, Mox32s qp) {
  return kIntra ? std::abs(x) : std::max(std::abs(x) - (qp >> 1), 0);
}

/// |x| / (2 * qp) without a matrix, qp up to 31. For 1 it is x / 2: |x| * 32769 >> 16 is that for all |x| up to 32768.
template <bool kIntra>
Mox32s quantize_uniform(Mox16s* block, const MoxiQuantFwdState&, Mox32s qp) {
  return quantize_each<kIntra>(block, [inverse = _p_QuantInv[qp - 1], qp](Mox32s x, int) {
    return sign_of(x) * (magnitude_past_dead_zone<kIntra>(x, qp) * inverse >> 16);
  });
}

/// The same for more than 8 bits a pixel.
template <bool kIntra>
Mox32s quantize_uniform_deep(Mox16s* block, const MoxiQuantFwdState&, Mox32s qp) {
  return quantize_each<kIntra>(block, [factor = 0.5000001f / static_cast<float>(qp), qp](Mox32s x, int) {
    const auto level = static_cast<Mox32s>(static_cast<float>(magnitude_past_dead_zone<kIntra>(x, qp)) * factor);
    return sign_of(x) * std::min(level, kMostLevel);
  });
}

/// With a matrix, qp up to 31. Products of coefficients beyond 12 bits do not fit 32 bits.
template <bool kIntra>
Mox32s quantize_weighted(Mox16s* block, const MoxiQuantFwdState& state, Mox32s qp) {
  return quantize_each<kIntra>(block, [&, inverse = _p_QuantInv[qp - 1], qp](Mox32s x, int i) {
    const long long ratio = (16ll * std::abs(x) + state.weights[i]) * state.reciprocals[i] >> 16;
    const long long level = (ratio + (kIntra ? (3 * qp + 2) >> 2 : 0)) * inverse >> 16;
    return sign_of(x) * static_cast<Mox32s>(std::min<long long>(level, kMostLevel));
  });
}

/// The same for more than 8 bits a pixel. Both products, and the sum, are rounded one by one.
template <bool kIntra>
Mox32s quantize_weighted_deep(Mox16s* block, const MoxiQuantFwdState& state, Mox32s qp) {
  return quantize_each<kIntra>(block,
                               [&, factor = (kIntra ? 8.0f : 8.00001f) / static_cast<float>(qp)](Mox32s x, int i) {
                                 const float level = static_cast<float>(x) * factor * state.quotients[i];
                                 const float rounding = kIntra ? std::copysign(0.501f, static_cast<float>(x)) : 0.0f;
                                 return clip(static_cast<Mox32s>(level + rounding), -kMostLevel, kMostLevel);
                               });
}

/// The level of the DC of an intra block: to the nearest, halves away from 0.
constexpr Mox16s quantize_dc(Mox16s x, Mox32s scaler) {
  const Mox32s magnitude = x < 0 ? -x : x;
  return static_cast<Mox16s>(sign_of(x) * std::min((magnitude + (scaler >> 1)) / scaler, kMostLevel));
}
static_assert(quantize_dc(-3, 8) == 0 && quantize_dc(-4, 8) == -1 && quantize_dc(4, 9) == 0 && quantize_dc(5, 9) == 1);

// ---- Inverse. ----

/// One level without a matrix.
constexpr Mox16s uniform_coefficient(Mox32s level, Mox32s qp, CoefficientLimits limits) {
  return static_cast<Mox16s>(clip(level * 2 * qp + sign_of(level) * (qp - (qp % 2 == 0)), limits.low, limits.high));
}
/// One level with a matrix.
template <bool kIntra>
constexpr Mox16s weighted_coefficient(Mox32s level, Mox32s weight, Mox32s qp, CoefficientLimits limits) {
  const Mox32s doubled = 2 * level + (kIntra ? 0 : sign_of(level));
  return static_cast<Mox16s>(std::clamp<long long>(1ll * doubled * weight * qp / 16, limits.low, limits.high));
}

/// Without a matrix: whole groups of 8 coefficients, up to the one that holds index `last`.
inline void dequantize_uniform(Mox16s* block, Mox32s last, Mox32s qp, CoefficientLimits limits) {
  for (int i = 0; i <= (last | 7); ++i) block[i] = uniform_coefficient(block[i], qp, limits);
}

/// With a matrix: the coefficients from 1 of an intra block, from 0 of an inter block, to `last`. Returns their
/// sum, or another number with its bit 0.
template <bool kIntra>
Mox32s dequantize_weighted(Mox16s* block, Mox32s last, const Mox16u* weights, Mox32s qp, CoefficientLimits limits) {
  Mox32s sum = 0;
  for (int i = kIntra; i <= last; ++i) {
    block[i] = weighted_coefficient<kIntra>(block[i], weights[i], qp, limits);
    sum += block[i];
  }
  return sum;
}

}  // namespace mox::px
