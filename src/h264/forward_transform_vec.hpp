/// Vector kernels of the H.264 forward transforms alone.
#pragma once

#include <cstddef>

#include "frame/generation.hpp"
#include "h264/forward_transform_px.hpp"
#include "h264/inverse_transform_high_vec.hpp"
#include "h264/transform_vec.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// One pass over vectors of 4 or 8 lines.
template <class P, int B, class V, int N>
[[gnu::flatten]] MOX_INLINE void forward_pass(V (&x)[N]) {
  if constexpr (N == 8) {
    px::forward_8<TransformLanes<P, B>>(x, 1);
  } else {
    px::forward_4<TransformLanes<P, B>>(x, 1);
  }
}

/// The same over the columns of a block of words: px::forward_4 on halves of vectors.
template <class P>
MOX_INLINE WordBlock4x4 forward_columns(WordBlock4x4 block) {
  using Lanes = TransformLanes<P, 1>;
  const auto turned = simd::as<simd::s16>(simd::permute<0x4E>(simd::as<simd::s32>(block.lower)));
  const auto ab = Lanes::add(block.upper, turned), dc = Lanes::sub(block.upper, turned), twice = Lanes::add(dc, dc);
  return {Lanes::add(lo64(ab, twice), hi64(ab, dc)), Lanes::sub(lo64(ab, dc), hi64(ab, twice))};
}
template <class P>
MOX_INLINE WordBlock4x4 forward_transform(WordBlock4x4 block) {
  return forward_columns<P>(transposed(forward_columns<P>(transposed(block))));
}

template <class P>
MoxStatus residual_4x4_forward(const typename P::Value* pSrc, typename P::Value* pDst) {
  if constexpr (std::is_same_v<P, Wrap32>) {
    auto rows = load_rows_4x4(pSrc);
    transpose(rows.x);
    forward_pass<P, 1>(rows.x);
    transpose(rows.x);
    forward_pass<P, 1>(rows.x);
    store_rows_4x4(rows, pDst);
  } else {
    store_block_4x4(forward_transform<P>(load_block_4x4(pSrc)), pDst);
  }
  return moxStsOk;
}

inline MoxStatus prediction_4x4_forward(const Mox8u* pSrc, Mox32s srcStep, Mox16s* pDst) {
  const auto samples = simd::load_rows<4, 4>(pSrc, srcStep);
  store_block_4x4(forward_transform<Wrap16>({wide_lo(samples), wide_hi(samples)}), pDst);
  return moxStsOk;
}

template <class P>
MoxStatus luma_8x8_forward(const Mox16s* pSrc, typename P::Value* pDst) {
  if constexpr (std::is_same_v<P, Wrap32>) {
    constexpr int B = LongBlock8x8::B;
    auto block = make_rows([=](int y, int x) { return simd::load_row_wide<B>(pSrc + 8 * y + x); });
    for (int pass = 0; pass < 2; ++pass) {
      transpose(block.part);
      for (auto& x : block.part) forward_pass<P, B>(x);
    }
    for (int i = 0; i < LongBlock8x8::kParts; ++i) {
      for (int y = 0; y < 8; ++y) store_row(block.part[i][y], pDst + 8 * y + 4 * i);
    }
  } else {
    simd::s16<1> x[8];
    load_blocks_8x8(pSrc, x);
    for (int pass = 0; pass < 2; ++pass) {
      transpose(x);
      forward_pass<P, 1>(x);
    }
    for (int y = 0; y < 8; ++y) store_row(x[y], pDst + 8 * y);
  }
  return moxStsOk;
}

}  // namespace mox::vec
