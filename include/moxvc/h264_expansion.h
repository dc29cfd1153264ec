/** @file
 *  Plane expansion, and the rounded average of two prediction blocks. */
#ifndef MOXVC_H264_EXPANSION_H
#define MOXVC_H264_EXPANSION_H

#include "types.h"

MOX_BEGIN_DECLS

MOX_API MoxStatus moxiExpandPlane_H264_8u_C1R(Mox8u* pSrcDst, Mox32s width, Mox32s height, Mox32s step,
                                              Mox32s expandSize, Mox32u mode);
MOX_API MoxStatus moxiInterpolateBlock_H264_8u_P2P1R(const Mox8u* pSrc1, const Mox8u* pSrc2, Mox8u* pDst, Mox32s width,
                                                     Mox32s height, Mox32s step);
MOX_API MoxStatus moxiInterpolateBlock_H264_8u_P3P1R(const Mox8u* pSrc1, const Mox8u* pSrc2, Mox8u* pDst, Mox32s width,
                                                     Mox32s height, Mox32s step1, Mox32s step2, Mox32s dstStep);

MOX_END_DECLS

#endif
