/** @file
 *  H.264 forward transforms and quantisation: the encoder's side of h264_inverse_transform.h.
 *
 *  Blocks. A block is a dense array in raster order: 16 or 64 values, 4 (2x2) or 8 (four rows of two) chroma DC values.
 *  Exactly the block is read and written. Arrays need the alignment of their elements only. pSrc and pDst of one
 *  type may be the same array; other overlaps, that of pDCLevels and pTBlock too, give no defined result.
 *
 *  Quantisation. level = sign(x) * ((|x| * s + r) >> n), in 32 bits that wrap unless the function says otherwise. The
 *  rounding r is called
 *  - exact: 2^n / 3 for intra blocks, 2^n / 6 for others, rounded downwards;
 *  - rough: 682 << (n - 11) for intra blocks, 342 << (n - 11) for others, which is near it.
 *  per = qp / 6, rem = qp % 6. Q(rem, i) is the default multiplier of position i: 13107 11916 10082 9362 8192 7282
 *  for rem 0 to 5 where both coordinates are even, 5243 4660 4194 3647 3355 2893 where both are odd, 8066 7490 6554
 *  5825 5243 4559 elsewhere. A `pLevelScale` or `pQuantTable` holds such multipliers divided by 16, or by another
 *  weight, as moxiGenScaleLevel4x4_H264_8u16s_C1 makes them for the QP's rem. Levels that 16 bits do not hold
 *  saturate, to 32767 or -32767, or wrap; the function says which.
 *
 *  Counts. `pNumLevels` receives the number of levels that are not 0. Where it is "signed", that number is negated
 *  if level 0 is not 0: the sign tells whether there is a DC level. `pLastCoeff` receives the largest pScanMatrix[i]
 *  of all positions i whose level is not 0, or 0. `pScanMatrix` gives each raster position its place in the scan
 *  (the inverse of a zigzag or field scan), 16 or 64 numbers of 0 to 32767.
 *
 *  Transforms. The 4x4 transform is C4 * x * C4^T, rows first, where C4 has the rows (1,1,1,1), (2,1,-1,-2),
 *  (1,-1,-1,1), (1,-2,2,-1). Four values become a + b, c + (d + d), a - b, d - (c + c) with a = x0 + x3, b = x1 + x2,
 *  c = x1 - x2, d = x0 - x3: where sums saturate, each of these does. H2 has the rows (1,1), (1,-1), and H4
 *  (1,1,1,1), (1,1,-1,-1), (1,-1,-1,1), (1,-1,1,-1).
 *
 *  Status. Null pointers are tested first, then qp, qpPer or qpRem. The first failing test gives the status, and
 *  nothing is written. moxStsLevelOverflow comes later, and functions that give it say what is written. */
#ifndef MOXVC_H264_FORWARD_TRANSFORM_H
#define MOXVC_H264_FORWARD_TRANSFORM_H

#include "types.h"

MOX_BEGIN_DECLS

/** Residual of a 4x4 block to its levels, in place. The transform wraps at 16 bits; s = Q(rem, i), n = per + 15, r
 *  exact. Levels are made in two halves, positions 0 to 7 and 8 to 15; a half with a level over 2063 or below -2063
 *  keeps its residual, as does a later half, and gives moxStsLevelOverflow.
 *  @param[in,out] pSrcDst     16 values
 *  @param         qp          0 to 51
 *  @param[out]    pNumLevels  signed count; not written on overflow
 *  @param         intra       only the low 8 bits count
 *  @param[in]     pScanMatrix 16 places
 *  @param[out]    pLastCoeff  low 7 bits of the last place; not written on overflow
 *  @retval moxStsNullPointer   a pointer is null
 *  @retval moxStsOutOfRange    qp is not 0 to 51
 *  @retval moxStsLevelOverflow a level is beyond 2063 */
MOX_API MoxStatus moxiTransformQuantResidual_H264_16s_C1I(Mox16s* pSrcDst, Mox32s qp, int8_t* pNumLevels, Mox32s intra,
                                                          const Mox16s* pScanMatrix, Mox8u* pLastCoeff);

