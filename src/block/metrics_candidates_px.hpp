/// Portable SADs of several candidates, which lie side by side in the reference.
#pragma once

#include <cstdint>

#include "block/metrics_sad_px.hpp"

namespace mox {

/// Candidates are taken in groups; what is left over is dropped.
inline constexpr Mox32s kCandidateGroup = 8;
constexpr Mox32s whole_groups(Mox32s numCandidates) { return numCandidates & -kCandidateGroup; }
static_assert(whole_groups(15) == 8 && whole_groups(7) == 0 && whole_groups(-1) == -8);

/// Index of a reference's place among 16 bytes.
inline std::size_t place_index(const Mox8u* ref) { return reinterpret_cast<std::uintptr_t>(ref) & 15; }

}  // namespace mox

namespace mox::px {

/// count: a multiple of the group.
using CandidateKernel = MoxStatus (*)(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep, Mox16u* sums,
                                      Mox32s count);

template <int N>
MoxStatus sad_candidates(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep, Mox16u* sums,
                         Mox32s count) {
  for (Mox32s k = 0; k < count; ++k) {
    sums[k] = static_cast<Mox16u>(absolute_sum<N, N, HalfPel::kFull>(src, srcStep, ref + k, refStep));
  }
  return moxStsOk;
}

/// Index of the first of the smallest sums. 65535 is never the smallest.
inline Mox32s index_of_smallest(const Mox16u* sums, Mox32s count) {
  Mox32s smallest = 0xFFFF, index = 0;
  for (Mox32s k = 0; k < count; ++k) {
    if (sums[k] < smallest) smallest = sums[k], index = k;
  }
  return index;
}

/// [place_index of the reference]: loads need no alignment, so one kernel has all places.
template <int N>
constexpr auto candidate_table() {
  return make_table<16>([]<std::size_t>() -> CandidateKernel { return &sad_candidates<N>; });
}
inline constexpr auto sad_16x16xn_8u_table_sse41 = candidate_table<16>();
inline constexpr auto sad_8x8xn_8u_table_sse41 = candidate_table<8>();
inline constexpr auto sad_4x4xn_8u_table_sse41 = candidate_table<4>();
inline constexpr auto sad_2x2xn_8u_table_sse41 = candidate_table<2>();
static_assert(sad_16x16xn_8u_table_sse41.size() == 16);

}  // namespace mox::px
