/// Rows of 8-bit samples widened to words, and ways back: what kernels with residuals and differences work on.
///
/// A row form says how many rows and columns one step of a kernel takes and how its samples lie in memory. It has
///   Words            the samples of a step,
///   kRows            rows of a step,
///   kDistance        bytes from a sample to its right neighbour,
///   load(p, step)    bytes at p as words; reads the samples of the step and nothing else.
/// Rows are taken in order, so a destination whose rows overlap gets what its last row leaves.
#pragma once

#include <cstddef>

#include "moxvc/types.h"
#include "simd/vec.hpp"

namespace mox::vec {

/// 8 * kGroups words, in as few vectors as the generation allows.
template <int kGroups>
struct WordsOf {
  static constexpr int B = kGroups < simd::kBlocks ? kGroups : simd::kBlocks, kVectors = kGroups / B;
  simd::u16<B> v[kVectors];

  /// Words 8 I to 8 I + 7.
  template <int I>
  MOX_INLINE simd::u16<1> group() const {
    return simd::part<I % B>(v[I / B]);
  }
  /// From groups of 8.
  MOX_INLINE static WordsOf of(simd::u16<1> first) { return {{first}}; }
  MOX_INLINE static WordsOf of(simd::u16<1> first, simd::u16<1> second) {
    const __m128i groups[] = {first.r, second.r};
    WordsOf words;
    for (int i = 0; i < kVectors; ++i) words.v[i] = {simd::join<B>(groups + i * B)};
    return words;
  }
};

/// f of each pair of vectors.
template <int kGroups, class F>
MOX_INLINE WordsOf<kGroups> combine(const WordsOf<kGroups>& a, const WordsOf<kGroups>& b, F f) {
  WordsOf<kGroups> result;
  for (int i = 0; i < WordsOf<kGroups>::kVectors; ++i) result.v[i] = f(a.v[i], b.v[i]);
  return result;
}

/// Differences, wrapping.
template <class Words>
MOX_INLINE Words difference(const Words& a, const Words& b) {
  return combine(a, b, [](auto c, auto d) { return c - d; });
}

/// One row of 8 or 16 samples in consecutive bytes. kDist is 2 where two channels are interleaved.
template <int W, int kDist = 1>
struct Columns {
  using Words = WordsOf<W / 8>;
  static constexpr int kRows = 1, kDistance = kDist;

  MOX_INLINE static Words load(const Mox8u* p, std::ptrdiff_t) {
    Words words;
    for (int i = 0; i < Words::kVectors; ++i) words.v[i] = simd::load_row_wide<Words::B>(p + 8 * Words::B * i);
    return words;
  }
  MOX_INLINE static Words load_words(const void* p, std::ptrdiff_t) {
    Words words;
    for (int i = 0; i < Words::kVectors; ++i) {
      words.v[i] = simd::load_row<simd::u16, Words::B>(static_cast<const Mox8u*>(p) + 16 * Words::B * i);
    }
    return words;
  }
  MOX_INLINE static void store_words(const Words& words, void* p, std::ptrdiff_t) {
    for (int i = 0; i < Words::kVectors; ++i) {
      simd::store_row(words.v[i], static_cast<Mox8u*>(p) + 16 * Words::B * i);
    }
  }
  /// Signed words limited to 0..255.
  MOX_INLINE static void store_clamped(const Words& words, Mox8u* p, std::ptrdiff_t) {
    const auto first = simd::as<simd::s16>(words.template group<0>());
    if constexpr (W == 16) {
      simd::store_row(packus(first, simd::as<simd::s16>(words.template group<1>())), p);
    } else {
      simd::raw_store8(p, packus(first, first).r);
    }
  }
};

/// One row of 8 samples of each of two interleaved channels, 16 bytes: the first channel's words, then the second's.
struct Channels {
  using Words = WordsOf<2>;
  static constexpr int kRows = 1, kDistance = 2;

  MOX_INLINE static Words load(const Mox8u* p, std::ptrdiff_t) {
    if constexpr (Words::B == 1) {
      const auto row = simd::load_row<simd::u16, 1>(p);
      return Words::of(row & simd::splat<simd::u16, 1>(0xFF), simd::shr<8>(row));
    } else {
      constexpr int B = Words::B;
      alignas(32) static constexpr Mox8u kSplit[32] = {0,   128, 2,   128, 4,   128, 6,   128, 8,   128, 10,
                                                       128, 12,  128, 14,  128, 1,   128, 3,   128, 5,   128,
                                                       7,   128, 9,   128, 11,  128, 13,  128, 15,  128};
      Words words;
      words.v[0] = simd::as<simd::u16>(lookup(simd::table<simd::u8, B>(p), simd::load_row<simd::u8, B>(kSplit)));
      return words;
    }
  }
  /// Signed words limited to 0..255, interleaved again.
  MOX_INLINE static void store_clamped(const Words& words, Mox8u* p, std::ptrdiff_t) {
    const auto first = simd::as<simd::s16>(words.group<0>()), second = simd::as<simd::s16>(words.group<1>());
    const auto both = packus(first, second);
    simd::store_row(lo8(both, hi64(both, both)), p);
  }
};

/// kRowCount rows of 2 or 4 samples, at most 8 together; of the words beyond them nothing is said.
template <int W, int kRowCount>
struct FewColumns {
  using Words = WordsOf<1>;
  static constexpr int kRows = kRowCount, kDistance = 1;
  static_assert((W == 4 && kRows == 2) || (W == 2 && (kRows == 2 || kRows == 4)));

  MOX_INLINE static Words load(const Mox8u* p, std::ptrdiff_t step) {
    return Words::of(simd::wide_low(simd::load_rows<W, kRows>(p, step)));
  }
  MOX_INLINE static Words load_words(const void* p, std::ptrdiff_t step) {
    return Words::of(simd::as<simd::u16>(simd::load_rows<2 * W, kRows>(p, step)));
  }
  MOX_INLINE static void store_words(const Words& words, void* p, std::ptrdiff_t step) {
    simd::store_rows<2 * W, kRows>(simd::as<simd::u8>(words.v[0]), p, step);
  }
  MOX_INLINE static void store_clamped(const Words& words, Mox8u* p, std::ptrdiff_t step) {
    const auto signed_words = simd::as<simd::s16>(words.v[0]);
    simd::store_rows<W, kRows>(packus(signed_words, signed_words), p, step);
  }
};

/// Rows of 8 or 16 bytes that stay bytes.
template <int W>
MOX_INLINE simd::u8<1> load_bytes(const Mox8u* p) {
  return {W == 16 ? simd::raw16(p) : simd::raw8(p)};
}
template <int W>
MOX_INLINE void store_bytes(simd::u8<1> v, Mox8u* p) {
  W == 16 ? simd::raw_store16(p, v.r) : simd::raw_store8(p, v.r);
}

}  // namespace mox::vec
