/// Vector kernels of the AVS residual: each block of a vector works on an 8x8 block of its own, in 32-bit sums.
#pragma once

#include <bit>
#include <cstddef>

#include "avs/inverse_transform_px.hpp"
#include "avs/transform_vec.hpp"
#include "frame/generation.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// Multiplies levels by the scale and shifts, saturated to 16 bits.
struct AvsDequantiser {
  Mox32s scale, shift;

  template <int B>
  MOX_INLINE simd::s16<B> operator()(simd::s16<B> level) const {
    using simd::as, simd::s16, simd::s32;
    const auto factor = simd::splat<s16, B>(scale);
    const auto round = simd::splat<s32, B>(1 << (shift - 1));
    // All scales are 32768 or more, so as words they are too small by 65536.
    const auto low = level * factor, high = mulhi(level, factor) + level;
    return packs(shr(as<s32>(lo16(low, high)) + round, shift), shr(as<s32>(hi16(low, high)) + round, shift));
  }
};

/// The eight samples of a line in each lane, rounded and shifted by N, from its frequencies 0 and 4, 2 and 6, 1 and 5,
/// 3 and 7.
template <int N, int B>
MOX_INLINE void avs_inverse_line(const simd::s16<B> (&pair)[4], simd::s32<B> (&out)[8]) {
  const auto round = simd::splat<simd::s32, B>(1 << (N - 1));
  const auto a = madd(pair[0], avs_pair<B>(8, 8)) + round, b = madd(pair[0], avs_pair<B>(8, -8)) + round;
  const auto p = madd(pair[1], avs_pair<B>(10, 4)), q = madd(pair[1], avs_pair<B>(4, -10));
  const simd::s32<B> even[4] = {a + p, b + q, b - q, a - p};
  for (int k = 0; k < 4; ++k) {
    const auto& t = px::kAvsTransform;
    const auto odd = madd(pair[2], avs_pair<B>(t[1][k], t[5][k])) + madd(pair[3], avs_pair<B>(t[3][k], t[7][k]));
    out[k] = simd::shr<N>(even[k] + odd);
    out[7 - k] = simd::shr<N>(even[k] - odd);
  }
}

/// The first pass of four rows: levels to the frequencies of the second pass, columns 0 to 3 and 4 to 7. Rows are given
/// in the order in which the second pass pairs them.
template <int B>
struct AvsFirstPass {
  simd::s16<B> a[2], b[2];  ///< [columns]: the first two rows as pairs, the last two rows

  MOX_INLINE AvsFirstPass(const Mox16s* levels, const int (&rows)[4], const AvsDequantiser& dequantise,
                          const simd::Strips<B>& strips) {
    using simd::as, simd::s16, simd::s32, simd::u8;
    alignas(16) static constexpr Mox8u kPairs[16] = {0, 1, 8, 9, 4, 5, 12, 13, 2, 3, 10, 11, 6, 7, 14, 15};
    const auto pairs = simd::table<u8, B>(kPairs);
    s16<B> row[4];
    for (int i = 0; i < 4; ++i) {
      const auto w = dequantise(simd::load16<s16, B>(levels + 8 * rows[i], strips));
      row[i] = as<s16>(lookup(as<u8>(w), pairs));
    }
    s32<B> h[8];
    avs_inverse_line<3>(AvsPairColumns<B>(row).pair, h);
    for (int i = 0; i < 2; ++i) {
      const auto left = as<s32>(packs(h[4 * i], h[4 * i + 1])), right = as<s32>(packs(h[4 * i + 2], h[4 * i + 3]));
      a[i] = as<s16>(even32(left, right));
      b[i] = as<s16>(odd32(left, right));
    }
  }
};

/// Adds the residuals of B blocks. Strips are those of levels and of samples.
template <int B>
MOX_INLINE void add_avs_residuals(const Mox16s* levels, const simd::Strips<B>& levelStrips, const AvsDequant& by,
                                  Mox8u* dst, std::ptrdiff_t step, const simd::Strips<B>& strips) {
  using simd::s16, simd::s32;
  const AvsDequantiser dequantise{by.scale, by.shift};
  const AvsFirstPass<B> even(levels, {0, 4, 2, 6}, dequantise, levelStrips);
  const AvsFirstPass<B> odd(levels, {1, 5, 3, 7}, dequantise, levelStrips);
  s32<B> left[8], right[8];
  avs_inverse_line<7>({even.a[0], even.b[0], odd.a[0], odd.b[0]}, left);
  avs_inverse_line<7>({even.a[1], even.b[1], odd.a[1], odd.b[1]}, right);
  for (int y = 0; y < 8; ++y, dst += step) {
    const auto sum = adds(simd::load8_wide<B>(dst, strips), packs(left[y], right[y]));
    simd::store8(packus(sum, sum), dst, strips);
  }
}

inline void add_avs_residual(const Mox16s* levels, const AvsDequant& by, Mox8u* dst, std::ptrdiff_t step) {
  add_avs_residuals<1>(levels, {{0}}, by, dst, step, {{0}});
}

/// The luma blocks whose bits are set in cbp, as many at a time as a vector has blocks.
template <int B>
MOX_INLINE void add_avs_coded_residuals(const Mox16s* levels, Mox32u cbp, const AvsDequant& by, Mox8u* dst,
                                        std::ptrdiff_t step) {
  while (cbp != 0) {
    simd::Strips<B> levelStrips, strips;
    for (int i = 0; i < B; ++i) {
      const int b = std::countr_zero(cbp);
      levelStrips.at[i] = 128 * b, strips.at[i] = avs_block_offset(b, step);
      cbp &= cbp - 1;
      if (B > 1 && cbp == 0 && i + 1 < B) return add_avs_residual(levels + 64 * b, by, dst + strips.at[i], step);
    }
    add_avs_residuals<B>(levels, levelStrips, by, dst, step, strips);
  }
}

inline void add_avs_luma_residual(const Mox16s* levels, Mox32u cbp, const AvsDequant& by, Mox8u* dst,
                                  std::ptrdiff_t step) {
  add_avs_coded_residuals<simd::kBlocks>(levels, cbp & 15, by, dst, step);
}

}  // namespace mox::vec
