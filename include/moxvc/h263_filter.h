/** @file
 *  H.263 filters across block edges, in place: the deblocking filter (ITU-T H.263 Annex J), the same filter without a
 *  limit of its strength, and a smoothing of the two samples at a block boundary.
 *
 *  Edges. A HorEdge form filters across the edge above the row of `pSrcDst`, a VerEdge form across the edge left of its
 *  column; `pSrcDst` is the first sample behind the edge at the edge's first position. The 8x8 forms filter 8 positions
 *  along the edge, all others 16. A, B | C, D are the samples across the edge at one position, C being the one behind
 *  the edge. All new values come from the old ones of the same position; the positions do not depend on each other.
 *
 *  Deblocking, with / towards zero, S the strength of the quantiser, and values limited to 0..255:
 *
 *      d = (4 C - 4 B + A - D) / 8
 *      r = max(0, |d| - max(0, 2 (|d| - S)))          8x8 forms: |d| up to S, from there down to 0 at 2 S
 *      r = |d|                                        16x16 forms
 *      B' = B + s, C' = C - s                         where s is r with the sign of d
 *      A' = A - t, D' = D + t                         where t is (A - D) / 4 limited to -(r >> 1)..r >> 1
 *
 *      QP    1-2   3-4   5-6   7-9  10-11 12-13 14-16 17-19 20-22 23-25 26-28 29-31
 *      S      1     2     3     4     5     6     7     8     9    10    11    12
 *
 *  Block boundary: B' = (3 B + C + 2) >> 2, C' = (B + 3 C + 2) >> 2.
 *
 *  Memory. The deblocking forms read and write two samples on both sides of the edge, the block-boundary forms one, at
 *  the positions of the edge, and nothing else. Any alignment. Two edges that share samples must not be filtered at the
 *  same time; their order is the caller's.
 *
 *  Steps count bytes. The type is unsigned, the value is taken as signed: a negative step is passed converted. It is
 *  not tested. The result is not defined where rows overlap.
 *
 *  Status. moxStsNullPointer if `pSrcDst` is null; then, in the 8x8 forms, moxStsBadQp if `QP` is none of 1..31; in
 *  both cases nothing is written.
 */
#ifndef MOXVC_H263_FILTER_H
#define MOXVC_H263_FILTER_H

#include "types.h"

MOX_BEGIN_DECLS

/** Deblocks a horizontal edge of 8 columns.
 *  @param[in,out] pSrcDst first sample of the row below the edge; rows -2 to 1 change
 *  @param srcDstStep      bytes between rows
 *  @param QP              quantiser, 1 to 31
 *  @retval moxStsNullPointer pSrcDst is null
 *  @retval moxStsBadQp       QP is outside 1..31 */
MOX_API MoxStatus moxiFilterDeblocking8x8HorEdge_H263_8u_C1IR(Mox8u* pSrcDst, Mox32u srcDstStep, Mox32s QP);

/** Deblocks a vertical edge of 8 rows; pSrcDst is the first sample of the column right of the edge, columns -2 to 1
 *  change. Otherwise as moxiFilterDeblocking8x8HorEdge_H263_8u_C1IR. */
MOX_API MoxStatus moxiFilterDeblocking8x8VerEdge_H263_8u_C1IR(Mox8u* pSrcDst, Mox32u srcDstStep, Mox32s QP);

/** Deblocks a horizontal edge of 16 columns without a limit of the strength.
 *  @param[in,out] pSrcDst first sample of the row below the edge; rows -2 to 1 change
 *  @param srcDstStep      bytes between rows
 *  @retval moxStsNullPointer pSrcDst is null */
MOX_API MoxStatus moxiFilterDeblocking16x16HorEdge_H263_8u_C1IR(Mox8u* pSrcDst, Mox32u srcDstStep);

/** Deblocks a vertical edge of 16 rows without a limit of the strength; pSrcDst is the first sample of the column right
 *  of the edge, columns -2 to 1 change. Otherwise as moxiFilterDeblocking16x16HorEdge_H263_8u_C1IR. */
MOX_API MoxStatus moxiFilterDeblocking16x16VerEdge_H263_8u_C1IR(Mox8u* pSrcDst, Mox32u srcDstStep);

/** Smooths a horizontal block boundary of 16 columns.
 *  @param[in,out] pSrcDst first sample of the row below the boundary; rows -1 and 0 change
 *  @param srcDstStep      bytes between rows
 *  @retval moxStsNullPointer pSrcDst is null */
MOX_API MoxStatus moxiFilterBlockBoundaryHorEdge_H263_8u_C1IR(Mox8u* pSrcDst, Mox32u srcDstStep);

/** Smooths a vertical block boundary of 16 rows; pSrcDst is the first sample of the column right of the boundary,
 *  columns -1 and 0 change. Otherwise as moxiFilterBlockBoundaryHorEdge_H263_8u_C1IR. */
MOX_API MoxStatus moxiFilterBlockBoundaryVerEdge_H263_8u_C1IR(Mox8u* pSrcDst, Mox32u srcDstStep);

MOX_END_DECLS

#endif
