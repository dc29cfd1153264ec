#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "moxvc/mpeg4_motion.h"
#include "mpeg4/motion_overlap_px.hpp"
#include "mpeg4/motion_overlap_vec.hpp"
#include "mpeg4/motion_px.hpp"
#include "mpeg4/motion_vec.hpp"

using namespace mox;

namespace {

template <const auto& kTable>
MoxStatus copy(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep, Mox32s acc, Mox32s roundControl) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (outside(acc, 0, 15)) return moxStsOutOfRange;
  return kTable[quarter_index(acc, roundControl)](pSrc, srcStep, pDst, dstStep);
}

}  // namespace

MoxStatus moxiCopy16x16QP_MPEG4_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep, Mox32s acc,
                                       Mox32s roundControl) {
  return copy<active::ownvc_Copy16x16QP_8u_C1R>(pSrc, srcStep, pDst, dstStep, acc, roundControl);
}

MoxStatus moxiCopy16x8QP_MPEG4_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep, Mox32s acc,
                                      Mox32s roundControl) {
  return copy<active::ownvc_Copy16x8QP_8u_C1R>(pSrc, srcStep, pDst, dstStep, acc, roundControl);
}

MoxStatus moxiCopy8x8QP_MPEG4_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep, Mox32s acc,
                                     Mox32s roundControl) {
  return copy<active::ownvc_Copy8x8QP_8u_C1R>(pSrc, srcStep, pDst, dstStep, acc, roundControl);
}

MoxStatus moxiOBMC8x8HP_MPEG4_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                     MoxiMotionVector vector, const MoxiMotionVector* pNeighbours,
                                     Mox32s roundControl) {
  if (any_null(pSrc, pDst, pNeighbours)) return moxStsNullPointer;
  return active::ownvc_OBMC8x8HP_8u_C1R(pSrc, srcStep, pDst, dstStep, vector, pNeighbours, roundControl);
}

MoxStatus moxiOBMC8x8QP_MPEG4_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                     MoxiMotionVector vector, const MoxiMotionVector* pNeighbours,
                                     Mox32s roundControl) {
  if (any_null(pSrc, pDst, pNeighbours)) return moxStsNullPointer;
  return active::ownvc_OBMC8x8QP_8u_C1R(pSrc, srcStep, pDst, dstStep, vector, pNeighbours, roundControl);
}

MoxStatus moxiOBMC16x16HP_MPEG4_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                       MoxiMotionVector vector, const MoxiMotionVector* pNeighbours,
                                       Mox32s roundControl) {
  if (any_null(pSrc, pDst, pNeighbours)) return moxStsNullPointer;
  return active::ownvc_OBMC16x16HP_8u_C1R(pSrc, srcStep, pDst, dstStep, vector, pNeighbours, roundControl);
}

MoxStatus moxiOBMC16x16QP_MPEG4_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                       MoxiMotionVector vector, const MoxiMotionVector* pNeighbours,
                                       Mox32s roundControl) {
  if (any_null(pSrc, pDst, pNeighbours)) return moxStsNullPointer;
  return active::ownvc_OBMC16x16QP_8u_C1R(pSrc, srcStep, pDst, dstStep, vector, pNeighbours, roundControl);
}
