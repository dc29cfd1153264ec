#include "block/metrics_sa8d_vec.hpp"
#include "block/metrics_satd_px.hpp"
#include "block/metrics_satd_vec.hpp"
#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "moxvc/block_metrics.h"

using namespace mox;

namespace {

template <int W, int H>
MoxStatus satd(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s* pSATD) {
  if (any_null(pSrc, pRef, pSATD)) return moxStsNullPointer;
  return active::satd_block<W, H>(pSrc, srcStep, pRef, refStep, pSATD);
}

template <class T>
MoxStatus sa8d(const T* pSrc, Mox32s srcStep, const T* pRef, Mox32s refStep, Mox32s* pSATD) {
  if (any_null(pSrc, pRef, pSATD)) return moxStsNullPointer;
  return active::sa8d_block(pSrc, srcStep, pRef, refStep, pSATD);
}

}  // namespace

MoxStatus moxiSATD4x4_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s* pSATD) {
  return satd<4, 4>(pSrc, srcStep, pRef, refStep, pSATD);
}

MoxStatus moxiSATD8x4_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s* pSATD) {
  return satd<8, 4>(pSrc, srcStep, pRef, refStep, pSATD);
}

MoxStatus moxiSATD4x8_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s* pSATD) {
  return satd<4, 8>(pSrc, srcStep, pRef, refStep, pSATD);
}

MoxStatus moxiSATD8x8_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s* pSATD) {
  return satd<8, 8>(pSrc, srcStep, pRef, refStep, pSATD);
}

MoxStatus moxiSATD16x8_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s* pSATD) {
  return satd<16, 8>(pSrc, srcStep, pRef, refStep, pSATD);
}

MoxStatus moxiSATD8x16_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s* pSATD) {
  return satd<8, 16>(pSrc, srcStep, pRef, refStep, pSATD);
}

MoxStatus moxiSATD16x16_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s* pSATD) {
  return satd<16, 16>(pSrc, srcStep, pRef, refStep, pSATD);
}

MoxStatus moxiSAT8x8D_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s* pSATD) {
  return sa8d(pSrc, srcStep, pRef, refStep, pSATD);
}

MoxStatus moxiSAT8x8D_16u32s_C1R(const Mox16u* pSrc, Mox32s srcStep, const Mox16u* pRef, Mox32s refStep,
                                 Mox32s* pSATD) {
  return sa8d(pSrc, srcStep, pRef, refStep, pSATD);
}
