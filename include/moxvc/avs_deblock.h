/** @file
 *  AVS in-loop deblocking of macroblock edges (GB/T 20090.2, 9.11), 8-bit 4:2:0, in place.
 *
 *  A luma call filters the two vertical edges (Ver) or the two horizontal edges (Hor) of one macroblock: edge 0, the
 *  left or the upper one of the macroblock, then edge 1, at column or row 8, on what edge 0 has left behind. A chroma
 *  call filters edge 0 of one 8 x 8 plane. The caller goes over a picture macroblock by macroblock and filters the
 *  vertical edges of each before its horizontal ones.
 *
 *  Strengths and thresholds. The caller works out the strengths and looks up alpha, beta and the clipping limit C by
 *  the QP of the edge, in the mean of the two blocks' QPs (chroma: of their chroma QPs) plus the picture's offsets.
 *  `pAlpha`, `pBeta` and `pThresholds` (C) hold one value for each edge, so two for luma, one for chroma. `pBs` holds
 *  two strengths for each edge, one for each half of its lines: 4 for luma, in the order edge 0, edge 1, and 2 for
 *  chroma.
 *
 *  The standard's values by index, that is by QP plus offset limited to 0..63 (C by the index of alpha):
 *
 *       0 .. 15  alpha  0  0  0  0  0  0  1  1  1  1  1  2  2  2  3  3
 *                beta   0  0  0  0  0  0  1  1  1  1  1  1  1  2  2  2
 *                C      0  0  0  0  0  0  0  0  0  0  0  0  0  0  0  0
 *      16 .. 31  alpha  4  4  5  5  6  7  8  9 10 11 12 13 15 16 18 20
 *                beta   2  2  3  3  3  3  4  4  4  4  5  5  5  5  6  6
 *                C      1  1  1  1  1  1  1  1  1  1  1  1  1  1  2  2
 *      32 .. 47  alpha 22 24 26 28 30 33 33 35 35 36 37 37 39 39 42 44
 *                beta   6  7  7  7  8  8  8  9  9 10 10 11 11 12 13 14
 *                C      2  2  2  2  2  2  3  3  3  3  3  3  3  4  4  4
 *      48 .. 63  alpha 46 48 50 52 53 54 55 56 57 58 59 60 61 62 63 64
 *                beta  15 16 17 18 19 20 21 22 23 23 24 24 25 25 26 27
 *                C      5  5  5  6  6  6  7  7  7  7  8  8  8  9  9  9
 *
 *  Filter. A line p2 p1 p0 | q0 q1 q2 across an edge is changed only if its strength is not 0, |p0 - q0| is below
 *  alpha, and |p1 - p0| and |q1 - q0| are below beta. Say ap if |p2 - p0| < beta, aq if |q2 - q0| < beta, all of old
 *  samples.
 *
 *  Strength 2 and above: if ap and |p0 - q0| < (alpha >> 2) + 2, then p0' = (p1 + 2 p0 + q0 + 2) >> 2 and, in luma,
 *  p1' = (2 p1 + p0 + q0 + 2) >> 2; else p0' = (2 p1 + p0 + q0 + 2) >> 2. The same on the other side with aq, p and q
 *  exchanged.
 *
 *  Strength 1, values limited to 0..255 and `clip` limiting to -C..C:
 *
 *      d = clip((3 (q0 - p0) + p1 - q1 + 4) >> 3)       p0' = p0 + d, q0' = q0 - d
 *      luma, if ap: p1' = p1 + clip((3 (p0' - p1) + p2 - q0' + 4) >> 3)
 *      luma, if aq: q1' = q1 - clip((3 (q1 - q0') + p0' - q2 + 4) >> 3)
 *
 *  Memory. Hor forms read three samples on each side of an edge, Ver forms four; luma changes two, chroma one. Half an
 *  edge of luma, and an edge of chroma, is passed over if it has no strength but 0: no sample of it is read. Any
 *  alignment. Two macroblocks that share an edge must not be filtered
 *  at the same time.
 *
 *  Steps count bytes, may be negative, and are not tested. The result is not defined where rows overlap. Of the
 *  calculation, nothing is promised but what stands here.
 *
 *  Status. moxStsNullPointer if a pointer is null; nothing is written then. Nothing else is tested.
 */
#ifndef MOXVC_AVS_DEBLOCK_H
#define MOXVC_AVS_DEBLOCK_H

#include "types.h"

MOX_BEGIN_DECLS

/** Vertical luma edges of a macroblock.
 *  @param[in,out] pSrcDst first sample of the macroblock; columns -4 to 11 of 16 rows
 *  @param srcDstStep      bytes between rows
 *  @param[in] pAlpha      2 values
 *  @param[in] pBeta       2 values
 *  @param[in] pThresholds 2 values of C
 *  @param[in] pBs         4 strengths: rows 0 to 7 and 8 to 15 of column 0, then of column 8
 *  @retval moxStsNullPointer a pointer is null */
MOX_API MoxStatus moxiFilterDeblockingLuma_VerEdge_AVS_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, const Mox8u* pAlpha,
                                                               const Mox8u* pBeta, const Mox8u* pThresholds,
                                                               const Mox8u* pBs);

/** Horizontal luma edges of a macroblock: as moxiFilterDeblockingLuma_VerEdge_AVS_8u_C1IR with rows and columns
 *  exchanged, on rows -3 to 10. */
MOX_API MoxStatus moxiFilterDeblockingLuma_HorEdge_AVS_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, const Mox8u* pAlpha,
                                                               const Mox8u* pBeta, const Mox8u* pThresholds,
                                                               const Mox8u* pBs);

/** Left edge of an 8 x 8 chroma plane.
 *  @param[in,out] pSrcDst first sample of the block; columns -4 to 3 of 8 rows
 *  @param srcDstStep      bytes between rows
 *  @param[in] pAlpha      1 value
 *  @param[in] pBeta       1 value
 *  @param[in] pThresholds 1 value of C
 *  @param[in] pBs         2 strengths, those of edge 0 of luma: rows 0 to 3 and 4 to 7
 *  @retval moxStsNullPointer a pointer is null */
MOX_API MoxStatus moxiFilterDeblockingChroma_VerEdge_AVS_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, const Mox8u* pAlpha,
                                                                 const Mox8u* pBeta, const Mox8u* pThresholds,
                                                                 const Mox8u* pBs);

/** Upper edge of an 8 x 8 chroma plane: as moxiFilterDeblockingChroma_VerEdge_AVS_8u_C1IR with rows and columns
 *  exchanged, on rows -3 to 2. */
MOX_API MoxStatus moxiFilterDeblockingChroma_HorEdge_AVS_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, const Mox8u* pAlpha,
                                                                 const Mox8u* pBeta, const Mox8u* pThresholds,
                                                                 const Mox8u* pBs);

MOX_END_DECLS

#endif
