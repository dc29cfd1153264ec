#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "h264/deblock_px.hpp"
#include "moxvc/h264_deblock.h"

using namespace mox;
using namespace mox::forms;

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
