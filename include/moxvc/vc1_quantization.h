/** @file
 *  VC-1 quantisation, uniform and non-uniform (inverse: SMPTE 421M).
 *
 *  Blocks. A block is Mox16s coefficients, row after row, with a step in bytes between rows. Pointers and steps need no
 *  alignment; steps are not tested and may be negative. Intra blocks are 8x8; other blocks are of any size of 4 or 8 by
 *  4 or 8, 8x4 being 8 wide and 4 high. Exactly the block is read and written. The source and the destination of an
 *  inverse quantiser may be one block, with equal steps; otherwise they must not overlap.
 *
 *  doubleQuant is twice the quantiser of the picture, plus 1 if it has a half step.
 *
 *  Inverse quantisation. With x a coefficient and d = doubleQuant, the result is y = x * d, and, where quantisation is
 *  non-uniform, y = x * d + sign(x) * (d >> 1), the shift rounding downwards and 0 staying 0. Products and sums wrap at
 *  16 bits. d may have any value, and none is refused. In intra blocks, the first coefficient stays x.
 *
 *  pDstSizeNZ receives the corner of the block outside of which all is 0, as the inverse transforms take it: the width
 *  is 1 more than the index of the last column with a y other than 0, the height 1 more than that of the last row. Both
 *  are 0 if there is none. What counts are the y: where x * d wraps to 0, there is a 0. In intra blocks, the first
 *  coefficient counts for the width by its y, which is not stored, and for the height always: the height is at least 1,
 *  and the width 0 if all other y and the y of the first coefficient are 0.
 *
 *  Forward quantisation, in place. Where it is non-uniform, x is first moved towards 0 by half a step: x - sign(x) *
 *  (d >> 1), which may change the sign. This x, or the given one, is divided by d by multiplication and shift. Results
 *  are those of a division that rounds towards 0, for all 16 bits, except that some come out 1 nearer to 0, as encoders
 *  rely on:
 *
 *      d = 19, 21, 27, 41, 55 | all multiples of d other than 0: with 19, 19 gives 0, 38 gives 1, -19 gives 0
 *      d = 55                 | besides, magnitudes of 55 * q + 1 with q from 341 up: 18756 gives 340
 *
 *  In intra blocks, the first coefficient is neither moved nor divided.
 *
 *  Status. Null pointers are tested first, then doubleQuant where a function says so, then the height and the width of
 *  roiSize. The first failing test gives the status, and nothing is written. */
#ifndef MOXVC_VC1_QUANTIZATION_H
#define MOXVC_VC1_QUANTIZATION_H

#include "types.h"

MOX_BEGIN_DECLS

/** Quantises an intra block, uniformly.
 *  @param[in,out] pSrcDst     8x8 coefficients
 *  @param         srcDstStep  bytes
 *  @param         doubleQuant 2 to 62
 *  @retval moxStsNullPointer pSrcDst is null
 *  @retval moxStsOutOfRange  doubleQuant is not 2 to 62 */
MOX_API MoxStatus moxiQuantIntraUniform_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, Mox32s doubleQuant);
/** Quantises an intra block, non-uniformly. Otherwise as moxiQuantIntraUniform_VC1_16s_C1IR. */
MOX_API MoxStatus moxiQuantIntraNonuniform_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, Mox32s doubleQuant);

/** Quantises a non-intra block, uniformly.
 *  @param[in,out] pSrcDst     coefficients
 *  @param         srcDstStep  bytes
 *  @param         doubleQuant 2 to 62
 *  @param         roiSize     width and height of the block, 4 or 8 each
 *  @retval moxStsNullPointer pSrcDst is null
 *  @retval moxStsOutOfRange  doubleQuant is not 2 to 62
 *  @retval moxStsBadSize     the height or the width is neither 4 nor 8 */
MOX_API MoxStatus moxiQuantInterUniform_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, Mox32s doubleQuant,
                                                     MoxiSize roiSize);
/** Quantises a non-intra block, non-uniformly. Otherwise as moxiQuantInterUniform_VC1_16s_C1IR. */
MOX_API MoxStatus moxiQuantInterNonuniform_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, Mox32s doubleQuant,
                                                        MoxiSize roiSize);

