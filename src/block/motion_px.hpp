/// Portable kernels of half-pel motion compensation: a prediction from one or two references, plus the residual.
///
/// Steps are bytes, of the residual too. A reference is read one row further for a half in y and one sample further
/// for a half in x. Blocks are worked through row by row, downwards.
#pragma once

#include "block/half_pel_px.hpp"
#include "frame/access.hpp"
#include "frame/arithmetic.hpp"
#include "moxvc/types.h"

namespace mox {

/// A seventh argument, which goes over the stack, is 64 bits wide: the callers would write a narrower one into half of
/// a slot and read the whole slot back, which stalls.
using McKernel = MoxStatus (*)(const Mox8u* ref, Mox32s refStep, const Mox16s* res, Mox32s resStep, Mox8u* dst,
                               Mox32s dstStep, std::ptrdiff_t height);
using McPairKernel = MoxStatus (*)(const Mox8u* refF, Mox32s refFStep, const Mox8u* refB, Mox32s refBStep,
                                   const Mox16s* res, Mox32s resStep, Mox8u* dst, Mox32s dstStep, int height);
/// The residual of two interleaved channels lies in two blocks.
using McChannelsKernel = MoxStatus (*)(const Mox8u* ref, Mox32s refStep, const Mox16s* resU, const Mox16s* resV,
                                       Mox32s resStep, Mox8u* dst, Mox32s dstStep, int height);
using McChannelsPairKernel = MoxStatus (*)(const Mox8u* refF, Mox32s refFStep, const Mox8u* refB, Mox32s refBStep,
                                           const Mox16s* resU, const Mox16s* resV, Mox32s resStep, Mox8u* dst,
                                           Mox32s dstStep, int height);
/// Kernels of small blocks have their height built in and take the rounding as an argument.
using McSmallKernel = MoxStatus (*)(const Mox8u* ref, Mox32s refStep, const Mox16s* res, Mox32s resStep, Mox8u* dst,
                                    Mox32s dstStep, std::size_t roundControl);
using McSmallPairKernel = MoxStatus (*)(const Mox8u* refF, Mox32s refFStep, const Mox8u* refB, Mox32s refBStep,
                                        const Mox16s* res, Mox32s resStep, Mox8u* dst, Mox32s dstStep,
                                        Mox32u roundControl);

/// Index of tables with 8 entries: rounding | position << 1.
constexpr std::size_t mc_index(Mox32s mcType, Mox32u roundControl) {
  return half_pel_index(mcType) << 1 | (roundControl & 1);
}
/// Index of tables with 32 entries: rounding | forward position << 1 | backward position << 3.
constexpr std::size_t mc_index(Mox32s mcTypeF, Mox32s mcTypeB, Mox32u roundControl) {
  return mc_index(mcTypeF, roundControl) | half_pel_index(mcTypeB) << 3;
}
static_assert(mc_index(12, 3) == 7 && mc_index(4, 2) == 2 && mc_index(12, 12, 1) == 31 && mc_index(4, 8, 0) == 18);

/// Index of tables with 16 entries whose kernels take the rounding: position << 2, so one kernel in four places.
constexpr std::size_t mc_small_index(Mox32s mcType) { return half_pel_index(mcType) << 2; }
/// Index of tables with 16 entries for two references: forward position | backward position << 2.
constexpr std::size_t pair_index(Mox32s mcTypeF, Mox32s mcTypeB) {
  return half_pel_index(mcTypeF) | half_pel_index(mcTypeB) << 2;
}
static_assert(mc_small_index(-1) == 12 && mc_small_index(19) == 0 && pair_index(12, 0) == 3 && pair_index(0, 12) == 12);

/// Full positions round nothing, so tables hold one kernel for both roundings.
constexpr int mc_rounding(HalfPel position, std::size_t bit) {
  return position == HalfPel::kFull ? 0 : static_cast<int>(bit & 1);
}
constexpr int mc_rounding(HalfPel forward, HalfPel backward, std::size_t bit) {
  return mc_rounding(forward, bit) | mc_rounding(backward, bit);
}

}  // namespace mox

