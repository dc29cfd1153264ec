/// Portable kernels of VC-1 interpolation, one for each position and size.
///
/// kDistance is the number of bytes from a sample to its right neighbour: 1, or 2 where two channels are interleaved; a
/// width counts bytes.
#pragma once

#include <cstddef>

#include "frame/arithmetic.hpp"
#include "moxvc/types.h"

namespace mox {

using VC1InterpolationKernel = MoxStatus (*)(const Mox8u* src, std::ptrdiff_t srcStep, Mox8u* dst,
                                             std::ptrdiff_t dstStep, Mox32s roundControl);

/// Index of the kernels of one size: dy | dx << 2. Other bits of a position do not count.
constexpr std::size_t vc1_position(Mox32s dx, Mox32s dy) { return static_cast<std::size_t>((dx & 3) << 2 | (dy & 3)); }
static_assert(vc1_position(1, 2) == 6 && vc1_position(-1, 7) == 15);

/// [position][sample -1, 0, 1, 2]
inline constexpr Mox32s kVC1Taps[4][4] = {{0, 1, 0, 0}, {-4, 53, 18, -3}, {-1, 9, 9, -1}, {-3, 18, 53, -4}};

/// The binary logarithm of the gain of a position's taps.
constexpr int vc1_gain_bits(int position) { return position == 0 ? 0 : position == 2 ? 4 : 6; }
/// The part of a position in the shift between both filters.
constexpr int vc1_shift_part(int position) { return position == 2 ? 1 : 5; }
/// Bits that go after the vertical filter where the horizontal one follows; 7 go after that.
constexpr int vc1_first_shift(int dx, int dy) { return (vc1_shift_part(dx) + vc1_shift_part(dy)) >> 1; }
static_assert(vc1_first_shift(1, 3) == 5 && vc1_first_shift(2, 1) == 3 && vc1_first_shift(2, 2) == 1);

}  // namespace mox

namespace mox::px {

/// The sum of a position's four samples, `distance` bytes apart.
template <int kPosition>
Mox32s vc1_sum(const Mox8u* s, std::ptrdiff_t distance) {
  Mox32s sum = 0;
  for (int i = 0; i < 4; ++i) sum += kVC1Taps[kPosition][i] * s[(i - 1) * distance];
  return sum;
}

template <int kDx, int kDy>
Mox8u vc1_bicubic(const Mox8u* s, std::ptrdiff_t step, Mox32s roundControl) {
  if constexpr (kDx == 0 && kDy == 0) {
    return *s;
  } else if constexpr (kDy == 0) {
    constexpr int kShift = vc1_gain_bits(kDx);
    return clip8((vc1_sum<kDx>(s, 1) + (1 << (kShift - 1)) - roundControl) >> kShift);
  } else if constexpr (kDx == 0) {
    constexpr int kShift = vc1_gain_bits(kDy);
    return clip8((vc1_sum<kDy>(s, step) + (1 << (kShift - 1)) - 1 + roundControl) >> kShift);
  } else {
    constexpr int kShift = vc1_first_shift(kDx, kDy);
    Mox32s sum = 0;
    for (int i = 0; i < 4; ++i) {
      const Mox32s column = vc1_sum<kDy>(s + i - 1, step);
      sum += kVC1Taps[kDx][i] * ((column + (1 << (kShift - 1)) - 1 + roundControl) >> kShift);
    }
    return clip8((sum + 64 - roundControl) >> 7);
  }
}

/// Neighbours of no weight are not read.
template <int kDx, int kDy, int kDistance>
Mox8u vc1_bilinear(const Mox8u* s, std::ptrdiff_t step, Mox32s roundControl) {
  Mox32s sum = (4 - kDx) * (4 - kDy) * s[0];
  if constexpr (kDx != 0) sum += kDx * (4 - kDy) * s[kDistance];
  if constexpr (kDy != 0) sum += (4 - kDx) * kDy * s[step];
  if constexpr (kDx != 0 && kDy != 0) sum += kDx * kDy * s[step + kDistance];
  return static_cast<Mox8u>((sum + 8 - roundControl) >> 4);
}

template <int W, int H, class Sample>
MoxStatus vc1_interpolate(const Mox8u* src, std::ptrdiff_t srcStep, Mox8u* dst, std::ptrdiff_t dstStep, Sample sample) {
  for (int y = 0; y < H; ++y, src += srcStep, dst += dstStep) {
    for (int x = 0; x < W; ++x) dst[x] = sample(src + x);
  }
  return moxStsOk;
}

template <int W, int H, int kDx, int kDy>
MoxStatus vc1_interpolate_bicubic(const Mox8u* src, std::ptrdiff_t srcStep, Mox8u* dst, std::ptrdiff_t dstStep,
                                  Mox32s roundControl) {
  return vc1_interpolate<W, H>(src, srcStep, dst, dstStep,
                               [=](const Mox8u* s) { return vc1_bicubic<kDx, kDy>(s, srcStep, roundControl); });
}
template <int W, int H, int kDistance, int kDx, int kDy>
MoxStatus vc1_interpolate_bilinear(const Mox8u* src, std::ptrdiff_t srcStep, Mox8u* dst, std::ptrdiff_t dstStep,
                                   Mox32s roundControl) {
  return vc1_interpolate<W, H>(src, srcStep, dst, dstStep, [=](const Mox8u* s) {
    return vc1_bilinear<kDx, kDy, kDistance>(s, srcStep, roundControl);
  });
}

}  // namespace mox::px
