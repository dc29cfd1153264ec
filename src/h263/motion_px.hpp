/// Portable kernel of the bidirectional prediction of H.263 PB frames.
#pragma once

#include <cstddef>

#include "frame/arithmetic.hpp"
#include "moxvc/types.h"

namespace mox {

/// Where an 8x8 block's backward prediction lies in its P macroblock.
struct BackwardBlock {
  Mox32s x, y;          ///< of its first sample, or of the sample before it
  Mox32s halfX, halfY;  ///< 1: halfway to the next sample
  Mox32s size;          ///< of the macroblock

  /// Vectors past the farthest useful one lead outside as it does.
  constexpr BackwardBlock(Mox32s block, MoxiPoint vector)
      : x((block < 4 ? 8 * (block & 1) : 0) + (clip(vector.x, -64, 64) >> 1)),
        y((block < 4 ? 8 * (block >> 1) : 0) + (clip(vector.y, -64, 64) >> 1)),
        halfX(vector.x & 1),
        halfY(vector.y & 1),
        size(block < 4 ? 16 : 8) {}

  /// True if sample `at` and, with a half, the one behind it lie inside the macroblock.
  constexpr bool inside(Mox32s at, Mox32s half) const { return at >= 0 && at + half < size; }
};

}  // namespace mox

namespace mox::px {

inline MoxStatus add_backward_prediction(const Mox8u* forward, std::ptrdiff_t forwardStep, const Mox8u* macroblock,
                                         std::ptrdiff_t macroblockStep, Mox8u* dst, std::ptrdiff_t dstStep,
                                         const BackwardBlock& block) {
  for (Mox32s row = 0; row < 8; ++row, forward += forwardStep, dst += dstStep) {
    for (Mox32s column = 0; column < 8; ++column) {
      const Mox32s x = block.x + column, y = block.y + row;
      if (!block.inside(x, block.halfX) || !block.inside(y, block.halfY)) {
        dst[column] = forward[column];
        continue;
      }
      const Mox8u *const above = macroblock + y * macroblockStep, *const below = above + block.halfY * macroblockStep;
      const Mox32s backward = (above[x] + above[x + block.halfX] + below[x] + below[x + block.halfX] + 2) >> 2;
      dst[column] = static_cast<Mox8u>(avg_down(forward[column], backward));
    }
  }
  return moxStsOk;
}

}  // namespace mox::px
