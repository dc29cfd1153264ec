#include "moxvc/block_arithmetic.h"

#include "block/arithmetic_px.hpp"
#include "block/arithmetic_vec.hpp"
#include "frame/arguments.hpp"
#include "frame/generation.hpp"

using namespace mox;

namespace {

template <int W, int H>
MoxStatus copy(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  return active::copy_block<W, H>(pSrc, srcStep, pDst, dstStep);
}

template <int W, int H>
MoxStatus average_into(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pSrcDst, Mox32s srcDstStep) {
  if (any_null(pSrcDst, pSrc)) return moxStsNullPointer;
  return active::average_block<W, H>(pSrc, srcStep, pSrcDst, srcDstStep, pSrcDst, srcDstStep);
}

template <int W, int H>
MoxStatus average(const Mox8u* pSrc1, Mox32s src1Step, const Mox8u* pSrc2, Mox32s src2Step, Mox8u* pDst,
                  Mox32s dstStep) {
  if (any_null(pSrc1, pSrc2, pDst)) return moxStsNullPointer;
  return active::average_block<W, H>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep);
}

template <int W, int H, class T>
MoxStatus subtract(const T* pSrc1, Mox32s src1Step, const T* pSrc2, Mox32s src2Step, Mox16s* pDst, Mox32s dstStep) {
  if (any_null(pSrc1, pSrc2, pDst)) return moxStsNullPointer;
  return active::subtract_block<W, H>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep);
}

}  // namespace

MoxStatus moxiCopy8x8_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep) {
  return copy<8, 8>(pSrc, srcStep, pDst, dstStep);
}

MoxStatus moxiCopy16x16_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep) {
  return copy<16, 16>(pSrc, srcStep, pDst, dstStep);
}

MoxStatus moxiAdd8x8_16s8u_C1IRS(const Mox16s* pSrc, Mox32s srcStep, Mox8u* pSrcDst, Mox32s srcDstStep) {
  if (any_null(pSrc, pSrcDst)) return moxStsNullPointer;
  return active::add_8x8(pSrc, srcStep, pSrcDst, srcDstStep);
}

MoxStatus moxiAddC8x8_16s8u_C1IR(Mox16s value, Mox8u* pSrcDst, Mox32s srcDstStep) {
  if (any_null(pSrcDst)) return moxStsNullPointer;
  return active::add_constant_8x8(value, pSrcDst, srcDstStep);
}

MoxStatus moxiAverage8x8_8u_C1IR(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pSrcDst, Mox32s srcDstStep) {
  return average_into<8, 8>(pSrc, srcStep, pSrcDst, srcDstStep);
}

MoxStatus moxiAverage16x16_8u_C1IR(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pSrcDst, Mox32s srcDstStep) {
  return average_into<16, 16>(pSrc, srcStep, pSrcDst, srcDstStep);
}

MoxStatus moxiAverage8x8_8u_C1R(const Mox8u* pSrc1, Mox32s src1Step, const Mox8u* pSrc2, Mox32s src2Step, Mox8u* pDst,
                                Mox32s dstStep) {
  return average<8, 8>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep);
}

MoxStatus moxiAverage16x16_8u_C1R(const Mox8u* pSrc1, Mox32s src1Step, const Mox8u* pSrc2, Mox32s src2Step, Mox8u* pDst,
                                  Mox32s dstStep) {
  return average<16, 16>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep);
}

MoxStatus moxiSub4x4_8u16s_C1R(const Mox8u* pSrc1, Mox32s src1Step, const Mox8u* pSrc2, Mox32s src2Step, Mox16s* pDst,
                               Mox32s dstStep) {
  return subtract<4, 4>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep);
}

MoxStatus moxiSub8x8_8u16s_C1R(const Mox8u* pSrc1, Mox32s src1Step, const Mox8u* pSrc2, Mox32s src2Step, Mox16s* pDst,
                               Mox32s dstStep) {
  return subtract<8, 8>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep);
}

MoxStatus moxiSub16x16_8u16s_C1R(const Mox8u* pSrc1, Mox32s src1Step, const Mox8u* pSrc2, Mox32s src2Step, Mox16s* pDst,
                                 Mox32s dstStep) {
  return subtract<16, 16>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep);
}

MoxStatus moxiSub4x4_16u16s_C1R(const Mox16u* pSrc1, Mox32s src1Step, const Mox16u* pSrc2, Mox32s src2Step,
                                Mox16s* pDst, Mox32s dstStep) {
  return subtract<4, 4>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep);
}

MoxStatus moxiSub8x8_16u16s_C1R(const Mox16u* pSrc1, Mox32s src1Step, const Mox16u* pSrc2, Mox32s src2Step,
                                Mox16s* pDst, Mox32s dstStep) {
  return subtract<8, 8>(pSrc1, src1Step, pSrc2, src2Step, pDst, dstStep);
}
