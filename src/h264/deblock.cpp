#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "h264/deblock_px.hpp"
#include "h264/deblock_vec.hpp"
#include "moxvc/h264_deblock.h"

using namespace mox;
using namespace mox::forms;

namespace {

/// True if the record or one of its pointers is null.
template <class Record>
bool lacks_pointer(const Record* r) {
  return any_null(r) || any_null(r->pSrcDstPlane, r->pAlpha, r->pBeta, r->pThresholds, r->pBs);
}

template <EdgeForm kForm>
MoxStatus filter_record(const MoxiDeblockParams& r) {
  return active::filter_block<kForm, active::filter_edge<kForm, Mox8u>>(r.pSrcDstPlane, r.srcDstStep, r.pAlpha, r.pBeta,
                                                                        r.pThresholds, r.pBs, 255);
}

template <EdgeForm kForm>
MoxStatus filter_record(const MoxiDeblockParams_16u& r) {
  return active::filter_block<kForm, active::filter_edge<kForm, Mox16u>>(
      r.pSrcDstPlane, r.srcDstStep, r.pAlpha, r.pBeta, r.pThresholds, r.pBs, sample_max(r.bitDepth));
}

template <EdgeForm kForm>
MoxStatus filter_single(const MoxiDeblockParams_16u& r) {
  return active::filter_single_edge<kForm>(r.pSrcDstPlane, r.srcDstStep, *r.pAlpha, *r.pBeta, r.pThresholds, r.pBs,
                                           sample_max(r.bitDepth));
}

}  // namespace

MoxStatus moxiFilterDeblockingLuma_VerEdge_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, const Mox8u* pAlpha,
                                                        const Mox8u* pBeta, const Mox8u* pThresholds,
                                                        const Mox8u* pBs) {
  if (any_null(pSrcDst, pAlpha, pBeta, pThresholds, pBs)) return moxStsNullPointer;
  return active::filter_block<kLumaVer_8u, active::deblocking_luma_vert_edge_h264_sse2>(pSrcDst, srcDstStep, pAlpha,
                                                                                        pBeta, pThresholds, pBs);
}

MoxStatus moxiFilterDeblockingLuma_HorEdge_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, const Mox8u* pAlpha,
                                                        const Mox8u* pBeta, const Mox8u* pThresholds,
                                                        const Mox8u* pBs) {
  if (any_null(pSrcDst, pAlpha, pBeta, pThresholds, pBs)) return moxStsNullPointer;
  return active::filter_block<kLumaHor_8u, active::deblocking_luma_horz_edge_h264_ssse3>(pSrcDst, srcDstStep, pAlpha,
                                                                                         pBeta, pThresholds, pBs);
}

MoxStatus moxiFilterDeblockingChroma_VerEdge_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, const Mox8u* pAlpha,
                                                          const Mox8u* pBeta, const Mox8u* pThresholds,
                                                          const Mox8u* pBs) {
  if (any_null(pSrcDst, pAlpha, pBeta, pThresholds, pBs)) return moxStsNullPointer;
  return active::filter_block<kChromaVer_8u, active::deblocking_chroma_vert_edge_h264_sse2>(pSrcDst, srcDstStep, pAlpha,
                                                                                            pBeta, pThresholds, pBs);
}

MoxStatus moxiFilterDeblockingChroma_HorEdge_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, const Mox8u* pAlpha,
                                                          const Mox8u* pBeta, const Mox8u* pThresholds,
                                                          const Mox8u* pBs) {
  if (any_null(pSrcDst, pAlpha, pBeta, pThresholds, pBs)) return moxStsNullPointer;
  return active::filter_block<kChromaHor_8u, active::deblocking_chroma_horz_edge_h264_ssse3>(
      pSrcDst, srcDstStep, pAlpha, pBeta, pThresholds, pBs);
}

MoxStatus moxiFilterDeblockingChroma_VerEdge_H264_8u_C2IR(Mox8u* pSrcDst, Mox32s srcDstStep, const Mox8u* pAlpha,
                                                          const Mox8u* pBeta, const Mox8u* pThresholds,
                                                          const Mox8u* pBs) {
  if (any_null(pSrcDst, pAlpha, pBeta, pThresholds, pBs)) return moxStsNullPointer;
  return active::filter_block<kChromaVer_8u_C2, active::deblocking_chroma_vert_edge_nv12_h264_sse2>(
      pSrcDst, srcDstStep, pAlpha, pBeta, pThresholds, pBs);
}

