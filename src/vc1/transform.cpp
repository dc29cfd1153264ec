#include "moxvc/vc1_transform.h"

#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "vc1/hadamard_px.hpp"
#include "vc1/hadamard_vec.hpp"
#include "vc1/transform_px.hpp"
#include "vc1/transform_vec.hpp"

using namespace mox;

namespace {

template <int W, int H>
MoxStatus inverse(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep, MoxiSize srcSizeNZ) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  return active::kVc1InverseTable<W, H>[active::vc1_read_index<W, H>(srcSizeNZ)](pSrc, srcStep, pDst, dstStep);
}

template <int W, int H>
MoxStatus forward(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  return active::vc1_forward<W, H>(pSrc, srcStep, pDst, dstStep);
}

template <class Sample>
MoxStatus hadamard(const Sample* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s* pSum) {
  if (any_null(pSrc, pDst, pSum)) return moxStsNullPointer;
  return active::vc1_hadamard_sum(pSrc, srcStep, pDst, pSum);
}

}  // namespace

MoxStatus moxiTransform8x8Inv_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep,
                                          MoxiSize srcSizeNZ) {
  return inverse<8, 8>(pSrc, srcStep, pDst, dstStep, srcSizeNZ);
}
MoxStatus moxiTransform8x4Inv_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep,
                                          MoxiSize srcSizeNZ) {
  return inverse<8, 4>(pSrc, srcStep, pDst, dstStep, srcSizeNZ);
}
MoxStatus moxiTransform4x8Inv_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep,
                                          MoxiSize srcSizeNZ) {
  return inverse<4, 8>(pSrc, srcStep, pDst, dstStep, srcSizeNZ);
}
MoxStatus moxiTransform4x4Inv_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep,
                                          MoxiSize srcSizeNZ) {
  return inverse<4, 4>(pSrc, srcStep, pDst, dstStep, srcSizeNZ);
}

MoxStatus moxiTransform8x8Inv_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, MoxiSize srcSizeNZ) {
  return inverse<8, 8>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, srcSizeNZ);
}
MoxStatus moxiTransform8x4Inv_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, MoxiSize srcSizeNZ) {
  return inverse<8, 4>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, srcSizeNZ);
}
MoxStatus moxiTransform4x8Inv_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, MoxiSize srcSizeNZ) {
  return inverse<4, 8>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, srcSizeNZ);
}
MoxStatus moxiTransform4x4Inv_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep, MoxiSize srcSizeNZ) {
  return inverse<4, 4>(pSrcDst, srcDstStep, pSrcDst, srcDstStep, srcSizeNZ);
}

MoxStatus moxiTransform8x8Fwd_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep) {
  return forward<8, 8>(pSrc, srcStep, pDst, dstStep);
}
MoxStatus moxiTransform8x4Fwd_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep) {
  return forward<8, 4>(pSrc, srcStep, pDst, dstStep);
}
MoxStatus moxiTransform4x8Fwd_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep) {
  return forward<4, 8>(pSrc, srcStep, pDst, dstStep);
}
MoxStatus moxiTransform4x4Fwd_VC1_16s_C1R(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s dstStep) {
  return forward<4, 4>(pSrc, srcStep, pDst, dstStep);
}

MoxStatus moxiTransform8x8Fwd_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep) {
  return forward<8, 8>(pSrcDst, srcDstStep, pSrcDst, srcDstStep);
}
MoxStatus moxiTransform8x4Fwd_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep) {
  return forward<8, 4>(pSrcDst, srcDstStep, pSrcDst, srcDstStep);
}
MoxStatus moxiTransform4x8Fwd_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep) {
  return forward<4, 8>(pSrcDst, srcDstStep, pSrcDst, srcDstStep);
}
MoxStatus moxiTransform4x4Fwd_VC1_16s_C1IR(Mox16s* pSrcDst, Mox32s srcDstStep) {
  return forward<4, 4>(pSrcDst, srcDstStep, pSrcDst, srcDstStep);
}

MoxStatus moxiHadamard8x8Sum_VC1_16s(const Mox16s* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s* pSum) {
  return hadamard(pSrc, srcStep, pDst, pSum);
}
MoxStatus moxiHadamard8x8Sum_VC1_8u16s(const Mox8u* pSrc, Mox32s srcStep, Mox16s* pDst, Mox32s* pSum) {
  return hadamard(pSrc, srcStep, pDst, pSum);
}
