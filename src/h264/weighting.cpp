#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "h264/weighting_vec.hpp"
#include "moxvc/h264_weighting.h"

using namespace mox;

namespace {

/// Blocks that the forms with a size test take.
constexpr bool is_block(MoxiSize size) { return fixed_width(size.width) > 0 && fixed_width(size.height) > 0; }

/// True if one of the steps is below the width, all as unsigned numbers: a negative step is above each width that
/// passes the size test.
template <class... Step>
constexpr bool any_below_unsigned(Mox32s width, Step... steps) {
  return (... || (static_cast<Mox32u>(steps) < static_cast<Mox32u>(width)));
}

/// True if the record or one of its pointers is null.
bool lacks_pointer(const MoxiBidirParams_16u* p) { return any_null(p) || any_null(p->pSrc1, p->pSrc2, p->pDst); }

/// The steps of records are compared as signed numbers.
bool has_bad_step(const MoxiBidirParams_16u& p) {
  return p.srcStep1 < p.width || p.srcStep2 < p.width || p.dstStep < p.width;
}

MoxiSize size_of(const MoxiBidirParams_16u& p) { return {p.width, p.height}; }

BlockPair<Mox16u> pair_of(const MoxiBidirParams_16u& p) {
  return {p.pSrc1, p.srcStep1, p.pSrc2, p.srcStep2, p.pDst, p.dstStep};
}

}  // namespace

MoxStatus moxiWeightedAverage_H264_8u_C1IR(const Mox8u* pSrc1, Mox8u* pSrcDst, Mox32s srcDstStep, Mox32s weight1,
                                           Mox32s weight2, Mox32u shift, Mox32s offset, MoxiSize roiSize) {
  if (any_null(pSrc1, pSrcDst)) return moxStsNullPointer;
  if (srcDstStep < roiSize.width) return moxStsBadStep;
  if (!is_block(roiSize)) return moxStsBadSize;
  return active::weight_blocks(BlockPair<Mox8u>{pSrc1, srcDstStep, pSrcDst, srcDstStep, pSrcDst, srcDstStep},
                               plain_weighting(shift, weight1, weight2, offset, 255), roiSize);
}

MoxStatus moxiUniDirWeightBlock_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32u log2Wd, Mox32s weight,
                                             Mox32s offset, MoxiSize roiSize) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (any_below_unsigned(roiSize.width, srcDstStep)) return moxStsBadStep;
  if (!is_block(roiSize)) return moxStsBadSize;
  return active::weight_block(pSrcDst, srcDstStep, plain_weighting(log2Wd, weight, 0, offset, 255), roiSize);
}

MoxStatus moxiUniDirWeightBlock_H264_8u_C1R(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32u log2Wd, Mox32s weight,
                                            Mox32s offset, MoxiSize roiSize) {
  return moxiUniDirWeightBlock_H264_8u_C1IR(pSrcDst, srcDstStep, log2Wd, weight, offset, roiSize);
}

MoxStatus moxiBiDirWeightBlock_H264_8u_P2P1R(const Mox8u* pSrc1, const Mox8u* pSrc2, Mox8u* pDst, Mox32s srcStep,
                                             Mox32s dstStep, Mox32u log2Wd, Mox32s weight1, Mox32s offset1,
                                             Mox32s weight2, Mox32s offset2, MoxiSize roiSize) {
  if (any_null(pSrc1, pSrc2, pDst)) return moxStsNullPointer;
  if (any_below_unsigned(roiSize.width, srcStep, dstStep)) return moxStsBadStep;
  if (!is_block(roiSize)) return moxStsBadSize;
  return active::weight_blocks(BlockPair<Mox8u>{pSrc1, srcStep, pSrc2, srcStep, pDst, dstStep},
                               explicit_weighting(log2Wd, weight1, offset1, weight2, offset2, 255), roiSize);
}

