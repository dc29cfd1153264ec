#include "moxvc/h264_forward_transform.h"

#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "h264/forward_transform_dc_vec.hpp"
#include "h264/forward_transform_px.hpp"
#include "h264/forward_transform_quant_px.hpp"
#include "h264/forward_transform_quant_vec.hpp"
#include "h264/forward_transform_scale_px.hpp"
#include "h264/forward_transform_scale_vec.hpp"
#include "h264/forward_transform_vec.hpp"

using namespace mox;

namespace {
/// Largest QP: of luma and of chroma, at 8 and at 14 bits, the largest QP / 6 of either depth, and the largest QP % 6.
constexpr Mox32s kQp8 = 51, kQp14 = 87, kChromaQp8 = 39, kChromaQp14 = 75, kPer8 = 8, kPer14 = 14, kRem = 5;

/// A flag of which only the low 8 bits count.
constexpr bool byte_flag(Mox32s flag) { return (flag & 0xFF) != 0; }
}  // namespace

MoxStatus moxiTransformQuantResidual_H264_16s_C1I(Mox16s* pSrcDst, Mox32s qp, int8_t* pNumLevels, Mox32s intra,
                                                  const Mox16s* pScanMatrix, Mox8u* pLastCoeff) {
  if (any_null(pSrcDst, pNumLevels, pScanMatrix, pLastCoeff)) return moxStsNullPointer;
  if (outside(qp, 0, kQp8)) return moxStsOutOfRange;
  return active::transform_quant_residual(pSrcDst, qp, pNumLevels, byte_flag(intra), pScanMatrix, pLastCoeff);
}

MoxStatus moxiTransformQuantLumaDC_H264_16s_C1I(Mox16s* pDCLevels, Mox16s* pTBlock, Mox32s qp, int8_t* pNumLevels,
                                                Mox32s needTransform, const Mox16s* pScanMatrix, Mox8u* pLastCoeff) {
  if (any_null(pDCLevels, pTBlock, pNumLevels, pScanMatrix, pLastCoeff)) return moxStsNullPointer;
  if (outside(qp, 0, kQp8)) return moxStsOutOfRange;
  return active::transform_quant_luma_dc(pDCLevels, pTBlock, qp, pNumLevels, byte_flag(needTransform), pScanMatrix,
                                         pLastCoeff);
}

MoxStatus moxiTransformQuantChromaDC_H264_16s_C1I(Mox16s* pDCLevels, Mox16s* pTBlock, Mox32s qp, int8_t* pNumLevels,
                                                  Mox32s intra, Mox32s needTransform) {
  if (any_null(pDCLevels, pTBlock, pNumLevels)) return moxStsNullPointer;
  if (outside(qp, 0, kChromaQp8)) return moxStsOutOfRange;
  return active::transform_quant_chroma_dc(pDCLevels, pTBlock, qp, pNumLevels, byte_flag(intra),
                                           byte_flag(needTransform));
}

MoxStatus moxiTransformQuantFwd4x4_H264_16s_C1(const Mox16s* pSrc, Mox16s* pDst, Mox32s qp, Mox32s* pNumLevels,
                                               Mox32s intra, const Mox16s* pScanMatrix, Mox32s* pLastCoeff,
                                               const Mox16s* pLevelScale) {
  if (any_null(pSrc, pDst, pNumLevels, pScanMatrix, pLastCoeff)) return moxStsNullPointer;
  if (outside(qp, 0, kQp8)) return moxStsOutOfRange;
  return active::transform_quant_4x4<Wrap16>(pSrc, pDst, qp, pNumLevels, intra, pScanMatrix, pLastCoeff, pLevelScale);
}

MoxStatus moxiTransformQuantFwd4x4_H264_16s32s_C1(const Mox16s* pSrc, Mox32s* pDst, Mox32s qp, Mox32s* pNumLevels,
                                                  Mox32s intra, const Mox16s* pScanMatrix, Mox32s* pLastCoeff,
                                                  const Mox16s* pLevelScale) {
  if (any_null(pSrc, pDst, pNumLevels, pScanMatrix, pLastCoeff)) return moxStsNullPointer;
  if (outside(qp, 0, kQp14)) return moxStsOutOfRange;
  return active::transform_quant_4x4<Wrap32>(pSrc, pDst, qp, pNumLevels, intra, pScanMatrix, pLastCoeff, pLevelScale);
}

MoxStatus moxiTransformQuantFwdChromaDC2x2_H264_16s_C1I(Mox16s* pDCLevels, Mox16s* pTBlock, Mox32s qp,
                                                        Mox32s* pNumLevels, Mox32s intra, Mox32s needTransform,
                                                        const Mox16s* pLevelScale) {
  if (any_null(pDCLevels, pTBlock, pNumLevels)) return moxStsNullPointer;
  if (outside(qp, 0, kChromaQp8)) return moxStsOutOfRange;
  return active::transform_quant_chroma_dc_2x2<Sat16>(pDCLevels, pTBlock, qp, pNumLevels, intra, needTransform,
                                                      pLevelScale);
}

