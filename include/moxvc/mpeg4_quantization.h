/** @file
 *  MPEG-4 quantisation of whole blocks (inverse: ISO/IEC 14496-2 7.4.4), for 4 to 12 bits a pixel.
 *
 *  Blocks are 64 coefficients in raster order, changed in place; arrays need the alignment of their elements only, and
 *  16-byte alignment may be faster. A block function reads and writes its 64 coefficients and reads its record. Let b
 *  be the bits a pixel and q the quantiser parameter, 1 to 2^(b - 3) - 1: 1, 3, 7, 15, 31, 63, 127, 255, 511.
 *
 *  State. Each of the four directions has a record in the caller's memory: ask for its size, give that many bytes to
 *  the direction's Init, and use the record for any number of blocks. The memory may have any alignment: the record
 *  begins at the next multiple of 16, so a copy is good only at the same distance from one. It owns nothing, takes no
 *  call at its end, is only read after Init, and may be shared by threads. It carries the tag of its direction: a
 *  record that another Init has made, or none, is refused.
 *
 *      Mox8u memory[156];                           what moxiQuantInvInterGetSize_MPEG4 gives
 *      MoxiQuantInvState* spec = (MoxiQuantInvState*)memory;
 *      moxiQuantInvInterInit_MPEG4(NULL, spec, 8);
 *      moxiQuantInvInter_MPEG4_16s_C1I(block, 63, spec, 5);
 *
 *  With a matrix W of 64 weights in raster order, method 1 is used; without one, method 2 (the rule of H.263).
 *
 *  Forward, b up to 8. With r(q) = 65536 / (2 q) + 1 and R = 65536 / W + 1 (both towards zero; R is 65535 for W of 1),
 *  a coefficient x with a = |x| becomes the following with the sign of x:
 *
 *      inter, no matrix    (max(a - (q >> 1), 0) * r(q)) >> 16
 *      intra, no matrix    (a * r(q)) >> 16
 *      inter, matrix       (t * r(q)) >> 16                       with t = ((16 a + (W >> 1)) * R) >> 16
 *      intra, matrix       ((t + ((3 q + 2) >> 2)) * r(q)) >> 16
 *
 *  With a matrix the magnitude is limited to 2047, without one there is no limit. For q of 1 and no matrix, this is
 *  x / 2 towards zero. Products are as wide as they need: none wraps.
 *
 *  Forward, b above 8: single precision, each quotient, product and sum rounded to nearest in the order written, then
 *  towards zero, then limited to -2047..2047:
 *
 *      inter, no matrix    y * (0.5000001 / q)                    with y = x moved towards zero by q >> 1, not past it
 *      intra, no matrix    x * (0.5000001 / q)
 *      inter, matrix       (x * (8.00001 / q)) * (1 / W)
 *      intra, matrix       (x * (8.0 / q)) * (1 / W) + 0.501, or - 0.501 if x is negative
 *
 *  The choice hangs on b alone. The DC of an intra block, coefficient 0, has a scaler d instead, at any b:
 *
 *      q              1..4   5..8            9..24           25..
 *      d of luma      8      2 q             q + 8           2 q - 16
 *      d of chroma    8      (q + 13) >> 1   (q + 13) >> 1   q - 6
 *
 *  Forward, it becomes (|x| + (d >> 1)) / d, 2047 at most, with the sign of x; inverse, d * x.
 *
 *  Inverse. All results are limited to -2^(b + 3)..2^(b + 3) - 1, nothing wraps, and 0 stays 0. s is the sign of x:
 *
 *      no matrix           2 q x + s o                            with o = q, or q - 1 if q is even
 *      inter, matrix       ((2 x + s) * W * q) / 16               towards zero
 *      intra, matrix       (x * W * q) / 8                        towards zero
 *
 *  Without a matrix the coefficients are taken in whole groups of 8 from index 0 to the group that holds indexLast;
 *  with a matrix those up to indexLast alone. An indexLast above 63 is taken as 63; below 0 no coefficient of an inter
 *  block is taken, below 1 none of an intra block but the DC. With a matrix mismatch control follows: if the sum of
 *  the results (of an intra block with its DC) is even, coefficient 63 changes from odd to the even value below, or
 *  from even to the odd value above. It is set to 1 instead in an intra block with indexLast below 1.
 *
 *  Status of block functions: null pointers, then the tag, then q; nothing is written then. */
#ifndef MOXVC_MPEG4_QUANTIZATION_H
#define MOXVC_MPEG4_QUANTIZATION_H

#include "types.h"

MOX_BEGIN_DECLS

/** Record of a forward quantiser; its fields are the library's own. */
typedef struct MoxiQuantFwdState MoxiQuantFwdState;
/** Record of an inverse quantiser; its fields are the library's own. */
typedef struct MoxiQuantInvState MoxiQuantInvState;

/** Bytes of memory for the record of the forward quantiser of intra blocks.
 *  @param[out] pSize 412
 *  @retval moxStsNullPointer pSize is null */
MOX_API MoxStatus moxiQuantIntraGetSize_MPEG4(Mox32s* pSize);

/** Makes the record of the forward quantiser of intra blocks.
 *  @param[in]  pMatrix      64 weights, 1 to 255, or null for method 2
 *  @param[out] pSpec        memory for the record
 *  @param      bitsPerPixel 4 to 12; not tested, but a record of any other value accepts no quantiser parameter
 *  @retval moxStsNullPointer pSpec is null; nothing is written
 *  @retval moxStsBadQp       a weight is 0; the record then carries its tag and works as one without a matrix */
