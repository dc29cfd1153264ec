/// Portable kernels of overlapped block motion compensation.
#pragma once

#include <array>
#include <cstddef>

#include "block/half_pel_copy_px.hpp"
#include "moxvc/types.h"
#include "mpeg4/motion_px.hpp"

namespace mox {

/// Vectors of the blocks around a block.
struct AroundBlock {
  MoxiMotionVector above, left, right, below;
};

/// The samples that a vector with so many bits of fraction leads to, by one of the copies of its fraction. Both
/// kinds of tables have the rounding in bit 0 of their index, then the fractions of x and y.
template <const auto& kCopies, int kFractionBits>
void copy_by_vector(const Mox8u* place, Mox32s step, MoxiMotionVector v, Mox32s rounding, Mox8u* dst, Mox32s dstStep) {
  constexpr int kMask = (1 << kFractionBits) - 1;
  const auto copy = kCopies[quarter_index((v.x & kMask) | (v.y & kMask) << kFractionBits, rounding)];
  const std::ptrdiff_t rows = v.y >> kFractionBits;
  copy(place + (v.x >> kFractionBits) + rows * step, step, dst, dstStep);
}
static_assert(quarter_index(3, 1) == acc_index(3, 1));

/// The four blocks of a macroblock with one vector, given two vectors of each side.
inline std::array<AroundBlock, 4> around_macroblock(MoxiMotionVector own, const MoxiMotionVector* n) {
  return {{{n[0], n[2], own, own}, {n[1], own, n[4], own}, {own, n[3], own, n[6]}, {own, own, n[5], n[7]}}};
}

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

/// Pointers are at the block's own place.
template <const auto& kCopies, int kFractionBits>
MoxStatus overlap_block(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep, MoxiMotionVector vector,
                        const AroundBlock& neighbours, Mox32s rounding) {
  using Block = std::array<Mox8u, 64>;
  const auto predict = [=](MoxiMotionVector v) {
    Block block;
    copy_by_vector<kCopies, kFractionBits>(src, srcStep, v, rounding, block.data(), 8);
    return block;
  };
  const Block own = predict(vector), above = predict(neighbours.above), below = predict(neighbours.below),
              left = predict(neighbours.left), right = predict(neighbours.right);
  for (std::size_t y = 0; y < 8; ++y, dst += dstStep) {
    const Block& vertical = y < 4 ? above : below;
    for (std::size_t x = 0; x < 8; ++x) {
      const Block& horizontal = x < 4 ? left : right;
      const std::size_t i = 8 * y + x;
      const Mox32s sum =
          kOwnWeights[y][x] * own[i] + kVerticalWeights[y][x] * vertical[i] + kHorizontalWeights[y][x] * horizontal[i];
      dst[x] = static_cast<Mox8u>((sum + 4) >> 3);
    }
  }
  return moxStsOk;
}

inline MoxStatus ownvc_OBMC8x8HP_8u_C1R(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep,
                                        MoxiMotionVector vector, const MoxiMotionVector* n, Mox32s rounding) {
  return overlap_block<ownvc_Copy8x8HP_8u_C1R, 1>(src, srcStep, dst, dstStep, vector, {n[0], n[1], n[2], n[3]},
                                                  rounding);
}
inline MoxStatus ownvc_OBMC8x8QP_8u_C1R(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep,
                                        MoxiMotionVector vector, const MoxiMotionVector* n, Mox32s rounding) {
  return overlap_block<ownvc_Copy8x8QP_8u_C1R, 2>(src, srcStep, dst, dstStep, vector, {n[0], n[1], n[2], n[3]},
                                                  rounding);
}
/// The four blocks of a macroblock, each by itself.
template <const auto& kCopies, int kFractionBits>
MoxStatus overlap_macroblock(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep, MoxiMotionVector vector,
                             const MoxiMotionVector* n, Mox32s rounding) {
  const auto neighbours = around_macroblock(vector, n);
  for (std::size_t i = 0; i < 4; ++i) {
    const std::ptrdiff_t x = 8 * (i & 1), y = 8 * (i >> 1);
    overlap_block<kCopies, kFractionBits>(src + x + y * srcStep, srcStep, dst + x + y * dstStep, dstStep, vector,
                                          neighbours[i], rounding);
  }
  return moxStsOk;
}

inline MoxStatus ownvc_OBMC16x16HP_8u_C1R(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep,
                                          MoxiMotionVector vector, const MoxiMotionVector* n, Mox32s rounding) {
  return overlap_macroblock<ownvc_Copy8x8HP_8u_C1R, 1>(src, srcStep, dst, dstStep, vector, n, rounding);
}
inline MoxStatus ownvc_OBMC16x16QP_8u_C1R(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep,
                                          MoxiMotionVector vector, const MoxiMotionVector* n, Mox32s rounding) {
  return overlap_macroblock<ownvc_Copy8x8QP_8u_C1R, 2>(src, srcStep, dst, dstStep, vector, n, rounding);
}

}  // namespace mox::px
