/// Slow weighted prediction for tests: one sample at a time in 64 bits, shifts as divisions, 32 bits as a remainder.
#pragma once

#include <algorithm>
#include <cstdint>

#include "moxvc/types.h"

namespace mox::test::oracle {

enum class Formula { kOne, kExplicit, kImplicit, kMean, kTwoWithOneOffset };

/// The numbers of any form; those that a formula does not use are ignored.
struct Weights {
  Mox32u log2Wd = 0;
  std::int64_t weight1 = 0, offset1 = 0, weight2 = 0, offset2 = 0;
};

/// What a signed 32-bit number keeps of a value.
inline std::int64_t in_32_bits(std::int64_t value) {
  constexpr std::int64_t kAll = std::int64_t{1} << 32;
  const std::int64_t rest = (value % kAll + kAll) % kAll;
  return rest >= kAll / 2 ? rest - kAll : rest;
}
inline std::int64_t power_of_two(std::int64_t exponent) { return std::int64_t{1} << (exponent % 32 + 32) % 32; }
/// value / 2^exponent, towards minus infinity.
inline std::int64_t shifted(std::int64_t value, std::int64_t exponent) {
  const std::int64_t whole = in_32_bits(value), divisor = power_of_two(exponent);
  return (whole - ((whole % divisor) + divisor) % divisor) / divisor;
}

/// One sample of the result.
inline std::int64_t weighted(Formula formula, const Weights& w, std::int64_t a, std::int64_t b, int depth) {
  const std::int64_t half = w.log2Wd == 0 ? 0 : power_of_two(std::int64_t{w.log2Wd} - 1);
  const std::int64_t first = in_32_bits(a * w.weight1), second = in_32_bits(b * w.weight2);
  std::int64_t result = 0;
  switch (formula) {
    case Formula::kMean: return (a + b) / 2 + (a + b) % 2;
    case Formula::kOne: result = shifted(first + half, w.log2Wd) + w.offset1; break;
    case Formula::kTwoWithOneOffset: result = shifted(first + second + half, w.log2Wd) + w.offset1; break;
    case Formula::kImplicit: result = shifted(first + second + 32, 6); break;
    case Formula::kExplicit:
      result = shifted(first + second + power_of_two(w.log2Wd), std::int64_t{w.log2Wd} + 1) +
               shifted(w.offset1 + w.offset2 + 1, 1);
      break;
  }
  return std::clamp<std::int64_t>(in_32_bits(result), 0, in_32_bits(in_32_bits(power_of_two(depth)) - 1));
}

}  // namespace mox::test::oracle
