/// What vector kernels of the quantisers of whole 8x8 blocks share: 8 coefficients a block of the vector.
#pragma once

#include "simd/vec.hpp"

namespace mox::vec {

using Coefficients = simd::s16<simd::kBlocks>;
inline constexpr int kCoefficients = 8 * simd::kBlocks;

MOX_INLINE Coefficients load_coefficients(const Mox16s* p) { return simd::load_row<simd::s16, simd::kBlocks>(p); }
MOX_INLINE Coefficients splat(int value) { return simd::splat<simd::s16, simd::kBlocks>(value); }
/// All ones where v is negative.
MOX_INLINE Coefficients negative(Coefficients v) { return simd::shr<15>(v); }
MOX_INLINE Coefficients clip(Coefficients v, int low, int high) { return min(max(v, splat(low)), splat(high)); }

/// Replaces each vector v of a block by one(v, index of its first coefficient), and returns how many results are 0.
template <class One>
MOX_INLINE Mox32s replace_and_count_zeros(Mox16s* block, One one) {
  auto zeros = splat(0);  // 8 a lane at most
  for (int i = 0; i < 64; i += kCoefficients) {
    const Coefficients v = one(load_coefficients(block + i), i);
    zeros = zeros - equal(v, splat(0));
    store_row(v, block + i);
  }
  return total(madd(zeros, splat(1)));
}

}  // namespace mox::vec
