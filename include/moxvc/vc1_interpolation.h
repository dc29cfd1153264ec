/** @file
 *  VC-1 interpolation (SMPTE 421M 8.3): the prediction of one block from a reference picture, to a quarter of a
 *  sample, by the bicubic or the bilinear filter.
 *
 *  Forms. A QP form takes the block at its integer place in the reference, all samples around it readable. An IC Block
 *  form takes a whole plane, a position and the tables of intensity compensation; it puts the samples through the
 *  tables, repeats the edges of the plane where the block crosses them, and then interpolates as the QP form does.
 *  `dx` and `dy` are quarters of a sample, 0 to 3, and `roundControl` is the rounding control of the picture, 0 or 1.
 *
 *  Bicubic. The taps of a position stand on the samples -1, 0, 1 and 2 of a row or column:
 *
 *  | Position | Taps        | Gain | a |
 *  |----------|-------------|------|---|
 *  | 1        | -4 53 18 -3 | 64   | 5 |
 *  | 2        | -1 9 9 -1   | 16   | 1 |
 *  | 3        | -3 18 53 -4 | 64   | 5 |
 *
 *  With R for roundControl and results limited to 0..255:
 *
 *      dx = 0, dy = 0    the sample itself
 *      dy = 0            (sum of the row + gain / 2 - R) / gain, rounded down
 *      dx = 0            (sum of the column + gain / 2 - 1 + R) / gain, rounded down
 *      both not 0        t = (sum of the column + (1 << (s - 1)) - 1 + R) >> s, s = (a(dx) + a(dy)) >> 1, not limited,
 *                        of the columns -1 to 2; then (sum of the row of t + 64 - R) >> 7
 *
 *  So the rounding control turns the other way in the vertical filter.
 *
 *  Bilinear. With the right, lower and diagonal neighbours B, C and D of A, in all positions:
 *
 *      ((4 - dx) (4 - dy) A + dx (4 - dy) B + (4 - dx) dy C + dx dy D + 8 - R) >> 4
 *
 *  Only the two lowest bits of dx and dy and the lowest of roundControl count. In the C2R form samples are bytes of
 *  interleaved pairs, and a right neighbour is 2 bytes away.
 *
 *  Sizes. No size is refused. The kernel that is run writes one of these sizes, whatever else was asked for; with
 *  n = (w >> 4) + (h >> 4) of the size w x h, which counts pairs in the C2R form:
 *
 *  | Written | bicubic    | bilinear C1R | bilinear C2R |
 *  |---------|------------|--------------|--------------|
 *  | 16 x 16 | otherwise  | w = 16       |              |
 *  | 16 x 8  | n = 1      |              |              |
 *  | 8 x 8   | n = 0      | w = 8, h = 8 | w = 8, h = 8 |
 *  | 8 x 4   |            | other w = 8  | other w = 8  |
 *  | 4 x 4   |            | otherwise    | otherwise    |
 *
 *  Memory. The block as it is written is read, at any alignment; besides, and nothing else:
 *
 *  | Position | bicubic                                       | bilinear                          |
 *  |----------|-----------------------------------------------|-----------------------------------|
 *  | dx not 0 | one column left of the block, two right of it | one column (of pairs) right of it |
 *  | dy not 0 | one row above the block, two below it         | one row below it                  |
 *  | both     | these columns and rows, and where they cross  | the same                          |
 *
 *  Steps count bytes, may be negative and are not tested. The result is not defined where source and destination
 *  overlap.
 *
 *  IC Block forms. W and H are the width and the height of the frame, x and y the position and w and h the size of the
 *  block. With isFieldPicture the plane is a field of H >> 1 rows, twice the step apart, and pSrc its first sample;
 *  otherwise it is the frame of H rows.
 *
 *  - If both tables are null, and the columns x - 1 to x + w + 1 and the rows y - 1 to y + h + 1 lie in the plane, the
 *    block is interpolated in place, and what the QP form names is read. (In the C2R form these are columns of pairs,
 *    counted from x / 2.)
 *  - Otherwise all these columns and rows, whatever dx and dy are, are put together in a window, and the block is
 *    interpolated there. What a kernel larger than the block writes outside of it has no defined value then.
 *  - A column outside of the plane is the first or the last one, in the C2R form of pairs.
 *  - Row j in the plane goes through pLUTBottom in a field picture with isBottomField, through pLUTTop in other field
 *    pictures; in a frame an even row goes through pLUTTop and an odd one through pLUTBottom. A null table changes
 *    nothing.
 *  - Row j above (j < 0) or below the plane, with b for isBottomField, is
 *      - with isInterlacedRef, in a frame: the line r - b of the frame, counted from pSrc, with r = j & 1 above and
 *        r = H - 2 + (j & 1) below, through the table that belongs to row r. So lines of both fields take turns.
 *      - with isInterlacedRef, in a field picture: above the first line of the frame, -b from pSrc, through pLUTTop;
 *        below its last line, H - b - 1 from pSrc, through pLUTBottom, whichever field is read.
 *      - without isInterlacedRef: the first or the last row of the plane. Above, it goes through the table that belongs
 *        to the first row of the window in the plane, max(0, y - 1); below, through the one that belongs to the row
 *        after that. So where the tables of a frame differ, the padding below follows the parity of the window.
 *
 *  Nothing is read outside of the frame, but for the line above pSrc where isInterlacedRef and isBottomField are set in
 *  a frame; of the tables, the values of the samples found are read.
 *
 *  Status. moxStsNullPointer if the record, its pSrc or its pDst is null; nothing is written then. The bicubic QP form
 *  does not test the record. Nothing else is tested. The result is not defined for bicubic positions outside of 0..3 or
 *  rounding controls outside of 0 and 1, nor for frames without a sample or blocks larger than 16 x 16 in IC Block
 *  forms.
 */
