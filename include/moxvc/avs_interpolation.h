/** @file
 *  AVS inter prediction (GB/T 20090.2, 9.9): blocks by their vectors, and weighting.
 *
 *  The Block forms take a plane, a position and a vector, like those of h264_interpolation.h. Samples outside the
 *  reference are the nearest ones in it. No sample outside frameSize is read, with two exceptions. If the vector is
 *  zero in both components, the block is copied from blockPos without a look at frameSize. And where the reference is
 *  narrower or lower than what the filter reads, only one of the two edges counts, as there.
 *
 *  Luma (9.9.2). With A(x, y) the full sample at the block sample's place, all values exact, and the result limited to
 *  0..255:
 *
 *      H(x, y) = -A(x - 1, y) + 5 A(x, y) + 5 A(x + 1, y) - A(x + 2, y)
 *      V(x, y) = -A(x, y - 1) + 5 A(x, y) + 5 A(x, y + 1) - A(x, y + 2)
 *      J(x, y) = -H(x, y - 1) + 5 H(x, y) + 5 H(x, y + 1) - H(x, y + 2)
 *
 *  | (dx, dy) | value at (x, y), `l` and `u` standing for x - 1 and y - 1, `r` and `d` for x + 1 and y + 1 |
 *  |----------|--------------------------------------------------------------------------------------------|
 *  | (0, 0)   | A                                                                                          |
 *  | (1, 0)   | (H(l) + 7 H + 56 A + 8 A(r) + 64) >> 7                                                     |
 *  | (2, 0)   | (H + 4) >> 3                                                                               |
 *  | (3, 0)   | (8 A + 7 H + 56 A(r) + H(r) + 64) >> 7                                                     |
 *  | (0, 1)   | (V(u) + 7 V + 56 A + 8 A(d) + 64) >> 7                                                     |
 *  | (0, 2)   | (V + 4) >> 3                                                                               |
 *  | (0, 3)   | (8 A + 7 V + 56 A(d) + V(d) + 64) >> 7                                                     |
 *  | (2, 1)   | (J(u) + 7 J + 56 H + 8 H(d) + 512) >> 10                                                   |
 *  | (2, 2)   | (J + 32) >> 6                                                                              |
 *  | (2, 3)   | (8 H + 7 J + 56 H(d) + J(d) + 512) >> 10                                                   |
 *  | (1, 2)   | (J(l) + 7 J + 56 V + 8 V(r) + 512) >> 10                                                   |
 *  | (3, 2)   | (8 V + 7 J + 56 V(r) + J(r) + 512) >> 10                                                   |
 *  | (1, 1)   | (64 A + J + 64) >> 7                                                                       |
 *  | (3, 1)   | (64 A(r) + J + 64) >> 7                                                                    |
 *  | (1, 3)   | (64 A(d) + J + 64) >> 7                                                                    |
 *  | (3, 3)   | (64 A(r, d) + J + 64) >> 7                                                                 |
 *
 *  With a horizontal fraction at most 2 columns left of the block and 3 right of it are read, with a vertical one 2
 *  rows above and 3 below; with dx 0 no other columns, with dy 0 no other rows.
 *
 *  Chroma (9.9.3). Bilinear in eighths, as H.264 has it: ((8 - dx)(8 - dy) A + dx (8 - dy) B + (8 - dx) dy C +
 *  dx dy D + 32) >> 6 with the right, lower and diagonal neighbours B, C and D; one more column is read if dx is not
 *  0, one more row if dy is not 0.
 *
 *  Sizes. Heights above 16 are no supported use: of a block that crosses an edge of the reference, rows below the 16th
 *  are not written. Nor is a height of 0 or below.
 *
 *  The result is not defined where source and destination overlap; moxiWeightPrediction_AVS_8u_C1R may work in place.
 */
#ifndef MOXVC_AVS_INTERPOLATION_H
#define MOXVC_AVS_INTERPOLATION_H

#include "h264_interpolation.h"
#include "types.h"

MOX_BEGIN_DECLS

/** Luma block by its vector, in quarters of a sample.
 *
 *  Widths 0 and 8 write 8 columns, 16 and 24 write 16.
 *  @param[in] pBlock reference, destination and geometry; only the first of the two planes counts
 *  @retval moxStsNullPointer pBlock, its pSrcPlane[0] or its pDstPlane[0] is null
 *  @retval moxStsBadSize     height is no multiple of 8, or width not 0, 8, 16 or 24 */
MOX_API MoxStatus moxiInterpolateLumaBlock_AVS_8u_P1R(const MoxiInterpBlock_8u* pBlock);

/** U and V block by their vector, in eighths of a sample: planes of one geometry, blocks of 4 or 8 columns. In frames
 *  of 4:2:0 the vector is that of luma, unchanged.
 *  @param[in] pBlock references, destinations and geometry
 *  @retval moxStsNullPointer pBlock or one of its four pointers is null
 *  @retval moxStsBadSize     height is no multiple of 4, or width not 4 or 8 */
MOX_API MoxStatus moxiInterpolateChromaBlock_AVS_8u_P2R(const MoxiInterpBlock_8u* pBlock);

/** Weighted prediction: ((p * scale + 16) >> 5) + shift, limited to 0..255.
 *
 *  Widths below 16 write 8 columns whatever they are, 16 and above write 16. Of scale the low 9 bits count, as a number
 *  of -256 to 255; of shift the low 16 bits, as a signed number.
 *  @param[in]  pSrc    8 or 16 columns, any alignment
 *  @param      srcStep bytes between rows, may be negative, not tested
 *  @param[out] pDst    the same columns; may be pSrc if the steps are the same
 *  @param      dstStep bytes between rows
 *  @param      scale   factor in 1/32
 *  @param      shift   added at the end
 *  @param      roiSize size of the block
 *  @retval moxStsNullPointer pSrc or pDst is null
 *  @retval moxStsBadSize     width is not 0, 4, 8, 12, 16, 20, 24 or 28, or height no multiple of 4 */
MOX_API MoxStatus moxiWeightPrediction_AVS_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                                  Mox32u scale, Mox32u shift, MoxiSize roiSize);

MOX_END_DECLS

#endif
