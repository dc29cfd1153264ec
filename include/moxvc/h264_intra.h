/** @file
 *  H.264 intra prediction in place (ITU-T H.264 8.3). */
#ifndef MOXVC_H264_INTRA_H
#define MOXVC_H264_INTRA_H

#include "types.h"

MOX_BEGIN_DECLS

MOX_API MoxStatus moxiPredictIntra_4x4_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s step, Mox32s mode, Mox32s edgeAvailability);
MOX_API MoxStatus moxiPredictIntra_16x16_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s step, Mox32s mode,
                                                      Mox32s edgeAvailability);
MOX_API MoxStatus moxiPredictIntraChroma8x8_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s step, Mox32s mode,
                                                         Mox32s edgeAvailability);

MOX_END_DECLS

#endif
