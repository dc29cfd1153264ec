/// Short rows as vectors: kRows rows of kBytes bytes in each of B blocks, `gap` bytes from one to the next; or a row
/// of 16 bytes in each block; or one row that fills all blocks.
#pragma once

#include <cstddef>

#include "moxvc/types.h"
#include "simd/vec.hpp"

namespace mox::vec {

template <template <int> class V, int B, int kBytes, int kRows>
MOX_INLINE V<B> load_row_blocks(const void* p, std::ptrdiff_t gap) {
  if constexpr (kBytes == 16 * B)
    return simd::load_row<V, B>(p);
  else if constexpr (kBytes == 16)
    return simd::load16<V, B>(p, simd::strips<B>(gap));
  else
    return simd::gather<V, B>(p, simd::strips<B>(kRows * gap),
                              [gap](const Mox8u* q) { return simd::load_rows<kBytes, kRows>(q, gap).r; });
}

template <int kBytes, int kRows, template <int> class V, int B>
MOX_INLINE void store_row_blocks(V<B> v, void* p, std::ptrdiff_t gap) {
  if constexpr (kBytes == 16 * B)
    simd::store_row(v, p);
  else if constexpr (kBytes == 16)
    simd::store16(v, p, simd::strips<B>(gap));
  else
    simd::scatter<0, B>(v.r, p, simd::strips<B>(kRows * gap),
                        [gap](Mox8u* q, auto one) { simd::store_rows<kBytes, kRows>({one}, q, gap); });
}

}  // namespace mox::vec
