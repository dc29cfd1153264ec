/// Portable kernels of plane expansion and of block averages.
#pragma once

#include <array>
#include <cstddef>

#include "frame/bytes.hpp"
#include "frame/table.hpp"
#include "h264/block_pair.hpp"
#include "moxvc/types.h"

namespace mox {

/// The rows of a frame or of one of its fields, and what is to be added around them. A field is a plane of twice the
/// step.
struct ExpandedRows {
  Mox8u* first;  ///< first sample of the first row
  std::ptrdiff_t step;
  Mox32s width;
  std::ptrdiff_t rows;
  Mox32s side;                  ///< samples to add left and right
  std::ptrdiff_t above, below;  ///< rows to add

  Mox8u* row(std::ptrdiff_t y) const { return first + y * step; }
};

enum class ExpandMode { kFrame, kTopField, kBottomField };

/// The height is even: row -1 belongs to the bottom field, the row below the last one to the top field.
constexpr ExpandedRows expanded_rows(Mox8u* plane, Mox32s width, Mox32s height, std::ptrdiff_t step, Mox32s expandSize,
                                     ExpandMode mode) {
  const std::ptrdiff_t more = (std::ptrdiff_t{expandSize} + 1) >> 1, less = expandSize >> 1;
  switch (mode) {
    case ExpandMode::kTopField: return {plane, 2 * step, width, height / 2, expandSize, less, more};
    case ExpandMode::kBottomField: return {plane + step, 2 * step, width, height / 2, expandSize, more, less};
    case ExpandMode::kFrame: break;
  }
  return {plane, step, width, height, expandSize, expandSize, expandSize};
}

/// Index of the average kernels. Sides are 2 to 16; an even side that has no kernel of its own is found at the next
/// lower one that has, or among the kernels of any size.
constexpr int average_index(Mox32s width, Mox32s height) { return (height >> 2) + 5 * (width >> 2); }
static_assert(average_index(2, 2) == 0 && average_index(16, 8) == 22 && average_index(6, 6) == average_index(4, 4));

}  // namespace mox

namespace mox::px {

/// Corners come from the order: rows below before the sides, rows above after them. set(value, first, count) fills a
/// side of a row.
template <class Set>
MoxStatus expand_rows(const ExpandedRows& at, Set set) {
  for (std::ptrdiff_t y = 0; y < at.below; ++y) moxsCopy_8u(at.row(at.rows - 1), at.row(at.rows + y), at.width);
  for (std::ptrdiff_t y = 0; y < at.rows + at.below; ++y) {
    Mox8u* const row = at.row(y);
    set(row[0], row - at.side, at.side);
    set(row[at.width - 1], row + at.width, at.side);
  }
  for (std::ptrdiff_t y = 1; y <= at.above; ++y) {
    moxsCopy_8u(at.row(0) - at.side, at.row(-y) - at.side, at.width + 2 * at.side);
  }
  return moxStsOk;
}

inline MoxStatus expand_plane(const ExpandedRows& at) { return expand_rows(at, moxsSet_8u); }

/// A width and height of 0 stand for those of `size`.
template <int W, int H>
MoxStatus interpolate_block_h264_mmp(const BlockPair<Mox8u>& at, MoxiSize size) {
  return average_block<W, H>(at, size);
}

/// The size of the fixed kernel at an average_index, zero where there is none.
constexpr MoxiSize fixed_average_size(std::size_t index) {
  constexpr std::array kSide = {2, 4, 8, 0, 16};
  const int width = kSide[index / 5], height = kSide[index % 5];
  return width > 0 && height > 0 && is_partition(width, height) ? MoxiSize{width, height} : MoxiSize{0, 0};
}

/// [average_index]. Kernels of fixed size write that size and no other.
inline constexpr auto interpolate_block_h264_function_table = make_table<25>([]<std::size_t I>() {
  constexpr MoxiSize kSize = fixed_average_size(I);
  return &interpolate_block_h264_mmp<kSize.width, kSize.height>;
});

}  // namespace mox::px
