/** @file
 *  H.264 dequantisation and inverse transforms (ITU-T H.264 8.5). */
#ifndef MOXVC_H264_INVERSE_TRANSFORM_H
#define MOXVC_H264_INVERSE_TRANSFORM_H

#include "types.h"

MOX_BEGIN_DECLS

MOX_API MoxStatus moxiDequantTransformResidual_H264_16s_C1I(Mox16s* pSrcDst, Mox32s step, const Mox16s* pDC, Mox32s ac,
                                                            Mox32s qp);

MOX_END_DECLS

#endif
