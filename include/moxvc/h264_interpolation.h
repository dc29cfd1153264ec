/** @file
 *  H.264 luma and chroma interpolation (ITU-T H.264 8.4.2.2): the prediction of one block from a reference picture.
 *
 *  Forms. A plain form takes the block at its place in the reference, all samples around it readable. A Top or Bottom
 *  form takes a block that crosses the upper or lower edge of the picture by a known number of rows. A Block form takes
 *  a plane, a position and a vector, and finds out by itself where the block lies.
 *
 *  Luma (8.4.2.2.1). `dx` and `dy` are quarters of a sample, 0 to 3. Half samples come from the taps 1, -5, 20, 20, -5,
 *  1, rounded and limited to 0..255 or to 0..2^bitDepth - 1; the centre sample is rounded once, after both directions.
 *  Quarter samples are the rounded mean of the two nearest full or half samples. With a horizontal fraction a kernel
 *  reads 2 columns left of the block and 3 right of it, with a vertical one 2 rows above and 3 below; with dx 0 it
 *  touches no other columns, with dy 0 no other rows.
 *
 *  Chroma (8.4.2.2.2). `dx` and `dy` are eighths of a sample, 0 to 7: ((8 - dx)(8 - dy) A + dx (8 - dy) B +
 *  (8 - dx) dy C + dx dy D + 32) >> 6 with the right, lower and diagonal neighbours B, C and D. One more column is read
 *  if dx is not 0, one more row if dy is not 0.
 *
 *  Sizes. Some sizes pass that no kernel has; what then happens is fixed:
 *
 *  | Form                       | width                       | columns written            | height        |
 *  |----------------------------|-----------------------------|----------------------------|---------------|
 *  | luma 8u, luma Block 8u     | 0, 4, 8, 12, 16, 20, 24, 28 | 4, 4, 8, 8, 16, 16, 16, 16 | multiple of 4 |
 *  | luma Block 16u             | 0, 4, 8, 12, 16, 20, 24, 28 | all                        | multiple of 4 |
 *  | luma 16u                   | 4, 8, 16; not 4x16, 16x4    | all                        | 4, 8, 16      |
 *  | chroma 8u, chroma Block 8u | 0, 2, 4, 6, 8, 10, 12, 14   | 2, 2, 4, 4, 8, 8, 8, 8     | even          |
 *  | chroma Block 16u           | 0, 2, 4, 6, 8, 10, 12, 14   | all                        | even          |
 *  | chroma 16u                 | 2, 4, 8, 16                 | all                        | 2, 4, 8, 16   |
 *
 *  Footprints follow from the columns written. A height of 0 or below is no supported use. Nor is one above 16 in Top
 *  and Bottom forms and in Block forms whose block crosses an edge: rows below the 16th are not written there.
 *
 *  Top. `outPixels` rows of the block lie above the picture; pSrc is where the block's first row would be, so the
 *  picture's first row is pSrc + outPixels rows. That row stands for all rows above it, and no row above it is read. A
 *  negative number says that the picture starts so many rows above the block: only the filter's margin may cross.
 *
 *  Bottom. `outPixels` rows of the block lie below the picture: its last row is pSrc + (height - outPixels - 1) rows.
 *  That row stands for all rows below it, and no row below it is read. A negative number lets only the margin cross.
 *
 *  Steps count bytes in 8u forms, which take any, and samples in 16u forms. The result is not defined where source and
 *  destination overlap.
 *
 *  Status, in this order: moxStsNullPointer, moxStsBadStep (16u plain, Top and Bottom forms only), moxStsBadArg for a
 *  fraction outside its range, moxStsBadSize. The bit depth is not tested; it is 8 to 16, and has no part in chroma,
 *  whose results cannot leave the range. After an error nothing has been written.
 */
#ifndef MOXVC_H264_INTERPOLATION_H
#define MOXVC_H264_INTERPOLATION_H

#include "types.h"

MOX_BEGIN_DECLS

/** Arguments of the 8-bit Block forms. Positions, sizes and vectors are in samples of the planes, those of interleaved
 *  chroma in pairs. */
