/// How the weight of the edge value follows from motion: the line through two points, and its table.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

#include "frame/arithmetic.hpp"
#include "moxvc/deinterlace.h"
#include "moxvc/types.h"

namespace mox {

inline constexpr Mox32s kFullWeight = 256, kMostMotion = 255;
/// What the weight at the greatest motion may rise to above the offset.
inline constexpr Mox32s kMostRise = 32767;

/// Towards zero, limited to 32 bits; the least integer for what is no number.
inline Mox32s truncated(double value) {
  using Limits = std::numeric_limits<Mox32s>;
  if (value >= 2147483648.0) return Limits::max();
  return value > -2147483649.0 ? static_cast<Mox32s>(value) : Limits::min();
}

struct BlendLine {
  Mox32s slope, offset, motionHigh, motionLow;
};

/// Points (t0, c0) and (t1, c1), t0 below t1.
inline BlendLine blend_line(Mox32s t0, Mox32s t1, double c0, double c1) {
  const double a = std::abs((c1 - c0) / (static_cast<double>(t1) - t0)), b = c1 - t1 * a;
  Mox32s slope = truncated(0.5 + 256 * a), offset = truncated(b > 0 ? 256 * b + 0.5 : 256 * b - 0.5);
  if (offset > kFullWeight) return {0, kFullWeight, kMostMotion, 0};
  if (slope != 0) {
    const long long top = std::min<long long>(255ll * slope + offset, kFullWeight);
    if (top < 0) return {0, 0, kMostMotion, 256};
    if (top - offset > kMostRise) {
      offset = static_cast<Mox32s>(top) - kMostRise;
      slope = truncated((256 * c1 - offset) / t1);
    }
  }
  // The adjusted line of points below -126 may fall; like one of no slope it stays at 0.
  if (slope < 1) return {0, std::max(offset, 0), kMostMotion, offset < 0 ? 256 : 0};
  return {slope, offset, std::min((kFullWeight - offset) / slope, kMostMotion),
          std::max(-offset / slope - (offset < 0), 0)};
}

/// Fills in a record whose table is allocated. Sorts both pairs.
inline void set_blend_weights(MoxiDeinterlaceBlendState& state, Mox32s threshold[2], double constant[2]) {
  if (threshold[0] > threshold[1]) std::swap(threshold[0], threshold[1]);
  if (constant[0] > constant[1]) std::swap(constant[0], constant[1]);
  constant[1] = std::min(constant[1], 32767.0);
  constant[0] = std::max(constant[0], -32768.0);
  const bool hard_switch = threshold[0] == threshold[1];
  BlendLine line{};
  if (hard_switch) {
    state.motionHigh = sub32(threshold[0], 1), state.motionLow = threshold[0];
  } else {
    line = blend_line(threshold[0], threshold[1], constant[0], constant[1]);
    state.slope = line.slope, state.offset = line.offset;
    state.motionHigh = line.motionHigh, state.motionLow = line.motionLow;
  }
  for (Mox32s i = 0; i <= kMostMotion; ++i) {
    const long long w = hard_switch ? (i < threshold[0] ? 0 : kFullWeight)
                                    : std::clamp<long long>(line.offset + 1ll * i * line.slope, 0, kFullWeight);
    state.pLUT[i] = static_cast<Mox16u>(w);
    state.pLUT[256 + i] = static_cast<Mox16u>(kFullWeight - w);
  }
}

}  // namespace mox
