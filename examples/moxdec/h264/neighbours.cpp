#include "moxdec/h264/neighbours.hpp"

namespace moxdec::h264 {
namespace {

/// At the left of a macroblock that is of the same kind as its neighbours, in pairs the upper or the lower one.
constexpr LeftSide same_kind(std::uint8_t mb) {
  return {{{{mb, 0}, {mb, 1}, {mb, 2}, {mb, 3}}},
          {{{0, 3}, {mb, 0}, {mb, 1}, {mb, 2}}},
          {{static_cast<std::uint8_t>(1 << mb), static_cast<std::uint8_t>(1 << mb)}}};
}
/// A frame macroblock beside a field pair: its lines alternate between both fields, and cover half of each.
constexpr LeftSide beside_fields(std::uint8_t first_row, std::uint8_t corner_row) {
  const std::uint8_t second_row = first_row + 1;
  return {{{{0, first_row}, {0, first_row}, {0, second_row}, {0, second_row}}},
          {{{0, corner_row}, {1, first_row}, {1, first_row}, {1, second_row}}},
          {{3, 3}}};
}
constexpr LeftSide kSameKind[2] = {same_kind(0), same_kind(1)};
constexpr LeftSide kBesideFields[2] = {beside_fields(0, 3), beside_fields(2, 1)};
/// A field macroblock beside a frame pair: every other line of both macroblocks.
constexpr LeftSide kBesideFrames = {{{{0, 0}, {0, 2}, {1, 0}, {1, 2}}}, {{{0, 3}, {0, 1}, {0, 3}, {1, 1}}}, {{1, 2}}};

class Finder {
 public:
  Finder(const Picture& picture, int x, int y, std::int32_t slice)
      : mb_(&picture.at(x, y)), row_(picture.row_stride()), slice_(slice), x_(x), width_(picture.mb_width) {}

  /// The macroblock so many columns and rows away.
  const MbInfo* at(int columns, int rows) const {
    if (x_ + columns < 0 || x_ + columns >= width_) return nullptr;
    const MbInfo* other = mb_ + rows * row_ + columns;
    return other->slice == slice_ ? other : nullptr;
  }

 private:
  const MbInfo* mb_;
  std::ptrdiff_t row_;
  std::int32_t slice_;
  int x_, width_;
};

/// In a frame of pairs. All neighbours lie where the macroblock's lines would go on, in steps of its own kind.
Neighbours find_in_pairs(const Picture& picture, int x, int y, bool field, std::int32_t slice) {
  const int bottom = y & 1;
  const Finder pair(picture, x, y - bottom, slice);  // the upper macroblock of the pair
  Neighbours found;
  found.left = &kSameKind[bottom];
  found.left_pair = {pair.at(-1, 0), pair.at(-1, 1)};
  const bool left_fields = found.left_pair[0] && found.left_pair[0]->field;
  if (found.left_pair[0] && left_fields != field) found.left = field ? &kBesideFrames : &kBesideFields[bottom];
  if (bottom && !field) {
    found.top = &picture.at(x, y - 1);
    found.top_left = found.left_pair[left_fields ? 1 : 0];
    return found;
  }
  if (y < 2) return found;
  // The last line above is in the lower macroblock, but for upper fields, which have fields of their own above them.
  const auto above = [&](int columns) {
    const MbInfo* lower = pair.at(columns, -1);
    return lower && field && !bottom && lower->field ? pair.at(columns, -2) : lower;
  };
  found.top = above(0);
  found.top_left = above(-1);
  found.top_right = above(1);
  return found;
}

}  // namespace

Neighbours find_neighbours(const Picture& picture, int x, int y, bool field, std::int32_t slice) {
  if (picture.mbaff) return find_in_pairs(picture, x, y, field, slice);
  const Finder mb(picture, x, y, slice);
  Neighbours found;
  found.left = &kSameKind[0];
  found.left_pair[0] = found.left_pair[1] = mb.at(-1, 0);
  if (y == 0) return found;
  found.top = mb.at(0, -1);
  found.top_left = mb.at(-1, -1);
  found.top_right = mb.at(1, -1);
  return found;
}

bool infer_field_pair(const Picture& picture, int x, int y, std::int32_t slice) {
  const Finder pair(picture, x, y & ~1, slice);
  if (const MbInfo* left = pair.at(-1, 0)) return left->field;
  const MbInfo* above = y > 1 ? pair.at(0, -1) : nullptr;
  return above && above->field;
}

}  // namespace moxdec::h264
