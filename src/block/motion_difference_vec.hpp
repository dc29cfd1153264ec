/// Vector kernels of motion-compensated differences, on words from the load on.
#pragma once

#include "block/motion_difference_px.hpp"
#include "block/motion_vec.hpp"

namespace mox::vec {

template <class R, int H, class S>
MOX_INLINE MoxStatus diff_block(const Mox8u* cur, Mox32s curStep, S sample, Mox16s* diff, Mox32s diffStep) {
  for (int y = 0; y < H; y += R::kRows) {
    R::store_words(difference(R::load(cur, curStep), sample()), diff, diffStep);
    cur += std::ptrdiff_t{R::kRows} * curStep, diff = step_bytes(diff, std::ptrdiff_t{R::kRows} * diffStep);
  }
  return moxStsOk;
}

template <int H, class S>
MOX_INLINE MoxStatus diff_channels_block(const Mox8u* cur, Mox32s curStep, S sample, Mox16s* diffU, Mox32s diffUStep,
                                         Mox16s* diffV, Mox32s diffVStep) {
  for (int y = 0; y < H; ++y) {
    const auto diff = difference(Channels::load(cur, curStep), sample());
    simd::store_row(diff.template group<0>(), diffU);
    simd::store_row(diff.template group<1>(), diffV);
    cur += curStep, diffU = step_bytes(diffU, diffUStep), diffV = step_bytes(diffV, diffVStep);
  }
  return moxStsOk;
}

template <int W, int H, HalfPel P, bool kPredictor>
MoxStatus get_diff(const Mox8u* cur, Mox32s curStep, const Mox8u* ref, Mox32s refStep, Mox16s* diff, Mox32s diffStep,
                   [[maybe_unused]] Mox16s* predictor, [[maybe_unused]] Mox32s predictorStep, Mox32u roundControl) {
  using R = Columns<W>;
  WordSampler<R, P, RoundingByArgument> sample(ref, refStep, RoundingByArgument(roundControl));
  if constexpr (!kPredictor) return diff_block<R, H>(cur, curStep, sample, diff, diffStep);
  for (int y = 0; y < H; ++y) {
    const auto p = sample();
    R::store_words(difference(R::load(cur, curStep), p), diff, diffStep);
    R::store_words(p, predictor, predictorStep);
    cur += curStep, diff = step_bytes(diff, diffStep), predictor = step_bytes(predictor, predictorStep);
  }
  return moxStsOk;
}

template <int W, int H, HalfPel F, HalfPel B>
MoxStatus get_diff_pair(const Mox8u* cur, Mox32s curStep, const Mox8u* refF, Mox32s refFStep, const Mox8u* refB,
                        Mox32s refBStep, Mox16s* diff, Mox32s diffStep, Mox32u roundControl) {
  using R = Columns<W>;
  const PairSampler<R, F, B, RoundingByArgument> sample(refF, refFStep, refB, refBStep,
                                                        RoundingByArgument(roundControl));
  return diff_block<R, H>(cur, curStep, sample, diff, diffStep);
}

template <int H, HalfPel P>
MoxStatus get_diff_channels(const Mox8u* cur, Mox32s curStep, const Mox8u* ref, Mox32s refStep, Mox16s* diffU,
                            Mox32s diffUStep, Mox16s* diffV, Mox32s diffVStep, Mox32u roundControl) {
  const WordSampler<Channels, P, RoundingByArgument> sample(ref, refStep, RoundingByArgument(roundControl));
  return diff_channels_block<H>(cur, curStep, sample, diffU, diffUStep, diffV, diffVStep);
}

template <int H, HalfPel F, HalfPel B>
MoxStatus get_diff_channels_pair(const Mox8u* cur, Mox32s curStep, const Mox8u* refF, Mox32s refFStep,
                                 const Mox8u* refB, Mox32s refBStep, Mox16s* diffU, Mox32s diffUStep, Mox16s* diffV,
                                 Mox32s diffVStep, Mox32u roundControl) {
  const PairSampler<Channels, F, B, RoundingByArgument> sample(refF, refFStep, refB, refBStep,
                                                               RoundingByArgument(roundControl));
  return diff_channels_block<H>(cur, curStep, sample, diffU, diffUStep, diffV, diffVStep);
}

inline MoxStatus get_diff_4x4(const Mox8u* cur, Mox32s curStep, const Mox8u* ref, Mox32s refStep, Mox16s* diff,
                              Mox32s diffStep) {
  using R = FewColumns<4, 2>;
  const WordSampler<R, HalfPel::kFull, FixedRounding<0>> sample(ref, refStep, FixedRounding<0>());
  return diff_block<R, 4>(cur, curStep, sample, diff, diffStep);
}

}  // namespace mox::vec
