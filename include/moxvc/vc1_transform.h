/** @file
 *  VC-1 transforms (SMPTE 421M Annex A) and an 8x8 Hadamard transform with its sum of magnitudes.
 *
 *  Blocks. A block is Mox16s, row after row, with a step in bytes between rows: 8x4 is 8 wide and 4 high. Pointers and
 *  steps need no alignment; steps are not tested and may be negative. Exactly the coefficients named are read and
 *  exactly the block is written. A transform reads all its input before it writes, so that the source and the
 *  destination may be one block or overlap in any way; `I` functions work on one block.
 *
 *  Matrices. Entry [k][j] is the weight of coefficient k in sample j. Inverse transforms take V8 and V4:
 *
 *      V8 12  12  12  12  12  12  12  12    V4 17  17  17  17
 *         16  15   9   4  -4  -9 -15 -16       22  10 -10 -22
 *         16   6  -6 -16 -16  -6   6  16       17 -17 -17  17
 *         15  -4 -16  -9   9  16   4 -15       10 -22  22 -10
 *         12 -12 -12  12  12 -12 -12  12
 *          9 -16   4  15 -15  -4  16  -9
 *          6 -16  16  -6  -6  16 -16   6
 *          4  -9  15 -16  16 -15   9  -4
 *
 *  Forward transforms take the same with the magnitudes 21845 (12); 29026, 27212, 16327, 7257 (16, 15, 9, 4 in the odd
 *  rows); 28728, 10773 (16, 6 in rows 2 and 6), and 15420 (17), 19751 (22), 8978 (10).
 *
 *  Inverse transforms run rows first, with the matrix of the width, then columns, with that of the height. A row gives
 *  sat16((sum over k + 4) >> 3), a column sat16((sum over k + r) >> 7): sums of 32 bits, shifts that round downwards,
 *  sat16 limits to -32768..32767; r is 64, but 65 in rows 4 to 7 of a block 8 high. In the column pass, coefficients 0
 *  and 4 (0 and 2 in a block 4 high) are first added, or subtracted, in 16 bits: the sum wraps, and is then multiplied.
 *  That shows only beyond what a conforming stream holds.
 *
 *  srcSizeNZ tells which coefficients may be other than 0: `width` columns and `height` rows from the first one, as the
 *  inverse quantisers report it. It selects what is read, and all other coefficients count as 0, whatever the buffer
 *  holds. Any values will do, also 0 and negative ones. The first condition that holds counts:
 *
 *      block | first coefficient alone  | 2x2                      | 4x4                      | all
 *      8x8   | width < 2 and height < 2 | width and height up to 2 | width and height up to 4 | otherwise
 *      8x4   | width < 2 and height < 2 |                          | width up to 4            | otherwise
 *      4x8   | width < 2 and height < 2 |                          | height up to 4           | otherwise
 *      4x4   | width < 2 and height < 2 | width and height up to 2 |                          | otherwise
 *
 *  With the first coefficient alone nothing saturates and no 65 is added: with a and b the weights of row 0 of the
 *  matrices of the width and of the height, 12 or 17, all samples become the low 16 bits of
 *  (((c * a + 4) >> 3) * b + 64) >> 7. For c = 32767 that is 4608 in an 8x8 block, otherwise it would be 3072.
 *
 *  Forward transforms run rows first, too. Coefficient k of a row is the sum over j of sample j times [k][j]: a row
 *  gives sat16((sum + 2048) >> 12), 4 wide sat16((sum + 1024) >> 11); a column sat16((sum + 2^19) >> 20), 4 high
 *  sat16((sum + 2^18) >> 19). Sums are of 32 bits and wrap. Sums of 4 never do, those of 8 only if a magnitude exceeds
 *  12285, which no residual of up to 287 leads to.
 *
 *  Status. A null pointer gives moxStsNullPointer, and nothing is written. Nothing else is tested. */
#ifndef MOXVC_VC1_TRANSFORM_H
#define MOXVC_VC1_TRANSFORM_H

#include "types.h"

MOX_BEGIN_DECLS

/** Inverse transform of an 8x8 block.
 *  @param[in]  pSrc      coefficients, those that srcSizeNZ selects
 *  @param      srcStep   bytes
 *  @param[out] pDst      8x8 residual values
 *  @param      dstStep   bytes
 *  @param      srcSizeNZ columns and rows that hold coefficients other than 0
 *  @retval moxStsNullPointer pSrc or pDst is null */
MOX_API MoxStatus moxiTransform8x8Inv_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep,
                                                  MoxiSize srcSizeNZ);
/** Inverse transform of an 8x4 block: 8 wide, 4 high. Otherwise as moxiTransform8x8Inv_VC1_16s_C1R. */
MOX_API MoxStatus moxiTransform8x4Inv_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep,
                                                  MoxiSize srcSizeNZ);
