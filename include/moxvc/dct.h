/** @file
 *  8x8 discrete cosine transforms (IEEE 1180-1990, ISO/IEC 23002-1; ITU-T H.262 Annex A, ITU-T T.81 A.3.3).
 *
 *  Blocks. A block of coefficients is 64 values in raster order: coefficient (u, v), u the horizontal frequency, is
 *  value 8 v + u. In functions with `AANTransposed` it is value 8 u + v; their coefficients need no other preparation,
 *  and the results are those of the plain functions. Blocks need the alignment of their elements only. Samples are
 *  8 x 8, `step` bytes from row to row; of a chroma pair the U and V samples of a position lie side by side, U first.
 *  Exactly the block and the 8 rows of samples are read and written, nothing between rows. Source and destination of
 *  16-bit values may be the same block; otherwise they must not overlap.
 *
 *  Scale. With C(0) = sqrt(1/8) and C(k) = 1/2 else, the transforms stand for
 *
 *      F(u,v) = C(u) C(v) sum f(x,y) cos((2x+1) u pi/16) cos((2y+1) v pi/16)   over x and y from 0 to 7
 *      f(x,y) = sum C(u) C(v) F(u,v) cos((2x+1) u pi/16) cos((2y+1) v pi/16)   over u and v from 0 to 7
 *
 *  so the DC is 8 times the mean. There is no offset of 128: samples of 0..255 have a DC of 0..2040.
 *
 *  Arithmetic. Integers throughout, the same in all generations. The factors are w(u,x) = 2^14.5 C(u) cos((2x+1) u
 *  pi/16), rounded: 8192 for u = 0 and, with their signs, 11363 10703 9633 8192 6436 4433 2260 for angles of 1 to 7
 *  times pi/16. R(s, n) is (s + 2^(n-1)) >> n. Rows come first, then columns:
 *
 *      inverse   t = sat16(R(sum over u of w(u,x) F(u,v), 10)), then f = R(sum over v of w(v,y) t, 19)
 *      forward   t = R(sum over x of w(u,x) f(x,y), 11), then F = R(sum over y of w(v,y) t, 18)
 *
 *  Inverse: no 16-bit coefficients overflow a sum, whose terms are 32 bits wide. Rows of the inverse saturate where the
 *  result of their pass, on the scale above, leaves -1448..1448; coefficients of samples or differences of -512..511
 *  never do. Results are -3829..3829; functions with `16s8u` limit them to 0..255. A block that has a DC only becomes
 *  (DC + 4) >> 3 throughout (512 or -512 where the row pass saturates, for a DC outside -4096..4095).
 *  The inverse keeps the accuracy limits of IEEE 1180-1990 for all its ranges, -256..255, -5..5 and -300..300.
 *
 *  Forward: in each pass, samples that mirror each other are first added and subtracted, a(x) = f(x) + f(7-x) and
 *  b(x) = f(x) - f(7-x), then a(0) + a(3), a(1) + a(2) and the differences likewise, as 16-bit values that saturate;
 *  they never do for samples or differences of -256..255. Beyond, the transform stays defined and is of no use: the DC,
 *  for one, stays within -2048..2047.
 *
 *  Status. Null pointers are tested first, in the order of the arguments, then, in functions with `R`, the step: it
 * must reach from row to row without overlap, so it is at least the bytes of a row, given with each function. The first
 *  failing test gives the status, and nothing is written. Functions without `R` take any step, negative or odd too. */
#ifndef MOXVC_DCT_H
#define MOXVC_DCT_H

#include "types.h"

MOX_BEGIN_DECLS

/** Forward transform of 64 values without gaps.
 *  @param[in]  pSrc 64 samples or differences
 *  @param[out] pDst 64 coefficients; may be pSrc
 *  @retval moxStsNullPointer pSrc or pDst is null */
MOX_API MoxStatus moxiDCT8x8Fwd_16s_C1(const Mox16s* pSrc, Mox16s* pDst);

/** The same in place.
 *  @param[in,out] pSrcDst 64 samples or differences; receives the coefficients
 *  @retval moxStsNullPointer pSrcDst is null */
MOX_API MoxStatus moxiDCT8x8Fwd_16s_C1I(Mox16s* pSrcDst);

/** Forward transform of 8 rows of 8 values.
 *  @param[in]  pSrc    8x8 samples or differences
 *  @param      srcStep bytes, at least 16
 *  @param[out] pDst    64 coefficients
 *  @retval moxStsNullPointer pSrc or pDst is null
 *  @retval moxStsBadStep     srcStep is below 16 */
MOX_API MoxStatus moxiDCT8x8Fwd_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst);

/** Forward transform of both planes of a chroma pair.
 *  @param[in]  pSrcUV  8 rows of 8 pairs of samples
 *  @param      srcStep bytes, not tested
 *  @param[out] pDstU   64 coefficients of U
 *  @param[out] pDstV   64 coefficients of V
 *  @retval moxStsNullPointer pSrcUV, pDstU or pDstV is null */
MOX_API MoxStatus moxiDCT8x8Fwd_8u16s_C2P2(const Mox8u* pSrcUV, Mox32s srcStep, Mox16s* pDstU, Mox16s* pDstV);

/** Inverse transform to 64 values without gaps.
 *  @param[in]  pSrc 64 coefficients
 *  @param[out] pDst 64 samples or differences, not limited; may be pSrc
 *  @retval moxStsNullPointer pSrc or pDst is null */
