/// Figures and a drawing of vector fields.
#pragma once

#include <array>
#include <string>

#include "motion_search/field.hpp"
#include "moxdec/contact_sheet.hpp"

namespace motion_search {

struct FieldStatistics {
  int macroblocks = 0, still = 0, split = 0, useless = 0;
  /// Vectors of 8 x 8 blocks by position: full, half in y, half in x, half in both.
  std::array<int, 4> positions{};
  double mean_length = 0;  ///< of those vectors, in samples
  long long sad = 0;       ///< of all macroblocks at the vectors in whole samples
};
FieldStatistics statistics_of(const Field& field);

/// The outcome of one method as lines of text.
std::string describe(const char* name, const Field& field, const Picture& current, const Picture& prediction);

/// The luma of a picture in grey, enlarged, with a line for each vector from the middle of its block, where a dot lies,
/// to the middle of what predicts it. Blocks of a split macroblock are green, useless predictions red.
moxdec::RgbImage draw(const Field& field, const Picture& picture);

}  // namespace motion_search
