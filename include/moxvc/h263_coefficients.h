/** @file
 *  H.263 transform coefficients of 8x8 blocks: reading, with and without inverse quantisation, writing, quantisation
 *  (ITU-T H.263 5.4 and 6.2, advanced intra coding annex I, modified quantisation annex T).
 *
 *  Blocks are 64 coefficients in raster order, at the alignment of their elements. `qp` is 1 to 31. Flags are set by
 *  any value other than 0:
 *
 *      advIntraFlag  advanced intra coding: the codes and the quantiser of annex I. The first coefficient is coded as
 *                    all others; without the flag it is a DC of 8 bits of its own
 *      modQuantFlag  modified quantisation: levels of 11 bits in extended escapes, coefficients without limits
 *
 *  `scan` is the order of the codes: 0 zigzag, 1 alternate vertical, 2 alternate horizontal (scan.h); any other value
 *  takes the positions of the array one by one. A scan index is a place in that order, 0 to 63.
 *
 *  Stream position. `*ppBitStream` is the byte with the next bit, `*pBitOffset` the number of its bits, first bit 7,
 *  that are consumed: 0 to 7. A reader may load bytes up to the fourth behind the one with the last bit it consumes, so
 *  the caller pads by four. Writers keep the bits in front of the position and overwrite all others of each byte that
 *  they reach, the rest of the last one with zeros; the buffer needs no clearing, and no further byte is touched.
 *
 *  Codes. A code gives a last flag, a run of zeros, and a level with its sign. What the tables do not have is escaped:
 *
 *      0000011, last (1 bit), run (6), level (8, signed, neither 0 nor -128)                     22 bits
 *      0000011, last (1), run (6), 10000000, low 5 bits of the level, high 6 bits, signed        33 bits, modQuantFlag
 *
 *  With q = qp and o = q for an odd q, q - 1 for an even one, inverse quantisation makes of a level l
 *
 *      l * 2q + o  if l > 0,  l * 2q - o  if l < 0,  0 if l = 0,  without modQuantFlag limited to -2048..2047
 *      l * 2q      with advIntraFlag, without a limit
 *      l * 8       for a DC, whatever the flags but advIntraFlag
 *
 *  Readers clear the block, where nothing else is said, and store up to a code with its last flag set. An illegal code,
 *  a level of 0, and a scan index beyond 63 end the call with moxStsBadCode: the stream position is as it was,
 *  *pIndexCoeff tells the scan index of the last coefficient that was stored (-1, or 0 behind a DC: none), and what was
 *  stored stays. A call reads 65 codes at most.
 *
 *  Status, in this order: pointers, with *ppBitStream; *pBitOffset outside 0..7; qp outside 1..31; indexLast below 0,
 *  countNonZero outside 1..64. Nothing is written then. */
#ifndef MOXVC_H263_COEFFICIENTS_H
#define MOXVC_H263_COEFFICIENTS_H

#include "types.h"

MOX_BEGIN_DECLS

/** Reads the levels of an intra block. Without advIntraFlag the first code belongs to scan index 1 or a later one, and
 *  pCoef[0] is neither cleared nor written.
 *  @param[in,out] ppBitStream,pBitOffset position of the first code; moved behind the last one
 *  @param[out]    pCoef        levels, at their raster positions
 *  @param[out]    pIndexCoeff  scan index of the last one
 *  @param         advIntraFlag advanced intra coding
 *  @param         modQuantFlag modified quantisation
 *  @param         scan         scan order
 *  @retval moxStsNullPointer  a pointer or *ppBitStream is null
 *  @retval moxStsBadBitOffset *pBitOffset is not 0 to 7
 *  @retval moxStsBadCode      corrupt data, see above */
MOX_API MoxStatus moxiDecodeCoeffsIntra_H263_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                                   Mox32s* pIndexCoeff, Mox32s advIntraFlag, Mox32s modQuantFlag,
                                                   Mox32s scan);

/** Reads the levels of an inter block; as moxiDecodeCoeffsIntra_H263_1u16s, from scan index 0 on. */
MOX_API MoxStatus moxiDecodeCoeffsInter_H263_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                                   Mox32s* pIndexCoeff, Mox32s modQuantFlag, Mox32s scan);

