/** @file
 *  MPEG-4 texture: coefficients of 8x8 blocks from and to the bitstream (ISO/IEC 14496-2 7.4.1 and 7.4.2, code tables
 *  B-13, B-14, B-16, B-17 and B-23).
 *
 *  Blocks are 64 coefficients in raster order, at the alignment of their elements. A scan index is a place in the order
 *  of the codes, 0 to 63. Flags are set by any value other than 0:
 *
 *      rvlcFlag  reversible codes (table B-23) in place of those of B-16 (intra) or B-17 (inter)
 *      noDCFlag  intra blocks: the DC is no part of the codes. pCoef[0] is neither cleared nor written, and the first
 *                code belongs to scan index 1 or a later one
 *
 *  Values of `scan`, and what others stand for ("none" takes the positions of the array one by one):
 *
 *      function               0        1                    2                      -1       others
 *      decode intra           zigzag   alternate vertical   alternate horizontal   none     none
 *      decode inter           zigzag   alternate vertical   none                   none     none
 *      reconstruct inter      zigzag   alternate vertical   zigzag                 zigzag   zigzag
 *      encode intra           zigzag   alternate vertical   alternate horizontal   none     zigzag
 *      encode inter           zigzag   alternate vertical   zigzag                 none     zigzag
 *
 *  Stream position. `*ppBitStream` is the byte with the next bit, `*pBitOffset` the number of its bits, first bit 7,
 *  that are consumed: 0 to 7. A reader may load bytes up to the second one behind the byte with the last bit of the
 *  last code that it tries to read, whether that is legal or not; a backward reader up to the second one in front of
 *  the byte with the first bit of that code. The caller pads by two. Writers keep the bits in front of the position and
 *  overwrite all others of each byte that they reach, the rest of the last one with zeros; the buffer needs no
 *  clearing, and no further byte is touched.
 *
 *  Codes. A code gives a last flag, a run of zeros, and a level with its sign. What the tables do not have is escaped:
 *
 *      0000011 0   and a code: the greatest level that the table has for its last flag and run is added to its level
 *      0000011 10  and a code: the greatest run that it has for its last flag and level, plus 1, is added to its run
 *      0000011 11, last (1 bit), run (6), 1, level (12, signed, neither 0 nor -2048), 1              30 bits
 *      00001, last (1), run (6), 1, magnitude of the level (11, not 0), 1, 0000, sign (1)            30 bits, rvlcFlag
 *
 *  An escape within an escape is illegal. Writers take the first form that has the level.
 *
 *  Readers clear the block, but for a DC that stays, and store levels up to a code with its last flag set. A code that
 *  is illegal or leads beyond scan index 63 ends the call with moxStsBadCode: the stream position is as it was, what
 *  was stored stays, and *pIndexCoeff is the scan index of the last level that was stored (-1, or 0 with noDCFlag:
 *  none), or the one above 63 to which the code led. A call reads 65 codes at most.
 *
 *  Backward readers begin at a position behind the last code of a block and go on to the code with its last flag set
 *  that ends the block in front of it, behind which the position is left. They know no scan: levels stand in pCoef by
 *  their scan index (moxiScanInv_16s_C1 puts them in place). The run of the first level of a block has its place too:
 *  64 places, 63 with noDCFlag, are legal, and more are not. moxStsBadCode is an illegal code, a first one without the
 *  last flag, or one place too many; then the levels read stand at the end of the block, at the distances of their
 *  runs, the rest is cleared, and *pIndexCoeff is the place in front of them, 63 if there are none.
 *
 *  Status, in this order: pointers, with *ppBitStream; *pBitOffset outside 0..7; countNonZero, or the record and qp.
 *  Nothing is written then. */
#ifndef MOXVC_MPEG4_COEFFICIENTS_H
#define MOXVC_MPEG4_COEFFICIENTS_H

#include "mpeg4_quantization.h"
#include "types.h"

MOX_BEGIN_DECLS

/** Reads the levels of an intra block.
 *  @param[in,out] ppBitStream,pBitOffset position of the first code; moved behind the last one
 *  @param[out]    pCoef       levels, at their raster positions
 *  @param[out]    pIndexCoeff scan index of the last one
 *  @param         rvlcFlag    reversible codes
 *  @param         noDCFlag    the DC is no part of the codes
 *  @param         scan        scan order
 *  @retval moxStsNullPointer  a pointer or *ppBitStream is null
 *  @retval moxStsBadBitOffset *pBitOffset is not 0 to 7
 *  @retval moxStsBadCode      corrupt data, see above */
MOX_API MoxStatus moxiDecodeCoeffsIntra_MPEG4_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                                    Mox32s* pIndexCoeff, Mox32s rvlcFlag, Mox32s noDCFlag, Mox32s scan);

/** Reads the levels of an inter block; as moxiDecodeCoeffsIntra_MPEG4_1u16s, from scan index 0 on. */
MOX_API MoxStatus moxiDecodeCoeffsInter_MPEG4_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                                    Mox32s* pIndexCoeff, Mox32s rvlcFlag, Mox32s scan);

/** Reads the levels of an intra block of reversible codes backwards.
 *  @param[in,out] ppBitStream,pBitOffset position behind the last code; moved to the front of the first one
 *  @param[out]    pCoef       levels, by scan index
 *  @param[out]    pIndexCoeff scan index of the last one
 *  @param         noDCFlag    the DC is no part of the codes
 *  @retval moxStsNullPointer  a pointer or *ppBitStream is null
 *  @retval moxStsBadBitOffset *pBitOffset is not 0 to 7
 *  @retval moxStsBadCode      corrupt data, see above */
