#include "h264/reconstruct_scaled_px.hpp"

#include "frame/arguments.hpp"
#include "h264/reconstruct.hpp"
#include "moxvc/h264_reconstruct.h"

namespace mox {
namespace {

/// Scaling tables, or lossless: what the blocks of one plane are dequantised with.
class ScaledResidual {
 public:
  using Coeff = Mox16s;
  static constexpr Mox32s depth = 8;

  ScaledResidual(Mox32s qp, const Mox16s* pQuantTable, Mox32s bypass)
      : per_(h264_qp6[qp]), lossless_((bypass & 0xFF) != 0 && qp == 0), scale_(pQuantTable) {}

  void add_4x4(Mox8u* block, Mox32s step, Mox16s* coeffs) const {
    if (lossless_) return active::dequant_add_residual_h264_high_lossless_sse2(block, coeffs, block, step, step);
    add_scaled(block, step, nullptr, coeffs);
  }
  void add_4x4(Mox8u* block, Mox32s step, const Mox16s* dc, Mox16s* coeffs) const {
    if (lossless_) {
      return active::dequant_transform_residual_and_add_h264_high_lossless_sse2(block, coeffs, dc, block, step, step,
                                                                                coeffs != nullptr);
    }
    add_scaled(block, step, dc, coeffs);
  }
  void add_8x8(Mox8u* block, Mox32s step, Mox16s* coeffs) const {
    if (lossless_) return active::lossless_transform_residual_and_add_8x8_h264_sse2(block, coeffs, step);
    const px::Rescale by = px::rescale_8x8(per_);
    active::dequant_transform_residual_and_add_8x8_h264_sse2(block, coeffs, scale_, step, by.rounding, by.right,
                                                             by.left);
  }
  void luma_dc(Mox16s* dc) const {
    if (lossless_) return;
    const px::Rescale by = px::rescale_8x8(per_);
    active::dequant_transform_luma_dc_h264_high_sse2(dc, scale_[0], by.rounding, by.right, by.left);
  }
  void chroma_dc(Mox16s* dc) const {
    if (lossless_) return;
    const px::Rescale by = px::rescale_2x2(per_);
    active::dequant_transform_chroma_dc_h264_high_sse2(dc, scale_[0], by.right, by.left);
  }

 private:
  void add_scaled(Mox8u* block, Mox32s step, const Mox16s* dc, Mox16s* coeffs) const {
    const px::Rescale by = px::rescale_4x4(per_);
    active::dequant_transform_residual_and_add_h264_high_sse2(block, coeffs, scale_, dc, block, step, step, by.rounding,
                                                              by.right, by.left, coeffs != nullptr);
  }

  int per_;
  bool lossless_;
  const Mox16s* scale_;
};

}  // namespace
}  // namespace mox

using namespace mox;

MoxStatus moxiReconstructLumaInter4x4MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane, Mox32s srcDstYStep,
                                                       Mox32u cbp4x4, Mox32s qp, const Mox16s* pQuantTable,
                                                       Mox32s bypass) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstYPlane, pQuantTable)) return moxStsNullPointer;
  if (outside(qp, 0, 51)) return moxStsOutOfRange;
  return inter_4x4(ppSrcCoeff, pSrcDstYPlane, srcDstYStep, cbp4x4 >> kFirstLumaBlock,
                   ScaledResidual(qp, pQuantTable, bypass));
}

MoxStatus moxiReconstructLumaInter8x8MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane, Mox32s srcDstYStep,
                                                       Mox32u cbp8x8, Mox32s qp, const Mox16s* pQuantTable,
                                                       Mox32s bypass) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstYPlane, pQuantTable)) return moxStsNullPointer;
  if (outside(qp, 0, 51)) return moxStsOutOfRange;
  return inter_8x8(ppSrcCoeff, pSrcDstYPlane, srcDstYStep, cbp8x8, ScaledResidual(qp, pQuantTable, bypass));
}

