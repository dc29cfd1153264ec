#include "moxvc/h264_inverse_transform.h"

#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "h264/inverse_transform_high_vec.hpp"
#include "h264/inverse_transform_px.hpp"
#include "h264/inverse_transform_switching_vec.hpp"
#include "h264/inverse_transform_vec.hpp"

using namespace mox;

namespace {
/// Largest QP: of luma and of 4:2:0 chroma, at 8 and at 14 bits, and the largest QP / 6 of either depth.
constexpr Mox32s kQp8 = 51, kQp14 = 87, kChromaQp8 = 39, kChromaQp14 = 75, kPer8 = 8, kPer14 = 14;
}  // namespace

MoxStatus moxiDequantTransformResidual_H264_16s_C1I(Mox16s* pSrcDst, Mox32s step, const Mox16s* pDC, Mox32s ac,
                                                    Mox32s qp) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(qp, 0, kQp8)) return moxStsOutOfRange;
  if (step < 8) return moxStsBadStep;
  return active::dequant_transform_residual(pSrcDst, step, pDC, ac, qp);
}

MoxStatus moxiDequantTransformResidualAndAdd_H264_16s_C1I(const Mox8u* pPred, Mox16s* pSrcDst, const Mox16s* pDC,
                                                          Mox8u* pDst, Mox32s predStep, Mox32s dstStep, Mox32s qp,
                                                          Mox32s ac) {
  if (any_null(pPred, pDst)) return moxStsNullPointer;
  if (any_null(pSrcDst) && (any_null(pDC) || ac)) return moxStsNullPointer;
  if (outside(qp, 0, kQp8)) return moxStsOutOfRange;
  active::dequant_transform_residual_and_add_h264_sse2(pPred, pSrcDst, pDC, pDst, predStep, dstStep, qp, ac);
  return moxStsOk;
}

MoxStatus moxiDequantTransformResidual_SISP_H264_16s_C1I(Mox16s* pSrcDst, const Mox16s* pPredictCoef, const Mox16s* pDC,
                                                         Mox32s ac, Mox32s qp, Mox32s qs, Mox32s switchFlag) {
  if (any_null(pSrcDst, pPredictCoef)) return moxStsNullPointer;
  return active::dequant_transform_residual_sisp(pSrcDst, pPredictCoef, pDC, ac, qp, qs, switchFlag);
}

MoxStatus moxiTransformDequantLumaDC_H264_16s_C1I(Mox16s* pSrcDst, Mox32s qp) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(qp, 0, kQp8)) return moxStsOutOfRange;
  active::dequant_transform_luma_dc_h264_sse2(pSrcDst, InvQuantLuma16x16DCTable[qp], luma_dc_shift(qp));
  return moxStsOk;
}

MoxStatus moxiTransformDequantChromaDC_H264_16s_C1I(Mox16s* pSrcDst, Mox32s qp) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(qp, 0, kQp8)) return moxStsOutOfRange;
  active::dequant_transform_chroma_dc_h264_sse2(pSrcDst, InvQuantTable[qp][0]);
  return moxStsOk;
}

MoxStatus moxiTransformDequantChromaDC_SISP_H264_16s_C1I(Mox16s* pSrcDst, const Mox16s* pDCPredict, Mox32s qp,
                                                         Mox32s qs, Mox32s switchFlag) {
  if (any_null(pSrcDst, pDCPredict)) return moxStsNullPointer;
  return active::dequant_transform_chroma_dc_sisp(pSrcDst, pDCPredict, qp, qs, switchFlag);
}

MoxStatus moxiTransformQuantInvAddPred4x4_H264_16s_C1IR(const Mox8u* pPred, Mox32s predStep, Mox16s* pSrcDst,
                                                        const Mox16s* pDC, Mox8u* pDst, Mox32s dstStep, Mox32s qp,
                                                        Mox32s ac, const Mox16s* pLevelScale) {
  if (any_null(pPred, pSrcDst, pDst)) return moxStsNullPointer;
  if (outside(qp, 0, kQp8)) return moxStsOutOfRange;
  return active::scaled_residual_add_16s(pPred, predStep, pSrcDst, pDC, pDst, dstStep, qp, ac, pLevelScale);
}

MoxStatus moxiTransformQuantInvAddPred4x4_H264_32s_C1IR(const Mox16u* pPred, Mox32s predStep, Mox32s* pSrcDst,
                                                        const Mox32s* pDC, Mox16u* pDst, Mox32s dstStep, Mox32s qp,
                                                        Mox32s ac, Mox32s bitDepth, const Mox16s* pLevelScale) {
  if (any_null(pPred, pSrcDst, pDst)) return moxStsNullPointer;
  if (outside(qp, 0, kQp14)) return moxStsOutOfRange;
  if (outside(bitDepth, 9, 14)) return moxStsOutOfRange;
  return active::scaled_residual_add_32s(pPred, predStep, pSrcDst, pDC, pDst, dstStep, qp, ac, bitDepth, pLevelScale);
}

