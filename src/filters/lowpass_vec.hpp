/// Vector kernels of the low-pass filter.
#pragma once

#include <cstddef>

#include "filters/lowpass_px.hpp"
#include "filters/row_vec.hpp"
#include "frame/generation.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// 65536 / 9, rounded up: exact for sums of nine bytes.
inline constexpr Mox32s kNinth = 7282;
constexpr bool ninth_is_exact() {
  for (Mox32s sum = 0; sum <= 9 * 255; ++sum) {
    if (sum * kNinth >> 16 != sum / 9) return false;
  }
  return true;
}
static_assert(ninth_is_exact());

struct Lowpass3x3Row {
  const Mox8u* src;
  std::ptrdiff_t step;
  Mox8u* dst;
  template <int B>
  MOX_INLINE void block(std::ptrdiff_t x) const {
    const auto at = [&](std::ptrdiff_t row, int column) { return load_columns<B>(src + row * step + x + column); };
    ColumnSums<B> sums;
    for (std::ptrdiff_t row = -1; row <= 1; ++row) sums.add(at(row, -1), at(row, 0));
    sums.add(at(-1, 1), at(0, 1));
    sums.add(at(1, 1));
    const auto ninth = simd::splat<simd::u16, B>(kNinth);
    store_row(sums.scaled(ninth, ninth), dst + x);
  }
  void sample(std::ptrdiff_t x) const { px::lowpass_3x3_row(src + x, step, dst + x, 1); }
};
inline void lowpass_3x3_row(const Mox8u* src, std::ptrdiff_t step, Mox8u* dst, Mox32s width) {
  run_row(0, width, Lowpass3x3Row{src, step, dst});
}

/// Down the columns, into words in their order.
struct WeighColumns {
  const Mox8u* src;
  std::ptrdiff_t step;
  Mox16u* columns;
  template <int B>
  MOX_INLINE void block(std::ptrdiff_t x) const {
    const auto at = [&](std::ptrdiff_t row) { return load_columns<B>(src + row * step + x); };
    ColumnSums<B> sums;
    sums.add(at(-2), 1, at(2), 1);
    sums.add(at(-1), 4, at(1), 4);
    sums.add(at(0), 6, simd::zero<simd::u8, B>(), 0);
    store16(sums.lo, columns + x, simd::strips<B>(32));
    store16(sums.hi, columns + x + 8, simd::strips<B>(32));
  }
  void sample(std::ptrdiff_t x) const { columns[x] = px::weigh_column(src + x, step); }
};
/// Along the row.
struct WeighRow {
  const Mox16u* columns;
  Mox8u* dst;
  template <int B>
  MOX_INLINE simd::s16<B> eight(const Mox16u* p) const {
    const auto at = [p](int i) { return simd::load16<simd::u16, B>(p + i, simd::strips<B>(32)); };
    const auto outer = at(0) + at(4) + simd::splat<simd::u16, B>(128), inner = at(1) + at(3) + at(2), middle = at(2);
    // 65408 at most.
    return simd::as<simd::s16>(simd::shr<8>(outer + simd::shl<2>(inner) + middle + middle));
  }
  template <int B>
  MOX_INLINE void block(std::ptrdiff_t x) const {
    store_row(packus(eight<B>(columns + x), eight<B>(columns + x + 8)), dst + x);
  }
  void sample(std::ptrdiff_t x) const { dst[x] = px::weigh_row(columns + x); }
};
inline void lowpass_5x5_row(const Mox8u* src, std::ptrdiff_t step, Mox8u* dst, Mox32s width, Mox16u* columns) {
  run_row(0, width + std::ptrdiff_t{4}, WeighColumns{src - 2, step, columns});
  run_row(0, width, WeighRow{columns, dst});
}

}  // namespace mox::vec
