/// Portable kernels that copy, add, subtract and average blocks. Steps are bytes, of 16-bit blocks too.
#pragma once

#include "frame/access.hpp"
#include "frame/arithmetic.hpp"
#include "moxvc/types.h"

namespace mox::px {

template <int W, int H>
MoxStatus copy_block(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep) {
  for (int y = 0; y < H; ++y, src += srcStep, dst += dstStep) {
    for (int x = 0; x < W; ++x) dst[x] = src[x];
  }
  return moxStsOk;
}

/// The sum wraps to 16 bits before it is limited: 200 + 32767 gives 0.
inline MoxStatus add_8x8(const Mox16s* src, Mox32s srcStep, Mox8u* srcDst, Mox32s srcDstStep) {
  for (int y = 0; y < 8; ++y, src = step_bytes(src, srcStep), srcDst += srcDstStep) {
    for (int x = 0; x < 8; ++x) srcDst[x] = clip8(wrap16(srcDst[x] + load<Mox16s>(src + x)));
  }
  return moxStsOk;
}

inline MoxStatus add_constant_8x8(Mox16s value, Mox8u* srcDst, Mox32s srcDstStep) {
  for (int y = 0; y < 8; ++y, srcDst += srcDstStep) {
    for (int x = 0; x < 8; ++x) srcDst[x] = clip8(wrap16(srcDst[x] + value));
  }
  return moxStsOk;
}

/// dst may be src2.
template <int W, int H>
MoxStatus average_block(const Mox8u* src1, Mox32s src1Step, const Mox8u* src2, Mox32s src2Step, Mox8u* dst,
                        Mox32s dstStep) {
  for (int y = 0; y < H; ++y, src1 += src1Step, src2 += src2Step, dst += dstStep) {
    for (int x = 0; x < W; ++x) dst[x] = static_cast<Mox8u>(avg_up(src1[x], src2[x]));
  }
  return moxStsOk;
}

/// Differences of 16-bit samples wrap, those of 8-bit samples fit.
template <int W, int H, class T>
MoxStatus subtract_block(const T* src1, Mox32s src1Step, const T* src2, Mox32s src2Step, Mox16s* dst, Mox32s dstStep) {
  for (int y = 0; y < H; ++y) {
    for (int x = 0; x < W; ++x) store(dst + x, wrap16(load<T>(src1 + x) - load<T>(src2 + x)));
    src1 = step_bytes(src1, src1Step), src2 = step_bytes(src2, src2Step), dst = step_bytes(dst, dstStep);
  }
  return moxStsOk;
}

}  // namespace mox::px