MoxStatus moxiTransformQuantInvChromaDC2x2_H264_16s_C1I(Mox16s* pSrcDst, Mox32s qp, const Mox16s* pLevelScale) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(qp, 0, kChromaQp8)) return moxStsOutOfRange;
  return active::chroma_dc_2x2<Wrap16>(pSrcDst, qp, pLevelScale);
}

MoxStatus moxiTransformQuantInvChromaDC2x2_H264_32s_C1I(Mox32s* pSrcDst, Mox32s qp, const Mox16s* pLevelScale) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(qp, 0, kChromaQp14)) return moxStsOutOfRange;
  return active::chroma_dc_2x2<Wrap32>(pSrcDst, qp, pLevelScale);
}

MoxStatus moxiTransformQuantInvChromaDC2x4_H264_16s_C1I(Mox16s* pSrcDst, Mox32s qp, const Mox16s* pLevelScale) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(qp, 0, kChromaQp8)) return moxStsOutOfRange;
  return active::chroma_dc_2x4<Sat16, Wrap16>(pSrcDst, qp, pLevelScale);
}

MoxStatus moxiTransformQuantInvChromaDC2x4_H264_32s_C1I(Mox32s* pSrcDst, Mox32s qp, const Mox16s* pLevelScale) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(qp, 0, kChromaQp14)) return moxStsOutOfRange;
  return active::chroma_dc_2x4<Wrap32, Wrap32>(pSrcDst, qp, pLevelScale);
}

MoxStatus moxiTransformQuantInvLumaDC4x4_H264_16s_C1I(Mox16s* pSrcDst, Mox32s qp, const Mox16s* pLevelScale) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(qp, 0, kQp8)) return moxStsOutOfRange;
  return active::luma_dc_4x4<Sat16, Wrap16>(pSrcDst, qp, pLevelScale);
}

MoxStatus moxiTransformQuantInvLumaDC4x4_H264_32s_C1I(Mox32s* pSrcDst, Mox32s qp, const Mox16s* pLevelScale) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(qp, 0, kQp14)) return moxStsOutOfRange;
  return active::luma_dc_4x4<Wrap32, Wrap32>(pSrcDst, qp, pLevelScale);
}

MoxStatus moxiTransformResidual4x4Inv_H264_16s_C1(const Mox16s* pSrc, Mox16s* pDst) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  return active::residual_4x4<Wrap16>(pSrc, pDst);
}

MoxStatus moxiTransformResidual4x4Inv_H264_32s_C1(const Mox32s* pSrc, Mox32s* pDst) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  return active::residual_4x4<Wrap32>(pSrc, pDst);
}

MoxStatus moxiQuantLuma8x8Inv_H264_16s_C1I(Mox16s* pSrcDst, Mox32s qpPer, const Mox16s* pInvLevelScale) {
  if (any_null(pSrcDst, pInvLevelScale)) return moxStsNullPointer;
  if (outside(qpPer, 0, kPer8)) return moxStsBadQp;
  return active::dequant_8x8<Sat16, Wrap16>(pSrcDst, qpPer, pInvLevelScale);
}

MoxStatus moxiQuantInvLuma8x8_H264_32s_C1I(Mox32s* pSrcDst, Mox32s qpPer, const Mox16s* pInvLevelScale) {
  if (any_null(pSrcDst, pInvLevelScale)) return moxStsNullPointer;
  if (outside(qpPer, 0, kPer14)) return moxStsBadQp;
  return active::dequant_8x8<Wrap32, Wrap32>(pSrcDst, qpPer, pInvLevelScale);
}

MoxStatus moxiTransformLuma8x8InvAddPred_H264_16s8u_C1R(const Mox8u* pPred, Mox32s predStep, Mox16s* pSrcDst,
                                                        Mox8u* pDst, Mox32s dstStep) {
  if (any_null(pPred, pSrcDst, pDst)) return moxStsNullPointer;
  return active::residual_8x8_add_16s(pPred, predStep, pSrcDst, pDst, dstStep);
}

MoxStatus moxiTransformInvAddPredLuma8x8_H264_32s16u_C1R(const Mox16u* pPred, Mox32s predStep, Mox32s* pSrcDst,
                                                         Mox16u* pDst, Mox32s dstStep, Mox32s bitDepth) {
  if (any_null(pPred, pSrcDst, pDst)) return moxStsNullPointer;
  return active::residual_8x8_add_32s(pPred, predStep, pSrcDst, pDst, dstStep, bitDepth);
}
