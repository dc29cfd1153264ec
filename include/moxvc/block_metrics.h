/** @file
 *  Distances between blocks, for motion search and mode decision: sums of absolute differences (SAD), of squared
 *  differences (SSD), of absolute transformed differences (SATD), SADs of several candidates at a time, and what the
 *  rows of one block say about frame or field coding.
 *
 *  Formulas, for a source block s and a reference block r:
 *
 *  | Distance | Value                                                                                        |
 *  |----------|----------------------------------------------------------------------------------------------|
 *  | SAD      | sum of abs(s(x, y) - P(x, y))                                                                |
 *  | SSD      | sum of (s(x, y) - P(x, y))^2                                                                 |
 *  | SATD     | sum of abs((H D H)(i, j)) over the 4 x 4 blocks, D a block's differences s - r               |
 *
 *  H is the 4 x 4 Hadamard matrix of ones and minus ones. The SATD is neither scaled nor halved, and exact.
 *
 *  Positions. P is the reference at a full-pel or half-pel position. It always rounds up. `mcType` chooses it by bits 2
 *  and 3; other bits are ignored unless a function says otherwise.
 *
 *  | mcType | P(x, y)                                                               | r holds in addition    |
 *  |--------|-----------------------------------------------------------------------|------------------------|
 *  | 0      | r(x, y)                                                               |                        |
 *  | 4      | (r(x, y) + r(x, y + 1) + 1) >> 1                                      | one row                |
 *  | 8      | (r(x, y) + r(x + 1, y) + 1) >> 1                                      | one column             |
 *  | 12     | (r(x, y) + r(x + 1, y) + r(x, y + 1) + r(x + 1, y + 1) + 2) >> 2      | one row and one column |
 *
 *  16-bit samples. A difference is kept in 16 bits with a sign, and -32768 counts 32768: exact where differences stay
 *  within -32768 to 32767. The sum in P, its rounding included, saturates at 65535 before the shift: exact for
 *  samples up to 32767 at 4 and 8, up to 16383 at 12. So samples of up to 14 bits are exact throughout.
 *
 *  Memory. The source is read over its block and nothing outside; the reference over its block and what the position
 *  adds. No pointer needs an alignment. Steps are bytes between rows, for 16-bit samples too; any value is used as it
 *  comes, also a negative or odd one or 0, unless a function tests it. Results must not overlap the samples.
 *
 *  Status. moxStsNullPointer if a pointer is null; then, where a function says so, sizes and steps. After an error
 *  nothing has been written.
 */
#ifndef MOXVC_BLOCK_METRICS_H
#define MOXVC_BLOCK_METRICS_H

#include "types.h"

MOX_BEGIN_DECLS

/** SAD of a 16 x 16 block of 8-bit samples.
 *  @param[in]  pSrc    16 x 16 samples
 *  @param      srcStep bytes between rows
 *  @param[in]  pRef    16 x 16 samples and what the position adds
 *  @param      refStep bytes between rows
 *  @param[out] pSAD    0 to 65280
 *  @param      mcType  position: 0, 4, 8 or 12
 *  @retval moxStsNullPointer pSrc, pRef or pSAD is null */
MOX_API MoxStatus moxiSAD16x16_8u32s(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s* pSAD,
                                     Mox32s mcType);

/** As moxiSAD16x16_8u32s for a block of 16 x 8; 0 to 32640. */
MOX_API MoxStatus moxiSAD16x8_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                        Mox32s* pSAD, Mox32s mcType);

/** As moxiSAD16x16_8u32s for a block of 8 x 8; 0 to 16320. */
MOX_API MoxStatus moxiSAD8x8_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                       Mox32s* pSAD, Mox32s mcType);

/** SAD of a 16 x 16 block of 16-bit samples.
 *  @param[in]  pSrc    16 x 16 samples
 *  @param      srcStep bytes between rows
 *  @param[in]  pRef    16 x 16 samples and what the position adds
 *  @param      refStep bytes between rows
 *  @param[out] pSAD    0 to 8388608
 *  @param      mcType  position: 0, 4, 8 or 12
 *  @retval moxStsNullPointer pSrc, pRef or pSAD is null */
MOX_API MoxStatus moxiSAD16x16_16u32s_C1R(const Mox16u* pSrc, Mox32s srcStep, const Mox16u* pRef, Mox32s refStep,
                                          Mox32s* pSAD, Mox32s mcType);

/** As moxiSAD16x16_16u32s_C1R for a block of 8 x 8; 0 to 2097152. */
MOX_API MoxStatus moxiSAD8x8_16u32s_C1R(const Mox16u* pSrc, Mox32s srcStep, const Mox16u* pRef, Mox32s refStep,
                                        Mox32s* pSAD, Mox32s mcType);

