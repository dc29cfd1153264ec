/** @file
 *  Deinterlacing of 8-bit planes. A frame holds two fields, the even and the odd rows; each filter keeps the rows of
 * one field and computes those of the other.
 *
 *  Samples. `width` and `height` are those of `roiSize`. A row of the region has `width` samples; "row r" is the one at
 *  pointer + r * step. Steps count bytes, may be negative and are not tested. Any alignment. A destination must not
 *  overlap a source. Flags of no other meaning are on when they are not zero. Field numbers (`fieldNum`, `topField`)
 * are 0 or 1 and not tested.
 *
 *  Edge value of column x between a row A above and a row B below, halves rounded up:
 *
 *      d1 = |A[x-1] - B[x+1]|,  d2 = |A[x+1] - B[x-1]|,  d0 = |A[x] - B[x]|
 *      (A[x-1] + B[x+1] + 1) >> 1     if d1 < d2 and d1 < d0
 *      (A[x+1] + B[x-1] + 1) >> 1     else if d2 <= d1 and d2 < d0
 *      (A[x]   + B[x]   + 1) >> 1     else
 *
 *  Memory. Nothing is read or written but the rows that a function names, `width` samples each. After an error nothing
 *  has been written. Rows that a function does not name keep what the destination holds.
 *
 *  Statuses. moxStsNullPointer for a null pointer, in argument order, then moxStsBadSize for a size below the one that
 * a function names. */
#ifndef MOXVC_DEINTERLACE_H
#define MOXVC_DEINTERLACE_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

/** Interpolates the rows of the missing field along edges, from one field alone.
 *
 *  `pSrc` holds one field, its rows adjacent at `srcStep`; `pDst` receives the rows between them, adjacent at
 * `dstStep`. Destination row j lies between source rows j - 1 and j with fieldNum 0, between rows j and j + 1 with
 * fieldNum 1. Its columns 1 to width - 2 are edge values; columns 0 and width - 1 are copied from source row j.
 *
 *      fieldNum  bCopyBorder  interpolated   copied   source rows read
 *      0         0            0 to h - 1     none     -1 to h - 1
 *      0         on           1 to h - 1     row 0    0 to h - 1
 *      1         0            0 to h - 1     none     0 to h
 *      1         on           0 to h - 2     row h-1  0 to h - 1
 *
 *  So without a copied border the caller's buffer holds row -1 or row h.
 *  @param[in]  pSrc        first sample of source row 0
 *  @param      srcStep     bytes between rows of the field
 *  @param[out] pDst        first sample of destination row 0
 *  @param      dstStep     bytes between interpolated rows
 *  @param      roiSize     width and height of one field, at least 1
 *  @param      fieldNum    0 or 1
 *  @param      bCopyBorder copy the row that has a neighbour on one side only
 *  @retval moxStsNullPointer pSrc or pDst is null
 *  @retval moxStsBadSize     width or height is below 1 */
MOX_API MoxStatus moxiDeinterlaceEdgeDetect_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                                   MoxiSize roiSize, Mox32s fieldNum, Mox32s bCopyBorder);

/** Filters a frame vertically with the weights s, c, s of 256, without rounding:
 *
 *      ((above + below) * s + here * c) >> 8,    c = min(centerWeight, 256),  s = (256 - c) >> 1
 *
 *  An odd c leaves a weight of 255 in all: flat areas become slightly darker.
 *
 *      layout      rows filtered   rows copied       source rows read
 *      1           1 to h - 2      row 0             0 to h - 1        upper part of a picture in strips
 *      4           -1 to h - 2     none              -2 to h - 1       middle part
 *      16          -1 to h - 2     row h - 1         -2 to h - 1       lower part
 *      any other   1 to h - 2      rows 0 and h - 1  0 to h - 1        whole picture
 *
 *  With layouts 4 and 16 row -1 is written too, and rows -1 and -2 are read. Row h - 1 is not written with layouts 1
 * and 4: it is row -1 of the next part.
 *  @param[in]  pSrc         first sample of source row 0
 *  @param      srcStep      bytes between source rows
 *  @param[out] pDst         first sample of destination row 0
 *  @param      dstStep      bytes between destination rows
 *  @param      roiSize      region
 *  @param      centerWeight weight of the sample itself; more than 256 counts as 256
 *  @param      layout       place of the region in the picture
 *  @retval moxStsNullPointer pSrc or pDst is null
 *  @retval moxStsBadSize     height is below 3 or width below 1 */
MOX_API MoxStatus moxiDeinterlaceFilterTriangle_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                                       MoxiSize roiSize, Mox32u centerWeight, Mox32s layout);

