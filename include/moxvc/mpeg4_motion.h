/** @file
 *  MPEG-4 motion compensation of luma: copies at quarter-sample positions (ISO/IEC 14496-2 7.6.2.2), and overlapped
 *  block motion compensation (ISO/IEC 14496-2 7.6.6, ITU-T H.263 Annex F).
 *
 *  Quarter samples. The position of a block is (dx, dy) quarters of a sample, 0 to 3 each. A line of N = 8 or 16
 *  predicted samples is made of reference samples s(0) to s(N), with s(-1 - k) = s(k) and s(N + 1 + k) = s(N - k): the
 *  line is mirrored at its own ends, so that nothing else has a part in it. With rc the rounding bit and d the
 * position:
 *
 *      h(i) = -8 s(i - 3) + 24 s(i - 2) - 48 s(i - 1) + 160 s(i)
 *             + 160 s(i + 1) - 48 s(i + 2) + 24 s(i + 3) - 8 s(i + 4)
 *      b(i) = (h(i) + 128 - rc) >> 8, limited to 0..255
 *
 *      d      P(i)
 *      0      s(i)
 *      1      (s(i) + b(i) + 1 - rc) >> 1
 *      2      b(i)
 *      3      (b(i) + s(i + 1) + 1 - rc) >> 1
 *
 *  Rows are predicted first, by dx: as many as the block has, and one more below them if dy is not 0. Then columns are
 *  predicted from the samples so gained, by dy. Since lines end where the block does, a block of 16 is not four of 8.
 *
 *  Selector `acc` of the copies: dx | dy << 2, 0 to 15.
 *
 *  Overlapped motion compensation. A block of 8x8 is predicted five times, at its own place: with its own vector, and
 *  with those of the blocks above, left, right and below. Let q be the first of these predictions, r the one with the
 *  vector above in rows 0 to 3 and with the one below in rows 4 to 7, and s the one with the vector at the left in
 *  columns 0 to 3 and with the one at the right in columns 4 to 7; the prediction is (H0 q + H1 r + H2 s + 4) >> 3.
 *
 *      H0                         H1                         H2
 *      4  5  5  5  5  5  5  4     2  2  2  2  2  2  2  2     2  1  1  1  1  1  1  2
 *      5  5  5  5  5  5  5  5     1  1  2  2  2  2  1  1     2  2  1  1  1  1  2  2
 *      5  5  6  6  6  6  5  5     1  1  1  1  1  1  1  1     2  2  1  1  1  1  2  2
 *      5  5  6  6  6  6  5  5     1  1  1  1  1  1  1  1     2  2  1  1  1  1  2  2
 *      5  5  6  6  6  6  5  5     1  1  1  1  1  1  1  1     2  2  1  1  1  1  2  2
 *      5  5  6  6  6  6  5  5     1  1  1  1  1  1  1  1     2  2  1  1  1  1  2  2
 *      5  5  5  5  5  5  5  5     1  1  2  2  2  2  1  1     2  2  1  1  1  1  2  2
 *      4  5  5  5  5  5  5  4     2  2  2  2  2  2  2  2     2  1  1  1  1  1  1  2
 *
 *  Each prediction is that of an 8x8 block with the vector's fraction: in HP forms as moxiCopy8x8HP_8u_C1R gives it, in
 *  the QP form as moxiCopy8x8QP_MPEG4_8u_C1R. Vectors are in half samples in HP forms, in quarter samples in the QP
 *  form; a block lies at x >> 1 or x >> 2 samples from its own place. The 16x16 form does the four blocks of a
 *  macroblock that has one vector: between them the neighbour's vector is their own. What vector stands for a neighbour
 *  that has none is the caller's choice; for the one below a macroblock both standards take the block's own.
 *
 *  Rounding bit rc: bit 0 of `roundControl`, other bits do not count. In HP forms 0 rounds halves up and 1 down.
 *
 *  Memory. A block of W x H is read over (W + (dx != 0)) x (H + (dy != 0)) samples, and nothing else is. In overlapped
 *  motion compensation this holds of each 8x8 block and each of its vectors; the whole block of a neighbour's vector
 * may be read. A reference with a margin serves any vector: one that leads a block wholly out of the picture gives the
 *  same samples from nearer by. W x H samples are written. Any alignment. Source and destination must not overlap.
 *
 *  Steps count bytes, may be negative and are not tested; the result is not defined where rows of the destination
 *  overlap. A field of a frame has twice the frame's step.
 *
 *  Status. moxStsNullPointer if a pointer is null, in the order of the arguments, then moxStsOutOfRange for `acc`;
 *  nothing is written then. Vectors are not tested.
 */