/** Reads an intra DC: 8 bits, of which 255 stands for 128; 0 and 128 are illegal.
 *  @param[in,out] ppBitStream,pBitOffset position of the DC; moved behind it
 *  @param[out]    pDC level, 1 to 254; unchanged if it is illegal
 *  @retval moxStsNullPointer  a pointer or *ppBitStream is null
 *  @retval moxStsBadBitOffset *pBitOffset is not 0 to 7
 *  @retval moxStsBadCode      the 8 bits are illegal */
MOX_API MoxStatus moxiDecodeDCIntra_H263_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pDC);

/** Reads an intra block and its DC, with inverse quantisation. Without advIntraFlag the 8 bits of the DC come first,
 *  then, unless cbp is 0, the codes in zigzag order. With cbp 0 only pCoef[0] is written. With an illegal DC nothing is
 *  written to pCoef, and *pIndexCoeff is -1.
 *
 *  With modQuantFlag a coefficient is the low 16 bits of the formula's value, signed.
 *  @param[in,out] ppBitStream,pBitOffset position of the block; moved behind it
 *  @param[out]    pCoef        coefficients, at their raster positions
 *  @param[out]    pIndexCoeff  scan index of the last one, 0 with cbp 0
 *  @param         cbp          0: there is nothing but the DC; not used with advIntraFlag
 *  @param         qp           quantiser
 *  @param         advIntraFlag advanced intra coding
 *  @param         scan         scan order with advIntraFlag, else not used
 *  @param         modQuantFlag modified quantisation
 *  @retval moxStsNullPointer  a pointer or *ppBitStream is null
 *  @retval moxStsBadBitOffset *pBitOffset is not 0 to 7
 *  @retval moxStsBadQp        qp is not 1 to 31
 *  @retval moxStsBadCode      corrupt data, see above */
MOX_API MoxStatus moxiReconstructCoeffsIntra_H263_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                                        Mox32s* pIndexCoeff, Mox32s cbp, Mox32s qp, Mox32s advIntraFlag,
                                                        Mox32s scan, Mox32s modQuantFlag);

/** Reads an inter block in zigzag order, with inverse quantisation; as moxiReconstructCoeffsIntra_H263_1u16s, from scan
 *  index 0 on and without a DC. */
MOX_API MoxStatus moxiReconstructCoeffsInter_H263_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                                        Mox32s* pIndexCoeff, Mox32s qp, Mox32s modQuantFlag);

/** Writes the levels of an intra block, without advIntraFlag those from scan index 1 on. The countNonZero-th level
 * other than 0 gets the last flag and ends the block. If there are fewer, all are written, and none gets it. A level
 * that is escaped without modQuantFlag must be -127 to 127, with modQuantFlag -1024 to 1023; only its low 8 or 11 bits
 * are written.
 *  @param[in]     pCoeffs      levels, at their raster positions
 *  @param[in,out] ppBitStream,pBitOffset position of the first code; moved behind the last one
 *  @param         countNonZero number of levels to write, 1 to 64. moxiQuantIntra_H263_16s_C1I without advIntraFlag
 *                              counts the DC too: one less is to be written here
 *  @param         advIntraFlag advanced intra coding
 *  @param         modQuantFlag modified quantisation
 *  @param         scan         scan order
 *  @retval moxStsNullPointer  a pointer or *ppBitStream is null
 *  @retval moxStsBadBitOffset *pBitOffset is not 0 to 7
 *  @retval moxStsOutOfRange   countNonZero is not 1 to 64 */
MOX_API MoxStatus moxiEncodeCoeffsIntra_H263_16s1u(const Mox16s* pCoeffs, Mox8u** ppBitStream, Mox32s* pBitOffset,
                                                   Mox32s countNonZero, Mox32s advIntraFlag, Mox32s modQuantFlag,
                                                   Mox32s scan);

/** Writes the levels of an inter block; as moxiEncodeCoeffsIntra_H263_16s1u, from scan index 0 on. */
MOX_API MoxStatus moxiEncodeCoeffsInter_H263_16s1u(const Mox16s* pCoeffs, Mox8u** ppBitStream, Mox32s* pBitOffset,
                                                   Mox32s countNonZero, Mox32s modQuantFlag, Mox32s scan);

