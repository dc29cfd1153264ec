/// What a bit is worth in distortion.
#pragma once

#include <algorithm>
#include <cmath>

namespace moxenc {

/// Costs are distortion plus bits times one of these, by the measure of distortion.
struct Lambda {
  int sad, satd;
  double squares;

  explicit Lambda(int qp)
      : sad(std::max(1, static_cast<int>(std::lround(std::exp2((qp - 12) / 6.0))))),
        satd(std::max(1, static_cast<int>(std::lround(2 * std::exp2((qp - 12) / 6.0))))),
        squares(0.85 * std::exp2((qp - 12) / 3.0)) {}
};

}  // namespace moxenc
