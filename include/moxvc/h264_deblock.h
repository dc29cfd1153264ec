/** @file
 *  H.264 in-loop deblocking of macroblock edges (ITU-T H.264 8.7). */
#ifndef MOXVC_H264_DEBLOCK_H
#define MOXVC_H264_DEBLOCK_H

#include "types.h"

MOX_BEGIN_DECLS

typedef struct MoxiDeblockParams {
  Mox8u* pSrcDstPlane;
  Mox32s srcDstStep;
  const Mox8u* pAlpha;
  const Mox8u* pBeta;
  const Mox8u* pThresholds;
  const Mox8u* pBs;
} MoxiDeblockParams;

typedef struct MoxiDeblockParams_16u {
  Mox16u* pSrcDstPlane;
  Mox32s srcDstStep;
  const Mox16u* pAlpha;
  const Mox16u* pBeta;
  const Mox16u* pThresholds;
  const Mox8u* pBs;
  Mox32s bitDepth;
} MoxiDeblockParams_16u;

MOX_API MoxStatus moxiFilterDeblockingLuma_VerEdge_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, const Mox8u* pAlpha,
                                                                const Mox8u* pBeta, const Mox8u* pThresholds,
                                                                const Mox8u* pBs);
MOX_API MoxStatus moxiFilterDeblockingLuma_HorEdge_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, const Mox8u* pAlpha,
                                                                const Mox8u* pBeta, const Mox8u* pThresholds,
                                                                const Mox8u* pBs);
MOX_API MoxStatus moxiFilterDeblockingChroma_VerEdge_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep,
                                                                  const Mox8u* pAlpha, const Mox8u* pBeta,
                                                                  const Mox8u* pThresholds, const Mox8u* pBs);
MOX_API MoxStatus moxiFilterDeblockingChroma_HorEdge_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep,
                                                                  const Mox8u* pAlpha, const Mox8u* pBeta,
                                                                  const Mox8u* pThresholds, const Mox8u* pBs);

MOX_END_DECLS

#endif
