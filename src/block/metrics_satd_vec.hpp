/// Vector sums of absolute transformed differences.
///
/// The first step along a row comes with the differences: products with 1 1 and with 1 -1 make sums and differences of
/// neighbouring bytes, source less reference, as words. The last step is folded by |a + b| + |a - b| = 2 max(|a|, |b|).
#pragma once

#include <cstddef>

#include "block/metrics_satd_px.hpp"
#include "block/rows_vec.hpp"
#include "frame/generation.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// What the first step makes of 8 or 16 differences: the words of the sums, then those of the differences. A row of 8
/// lies in one block; of 16 bytes the sums are a block and the differences another.
template <int kBytes>
struct PairWords {
  static constexpr int B = kBytes == 16 ? simd::kBlocks : 1, kVectors = kBytes / 8 / B;
  simd::s16<B> v[kVectors];
};
template <int kBytes, class F>
MOX_INLINE PairWords<kBytes> combine(const PairWords<kBytes>& a, const PairWords<kBytes>& b, F f) {
  PairWords<kBytes> result;
  for (int i = 0; i < PairWords<kBytes>::kVectors; ++i) result.v[i] = f(a.v[i], b.v[i]);
  return result;
}
template <int kBytes>
MOX_INLINE PairWords<kBytes> operator+(const PairWords<kBytes>& a, const PairWords<kBytes>& b) {
  return combine(a, b, [](auto x, auto y) { return x + y; });
}
template <int kBytes>
MOX_INLINE PairWords<kBytes> operator-(const PairWords<kBytes>& a, const PairWords<kBytes>& b) {
  return combine(a, b, [](auto x, auto y) { return x - y; });
}

/// kBytes bytes of a block W wide: one row, or two that are four apart.
template <int W, int kBytes>
MOX_INLINE simd::u8<1> load_first(const Mox8u* p, [[maybe_unused]] std::ptrdiff_t step) {
  if constexpr (W == kBytes) {
    return load_bytes<W>(p);
  } else {
    return simd::load_rows<W, 2>(p, 4 * step);
  }
}

/// Sums in [-510, 510], differences too.
template <int W, int kBytes>
MOX_INLINE PairWords<kBytes> first_step(const Mox8u* src, std::ptrdiff_t srcStep, const Mox8u* ref,
                                        std::ptrdiff_t refStep) {
  const auto s = load_first<W, kBytes>(src, srcStep), r = load_first<W, kBytes>(ref, refStep);
  const auto plus = simd::splat<simd::u8, 1>(1), minus = as<simd::u8>(simd::splat<simd::u16, 1>(0xFF01));
  using P = PairWords<kBytes>;
  if constexpr (kBytes == 8) {
    const auto both = lo64(plus, minus);
    return P{{maddubs(lo64(s, s), both) - maddubs(lo64(r, r), both)}};
  } else if constexpr (P::B == 1) {
    return P{{maddubs(s, plus) - maddubs(r, plus), maddubs(s, minus) - maddubs(r, minus)}};
  } else {
    const __m128i signs[] = {plus.r, minus.r}, source[] = {s.r, s.r}, reference[] = {r.r, r.r};
    const simd::u8<P::B> both{simd::join<P::B>(signs)};
    return P{{maddubs(simd::u8<P::B>{simd::join<P::B>(source)}, both) -
              maddubs(simd::u8<P::B>{simd::join<P::B>(reference)}, both)}};
  }
}

/// For each pair of neighbouring words of a and of b the larger magnitude.
template <int B>
MOX_INLINE simd::s16<B> fold_words(simd::s16<B> a, simd::s16<B> b) {
  using simd::s16;
  using simd::s32;
  const auto even = simd::blend<0xAA>(a, as<s16>(simd::shl<16>(as<s32>(b))));
  const auto odd = simd::blend<0xAA>(as<s16>(simd::shru<16>(as<s32>(a))), b);
  return max(abs(even), abs(odd));
}

/// Half the SATD of four rows, in words of 4 * 2040 = 8160 at most.
template <int W, int kBytes>
MOX_INLINE auto four_rows(const Mox8u* src, std::ptrdiff_t srcStep, const Mox8u* ref, std::ptrdiff_t refStep) {
  const auto row = [=](int y) { return first_step<W, kBytes>(src + y * srcStep, srcStep, ref + y * refStep, refStep); };
  const auto r0 = row(0), r1 = row(1), r2 = row(2), r3 = row(3);
  const auto a = r0 + r1, b = r0 - r1, c = r2 + r3, d = r2 - r3;  // [-1020, 1020]
  const auto fold = [](auto x, auto y) { return fold_words(x, y); };
  const auto sums = combine(a + c, a - c, fold) + combine(b + d, b - d, fold);  // [-2040, 2040] before the folding
  if constexpr (decltype(sums)::kVectors == 2) {
    return sums.v[0] + sums.v[1];
  } else {
    return sums.v[0];
  }
}

/// Twice the sum of all words.
template <int B>
MOX_INLINE Mox32s twice_total(simd::s16<B> words) {
  return total(madd(words, simd::splat<simd::s16, B>(2)));
}

template <int W, int H>
MoxStatus satd_block(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep, Mox32s* result) {
  constexpr int kBytes = W * H == 32 ? 8 : 16, kStep = kBytes / W * 4;
  static_assert(H % kStep == 0 && H / kStep <= 4);  // words of 4 * 8160 = 32640 at most
  const std::ptrdiff_t s = srcStep, r = refStep;
  auto sum = four_rows<W, kBytes>(src, s, ref, r);
  for (int y = kStep; y < H; y += kStep) sum = sum + four_rows<W, kBytes>(src + y * s, s, ref + y * r, r);
  *result = twice_total(sum);
  return moxStsOk;
}

/// 4 x 4: a row is one doubleword, of sums and of differences.
template <>
inline MoxStatus satd_block<4, 4>(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep, Mox32s* result) {
  const auto s = simd::load_rows<4, 4>(src, srcStep), r = simd::load_rows<4, 4>(ref, refStep);
  const auto plus = simd::splat<simd::u8, 1>(1), minus = as<simd::u8>(simd::splat<simd::u16, 1>(0xFF01));
  const auto sums = maddubs(s, plus) - maddubs(r, plus), differences = maddubs(s, minus) - maddubs(r, minus);
  const auto upper = lo32(sums, differences), lower = hi32(sums, differences);  // rows 0 1 and 2 3
  const auto a = upper + lower, b = upper - lower;
  const auto c = lo64(a, b), d = hi64(a, b);
  *result = twice_total(fold_words(c + d, c - d));
  return moxStsOk;
}

}  // namespace mox::vec
