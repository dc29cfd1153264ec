/** @file
 *  H.264 weighted prediction (ITU-T H.264 8.4.2.3): one or two finished prediction blocks become the inter prediction.
 *
 *  With a and b the samples of the first and the second block at the same place:
 *
 *  | Form                    | Before the clip                                                                   |
 *  |-------------------------|-----------------------------------------------------------------------------------|
 *  | one block               | ((a weight + r) >> log2Wd) + offset; r is 1 << (log2Wd - 1), or 0 if log2Wd is 0  |
 *  | two, explicit weights   | ((a weight1 + b weight2 + (1 << log2Wd)) >> (log2Wd + 1)) + o                     |
 *  |                         | with o = (offset1 + offset2 + 1) >> 1                                             |
 *  | two, implicit weights   | (a weight1 + b weight2 + 32) >> 6                                                 |
 *  | moxiBidir_H264_16u_P2P1R| (a + b + 1) >> 1, not clipped                                                     |
 *
 *  Arguments of the formula are not tested. Sums and products are 32-bit and wrap, shifts to the right keep the sign,
 *  and shift counts are taken modulo 32: with a log2Wd of 32 one block is rounded by 1 << 31 and not shifted. A
 * bitDepth above 16 stores the low 16 bits of a result.
 *
 *  Memory. Exactly width x height samples of each block are read and written, at any alignment of their type. The
 *  result may take the place of a source, with its step; the result is not defined where blocks overlap in another way.
 *
 *  Steps count bytes in 8u forms and samples in 16u forms. Where a step is tested as an unsigned number, a negative one
 *  passes and rows go upwards in memory.
 *
 *  Status. The tests are made in the order in which each function lists them; a call that fails writes nothing. Where
 *  the size is tested, width and height are each one of 2, 4, 8 and 16, in any combination.
 */
#ifndef MOXVC_H264_WEIGHTING_H
#define MOXVC_H264_WEIGHTING_H

#include "types.h"

MOX_BEGIN_DECLS

/** Blocks of the 16-bit forms. */
typedef struct MoxiBidirParams_16u {
  const Mox16u* pSrc1; /**< first prediction, width x height samples */
  Mox32s srcStep1;     /**< samples between its rows */
  const Mox16u* pSrc2; /**< second prediction */
  Mox32s srcStep2;     /**< samples between its rows */
  Mox16u* pDst;        /**< result */
  Mox32s dstStep;      /**< samples between its rows */
  Mox32s width;        /**< samples in a row */
  Mox32s height;       /**< rows */
  Mox32s bitDepth;     /**< bits of a sample, 8 to 16 */
} MoxiBidirParams_16u;

/** Two 8-bit blocks with one offset, in place of the second: ((a weight1 + b weight2 + r) >> shift) + offset, where r
 * is 1 << (shift - 1), or 0 if shift is 0. Choose weights and offset so that this lies in -256..511, as no caller can
 * rely on more; results are clipped to 0..255.
 *  @param[in]     pSrc1           first block, rows srcDstStep apart
 *  @param[in,out] pSrcDst         second block, and the result
 *  @param         srcDstStep      bytes between rows of both, at least the width
 *  @param         weight1,weight2 weights of pSrc1 and pSrcDst
 *  @param         shift           shift to the right, modulo 32
 *  @param         offset          added after the shift
 *  @param         roiSize         2, 4, 8 or 16 by 2, 4, 8 or 16
 *  @retval moxStsNullPointer pSrc1 or pSrcDst is null
 *  @retval moxStsBadStep     srcDstStep is below the width, as signed numbers
 *  @retval moxStsBadSize     height or width is another */
MOX_API MoxStatus moxiWeightedAverage_H264_8u_C1IR(const Mox8u* pSrc1, Mox8u* pSrcDst, Mox32s srcDstStep,
                                                   Mox32s weight1, Mox32s weight2, Mox32u shift, Mox32s offset,
                                                   MoxiSize roiSize);

