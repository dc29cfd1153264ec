/// Slow block distances for tests: samples come from a function, transforms from the signs of a Hadamard matrix.
#pragma once

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace mox::test::oracle {

/// The difference of two samples as 16 bits with a sign hold it.
inline std::int64_t signed_difference(std::int64_t a, std::int64_t b) {
  const std::int64_t residue = ((a - b) % 65536 + 65536) % 65536;
  return residue >= 32768 ? residue - 65536 : residue;
}

/// Half-pel samples whose sum stops at `limit`, which must be a number below a power of 2. (In 8-bit samples it never
/// gets there.) All positions are a mean over a rectangle of 1, 2 or 4 samples.
template <class Sample>
std::int64_t rounded_mean(Sample sample, int x, int y, int halfX, int halfY, std::int64_t limit) {
  const int count = (1 + halfX) * (1 + halfY);
  std::int64_t sum = count / 2;
  for (int i = 0; i <= halfX; ++i) {
    for (int j = 0; j <= halfY; ++j) sum += sample(x + i, y + j);
  }
  return static_cast<std::int64_t>(std::floor(static_cast<double>(std::min(sum, limit)) / count));
}

/// A block of differences.
struct Differences {
  int width, height;
  std::vector<std::int64_t> values;

  template <class Source, class Reference>
  Differences(int w, int h, Source source, Reference reference) : width(w), height(h) {
    for (int i = 0; i < w * h; ++i) values.push_back(signed_difference(source(i % w, i / w), reference(i % w, i / w)));
  }
  std::int64_t at(int x, int y) const { return values[static_cast<std::size_t>(y * width + x)]; }

  /// The sum of magnitudes, or of squares.
  std::int64_t power_sum(int exponent) const {
    std::int64_t sum = 0;
    for (std::int64_t value : values) sum += exponent == 1 ? std::llabs(value) : value * value;
    return sum;
  }
  /// The sum of the magnitudes of the coefficients of n x n Hadamard transforms. A matrix entry is minus one where row
  /// and column number have an odd number of bits in common.
  std::int64_t hadamard_sum(int n) const {
    std::int64_t sum = 0;
    for (int corner = 0; corner < width * height; ++corner) {
      const int x0 = corner % width, y0 = corner / width;
      if (x0 % n != 0 || y0 % n != 0) continue;
      for (unsigned k = 0; k < static_cast<unsigned>(n * n); ++k) {
        std::int64_t coefficient = 0;
        for (unsigned i = 0; i < static_cast<unsigned>(n * n); ++i) {
          const std::int64_t d = at(x0 + static_cast<int>(i) % n, y0 + static_cast<int>(i) / n);
          coefficient += std::popcount(k & i) % 2 ? -d : d;  // both numbers hold a row and a column
        }
        sum += std::llabs(coefficient);
      }
    }
    return sum;
  }
};

}  // namespace mox::test::oracle
