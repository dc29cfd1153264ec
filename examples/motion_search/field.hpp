/// Vector fields: one vector, or four, for each macroblock of a picture, and what they predict.
#pragma once

#include <array>
#include <vector>

#include "motion_search/picture.hpp"
#include "motion_search/search.hpp"

namespace motion_search {

enum class Method { kFull, kDiamond, kZero };

struct Macroblock {
  Vector found;  ///< of the search, in whole samples
  Mox32s sad;    ///< there
  bool split;    ///< four vectors in place of one
  /// Of the 8 x 8 blocks in raster order; all the same unless split.
  std::array<Vector, 4> vectors;
  /// The prediction leaves a larger variance than the block has itself: coding it without prediction would be cheaper.
  bool useless;
};

struct Field {
  int columns, rows;
  std::vector<Macroblock> macroblocks;  ///< in raster order
  double seconds = 0;                   ///< spent on searching for whole samples

  const Macroblock& at(int column, int row) const {
    return macroblocks[static_cast<std::size_t>(row * columns + column)];
  }
};

/// Margin that pictures need for vectors of a range.
constexpr int margin_for(int range) { return range + 32; }

/// Searches each macroblock with whole samples, then refines its vector to half samples and splits it where four
/// vectors leave less to code. kZero does nothing of that.
Field estimate(const Picture& current, const Picture& reference, Method method, int range);

/// The picture that the vectors of a field make of the reference.
Picture predict(const Field& field, const Picture& reference);

}  // namespace motion_search
