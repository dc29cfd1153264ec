#include "block/metrics_ssd_px.hpp"
#include "block/metrics_ssd_vec.hpp"
#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "moxvc/block_metrics.h"

using namespace mox;

namespace {

template <const auto& kTable>
MoxStatus half_pel_ssd(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s* pSSD,
                       std::size_t position) {
  if (any_null(pSrc, pRef, pSSD)) return moxStsNullPointer;
  return kTable[position](pSrc, srcStep, pRef, refStep, pSSD);
}

}  // namespace

MoxStatus moxiSSD8x8_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s* pSSD,
                               Mox32s mcType) {
  return half_pel_ssd<active::ownvc_SSD8x8HP_8u32s_C1R>(pSrc, srcStep, pRef, refStep, pSSD, half_pel_index(mcType));
}

MoxStatus moxiSSD4x4_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s* pSSD,
                               Mox32s mcType) {
  return half_pel_ssd<active::ownvc_SSD4x4HP_8u32s_C1R>(pSrc, srcStep, pRef, refStep, pSSD, half_pel_index(mcType));
}

MoxStatus moxiSqrDiff16x16_8u32s(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s mcType,
                                 Mox32s* pSqrDiff) {
  return half_pel_ssd<active::kSsd16x16>(pSrc, srcStep, pRef, refStep, pSqrDiff, compared_index(mcType));
}

MoxStatus moxiSqrDiff16x16B_8u32s(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef0, Mox32s ref0Step,
                                  Mox32s mcType0, const Mox8u* pRef1, Mox32s ref1Step, Mox32s mcType1,
                                  Mox32s* pSqrDiff) {
  if (any_null(pSrc, pRef0, pRef1, pSqrDiff)) return moxStsNullPointer;
  return active::kSsd16x16TwoReferences[two_positions_index(mcType0, mcType1)](pSrc, srcStep, pRef0, ref0Step, pRef1,
                                                                               ref1Step, pSqrDiff);
}