/** Luma DC of an Intra 16x16 macroblock: (H4 * x * H4) >> 1, columns first, cut to 16 bits after the columns and at
 *  the end; s = Q(rem, 0), n = per + 16, r exact, intra. A half that overflows, as in
 *  moxiTransformQuantResidual_H264_16s_C1I, and those after it keep their input.
 *  @param[in,out] pDCLevels     16 values x, not read if needTransform is 0; receives the levels
 *  @param[in,out] pTBlock       receives the 16 transformed values; with needTransform 0, holds them
 *  @param         qp            0 to 51
 *  @param[out]    pNumLevels    signed count; not written on overflow
 *  @param         needTransform only the low 8 bits count
 *  @param[in]     pScanMatrix   16 places
 *  @param[out]    pLastCoeff    low 7 bits of the last place; not written on overflow
 *  @retval moxStsNullPointer   a pointer is null
 *  @retval moxStsOutOfRange    qp is not 0 to 51
 *  @retval moxStsLevelOverflow a level is beyond 2063; pTBlock is written */
MOX_API MoxStatus moxiTransformQuantLumaDC_H264_16s_C1I(Mox16s* pDCLevels, Mox16s* pTBlock, Mox32s qp,
                                                        int8_t* pNumLevels, Mox32s needTransform,
                                                        const Mox16s* pScanMatrix, Mox8u* pLastCoeff);

/** 4:2:0 chroma DC: H2 * x * H2 wraps at 16 bits; s = Q(rem, 0), n = per + 16, r exact; levels saturate.
 *  @param[in,out] pDCLevels     4 values x, not read if needTransform is 0; receives the levels
 *  @param[in,out] pTBlock       receives the 4 transformed values; with needTransform 0, holds them
 *  @param         qp            the QP of chroma, 0 to 39
 *  @param[out]    pNumLevels    signed count
 *  @param         intra         only the low 8 bits count
 *  @param         needTransform only the low 8 bits count
 *  @retval moxStsNullPointer   a pointer is null
 *  @retval moxStsOutOfRange    qp is not 0 to 39
 *  @retval moxStsLevelOverflow a level is beyond 2063; all is written nevertheless */
MOX_API MoxStatus moxiTransformQuantChromaDC_H264_16s_C1I(Mox16s* pDCLevels, Mox16s* pTBlock, Mox32s qp,
                                                          int8_t* pNumLevels, Mox32s intra, Mox32s needTransform);

/** Residual of a 4x4 block to its levels. The transform and the levels wrap at 16 bits (16s32s: at 32). s = Q(rem, i),
 *  n = per + 15, or s = pLevelScale[i], n = per + 11; r exact.
 *  @param[in]  pSrc        16 values
 *  @param[out] pDst        16 levels
 *  @param      qp          0 to 51 (16s32s: 0 to 87)
 *  @param[out] pNumLevels  signed count
 *  @param      intra       0 or not
 *  @param[in]  pScanMatrix 16 places
 *  @param[out] pLastCoeff  the last place
 *  @param[in]  pLevelScale 16 multipliers, or null
 *  @retval moxStsNullPointer a pointer other than pLevelScale is null
 *  @retval moxStsOutOfRange  qp is out of its range */
MOX_API MoxStatus moxiTransformQuantFwd4x4_H264_16s_C1(const Mox16s* pSrc, Mox16s* pDst, Mox32s qp, Mox32s* pNumLevels,
                                                       Mox32s intra, const Mox16s* pScanMatrix, Mox32s* pLastCoeff,
                                                       const Mox16s* pLevelScale);
/** @copydoc moxiTransformQuantFwd4x4_H264_16s_C1 */
MOX_API MoxStatus moxiTransformQuantFwd4x4_H264_16s32s_C1(const Mox16s* pSrc, Mox32s* pDst, Mox32s qp,
                                                          Mox32s* pNumLevels, Mox32s intra, const Mox16s* pScanMatrix,
                                                          Mox32s* pLastCoeff, const Mox16s* pLevelScale);

