/// Vector forms of the H.264 transforms: the sums of the portable ones on lanes, and the shuffles between two passes.
#pragma once

#include <algorithm>
#include <cstddef>

#include "frame/generation.hpp"
#include "h264/transform_core.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// What the policy P (Wrap16, Sat16, Wrap32) does with a value, done in each lane of a vector.
template <class P, int B>
struct TransformLanes {
  using Value = std::conditional_t<sizeof(typename P::Value) == 2, simd::s16<B>, simd::s32<B>>;

  MOX_INLINE static Value splat(int value) {
    if constexpr (sizeof(typename P::Value) == 2) {
      return simd::splat<simd::s16, B>(value);
    } else {
      return simd::splat<simd::s32, B>(value);
    }
  }
  MOX_INLINE static Value add(Value a, Value b) {
    if constexpr (std::is_same_v<P, Sat16>) {
      return adds(a, b);
    } else {
      return a + b;
    }
  }
  MOX_INLINE static Value sub(Value a, Value b) {
    if constexpr (std::is_same_v<P, Sat16>) {
      return subs(a, b);
    } else {
      return a - b;
    }
  }
  MOX_INLINE static Value add(Value a, int b) { return add(a, splat(b)); }
  MOX_INLINE static Value sub(int a, Value b) { return sub(splat(a), b); }
};

/// Rows to columns, in each block of its own: 8 x 8 words or 4 x 4 doublewords, which may be pairs of words.
template <class V, int N>
MOX_INLINE void transpose(V (&x)[N]) {
  for (int step = 1; step < N; step *= 2) {
    V y[N];
    for (int i = 0; i < N / 2; ++i) {
      if constexpr (N == 8) {
        y[2 * i] = lo16(x[i], x[i + N / 2]), y[2 * i + 1] = hi16(x[i], x[i + N / 2]);
      } else {
        y[2 * i] = lo32(x[i], x[i + N / 2]), y[2 * i + 1] = hi32(x[i], x[i + N / 2]);
      }
    }
    std::copy_n(y, N, x);
  }
}

/// One pass of the inverse transform over vectors of 4 or 8 lines.
template <class P, int B, class V, int N>
[[gnu::flatten]] MOX_INLINE void inverse_pass(V (&x)[N]) {
  if constexpr (N == 8) {
    px::inverse_8<TransformLanes<P, B>>(x, 1);
  } else {
    px::inverse_4<TransformLanes<P, B>>(x, 1);
  }
}

/// Both passes and the final rounding. x has a row of the block, or of two blocks in turns, in each vector.
template <class P, template <int> class V, int B, int N>
MOX_INLINE void inverse_transform(V<B> (&x)[N]) {
  transpose(x);
  inverse_pass<P, B>(x);
  transpose(x);
  inverse_pass<P, B>(x);
  for (auto& row : x) row = px::round6<TransformLanes<P, B>>(row);
}

/// A 4x4 block of words, two rows a vector.
struct WordBlock4x4 {
  simd::s16<1> upper, lower;
};
MOX_INLINE WordBlock4x4 load_block_4x4(const Mox16s* p) {
  return {simd::load_row<simd::s16, 1>(p), simd::load_row<simd::s16, 1>(p + 8)};
}
MOX_INLINE void store_block_4x4(WordBlock4x4 block, Mox16s* p) {
  store_row(block.upper, p), store_row(block.lower, p + 8);
}

// The rows or the columns of a block, a vector each, whose upper halves do not count; and columns back to a block.
struct WordLines4x4 {
  simd::s16<1> x[4];
};
MOX_INLINE WordLines4x4 rows_of(WordBlock4x4 block) {
  return {{block.upper, hi64(block.upper, block.upper), block.lower, hi64(block.lower, block.lower)}};
}
MOX_INLINE WordLines4x4 columns_of(WordBlock4x4 block) {
  const auto even = lo16(block.upper, block.lower), odd = hi16(block.upper, block.lower);
  return rows_of({lo16(even, odd), hi16(even, odd)});
}
MOX_INLINE WordBlock4x4 block_of_columns(const simd::s16<1> (&x)[4]) {
  const auto first = lo16(x[0], x[1]), second = lo16(x[2], x[3]);
  return {lo32(first, second), hi32(first, second)};
}
MOX_INLINE WordBlock4x4 block_of_rows(const simd::s16<1> (&x)[4]) { return {lo64(x[0], x[1]), lo64(x[2], x[3])}; }

template <class P>
MOX_INLINE WordBlock4x4 inverse_transform(WordBlock4x4 block) {
  using Lanes = TransformLanes<P, 1>;
  auto lines = columns_of(block);
  inverse_pass<P, 1>(lines.x);
  lines = rows_of(block_of_columns(lines.x));
  inverse_pass<P, 1>(lines.x);
  const auto y = block_of_rows(lines.x);
  return {px::round6<Lanes>(y.upper), px::round6<Lanes>(y.lower)};
}

// ---- Transforms of DC values. ----

