/** @file
 *  H.263 reference picture resampling (ITU-T H.263 Annex P), and interpolation by two for spatial scalability (Annex
 * O).
 *
 *  What is computed is what stands here; for a stream it is what the annexes ask for.
 *
 *  By two. Doubling puts two samples between two neighbours, a quarter and three quarters of the way; halving puts one
 *  in the middle of four. Beyond the edges the plane goes on with its outermost samples, so that the first and the last
 *  new sample of a doubled row lie on an edge sample's value. With A the old sample nearest to the new one, B the
 *  nearest in the same row on the new one's other side, C in the same column, and D the one across:
 *
 *      doubled both ways       (9 A + 3 B + 3 C + D + 7 + r) >> 4
 *      doubled in one          (3 A + B + 2) >> 2        C in place of B for doubled rows
 *      halved                  (A + B + C + D + 1 + r) >> 2
 *
 *  r is the picture's rounding control RCRPR: halves go up with 1, down with 0.
 *
 *  General form. Each corner of the new picture has a displacement to its place in the old one, and so by bilinear
 *  interpolation has every sample. Sizes are of luma; luma sample i of a row lies at i + 1/2, chroma sample i at
 *  2 i + 1. With W x H the new size, W' and H' the least powers of two, 2 or more, that are not below W and H, and u
 *  the corners' displacements in 1/32 of a luma sample, to be worked out for x and for y alike:
 *
 *      T = ((W - W') uTL + W' uTR) // W                     the upper right corner of W' x H'
 *      L = ((H - H') uTL + H' uBL) // H                     the lower left corner
 *      R = ((H - H') ((W - W') uTL + W' uTR) + H' ((W - W') uBL + W' uBR)) // (H W)
 *      n = (2 H' - y) ((2 W' - x) uTL + x T) + y ((2 W' - x) L + x R)
 *      d = n /// (8 W' H') in luma, n /// (16 W' H') in chroma
 *
 *  where // rounds to the nearest integer and halves away from 0, /// rounds to the nearest and halves up, and x and y
 *  are twice the place of the sample: 2 i + 1 in luma, 4 i + 2 in chroma. The sample's place in the old plane is its
 *  index plus d / 16. With A, B, C, D the old samples there, to the right, below, and below to the right, and fx, fy
 *  the sixteenths:
 *
 *      ((16 - fy) ((16 - fx) A + fx B) + fy ((16 - fx) C + fx D) + 127 + r) >> 8
 *
 *  An old sample outside of its plane is the nearest one inside, or has the fill colour, as the fill mode says. With
 *  the corners of both pictures on each other (displacements of the old size less the new one), fill mode 3 and one
 *  size twice the other, the results are those of doubling and of halving.
 *
 *  Memory. Exactly the planes are read and written, at any alignment; old and new ones must not overlap. Steps count
 *  bytes.
 *
 *  Status. Pointers, then sizes, steps and parameters, each in the order of the arguments. A call that fails writes
 *  nothing.
 */
#ifndef MOXVC_H263_RESAMPLING_H
#define MOXVC_H263_RESAMPLING_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

/** Resamples a picture of 4:2:0 in the general form.
 *  @param[in]  ppSrc       old Y, Cb, Cr
 *  @param[in]  pSrcStep    bytes between their rows
 *  @param[out] ppDst       new Y, Cb, Cr
 *  @param[in]  pDstStep    bytes between their rows
 *  @param      srcSize     old luma size; both even, 2 to 16384; chroma has half of it
 *  @param      dstSize     new luma size; likewise
 *  @param[in]  pCorner     displacements of the upper left, upper right, lower left and lower right corner, to the
 * right and down, in the unit of `wda`; each -32768 to 32767
 *  @param      wda         unit as transmitted: 2 half samples, 3 sixteenths
 *  @param      fillMode    old samples outside of a plane, as transmitted: 0 pFillColour, 1 black (16, 128, 128), 2
 * grey (128, 128, 128), 3 the nearest inside
 *  @param[in]  pFillColour Y, Cb, Cr; may be null unless fillMode is 0
 *  @param      rcrpr       rounding control, 0 or 1
 *  @retval moxStsNullPointer ppSrc, one of its planes, pSrcStep, ppDst, one of its planes, pDstStep, pCorner, or the
 *                            colour that fillMode 0 needs is null
 *  @retval moxStsBadSize     a size is illegal
 *  @retval moxStsBadStep     a step is smaller than the row of its plane
 *  @retval moxStsOutOfRange  a displacement, wda, fillMode or rcrpr is illegal */
MOX_API MoxStatus moxiResample_H263_8u_P3R(const Mox8u* const ppSrc[3], const Mox32s pSrcStep[3], Mox8u* const ppDst[3],
                                           const Mox32s pDstStep[3], MoxiSize srcSize, MoxiSize dstSize,
                                           const MoxiPoint pCorner[4], Mox32s wda, Mox32s fillMode,
                                           const Mox8u pFillColour[3], Mox32s rcrpr);

/** Doubles a plane both ways: four times the samples.
 *  @param[in]  pSrc    old plane
 *  @param      srcStep bytes between its rows
 *  @param[out] pDst    new plane, twice as wide and high
 *  @param      dstStep bytes between its rows
 *  @param      srcSize old width and height, 1 to 16384
 *  @param      rcrpr   rounding control, 0 or 1
 *  @retval moxStsNullPointer pSrc or pDst is null
 *  @retval moxStsBadSize     width or height is outside 1..16384
 *  @retval moxStsBadStep     a step is smaller than the row of its plane
 *  @retval moxStsOutOfRange  rcrpr is neither 0 nor 1 */
MOX_API MoxStatus moxiUpsampleFour_H263_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                               MoxiSize srcSize, Mox32s rcrpr);

/** Halves a plane both ways: a quarter of the samples. As moxiUpsampleFour_H263_8u_C1R, but pDst is half as wide and
 *  high as pSrc, and the old size must be even.
 *  @retval moxStsBadSize width or height is odd or outside 2..16384 */
MOX_API MoxStatus moxiDownsampleFour_H263_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                                 MoxiSize srcSize, Mox32s rcrpr);

/** Doubles a plane of a lower layer in one direction or both, halves upwards.
 *  @param[in]  pSrc      old plane
 *  @param      srcStep   bytes between its rows
 *  @param[out] pDst      new plane, twice the size in the directions that are doubled
 *  @param      dstStep   bytes between its rows
 *  @param      srcSize   old width and height, 1 to 16384
 *  @param      direction 1 rows become twice as long, 2 there are twice as many rows, 3 both
 *  @retval moxStsNullPointer pSrc or pDst is null
 *  @retval moxStsBadSize     width or height is outside 1..16384
 *  @retval moxStsBadStep     a step is smaller than the row of its plane; an illegal direction counts as 3
 *  @retval moxStsOutOfRange  direction is none of 1, 2 and 3 */
MOX_API MoxStatus moxiSpatialInterpolation_H263_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                                       MoxiSize srcSize, Mox32s direction);

MOX_END_DECLS

#endif