/** 4:2:0 chroma DC: H2 * x * H2, rows first. s = Q(rem, 0), n = per + 16, or s = *pLevelScale, n = per + 12; r exact.
 *  16s: each sum of two and the levels saturate. 32s: sums wrap at 32 bits, products are of 64 bits, levels wrap.
 *  @param[in,out] pDCLevels     4 values x, not read if needTransform is 0; receives the levels
 *  @param[in,out] pTBlock       receives the 4 transformed values; with needTransform 0, holds them
 *  @param         qp            the QP of chroma, 0 to 39 (32s: 0 to 75)
 *  @param[out]    pNumLevels    signed count
 *  @param         intra         0 or not
 *  @param         needTransform 0 or not
 *  @param[in]     pLevelScale   one multiplier, or null
 *  @retval moxStsNullPointer a pointer other than pLevelScale is null
 *  @retval moxStsOutOfRange  qp is out of its range */
MOX_API MoxStatus moxiTransformQuantFwdChromaDC2x2_H264_16s_C1I(Mox16s* pDCLevels, Mox16s* pTBlock, Mox32s qp,
                                                                Mox32s* pNumLevels, Mox32s intra, Mox32s needTransform,
                                                                const Mox16s* pLevelScale);
/** @copydoc moxiTransformQuantFwdChromaDC2x2_H264_16s_C1I */
MOX_API MoxStatus moxiTransformQuantFwdChromaDC2x2_H264_32s_C1I(Mox32s* pDCLevels, Mox32s* pTBlock, Mox32s qp,
                                                                Mox32s* pNumLevels, Mox32s intra, Mox32s needTransform,
                                                                const Mox16s* pLevelScale);

/** 4:2:2 chroma DC: H4 * x * H2, columns first. With per and rem of qp + 3: s = Q(rem, 0), n = per + 16, or
 *  s = *pLevelScale, n = per + 12; r rough. 16s: in each column, the sums and the differences of the outer and of the
 *  inner two values saturate, and so do the levels; what is made of those sums wraps at 16 bits. 32s: sums wrap at 32
 *  bits, products are of 64 bits, levels wrap.
 *  @param[in,out] pDCLevels     8 values x, four rows of two, not read if needTransform is 0; receives the levels
 *  @param[in,out] pTBlock       receives the 8 transformed values; with needTransform 0, holds them
 *  @param         qp            the QP of chroma, 0 to 39 (32s: 0 to 75); the function adds 3
 *  @param[out]    pNumLevels    signed count
 *  @param         intra         0 or not
 *  @param         needTransform 0 or not
 *  @param[in]     pLevelScale   one multiplier, that of (qp + 3) % 6, or null
 *  @retval moxStsNullPointer a pointer other than pLevelScale is null
 *  @retval moxStsOutOfRange  qp is out of its range */
MOX_API MoxStatus moxiTransformQuantFwdChromaDC2x4_H264_16s_C1I(Mox16s* pDCLevels, Mox16s* pTBlock, Mox32s qp,
                                                                Mox32s* pNumLevels, Mox32s intra, Mox32s needTransform,
                                                                const Mox16s* pLevelScale);
/** @copydoc moxiTransformQuantFwdChromaDC2x4_H264_16s_C1I */
MOX_API MoxStatus moxiTransformQuantFwdChromaDC2x4_H264_32s_C1I(Mox32s* pDCLevels, Mox32s* pTBlock, Mox32s qp,
                                                                Mox32s* pNumLevels, Mox32s intra, Mox32s needTransform,
                                                                const Mox16s* pLevelScale);

/** Luma DC of an Intra 16x16 macroblock: (H4 * x * H4) >> 1, columns first, cut to the width of an element after the
 *  columns and at the end (32s: every sum wraps at 32 bits). s = Q(rem, 0), n = per + 16, r exact, or s = *pLevelScale,
 *  n = per + 12, r rough; always as for intra blocks. Levels wrap; 32s products are of 64 bits.
 *  @param[in,out] pDCLevels     16 values x, not read if needTransform is 0; receives the levels
 *  @param[in,out] pTBlock       receives the 16 transformed values; with needTransform 0, holds them
 *  @param         qp            0 to 51 (32s: 0 to 87)
 *  @param[out]    pNumLevels    number of levels that are not 0, negated if pTBlock[0] is not 0, whatever its level is
 *  @param         needTransform 0 or not
 *  @param[in]     pScanMatrix   16 places
 *  @param[out]    pLastCoeff    the last place
 *  @param[in]     pLevelScale   one multiplier, or null
 *  @retval moxStsNullPointer a pointer other than pLevelScale is null
 *  @retval moxStsOutOfRange  qp is out of its range */
