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

template <int W, int H>
inline constexpr auto kDiff = make_table<16>([]<std::size_t I>() -> DiffKernel {
  return &get_diff<W, H, half_pel(I >> 2), (I & 1) != 0>;
});
template <int W, int H>
inline constexpr auto kDiffPair = make_table<16>([]<std::size_t I>() -> DiffPairKernel {
  return &get_diff_pair<W, H, half_pel(I), half_pel(I >> 2)>;
});
/// Index: position.
template <int H>
inline constexpr auto kDiffChannels = make_table<4>([]<std::size_t I>() -> DiffChannelsKernel {
  return &get_diff_channels<H, half_pel(I)>;
});
template <int H>
inline constexpr auto kDiffChannelsPair = make_table<16>([]<std::size_t I>() -> DiffChannelsPairKernel {
  return &get_diff_channels_pair<H, half_pel(I), half_pel(I >> 2)>;
});

/// One size each; index diff_index, with two references pair_index.
inline constexpr auto GetDiff16x16FnTbl_sse2 = kDiff<16, 16>;
inline constexpr auto GetDiff16x8FnTbl_sse2 = kDiff<16, 8>;
inline constexpr auto GetDiff8x16FnTbl_sse2 = kDiff<8, 16>;
inline constexpr auto GetDiff8x8FnTbl_sse2 = kDiff<8, 8>;
inline constexpr auto GetDiff8x4FnTbl_sse2 = kDiff<8, 4>;
inline constexpr auto GetDiff16x16BFnTbl_sse2 = kDiffPair<16, 16>;
inline constexpr auto GetDiff16x8BFnTbl_sse2 = kDiffPair<16, 8>;
inline constexpr auto GetDiff8x16BFnTbl_sse2 = kDiffPair<8, 16>;
inline constexpr auto GetDiff8x8BFnTbl_sse2 = kDiffPair<8, 8>;
inline constexpr auto GetDiff8x4BFnTbl_sse2 = kDiffPair<8, 4>;

/// 8 samples of each of two interleaved channels; index half_pel_index, with two references pair_index.
inline constexpr auto GetDiff8x8FnTblNV12_sse41 = kDiffChannels<8>;
inline constexpr auto GetDiff8x4FnTblNV12_sse41 = kDiffChannels<4>;
inline constexpr auto GetDiff8x8BFnTblNV12_sse41 = kDiffChannelsPair<8>;
inline constexpr auto GetDiff8x4BFnTblNV12_sse41 = kDiffChannelsPair<4>;

}  // namespace mox::vec
