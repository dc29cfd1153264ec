/** @file
 *  H.264 CAVLC blocks and Exp-Golomb elements (ITU-T H.264 9.1, 9.2). */
#ifndef MOXVC_H264_CAVLC_H
#define MOXVC_H264_CAVLC_H

#include "huffman.h"
#include "types.h"

MOX_BEGIN_DECLS

MOX_API MoxStatus moxiDecodeCAVLCCoeffs_H264_1u16s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox16s* pNumCoeff,
                                                   Mox16s** ppDstCoeffs, Mox32s uVLCSelect, Mox16s uMaxNumCoeff,
                                                   const MoxVlcTable* const* ppTblCoeffToken,
                                                   const MoxVlcTable* const* ppTblTotalZeros,
                                                   const MoxVlcTable* const* ppTblRunBefore, const Mox32s* pScanMatrix);
MOX_API MoxStatus moxiDecodeCAVLCCoeffs_H264_1u32s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox16s* pNumCoeff,
                                                   Mox32s** ppDstCoeffs, Mox32s uVLCSelect, Mox16s uMaxNumCoeff,
                                                   const MoxVlcTable* const* ppTblCoeffToken,
                                                   const MoxVlcTable* const* ppTblTotalZeros,
                                                   const MoxVlcTable* const* ppTblRunBefore, const Mox32s* pScanMatrix);
MOX_API MoxStatus moxiDecodeCAVLCChromaDcCoeffs_H264_1u16s(const Mox32u** ppBitStream, Mox32s* pBitOffset,
                                                           Mox16s* pNumCoeff, Mox16s** ppDstCoeffs,
                                                           const MoxVlcTable* pTblCoeffToken,
                                                           const MoxVlcTable* const* ppTblTotalZerosCR,
                                                           const MoxVlcTable* const* ppTblRunBefore);
MOX_API MoxStatus moxiDecodeCAVLCChromaDcCoeffs_H264_1u32s(const Mox32u** ppBitStream, Mox32s* pBitOffset,
                                                           Mox16s* pNumCoeff, Mox32s** ppDstCoeffs,
                                                           const MoxVlcTable* pTblCoeffToken,
                                                           const MoxVlcTable* const* ppTblTotalZerosCR,
                                                           const MoxVlcTable* const* ppTblRunBefore);
MOX_API MoxStatus moxiDecodeCAVLCChroma422DcCoeffs_H264_1u16s(const Mox32u** ppBitStream, Mox32s* pBitOffset,
                                                              Mox16s* pNumCoeff, Mox16s** ppDstCoeffs,
                                                              const MoxVlcTable* pTblCoeffToken,
                                                              const MoxVlcTable* const* ppTblTotalZerosCR,
                                                              const MoxVlcTable* const* ppTblRunBefore);
MOX_API MoxStatus moxiDecodeCAVLCChroma422DcCoeffs_H264_1u32s(const Mox32u** ppBitStream, Mox32s* pBitOffset,
                                                              Mox16s* pNumCoeff, Mox32s** ppDstCoeffs,
                                                              const MoxVlcTable* pTblCoeffToken,
                                                              const MoxVlcTable* const* ppTblTotalZerosCR,
                                                              const MoxVlcTable* const* ppTblRunBefore);
MOX_API MoxStatus moxiDecodeExpGolombOne_H264_1u16s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox16s* pDst,
                                                    Mox32s isSigned);
MOX_API MoxStatus moxiDecodeExpGolombOne_H264_1u32s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox32s* pDst,
                                                    Mox32s isSigned);

MOX_END_DECLS

#endif