typedef struct MoxiInterpBlock_8u {
  const Mox8u* pSrcPlane[2]; /**< first sample of the reference: luma, U and V, or interleaved chroma in [0] */
  Mox32s srcStep;            /**< bytes between rows of the reference */
  Mox8u* pDstPlane[2];       /**< block to write: luma in [0], or U and V */
  Mox32s dstStep;            /**< bytes between rows of the destination */
  MoxiSize frameSize;        /**< of the reference, 1 x 1 at least */
  MoxiSize blockSize;        /**< of the block */
  MoxiPoint blockPos;        /**< of the block in its own picture */
  MoxiPoint vector;          /**< motion vector: luma in quarters of a sample, chroma in eighths; any value */
} MoxiInterpBlock_8u;

/** Arguments of the 16-bit Block forms, as those of the 8-bit ones. */
typedef struct MoxiInterpBlock_16u {
  const Mox16u* pSrcPlane[2]; /**< first sample of the reference: luma in [0], or U and V */
  Mox32s srcStep;             /**< samples between rows of the reference */
  Mox16u* pDstPlane[2];       /**< block to write: luma in [0], or U and V */
  Mox32s dstStep;             /**< samples between rows of the destination */
  MoxiSize frameSize;         /**< of the reference, 1 x 1 at least */
  MoxiSize blockSize;         /**< of the block */
  MoxiPoint blockPos;         /**< of the block in its own picture */
  MoxiPoint vector;           /**< motion vector: luma in quarters of a sample, chroma in eighths; any value */
  Mox32s bitDepth;            /**< bits of a luma sample, 8 to 16 */
} MoxiInterpBlock_16u;

/** Arguments of the 16-bit plain, Top and Bottom forms. */
typedef struct MoxiInterpRegion_16u {
  const Mox16u* pSrc; /**< the block, at the integer part of its vector */
  Mox32s srcStep;     /**< samples between rows of the source */
  Mox16u* pDst;       /**< block to write */
  Mox32s dstStep;     /**< samples between rows of the destination */
  Mox32s dx;          /**< horizontal fraction: luma 0 to 3, chroma 0 to 7 */
  Mox32s dy;          /**< vertical fraction: luma 0 to 3, chroma 0 to 7 */
  Mox32s width;       /**< of the block */
  Mox32s height;      /**< of the block */
  Mox32s bitDepth;    /**< bits of a luma sample, 8 to 16 */
} MoxiInterpRegion_16u;

/** Luma block, 8-bit.
 *  @param[in]  pSrc    the block at the integer part of its vector, any alignment; read with its margins
 *  @param      srcStep bytes between rows
 *  @param[out] pDst    the block, any alignment
 *  @param      dstStep bytes between rows
 *  @param      dx,dy   fraction of the vector, 0 to 3
 *  @param      roiSize size of the block
 *  @retval moxStsNullPointer pSrc or pDst is null
 *  @retval moxStsBadArg      dx or dy is not 0 to 3
 *  @retval moxStsBadSize     height is no multiple of 4, or width not one of the table */
MOX_API MoxStatus moxiInterpolateLuma_H264_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                                  Mox32s dx, Mox32s dy, MoxiSize roiSize);

/** Luma block that crosses the upper edge of the picture, 8-bit.
 *  @param[in]  pSrc      where the block would be; the picture's first row is pSrc + outPixels rows
 *  @param      srcStep   bytes between rows
 *  @param[out] pDst      the block
 *  @param      dstStep   bytes between rows
 *  @param      dx,dy     fraction of the vector, 0 to 3
 *  @param      outPixels rows of the block above the picture, any number
 *  @param      roiSize   size of the block
 *  @retval moxStsNullPointer pSrc or pDst is null
 *  @retval moxStsBadArg      dx or dy is not 0 to 3
 *  @retval moxStsBadSize     height is no multiple of 4, or width not one of the table */
MOX_API MoxStatus moxiInterpolateLumaTop_H264_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                                     Mox32s dx, Mox32s dy, Mox32s outPixels, MoxiSize roiSize);

/** Luma block that crosses the lower edge of the picture, 8-bit: as moxiInterpolateLumaTop_H264_8u_C1R, but `outPixels`
 *  counts the rows of the block below the picture. */
MOX_API MoxStatus moxiInterpolateLumaBottom_H264_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                                        Mox32s dx, Mox32s dy, Mox32s outPixels, MoxiSize roiSize);

/** Luma block, 16-bit.
 *  @param[in] pRegion block, steps, fraction and size
 *  @retval moxStsNullPointer pRegion, its pSrc or its pDst is null
 *  @retval moxStsBadStep     srcStep or dstStep is below width
 *  @retval moxStsBadArg      dx or dy is not 0 to 3
 *  @retval moxStsBadSize     height or width is not 4, 8 or 16, or the block is 4x16 or 16x4 */
