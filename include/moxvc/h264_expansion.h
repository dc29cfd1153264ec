/** @file
 *  Plane expansion, and the rounded average of two prediction blocks (ITU-T H.264 8.4.2.2, 8.4.2.3.1).
 *
 *  An expanded plane holds copies of its edges around it, so that motion vectors may point outside of the picture.
 *  Steps count bytes, may be negative and are not tested.
 */
#ifndef MOXVC_H264_EXPANSION_H
#define MOXVC_H264_EXPANSION_H

#include "types.h"

MOX_BEGIN_DECLS

/** Fills the margins of a plane with its nearest samples, in place. With E for expandSize, columns -E to width + E - 1
 *  of these rows -E to height + E - 1 are filled, each from the nearest row of its kind:
 *
 *  | Mode | Rows                   | above       | below       |
 *  |------|------------------------|-------------|-------------|
 *  | 0    | all, the frame         | E           | E           |
 *  | 1    | even, the top field    | E / 2       | (E + 1) / 2 |
 *  | 2    | odd, the bottom field  | (E + 1) / 2 | E / 2       |
 *
 *  Rows of the other field are left alone. Samples of the plane itself are read and not changed. Do not read the
 * margins at the same time.
 *  @param[in,out] pSrcDst    first sample of the plane, with room for E samples on each side and E rows above and below
 *  @param         width      samples in a row, any but 0; a negative one is not tested and not supported
 *  @param         height     rows, even and at least 2
 *  @param         step       bytes between rows, in magnitude at least width + 2 E
 *  @param         expandSize E; a negative one is not tested and not supported
 *  @param         mode       0 frame, 1 top field (even rows), 2 bottom field (odd rows)
 *  @retval moxStsNullPointer pSrcDst is null
 *  @retval moxStsBadSize     height is odd or below 2, or width is 0
 *  @retval moxStsOk          also if expandSize is 0, whatever the mode; nothing is written
 *  @retval moxStsBadArg      mode is above 2 */
MOX_API MoxStatus moxiExpandPlane_H264_8u_C1R(Mox8u* pSrcDst, Mox32s width, Mox32s height, Mox32s step,
                                              Mox32s expandSize, Mox32u mode);

/** The mean (a + b + 1) >> 1 of two blocks, all with one step.
 *  @param[in]  pSrc1  first block, width x height samples at any alignment; nothing else is read
 *  @param[in]  pSrc2  second block
 *  @param[out] pDst   result; it may take the place of a source, other overlaps give no defined result
 *  @param      width  2 to 16, odd ones too
 *  @param      height 2 to 16, odd ones too
 *  @param      step   bytes between rows of all three
 *  @retval moxStsNullPointer pSrc1, pSrc2 or pDst is null
 *  @retval moxStsBadSize     width or height is below 2 or above 16 */
MOX_API MoxStatus moxiInterpolateBlock_H264_8u_P2P1R(const Mox8u* pSrc1, const Mox8u* pSrc2, Mox8u* pDst, Mox32s width,
                                                     Mox32s height, Mox32s step);

/** The mean (a + b + 1) >> 1 of two blocks, each with its step: as moxiInterpolateBlock_H264_8u_P2P1R, but an even
 *  width and an even height may be cut. If both, rounded down to 2, 4, 8, 12 or 16, make a partition (2x2, 2x4, 4x2,
 *  4x4, 4x8, 8x4, 8x8, 8x16, 16x8 or 16x16), only a block of that size is averaged: 4x4 for 6x6 and for 6x4. All other
 *  sizes, odd ones among them, are averaged whole.
 *  @param[in]  pSrc1           first block
 *  @param[in]  pSrc2           second block
 *  @param[out] pDst            result
 *  @param      width,height    2 to 16
 *  @param      step1           bytes between rows of pSrc1
 *  @param      step2           bytes between rows of pSrc2
 *  @param      dstStep         bytes between rows of pDst
 *  @retval moxStsNullPointer pSrc1, pSrc2 or pDst is null
 *  @retval moxStsBadSize     width or height is below 2 or above 16 */
MOX_API MoxStatus moxiInterpolateBlock_H264_8u_P3P1R(const Mox8u* pSrc1, const Mox8u* pSrc2, Mox8u* pDst, Mox32s width,
                                                     Mox32s height, Mox32s step1, Mox32s step2, Mox32s dstStep);

MOX_END_DECLS

#endif
