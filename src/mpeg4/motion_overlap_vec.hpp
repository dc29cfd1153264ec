/// Vector kernels of overlapped block motion compensation. A vector equal to the block's own is not followed again.
#pragma once

#include <array>
#include <cstddef>

#include "mpeg4/motion_overlap_px.hpp"
#include "mpeg4/motion_vec.hpp"

namespace mox::vec {

/// Weights of samples that are interleaved: own with vertical ones, and horizontal ones with ones for the rounding.
struct OverlapPairs {
  alignas(16) Mox8u ownVertical[64][2] = {}, horizontalRounding[64][2] = {};
  constexpr OverlapPairs() {
    for (std::size_t i = 0; i < 64; ++i) {
      const std::size_t y = i / 8, x = i % 8;
      ownVertical[i][0] = kOwnWeights[y][x], ownVertical[i][1] = kVerticalWeights[y][x];
      horizontalRounding[i][0] = kHorizontalWeights[y][x], horizontalRounding[i][1] = 4;
    }
  }
};
inline constexpr OverlapPairs kOverlapPairs;

/// A prediction of 8 x 8 samples.
struct PredictedBlock {
  const Mox8u* samples;
  std::ptrdiff_t step;

  /// Rows y to y + 2 B - 1, two in a block.
  template <int B>
  MOX_INLINE simd::u8<B> rows(int y) const {
    return simd::load8x2<simd::u8, B>(samples + y * step, step, simd::strips<B>(2 * step));
  }
};
struct PredictedBlocks {
  PredictedBlock own, above, left, right, below;
};

MOX_INLINE void weigh_overlap(const PredictedBlocks& from, Mox8u* dst, std::ptrdiff_t dstStep) {
  using simd::as, simd::s16, simd::u8;
  constexpr int B = simd::kBlocks;
  const auto ones = simd::splat<u8, B>(1);
  for (int y = 0; y < 8; y += 2 * B, dst += 2 * B * dstStep) {
    const auto own = from.own.rows<B>(y), vertical = (y < 4 ? from.above : from.below).rows<B>(y);
    const auto left = as<s16>(from.left.rows<B>(y)), right = as<s16>(from.right.rows<B>(y));
    const auto horizontal = as<u8>(simd::blend<0xCC>(left, right));
    const auto weights = [y](const Mox8u(*table)[2], int row) {
      return simd::load16<u8, B>(table[8 * (y + row)], simd::strips<B>(32));
    };
    const auto mean = [](s16<B> a, s16<B> b) { return simd::shr<3>(a + b); };  // a + b is 2044 at most
    const auto upper = mean(maddubs(lo8(own, vertical), weights(kOverlapPairs.ownVertical, 0)),
                            maddubs(lo8(horizontal, ones), weights(kOverlapPairs.horizontalRounding, 0)));
    const auto lower = mean(maddubs(hi8(own, vertical), weights(kOverlapPairs.ownVertical, 1)),
                            maddubs(hi8(horizontal, ones), weights(kOverlapPairs.horizontalRounding, 1)));
    store8x2(packus(upper, lower), dst, dstStep, simd::strips<B>(2 * dstStep));
  }
}

/// `own` is the prediction with the block's own vector; src and dst are at the block's own place.
template <const auto& kCopies, int kFractionBits>
MOX_INLINE void overlap_block(PredictedBlock own, const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep,
                              MoxiMotionVector vector, const AroundBlock& around, Mox32s rounding) {
  alignas(16) Mox8u blocks[4][64];
  const auto predict = [&](MoxiMotionVector v, Mox8u* block) -> PredictedBlock {
    if (v.x == vector.x && v.y == vector.y) return own;
    copy_by_vector<kCopies, kFractionBits>(src, srcStep, v, rounding, block, 8);
    return {block, 8};
  };
  weigh_overlap({own, predict(around.above, blocks[0]), predict(around.left, blocks[1]),
                 predict(around.right, blocks[2]), predict(around.below, blocks[3])},
                dst, dstStep);
}

template <const auto& kCopies, int kFractionBits>
MoxStatus overlap8x8(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep, MoxiMotionVector vector,
                     const AroundBlock& around, Mox32s rounding) {
  alignas(16) Mox8u own[64];
  copy_by_vector<kCopies, kFractionBits>(src, srcStep, vector, rounding, own, 8);
  overlap_block<kCopies, kFractionBits>({own, 8}, src, srcStep, dst, dstStep, vector, around, rounding);
  return moxStsOk;
}

inline MoxStatus ownvc_OBMC8x8HP_8u_C1R(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep,
                                        MoxiMotionVector vector, const MoxiMotionVector* n, Mox32s rounding) {
  return overlap8x8<ownvc_Copy8x8HP_8u_C1R, 1>(src, srcStep, dst, dstStep, vector, {n[0], n[1], n[2], n[3]}, rounding);
}
inline MoxStatus ownvc_OBMC8x8QP_8u_C1R(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep,
                                        MoxiMotionVector vector, const MoxiMotionVector* n, Mox32s rounding) {
  return overlap8x8<ownvc_Copy8x8QP_8u_C1R, 2>(src, srcStep, dst, dstStep, vector, {n[0], n[1], n[2], n[3]}, rounding);
}
inline MoxStatus ownvc_OBMC16x16HP_8u_C1R(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep,
                                          MoxiMotionVector vector, const MoxiMotionVector* n, Mox32s rounding) {
  alignas(16) Mox8u own[256];
  copy_by_vector<ownvc_Copy16x16HP_8u_C1R, 1>(src, srcStep, vector, rounding, own, 16);
  const auto neighbours = around_macroblock(vector, n);
  for (std::size_t i = 0; i < 4; ++i) {
    const std::ptrdiff_t x = 8 * (i & 1), y = 8 * (i >> 1);
    overlap_block<ownvc_Copy8x8HP_8u_C1R, 1>({own + x + 16 * y, 16}, src + x + y * srcStep, srcStep,
                                             dst + x + y * dstStep, dstStep, vector, neighbours[i], rounding);
  }
  return moxStsOk;
}

/// A quarter-sample copy of 16x16 is not four of 8x8: those mirror at borders of their own.
inline MoxStatus ownvc_OBMC16x16QP_8u_C1R(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep,
                                          MoxiMotionVector vector, const MoxiMotionVector* n, Mox32s rounding) {
  const auto neighbours = around_macroblock(vector, n);
  for (std::size_t i = 0; i < 4; ++i) {
    const std::ptrdiff_t x = 8 * (i & 1), y = 8 * (i >> 1);
    overlap8x8<ownvc_Copy8x8QP_8u_C1R, 2>(src + x + y * srcStep, srcStep, dst + x + y * dstStep, dstStep, vector,
                                          neighbours[i], rounding);
  }
  return moxStsOk;
}

}  // namespace mox::vec
