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

/// H4 * M * H4, columns first.
template <class P, int B, class V>
[[gnu::flatten]] MOX_INLINE void hadamard_pass(V (&x)[4]) {
  px::hadamard_4<TransformLanes<P, B>>(x, 1);
}
template <class P>
MOX_INLINE WordBlock4x4 hadamard(WordBlock4x4 block) {
  auto lines = rows_of(block);
  hadamard_pass<P, 1>(lines.x);
  lines = columns_of(block_of_rows(lines.x));
  hadamard_pass<P, 1>(lines.x);
  return block_of_columns(lines.x);
}

}  // namespace mox::vec
