#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "moxvc/mpeg4_filter.h"
#include "mpeg4/filter_deringing_px.hpp"
#include "mpeg4/filter_deringing_vec.hpp"
#include "mpeg4/filter_px.hpp"
#include "mpeg4/filter_vec.hpp"

using namespace mox;

namespace {

bool no_macroblocks(Mox32s size) { return size < 16 || size % 16 != 0; }

}  // namespace

MoxStatus moxiFilterDeblocking8x8HorEdge_MPEG4_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32s QP) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(QP, 1, 31)) return moxStsBadQp;
  return active::ownFilterDeblocking8x8_MPEG4_H(pSrcDst, srcDstStep, QP);
}

MoxStatus moxiFilterDeblocking8x8VerEdge_MPEG4_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32s QP) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  if (outside(QP, 1, 31)) return moxStsBadQp;
  return active::ownFilterDeblocking8x8_MPEG4_V(pSrcDst, srcDstStep, QP);
}

MoxStatus moxiFilterDeringingThreshold_MPEG4_8u_P3R(const Mox8u* pSrcY, Mox32s srcYStep, const Mox8u* pSrcU,
                                                    Mox32s srcUStep, const Mox8u* pSrcV, Mox32s srcVStep, Mox8u* pDstY,
                                                    Mox32s dstYStep, Mox8u* pDstU, Mox32s dstUStep, Mox8u* pDstV,
                                                    Mox32s dstVStep, MoxiSize roiSize, const Mox8u* pQP,
                                                    Mox32s qpStep) {
  if (any_null(pSrcY, pSrcU, pSrcV, pDstY, pDstU, pDstV, pQP)) return moxStsNullPointer;
  if (no_macroblocks(roiSize.width) || no_macroblocks(roiSize.height)) return moxStsBadSize;
  return active::ownFilterDeringingThreshold_MPEG4(
      {{{{pSrcY, srcYStep, pDstY, dstYStep}, {pSrcU, srcUStep, pDstU, dstUStep}, {pSrcV, srcVStep, pDstV, dstVStep}}},
       roiSize.width / 16,
       roiSize.height / 16,
       pQP,
       qpStep});
}
