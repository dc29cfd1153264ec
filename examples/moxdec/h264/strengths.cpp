#include "moxdec/h264/strengths.hpp"

#include <algorithm>
#include <cstring>

namespace moxdec::h264 {
namespace {

/// From one inner edge to the next: the 8x8 transform has no edges at 4 and 12 samples. Those of 4:2:0 chroma lie where
/// luma has those at 0 and 8.
constexpr int edge_step(bool transform_8x8) { return transform_8x8 ? 2 : 1; }

constexpr Strengths intra_strengths(int outer, bool transform_8x8) {
  Strengths strengths{};
  std::fill_n(strengths.begin(), 4, static_cast<std::uint8_t>(outer));
  for (int edge = edge_step(transform_8x8); edge < 4; edge += edge_step(transform_8x8)) {
    std::fill_n(strengths.begin() + 4 * edge, 4, std::uint8_t{3});
  }
  return strengths;
}
constexpr std::array<std::array<Strengths, 3>, 2> kIntraStrengths = {  // [8x8 transform][outer edge: 0, 3, 4]
    {{intra_strengths(0, false), intra_strengths(3, false), intra_strengths(4, false)},
     {intra_strengths(0, true), intra_strengths(3, true), intra_strengths(4, true)}}};

/// A full sample or more of the frame, of which a field has every other line. `Near` quarters are less than that in
/// height.
template <int Near>
bool is_far(MotionVector a, MotionVector b) {
  return static_cast<unsigned>(a.x - b.x + 3) > 6 || static_cast<unsigned>(a.y - b.y + Near) > 2 * Near;
}
constexpr int kNearInFrame = 3, kNearInField = 1;

/// Whether two blocks are predicted from other pictures or with vectors far from each other. It is of no importance
/// which list a picture comes from. Vectors of lists that are not used are 0, so these compare as equal.
template <int Near>
bool moves_otherwise(const MbMotion& p, int p_block, const MbMotion& q, int q_block) {
  const int p_quadrant = quadrant_of(p_block), q_quadrant = quadrant_of(q_block);
  const int p0 = p.pictures[0][p_quadrant], p1 = p.pictures[1][p_quadrant];
  const int q0 = q.pictures[0][q_quadrant], q1 = q.pictures[1][q_quadrant];
  const auto far = [&](int p_list, int q_list) {
    return is_far<Near>(p.vectors[p_list][p_block], q.vectors[q_list][q_block]);
  };
  const bool straight = p0 == q0 && p1 == q1, crossed = p0 == q1 && p1 == q0;
  if (!straight && !crossed) return true;
  return !(straight && !far(0, 0) && !far(1, 1)) && !(crossed && !far(0, 1) && !far(1, 0));
}

/// A macroblock with its motion.
struct View {
  View(const Picture& picture, const MbInfo& mb) : info(mb), motion(*picture.motion_of(&mb)) {}
  const MbInfo& info;
  const MbMotion& motion;
};

bool is_coded(const MbInfo& p, int p_block, const MbInfo& q, int q_block) {
  return (p.coded_blocks >> p_block | q.coded_blocks >> q_block) & 1;
}

/// Between frame and field macroblocks every edge is filtered.
std::uint8_t mixed_strength(const MbInfo& p, int p_block, const MbInfo& q, int q_block, std::uint8_t intra) {
  if (!is_inter(p) || !is_inter(q)) return intra;
  return is_coded(p, p_block, q, q_block) ? 2 : 1;
}

/// Of an outer edge beside an intra macroblock: fields are not filtered so strongly in height.
std::uint8_t intra_strength(const MbInfo& mb, const MbInfo& outer, EdgeDirection direction) {
  return direction == EdgeDirection::kHorizontal && (mb.field || outer.field) ? 3 : 4;
}

/// Of the edge between two rows or columns of blocks; `step` leads from one block to the next along the edge.
template <int Near>
void find_edge(const View& p, int p_block, const View& q, int q_block, int step, bool motion, std::uint8_t* out) {
  for (int i = 0; i < 4; ++i, p_block += step, q_block += step) {
    if (is_coded(p.info, p_block, q.info, q_block)) {
      out[i] = 2;
    } else {
      out[i] = motion && moves_otherwise<Near>(p.motion, p_block, q.motion, q_block) ? 1 : 0;
    }
  }
}

}  // namespace

bool find_strengths(const Picture& picture, const MbInfo& mb, const MbInfo* outer, EdgeDirection direction,
                    Strengths& strengths) {
  if (!is_inter(mb)) {
    strengths = kIntraStrengths[mb.transform_8x8][outer ? intra_strength(mb, *outer, direction) - 2u : 0];
    return true;
  }
  strengths.fill(0);
  const View view(picture, mb);
  const auto edge_strengths = mb.field ? find_edge<kNearInField> : find_edge<kNearInFrame>;
  const bool vertical = direction == EdgeDirection::kVertical;
  const int step = vertical ? 4 : 1, across = vertical ? 1 : 4;
  if (outer && !is_inter(*outer)) {
    std::fill_n(strengths.begin(), 4, intra_strength(mb, *outer, direction));
  } else if (outer && outer->field != mb.field) {
    std::ranges::copy(mixed_top_strengths(mb, *outer), strengths.begin());
  } else if (outer) {
    edge_strengths(View(picture, *outer), 3 * across, view, 0, step, true, strengths.data());
  }
  const int motion_edges = vertical ? mb.motion_edges : mb.motion_edges >> 4;
  const int edges = edge_step(mb.transform_8x8);
  for (int edge = edges; edge < 4; edge += edges) {
    const bool motion = motion_edges >> edge & 1;
    if (!motion && mb.coded_blocks == 0) continue;
    edge_strengths(view, (edge - 1) * across, view, edge * across, step, motion, &strengths[4 * edge]);
  }
  return std::ranges::any_of(strengths, [](std::uint8_t strength) { return strength != 0; });
}

EdgeStrengths mixed_left_strengths(const MbInfo& mb, const MbInfo& left, const std::array<BlockRows, 4>& rows) {
  EdgeStrengths strengths;
  std::ranges::transform(rows, strengths.begin(), [&](const BlockRows& at) {
    return mixed_strength(left, 4 * at.other + 3, mb, 4 * at.own, 4);
  });
  return strengths;
}

EdgeStrengths mixed_top_strengths(const MbInfo& mb, const MbInfo& above) {
  EdgeStrengths strengths;
  for (int x = 0; x < 4; ++x) strengths[x] = mixed_strength(above, 12 + x, mb, x, 3);
  return strengths;
}

}  // namespace moxdec::h264
