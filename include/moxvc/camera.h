/** @file
 *  Camera path: packed 4:2:2 pictures scaled down, converted and turned for a display or an encoder. All of it is this
 *  library's own definition.
 *
 *  Source. Two bytes a pixel, two pixels in the order Cb Y Cr Y; both pixels of such a pair have its Cb and Cr.
 *
 *  Rotation. A picture of W x H samples becomes one of W x H for 0 and moxRotate180, of H x W for the other two. The
 *  sample in column x and row y goes to
 *
 *      moxRotateNone     column x,          row y
 *      moxRotate90Left   column y,          row W - 1 - x       counterclockwise
 *      moxRotate90Right  column H - 1 - y,  row x               clockwise
 *      moxRotate180      column W - 1 - x,  row H - 1 - y
 *
 *  Memory. Sources and destinations are read and written to the extent of their samples, and must not overlap. Steps
 *  count bytes, may be negative and are not tested; any alignment.
 *
 *  Status. Null pointers in the order of the arguments, then sizes, then parameters in the order of the arguments;
 *  nothing is written then. */
#ifndef MOXVC_CAMERA_H
#define MOXVC_CAMERA_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

/** Values of `rotation`. */
enum {
  moxRotateNone = 0,    /**< as it is */
  moxRotate90Left = 1,  /**< by a quarter, counterclockwise */
  moxRotate90Right = 2, /**< by a quarter, clockwise */
  moxRotate180 = 3      /**< upside down */
};

/** Values of `interpolation`. */
enum {
  moxInterpolateNearest = 1, /**< one pixel */
  moxInterpolateBilinear = 2 /**< the mean of four */
};

/** Scales a packed 4:2:2 region down by f, converts it to packed RGB of 16 bits and turns it.
 *
 *  The scaled picture has W = roiSize.width / f columns and H = roiSize.height / f rows, cut off. Its pixel in column i
 *  and row j is, in each of Y, Cb and Cr,
 *
 *      nearest    that of the source's pixel in column f i and row f j
 *      bilinear   (sum over the pixels in columns f i + f/2 - 1 and f i + f/2, rows f j + f/2 - 1 and f j + f/2, + 2)
 * >> 2
 *
 *  and as RGB, after ITU-R BT.601 for Y of 16..235 and Cb and Cr of 16..240, each limited to 0..255,
 *
 *      R = (298 (Y - 16) + 409 (Cr - 128) + 128) >> 8
 *      G = (298 (Y - 16) - 100 (Cb - 128) - 208 (Cr - 128) + 128) >> 8
 *      B = (298 (Y - 16) + 516 (Cb - 128) + 128) >> 8
 *
 *  A destination pixel is a 16-bit word, low byte first, of the upper bits of each:
 *
 *      565   R in bits 15..11, G in bits 10..5, B in bits 4..0
 *      555   R in bits 14..10, G in bits 9..5,  B in bits 4..0, bit 15 is 0
 *      444   R in bits 11..8,  G in bits 7..4,  B in bits 3..0, bits 15..12 are 0
 *
 *  @param[in]  pSrc            source, 2 roiSize.width bytes a row
 *  @param      srcStep         bytes between its rows
 *  @param[out] pDst            destination: 2 W bytes a row and H rows, or for a quarter's turn 2 H bytes and W rows
 *  @param      dstStep         bytes between its rows
 *  @param      roiSize         pixels of the source: an even width from 8, a height from 8
 *  @param      scaleFactor     f, 2, 4 or 8
 *  @param      interpolation   1 nearest, 2 bilinear
 *  @param      colorConversion 565, 555 or 444
 *  @param      rotation        0 to 3: none, 90 left, 90 right, 180
 *  @retval moxStsNullPointer      pSrc or pDst is null
 *  @retval moxStsBadSize          the width is below 8 or odd, or the height is below 8
 *  @retval moxStsBadScaleFactor   scaleFactor is not 2, 4 or 8
 *  @retval moxStsBadInterpolation interpolation is neither 1 nor 2
 *  @retval moxStsBadArg           colorConversion or rotation is none of its values */
MOX_API MoxStatus moxiResizeCCRotate_8u_C2R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                            MoxiSize roiSize, Mox32s scaleFactor, Mox32s interpolation,
                                            Mox32s colorConversion, Mox32s rotation);

/** Converts a packed 4:2:2 region to planes of 4:2:0, turned. A chroma sample is that of two rows of the source,
 *  a and b, as (a + b + 1) >> 1; rows 0 and 1 give the first.
 *  @param[in]  pSrc      source, 2 roiSize.width bytes a row
 *  @param      srcStep   bytes between its rows
 *  @param[out] pDstY     luma, roiSize, turned
 *  @param      dstYStep  bytes between its rows
 *  @param[out] pDstCb    Cb, half of roiSize, turned
 *  @param      dstCbStep bytes between its rows
 *  @param[out] pDstCr    Cr, half of roiSize, turned
 *  @param      dstCrStep bytes between its rows
 *  @param      roiSize   pixels of the source, both even and from 2
 *  @param      rotation  0 to 3: none, 90 left, 90 right, 180
 *  @retval moxStsNullPointer pSrc, pDstY, pDstCb or pDstCr is null
 *  @retval moxStsBadSize     a width or height is below 2 or odd
 *  @retval moxStsBadArg      rotation is none of its values */
MOX_API MoxStatus moxiCbYCr422ToYCbCr420_Rotate_8u_C2P3R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDstY,
                                                         Mox32s dstYStep, Mox8u* pDstCb, Mox32s dstCbStep,
                                                         Mox8u* pDstCr, Mox32s dstCrStep, MoxiSize roiSize,
                                                         Mox32s rotation);

MOX_END_DECLS

#endif