MOX_API MoxStatus moxiDecodeCoeffsIntraRVLCBack_MPEG4_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset,
                                                            Mox16s* pCoef, Mox32s* pIndexCoeff, Mox32s noDCFlag);

/** Reads the levels of an inter block of reversible codes backwards; as moxiDecodeCoeffsIntraRVLCBack_MPEG4_1u16s
 *  without noDCFlag. */
MOX_API MoxStatus moxiDecodeCoeffsInterRVLCBack_MPEG4_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset,
                                                            Mox16s* pCoef, Mox32s* pIndexCoeff);

/** Reads an intra DC: the code of its size in bits, 0 to 12; its value in so many bits, a negative one as value +
 *  2^size - 1; a marker bit 1 if the size is above 8.
 *  @param[in,out] ppBitStream,pBitOffset position of the DC; moved behind it
 *  @param[out]    pDC       -4095 to 4095; unchanged if the code is illegal
 *  @param         blockType 0 luma, any other value chroma: the code of the size
 *  @retval moxStsNullPointer  a pointer or *ppBitStream is null
 *  @retval moxStsBadBitOffset *pBitOffset is not 0 to 7
 *  @retval moxStsBadCode      there is no such size, or the marker bit is 0 */
MOX_API MoxStatus moxiDecodeDCIntra_MPEG4_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pDC,
                                                Mox32s blockType);

/** Reads an inter block, with inverse quantisation: moxiDecodeCoeffsInter_MPEG4_1u16s, then
 *  moxiQuantInvInter_MPEG4_16s_C1I with indexLast 63. On moxStsBadCode the levels stored so far are quantised without
 *  rvlcFlag, and none with it; in neither case has mismatch control taken place.
 *
 *  With rvlcFlag the record and qp are tested behind the block: their statuses leave the levels read and the position
 *  moved, and a null record gives moxStsNullPointer then too.
 *  @param[in,out] ppBitStream,pBitOffset position of the first code; moved behind the last one
 *  @param[out]    pCoef       coefficients, at their raster positions
 *  @param[out]    pIndexCoeff scan index of the last level
 *  @param         rvlcFlag    reversible codes
 *  @param         scan        scan order
 *  @param[in]     pQuantInvInterSpec record of moxiQuantInvInterInit_MPEG4
 *  @param         qp          quantiser parameter
 *  @retval moxStsNullPointer  a pointer or *ppBitStream is null
 *  @retval moxStsBadBitOffset *pBitOffset is not 0 to 7
 *  @retval moxStsNullPointer  pQuantInvInterSpec is null
 *  @retval moxStsBadContext   pQuantInvInterSpec has another tag
 *  @retval moxStsBadQp        qp is below 1 or above the greatest of the bits a pixel
 *  @retval moxStsBadCode      corrupt data, see above */
MOX_API MoxStatus moxiReconstructCoeffsInter_MPEG4_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                                         Mox32s* pIndexCoeff, Mox32s rvlcFlag, Mox32s scan,
                                                         const MoxiQuantInvState* pQuantInvInterSpec, Mox32s qp);

/** Writes the levels of an intra block, with noDCFlag those from scan index 1 on. The countNonZero-th level other than
 *  0 gets the last flag and ends the block. If there are fewer, all are written, and none gets it. Levels are -2047 to
 *  2047; of others, escapes have the low 12 bits, or with rvlcFlag the low 11 bits of the magnitude.
 *  @param[in]     pCoeffs      levels, at their raster positions
 *  @param[in,out] ppBitStream,pBitOffset position of the first code; moved behind the last one
 *  @param         countNonZero number of levels to write, 1 to 64, with noDCFlag 1 to 63. moxiQuantIntra_MPEG4_16s_C1I
 *                              counts the DC too: with noDCFlag one other than 0 is to be taken off
 *  @param         rvlcFlag     reversible codes
 *  @param         noDCFlag     the DC is no part of the codes
 *  @param         scan         scan order
 *  @retval moxStsNullPointer  a pointer or *ppBitStream is null
 *  @retval moxStsBadBitOffset *pBitOffset is not 0 to 7
 *  @retval moxStsOutOfRange   countNonZero is outside its range */
MOX_API MoxStatus moxiEncodeCoeffsIntra_MPEG4_16s1u(const Mox16s* pCoeffs, Mox8u** ppBitStream, Mox32s* pBitOffset,
                                                    Mox32s countNonZero, Mox32s rvlcFlag, Mox32s noDCFlag, Mox32s scan);

/** Writes the levels of an inter block; as moxiEncodeCoeffsIntra_MPEG4_16s1u, from scan index 0 on. */
MOX_API MoxStatus moxiEncodeCoeffsInter_MPEG4_16s1u(const Mox16s* pCoeffs, Mox8u** ppBitStream, Mox32s* pBitOffset,
                                                    Mox32s countNonZero, Mox32s rvlcFlag, Mox32s scan);

/** Writes an intra DC in the form of moxiDecodeDCIntra_MPEG4_1u16s.
 *  @param         dcCoeff   the DC; limited to -4095..4095
 *  @param[in,out] ppBitStream,pBitOffset position of the DC; moved behind it
 *  @param         blockType 1 chroma, any other value luma: the code of the size
 *  @retval moxStsNullPointer  a pointer or *ppBitStream is null
 *  @retval moxStsBadBitOffset *pBitOffset is not 0 to 7 */
MOX_API MoxStatus moxiEncodeDCIntra_MPEG4_16s1u(Mox16s dcCoeff, Mox8u** ppBitStream, Mox32s* pBitOffset,
                                                Mox32s blockType);

MOX_END_DECLS

#endif
