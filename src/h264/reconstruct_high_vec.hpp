/// Vector kernels of reconstruction with 32-bit coefficients and 16-bit samples.
#pragma once

#include "frame/generation.hpp"
#include "h264/inverse_transform_high_vec.hpp"
#include "h264/reconstruct_high_px.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

inline void high_add_4x4(Mox16u* pSrcDst, Mox32s step, Mox32s* pCoeff, const Mox32s* pDC, Mox32s qp,
                         const Mox16s* pQuantTable, Mox32s limit) {
  add_scaled_4x4(pSrcDst, step, pCoeff, pDC, pSrcDst, step, qp, pQuantTable, limit);
}

inline void high_add_quadrant(Mox16u* pSrcDst, Mox32s step, Mox32s* pCoeff, const Mox32s* pDC, int dcStep, Mox32s qp,
                              const Mox16s* pQuantTable, Mox32s limit) {
  constexpr int B = simd::kBlocks;
  for (int i = 0; i < 4; i += B) {
    Mox16u* const block = pSrcDst + i / 2 * 4 * std::ptrdiff_t{step} + i % 2 * 4;
    const Mox32s* const dc = pDC ? pDC + i / 2 * dcStep + i % 2 : nullptr;
    add_scaled_4x4<B>(block, step, pCoeff + 16 * i, dc, block, step, qp, pQuantTable, limit);
  }
}

inline void high_add_dc_4x4(Mox16u* pSrcDst, Mox32s step, Mox32s dc, Mox32s limit) {
  const auto r = simd::splat<simd::s32, 1>(px::round6<Wrap32>(dc));
  add_to_prediction_4x4(pSrcDst, step, pSrcDst, step, LongRows4x4<1>{{r, r, r, r}}, limit);
}

/// The sum of samples and the residual, in place.
MOX_INLINE void add_in_place(Mox16u* pSrcDst, std::ptrdiff_t step, const LongBlock8x8& residual, Mox32s limit) {
  store_samples(residual, pSrcDst, step, limit,
                [=](auto v, int y, int x) { return v + simd::load_row_wide<LongBlock8x8::B>(pSrcDst + y * step + x); });
}

inline void high_add_8x8(Mox16u* pSrcDst, Mox32s step, Mox32s* pCoeff, Mox32s qp, const Mox16s* pQuantTable,
                         Mox32s limit) {
  constexpr int B = LongBlock8x8::B;
  const px::Rescale by = kRescale8x8[qp];
  auto block = make_rows([=](int y, int x) {
    const int i = 8 * y + x;
    return rescaled(simd::load_row<simd::s32, B>(pCoeff + i), simd::load_row_wide<B>(pQuantTable + i), by);
  });
  inverse_passes(block);
  for (int i = 0; i < LongBlock8x8::kParts; ++i) {
    for (int y = 0; y < 8; ++y) {
      block.part[i][y] = px::round6<TransformLanes<Wrap32, B>>(block.part[i][y]);
      store_row(block.part[i][y], pCoeff + 8 * y + 4 * i);
    }
  }
  add_in_place(pSrcDst, step, block, limit);
}

template <int N>
void high_add_lossless(Mox16u* pSrcDst, Mox32s step, const Mox32s* pCoeff, Mox32s limit) {
  if constexpr (N == 4) {
    add_to_prediction_4x4(pSrcDst, step, pSrcDst, step, load_rows_4x4(pCoeff), limit);
  } else {
    constexpr int B = LongBlock8x8::B;
    add_in_place(pSrcDst, step,
                 make_rows([=](int y, int x) { return simd::load_row<simd::s32, B>(pCoeff + 8 * y + x); }), limit);
  }
}

}  // namespace mox::vec
