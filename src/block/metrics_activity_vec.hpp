/// Vector kernels for what a block says about itself, frame or field, and for differences with their sum.
#pragma once

#include <cstddef>
#include <type_traits>

#include "block/metrics_activity_px.hpp"
#include "frame/generation.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// A row of 16 bytes.
struct ByteRow {
  simd::u8<1> v;
  explicit ByteRow(const Mox8u* p) : v(simd::load_row<simd::u8, 1>(p)) {}
  MOX_INLINE simd::s32<1> distance(const ByteRow& other) const { return sad(v, other.v); }
  static Mox32s total(simd::s32<1> sum) { return total_of_sad(sum); }
};

/// A row of 16 words. Sums wrap at 16 bits, so -32768 may stand for 32768.
struct WordRow {
  static constexpr int B = simd::kBlocks, kVectors = 2 / B;
  simd::s16<B> v[kVectors];
  explicit WordRow(const Mox16s* p) {
    for (int i = 0; i < kVectors; ++i) v[i] = simd::load_row<simd::s16, B>(p + 8 * B * i);
  }
  MOX_INLINE simd::s16<B> distance(const WordRow& other) const {
    auto sum = abs(v[0] - other.v[0]);
    for (int i = 1; i < kVectors; ++i) sum = sum + abs(v[i] - other.v[i]);
    return sum;
  }
  static Mox32s total(simd::s16<B> sum) { return simd::total(madd(sum, simd::splat<simd::s16, B>(1))) & 0xFFFF; }
};

template <class T>
MoxStatus frame_field_sad(const T* src, Mox32s srcStep, Mox32s* frame, Mox32s* field) {
  using Row = std::conditional_t<sizeof(T) == 1, ByteRow, WordRow>;
  const auto next = [&] { return src = step_bytes(src, srcStep), Row(src); };
  Row above(src), row = next();
  auto frameSum = above.distance(row), fieldSum = frameSum - frameSum;
  for (int y = 2; y < 16; ++y) {
    const Row below = next();
    fieldSum = fieldSum + above.distance(below);
    if (y != 8) frameSum = frameSum + row.distance(below);
    above = row, row = below;
  }
  *frame = Row::total(frameSum), *field = Row::total(fieldSum);
  return moxStsOk;
}

inline MoxStatus subtract_sad_8x8(const Mox8u* src1, Mox32s src1Step, const Mox8u* src2, Mox32s src2Step, Mox16s* dst,
                                  Mox32s dstStep, Mox32s* sad8x8) {
  auto sum = simd::zero<simd::s32, 1>();
  for (int y = 0; y < 8; ++y, src1 += src1Step, src2 += src2Step, dst = step_bytes(dst, dstStep)) {
    const simd::u8<1> a{simd::raw8(src1)}, b{simd::raw8(src2)};
    store_row(simd::wide_low(a) - simd::wide_low(b), dst);
    sum = sum + sad(a, b);
  }
  *sad8x8 = simd::element<0>(sum);  // the upper eight bytes are zero
  return moxStsOk;
}

}  // namespace mox::vec
