/// Portable kernels of AVS deblocking. Samples across an edge are p2 p1 p0 | q0 q1 q2.
#pragma once

#include <cstddef>
#include <cstdlib>

#include "frame/arithmetic.hpp"

namespace mox {

struct AvsThresholds {
  Mox32s alpha, beta, limit;
};

}  // namespace mox

namespace mox::px {

/// The samples on one side of an edge, from the edge on, as pointers so that either side is the near one.
struct AvsSide {
  Mox8u* first;
  std::ptrdiff_t away;  ///< to the next sample away from the edge
  constexpr Mox32s at(int i) const { return first[i * away]; }
  void set(int i, Mox32s value) const { first[i * away] = clip8(value); }
};

/// New samples of a side at strength 2: o0 is the other side's first sample.
template <bool kLuma>
void smooth_avs_side(const AvsSide& side, Mox32s o0, bool flat, const AvsThresholds& t) {
  const Mox32s s0 = side.at(0), s1 = side.at(1);
  const Mox32s weak = (2 * s1 + s0 + o0 + 2) >> 2;
  if (!flat || std::abs(side.at(2) - s0) >= t.beta) return side.set(0, weak);
  side.set(0, (s1 + 2 * s0 + o0 + 2) >> 2);
  if (kLuma) side.set(1, weak);
}

/// Deblocks a line whose q0 is at q; the samples lie `across` apart.
template <bool kLuma>
void deblock_avs_line(Mox8u* q, std::ptrdiff_t across, int strength, const AvsThresholds& t) {
  const AvsSide P{q - across, -across}, Q{q, across};
  const Mox32s p0 = P.at(0), p1 = P.at(1), p2 = P.at(2), q0 = Q.at(0), q1 = Q.at(1), q2 = Q.at(2);
  const Mox32s gap = std::abs(p0 - q0);
  if (gap >= t.alpha || std::abs(p1 - p0) >= t.beta || std::abs(q1 - q0) >= t.beta) return;
  if (strength > 1) {
    const bool flat = gap < (t.alpha >> 2) + 2;
    smooth_avs_side<kLuma>(P, q0, flat, t);
    smooth_avs_side<kLuma>(Q, p0, flat, t);
    return;
  }
  const auto limited = [&](Mox32s eighths) { return clip((eighths + 4) >> 3, -t.limit, t.limit); };
  const Mox32s d = limited(3 * (q0 - p0) + p1 - q1);
  P.set(0, p0 + d);
  Q.set(0, q0 - d);
  if (kLuma && std::abs(p2 - p0) < t.beta) P.set(1, p1 + limited(3 * (P.at(0) - p1) + p2 - Q.at(0)));
  if (kLuma && std::abs(q2 - q0) < t.beta) Q.set(1, q1 - limited(3 * (q1 - Q.at(0)) + P.at(0) - q2));
}

/// Deblocks one edge of two halves, kLines lines each; lines lie `along` apart.
template <bool kLuma>
void deblock_avs_edge(Mox8u* q, std::ptrdiff_t across, std::ptrdiff_t along, const Mox8u* bS, const AvsThresholds& t) {
  constexpr int kLines = kLuma ? 8 : 4;
  for (int i = 0; i < 2 * kLines; ++i) {
    if (bS[i / kLines] != 0) deblock_avs_line<kLuma>(q + i * along, across, bS[i / kLines], t);
  }
}

template <bool kLuma>
void deblock_avs_vertical(Mox8u* q, std::ptrdiff_t step, const Mox8u* bS, const AvsThresholds& t) {
  deblock_avs_edge<kLuma>(q, 1, step, bS, t);
}
template <bool kLuma>
void deblock_avs_horizontal(Mox8u* q, std::ptrdiff_t step, const Mox8u* bS, const AvsThresholds& t) {
  deblock_avs_edge<kLuma>(q, step, 1, bS, t);
}

}  // namespace mox::px
