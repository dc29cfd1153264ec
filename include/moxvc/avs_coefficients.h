/** @file
 *  AVS block coefficients (GB/T 20090.2, 8.3 and 9.4): decoding of one 8x8 block of quantised coefficients.
 *
 *  A block is coded as runs and levels, the highest frequency first. A symbol is an Exp-Golomb code whose meaning lies
 *  in a table; the table changes upwards with the largest magnitude seen in the block. A symbol that does not fit into
 *  the 64 positions ends the block, the end-of-block code being such a one.
 *
 *  The bitstream is a word cursor: `*ppBitStream` points to the 32-bit word of the next bit, in native order, whose
 *  bit 31 comes first in the stream; `*pBitOffset`, 31 to 0, is the index of the next bit. Both are moved behind what
 *  was read. A function may read one word beyond that of the last bit used.
 *
 *  pDstCoeffs receives 64 coefficients in raster order, those without a symbol zero; no alignment is needed. Levels
 *  that 16 bits do not hold keep their low 16 bits.
 *
 *  scanType bit 0 selects the scan, 0 for frames and 1 for fields. *pNumCoeff becomes the number of scan positions up
 *  to the last coefficient if scanType is 0, and 63 whatever the block holds if it is anything else.
 *
 *  Damaged data. There is no illegal code. A code with more than 32 zeros in front of its first one ends the block;
 *  32 of the zeros are then consumed.
 *
 *  Status: moxStsNullPointer if ppBitStream, *ppBitStream, pBitOffset, pNumCoeff or pDstCoeffs is null, in this order;
 *  nothing is written then. Else moxStsOk.
 */
#ifndef MOXVC_AVS_COEFFICIENTS_H
#define MOXVC_AVS_COEFFICIENTS_H

#include "types.h"

MOX_BEGIN_DECLS

/** Decodes a luma block of an intra macroblock.
 *  @param[in,out] ppBitStream word of the next bit
 *  @param[in,out] pBitOffset  index of the next bit, 31 to 0
 *  @param[out]    pNumCoeff   scan positions used, or 63
 *  @param[out]    pDstCoeffs  64 coefficients, raster order
 *  @param         scanType    bit 0: 0 frame, 1 field
 *  @retval moxStsNullPointer a pointer or *ppBitStream is null */
MOX_API MoxStatus moxiDecodeLumaBlockIntra_AVS_1u16s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox32s* pNumCoeff,
                                                     Mox16s* pDstCoeffs, Mox32u scanType);

/** Decodes a luma block of an inter macroblock. Otherwise as moxiDecodeLumaBlockIntra_AVS_1u16s. */
MOX_API MoxStatus moxiDecodeLumaBlockInter_AVS_1u16s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox32s* pNumCoeff,
                                                     Mox16s* pDstCoeffs, Mox32u scanType);

/** Decodes a chroma block of any macroblock. Otherwise as moxiDecodeLumaBlockIntra_AVS_1u16s. */
MOX_API MoxStatus moxiDecodeChromaBlock_AVS_1u16s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox32s* pNumCoeff,
                                                  Mox16s* pDstCoeffs, Mox32u scanType);

MOX_END_DECLS

#endif
