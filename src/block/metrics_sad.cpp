#include "block/metrics_sad_px.hpp"
#include "block/metrics_sad_vec.hpp"
#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "moxvc/block_metrics.h"

using namespace mox;

namespace {

template <const auto& kTable, class T>
MoxStatus half_pel_sad(const T* pSrc, Mox32s srcStep, const T* pRef, Mox32s refStep, Mox32s* pSAD, Mox32s mcType) {
  if (any_null(pSrc, pRef, pSAD)) return moxStsNullPointer;
  return kTable[half_pel_index(mcType)](pSrc, srcStep, pRef, refStep, pSAD);
}

template <int W, int H>
MoxStatus full_pel_sad(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s* pSAD) {
  if (any_null(pSrc, pRef, pSAD)) return moxStsNullPointer;
  return active::sad_block<W, H, HalfPel::kFull, Mox8u>(pSrc, srcStep, pRef, refStep, pSAD);
}

template <int N, class T, class Sum>
MoxStatus blocks_sad(const T* pSrc, Mox32s srcStep, const T* pRef, Mox32s refStep, Sum* pDstSAD) {
  if (any_null(pSrc, pRef, pDstSAD)) return moxStsNullPointer;
  return active::sad_of_blocks<N, T, Sum>(pSrc, srcStep, pRef, refStep, pDstSAD);
}

}  // namespace

MoxStatus moxiSAD16x16_8u32s(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s* pSAD,
                             Mox32s mcType) {
  return half_pel_sad<active::ownvc_SAD16x16HP_8u32s_C1R>(pSrc, srcStep, pRef, refStep, pSAD, mcType);
}

MoxStatus moxiSAD16x8_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s* pSAD,
                                Mox32s mcType) {
  return half_pel_sad<active::ownvc_SAD16x8HP_8u32s_C1R>(pSrc, srcStep, pRef, refStep, pSAD, mcType);
}

MoxStatus moxiSAD8x8_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s* pSAD,
                               Mox32s mcType) {
  return half_pel_sad<active::ownvc_SAD8x8HP_8u32s_C1R>(pSrc, srcStep, pRef, refStep, pSAD, mcType);
}

MoxStatus moxiSAD16x16_16u32s_C1R(const Mox16u* pSrc, Mox32s srcStep, const Mox16u* pRef, Mox32s refStep, Mox32s* pSAD,
                                  Mox32s mcType) {
  return half_pel_sad<active::ownvc_SAD16x16HP_16u32s_C1R>(pSrc, srcStep, pRef, refStep, pSAD, mcType);
}

MoxStatus moxiSAD8x8_16u32s_C1R(const Mox16u* pSrc, Mox32s srcStep, const Mox16u* pRef, Mox32s refStep, Mox32s* pSAD,
                                Mox32s mcType) {
  return half_pel_sad<active::ownvc_SAD8x8HP_16u32s_C1R>(pSrc, srcStep, pRef, refStep, pSAD, mcType);
}

MoxStatus moxiSAD4x4_16u32s_C1R(const Mox16u* pSrc, Mox32s srcStep, const Mox16u* pRef, Mox32s refStep, Mox32s* pSAD,
                                Mox32s mcType) {
  return half_pel_sad<active::ownvc_SAD4x4HP_16u32s_C1R>(pSrc, srcStep, pRef, refStep, pSAD, mcType);
}

MoxStatus moxiSAD4x4_8u32s(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s* pSAD) {
  return full_pel_sad<4, 4>(pSrc, srcStep, pRef, refStep, pSAD);
}

MoxStatus moxiSAD4x8_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s* pSAD) {
  return full_pel_sad<4, 8>(pSrc, srcStep, pRef, refStep, pSAD);
}

MoxStatus moxiSAD8x4_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s* pSAD) {
  return full_pel_sad<8, 4>(pSrc, srcStep, pRef, refStep, pSAD);
}

MoxStatus moxiSAD8x16_8u32s_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s* pSAD) {
  return full_pel_sad<8, 16>(pSrc, srcStep, pRef, refStep, pSAD);
}

MoxStatus moxiSAD8x8_8u32s_C2R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep, Mox32s* pSADU,
                               Mox32s* pSADV, Mox32s mcType) {
  if (any_null(pSrc, pRef, pSADU, pSADV)) return moxStsNullPointer;
  if (srcStep <= 0 || refStep <= 0) return moxStsBadStep;
  return active::impl_SAD8x8_8u32s_C2R_table_ssse3[half_pel_index(mcType)](pSrc, srcStep, pRef, refStep, pSADU, pSADV);
}

MoxStatus moxiSAD16x16Blocks8x8_8u16u(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                      Mox16u* pDstSAD) {
  return blocks_sad<8>(pSrc, srcStep, pRef, refStep, pDstSAD);
}

MoxStatus moxiSAD16x16Blocks4x4_8u16u(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pRef, Mox32s refStep,
                                      Mox16u* pDstSAD) {
  return blocks_sad<4>(pSrc, srcStep, pRef, refStep, pDstSAD);
}

MoxStatus moxiSAD16x16Blocks8x8_16u32u_C1R(const Mox16u* pSrc, Mox32s srcStep, const Mox16u* pRef, Mox32s refStep,
                                           Mox32u* pDstSAD) {
  return blocks_sad<8>(pSrc, srcStep, pRef, refStep, pDstSAD);
}

MoxStatus moxiSAD16x16Blocks4x4_16u32u_C1R(const Mox16u* pSrc, Mox32s srcStep, const Mox16u* pRef, Mox32s refStep,
                                           Mox32u* pDstSAD) {
  return blocks_sad<4>(pSrc, srcStep, pRef, refStep, pDstSAD);
}