#ifndef MOXVC_VC1_INTERPOLATION_H
#define MOXVC_VC1_INTERPOLATION_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

/** Arguments of the QP forms. */
typedef struct MoxiVC1InterpolationParams {
  const Mox8u* pSrc;   /**< the block at its integer position in the reference */
  Mox32s srcStep;      /**< bytes between rows of the reference */
  Mox8u* pDst;         /**< block to write */
  Mox32s dstStep;      /**< bytes between rows of the destination */
  Mox32s dx;           /**< horizontal position in quarters of a sample, 0 to 3 */
  Mox32s dy;           /**< vertical position in quarters of a sample, 0 to 3 */
  MoxiSize roiSize;    /**< size of the block, in C2R forms in pairs */
  Mox32s roundControl; /**< rounding control of the picture, 0 or 1 */
} MoxiVC1InterpolationParams;

/** Arguments of the IC Block forms. */
typedef struct MoxiVC1ICInterpolationParams {
  const Mox8u* pSrc;       /**< first sample of the reference plane; in a field picture, of the field that is read */
  Mox32s srcStep;          /**< bytes between lines of the frame */
  Mox8u* pDst;             /**< block to write */
  Mox32s dstStep;          /**< bytes between rows of the destination */
  const Mox8u* pLUTTop;    /**< 256 values that replace samples of top-field lines, or null */
  const Mox8u* pLUTBottom; /**< 256 values that replace samples of bottom-field lines, or null */
  MoxiSize frameSize;      /**< of the plane, in C2R forms in pairs; the height counts lines of the frame */
  MoxiSize blockSize;      /**< of the block, at most 16 x 16, in C2R forms in pairs */
  MoxiPoint blockPos;      /**< integer position of the block in the plane or field, inside or outside; in C2R forms
                                x counts bytes and is even */
  Mox32s dx;               /**< horizontal position in quarters of a sample, 0 to 3 */
  Mox32s dy;               /**< vertical position in quarters of a sample, 0 to 3 */
  Mox32s isInterlacedRef;  /**< not 0 if the reference holds two fields */
  Mox32s isFieldPicture;   /**< not 0 if the block reads one field */
  Mox32s roundControl;     /**< rounding control of the picture, 0 or 1 */
  Mox32s isBottomField;    /**< 1 if the field that is read is the bottom one, else 0 */
} MoxiVC1ICInterpolationParams;

/** Bicubic interpolation of a luma block.
 *  @param[in] interpolation the arguments; not tested, must not be null
 *  @retval moxStsNullPointer pSrc or pDst is null */
MOX_API MoxStatus moxiInterpolateQPBicubic_VC1_8u_C1R(const MoxiVC1InterpolationParams* interpolation);

/** Bilinear interpolation of a block of one plane.
 *  @param[in] interpolation the arguments
 *  @retval moxStsNullPointer interpolation, pSrc or pDst is null */
MOX_API MoxStatus moxiInterpolateQPBilinear_VC1_8u_C1R(const MoxiVC1InterpolationParams* interpolation);

/** Bilinear interpolation of a block of interleaved pairs.
 *  @param[in] interpolation the arguments
 *  @retval moxStsNullPointer interpolation, pSrc or pDst is null */
MOX_API MoxStatus moxiInterpolateQPBilinear_VC1_8u_C2R(const MoxiVC1InterpolationParams* interpolation);

/** Bicubic interpolation of a luma block of a plane, with intensity compensation and padding.
 *  @param[in] interpolation the arguments
 *  @retval moxStsNullPointer interpolation, pSrc or pDst is null */
MOX_API MoxStatus moxiInterpolateICBicubicBlock_VC1_8u_C1R(const MoxiVC1ICInterpolationParams* interpolation);

/** Bilinear interpolation of a block of a plane, with intensity compensation and padding.
 *  @param[in] interpolation the arguments
 *  @retval moxStsNullPointer interpolation, pSrc or pDst is null */
MOX_API MoxStatus moxiInterpolateICBilinearBlock_VC1_8u_C1R(const MoxiVC1ICInterpolationParams* interpolation);

/** Bilinear interpolation of a block of a plane of interleaved pairs, with intensity compensation and padding.
 *  @param[in] interpolation the arguments
 *  @retval moxStsNullPointer interpolation, pSrc or pDst is null */
MOX_API MoxStatus moxiInterpolateICBilinearBlock_VC1_8u_C2R(const MoxiVC1ICInterpolationParams* interpolation);

MOX_END_DECLS

#endif
