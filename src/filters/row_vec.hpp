/// What the vector kernels of the filters share: the walk along a row, and bytes as distances, choices and sums.
#pragma once

#include <cstddef>

#include "frame/arithmetic.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// Computes the columns `first` to `end` - 1 of a row by block<B>(x), which does 16 B columns from x on. The last block
/// is moved back to end with the row, so sources must not overlap the destination; a row shorter than any block goes
/// by sample(x).
template <class Kernel>
MOX_INLINE void run_row(std::ptrdiff_t first, std::ptrdiff_t end, const Kernel& kernel) {
  const auto blocks = [&]<int B>(simd::Strips<B>) {
    constexpr std::ptrdiff_t kColumns = 16 * B;
    if (end - first < kColumns) return false;
    std::ptrdiff_t x = first;
    for (; x <= end - kColumns; x += kColumns) kernel.template block<B>(x);
    if (x < end) kernel.template block<B>(end - kColumns);
    return true;
  };
  if (blocks(simd::Strips<simd::kBlocks>{})) return;
  if constexpr (simd::kBlocks > 1) {
    if (blocks(simd::Strips<1>{})) return;
  }
  for (std::ptrdiff_t x = first; x < end; ++x) kernel.sample(x);
}

template <int B>
MOX_INLINE simd::u8<B> load_columns(const Mox8u* p) {
  return simd::load_row<simd::u8, B>(p);
}

template <int B>
MOX_INLINE simd::u8<B> apart(simd::u8<B> a, simd::u8<B> b) {
  return subs(a, b) | subs(b, a);
}

/// All ones where a <= b.
template <int B>
MOX_INLINE simd::u8<B> at_most(simd::u8<B> a, simd::u8<B> b) {
  return equal(subs(a, b), simd::zero<simd::u8, B>());
}

/// All ones where the byte is below a threshold of any size.
template <int B>
MOX_INLINE simd::u8<B> below_threshold(simd::u8<B> v, Mox32s threshold) {
  return at_most(v, simd::splat<simd::u8, B>(clip(threshold, 1, 256) - 1)) &
         simd::splat<simd::u8, B>(threshold > 0 ? 255 : 0);
}

/// a where the mask is all ones, b where it is zero.
template <int B>
MOX_INLINE simd::u8<B> choose(simd::u8<B> mask, simd::u8<B> a, simd::u8<B> b) {
  return (mask & a) | andnot(mask, b);
}

template <int B>
MOX_INLINE simd::u8<B> median3(simd::u8<B> a, simd::u8<B> b, simd::u8<B> c) {
  return max(min(a, b), min(max(a, b), c));
}

/// Sums of bytes, one word for each of the 16 columns of a block: its lower and its upper eight.
template <int B>
struct ColumnSums {
  simd::s16<B> lo = simd::zero<simd::s16, B>(), hi = simd::zero<simd::s16, B>();

  /// Weights are signed bytes.
  MOX_INLINE void add(simd::u8<B> a, int weightA, simd::u8<B> b, int weightB) {
    const auto weights = simd::as<simd::u8>(simd::splat<simd::s16, B>(weightB << 8 | weightA));
    lo = lo + maddubs(lo8(a, b), weights), hi = hi + maddubs(hi8(a, b), weights);
  }
  MOX_INLINE void add(simd::u8<B> a, simd::u8<B> b) { add(a, 1, b, 1); }
  MOX_INLINE void add(simd::u8<B> a) { lo = lo + wide_lo(a), hi = hi + wide_hi(a); }

  /// (sum * factor) >> 16, a byte; factors are unsigned words of the same order.
  MOX_INLINE simd::u8<B> scaled(simd::u16<B> factorLo, simd::u16<B> factorHi) const {
    using simd::as, simd::s16, simd::u16;
    return packus(as<s16>(mulhi(as<u16>(lo), factorLo)), as<s16>(mulhi(as<u16>(hi), factorHi)));
  }
};

}  // namespace mox::vec
