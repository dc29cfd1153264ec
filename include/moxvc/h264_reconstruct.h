/** @file
 *  H.264 macroblock reconstruction, 8-bit 4:2:0 (ITU-T H.264 8.3, 8.5). */
#ifndef MOXVC_H264_RECONSTRUCT_H
#define MOXVC_H264_RECONSTRUCT_H

#include "types.h"

MOX_BEGIN_DECLS

MOX_API MoxStatus moxiReconstructLumaInterMB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane,
                                                            Mox32s srcDstYStep, Mox32u cbp4x4, Mox32s qp);
MOX_API MoxStatus moxiReconstructLumaIntraMB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane,
                                                            Mox32s srcDstYStep, const Mox32u* pMBIntraTypes,
                                                            Mox32u cbp4x4, Mox32s qp, Mox32u edgeType);
MOX_API MoxStatus moxiReconstructLumaIntra16x16MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane,
                                                                 Mox32s srcDstYStep, Mox32u intraLumaMode,
                                                                 Mox32u cbp4x4, Mox32s qp, Mox32u edgeType);
MOX_API MoxStatus moxiReconstructChromaInterMB_H264_16s8u_P2R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstUPlane,
                                                              Mox8u* pSrcDstVPlane, Mox32s srcDstUVStep, Mox32u cbp4x4,
                                                              Mox32s chromaQp);
MOX_API MoxStatus moxiReconstructChromaIntraMB_H264_16s8u_P2R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstUPlane,
                                                              Mox8u* pSrcDstVPlane, Mox32s srcDstUVStep,
                                                              Mox32u intraChromaMode, Mox32u cbp4x4, Mox32s chromaQp,
                                                              Mox32u edgeType);

MOX_END_DECLS

#endif
