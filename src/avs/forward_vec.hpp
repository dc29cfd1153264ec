/// Vector kernel of the AVS forward transform and quantiser.
#pragma once

#include "avs/forward_px.hpp"
#include "avs/transform_vec.hpp"
#include "frame/generation.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// Sums of mirrored samples and their differences: words 0 to 3 become v[k] + v[7 - k], words 4 to 7 v[k] - v[7 - k],
/// if `mirrored` has v[7 - k] at word k.
MOX_INLINE simd::s16<1> avs_fold(simd::s16<1> v, simd::s16<1> mirrored) { return lo64(v + mirrored, v - mirrored); }

/// The eight frequencies of four folded lines, in a lane each.
MOX_INLINE void avs_forward_line(const AvsPairColumns<1>& folded, simd::s32<1> (&out)[8]) {
  for (int f = 0; f < 8; ++f) {
    const auto& t = px::kAvsTransform[f];
    const auto* const part = folded.pair + 2 * (f & 1);
    out[f] = madd(part[0], avs_pair<1>(t[0], t[1])) + madd(part[1], avs_pair<1>(t[2], t[3]));
  }
}

/// The eight frequencies of four rows of residual.
MOX_INLINE void avs_forward_rows(const Mox16s* residual, const int (&rows)[4], simd::s32<1> (&out)[8]) {
  using simd::as, simd::s16, simd::u8;
  alignas(16) static constexpr Mox8u kMirror[16] = {14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1};
  const auto most = simd::splat<s16, 1>(px::kAvsMostResidual), least = simd::splat<s16, 1>(-px::kAvsMostResidual);
  simd::s16<1> folded[4];
  for (int i = 0; i < 4; ++i) {
    const auto x = min(max(simd::s16<1>{simd::raw16(residual + 8 * rows[i])}, least), most);
    folded[i] = avs_fold(x, as<s16>(lookup(as<u8>(x), simd::table<u8, 1>(kMirror))));
  }
  avs_forward_line(AvsPairColumns<1>(folded), out);
}

/// Quantises 8 coefficients: factors of 16 bits, products of 31.
struct AvsQuantiser {
  const px::AvsQuantFactors& factors;
  int shift;
  simd::s32<1> rounding;

  MOX_INLINE simd::s16<1> operator()(simd::s16<1> y, int row) const {
    using simd::as, simd::s16, simd::s32, simd::u16;
    const auto factor = simd::load8x2<u16, 1>(factors.factor[row & 3], 0, {{0}});
    const auto magnitude = as<u16>(abs(y)), low = magnitude * factor, high = mulhi(magnitude, factor);
    const auto first = as<s32>(lo16(as<s16>(low), as<s16>(high))), second = as<s32>(hi16(as<s16>(low), as<s16>(high)));
    return signed_by(packs(shr(first + rounding, shift), shr(second + rounding, shift)), y);
  }
};

inline Mox32s transform_quant_avs(const Mox16s* residual, Mox16s* levels, Mox32s qp, Mox32s rounding) {
  using simd::as, simd::s16, simd::s32;
  s32<1> upper[8], lower[8];  // 16320 at most
  avs_forward_rows(residual, {0, 1, 2, 3}, upper);
  avs_forward_rows(residual, {7, 6, 5, 4}, lower);
  s32<1> sums[2][8];
  for (int half = 0; half < 2; ++half) {
    s16<1> folded[4];
    for (int i = 0; i < 4; ++i) {
      const auto column = packs(upper[4 * half + i], lower[4 * half + i]);
      folded[i] = avs_fold(column, as<s16>(simd::permute<0x4E>(as<s32>(column))));
    }
    avs_forward_line(AvsPairColumns<1>(folded), sums[half]);
  }
  const AvsQuantiser quantise{px::kAvsQuant[static_cast<std::size_t>(qp)], px::avs_quant_shift(qp),
                              simd::splat<s32, 1>(px::avs_rounding(qp, rounding))};
  const auto round = simd::splat<s32, 1>(16);
  auto zeros = simd::zero<s16, 1>();
  for (int f = 0; f < 8; ++f) {
    const auto y = packs(simd::shr<5>(sums[0][f] + round), simd::shr<5>(sums[1][f] + round));
    const auto level = quantise(y, f);
    zeros = zeros - equal(level, simd::zero<s16, 1>());
    store_row(level, levels + 8 * f);
  }
  return 64 - total(madd(zeros, simd::splat<s16, 1>(1)));
}

}  // namespace mox::vec
