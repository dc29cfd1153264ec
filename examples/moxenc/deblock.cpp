#include "moxenc/deblock.hpp"

#include <algorithm>
#include <cstdlib>

#include "moxenc/residual.hpp"

namespace moxenc {
namespace {

/// bS of the four edges of one direction, four values each; and the same in chroma's terms: edges 0 and 2 count.
using Strengths = std::array<Mox8u, 16>;

struct Direction {
  int across_x, across_y;  ///< one block back over an edge
  MoxStatus (*luma)(Mox8u*, Mox32s, const Mox8u*, const Mox8u*, const Mox8u*, const Mox8u*);
  MoxStatus (*chroma)(Mox8u*, Mox32s, const Mox8u*, const Mox8u*, const Mox8u*, const Mox8u*);
};
constexpr Direction kVertical = {1, 0, moxiFilterDeblockingLuma_VerEdge_H264_8u_C1IR,
                                 moxiFilterDeblockingChroma_VerEdge_H264_8u_C1IR};
constexpr Direction kHorizontal = {0, 1, moxiFilterDeblockingLuma_HorEdge_H264_8u_C1IR,
                                   moxiFilterDeblockingChroma_HorEdge_H264_8u_C1IR};

/// bS at the edge between a 4x4 block of the picture and the one before it, both of inter macroblocks.
Mox8u strength_between(const CodingState& state, int x, int y, int before_x, int before_y) {
  if ((state.luma_counts.at(x, y) | state.luma_counts.at(before_x, before_y)) != 0) return 2;
  const Vector a = state.motion.at(x / 2, y / 2).vector, b = state.motion.at(before_x / 2, before_y / 2).vector;
  return std::abs(a.x - b.x) >= 4 || std::abs(a.y - b.y) >= 4;
}

/// Returns whether any edge is to be filtered.
bool find_strengths(const CodingState& state, int mb_x, int mb_y, const Direction& direction, bool outer,
                    Strengths& strengths) {
  strengths.fill(0);
  const bool intra = state.info_at(mb_x, mb_y).intra;
  const bool outer_intra =
      outer && (intra || state.info_at(mb_x - direction.across_x, mb_y - direction.across_y).intra);
  if (outer_intra) std::fill_n(strengths.begin(), 4, Mox8u{4});
  if (intra) {
    std::fill(strengths.begin() + 4, strengths.end(), Mox8u{3});
    return true;
  }
  for (int edge = outer && !outer_intra ? 0 : 1; edge < 4; ++edge) {
    for (int i = 0; i < 4; ++i) {
      const int x = 4 * mb_x + (direction.across_x ? edge : i), y = 4 * mb_y + (direction.across_x ? i : edge);
      strengths[static_cast<std::size_t>(4 * edge + i)] =
          strength_between(state, x, y, x - direction.across_x, y - direction.across_y);
    }
  }
  return std::ranges::any_of(strengths, [](Mox8u strength) { return strength != 0; });
}

/// Thresholds for the outer edge and the inner ones.
struct Thresholds {
  std::array<Mox8u, 2> alpha, beta;
  std::array<Mox8u, 16> tc0{};

  Thresholds(int outer_qp, int inner_qp, const Strengths& strengths, std::size_t edge_stride) {
    const std::size_t qp[2] = {static_cast<std::size_t>(outer_qp), static_cast<std::size_t>(inner_qp)};
    for (std::size_t i = 0; i < 2; ++i)
      alpha[i] = example::kDeblockAlpha[qp[i]], beta[i] = example::kDeblockBeta[qp[i]];
    for (std::size_t edge = 0; edge < 4 / edge_stride; ++edge) {
      for (std::size_t i = 0; i < 4; ++i) {
        const Mox8u strength = strengths[4 * edge * edge_stride + i];
        if (strength - 1u < 3u) tc0[4 * edge + i] = example::kDeblockTc0[strength - 1u][qp[edge > 0]];
      }
    }
  }
};

void filter(const Planes& planes, const CodingState& state, int mb_x, int mb_y, const Direction& direction) {
  const bool outer = direction.across_x ? mb_x > 0 : mb_y > 0;
  Strengths strengths;
  if (!find_strengths(state, mb_x, mb_y, direction, outer, strengths)) return;
  const int qp = state.info_at(mb_x, mb_y).qp;
  const int outer_qp = outer ? state.info_at(mb_x - direction.across_x, mb_y - direction.across_y).qp : qp;
  const Thresholds luma((outer_qp + qp + 1) >> 1, qp, strengths, 1);
  expect_ok(direction.luma(planes.at[0], planes.step[0], luma.alpha.data(), luma.beta.data(), luma.tc0.data(),
                           strengths.data()));
  const Thresholds chroma((chroma_qp(outer_qp) + chroma_qp(qp) + 1) >> 1, chroma_qp(qp), strengths, 2);
  for (std::size_t plane = 1; plane < 3; ++plane) {
    expect_ok(direction.chroma(planes.at[plane], planes.step[plane], chroma.alpha.data(), chroma.beta.data(),
                               chroma.tc0.data(), strengths.data()));
  }
}

}  // namespace

void deblock(const moxdec::Frame& picture, const CodingState& state) {
  for (int y = 0; y < state.rows; ++y) {
    for (int x = 0; x < state.columns; ++x) {
      const Planes planes = macroblock_at(picture, x, y);
      filter(planes, state, x, y, kVertical);
      filter(planes, state, x, y, kHorizontal);
    }
  }
}

}  // namespace moxenc
