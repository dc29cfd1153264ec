/// Tables of the motion compensation kernels of this build's generation.
#pragma once

#include "block/motion_px.hpp"
#include "block/motion_vec.hpp"
#include "frame/generation.hpp"
#include "frame/table.hpp"

namespace mox {

template <int W, int kDistance>
inline constexpr auto kMc = make_table<8>([]<std::size_t I>() -> McKernel {
  return &active::mc<W, kDistance, half_pel(I >> 1), mc_rounding(half_pel(I >> 1), I)>;
});
template <int W, int kDistance>
inline constexpr auto kMcPair = make_table<32>([]<std::size_t I>() -> McPairKernel {
  constexpr HalfPel kF = half_pel(I >> 1), kB = half_pel(I >> 3);
  return &active::mc_pair<W, kDistance, kF, kB, mc_rounding(kF, kB, I)>;
});
template <int W, int H>
inline constexpr auto kMcSmall = make_table<16>([]<std::size_t I>() -> McSmallKernel {
  return &active::mc_small<W, H, half_pel(I >> 2)>;
});
template <int W, int H>
inline constexpr auto kMcSmallPair = make_table<16>([]<std::size_t I>() -> McSmallPairKernel {
  return &active::mc_small_pair<W, H, half_pel(I), half_pel(I >> 2)>;
});

/// Any height of a width; index mc_index. UV: two interleaved channels as one block of 16 bytes.
inline constexpr auto MC16xHFunctionTable_sse3 = kMc<16, 1>;
inline constexpr auto MC16xHBFunctionTable_sse3 = kMcPair<16, 1>;
inline constexpr auto MC16xHUVFunctionTable_sse3 = kMc<16, 2>;
inline constexpr auto MC16xHUVBFunctionTable_sse3 = kMcPair<16, 2>;
inline constexpr auto MC8xHFunctionTable_sse2 = kMc<8, 1>;
inline constexpr auto MC8xHBFunctionTable_sse2 = kMcPair<8, 1>;
inline constexpr auto MC8xHFunctionNV12Table_p8y8 = make_table<8>([]<std::size_t I>() -> McChannelsKernel {
  return &active::mc_channels<half_pel(I >> 1), mc_rounding(half_pel(I >> 1), I)>;
});
inline constexpr auto MC8xHBFunctionNV12Table_p8y8 = make_table<32>([]<std::size_t I>() -> McChannelsPairKernel {
  constexpr HalfPel kF = half_pel(I >> 1), kB = half_pel(I >> 3);
  return &active::mc_channels_pair<kF, kB, mc_rounding(kF, kB, I)>;
});

/// One size each; index mc_small_index, with two references pair_index.
inline constexpr auto MC4x8FnTbl = kMcSmall<4, 8>;
inline constexpr auto MC4x4FnTbl = kMcSmall<4, 4>;
inline constexpr auto MC4x2FnTbl = kMcSmall<4, 2>;
inline constexpr auto MC2x4FnTbl = kMcSmall<2, 4>;
inline constexpr auto MC2x2FnTbl = kMcSmall<2, 2>;
inline constexpr auto MC4x8BFnTbl = kMcSmallPair<4, 8>;
inline constexpr auto MC4x4BFnTbl = kMcSmallPair<4, 4>;
inline constexpr auto MC4x2BFnTbl = kMcSmallPair<4, 2>;
inline constexpr auto MC2x4BFnTbl = kMcSmallPair<2, 4>;
inline constexpr auto MC2x2BFnTbl = kMcSmallPair<2, 2>;

}  // namespace mox
