/// Slow block statistics for tests, from definitions: exact arithmetic in 64 bits or in double precision, with rounding
/// to single precision written out.
#pragma once

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "oracle/half_pel.hpp"

namespace mox::test::oracle {

/// A double rounded to the nearest single-precision number, halves to even, with no float involved: 24 significant
/// bits.
inline double single(double value) {
  if (value == 0) return 0;
  int exponent;
  std::frexp(value, &exponent);
  return std::ldexp(std::nearbyint(std::ldexp(value, 24 - exponent)), exponent - 24);
}

/// What remains of a value in 32 bits with a sign.
inline std::int64_t signed_32_bits(std::int64_t value) {
  constexpr std::int64_t kRange = std::int64_t{1} << 32;
  return ((value + kRange / 2) % kRange + kRange) % kRange - kRange / 2;
}

/// Variance in single-precision steps, of any samples.
inline std::int64_t rounded_variance(const std::vector<int>& samples) {
  std::int64_t sum = 0, squares = 0;
  for (std::int64_t p : samples) sum += p, squares += p * p;
  const double count = static_cast<double>(samples.size());
  const double mean = single(static_cast<double>(sum) / count);
  const double mean_of_squares = single(static_cast<double>(signed_32_bits(squares))) / count;
  return static_cast<std::int64_t>(std::trunc(single(mean_of_squares - single(mean * mean))));
}

inline std::int64_t sum_of(const std::vector<int>& samples) {
  std::int64_t sum = 0;
  for (int p : samples) sum += p;
  return sum;
}

/// The sum of squared deviations from the exact mean, rounded up, as it is the sum of squares less a quotient that is
/// rounded down. All terms are multiples of 1 / count, which doubles hold for counts that are powers of two.
inline std::int64_t scaled_variance(const std::vector<int>& samples) {
  const double mean = static_cast<double>(sum_of(samples)) / static_cast<double>(samples.size());
  double deviations = 0;
  for (int p : samples) deviations += (p - mean) * (p - mean);
  return static_cast<std::int64_t>(std::ceil(deviations));
}

inline std::int64_t absolute_deviation(const std::vector<int>& samples) {
  const int mean =
      static_cast<int>(std::floor(static_cast<double>(sum_of(samples)) / static_cast<double>(samples.size()) + 0.5));
  std::int64_t sum = 0;
  for (int p : samples) sum += std::abs(p - mean);
  return sum;
}

struct ErrorStatistics {
  std::int64_t var, mean;
};
/// From samples, their predictions, and the caller's sum of the samples; `meanBits` of the mean enter the square.
inline ErrorStatistics error_statistics(const std::vector<int>& samples, const std::vector<int>& predictions,
                                        int sampleSum, int meanBits) {
  std::int64_t squares = 0;
  for (std::size_t i = 0; i < samples.size(); ++i) {
    squares += (samples[i] - predictions[i]) * (samples[i] - predictions[i]);
  }
  const std::int64_t mean = signed_32_bits(sampleSum - sum_of(predictions)) / 8;
  const std::int64_t root = meanBits == 16 ? signed_16_bits(mean) : mean;
  // The product of two 29-bit numbers fits 64 bits.
  const std::int64_t square = signed_32_bits(root * root);
  return {squares > square ? signed_32_bits(squares - square) / 64 : 0, mean};
}

/// Samples of a 16 x 16 block with a difference to the right or downwards above the threshold; `half` is half the range
/// of the samples, 128 or 32768.
template <class Sample>
int edges(Sample sample, std::int64_t threshold, int half) {
  const std::int64_t limit = (threshold + half) % (2 * half) - half;
  int count = 0;
  for (int i = 0; i < 225; ++i) {
    const int x = i % 15, y = i / 15, p = sample(x, y);
    const int largest = std::max(std::abs(p - sample(x + 1, y)), std::abs(p - sample(x, y + 1)));
    count += std::min(largest, half - 1) > limit ? 1 : 0;
  }
  return count;
}

}  // namespace mox::test::oracle
