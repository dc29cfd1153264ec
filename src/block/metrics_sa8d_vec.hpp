/// Vector sums of magnitudes of 8 x 8 Hadamard transforms. Steps are named by what they add and subtract: vectors,
/// halves of blocks, doublewords or words. The last one is folded, so results are half the sums.
#pragma once

#include "block/metrics_satd_vec.hpp"

namespace mox::vec {

/// All steps between N vectors, in place.
template <class V, int N>
MOX_INLINE void across_vectors(V (&v)[N]) {
  for (int half = 1; half < N; half *= 2) {
    for (int i = 0; i < N; ++i) {
      if (i & half) continue;
      const Butterfly<V> b(v[i], v[i + half]);
      v[i] = b.sum, v[i + half] = b.difference;
    }
  }
}
template <int B>
MOX_INLINE Butterfly<simd::s32<B>> across_doublewords(simd::s32<B> a, simd::s32<B> b) {
  return {even32(a, b), odd32(a, b)};
}
/// The last two steps, across doublewords and words: up to [-8160, 8160] between them, each result at most 8160.
template <int B>
MOX_INLINE simd::s16<B> fold(simd::s16<B> a, simd::s16<B> b) {
  const auto pair = across_doublewords(a, b);
  return fold_words(pair.sum, pair.difference);
}

/// 8-bit: as many rows as vectors, or with rows four apart in the halves of a block, which pays with two blocks.
MOX_INLINE Mox32s sa8d_sum(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep) {
  constexpr int B = simd::kBlocks, kRows = 8 / B;
  const std::ptrdiff_t s = srcStep, r = refStep;
  simd::s16<B> v[kRows];
  for (int y = 0; y < kRows; ++y) v[y] = first_step<8, 8 * B>(src + y * s, s, ref + y * r, r, 4).v[0];
  across_vectors(v);
  auto sum = simd::zero<simd::s16, B>();  // at most 4 * 8160 = 32640
  for (int y = 0; y < kRows; y += 2) {
    if constexpr (B == 2) {
      const auto rows = across_halves(v[y], v[y + 1]);
      sum = sum + fold(rows.sum, rows.difference);
    } else {
      sum = sum + fold(v[y], v[y + 1]);
    }
  }
  return twice_total(sum);
}

/// Rows of sums or of differences of neighbouring 16-bit differences. Values double in each step, from [-65536, 65534]:
/// coefficients are 2^21 at most.
template <int B>
MOX_INLINE simd::s32<B> sa8d_of_rows(simd::s32<B> (&v)[8]) {
  across_vectors(v);
  auto sum = simd::zero<simd::s32, B>();
  for (int i = 0; i < 8; i += 2) {
    const auto pair = across_doublewords(v[i], v[i + 1]);
    sum = sum + max(abs(even32(pair.sum, pair.difference)), abs(odd32(pair.sum, pair.difference)));
  }
  return sum;
}

/// 16-bit, exact for all differences, in doublewords: with one block sums and differences of neighbours are two passes.
[[gnu::noinline]] inline MoxStatus sa8d_of_any(const Mox16u* src, Mox32s srcStep, const Mox16u* ref, Mox32s refStep,
                                               Mox32s* result) {
  constexpr int B = simd::kBlocks, kPasses = 2 / B;
  const __m128i signs[] = {simd::splat<simd::s32, 1>(0x00010001).r, simd::splat<simd::s32, 1>(-0xFFFF).r};  // 1 1, 1 -1
  simd::s32<B> v[kPasses][8];
  for (int y = 0; y < 8; ++y, src = step_bytes(src, srcStep), ref = step_bytes(ref, refStep)) {
    const auto d = simd::table<simd::s16, B>(src) - simd::table<simd::s16, B>(ref);
    for (int i = 0; i < kPasses; ++i) v[i][y] = madd(d, simd::s16<B>{simd::join<B>(signs + i)});
  }
  auto sum = sa8d_of_rows(v[0]);
  for (int i = 1; i < kPasses; ++i) sum = sum + sa8d_of_rows(v[i]);
  *result = 2 * total(sum);
  return moxStsOk;
}

/// Rows four apart in the blocks of a vector.
template <int B>
MOX_INLINE void across_blocks([[maybe_unused]] simd::s16<B> (&v)[8 / B]) {
  if constexpr (B == 2) {
    for (int i = 0; i < 4; i += 2) {
      const Butterfly<simd::s16<B>> b(first_blocks(v[i], v[i + 1]), second_blocks(v[i], v[i + 1]));
      v[i] = b.sum, v[i + 1] = b.difference;
    }
  }
}

inline MoxStatus sa8d_block(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep, Mox32s* result) {
  *result = sa8d_sum(src, srcStep, ref, refStep);
  return moxStsOk;
}

/// Words are enough for differences of -kLimit to kLimit: 32 * kLimit = 32736 before the last step, which is folded.
/// Samples of 10 bits have no others, deeper ones seldom.
inline MoxStatus sa8d_block(const Mox16u* src, Mox32s srcStep, const Mox16u* ref, Mox32s refStep, Mox32s* result) {
  constexpr int B = simd::kBlocks, kRows = 8 / B, kLimit = 1023;
  simd::s16<B> v[kRows];
  auto largest = simd::zero<simd::u16, B>();
  for (int y = 0; y < kRows; ++y) {
    __m128i d[B];
    for (int i = 0; i < B; ++i) {
      d[i] = (simd::load_row<simd::s16, 1>(step_bytes(src, std::ptrdiff_t{y + i * kRows} * srcStep)) -
              simd::load_row<simd::s16, 1>(step_bytes(ref, std::ptrdiff_t{y + i * kRows} * refStep)))
                 .r;
    }
    v[y] = {simd::join<B>(d)};
    largest = max(largest, as<simd::u16>(v[y] + simd::splat<simd::s16, B>(kLimit)));
  }
  if (!is_zero(subs(largest, simd::splat<simd::u16, B>(2 * kLimit)))) {
    return sa8d_of_any(src, srcStep, ref, refStep, result);
  }
  across_vectors(v);
  across_blocks<B>(v);
  auto sum = simd::zero<simd::s32, B>();
  for (int y = 0; y < kRows; y += 2) {
    const auto rows = across_halves(v[y], v[y + 1]);
    sum = sum + madd(fold(rows.sum, rows.difference), simd::splat<simd::s16, B>(2));
  }
  *result = total(sum);
  return moxStsOk;
}

}  // namespace mox::vec
