/** @file
 *  H.264 dequantisation and inverse transforms (ITU-T H.264 8.5.10 to 8.5.13; SP and SI blocks 8.6).
 *
 *  Blocks. A block is a dense array in raster order: 16 or 64 coefficients, 4 (2x2) or 8 (four rows of two) chroma DC
 *  values. `16s` functions take 8-bit video, `32s` functions 9 to 14 bits. Arrays need the alignment of their elements
 *  only. Exactly the block is read and written.
 *
 *  Planes. `pPred` and `pDst` point at the top left sample of a 4x4 or 8x8 block and may be the same. Their steps are
 *  bytes for Mox8u and samples for Mox16u; they are not tested and may be negative or odd.
 *
 *  Dequantisation. per = qp / 6, rem = qp % 6. M(rem, i) is the multiplier of position i: 10 11 13 14 16 18 for rem 0
 *  to 5 where both coordinates are even, 16 18 20 23 25 29 where both are odd, 13 14 16 18 20 23 elsewhere. Functions
 *  with a `pLevelScale` take 16 scales by raster position (DC functions: one), normally those of the QP's rem that
 *  moxiGenScaleLevel4x4_H264_8u16s_C1 makes; null stands for a flat list, 16 * M(rem, i).
 *
 *  Transforms. 4x4 and 8x8 inverse transforms run rows first, then columns, and end with (y + 32) >> 6. Shifts to the
 *  right round downwards. The coefficients of a conforming stream stay within 16 bits (within 32 for the 32s
 *  functions) at every step; what happens beyond is said with each function: a value wraps (its low bits count) or
 *  saturates (it stays at -32768 or 32767).
 *
 *  DC and AC. Where `pDC` is given, its value, already dequantised, takes the place of coefficient 0. `ac` non-zero
 *  means that the block has other coefficients too; with 0, all samples get (DC + 32) >> 6.
 *
 *  Status. Null pointers are tested first, then qp, bitDepth, step, each where the function has it. The first failing
 *  test gives the status, and nothing is written. Ranges that are not listed under a status are not tested and are the
 *  caller's obligation. */
#ifndef MOXVC_H264_INVERSE_TRANSFORM_H
#define MOXVC_H264_INVERSE_TRANSFORM_H

#include "types.h"

MOX_BEGIN_DECLS

/** Coefficients of a 4x4 block to its residual, in place. Products and sums wrap at 16 bits; without `ac` the one
 *  residual value is computed in 32 bits and its low 16 are stored.
 *  @param[in,out] pSrcDst 4 rows of 4; what lies between rows is left alone
 *  @param         step    bytes between rows, at least 8; rows are step / 2 coefficients apart
 *  @param[in]     pDC     dequantised DC, or null: coefficient 0 times M(rem, 0) << per
 *  @param         ac      0: only the DC counts
 *  @param         qp      0 to 51
 *  @retval moxStsNullPointer pSrcDst is null
 *  @retval moxStsOutOfRange  qp is not 0 to 51
 *  @retval moxStsBadStep     step is below 8 */
MOX_API MoxStatus moxiDequantTransformResidual_H264_16s_C1I(Mox16s* pSrcDst, Mox32s step, const Mox16s* pDC, Mox32s ac,
                                                            Mox32s qp);

/** Prediction plus the residual of a 4x4 block, limited to 0..255. Products wrap at 16 bits, the sums of the transform
 *  and its rounding saturate.
 *  @param[in]     pPred   4x4 samples
 *  @param[in,out] pSrcDst 16 coefficients; with `ac` the residual replaces them, without it they are at most read. May
 *                         be null if pDC is given and ac is 0
 *  @param[in]     pDC     dequantised DC, or null: coefficient 0 times M(rem, 0) << per
 *  @param[out]    pDst    4x4 samples
 *  @param         predStep,dstStep bytes
 *  @param         qp      0 to 51
 *  @param         ac      0: only the DC counts
 *  @retval moxStsNullPointer pPred, pDst, or a pSrcDst that is needed, is null
 *  @retval moxStsOutOfRange  qp is not 0 to 51 */
MOX_API MoxStatus moxiDequantTransformResidualAndAdd_H264_16s_C1I(const Mox8u* pPred, Mox16s* pSrcDst,
                                                                  const Mox16s* pDC, Mox8u* pDst, Mox32s predStep,
                                                                  Mox32s dstStep, Mox32s qp, Mox32s ac);

