/** @file
 *  Dequantisation and inverse transforms of DV blocks (IEC 61834-2, SMPTE 314M and 370M).
 *
 *  Blocks are 64 values in raster order, changed in place; they need the alignment of their elements only. Exactly the
 *  block is read and written. What these functions compute, and what the arguments mean, is laid down here; nothing
 *  beyond it is promised. R(x, n) is (x + 2^(n-1)) >> n.
 *
 *  A decoder calls them for each block of a segment, with the coefficients and the block parameter word of the segment
 *  decoders (dv_segment.h): one of the dequantisers, then, by the mode bit m of the word, moxiDCT8x8Inv_16s_C1I
 *  (dct.h) or moxiDCT2x4x8Inv_16s_C1I, or for pictures of a reduced size one of the reduced transforms. DV100 blocks
 *  have 8-8 transforms whatever m is, which there tells how the lines of a macroblock are dealt out to its blocks.
 *
 *  Dequantisation brings coefficients to the scale of dct.h, on which the DC is 8 times the mean of the samples. The DC
 *  becomes its value >> 5, which is 4 times its 9 bits. Samples are 128 too low: conversions add that.
 *
 *      DV      x = the low 16 bits, signed, of (c >> 4) * 2^s, then R(x * r, 15)
 *              In class 3, c >> 3 stands for c >> 4. r is 2^14 / (W(h) W(v)), rounded to the nearest, for column h and
 *              row v of the coefficient, or row 2 (v mod 4) where m is 1, and with C(k) = cos(k pi / 16)
 *              W = 1, C4/(4 C7 C2), C4/(2 C6), 1/(2 C5), 7/8, C4/C3, C4/C2, C4/C1.
 *              s follows from the area of the scan position, 1-5, 6-20, 21-42 or 43-63, of the block's own scan, and
 *              from n = QNO + 6, 3, 0 or 1 for classes 0 to 3:
 *
 *              n          0-1   2-3   4-5   6-7   8-9  10-11  12-13   14   15-21
 *              s by area  3344  2334  2233  1223  1122  0112   0011  0001   0000
 *
 *      DV100   the 16-bit saturation of R((c >> 6) * q * w * 2^class, 5)
 *              q is, for QNO 0 to 15, 1 1 2 3 4 5 6 7 8 16 18 20 22 24 28 52; w, 32 times the weight, is for scan
 *              positions 1 to 63
 *
 *      luma, 1080    16 16 17 17 17 18 18 18 18 18 18 19 18 18 19 19 19 19 19 19 42 38 40 40 40 38 42 44 43 41 41
 *                    41 41 43 44 45 45 42 42 42 45 45 48 46 43 43 46 48 49 48 44 48 49 101 98 98 101 104 109 104
 *                    116 116 123
 *      chroma, 1080  16 16 17 17 17 25 25 25 25 26 25 26 25 26 26 26 27 27 26 26 42 38 40 40 40 38 42 44 43 41 41
 *                    41 41 43 44 91 91 84 84 84 91 91 96 93 86 86 93 96 197 191 177 191 197 203 197 197 203 209
 *                    219 209 232 232 246
 *      luma, 720     16 16 17 17 17 18 18 18 18 18 18 19 18 18 19 19 19 19 19 19 42 38 40 40 40 38 42 44 43 41 41
 *                    41 41 43 44 68 68 63 63 63 68 68 96 92 86 86 92 96 98 96 88 96 98 202 196 196 202 208 218
 *                    208 232 232 246
 *      chroma, 720   24 24 26 26 26 36 36 36 36 36 36 38 36 36 38 38 38 38 38 38 84 76 80 80 80 76 84 88 86 82 82
 *                    82 82 86 88 182 182 168 168 168 182 182 192 186 192 172 186 192 394 382 354 382 394 406 394
 *                    394 406 418 438 418 464 464 492
 *
 *  No coefficient of a segment decoder makes x leave its 16 bits. Of the parameter word bits 4 to 6 and 16 to 19 are
 *  used.
 *
 *  Transforms have the factors w(u,x) and the row pass of the inverse transform in dct.h, sat16(R(sum, 10)); their
 *  column pass ends with R(sum, 19).
 *
 *  - 2-4-8: in all 8 rows, the row pass of 8 frequencies. Column by column then, rows u of 0 to 3 are sums of two lines
 *    and rows 4 + u their differences: lines 2 y and 2 y + 1 come from the sums over u of w(2u,y) t(u) plus, or minus,
 *    those of w(2u,y) t(4 + u), for y from 0 to 3.
 *  - Reduced to N x N samples, N being 4 or 2: only the N x N lowest frequencies, the first N columns of the first N
 *    rows, count. Both passes have N terms with the factors w(u 8/N, x), x from 0 to N - 1. The results replace the
 *    first N * N values of the block, in raster order; the others stay. A sample is about the mean of those it stands
 *    for; in a block that has a DC only, of -4096 to 4095, it is exactly (DC + 4) >> 3. In 2-4-8 blocks the sums of the
 *    lines stand where 8-8 blocks have their low vertical frequencies, so one transform serves both kinds; of a 2-4-8
 *    block each sample is of both fields.
 *
 *  Status. Null pointers are tested first, then the kind; nothing is written then. */
#ifndef MOXVC_DV_TRANSFORM_H
#define MOXVC_DV_TRANSFORM_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

/** Dequantises a block of DV25 or DV50.
 *  @param[in,out] pSrcDst    coefficients of a segment decoder; receives those of the transform
 *  @param         blockParam the block's parameter word
 *  @retval moxStsNullPointer pSrcDst is null */
MOX_API MoxStatus moxiQuantInv_DV_16s_C1I(Mox16s* pSrcDst, Mox32u blockParam);

/** Dequantises a block of DV100.
 *  @param[in,out] pSrcDst    coefficients of a segment decoder; receives those of the transform
 *  @param         blockParam the block's parameter word
 *  @param         kind       0 luma, 1 chroma of pictures of 1080 lines; 2 luma, 3 chroma of 720 lines
 *  @retval moxStsNullPointer pSrcDst is null
 *  @retval moxStsOutOfRange  kind is none of 0 to 3 */
MOX_API MoxStatus moxiQuantInv_DV100_16s_C1I(Mox16s* pSrcDst, Mox32u blockParam, Mox32s kind);

/** Inverse 2-4-8 transform.
 *  @param[in,out] pSrcDst 64 coefficients; receives 8x8 samples, line by line, not limited
 *  @retval moxStsNullPointer pSrcDst is null */
MOX_API MoxStatus moxiDCT2x4x8Inv_16s_C1I(Mox16s* pSrcDst);

/** Inverse transform of an 8-8 or 2-4-8 block to 4x4 samples.
 *  @param[in,out] pSrcDst 64 coefficients; the first 16 values receive the samples, not limited
 *  @retval moxStsNullPointer pSrcDst is null */
MOX_API MoxStatus moxiDCT8x4x2To4x4Inv_DV_16s_C1I(Mox16s* pSrcDst);

/** Inverse transform of an 8-8 or 2-4-8 block to 2x2 samples.
 *  @param[in,out] pSrcDst 64 coefficients; the first 4 values receive the samples, not limited
 *  @retval moxStsNullPointer pSrcDst is null */
MOX_API MoxStatus moxiDCT8x4x2To2x2Inv_DV_16s_C1I(Mox16s* pSrcDst);

MOX_END_DECLS

#endif
