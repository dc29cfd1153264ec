/** @file
 *  H.264 luma and chroma interpolation, plane expansion and block averages (ITU-T H.264 8.4.2.2). */
#ifndef MOXVC_H264_INTERPOLATION_H
#define MOXVC_H264_INTERPOLATION_H

#include "types.h"

MOX_BEGIN_DECLS

typedef struct MoxiInterpBlock_8u {
  const Mox8u* pSrcPlane[2];
  Mox32s srcStep;
  Mox8u* pDstPlane[2];
  Mox32s dstStep;
  MoxiSize frameSize;
  MoxiSize blockSize;
  MoxiPoint blockPos;
  MoxiPoint vector;
} MoxiInterpBlock_8u;

typedef struct MoxiInterpBlock_16u {
  const Mox16u* pSrcPlane[2];
  Mox32s srcStep;
  Mox16u* pDstPlane[2];
  Mox32s dstStep;
  MoxiSize frameSize;
  MoxiSize blockSize;
  MoxiPoint blockPos;
  MoxiPoint vector;
  Mox32s bitDepth;
} MoxiInterpBlock_16u;

typedef struct MoxiInterpRegion_16u {
  const Mox16u* pSrc;
  Mox32s srcStep;
  Mox16u* pDst;
  Mox32s dstStep;
  Mox32s dx;
  Mox32s dy;
  Mox32s width;
  Mox32s height;
  Mox32s bitDepth;
} MoxiInterpRegion_16u;

MOX_API MoxStatus moxiInterpolateLuma_H264_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                                  Mox32s dx, Mox32s dy, MoxiSize roiSize);
MOX_API MoxStatus moxiInterpolateLumaTop_H264_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                                     Mox32s dx, Mox32s dy, Mox32s outPixels, MoxiSize roiSize);
MOX_API MoxStatus moxiInterpolateLumaBottom_H264_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                                        Mox32s dx, Mox32s dy, Mox32s outPixels, MoxiSize roiSize);
MOX_API MoxStatus moxiInterpolateLuma_H264_16u_C1R(const MoxiInterpRegion_16u* pRegion);
MOX_API MoxStatus moxiInterpolateLumaTop_H264_16u_C1R(const MoxiInterpRegion_16u* pRegion, Mox32s outPixels);
MOX_API MoxStatus moxiInterpolateLumaBottom_H264_16u_C1R(const MoxiInterpRegion_16u* pRegion, Mox32s outPixels);

MOX_API MoxStatus moxiInterpolateChroma_H264_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                                    Mox32s dx, Mox32s dy, MoxiSize roiSize);
MOX_API MoxStatus moxiInterpolateChromaTop_H264_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                                       Mox32s dx, Mox32s dy, Mox32s outPixels, MoxiSize roiSize);
MOX_API MoxStatus moxiInterpolateChromaBottom_H264_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst,
                                                          Mox32s dstStep, Mox32s dx, Mox32s dy, Mox32s outPixels,
                                                          MoxiSize roiSize);
MOX_API MoxStatus moxiInterpolateChroma_H264_8u_C2P2R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDstU, Mox8u* pDstV,
                                                      Mox32s dstStep, Mox32s dx, Mox32s dy, MoxiSize roiSize);
MOX_API MoxStatus moxiInterpolateChroma_H264_16u_C1R(const MoxiInterpRegion_16u* pRegion);
MOX_API MoxStatus moxiInterpolateChromaTop_H264_16u_C1R(const MoxiInterpRegion_16u* pRegion, Mox32s outPixels);
MOX_API MoxStatus moxiInterpolateChromaBottom_H264_16u_C1R(const MoxiInterpRegion_16u* pRegion, Mox32s outPixels);

MOX_API MoxStatus moxiInterpolateLumaBlock_H264_8u_P1R(const MoxiInterpBlock_8u* pBlock);
MOX_API MoxStatus moxiInterpolateLumaBlock_H264_16u_P1R(const MoxiInterpBlock_16u* pBlock);
MOX_API MoxStatus moxiInterpolateChromaBlock_H264_8u_P2R(const MoxiInterpBlock_8u* pBlock);
MOX_API MoxStatus moxiInterpolateChromaBlock_H264_8u_C2P2R(const MoxiInterpBlock_8u* pBlock);
MOX_API MoxStatus moxiInterpolateChromaBlock_H264_16u_P2R(const MoxiInterpBlock_16u* pBlock);

MOX_END_DECLS

#endif
