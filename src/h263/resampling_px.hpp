/// Portable kernels of H.263 resampling.
#pragma once

#include <array>
#include <cstddef>

#include "frame/arithmetic.hpp"
#include "h263/resampling_map.hpp"
#include "moxvc/types.h"

namespace mox {

/// A plane and what is made of it. The new size is that of the new plane alone.
struct ResampledPlane {
  const Mox8u* src;
  std::ptrdiff_t srcStep;
  MoxiSize srcSize;
  Mox8u* dst;
  std::ptrdiff_t dstStep;
  MoxiSize dstSize;
  Mox32s fill;     ///< for old samples outside; negative: the nearest one inside
  int subsampled;  ///< 1: chroma
};

/// Old samples by which a new one of a doubled row or column is made.
struct DoublingTaps {
  Mox32s near, far;

  template <int kScale>
  static constexpr DoublingTaps at(Mox32s index, Mox32s size) {
    const Mox32s near = index / kScale;
    return {near, kScale == 1 ? near : clip(index % 2 ? near + 1 : near - 1, 0, size - 1)};
  }
};

using DoublingKernel = MoxStatus (*)(const Mox8u* src, std::ptrdiff_t srcStep, Mox8u* dst, std::ptrdiff_t dstStep,
                                     MoxiSize srcSize, Mox32s rounding);

}  // namespace mox

namespace mox::px {

/// A sample of the old plane, which has none outside.
inline Mox32s h263_extended_sample(const ResampledPlane& plane, Mox32s x, Mox32s y) {
  const MoxiSize size = plane.srcSize;
  const Mox32s inX = clip(x, 0, size.width - 1), inY = clip(y, 0, size.height - 1);
  if (plane.fill >= 0 && (x != inX || y != inY)) return plane.fill;
  return plane.src[inY * plane.srcStep + inX];
}

/// The sample at a position in 1/16 of a sample.
inline Mox8u h263_resampled(const ResampledPlane& plane, MoxiPoint at, Mox32s rounding) {
  const Mox32s x = at.x >> 4, y = at.y >> 4, fx = at.x & 15, fy = at.y & 15;
  const auto mix = [&](Mox32s row) {
    return (16 - fx) * h263_extended_sample(plane, x, row) + fx * h263_extended_sample(plane, x + 1, row);
  };
  return static_cast<Mox8u>(((16 - fy) * mix(y) + fy * mix(y + 1) + rounding) >> 8);
}

inline MoxStatus h263_resample(const ResampledPlane& plane, const ResamplingMap& map, Mox32s rounding) {
  Mox8u* dst = plane.dst;
  for (Mox32s row = 0; row < plane.dstSize.height; ++row, dst += plane.dstStep) {
    const ResamplingRow places = map.row(row, plane.subsampled);
    for (Mox32s column = 0; column < plane.dstSize.width; ++column) {
      dst[column] = h263_resampled(plane, places.at(column), rounding);
    }
  }
  return moxStsOk;
}

/// The new sample of two rows, the nearer one first.
inline Mox8u h263_doubled(const Mox8u* near, const Mox8u* far, DoublingTaps x, Mox32s rounding) {
  return static_cast<Mox8u>((9 * near[x.near] + 3 * near[x.far] + 3 * far[x.near] + far[x.far] + rounding) >> 4);
}

/// Rows kX times as long, kY times as many rows. A direction that stays has its nearest sample for both, so that one
/// formula serves all: (12 A + 4 B + 8) >> 4 is (3 A + B + 2) >> 2.
template <int kX, int kY>
MoxStatus h263_enlarge(const Mox8u* src, std::ptrdiff_t srcStep, Mox8u* dst, std::ptrdiff_t dstStep, MoxiSize srcSize,
                       Mox32s rounding) {
  for (Mox32s row = 0; row < kY * srcSize.height; ++row, dst += dstStep) {
    const auto y = DoublingTaps::at<kY>(row, srcSize.height);
    for (Mox32s column = 0; column < kX * srcSize.width; ++column) {
      dst[column] = h263_doubled(src + y.near * srcStep, src + y.far * srcStep,
                                 DoublingTaps::at<kX>(column, srcSize.width), rounding);
    }
  }
  return moxStsOk;
}

/// [directions - 1]: 1 rows, 2 columns, 3 both.
inline constexpr std::array<DoublingKernel, 3> kH263Enlarge = {h263_enlarge<2, 1>, h263_enlarge<1, 2>,
                                                               h263_enlarge<2, 2>};

inline MoxStatus h263_halve(const Mox8u* src, std::ptrdiff_t srcStep, Mox8u* dst, std::ptrdiff_t dstStep,
                            MoxiSize srcSize, Mox32s rounding) {
  for (Mox32s row = 0; row < srcSize.height / 2; ++row, src += 2 * srcStep, dst += dstStep) {
    for (Mox32s column = 0; column < srcSize.width / 2; ++column) {
      const Mox8u *const above = src + 2 * column, *const below = above + srcStep;
      dst[column] = static_cast<Mox8u>((above[0] + above[1] + below[0] + below[1] + rounding) >> 2);
    }
  }
  return moxStsOk;
}

}  // namespace mox::px
