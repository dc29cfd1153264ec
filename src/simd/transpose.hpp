/// Transposition in registers by rounds of interleaving.
///
/// 2^r registers of 2^p elements hold element i of a sequence in register i >> p. A round interleaves each register of
/// the first half with its partner in the second; it rotates the bits of every element's index to the left by one. So a
/// matrix stored by rows, 2^c elements each, is one stored by columns after as many rounds as its row number has bits,
/// and c rounds bring it back.
#pragma once

#include "simd/vec.hpp"

namespace mox::simd {

/// Elements of kBytes bytes of the lower or the upper half of each block, in turn from a and from b.
template <int kBytes, int B>
MOX_INLINE u8<B> interleave_lo(u8<B> a, u8<B> b) {
  if constexpr (kBytes == 1) return lo8(a, b);
  if constexpr (kBytes == 2) return as<u8>(lo16(as<s16>(a), as<s16>(b)));
}
template <int kBytes, int B>
MOX_INLINE u8<B> interleave_hi(u8<B> a, u8<B> b) {
  if constexpr (kBytes == 1) return hi8(a, b);
  if constexpr (kBytes == 2) return as<u8>(hi16(as<s16>(a), as<s16>(b)));
}

template <int kBytes, int kRounds, int B, std::size_t N>
MOX_INLINE void interleave_rounds(u8<B> (&r)[N]) {
  u8<B> next[N];
  if constexpr (N == 1) {
    next[0] = interleave_lo<kBytes>(r[0], hi64(r[0], r[0]));
  } else {
    for (std::size_t i = 0; i < N / 2; ++i) {
      next[2 * i] = interleave_lo<kBytes>(r[i], r[i + N / 2]);
      next[2 * i + 1] = interleave_hi<kBytes>(r[i], r[i + N / 2]);
    }
  }
  for (std::size_t i = 0; i < N; ++i) r[i] = next[i];
  if constexpr (kRounds > 1) interleave_rounds<kBytes, kRounds - 1>(r);
}

/// The number of bits of an index below n, a power of two.
constexpr int index_bits(int n) { return n > 1 ? 1 + index_bits(n / 2) : 0; }

/// A matrix of kRows x kColumns elements of kBytes bytes: rows of 4, 8 or 16 bytes that lie `step` bytes apart. Where
/// it has more than 8 rows of 16 bytes, each block of a vector, or each pass, takes 8 rows.
template <int kRows, int kColumns, int kBytes>
struct Transposition {
  static constexpr int kRowBytes = kColumns * kBytes;
  static constexpr int kBlockRows = kRowBytes == 16 && kRows > 8 ? 8 : kRows;
  static constexpr int kParts = kRows / kBlockRows;
  static constexpr int B = kParts < kBlocks ? kParts : kBlocks;
  static constexpr int kCount = kBlockRows * kRowBytes / 16;  ///< registers

  /// The columns of kBlockRows rows a block, one after the other.
  static MOX_INLINE void load_columns(const Mox8u* rows, std::ptrdiff_t step, u8<B> (&r)[kCount]) {
    const auto blocks = strips<B>(kBlockRows * step);
    for (int i = 0; i < kCount; ++i) {
      const Mox8u* const from = rows + i * (16 / kRowBytes) * step;
      if constexpr (kRowBytes == 16) r[i] = load16<u8, B>(from, blocks);
      if constexpr (kRowBytes == 8) r[i] = load8x2<u8, B>(from, step, blocks);
      if constexpr (kRowBytes == 4) r[i] = load4x4<u8, B>(from, step, blocks);
    }
    interleave_rounds<kBytes, index_bits(kBlockRows)>(r);
  }
  /// The way back.
  static MOX_INLINE void store_columns(u8<B> (&r)[kCount], Mox8u* rows, std::ptrdiff_t step) {
    const auto blocks = strips<B>(kBlockRows * step);
    interleave_rounds<kBytes, index_bits(kColumns)>(r);
    for (int i = 0; i < kCount; ++i) {
      Mox8u* const to = rows + i * (16 / kRowBytes) * step;
      if constexpr (kRowBytes == 16) store16(r[i], to, blocks);
      if constexpr (kRowBytes == 8) store8x2(r[i], to, step, blocks);
      if constexpr (kRowBytes == 4) store_rows<4, 4>(r[i], to, step);
    }
  }
  /// Columns of kRows elements, one after the other.
  static MOX_INLINE void to_columns(const Mox8u* rows, std::ptrdiff_t step, Mox8u* columns) {
    for (int part = 0; part < kParts; part += B, rows += B * kBlockRows * step, columns += 16 * B) {
      u8<B> r[kCount];
      load_columns(rows, step, r);
      for (int i = 0; i < kCount; ++i) store_row(r[i], columns + 16 * kParts * i);
    }
  }
  /// The way back.
  static MOX_INLINE void to_rows(const Mox8u* columns, Mox8u* rows, std::ptrdiff_t step) {
    for (int part = 0; part < kParts; part += B, rows += B * kBlockRows * step, columns += 16 * B) {
      u8<B> r[kCount];
      for (int i = 0; i < kCount; ++i) r[i] = load_row<u8, B>(columns + 16 * kParts * i);
      store_columns(r, rows, step);
    }
  }
};

}  // namespace mox::simd
