/// Searches for one block in a reference picture.
#pragma once

#include <cstdlib>
#include <span>
#include <stdexcept>

#include "moxvc.h"

namespace motion_search {

/// The arguments of this program's calls are always legal.
inline void check(MoxStatus status) {
  if (status != moxStsOk) throw std::logic_error("a library function refused its arguments");
}

/// A displacement in half samples, to the right and downwards.
struct Vector {
  int x = 0;
  int y = 0;
  bool operator==(const Vector&) const = default;
  Vector operator+(Vector other) const { return {x + other.x, y + other.y}; }
};
/// From whole samples.
constexpr Vector whole(int x, int y) { return {2 * x, 2 * y}; }

/// Where a vector points: the sample left and above of it, and the position between samples as functions take it.
struct Place {
  const Mox8u* sample;
  Mox32s mcType;  ///< 8 half in x, 4 half in y
  Mox32s acc() const { return mcType >> 3 | (mcType >> 1 & 2); }
};
inline Place place(const Mox8u* reference, Mox32s step, Vector v) {
  return {reference + (v.y >> 1) * std::ptrdiff_t{step} + (v.x >> 1), (v.x & 1) << 3 | (v.y & 1) << 2};
}

/// A block of the current picture, and the reference in the same place.
struct Target {
  const Mox8u* block;
  Mox32s blockStep;
  const Mox8u* reference;
  Mox32s referenceStep;
};

struct Match {
  Vector vector;
  Mox32s sad;
};

using Sad = decltype(moxiSAD16x16_8u32s);  ///< of a 16 x 16 or an 8 x 8 block

/// The distance to where a vector points.
Match match_at(const Target& target, Sad* sad, Vector vector);

/// Searches look at vectors of -range to range - 1 whole samples in both directions. Of equally good vectors zero comes
/// first, so that flat areas stand still. The reference must hold the block there and 8 columns more.
inline constexpr int kRangeUnit = 4;  ///< `range` is a multiple of it

/// All vectors for a 16 x 16 block, a row of them with each call.
Match full_search(const Target& target, int range);

/// Walks down to a minimum for a 16 x 16 block: nine vectors in a diamond around the best one so far, then the four
/// next to it. Begins at the best of zero and the vectors given, which are rounded to whole samples.
Match diamond_search(const Target& target, int range, std::span<const Vector> starts);

/// All vectors of an 8 x 8 block up to four samples around `centre`, rounded to whole samples. Those further away cost
/// more, so that the four blocks of a macroblock part only where it pays.
Match search_around(const Target& target, Vector centre);

/// The best of a vector of whole samples and the eight half samples around it.
Match refine(const Target& target, Sad* sad, Match best);

}  // namespace motion_search
