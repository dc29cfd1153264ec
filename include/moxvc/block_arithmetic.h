/** @file
 *  Blocks of fixed size: copy, add a residual, average, subtract.
 *
 *  The block's size in samples is in the name. A block is read and written exactly over its size, and no pointer needs
 *  an alignment. Steps are bytes between rows, for 16-bit blocks too; any value is used as it comes, also a negative
 *  or odd one or 0. Rows are worked through downwards, so where destination rows overlap the last one stays. An 8-bit
 *  destination may be a source itself, with the same step, if its rows do not overlap; else no destination may overlap
 *  what is read.
 *
 *  Averages round up. Where a residual is added the sum wraps to 16 bits and only then is limited to 0..255: a residual
 *  of 32767 and a sample of 200 give 0, not 255. Differences wrap to 16 bits, which matters for 16-bit samples alone.
 *
 *  Status. moxStsNullPointer if a pointer is null; nothing is written then. Nothing else is tested.
 */
#ifndef MOXVC_BLOCK_ARITHMETIC_H
#define MOXVC_BLOCK_ARITHMETIC_H

#include "types.h"

MOX_BEGIN_DECLS

/** Copies a block of 8 x 8.
 *  @param[in]  pSrc    8 x 8 samples
 *  @param      srcStep bytes between its rows; 0 repeats one row
 *  @param[out] pDst    8 x 8 samples
 *  @param      dstStep bytes between its rows
 *  @retval moxStsNullPointer pSrc or pDst is null */
MOX_API MoxStatus moxiCopy8x8_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep);

/** As moxiCopy8x8_8u_C1R for a block of 16 x 16. */
MOX_API MoxStatus moxiCopy16x16_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep);

/** Adds a residual: srcDst = srcDst + src, wrapped to 16 bits, limited to 0..255.
 *  @param[in]     pSrc       8 x 8 values, -32768 to 32767
 *  @param         srcStep    bytes between their rows
 *  @param[in,out] pSrcDst    8 x 8 samples
 *  @param         srcDstStep bytes between their rows
 *  @retval moxStsNullPointer pSrc or pSrcDst is null */
MOX_API MoxStatus moxiAdd8x8_16s8u_C1IRS(const Mox16s* pSrc, Mox32s srcStep, Mox8u* pSrcDst, Mox32s srcDstStep);

/** Adds a constant: srcDst = srcDst + value, wrapped to 16 bits, limited to 0..255.
 *  @param         value      -32768 to 32767
 *  @param[in,out] pSrcDst    8 x 8 samples
 *  @param         srcDstStep bytes between their rows
 *  @retval moxStsNullPointer pSrcDst is null */
MOX_API MoxStatus moxiAddC8x8_16s8u_C1IR(Mox16s value, Mox8u* pSrcDst, Mox32s srcDstStep);

/** Averages into a block: srcDst = (src + srcDst + 1) >> 1.
 *  @param[in]     pSrc       8 x 8 samples
 *  @param         srcStep    bytes between its rows
 *  @param[in,out] pSrcDst    8 x 8 samples
 *  @param         srcDstStep bytes between its rows
 *  @retval moxStsNullPointer pSrcDst or pSrc is null */
MOX_API MoxStatus moxiAverage8x8_8u_C1IR(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pSrcDst, Mox32s srcDstStep);

/** As moxiAverage8x8_8u_C1IR for a block of 16 x 16. */
MOX_API MoxStatus moxiAverage16x16_8u_C1IR(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pSrcDst, Mox32s srcDstStep);

/** Averages two blocks: dst = (src1 + src2 + 1) >> 1.
 *  @param[in]  pSrc1    8 x 8 samples
 *  @param      src1Step bytes between its rows
 *  @param[in]  pSrc2    8 x 8 samples
 *  @param      src2Step bytes between its rows
 *  @param[out] pDst     8 x 8 samples
 *  @param      dstStep  bytes between its rows
 *  @retval moxStsNullPointer pSrc1, pSrc2 or pDst is null */
MOX_API MoxStatus moxiAverage8x8_8u_C1R(const Mox8u* pSrc1, Mox32s src1Step, const Mox8u* pSrc2, Mox32s src2Step,
                                        Mox8u* pDst, Mox32s dstStep);

/** As moxiAverage8x8_8u_C1R for a block of 16 x 16. */
MOX_API MoxStatus moxiAverage16x16_8u_C1R(const Mox8u* pSrc1, Mox32s src1Step, const Mox8u* pSrc2, Mox32s src2Step,
                                          Mox8u* pDst, Mox32s dstStep);

/** Subtracts blocks of 8-bit samples: dst = src1 - src2, -255 to 255.
 *  @param[in]  pSrc1    4 x 4 samples
 *  @param      src1Step bytes between its rows
 *  @param[in]  pSrc2    4 x 4 samples
 *  @param      src2Step bytes between its rows
 *  @param[out] pDst     4 x 4 differences
 *  @param      dstStep  bytes between its rows
 *  @retval moxStsNullPointer pSrc1, pSrc2 or pDst is null */
MOX_API MoxStatus moxiSub4x4_8u16s_C1R(const Mox8u* pSrc1, Mox32s src1Step, const Mox8u* pSrc2, Mox32s src2Step,
                                       Mox16s* pDst, Mox32s dstStep);

/** As moxiSub4x4_8u16s_C1R for blocks of 8 x 8. */
MOX_API MoxStatus moxiSub8x8_8u16s_C1R(const Mox8u* pSrc1, Mox32s src1Step, const Mox8u* pSrc2, Mox32s src2Step,
                                       Mox16s* pDst, Mox32s dstStep);

/** As moxiSub4x4_8u16s_C1R for blocks of 16 x 16. */
MOX_API MoxStatus moxiSub16x16_8u16s_C1R(const Mox8u* pSrc1, Mox32s src1Step, const Mox8u* pSrc2, Mox32s src2Step,
                                         Mox16s* pDst, Mox32s dstStep);

/** Subtracts blocks of 16-bit samples: dst = src1 - src2 modulo 65536, read as signed, so 40000 - 1 gives -25537.
 *  @param[in]  pSrc1    4 x 4 samples
 *  @param      src1Step bytes between its rows
 *  @param[in]  pSrc2    4 x 4 samples
 *  @param      src2Step bytes between its rows
 *  @param[out] pDst     4 x 4 differences
 *  @param      dstStep  bytes between its rows
 *  @retval moxStsNullPointer pSrc1, pSrc2 or pDst is null */
MOX_API MoxStatus moxiSub4x4_16u16s_C1R(const Mox16u* pSrc1, Mox32s src1Step, const Mox16u* pSrc2, Mox32s src2Step,
                                        Mox16s* pDst, Mox32s dstStep);

/** As moxiSub4x4_16u16s_C1R for blocks of 8 x 8. */
MOX_API MoxStatus moxiSub8x8_16u16s_C1R(const Mox16u* pSrc1, Mox32s src1Step, const Mox16u* pSrc2, Mox32s src2Step,
                                        Mox16s* pDst, Mox32s dstStep);

MOX_END_DECLS

#endif