MOX_API MoxStatus moxiInterpolateLuma_H264_16u_C1R(const MoxiInterpRegion_16u* pRegion);

/** Luma block that crosses the upper edge of the picture, 16-bit: as moxiInterpolateLuma_H264_16u_C1R.
 *  @param[in] pRegion   block, steps, fraction and size
 *  @param     outPixels rows of the block above the picture, any number */
MOX_API MoxStatus moxiInterpolateLumaTop_H264_16u_C1R(const MoxiInterpRegion_16u* pRegion, Mox32s outPixels);

/** Luma block that crosses the lower edge of the picture, 16-bit: as moxiInterpolateLuma_H264_16u_C1R.
 *  @param[in] pRegion   block, steps, fraction and size
 *  @param     outPixels rows of the block below the picture, any number */
MOX_API MoxStatus moxiInterpolateLumaBottom_H264_16u_C1R(const MoxiInterpRegion_16u* pRegion, Mox32s outPixels);

/** Chroma block of one plane, 8-bit.
 *  @param[in]  pSrc    the block at the integer part of its vector, any alignment
 *  @param      srcStep bytes between rows
 *  @param[out] pDst    the block, any alignment
 *  @param      dstStep bytes between rows
 *  @param      dx,dy   fraction of the vector, 0 to 7
 *  @param      roiSize size of the block
 *  @retval moxStsNullPointer pSrc or pDst is null
 *  @retval moxStsBadArg      dx or dy is not 0 to 7
 *  @retval moxStsBadSize     height is odd, or width not one of the table */
MOX_API MoxStatus moxiInterpolateChroma_H264_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                                    Mox32s dx, Mox32s dy, MoxiSize roiSize);

/** Chroma block that crosses the upper edge of the picture, 8-bit. Alone among the Top forms it takes a negative
 *  `outPixels` for a block that lies so many rows above pSrc: it is then read from there, and no row is repeated.
 *  @param[in]  pSrc      where the block would be; the picture's first row is pSrc + outPixels rows
 *  @param      srcStep   bytes between rows
 *  @param[out] pDst      the block
 *  @param      dstStep   bytes between rows
 *  @param      dx,dy     fraction of the vector, 0 to 7
 *  @param      outPixels rows of the block above the picture, 0 or more
 *  @param      roiSize   size of the block
 *  @retval moxStsNullPointer pSrc or pDst is null
 *  @retval moxStsBadArg      dx or dy is not 0 to 7
 *  @retval moxStsBadSize     height is odd, or width not one of the table */
MOX_API MoxStatus moxiInterpolateChromaTop_H264_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                                       Mox32s dx, Mox32s dy, Mox32s outPixels, MoxiSize roiSize);

/** Chroma block that crosses the lower edge of the picture, 8-bit: as moxiInterpolateChromaTop_H264_8u_C1R, but
 *  `outPixels` counts the rows of the block below the picture, and a negative number lets only the margin cross. */
MOX_API MoxStatus moxiInterpolateChromaBottom_H264_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst,
                                                          Mox32s dstStep, Mox32s dx, Mox32s dy, Mox32s outPixels,
                                                          MoxiSize roiSize);

/** Chroma block of interleaved U and V (NV12), 8-bit, to two planes.
 *  @param[in]  pSrc    the block's first pair: U in the first byte, V in the second; any alignment
 *  @param      srcStep bytes between rows
 *  @param[out] pDstU   the block's U samples
 *  @param[out] pDstV   the block's V samples
 *  @param      dstStep bytes between rows of both
 *  @param      dx,dy   fraction of the vector, 0 to 7
 *  @param      roiSize size of the block, in pairs
 *  @retval moxStsNullPointer pSrc, pDstU or pDstV is null
 *  @retval moxStsBadArg      dx or dy is not 0 to 7
 *  @retval moxStsBadSize     height is odd, or width not one of the table */
MOX_API MoxStatus moxiInterpolateChroma_H264_8u_C2P2R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDstU, Mox8u* pDstV,
                                                      Mox32s dstStep, Mox32s dx, Mox32s dy, MoxiSize roiSize);

