/** @file
 *  MPEG-2 quantisation of whole blocks (inverse: ISO/IEC 13818-2 7.4).
 *
 *  Blocks are 64 coefficients in raster order, changed in place; matrices are 64 values in raster order. Arrays need
 *  the alignment of their elements only; 16-byte alignment may be faster. Exactly the arrays are read and written.
 *
 *  Forward quantisation takes the reciprocals 1 / W of the weights as floats. With f = 16 / quantScale, a coefficient c
 *  and its reciprocal m become
 *
 *      (c * f) * m, towards zero, limited to -2047..2047
 *
 *  in single precision: the quotient and both products, in this order, are rounded to nearest. A product of 2^31 and
 *  more in magnitude, or one that is no number, gives -2047 whatever its sign; with reciprocals of weights none occurs.
 *
 *  Inverse quantisation takes the weights W themselves and counts in 16 bits: products wrap (their low 16 bits as a
 *  signed number count), sums saturate at -32768 and 32767, shifts to the right round downwards. It ends with mismatch
 *  control: if the sum of the 64 results is even, coefficient 63 changes from odd to the even value below, or from even
 *  to the odd value above. The sum is that of eight saturating 16-bit lanes, lane i having the coefficients i, i + 8
 *  and so on in this order; as long as no lane leaves 16 bits, its parity is that of the true sum.
 *
 *  Status. Null pointers are tested first, then quantScale where a function says so; nothing is written then. */
#ifndef MOXVC_MPEG2_QUANTIZATION_H
#define MOXVC_MPEG2_QUANTIZATION_H

#include "types.h"

MOX_BEGIN_DECLS

/** Quantises the coefficients of an intra block but the first, which stays.
 *  @param[in,out] pSrcDst      coefficients
 *  @param         quantScale   quantiser scale; may be negative
 *  @param[in]     pQuantMatrix reciprocals of the weights; null: those of the default intra matrix
 *  @param[out]    pCount       number of results other than 0 among the 63
 *  @retval moxStsNullPointer pSrcDst or pCount is null
 *  @retval moxStsZeroDivisor quantScale is 0 */
MOX_API MoxStatus moxiQuantIntra_MPEG2_16s_C1I(Mox16s* pSrcDst, Mox32s quantScale, const float* pQuantMatrix,
                                               Mox32s* pCount);

/** Quantises all coefficients of a block. Without a matrix the weights are 16 throughout, and integers are used: with
 *  r = (quantScale / 2 + 65536) / quantScale (towards zero) and a = |c|, 32767 at most, the result is (a * r) >> 16,
 *  2047 at most, with the sign of c. Without a matrix and with quantScale below 2 no coefficient is changed or limited.
 *  @param[in,out] pSrcDst      coefficients
 *  @param         quantScale   quantiser scale; may be negative
 *  @param[in]     pQuantMatrix reciprocals of the weights, or null
 *  @param[out]    pCount       number of results other than 0 among the 64
 *  @retval moxStsNullPointer pSrcDst or pCount is null
 *  @retval moxStsZeroDivisor quantScale is 0 */
MOX_API MoxStatus moxiQuant_MPEG2_16s_C1I(Mox16s* pSrcDst, Mox32s quantScale, const float* pQuantMatrix,
                                          Mox32s* pCount);

/** Inverse quantisation of the coefficients c of an intra block but the first: (c * quantScale * W) >> 4, where 15 is
 *  added to the product if c is negative. There is no limit. Then mismatch control of the whole block, the first
 *  coefficient included.
 *  @param[in,out] pSrcDst      coefficients
 *  @param         quantScale   quantiser scale; its low 16 bits count
 *  @param[in]     pQuantMatrix weights
 *  @retval moxStsNullPointer pSrcDst or pQuantMatrix is null */
MOX_API MoxStatus moxiQuantInvIntra_MPEG2_16s_C1I(Mox16s* pSrcDst, Mox32s quantScale, const Mox16u* pQuantMatrix);

/** Inverse quantisation of a non-intra block, and mismatch control.
 *
 *  With a matrix: w = the low 16 bits of W * quantScale, unsigned; p = c * w, e = w >> 1. For c = 0 the result is 0,
 *  otherwise (p + e) >> 4 if p is 0 or positive, ((p - e) + 15) >> 4 if p, which has wrapped, is negative. There is no
 *  limit. Without a matrix the weights are 16 throughout: x = 2 * c + sgn(c), the result is (x * quantScale) >> 1,
 *  where 1 is added to the product if c is negative, limited to -2048..2047.
 *  @param[in,out] pSrcDst      coefficients
 *  @param         quantScale   quantiser scale; its low 16 bits count
 *  @param[in]     pQuantMatrix weights, or null
 *  @retval moxStsNullPointer pSrcDst is null */
MOX_API MoxStatus moxiQuantInv_MPEG2_16s_C1I(Mox16s* pSrcDst, Mox32s quantScale, const Mox16u* pQuantMatrix);

/** Counts the zeros of a block.
 *  @param[in]  pSrc   64 coefficients
 *  @param[out] pCount number of zeros, 0 to 64
 *  @retval moxStsNullPointer pSrc or pCount is null */
MOX_API MoxStatus moxiCountZeros8x8_16s_C1(const Mox16s* pSrc, Mox32s* pCount);

MOX_END_DECLS

#endif