/** As moxiSAD16x16_16u32s_C1R for a block of 4 x 4; 0 to 524288. */
MOX_API MoxStatus moxiSAD4x4_16u32s_C1R(const Mox16u* pSrc, Mox32s srcStep, const Mox16u* pRef, Mox32s refStep,
                                        Mox32s* pSAD, Mox32s mcType);

/** SAD of a 4 x 4 block of 8-bit samples, at full-pel positions only.
 *  @param[in]  pSrc    4 x 4 samples
 *  @param      srcStep bytes between rows
 *  @param[in]  pRef    4 x 4 samples
 *  @param      refStep bytes between rows
 *  @param[out] pSAD    0 to 4080
 *  @retval moxStsNullPointer pSrc, pRef or pSAD is null */
MOX_API MoxStatus moxiSAD4x4_8u32s(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s* pSAD);

/** As moxiSAD4x4_8u32s for a block of 4 x 8; 0 to 8160. */
MOX_API MoxStatus moxiSAD4x8_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                       Mox32s* pSAD);

/** As moxiSAD4x4_8u32s for a block of 8 x 4; 0 to 8160. */
MOX_API MoxStatus moxiSAD8x4_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                       Mox32s* pSAD);

/** As moxiSAD4x4_8u32s for a block of 8 x 16; 0 to 32640. */
MOX_API MoxStatus moxiSAD8x16_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                        Mox32s* pSAD);

/** SADs of two interleaved channels, U0 V0 U1 V1 and so on; at half-pel positions x + 1 is the next sample of the
 *  same channel, two bytes on.
 *  @param[in]  pSrc    8 rows of 8 samples of each channel, 16 bytes
 *  @param      srcStep bytes between rows, above 0
 *  @param[in]  pRef    the same, and one more row for 4 and 12, two more bytes in each row for 8 and 12
 *  @param      refStep bytes between rows, above 0
 *  @param[out] pSADU   sum of the first channel, in the even bytes; 0 to 16320
 *  @param[out] pSADV   sum of the second channel
 *  @param      mcType  position: 0, 4, 8 or 12
 *  @retval moxStsNullPointer pSrc, pRef, pSADU or pSADV is null
 *  @retval moxStsBadStep     srcStep or refStep is 0 or below */
MOX_API MoxStatus moxiSAD8x8_8u32s_C2R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                       Mox32s* pSADU, Mox32s* pSADV, Mox32s mcType);

/** SSD of an 8 x 8 block of 8-bit samples.
 *  @param[in]  pSrc    8 x 8 samples
 *  @param      srcStep bytes between rows
 *  @param[in]  pRef    8 x 8 samples and what the position adds
 *  @param      refStep bytes between rows
 *  @param[out] pSSD    0 to 4161600
 *  @param      mcType  position: 0, 4, 8 or 12
 *  @retval moxStsNullPointer pSrc, pRef or pSSD is null */
MOX_API MoxStatus moxiSSD8x8_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                       Mox32s* pSSD, Mox32s mcType);

/** As moxiSSD8x8_8u32s_C1R for a block of 4 x 4; 0 to 1040400. */
MOX_API MoxStatus moxiSSD4x4_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                       Mox32s* pSSD, Mox32s mcType);

/** SSD of a 16 x 16 block of 8-bit samples, the position chosen by the whole of mcType.
 *  @param[in]  pSrc     16 x 16 samples
 *  @param      srcStep  bytes between rows
 *  @param[in]  pRef     16 x 16 samples and what the position adds
 *  @param      refStep  bytes between rows
 *  @param      mcType   0, 4 or 8 as above; any other value is the position of 12
 *  @param[out] pSqrDiff 0 to 16646400
 *  @retval moxStsNullPointer pSrc, pRef or pSqrDiff is null */
MOX_API MoxStatus moxiSqrDiff16x16_8u32s(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                         Mox32s mcType, Mox32s* pSqrDiff);

/** SSD of a 16 x 16 block of 8-bit samples against the mean of two references, (P0 + P1 + 1) >> 1.
 *  @param[in]  pSrc     16 x 16 samples
 *  @param      srcStep  bytes between rows
 *  @param[in]  pRef0    first reference, 16 x 16 samples and what its position adds
 *  @param      ref0Step bytes between rows
 *  @param      mcType0  position in the first reference: 0, 4, 8 or 12
 *  @param[in]  pRef1    second reference
 *  @param      ref1Step bytes between rows
 *  @param      mcType1  position in the second reference
 *  @param[out] pSqrDiff 0 to 16646400
 *  @retval moxStsNullPointer pSrc, pRef0, pRef1 or pSqrDiff is null */
MOX_API MoxStatus moxiSqrDiff16x16B_8u32s(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef0, Mox32s ref0Step,
                                          Mox32s mcType0, const Mox8u* pRef1, Mox32s ref1Step, Mox32s mcType1,
                                          Mox32s* pSqrDiff);

