/// Portable kernels with an `acc` selector: half-pel copy, average into a block, and prediction plus residual.
#pragma once

#include "block/motion_px.hpp"
#include "frame/table.hpp"

namespace mox {

using HalfPelCopyKernel = MoxStatus (*)(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep);
using HalfPelAddKernel = MoxStatus (*)(const Mox16s* res, Mox32s resStep, const Mox8u* ref, Mox32s refStep, Mox8u* dst,
                                       Mox32s dstStep);

/// Index of tables with 8 entries: rounding | half in x << 1 | half in y << 2.
constexpr std::size_t acc_index(Mox32s acc, Mox32s rounding) {
  return static_cast<std::size_t>((acc & 3) << 1 | (rounding & 1));
}
static_assert(acc_index(3, 1) == 7 && acc_index(1, 2) == 2 && acc_index(-4, 0) == 0);

/// Position and rounding of an entry; a full position has one kernel for both roundings.
constexpr HalfPel acc_position(std::size_t index) { return half_pel_of_acc(index >> 1); }
constexpr int acc_rounding(std::size_t index) { return mc_rounding(acc_position(index), index); }

}  // namespace mox

namespace mox::px {

template <int W, int H, HalfPel P, int kRc>
MoxStatus copy_half_pel(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep) {
  for (int y = 0; y < H; ++y, src += srcStep, dst += dstStep) {
    for (int x = 0; x < W; ++x) dst[x] = static_cast<Mox8u>(predict<P>(src + x, srcStep, kRc));
  }
  return moxStsOk;
}

template <int W, int H, HalfPel P, int kRc>
MoxStatus average_half_pel(const Mox8u* src, Mox32s srcStep, Mox8u* srcDst, Mox32s srcDstStep) {
  for (int y = 0; y < H; ++y, src += srcStep, srcDst += srcDstStep) {
    for (int x = 0; x < W; ++x) {
      srcDst[x] = static_cast<Mox8u>(avg_up(srcDst[x], predict<P>(src + x, srcStep, kRc)));
    }
  }
  return moxStsOk;
}

/// Wraps where motion compensation saturates: differs from it for residuals above 32767 - P.
template <HalfPel P, int kRc>
MoxStatus add_half_pel(const Mox16s* res, Mox32s resStep, const Mox8u* ref, Mox32s refStep, Mox8u* dst,
                       Mox32s dstStep) {
  for (int y = 0; y < 8; ++y, ref += refStep, dst += dstStep, res = step_bytes(res, resStep)) {
    for (int x = 0; x < 8; ++x) {
      dst[x] = clip8(wrap16(predict<P>(ref + x, refStep, kRc) + load<Mox16s>(res + x)));
    }
  }
  return moxStsOk;
}

template <int W, int H>
inline constexpr auto kHalfPelCopy = make_table<8>([]<std::size_t I>() -> HalfPelCopyKernel {
  return &copy_half_pel<W, H, acc_position(I), acc_rounding(I)>;
});
template <int W, int H>
inline constexpr auto kHalfPelAverage = make_table<8>([]<std::size_t I>() -> HalfPelCopyKernel {
  return &average_half_pel<W, H, acc_position(I), acc_rounding(I)>;
});

/// Index acc_index.
inline constexpr auto ownvc_Copy16x16HP_8u_C1R = kHalfPelCopy<16, 16>;
inline constexpr auto ownvc_Copy16x8HP_8u_C1R = kHalfPelCopy<16, 8>;
inline constexpr auto ownvc_Copy8x8HP_8u_C1R = kHalfPelCopy<8, 8>;
inline constexpr auto ownvc_Copy8x4HP_8u_C1R = kHalfPelCopy<8, 4>;
inline constexpr auto ownvc_InterpolateAverage16x16HP_8u_C1IR = kHalfPelAverage<16, 16>;
inline constexpr auto ownvc_InterpolateAverage16x8HP_8u_C1IR = kHalfPelAverage<16, 8>;
inline constexpr auto ownvc_InterpolateAverage8x8HP_8u_C1IR = kHalfPelAverage<8, 8>;
inline constexpr auto ownvc_InterpolateAverage8x4HP_8u_C1IR = kHalfPelAverage<8, 4>;
inline constexpr auto ownvc_Add8x8HP_16s8u_C1RS =
    make_table<8>([]<std::size_t I>() -> HalfPelAddKernel { return &add_half_pel<acc_position(I), acc_rounding(I)>; });

}  // namespace mox::px
