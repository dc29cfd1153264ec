/** @file
 *  H.264 CAVLC blocks and Exp-Golomb elements (ITU-T H.264 9.1, 9.2).
 *
 *  Position. `ppBitStream` and `pBitOffset` are the word cursor of huffman.h: the word that holds the next bit, and the
 *  bit's index in it, 31 first, 0 last. The block functions do not test the offset. The stream needs one readable word
 *  behind its last bit.
 *
 *  Tables. The caller builds the tables of the standard with moxiHuffmanTableInitAlloc_32s and passes them in. Values:
 *  coeff_token has TrailingOnes in bits 0 to 7 and TotalCoeff in bits 8 to 15, total_zeros and run_before are
 *  themselves. `ppTblTotalZeros` and `ppTblTotalZerosCR` are indexed by TotalCoeff, `ppTblRunBefore` by the zeros left
 *  (up to 15, in a 2x2 block 3, in a 2x4 block 7); their entry 0 is not used. Any level widths do. Codes are read most
 *  quickly if the root is 8 bits wide for coeff_token, 6 for total_zeros, 3 for run_before, for short codes, too.
 *
 *  Block functions. `*pNumCoeff` receives TotalCoeff as soon as it is read. An empty block writes nothing else. Any
 *  other block clears its elements at `*ppDstCoeffs` (16, 4 or 8), stores its levels there and moves `*ppDstCoeffs`
 *  behind them. Levels are computed in 16 bits in all forms: a level code above 65535 wraps, and of the possible levels
 *  -32768 to 32768 only the last one differs between the 32-bit forms and the 16-bit forms, where it is -32768.
 *
 *  Failures. moxStsBadBitstream: the bits are no code of a table, or a level_prefix exceeds 35; the position is as it
 *  was at entry, `*ppDstCoeffs` does not move, and what was written stays: `*pNumCoeff`, and the cleared and partly
 *  filled block. moxStsNullPointer for a table that is null in its array, when it is needed: the position stands
 *  where reading came to. The tables define what is legal; nothing tests that TotalCoeff and total_zeros suit the
 *  block. A level whose place lies outside the block is dropped. A table value that no block can have (TotalCoeff or
 *  TrailingOnes above 16, total_zeros that is not below the number of elements, run_before above 15, a negative one)
 *  counts as no code. */
#ifndef MOXVC_H264_CAVLC_H
#define MOXVC_H264_CAVLC_H

#include "huffman.h"
#include "types.h"

MOX_BEGIN_DECLS

/** Reads a block of 16 or 15 coefficients.
 *
 *  A run_before above the zeros left counts as the zeros left.
 *  @param[in,out] ppBitStream, pBitOffset stream position
 *  @param[out]    pNumCoeff   TotalCoeff
 *  @param[in,out] ppDstCoeffs 16 elements; moved on by 16 unless the block is empty
 *  @param      uVLCSelect     nC, 0 or more; from 8 on coeff_token has 6 fixed bits and ppTblCoeffToken is not read
 *  @param      uMaxNumCoeff   16, or 15 for a block without DC, which begins at pScanMatrix[1]
 *  @param[in]  ppTblCoeffToken tables of nC 0 to 1, 2 to 3, 4 to 7
 *  @param[in]  ppTblTotalZeros tables of TotalCoeff 1 to 15
 *  @param[in]  ppTblRunBefore  tables of 1 to 15 zeros left
 *  @param[in]  pScanMatrix    16 positions: coefficient k of the scan goes to element pScanMatrix[k], which is trusted
 *  @retval moxStsNullPointer  an argument, then *ppBitStream or *ppDstCoeffs is null; later a table that is needed
 *  @retval moxStsOutOfRange   uMaxNumCoeff is neither 16 nor 15, then: uVLCSelect is negative
 *  @retval moxStsBadBitstream no such code */
MOX_API MoxStatus moxiDecodeCAVLCCoeffs_H264_1u16s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox16s* pNumCoeff,
                                                   Mox16s** ppDstCoeffs, Mox32s uVLCSelect, Mox16s uMaxNumCoeff,
                                                   const MoxVlcTable* const* ppTblCoeffToken,
                                                   const MoxVlcTable* const* ppTblTotalZeros,
                                                   const MoxVlcTable* const* ppTblRunBefore, const Mox32s* pScanMatrix);
/** As moxiDecodeCAVLCCoeffs_H264_1u16s, into 32-bit elements. */
MOX_API MoxStatus moxiDecodeCAVLCCoeffs_H264_1u32s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox16s* pNumCoeff,
                                                   Mox32s** ppDstCoeffs, Mox32s uVLCSelect, Mox16s uMaxNumCoeff,
                                                   const MoxVlcTable* const* ppTblCoeffToken,
                                                   const MoxVlcTable* const* ppTblTotalZeros,
                                                   const MoxVlcTable* const* ppTblRunBefore, const Mox32s* pScanMatrix);
