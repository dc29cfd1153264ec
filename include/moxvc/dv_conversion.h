/** @file
 *  Decoded DV macroblocks to packed 4:2:2 (IEC 61834-2, SMPTE 314M and 370M).
 *
 *  A call converts the five macroblocks of a video segment, which lie in five places of the picture. What these
 *  functions compute, and what the arguments mean, is laid down here; nothing beyond it is promised.
 *
 *  Source. The blocks as a decoder holds them behind the segment decoders (dv_segment.h) and the inverse transforms
 *  (dv_transform.h): 64 values a block, samples of 16 bits that are 128 too low, in raster order. pSrcY, pSrcCr and
 *  pSrcCb are the first blocks of each plane of the first macroblock; those of the next macroblock lie srcStep bytes
 *  behind. With blocks in the order of the segment, pSrcCr is pSrcY + 256 values, pSrcCb is pSrcY + 320 (DV100: + 384),
 *  and srcStep is 768 (DV100: 1024).
 *
 *  Macroblocks, with the luma blocks in raster order:
 *
 *      411  5MBDV     4 luma blocks side by side, 32x8 samples; one chroma column for four of luma
 *      411  EdgeDV    the same, but the last macroblock is one of the right edge of the picture
 *      420  5MBDV     2x2 luma blocks, 16x16 samples; one chroma column for two of luma
 *      422  5MBDV     2 luma blocks side by side, 16x8 samples; one chroma column for two of luma
 *      422  5MBDV100  2x2 luma blocks, 16x16 samples; one chroma column for two of luma
 *
 *  Planes of chroma have one block of 8x8 in a macroblock, and two, one below the other, in 5MBDV100. The macroblock of
 *  the edge has 2x2 luma blocks, 16x16 samples: columns 0 to 3 of its chroma blocks belong to the upper 8 lines,
 *  columns 4 to 7 to the lower 8. In 420, of four luma lines the first and the third, which are of one field, have one
 *  chroma line, and the second and the fourth have the next. In 422 5MBDV, luma is the first and the third block of the
 *  macroblock (DV50); the second is not read.
 *
 *  Destination. Rows of Y Cb Y Cr, four bytes for two luma samples. ppDst has the address of the first byte of each
 *  macroblock, dstStep bytes are from row to row. A chroma sample is repeated for all luma samples it belongs to; none
 *  is interpolated. Samples get 128 added and are limited to 0..255.
 *
 *  ZoomOut forms, of all but DV100, make pictures of 1/2, 1/4 or 1/8 of the width and height. Of each block they read
 *  the first 16 values as 4x4 samples, the first 4 as 2x2, or the DC c alone, of which the sample is (c + 4) >> 3.
 *  All else is as above with 4, 2 or 1 in the place of 8, but for the chroma lines of 420: one for each two luma
 *  lines, since a line of such a picture has both fields.
 *
 *  Memory. Read are the first 64, 16, 4 or 1 values of each block. Written are the rows of each macroblock, twice its
 *  width in bytes, and nothing between. srcStep must be even; both steps may be negative or 0. Destinations must not
 *  overlap the source; where two of them overlap, the later macroblock stays.
 *
 *  Status. Null pointers are tested in the order of the arguments, each of the five pointers of ppDst behind ppDst
 *  itself; nothing is written then. Steps are not tested. */
#ifndef MOXVC_DV_CONVERSION_H
#define MOXVC_DV_CONVERSION_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

/** Five macroblocks of 4:1:1, 32x8 samples.
 *  @param[in]  pSrcY,pSrcCr,pSrcCb first blocks of the first macroblock
 *  @param      srcStep             bytes from a macroblock to the next
 *  @param[out] ppDst               five destinations, 2 bytes a sample
 *  @param      dstStep             bytes from row to row
 *  @retval moxStsNullPointer pSrcY, pSrcCr, pSrcCb, ppDst or one of its pointers is null */
MOX_API MoxStatus moxiYCrCb411ToYCbCr422_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                           const Mox16s* pSrcCb, Mox32s srcStep, Mox8u* const* ppDst,
                                                           Mox32s dstStep);

/** The same at 1/2 of the width and height. */
MOX_API MoxStatus moxiYCrCb411ToYCbCr422_ZoomOut2_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                                    const Mox16s* pSrcCb, Mox32s srcStep,
                                                                    Mox8u* const* ppDst, Mox32s dstStep);

/** The same at 1/4 of the width and height. */
MOX_API MoxStatus moxiYCrCb411ToYCbCr422_ZoomOut4_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                                    const Mox16s* pSrcCb, Mox32s srcStep,
                                                                    Mox8u* const* ppDst, Mox32s dstStep);

/** The same at 1/8 of the width and height. */
MOX_API MoxStatus moxiYCrCb411ToYCbCr422_ZoomOut8_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                                    const Mox16s* pSrcCb, Mox32s srcStep,
                                                                    Mox8u* const* ppDst, Mox32s dstStep);

/** Four macroblocks of 4:1:1, 32x8 samples, and one of the right edge, 16x16.
 *  @param[in]  pSrcY,pSrcCr,pSrcCb first blocks of the first macroblock
 *  @param      srcStep             bytes from a macroblock to the next
 *  @param[out] ppDst               five destinations, 2 bytes a sample
 *  @param      dstStep             bytes from row to row
 *  @retval moxStsNullPointer pSrcY, pSrcCr, pSrcCb, ppDst or one of its pointers is null */
