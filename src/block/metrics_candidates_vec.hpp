/// Vector SADs of several candidates: eight at a time.
#pragma once

#include "block/metrics_candidates_px.hpp"
#include "frame/generation.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// 16 x 16: each candidate against each row by itself. Reads columns 0 to 22.
MOX_INLINE simd::u16<1> eight_sums_16x16(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep) {
  using simd::load_row;
  simd::s32<1> sum[8];
  for (auto& s : sum) s = simd::zero<simd::s32, 1>();
  for (int y = 0; y < 16; ++y, src += srcStep, ref += refStep) {
    const auto row = load_row<simd::u8, 1>(src);
    for (int k = 0; k < 8; ++k) sum[k] = sum[k] + sad(row, load_row<simd::u8, 1>(ref + k));
  }
  const auto half = [&](int k) {  // two sums of each of four candidates, below 32768
    return as<simd::s16>(packus(even32(sum[k], sum[k + 1]), even32(sum[k + 2], sum[k + 3])));
  };
  return as<simd::u16>(hadd(half(0), half(4)));
}

/// 8 x 8. Reads columns 0 to 15.
MOX_INLINE simd::u16<1> eight_sums_8x8(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep) {
  auto sum = simd::zero<simd::u16, 1>();
  for (int y = 0; y < 8; ++y, src += srcStep, ref += refStep) {
    const simd::u8<1> row{simd::raw8(src)}, candidates = simd::load_row<simd::u8, 1>(ref);
    sum = sum + simd::sliding_sad<0>(candidates, row) + simd::sliding_sad<5>(candidates, row);
  }
  return sum;
}

/// 4 x 4. Reads columns 0 to 11.
MOX_INLINE simd::u16<1> eight_sums_4x4(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep) {
  auto sum = simd::zero<simd::u16, 1>();
  for (int y = 0; y < 4; ++y, src += srcStep, ref += refStep) {
    sum = sum + simd::sliding_sad<0>(simd::load12(ref), simd::u8<1>{simd::raw4(src)});
  }
  return sum;
}

/// 2 x 2. Reads columns 0 to 8. A vector holds both rows.
MOX_INLINE simd::u16<1> eight_sums_2x2(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep) {
  static constexpr Mox8u kLeft[16] = {0, 0, 0, 0, 0, 0, 0, 0, 2, 2, 2, 2, 2, 2, 2, 2};
  static constexpr Mox8u kRight[16] = {1, 1, 1, 1, 1, 1, 1, 1, 3, 3, 3, 3, 3, 3, 3, 3};
  const auto source = simd::load_rows<2, 2>(src, srcStep);
  const auto distances = [&](const Mox8u* p, const Mox8u(&places)[16]) {
    const auto a = simd::load_rows<8, 2>(p, refStep), b = lookup(source, simd::table<simd::u8, 1>(places));
    return subs(a, b) | subs(b, a);
  };
  const auto left = distances(ref, kLeft), right = distances(ref + 1, kRight);
  const auto ones = simd::splat<simd::u8, 1>(1);
  return as<simd::u16>(maddubs(lo8(left, right), ones) + maddubs(hi8(left, right), ones));
}

template <int N>
MoxStatus sad_candidates(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep, Mox16u* sums,
                         Mox32s count) {
  constexpr auto kEightSums = N == 16  ? eight_sums_16x16
                              : N == 8 ? eight_sums_8x8
                              : N == 4 ? eight_sums_4x4
                                       : eight_sums_2x2;
  for (Mox32s k = 0; k < count; k += kCandidateGroup) {
    store_row(kEightSums(src, srcStep, ref + k, refStep), sums + k);
  }
  return moxStsOk;
}

inline Mox32s index_of_smallest(const Mox16u* sums, Mox32s count) {
  Mox32s best = 0xFFFF, index = 0;
  for (Mox32s k = 0; k < count; k += kCandidateGroup) {
    const auto [value, place] = simd::smallest(simd::load_row<simd::u16, 1>(sums + k));
    if (value < best) best = value, index = k + place;
  }
  return index;
}

/// [place_index of the reference]: loads need no alignment, so one kernel has all places.
template <int N>
constexpr auto candidate_table() {
  return make_table<16>([]<std::size_t>() -> px::CandidateKernel { return &sad_candidates<N>; });
}
inline constexpr auto sad_16x16xn_8u_table_sse41 = candidate_table<16>();
inline constexpr auto sad_8x8xn_8u_table_sse41 = candidate_table<8>();
inline constexpr auto sad_4x4xn_8u_table_sse41 = candidate_table<4>();
inline constexpr auto sad_2x2xn_8u_table_sse41 = candidate_table<2>();
static_assert(sad_16x16xn_8u_table_sse41.size() == 16);

}  // namespace mox::vec
