#include "avs/reconstruct.hpp"

#include "frame/generation.hpp"
#include "moxvc/avs_reconstruct.h"

using namespace mox;

MoxStatus moxiReconstructLumaIntra_AVS_16s8u_C1R(const Mox16s* pSrcCoeffs, Mox8u* pSrcDst, Mox32s srcDstStep,
                                                 const Mox32u* pMBIntraTypes, Mox32u cbp, Mox32s qp, Mox32u edgeType) {
  if (any_null(pSrcCoeffs, pSrcDst, pMBIntraTypes)) return moxStsNullPointer;
  if (outside(qp, 0, active::kAvsMostQp) || !avs_modes_exist(pMBIntraTypes)) return moxStsOutOfRange;
  if (!avs_edges_suffice(pMBIntraTypes, edgeType)) return moxStsEdgeUnavailable;
  for (int b = 0; b < 4; ++b) {
    Mox8u* const block = pSrcDst + avs_block_offset(b, srcDstStep);
    active::predict_avs_intra(block, srcDstStep, pMBIntraTypes[b], avs_luma_neighbours(b, edgeType));
    if (cbp >> b & 1) active::add_avs_residual(pSrcCoeffs + 64 * b, active::avs_dequant(qp), block, srcDstStep);
  }
  return moxStsOk;
}

MoxStatus moxiReconstructLumaInter_AVS_16s8u_C1R(const Mox16s* pSrcCoeffs, Mox8u* pSrcDst, Mox32s srcDstStep,
                                                 Mox32u cbp, Mox32s qp) {
  if (any_null(pSrcCoeffs, pSrcDst)) return moxStsNullPointer;
  if (outside(qp, 0, active::kAvsMostQp)) return moxStsOutOfRange;
  active::add_avs_luma_residual(pSrcCoeffs, cbp, active::avs_dequant(qp), pSrcDst, srcDstStep);
  return moxStsOk;
}

MoxStatus moxiReconstructChromaIntra_AVS_16s8u_C1R(const Mox16s* pSrcCoeffs, Mox8u* pSrcDst, Mox32s srcDstStep,
                                                   Mox32u intraChromaMode, Mox32u cbp, Mox32s qp, Mox32u edgeType) {
  if (any_null(pSrcCoeffs, pSrcDst)) return moxStsNullPointer;
  if (outside(qp, 0, active::kAvsMostQp) || intraChromaMode >= kAvsChromaModes) return moxStsOutOfRange;
  const Mox32u mode = kAvsModeOfChroma[intraChromaMode], neighbours = avs_chroma_neighbours(edgeType);
  if (kAvsNeeds[mode] & ~neighbours) return moxStsEdgeUnavailable;
  active::predict_avs_intra(pSrcDst, srcDstStep, mode, neighbours);
  if (cbp & 1) active::add_avs_residual(pSrcCoeffs, active::avs_dequant(qp), pSrcDst, srcDstStep);
  return moxStsOk;
}

MoxStatus moxiReconstructChromaInter_AVS_16s8u_C1R(const Mox16s* pSrcCoeffs, Mox8u* pSrcDst, Mox32s srcDstStep,
                                                   Mox32u cbp, Mox32s qp) {
  if (any_null(pSrcCoeffs, pSrcDst)) return moxStsNullPointer;
  if (outside(qp, 0, active::kAvsMostQp)) return moxStsOutOfRange;
  if (cbp & 1) active::add_avs_residual(pSrcCoeffs, active::avs_dequant(qp), pSrcDst, srcDstStep);
  return moxStsOk;
}
