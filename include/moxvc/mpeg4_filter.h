/** @file
 *  MPEG-4 post filters, for pictures that are shown and not predicted from (ISO/IEC 14496-2 Annex F.3): deblocking of
 * an edge between 8x8 blocks, in place, and deringing of a picture.
 *
 *  Below, / cuts off towards zero, // rounds to the nearest, halves away from zero.
 *
 *  Deblocking. A HorEdge form filters across the edge above the row of `pSrcDst`, a VerEdge form across the edge left
 * of its column; `pSrcDst` is the first sample behind the edge, at the first of its 8 positions, which do not depend on
 *  each other. v0 to v9 are the samples across the edge at one position, v4 | v5 being next to it. The position is flat
 *  if 6 or more of the 9 differences v(n + 1) - v(n) are within -2..2.
 *
 *      flat     if the greatest and the least of v1..v8 differ by less than 2 QP, else nothing changes:
 *               v(n)' = (p(n-4) + p(n-3) + 2 p(n-2) + 2 p(n-1) + 4 p(n)
 *                        + 2 p(n+1) + 2 p(n+2) + p(n+3) + p(n+4) + 8) >> 4                    for n of 1..8
 *               p(m) = v(m), but for m < 1 v0 if |v1 - v0| < QP, else v1;
 *                            for m > 8 v9 if |v8 - v9| < QP, else v8
 *      else     a0 = (2 v3 - 5 v4 + 5 v5 - 2 v6) // 8
 *               a1 = (2 v1 - 5 v2 + 5 v3 - 2 v4) // 8
 *               a2 = (2 v5 - 5 v6 + 5 v7 - 2 v8) // 8
 *               a  = the least of |a0|, |a1| and |a2| with the sign of a0
 *               d  = 5 (a - a0) // 8, limited to between 0 and (v4 - v5) / 2
 *               v4' = v4 - d, v5' = v5 + d                                                    if |a0| < QP
 *
 *  All new values come from the old ones of the same position. A picture is deblocked along all horizontal edges, then
 *  along all vertical ones, each with the quantiser of the macroblock behind it. A position is read over 5 samples on
 *  both sides of the edge, and 4 on both sides may be written.
 *
 *  Deringing smooths 8x8 blocks where there is no edge, and leaves edges as they are. Of each block let
 *
 *      thr = (greatest sample + least sample + 1) >> 1,   range = greatest sample - least sample
 *
 *  and among the four luma blocks of a macroblock let m be the first of those with the greatest range. For each of them
 *
 *      thr = thr of m     if range is below 32 and range of m is 64 or more
 *      thr = 0            if range of m is below 16
 *
 *  A sample is smoothed if it and the 8 samples around it are all of them below thr of its own block, or none is:
 *
 *      s' = (sum of the 9 samples with weights 1 2 1 / 2 4 2 / 1 2 1, + 8) >> 4,
 *           limited to s - (QP >> 1)..s + (QP >> 1)
 *
 *  and else is copied. The samples around it may lie in other blocks, and have the value of the nearest sample inside
 *  where they are outside the picture. All are those of the source: no result has a part in another. QP is that of the
 *  macroblock.
 *
 *  Steps count bytes, may be negative and are not tested; the result is not defined where rows overlap. Any alignment.
 *
 *  Status. Null pointers in the order of the arguments, then other tests as told at each function; nothing is written
 *  then.
 */
#ifndef MOXVC_MPEG4_FILTER_H
#define MOXVC_MPEG4_FILTER_H

#include "types.h"

MOX_BEGIN_DECLS

/** Deblocks a horizontal edge of 8 columns.
 *  @param[in,out] pSrcDst first sample of the row below the edge; rows -5 to 4 are read, rows -4 to 3 change
 *  @param srcDstStep      bytes between rows
 *  @param QP              quantiser, 1 to 31
 *  @retval moxStsNullPointer pSrcDst is null
 *  @retval moxStsBadQp       QP is outside 1..31 */
MOX_API MoxStatus moxiFilterDeblocking8x8HorEdge_MPEG4_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32s QP);

/** Deblocks a vertical edge of 8 rows; pSrcDst is the first sample of the column right of the edge, columns -5 to 4 are
 *  read, columns -4 to 3 change. Otherwise as moxiFilterDeblocking8x8HorEdge_MPEG4_8u_C1IR. */
MOX_API MoxStatus moxiFilterDeblocking8x8VerEdge_MPEG4_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32s QP);

/** Derings a 4:2:0 picture of whole macroblocks. Reads and writes the planes' samples; no destination may overlap what
 *  is read.
 *  @param[in]  pSrcY    luma, roiSize
 *  @param      srcYStep bytes between its rows
 *  @param[in]  pSrcU    chroma, half as wide and high
 *  @param      srcUStep bytes between its rows
 *  @param[in]  pSrcV    chroma, half as wide and high
 *  @param      srcVStep bytes between its rows
 *  @param[out] pDstY    luma
 *  @param      dstYStep bytes between its rows
 *  @param[out] pDstU    chroma
 *  @param      dstUStep bytes between its rows
 *  @param[out] pDstV    chroma
 *  @param      dstVStep bytes between its rows
 *  @param      roiSize  of luma: multiples of 16 above 0
 *  @param[in]  pQP      quantiser of each macroblock, 0 to 255; 0 and 1 leave it as it is
 *  @param      qpStep   bytes between the quantisers of two rows of macroblocks
 *  @retval moxStsNullPointer pSrcY, pSrcU, pSrcV, pDstY, pDstU, pDstV or pQP is null
 *  @retval moxStsBadSize     a width or height is below 16 or no multiple of it */
MOX_API MoxStatus moxiFilterDeringingThreshold_MPEG4_8u_P3R(const Mox8u* pSrcY, Mox32s srcYStep, const Mox8u* pSrcU,
                                                            Mox32s srcUStep, const Mox8u* pSrcV, Mox32s srcVStep,
                                                            Mox8u* pDstY, Mox32s dstYStep, Mox8u* pDstU,
                                                            Mox32s dstUStep, Mox8u* pDstV, Mox32s dstVStep,
                                                            MoxiSize roiSize, const Mox8u* pQP, Mox32s qpStep);

MOX_END_DECLS

#endif
