/// Portable kernels of H.264 weighted prediction: one formula, and a maker of its numbers for each form.
#pragma once

#include <array>

#include "frame/arithmetic.hpp"
#include "frame/table.hpp"
#include "h264/block_pair.hpp"
#include "moxvc/types.h"

namespace mox {

/// A result is ((a * weight1 + b * weight2 + rounding) >> shift) + offset, limited to 0..max. Weights and offsets are
/// any 32-bit numbers; products and sums wrap.
struct Weighting {
  Mox32s weight1, weight2;
  Mox32s rounding;
  int shift;  ///< 0 to 31
  Mox32s offset;
  Mox32s max;
};

/// One shift with its half as rounding, for one block (weight2 0) or for two. A shift of 32 rounds by 1 << 31, though
/// it shifts by nothing.
constexpr Weighting plain_weighting(Mox32u shift, Mox32s weight1, Mox32s weight2, Mox32s offset, Mox32s max) {
  const Mox32s rounding = shift == 0 ? 0 : shl32(1, static_cast<int>((shift - 1) & 31));
  return {weight1, weight2, rounding, static_cast<int>(shift & 31), offset, max};
}

/// Explicit weights and offsets of two blocks.
constexpr Weighting explicit_weighting(Mox32u log2Wd, Mox32s weight1, Mox32s offset1, Mox32s weight2, Mox32s offset2,
                                       Mox32s max) {
  const Mox32s rounding = shl32(1, static_cast<int>(log2Wd & 31));
  return {weight1, weight2, rounding, static_cast<int>((log2Wd + 1) & 31), add32(add32(offset1, offset2), 1) >> 1, max};
}

/// Weights that follow from picture distances; 32 and 32 give the mean.
constexpr Weighting implicit_weighting(Mox32s weight1, Mox32s weight2, Mox32s max) {
  return {weight1, weight2, 32, 6, 0, max};
}

/// Index of a block side in tables by size; 0 for lengths that have none.
inline constexpr std::array<Mox8u, 17> tblIndex = {0, 0, 0, 0, 1, 0, 0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 3};
constexpr int bidir_index(MoxiSize size) { return tblIndex[size.width] * 4 + tblIndex[size.height]; }
static_assert(bidir_index({2, 2}) == 0 && bidir_index({2, 16}) == 3 && bidir_index({16, 8}) == 14);

}  // namespace mox

namespace mox::px {

/// The result from the sum of products.
template <class T>
constexpr T weighted(const Weighting& by, Mox32s sum) {
  return static_cast<T>(clip(add32(add32(sum, by.rounding) >> by.shift, by.offset), 0, by.max));
}

/// Two blocks.
template <int W, int H, class T>
MoxStatus weight_pair(const BlockPair<T>& at, const Weighting& by, MoxiSize size) {
  return combine<W, H>(at, size, [by](Mox32s a, Mox32s b) {
    return weighted<T>(by, add32(mul32(a, by.weight1), mul32(b, by.weight2)));
  });
}

/// One block, in place.
template <int W, class T>
MoxStatus weight_single(T* block, std::ptrdiff_t step, const Weighting& by, MoxiSize size) {
  return combine<W, 0>(BlockPair<T>{block, step, block, step, block, step}, size,
                       [by](Mox32s a, Mox32s) { return weighted<T>(by, mul32(a, by.weight1)); });
}

/// Two 8-bit blocks. A width and height of 0 stand for those of `size`, whatever they are.
template <int W, int H>
MoxStatus bidir_weight_block_H264_P3P1(const BlockPair<Mox8u>& at, const Weighting& by, MoxiSize size) {
  return weight_pair<W, H>(at, by, size);
}

/// [bidir_index], for sides of 2, 4, 8 and 16.
inline constexpr auto bidir_weight_block_H264_8u_P3P1 = make_table<16>([]<std::size_t I>() {
  constexpr int kWidth = 2 << I / 4, kHeight = 2 << I % 4;
  constexpr bool kFixed = is_partition(kWidth, kHeight);
  return &bidir_weight_block_H264_P3P1 < kFixed ? kWidth : 0, kFixed ? kHeight : 0 > ;
});

/// [width], any height.
inline constexpr auto unidir_weight_8u =
    make_table<17>([]<std::size_t I>() { return &weight_single<fixed_width(I), Mox8u>; });
inline constexpr auto unidir_weight_16u =
    make_table<17>([]<std::size_t I>() { return &weight_single<fixed_width(I), Mox16u>; });
inline constexpr auto bidir_weight_16u =
    make_table<17>([]<std::size_t I>() { return &weight_pair<fixed_width(I), 0, Mox16u>; });
inline constexpr auto bidir_average_16u =
    make_table<17>([]<std::size_t I>() { return &average_block<fixed_width(I), 0, Mox16u>; });

/// Blocks of the sizes in the tables.
inline MoxStatus weight_blocks(const BlockPair<Mox8u>& at, Weighting by, MoxiSize size) {
  return bidir_weight_block_H264_8u_P3P1[bidir_index(size)](at, by, size);
}
inline MoxStatus weight_blocks(const BlockPair<Mox16u>& at, Weighting by, MoxiSize size) {
  return bidir_weight_16u[size.width](at, by, size);
}
inline MoxStatus weight_blocks_of_any_size(const BlockPair<Mox8u>& at, Weighting by, MoxiSize size) {
  return bidir_weight_block_H264_P3P1<0, 0>(at, by, size);
}
inline MoxStatus weight_block(Mox8u* block, std::ptrdiff_t step, Weighting by, MoxiSize size) {
  return unidir_weight_8u[size.width](block, step, by, size);
}
inline MoxStatus weight_block(Mox16u* block, std::ptrdiff_t step, Weighting by, MoxiSize size) {
  return unidir_weight_16u[size.width](block, step, by, size);
}

}  // namespace mox::px
