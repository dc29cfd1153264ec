/// Portable kernels of the H.263 filters across block edges. _H kernels filter a horizontal edge, _V a vertical one.
///
/// `edge` is the first sample behind the edge. Samples across the edge are named A, B | C, D.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>

#include "frame/arithmetic.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// [quantiser]
inline constexpr std::array<Mox32s, 32> h263_Deblock_QPStrength = {
    0, 1, 1, 2, 2, 3, 3, 4, 4, 4, 5, 5, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10, 10, 11, 11, 11, 12, 12, 12};

/// r follows the size of the step up to the strength, and falls back to 0 at twice the strength.
constexpr Mox32s ramp(Mox32s size, Mox32s strength) { return std::max(0, size - std::max(0, 2 * (size - strength))); }

/// Deblocks the position whose C is at `c`; limit(|d|) gives r.
template <class Limit>
void deblock_position(Mox8u* c, std::ptrdiff_t across, Limit limit) {
  const Mox32s A = c[-2 * across], B = c[-across], C = c[0], D = c[across];
  const Mox32s d = (4 * C - 4 * B + A - D) / 8;
  const Mox32s r = limit(std::abs(d));
  const Mox32s s = d < 0 ? -r : r;
  const Mox32s t = clip((A - D) / 4, -(r >> 1), r >> 1);
  c[-2 * across] = clip8(A - t);
  c[-across] = clip8(B + s);
  c[0] = clip8(C - s);
  c[across] = clip8(D + t);
}

inline void smooth_position(Mox8u* c, std::ptrdiff_t across) {
  const Mox32s B = c[-across], C = c[0];
  c[-across] = static_cast<Mox8u>((3 * B + C + 2) >> 2);
  c[0] = static_cast<Mox8u>((B + 3 * C + 2) >> 2);
}

/// Calls filter(C) for each position of an edge; they lie `along` bytes apart.
template <class Filter>
MoxStatus filter_edge(Mox8u* edge, std::ptrdiff_t along, int positions, Filter filter) {
  for (int i = 0; i < positions; ++i) filter(edge + i * along);
  return moxStsOk;
}

inline MoxStatus deblock8(Mox8u* edge, std::ptrdiff_t across, std::ptrdiff_t along, Mox32s strength) {
  const auto limit = [=](Mox32s size) { return ramp(size, strength); };
  return filter_edge(edge, along, 8, [=](Mox8u* c) { deblock_position(c, across, limit); });
}
inline MoxStatus deblock16(Mox8u* edge, std::ptrdiff_t across, std::ptrdiff_t along) {
  const auto limit = [](Mox32s size) { return size; };
  return filter_edge(edge, along, 16, [=](Mox8u* c) { deblock_position(c, across, limit); });
}
inline MoxStatus smooth16(Mox8u* edge, std::ptrdiff_t across, std::ptrdiff_t along) {
  return filter_edge(edge, along, 16, [=](Mox8u* c) { smooth_position(c, across); });
}

inline MoxStatus ownFilterDeblocking8x8_H263_H(Mox8u* edge, Mox32s step, Mox32s strength) {
  return deblock8(edge, step, 1, strength);
}
inline MoxStatus ownFilterDeblocking8x8_H263_V(Mox8u* edge, Mox32s step, Mox32s strength) {
  return deblock8(edge, 1, step, strength);
}
inline MoxStatus ownFilterDeblocking16x16_H263_H(Mox8u* edge, Mox32s step) { return deblock16(edge, step, 1); }
inline MoxStatus ownFilterDeblocking16x16_H263_V(Mox8u* edge, Mox32s step) { return deblock16(edge, 1, step); }
inline MoxStatus ownFilterBB16x16_H263_H(Mox8u* edge, Mox32s step) { return smooth16(edge, step, 1); }
inline MoxStatus ownFilterBB16x16_H263_V(Mox8u* edge, Mox32s step) { return smooth16(edge, 1, step); }

}  // namespace mox::px
