/** @file
 *  VC-1 filters: the in-loop deblocking filter (SMPTE 421M 8.6), overlap smoothing (8.5) and range mapping (6.2.15,
 *  8.1.1.4). The arithmetic is the standard's; forms, arguments and masks are this library's own, and what this page
 *  says is all that is promised.
 *
 *  Edges. A HorEdge form works across the edge above a row, a VerEdge form across the edge left of a column, and the
 *  pointers are those of the first sample of that row or column, behind the edge, at the edge's first line. A line is
 *  the row of samples across the edge at one position of it. A Luma form works on the 16 lines of one edge of a
 *  macroblock, a Chroma form on 8. Which edges to filter, and in what order, is for the caller to say; two edges that
 *  share samples must not be filtered at the same time.
 *
 *  Deblocking, in place. Segment i of an edge holds its lines 4 i to 4 i + 3, and bit i of `segmentMask` asks for it:
 *  bits 0 to 3 in luma, 0 and 1 in chroma. In C2IR forms, on interleaved pairs, bits 0 and 1 ask for the segments of
 *  the first channel, bits 2 and 3 for those of the second. Of a line P1 P2 P3 P4 | P5 P6 P7 P8, with / towards zero:
 *
 *      a0 = (2 (P3 - P6) - 5 (P4 - P5) + 4) >> 3
 *      a1 = (2 (P1 - P4) - 5 (P2 - P3) + 4) >> 3
 *      a2 = (2 (P5 - P8) - 5 (P6 - P7) + 4) >> 3
 *      a3 = min(|a1|, |a2|)
 *      c  = (P4 - P5) / 2
 *      d  = 5 (a3 - a0) / 8 if a0 > 0, 5 (-a3 - a0) / 8 if a0 < 0, limited to the range between 0 and c
 *
 *  A line is a candidate if |a0| < pquant, a3 < |a0| and c is not 0. Its samples become P4' = P4 - d, P5' = P5 + d, no
 *  others change. The third line of a segment decides: if it is no candidate, the segment stays as it is, otherwise
 *  the candidates among its four lines change. It decides even where its own d is limited to 0.
 *
 *  Overlap smoothing, of samples of intra blocks before 128 is added, in 16 bits. A line x0 x1 | x2 x3 becomes
 *
 *      y0 = (7 x0 + x3 + r) >> 3
 *      y1 = (-x0 + 7 x1 + x2 + x3 + q) >> 3
 *      y2 = (x0 + x1 + 7 x2 - x3 + r) >> 3
 *      y3 = (x0 + 7 x3 + q) >> 3
 *
 *  with r = 4, q = 3 in even lines and r = 3, q = 4 in odd ones. Of a sum the low 16 bits are kept, as a signed number:
 *  all of it for samples of -3276..3276, and those of a stream are smaller. The samples lie in a 16-bit plane, or in a
 *  strip that holds a macroblock and its neighbours. The new ones are written back to it and, with 128 added and
 *  limited to 0..255, to the 8-bit picture at `pDst`. So a decoder
 *
 *  1. stores the samples of a block in both, the picture for instance by moxiAdd8x8_16s8u_C1IRS on a block of 128;
 *  2. smooths the vertical edges between intra blocks, those inside the macroblock and the one on its left;
 *  3. smooths the horizontal edges once both vertical edges of their columns are done, that is, those of the macroblock
 *     on the left;
 *
 *  and the picture is complete, whichever edges were smoothed. In luma bit i of `blockMask` asks for the lines 8 i to
 *  8 i + 7, bits 0 and 1; chroma has 8 lines and no mask. P2C2R forms take two 16-bit planes and write the interleaved
 *  pairs of an NV12 picture.
 *
 *  Range mapping. y' = (((y - 128) (rangeMap + 9) + 4) >> 3) + 128, limited to 0..255, for each sample of a plane. A
 *  rangeMap of 7 doubles, as a picture of reduced range needs it.
 *
 *  Memory. Deblocking reads the four samples on both sides of all lines of an edge, whatever the mask, and writes their
 *  P4 and P5, with the same value where nothing changes; with mask 0 it touches nothing. Smoothing reads and writes the
 *  two samples on both sides of the lines asked for; of the picture it reads none. Range mapping reads and writes the
 *  samples of the plane and nothing between its rows. Any alignment.
 *
 *  Steps count bytes, may be negative and are not tested. The result is not defined where rows overlap.
 *
 *  Status, in this order; unless it is moxStsOk, nothing has been written: moxStsNullPointer if a pointer is null,
 *  moxStsBadSize if the width or the height is below 1, moxStsBadQp if pquant is none of 1..31, moxStsOutOfRange if a
 *  mask has another bit than those named above, or rangeMap is none of 0..7. */