/** A 4x4 block of an SP or SI picture: residual and transformed prediction are added, quantised with qs and
 *  transformed back. With d = switchFlag ? qs : qp, D(q, i) = M(q % 6, i) << (q / 6), w[i] = 16 where both coordinates
 *  are even, 25 where both are odd, 20 elsewhere, and Q the forward multipliers of qs % 6:
 *  t = ((c[i] * D(d, i) * w[i]) >> 6) + p[i], then
 *  c[i] = sign(t) * (((|t| * Q[i] + 2^(14 + qs / 6)) >> (15 + qs / 6)) * D(qs, i)).
 *  These 32-bit values wrap; c and the transform wrap at 16 bits.
 *  @param[in,out] pSrcDst      16 coefficients; receives 16 reconstructed samples, 0 to 255
 *  @param[in]     pPredictCoef 16 values p: the forward transform of the prediction
 *  @param[in]     pDC          c[0] itself, or null: c[0] is formed like the others
 *  @param         ac           0: t is p[i] alone for i from 1 to 15
 *  @param         qp,qs        0 to 51, not tested: they index tables
 *  @param         switchFlag   non-zero for a switching picture
 *  @retval moxStsNullPointer pSrcDst or pPredictCoef is null */
MOX_API MoxStatus moxiDequantTransformResidual_SISP_H264_16s_C1I(Mox16s* pSrcDst, const Mox16s* pPredictCoef,
                                                                 const Mox16s* pDC, Mox32s ac, Mox32s qp, Mox32s qs,
                                                                 Mox32s switchFlag);

/** Luma DC of an Intra 16x16 macroblock: f = H4 * c * H4, then f * M(rem, 0) << per >> 2, rounded. H4 has the rows
 *  (1,1,1,1), (1,1,-1,-1), (1,-1,-1,1), (1,-1,1,-1). f and the results wrap at 16 bits.
 *  @param[in,out] pSrcDst 16 values
 *  @param         qp      0 to 51
 *  @retval moxStsNullPointer pSrcDst is null
 *  @retval moxStsOutOfRange  qp is not 0 to 51 */
MOX_API MoxStatus moxiTransformDequantLumaDC_H264_16s_C1I(Mox16s* pSrcDst, Mox32s qp);

/** 4:2:0 chroma DC: f = H2 * c * H2 with H2 of the rows (1,1), (1,-1), then f * (M(rem, 0) << per) >> 1, rounded
 *  downwards. f and the results wrap at 16 bits.
 *  @param[in,out] pSrcDst 4 values
 *  @param         qp      0 to 51, the QP of chroma
 *  @retval moxStsNullPointer pSrcDst is null
 *  @retval moxStsOutOfRange  qp is not 0 to 51 */
MOX_API MoxStatus moxiTransformDequantChromaDC_H264_16s_C1I(Mox16s* pSrcDst, Mox32s qp);

/** 4:2:0 chroma DC of an SP or SI picture, with d, D and Q as in moxiDequantTransformResidual_SISP_H264_16s_C1I:
 *  t = (H2 * p * H2)[i] + ((c[i] * D(d, 0)) >> 1), then
 *  f[i] = sign(t) * (((|t| * Q[0] + 2^(15 + qs / 6)) >> (16 + qs / 6)) * D(qs, 0)); the result is (H2 * f * H2) >> 1.
 *  H2 * p * H2, f and the results wrap at 16 bits, all else at 32.
 *  @param[in,out] pSrcDst    4 values
 *  @param[in]     pDCPredict 4 values p: the DC values of the transformed prediction
 *  @param         qp,qs      0 to 51, not tested: they index tables
 *  @param         switchFlag non-zero for a switching picture
 *  @retval moxStsNullPointer pSrcDst or pDCPredict is null */
MOX_API MoxStatus moxiTransformDequantChromaDC_SISP_H264_16s_C1I(Mox16s* pSrcDst, const Mox16s* pDCPredict, Mox32s qp,
                                                                 Mox32s qs, Mox32s switchFlag);

/** Prediction plus the residual of a 4x4 block with a scaling list, limited to 0..255. Each coefficient becomes
 *  (c * s + 2^(3 - per)) >> (4 - per) below QP 24, (c * s) << (per - 4) from there on. These and the sums of the
 *  transform wrap at 16 bits.
 *  @param[in]     pPred       4x4 samples
 *  @param         predStep    bytes
 *  @param[in,out] pSrcDst     16 coefficients; with `ac` the residual replaces them, without it they are only read
 *  @param[in]     pDC         dequantised DC, or null
 *  @param[out]    pDst        4x4 samples
 *  @param         dstStep     bytes
 *  @param         qp          0 to 51
 *  @param         ac          0: only the DC counts
 *  @param[in]     pLevelScale 16 scales, or null
 *  @retval moxStsNullPointer pPred, pSrcDst or pDst is null
 *  @retval moxStsOutOfRange  qp is not 0 to 51 */
