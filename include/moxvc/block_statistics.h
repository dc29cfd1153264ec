/** @file
 *  Statistics of blocks for mode decision and rate control: variance and mean deviation, the error of a prediction by
 *  8x8 quarter, sums of differences by 4x4 block, and a test for many edges.
 *
 *  The block's size in samples is in the name; a block is read exactly over its size unless a function says more.
 *  Blocks of samples and of differences and their sums need no alignment. Steps are bytes between rows, for 16-bit
 * samples too; any value is used as it comes, also a negative or odd one or 0. Results must not overlap what is read.
 *
 *  Status. moxStsNullPointer if a pointer is null, in the order of the arguments; nothing is written then. Nothing
 *  else is tested unless a function says so.
 */
#ifndef MOXVC_BLOCK_STATISTICS_H
#define MOXVC_BLOCK_STATISTICS_H

#include "types.h"

MOX_BEGIN_DECLS

/** Variance of a block of 16 x 16, times 256: q - (s * s) / 256, s the sum of the samples and q that of their squares,
 *  the quotient rounded down.
 *  @param[in]  pSrc    16 x 16 samples
 *  @param      srcStep bytes between its rows
 *  @param[out] pVar    0 (flat) to 4161600 (half 0, half 255)
 *  @retval moxStsNullPointer pSrc or pVar is null */
MOX_API MoxStatus moxiVariance16x16_8u32s(const Mox8u* pSrc, Mox32s srcStep, Mox32s* pVar);

/** Variance and sum of a block of 8 x 8.
 *
 *  With s the sum of the samples and q that of their squares, the variance is q / 64 - (s / 64) * (s / 64) in
 *  single-precision floats, each quotient, the product and the difference rounded to nearest, then cut to an integer
 *  towards zero. For large sums the product's rounding shows: the result may differ by 1 from the exact one.
 *  @param[in]  pSrc    8 x 8 samples
 *  @param      srcStep bytes between its rows
 *  @param[out] pVar    variance, 0 to 16256
 *  @param[out] pSum    s, not divided: 0 to 16320
 *  @retval moxStsNullPointer pSrc, pVar or pSum is null */
MOX_API MoxStatus moxiVarSum8x8_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox32s* pVar, Mox32s* pSum);

/** The same function under another name; pSum receives the sum, not the mean. */
MOX_API MoxStatus moxiVarMean8x8_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox32s* pVar, Mox32s* pSum);

/** As moxiVarSum8x8_8u32s_C1R for signed 16-bit samples. The sum of squares is kept in 32 bits with sign and wraps
 *  beyond, which samples of -5792 to 5792 never reach; pVar is meaningless where it does.
 *  @param[in]  pSrc    8 x 8 samples
 *  @param      srcStep bytes between their rows
 *  @param[out] pVar    variance
 *  @param[out] pSum    sum of the samples, -2097152 to 2097088
 *  @retval moxStsNullPointer pSrc, pVar or pSum is null */
MOX_API MoxStatus moxiVarSum8x8_16s32s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox32s* pVar, Mox32s* pSum);

/** The same function under another name; pSum receives the sum, not the mean. */
MOX_API MoxStatus moxiVarMean8x8_16s32s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox32s* pVar, Mox32s* pSum);

/** Sum of the absolute deviations from the mean, not divided: the mean is (s + 32) >> 6, s the sum of the samples.
 *  @param[in]  pSrc    8 x 8 samples
 *  @param      srcStep bytes between its rows
 *  @param[out] pResult 0 (flat) to 8160
 *  @retval moxStsNullPointer pSrc or pResult is null */
MOX_API MoxStatus moxiMeanAbsDev8x8_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox32s* pResult);

/** As moxiMeanAbsDev8x8_8u32s_C1R for a block of 16 x 16: the mean is (s + 128) >> 8, the result 0 to 32640. */
MOX_API MoxStatus moxiMeanAbsDev16x16_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox32s* pResult);