MoxStatus moxiBiDirWeightBlock_H264_8u_P3P1R(const Mox8u* pSrc1, const Mox8u* pSrc2, Mox8u* pDst, Mox32s srcStep1,
                                             Mox32s srcStep2, Mox32s dstStep, Mox32u log2Wd, Mox32s weight1,
                                             Mox32s offset1, Mox32s weight2, Mox32s offset2, MoxiSize roiSize) {
  if (any_null(pSrc1, pSrc2, pDst)) return moxStsNullPointer;
  if (any_below_unsigned(roiSize.width, srcStep1, srcStep2, dstStep)) return moxStsBadStep;
  if (!is_block(roiSize)) return moxStsBadSize;
  return active::weight_blocks(BlockPair<Mox8u>{pSrc1, srcStep1, pSrc2, srcStep2, pDst, dstStep},
                               explicit_weighting(log2Wd, weight1, offset1, weight2, offset2, 255), roiSize);
}

MoxStatus moxiBiDirWeightBlockImplicit_H264_8u_P2P1R(const Mox8u* pSrc1, const Mox8u* pSrc2, Mox8u* pDst,
                                                     Mox32s srcStep, Mox32s dstStep, Mox32s weight1, Mox32s weight2,
                                                     MoxiSize roiSize) {
  if (any_null(pSrc1, pSrc2, pDst)) return moxStsNullPointer;
  if (any_below_unsigned(roiSize.width, srcStep, dstStep)) return moxStsBadStep;
  if (!is_block(roiSize)) return moxStsBadSize;
  return active::weight_blocks(BlockPair<Mox8u>{pSrc1, srcStep, pSrc2, srcStep, pDst, dstStep},
                               implicit_weighting(weight1, weight2, 255), roiSize);
}

MoxStatus moxiBiDirWeightBlockImplicit_H264_8u_P3P1R(const Mox8u* pSrc1, const Mox8u* pSrc2, Mox8u* pDst,
                                                     Mox32s srcStep1, Mox32s srcStep2, Mox32s dstStep, Mox32s weight1,
                                                     Mox32s weight2, MoxiSize roiSize) {
  if (any_null(pSrc1, pSrc2, pDst)) return moxStsNullPointer;
  return active::weight_blocks_of_any_size({pSrc1, srcStep1, pSrc2, srcStep2, pDst, dstStep},
                                           implicit_weighting(weight1, weight2, 255), roiSize);
}

MoxStatus moxiBidir_H264_16u_P2P1R(const MoxiBidirParams_16u* pParams) {
  if (lacks_pointer(pParams)) return moxStsNullPointer;
  if (outside(pParams->width, 2, 16) || outside(pParams->height, 2, 16)) return moxStsBadSize;
  return active::bidir_average_16u[pParams->width](pair_of(*pParams), size_of(*pParams));
}

MoxStatus moxiBidirWeight_H264_16u_P2P1R(const MoxiBidirParams_16u* pParams, Mox32u log2Wd, Mox32s weight1,
                                         Mox32s offset1, Mox32s weight2, Mox32s offset2) {
  if (lacks_pointer(pParams)) return moxStsNullPointer;
  if (has_bad_step(*pParams)) return moxStsBadStep;
  if (!is_block(size_of(*pParams))) return moxStsBadSize;
  const Mox32s max = sample_max(pParams->bitDepth);
  return active::weight_blocks(pair_of(*pParams), explicit_weighting(log2Wd, weight1, offset1, weight2, offset2, max),
                               size_of(*pParams));
}

MoxStatus moxiBidirWeightImplicit_H264_16u_P2P1R(const MoxiBidirParams_16u* pParams, Mox32s weight1, Mox32s weight2) {
  if (lacks_pointer(pParams)) return moxStsNullPointer;
  if (has_bad_step(*pParams)) return moxStsBadStep;
  if (!is_block(size_of(*pParams))) return moxStsBadSize;
  const Mox32s max = sample_max(pParams->bitDepth);
  return active::weight_blocks(pair_of(*pParams), implicit_weighting(weight1, weight2, max), size_of(*pParams));
}

MoxStatus moxiUnidirWeight_H264_16u_IP2P1R(Mox16u* pSrcDst, Mox32s srcDstStep, Mox32u log2Wd, Mox32s weight,
                                           Mox32s offset, MoxiSize roiSize, Mox32s bitDepth) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (any_below_unsigned(roiSize.width, srcDstStep)) return moxStsBadStep;
  if (!is_block(roiSize)) return moxStsBadSize;
  return active::weight_block(pSrcDst, srcDstStep, plain_weighting(log2Wd, weight, 0, offset, sample_max(bitDepth)),
                              roiSize);
}
