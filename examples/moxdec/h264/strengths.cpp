#include "moxdec/h264/strengths.hpp"

namespace moxdec::h264 {
namespace {

/// Of an intra macroblock.
constexpr Strengths intra_strengths(EdgeStrengths outer, bool transform_8x8) {
  const EdgeStrengths odd = transform_8x8 ? 0 : 3 * kEachBlock;
  return {outer * kEachBlock, odd, 3 * kEachBlock, odd};
}

/// Whether two blocks are predicted from other pictures or with vectors far from each other: by a full sample or more
/// of the frame, of which a field has every other line, so `near` quarters are less than that in height. It is of no
/// importance which list a picture comes from. Vectors of lists that are not used are 0, so these compare as equal.
bool moves_otherwise(const MbMotion& p, int p_block, const MbMotion& q, int q_block, int near) {
  const int p_quadrant = quadrant_of(p_block), q_quadrant = quadrant_of(q_block);
  const int p0 = p.pictures[0][p_quadrant], p1 = p.pictures[1][p_quadrant];
  const int q0 = q.pictures[0][q_quadrant], q1 = q.pictures[1][q_quadrant];
  const auto far = [&](int p_list, int q_list) {
    const MotionVector a = p.vectors[p_list][p_block], b = q.vectors[q_list][q_block];
    return (static_cast<unsigned>(a.x - b.x + 3) > 6) | (static_cast<unsigned>(a.y - b.y + near) > 2u * near);
  };
  if ((p1 & q1) == kNoReference) return (p0 != q0) | far(0, 0);
  const bool straight = p0 == q0 && p1 == q1, crossed = p0 == q1 && p1 == q0;
  if (straight && !far(0, 0) && !far(1, 1)) return false;
  return !crossed || far(0, 1) || far(1, 0);
}

bool is_coded(const MbInfo& p, int p_block, const MbInfo& q, int q_block) {
  return (p.coded_blocks >> p_block | q.coded_blocks >> q_block) & 1;
}

/// Between frame and field macroblocks every edge is filtered.
unsigned mixed_strength(const MbInfo& p, int p_block, const MbInfo& q, int q_block, unsigned intra) {
  if (!is_inter(p) || !is_inter(q)) return intra;
  return is_coded(p, p_block, q, q_block) ? 2 : 1;
}

/// Of an outer edge beside an intra macroblock: fields are not filtered so strongly in height.
EdgeStrengths intra_strength(const MbInfo& mb, const MbInfo& outer, EdgeDirection direction) {
  return direction == EdgeDirection::kHorizontal && (mb.field || outer.field) ? 3 : 4;
}

/// 1 for so many blocks from the first one on.
constexpr EdgeStrengths first_blocks(int count) { return kEachBlock >> 8 * (4 - count); }

/// 1 for the blocks of row `row` whose bits are set.
constexpr EdgeStrengths row_of(unsigned blocks, int row) { return (blocks >> 4 * row & 15) * 0x204081 & kEachBlock; }
static_assert(row_of(0x0930, 1) == 0x00000101 && row_of(0x0930, 2) == 0x01000001);

/// Bits of 4x4 blocks, rows to columns.
constexpr unsigned transposed(unsigned blocks) {
  const unsigned pairs = (blocks ^ blocks >> 3) & 0x0A0A;
  blocks ^= pairs ^ pairs << 3;
  const unsigned quadrants = (blocks ^ blocks >> 6) & 0x00CC;
  return blocks ^ quadrants ^ quadrants << 6;
}
static_assert(transposed(0x8421) == 0x8421 && transposed(0x000F) == 0x1111 && transposed(0x0842) == 0x4210);

/// Blocks along the edges of one direction come in lines, one behind the other: columns or rows.
template <EdgeDirection kDirection>
struct Lines {
  static constexpr bool kVertical = kDirection == EdgeDirection::kVertical;
  static constexpr int kLineStep = kVertical ? 1 : 4, kBlockStep = kVertical ? 4 : 1;

  /// Blocks with coefficients, 4 bits a line.
  static unsigned coded(const MbInfo& mb) { return kVertical ? transposed(mb.coded_blocks) : mb.coded_blocks; }
  /// Where motion changes from line to line, and inside of the lines.
  static unsigned edges(const MbInfo& mb) { return (kVertical ? mb.motion_edges : mb.motion_edges >> 4) & 0b1110; }
  static unsigned edges_across(const MbInfo& mb) {
    return (kVertical ? mb.motion_edges >> 4 : mb.motion_edges) & 0b1110;
  }

