/// The syntax of inter macroblocks: partitions, reference indices and vectors.
#include <algorithm>
#include <limits>

#include "moxdec/error.hpp"
#include "moxdec/h264/macroblock.hpp"

namespace moxdec::h264 {
namespace {

constexpr int part_width(int size, Split split) { return size >> (static_cast<int>(split) >> 1); }
constexpr int part_height(int size, Split split) { return size >> (static_cast<int>(split) & 1); }

/// Calls `work` with each part of a rectangle, in coding order.
template <class Work>
void for_each_part(const BlockRect& rect, Split split, Work work) {
  const int width = part_width(rect.width, split), height = part_height(rect.height, split);
  for (int y = 0; y < rect.height; y += height) {
    for (int x = 0; x < rect.width; x += width) work(BlockRect{rect.x + x, rect.y + y, width, height});
  }
}

/// Where the edges between the parts lie, as in MbInfo::motion_edges.
std::uint8_t find_motion_edges(const Macroblock& mb) {
  constexpr int kVertical[] = {0, 0, 1, 1}, kHorizontal[] = {0, 1, 0, 1};  // by split
  const auto edges = [&](Split split, int column, int row) {
    return kVertical[static_cast<int>(split)] << column | kHorizontal[static_cast<int>(split)] << (4 + row);
  };
  int found = edges(mb.split, 2, 2);
  if (mb.split == Split::kQuarters) {
    for (int i = 0; i < 4; ++i) found |= edges(mb.quarter_splits[i], i % 2 * 2 + 1, i / 2 * 2 + 1);
  }
  return static_cast<std::uint8_t>(found);
}

}  // namespace

void MacroblockReader::read_inter(Macroblock& mb, MbInfo& info, const Neighbours& neighbours, int type) {
  begin_inter(mb, info, neighbours);
  const bool is_p = slice_.type == SliceType::kP;
  bool allows_8x8 = slice_.sps->direct_8x8_inference;
  if (!is_p && type == 0) {
    derive_direct(mb);
  } else {
    const Parts parts = is_p ? read_parts_p(mb, type) : read_parts_b(mb, type);
    read_motion(parts, mb.split == Split::kRows || mb.split == Split::kColumns);
    allows_8x8 = allows_transform_8x8(mb, parts);
  }
  finish_inter(mb, info);
  const int pattern = read_pattern(true);
  if (slice_.pps->transform_8x8 && allows_8x8 && (pattern & 15) != 0) {
    mb.transform_8x8 = info.transform_8x8 = bits_.flag();
  }
  read_residual(mb, info, neighbours, pattern);
}

void MacroblockReader::skip(Macroblock& mb, std::int32_t slice_index) {
  MbInfo& info = picture_.at(mb.x, mb.y);
  info.field = mb.field;
  begin_inter(mb, info, find_neighbours(picture_, mb.x, mb.y, mb.field, slice_index));
  clear_residual(mb, info);
  if (slice_.type == SliceType::kP) {
    mb.split = Split::kNone;
    windows_[0].set_reference(kWholeMb, 0);
    windows_[0].set_vector(kWholeMb, windows_[0].predict_skip());
  } else {
    derive_direct(mb);
  }
  finish_inter(mb, info);
  info.luma_counts.fill(0);
  for (auto& counts : info.chroma_counts) counts.fill(0);
  mb.qp = qp_;
  info.qp = static_cast<std::int8_t>(qp_);
}

void MacroblockReader::begin_inter(Macroblock& mb, MbInfo& info, const Neighbours& neighbours) {
  info.kind = mb.kind = MbKind::kInter;
  info.intra_modes.fill(kPlainMode);
  part_ = picture_.part_of(mb.y, mb.field);
  const MbMotion *left = picture_.motion_of(neighbours.left_pair[0]), *top = picture_.motion_of(neighbours.top),
                 *top_left = picture_.motion_of(neighbours.top_left),
                 *top_right = picture_.motion_of(neighbours.top_right);
  const int lists = list_count(slice_.type);
  if (!picture_.mbaff) {
    for (int list = 0; list < lists; ++list) windows_[list].load(list, left, top, top_left, top_right);
    return;
  }
  const MbMotion* pair[] = {left, picture_.motion_of(neighbours.left_pair[1])};
  MotionWindow::Surroundings around = {{}, {}, top, top_right, mb.field};
  for (std::size_t y = 0; y < 4; ++y) {
    const LeftBlocks &beside = neighbours.left->beside[y], &corner = neighbours.left->corner[y];
    around.left[y] = {pair[beside.mb], beside.row};
    around.corner[y] = {y == 0 ? top_left : pair[corner.mb], corner.row};
  }
  for (int list = 0; list < lists; ++list) windows_[list].load(list, around);
}

/// Takes the motion over into the picture, where each reference must be there.
void MacroblockReader::finish_inter(Macroblock& mb, MbInfo& info) {
  MbMotion& motion = picture_.motion_at(mb.x, mb.y);
  motion.field = mb.field;
  const int lists = list_count(slice_.type);
  for (int list = 0; list < lists; ++list) {
    windows_[list].store(list, motion);
    const auto& references = motion.references[list];
    auto& pictures = motion.pictures[list];
    pictures.fill(picture_of(list, references[0]));
    if (mb.split == Split::kNone) continue;
    for (int i = 1; i < 4; ++i) pictures[i] = picture_of(list, references[i]);
  }
  if (lists == 1) {
    motion.vectors[1] = kNoMotion.vectors[1];
    motion.references[1] = kNoMotion.references[1];
    motion.pictures[1] = kNoMotion.pictures[1];
  }
  info.motion_edges = find_motion_edges(mb);
}

/// Only where a list is used, it has to be there.
std::int8_t MacroblockReader::picture_of(int list, int reference) const {
  if (reference < 0) return kNoReference;
  const std::int8_t id = inter_.lists.picture(list, reference, part_);
  require(id >= 0, "a reference picture is missing");
  return id;
}

MacroblockReader::Parts MacroblockReader::read_parts_p(Macroblock& mb, int type) {
  constexpr int kQuartersType = 3;
  mb.split = static_cast<Split>(std::min(type, kQuartersType));
  Parts parts;
  parts.first_references = type > kQuartersType;
  for_each_part(kWholeMb, mb.split, [&](const BlockRect& rect) { parts.part[parts.count++] = {rect, 1}; });
  if (type < kQuartersType) return parts;
  for (int i = 0; i < 4; ++i) {
    parts.part[i].split = mb.quarter_splits[i] = static_cast<Split>(bits_.ue(3, "sub_mb_type"));
  }
  return parts;
}

MacroblockReader::Parts MacroblockReader::read_parts_b(Macroblock& mb, int type) {
  const example::InterType& mb_type = example::kMbTypesB[type];
  mb.split = mb_type.split;
  Parts parts;
  for_each_part(kWholeMb, mb.split, [&](const BlockRect& rect) {
    parts.part[parts.count] = {rect, mb_type.lists[parts.count % 2]};
    ++parts.count;
  });
  if (mb.split != Split::kQuarters) return parts;
  unsigned direct = 0;
  for (int i = 0; i < 4; ++i) {
    const auto& quadrant = example::kQuadrantTypesB[bits_.ue(12, "sub_mb_type")];
    parts.part[i].lists = quadrant.lists[0];
    parts.part[i].split = mb.quarter_splits[i] = quadrant.split;
    if (quadrant.lists[0] == 0) direct |= 1u << i;
  }
  if (direct != 0) inter_.direct.derive(windows_, {mb.x, mb.y, part_}, direct, mb.quarter_splits);
  return parts;
}

/// Large blocks are predicted faster than small ones: quadrants with the same motion become one.
void MacroblockReader::derive_direct(Macroblock& mb) {
  inter_.direct.derive(windows_, {mb.x, mb.y, part_}, kAllQuadrants, mb.quarter_splits);
  const auto one = [](const MotionWindow& window) {
    const Motion first = window.at(0, 0);
    return window.at(2, 0) == first && window.at(0, 2) == first && window.at(2, 2) == first;
  };
  const bool whole_quadrants = std::ranges::count(mb.quarter_splits, Split::kNone) == 4;
  mb.split = whole_quadrants && one(windows_[0]) && one(windows_[1]) ? Split::kNone : Split::kQuarters;
}

void MacroblockReader::read_motion(const Parts& parts, bool halves) {
  const int lists = list_count(slice_.type);
  for (int list = 0; list < lists; ++list) {
    for (int i = 0; i < parts.count; ++i) {
      const Part& part = parts.part[i];
      if (part.lists == 0) continue;
      const bool used = part.lists >> list & 1;
      windows_[list].set_reference(part.rect, !used ? kNoReference : parts.first_references ? 0 : read_reference(list));
    }
  }
  for (int list = 0; list < lists; ++list) {
    for (int i = 0; i < parts.count; ++i) {
      const Part& part = parts.part[i];
      if (part.lists >> list & 1) {
        read_vectors(list, part, halves);
      } else if (part.lists != 0) {
        windows_[list].set_vector(part.rect, {});
      }
    }
  }
}

/// No part may be smaller than 8x8. Direct quadrants without inference count as if they were.
bool MacroblockReader::allows_transform_8x8(const Macroblock& mb, const Parts& parts) const {
  return mb.split != Split::kQuarters || std::ranges::all_of(parts.part, [&](const Part& part) {
           return part.split == Split::kNone && (part.lists != 0 || slice_.sps->direct_8x8_inference);
         });
}

int MacroblockReader::read_reference(int list) {
  const int count = inter_.lists.entries(list, part_);
  if (count == 1) return 0;
  if (count == 2) return bits_.flag() ? 0 : 1;
  return bits_.ue(static_cast<Mox32u>(count - 1), "ref_idx");
}

void MacroblockReader::read_vectors(int list, const Part& part, bool halves) {
  constexpr int kLow = std::numeric_limits<std::int16_t>::min(), kHigh = std::numeric_limits<std::int16_t>::max();
  MotionWindow& window = windows_[list];
  for_each_part(part.rect, part.split, [&](const BlockRect& rect) {
    const int reference = window.at(rect.x, rect.y).reference;
    const MotionVector predicted = halves ? window.predict_half(rect, reference) : window.predict(rect, reference);
    const int x = predicted.x + bits_.se(kLow, kHigh, "mvd"), y = predicted.y + bits_.se(kLow, kHigh, "mvd");
    require(x >= kLow && x <= kHigh && y >= kLow && y <= kHigh, "motion vector is out of range");
    window.set_vector(rect, {static_cast<std::int16_t>(x), static_cast<std::int16_t>(y)});
  });
}

}  // namespace moxdec::h264
