/// Portable sums of squared differences, against one reference or the mean of two.
#pragma once

#include "block/metrics_px.hpp"
#include "frame/table.hpp"

namespace mox {

/// Index of a position that is chosen by comparison: 0, 4 and 8 as half_pel_index has them, any other mcType is HH.
constexpr std::size_t compared_index(Mox32s mcType) {
  return mcType == 0 || mcType == 4 || mcType == 8 ? half_pel_index(mcType) : 3;
}
static_assert(compared_index(8) == 2 && compared_index(1) == 3 && compared_index(-4) == 3);

/// Index of two positions.
constexpr std::size_t two_positions_index(Mox32s mcType0, Mox32s mcType1) {
  return half_pel_index(mcType0) | half_pel_index(mcType1) << 2;
}
static_assert(two_positions_index(8, 4) == 6 && two_positions_index(-1, -1) == 15);

}  // namespace mox

namespace mox::px {

constexpr Mox32s square_of_difference(Mox32s a, Mox32s b) { return (a - b) * (a - b); }

template <int W, int H, HalfPel P>
MoxStatus ssd_block(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep, Mox32s* result) {
  *result = sum_over<W, H, P>(src, srcStep, ref, refStep, square_of_difference);
  return moxStsOk;
}

using TwoReferenceKernel = MoxStatus (*)(const Mox8u* src, Mox32s srcStep, const Mox8u* ref0, Mox32s ref0Step,
                                         const Mox8u* ref1, Mox32s ref1Step, Mox32s* result);

/// 16 x 16 samples against the mean of two predictions, rounded up.
template <HalfPel P0, HalfPel P1>
MoxStatus ssd_two_references(const Mox8u* src, Mox32s srcStep, const Mox8u* ref0, Mox32s ref0Step, const Mox8u* ref1,
                             Mox32s ref1Step, Mox32s* result) {
  Mox32s sum = 0;
  for (int y = 0; y < 16; ++y, src += srcStep, ref0 += ref0Step, ref1 += ref1Step) {
    for (int x = 0; x < 16; ++x) {
      const Mox32s mean = avg_up(predict<P0>(ref0 + x, ref0Step, 0), predict<P1>(ref1 + x, ref1Step, 0));
      sum += square_of_difference(src[x], mean);
    }
  }
  *result = sum;
  return moxStsOk;
}

/// [position]
template <int W, int H>
constexpr auto ssd_table() {
  return make_table<4>([]<std::size_t I>() -> DistanceKernel<Mox8u> { return &ssd_block<W, H, half_pel(I)>; });
}
inline constexpr auto ownvc_SSD8x8HP_8u32s_C1R = ssd_table<8, 8>();
inline constexpr auto ownvc_SSD4x4HP_8u32s_C1R = ssd_table<4, 4>();
inline constexpr auto kSsd16x16 = ssd_table<16, 16>();
static_assert(half_pel_index(12) + 1 == ownvc_SSD8x8HP_8u32s_C1R.size());
/// [position in reference 0 | position in reference 1 << 2]
inline constexpr auto kSsd16x16TwoReferences = make_table<16>(
    []<std::size_t I>() -> TwoReferenceKernel { return &ssd_two_references<half_pel(I & 3), half_pel(I >> 2)>; });
static_assert(two_positions_index(12, 12) + 1 == kSsd16x16TwoReferences.size());

}  // namespace mox::px