/** Inverse quantisation of an intra block, uniform.
 *  @param[in]  pSrc        8x8 quantised coefficients
 *  @param      srcStep     bytes
 *  @param[out] pDst        8x8 coefficients
 *  @param      dstStep     bytes
 *  @param      doubleQuant any value
 *  @param[out] pDstSizeNZ  the corner with the coefficients other than 0; width 0 to 8, height 1 to 8
 *  @retval moxStsNullPointer pSrc, pDst or pDstSizeNZ is null */
MOX_API MoxStatus moxiQuantInvIntraUniform_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep,
                                                       Mox32s doubleQuant, MoxiSize* pDstSizeNZ);
/** Inverse quantisation of an intra block, non-uniform. Otherwise as moxiQuantInvIntraUniform_VC1_16s_C1R. */
MOX_API MoxStatus moxiQuantInvIntraNonuniform_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst,
                                                          Mox32s dstStep, Mox32s doubleQuant, MoxiSize* pDstSizeNZ);

/** Inverse quantisation of an intra block in place, uniform.
 *  @param[in,out] pSrcDst     8x8 coefficients
 *  @param         srcDstStep  bytes
 *  @param         doubleQuant any value
 *  @param[out]    pDstSizeNZ  the corner with the coefficients other than 0; width 0 to 8, height 1 to 8
 *  @retval moxStsNullPointer pSrcDst or pDstSizeNZ is null */
MOX_API MoxStatus moxiQuantInvIntraUniform_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, Mox32s doubleQuant,
                                                        MoxiSize* pDstSizeNZ);
/** Inverse quantisation of an intra block in place, non-uniform. Otherwise as moxiQuantInvIntraUniform_VC1_16s_C1IR. */
MOX_API MoxStatus moxiQuantInvIntraNonuniform_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, Mox32s doubleQuant,
                                                           MoxiSize* pDstSizeNZ);

/** Inverse quantisation of a non-intra block, uniform.
 *  @param[in]  pSrc        quantised coefficients
 *  @param      srcStep     bytes
 *  @param[out] pDst        coefficients
 *  @param      dstStep     bytes
 *  @param      doubleQuant any value
 *  @param      roiSize     width and height of the block, 4 or 8 each
 *  @param[out] pDstSizeNZ  the corner with the coefficients other than 0; 0 and 0 if there is none
 *  @retval moxStsNullPointer pSrc, pDst or pDstSizeNZ is null
 *  @retval moxStsBadSize     the height or the width is neither 4 nor 8 */
MOX_API MoxStatus moxiQuantInvInterUniform_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep,
                                                       Mox32s doubleQuant, MoxiSize roiSize, MoxiSize* pDstSizeNZ);
/** Inverse quantisation of a non-intra block, non-uniform. Otherwise as moxiQuantInvInterUniform_VC1_16s_C1R. */
MOX_API MoxStatus moxiQuantInvInterNonuniform_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst,
                                                          Mox32s dstStep, Mox32s doubleQuant, MoxiSize roiSize,
                                                          MoxiSize* pDstSizeNZ);

/** Inverse quantisation of a non-intra block in place, uniform.
 *  @param[in,out] pSrcDst     coefficients
 *  @param         srcDstStep  bytes
 *  @param         doubleQuant any value
 *  @param         roiSize     width and height of the block, 4 or 8 each
 *  @param[out]    pDstSizeNZ  the corner with the coefficients other than 0; 0 and 0 if there is none
 *  @retval moxStsNullPointer pSrcDst or pDstSizeNZ is null
 *  @retval moxStsBadSize     the height or the width is neither 4 nor 8 */
MOX_API MoxStatus moxiQuantInvInterUniform_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, Mox32s doubleQuant,
                                                        MoxiSize roiSize, MoxiSize* pDstSizeNZ);
/** Inverse quantisation of a non-intra block in place, non-uniform. Otherwise as
 *  moxiQuantInvInterUniform_VC1_16s_C1IR. */
MOX_API MoxStatus moxiQuantInvInterNonuniform_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, Mox32s doubleQuant,
                                                           MoxiSize roiSize, MoxiSize* pDstSizeNZ);

MOX_END_DECLS

#endif