MOX_API MoxStatus moxiTransformQuantFwdLumaDC4x4_H264_16s_C1I(Mox16s* pDCLevels, Mox16s* pTBlock, Mox32s qp,
                                                              Mox32s* pNumLevels, Mox32s needTransform,
                                                              const Mox16s* pScanMatrix, Mox32s* pLastCoeff,
                                                              const Mox16s* pLevelScale);
/** @copydoc moxiTransformQuantFwdLumaDC4x4_H264_16s_C1I */
MOX_API MoxStatus moxiTransformQuantFwdLumaDC4x4_H264_32s_C1I(Mox32s* pDCLevels, Mox32s* pTBlock, Mox32s qp,
                                                              Mox32s* pNumLevels, Mox32s needTransform,
                                                              const Mox16s* pScanMatrix, Mox32s* pLastCoeff,
                                                              const Mox16s* pLevelScale);

/** Quantisation of a transformed 4x4 block: s = Q(rem, i), n = per + 15, or s = pQuantTable[i], n = per + 11; r exact.
 *  Levels saturate.
 *  @param[in]  pSrc        16 coefficients
 *  @param[out] pDst        16 levels
 *  @param[out] pNumLevels  number of levels that are not 0, never negated
 *  @param[out] pLastCoeff  the last place
 *  @param[in]  pQuantTable 16 multipliers, or null
 *  @param[in]  pScanMatrix 16 places
 *  @param      qp          0 to 51
 *  @param      intra       0 or not
 *  @retval moxStsNullPointer a pointer other than pQuantTable is null
 *  @retval moxStsOutOfRange  qp is not 0 to 51 */
MOX_API MoxStatus moxiQuantizeResidual4x4Fwd_H264_16s_C1(const Mox16s* pSrc, Mox16s* pDst, Mox32s* pNumLevels,
                                                         Mox32s* pLastCoeff, const Mox16s* pQuantTable,
                                                         const Mox16s* pScanMatrix, Mox32u qp, Mox32s intra);

/** The same to 32-bit levels, with a table that is always given.
 *  @param[in]  pSrc        16 coefficients
 *  @param[out] pDst        16 levels
 *  @param[out] pNumLevels  number of levels that are not 0, never negated
 *  @param[out] pLastCoeff  the last place
 *  @param[in]  pQuantTable 16 multipliers
 *  @param[in]  pScanMatrix 16 places
 *  @param      qp          0 to 51
 *  @param      intra       0 or not
 *  @retval moxStsNullPointer a pointer, pQuantTable too, is null
 *  @retval moxStsOutOfRange  qp is not 0 to 51 */
MOX_API MoxStatus moxiQuantizeResidual4x4Fwd_H264_16s32s_C1(const Mox16s* pSrc, Mox32s* pDst, Mox32s* pNumLevels,
                                                            Mox32s* pLastCoeff, const Mox32s* pQuantTable,
                                                            const Mox16s* pScanMatrix, Mox32u qp, Mox32s intra);

/** The same for 9 to 14 bits.
 *  @param[in]  pSrc        16 coefficients
 *  @param[out] pDst        16 levels
 *  @param[out] pNumLevels  number of levels that are not 0, never negated
 *  @param[out] pLastCoeff  the last place
 *  @param[in]  pQuantTable 16 multipliers, or null
 *  @param[in]  pScanMatrix 16 places
 *  @param      qp          0 to 87
 *  @param      intra       0 or not
 *  @retval moxStsNullPointer a pointer other than pQuantTable is null
 *  @retval moxStsOutOfRange  qp is not 0 to 87 */
