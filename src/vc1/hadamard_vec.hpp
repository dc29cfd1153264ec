/// Vector 8x8 Hadamard transform with the sum of its magnitudes: a register for each row, then for each column.
#pragma once

#include "frame/generation.hpp"
#include "simd/vec.hpp"
#include "vc1/hadamard_px.hpp"

namespace mox::vec {

using Vc1Rows8x8 = simd::s16<1>[8];

/// All lines at once, in natural order; each sum saturates.
MOX_INLINE void vc1_hadamard_lines(Vc1Rows8x8& v) {
  for (int distance = 1; distance < 8; distance *= 2) {
    for (int i = 0; i < 8; ++i) {
      if (i & distance) continue;
      const auto a = v[i], b = v[i + distance];
      v[i] = adds(a, b), v[i + distance] = subs(a, b);
    }
  }
}

MOX_INLINE void vc1_transpose(Vc1Rows8x8& v) {
  for (int step = 0; step < 3; ++step) {  // each brings one bit of the row's number into that of the column
    Vc1Rows8x8 next;
    for (int i = 0; i < 4; ++i) next[2 * i] = lo16(v[i], v[i + 4]), next[2 * i + 1] = hi16(v[i], v[i + 4]);
    for (int i = 0; i < 8; ++i) v[i] = next[i];
  }
}

template <class Sample>
MoxStatus vc1_hadamard_sum(const Sample* src, Mox32s srcStep, Mox16s* dst, Mox32s* result) {
  Vc1Rows8x8 v;
  for (int y = 0; y < 8; ++y) {
    const Sample* const row = step_bytes(src, y * std::ptrdiff_t{srcStep});
    if constexpr (sizeof(Sample) == 1) {
      v[y] = simd::load8_wide(row, simd::strips<1>(0));
    } else {
      v[y] = simd::load_row<simd::s16, 1>(row);
    }
  }
  vc1_transpose(v);
  vc1_hadamard_lines(v);
  vc1_transpose(v);
  vc1_hadamard_lines(v);
  for (int y = 0; y < 8; ++y) store_row(v[y], dst + 8 * y);
  for (auto& row : v) row = max(row, subs(simd::zero<simd::s16, 1>(), row));  // 32767 for -32768
  for (int count = 4; count > 0; count /= 2) {
    for (int i = 0; i < count; ++i) v[i] = adds(v[2 * i], v[2 * i + 1]);
  }
  store(result, total(madd(v[0], simd::splat<simd::s16, 1>(1))));
  return moxStsOk;
}

}  // namespace mox::vec
