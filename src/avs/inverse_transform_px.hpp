/// Portable kernel of the AVS residual: dequantisation and inverse transform of an 8x8 block, added to the prediction.
#pragma once

#include <cstddef>

#include "avs/transform_tables.hpp"
#include "frame/arithmetic.hpp"

namespace mox {

/// From the first sample of a macroblock to that of luma block b.
constexpr std::ptrdiff_t avs_block_offset(int b, std::ptrdiff_t step) { return (b >> 1) * 8 * step + (b & 1) * 8; }

}  // namespace mox

namespace mox::px {

/// Sum over frequencies of one row or column of coefficients, `step` apart, at a sample. |sum| is below 2^21.
constexpr Mox32s avs_inverse_sum(const Mox16s* coefficients, int step, int sample) {
  Mox32s sum = 0;
  for (int i = 0; i < 8; ++i) sum += coefficients[i * step] * kAvsTransform[i][sample];
  return sum;
}

constexpr Mox16s avs_dequantise(Mox16s level, const AvsDequant& by) {
  const long long product = static_cast<long long>(level) * by.scale + (1ll << (by.shift - 1));
  return sat16(static_cast<Mox32s>(product >> by.shift));
}

/// Adds the residual of 64 levels to the prediction at dst.
inline void add_avs_residual(const Mox16s* levels, const AvsDequant& by, Mox8u* dst, std::ptrdiff_t step) {
  Mox16s w[64], h[64];
  for (int i = 0; i < 64; ++i) w[i] = avs_dequantise(levels[i], by);
  for (int i = 0; i < 64; ++i) h[i] = sat16((avs_inverse_sum(w + (i & ~7), 1, i & 7) + 4) >> 3);
  for (int y = 0; y < 8; ++y) {
    for (int x = 0; x < 8; ++x) {
      Mox8u& sample = dst[y * step + x];
      sample = clip8(sample + sat16((avs_inverse_sum(h + x, 8, y) + 64) >> 7));
    }
  }
}

/// Adds the residuals of the luma blocks whose bits are set in cbp.
inline void add_avs_luma_residual(const Mox16s* levels, Mox32u cbp, const AvsDequant& by, Mox8u* dst,
                                  std::ptrdiff_t step) {
  for (int b = 0; b < 4; ++b) {
    if (cbp >> b & 1) add_avs_residual(levels + 64 * b, by, dst + avs_block_offset(b, step), step);
  }
}

}  // namespace mox::px
