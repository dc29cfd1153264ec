/// Vector kernels of half-pel motion compensation. Samples are words from the load to the clamp, so residuals are
/// added as they come; vectors are rows or parts of rows, never rows out of order.
#pragma once

#include "block/half_pel_vec.hpp"
#include "block/motion_px.hpp"
#include "block/rows_vec.hpp"

namespace mox::vec {

/// P of two references: their mean, halves up.
template <class R, HalfPel F, HalfPel B, class Rounding>
class PairSampler {
 public:
  PairSampler(const Mox8u* refF, Mox32s refFStep, const Mox8u* refB, Mox32s refBStep, Rounding rounding)
      : forward_(refF, refFStep, rounding), backward_(refB, refBStep, rounding) {}
  MOX_INLINE typename R::Words operator()() {
    const auto f = forward_(), b = backward_();
    return combine(f, b, [](auto c, auto d) { return avg(c, d); });
  }

 private:
  WordSampler<R, F, Rounding> forward_;
  WordSampler<R, B, Rounding> backward_;
};

/// Sum of a prediction, 0 to 255, and a residual. It saturates only above 32767, where the clamp gives 255 anyway.
template <class Words>
MOX_INLINE Words add_residual(const Words& prediction, const Words& residual) {
  return combine(prediction, residual, [](auto p, auto r) {
    return simd::as<simd::u16>(adds(simd::as<simd::s16>(p), simd::as<simd::s16>(r)));
  });
}

template <class R, class S>
MOX_INLINE MoxStatus mc_block(S sample, const Mox16s* res, Mox32s resStep, Mox8u* dst, Mox32s dstStep,
                              std::ptrdiff_t height) {
  for (int y = 0; y < height; y += R::kRows) {
    R::store_clamped(add_residual(sample(), R::load_words(res, resStep)), dst, dstStep);
    res = step_bytes(res, std::ptrdiff_t{R::kRows} * resStep), dst += std::ptrdiff_t{R::kRows} * dstStep;
  }
  return moxStsOk;
}

template <class S>
MOX_INLINE MoxStatus mc_channels_block(S sample, const Mox16s* resU, const Mox16s* resV, Mox32s resStep, Mox8u* dst,
                                       Mox32s dstStep, int height) {
  for (int y = 0; y < height; ++y) {
    const auto residual = Channels::Words::of(simd::load_row<simd::u16, 1>(resU), simd::load_row<simd::u16, 1>(resV));
    Channels::store_clamped(add_residual(sample(), residual), dst, dstStep);
    resU = step_bytes(resU, resStep), resV = step_bytes(resV, resStep), dst += dstStep;
  }
  return moxStsOk;
}

template <int W, int kDistance, HalfPel P, int kRc>
MoxStatus mc(const Mox8u* ref, Mox32s refStep, const Mox16s* res, Mox32s resStep, Mox8u* dst, Mox32s dstStep,
             std::ptrdiff_t height) {
  using R = Columns<W, kDistance>;
  const FixedRounding<kRc> rounding;
  return mc_block<R>(WordSampler<R, P, FixedRounding<kRc>>(ref, refStep, rounding), res, resStep, dst, dstStep, height);
}

template <int W, int kDistance, HalfPel F, HalfPel B, int kRc>
MoxStatus mc_pair(const Mox8u* refF, Mox32s refFStep, const Mox8u* refB, Mox32s refBStep, const Mox16s* res,
                  Mox32s resStep, Mox8u* dst, Mox32s dstStep, int height) {
  using R = Columns<W, kDistance>;
  const PairSampler<R, F, B, FixedRounding<kRc>> sample(refF, refFStep, refB, refBStep, FixedRounding<kRc>());
  return mc_block<R>(sample, res, resStep, dst, dstStep, height);
}

template <HalfPel P, int kRc>
MoxStatus mc_channels(const Mox8u* ref, Mox32s refStep, const Mox16s* resU, const Mox16s* resV, Mox32s resStep,
                      Mox8u* dst, Mox32s dstStep, int height) {
  const WordSampler<Channels, P, FixedRounding<kRc>> sample(ref, refStep, FixedRounding<kRc>());
  return mc_channels_block(sample, resU, resV, resStep, dst, dstStep, height);
}

template <HalfPel F, HalfPel B, int kRc>
MoxStatus mc_channels_pair(const Mox8u* refF, Mox32s refFStep, const Mox8u* refB, Mox32s refBStep, const Mox16s* resU,
                           const Mox16s* resV, Mox32s resStep, Mox8u* dst, Mox32s dstStep, int height) {
  const PairSampler<Channels, F, B, FixedRounding<kRc>> sample(refF, refFStep, refB, refBStep, FixedRounding<kRc>());
  return mc_channels_block(sample, resU, resV, resStep, dst, dstStep, height);
}

/// Rows of a small block that a vector takes.
template <int W, int H>
using SmallRows = FewColumns<W, (W * H < 8 ? H : 8 / W)>;

template <int W, int H, HalfPel P>
MoxStatus mc_small(const Mox8u* ref, Mox32s refStep, const Mox16s* res, Mox32s resStep, Mox8u* dst, Mox32s dstStep,
                   std::size_t roundControl) {
  using R = SmallRows<W, H>;
  const WordSampler<R, P, RoundingByArgument> sample(ref, refStep,
                                                     RoundingByArgument(static_cast<Mox32u>(roundControl)));
  return mc_block<R>(sample, res, resStep, dst, dstStep, H);
}

template <int W, int H, HalfPel F, HalfPel B>
MoxStatus mc_small_pair(const Mox8u* refF, Mox32s refFStep, const Mox8u* refB, Mox32s refBStep, const Mox16s* res,
                        Mox32s resStep, Mox8u* dst, Mox32s dstStep, Mox32u roundControl) {
  using R = SmallRows<W, H>;
  const PairSampler<R, F, B, RoundingByArgument> sample(refF, refFStep, refB, refBStep,
                                                        RoundingByArgument(roundControl));
  return mc_block<R>(sample, res, resStep, dst, dstStep, H);
}

}  // namespace mox::vec
