/// The transforms of H.264 (ITU-T H.264 8.5.10 to 8.5.13), in place, for every way of keeping an intermediate value.
///
/// The policy P (Wrap16, Sat16, Wrap32 of frame/arithmetic.hpp) rules each sum and difference. Where it saturates, the
/// order of the sums shows in the result: it is the one written here, left to right. Passes over one row or column take
/// vectors as well, a row or column a lane.
#pragma once

#include <cstddef>

#include "frame/arithmetic.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// value as P keeps it.
template <class P>
constexpr typename P::Value keep(Mox32s value) {
  return P::add(value, 0);
}

/// (value + 32) >> 6, the last step of the inverse transforms.
template <class P>
constexpr typename P::Value round6(typename P::Value value) {
  return static_cast<typename P::Value>(P::add(value, 32) >> 6);
}

/// Inverse transform of four values that lie `stride` apart.
template <class P>
constexpr void inverse_4(typename P::Value* x, std::ptrdiff_t stride) {
  const auto e = P::add(x[0], x[2 * stride]);
  const auto f = P::sub(x[0], x[2 * stride]);
  const auto g = P::sub(x[stride] >> 1, x[3 * stride]);
  const auto h = P::add(x[stride], x[3 * stride] >> 1);
  x[0] = P::add(e, h);
  x[stride] = P::add(f, g);
  x[2 * stride] = P::sub(f, g);
  x[3 * stride] = P::sub(e, h);
}

/// Inverse transform of a 4x4 block, rows first, and the final rounding. Rows are `row` elements apart.
template <class P>
constexpr void inverse_4x4(typename P::Value* block, std::ptrdiff_t row = 4) {
  for (int y = 0; y < 4; ++y) inverse_4<P>(block + y * row, 1);
  for (int x = 0; x < 4; ++x) inverse_4<P>(block + x, row);
  for (int y = 0; y < 4; ++y) {
    for (int x = 0; x < 4; ++x) block[y * row + x] = round6<P>(block[y * row + x]);
  }
}

/// Inverse transform of eight values that lie `stride` apart; the names are those of 8.5.13.
template <class P>
constexpr void inverse_8(typename P::Value* x, std::ptrdiff_t stride) {
  const auto x1 = x[stride], x3 = x[3 * stride], x5 = x[5 * stride], x7 = x[7 * stride];
  const auto a0 = P::add(x[0], x[4 * stride]);
  const auto a2 = P::sub(x[0], x[4 * stride]);
  const auto a4 = P::sub(x[2 * stride] >> 1, x[6 * stride]);
  const auto a6 = P::add(x[2 * stride], x[6 * stride] >> 1);
  const auto a1 = P::sub(P::sub(P::sub(x5, x3), x7), x7 >> 1);
  const auto a3 = P::sub(P::sub(P::add(x1, x7), x3), x3 >> 1);
  const auto a5 = P::add(P::add(P::sub(x7, x1), x5), x5 >> 1);
  const auto a7 = P::add(P::add(P::add(x3, x5), x1), x1 >> 1);
  const auto b0 = P::add(a0, a6), b6 = P::sub(a0, a6);
  const auto b2 = P::add(a2, a4), b4 = P::sub(a2, a4);
  const auto b1 = P::add(a1, a7 >> 2), b7 = P::sub(a7, a1 >> 2);
  const auto b3 = P::add(a3, a5 >> 2), b5 = P::sub(a3 >> 2, a5);
  x[0] = P::add(b0, b7), x[7 * stride] = P::sub(b0, b7);
  x[stride] = P::add(b2, b5), x[6 * stride] = P::sub(b2, b5);
  x[2 * stride] = P::add(b4, b3), x[5 * stride] = P::sub(b4, b3);
  x[3 * stride] = P::add(b6, b1), x[4 * stride] = P::sub(b6, b1);
}

