/// Vector kernels of AVS intra prediction.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "avs/intra_px.hpp"
#include "frame/access.hpp"
#include "frame/generation.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

using AvsBytes = simd::u8<1>;

MOX_INLINE AvsBytes avs_all(Mox8u value) { return simd::splat<simd::u8, 1>(value); }
/// Mean of two, halves downwards.
MOX_INLINE AvsBytes avs_mean(AvsBytes a, AvsBytes b) { return avg(a, b) - ((a ^ b) & avs_all(1)); }
/// (a + 2 b + c + 2) >> 2
MOX_INLINE AvsBytes avs_low_pass(AvsBytes a, AvsBytes b, AvsBytes c) { return avg(avs_mean(a, c), b); }

/// An edge in registers: the samples 1 to 16 beside and beyond the block, and the corner all over.
struct AvsEdgeBytes {
  AvsBytes beside, corner;

  /// Low-passed samples at places 1 to 16.
  MOX_INLINE AvsBytes smoothed() const {
    const auto last = lookup(beside, avs_all(15));
    return avs_low_pass(align<15>(beside, corner), beside, align<1>(last, beside));
  }
};

/// A block in the plane and the neighbours that it can use.
struct AvsNeighbourhood {
  Mox8u* first;
  std::ptrdiff_t step;
  Mox32u neighbours;

  MOX_INLINE AvsEdgeBytes above() const {
    const Mox8u* const row = first - step;
    if (neighbours & kAvsAboveRight) return edge({simd::raw16(row)}, *row);
    return edge(lo64(AvsBytes{simd::raw8(row)}, avs_all(row[7])), *row);
  }
  MOX_INLINE AvsEdgeBytes left() const {
    const Mox8u* const column = first - 1;
    const auto lower = neighbours & kAvsBelowLeft ? eight(column + 8 * step) : avs_all(column[7 * step]);
    return edge(lo64(eight(column), lower), *column);
  }
  /// Stores row(y) for all rows.
  template <class Row>
  MOX_INLINE void fill(Row row) const {
    for (int y = 0; y < 8; ++y) simd::raw_store8(first + y * step, row(y).r);
  }
  /// Stores the 8 samples from begin(y) of a line of 16 on for all rows.
  template <class Begin>
  MOX_INLINE void fill_from(AvsBytes line, Begin begin) const {
    alignas(16) Mox8u samples[16];
    simd::raw_store16(samples, line.r);
    for (int y = 0; y < 8; ++y) std::memcpy(first + y * step, samples + begin(y), 8);
  }

 private:
  MOX_INLINE AvsEdgeBytes edge(AvsBytes beside, Mox8u next) const {
    return {beside, avs_all(neighbours & kAvsCorner ? first[-step - 1] : next)};
  }
  /// Eight samples of a column.
  MOX_INLINE AvsBytes eight(const Mox8u* column) const {
    std::uint64_t samples = 0;
    for (int i = 0; i < 8; ++i) samples |= std::uint64_t{column[i * step]} << (8 * i);
    return {simd::raw8(&samples)};
  }
};

MOX_INLINE void predict_avs_dc(const AvsNeighbourhood& block) {
  AvsBytes columns = avs_all(128);
  if (block.neighbours & kAvsAbove) columns = block.above().smoothed();
  if (!(block.neighbours & kAvsLeft)) return block.fill([=](int) { return columns; });
  const auto rows = block.left().smoothed();
  const auto row = [=](int y) { return lookup(rows, avs_all(static_cast<Mox8u>(y))); };
  if (!(block.neighbours & kAvsAbove)) return block.fill(row);
  block.fill([=](int y) { return avs_mean(columns, row(y)); });
}

MOX_INLINE void predict_avs_down_left(const AvsNeighbourhood& block) {
  const auto line = avs_mean(block.above().smoothed(), block.left().smoothed());
  block.fill_from(align<1>(line, line), [](int y) { return y; });
}

/// The line from c[8] by the corner to r[8] is 17 samples long, 15 of which are low-passed.
MOX_INLINE void predict_avs_down_right(const AvsNeighbourhood& block) {
  alignas(16) static constexpr Mox8u kReversed[16] = {7, 6, 5, 4, 3, 2, 1, 0};
  const AvsEdgeBytes r = block.above();
  const auto c = lookup(block.left().beside, simd::table<simd::u8, 1>(kReversed));
  const auto fromCorner = align<15>(r.beside, r.corner), end = hi64(fromCorner, fromCorner);
  const auto line = lo64(c, fromCorner);
  block.fill_from(avs_low_pass(line, align<1>(end, line), align<2>(end, line)), [](int y) { return 7 - y; });
}

MOX_INLINE void predict_avs_plane(const AvsNeighbourhood& block) {
  const Mox8u* const r = block.first - block.step - 1;
  Mox8u c[9];
  for (int i = 0; i < 9; ++i) c[i] = r[i * block.step];
  const Mox32s b = px::avs_slope(r), d = px::avs_slope(c);  // 1355 at most
  alignas(16) static constexpr Mox16s kColumns[8] = {-3, -2, -1, 0, 1, 2, 3, 4};
  const auto first = simd::table<simd::s16, 1>(kColumns) * simd::splat<simd::s16, 1>(b) +
                     simd::splat<simd::s16, 1>(16 * (r[8] + c[8]) + 16);  // all sums within 19016
  block.fill([=](int y) {
    const auto row = simd::shr<5>(first + simd::splat<simd::s16, 1>((y - 3) * d));
    return packus(row, row);
  });
}

inline void predict_avs_intra(Mox8u* dst, std::ptrdiff_t step, Mox32u mode, Mox32u neighbours) {
  const AvsNeighbourhood block{dst, step, neighbours};
  switch (mode) {
    case kAvsVertical: {
      const AvsBytes row{simd::raw8(dst - step)};
      return block.fill([=](int) { return row; });
    }
    case kAvsHorizontal: return block.fill([=](int y) { return avs_all(dst[y * step - 1]); });
    case kAvsDC: return predict_avs_dc(block);
    case kAvsDownLeft: return predict_avs_down_left(block);
    case kAvsDownRight: return predict_avs_down_right(block);
    default: return predict_avs_plane(block);
  }
}

}  // namespace mox::vec