MoxStatus moxiTransformQuantFwdChromaDC2x2_H264_32s_C1I(Mox32s* pDCLevels, Mox32s* pTBlock, Mox32s qp,
                                                        Mox32s* pNumLevels, Mox32s intra, Mox32s needTransform,
                                                        const Mox16s* pLevelScale) {
  if (any_null(pDCLevels, pTBlock, pNumLevels)) return moxStsNullPointer;
  if (outside(qp, 0, kChromaQp14)) return moxStsOutOfRange;
  return active::transform_quant_chroma_dc_2x2<Wrap32>(pDCLevels, pTBlock, qp, pNumLevels, intra, needTransform,
                                                       pLevelScale);
}

MoxStatus moxiTransformQuantFwdChromaDC2x4_H264_16s_C1I(Mox16s* pDCLevels, Mox16s* pTBlock, Mox32s qp,
                                                        Mox32s* pNumLevels, Mox32s intra, Mox32s needTransform,
                                                        const Mox16s* pLevelScale) {
  if (any_null(pDCLevels, pTBlock, pNumLevels)) return moxStsNullPointer;
  if (outside(qp, 0, kChromaQp8)) return moxStsOutOfRange;
  return active::transform_quant_chroma_dc_2x4<Sat16, Wrap16>(pDCLevels, pTBlock, qp, pNumLevels, intra, needTransform,
                                                              pLevelScale);
}

MoxStatus moxiTransformQuantFwdChromaDC2x4_H264_32s_C1I(Mox32s* pDCLevels, Mox32s* pTBlock, Mox32s qp,
                                                        Mox32s* pNumLevels, Mox32s intra, Mox32s needTransform,
                                                        const Mox16s* pLevelScale) {
  if (any_null(pDCLevels, pTBlock, pNumLevels)) return moxStsNullPointer;
  if (outside(qp, 0, kChromaQp14)) return moxStsOutOfRange;
  return active::transform_quant_chroma_dc_2x4<Wrap32, Wrap32>(pDCLevels, pTBlock, qp, pNumLevels, intra, needTransform,
                                                               pLevelScale);
}

MoxStatus moxiTransformQuantFwdLumaDC4x4_H264_16s_C1I(Mox16s* pDCLevels, Mox16s* pTBlock, Mox32s qp, Mox32s* pNumLevels,
                                                      Mox32s needTransform, const Mox16s* pScanMatrix,
                                                      Mox32s* pLastCoeff, const Mox16s* pLevelScale) {
  if (any_null(pDCLevels, pTBlock, pNumLevels, pScanMatrix, pLastCoeff)) return moxStsNullPointer;
  if (outside(qp, 0, kQp8)) return moxStsOutOfRange;
  return active::transform_quant_luma_dc_4x4<Wrap16>(pDCLevels, pTBlock, qp, pNumLevels, needTransform, pScanMatrix,
                                                     pLastCoeff, pLevelScale);
}

MoxStatus moxiTransformQuantFwdLumaDC4x4_H264_32s_C1I(Mox32s* pDCLevels, Mox32s* pTBlock, Mox32s qp, Mox32s* pNumLevels,
                                                      Mox32s needTransform, const Mox16s* pScanMatrix,
                                                      Mox32s* pLastCoeff, const Mox16s* pLevelScale) {
  if (any_null(pDCLevels, pTBlock, pNumLevels, pScanMatrix, pLastCoeff)) return moxStsNullPointer;
  if (outside(qp, 0, kQp14)) return moxStsOutOfRange;
  return active::transform_quant_luma_dc_4x4<Wrap32>(pDCLevels, pTBlock, qp, pNumLevels, needTransform, pScanMatrix,
                                                     pLastCoeff, pLevelScale);
}

MoxStatus moxiQuantizeResidual4x4Fwd_H264_16s_C1(const Mox16s* pSrc, Mox16s* pDst, Mox32s* pNumLevels,
                                                 Mox32s* pLastCoeff, const Mox16s* pQuantTable,
                                                 const Mox16s* pScanMatrix, Mox32u qp, Mox32s intra) {
  if (any_null(pSrc, pDst, pNumLevels, pLastCoeff, pScanMatrix)) return moxStsNullPointer;
  if (outside(qp, 0, kQp8)) return moxStsOutOfRange;
  return active::quantise_residual_4x4<Sat16>(pSrc, pDst, pNumLevels, pLastCoeff, pQuantTable, pScanMatrix, qp, intra,
                                              moxH264FwdQuant_16s);
}

MoxStatus moxiQuantizeResidual4x4Fwd_H264_16s32s_C1(const Mox16s* pSrc, Mox32s* pDst, Mox32s* pNumLevels,
                                                    Mox32s* pLastCoeff, const Mox32s* pQuantTable,
                                                    const Mox16s* pScanMatrix, Mox32u qp, Mox32s intra) {
  if (any_null(pSrc, pDst, pNumLevels, pLastCoeff, pQuantTable, pScanMatrix)) return moxStsNullPointer;
  if (outside(qp, 0, kQp8)) return moxStsOutOfRange;
  return active::quantise_residual_4x4<Wrap32>(pSrc, pDst, pNumLevels, pLastCoeff, pQuantTable, pScanMatrix, qp, intra,
                                               moxH264FwdQuant_32s);
}

