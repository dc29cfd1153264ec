/** @file
 *  AVS forward transform with quantisation, and intra macroblocks of an encoder (the other side of avs_reconstruct.h).
 *
 *  Forward transform and quantisation of 64 residual values x in raster order, each limited to -255..255 first. With T
 *  as in avs_reconstruct.h, y = (T * x * T' + 16) >> 5, which is within -32640..32640. Then, for the coefficient of
 *  frequencies i and j,
 *
 *      level = sign(y) * ((|y| * Q + R) >> N),   N = 19 + (qp >> 3),   R = (rounding << N) >> 8
 *
 *  Q is 2^N / (8 * step) * (512 / n(i)) * (512 / n(j)) rounded to the nearest integer, where n(i) is the sum of the
 *  squares of row i of T, 512 442 464 442 512 442 464 442 for frequencies 0 to 7, and step = D / 2^S is what a level is
 *  worth at that qp in avs_reconstruct.h. So the inverse transform of the levels comes back to the residual. `rounding`
 *  is added in 1/256 of a level: 128 rounds to the nearest, 85 is usual for intra blocks and 43 for others.
 *
 *  Of the calculation, nothing is promised but what stands here. Arrays need the alignment of their elements only.
 */
#ifndef MOXVC_AVS_FORWARD_H
#define MOXVC_AVS_FORWARD_H

#include "types.h"

MOX_BEGIN_DECLS

/** Residual of an 8x8 block to its levels.
 *  @param[in]  pSrc       64 values
 *  @param[out] pDst       64 levels; may be pSrc
 *  @param[out] pNumLevels number of levels that are not 0
 *  @param      qp         0 to 63
 *  @param      rounding   0 to 128
 *  @retval moxStsNullPointer pSrc, pDst or pNumLevels is null
 *  @retval moxStsOutOfRange  qp is not 0 to 63
 *  @retval moxStsBadArg      rounding is not 0 to 128 */
MOX_API MoxStatus moxiTransformQuant8x8Fwd_AVS_16s_C1(const Mox16s* pSrc, Mox16s* pDst, Mox32s* pNumLevels, Mox32s qp,
                                                      Mox32s rounding);

/** Takes the luma of an intra macroblock apart: for each of its four blocks in turn, predicts it in the reconstructed
 *  plane, makes the levels of the difference between source and prediction as moxiTransformQuant8x8Fwd_AVS_16s_C1, and
 *  reconstructs the block, so that the next one can be predicted from it. The plane then holds what
 *  moxiReconstructLumaIntra_AVS_16s8u_C1R makes of the levels. Blocks, modes, edges and step are as there.
 *  @param[in]     pSrc          16 x 16 samples to be coded
 *  @param         srcStep       bytes between rows
 *  @param[in,out] pSrcDst       first sample of the macroblock in the reconstructed plane
 *  @param         srcDstStep    bytes between rows
 *  @param[out]    pDstCoeffs    levels of 4 blocks, 256 values; blocks without levels receive zeros
 *  @param[in]     pMBIntraTypes 4 luma modes, 0 to 4
 *  @param[out]    pCbp          bits 0 to 3: blocks with levels
 *  @param         qp            0 to 63
 *  @param         rounding      0 to 128
 *  @param         edgeType      neighbours that cannot be used
 *  @retval moxStsNullPointer     a pointer is null
 *  @retval moxStsOutOfRange      qp is not 0 to 63, or a mode not 0 to 4
 *  @retval moxStsBadArg          rounding is not 0 to 128; tested after the modes
 *  @retval moxStsEdgeUnavailable a mode needs an edge that edgeType denies */
MOX_API MoxStatus moxiDisassembleLumaIntra_AVS_16s8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pSrcDst,
                                                         Mox32s srcDstStep, Mox16s* pDstCoeffs,
                                                         const Mox32u* pMBIntraTypes, Mox32u* pCbp, Mox32s qp,
                                                         Mox32s rounding, Mox32u edgeType);

/** The same for one chroma plane of an intra macroblock: one block, one mode, bit 0 of the pattern.
 *  @param[in]     pSrc            8 x 8 samples to be coded
 *  @param         srcStep         bytes between rows
 *  @param[in,out] pSrcDst         first sample of the block in the reconstructed plane
 *  @param         srcDstStep      bytes between rows
 *  @param[out]    pDstCoeffs      64 levels
 *  @param         intraChromaMode 0 to 3
 *  @param[out]    pCbp            1 if there are levels, else 0
 *  @param         qp              0 to 63, that of chroma
 *  @param         rounding        0 to 128
 *  @param         edgeType        neighbours that cannot be used
 *  @retval moxStsNullPointer     a pointer is null
 *  @retval moxStsOutOfRange      qp is not 0 to 63, or intraChromaMode not 0 to 3
 *  @retval moxStsBadArg          rounding is not 0 to 128; tested after the mode
 *  @retval moxStsEdgeUnavailable the mode needs an edge that edgeType denies */
MOX_API MoxStatus moxiDisassembleChromaIntra_AVS_16s8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pSrcDst,
                                                           Mox32s srcDstStep, Mox16s* pDstCoeffs,
                                                           Mox32u intraChromaMode, Mox32u* pCbp, Mox32s qp,
                                                           Mox32s rounding, Mox32u edgeType);

MOX_END_DECLS

#endif