/** SADs of the four 8 x 8 blocks of a macroblock.
 *  @param[in]  pSrc    16 x 16 samples
 *  @param      srcStep bytes between rows
 *  @param[in]  pRef    16 x 16 samples
 *  @param      refStep bytes between rows
 *  @param[out] pDstSAD 4 sums: top left, top right, bottom left, bottom right
 *  @retval moxStsNullPointer pSrc, pRef or pDstSAD is null */
MOX_API MoxStatus moxiSAD16x16Blocks8x8_8u16u(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                              Mox16u* pDstSAD);

/** As moxiSAD16x16Blocks8x8_8u16u for the sixteen 4 x 4 blocks; 16 sums, [4 * block row + block column]. */
MOX_API MoxStatus moxiSAD16x16Blocks4x4_8u16u(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                              Mox16u* pDstSAD);

/** As moxiSAD16x16Blocks8x8_8u16u for 16-bit samples; 4 sums of 32 bits. */
MOX_API MoxStatus moxiSAD16x16Blocks8x8_16u32u_C1R(const Mox16u* pSrc, Mox32s srcStep, const Mox16u* pRef,
                                                   Mox32s refStep, Mox32u* pDstSAD);

/** As moxiSAD16x16Blocks4x4_8u16u for 16-bit samples; 16 sums of 32 bits. */
MOX_API MoxStatus moxiSAD16x16Blocks4x4_16u32u_C1R(const Mox16u* pSrc, Mox32s srcStep, const Mox16u* pRef,
                                                   Mox32s refStep, Mox32u* pDstSAD);

/** SADs of a 16 x 16 block with candidates side by side: candidate k lies k samples right of pRef, on the same rows.
 *  @param[in]  pSrc          16 x 16 samples
 *  @param      srcStep       bytes between rows
 *  @param[in]  pRef          first candidate; each group of eight candidates reads 16 + 8 columns of each row or less
 *  @param      refStep       bytes between rows
 *  @param[out] pDstSAD       one sum for each candidate, 0 to 65280
 *  @param      numCandidates number of candidates, rounded down to a multiple of 8
 *  @retval moxStsNullPointer pSrc, pRef or pDstSAD is null
 *  @retval moxStsBadSize     numCandidates is below 8 */
MOX_API MoxStatus moxiSAD16x16xN_8u16u_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                           Mox16u* pDstSAD, Mox32s numCandidates);

/** As moxiSAD16x16xN_8u16u_C1R for a block of 8 x 8, 8 + 8 columns for a group; sums of 0 to 16320. */
MOX_API MoxStatus moxiSAD8x8xN_8u16u_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                         Mox16u* pDstSAD, Mox32s numCandidates);

/** As moxiSAD16x16xN_8u16u_C1R for a block of 4 x 4, 4 + 8 columns for a group; sums of 0 to 4080. */
MOX_API MoxStatus moxiSAD4x4xN_8u16u_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                         Mox16u* pDstSAD, Mox32s numCandidates);

/** As moxiSAD16x16xN_8u16u_C1R for a block of 2 x 2, 2 + 8 columns for a group; sums of 0 to 1020. */
MOX_API MoxStatus moxiSAD2x2xN_8u16u_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                         Mox16u* pDstSAD, Mox32s numCandidates);

/** As moxiSAD16x16xN_8u16u_C1R, and tells the best candidate.
 *  @param[in]  pSrc          16 x 16 samples
 *  @param      srcStep       bytes between rows
 *  @param[in]  pRef          first candidate
 *  @param      refStep       bytes between rows
 *  @param[out] pDstSAD       one sum for each candidate, 0 to 65280
 *  @param      numCandidates number of candidates, rounded down to a multiple of 8
 *  @param[out] pMinIndex     index of the smallest sum, of equal ones the lowest
 *  @retval moxStsNullPointer pSrc, pRef, pDstSAD or pMinIndex is null
 *  @retval moxStsBadSize     numCandidates is below 8 */
MOX_API MoxStatus moxiSAD16x16xNI_8u16u_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                            Mox16u* pDstSAD, Mox32s numCandidates, Mox32s* pMinIndex);

/** As moxiSAD16x16xNI_8u16u_C1R for a block of 8 x 8, 8 + 8 columns for a group. */
MOX_API MoxStatus moxiSAD8x8xNI_8u16u_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                          Mox16u* pDstSAD, Mox32s numCandidates, Mox32s* pMinIndex);

/** As moxiSAD16x16xNI_8u16u_C1R for a block of 4 x 4, 4 + 8 columns for a group. */
MOX_API MoxStatus moxiSAD4x4xNI_8u16u_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                          Mox16u* pDstSAD, Mox32s numCandidates, Mox32s* pMinIndex);