/** Reads a chroma DC block of 2x2 coefficients (4:2:0, nC -1), coefficient k to element k.
 *
 *  A run_before above the zeros left counts as it stands. Blocks of one trailing one and empty blocks are decided from
 *  the next 5 bits by the standard's codes, without the tables.
 *  @param[in,out] ppBitStream, pBitOffset stream position; *ppBitStream is not tested
 *  @param[out]    pNumCoeff         TotalCoeff
 *  @param[in,out] ppDstCoeffs       4 elements; moved on by 4 unless the block is empty. *ppDstCoeffs is not tested
 *  @param[in]     pTblCoeffToken    table of nC -1
 *  @param[in]     ppTblTotalZerosCR tables of TotalCoeff 1 to 3
 *  @param[in]     ppTblRunBefore    tables of 1 to 3 zeros left
 *  @retval moxStsNullPointer  ppBitStream, pBitOffset or pNumCoeff is null; ppDstCoeffs is null and the block is not
 *                             empty; a table argument is null and the block is none of those decided from 5 bits, later
 *                             a table that is needed
 *  @retval moxStsBadBitstream no such code */
MOX_API MoxStatus moxiDecodeCAVLCChromaDcCoeffs_H264_1u16s(const Mox32u** ppBitStream, Mox32s* pBitOffset,
                                                           Mox16s* pNumCoeff, Mox16s** ppDstCoeffs,
                                                           const MoxVlcTable* pTblCoeffToken,
                                                           const MoxVlcTable* const* ppTblTotalZerosCR,
                                                           const MoxVlcTable* const* ppTblRunBefore);
/** As moxiDecodeCAVLCChromaDcCoeffs_H264_1u16s, into 32-bit elements and always by the tables.
 *  @retval moxStsNullPointer an argument, *ppDstCoeffs or *ppBitStream is null; later a table that is needed */
MOX_API MoxStatus moxiDecodeCAVLCChromaDcCoeffs_H264_1u32s(const Mox32u** ppBitStream, Mox32s* pBitOffset,
                                                           Mox16s* pNumCoeff, Mox32s** ppDstCoeffs,
                                                           const MoxVlcTable* pTblCoeffToken,
                                                           const MoxVlcTable* const* ppTblTotalZerosCR,
                                                           const MoxVlcTable* const* ppTblRunBefore);
/** Reads a chroma DC block of 2x4 coefficients (4:2:2, nC -2) into a raster of 2 columns and 4 rows.
 *
 *  Coefficients 0 to 7 go to elements 0, 2, 1, 4, 6, 3, 5, 7. A run_before above the zeros left counts as it stands.
 *  @param[in,out] ppBitStream, pBitOffset stream position
 *  @param[out]    pNumCoeff         TotalCoeff
 *  @param[in,out] ppDstCoeffs       8 elements; moved on by 8 unless the block is empty
 *  @param[in]     pTblCoeffToken    table of nC -2
 *  @param[in]     ppTblTotalZerosCR tables of TotalCoeff 1 to 7
 *  @param[in]     ppTblRunBefore    tables of 1 to 7 zeros left
 *  @retval moxStsNullPointer  an argument, *ppBitStream or *ppDstCoeffs is null; later a table that is needed
 *  @retval moxStsBadBitstream no such code */
MOX_API MoxStatus moxiDecodeCAVLCChroma422DcCoeffs_H264_1u16s(const Mox32u** ppBitStream, Mox32s* pBitOffset,
                                                              Mox16s* pNumCoeff, Mox16s** ppDstCoeffs,
                                                              const MoxVlcTable* pTblCoeffToken,
                                                              const MoxVlcTable* const* ppTblTotalZerosCR,
                                                              const MoxVlcTable* const* ppTblRunBefore);
/** As moxiDecodeCAVLCChroma422DcCoeffs_H264_1u16s, into 32-bit elements. */
MOX_API MoxStatus moxiDecodeCAVLCChroma422DcCoeffs_H264_1u32s(const Mox32u** ppBitStream, Mox32s* pBitOffset,
                                                              Mox16s* pNumCoeff, Mox32s** ppDstCoeffs,
                                                              const MoxVlcTable* pTblCoeffToken,
                                                              const MoxVlcTable* const* ppTblTotalZerosCR,
                                                              const MoxVlcTable* const* ppTblRunBefore);
/** Reads an Exp-Golomb element: ue(v), or se(v) if isSigned.
 *
 *  With L zeros before the first one and the L bits c behind it, the element is k = 2^L + c - 1; signed it is (k + 1)
 *  / 2 for an odd k, -k / 2 for an even one. With L = 32 all 65 bits are consumed and the element is 0.
 *  @param[in,out] ppBitStream, pBitOffset stream position
 *  @param[out]    pDst     the element's low 16 bits
 *  @param         isSigned not 0 for se(v); only its low 8 bits count
 *  @retval moxStsNullPointer  a pointer or *ppBitStream is null
 *  @retval moxStsBadArg       *pBitOffset is not 0 to 31
 *  @retval moxStsBadBitstream more than 32 zeros; the position is as it was at entry, *pDst is unchanged */
MOX_API MoxStatus moxiDecodeExpGolombOne_H264_1u16s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox16s* pDst,
                                                    Mox32s isSigned);
/** As moxiDecodeExpGolombOne_H264_1u16s.
 *  @param[out] pDst     the element's low 32 bits
 *  @param      isSigned not 0 for se(v); all of its bits count */
MOX_API MoxStatus moxiDecodeExpGolombOne_H264_1u32s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox32s* pDst,
                                                    Mox32s isSigned);

MOX_END_DECLS

#endif