/** Writes an intra DC: 8 bits, 255 for 128.
 *  @param         dcCoeff level, 1 to 254; of others the low 8 bits are written
 *  @param[in,out] ppBitStream,pBitOffset position of the DC; moved behind it
 *  @retval moxStsNullPointer  a pointer or *ppBitStream is null
 *  @retval moxStsBadBitOffset *pBitOffset is not 0 to 7 */
MOX_API MoxStatus moxiEncodeDCIntra_H263_16s1u(Mox16s dcCoeff, Mox8u** ppBitStream, Mox32s* pBitOffset);

/** Quantises an intra block in place. With r = 65536 / 2q + 1, the quotient towards zero, a coefficient x becomes
 *
 *      (|x| * r) >> 16                              without advIntraFlag
 *      (min(|x| + ((3 * q) >> 2), 32767) * r) >> 16 with it, 0 for x = 0
 *
 *  with the sign of x, which for q = 1 is x / 2 towards zero. Without modQuantFlag it is limited to -127..127 if q is
 *  below 8, with advIntraFlag for any q. Without advIntraFlag pSrcDst[0] is a DC instead: (x + 4) >> 3, of which 0
 *  becomes 1 and 255 becomes 254.
 *  @param[in,out] pSrcDst       coefficients, then levels
 *  @param         qp            quantiser
 *  @param[out]    pCountNonZero number of levels other than 0, a DC included; not tested
 *  @param         advIntraFlag  advanced intra coding
 *  @param         modQuantFlag  modified quantisation
 *  @retval moxStsNullPointer pSrcDst is null
 *  @retval moxStsBadQp       qp is not 1 to 31 */
MOX_API MoxStatus moxiQuantIntra_H263_16s_C1I(Mox16s* pSrcDst, Mox32s qp, Mox32s* pCountNonZero, Mox32s advIntraFlag,
                                              Mox32s modQuantFlag);

/** Quantises an inter block in place: as moxiQuantIntra_H263_16s_C1I without advIntraFlag, with all coefficients alike
 *  and max(|x| - (q >> 1), 0) in place of |x|.
 *  @param[in,out] pSrcDst       coefficients, then levels
 *  @param         qp            quantiser
 *  @param[out]    pCountNonZero number of levels other than 0; not tested
 *  @param         modQuantFlag  modified quantisation
 *  @retval moxStsNullPointer pSrcDst is null
 *  @retval moxStsBadQp       qp is not 1 to 31 */
MOX_API MoxStatus moxiQuantInter_H263_16s_C1I(Mox16s* pSrcDst, Mox32s qp, Mox32s* pCountNonZero, Mox32s modQuantFlag);

/** Inverse quantisation of an intra block, in place. All levels of the groups of eight up to the one that holds
 *  pSrcDst[indexLast] are treated, those behind stay. Products wrap at 16 bits, the sum with o saturates there. Without
 *  advIntraFlag pSrcDst[0] is a DC, and with indexLast 0 nothing else is treated.
 *  @param[in,out] pSrcDst      levels, then coefficients
 *  @param         indexLast    index in the array, not in a scan, of the last level; above 63 is as 63
 *  @param         qp           quantiser
 *  @param         advIntraFlag advanced intra coding
 *  @param         modQuantFlag modified quantisation
 *  @retval moxStsNullPointer pSrcDst is null
 *  @retval moxStsBadQp       qp is not 1 to 31
 *  @retval moxStsOutOfRange  indexLast is below 0 */
MOX_API MoxStatus moxiQuantInvIntra_H263_16s_C1I(Mox16s* pSrcDst, Mox32s indexLast, Mox32s qp, Mox32s advIntraFlag,
                                                 Mox32s modQuantFlag);

/** Inverse quantisation of an inter block, in place; as moxiQuantInvIntra_H263_16s_C1I, with all levels alike. */
MOX_API MoxStatus moxiQuantInvInter_H263_16s_C1I(Mox16s* pSrcDst, Mox32s indexLast, Mox32s qp, Mox32s modQuantFlag);

MOX_END_DECLS

#endif
