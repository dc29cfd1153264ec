/// Vector kernels of 8-bit reconstruction with scaling tables, and of lossless reconstruction.
#pragma once

#include "frame/generation.hpp"
#include "h264/inverse_transform_vec.hpp"
#include "h264/reconstruct_scaled_px.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

inline void dequant_transform_residual_and_add_h264_high_sse2(const Mox8u* pPred, Mox16s* pCoeff,
                                                              const Mox16s* pQuantTable, const Mox16s* pDC, Mox8u* pDst,
                                                              Mox32s predStep, Mox32s dstStep, Mox32s rounding,
                                                              Mox32s right, Mox32s left, Mox32s ac) {
  if (!ac) return add_dc(pPred, predStep, pDst, dstStep, *pDC);
  const ListScale scale{pQuantTable, {rounding, right, left}};
  add_block<Sat16>(pPred, predStep, pDst, dstStep, pDC, pCoeff, pCoeff, scale);
}

inline void dequant_transform_residual_and_add_h264_high_quadrant(Mox8u* pSrcDst, Mox32s step, const Mox16s* pDC,
                                                                  int dcStep, Mox16s* pCoeff, const Mox16s* pQuantTable,
                                                                  const px::Rescale& by) {
  add_quadrant<true>(pSrcDst, step, pDC, dcStep, pCoeff, ListScale{pQuantTable, by});
}

/// B blocks side by side.
template <int B>
MOX_INLINE void add_scaled_8x8(Mox8u* samples, Mox32s step, Mox16s* coeff, const Mox16s* scales,
                               const px::Rescale& by) {
  simd::s16<B> x[8];
  load_blocks_8x8(coeff, x);
  for (int y = 0; y < 8; ++y) x[y] = rescaled<Sat16>(x[y], simd::table<simd::s16, B>(scales + 8 * y), by);
  add_residual_8x8(samples, step, samples, step, x, coeff);
}

inline void dequant_transform_residual_and_add_8x8_h264_sse2(Mox8u* pDst, Mox16s* pCoeff, const Mox16s* pQuantTable,
                                                             Mox32s step, Mox32s rounding, Mox32s right, Mox32s left) {
  add_scaled_8x8<1>(pDst, step, pCoeff, pQuantTable, {rounding, right, left});
}

inline void dequant_transform_residual_and_add_8x8_pair(Mox8u* pDst, Mox16s* pCoeff, const Mox16s* pQuantTable,
                                                        Mox32s step, const px::Rescale& by) {
  constexpr int B = simd::kBlocks;
  for (int i = 0; i < 2; i += B) add_scaled_8x8<B>(pDst + 8 * i, step, pCoeff + 64 * i, pQuantTable, by);
}

inline void dequant_transform_luma_dc_h264_high_sse2(Mox16s* pDC, Mox32s scale, Mox32s rounding, Mox32s right,
                                                     Mox32s left) {
  scale_luma_dc<Sat16>(pDC, scale, {rounding, right, left});
}

inline void dequant_transform_residual_and_add_h264_high_lossless_sse2(const Mox8u* pPred, const Mox16s* pCoeff,
                                                                       const Mox16s* pDC, Mox8u* pDst, Mox32s predStep,
                                                                       Mox32s dstStep, Mox32s ac) {
  const auto zero = simd::zero<simd::s16, 1>();
  auto block = ac ? load_block_4x4(pCoeff) : WordBlock4x4{zero, zero};
  block.upper = simd::with_first_word(block.upper, *pDC);
  add_to_prediction_4x4(pPred, predStep, pDst, dstStep, block);
}

inline void dequant_add_residual_h264_high_lossless_sse2(const Mox8u* pPred, const Mox16s* pCoeff, Mox8u* pDst,
                                                         Mox32s predStep, Mox32s dstStep) {
  add_to_prediction_4x4(pPred, predStep, pDst, dstStep, load_block_4x4(pCoeff));
}

inline void lossless_transform_residual_and_add_8x8_h264_sse2(Mox8u* pDst, const Mox16s* pCoeff, Mox32s step) {
  simd::s16<1> x[8];
  load_blocks_8x8(pCoeff, x);
  add_to_prediction_8x8(pDst, step, pDst, step, x);
}

}  // namespace mox::vec
