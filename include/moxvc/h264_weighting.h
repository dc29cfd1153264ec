/** @file
 *  H.264 weighted prediction (ITU-T H.264 8.4.2.3). */
#ifndef MOXVC_H264_WEIGHTING_H
#define MOXVC_H264_WEIGHTING_H

#include "types.h"

MOX_BEGIN_DECLS

typedef struct MoxiBidirParams_16u {
  const Mox16u* pSrc1;
  Mox32s srcStep1;
  const Mox16u* pSrc2;
  Mox32s srcStep2;
  Mox16u* pDst;
  Mox32s dstStep;
  Mox32s width;
  Mox32s height;
  Mox32s bitDepth;
} MoxiBidirParams_16u;

MOX_API MoxStatus moxiWeightedAverage_H264_8u_C1IR(const Mox8u* pSrc1, Mox8u* pSrcDst, Mox32s srcDstStep,
                                                   Mox32s weight1, Mox32s weight2, Mox32u shift, Mox32s offset,
                                                   MoxiSize roiSize);
MOX_API MoxStatus moxiUniDirWeightBlock_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32u log2Wd, Mox32s weight,
                                                     Mox32s offset, MoxiSize roiSize);
MOX_API MoxStatus moxiUniDirWeightBlock_H264_8u_C1R(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32u log2Wd, Mox32s weight,
                                                    Mox32s offset, MoxiSize roiSize);
MOX_API MoxStatus moxiBiDirWeightBlock_H264_8u_P2P1R(const Mox8u* pSrc1, const Mox8u* pSrc2, Mox8u* pDst,
                                                     Mox32s srcStep, Mox32s dstStep, Mox32u log2Wd, Mox32s weight1,
                                                     Mox32s offset1, Mox32s weight2, Mox32s offset2, MoxiSize roiSize);
MOX_API MoxStatus moxiBiDirWeightBlock_H264_8u_P3P1R(const Mox8u* pSrc1, const Mox8u* pSrc2, Mox8u* pDst,
                                                     Mox32s srcStep1, Mox32s srcStep2, Mox32s dstStep, Mox32u log2Wd,
                                                     Mox32s weight1, Mox32s offset1, Mox32s weight2, Mox32s offset2,
                                                     MoxiSize roiSize);
MOX_API MoxStatus moxiBiDirWeightBlockImplicit_H264_8u_P2P1R(const Mox8u* pSrc1, const Mox8u* pSrc2, Mox8u* pDst,
                                                             Mox32s srcStep, Mox32s dstStep, Mox32s weight1,
                                                             Mox32s weight2, MoxiSize roiSize);
MOX_API MoxStatus moxiBiDirWeightBlockImplicit_H264_8u_P3P1R(const Mox8u* pSrc1, const Mox8u* pSrc2, Mox8u* pDst,
                                                             Mox32s srcStep1, Mox32s srcStep2, Mox32s dstStep,
                                                             Mox32s weight1, Mox32s weight2, MoxiSize roiSize);
MOX_API MoxStatus moxiBidir_H264_16u_P2P1R(const MoxiBidirParams_16u* pParams);
MOX_API MoxStatus moxiBidirWeight_H264_16u_P2P1R(const MoxiBidirParams_16u* pParams, Mox32u log2Wd, Mox32s weight1,
                                                 Mox32s offset1, Mox32s weight2, Mox32s offset2);
MOX_API MoxStatus moxiBidirWeightImplicit_H264_16u_P2P1R(const MoxiBidirParams_16u* pParams, Mox32s weight1,
                                                         Mox32s weight2);
MOX_API MoxStatus moxiUnidirWeight_H264_16u_IP2P1R(Mox16u* pSrcDst, Mox32s srcDstStep, Mox32u log2Wd, Mox32s weight,
                                                   Mox32s offset, MoxiSize roiSize, Mox32s bitDepth);

MOX_END_DECLS

#endif
