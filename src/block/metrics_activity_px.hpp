/// Portable kernels for what a block says about itself, frame or field, and for differences with their sum.
#pragma once

#include <cstdlib>

#include "block/metrics_px.hpp"

namespace mox::px {

/// The sum of magnitudes of the differences between two rows of 16 samples, kept in 16 bits with a sign.
template <class T>
Mox32s row_difference(const T* a, const T* b) {
  Mox32s sum = 0;
  for (int x = 0; x < 16; ++x) sum += magnitude16(load<T>(a + x), load<T>(b + x));
  return sum;
}

/// Sums of differences between rows: neighbours for the frame, every other row for the field, 14 pairs each. The frame
/// leaves the pair in the middle out. The 16-bit form keeps the low 16 bits of the sums.
template <class T>
MoxStatus frame_field_sad(const T* src, Mox32s srcStep, Mox32s* frame, Mox32s* field) {
  constexpr Mox32s kMask = sizeof(T) == 1 ? -1 : 0xFFFF;
  const auto row = [=](int y) { return step_bytes(src, std::ptrdiff_t{y} * srcStep); };
  Mox32s frameSum = 0, fieldSum = 0;
  for (int y = 0; y < 15; ++y) frameSum += y == 7 ? 0 : row_difference(row(y), row(y + 1));
  for (int y = 0; y < 14; ++y) fieldSum += row_difference(row(y), row(y + 2));
  *frame = frameSum & kMask, *field = fieldSum & kMask;
  return moxStsOk;
}

/// dst = src1 - src2, and the sum of the magnitudes.
inline MoxStatus subtract_sad_8x8(const Mox8u* src1, Mox32s src1Step, const Mox8u* src2, Mox32s src2Step, Mox16s* dst,
                                  Mox32s dstStep, Mox32s* sad) {
  Mox32s sum = 0;
  for (int y = 0; y < 8; ++y, src1 += src1Step, src2 += src2Step, dst = step_bytes(dst, dstStep)) {
    for (int x = 0; x < 8; ++x) {
      const Mox32s difference = src1[x] - src2[x];
      store(dst + x, wrap16(difference));
      sum += std::abs(difference);
    }
  }
  *sad = sum;
  return moxStsOk;
}

}  // namespace mox::px
