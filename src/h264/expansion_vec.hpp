/// Vector kernels of plane expansion and of the mean of two H.264 predictions.
#pragma once

#include <cstddef>

#include "frame/generation.hpp"
#include "frame/table.hpp"
#include "h264/block_pair_vec.hpp"
#include "h264/expansion_px.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// Whole vectors and a last one that overlaps them; sides narrower than a vector are filled as elsewhere.
inline MoxStatus expand_plane(const ExpandedRows& at) {
  constexpr int B = simd::kBlocks, kBytes = 16 * B;
  if (at.side < kBytes) return px::expand_plane(at);
  return px::expand_rows(at, [](Mox8u value, Mox8u* first, Mox32s count) {
    const auto all = simd::splat<simd::u8, B>(value);
    for (Mox32s x = 0; x < count - kBytes; x += kBytes) store_row(all, first + x);
    store_row(all, first + (count - kBytes));
  });
}

/// A width and height of 0 stand for those of `size`.
template <int W, int H>
MoxStatus interpolate_block_h264_mmp(const BlockPair<Mox8u>& at, MoxiSize size) {
  return average_block<W, H>(at, size);
}

/// [average_index]. Kernels of fixed size write that size and no other.
inline constexpr auto interpolate_block_h264_function_table = make_table<25>([]<std::size_t I>() {
  constexpr MoxiSize kSize = px::fixed_average_size(I);
  return &interpolate_block_h264_mmp<kSize.width, kSize.height>;
});

}  // namespace mox::vec
