/// Portable kernels of reconstruction with scaling tables, and of lossless reconstruction.
///
/// A scaled coefficient is ((coefficient * scale + rounding) >> right) << left; the three come from the QP, see
/// rescale_4x4 and its relatives. Steps are in bytes; prediction and destination may be the same.
#pragma once

#include "h264/inverse_transform_px.hpp"
#include "h264/transform_core.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// pDC or null. With `ac` the residual replaces the coefficients. Scaled values wrap at 16 bits, the transform
/// saturates. Without `ac`, pDC is given and no coefficient is read.
inline void dequant_transform_residual_and_add_h264_high_sse2(const Mox8u* pPred, Mox16s* pCoeff,
                                                              const Mox16s* pQuantTable, const Mox16s* pDC, Mox8u* pDst,
                                                              Mox32s predStep, Mox32s dstStep, Mox32s rounding,
                                                              Mox32s right, Mox32s left, Mox32s ac) {
  if (!ac) return add_dc(pPred, predStep, pDst, dstStep, *pDC);
  const Rescale rescale{rounding, right, left};
  for (int i = 0; i < 16; ++i) pCoeff[i] = wrap16(rescale(pCoeff[i] * pQuantTable[i]));
  if (pDC) pCoeff[0] = *pDC;
  inverse_4x4<Sat16>(pCoeff);
  add_to_prediction<4>(pPred, predStep, pDst, dstStep, 255, [pCoeff](int x, int y) { return pCoeff[4 * y + x]; });
}

/// A quadrant of four blocks with AC coefficients. pDC or null: the values of the lower blocks are dcStep behind those
/// of the upper ones.
inline void dequant_transform_residual_and_add_h264_high_quadrant(Mox8u* pSrcDst, Mox32s step, const Mox16s* pDC,
                                                                  int dcStep, Mox16s* pCoeff, const Mox16s* pQuantTable,
                                                                  const Rescale& by) {
  for (int i = 0; i < 4; ++i) {
    Mox8u* const block = pSrcDst + i / 2 * 4 * std::ptrdiff_t{step} + i % 2 * 4;
    const Mox16s* const dc = pDC ? pDC + i / 2 * dcStep + i % 2 : nullptr;
    dequant_transform_residual_and_add_h264_high_sse2(block, pCoeff + 16 * i, pQuantTable, dc, block, step, step,
                                                      by.rounding, by.right, by.left, 1);
  }
}

/// Values that were shifted to the right saturate, others wrap. The residual replaces the coefficients.
inline void dequant_transform_residual_and_add_8x8_h264_sse2(Mox8u* pDst, Mox16s* pCoeff, const Mox16s* pQuantTable,
                                                             Mox32s step, Mox32s rounding, Mox32s right, Mox32s left) {
  const Rescale rescale{rounding, right, left};
  for (int i = 0; i < 64; ++i) {
    pCoeff[i] = rescale_and_keep<Sat16, Wrap16>(rescale, pCoeff[i] * pQuantTable[i]);
  }
  residual_8x8_add_16s(pDst, step, pCoeff, pDst, step);
}

/// Two blocks side by side.
inline void dequant_transform_residual_and_add_8x8_pair(Mox8u* pDst, Mox16s* pCoeff, const Mox16s* pQuantTable,
                                                        Mox32s step, const Rescale& by) {
  for (int i = 0; i < 2; ++i) {
    dequant_transform_residual_and_add_8x8_h264_sse2(pDst + 8 * i, pCoeff + 64 * i, pQuantTable, step, by.rounding,
                                                     by.right, by.left);
  }
}

/// 16 values by raster position, in place. Limits as in 8x8 blocks.
inline void dequant_transform_luma_dc_h264_high_sse2(Mox16s* pDC, Mox32s scale, Mox32s rounding, Mox32s right,
                                                     Mox32s left) {
  const Rescale rescale{rounding, right, left};
  hadamard_4x4<Sat16>(pDC);
  for (int i = 0; i < 16; ++i) pDC[i] = rescale_and_keep<Sat16, Wrap16>(rescale, mul32(pDC[i], scale));
}

/// 4 values, in place, rounded down, wrapping.
inline void dequant_transform_chroma_dc_h264_high_sse2(Mox16s* pDC, Mox32s scale, Mox32s right, Mox32s left) {
  const Rescale rescale{0, right, left};
  hadamard_2x2<Wrap16>(pDC);
  for (int i = 0; i < 4; ++i) pDC[i] = wrap16(rescale(mul32(pDC[i], scale)));
}

/// Coefficients as differences of samples, *pDC in place of coefficient 0. Without `ac` the first sample alone changes
/// and no coefficient is read. pCoeff keeps its contents, here and in the two kernels that follow.
inline void dequant_transform_residual_and_add_h264_high_lossless_sse2(const Mox8u* pPred, const Mox16s* pCoeff,
                                                                       const Mox16s* pDC, Mox8u* pDst, Mox32s predStep,
                                                                       Mox32s dstStep, Mox32s ac) {
  add_to_prediction<4>(pPred, predStep, pDst, dstStep, 255, [=](int x, int y) -> Mox32s {
    if (x == 0 && y == 0) return *pDC;
    return ac ? pCoeff[4 * y + x] : 0;
  });
}

inline void dequant_add_residual_h264_high_lossless_sse2(const Mox8u* pPred, const Mox16s* pCoeff, Mox8u* pDst,
                                                         Mox32s predStep, Mox32s dstStep) {
  add_to_prediction<4>(pPred, predStep, pDst, dstStep, 255, [=](int x, int y) { return pCoeff[4 * y + x]; });
}

inline void lossless_transform_residual_and_add_8x8_h264_sse2(Mox8u* pDst, const Mox16s* pCoeff, Mox32s step) {
  add_to_prediction<8>(pDst, step, pDst, step, 255, [=](int x, int y) { return pCoeff[8 * y + x]; });
}

}  // namespace mox::px
