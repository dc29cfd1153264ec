/// Vector sums of absolute differences: half-pel and full-pel, of two channels, and of the blocks of a macroblock. Each
/// kernel has a form for bytes and one for words.
#pragma once

#include <type_traits>

#include "block/half_pel_vec.hpp"
#include "block/metrics_sad_px.hpp"
#include "block/metrics_words_vec.hpp"

namespace mox::vec {

/// Blocks of a vector: two strips pay for 16 columns, not where rows share a block already.
template <int W>
inline constexpr int kSadBlocks = W == 16 ? simd::kBlocks : 1;

template <int W, int H, HalfPel P, class T>
MoxStatus sad_block(const T* src, Mox32s srcStep, const T* ref, Mox32s refStep, Mox32s* result) {
  if constexpr (sizeof(T) == 2 && W * H > 32 * simd::kBlocks) {
    return sad_of_words<W, H, P>(src, srcStep, ref, refStep, result);
  } else if constexpr (sizeof(T) == 2) {
    return sad_of_any_words<W, H, P>(src, srcStep, ref, refStep, result);
  } else {
    using R = Rows<W, kSadBlocks<W>>;
    R s(src, srcStep, H), r(ref, refStep, H);
    Sampler<R, P> sample(r);
    auto sum = simd::zero<simd::s32, R::B>();
    for (int i = 0; i < H / R::kRows; ++i, s.down()) sum = sum + sad(s.at(0), sample(r));
    *result = total_of_sad(sum);
    return moxStsOk;
  }
}

/// Rows of 16 bytes in which two channels alternate: `at` counts samples of a channel.
template <int Blocks>
class PairRows : public Rows<16, Blocks> {
 public:
  using Rows<16, Blocks>::Rows;
  MOX_INLINE simd::u8<Blocks> at(int dx) const { return Rows<16, Blocks>::at(2 * dx); }
};

template <HalfPel P>
MoxStatus sad_two_channels(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep, Mox32s* first,
                           Mox32s* second) {
  constexpr int B = simd::kBlocks;
  static constexpr Mox8u kSplit[16] = {0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15};
  const auto split = simd::table<simd::u8, B>(kSplit);
  PairRows<B> s(src, srcStep, 8), r(ref, refStep, 8);
  Sampler<PairRows<B>, P> sample(r);
  auto sum = simd::zero<simd::s32, B>();
  for (int i = 0; i < 8 / B; ++i, s.down()) sum = sum + sad(lookup(s.at(0), split), lookup(sample(r), split));
  auto both = simd::part<0>(sum);
  if constexpr (B == 2) both = both + simd::part<1>(sum);
  *first = simd::element<0>(both);
  *second = simd::element<2>(both);
  return moxStsOk;
}

/// Four rows of 16: sums of the 4 x 4 blocks.
MOX_INLINE simd::s32<1> sad_row_of_4x4(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep) {
  auto left = simd::zero<simd::s32, 1>(), right = left;
  for (int y = 0; y < 4; y += 2, src += 2 * std::ptrdiff_t{srcStep}, ref += 2 * std::ptrdiff_t{refStep}) {
    using simd::load_row;
    const auto s0 = as<simd::s32>(load_row<simd::u8, 1>(src)), s1 = as<simd::s32>(load_row<simd::u8, 1>(src + srcStep));
    const auto r0 = as<simd::s32>(load_row<simd::u8, 1>(ref)), r1 = as<simd::s32>(load_row<simd::u8, 1>(ref + refStep));
    left = left + sad(as<simd::u8>(lo32(s0, s1)), as<simd::u8>(lo32(r0, r1)));
    right = right + sad(as<simd::u8>(hi32(s0, s1)), as<simd::u8>(hi32(r0, r1)));
  }
  return even32(left, right);
}

/// Eight rows of 16: sums of the two 8 x 8 blocks in elements 0 and 2.
MOX_INLINE simd::s32<1> sad_row_of_8x8(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep) {
  auto sum = simd::zero<simd::s32, 1>();
  for (int y = 0; y < 8; ++y, src += srcStep, ref += refStep) {
    sum = sum + sad(simd::load_row<simd::u8, 1>(src), simd::load_row<simd::u8, 1>(ref));
  }
  return sum;
}

template <int N, class T, class Sum>
MoxStatus sad_of_blocks(const T* src, Mox32s srcStep, const T* ref, Mox32s refStep, Sum* sums) {
  const auto source = [=](int y) { return step_bytes(src, std::ptrdiff_t{y} * srcStep); };
  const auto reference = [=](int y) { return step_bytes(ref, std::ptrdiff_t{y} * refStep); };
  if constexpr (sizeof(T) == 2 && N == 8) {
    const auto top = quarter_sums<8>(source(0), srcStep, reference(0), refStep);
    const auto bottom = quarter_sums<8>(source(8), srcStep, reference(8), refStep);
    store_row(even32(top, bottom) + odd32(top, bottom), sums);
  } else if constexpr (sizeof(T) == 2) {
    for (int y = 0; y < 16; y += 4) {
      store_row(quarter_sums<4>(source(y), srcStep, reference(y), refStep), sums + y);
    }
  } else if constexpr (N == 8) {
    const auto all = even32(sad_row_of_8x8(source(0), srcStep, reference(0), refStep),
                            sad_row_of_8x8(source(8), srcStep, reference(8), refStep));
    simd::raw_store8(sums, packus(all, all).r);
  } else {
    for (int y = 0; y < 16; y += 8) {
      const auto upper = sad_row_of_4x4(source(y), srcStep, reference(y), refStep);
      const auto lower = sad_row_of_4x4(source(y + 4), srcStep, reference(y + 4), refStep);
      store_row(packus(upper, lower), sums + y);
    }
  }
  return moxStsOk;
}

/// [position]
template <int W, int H, class T>
constexpr auto sad_table() {
  return make_table<4>([]<std::size_t I>() -> px::DistanceKernel<T> { return &sad_block<W, H, half_pel(I), T>; });
}
inline constexpr auto ownvc_SAD16x16HP_8u32s_C1R = sad_table<16, 16, Mox8u>();
inline constexpr auto ownvc_SAD16x8HP_8u32s_C1R = sad_table<16, 8, Mox8u>();
inline constexpr auto ownvc_SAD8x8HP_8u32s_C1R = sad_table<8, 8, Mox8u>();
inline constexpr auto ownvc_SAD16x16HP_16u32s_C1R = sad_table<16, 16, Mox16u>();
inline constexpr auto ownvc_SAD8x8HP_16u32s_C1R = sad_table<8, 8, Mox16u>();
inline constexpr auto ownvc_SAD4x4HP_16u32s_C1R = sad_table<4, 4, Mox16u>();
inline constexpr auto impl_SAD8x8_8u32s_C2R_table_ssse3 =
    make_table<4>([]<std::size_t I>() -> px::TwoChannelKernel { return &sad_two_channels<half_pel(I)>; });
static_assert(half_pel_index(12) + 1 == ownvc_SAD16x16HP_8u32s_C1R.size());

}  // namespace mox::vec
