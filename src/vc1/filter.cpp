#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "moxvc/vc1_filter.h"
#include "vc1/filter_px.hpp"
#include "vc1/filter_vec.hpp"

using namespace mox;

MoxStatus moxiFilterDeblockingLuma_VerEdge_VC1_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32s pquant,
                                                       Mox32u segmentMask) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(pquant, 1, 31)) return moxStsBadQp;
  if (outside(segmentMask, 0, 15)) return moxStsOutOfRange;
  return active::ownFilterDeblocking_VerEdge_VC1<16, 1>(pSrcDst, srcDstStep, pquant, segmentMask);
}

MoxStatus moxiFilterDeblockingLuma_HorEdge_VC1_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32s pquant,
                                                       Mox32u segmentMask) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(pquant, 1, 31)) return moxStsBadQp;
  if (outside(segmentMask, 0, 15)) return moxStsOutOfRange;
  return active::ownFilterDeblocking_HorEdge_VC1<16, 1>(pSrcDst, srcDstStep, pquant, segmentMask);
}

MoxStatus moxiFilterDeblockingChroma_VerEdge_VC1_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32s pquant,
                                                         Mox32u segmentMask) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(pquant, 1, 31)) return moxStsBadQp;
  if (outside(segmentMask, 0, 3)) return moxStsOutOfRange;
  return active::ownFilterDeblocking_VerEdge_VC1<8, 1>(pSrcDst, srcDstStep, pquant, segmentMask);
}

MoxStatus moxiFilterDeblockingChroma_HorEdge_VC1_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32s pquant,
                                                         Mox32u segmentMask) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(pquant, 1, 31)) return moxStsBadQp;
  if (outside(segmentMask, 0, 3)) return moxStsOutOfRange;
  return active::ownFilterDeblocking_HorEdge_VC1<8, 1>(pSrcDst, srcDstStep, pquant, segmentMask);
}

MoxStatus moxiFilterDeblockingChroma_VerEdge_VC1_8u_C2IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32s pquant,
                                                         Mox32u segmentMask) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(pquant, 1, 31)) return moxStsBadQp;
  if (outside(segmentMask, 0, 15)) return moxStsOutOfRange;
  return active::ownFilterDeblocking_VerEdge_VC1<8, 2>(pSrcDst, srcDstStep, pquant, segmentMask);
}

MoxStatus moxiFilterDeblockingChroma_HorEdge_VC1_8u_C2IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32s pquant,
                                                         Mox32u segmentMask) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(pquant, 1, 31)) return moxStsBadQp;
  if (outside(segmentMask, 0, 15)) return moxStsOutOfRange;
  return active::ownFilterDeblocking_HorEdge_VC1<8, 2>(pSrcDst, srcDstStep, pquant, segmentMask);
}

MoxStatus moxiSmoothingLuma_VerEdge_VC1_16s8u_C1R(Mox16s* pSrcDst, Mox32s srcDstStep, Mox8u* pDst, Mox32s dstStep,
                                                  Mox32u blockMask) {
  if (any_null(pSrcDst, pDst)) return moxStsNullPointer;
  if (outside(blockMask, 0, 3)) return moxStsOutOfRange;
  return active::ownSmoothing16_VerEdge_VC1(pSrcDst, srcDstStep, pDst, dstStep, blockMask);
}

MoxStatus moxiSmoothingLuma_HorEdge_VC1_16s8u_C1R(Mox16s* pSrcDst, Mox32s srcDstStep, Mox8u* pDst, Mox32s dstStep,
                                                  Mox32u blockMask) {
  if (any_null(pSrcDst, pDst)) return moxStsNullPointer;
  if (outside(blockMask, 0, 3)) return moxStsOutOfRange;
  return active::ownSmoothing16_HorEdge_VC1(pSrcDst, srcDstStep, pDst, dstStep, blockMask);
}

MoxStatus moxiSmoothingChroma_VerEdge_VC1_16s8u_C1R(Mox16s* pSrcDst, Mox32s srcDstStep, Mox8u* pDst, Mox32s dstStep) {
  if (any_null(pSrcDst, pDst)) return moxStsNullPointer;
  return active::ownSmoothing8_VerEdge_VC1(pSrcDst, srcDstStep, pDst, dstStep);
}

MoxStatus moxiSmoothingChroma_HorEdge_VC1_16s8u_C1R(Mox16s* pSrcDst, Mox32s srcDstStep, Mox8u* pDst, Mox32s dstStep) {
  if (any_null(pSrcDst, pDst)) return moxStsNullPointer;
  return active::ownSmoothing8_HorEdge_VC1(pSrcDst, srcDstStep, pDst, dstStep);
}

MoxStatus moxiSmoothingChroma_VerEdge_VC1_16s8u_P2C2R(Mox16s* pSrcDstU, Mox16s* pSrcDstV, Mox32s srcDstStep,
                                                      Mox8u* pDst, Mox32s dstStep) {
  if (any_null(pSrcDstU, pSrcDstV, pDst)) return moxStsNullPointer;
  return active::ownSmoothingPair_VerEdge_VC1(pSrcDstU, pSrcDstV, srcDstStep, pDst, dstStep);
}

MoxStatus moxiSmoothingChroma_HorEdge_VC1_16s8u_P2C2R(Mox16s* pSrcDstU, Mox16s* pSrcDstV, Mox32s srcDstStep,
                                                      Mox8u* pDst, Mox32s dstStep) {
  if (any_null(pSrcDstU, pSrcDstV, pDst)) return moxStsNullPointer;
  return active::ownSmoothingPair_HorEdge_VC1(pSrcDstU, pSrcDstV, srcDstStep, pDst, dstStep);
}

MoxStatus moxiRangeMapping_VC1_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep, MoxiSize roiSize,
                                      Mox32s rangeMap) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (roiSize.width < 1 || roiSize.height < 1) return moxStsBadSize;
  if (outside(rangeMap, 0, 7)) return moxStsOutOfRange;
  return active::ownRangeMapping_VC1(pSrc, srcStep, pDst, dstStep, roiSize, rangeMap);
}
