/// Portable intra prediction of AVS 8x8 blocks, in place.
#pragma once

#include <algorithm>
#include <cstddef>

#include "frame/arithmetic.hpp"

namespace mox {

/// Modes of both planes in the order of luma; chroma has an order of its own.
enum AvsIntraMode : Mox32u { kAvsVertical, kAvsHorizontal, kAvsDC, kAvsDownLeft, kAvsDownRight, kAvsPlane };
inline constexpr Mox32u kAvsLumaModes = 5, kAvsChromaModes = 4;
inline constexpr AvsIntraMode kAvsModeOfChroma[kAvsChromaModes] = {kAvsDC, kAvsHorizontal, kAvsVertical, kAvsPlane};

/// Neighbours of a block that can be used.
enum AvsNeighbour : Mox32u { kAvsAbove = 1, kAvsLeft = 2, kAvsCorner = 4, kAvsAboveRight = 8, kAvsBelowLeft = 16 };

/// [mode]
inline constexpr Mox32u kAvsNeeds[] = {
    kAvsAbove, kAvsLeft, 0, kAvsAbove | kAvsLeft, kAvsAbove | kAvsLeft | kAvsCorner, kAvsAbove | kAvsLeft | kAvsCorner};

}  // namespace mox

namespace mox::px {

/// An edge from the corner on: entry 1 is the first sample beside the block, 9 to 16 lie beyond it.
using AvsEdge = Mox8u[18];

/// Collects `first`, the sample beside the block's first one, and what follows it in steps of `along`. The first one
/// stands in for the corner, the last one for what cannot be used.
inline void load_avs_edge(AvsEdge& edge, const Mox8u* first, std::ptrdiff_t along, bool beyond) {
  const int count = beyond ? 16 : 8;
  for (int i = 1; i <= count; ++i) edge[i] = first[(i - 1) * along];
  std::fill(edge + count + 1, edge + 18, edge[count]);
  edge[0] = edge[1];
}

/// The low-pass at place i of an edge.
constexpr Mox32s avs_smooth(const Mox8u* v, int i) { return (v[i - 1] + 2 * v[i] + v[i + 1] + 2) >> 2; }

/// Slope of an edge around its fourth sample, in 1/32 for each sample.
constexpr Mox32s avs_slope(const AvsEdge& v) {
  Mox32s sum = 0;
  for (int i = 1; i <= 4; ++i) sum += i * (v[4 + i] - v[4 - i]);
  return (17 * sum + 16) >> 5;
}

/// Predicts the 8x8 block at dst from the neighbours that can be used; they suffice for the mode.
inline void predict_avs_intra(Mox8u* dst, std::ptrdiff_t step, Mox32u mode, Mox32u neighbours) {
  AvsEdge r, c;
  const bool above = neighbours & kAvsAbove, left = neighbours & kAvsLeft;
  if (above) load_avs_edge(r, dst - step, 1, neighbours & kAvsAboveRight);
  if (left) load_avs_edge(c, dst - 1, step, neighbours & kAvsBelowLeft);
  if (neighbours & kAvsCorner) r[0] = c[0] = dst[-step - 1];
  const auto each = [=](auto value) {
    for (int y = 0; y < 8; ++y) {
      for (int x = 0; x < 8; ++x) dst[y * step + x] = clip8(value(x, y));
    }
  };
  switch (mode) {
    case kAvsVertical: return each([&](int x, int) { return r[x + 1]; });
    case kAvsHorizontal: return each([&](int, int y) { return c[y + 1]; });
    case kAvsDC:
      if (above && left)
        return each([&](int x, int y) { return avg_down(avs_smooth(r, x + 1), avs_smooth(c, y + 1)); });
      if (above) return each([&](int x, int) { return avs_smooth(r, x + 1); });
      if (left) return each([&](int, int y) { return avs_smooth(c, y + 1); });
      return each([](int, int) { return 128; });
    case kAvsDownLeft:
      return each([&](int x, int y) { return avg_down(avs_smooth(r, x + y + 2), avs_smooth(c, x + y + 2)); });
    case kAvsDownRight: {
      Mox8u line[17];  // from c[8] by the corner to r[8]
      std::reverse_copy(c + 1, c + 9, line);
      std::copy(r, r + 9, line + 8);
      return each([&](int x, int y) { return avs_smooth(line, 8 + x - y); });
    }
    default: {
      const Mox32s a = 16 * (r[8] + c[8]), b = avs_slope(r), d = avs_slope(c);
      return each([=](int x, int y) { return (a + (x - 3) * b + (y - 3) * d + 16) >> 5; });
    }
  }
}

}  // namespace mox::px
