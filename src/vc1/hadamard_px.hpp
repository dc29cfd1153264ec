/// Portable 8x8 Hadamard transform with the sum of its magnitudes. Addresses need no alignment.
#pragma once

#include "frame/access.hpp"
#include "frame/arithmetic.hpp"

namespace mox::px {

/// Eight values that lie `stride` apart, in natural order.
inline void vc1_hadamard_line(Mox16s* line, int stride) {
  for (int distance = 1; distance < 8; distance *= 2) {
    for (int i = 0; i < 8; ++i) {
      if (i & distance) continue;
      Mox16s &a = line[i * stride], &b = line[(i + distance) * stride];
      const Mox16s sum = Sat16::add(a, b), difference = Sat16::sub(a, b);
      a = sum, b = difference;
    }
  }
}

/// The sum of a column's magnitudes, in the one order in which saturation is the same everywhere.
inline Mox32s vc1_column_magnitude(const Mox16s* column) {
  Mox16s sums[8];
  for (int y = 0; y < 8; ++y) sums[y] = column[8 * y] < 0 ? Sat16::sub(0, column[8 * y]) : column[8 * y];
  for (int count = 4; count > 0; count /= 2) {
    for (int i = 0; i < count; ++i) sums[i] = Sat16::add(sums[2 * i], sums[2 * i + 1]);
  }
  return sums[0];
}

template <class Sample>
MoxStatus vc1_hadamard_sum(const Sample* src, Mox32s srcStep, Mox16s* dst, Mox32s* result) {
  Mox16s block[64];
  for (int y = 0; y < 8; ++y) {
    for (int x = 0; x < 8; ++x) block[8 * y + x] = load<Sample>(step_bytes(src, std::ptrdiff_t{y} * srcStep) + x);
  }
  for (int y = 0; y < 8; ++y) vc1_hadamard_line(block + 8 * y, 1);
  for (int x = 0; x < 8; ++x) vc1_hadamard_line(block + x, 8);
  Mox32s sum = 0;
  for (int x = 0; x < 8; ++x) sum += vc1_column_magnitude(block + x);
  std::memcpy(dst, block, sizeof block);
  store(result, sum);
  return moxStsOk;
}

}  // namespace mox::px