MOX_API MoxStatus moxiQuantizeResidual4x4Fwd_H264_32s_C1(const Mox32s* pSrc, Mox32s* pDst, Mox32s* pNumLevels,
                                                         Mox32s* pLastCoeff, const Mox32s* pQuantTable,
                                                         const Mox16s* pScanMatrix, Mox32u qp, Mox32s intra);

/** Quantisation of a transformed 8x8 block: s = pScaleLevels[i], n = qpPer + 12, r rough. -32768 counts as -32767;
 *  levels saturate.
 *  @param[in]  pSrc         64 coefficients
 *  @param[out] pDst         64 levels
 *  @param      qpPer        qp / 6, 0 to 8
 *  @param      intra        0 or not
 *  @param[in]  pScanMatrix  64 places
 *  @param[in]  pScaleLevels 64 multipliers, those of qp % 6
 *  @param[out] pNumLevels   signed count
 *  @param[out] pLastCoeff   the last place
 *  @retval moxStsNullPointer a pointer is null
 *  @retval moxStsBadQp       qpPer is not 0 to 8 */
MOX_API MoxStatus moxiQuantLuma8x8_H264_16s_C1(const Mox16s* pSrc, Mox16s* pDst, Mox32s qpPer, Mox32s intra,
                                               const Mox16s* pScanMatrix, const Mox16s* pScaleLevels,
                                               Mox32s* pNumLevels, Mox32s* pLastCoeff);

/** The same for 9 to 14 bits; no coefficient is special.
 *  @param[in]  pSrc         64 coefficients
 *  @param[out] pDst         64 levels
 *  @param      qpPer        qp / 6, 0 to 14
 *  @param      intra        0 or not
 *  @param[in]  pScanMatrix  64 places
 *  @param[in]  pScaleLevels 64 multipliers, those of qp % 6
 *  @param[out] pNumLevels   signed count
 *  @param[out] pLastCoeff   the last place
 *  @retval moxStsNullPointer a pointer is null
 *  @retval moxStsBadQp       qpPer is not 0 to 14 */
MOX_API MoxStatus moxiQuantLuma8x8_H264_32s_C1(const Mox32s* pSrc, Mox32s* pDst, Mox32s qpPer, Mox32s intra,
                                               const Mox16s* pScanMatrix, const Mox16u* pScaleLevels,
                                               Mox32s* pNumLevels, Mox32s* pLastCoeff);

/** The 4x4 transform alone. 16s: every sum saturates. 32s: it wraps.
 *  @param[in]  pSrc 16 values
 *  @param[out] pDst 16 coefficients
 *  @retval moxStsNullPointer pSrc or pDst is null */
MOX_API MoxStatus moxiTransformResidual4x4Fwd_H264_16s_C1(const Mox16s* pSrc, Mox16s* pDst);
/** @copydoc moxiTransformResidual4x4Fwd_H264_16s_C1 */
MOX_API MoxStatus moxiTransformResidual4x4Fwd_H264_32s_C1(const Mox32s* pSrc, Mox32s* pDst);

/** The 4x4 transform of samples: what moxiDequantTransformResidual_SISP_H264_16s_C1I takes as prediction.
 *  @param[in]  pSrc    4x4 samples
 *  @param      srcStep bytes between rows, not tested, may be negative
 *  @param[out] pDst    16 coefficients
 *  @retval moxStsNullPointer pSrc or pDst is null */
MOX_API MoxStatus moxiTransformPrediction_H264_8u16s_C1(const Mox8u* pSrc, Mox32s srcStep, Mox16s* pDst);