/** One 8-bit block, in place.
 *  @param[in,out] pSrcDst    block
 *  @param         srcDstStep bytes between rows
 *  @param         log2Wd     shift to the right, 0 to 7 in a stream
 *  @param         weight     weight, -128 to 127 in a stream
 *  @param         offset     added after the shift, -128 to 127 in a stream
 *  @param         roiSize    2, 4, 8 or 16 by 2, 4, 8 or 16
 *  @retval moxStsNullPointer pSrcDst is null
 *  @retval moxStsBadStep     srcDstStep is below the width, as unsigned numbers
 *  @retval moxStsBadSize     height or width is another */
MOX_API MoxStatus moxiUniDirWeightBlock_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32u log2Wd, Mox32s weight,
                                                     Mox32s offset, MoxiSize roiSize);

/** Another name of moxiUniDirWeightBlock_H264_8u_C1IR.
 *  @retval moxStsNullPointer pSrcDst is null
 *  @retval moxStsBadStep     srcDstStep is below the width, as unsigned numbers
 *  @retval moxStsBadSize     height or width is none of 2, 4, 8, 16 */
MOX_API MoxStatus moxiUniDirWeightBlock_H264_8u_C1R(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32u log2Wd, Mox32s weight,
                                                    Mox32s offset, MoxiSize roiSize);

/** Two 8-bit blocks of one step, explicit weights.
 *  @param[in]  pSrc1           first block, rows srcStep apart
 *  @param[in]  pSrc2           second block, rows srcStep apart
 *  @param[out] pDst            result
 *  @param      srcStep         bytes between rows of both sources
 *  @param      dstStep         bytes between rows of the result
 *  @param      log2Wd          shift to the right less 1, 0 to 7 in a stream
 *  @param      weight1,weight2 weights, -128 to 127 in a stream
 *  @param      offset1,offset2 offsets, of which the mean, halves upwards, is added after the shift
 *  @param      roiSize         2, 4, 8 or 16 by 2, 4, 8 or 16
 *  @retval moxStsNullPointer pSrc1, pSrc2 or pDst is null
 *  @retval moxStsBadStep     srcStep or dstStep is below the width, as unsigned numbers
 *  @retval moxStsBadSize     height or width is another */
MOX_API MoxStatus moxiBiDirWeightBlock_H264_8u_P2P1R(const Mox8u* pSrc1, const Mox8u* pSrc2, Mox8u* pDst,
                                                     Mox32s srcStep, Mox32s dstStep, Mox32u log2Wd, Mox32s weight1,
                                                     Mox32s offset1, Mox32s weight2, Mox32s offset2, MoxiSize roiSize);

/** Two 8-bit blocks of their own steps, explicit weights: as moxiBiDirWeightBlock_H264_8u_P2P1R.
 *  @retval moxStsNullPointer pSrc1, pSrc2 or pDst is null
 *  @retval moxStsBadStep     srcStep1, srcStep2 or dstStep is below the width, as unsigned numbers
 *  @retval moxStsBadSize     height or width is none of 2, 4, 8, 16 */
MOX_API MoxStatus moxiBiDirWeightBlock_H264_8u_P3P1R(const Mox8u* pSrc1, const Mox8u* pSrc2, Mox8u* pDst,
                                                     Mox32s srcStep1, Mox32s srcStep2, Mox32s dstStep, Mox32u log2Wd,
                                                     Mox32s weight1, Mox32s offset1, Mox32s weight2, Mox32s offset2,
                                                     MoxiSize roiSize);

/** Two 8-bit blocks of one step, implicit weights. Weights of 32 give the mean, halves upwards.
 *  @param[in]  pSrc1           first block, rows srcStep apart
 *  @param[in]  pSrc2           second block, rows srcStep apart
 *  @param[out] pDst            result
 *  @param      srcStep         bytes between rows of both sources
 *  @param      dstStep         bytes between rows of the result
 *  @param      weight1,weight2 weights, -64 to 128 and 64 in sum in a stream
 *  @param      roiSize         2, 4, 8 or 16 by 2, 4, 8 or 16
 *  @retval moxStsNullPointer pSrc1, pSrc2 or pDst is null
 *  @retval moxStsBadStep     srcStep or dstStep is below the width, as unsigned numbers
 *  @retval moxStsBadSize     height or width is another */
