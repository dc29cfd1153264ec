#include "moxdec/h264/strengths.hpp"

#include <algorithm>
#include <cstring>

namespace moxdec::h264 {
namespace {

/// From one inner edge to the next: the 8x8 transform has no edges at 4 and 12 samples. Those of 4:2:0 chroma lie where
/// luma has those at 0 and 8.
constexpr int edge_step(bool transform_8x8) { return transform_8x8 ? 2 : 1; }

constexpr Strengths intra_strengths(bool outer, bool transform_8x8) {
  Strengths strengths{};
  std::fill_n(strengths.begin(), 4, outer ? std::uint8_t{4} : std::uint8_t{0});
  for (int edge = edge_step(transform_8x8); edge < 4; edge += edge_step(transform_8x8)) {
    std::fill_n(strengths.begin() + 4 * edge, 4, std::uint8_t{3});
  }
  return strengths;
}
constexpr std::array<std::array<Strengths, 2>, 2> kIntraStrengths = {  // [8x8 transform][outer edge]
    {{intra_strengths(false, false), intra_strengths(true, false)},
     {intra_strengths(false, true), intra_strengths(true, true)}}};

/// A full sample or more.
bool is_far(MotionVector a, MotionVector b) {
  return static_cast<unsigned>(a.x - b.x + 3) > 6 || static_cast<unsigned>(a.y - b.y + 3) > 6;
}

/// Whether two blocks are predicted from other pictures or with vectors far from each other. It is of no importance
/// which list a picture comes from. Vectors of lists that are not used are 0, so these compare as equal.
bool moves_otherwise(const MbMotion& p, int p_block, const MbMotion& q, int q_block) {
  const int p_quadrant = quadrant_of(p_block), q_quadrant = quadrant_of(q_block);
  const int p0 = p.picture_slots[0][p_quadrant], p1 = p.picture_slots[1][p_quadrant];
  const int q0 = q.picture_slots[0][q_quadrant], q1 = q.picture_slots[1][q_quadrant];
  const auto far = [&](int p_list, int q_list) {
    return is_far(p.vectors[p_list][p_block], q.vectors[q_list][q_block]);
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

/// Of the edge between two rows or columns of blocks; `step` leads from one block to the next along the edge.
void find_edge(const View& p, int p_block, const View& q, int q_block, int step, bool motion, std::uint8_t* out) {
  for (int i = 0; i < 4; ++i, p_block += step, q_block += step) {
    const bool coded = (p.info.coded_blocks >> p_block | q.info.coded_blocks >> q_block) & 1;
    out[i] = coded ? 2 : motion && moves_otherwise(p.motion, p_block, q.motion, q_block) ? 1 : 0;
  }
}

}  // namespace

bool find_strengths(const Picture& picture, const MbInfo& mb, const MbInfo* outer, EdgeDirection direction,
                    Strengths& strengths) {
  if (!is_inter(mb)) {
    strengths = kIntraStrengths[mb.transform_8x8][outer ? 1 : 0];
    return true;
  }
  strengths.fill(0);
  const View view(picture, mb);
  const bool vertical = direction == EdgeDirection::kVertical;
  const int step = vertical ? 4 : 1, across = vertical ? 1 : 4;
  if (outer && !is_inter(*outer)) {
    std::fill_n(strengths.begin(), 4, std::uint8_t{4});
  } else if (outer) {
    find_edge(View(picture, *outer), 3 * across, view, 0, step, true, strengths.data());
  }
  const int motion_edges = vertical ? mb.motion_edges : mb.motion_edges >> 4;
  const int edges = edge_step(mb.transform_8x8);
  for (int edge = edges; edge < 4; edge += edges) {
    const bool motion = motion_edges >> edge & 1;
    if (!motion && mb.coded_blocks == 0) continue;
    find_edge(view, (edge - 1) * across, view, edge * across, step, motion, &strengths[4 * edge]);
  }
  return std::ranges::any_of(strengths, [](std::uint8_t strength) { return strength != 0; });
}

}  // namespace moxdec::h264
