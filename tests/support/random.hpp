/// Inputs of tests: random with a printed seed, and named patterns that reach the extremes.
#pragma once

#include <cstdint>
#include <limits>
#include <random>
#include <span>

namespace mox::test {

/// The seed of this run: MOXVC_SEED of the environment, or a fixed one. Printed when a test program starts.
std::uint64_t run_seed();

/// Random numbers that follow from the run's seed and the name of the running test, so that a test gives the same
/// numbers alone and among others.
class Random {
 public:
  Random();
  explicit Random(std::uint64_t seed) : engine_(seed) {}
  /// A number of low..high, both included.
  int operator()(int low, int high) { return std::uniform_int_distribution<int>(low, high)(engine_); }
  std::uint32_t bits() { return static_cast<std::uint32_t>(engine_()); }
  bool chance(double probability) { return std::bernoulli_distribution(probability)(engine_); }
  /// Fills with numbers of low..high; without limits, with any value of T.
  template <class T>
  void fill(std::span<T> values, int low, int high) {
    for (T& value : values) value = static_cast<T>((*this)(low, high));
  }
  template <class T>
  void fill(std::span<T> values) {
    for (T& value : values) value = static_cast<T>(engine_());
  }

 private:
  std::mt19937_64 engine_;
};

/// Contents by name. Low and high are the limits of the values.
enum class Pattern { kRandom, kLow, kHigh, kAlternating, kRamp, kImpulse, kSparse };
inline constexpr Pattern kPatterns[] = {Pattern::kRandom, Pattern::kLow,     Pattern::kHigh,  Pattern::kAlternating,
                                        Pattern::kRamp,   Pattern::kImpulse, Pattern::kSparse};
const char* name_of(Pattern pattern);

template <class T>
void fill(std::span<T> values, Pattern pattern, Random& random, int low = std::numeric_limits<T>::min(),
          int high = std::numeric_limits<T>::max()) {
  const int flat = low <= 0 && high >= 0 ? 0 : low;
  const std::size_t peak =
      values.empty() ? 0 : static_cast<std::size_t>(random(0, static_cast<int>(values.size()) - 1));
  for (std::size_t i = 0; i < values.size(); ++i) {
    int value = flat;
    switch (pattern) {
      case Pattern::kRandom: value = random(low, high); break;
      case Pattern::kLow: value = low; break;
      case Pattern::kHigh: value = high; break;
      case Pattern::kAlternating: value = i % 2 ? high : low; break;
      case Pattern::kRamp:
        value = static_cast<int>(low + static_cast<std::int64_t>(i) * 7 % (std::int64_t{high} - low + 1));
        break;
      case Pattern::kImpulse: value = i == peak ? high : flat; break;
      case Pattern::kSparse: value = random(0, 7) == 0 ? random(low, high) : flat; break;
    }
    values[i] = static_cast<T>(value);
  }
}

}  // namespace mox::test