/** The 8x8 transform, rows first, in place. Every sum saturates at 16 bits. With s_k = x_k + x_(7-k) and
 *  d_k = x_k - x_(7-k), k from 0 to 3, and sums made from left to right:
 *
 *      y0 = (s0 + s3) + (s1 + s2)          b4 = d0 + (d0 >> 1) + d1 + d2      y1 = b4 + (b7 >> 2)
 *      y4 = (s0 + s3) - (s1 + s2)          b5 = d2 + (d2 >> 1) - d0 + d3      y3 = (b6 >> 2) - b5
 *      y2 = (s0 - s3) + ((s1 - s2) >> 1)   b6 = d3 + d0 - d1 - (d1 >> 1)      y5 = b6 - ((-b5) >> 2)
 *      y6 = ((s0 - s3) >> 1) - (s1 - s2)   b7 = d3 + (d3 >> 1) + d1 - d2      y7 = (b4 >> 2) - b7
 *
 *  @param[in,out] pSrcDst 64 values
 *  @retval moxStsNullPointer pSrcDst is null */
MOX_API MoxStatus moxiTransformLuma8x8Fwd_H264_16s_C1I(Mox16s* pSrcDst);

/** The same from one array to another. 16s: every sum saturates. 16s32s: it wraps at 32 bits.
 *  @param[in]  pSrc 64 values
 *  @param[out] pDst 64 coefficients
 *  @retval moxStsNullPointer pSrc or pDst is null */
MOX_API MoxStatus moxiTransformFwdLuma8x8_H264_16s_C1(const Mox16s* pSrc, Mox16s* pDst);
/** @copydoc moxiTransformFwdLuma8x8_H264_16s_C1 */
MOX_API MoxStatus moxiTransformFwdLuma8x8_H264_16s32s_C1(const Mox16s* pSrc, Mox32s* pDst);

/** Multipliers of a 4x4 scaling list, w = pScalingList[i]. pInvLevelScale[i] = w * M(rem, i), M as in
 *  h264_inverse_transform.h; pLevelScale[i] = Q(rem, i) / w, rounded downwards, but for two w: 0 gives 1, and 255
 *  gives 1.
 *  @param[in]  pScalingList   16 values by raster position, 0 to 255
 *  @param[out] pInvLevelScale 16 multipliers of the inverse side
 *  @param[out] pLevelScale    16 multipliers of the forward side
 *  @param      qpRem          qp % 6
 *  @retval moxStsNullPointer a pointer is null
 *  @retval moxStsOutOfRange  qpRem is not 0 to 5 */
MOX_API MoxStatus moxiGenScaleLevel4x4_H264_8u16s_C1(const Mox8u* pScalingList, Mox16s* pInvLevelScale,
                                                     Mox16s* pLevelScale, Mox32s qpRem);

/** Multipliers of an 8x8 scaling list, w = its value of position i: pInvLevelScale[i] = w * M8(rem, i), and
 *  pLevelScale[i] = Q8(rem, i) / w, rounded downwards, but 2 for w = 0. Positions have six classes by (y % 4, x % 4):
 *  (0,0); both odd; (2,2); a 0 and an odd one; a 0 and a 2; a 2 and an odd one.
 *
 *      rem   Q8 by class                                M8 by class
 *      0     13107 11428 20972 12222 16777 15481        20 18 32 19 25 24
 *      1     11916 10826 19174 11058 14980 14290        22 19 35 21 28 26
 *      2     10082  8943 15978  9675 12710 11985        26 23 42 24 33 31
 *      3      9362  8228 14913  8931 11984 11259        28 25 45 26 35 33
 *      4      8192  7346 13159  7740 10486  9777        32 28 51 30 40 38
 *      5      7282  6428 11570  6830  9118  8640        36 32 58 34 46 43
 *
 *  @param[in]  pScalingList   8 rows of 8 values by raster position, 0 to 255
 *  @param      listStep       bytes between rows, not tested, may be negative
 *  @param[out] pInvLevelScale 64 multipliers of the inverse side
 *  @param[out] pLevelScale    64 multipliers of the forward side
 *  @param      qpRem          qp % 6
 *  @retval moxStsNullPointer a pointer is null
 *  @retval moxStsBadQp       qpRem is not 0 to 5 */
MOX_API MoxStatus moxiGenScaleLevel8x8_H264_8u16s_D2(const Mox8u* pScalingList, Mox32s listStep, Mox16s* pInvLevelScale,
                                                     Mox16s* pLevelScale, Mox32s qpRem);

MOX_END_DECLS

#endif
