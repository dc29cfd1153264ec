/// The neighbours of a macroblock in its slice, and which of their blocks lie beside its own. In a frame whose pairs of
/// macroblocks are coded as frames or as fields, one by one, a pair's rows belong to its two macroblocks in another way
/// than those of the pair beside it.
#pragma once

#include <array>
#include <cstdint>

#include "moxdec/h264/picture.hpp"

namespace moxdec::h264 {

/// A row of 4x4 blocks in one of the two macroblocks at the left.
struct LeftBlocks {
  std::uint8_t mb;
  std::uint8_t row;
};

/// What lies at the left of the four rows of blocks of a macroblock.
struct LeftSide {
  std::array<LeftBlocks, 4> beside;  // of each row's first line of samples
  std::array<LeftBlocks, 4> corner;  // of the line above it; the first one tells the row in Neighbours::top_left
  std::array<std::uint8_t, 2> used;  // which macroblocks the upper and the lower half touch, as bits
};

/// Null where a neighbour is not there or belongs to another slice.
struct Neighbours {
  const MbInfo* left_at(int row) const { return left_pair[left->beside[static_cast<std::size_t>(row)].mb]; }
  int left_row(int row) const { return left->beside[static_cast<std::size_t>(row)].row; }

  const LeftSide* left = nullptr;
  std::array<const MbInfo*, 2> left_pair = {};  // twice the same where pictures have no pairs
  const MbInfo* top = nullptr;
  const MbInfo* top_left = nullptr;
  const MbInfo* top_right = nullptr;
};

/// Of the macroblock at (x, y), which is a field macroblock or not.
Neighbours find_neighbours(const Picture& picture, int x, int y, bool field, std::int32_t slice);

/// Whether the pair at (x, y), of which nothing is written, is a field pair: as its left or its upper neighbour.
bool infer_field_pair(const Picture& picture, int x, int y, std::int32_t slice);

}  // namespace moxdec::h264
