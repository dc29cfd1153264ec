/// Prediction from the reference.
#pragma once

#include "moxenc/site.hpp"

namespace moxenc {

/// Vectors whose macroblock lies within the reference and its margin.
struct Limits {
  int left, right, top, bottom;  ///< in quarters of a sample, inclusive
  bool allow(Vector v) const { return v.x >= left && v.x <= right && v.y >= top && v.y <= bottom; }
};
Limits limits_at(const Site& site);

/// Predicts all planes into the picture. `reference` has margins.
void predict_inter(const Macroblock& mb, const Site& site, const moxdec::Frame& reference);

}  // namespace moxenc