MOX_API MoxStatus moxiBiDirWeightBlockImplicit_H264_8u_P2P1R(const Mox8u* pSrc1, const Mox8u* pSrc2, Mox8u* pDst,
                                                             Mox32s srcStep, Mox32s dstStep, Mox32s weight1,
                                                             Mox32s weight2, MoxiSize roiSize);

/** Two 8-bit blocks of their own steps, implicit weights: as moxiBiDirWeightBlockImplicit_H264_8u_P2P1R for any size. A
 *  width or height of 0 or less does nothing; neither size nor steps are tested.
 *  @retval moxStsNullPointer pSrc1, pSrc2 or pDst is null */
MOX_API MoxStatus moxiBiDirWeightBlockImplicit_H264_8u_P3P1R(const Mox8u* pSrc1, const Mox8u* pSrc2, Mox8u* pDst,
                                                             Mox32s srcStep1, Mox32s srcStep2, Mox32s dstStep,
                                                             Mox32s weight1, Mox32s weight2, MoxiSize roiSize);

/** The mean of two 16-bit blocks, halves upwards. The bit depth is not read, the steps are not tested.
 *  @param[in] pParams blocks of 2 to 16 by 2 to 16 samples, odd sizes too
 *  @retval moxStsNullPointer pParams or one of its pointers is null
 *  @retval moxStsBadSize     width or height is below 2 or above 16 */
MOX_API MoxStatus moxiBidir_H264_16u_P2P1R(const MoxiBidirParams_16u* pParams);

/** Two 16-bit blocks, explicit weights.
 *  @param[in] pParams         blocks of 2, 4, 8 or 16 by 2, 4, 8 or 16 samples
 *  @param     log2Wd          shift to the right less 1, 0 to 7 in a stream
 *  @param     weight1,weight2 weights, -128 to 127 in a stream
 *  @param     offset1,offset2 offsets in units of the bit depth, of which the mean, halves upwards, is added
 *  @retval moxStsNullPointer pParams or one of its pointers is null
 *  @retval moxStsBadStep     srcStep1, srcStep2 or dstStep is below the width, as signed numbers
 *  @retval moxStsBadSize     height or width is another */
MOX_API MoxStatus moxiBidirWeight_H264_16u_P2P1R(const MoxiBidirParams_16u* pParams, Mox32u log2Wd, Mox32s weight1,
                                                 Mox32s offset1, Mox32s weight2, Mox32s offset2);

/** Two 16-bit blocks, implicit weights.
 *  @param[in] pParams         blocks of 2, 4, 8 or 16 by 2, 4, 8 or 16 samples
 *  @param     weight1,weight2 weights, -64 to 128 and 64 in sum in a stream
 *  @retval moxStsNullPointer pParams or one of its pointers is null
 *  @retval moxStsBadStep     srcStep1, srcStep2 or dstStep is below the width, as signed numbers
 *  @retval moxStsBadSize     height or width is another */
MOX_API MoxStatus moxiBidirWeightImplicit_H264_16u_P2P1R(const MoxiBidirParams_16u* pParams, Mox32s weight1,
                                                         Mox32s weight2);

/** One 16-bit block, in place.
 *  @param[in,out] pSrcDst    block
 *  @param         srcDstStep samples between rows
 *  @param         log2Wd     shift to the right, 0 to 7 in a stream
 *  @param         weight     weight, -128 to 127 in a stream
 *  @param         offset     added after the shift, in units of the bit depth
 *  @param         roiSize    2, 4, 8 or 16 by 2, 4, 8 or 16
 *  @param         bitDepth   bits of a sample, 8 to 16
 *  @retval moxStsNullPointer pSrcDst is null
 *  @retval moxStsBadStep     srcDstStep is below the width, as unsigned numbers
 *  @retval moxStsBadSize     height or width is another */
MOX_API MoxStatus moxiUnidirWeight_H264_16u_IP2P1R(Mox16u* pSrcDst, Mox32s srcDstStep, Mox32u log2Wd, Mox32s weight,
                                                   Mox32s offset, MoxiSize roiSize, Mox32s bitDepth);

MOX_END_DECLS

#endif