MOX_API MoxStatus moxiYCrCb411ToYCbCr422_EdgeDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                            const Mox16s* pSrcCb, Mox32s srcStep, Mox8u* const* ppDst,
                                                            Mox32s dstStep);

/** The same at 1/2 of the width and height. */
MOX_API MoxStatus moxiYCrCb411ToYCbCr422_ZoomOut2_EdgeDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                                     const Mox16s* pSrcCb, Mox32s srcStep,
                                                                     Mox8u* const* ppDst, Mox32s dstStep);

/** The same at 1/4 of the width and height. */
MOX_API MoxStatus moxiYCrCb411ToYCbCr422_ZoomOut4_EdgeDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                                     const Mox16s* pSrcCb, Mox32s srcStep,
                                                                     Mox8u* const* ppDst, Mox32s dstStep);

/** The same at 1/8 of the width and height. */
MOX_API MoxStatus moxiYCrCb411ToYCbCr422_ZoomOut8_EdgeDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                                     const Mox16s* pSrcCb, Mox32s srcStep,
                                                                     Mox8u* const* ppDst, Mox32s dstStep);

/** Five macroblocks of 4:2:0, 16x16 samples.
 *  @param[in]  pSrcY,pSrcCr,pSrcCb first blocks of the first macroblock
 *  @param      srcStep             bytes from a macroblock to the next
 *  @param[out] ppDst               five destinations, 2 bytes a sample
 *  @param      dstStep             bytes from row to row
 *  @retval moxStsNullPointer pSrcY, pSrcCr, pSrcCb, ppDst or one of its pointers is null */
MOX_API MoxStatus moxiYCrCb420ToYCbCr422_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                           const Mox16s* pSrcCb, Mox32s srcStep, Mox8u* const* ppDst,
                                                           Mox32s dstStep);

/** The same at 1/2 of the width and height. */
MOX_API MoxStatus moxiYCrCb420ToYCbCr422_ZoomOut2_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                                    const Mox16s* pSrcCb, Mox32s srcStep,
                                                                    Mox8u* const* ppDst, Mox32s dstStep);

/** The same at 1/4 of the width and height. */
MOX_API MoxStatus moxiYCrCb420ToYCbCr422_ZoomOut4_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                                    const Mox16s* pSrcCb, Mox32s srcStep,
                                                                    Mox8u* const* ppDst, Mox32s dstStep);

/** The same at 1/8 of the width and height. */
MOX_API MoxStatus moxiYCrCb420ToYCbCr422_ZoomOut8_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                                    const Mox16s* pSrcCb, Mox32s srcStep,
                                                                    Mox8u* const* ppDst, Mox32s dstStep);

/** Five macroblocks of DV50 4:2:2, 16x8 samples.
 *  @param[in]  pSrcY,pSrcCr,pSrcCb first blocks of the first macroblock
 *  @param      srcStep             bytes from a macroblock to the next
 *  @param[out] ppDst               five destinations, 2 bytes a sample
 *  @param      dstStep             bytes from row to row
 *  @retval moxStsNullPointer pSrcY, pSrcCr, pSrcCb, ppDst or one of its pointers is null */
MOX_API MoxStatus moxiYCrCb422ToYCbCr422_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                           const Mox16s* pSrcCb, Mox32s srcStep, Mox8u* const* ppDst,
                                                           Mox32s dstStep);

/** The same at 1/2 of the width and height. */
MOX_API MoxStatus moxiYCrCb422ToYCbCr422_ZoomOut2_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                                    const Mox16s* pSrcCb, Mox32s srcStep,
                                                                    Mox8u* const* ppDst, Mox32s dstStep);

/** The same at 1/4 of the width and height. */
MOX_API MoxStatus moxiYCrCb422ToYCbCr422_ZoomOut4_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                                    const Mox16s* pSrcCb, Mox32s srcStep,
                                                                    Mox8u* const* ppDst, Mox32s dstStep);

/** The same at 1/8 of the width and height. */
MOX_API MoxStatus moxiYCrCb422ToYCbCr422_ZoomOut8_5MBDV_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                                    const Mox16s* pSrcCb, Mox32s srcStep,
                                                                    Mox8u* const* ppDst, Mox32s dstStep);

/** Five macroblocks of DV100 4:2:2, 16x16 samples.
 *  @param[in]  pSrcY,pSrcCr,pSrcCb first blocks of the first macroblock
 *  @param      srcStep             bytes from a macroblock to the next
 *  @param[out] ppDst               five destinations, 2 bytes a sample
 *  @param      dstStep             bytes from row to row
 *  @retval moxStsNullPointer pSrcY, pSrcCr, pSrcCb, ppDst or one of its pointers is null */
MOX_API MoxStatus moxiYCrCb422ToYCbCr422_5MBDV100_16s8u_P3C2R(const Mox16s* pSrcY, const Mox16s* pSrcCr,
                                                              const Mox16s* pSrcCb, Mox32s srcStep, Mox8u* const* ppDst,
                                                              Mox32s dstStep);

MOX_END_DECLS

#endif
