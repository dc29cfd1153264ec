#include "h264/reconstruct_scaled.hpp"

#include "frame/arguments.hpp"
#include "h264/reconstruct.hpp"
#include "moxvc/h264_reconstruct.h"

namespace mox {
namespace {

/// The arguments of an exported function: only the low 8 bits of bypass count.
ScaledResidual scaled(Mox32s qp, const Mox16s* pQuantTable, Mox32s bypass) {
  return {qp, pQuantTable, (bypass & 0xFF) != 0};
}

/// One chroma plane of a macroblock.
ChromaPlane<Mox8u, ScaledResidual> scaled_chroma(Mox16s** ppSrcCoeff, Mox8u* first, Mox32s step, Mox32u pattern,
                                                 Mox32s qp, const Mox16s* pQuantTable, Mox32s bypass) {
  return {ppSrcCoeff, first, step, pattern, scaled(qp, pQuantTable, bypass)};
}

}  // namespace
}  // namespace mox

using namespace mox;

MoxStatus moxiReconstructLumaInter4x4MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane, Mox32s srcDstYStep,
                                                       Mox32u cbp4x4, Mox32s qp, const Mox16s* pQuantTable,
                                                       Mox32s bypass) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstYPlane, pQuantTable)) return moxStsNullPointer;
  if (outside(qp, 0, 51)) return moxStsOutOfRange;
  return inter_4x4(ppSrcCoeff, pSrcDstYPlane, srcDstYStep, cbp4x4 >> kFirstLumaBlock, scaled(qp, pQuantTable, bypass));
}

MoxStatus moxiReconstructLumaInter8x8MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane, Mox32s srcDstYStep,
                                                       Mox32u cbp8x8, Mox32s qp, const Mox16s* pQuantTable,
                                                       Mox32s bypass) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstYPlane, pQuantTable)) return moxStsNullPointer;
  if (outside(qp, 0, 51)) return moxStsOutOfRange;
  return inter_8x8(ppSrcCoeff, pSrcDstYPlane, srcDstYStep, cbp8x8, scaled(qp, pQuantTable, bypass));
}

MoxStatus moxiReconstructLumaIntra4x4MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane, Mox32s srcDstYStep,
                                                       const Mox32u* pMBIntraTypes, Mox32u cbp4x4, Mox32s qp,
                                                       Mox32u edgeType, const Mox16s* pQuantTable, Mox32s bypass) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstYPlane, pMBIntraTypes, pQuantTable)) return moxStsNullPointer;
  if (outside(qp, 0, 51)) return moxStsOutOfRange;
  return intra_4x4<16>(ppSrcCoeff, pSrcDstYPlane, srcDstYStep, pMBIntraTypes, cbp4x4 >> kFirstLumaBlock, edgeType,
                       scaled(qp, pQuantTable, bypass));
}

MoxStatus moxiReconstructLumaIntra8x8MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane, Mox32s srcDstYStep,
                                                       const Mox32u* pMBIntraTypes, Mox32u cbp8x8, Mox32s qp,
                                                       Mox32u edgeType, const Mox16s* pQuantTable, Mox32s bypass) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstYPlane, pMBIntraTypes, pQuantTable)) return moxStsNullPointer;
  if (outside(qp, 0, 51)) return moxStsOutOfRange;
  return intra_8x8<4>(ppSrcCoeff, pSrcDstYPlane, srcDstYStep, pMBIntraTypes, cbp8x8, edgeType,
                      scaled(qp, pQuantTable, bypass));
}

MoxStatus moxiReconstructLumaIntraHalf4x4MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane,
                                                           Mox32s srcDstYStep, const Mox32u* pMBIntraTypes,
                                                           Mox32u cbp4x2, Mox32s qp, Mox32u edgeType,
                                                           const Mox16s* pQuantTable, Mox32s bypass) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstYPlane, pMBIntraTypes, pQuantTable)) return moxStsNullPointer;
  if (outside(qp, 0, 51)) return moxStsOutOfRange;
  return intra_4x4<8>(ppSrcCoeff, pSrcDstYPlane, srcDstYStep, pMBIntraTypes, cbp4x2, edgeType,
                      scaled(qp, pQuantTable, bypass));
}

