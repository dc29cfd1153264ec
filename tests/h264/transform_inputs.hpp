/// Inputs of the transform tests, and the check of functions that add a residual to a prediction.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>

#include "oracle/inverse_transform.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"

namespace mox::test {

/// Either end of the guarded memory, or any alignment that T allows.
template <class T>
Placement any_placement(Random& random) {
  constexpr int kSize = sizeof(T);
  const int choice = random(0, 2);
  return choice == 0   ? Placement::at_end()
         : choice == 1 ? Placement::at_start()
                       : Placement::aligned(kSize * random(0, 16 / kSize - 1));
}

/// A guarded block: first one value at each position in turn, then every pattern, at amplitudes from small to extreme.
template <class T>
struct Block : Guarded<T> {
  static constexpr int kPatternCount = static_cast<int>(std::size(kPatterns));
  static int rounds(int count) { return count + 3 * kPatternCount; }
  Block(int round, int count, Random& random) : Guarded<T>(count, any_placement<T>(random)) {
    const int amplitudes[] = {20, 2063, 32767, int{std::numeric_limits<T>::max()}};
    const int amplitude = amplitudes[random(0, 3)];
    fill(std::span(this->begin(), count), kPatterns[round % kPatternCount], random, -amplitude - 1, amplitude);
    if (round < count) {
      std::fill(this->begin(), this->end(), T{0});
      (*this)[round] = static_cast<T>(random.chance(0.5) ? amplitude : -amplitude - 1);
    }
  }
  oracle::Values values() const { return {this->begin(), this->end()}; }
};

/// Scales: mostly such as a scaling list gives, sometimes any.
struct Scales : Guarded<Mox16s> {
  Scales(int count, Random& random) : Guarded<Mox16s>(count, any_placement<Mox16s>(random)) {
    const bool legal = random.chance(0.7);
    random.fill(std::span(begin(), count), legal ? 10 : -32768, legal ? 29 * 255 : 32767);
  }
};

/// The array, or a null pointer as often.
template <class T>
const T* maybe(const Guarded<T>& values, Random& random) {
  return random.chance(0.5) ? values.data() : nullptr;
}

/// A flag of an argument list: 0, or non-zero with and without its low bits.
inline int any_flag(Random& random) { return std::array{0, 1, -256, -255}[random(0, 3)]; }

inline long long limited(long long value, int maximum) { return std::clamp<long long>(value, 0, maximum); }

/// Calls `add(pred, predStep, dst, dstStep)` on guarded planes with tight, odd, negative and wide steps, sometimes in
/// place: each sample has to become expected(prediction, raster index), and nothing else may change.
template <class Sample>
void expect_added(int width, int height, int maximum, Random& random, auto add, auto expected) {
  const int steps[] = {width, width + 3, -width, -width - 5, 4 * width};
  const Plane<Sample> pred(width, height, steps[random(0, 4)], any_placement<Sample>(random));
  const Plane<Sample> other(width, height, steps[random(0, 4)], any_placement<Sample>(random));
  const Plane<Sample>& dst = random.chance(0.25) ? pred : other;
  fill(pred.memory(), kPatterns[random(0, 6)], random, 0, maximum);
  const auto prediction = pred.copy();
  const Plane<Sample> want(width, height, dst.step());
  want.assign(dst);
  for (int i = 0; i < width * height; ++i) {
    want(i % width, i / width) = static_cast<Sample>(expected(pred(i % width, i / width), i));
  }
  add(pred.at(0, 0), pred.step(), dst.at(0, 0), dst.step());
  ASSERT_EQ(dst.copy(), want.copy());
  if (&dst != &pred) {
    ASSERT_EQ(pred.copy(), prediction);
  }
}

}  // namespace mox::test
