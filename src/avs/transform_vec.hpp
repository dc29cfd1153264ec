/// What the vector kernels of both AVS transforms share.
#pragma once

#include "frame/arithmetic.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// Factors of two words side by side.
template <int B>
MOX_INLINE simd::s16<B> avs_pair(int first, int second) {
  return simd::as<simd::s16>(simd::splat<simd::s32, B>((first & 0xFFFF) | shl32(second, 16)));
}

/// Four columns of words, two words of each as a doubleword: [k] holds words 2 k and 2 k + 1 of the four rows.
template <int B>
struct AvsPairColumns {
  simd::s16<B> pair[4];

  MOX_INLINE explicit AvsPairColumns(const simd::s16<B> (&row)[4]) {
    using simd::as, simd::s16, simd::s32;
    const auto lo01 = lo32(as<s32>(row[0]), as<s32>(row[1])), lo23 = lo32(as<s32>(row[2]), as<s32>(row[3]));
    const auto hi01 = hi32(as<s32>(row[0]), as<s32>(row[1])), hi23 = hi32(as<s32>(row[2]), as<s32>(row[3]));
    pair[0] = as<s16>(lo64(lo01, lo23)), pair[1] = as<s16>(hi64(lo01, lo23));
    pair[2] = as<s16>(lo64(hi01, hi23)), pair[3] = as<s16>(hi64(hi01, hi23));
  }
};

}  // namespace mox::vec
