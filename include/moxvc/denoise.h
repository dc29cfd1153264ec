/** @file
 *  Noise filters of 8-bit planes: a temporal one that averages near samples of three frames, and a spatial one that
 *  averages away from edges.
 *
 *  Rectangles. `srcRoiSize` is the source region, whose first sample the source pointers point to. Filtered is the
 *  destination rectangle: `dstRoiSize` samples at `dstOffset` in the source region. Its first sample goes to pDst.
 * Samples do not depend on how a region is cut into rectangles, and none outside the source region is read.
 *
 *  Steps count bytes. Any alignment. The destination must not overlap a source. Written are the dstRoiSize samples at
 *  pDst, and nothing after an error. */
#ifndef MOXVC_DENOISE_H
#define MOXVC_DENOISE_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

/** What the adaptive filter needs for its means. The fields may be read; the library alone changes them. */
typedef struct MoxiDenoiseAdaptiveState {
  MoxiSize maskSize;   /**< half-widths of the window */
  MoxiSize maxRoiSize; /**< largest region, as given; the filter does not test it */
  Mox16u* pRecip;      /**< [n] is 65535 / n rounded, halves up; [0] is 1 */
} MoxiDenoiseAdaptiveState;

/** Allocates a record for windows of (2 maskSize.width + 1) x (2 maskSize.height + 1) samples. With m the larger of the
 *  two half-widths its table has 3 (2 m + 1)^2 + 1 entries.
 *  @param[out] ppState    the record; release it with moxiFilterDenoiseAdaptiveFree_8u_C1
 *  @param      maxRoiSize largest region that will be filtered
 *  @param      maskSize   half-widths of the window
 *  @retval moxStsNullPointer ppState is null
 *  @retval moxStsBadSize     a width or height is below 1, or one of maxRoiSize is below that of maskSize
 *  @retval moxStsNoMemory    there is no memory for the record: *ppState is unchanged; or none for its table: *ppState
 *                            is a record whose pRecip is null, to be released and not to be used */
MOX_API MoxStatus moxiFilterDenoiseAdaptiveInitAlloc_8u_C1(MoxiDenoiseAdaptiveState** ppState, MoxiSize maxRoiSize,
                                                           MoxiSize maskSize);

/** Averages the window around each sample c of the current frame with near samples of its neighbours.
 *
 *  The window is the rectangle of half-widths maskSize around the sample, cut to the source region. s and n are the sum
 *  and the count of the current frame's samples in it, sp and cp those of the previous frame's samples p with
 *  |c - p| < threshold, sn and cn those of the next frame's likewise. The output is
 *
 *      ((s + sp + sn) * pRecip[n + cp + cn]) >> 16
 *
 *  with sp = cp = 0 unless bit 0 of temporalFlags is set, and sn = cn = 0 unless bit 1 is. Only the low 8 bits are
 *  stored; more come up in windows of half-width 7 and beyond alone, in nearly white areas, where the rounding of
 *  pRecip passes 255.
 *  @param[in]  ppSrc         previous, current and next frame; none may be null, also one that is not used
 *  @param      srcStep       bytes between rows of each frame, may be negative, not tested
 *  @param[out] pDst          first sample of the destination rectangle
 *  @param      dstStep       bytes between destination rows, may be negative, not tested
 *  @param      srcRoiSize    source region
 *  @param      maskSize      half-widths of the window, those of the record
 *  @param      dstOffset     place of the destination rectangle in the source region
 *  @param      dstRoiSize    size of the destination rectangle
 *  @param      threshold     differences below it count as near; 0 and less: none does
 *  @param      temporalFlags 0 the current frame alone, 1 with the previous, 2 with the next, 3 with both
 *  @param[in]  pState        record; only read, threads may share it
 *  @return the positive value 1, with nothing written, if temporalFlags is outside 0..3 and all else is in order
 *  @retval moxStsNullPointer ppSrc, pDst, pState or one of the three frames is null
 *  @retval moxStsBadSize     a width or height is below 1, the destination rectangle is not inside the source region,
 * or maskSize is not that of the record */
MOX_API MoxStatus moxiFilterDenoiseAdaptive_8u_C1R(const Mox8u* const ppSrc[3], Mox32s srcStep, Mox8u* pDst,
                                                   Mox32s dstStep, MoxiSize srcRoiSize, MoxiSize maskSize,
                                                   MoxiPoint dstOffset, MoxiSize dstRoiSize, Mox32s threshold,
                                                   Mox32s temporalFlags, const MoxiDenoiseAdaptiveState* pState);

/** Releases the record and its table.
 *  @retval moxStsNullPointer pState is null */
MOX_API MoxStatus moxiFilterDenoiseAdaptiveFree_8u_C1(MoxiDenoiseAdaptiveState* pState);

/** Averages each sample with its neighbours, where neither lies on an edge.
 *
 *  For the source region of W x H samples S:
 *  -# L(x, y), for x of 1 to W - 2 and y of 1 to H - 2, is the mean of S in the 3x3 samples around, without fraction.
 *     The outermost rows and columns of these are repeated outwards.
 *  -# (x, y) lies on an edge unless |L(x, y) - L(x+1, y+1)| and |L(x+1, y) - L(x, y+1)| are both below threshold. If
 *     the destination rectangle ends with row H - 1 all of that row lies on an edge, and so does all of column W - 1 if
 *     the rectangle ends with it.
 *  -# A sample on an edge, or in the first or last row or column of the source region, is copied. Any other becomes
 *     (sum * r) >> 16, at most 255, with the sum and the count of it and of those of its eight neighbours that do not
 * lie on an edge, and r by the count, 1 to 9: 65535, 32768, 21845, 16384, 13107, 10923, 9362, 8192, 7282.
 *
 *  So a threshold of 0 or less copies all. Counts of 1, 3, 5 and 7 make a flat area darker by 1. A region may be cut
 *  into rectangles freely, with the same samples, as long as none ends one row or column before the region does.
 *  @param[in]  pSrc       first sample of the source region
 *  @param      srcStep    bytes between source rows
 *  @param[out] pDst       first sample of the destination rectangle
 *  @param      dstStep    bytes between destination rows, may be negative, not tested
 *  @param      srcRoiSize source region
 *  @param      threshold  step of the mean from which on there is an edge
 *  @param      dstOffset  place of the destination rectangle in the source region
 *  @param      dstRoiSize size of the destination rectangle
 *  @param      pBuffer    scratch memory of 2 (width + 3) (height + 3) bytes, those of dstRoiSize, written
 *  @retval moxStsNullPointer    pSrc, pDst or pBuffer is null
 *  @retval moxStsBadSize        a width or height is below 1
 *  @retval moxStsRegionTooSmall dstRoiSize.height is below 3
 *  @retval moxStsBadSize        the destination rectangle is not inside the source region
 *  @retval moxStsBadStep        srcStep is below 1 */
MOX_API MoxStatus moxiFilterDenoiseSmooth_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                                 MoxiSize srcRoiSize, Mox32s threshold, MoxiPoint dstOffset,
                                                 MoxiSize dstRoiSize, Mox8u* pBuffer);

MOX_END_DECLS

#endif