/** Mean and variance of the error of a half-pel prediction, for the left and the right 8x8 block of 16 x 8.
 *
 *  The prediction has the position of bits 3 (half in x) and 2 (half in y) of mcType, rounded to nearest with halves
 *  up, as moxiMC16x8_8u_C1 predicts with roundControl 0; other bits do not count. For a block with the sum S of its
 *  samples, the sum P of its predictions and the sum E of the squared errors
 *
 *      mean = (S - P) / 8,   variance = E > mean * mean ? (E - mean * mean) / 64 : 0,
 *
 *  in 32 bits that wrap, quotients cut towards zero. So the mean is 8 times the mean error, cut, and the variance that
 *  of the error.
 *  @param[in]  pSrc    16 x 8 samples
 *  @param      srcStep bytes between its rows
 *  @param[in]  pRef    16 x 8 samples, one more row for a half in y, one more column for a half in x
 *  @param      refStep bytes between its rows
 *  @param[in]  pSrcSum 2 values S, left and right; moxiVarSum8x8_8u32s_C1R gives them
 *  @param[out] pVar    2 variances
 *  @param[out] pMean   2 means
 *  @param      mcType  position: 0 full, 4 half in y, 8 half in x, 12 both
 *  @retval moxStsNullPointer pSrc, pRef, pSrcSum, pVar or pMean is null */
MOX_API MoxStatus moxiVarMeanDiff16x8_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                                const Mox32s* pSrcSum, Mox32s* pVar, Mox32s* pMean, Mox32s mcType);

/** As moxiVarMeanDiff16x8_8u32s_C1R for the four 8x8 blocks of 16 x 16, in raster order, with these differences: an
 *  mcType other than 0, 4, 8 and 12 writes nothing and gives moxStsOk, and only the low 16 bits of a mean, with their
 *  sign, enter its square, which matters for wrong sums alone. */
MOX_API MoxStatus moxiVarMeanDiff16x16_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                                 const Mox32s* pSrcSum, Mox32s* pVar, Mox32s* pMean, Mox32s mcType);

/** Sums of the differences src - pred of the four 4x4 blocks of 8 x 8, and on request the differences.
 *  @param[in]  pSrc     8 x 8 samples
 *  @param      srcStep  bytes between its rows
 *  @param[in]  pPred    8 x 8 samples
 *  @param      predStep bytes between its rows
 *  @param[out] pSums    4 sums in raster order of the blocks, -4080 to 4080
 *  @param[out] pDiff    64 differences, block after block, each as 16 values in raster order; or null
 *  @retval moxStsNullPointer pSrc, pPred or pSums is null */
MOX_API MoxStatus moxiSumsDiff8x8Blocks4x4_8u16s_C1(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pPred,
                                                    Mox32s predStep, Mox16s* pSums, Mox16s* pDiff);

/** As moxiSumsDiff8x8Blocks4x4_8u16s_C1 for the sixteen 4x4 blocks of 16 x 16: 16 sums, 256 differences. */
MOX_API MoxStatus moxiSumsDiff16x16Blocks4x4_8u16s_C1(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pPred,
                                                      Mox32s predStep, Mox16s* pSums, Mox16s* pDiff);

/** As moxiSumsDiff8x8Blocks4x4_8u16s_C1 for 16-bit samples. Each difference is taken modulo 65536 and read as signed
 *  before it is summed: 40000 - 1 counts as -25537.
 *  @param[in]  pSrc     8 x 8 samples
 *  @param      srcStep  bytes between its rows
 *  @param[in]  pPred    8 x 8 samples
 *  @param      predStep bytes between its rows
 *  @param[out] pSums    4 sums in raster order of the blocks, -524288 to 524272
 *  @param[out] pDiff    64 differences, block after block, each as 16 values in raster order; or null
 *  @retval moxStsNullPointer pSrc, pPred or pSums is null */