namespace mox::px {

/// Mean of a forward and a backward prediction. Halves always go up, only the predictions follow rc.
template <HalfPel F, HalfPel B, int kDistance = 1>
Mox32s predict_pair(const Mox8u* f, std::ptrdiff_t stepF, const Mox8u* b, std::ptrdiff_t stepB, Mox32s rc) {
  return avg_up(predict<F, kDistance>(f, stepF, rc), predict<B, kDistance>(b, stepB, rc));
}

/// dst = clip8(sample(x, y) + residual).
template <int W, class Sample>
MoxStatus mc_block(Sample sample, const Mox16s* res, Mox32s resStep, Mox8u* dst, Mox32s dstStep,
                   std::ptrdiff_t height) {
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < W; ++x) dst[x] = clip8(sample(x, y) + load<Mox16s>(res + x));
    res = step_bytes(res, resStep), dst += dstStep;
  }
  return moxStsOk;
}

/// The same over 8 samples of each of two interleaved channels.
template <class Sample>
MoxStatus mc_channels_block(Sample sample, const Mox16s* resU, const Mox16s* resV, Mox32s resStep, Mox8u* dst,
                            Mox32s dstStep, int height) {
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < 8; ++x) {
      dst[2 * x] = clip8(sample(2 * x, y) + load<Mox16s>(resU + x));
      dst[2 * x + 1] = clip8(sample(2 * x + 1, y) + load<Mox16s>(resV + x));
    }
    resU = step_bytes(resU, resStep), resV = step_bytes(resV, resStep), dst += dstStep;
  }
  return moxStsOk;
}

/// P(x, y) of a block, as a callable for the blocks above.
template <HalfPel P, int kDistance = 1>
auto predictor(const Mox8u* ref, std::ptrdiff_t step, Mox32s rc) {
  return [=](int x, int y) { return predict<P, kDistance>(ref + y * step + x, step, rc); };
}
template <HalfPel F, HalfPel B, int kDistance = 1>
auto predictor(const Mox8u* f, std::ptrdiff_t stepF, const Mox8u* b, std::ptrdiff_t stepB, Mox32s rc) {
  return [=](int x, int y) {
    return predict_pair<F, B, kDistance>(f + y * stepF + x, stepF, b + y * stepB + x, stepB, rc);
  };
}

template <int W, int kDistance, HalfPel P, int kRc>
MoxStatus mc(const Mox8u* ref, Mox32s refStep, const Mox16s* res, Mox32s resStep, Mox8u* dst, Mox32s dstStep,
             std::ptrdiff_t height) {
  return mc_block<W>(predictor<P, kDistance>(ref, refStep, kRc), res, resStep, dst, dstStep, height);
}

template <int W, int kDistance, HalfPel F, HalfPel B, int kRc>
MoxStatus mc_pair(const Mox8u* refF, Mox32s refFStep, const Mox8u* refB, Mox32s refBStep, const Mox16s* res,
                  Mox32s resStep, Mox8u* dst, Mox32s dstStep, int height) {
  return mc_block<W>(predictor<F, B, kDistance>(refF, refFStep, refB, refBStep, kRc), res, resStep, dst, dstStep,
                     height);
}

template <HalfPel P, int kRc>
MoxStatus mc_channels(const Mox8u* ref, Mox32s refStep, const Mox16s* resU, const Mox16s* resV, Mox32s resStep,
                      Mox8u* dst, Mox32s dstStep, int height) {
  return mc_channels_block(predictor<P, 2>(ref, refStep, kRc), resU, resV, resStep, dst, dstStep, height);
}

template <HalfPel F, HalfPel B, int kRc>
MoxStatus mc_channels_pair(const Mox8u* refF, Mox32s refFStep, const Mox8u* refB, Mox32s refBStep, const Mox16s* resU,
                           const Mox16s* resV, Mox32s resStep, Mox8u* dst, Mox32s dstStep, int height) {
  return mc_channels_block(predictor<F, B, 2>(refF, refFStep, refB, refBStep, kRc), resU, resV, resStep, dst, dstStep,
                           height);
}

template <int W, int H, HalfPel P>
MoxStatus mc_small(const Mox8u* ref, Mox32s refStep, const Mox16s* res, Mox32s resStep, Mox8u* dst, Mox32s dstStep,
                   std::size_t roundControl) {
  return mc_block<W>(predictor<P>(ref, refStep, static_cast<Mox32s>(roundControl & 1)), res, resStep, dst, dstStep, H);
}

template <int W, int H, HalfPel F, HalfPel B>
MoxStatus mc_small_pair(const Mox8u* refF, Mox32s refFStep, const Mox8u* refB, Mox32s refBStep, const Mox16s* res,
                        Mox32s resStep, Mox8u* dst, Mox32s dstStep, Mox32u roundControl) {
  return mc_block<W>(predictor<F, B>(refF, refFStep, refB, refBStep, roundControl & 1), res, resStep, dst, dstStep, H);
}

}  // namespace mox::px
