/// Slow half-pel prediction for tests: all positions are one formula on a grid of half samples, with floor and ceiling
/// coordinates, in quarters of a sample value.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace mox::test::oracle {

/// The prediction at (x, y). `sample(x, y)` gives reference samples, x counted within a channel; halfX and halfY are 0
/// or 1, rc is the rounding bit.
template <class Sample>
int half_pel(Sample sample, int x, int y, int halfX, int halfY, int rc) {
  int quarters = 0;
  for (const int right : {0, halfX}) {
    for (const int down : {0, halfY}) quarters += sample(x + right, y + down);
  }
  return static_cast<int>(std::floor((quarters + 2 - rc) / 4.0));
}

/// The mean of two predictions, halves up.
inline int mean(int a, int b) { return static_cast<int>(std::ceil((a + b) / 2.0)); }

inline int sample_of(std::int64_t value) { return static_cast<int>(std::clamp<std::int64_t>(value, 0, 255)); }

/// What remains of a value in 16 bits with a sign.
inline int signed_16_bits(std::int64_t value) {
  return static_cast<int>(((value + 32768) % 65536 + 65536) % 65536 - 32768);
}

}  // namespace mox::test::oracle
