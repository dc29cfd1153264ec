/// Vector kernel of plane expansion.
#pragma once

#include "frame/generation.hpp"
#include "h264/expansion_px.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// Whole vectors and a last one that overlaps them; sides narrower than a vector are filled as elsewhere.
inline MoxStatus expand_plane(const ExpandedRows& at) {
  constexpr int B = simd::kBlocks, kBytes = 16 * B;
  if (at.side < kBytes) return px::expand_plane(at);
  return px::expand_rows(at, [](Mox8u value, Mox8u* first, Mox32s count) {
    const auto all = simd::splat<simd::u8, B>(value);
    for (Mox32s x = 0; x < count - kBytes; x += kBytes) store_row(all, first + x);
    store_row(all, first + (count - kBytes));
  });
}

}  // namespace mox::vec