/** Inverse transform of a 4x8 block: 4 wide, 8 high. Otherwise as moxiTransform8x8Inv_VC1_16s_C1R. */
MOX_API MoxStatus moxiTransform4x8Inv_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep,
                                                  MoxiSize srcSizeNZ);
/** Inverse transform of a 4x4 block. Otherwise as moxiTransform8x8Inv_VC1_16s_C1R. */
MOX_API MoxStatus moxiTransform4x4Inv_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep,
                                                  MoxiSize srcSizeNZ);

/** Inverse transform of an 8x8 block in place.
 *  @param[in,out] pSrcDst    coefficients, then residual values
 *  @param         srcDstStep bytes
 *  @param         srcSizeNZ  columns and rows that hold coefficients other than 0
 *  @retval moxStsNullPointer pSrcDst is null */
MOX_API MoxStatus moxiTransform8x8Inv_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, MoxiSize srcSizeNZ);
/** Inverse transform of an 8x4 block in place. Otherwise as moxiTransform8x8Inv_VC1_16s_C1IR. */
MOX_API MoxStatus moxiTransform8x4Inv_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, MoxiSize srcSizeNZ);
/** Inverse transform of a 4x8 block in place. Otherwise as moxiTransform8x8Inv_VC1_16s_C1IR. */
MOX_API MoxStatus moxiTransform4x8Inv_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, MoxiSize srcSizeNZ);
/** Inverse transform of a 4x4 block in place. Otherwise as moxiTransform8x8Inv_VC1_16s_C1IR. */
MOX_API MoxStatus moxiTransform4x4Inv_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, MoxiSize srcSizeNZ);

/** Forward transform of an 8x8 block.
 *  @param[in]  pSrc    8x8 residual values
 *  @param      srcStep bytes
 *  @param[out] pDst    8x8 coefficients
 *  @param      dstStep bytes
 *  @retval moxStsNullPointer pSrc or pDst is null */
MOX_API MoxStatus moxiTransform8x8Fwd_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep);
/** Forward transform of an 8x4 block: 8 wide, 4 high. Otherwise as moxiTransform8x8Fwd_VC1_16s_C1R. */
MOX_API MoxStatus moxiTransform8x4Fwd_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep);
/** Forward transform of a 4x8 block: 4 wide, 8 high. Otherwise as moxiTransform8x8Fwd_VC1_16s_C1R. */
MOX_API MoxStatus moxiTransform4x8Fwd_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep);
/** Forward transform of a 4x4 block. Otherwise as moxiTransform8x8Fwd_VC1_16s_C1R. */
MOX_API MoxStatus moxiTransform4x4Fwd_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep);

/** Forward transform of an 8x8 block in place.
 *  @param[in,out] pSrcDst    residual values, then coefficients
 *  @param         srcDstStep bytes
 *  @retval moxStsNullPointer pSrcDst is null */
MOX_API MoxStatus moxiTransform8x8Fwd_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep);
/** Forward transform of an 8x4 block in place. Otherwise as moxiTransform8x8Fwd_VC1_16s_C1IR. */
MOX_API MoxStatus moxiTransform8x4Fwd_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep);
/** Forward transform of a 4x8 block in place. Otherwise as moxiTransform8x8Fwd_VC1_16s_C1IR. */
MOX_API MoxStatus moxiTransform4x8Fwd_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep);
/** Forward transform of a 4x4 block in place. Otherwise as moxiTransform8x8Fwd_VC1_16s_C1IR. */
MOX_API MoxStatus moxiTransform4x4Fwd_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep);

/** Hadamard transform of an 8x8 block in natural order, not normalised: the weight of sample (x, y) in coefficient
 *  (u, v) is -1 if the number of bits that u and x, or v and y, have in common is odd, else 1. Rows come first; a row
 *  is added and subtracted at distance 1, then 2, then 4: of a and b, the lower place gets a + b, the upper a - b. Then
 *  columns in the same way. Each of these saturates at 16 bits.
 *
 *  The sum is that of the magnitudes of the results, 32767 for -32768: a to h of each column add up to
 *  ((a + b) + (c + d)) + ((e + f) + (g + h)), where each sum is 32767 at most; the columns add up without limit, to
 *  262136 at most. No limit is reached by samples of 8 bits.
 *  @param[in]  pSrc    8x8 values
 *  @param      srcStep bytes
 *  @param[out] pDst    64 coefficients in raster order, without gaps; may be pSrc, or overlap it in any way
 *  @param[out] pSum    sum of magnitudes
 *  @retval moxStsNullPointer pSrc, pDst or pSum is null */
MOX_API MoxStatus moxiHadamard8x8Sum_VC1_16s(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s* pSum);
/** The same of samples of 8 bits. */
MOX_API MoxStatus moxiHadamard8x8Sum_VC1_8u16s(const Mox8u* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s* pSum);

MOX_END_DECLS

#endif
