/// Portable kernels of motion-compensated differences: the current block minus its prediction.
///
/// Steps are bytes, of 16-bit blocks too. All kernels take the rounding as an argument.
#pragma once

#include "block/motion_px.hpp"

namespace mox {

/// predictor: where P itself goes as words, not touched by the kernels without.
using DiffKernel = MoxStatus (*)(const Mox8u* cur, Mox32s curStep, const Mox8u* ref, Mox32s refStep, Mox16s* diff,
                                 Mox32s diffStep, Mox16s* predictor, Mox32s predictorStep, Mox32u roundControl);
using DiffPairKernel = MoxStatus (*)(const Mox8u* cur, Mox32s curStep, const Mox8u* refF, Mox32s refFStep,
                                     const Mox8u* refB, Mox32s refBStep, Mox16s* diff, Mox32s diffStep,
                                     Mox32u roundControl);
/// The differences of two interleaved channels go to two blocks.
using DiffChannelsKernel = MoxStatus (*)(const Mox8u* cur, Mox32s curStep, const Mox8u* ref, Mox32s refStep,
                                         Mox16s* diffU, Mox32s diffUStep, Mox16s* diffV, Mox32s diffVStep,
                                         Mox32u roundControl);
using DiffChannelsPairKernel = MoxStatus (*)(const Mox8u* cur, Mox32s curStep, const Mox8u* refF, Mox32s refFStep,
                                             const Mox8u* refB, Mox32s refBStep, Mox16s* diffU, Mox32s diffUStep,
                                             Mox16s* diffV, Mox32s diffVStep, Mox32u roundControl);

/// Index of tables with 16 entries: with a predictor or without | position << 2. Entries 2 and 3 of each position are
/// not used.
constexpr std::size_t diff_index(Mox32s mcType, bool withPredictor) {
  return half_pel_index(mcType) << 2 | std::size_t{withPredictor};
}
static_assert(diff_index(12, true) == 13 && diff_index(4, false) == 4 && diff_index(3, true) == 1);

}  // namespace mox

namespace mox::px {

/// diff = cur - sample(x, y).
template <int W, int H, class Sample>
MoxStatus diff_block(const Mox8u* cur, Mox32s curStep, Sample sample, Mox16s* diff, Mox32s diffStep) {
  for (int y = 0; y < H; ++y) {
    for (int x = 0; x < W; ++x) store(diff + x, static_cast<Mox16s>(cur[x] - sample(x, y)));
    cur += curStep, diff = step_bytes(diff, diffStep);
  }
  return moxStsOk;
}

/// The same over 8 samples of each of two interleaved channels.
template <int H, class Sample>
MoxStatus diff_channels_block(const Mox8u* cur, Mox32s curStep, Sample sample, Mox16s* diffU, Mox32s diffUStep,
                              Mox16s* diffV, Mox32s diffVStep) {
  for (int y = 0; y < H; ++y) {
    for (int x = 0; x < 8; ++x) {
      store(diffU + x, static_cast<Mox16s>(cur[2 * x] - sample(2 * x, y)));
      store(diffV + x, static_cast<Mox16s>(cur[2 * x + 1] - sample(2 * x + 1, y)));
    }
    cur += curStep, diffU = step_bytes(diffU, diffUStep), diffV = step_bytes(diffV, diffVStep);
  }
  return moxStsOk;
}

template <int W, int H, HalfPel P, bool kPredictor>
MoxStatus get_diff(const Mox8u* cur, Mox32s curStep, const Mox8u* ref, Mox32s refStep, Mox16s* diff, Mox32s diffStep,
                   [[maybe_unused]] Mox16s* predictor, [[maybe_unused]] Mox32s predictorStep, Mox32u roundControl) {
  const auto sample = px::predictor<P>(ref, refStep, roundControl & 1);
  if constexpr (!kPredictor) return diff_block<W, H>(cur, curStep, sample, diff, diffStep);
  for (int y = 0; y < H; ++y) {
    for (int x = 0; x < W; ++x) {
      const Mox32s p = sample(x, y);
      store(diff + x, static_cast<Mox16s>(cur[x] - p));
      store(predictor + x, static_cast<Mox16s>(p));
    }
    cur += curStep, diff = step_bytes(diff, diffStep), predictor = step_bytes(predictor, predictorStep);
  }
  return moxStsOk;
}

template <int W, int H, HalfPel F, HalfPel B>
MoxStatus get_diff_pair(const Mox8u* cur, Mox32s curStep, const Mox8u* refF, Mox32s refFStep, const Mox8u* refB,
                        Mox32s refBStep, Mox16s* diff, Mox32s diffStep, Mox32u roundControl) {
  return diff_block<W, H>(cur, curStep, predictor<F, B>(refF, refFStep, refB, refBStep, roundControl & 1), diff,
                          diffStep);
}

template <int H, HalfPel P>
MoxStatus get_diff_channels(const Mox8u* cur, Mox32s curStep, const Mox8u* ref, Mox32s refStep, Mox16s* diffU,
                            Mox32s diffUStep, Mox16s* diffV, Mox32s diffVStep, Mox32u roundControl) {
  return diff_channels_block<H>(cur, curStep, predictor<P, 2>(ref, refStep, roundControl & 1), diffU, diffUStep, diffV,
                                diffVStep);
}

template <int H, HalfPel F, HalfPel B>
MoxStatus get_diff_channels_pair(const Mox8u* cur, Mox32s curStep, const Mox8u* refF, Mox32s refFStep,
                                 const Mox8u* refB, Mox32s refBStep, Mox16s* diffU, Mox32s diffUStep, Mox16s* diffV,
                                 Mox32s diffVStep, Mox32u roundControl) {
  return diff_channels_block<H>(cur, curStep, predictor<F, B, 2>(refF, refFStep, refB, refBStep, roundControl & 1),
                                diffU, diffUStep, diffV, diffVStep);
}

inline MoxStatus get_diff_4x4(const Mox8u* cur, Mox32s curStep, const Mox8u* ref, Mox32s refStep, Mox16s* diff,
                              Mox32s diffStep) {
  return diff_block<4, 4>(cur, curStep, predictor<HalfPel::kFull>(ref, refStep, 0), diff, diffStep);
}

}  // namespace mox::px
