/// Portable kernels of MPEG-2 quantisation.
#pragma once

#include <algorithm>
#include <array>
#include <cstdlib>

#include "frame/arithmetic.hpp"
#include "frame/levels.hpp"
#include "frame/table.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// The default weights of intra blocks, raster order.
inline constexpr std::array<Mox8u, 64> kIntraWeights = {8,  16, 19, 22, 26, 27, 29, 34, 16, 16, 22, 24, 27, 29, 34, 37,
                                                        19, 22, 26, 27, 29, 34, 34, 38, 22, 22, 26, 27, 29, 34, 37, 40,
                                                        22, 26, 27, 29, 32, 35, 40, 48, 26, 27, 29, 32, 35, 40, 48, 58,
                                                        26, 27, 29, 34, 38, 46, 56, 69, 27, 29, 35, 38, 46, 56, 69, 83};
/// Their reciprocals.
inline constexpr auto kIntraReciprocals =
    make_table<64>([]<std::size_t I>() { return 1.0f / static_cast<float>(kIntraWeights[I]); });

/// value towards zero; a value that 32 bits cannot hold, positive or negative or no number, becomes the least integer.
constexpr Mox32s truncate32(float value) {
  return value >= -0x1p31f && value < 0x1p31f ? static_cast<Mox32s>(value) : -0x7FFFFFFF - 1;
}

inline Mox32s zeros(const Mox16s* block) { return static_cast<Mox32s>(std::count(block, block + 64, Mox16s{0})); }

/// The two products are rounded one by one, in this order.
inline Mox16s quantize(Mox16s coefficient, float factor, float reciprocal) {
  const float scaled = static_cast<float>(coefficient) * factor;
  return static_cast<Mox16s>(clip(truncate32(scaled * reciprocal), -kMostLevel, kMostLevel));
}

/// Coefficients from `first` on.
inline MoxStatus quantize_by_matrix(Mox16s* block, int first, Mox32s quantScale, const float* reciprocals,
                                    Mox32s* pCount) {
  const float factor = 16.0f / static_cast<float>(quantScale);
  Mox32s count = 0;
  for (int i = first; i < 64; ++i) {
    block[i] = quantize(block[i], factor, reciprocals[i]);
    count += block[i] != 0;
  }
  *pCount = count;
  return moxStsOk;
}

/// 65536 / quantScale to the nearest, for scales from 2 up: 32768 at most.
constexpr Mox32s flat_reciprocal(Mox32s quantScale) { return (quantScale / 2 + 65536) / quantScale; }
static_assert(flat_reciprocal(2) == 32768 && flat_reciprocal(0x7FFFFFFF) == 0);

inline MoxStatus quantize_flat(Mox16s* block, Mox32s quantScale, Mox32s* pCount) {
  const Mox32s reciprocal = flat_reciprocal(quantScale);
  Mox32s count = 0;
  for (int i = 0; i < 64; ++i) {
    const Mox32s magnitude = std::min(std::abs(block[i]), 32767);
    const Mox32s level = std::min(magnitude * reciprocal >> 16, kMostLevel);
    block[i] = static_cast<Mox16s>(block[i] < 0 ? -level : level);
    count += level != 0;
  }
  *pCount = count;
  return moxStsOk;
}

/// Makes the sum of a block odd. Sums are taken in eight lanes that saturate, row by row.
inline void control_mismatch(Mox16s* block) {
  std::array<Mox16s, 8> lanes{};
  for (int i = 0; i < 64; ++i) lanes[i % 8] = sat16(lanes[i % 8] + block[i]);
  Mox32s parity = 0;
  for (Mox16s lane : lanes) parity ^= lane;
  make_sum_odd(block, parity);
}

inline MoxStatus dequantize_intra(Mox16s* block, Mox32s quantScale, const Mox16u* weights) {
  for (int i = 1; i < 64; ++i) {
    const Mox16s product = wrap16(mul32(mul32(block[i], quantScale), weights[i]));
    block[i] = static_cast<Mox16s>(sat16(product + (block[i] < 0 ? 15 : 0)) >> 4);
  }
  control_mismatch(block);
  return moxStsOk;
}

inline Mox16s dequantize_by_weight(Mox16s level, Mox32s weight) {
  const Mox16s product = wrap16(level * weight);
  const Mox32s half = level != 0 ? weight >> 1 : 0;
  if (product >= 0) return static_cast<Mox16s>(sat16(product + half) >> 4);
  return static_cast<Mox16s>(sat16(sat16(product - half) + 15) >> 4);
}

inline MoxStatus dequantize_by_matrix(Mox16s* block, Mox32s quantScale, const Mox16u* weights) {
  for (int i = 0; i < 64; ++i) {
    block[i] = dequantize_by_weight(block[i], mul32(weights[i], quantScale) & 0xFFFF);
  }
  control_mismatch(block);
  return moxStsOk;
}

inline MoxStatus dequantize_flat(Mox16s* block, Mox32s quantScale) {
  for (int i = 0; i < 64; ++i) {
    const Mox32s sign = sign_of(block[i]);
    const Mox16s doubled = sat16(sat16(2 * block[i]) + sign);
    const Mox16s product = wrap16(mul32(doubled, quantScale));
    block[i] = static_cast<Mox16s>(clip(sat16(product + (sign < 0)) >> 1, -2048, 2047));
  }
  control_mismatch(block);
  return moxStsOk;
}

}  // namespace mox::px