/** Chroma block of one plane, 16-bit. Always reads one more column and one more row than the block has, even where
 *  their weight is 0.
 *  @param[in] pRegion block, steps, fraction and size; bitDepth is not read
 *  @retval moxStsNullPointer pRegion, its pSrc or its pDst is null
 *  @retval moxStsBadStep     srcStep or dstStep is below 8
 *  @retval moxStsBadArg      dx or dy is not 0 to 7
 *  @retval moxStsBadSize     height or width is not 2, 4, 8 or 16 */
MOX_API MoxStatus moxiInterpolateChroma_H264_16u_C1R(const MoxiInterpRegion_16u* pRegion);

/** Chroma block that crosses the upper edge of the picture, 16-bit: as moxiInterpolateChroma_H264_16u_C1R, but it reads
 *  another column or row only where it has a weight.
 *  @param[in] pRegion   block, steps, fraction and size
 *  @param     outPixels rows of the block above the picture, any number */
MOX_API MoxStatus moxiInterpolateChromaTop_H264_16u_C1R(const MoxiInterpRegion_16u* pRegion, Mox32s outPixels);

/** Chroma block that crosses the lower edge of the picture, 16-bit: as moxiInterpolateChromaTop_H264_16u_C1R.
 *  @param[in] pRegion   block, steps, fraction and size
 *  @param     outPixels rows of the block below the picture, any number */
MOX_API MoxStatus moxiInterpolateChromaBottom_H264_16u_C1R(const MoxiInterpRegion_16u* pRegion, Mox32s outPixels);

/** Luma block by its vector, 8-bit. Samples outside the reference are the nearest ones in it (8.4.2.2.1). No sample
 *  outside frameSize is read, with two exceptions. If the vector is zero in both components, the block is copied from
 *  blockPos without a look at frameSize. And where the reference is narrower or lower than what the filter reads, only
 *  one of two opposite sides is repeated: the left or upper one if the filter starts outside there, or else the right
 * or lower one. Samples behind the other side are read as they are, so they must be readable.
 *  @param[in] pBlock reference, destination and geometry
 *  @retval moxStsNullPointer pBlock, its pSrcPlane[0] or its pDstPlane[0] is null
 *  @retval moxStsBadSize     height is no multiple of 4, or width not one of the table */
MOX_API MoxStatus moxiInterpolateLumaBlock_H264_8u_P1R(const MoxiInterpBlock_8u* pBlock);

/** Luma block by its vector, 16-bit: as moxiInterpolateLumaBlock_H264_8u_P1R, with the same sizes. So 4x16 and 16x4
 *  pass here, and all columns are written.
 *  @retval moxStsNullPointer pBlock, its pSrcPlane[0] or its pDstPlane[0] is null
 *  @retval moxStsBadSize     height is no multiple of 4, or width not one of the table */
MOX_API MoxStatus moxiInterpolateLumaBlock_H264_16u_P1R(const MoxiInterpBlock_16u* pBlock);

/** U and V block by their vector, 8-bit, planes of one geometry. Samples outside the reference as in
 *  moxiInterpolateLumaBlock_H264_8u_P1R.
 *  @param[in] pBlock references, destinations and geometry
 *  @retval moxStsNullPointer pBlock or one of its four pointers is null
 *  @retval moxStsBadSize     height is odd, or width not one of the table */
MOX_API MoxStatus moxiInterpolateChromaBlock_H264_8u_P2R(const MoxiInterpBlock_8u* pBlock);

/** U and V block by their vector, 8-bit, from an interleaved reference to two planes: as
 *  moxiInterpolateChromaBlock_H264_8u_P2R with pairs for samples. pSrcPlane[1] is not read.
 *  @param[in] pBlock reference, destinations and geometry; pDstPlane[1] must not be null, and is not tested
 *  @retval moxStsNullPointer pBlock, its pSrcPlane[0] or its pDstPlane[0] is null
 *  @retval moxStsBadSize     height is odd, or width not one of the table */
MOX_API MoxStatus moxiInterpolateChromaBlock_H264_8u_C2P2R(const MoxiInterpBlock_8u* pBlock);

/** U and V block by their vector, 16-bit: as moxiInterpolateChromaBlock_H264_8u_P2R, with the same sizes, and all
 *  columns are written. bitDepth is not read.
 *  @param[in] pBlock references, destinations and geometry
 *  @retval moxStsNullPointer pBlock or one of its four pointers is null
 *  @retval moxStsBadSize     height is odd, or width not one of the table */
MOX_API MoxStatus moxiInterpolateChromaBlock_H264_16u_P2R(const MoxiInterpBlock_16u* pBlock);

MOX_END_DECLS

#endif
