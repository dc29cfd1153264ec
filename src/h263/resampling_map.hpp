/// The map of H.263 reference picture resampling: from a sample of the new picture to its place in the old one.
#pragma once

#include <bit>

#include "frame/arithmetic.hpp"
#include "moxvc/types.h"

namespace mox {

/// a / b to the nearest integer, halves away from 0; b > 0.
constexpr long long nearest_quotient(long long a, long long b) {
  const long long magnitude = (2 * (a < 0 ? -a : a) + b) / (2 * b);
  return a < 0 ? -magnitude : magnitude;
}
static_assert(nearest_quotient(5, 2) == 3 && nearest_quotient(-5, 2) == -3 && nearest_quotient(-4, 3) == -1);

/// Displacements along a row in one direction, in 1/16 of a sample of the plane.
struct DisplacementRow {
  long long start, slope;  ///< numerator of the first sample with what rounds it, and of a step of one sample
  int shift;

  constexpr Mox32s at(Mox32s column) const { return static_cast<Mox32s>((start + column * slope) >> shift); }
};

/// Displacements in one direction at the corners of the picture enlarged to powers of two, in 1/32 of a luma sample.
struct ResamplingAxis {
  long long upperLeft, upperRight, lowerLeft, lowerRight;
  int logWidth, logHeight;

  /// Magnitudes: corners of 2^19 at most, extrapolated below 2^23; numerators below 2^23 * 2^30.
  constexpr ResamplingAxis(MoxiSize size, long long ul, long long ur, long long ll, long long lr)
      : logWidth(std::bit_width(static_cast<Mox32u>(size.width) - 1)),
        logHeight(std::bit_width(static_cast<Mox32u>(size.height) - 1)) {
    const long long width = 1ll << logWidth, height = 1ll << logHeight, dx = size.width - width,
                    dy = size.height - height;
    const long long upper = dx * ul + width * ur, lower = dx * ll + width * lr;
    upperLeft = ul;
    upperRight = nearest_quotient(upper, size.width);
    lowerLeft = nearest_quotient(dy * ul + height * ll, size.height);
    lowerRight = nearest_quotient(dy * upper + height * lower, 1ll * size.width * size.height);
  }

  /// Row of a plane with half the samples of luma in each direction where subsampled is 1.
  constexpr DisplacementRow row(Mox32s index, int subsampled) const {
    const long long width = 2ll << logWidth, height = 2ll << logHeight;  // in half samples, as x and y
    const long long y = (2ll * index + 1) << subsampled, x = 1ll << subsampled;
    const long long left = (height - y) * upperLeft + y * lowerLeft;
    const long long right = (height - y) * upperRight + y * lowerRight;
    const int shift = logWidth + logHeight + 3 + subsampled;
    return {(width - x) * left + x * right + (1ll << (shift - 1)), 2 * x * (right - left), shift};
  }
};

/// Places in the old plane of the samples of a row, in 1/16 of a sample.
struct ResamplingRow {
  DisplacementRow x, y;
  Mox32s index;

  constexpr MoxiPoint at(Mox32s column) const { return {16 * column + x.at(column), 16 * index + y.at(column)}; }
};

struct ResamplingMap {
  ResamplingAxis x, y;

  /// The displacements of the corners are in `unit` / 32 of a sample.
  constexpr ResamplingMap(MoxiSize size, const MoxiPoint* corner, Mox32s unit)
      : x(size, corner[0].x * unit, corner[1].x * unit, corner[2].x * unit, corner[3].x * unit),
        y(size, corner[0].y * unit, corner[1].y * unit, corner[2].y * unit, corner[3].y * unit) {}

  constexpr ResamplingRow row(Mox32s index, int subsampled) const {
    return {x.row(index, subsampled), y.row(index, subsampled), index};
  }
};

}  // namespace mox
