/// Slow H.263 resampling and PB prediction for tests: new samples as sums over all old ones around, weighted by their
/// distance; displacements as fractions.
#pragma once

#include <algorithm>
#include <array>
#include <cstdlib>

#include "oracle/warp.hpp"
#include "support/guarded.hpp"

namespace mox::test::oracle {

/// The sample at (x, y) in 1/unit of a sample, before the division by unit * unit `round` more. The plane goes on
/// beyond its edges with the nearest sample, or with a fill of 0 or more.
inline int interpolated(const Plane<Mox8u>& old, int fill, int x, int y, int unit, int round) {
  int sum = round;
  for (int row = y / unit - 2; row <= y / unit + 2; ++row) {
    for (int column = x / unit - 2; column <= x / unit + 2; ++column) {
      const int inX = std::clamp(column, 0, old.width() - 1), inY = std::clamp(row, 0, old.height() - 1);
      const int sample = fill < 0 || (inX == column && inY == row) ? old(inX, inY) : fill;
      sum += std::max(0, unit - std::abs(x - unit * column)) * std::max(0, unit - std::abs(y - unit * row)) * sample;
    }
  }
  return sum / (unit * unit);
}

/// Place in 1/16 of a plane's sample of sample `at`, x or y as `axis` says. `corner` holds the upper left, upper right,
/// lower left and lower right displacement in 1/32 of a luma sample, `subsampled` is 2 for chroma. Corners of the
/// enlarged picture first, then all four by the products of their weights.
inline int place(const std::array<int, 4>& corner, MoxiSize size, int subsampled, std::array<int, 2> at, int axis) {
  using mox::oracle::Wide;
  const Wide w = mox::oracle::power_from(size.width), h = mox::oracle::power_from(size.height);
  Wide sum = 0;
  for (int i = 0; i < 4; ++i) {
    const bool right = i & 1, below = i >> 1;
    Wide moved = 0;
    for (int j = 0; j < 4; ++j) {
      const Wide of_x = right ? (j & 1 ? w : size.width - w) : (j & 1 ? 0 : size.width);
      const Wide of_y = below ? (j >> 1 ? h : size.height - h) : (j >> 1 ? 0 : size.height);
      moved += of_x * of_y * corner[static_cast<std::size_t>(j)];
    }
    const Wide x = subsampled * (2 * at[0] + 1), y = subsampled * (2 * at[1] + 1);  // in half luma samples
    sum += (right ? x : 2 * w - x) * (below ? y : 2 * h - y) *
           mox::oracle::nearest_away(moved, Wide{size.width} * size.height);
  }
  return 16 * at[axis] + static_cast<int>(mox::oracle::nearest_up(sum, 8 * subsampled * w * h));
}

/// First and last position of an 8x8 block's row or column, `offset` samples inside a macroblock, that has a backward
/// prediction by a vector in half samples.
inline std::array<int, 2> backward_range(int offset, int size, int vector) {
  return {std::max(0, (1 - vector) / 2 - offset), std::min(7, size - 1 - (vector + 1) / 2 - offset)};
}

}  // namespace mox::test::oracle
