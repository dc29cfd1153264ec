/// Parameters and portable kernel of the CAST noise filter.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>

#include "frame/arithmetic.hpp"
#include "moxvc/denoise_cast.h"

namespace mox {

/// A frame to filter: rows of src and of the previous result, rows of dst.
struct CastFrame {
  const Mox8u* src;
  std::ptrdiff_t srcStep;
  const Mox8u* prev;
  std::ptrdiff_t prevStep;
  Mox8u* dst;
  std::ptrdiff_t dstStep;
  MoxiSize size;
};

}  // namespace mox

namespace mox::px {

/// A weight is greatest up to half of its range's end: a scale takes half of the range to 4096 or a little more, the
/// 256ths of 16 sixteenths.
constexpr MoxiDenoiseCASTState cast_parameters(Mox32s noise, Mox32s spatial, Mox32s temporal) {
  const auto scale = [](Mox32s half) { return (4095 + half) / half; };
  const Mox32s edge = 4 * noise, motion = 12 * noise;
  return {3 * noise, 2 * edge, scale(edge), 2 * motion, scale(motion), spatial, temporal};
}

/// Sixteenths of `greatest` by how far a value lies below the end of its range.
constexpr Mox32s cast_weight(Mox32s value, Mox32s end, Mox32s scale, Mox32s greatest) {
  return greatest * std::min(16, std::max(end - value, 0) * scale >> 8) >> 4;
}

/// (weight * a + (16 - weight) * b) / 16, rounded.
constexpr Mox32s cast_blend(Mox32s weight, Mox32s a, Mox32s b) { return (weight * a + (16 - weight) * b + 8) >> 4; }

inline Mox8u cast_sample(const CastFrame& frame, int x, int y, const MoxiDenoiseCASTState& state) {
  const Mox32s sample = frame.src[y * frame.srcStep + x];
  Mox32s motion = 0, least = 255, greatest = 0, sum = 8;
  for (int j = -1; j <= 1; ++j) {
    for (int i = -1; i <= 1; ++i) {
      const int column = clip(x + i, 0, frame.size.width - 1), row = clip(y + j, 0, frame.size.height - 1);
      const Mox32s neighbour = frame.src[row * frame.srcStep + column];
      motion += std::abs(neighbour - frame.prev[row * frame.prevStep + column]);
      least = std::min(least, neighbour);
      greatest = std::max(greatest, neighbour);
      const bool isNear = std::abs(neighbour - sample) <= state.nearest;
      sum += (2 - i * i) * (2 - j * j) * (isNear ? neighbour : sample);
    }
  }
  const Mox32s inSpace = cast_weight(greatest - least, state.edgeEnd, state.edgeScale, state.spatial);
  const Mox32s inTime = cast_weight(motion, state.motionEnd, state.motionScale, state.temporal);
  const Mox32s filtered = cast_blend(inSpace, sum >> 4, sample);
  return static_cast<Mox8u>(cast_blend(inTime, frame.prev[y * frame.prevStep + x], filtered));
}

inline MoxStatus ownFilterDenoiseCAST_8u(const CastFrame& frame, const MoxiDenoiseCASTState& state) {
  for (int y = 0; y < frame.size.height; ++y) {
    for (int x = 0; x < frame.size.width; ++x) frame.dst[y * frame.dstStep + x] = cast_sample(frame, x, y, state);
  }
  return moxStsOk;
}

}  // namespace mox::px