  /// Where motion changes between two lines. It is compared once for as many blocks as share it, `changes` tells.
  static EdgeStrengths moved(const MbMotion& p, int p_line, const MbMotion& q, int q_line, unsigned changes, int near) {
    const int run = changes == 0 ? 4 : changes == 0b0100 ? 2 : 1;
    EdgeStrengths moved = 0;
    for (int i = 0; i < 4; i += run) {
      const int at = i * kBlockStep;
      const bool moves = moves_otherwise(p, p_line * kLineStep + at, q, q_line * kLineStep + at, near);
      moved |= (moves ? first_blocks(run) : 0) << 8 * i;
    }
    return moved;
  }
};

EdgeStrengths with_coefficients(EdgeStrengths coded, EdgeStrengths moved) { return 2 * coded | (moved & ~coded); }

/// Between two inter macroblocks.
template <class Lines>
EdgeStrengths outer_strengths(const Picture& picture, const MbInfo& mb, const MbInfo& outer, int near) {
  const EdgeStrengths coded = row_of(Lines::coded(outer) >> 12 | Lines::coded(mb), 0);
  if (coded == kEachBlock) return 2 * coded;
  const unsigned changes = Lines::edges_across(outer) | Lines::edges_across(mb);
  return with_coefficients(coded,
                           Lines::moved(*picture.motion_of(&outer), 3, *picture.motion_of(&mb), 0, changes, near));
}

/// With that of the outer edge.
template <class Lines>
Strengths with_inner_strengths(EdgeStrengths outer, const Picture& picture, const MbInfo& mb, int near) {
  const unsigned edges = Lines::edges(mb);
  if (mb.coded_blocks == 0 && edges == 0) return {outer, 0, 0, 0};
  const unsigned coded_lines = Lines::coded(mb), on_either_side = coded_lines | coded_lines << 4;
  const MbMotion& motion = *picture.motion_of(&mb);
  const auto strengths_of = [&](int edge) {
    const EdgeStrengths coded = row_of(on_either_side, edge);
    if (!(edges >> edge & 1) || coded == kEachBlock) return 2 * coded;
    return with_coefficients(coded, Lines::moved(motion, edge - 1, motion, edge, Lines::edges_across(mb), near));
  };
  if (mb.transform_8x8) return {outer, 0, strengths_of(2), 0};
  return {outer, strengths_of(1), strengths_of(2), strengths_of(3)};
}

template <EdgeDirection kDirection>
Strengths find_inter_strengths(const Picture& picture, const MbInfo& mb, const MbInfo* outer) {
  const int near = mb.field ? 1 : 3;
  EdgeStrengths found = 0;
  if (outer && !is_inter(*outer)) {
    found = intra_strength(mb, *outer, kDirection) * kEachBlock;
  } else if (outer && outer->field != mb.field) {
    found = mixed_top_strengths(mb, *outer);
  } else if (outer) {
    found = outer_strengths<Lines<kDirection>>(picture, mb, *outer, near);
  }
  return with_inner_strengths<Lines<kDirection>>(found, picture, mb, near);
}

}  // namespace

Strengths find_strengths(const Picture& picture, const MbInfo& mb, const MbInfo* outer, EdgeDirection direction) {
  if (!is_inter(mb)) return intra_strengths(outer ? intra_strength(mb, *outer, direction) : 0, mb.transform_8x8);
  return direction == EdgeDirection::kVertical ? find_inter_strengths<EdgeDirection::kVertical>(picture, mb, outer)
                                               : find_inter_strengths<EdgeDirection::kHorizontal>(picture, mb, outer);
}

Strengths with_422_rows(const MbInfo& mb, const Strengths& strengths) {
  if (!mb.transform_8x8) return strengths;
  const auto row = [&](int edge) { return is_inter(mb) ? 2 * row_of(mb.coded_blocks, edge) : 3 * kEachBlock; };
  return {strengths[0], row(1), strengths[2], row(3)};
}

EdgeStrengths mixed_left_strengths(const MbInfo& mb, const MbInfo& left, const std::array<BlockRows, 4>& rows) {
  EdgeStrengths strengths = 0;
  for (int i = 0; i < 4; ++i) strengths |= mixed_strength(left, 4 * rows[i].other + 3, mb, 4 * rows[i].own, 4) << 8 * i;
  return strengths;
}

EdgeStrengths mixed_top_strengths(const MbInfo& mb, const MbInfo& above) {
  EdgeStrengths strengths = 0;
  for (int x = 0; x < 4; ++x) strengths |= mixed_strength(above, 12 + x, mb, x, 3) << 8 * x;
  return strengths;
}

}  // namespace moxdec::h264
