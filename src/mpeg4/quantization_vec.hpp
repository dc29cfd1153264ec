/// Vector kernels of MPEG-4 quantisation: forward up to 8 bits a pixel, inverse at any depth.
#pragma once

#include "frame/generation.hpp"
#include "frame/levels_vec.hpp"
#include "mpeg4/quantization_px.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

// ---- Forward. ----

/// Replaces each vector v of the magnitudes of a block by one(v, index of its first), and gives the signs back. Returns
/// the number of results other than 0, without the first one of an intra block: the DC, which is stored later.
template <bool kIntra, class One>
MOX_INLINE Mox32s quantize_magnitudes(Mox16s* block, One one) {
  const Mox32s count = 64 - replace_and_count_zeros(block, [=](Coefficients v, int i) {
                         return signed_by(simd::as<simd::s16>(one(simd::as<simd::u16>(abs(v)), i)), v);
                       });
  return kIntra ? count - (*block != 0) : count;
}

template <bool kIntra>
Mox32s quantize_uniform(Mox16s* block, const MoxiQuantFwdState&, Mox32s qp) {
  const auto inverse = simd::as<simd::u16>(splat(px::_p_QuantInv[qp - 1]));
  const auto dead = simd::as<simd::u16>(splat(kIntra ? 0 : qp >> 1));
  return quantize_magnitudes<kIntra>(block, [=](auto magnitude, int) { return mulhi(subs(magnitude, dead), inverse); });
}

/// True if all magnitudes are at most `limit`.
MOX_INLINE bool is_within(const Mox16s* block, Mox32s limit) {
  auto excess = simd::as<simd::u16>(splat(0));
  for (int i = 0; i < 64; i += kCoefficients) {
    excess = excess | subs(simd::as<simd::u16>(abs(load_coefficients(block + i))), simd::as<simd::u16>(splat(limit)));
  }
  return is_zero(excess);
}

template <bool kIntra>
Mox32s quantize_weighted(Mox16s* block, const MoxiQuantFwdState& state, Mox32s qp) {
  // Coefficients of 8-bit pictures lie far within. 16 * 4080 + 127 and what it becomes with the rounding, 23 at most,
  // fit 16 bits unsigned.
  if (!is_within(block, 4080)) return px::quantize_weighted<kIntra>(block, state, qp);
  const auto inverse = simd::as<simd::u16>(splat(px::_p_QuantInv[qp - 1]));
  const auto rounding = simd::as<simd::u16>(splat(kIntra ? (3 * qp + 2) >> 2 : 0));
  const auto most = simd::as<simd::u16>(splat(px::kMostLevel));
  return quantize_magnitudes<kIntra>(block, [=, &state](auto magnitude, int i) {
    const auto ratio = mulhi(simd::shl<4>(magnitude) + simd::load_row<simd::u16, simd::kBlocks>(state.weights + i),
                             simd::load_row<simd::u16, simd::kBlocks>(state.reciprocals + i));
    return min(mulhi(ratio + rounding, inverse), most);
  });
}

// ---- Inverse. ----

inline void dequantize_uniform(Mox16s* block, Mox32s last, Mox32s qp, px::CoefficientLimits limits) {
  const Mox32s odd = qp - (qp % 2 == 0);
  const auto factors = simd::as<simd::s16>(simd::splat<simd::s32, 1>(2 * qp | odd << 16));
  const auto low = simd::splat<simd::s16, 1>(limits.low), high = simd::splat<simd::s16, 1>(limits.high);
  for (int i = 0; i <= last; i += 8) {
    const auto v = simd::load_row<simd::s16, 1>(block + i), sign = signed_by(simd::splat<simd::s16, 1>(1), v);
    const auto value = packs(madd(lo16(v, sign), factors), madd(hi16(v, sign), factors));
    store_row(min(max(value, low), high), block + i);
  }
}

/// v / 16 towards zero. Adding 15 does not overflow: |v| is below 2^30.
template <int B>
MOX_INLINE simd::s32<B> sixteenth(simd::s32<B> v) {
  return simd::shr<4>(v + simd::shru<28>(simd::shr<31>(v)));
}

template <bool kIntra>
Mox32s dequantize_weighted(Mox16s* block, Mox32s last, const Mox16u* weights, Mox32s qp, px::CoefficientLimits limits) {
  // Twice 255 * qp has to fit 16 bits.
  if (qp > 64) return px::dequantize_weighted<kIntra>(block, last, weights, qp, limits);
  alignas(32) static constexpr Mox16s kIndices[16] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
  const auto scale = splat(qp), one = splat(1), end = splat(last + 1);
  auto index = load_coefficients(kIndices), sum = splat(0);
  for (int i = 0; i <= last; i += kCoefficients, index = index + splat(kCoefficients)) {
    const auto v = load_coefficients(block + i);
    const auto weight = simd::load_row<simd::s16, simd::kBlocks>(weights + i) * scale, twice = weight + weight;
    const auto sign = kIntra ? splat(0) : signed_by(one, v);
    const auto value =
        packs(sixteenth(madd(lo16(v, sign), lo16(twice, weight))), sixteenth(madd(hi16(v, sign), hi16(twice, weight))));
    const auto taken = greater(end, index) & greater(index, splat(kIntra - 1));
    const auto result = clip(value, limits.low, limits.high) & taken;
    sum = sum + result;
    store_row(result | andnot(taken, v), block + i);
  }
  return total(madd(sum, one));
}

}  // namespace mox::vec