MoxStatus moxiReconstructLumaIntra4x4MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane, Mox32s srcDstYStep,
                                                       const Mox32u* pMBIntraTypes, Mox32u cbp4x4, Mox32s qp,
                                                       Mox32u edgeType, const Mox16s* pQuantTable, Mox32s bypass) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstYPlane, pMBIntraTypes, pQuantTable)) return moxStsNullPointer;
  if (outside(qp, 0, 51)) return moxStsOutOfRange;
  return intra_4x4<16>(ppSrcCoeff, pSrcDstYPlane, srcDstYStep, pMBIntraTypes, cbp4x4 >> kFirstLumaBlock, edgeType,
                       ScaledResidual(qp, pQuantTable, bypass));
}

MoxStatus moxiReconstructLumaIntra8x8MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane, Mox32s srcDstYStep,
                                                       const Mox32u* pMBIntraTypes, Mox32u cbp8x8, Mox32s qp,
                                                       Mox32u edgeType, const Mox16s* pQuantTable, Mox32s bypass) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstYPlane, pMBIntraTypes, pQuantTable)) return moxStsNullPointer;
  if (outside(qp, 0, 51)) return moxStsOutOfRange;
  return intra_8x8<4>(ppSrcCoeff, pSrcDstYPlane, srcDstYStep, pMBIntraTypes, cbp8x8, edgeType,
                      ScaledResidual(qp, pQuantTable, bypass));
}

MoxStatus moxiReconstructLumaIntraHalf4x4MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane,
                                                           Mox32s srcDstYStep, const Mox32u* pMBIntraTypes,
                                                           Mox32u cbp4x2, Mox32s qp, Mox32u edgeType,
                                                           const Mox16s* pQuantTable, Mox32s bypass) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstYPlane, pMBIntraTypes, pQuantTable)) return moxStsNullPointer;
  if (outside(qp, 0, 51)) return moxStsOutOfRange;
  return intra_4x4<8>(ppSrcCoeff, pSrcDstYPlane, srcDstYStep, pMBIntraTypes, cbp4x2, edgeType,
                      ScaledResidual(qp, pQuantTable, bypass));
}

MoxStatus moxiReconstructLumaIntraHalf8x8MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane,
                                                           Mox32s srcDstYStep, const Mox32u* pMBIntraTypes,
                                                           Mox32u cbp8x2, Mox32s qp, Mox32u edgeType,
                                                           const Mox16s* pQuantTable, Mox32s bypass) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstYPlane, pMBIntraTypes, pQuantTable)) return moxStsNullPointer;
  if (outside(qp, 0, 51)) return moxStsOutOfRange;
  return intra_8x8<2>(ppSrcCoeff, pSrcDstYPlane, srcDstYStep, pMBIntraTypes, cbp8x2, edgeType,
                      ScaledResidual(qp, pQuantTable, bypass));
}

MoxStatus moxiReconstructLumaIntra_16x16MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane, Mox32s srcDstYStep,
                                                          Mox32u intraLumaMode, Mox32u cbp4x4, Mox32s qp,
                                                          Mox32u edgeType, const Mox16s* pQuantTable, Mox32s bypass) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstYPlane, pQuantTable)) return moxStsNullPointer;
  if (outside(qp, 0, 51)) return moxStsOutOfRange;
  const MoxStatus predicted =
      predict_luma_16x16_h264(pSrcDstYPlane, srcDstYStep, intraLumaMode, neighbours_of_macroblock(edgeType));
  if (predicted != moxStsOk) return predicted;
  return residual_16x16(ppSrcCoeff, pSrcDstYPlane, srcDstYStep, cbp4x4, ScaledResidual(qp, pQuantTable, bypass));
}

MoxStatus moxiReconstructChromaInter4x4MB_H264_16s8u_P2R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstUPlane,
                                                         Mox8u* pSrcDstVPlane, Mox32s srcDstUVStep, Mox32u cbp4x4,
                                                         Mox32s chromaQpU, Mox32s chromaQpV, const Mox16s* pQuantTableU,
                                                         const Mox16s* pQuantTableV, Mox32s bypass) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstUPlane, pSrcDstVPlane, pQuantTableU, pQuantTableV)) {
    return moxStsNullPointer;
  }
  if (outside(chromaQpU, 0, 39) || outside(chromaQpV, 0, 39)) return moxStsOutOfRange;
  return chroma_residual(ppSrcCoeff, pSrcDstUPlane, pSrcDstVPlane, srcDstUVStep, cbp4x4,
                         ScaledResidual(chromaQpU, pQuantTableU, bypass),
                         ScaledResidual(chromaQpV, pQuantTableV, bypass));
}

