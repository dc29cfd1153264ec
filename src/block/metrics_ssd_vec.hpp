/// Vector sums of squared differences, against one reference or the mean of two.
#pragma once

#include "block/half_pel_vec.hpp"
#include "block/metrics_ssd_px.hpp"

namespace mox::vec {

/// Squares of the differences of bytes, summed by fours.
template <int B>
MOX_INLINE simd::s32<B> squares(simd::u8<B> a, simd::u8<B> b) {
  const auto minus = simd::as<simd::u8>(simd::splat<simd::u16, B>(0xFF01));         // 1 and -1 in turn
  const auto lower = maddubs(lo8(a, b), minus), upper = maddubs(hi8(a, b), minus);  // a - b
  return madd(lower, lower) + madd(upper, upper);
}

template <int W, int H, HalfPel P>
MoxStatus ssd_block(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep, Mox32s* result) {
  using R = Rows<W, W == 16 ? simd::kBlocks : 1>;
  R s(src, srcStep, H), r(ref, refStep, H);
  Sampler<R, P> sample(r);
  auto sum = simd::zero<simd::s32, R::B>();
  for (int i = 0; i < H / R::kRows; ++i, s.down()) sum = sum + squares(s.at(0), sample(r));
  *result = total(sum);
  return moxStsOk;
}

template <HalfPel P0, HalfPel P1>
MoxStatus ssd_two_references(const Mox8u* src, Mox32s srcStep, const Mox8u* ref0, Mox32s ref0Step, const Mox8u* ref1,
                             Mox32s ref1Step, Mox32s* result) {
  using R = Rows<16, simd::kBlocks>;
  R s(src, srcStep, 16), r0(ref0, ref0Step, 16), r1(ref1, ref1Step, 16);
  Sampler<R, P0> sample0(r0);
  Sampler<R, P1> sample1(r1);
  auto sum = simd::zero<simd::s32, R::B>();
  for (int i = 0; i < 16 / R::kRows; ++i, s.down()) sum = sum + squares(s.at(0), avg(sample0(r0), sample1(r1)));
  *result = total(sum);
  return moxStsOk;
}

/// [position]
template <int W, int H>
constexpr auto ssd_table() {
  return make_table<4>([]<std::size_t I>() -> px::DistanceKernel<Mox8u> { return &ssd_block<W, H, half_pel(I)>; });
}
inline constexpr auto ownvc_SSD8x8HP_8u32s_C1R = ssd_table<8, 8>();
inline constexpr auto ownvc_SSD4x4HP_8u32s_C1R = ssd_table<4, 4>();
inline constexpr auto kSsd16x16 = ssd_table<16, 16>();
static_assert(half_pel_index(12) + 1 == ownvc_SSD8x8HP_8u32s_C1R.size());
/// [position in reference 0 | position in reference 1 << 2]
inline constexpr auto kSsd16x16TwoReferences = make_table<16>(
    []<std::size_t I>() -> px::TwoReferenceKernel { return &ssd_two_references<half_pel(I & 3), half_pel(I >> 2)>; });
static_assert(two_positions_index(12, 12) + 1 == kSsd16x16TwoReferences.size());

}  // namespace mox::vec
