/// One macroblock's place in the work: its samples and what is there around it.
#pragma once

#include "moxenc/lambda.hpp"
#include "moxenc/macroblock.hpp"
#include "moxenc/picture.hpp"

namespace moxenc {

struct Site {
  int x, y;  ///< in macroblocks
  Planes source, picture;
  CodingState& state;
  const Lambda& lambda;

  bool has_left() const { return x > 0; }
  bool has_above() const { return y > 0; }
  bool has_above_right() const { return y > 0 && x + 1 < state.columns; }

  /// Neighbours that may be used, as the functions of intra prediction take them.
  static constexpr int kAbove = 1, kLeft = 2, kCorner = 32, kAboveRight = 64;
  int available() const {
    return (has_above() ? kAbove : 0) | (has_left() ? kLeft : 0) | (has_above() && has_left() ? kCorner : 0);
  }
  /// Those that may not be used, as the functions of reconstruction take them.
  std::uint32_t unusable() const {
    return (has_left() ? 0u : 1u) | (has_above() ? 0u : 4u) | (has_left() && has_above() ? 0u : 16u) |
           (has_above_right() ? 0u : 32u);
  }
};

}  // namespace moxenc
