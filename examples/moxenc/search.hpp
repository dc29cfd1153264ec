/// Searches for the vector of one block.
#pragma once

#include <span>

#include "moxenc/bit_writer.hpp"
#include "moxenc/inter.hpp"

namespace moxenc {

/// A size of blocks, and how they are compared.
struct Shape {
  int width, height;
  int (*sad)(const Mox8u* source, Mox32s source_step, const Mox8u* other, Mox32s other_step);
  int (*satd)(const Mox8u* source, Mox32s source_step, const Mox8u* other, Mox32s other_step);
  /// SADs of candidates side by side, a multiple of 8; null for blocks that are not swept.
  MoxStatus (*sads)(const Mox8u* source, Mox32s source_step, const Mox8u* other, Mox32s other_step, Mox16u* sads,
                    Mox32s count);
};
/// By its size in units of 8 samples.
const Shape& shape_of(int width, int height);

struct Target {
  const Mox8u* source;
  Mox32s source_step;
  const Mox8u* reference;  ///< the same place
  Mox32s reference_step;
  const Shape& shape;
  Vector predicted;  ///< vectors are coded relative to it
  const Limits& limits;
  const Lambda& lambda;

  int bits_of(Vector v) const { return se_length(v.x - predicted.x) + se_length(v.y - predicted.y); }
};

struct Match {
  Vector vector;
  int cost;
};

/// The best vector of whole samples by SAD: the best start, then hexagons downhill. If what is found is bad, a large
/// block is compared at every place around it.
Match search_whole(const Target& target, std::span<const Vector> starts);
/// From the best of some vectors to quarters of a sample by SATD, by steps of half a sample first or of quarters alone.
/// The first start must be allowed.
enum class Precision { kHalf, kQuarter };
Match refine(const Target& target, std::span<const Vector> starts, Precision from);

}  // namespace moxenc