/** Replaces samples of one field by the median of their column where it is far enough from them.
 *
 *  In this order:
 *  -# Rows of the kept field are copied: h / 2 of them, rows 0, 2, 4 and so on with fieldNum 1, rows 1, 3, 5 and so on
 *     otherwise. (With fieldNum 1 and an odd height row h - 1 is left out.)
 *  -# With bCopyBorder rows 0 and h - 1 are copied, each with `srcStep` bytes, not `width`: both the source and the
 *     destination row must hold that many. Nothing is copied for a step below 1.
 *  -# Of the other field every second row is filtered: from row fieldNum up to below h, or with bCopyBorder from row
 *     2 - fieldNum up to below h - 1. With m the median of the samples above, here and below, the output is the sample
 *     itself if |m - sample| < threshold, and else m.
 *
 *  Without bCopyBorder row -1 is read with fieldNum 0, and row h if row h - 1 is one of the filtered rows.
 *  @param[in]  pSrc        first sample of source row 0
 *  @param      srcStep     bytes between source rows
 *  @param[out] pDst        first sample of destination row 0
 *  @param      dstStep     bytes between destination rows
 *  @param      roiSize     region
 *  @param      threshold   distance from which on the median replaces a sample; 0 and less: always
 *  @param      fieldNum    the filtered field: 0 even rows, 1 odd rows
 *  @param      bCopyBorder copy the first and the last row
 *  @retval moxStsNullPointer pSrc or pDst is null
 *  @retval moxStsBadSize     width is below 1 or height below 2 */
MOX_API MoxStatus moxiDeinterlaceMedianThreshold_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                                        MoxiSize roiSize, Mox32s threshold, Mox32s fieldNum,
                                                        Mox32s bCopyBorder);

/** Makes one frame of four: where nothing moves the missing field comes from the other frame, else it is interpolated
 *  where it combs.
 *
 *  F0 to F3 are consecutive. With topField equal to topFirst let c be 0, else 1; kept rows come from S = F[c+1].
 *  -# With copyField rows topField, topField + 2 and so on, h / 2 of them, are copied from S.
 *  -# With topField 0: an even height has row h - 1 copied from S, and interpolation starts at row 1. (With an odd
 *     height row h - 1 is not written.) With topField 1: row 0 is copied from S, for an odd height also row h - 1, and
 *     interpolation starts at row 2.
 *  -# Every second row r from there up to below h - 1, with C = F[c][r][x], N = S[r][x], up = S[r-1][x],
 *     down = S[r+1][x]:
 *     - A sample is still if |N - C| and, on both rows r - 1 and r + 1, |F1-F0|, |F1-F2|, |F1-F3|, |F2-F0| and |F2-F3|
 *       are all below threshold.
 *     - A still sample gives C if artifactProtection is 0.
 *     - Otherwise, with d 30 for a still sample and 6 for another: (up + down + 1) >> 1 if both up and down are below
 *       max(C - d, 0), or both are above min(C + d, 235), and else C.
 *
 *  Read are the rows r - 1 to r + 1 of all frames and the copied rows of S.
 *  @param[in]  ppSrc              F0 to F3: the first samples of row 0
 *  @param      srcStep            bytes between rows of each frame
 *  @param[out] pDst               first sample of destination row 0
 *  @param      dstStep            bytes between destination rows
 *  @param      roiSize            frame
 *  @param      threshold          differences below it count as still; 0 and less: none does
 *  @param      topFirst           the field that comes first, compared with topField
 *  @param      topField           parity of the kept rows, 0 or 1
 *  @param      copyField          copy the kept rows
 *  @param      artifactProtection test still samples for combing too
 *  @retval moxStsNullPointer ppSrc, pDst or one of the four frames is null
 *  @retval moxStsBadSize     width or height is below 1 */
MOX_API MoxStatus moxiDeinterlaceMotionAdaptive_8u_C1(const Mox8u* const ppSrc[4], Mox32s srcStep, Mox8u* pDst,
                                                      Mox32s dstStep, MoxiSize roiSize, Mox32s threshold,
                                                      Mox32s topFirst, Mox32s topField, Mox32s copyField,
                                                      Mox32s artifactProtection);

/** What moxiDeinterlaceBlend_8u_C1 makes of motion: the weight w = offset + m * slope of the edge value, limited to 0
 *  to 256, and 256 - w of the median. The fields may be read; the library alone changes them. */
typedef struct MoxiDeinterlaceBlendState {
  Mox16u* pLUT;      /**< 512 entries: [m] is w for the motion m of 0 to 255, [256 + m] is 256 - w */
  Mox32s slope;      /**< weight gained per unit of motion, in 256ths; not set where both thresholds are equal */
  Mox32s offset;     /**< weight at no motion, in 256ths; not set where both thresholds are equal */
  Mox32s motionHigh; /**< motion above this is all edge value */
  Mox32s motionLow;  /**< motion below this is all median */
} MoxiDeinterlaceBlendState;

