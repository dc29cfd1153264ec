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
constexpr Mox32s avs_slope(const Mox8u* v) {
  Mox32s sum = 0;
  for (int i = 1; i <= 4; ++i) sum += i * (v[4 + i] - v[4 - i]);
  return (17 * sum + 16) >> 5;
}

/// A line of low-passed samples, from place kFirst of the edge on.
template <int kFirst, int kCount>
struct AvsSmoothed {
  Mox8u at[kCount];
  explicit AvsSmoothed(const Mox8u* edge) {
    for (int i = 0; i < kCount; ++i) at[i] = static_cast<Mox8u>(avs_smooth(edge, kFirst + i));
  }
};

/// An 8x8 block in the plane.
struct AvsBlock {
  Mox8u* first;
  std::ptrdiff_t step;

  /// Sets each sample to value(x, y), which is 0 to 255.
  template <class Value>
  void fill(Value value) const {
    for (int y = 0; y < 8; ++y) {
      for (int x = 0; x < 8; ++x) first[y * step + x] = static_cast<Mox8u>(value(x, y));
    }
  }
};

/// DC from the edges that there are; a null pointer takes one out.
inline void predict_avs_dc(const AvsBlock& block, const Mox8u* r, const Mox8u* c) {
  if (!r && !c) return block.fill([](int, int) { return 128; });
  const AvsSmoothed<1, 8> above(r ? r : c), left(c ? c : r);
  if (!c) return block.fill([&](int x, int) { return above.at[x]; });
  if (!r) return block.fill([&](int, int y) { return left.at[y]; });
  block.fill([&](int x, int y) { return avg_down(above.at[x], left.at[y]); });
}

inline void predict_avs_down_left(const AvsBlock& block, const AvsEdge& r, const AvsEdge& c) {
  const AvsSmoothed<2, 15> above(r), left(c);
  Mox8u line[15];
  for (int i = 0; i < 15; ++i) line[i] = static_cast<Mox8u>(avg_down(above.at[i], left.at[i]));
  block.fill([&](int x, int y) { return line[x + y]; });
}

inline void predict_avs_down_right(const AvsBlock& block, const AvsEdge& r, const AvsEdge& c) {
  Mox8u around[17];  // from c[8] by the corner to r[8]
  std::reverse_copy(c + 1, c + 9, around);
  std::copy(r, r + 9, around + 8);
  const AvsSmoothed<1, 15> line(around);
  block.fill([&](int x, int y) { return line.at[7 + x - y]; });
}

inline void predict_avs_plane(const AvsBlock& block, const AvsEdge& r, const AvsEdge& c) {
  const Mox32s a = 16 * (r[8] + c[8]), b = avs_slope(r), d = avs_slope(c);
  block.fill([=](int x, int y) { return clip8((a + (x - 3) * b + (y - 3) * d + 16) >> 5); });
}

/// Predicts the 8x8 block at dst from the neighbours that can be used; they suffice for the mode.
inline void predict_avs_intra(Mox8u* dst, std::ptrdiff_t step, Mox32u mode, Mox32u neighbours) {
  AvsEdge r, c;
  const bool above = neighbours & kAvsAbove, left = neighbours & kAvsLeft;
  if (above) load_avs_edge(r, dst - step, 1, neighbours & kAvsAboveRight);
  if (left) load_avs_edge(c, dst - 1, step, neighbours & kAvsBelowLeft);
  if (neighbours & kAvsCorner) r[0] = c[0] = dst[-step - 1];
  const AvsBlock block{dst, step};
  switch (mode) {
    case kAvsVertical: return block.fill([&](int x, int) { return r[x + 1]; });
    case kAvsHorizontal: return block.fill([&](int, int y) { return c[y + 1]; });
    case kAvsDC: return predict_avs_dc(block, above ? r : nullptr, left ? c : nullptr);
    case kAvsDownLeft: return predict_avs_down_left(block, r, c);
    case kAvsDownRight: return predict_avs_down_right(block, r, c);
    default: return predict_avs_plane(block, r, c);
  }
}

}  // namespace mox::px
