/// Tables of the motion difference kernels of this build's generation.
#pragma once

#include "block/motion_difference_px.hpp"
#include "block/motion_difference_vec.hpp"
#include "frame/generation.hpp"
#include "frame/table.hpp"

namespace mox {

template <int W, int H>
inline constexpr auto kDiff = make_table<16>([]<std::size_t I>() -> DiffKernel {
  return &active::get_diff<W, H, half_pel(I >> 2), (I & 1) != 0>;
});
template <int W, int H>
inline constexpr auto kDiffPair = make_table<16>([]<std::size_t I>() -> DiffPairKernel {
  return &active::get_diff_pair<W, H, half_pel(I), half_pel(I >> 2)>;
});
/// Index: position.
template <int H>
inline constexpr auto kDiffChannels = make_table<4>([]<std::size_t I>() -> DiffChannelsKernel {
  return &active::get_diff_channels<H, half_pel(I)>;
});
template <int H>
inline constexpr auto kDiffChannelsPair = make_table<16>([]<std::size_t I>() -> DiffChannelsPairKernel {
  return &active::get_diff_channels_pair<H, half_pel(I), half_pel(I >> 2)>;
});

/// One size each; index diff_index, with two references pair_index.
inline constexpr auto GetDiff16x16FnTbl_sse2 = kDiff<16, 16>;
inline constexpr auto GetDiff16x8FnTbl_sse2 = kDiff<16, 8>;
inline constexpr auto GetDiff8x16FnTbl_sse2 = kDiff<8, 16>;
inline constexpr auto GetDiff8x8FnTbl_sse2 = kDiff<8, 8>;
inline constexpr auto GetDiff8x4FnTbl_sse2 = kDiff<8, 4>;
inline constexpr auto GetDiff16x16BFnTbl_sse2 = kDiffPair<16, 16>;
inline constexpr auto GetDiff16x8BFnTbl_sse2 = kDiffPair<16, 8>;
inline constexpr auto GetDiff8x16BFnTbl_sse2 = kDiffPair<8, 16>;
inline constexpr auto GetDiff8x8BFnTbl_sse2 = kDiffPair<8, 8>;
inline constexpr auto GetDiff8x4BFnTbl_sse2 = kDiffPair<8, 4>;

/// 8 samples of each of two interleaved channels; index half_pel_index, with two references pair_index.
inline constexpr auto GetDiff8x8FnTblNV12_sse41 = kDiffChannels<8>;
inline constexpr auto GetDiff8x4FnTblNV12_sse41 = kDiffChannels<4>;
inline constexpr auto GetDiff8x8BFnTblNV12_sse41 = kDiffChannelsPair<8>;
inline constexpr auto GetDiff8x4BFnTblNV12_sse41 = kDiffChannelsPair<4>;

}  // namespace mox
