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
 *  | Position | Taps        | Gain   | a |
 *  |----------|-------------|--------|---|
 *  | 1        | -4 53 18 -3 | 2 ^ 6  | 5 |
 *  | 2        | -1 9 9 -1   | 2 ^ 4  | 1 |
 *  | 3        | -3 18 53 -4 | 2 ^ 6  | 5 |
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
 *  Sizes. No size is refused; a kernel of one of these sizes is run, w and h being those of the argument:
 *
 *  | Form          | 16 x 16                     | 16 x 8                      | 8 x 8              | 8 x 4     | 4 x 4
 * |
 *  |---------------|-----------------------------|-----------------------------|--------------------|-----------|--------|
 *  | bicubic       | else                        | (w >> 4) + (h >> 4) = 1     | both below 16      |           | | |
 * bilinear C1R  | w = 16                      |                             | w = 8, h = 8       | w = 8     | else   |
 *  | bilinear C2R  |                             |                             | w = 8, h = 8       | w = 8     | else
 * |
 *
 *  A size is width x height, in C2R forms in pairs. In the bicubic form (w >> 4) + (h >> 4) is 0 for 8 x 8 and neither
 *  0 nor 1 for 16 x 16, so 8 x 16 is written as 16 x 8.
 *
 *  Memory. Of the source the block of the kernel's size is read and, if dx is not 0, also
 *
 *  - bicubic: the column left of it and the two columns right of it;
 *  - bilinear: the column (of pairs) right of it;
 *
 *  and if dy is not 0 the like rows above and below, with both the corners too. Nothing else is read. Any alignment.
 *  Steps count bytes, may be negative and are not tested. The result is not defined where source and destination
 *  overlap.
 *
 *  IC Block forms. W and H are the width and the height of the frame, x and y the position, w and h the size of the
 *  block. With `isFieldPicture` the plane is a field: it has H >> 1 rows, twice the step apart, pSrc being the first
 *  sample of the field; otherwise it has H rows. Row j of the plane below is counted in it.
 *
 *  - If both tables are null, and the columns x - 1 to x + w + 1 and the rows y - 1 to y + h + 1 lie in the plane, the
 *    block is interpolated in place, and only what the QP form names is read. (The C2R form asks for the columns of
 *    pairs x / 2 - 1 to x / 2 + w + 1.)
 *  - Otherwise these columns and rows are copied to a window first, whatever dx and dy are. A kernel that is larger
 *    than the block reads and writes more than w x h; what it writes outside of the block then has no defined value.
 *  - Columns outside of the plane are its first or last one.
 *  - A row inside of the plane goes through pLUTBottom in a field picture with isBottomField, through pLUTTop in any
 *    other field picture; in a frame even rows go through pLUTTop, odd rows through pLUTBottom. A null table changes
 *    nothing.
 *  - A row j outside of the plane is the row that this table names, counted in lines of the frame from pSrc on, with b
 *    for isBottomField:
 *
 *  | isInterlacedRef | isFieldPicture | above         | table  | below                 | table  |
 *  |-----------------|----------------|---------------|--------|-----------------------|--------|
 *  | 1               | 0              | r - b, with r = j & 1 | of r | r - b, with r = H - 2 + (j & 1) | of r |
 *  | 1               | 1              | -b            | top    | H - b - 1             | bottom |
 *  | 0               | 0              | 0             | of j0  | H - 1                 | of j0 + 1 |
 *  | 0               | 1              | 0             | field's | 2 ((H >> 1) - 1)     | field's |
 *
 *    Where a table goes by a row, it is pLUTTop for an even and pLUTBottom for an odd one. j0 is y - 1, but at least
 *    0: the first row of the window that is not above the plane. So where the tables of a frame differ, its padding
 *    below follows the parity of the window and not that of the last row. An interlaced frame is padded by lines of
 *    both fields in turn, an interlaced field by the first and the last line of the frame.
 *
 *  Read in IC Block forms are these rows of the plane, from its first to its last column as far as the window reaches,
 *  and the tables at the values found.
 *
 *  Status. moxStsNullPointer if the record, its pSrc or its pDst is null; nothing is written then. The bicubic QP form
 *  does not test the record. Nothing else is tested: of positions outside of 0..3, and for IC Block forms of frames
 *  without a sample and of blocks larger than 16 x 16, the result is not defined.
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
