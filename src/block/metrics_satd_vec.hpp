/// Vector sums of absolute transformed differences.
///
/// The first step along a row comes with the differences: products with 1 1 and with 1 -1 make sums and differences of
/// neighbouring bytes, source less reference, as words. The last step is folded by |a + b| + |a - b| = 2 max(|a|, |b|).
/// Steps are named by what they add and subtract: vectors, halves of blocks, doublewords or words.
#pragma once

#include <cstddef>

#include "block/metrics_satd_px.hpp"
#include "block/rows_vec.hpp"
#include "frame/generation.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

template <class V>
struct Butterfly {
  V sum, difference;
  MOX_INLINE Butterfly(V a, V b) : sum(a + b), difference(a - b) {}
};
template <int B>
MOX_INLINE Butterfly<simd::s16<B>> across_halves(simd::s16<B> a, simd::s16<B> b) {
  return {lo64(a, b), hi64(a, b)};
}
template <int B>
MOX_INLINE Butterfly<simd::s16<B>> across_doublewords(simd::s16<B> a, simd::s16<B> b) {
  const auto x = as<simd::s32>(a), y = as<simd::s32>(b);
  return {as<simd::s16>(even32(x, y)), as<simd::s16>(odd32(x, y))};
}
/// The last step, across words: for each pair of neighbours in a and in b the larger magnitude. Two ways that keep
/// different execution units busy.
template <int B>
MOX_INLINE simd::s16<B> fold_words(simd::s16<B> a, simd::s16<B> b) {
  using simd::blend;
  using simd::s16;
  if constexpr (B == 2) {
    static constexpr Mox8u kNeighbour[16] = {2, 3, 0, 1, 6, 7, 4, 5, 10, 11, 8, 9, 14, 15, 12, 13};
    const auto first = blend<0xAA>(a, b);  // a0 b1 a2 b3 ..., whose neighbours are b0 a1 b2 a3 ...
    const auto second = lookup(as<simd::u8>(blend<0xAA>(b, a)), simd::table<simd::u8, B>(kNeighbour));
    return max(abs(first), abs(as<s16>(second)));
  } else {
    const auto even = blend<0xAA>(a, as<s16>(simd::shl<16>(as<simd::s32>(b))));
    const auto odd = blend<0xAA>(as<s16>(simd::shru<16>(as<simd::s32>(a))), b);
    return max(abs(even), abs(odd));
  }
}

/// What the first step makes of kBytes differences: the words of the sums, then those of the differences, 8 of which
/// are halves of one block, 16 a block each.
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

/// kBytes bytes of a block W wide: one row; or two, `gap` rows apart; or two of those pairs, two rows apart. 8 bytes
/// are in both halves of the block, 16 in every block.
template <int W, int kBytes>
MOX_INLINE auto load_first(const Mox8u* p, [[maybe_unused]] std::ptrdiff_t step, [[maybe_unused]] int gap) {
  constexpr int B = PairWords<kBytes>::B;
  if constexpr (W == 16) return simd::table<simd::u8, B>(p);
  if constexpr (W == 8 && kBytes == 16) return simd::table8x2<simd::u8, B>(p, gap * step);
  if constexpr (W == 8 && kBytes == 8) return simd::u8<1>{simd::raw8_twice(p)};
  if constexpr (W == 4 && kBytes == 16) return simd::table4x4<simd::u8, B>(p, gap * step, 2 * step);
  if constexpr (W == 4 && kBytes == 8) return simd::load4x2_twice(p, gap * step);
}

/// Sums in [-510, 510], differences too.
template <int W, int kBytes>
MOX_INLINE PairWords<kBytes> first_step(const Mox8u* src, std::ptrdiff_t srcStep, const Mox8u* ref,
                                        std::ptrdiff_t refStep, int gap) {
  using P = PairWords<kBytes>;
  const auto s = load_first<W, kBytes>(src, srcStep, gap), r = load_first<W, kBytes>(ref, refStep, gap);
  const auto plus = simd::splat<simd::u8, 1>(1), minus = as<simd::u8>(simd::splat<simd::u16, 1>(0xFF01));
  if constexpr (kBytes == 8) {
    const auto both = lo64(plus, minus);
    return P{{maddubs(s, both) - maddubs(r, both)}};
  } else if constexpr (P::B == 1) {
    return P{{maddubs(s, plus) - maddubs(r, plus), maddubs(s, minus) - maddubs(r, minus)}};
  } else {
    const __m128i signs[] = {plus.r, minus.r};
    const simd::u8<P::B> both{simd::join<P::B>(signs)};
    return P{{maddubs(s, both) - maddubs(r, both)}};
  }
}

/// Twice the sum of all words.
template <int B>
MOX_INLINE Mox32s twice_total(simd::s16<B> words) {
  return total(madd(words, simd::splat<simd::s16, B>(2)));
}

/// How a block of W x H is taken: kBytes a vector, of rows kGap apart, kStep rows at a time.
template <int W, int H>
struct SatdShape {
  static constexpr int kBytes = W == 16 ? 16 : 8 * simd::kBlocks;
  /// Where H rows of W fill two vectors only, the halves of their blocks are rows two apart of the same transform.
  static constexpr bool kHalves = W * H == 2 * kBytes;
  static constexpr int kGap = W == 8 && kHalves ? 2 : 4, kStep = W * H <= 4 * kBytes ? H : 4 * kBytes / W;
};

/// Half the SATD of kStep rows, in words of 4 * 2040 = 8160 at most.
template <int W, int H>
MOX_INLINE auto satd_of_rows(const Mox8u* src, std::ptrdiff_t srcStep, const Mox8u* ref, std::ptrdiff_t refStep) {
  using S = SatdShape<W, H>;
  const auto row = [=](int y) {
    return first_step<W, S::kBytes>(src + y * srcStep, srcStep, ref + y * refStep, refStep, S::kGap);
  };
  if constexpr (S::kHalves) {
    const auto r0 = row(0), r1 = row(1);
    const auto both = across_halves((r0 + r1).v[0], (r0 - r1).v[0]);  // [-2040, 2040]
    return fold_words(both.sum, both.difference);
  } else {
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
}

template <int W, int H>
MoxStatus satd_block(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep, Mox32s* result) {
  constexpr int kStep = SatdShape<W, H>::kStep;
  static_assert(H % kStep == 0 && H / kStep <= 4);  // words of 4 * 8160 = 32640 at most
  const std::ptrdiff_t s = srcStep, r = refStep;
  auto sum = satd_of_rows<W, H>(src, s, ref, r);
  for (int y = kStep; y < H; y += kStep) sum = sum + satd_of_rows<W, H>(src + y * s, s, ref + y * r, r);
  *result = twice_total(sum);
  return moxStsOk;
}

/// 4 x 4: two rows a vector.
template <>
inline MoxStatus satd_block<4, 4>(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep, Mox32s* result) {
  const std::ptrdiff_t s = srcStep, r = refStep;
  const auto upper = first_step<4, 8>(src, s, ref, r, 1).v[0];
  const auto lower = first_step<4, 8>(src + 2 * s, s, ref + 2 * r, r, 1).v[0];
  const auto both = across_doublewords(upper + lower, upper - lower);
  *result = twice_total(fold_words(both.sum, both.difference));
  return moxStsOk;
}

}  // namespace mox::vec
