#include "block/half_pel_copy_px.hpp"
#include "block/half_pel_copy_vec.hpp"
#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "moxvc/block_motion.h"

using namespace mox;

namespace {

template <const auto& kTable>
MoxStatus copy(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep, Mox32s acc, Mox32s rounding) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  return kTable[acc_index(acc, rounding)](pSrc, srcStep, pDst, dstStep);
}

template <const auto& kTable>
MoxStatus average_into(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pSrcDst, Mox32s srcDstStep, Mox32s acc,
                       Mox32s rounding) {
  if (any_null(pSrc, pSrcDst)) return moxStsNullPointer;
  return kTable[acc_index(acc, rounding)](pSrc, srcStep, pSrcDst, srcDstStep);
}

}  // namespace

MoxStatus moxiCopy16x16HP_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep, Mox32s acc,
                                 Mox32s rounding) {
  return copy<active::ownvc_Copy16x16HP_8u_C1R>(pSrc, srcStep, pDst, dstStep, acc, rounding);
}

MoxStatus moxiCopy16x8HP_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep, Mox32s acc,
                                Mox32s rounding) {
  return copy<active::ownvc_Copy16x8HP_8u_C1R>(pSrc, srcStep, pDst, dstStep, acc, rounding);
}

MoxStatus moxiCopy8x8HP_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep, Mox32s acc,
                               Mox32s rounding) {
  return copy<active::ownvc_Copy8x8HP_8u_C1R>(pSrc, srcStep, pDst, dstStep, acc, rounding);
}

MoxStatus moxiCopy8x4HP_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep, Mox32s acc,
                               Mox32s rounding) {
  return copy<active::ownvc_Copy8x4HP_8u_C1R>(pSrc, srcStep, pDst, dstStep, acc, rounding);
}

MoxStatus moxiInterpolateAverage16x16_8u_C1IR(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pSrcDst, Mox32s srcDstStep,
                                              Mox32s acc, Mox32s rounding) {
  return average_into<active::ownvc_InterpolateAverage16x16HP_8u_C1IR>(pSrc, srcStep, pSrcDst, srcDstStep, acc,
                                                                       rounding);
}

MoxStatus moxiInterpolateAverage16x8_8u_C1IR(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pSrcDst, Mox32s srcDstStep,
                                             Mox32s acc, Mox32s rounding) {
  return average_into<active::ownvc_InterpolateAverage16x8HP_8u_C1IR>(pSrc, srcStep, pSrcDst, srcDstStep, acc,
                                                                      rounding);
}

MoxStatus moxiInterpolateAverage8x8_8u_C1IR(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pSrcDst, Mox32s srcDstStep,
                                            Mox32s acc, Mox32s rounding) {
  return average_into<active::ownvc_InterpolateAverage8x8HP_8u_C1IR>(pSrc, srcStep, pSrcDst, srcDstStep, acc, rounding);
}

MoxStatus moxiInterpolateAverage8x4_8u_C1IR(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pSrcDst, Mox32s srcDstStep,
                                            Mox32s acc, Mox32s rounding) {
  return average_into<active::ownvc_InterpolateAverage8x4HP_8u_C1IR>(pSrc, srcStep, pSrcDst, srcDstStep, acc, rounding);
}

MoxStatus moxiAdd8x8HP_16s8u_C1RS(const Mox16s* pSrcResidual, Mox32s srcResidualStep, const Mox8u* pRef, Mox32s refStep,
                                  Mox8u* pDst, Mox32s dstStep, Mox32s acc, Mox32s rounding) {
  if (any_null(pSrcResidual, pRef, pDst)) return moxStsNullPointer;
  return active::ownvc_Add8x8HP_16s8u_C1RS[acc_index(acc, rounding)](pSrcResidual, srcResidualStep, pRef, refStep, pDst,
                                                                     dstStep);
}