#ifndef MOXVC_VC1_FILTER_H
#define MOXVC_VC1_FILTER_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

/** Deblocks a vertical edge of 16 rows.
 *  @param[in,out] pSrcDst first sample right of the edge; columns -4 to 3 are read, -1 and 0 change
 *  @param srcDstStep      bytes between rows
 *  @param pquant          quantiser of the picture, 1 to 31
 *  @param segmentMask     segments to filter, bits 0 to 3
 *  @retval moxStsNullPointer pSrcDst is null
 *  @retval moxStsBadQp       pquant is outside 1..31
 *  @retval moxStsOutOfRange  segmentMask is above 15 */
MOX_API MoxStatus moxiFilterDeblockingLuma_VerEdge_VC1_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32s pquant,
                                                               Mox32u segmentMask);

/** Deblocks a horizontal edge of 16 columns; pSrcDst is the first sample below the edge, rows -4 to 3 are read,
 *  -1 and 0 change. Otherwise as moxiFilterDeblockingLuma_VerEdge_VC1_8u_C1IR. */
MOX_API MoxStatus moxiFilterDeblockingLuma_HorEdge_VC1_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32s pquant,
                                                               Mox32u segmentMask);

/** Deblocks a vertical edge of 8 rows.
 *  @param[in,out] pSrcDst first sample right of the edge; columns -4 to 3 are read, -1 and 0 change
 *  @param srcDstStep      bytes between rows
 *  @param pquant          quantiser of the picture, 1 to 31
 *  @param segmentMask     segments to filter, bits 0 and 1
 *  @retval moxStsNullPointer pSrcDst is null
 *  @retval moxStsBadQp       pquant is outside 1..31
 *  @retval moxStsOutOfRange  segmentMask is above 3 */
MOX_API MoxStatus moxiFilterDeblockingChroma_VerEdge_VC1_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32s pquant,
                                                                 Mox32u segmentMask);

/** Deblocks a horizontal edge of 8 columns; pSrcDst is the first sample below the edge, rows -4 to 3 are read, -1 and 0
 *  change. Otherwise as moxiFilterDeblockingChroma_VerEdge_VC1_8u_C1IR. */
MOX_API MoxStatus moxiFilterDeblockingChroma_HorEdge_VC1_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32s pquant,
                                                                 Mox32u segmentMask);

/** Deblocks a vertical edge of 8 rows of interleaved pairs, each channel by itself.
 *  @param[in,out] pSrcDst first sample of the pair right of the edge; pairs -4 to 3 are read, -1 and 0 change
 *  @param srcDstStep      bytes between rows
 *  @param pquant          quantiser of the picture, 1 to 31
 *  @param segmentMask     segments to filter, bits 0 and 1 of the first channel, bits 2 and 3 of the second
 *  @retval moxStsNullPointer pSrcDst is null
 *  @retval moxStsBadQp       pquant is outside 1..31
 *  @retval moxStsOutOfRange  segmentMask is above 15 */
MOX_API MoxStatus moxiFilterDeblockingChroma_VerEdge_VC1_8u_C2IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32s pquant,
                                                                 Mox32u segmentMask);

/** Deblocks a horizontal edge of 8 columns of interleaved pairs; pSrcDst is the first sample of the pair below the
 *  edge, rows -4 to 3 are read, -1 and 0 change. Otherwise as moxiFilterDeblockingChroma_VerEdge_VC1_8u_C2IR. */
MOX_API MoxStatus moxiFilterDeblockingChroma_HorEdge_VC1_8u_C2IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32s pquant,
                                                                 Mox32u segmentMask);

/** Smooths a vertical edge of 16 rows between intra blocks.
 *  @param[in,out] pSrcDst first 16-bit sample right of the edge; columns -2 to 1 change
 *  @param srcDstStep      bytes between rows of the 16-bit plane
 *  @param[out] pDst       the same position in the picture; columns -2 to 1 are written
 *  @param dstStep         bytes between rows of the picture
 *  @param blockMask       blocks to smooth, bit 0 for rows 0 to 7, bit 1 for rows 8 to 15
 *  @retval moxStsNullPointer a pointer is null
 *  @retval moxStsOutOfRange  blockMask is above 3 */
