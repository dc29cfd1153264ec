/// The walk over two prediction blocks that become one, for averages and for weighted prediction.
#pragma once

#include <cstddef>

#include "frame/arithmetic.hpp"
#include "moxvc/types.h"

namespace mox {

/// Two blocks and the place of the result, which may be the place of either. Steps count samples.
template <class T>
struct BlockPair {
  const T* src1;
  std::ptrdiff_t step1;
  const T* src2;
  std::ptrdiff_t step2;
  T* dst;
  std::ptrdiff_t dstStep;
};

/// Width and height of a partition or of its chroma: 2 to 16, one at most twice the other. These have kernels of their
/// own in tables by size.
constexpr bool is_partition(int width, int height) { return width <= 2 * height && height <= 2 * width; }

/// The width as template argument of a kernel of blocks this wide: 0 unless it is 2, 4, 8 or 16.
constexpr int fixed_width(int width) {
  constexpr unsigned kWidths = 1u << 2 | 1u << 4 | 1u << 8 | 1u << 16;
  return width >= 0 && width <= 16 && (kWidths >> width & 1) != 0 ? width : 0;
}

}  // namespace mox

namespace mox::px {

/// Stores rule(a, b) for each pair of samples. A width or height of 0 as template argument is taken from `size`.
template <int W, int H, class T, class Rule>
MoxStatus combine(BlockPair<T> at, MoxiSize size, Rule rule) {
  const int width = W > 0 ? W : size.width, height = H > 0 ? H : size.height;
  for (int y = 0; y < height; ++y) {
#pragma GCC unroll 1  // unrolled loops of few samples are no longer vectorised
    for (int x = 0; x < width; ++x) at.dst[x] = rule(at.src1[x], at.src2[x]);
    at.src1 += at.step1, at.src2 += at.step2, at.dst += at.dstStep;
  }
  return moxStsOk;
}

/// The mean of two blocks, halves upwards.
template <int W, int H, class T>
MoxStatus average_block(const BlockPair<T>& at, MoxiSize size) {
  return combine<W, H>(at, size, [](Mox32s a, Mox32s b) { return static_cast<T>(avg_up(a, b)); });
}

}  // namespace mox::px