MOX_API MoxStatus moxiSumsDiff8x8Blocks4x4_16u32s_C1R(const Mox16u* pSrc, Mox32s srcStep, const Mox16u* pPred,
                                                      Mox32s predStep, Mox32s* pSums, Mox16s* pDiff);

/** As moxiSumsDiff8x8Blocks4x4_16u32s_C1R for the sixteen 4x4 blocks of 16 x 16: 16 sums, 256 differences. */
MOX_API MoxStatus moxiSumsDiff16x16Blocks4x4_16u32s_C1R(const Mox16u* pSrc, Mox32s srcStep, const Mox16u* pPred,
                                                        Mox32s predStep, Mox32s* pSums, Mox16s* pDiff);

/** As moxiSumsDiff8x8Blocks4x4_8u16s_C1 for 8 x 8 samples of each of two interleaved channels, U0 V0 U1 V1 and so on,
 *  each with a prediction of its own.
 *  @param[in]  pSrc      8 rows of 16 bytes
 *  @param      srcStep   bytes between its rows
 *  @param[in]  pPredU    8 x 8 samples
 *  @param      predStepU bytes between its rows
 *  @param[in]  pPredV    8 x 8 samples
 *  @param      predStepV bytes between its rows
 *  @param[out] pSumsU    4 sums of the first channel, the even bytes of pSrc
 *  @param[out] pDiffU    64 differences, or null
 *  @param[out] pSumsV    4 sums of the second channel
 *  @param[out] pDiffV    64 differences, or null, whatever pDiffU is
 *  @retval moxStsNullPointer pSrc, pPredU, pPredV, pSumsU or pSumsV is null */
MOX_API MoxStatus moxiSumsDiff8x8Blocks4x4_8u16s_C2P2(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pPredU,
                                                      Mox32s predStepU, const Mox8u* pPredV, Mox32s predStepV,
                                                      Mox16s* pSumsU, Mox16s* pDiffU, Mox16s* pSumsV, Mox16s* pDiffV);

/** Tells whether a block of 16 x 16 holds many edge samples.
 *
 *  Of the 15 x 15 samples that have a right and a lower neighbour in the block, those count that differ from one of
 *  the two by more than a threshold. Differences above 127 are taken as 127 and the threshold's low 8 bits as a signed
 *  number: 127 lets no sample count, 128 to 255 every one.
 *  @param[in]  pSrc              16 x 16 samples
 *  @param      srcStep           bytes between its rows
 *  @param      edgePelDifference threshold of the difference
 *  @param      edgePelCount      its low 8 bits are the threshold of the number; 225 to 255 are never exceeded
 *  @param[out] pResult           1 if more samples count than edgePelCount, else 0
 *  @retval moxStsNullPointer pSrc or pResult is null */
MOX_API MoxStatus moxiEdgesDetect16x16_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox32u edgePelDifference,
                                              Mox32u edgePelCount, Mox8u* pResult);

/** As moxiEdgesDetect16x16_8u_C1R for 16-bit samples: differences above 32767 are taken as 32767 and the threshold as a
 *  signed 16-bit number, so 32767 lets no sample count, 32768 to 65535 every one.
 *  @param[in]  pSrc              16 x 16 samples
 *  @param      srcStep           bytes between its rows
 *  @param      edgePelDifference threshold of the difference; from 65536 on nothing is written, the status is moxStsOk
 *  @param      edgePelCount      threshold of the number; 225 to 256 are never exceeded, and from 257 on nothing is
 *                                written, the status is moxStsOk
 *  @param[out] pResult           1 if more samples count than edgePelCount, else 0
 *  @retval moxStsNullPointer pSrc or pResult is null */
MOX_API MoxStatus moxiEdgesDetect16x16_16u_C1R(const Mox16u* pSrc, Mox32s srcStep, Mox32u edgePelDifference,
                                               Mox32u edgePelCount, Mox32u* pResult);

MOX_END_DECLS

#endif
