/// Portable kernels of overlapped block motion compensation.
#pragma once

#include <array>
#include <cstddef>

#include "block/half_pel_copy_px.hpp"
#include "moxvc/types.h"
#include "mpeg4/motion_px.hpp"

namespace mox {

/// Vectors of the blocks around a block.
struct Neighbours {
  MoxiMotionVector above, left, right, below;
};

}  // namespace mox

namespace mox::px {

/// Weights of a block's own vector; of the vectors above and below; of those at the left and at the right.
/// [row][column]; the three of a place make 8.
using OverlapWeights = std::array<std::array<Mox8u, 8>, 8>;
inline constexpr OverlapWeights kOwnWeights = {{{4, 5, 5, 5, 5, 5, 5, 4},
                                                {5, 5, 5, 5, 5, 5, 5, 5},
                                                {5, 5, 6, 6, 6, 6, 5, 5},
                                                {5, 5, 6, 6, 6, 6, 5, 5},
                                                {5, 5, 6, 6, 6, 6, 5, 5},
                                                {5, 5, 6, 6, 6, 6, 5, 5},
                                                {5, 5, 5, 5, 5, 5, 5, 5},
                                                {4, 5, 5, 5, 5, 5, 5, 4}}};
inline constexpr OverlapWeights kVerticalWeights = {{{2, 2, 2, 2, 2, 2, 2, 2},
                                                     {1, 1, 2, 2, 2, 2, 1, 1},
                                                     {1, 1, 1, 1, 1, 1, 1, 1},
                                                     {1, 1, 1, 1, 1, 1, 1, 1},
                                                     {1, 1, 1, 1, 1, 1, 1, 1},
                                                     {1, 1, 1, 1, 1, 1, 1, 1},
                                                     {1, 1, 2, 2, 2, 2, 1, 1},
                                                     {2, 2, 2, 2, 2, 2, 2, 2}}};
inline constexpr OverlapWeights kHorizontalWeights = {{{2, 1, 1, 1, 1, 1, 1, 2},
                                                       {2, 2, 1, 1, 1, 1, 2, 2},
                                                       {2, 2, 1, 1, 1, 1, 2, 2},
                                                       {2, 2, 1, 1, 1, 1, 2, 2},
                                                       {2, 2, 1, 1, 1, 1, 2, 2},
                                                       {2, 2, 1, 1, 1, 1, 2, 2},
                                                       {2, 2, 1, 1, 1, 1, 2, 2},
                                                       {2, 1, 1, 1, 1, 1, 1, 2}}};
constexpr bool weights_make_8() {
  for (std::size_t i = 0; i < 64; ++i) {
    const std::size_t y = i / 8, x = i % 8;
    if (kOwnWeights[y][x] + kVerticalWeights[y][x] + kHorizontalWeights[y][x] != 8) return false;
  }
  return true;
}
static_assert(weights_make_8());

/// An 8x8 block with rows of 8.
using Block8x8 = std::array<Mox8u, 64>;

/// The 8x8 block that a vector in half samples leads to.
inline Block8x8 half_pel_block(const Mox8u* src, std::ptrdiff_t step, MoxiMotionVector v, Mox32s rounding) {
  Block8x8 block;
  const auto copy = ownvc_Copy8x8HP_8u_C1R[acc_index((v.x & 1) | (v.y & 1) << 1, rounding)];
  copy(src + (v.x >> 1) + (v.y >> 1) * step, static_cast<Mox32s>(step), block.data(), 8);
  return block;
}
/// The 8x8 block that a vector in quarter samples leads to.
inline Block8x8 quarter_block(const Mox8u* src, std::ptrdiff_t step, MoxiMotionVector v, Mox32s rounding) {
  Block8x8 block;
  const auto copy = ownvc_Copy8x8QP_8u_C1R[quarter_index((v.x & 3) | (v.y & 3) << 2, rounding)];
  copy(src + (v.x >> 2) + (v.y >> 2) * step, static_cast<Mox32s>(step), block.data(), 8);
  return block;
}

template <auto kPredict>
MoxStatus overlap_block(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep, MoxiMotionVector vector,
                        const Neighbours& neighbours, Mox32s rounding) {
  const auto predict = [=](MoxiMotionVector v) { return kPredict(src, srcStep, v, rounding); };
  const Block8x8 own = predict(vector), above = predict(neighbours.above), below = predict(neighbours.below),
                 left = predict(neighbours.left), right = predict(neighbours.right);
  for (std::size_t y = 0; y < 8; ++y, dst += dstStep) {
    const Block8x8& vertical = y < 4 ? above : below;
    for (std::size_t x = 0; x < 8; ++x) {
      const Block8x8& horizontal = x < 4 ? left : right;
      const std::size_t i = 8 * y + x;
      dst[x] = static_cast<Mox8u>((kOwnWeights[y][x] * own[i] + kVerticalWeights[y][x] * vertical[i] +
                                   kHorizontalWeights[y][x] * horizontal[i] + 4) >>
                                  3);
    }
  }
  return moxStsOk;
}

inline MoxStatus ownvc_OBMC8x8HP_8u_C1R(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep,
                                        MoxiMotionVector vector, const MoxiMotionVector* n, Mox32s rounding) {
  return overlap_block<half_pel_block>(src, srcStep, dst, dstStep, vector, {n[0], n[1], n[2], n[3]}, rounding);
}
inline MoxStatus ownvc_OBMC8x8QP_8u_C1R(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep,
                                        MoxiMotionVector vector, const MoxiMotionVector* n, Mox32s rounding) {
  return overlap_block<quarter_block>(src, srcStep, dst, dstStep, vector, {n[0], n[1], n[2], n[3]}, rounding);
}

/// Four blocks of one vector v; n holds two vectors of each side.
inline MoxStatus ownvc_OBMC16x16HP_8u_C1R(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep,
                                          MoxiMotionVector v, const MoxiMotionVector* n, Mox32s rounding) {
  const Neighbours neighbours[4] = {{n[0], n[2], v, v}, {n[1], v, n[4], v}, {v, n[3], v, n[6]}, {v, v, n[5], n[7]}};
  for (int i = 0; i < 4; ++i) {
    const std::ptrdiff_t x = 8 * (i & 1), y = 8 * (i >> 1);
    overlap_block<half_pel_block>(src + x + y * srcStep, srcStep, dst + x + y * dstStep, dstStep, v, neighbours[i],
                                  rounding);
  }
  return moxStsOk;
}

}  // namespace mox::px
