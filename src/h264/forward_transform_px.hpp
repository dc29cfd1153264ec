/// Portable kernels of the H.264 forward transforms alone. Blocks are dense.
///
/// The policy P (Wrap16, Sat16, Wrap32) rules each sum and difference. Where it saturates, the order of the sums shows
/// in the result: it is the one written here, left to right.
#pragma once

#include <algorithm>
#include <cstddef>

#include "frame/arithmetic.hpp"
#include "h264/transform_core.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// Forward transform of four values that lie `stride` apart. A double is a sum like the others.
template <class P>
constexpr void forward_4(typename P::Value* x, std::ptrdiff_t stride) {
  const auto a = P::add(x[0], x[3 * stride]), d = P::sub(x[0], x[3 * stride]);
  const auto b = P::add(x[stride], x[2 * stride]), c = P::sub(x[stride], x[2 * stride]);
  x[0] = P::add(a, b);
  x[stride] = P::add(c, P::add(d, d));
  x[2 * stride] = P::sub(a, b);
  x[3 * stride] = P::sub(d, P::add(c, c));
}

/// Forward transform of a 4x4 block, rows first.
template <class P>
constexpr void forward_4x4(typename P::Value* block) {
  for (int y = 0; y < 4; ++y) forward_4<P>(block + 4 * y, 1);
  for (int x = 0; x < 4; ++x) forward_4<P>(block + x, 4);
}

/// Forward transform of eight values that lie `stride` apart: s and d are the sums and differences of mirrored values.
template <class P>
constexpr void forward_8(typename P::Value* x, std::ptrdiff_t stride) {
  const auto s0 = P::add(x[0], x[7 * stride]), d0 = P::sub(x[0], x[7 * stride]);
  const auto s1 = P::add(x[stride], x[6 * stride]), d1 = P::sub(x[stride], x[6 * stride]);
  const auto s2 = P::add(x[2 * stride], x[5 * stride]), d2 = P::sub(x[2 * stride], x[5 * stride]);
  const auto s3 = P::add(x[3 * stride], x[4 * stride]), d3 = P::sub(x[3 * stride], x[4 * stride]);
  const auto outer = P::add(s0, s3), inner = P::add(s1, s2);
  const auto outer_difference = P::sub(s0, s3), inner_difference = P::sub(s1, s2);
  const auto b4 = P::add(P::add(P::add(d0, d0 >> 1), d1), d2);
  const auto b5 = P::add(P::sub(P::add(d2, d2 >> 1), d0), d3);
  const auto b6 = P::sub(P::sub(P::add(d3, d0), d1), d1 >> 1);
  const auto b7 = P::sub(P::add(P::add(d3, d3 >> 1), d1), d2);
  x[0] = P::add(outer, inner);
  x[stride] = P::add(b4, b7 >> 2);
  x[2 * stride] = P::add(outer_difference, inner_difference >> 1);
  x[3 * stride] = P::sub(b6 >> 2, b5);
  x[4 * stride] = P::sub(outer, inner);
  x[5 * stride] = P::sub(b6, P::sub(0, b5) >> 2);
  x[6 * stride] = P::sub(outer_difference >> 1, inner_difference);
  x[7 * stride] = P::sub(b4 >> 2, b7);
}

/// Forward transform of an 8x8 block, rows first.
template <class P>
constexpr void forward_8x8(typename P::Value* block) {
  for (int y = 0; y < 8; ++y) forward_8<P>(block + 8 * y, 1);
  for (int x = 0; x < 8; ++x) forward_8<P>(block + x, 8);
}

/// (H4 * M * H4) >> 1 of the luma DC values, columns first. P rules the values between the passes and the results: the
/// sums of the rows are halved before they are cut to 16 bits, since 8-bit video has sums of 17 bits.
template <class P>
void luma_dc_forward(const typename P::Value* src, typename P::Value* dst) {
  Mox32s block[16];
  std::copy_n(src, 16, block);
  for (int x = 0; x < 4; ++x) hadamard_4<Wrap32>(block + x, 4);
  for (int i = 0; i < 16; ++i) block[i] = keep<P>(block[i]);
  for (int y = 0; y < 4; ++y) hadamard_4<Wrap32>(block + 4 * y, 1);
  for (int i = 0; i < 16; ++i) dst[i] = keep<P>(block[i] >> 1);
}

template <class P>
MoxStatus residual_4x4_forward(const typename P::Value* pSrc, typename P::Value* pDst) {
  typename P::Value block[16];
  std::copy_n(pSrc, 16, block);
  forward_4x4<P>(block);
  std::copy_n(block, 16, pDst);
  return moxStsOk;
}

inline MoxStatus prediction_4x4_forward(const Mox8u* pSrc, Mox32s srcStep, Mox16s* pDst) {
  Mox16s block[16];
  for (int y = 0; y < 4; ++y, pSrc += srcStep) std::copy_n(pSrc, 4, block + 4 * y);
  forward_4x4<Wrap16>(block);
  std::copy_n(block, 16, pDst);
  return moxStsOk;
}

template <class P>
MoxStatus luma_8x8_forward(const Mox16s* pSrc, typename P::Value* pDst) {
  typename P::Value block[64];
  std::copy_n(pSrc, 64, block);
  forward_8x8<P>(block);
  std::copy_n(block, 64, pDst);
  return moxStsOk;
}

}  // namespace mox::px
