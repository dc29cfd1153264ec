/** @file
 *  H.261: transform coefficients of a block from and to the bitstream, and the loop filter (ITU-T H.261 4.2.4, 3.2.3).
 *
 *  Stream position. `*ppBitStream` points to the byte that holds the next bit, `*pBitOffset` is the number of bits of
 *  it that are consumed, 0 to 7; bit 7 of a byte is its first. Both are moved behind the block.
 *
 *  Blocks are 64 coefficients in raster order. A level at scan index i lies at the zigzag position of i, with a `scan`
 *  of -1 at position i; any other `scan` means zigzag. The index goes up by the zeros in front of a level and 1.
 *
 *  Syntax. An intra block begins with 8 bits of DC at index 0: 1 to 254 but for 128, and 255 for 128. An inter block
 *  whose first level is 1 or -1 at index 0 begins with 10 or 11. All other levels have the code of their run and level
 *  with a sign bit, or where there is none the escape 000001, 6 bits run and 8 bits signed level. 10 ends the block.
 *
 *  Decoding clears the block and stores the levels. Reconstruction multiplies them out with the quantiser q:
 *
 *      level l, o = q if q is odd, else q - 1:    2 q l + o for l > 0, 2 q l - o for l < 0, limited to -2048..2047
 *      DC c of an intra block:                    8 c, without q
 *
 *  Memory. Up to four bytes are read from the one that holds the next bit of each code: a block may be read up to four
 *  bytes beyond the last byte of its last legal code, and the data need as much padding. A writer keeps the bits in
 *  front of its position, overwrites the rest of every byte that it touches, and touches no byte without a bit of the
 *  block: 162 bytes at most, for 64 escapes and the end behind 7 bits of others.
 *
 *  Corrupt data end a decoder with moxStsBadCode: a DC with its low 7 bits all 0; 9 zero bits in place of a code; an
 *  escape with level 0 or -128; an index above 63. The position is then as it was; the levels so far are stored, but
 *  for the DC of an intra block, which stays 0; `*pIndexCoeff` is the index of the last level stored, 0 behind a legal
 *  DC, -1 if there is none. An escape that carries the index to 127, run 63 behind index 63, ends the block as the end
 *  code does, its level dropped. A call reads 65 codes at most.
 *
 *  Status. moxStsNullPointer if a pointer or `*ppBitStream` is null; then moxStsBadBitOffset if `*pBitOffset` is
 *  none of 0..7; then moxStsBadQp if `qp` is none of 1..31, or moxStsOutOfRange if `countNonZero` is none of 1..64.
 *  Nothing is written in these cases. `scan` is not tested.
 */
#ifndef MOXVC_H261_H
#define MOXVC_H261_H

#include "types.h"

MOX_BEGIN_DECLS

/** Decodes the levels of an intra block.
 *  @param[in,out] ppBitStream,pBitOffset position of the DC
 *  @param[out]    pCoef       64 levels
 *  @param[out]    pIndexCoeff scan index of the last level, 0 if there is only the DC
 *  @param         scan        -1 none, else zigzag
 *  @retval moxStsNullPointer  a pointer or *ppBitStream is null
 *  @retval moxStsBadBitOffset *pBitOffset is outside 0..7
 *  @retval moxStsBadCode      corrupt data, see above */
MOX_API MoxStatus moxiDecodeCoeffsIntra_H261_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                                   Mox32s* pIndexCoeff, Mox32s scan);

/** Decodes the levels of an inter block; otherwise as moxiDecodeCoeffsIntra_H261_1u16s.
 *  @param[in,out] ppBitStream,pBitOffset position of the first level */
MOX_API MoxStatus moxiDecodeCoeffsInter_H261_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                                   Mox32s* pIndexCoeff, Mox32s scan);

/** Decodes an intra block with zigzag scan and multiplies it out.
 *  @param[in,out] ppBitStream,pBitOffset position of the DC
 *  @param[out]    pCoef       64 coefficients
 *  @param[out]    pIndexCoeff scan index of the last coefficient, 0 if there is only the DC
 *  @param         qp          quantiser, 1 to 31
 *  @retval moxStsNullPointer  a pointer or *ppBitStream is null
 *  @retval moxStsBadBitOffset *pBitOffset is outside 0..7
 *  @retval moxStsBadQp        qp is outside 1..31
 *  @retval moxStsBadCode      corrupt data, see above */
MOX_API MoxStatus moxiReconstructCoeffsIntra_H261_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                                        Mox32s* pIndexCoeff, Mox32s qp);

/** Decodes an inter block with zigzag scan and multiplies it out; otherwise as moxiReconstructCoeffsIntra_H261_1u16s.
 *  @param[in,out] ppBitStream,pBitOffset position of the first level */
MOX_API MoxStatus moxiReconstructCoeffsInter_H261_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                                        Mox32s* pIndexCoeff, Mox32s qp);

/** Writes an intra block: the low 8 bits of coefficient 0, or 255 for 128, the levels other than 0 from index 1 on, the
 *  end of the block. Escapes hold the low 8 bits of a level: a level that a decoder shall read back is -127..127, a DC
 *  1..254.
 *  @param[in]     pCoeffs      64 levels
 *  @param[in,out] ppBitStream,pBitOffset writing position
 *  @param         countNonZero levels other than 0, the DC always counted: the first countNonZero - 1 behind it are
 *                              written, all of them if there are fewer
 *  @param         scan         -1 none, else zigzag
 *  @retval moxStsNullPointer  a pointer or *ppBitStream is null
 *  @retval moxStsBadBitOffset *pBitOffset is outside 0..7
 *  @retval moxStsOutOfRange   countNonZero is outside 1..64 */
MOX_API MoxStatus moxiEncodeCoeffsIntra_H261_16s1u(const Mox16s* pCoeffs, Mox8u** ppBitStream, Mox32s* pBitOffset,
                                                   Mox32s countNonZero, Mox32s scan);

/** Writes an inter block: the first countNonZero levels other than 0 from index 0 on, the end of the block. A block
 *  without a level cannot be written. Otherwise as moxiEncodeCoeffsIntra_H261_16s1u. */
MOX_API MoxStatus moxiEncodeCoeffsInter_H261_16s1u(const Mox16s* pCoeffs, Mox8u** ppBitStream, Mox32s* pBitOffset,
                                                   Mox32s countNonZero, Mox32s scan);

/** The loop filter on an 8x8 block: weights 1, 2, 1 across and down, rounded once to the nearest, halves upwards. In
 *  the border rows only across, in the border columns only down, corners as they are:
 *
 *      t = p(x-1) + 2 p + p(x+1), 4 p in columns 0 and 7
 *      (t(y-1) + 2 t + t(y+1) + 8) >> 4, (t + 2) >> 2 in rows 0 and 7
 *
 *  @param[in]  pSrc    8 x 8 samples, nothing else is read; any alignment
 *  @param      srcStep bytes between rows, may be negative, not tested
 *  @param[out] pDst    8 x 8 samples, nothing else is written; all of the source is read first, so it may overlap it
 *  @param      dstStep bytes between rows, may be negative, not tested; rows that overlap leave an undefined result
 *  @retval moxStsNullPointer pSrc or pDst is null */
MOX_API MoxStatus moxiFilter8x8_H261_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep);

MOX_END_DECLS

#endif