MoxStatus moxiReconstructChromaIntra4x4MB_H264_16s8u_P2R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstUPlane,
                                                         Mox8u* pSrcDstVPlane, Mox32s srcDstUVStep,
                                                         Mox32u intraChromaMode, Mox32u cbp4x4, Mox32s chromaQpU,
                                                         Mox32s chromaQpV, Mox32u edgeType, const Mox16s* pQuantTableU,
                                                         const Mox16s* pQuantTableV, Mox32s bypass) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstUPlane, pSrcDstVPlane, pQuantTableU, pQuantTableV)) {
    return moxStsNullPointer;
  }
  if (outside(chromaQpU, 0, 39) || outside(chromaQpV, 0, 39)) return moxStsOutOfRange;
  const MoxStatus predicted =
      predict_both_chroma<8>(pSrcDstUPlane, pSrcDstVPlane, srcDstUVStep, intraChromaMode, edgeType);
  if (predicted != moxStsOk) return predicted;
  return chroma_residual(ppSrcCoeff, pSrcDstUPlane, pSrcDstVPlane, srcDstUVStep, cbp4x4,
                         ScaledResidual(chromaQpU, pQuantTableU, bypass),
                         ScaledResidual(chromaQpV, pQuantTableV, bypass));
}

MoxStatus moxiReconstructChromaIntraHalfs4x4MB_H264_16s8u_P2R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstUPlane,
                                                              Mox8u* pSrcDstVPlane, Mox32s srcDstUVStep,
                                                              Mox32u intraChromaMode, Mox32u cbp4x4, Mox32s chromaQpU,
                                                              Mox32s chromaQpV, Mox32u edgeTypeTop,
                                                              Mox32u edgeTypeBottom, const Mox16s* pQuantTableU,
                                                              const Mox16s* pQuantTableV, Mox32s bypass) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstUPlane, pSrcDstVPlane, pQuantTableU, pQuantTableV)) {
    return moxStsNullPointer;
  }
  if (outside(chromaQpU, 0, 39) || outside(chromaQpV, 0, 39)) return moxStsOutOfRange;
  const MoxStatus predicted = predict_both_chroma_halves<8>(pSrcDstUPlane, pSrcDstVPlane, srcDstUVStep, intraChromaMode,
                                                            edgeTypeTop, edgeTypeBottom);
  if (predicted != moxStsOk) return predicted;
  return chroma_residual(ppSrcCoeff, pSrcDstUPlane, pSrcDstVPlane, srcDstUVStep, cbp4x4,
                         ScaledResidual(chromaQpU, pQuantTableU, bypass),
                         ScaledResidual(chromaQpV, pQuantTableV, bypass));
}

MoxStatus moxiReconstructChromaIntraHalves4x4MB_H264_16s8u_P2R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstUPlane,
                                                               Mox8u* pSrcDstVPlane, Mox32s srcDstUVStep,
                                                               Mox32u intraChromaMode, Mox32u cbp4x4, Mox32s chromaQpU,
                                                               Mox32s chromaQpV, Mox32u edgeTypeTop,
                                                               Mox32u edgeTypeBottom, const Mox16s* pQuantTableU,
                                                               const Mox16s* pQuantTableV, Mox32s bypass) {
  return moxiReconstructChromaIntraHalfs4x4MB_H264_16s8u_P2R(ppSrcCoeff, pSrcDstUPlane, pSrcDstVPlane, srcDstUVStep,
                                                             intraChromaMode, cbp4x4, chromaQpU, chromaQpV, edgeTypeTop,
                                                             edgeTypeBottom, pQuantTableU, pQuantTableV, bypass);
}
