/// Portable sums of absolute differences: half-pel and full-pel, of two channels, and of the blocks of a macroblock.
#pragma once

#include "block/metrics_px.hpp"
#include "frame/table.hpp"

namespace mox::px {

/// 8-bit differences always fit 16 bits, so one rule serves both widths.
template <int W, int H, HalfPel P, int kDistance = 1, class T>
Mox32s absolute_sum(const T* src, Mox32s srcStep, const T* ref, Mox32s refStep) {
  return sum_over<W, H, P, kDistance>(src, srcStep, ref, refStep, magnitude16);
}

template <int W, int H, HalfPel P, class T>
MoxStatus sad_block(const T* src, Mox32s srcStep, const T* ref, Mox32s refStep, Mox32s* result) {
  *result = absolute_sum<W, H, P>(src, srcStep, ref, refStep);
  return moxStsOk;
}

using TwoChannelKernel = MoxStatus (*)(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep,
                                       Mox32s* first, Mox32s* second);

/// 8 x 8 samples of each of two interleaved channels.
template <HalfPel P>
MoxStatus sad_two_channels(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep, Mox32s* first,
                           Mox32s* second) {
  *first = absolute_sum<8, 8, P, 2>(src, srcStep, ref, refStep);
  *second = absolute_sum<8, 8, P, 2>(src + 1, srcStep, ref + 1, refStep);
  return moxStsOk;
}

/// The SAD of each block of N x N samples of a macroblock, in raster order.
template <int N, class T, class Sum>
MoxStatus sad_of_blocks(const T* src, Mox32s srcStep, const T* ref, Mox32s refStep, Sum* sums) {
  for (int y = 0; y < 16; y += N) {
    for (int x = 0; x < 16; x += N) {
      *sums++ = static_cast<Sum>(
          absolute_sum<N, N, HalfPel::kFull>(step_bytes(src, std::ptrdiff_t{y} * srcStep) + x, srcStep,
                                             step_bytes(ref, std::ptrdiff_t{y} * refStep) + x, refStep));
    }
  }
  return moxStsOk;
}

/// [position]; all tables below have this index, half_pel_index of the mcType.
template <int W, int H, class T>
constexpr auto sad_table() {
  return make_table<4>([]<std::size_t I>() -> DistanceKernel<T> { return &sad_block<W, H, half_pel(I), T>; });
}
inline constexpr auto ownvc_SAD16x16HP_8u32s_C1R = sad_table<16, 16, Mox8u>();
inline constexpr auto ownvc_SAD16x8HP_8u32s_C1R = sad_table<16, 8, Mox8u>();
inline constexpr auto ownvc_SAD8x8HP_8u32s_C1R = sad_table<8, 8, Mox8u>();
inline constexpr auto ownvc_SAD16x16HP_16u32s_C1R = sad_table<16, 16, Mox16u>();
inline constexpr auto ownvc_SAD8x8HP_16u32s_C1R = sad_table<8, 8, Mox16u>();
inline constexpr auto ownvc_SAD4x4HP_16u32s_C1R = sad_table<4, 4, Mox16u>();
inline constexpr auto impl_SAD8x8_8u32s_C2R_table_ssse3 =
    make_table<4>([]<std::size_t I>() -> TwoChannelKernel { return &sad_two_channels<half_pel(I)>; });
static_assert(half_pel_index(12) + 1 == ownvc_SAD16x16HP_8u32s_C1R.size());

}  // namespace mox::px
