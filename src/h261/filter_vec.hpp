/// Vector kernel of the H.261 loop filter: rows of 8 words.
#pragma once

#include "frame/generation.hpp"
#include "h261/filter_px.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// 2 p + left + right of a row; in the first and the last column p stands for both neighbours. 0..1020.
MOX_INLINE simd::s16<1> smooth_row(const Mox8u* src) {
  alignas(16) static constexpr Mox8u kNeighbours[16] = {0, 0, 0, 2, 1, 3, 2, 4, 3, 5, 4, 6, 5, 7, 7, 7};
  const simd::u8<1> row{simd::raw8(src)};
  const auto p = wide_lo(row);
  const auto pairs = lookup(row, simd::table<simd::u8, 1>(kNeighbours));
  return maddubs(pairs, simd::splat<simd::u8, 1>(1)) + (p + p);
}

inline MoxStatus filter_8x8(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep) {
  simd::s16<1> t[8], out[8];
  for (int y = 0; y < 8; ++y, src += srcStep) t[y] = smooth_row(src);
  const auto quarter = simd::splat<simd::s16, 1>(8192), sixteenth = simd::splat<simd::s16, 1>(2048);
  out[0] = mulhrs(t[0], quarter);
  for (int y = 1; y < 7; ++y) out[y] = mulhrs((t[y - 1] + t[y]) + (t[y] + t[y + 1]), sixteenth);
  out[7] = mulhrs(t[7], quarter);
  for (int y = 0; y < 8; ++y, dst += dstStep) simd::raw_store8(dst, packus(out[y], out[y]).r);
  return moxStsOk;
}

}  // namespace mox::vec