MOX_API MoxStatus moxiTransformQuantInvAddPred4x4_H264_16s_C1IR(const Mox8u* pPred, Mox32s predStep, Mox16s* pSrcDst,
                                                                const Mox16s* pDC, Mox8u* pDst, Mox32s dstStep,
                                                                Mox32s qp, Mox32s ac, const Mox16s* pLevelScale);

/** The same for 9 to 14 bits, limited to 0 .. 2^bitDepth - 1; values wrap at 32 bits. Only the lowest bit of `ac`
 *  counts. Without it, r = (DC + 32) >> 6 is cut to 16 bits, prediction + r saturates as a signed 16-bit number, and
 * the sum is limited as an unsigned one: a negative sum becomes 2^bitDepth - 1, not 0.
 *  @param[in]     pPred       4x4 samples
 *  @param         predStep    samples
 *  @param[in,out] pSrcDst     16 coefficients; with `ac` the residual replaces them, without it they are only read
 *  @param[in]     pDC         dequantised DC, or null
 *  @param[out]    pDst        4x4 samples
 *  @param         dstStep     samples
 *  @param         qp          0 to 87, whatever the bit depth
 *  @param         ac          lowest bit 0: only the DC counts
 *  @param         bitDepth    9 to 14
 *  @param[in]     pLevelScale 16 scales, or null
 *  @retval moxStsNullPointer pPred, pSrcDst or pDst is null
 *  @retval moxStsOutOfRange  qp is not 0 to 87, or bitDepth not 9 to 14 */
MOX_API MoxStatus moxiTransformQuantInvAddPred4x4_H264_32s_C1IR(const Mox16u* pPred, Mox32s predStep, Mox32s* pSrcDst,
                                                                const Mox32s* pDC, Mox16u* pDst, Mox32s dstStep,
                                                                Mox32s qp, Mox32s ac, Mox32s bitDepth,
                                                                const Mox16s* pLevelScale);

/** 4:2:0 chroma DC with a scaling list: f = H2 * c * H2, then (f * s) >> (5 - per), rounded downwards, below QP 30,
 *  (f * s) << (per - 5) from there on. f and the results wrap at the width of an element.
 *  @param[in,out] pSrcDst     4 values
 *  @param         qp          the QP of chroma, 0 to 39 (32s: 0 to 75)
 *  @param[in]     pLevelScale one scale, or null
 *  @retval moxStsNullPointer pSrcDst is null
 *  @retval moxStsOutOfRange  qp is out of its range */
MOX_API MoxStatus moxiTransformQuantInvChromaDC2x2_H264_16s_C1I(Mox16s* pSrcDst, Mox32s qp, const Mox16s* pLevelScale);
/** @copydoc moxiTransformQuantInvChromaDC2x2_H264_16s_C1I */
MOX_API MoxStatus moxiTransformQuantInvChromaDC2x2_H264_32s_C1I(Mox32s* pSrcDst, Mox32s qp, const Mox16s* pLevelScale);

/** 4:2:2 chroma DC with a scaling list: f = H4 * c * H2. With per and rem of qp + 3: (f * s + 2^(5 - per)) >> (6 - per)
 *  for per below 6, (f * s) << (per - 6) from there on. The 16s form saturates, in each column, the sums and the
 *  differences of the outer and of the inner two values, and the values shifted to the right; all else wraps at the
 *  width of an element.
 *  @param[in,out] pSrcDst     8 values, four rows of two
 *  @param         qp          the QP of chroma, 0 to 39 (32s: 0 to 75); the function adds 3
 *  @param[in]     pLevelScale one scale, that of (qp + 3) % 6, or null
 *  @retval moxStsNullPointer pSrcDst is null
 *  @retval moxStsOutOfRange  qp is out of its range */
MOX_API MoxStatus moxiTransformQuantInvChromaDC2x4_H264_16s_C1I(Mox16s* pSrcDst, Mox32s qp, const Mox16s* pLevelScale);
/** @copydoc moxiTransformQuantInvChromaDC2x4_H264_16s_C1I */
MOX_API MoxStatus moxiTransformQuantInvChromaDC2x4_H264_32s_C1I(Mox32s* pSrcDst, Mox32s qp, const Mox16s* pLevelScale);

/** Luma DC of an Intra 16x16 macroblock with a scaling list: f = H4 * c * H4, then (f * s + 2^(5 - per)) >> (6 - per)
 *  below QP 36, (f * s) << (per - 6) from there on. The 16s form saturates every sum of the transform, columns first,
 *  outer and inner pairs before their sums, and the values shifted to the right; it wraps those shifted to the left.
 *  The 32s form wraps at 32 bits.
 *  @param[in,out] pSrcDst     16 values
 *  @param         qp          0 to 51 (32s: 0 to 87)
 *  @param[in]     pLevelScale one scale, or null
 *  @retval moxStsNullPointer pSrcDst is null
 *  @retval moxStsOutOfRange  qp is out of its range */