/// Inverse transform of an 8x8 block, rows first, without the final rounding.
template <class P>
constexpr void inverse_8x8(typename P::Value* block) {
  for (int y = 0; y < 8; ++y) inverse_8<P>(block + 8 * y, 1);
  for (int x = 0; x < 8; ++x) inverse_8<P>(block + x, 8);
}

/// H4 * x for four values that lie `stride` apart; the rows of H4 have 0, 1, 2 and 3 changes of sign. Pair rules the
/// sums and differences of two values, Sum what is made of those.
template <class Pair, class Sum = Pair>
constexpr void hadamard_4(typename Pair::Value* x, std::ptrdiff_t stride) {
  const auto a = Pair::add(x[0], x[3 * stride]), d = Pair::sub(x[0], x[3 * stride]);
  const auto b = Pair::add(x[stride], x[2 * stride]), c = Pair::sub(x[stride], x[2 * stride]);
  x[0] = Sum::add(a, b);
  x[stride] = Sum::add(d, c);
  x[2 * stride] = Sum::sub(a, b);
  x[3 * stride] = Sum::sub(d, c);
}

/// H4 * M * H4 of a 4x4 block, columns first.
template <class P>
constexpr void hadamard_4x4(typename P::Value* block) {
  for (int x = 0; x < 4; ++x) hadamard_4<P>(block + x, 4);
  for (int y = 0; y < 4; ++y) hadamard_4<P>(block + 4 * y, 1);
}

/// H2 * M * H2 of a 2x2 block, rows first.
template <class P>
constexpr void hadamard_2x2(typename P::Value* block) {
  const auto a = P::add(block[0], block[1]), b = P::sub(block[0], block[1]);
  const auto c = P::add(block[2], block[3]), d = P::sub(block[2], block[3]);
  block[0] = P::add(a, c), block[1] = P::add(b, d);
  block[2] = P::sub(a, c), block[3] = P::sub(b, d);
}

/// H4 * M * H2 of four rows of two, columns first. Pair rules the first sums and differences of the columns, Sum what
/// is made of those.
template <class Pair, class Sum>
constexpr void hadamard_2x4(typename Pair::Value* block) {
  for (int x = 0; x < 2; ++x) hadamard_4<Pair, Sum>(block + x, 2);
  for (int y = 0; y < 4; ++y) {
    typename Pair::Value* row = block + 2 * y;
    const auto sum = Sum::add(row[0], row[1]), difference = Sum::sub(row[0], row[1]);
    row[0] = sum, row[1] = difference;
  }
}

/// How a product of coefficient and scale becomes a dequantised value: a rounded shift to the right, or one to the
/// left.
struct Rescale {
  Mox32s rounding;
  int right, left;

  constexpr Mox32s operator()(Mox32s product) const { return shl32(add32(product, rounding) >> right, left); }
};

/// Scales carry `whole` bits of fraction: below qp / 6 = whole they are rounded off, above it the shift goes left.
constexpr Rescale rescale_at(int per, int whole) {
  return per < whole ? Rescale{1 << (whole - 1 - per), whole - per, 0} : Rescale{0, 0, per - whole};
}
/// Of 4x4 coefficients, of luma DC, 4:2:2 chroma DC and 8x8 coefficients, and of 4:2:0 chroma DC, which is not rounded.
constexpr Rescale rescale_4x4(int per) { return rescale_at(per, 4); }
constexpr Rescale rescale_8x8(int per) { return rescale_at(per, 6); }
constexpr Rescale rescale_2x2(int per) {
  const Rescale rounded = rescale_at(per, 5);
  return {0, rounded.right, rounded.left};
}
static_assert(rescale_4x4(3)(-3) == -1 && rescale_4x4(4)(7) == 7 && rescale_8x8(8)(7) == 28);
static_assert(rescale_2x2(4)(-3) == -2 && rescale_2x2(5)(-3) == -3 && rescale_2x2(6)(-3) == -6);

}  // namespace mox::px