/// H4 * M * H4, columns first.
template <class P, int B, class V>
[[gnu::flatten]] MOX_INLINE void hadamard_pass(V (&x)[4]) {
  px::hadamard_4<TransformLanes<P, B>>(x, 1);
}
/// H4 * M of four rows of 8 bytes, two in each vector. Pair and Sum are those of px::hadamard_4.
template <class Pair, class Sum, template <int> class V>
MOX_INLINE void hadamard_of_halves(V<1>& upper, V<1>& lower) {
  const auto turned = simd::as<V>(simd::permute<0x4E>(simd::as<simd::s32>(lower)));
  const auto sums = TransformLanes<Pair, 1>::add(upper, turned),
             differences = TransformLanes<Pair, 1>::sub(upper, turned);
  const auto outer = lo64(sums, differences), inner = hi64(sums, differences);
  upper = TransformLanes<Sum, 1>::add(outer, inner), lower = TransformLanes<Sum, 1>::sub(outer, inner);
}

/// Rows to columns.
MOX_INLINE WordBlock4x4 transposed(WordBlock4x4 block) {
  const auto even = lo16(block.upper, block.lower), odd = hi16(block.upper, block.lower);
  return {lo16(even, odd), hi16(even, odd)};
}
template <class P>
MOX_INLINE WordBlock4x4 hadamard(WordBlock4x4 block) {
  for (int pass = 0; pass < 2; ++pass) {
    hadamard_of_halves<P, P>(block.upper, block.lower);
    block = transposed(block);
  }
  return block;
}

/// H4 * M * H2 of four rows of two, columns first; Sum wraps. In a vector of words, or in two of doublewords.
template <class Pair>
MOX_INLINE simd::s16<1> hadamard_2x4(simd::s16<1> rows) {
  alignas(16) static constexpr Mox16s kSigns[8] = {1, 1, 1, -1, 1, 1, 1, -1};
  const auto signs = simd::load_row<simd::s16, 1>(kSigns);
  auto upper = simd::as<simd::s16>(simd::permute<0x50>(simd::as<simd::s32>(rows))),
       lower = simd::as<simd::s16>(simd::permute<0xFA>(simd::as<simd::s32>(rows)));
  hadamard_of_halves<Pair, Wrap16>(upper, lower);
  return hadd(signed_by(upper, signs), signed_by(lower, signs));
}
MOX_INLINE void hadamard_2x4(simd::s32<1> (&rows)[2]) {
  hadamard_of_halves<Wrap32, Wrap32>(rows[0], rows[1]);
  const auto left = even32(rows[0], rows[1]), right = odd32(rows[0], rows[1]);
  rows[0] = lo32(left + right, left - right), rows[1] = hi32(left + right, left - right);
}

/// H2 * M * H2 of the first four words, rows first; the others become 0. And of four doublewords.
template <class P>
MOX_INLINE simd::s16<1> hadamard_2x2(simd::s16<1> rows) {
  using Lanes = TransformLanes<P, 1>;
  const auto next = [](simd::s16<1> v) { return simd::as<simd::s16>(simd::permute<1>(simd::as<simd::s32>(v))); };
  const auto columns = lo16(rows, next(rows));
  const auto pairs = lo16(Lanes::add(columns, next(columns)), Lanes::sub(columns, next(columns)));
  const auto block = lo32(Lanes::add(pairs, next(pairs)), Lanes::sub(pairs, next(pairs)));
  return lo64(block, simd::zero<simd::s16, 1>());
}
MOX_INLINE simd::s32<1> hadamard_2x2(simd::s32<1> rows) {
  const auto left = even32(rows, rows), right = odd32(rows, rows);
  const auto pairs = lo32(left + right, left - right), turned = simd::permute<0x4E>(pairs);
  return lo64(pairs + turned, pairs - turned);
}

/// (H4 * M * H4) >> 1, columns first. Sums of the rows have 18 bits, and what is halved is cut to 16.
MOX_INLINE WordBlock4x4 halved_hadamard(WordBlock4x4 block) {
  alignas(16) static constexpr Mox16s kSigns[8] = {1, -1, 1, -1, 1, -1, 1, -1};
  const auto plus = simd::splat<simd::s16, 1>(1), signs = simd::load_row<simd::s16, 1>(kSigns);
  hadamard_of_halves<Wrap16, Wrap16>(block.upper, block.lower);
  const auto upper = madd(block.upper, plus), lower = madd(block.lower, plus);
  const auto upper_difference = madd(block.upper, signs), lower_difference = madd(block.lower, signs);
  const auto a = even32(upper, lower), b = odd32(upper, lower);
  const auto c = even32(upper_difference, lower_difference), d = odd32(upper_difference, lower_difference);
  const auto halved = [](simd::s32<1> v) { return simd::shr<16>(simd::shl<15>(v)); };
  const auto first = packs(halved(a + b), halved(a - b)), second = packs(halved(c - d), halved(c + d));
  return transposed({first, second});
}
/// The same of rows of doublewords, which wrap.
MOX_INLINE void halve_hadamard(simd::s32<1> (&rows)[4]) {
  for (int pass = 0; pass < 2; ++pass) {
    hadamard_pass<Wrap32, 1>(rows);
    transpose(rows);
  }
  for (auto& row : rows) row = simd::shr<1>(row);
}

}  // namespace mox::vec