/** Allocates and computes the weights of moxiDeinterlaceBlend_8u_C1.
 *
 *  The weight rises along a line through (blendThresh[0], blendConstants[0]) and (blendThresh[1], blendConstants[1]), a
 *  constant of 1.0 being the edge value alone. Both pairs are sorted in place into ascending order; then the larger
 *  constant is limited to at most 32767.0, the smaller to at least -32768.0. Called t0, t1, c0, c1:
 *
 *  t0 = t1: w is 0 below t0 and 256 from it on; motionHigh is t0 - 1, motionLow t0.
 *
 *  Else, in double precision, a = |(c1 - c0) / (t1 - t0)|, b = c1 - t1 * a; towards zero, S = (256 a + 0.5) and
 *  O = (256 b + 0.5) for b above 0, (256 b - 0.5) otherwise:
 *  - O of 257 and more: slope 0, offset 256, motionHigh 255, motionLow 0;
 *  - else with S not 0 and top = min(255 S + O, 256): a top below 0 gives slope 0, offset 0, motionHigh 255, motionLow
 *    256. If top - O exceeds 32767, O becomes top - 32767 and S becomes (256 c1 - O) / t1. Slope is S, offset O,
 *    motionHigh (256 - O) / S, at most 255, motionLow (-O) / S, less 1 if O is negative, at least 0;
 *  - else, also if S has become 0 or less: slope 0, offset max(O, 0), motionHigh 255, motionLow 256 if O is negative
 * and 0 if not.
 *
 *  Results beyond 32 bits are limited to them; what is no number counts as the least integer.
 *  @param         roiSize        frame, at least 3 x 3; nothing is kept of it
 *  @param[in,out] blendThresh    two thresholds of motion; not tested for null
 *  @param[in,out] blendConstants two weights; not tested for null
 *  @param[out]    ppState        the record; release it with moxiDeinterlaceBlendFree_8u_C1
 *  @retval moxStsNullPointer ppState is null
 *  @retval moxStsBadSize     width or height is below 3
 *  @retval moxStsNoMemory    there is no memory for the record: *ppState is unchanged; or none for its table: *ppState
 *                            is a record whose pLUT is null, to be released like any other */
MOX_API MoxStatus moxiDeinterlaceBlendInitAlloc_8u_C1(MoxiSize roiSize, Mox32s blendThresh[2], double blendConstants[2],
                                                      MoxiDeinterlaceBlendState** ppState);

/** Makes one frame of three: the missing field is a mean of edge value and median, weighted by motion.
 *
 *  P, Q, R are the previous, the current and the next frame; t is 1 if topField is on, else 0.
 *  -# With copyField the rows of parity t are copied from Q. With topField on, row 0 is copied from Q, with or without
 *     copyField. Row h - 1 is copied from Q if its parity is not t.
 *  -# All rows r between of the other parity, with A = Q[r-1], B = Q[r+1], C = Q[r], and O = P[r] if topFirst equals
 *     topField, else R[r]; each at its column x, halves rounded up:
 *
 *         e = (|A - P[r-1]| + |A - R[r-1]|) / 2,  g = (|B - P[r+1]| + |B - R[r+1]|) / 2
 *         m = max(|C - O|, (e + g) / 2)
 *         output = (E * pLUT[m] + M * pLUT[256 + m]) >> 8
 *
 *     M is the median of A, B and C; E is the edge value of A and B, and at columns 0 and width - 1 it is B if topField
 *     is on, else A.
 *
 *  Read are the three frames, `width` x `height`. The record is only read: threads may share it.
 *  @param[in]  ppSrc     P, Q, R: the first samples of row 0
 *  @param      srcStep   bytes between rows of each frame
 *  @param[out] pDst      first sample of destination row 0
 *  @param      dstStep   bytes between destination rows
 *  @param      roiSize   frame
 *  @param      topFirst  the field that comes first, compared with topField
 *  @param      topField  parity of the kept rows
 *  @param      copyField copy the kept rows
 *  @param[in]  pState    weights; must be a record, read before any test
 *  @retval moxStsNullPointer ppSrc, pDst, one of the three frames or the record's table is null
 *  @retval moxStsBadSize     width or height is below 3 */
MOX_API MoxStatus moxiDeinterlaceBlend_8u_C1(const Mox8u* const ppSrc[3], Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                             MoxiSize roiSize, Mox32s topFirst, Mox32s topField, Mox32s copyField,
                                             MoxiDeinterlaceBlendState* pState);

/** Releases the record and its table.
 *  @retval moxStsNullPointer pState is null */
MOX_API MoxStatus moxiDeinterlaceBlendFree_8u_C1(MoxiDeinterlaceBlendState* pState);

MOX_END_DECLS

#endif