#ifndef MOXVC_MPEG4_MOTION_H
#define MOXVC_MPEG4_MOTION_H

#include "types.h"

MOX_BEGIN_DECLS

/** Copies a block of 16x16 from a quarter-sample position.
 *  @param[in]  pSrc         the block at its full position, 16 x 16 samples and what the position adds
 *  @param      srcStep      bytes between its rows
 *  @param[out] pDst         16 x 16 samples
 *  @param      dstStep      bytes between its rows
 *  @param      acc          position: dx | dy << 2
 *  @param      roundControl bit 0: rc
 *  @retval moxStsNullPointer pSrc or pDst is null
 *  @retval moxStsOutOfRange  acc is outside 0..15 */
MOX_API MoxStatus moxiCopy16x16QP_MPEG4_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                               Mox32s acc, Mox32s roundControl);

/** As moxiCopy16x16QP_MPEG4_8u_C1R for a block of 16 x 8, such as a field of a macroblock. */
MOX_API MoxStatus moxiCopy16x8QP_MPEG4_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                              Mox32s acc, Mox32s roundControl);

/** As moxiCopy16x16QP_MPEG4_8u_C1R for a block of 8 x 8. */
MOX_API MoxStatus moxiCopy8x8QP_MPEG4_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep, Mox32s acc,
                                             Mox32s roundControl);

/** Overlapped motion compensation of an 8x8 block by half-sample vectors.
 *  @param[in]  pSrc         reference at the block's own place
 *  @param      srcStep      bytes between its rows
 *  @param[out] pDst         8 x 8 samples
 *  @param      dstStep      bytes between its rows
 *  @param      vector       of the block
 *  @param[in]  pNeighbours  4 vectors: of the blocks above, left, right and below
 *  @param      roundControl bit 0: rc
 *  @retval moxStsNullPointer pSrc, pDst or pNeighbours is null */
MOX_API MoxStatus moxiOBMC8x8HP_MPEG4_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                             MoxiMotionVector vector, const MoxiMotionVector* pNeighbours,
                                             Mox32s roundControl);

/** As moxiOBMC8x8HP_MPEG4_8u_C1R by quarter-sample vectors. */
MOX_API MoxStatus moxiOBMC8x8QP_MPEG4_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                             MoxiMotionVector vector, const MoxiMotionVector* pNeighbours,
                                             Mox32s roundControl);

/** Overlapped motion compensation of a macroblock with one half-sample vector.
 *  @param[in]  pSrc         reference at the macroblock's own place
 *  @param      srcStep      bytes between its rows
 *  @param[out] pDst         16 x 16 samples
 *  @param      dstStep      bytes between its rows
 *  @param      vector       of the macroblock
 *  @param[in]  pNeighbours  8 vectors of 8x8 blocks around it: two above, from left to right; two at the left, from top
 *                           to bottom; two at the right; two below
 *  @param      roundControl bit 0: rc
 *  @retval moxStsNullPointer pSrc, pDst or pNeighbours is null */
MOX_API MoxStatus moxiOBMC16x16HP_MPEG4_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                               MoxiMotionVector vector, const MoxiMotionVector* pNeighbours,
                                               Mox32s roundControl);

/** As moxiOBMC16x16HP_MPEG4_8u_C1R by quarter-sample vectors: the same as four calls of moxiOBMC8x8QP_MPEG4_8u_C1R. */
MOX_API MoxStatus moxiOBMC16x16QP_MPEG4_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                               MoxiMotionVector vector, const MoxiMotionVector* pNeighbours,
                                               Mox32s roundControl);

MOX_END_DECLS

#endif