MoxStatus moxiQuantizeResidual4x4Fwd_H264_32s_C1(const Mox32s* pSrc, Mox32s* pDst, Mox32s* pNumLevels,
                                                 Mox32s* pLastCoeff, const Mox32s* pQuantTable,
                                                 const Mox16s* pScanMatrix, Mox32u qp, Mox32s intra) {
  if (any_null(pSrc, pDst, pNumLevels, pLastCoeff, pScanMatrix)) return moxStsNullPointer;
  if (outside(qp, 0, kQp14)) return moxStsOutOfRange;
  return active::quantise_residual_4x4<Wrap32>(pSrc, pDst, pNumLevels, pLastCoeff, pQuantTable, pScanMatrix, qp, intra,
                                               moxH264FwdQuant_32s);
}

MoxStatus moxiQuantLuma8x8_H264_16s_C1(const Mox16s* pSrc, Mox16s* pDst, Mox32s qpPer, Mox32s intra,
                                       const Mox16s* pScanMatrix, const Mox16s* pScaleLevels, Mox32s* pNumLevels,
                                       Mox32s* pLastCoeff) {
  if (any_null(pSrc, pDst, pScanMatrix, pScaleLevels, pNumLevels, pLastCoeff)) return moxStsNullPointer;
  if (outside(qpPer, 0, kPer8)) return moxStsBadQp;
  return active::quantise_luma_8x8<Sat16>(pSrc, pDst, qpPer, intra, pScanMatrix, pScaleLevels, pNumLevels, pLastCoeff);
}

MoxStatus moxiQuantLuma8x8_H264_32s_C1(const Mox32s* pSrc, Mox32s* pDst, Mox32s qpPer, Mox32s intra,
                                       const Mox16s* pScanMatrix, const Mox16u* pScaleLevels, Mox32s* pNumLevels,
                                       Mox32s* pLastCoeff) {
  if (any_null(pSrc, pDst, pScanMatrix, pScaleLevels, pNumLevels, pLastCoeff)) return moxStsNullPointer;
  if (outside(qpPer, 0, kPer14)) return moxStsBadQp;
  return active::quantise_luma_8x8<Wrap32>(pSrc, pDst, qpPer, intra, pScanMatrix, pScaleLevels, pNumLevels, pLastCoeff);
}

MoxStatus moxiTransformResidual4x4Fwd_H264_16s_C1(const Mox16s* pSrc, Mox16s* pDst) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  return active::residual_4x4_forward<Sat16>(pSrc, pDst);
}

MoxStatus moxiTransformResidual4x4Fwd_H264_32s_C1(const Mox32s* pSrc, Mox32s* pDst) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  return active::residual_4x4_forward<Wrap32>(pSrc, pDst);
}

MoxStatus moxiTransformPrediction_H264_8u16s_C1(const Mox8u* pSrc, Mox32s srcStep, Mox16s* pDst) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  return active::prediction_4x4_forward(pSrc, srcStep, pDst);
}

MoxStatus moxiTransformLuma8x8Fwd_H264_16s_C1I(Mox16s* pSrcDst) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  return active::luma_8x8_forward<Sat16>(pSrcDst, pSrcDst);
}

MoxStatus moxiTransformFwdLuma8x8_H264_16s_C1(const Mox16s* pSrc, Mox16s* pDst) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  return active::luma_8x8_forward<Sat16>(pSrc, pDst);
}

MoxStatus moxiTransformFwdLuma8x8_H264_16s32s_C1(const Mox16s* pSrc, Mox32s* pDst) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  return active::luma_8x8_forward<Wrap32>(pSrc, pDst);
}

MoxStatus moxiGenScaleLevel4x4_H264_8u16s_C1(const Mox8u* pScalingList, Mox16s* pInvLevelScale, Mox16s* pLevelScale,
                                             Mox32s qpRem) {
  if (any_null(pScalingList, pInvLevelScale, pLevelScale)) return moxStsNullPointer;
  if (outside(qpRem, 0, kRem)) return moxStsOutOfRange;
  return active::scale_levels_4x4(pScalingList, pInvLevelScale, pLevelScale, qpRem);
}

MoxStatus moxiGenScaleLevel8x8_H264_8u16s_D2(const Mox8u* pScalingList, Mox32s listStep, Mox16s* pInvLevelScale,
                                             Mox16s* pLevelScale, Mox32s qpRem) {
  if (any_null(pScalingList, pInvLevelScale, pLevelScale)) return moxStsNullPointer;
  if (outside(qpRem, 0, kRem)) return moxStsBadQp;
  return active::scale_levels_8x8(pScalingList, listStep, pInvLevelScale, pLevelScale, qpRem);
}
