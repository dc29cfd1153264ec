/// Slow VC-1 filters for tests: magnitudes and directions apart, smoothing as a change of each sample, real numbers.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <vector>

#include "moxvc/types.h"

namespace mox::test::oracle {

inline int vc1_eighths(double eighths) { return static_cast<int>(std::floor(eighths / 8)); }

using VC1Line = std::array<int, 8>;

/// The filtered line; `candidate` tells whether it was one.
inline VC1Line vc1_deblocked(const VC1Line& p, int pquant, bool& candidate) {
  const auto curvature = [&](int first) {
    return vc1_eighths(2 * p[first] - 5 * p[first + 1] + 5 * p[first + 2] - 2 * p[first + 3] + 4);
  };
  const int across = curvature(2), inside = std::min(std::abs(curvature(0)), std::abs(curvature(4)));
  const int half = std::abs(p[3] - p[4]) / 2;
  candidate = half > 0 && std::abs(across) < pquant && inside < std::abs(across);
  VC1Line result = p;
  // Only towards each other: across is positive where P5 is the larger one.
  if (candidate && (across > 0) == (p[4] > p[3])) {
    const int change = std::min(half, (std::abs(across) - inside) * 5 / 8), way = p[4] > p[3] ? 1 : -1;
    result[3] += way * change, result[4] -= way * change;
  }
  return result;
}

/// The four lines of a segment.
inline void vc1_deblock_segment(std::array<VC1Line, 4>& lines, int pquant) {
  std::array<VC1Line, 4> filtered;
  bool third = false, other;
  for (int i : {0, 1, 3, 2}) filtered[i] = vc1_deblocked(lines[i], pquant, i == 2 ? third : other);
  if (third) lines = filtered;
}

/// Each sample moves by an eighth of how far others are away.
inline std::array<int, 4> vc1_smoothed(const std::array<int, 4>& x, bool odd) {
  const int outer = x[3] - x[0], inner = x[2] - x[1];
  const std::array change = {outer, inner + outer, -inner - outer, -outer};
  std::array<int, 4> y;
  for (int i = 0; i < 4; ++i) {
    const bool larger = (i % 2 == 0) != odd;  // rounding, 4 instead of 3
    y[i] = vc1_eighths(static_cast<Mox16s>(8 * x[i] + change[i] + (larger ? 4 : 3)));
  }
  return y;
}

inline int vc1_mapped(int y, int rangeMap) {
  return std::clamp(static_cast<int>(std::floor((y - 128) * (rangeMap + 9) / 8.0 + 0.5)) + 128, 0, 255);
}

}  // namespace mox::test::oracle