MoxStatus moxiFilterDeblockingChroma_HorEdge_H264_8u_C2IR(Mox8u* pSrcDst, Mox32s srcDstStep, const Mox8u* pAlpha,
                                                          const Mox8u* pBeta, const Mox8u* pThresholds,
                                                          const Mox8u* pBs) {
  if (any_null(pSrcDst, pAlpha, pBeta, pThresholds, pBs)) return moxStsNullPointer;
  return active::filter_block<kChromaHor_8u_C2, active::deblocking_chroma_horz_edge_nv12_h264_sse2>(
      pSrcDst, srcDstStep, pAlpha, pBeta, pThresholds, pBs);
}

MoxStatus moxiFilterDeblockingLuma_VerEdge_MBAFF_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32u alpha,
                                                              Mox32u beta, const Mox8u* pThresholds, const Mox8u* pBs) {
  if (any_null(pSrcDst, pThresholds, pBs)) return moxStsNullPointer;
  return active::filter_single_edge<kLumaMbaff>(pSrcDst, srcDstStep, alpha, beta, pThresholds, pBs, 255);
}

MoxStatus moxiFilterDeblockingChroma_VerEdge_MBAFF_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32u alpha,
                                                                Mox32u beta, const Mox8u* pThresholds,
                                                                const Mox8u* pBs) {
  if (any_null(pSrcDst, pThresholds, pBs)) return moxStsNullPointer;
  return active::filter_single_edge<kChromaMbaff>(pSrcDst, srcDstStep, alpha, beta, pThresholds, pBs, 255);
}

MoxStatus moxiFilterDeblockingChroma422VerEdge_H264_8u_C1IR(const MoxiDeblockParams* pParams) {
  if (lacks_pointer(pParams)) return moxStsNullPointer;
  return filter_record<kChroma422Ver>(*pParams);
}

MoxStatus moxiFilterDeblockingChroma422HorEdge_H264_8u_C1IR(const MoxiDeblockParams* pParams) {
  if (lacks_pointer(pParams)) return moxStsNullPointer;
  return filter_record<kChroma422Hor>(*pParams);
}

MoxStatus moxiFilterDeblockingChroma422VerEdgeMBAFF_H264_8u_C1IR(const MoxiDeblockParams*) {
  return moxStsRegionTooSmall;
}

MoxStatus moxiFilterDeblockingLumaVerEdge_H264_16u_C1IR(const MoxiDeblockParams_16u* pParams) {
  if (lacks_pointer(pParams)) return moxStsNullPointer;
  return filter_record<kLumaVer_16u>(*pParams);
}

MoxStatus moxiFilterDeblockingLumaHorEdge_H264_16u_C1IR(const MoxiDeblockParams_16u* pParams) {
  if (lacks_pointer(pParams)) return moxStsNullPointer;
  return filter_record<kLumaHor_16u>(*pParams);
}

MoxStatus moxiFilterDeblockingLumaVerEdgeMBAFF_H264_16u_C1IR(const MoxiDeblockParams_16u* pParams) {
  if (lacks_pointer(pParams)) return moxStsNullPointer;
  return filter_single<kLumaMbaff>(*pParams);
}

MoxStatus moxiFilterDeblockingChromaVerEdge_H264_16u_C1IR(const MoxiDeblockParams_16u* pParams) {
  if (lacks_pointer(pParams)) return moxStsNullPointer;
  return filter_record<kChromaVer_16u>(*pParams);
}

MoxStatus moxiFilterDeblockingChromaHorEdge_H264_16u_C1IR(const MoxiDeblockParams_16u* pParams) {
  if (lacks_pointer(pParams)) return moxStsNullPointer;
  return filter_record<kChromaHor_16u>(*pParams);
}

MoxStatus moxiFilterDeblockingChromaVerEdgeMBAFF_H264_16u_C1IR(const MoxiDeblockParams_16u* pParams) {
  if (any_null(pParams)) return moxStsNullPointer;
  if (any_null(pParams->pSrcDstPlane, pParams->pThresholds, pParams->pBs, pParams->pAlpha, pParams->pBeta))
    return moxStsNullPointer;
  return filter_single<kChromaMbaff>(*pParams);
}

MoxStatus moxiFilterDeblockingChroma422VerEdge_H264_16u_C1IR(const MoxiDeblockParams_16u* pParams) {
  if (lacks_pointer(pParams)) return moxStsNullPointer;
  return filter_record<kChroma422Ver>(*pParams);
}

MoxStatus moxiFilterDeblockingChroma422HorEdge_H264_16u_C1IR(const MoxiDeblockParams_16u* pParams) {
  if (lacks_pointer(pParams)) return moxStsNullPointer;
  return filter_record<kChroma422Hor>(*pParams);
}

MoxStatus moxiFilterDeblockingChroma422VerEdgeMBAFF_H264_16u_C1IR(const MoxiDeblockParams_16u*) {
  return moxStsRegionTooSmall;
}
