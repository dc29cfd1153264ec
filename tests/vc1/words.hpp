/// Blocks of words in guarded bytes, at any address and with any step, odd ones too.
#pragma once

#include <cstring>
#include <vector>

#include "h264/transform_inputs.hpp"
#include "support/guarded.hpp"

namespace mox::test {

using oracle::Values;

/// Memory for exactly w x h words.
inline Plane<Mox8u> word_plane(int w, int h, Random& random) {
  const int steps[] = {2 * w, 2 * w + 1, -2 * w, -2 * w - 5, 128};
  return Plane<Mox8u>(2 * w, h, steps[random(0, 4)], any_placement<Mox8u>(random));
}
inline Mox16s* words(Mox8u* bytes) { return reinterpret_cast<Mox16s*>(bytes); }
inline Mox16s* words(const Plane<Mox8u>& plane) { return words(plane.at(0, 0)); }

/// Stores the first w x h of values in rows of `row`.
inline void put_words(Mox8u* at, int step, int w, int h, const Values& values, int row) {
  for (int i = 0; i < w * h; ++i) {
    const auto value = static_cast<Mox16s>(values[i / w * row + i % w]);
    std::memcpy(at + i / w * step + i % w * 2, &value, 2);
  }
}
inline void put_words(const Plane<Mox8u>& plane, const Values& values, int row) {
  put_words(plane.at(0, 0), plane.step(), plane.width() / 2, plane.height(), values, row);
}
/// The plane's bytes with other words in it.
inline std::vector<Mox8u> with_words(const Plane<Mox8u>& plane, const Values& values) {
  const Plane<Mox8u> other(plane.width(), plane.height(), plane.step());
  other.assign(plane);
  put_words(other, values, plane.width() / 2);
  return other.copy();
}

}  // namespace mox::test
