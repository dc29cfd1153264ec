#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "h263/filter_px.hpp"
#include "h263/filter_vec.hpp"
#include "moxvc/h263_filter.h"

using namespace mox;

MoxStatus moxiFilterDeblocking8x8HorEdge_H263_8u_C1IR(Mox8u* pSrcDst, Mox32u srcDstStep, Mox32s QP) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(QP, 1, 31)) return moxStsBadQp;
  return active::ownFilterDeblocking8x8_H263_H(pSrcDst, wrap32(srcDstStep), active::h263_Deblock_QPStrength[QP]);
}

MoxStatus moxiFilterDeblocking8x8VerEdge_H263_8u_C1IR(Mox8u* pSrcDst, Mox32u srcDstStep, Mox32s QP) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(QP, 1, 31)) return moxStsBadQp;
  return active::ownFilterDeblocking8x8_H263_V(pSrcDst, wrap32(srcDstStep), active::h263_Deblock_QPStrength[QP]);
}

MoxStatus moxiFilterDeblocking16x16HorEdge_H263_8u_C1IR(Mox8u* pSrcDst, Mox32u srcDstStep) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  return active::ownFilterDeblocking16x16_H263_H(pSrcDst, wrap32(srcDstStep));
}

MoxStatus moxiFilterDeblocking16x16VerEdge_H263_8u_C1IR(Mox8u* pSrcDst, Mox32u srcDstStep) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  return active::ownFilterDeblocking16x16_H263_V(pSrcDst, wrap32(srcDstStep));
}

MoxStatus moxiFilterBlockBoundaryHorEdge_H263_8u_C1IR(Mox8u* pSrcDst, Mox32u srcDstStep) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  return active::ownFilterBB16x16_H263_H(pSrcDst, wrap32(srcDstStep));
}

MoxStatus moxiFilterBlockBoundaryVerEdge_H263_8u_C1IR(Mox8u* pSrcDst, Mox32u srcDstStep) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  return active::ownFilterBB16x16_H263_V(pSrcDst, wrap32(srcDstStep));
}
