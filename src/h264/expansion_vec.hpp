/// Vector kernels of the mean of two H.264 predictions.
#pragma once

#include <cstddef>

#include "frame/generation.hpp"
#include "frame/table.hpp"
#include "h264/block_pair_vec.hpp"
#include "h264/expansion_px.hpp"

namespace mox::vec {

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