MOX_API MoxStatus moxiTransformQuantInvLumaDC4x4_H264_16s_C1I(Mox16s* pSrcDst, Mox32s qp, const Mox16s* pLevelScale);
/** @copydoc moxiTransformQuantInvLumaDC4x4_H264_16s_C1I */
MOX_API MoxStatus moxiTransformQuantInvLumaDC4x4_H264_32s_C1I(Mox32s* pSrcDst, Mox32s qp, const Mox16s* pLevelScale);

/** The 4x4 inverse transform alone, final rounding included. Every sum wraps at the width of an element.
 *  @param[in]  pSrc 16 dequantised coefficients
 *  @param[out] pDst 16 residual values; may be pSrc
 *  @retval moxStsNullPointer pSrc or pDst is null */
MOX_API MoxStatus moxiTransformResidual4x4Inv_H264_16s_C1(const Mox16s* pSrc, Mox16s* pDst);
/** @copydoc moxiTransformResidual4x4Inv_H264_16s_C1 */
MOX_API MoxStatus moxiTransformResidual4x4Inv_H264_32s_C1(const Mox32s* pSrc, Mox32s* pDst);

/** Dequantisation of an 8x8 block: (c * s + 2^(5 - qpPer)) >> (6 - qpPer) for qpPer below 6, saturated to 16 bits;
 *  (c * s) << (qpPer - 6) from there on, wrapped to 16 bits.
 *  @param[in,out] pSrcDst        64 coefficients
 *  @param         qpPer          qp / 6, 0 to 8
 *  @param[in]     pInvLevelScale 64 scales by raster position, those of qp % 6
 *  @retval moxStsNullPointer pSrcDst or pInvLevelScale is null
 *  @retval moxStsBadQp       qpPer is not 0 to 8 */
MOX_API MoxStatus moxiQuantLuma8x8Inv_H264_16s_C1I(Mox16s* pSrcDst, Mox32s qpPer, const Mox16s* pInvLevelScale);

/** The same for 9 to 14 bits: each coefficient is saturated to 16 bits before it is multiplied; the 32-bit results wrap
 *  and are not saturated.
 *  @param[in,out] pSrcDst        64 coefficients
 *  @param         qpPer          qp / 6, 0 to 14
 *  @param[in]     pInvLevelScale 64 scales by raster position, those of qp % 6
 *  @retval moxStsNullPointer pSrcDst or pInvLevelScale is null
 *  @retval moxStsBadQp       qpPer is not 0 to 14 */
MOX_API MoxStatus moxiQuantInvLuma8x8_H264_32s_C1I(Mox32s* pSrcDst, Mox32s qpPer, const Mox16s* pInvLevelScale);

/** Prediction plus the 8x8 inverse transform (8.5.13), limited to 0..255. Every sum saturates at 16 bits, in the order
 *  in which the standard writes it.
 *  @param[in]     pPred   8x8 samples
 *  @param         predStep bytes
 *  @param[in,out] pSrcDst 64 dequantised coefficients; the residual replaces them
 *  @param[out]    pDst    8x8 samples
 *  @param         dstStep bytes
 *  @retval moxStsNullPointer pPred, pSrcDst or pDst is null */
MOX_API MoxStatus moxiTransformLuma8x8InvAddPred_H264_16s8u_C1R(const Mox8u* pPred, Mox32s predStep, Mox16s* pSrcDst,
                                                                Mox8u* pDst, Mox32s dstStep);

/** The same for more than 8 bits, limited to 0 .. 2^bitDepth - 1; every sum wraps at 32 bits. The prediction is added
 *  before the last shift: (y + 32 + (prediction << 6)) >> 6.
 *  @param[in]  pPred    8x8 samples
 *  @param      predStep samples
 *  @param[in]  pSrcDst  64 dequantised coefficients, left as they are
 *  @param[out] pDst     8x8 samples
 *  @param      dstStep  samples
 *  @param      bitDepth 8 to 16, not tested
 *  @retval moxStsNullPointer pPred, pSrcDst or pDst is null */
MOX_API MoxStatus moxiTransformInvAddPredLuma8x8_H264_32s16u_C1R(const Mox16u* pPred, Mox32s predStep, Mox32s* pSrcDst,
                                                                 Mox16u* pDst, Mox32s dstStep, Mox32s bitDepth);

MOX_END_DECLS

#endif