MOX_API MoxStatus moxiSmoothingLuma_VerEdge_VC1_16s8u_C1R(Mox16s* pSrcDst, Mox32s srcDstStep, Mox8u* pDst,
                                                          Mox32s dstStep, Mox32u blockMask);

/** Smooths a horizontal edge of 16 columns between intra blocks; the pointers are those of the first sample below the
 *  edge, rows -2 to 1 change. Otherwise as moxiSmoothingLuma_VerEdge_VC1_16s8u_C1R. */
MOX_API MoxStatus moxiSmoothingLuma_HorEdge_VC1_16s8u_C1R(Mox16s* pSrcDst, Mox32s srcDstStep, Mox8u* pDst,
                                                          Mox32s dstStep, Mox32u blockMask);

/** Smooths a vertical edge of 8 rows between intra blocks.
 *  @param[in,out] pSrcDst first 16-bit sample right of the edge; columns -2 to 1 change
 *  @param srcDstStep      bytes between rows of the 16-bit plane
 *  @param[out] pDst       the same position in the picture; columns -2 to 1 are written
 *  @param dstStep         bytes between rows of the picture
 *  @retval moxStsNullPointer a pointer is null */
MOX_API MoxStatus moxiSmoothingChroma_VerEdge_VC1_16s8u_C1R(Mox16s* pSrcDst, Mox32s srcDstStep, Mox8u* pDst,
                                                            Mox32s dstStep);

/** Smooths a horizontal edge of 8 columns between intra blocks; the pointers are those of the first sample below the
 *  edge, rows -2 to 1 change. Otherwise as moxiSmoothingChroma_VerEdge_VC1_16s8u_C1R. */
MOX_API MoxStatus moxiSmoothingChroma_HorEdge_VC1_16s8u_C1R(Mox16s* pSrcDst, Mox32s srcDstStep, Mox8u* pDst,
                                                            Mox32s dstStep);

/** Smooths a vertical edge of 8 rows between intra blocks in both chroma planes.
 *  @param[in,out] pSrcDstU first 16-bit sample of U right of the edge; columns -2 to 1 change
 *  @param[in,out] pSrcDstV the same of V
 *  @param srcDstStep       bytes between rows of both 16-bit planes
 *  @param[out] pDst        the pair of U and V at the same position of the picture; pairs -2 to 1 are written
 *  @param dstStep          bytes between rows of the picture
 *  @retval moxStsNullPointer a pointer is null */
MOX_API MoxStatus moxiSmoothingChroma_VerEdge_VC1_16s8u_P2C2R(Mox16s* pSrcDstU, Mox16s* pSrcDstV, Mox32s srcDstStep,
                                                              Mox8u* pDst, Mox32s dstStep);

/** Smooths a horizontal edge of 8 columns between intra blocks in both chroma planes; the pointers are those of the
 *  first sample or pair below the edge, rows -2 to 1 change. Otherwise as
 *  moxiSmoothingChroma_VerEdge_VC1_16s8u_P2C2R. */
MOX_API MoxStatus moxiSmoothingChroma_HorEdge_VC1_16s8u_P2C2R(Mox16s* pSrcDstU, Mox16s* pSrcDstV, Mox32s srcDstStep,
                                                              Mox8u* pDst, Mox32s dstStep);

/** Maps the range of a plane.
 *  @param[in] pSrc   width x height samples
 *  @param srcStep    bytes between rows
 *  @param[out] pDst  the mapped samples; pDst may be pSrc with the same step, other overlaps give no defined result
 *  @param dstStep    bytes between rows
 *  @param roiSize    size of the plane; of interleaved pairs the width counts samples, two for each pair
 *  @param rangeMap   0 to 7: the range grows by (rangeMap + 9) / 8
 *  @retval moxStsNullPointer pSrc or pDst is null
 *  @retval moxStsBadSize     the width or the height is below 1
 *  @retval moxStsOutOfRange  rangeMap is outside 0..7 */
MOX_API MoxStatus moxiRangeMapping_VC1_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                              MoxiSize roiSize, Mox32s rangeMap);

MOX_END_DECLS

#endif