/** SATD of a 4 x 4 block.
 *  @param[in]  pSrc    4 x 4 samples
 *  @param      srcStep bytes between rows
 *  @param[in]  pRef    4 x 4 samples
 *  @param      refStep bytes between rows
 *  @param[out] pSATD   0 to 16320
 *  @retval moxStsNullPointer pSrc, pRef or pSATD is null */
MOX_API MoxStatus moxiSATD4x4_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                        Mox32s* pSATD);

/** SATD of a block of 8 x 4: the sum over its 2 blocks of 4 x 4. As moxiSATD4x4_8u32s_C1R. */
MOX_API MoxStatus moxiSATD8x4_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                        Mox32s* pSATD);

/** SATD of a block of 4 x 8: the sum over its 2 blocks of 4 x 4. As moxiSATD4x4_8u32s_C1R. */
MOX_API MoxStatus moxiSATD4x8_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                        Mox32s* pSATD);

/** SATD of a block of 8 x 8: the sum over its 4 blocks of 4 x 4. As moxiSATD4x4_8u32s_C1R. */
MOX_API MoxStatus moxiSATD8x8_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                        Mox32s* pSATD);

/** SATD of a block of 16 x 8: the sum over its 8 blocks of 4 x 4. As moxiSATD4x4_8u32s_C1R. */
MOX_API MoxStatus moxiSATD16x8_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                         Mox32s* pSATD);

/** SATD of a block of 8 x 16: the sum over its 8 blocks of 4 x 4. As moxiSATD4x4_8u32s_C1R. */
MOX_API MoxStatus moxiSATD8x16_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                         Mox32s* pSATD);

/** SATD of a block of 16 x 16: the sum over its 16 blocks of 4 x 4. As moxiSATD4x4_8u32s_C1R. */
MOX_API MoxStatus moxiSATD16x16_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                          Mox32s* pSATD);

/** The SATD formula with one 8 x 8 transform: the sum of abs((H D H)(i, j)), H the 8 x 8 Hadamard matrix, not scaled.
 *  @param[in]  pSrc    8 x 8 samples
 *  @param      srcStep bytes between rows
 *  @param[in]  pRef    8 x 8 samples
 *  @param      refStep bytes between rows
 *  @param[out] pSATD   0 to 130560
 *  @retval moxStsNullPointer pSrc, pRef or pSATD is null */
MOX_API MoxStatus moxiSAT8x8D_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                        Mox32s* pSATD);

/** As moxiSAT8x8D_8u32s_C1R for 16-bit samples; exact for the 16-bit differences, 0 to 16777216. */
MOX_API MoxStatus moxiSAT8x8D_16u32s_C1R(const Mox16u* pSrc, Mox32s srcStep, const Mox16u* pRef, Mox32s refStep,
                                         Mox32s* pSATD);

/** Differences between the rows of a macroblock. The frame sum is the SAD between rows i and i + 1 for i = 0 to 6 and
 *  8 to 14; the pair of rows 7 and 8 stays out. The field sum is that between rows i and i + 2 for i = 0 to 13.
 *  @param[in]  pSrc      16 x 16 samples
 *  @param      srcStep   bytes between rows
 *  @param[out] pFrameSAD frame sum, 0 to 57120
 *  @param[out] pFieldSAD field sum, 0 to 57120
 *  @retval moxStsNullPointer pSrc, pFrameSAD or pFieldSAD is null */
MOX_API MoxStatus moxiFrameFieldSAD16x16_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox32s* pFrameSAD,
                                                   Mox32s* pFieldSAD);

/** As moxiFrameFieldSAD16x16_8u32s_C1R for 16-bit values. Differences are kept in 16 bits with a sign, and of each
 *  sum only the low 16 bits are given: 0 to 65535. */
MOX_API MoxStatus moxiFrameFieldSAD16x16_16s32s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox32s* pFrameSAD,
                                                    Mox32s* pFieldSAD);

/** Differences of two 8 x 8 blocks and the sum of their magnitudes in one pass.
 *  @param[in]  pSrc1    8 x 8 samples
 *  @param      src1Step bytes between rows
 *  @param[in]  pSrc2    8 x 8 samples
 *  @param      src2Step bytes between rows
 *  @param[out] pDst     8 x 8 differences src1 - src2, -255 to 255
 *  @param      dstStep  bytes between rows; rows are written downwards, so where they overlap the last one stays
 *  @param[out] pSAD     0 to 16320
 *  @retval moxStsNullPointer pSrc1, pSrc2, pDst or pSAD is null */
MOX_API MoxStatus moxiSubSAD8x8_8u16s_C1R(const Mox8u* pSrc1, Mox32s src1Step, const Mox8u* pSrc2, Mox32s src2Step,
                                          Mox16s* pDst, Mox32s dstStep, Mox32s* pSAD);

MOX_END_DECLS

#endif