MOX_API MoxStatus moxiQuantIntraInit_MPEG4(const Mox8u* pMatrix, MoxiQuantFwdState* pSpec, Mox32s bitsPerPixel);

/** Quantises an intra block.
 *  @param[in,out] pCoeffs       coefficients
 *  @param[in]     pSpec         record of moxiQuantIntraInit_MPEG4
 *  @param         qp            quantiser parameter
 *  @param[out]    pCountNonZero number of levels other than 0, the DC included
 *  @param         blockType     0 luma, any other value chroma: the scaler of the DC
 *  @retval moxStsNullPointer pCoeffs, pSpec or pCountNonZero is null
 *  @retval moxStsBadContext  pSpec has another tag
 *  @retval moxStsBadQp       qp is below 1 or above the greatest of the bits a pixel */
MOX_API MoxStatus moxiQuantIntra_MPEG4_16s_C1I(Mox16s* pCoeffs, const MoxiQuantFwdState* pSpec, Mox32s qp,
                                               Mox32s* pCountNonZero, Mox32s blockType);

/** moxiQuantIntraGetSize_MPEG4 for inter blocks: 412 too. */
MOX_API MoxStatus moxiQuantInterGetSize_MPEG4(Mox32s* pSize);

/** moxiQuantIntraInit_MPEG4 for inter blocks. */
MOX_API MoxStatus moxiQuantInterInit_MPEG4(const Mox8u* pMatrix, MoxiQuantFwdState* pSpec, Mox32s bitsPerPixel);

/** Quantises an inter block.
 *  @param[in,out] pCoeffs       coefficients
 *  @param[in]     pSpec         record of moxiQuantInterInit_MPEG4
 *  @param         qp            quantiser parameter
 *  @param[out]    pCountNonZero number of levels other than 0
 *  @retval moxStsNullPointer pCoeffs, pSpec or pCountNonZero is null
 *  @retval moxStsBadContext  pSpec has another tag
 *  @retval moxStsBadQp       qp is below 1 or above the greatest of the bits a pixel */
MOX_API MoxStatus moxiQuantInter_MPEG4_16s_C1I(Mox16s* pCoeffs, const MoxiQuantFwdState* pSpec, Mox32s qp,
                                               Mox32s* pCountNonZero);

/** Bytes of memory for the record of the inverse quantiser of intra blocks.
 *  @param[out] pSize 156
 *  @retval moxStsNullPointer pSize is null */
MOX_API MoxStatus moxiQuantInvIntraGetSize_MPEG4(Mox32s* pSize);

/** Makes the record of the inverse quantiser of intra blocks.
 *  @param[in]  pMatrix      64 weights, 1 to 255, or null for method 2
 *  @param[out] pSpec        memory for the record
 *  @param      bitsPerPixel 4 to 12
 *  @retval moxStsNullPointer pSpec is null; nothing is written
 *  @retval moxStsOutOfRange  bitsPerPixel is outside 4..12; nothing is written
 *  @retval moxStsBadQp       a weight is 0; the record then carries its tag and works as one without a matrix */
MOX_API MoxStatus moxiQuantInvIntraInit_MPEG4(const Mox8u* pMatrix, MoxiQuantInvState* pSpec, Mox32s bitsPerPixel);

/** Inverse quantisation of an intra block.
 *  @param[in,out] pCoeffs   levels
 *  @param         indexLast index in raster order of the last level to be taken
 *  @param[in]     pSpec     record of moxiQuantInvIntraInit_MPEG4
 *  @param         qp        quantiser parameter
 *  @param         blockType 0 luma, any other value chroma: the scaler of the DC
 *  @retval moxStsNullPointer pCoeffs or pSpec is null
 *  @retval moxStsBadContext  pSpec has another tag
 *  @retval moxStsBadQp       qp is below 1 or above the greatest of the bits a pixel */
MOX_API MoxStatus moxiQuantInvIntra_MPEG4_16s_C1I(Mox16s* pCoeffs, Mox32s indexLast, const MoxiQuantInvState* pSpec,
                                                  Mox32s qp, Mox32s blockType);

/** moxiQuantInvIntraGetSize_MPEG4 for inter blocks: 156 too. */
MOX_API MoxStatus moxiQuantInvInterGetSize_MPEG4(Mox32s* pSize);

/** moxiQuantInvIntraInit_MPEG4 for inter blocks. */
MOX_API MoxStatus moxiQuantInvInterInit_MPEG4(const Mox8u* pMatrix, MoxiQuantInvState* pSpec, Mox32s bitsPerPixel);

/** Inverse quantisation of an inter block.
 *  @param[in,out] pCoeffs   levels
 *  @param         indexLast index in raster order of the last level to be taken
 *  @param[in]     pSpec     record of moxiQuantInvInterInit_MPEG4
 *  @param         qp        quantiser parameter
 *  @retval moxStsNullPointer pCoeffs or pSpec is null
 *  @retval moxStsBadContext  pSpec has another tag
 *  @retval moxStsBadQp       qp is below 1 or above the greatest of the bits a pixel */
MOX_API MoxStatus moxiQuantInvInter_MPEG4_16s_C1I(Mox16s* pCoeffs, Mox32s indexLast, const MoxiQuantInvState* pSpec,
                                                  Mox32s qp);

MOX_END_DECLS

#endif
