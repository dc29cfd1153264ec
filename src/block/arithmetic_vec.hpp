/// Vector kernels that copy, add, subtract and average blocks, row by row.
#pragma once

#include <type_traits>

#include "block/arithmetic_px.hpp"
#include "block/rows_vec.hpp"
#include "frame/generation.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

template <int W, int H>
MoxStatus copy_block(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep) {
  for (int y = 0; y < H; ++y, src += srcStep, dst += dstStep) store_bytes<W>(load_bytes<W>(src), dst);
  return moxStsOk;
}

template <int W, int H>
MoxStatus average_block(const Mox8u* src1, Mox32s src1Step, const Mox8u* src2, Mox32s src2Step, Mox8u* dst,
                        Mox32s dstStep) {
  for (int y = 0; y < H; ++y, src1 += src1Step, src2 += src2Step, dst += dstStep) {
    store_bytes<W>(avg(load_bytes<W>(src1), load_bytes<W>(src2)), dst);
  }
  return moxStsOk;
}

/// srcDst = clip8(wrap16(srcDst + row())), where row gives a residual row of 8 words after the other.
template <class Row>
MOX_INLINE MoxStatus add_rows_8x8(Row row, Mox8u* srcDst, Mox32s srcDstStep) {
  using R = Columns<8>;
  for (int y = 0; y < 8; ++y, srcDst += srcDstStep) {
    R::store_clamped(combine(R::load(srcDst, 0), row(), [](auto p, auto r) { return p + r; }), srcDst, 0);
  }
  return moxStsOk;
}

inline MoxStatus add_8x8(const Mox16s* src, Mox32s srcStep, Mox8u* srcDst, Mox32s srcDstStep) {
  return add_rows_8x8(
      [=]() mutable {
        const auto row = Columns<8>::load_words(src, 0);
        src = step_bytes(src, srcStep);
        return row;
      },
      srcDst, srcDstStep);
}

inline MoxStatus add_constant_8x8(Mox16s value, Mox8u* srcDst, Mox32s srcDstStep) {
  const auto row = Columns<8>::Words::of(simd::splat<simd::u16, 1>(value));
  return add_rows_8x8([=] { return row; }, srcDst, srcDstStep);
}

template <int W, int H, class T>
MoxStatus subtract_block(const T* src1, Mox32s src1Step, const T* src2, Mox32s src2Step, Mox16s* dst, Mox32s dstStep) {
  using R = typename std::conditional_t<W == 4, std::type_identity<FewColumns<4, 2>>,
                                        std::type_identity<Columns<W == 4 ? 8 : W>>>::type;
  const auto words = [](const T* p, Mox32s step) {
    if constexpr (sizeof(T) == 1) {
      return R::load(p, step);
    } else {
      return R::load_words(p, step);
    }
  };
  constexpr std::ptrdiff_t kRows = R::kRows;
  for (int y = 0; y < H; y += R::kRows) {
    R::store_words(difference(words(src1, src1Step), words(src2, src2Step)), dst, dstStep);
    src1 = step_bytes(src1, kRows * src1Step), src2 = step_bytes(src2, kRows * src2Step);
    dst = step_bytes(dst, kRows * dstStep);
  }
  return moxStsOk;
}

}  // namespace mox::vec