MOX_API MoxStatus moxiDCT8x8Inv_16s_C1(const Mox16s* pSrc, Mox16s* pDst);

/** The same in place.
 *  @param[in,out] pSrcDst 64 coefficients; receives the samples or differences
 *  @retval moxStsNullPointer pSrcDst is null */
MOX_API MoxStatus moxiDCT8x8Inv_16s_C1I(Mox16s* pSrcDst);

/** Inverse transform to 8 rows of 8 values.
 *  @param[in]  pSrc    64 coefficients
 *  @param[out] pDst    8x8 samples or differences, not limited
 *  @param      dstStep bytes, at least 16
 *  @retval moxStsNullPointer pSrc or pDst is null
 *  @retval moxStsBadStep     dstStep is below 16 */
MOX_API MoxStatus moxiDCT8x8Inv_16s_C1R(const Mox16s* pSrc, Mox16s* pDst, Mox32s dstStep);

/** Inverse transform to samples, limited to 0..255, or one sample value throughout.
 *  @param[in]  pSrc    64 coefficients; with `flag` only the first is read
 *  @param[out] pDst    8x8 samples
 *  @param      dstStep bytes, at least 8
 *  @param      flag    non-zero: the block has a DC only, and all samples become (DC + 4) >> 3, limited. That is what
 *                      the inverse transform of such a block gives
 *  @retval moxStsNullPointer pSrc or pDst is null
 *  @retval moxStsBadStep     dstStep is below 8 */
MOX_API MoxStatus moxiDCT8x8InvOrSet_16s8u_C1R(const Mox16s* pSrc, Mox8u* pDst, Mox32s dstStep, Mox32s flag);

/** The same for both planes of a chroma pair.
 *  @param[in]  pSrcU,pSrcV 64 coefficients of each plane; of a plane whose bit is set in `flag` only the first is read
 *  @param[out] pDstUV      8 rows of 8 pairs of samples
 *  @param      dstStep     bytes, not tested
 *  @param      flag        bit 0: U has a DC only; bit 1: V has a DC only; other bits do not count
 *  @retval moxStsNullPointer pSrcU, pSrcV or pDstUV is null */
MOX_API MoxStatus moxiDCT8x8InvOrSet_16s8u_P2C2(const Mox16s* pSrcU, const Mox16s* pSrcV, Mox8u* pDstUV, Mox32s dstStep,
                                                Mox32s flag);

/** Inverse transform of transposed coefficients to 64 values without gaps.
 *  @param[in]  pSrc 64 coefficients, (u, v) at 8 u + v
 *  @param[out] pDst 64 samples or differences in raster order, not limited; may be pSrc
 *  @retval moxStsNullPointer pSrc or pDst is null */
MOX_API MoxStatus moxiDCT8x8Inv_AANTransposed_16s_C1(const Mox16s* pSrc, Mox16s* pDst);

/** Inverse transform of transposed coefficients to 8 rows of 8 values.
 *  @param[in]  pSrc    64 coefficients, (u, v) at 8 u + v
 *  @param[out] pDst    8x8 samples or differences, not limited
 *  @param      dstStep bytes, at least 16
 *  @retval moxStsNullPointer pSrc or pDst is null
 *  @retval moxStsBadStep     dstStep is below 16 */
MOX_API MoxStatus moxiDCT8x8Inv_AANTransposed_16s_C1R(const Mox16s* pSrc, Mox16s* pDst, Mox32s dstStep);

/** Inverse transform of two blocks of transposed coefficients to a chroma pair of differences.
 *  @param[in]  pSrcU,pSrcV 64 coefficients of each plane, (u, v) at 8 u + v
 *  @param[out] pDstUV      8 rows of 8 pairs, not limited
 *  @param      dstStep     bytes, at least 32
 *  @retval moxStsNullPointer pSrcU, pSrcV or pDstUV is null
 *  @retval moxStsBadStep     dstStep is below 32 */
MOX_API MoxStatus moxiDCT8x8Inv_AANTransposed_16s_P2C2R(const Mox16s* pSrcU, const Mox16s* pSrcV, Mox16s* pDstUV,
                                                        Mox32s dstStep);

/** Inverse transform of transposed coefficients to samples, limited to 0..255.
 *  @param[in]  pSrc    64 coefficients, (u, v) at 8 u + v
 *  @param[out] pDst    8x8 samples
 *  @param      dstStep bytes, at least 8
 *  @retval moxStsNullPointer pSrc or pDst is null
 *  @retval moxStsBadStep     dstStep is below 8 */
MOX_API MoxStatus moxiDCT8x8Inv_AANTransposed_16s8u_C1R(const Mox16s* pSrc, Mox8u* pDst, Mox32s dstStep);

/** Inverse transform of two blocks of transposed coefficients to a chroma pair of samples, limited to 0..255.
 *  @param[in]  pSrcU,pSrcV 64 coefficients of each plane, (u, v) at 8 u + v
 *  @param[out] pDstUV      8 rows of 8 pairs of samples
 *  @param      dstStep     bytes, at least 16
 *  @retval moxStsNullPointer pSrcU, pSrcV or pDstUV is null
 *  @retval moxStsBadStep     dstStep is below 16 */
MOX_API MoxStatus moxiDCT8x8Inv_AANTransposed_16s8u_P2C2R(const Mox16s* pSrcU, const Mox16s* pSrcV, Mox8u* pDstUV,
                                                          Mox32s dstStep);

MOX_END_DECLS

#endif