MoxStatus moxiReconstructLumaIntraHalf8x8MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane,
                                                           Mox32s srcDstYStep, const Mox32u* pMBIntraTypes,
                                                           Mox32u cbp8x2, Mox32s qp, Mox32u edgeType,
                                                           const Mox16s* pQuantTable, Mox32s bypass) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstYPlane, pMBIntraTypes, pQuantTable)) return moxStsNullPointer;
  if (outside(qp, 0, 51)) return moxStsOutOfRange;
  return intra_8x8<2>(ppSrcCoeff, pSrcDstYPlane, srcDstYStep, pMBIntraTypes, cbp8x2, edgeType,
                      scaled(qp, pQuantTable, bypass));
}

MoxStatus moxiReconstructLumaIntra_16x16MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane, Mox32s srcDstYStep,
                                                          Mox32u intraLumaMode, Mox32u cbp4x4, Mox32s qp,
                                                          Mox32u edgeType, const Mox16s* pQuantTable, Mox32s bypass) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstYPlane, pQuantTable)) return moxStsNullPointer;
  if (outside(qp, 0, 51)) return moxStsOutOfRange;
  const MoxStatus predicted =
      predict_luma_16x16_h264(pSrcDstYPlane, srcDstYStep, intraLumaMode, neighbours_of_macroblock(edgeType));
  if (predicted != moxStsOk) return predicted;
  return residual_16x16(ppSrcCoeff, pSrcDstYPlane, srcDstYStep, cbp4x4, scaled(qp, pQuantTable, bypass));
}

MoxStatus moxiReconstructChromaInter4x4MB_H264_16s8u_P2R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstUPlane,
                                                         Mox8u* pSrcDstVPlane, Mox32s srcDstUVStep, Mox32u cbp4x4,
                                                         Mox32s chromaQpU, Mox32s chromaQpV, const Mox16s* pQuantTableU,
                                                         const Mox16s* pQuantTableV, Mox32s bypass) {
  if (no_stream(ppSrcCoeff) || any_null(pSrcDstUPlane, pSrcDstVPlane, pQuantTableU, pQuantTableV)) {
    return moxStsNullPointer;
  }
  if (outside(chromaQpU, 0, 39) || outside(chromaQpV, 0, 39)) return moxStsOutOfRange;
  const auto u = scaled_chroma(ppSrcCoeff, pSrcDstUPlane, srcDstUVStep, chroma_pattern(cbp4x4, 0), chromaQpU,
                               pQuantTableU, bypass);
  const auto v = scaled_chroma(ppSrcCoeff, pSrcDstVPlane, srcDstUVStep, chroma_pattern(cbp4x4, 1), chromaQpV,
                               pQuantTableV, bypass);
  return chroma_inter<8>(u, v);
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
  const auto u = scaled_chroma(ppSrcCoeff, pSrcDstUPlane, srcDstUVStep, chroma_pattern(cbp4x4, 0), chromaQpU,
                               pQuantTableU, bypass);
  const auto v = scaled_chroma(ppSrcCoeff, pSrcDstVPlane, srcDstUVStep, chroma_pattern(cbp4x4, 1), chromaQpV,
                               pQuantTableV, bypass);
  return chroma_intra<8>(u, v, intraChromaMode, edgeType);
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
  const auto u = scaled_chroma(ppSrcCoeff, pSrcDstUPlane, srcDstUVStep, chroma_pattern(cbp4x4, 0), chromaQpU,
                               pQuantTableU, bypass);
  const auto v = scaled_chroma(ppSrcCoeff, pSrcDstVPlane, srcDstUVStep, chroma_pattern(cbp4x4, 1), chromaQpV,
                               pQuantTableV, bypass);
  return chroma_intra_halves<8>(u, v, intraChromaMode, edgeTypeTop, edgeTypeBottom);
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
