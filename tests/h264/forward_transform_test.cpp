#include "moxvc/h264_forward_transform.h"

#include <gtest/gtest.h>

#include <cmath>

#include "h264/transform_inputs.hpp"
#include "moxvc/h264_inverse_transform.h"
#include "oracle/forward_transform.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/null_pointers.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

using oracle::Rule;
using oracle::Values;

/// The step between the values of neighbouring levels, in samples: 0.625 at QP 0, doubled every 6.
double step_of(int qp) { return 0.0625 * static_cast<double>(oracle::multiplier(qp % 6, 0) << (qp / 6)); }

class ForwardTransform : public PerGeneration {
 protected:
  Random random_;

  /// call(src, dst) against want(values), in place too where the types allow it. Gives the number of blocks that
  /// other(values) gets wrong.
  template <class T, class U>
  int transform(int size, auto call, auto want, auto other) {
    int differing = 0;
    for (int round = 0; round < 3 * Block<T>::rounds(size); ++round) {
      const Block<T> src(round % Block<T>::rounds(size), size, random_);
      const Block<U> dst(0, size, random_);
      for (int i = 0; round % 3 == 0 && i < size; ++i) src[i] = static_cast<T>(64 * random_(-7, 7));
      const Values input = src.values(), expected = want(input, round % 3 == 0);
      differing += expected != other(input);
      EXPECT_EQ(call(src.data(), dst.data()), moxStsOk);
      EXPECT_EQ(src.values(), input);
      EXPECT_EQ(dst.values(), expected) << "round " << round;
      if constexpr (sizeof(T) == sizeof(U)) {
        call(src.data(), src.data());
        EXPECT_EQ(src.values(), expected) << "in place, round " << round;
      }
      if (HasFailure()) return 0;
    }
    return differing;
  }

  /// The root of the mean square of got - want.
  void expect_close(const Values& got, const Values& want, double bound, int qp) {
    double squares = 0;
    for (std::size_t i = 0; i < got.size(); ++i) squares += std::pow(static_cast<double>(got[i] - want[i]), 2);
    EXPECT_LE(std::sqrt(squares / static_cast<double>(got.size())), bound) << "qp " << qp;
  }
};

TEST_P(ForwardTransform, Transforms) {
  const auto by = [](Rule rule) {
    return [rule](const Values& x, bool = false) { return oracle::forward_4x4(x, rule); };
  };
  EXPECT_GT((transform<Mox16s, Mox16s>(16, lib(MOX_FN(moxiTransformResidual4x4Fwd_H264_16s_C1)), by(Rule::kSat16),
                                       by(Rule::kWrap16))),
            20);  // blocks that a wrapping kernel gets wrong
  transform<Mox32s, Mox32s>(16, lib(MOX_FN(moxiTransformResidual4x4Fwd_H264_32s_C1)), by(Rule::kWrap32),
                            by(Rule::kWrap32));

  const auto flow = [](Rule rule) {
    return [rule](const Values& x, bool exact = false) {
      return exact ? oracle::forward_8x8_by_basis(x) : oracle::flow_2d(oracle::kForward8, x, rule, true);
    };
  };
  EXPECT_GT((transform<Mox16s, Mox16s>(64, lib(MOX_FN(moxiTransformFwdLuma8x8_H264_16s_C1)), flow(Rule::kSat16),
                                       flow(Rule::kWrap16))),
            20);
  EXPECT_GT((transform<Mox16s, Mox32s>(64, lib(MOX_FN(moxiTransformFwdLuma8x8_H264_16s32s_C1)), flow(Rule::kWrap32),
                                       flow(Rule::kSat16))),
            20);
  const auto in_place = lib(MOX_FN(moxiTransformLuma8x8Fwd_H264_16s_C1I));
  transform<Mox16s, Mox16s>(
      64,
      [&](auto src, auto dst) {
        if (dst != src) std::copy_n(src, 64, dst);
        return in_place(dst);
      },
      flow(Rule::kSat16), flow(Rule::kSat16));
}

TEST_P(ForwardTransform, Prediction) {
  for (int round = 0; round < 200; ++round) {
    const int steps[] = {4, 7, -4, -11, 64};
    const Plane<Mox8u> plane(4, 4, steps[round % 5], any_placement<Mox8u>(random_));
    const Block<Mox16s> dst(0, 16, random_);
    fill(plane.memory(), kPatterns[round % 7], random_);
    Values samples;
    for (int i = 0; i < 16; ++i) samples.push_back(plane(i % 4, i / 4));
    ASSERT_EQ(lib(MOX_FN(moxiTransformPrediction_H264_8u16s_C1))(plane.at(0, 0), plane.step(), dst.data()), moxStsOk);
    ASSERT_EQ(dst.values(), oracle::forward_4x4(samples, Rule::kWrap32)) << "round " << round;
  }
}

/// Every weight at every position; quotients are those of a division.
TEST_P(ForwardTransform, ScaleLevels) {
  for (int i = 0; i < 256 * 6; ++i) {
    const int rem = i % 6, first = i / 6, step = std::array{8, 13, -8, 64}[first % 4];
    const Plane<Mox8u> list(8, 8, step);
    const Guarded<Mox8u> small(16, any_placement<Mox8u>(random_));
    const Block<Mox16s> inverse(0, 16, random_), forward(0, 16, random_), inverse8(0, 64, random_),
        forward8(0, 64, random_);
    for (int k = 0; k < 64; ++k) small[k % 16] = list(k % 8, k / 8) = static_cast<Mox8u>(first + k);
    ASSERT_EQ(lib(MOX_FN(moxiGenScaleLevel4x4_H264_8u16s_C1))(small.data(), inverse.data(), forward.data(), rem),
              moxStsOk);
    ASSERT_EQ(
        lib(MOX_FN(moxiGenScaleLevel8x8_H264_8u16s_D2))(list.at(0, 0), step, inverse8.data(), forward8.data(), rem),
        moxStsOk);
    for (int k = 0; k < 16; ++k) {
      const int w = small[k];
      ASSERT_EQ(inverse[k], w * oracle::multiplier(rem, k));
      ASSERT_EQ(forward[k], w % 255 == 0 ? 1 : oracle::forward_multiplier(rem, k) / w) << "weight " << w;
    }
    // Multipliers belong together by the norms of the transform's rows: 8, 5, and 289 / 32 for odd ones.
    for (int k = 0; k < 64; ++k) {
      const double norms[] = {8, 9.03125, 5, 9.03125}, norm = norms[k % 4] * norms[k / 8 % 4];
      const int w = list(k % 8, k / 8), bare = w ? inverse8[k] / w : 1;
      ASSERT_EQ(inverse8[k], w * bare);
      ASSERT_EQ(forward8[k], w == 0 ? 2 : std::lround((1 << 24) / (bare * norm)) / w) << "weight " << w << " at " << k;
    }
  }
}

/// What is coded and decoded again differs by no more than the quantiser's rounding lets it, with lists of any weight.
TEST_P(ForwardTransform, RoundTrip) {
  const auto scale_levels = lib(MOX_FN(moxiGenScaleLevel4x4_H264_8u16s_C1));
  const auto quantise = lib(MOX_FN(moxiQuantLuma8x8_H264_16s_C1));
  const auto luma = lib(MOX_FN(moxiTransformQuantFwdLumaDC4x4_H264_16s_C1I));
  const auto chroma = lib(MOX_FN(moxiTransformQuantFwdChromaDC2x2_H264_16s_C1I));
  const auto chroma422 = lib(MOX_FN(moxiTransformQuantFwdChromaDC2x4_H264_16s_C1I));
  const Guarded<Mox16s> places(64), forward(16), inverse(16), forward8(64), inverse8(64), forward422(16),
      inverse422(16);
  const Guarded<Mox32s> count(1), last(1);
  for (int i = 0; i < 52 * 20; ++i) {
    const int qp = i % 52, rem = qp % 6, per = qp / 6, intra = i / 52 % 2, weight = random_(8, 24);
    const Guarded<Mox8u> list(64), pred(64), decoded(64);
    std::fill(list.begin(), list.end(), static_cast<Mox8u>(weight));
    scale_levels(list.data(), inverse.data(), forward.data(), rem);
    scale_levels(list.data(), inverse422.data(), forward422.data(), (qp + 3) % 6);
    lib(MOX_FN(moxiGenScaleLevel8x8_H264_8u16s_D2))(list.data(), 8, inverse8.data(), forward8.data(), rem);
    Values samples(64);
    const Guarded<Mox16s> residual(64), block(64);
    for (int k = 0; k < 64; ++k) {
      pred[k] = static_cast<Mox8u>(random_(0, 255)), samples[k] = random_(0, 255);
      residual[k] = static_cast<Mox16s>(samples[k] - pred[k]);
    }
    // A level is off by up to 5/6 of a step, and by what multipliers lose when they are divided by the weight.
    const double step = step_of(qp) * weight / 16 * 5 / 6 + 0.6, bound = step + 255.0 * weight / 2893;
    lib(MOX_FN(moxiTransformFwdLuma8x8_H264_16s_C1))(residual.data(), block.data());
    quantise(block.data(), block.data(), per, intra, places.data(), forward8.data(), count.data(), last.data());
    lib(MOX_FN(moxiQuantLuma8x8Inv_H264_16s_C1I))(block.data(), per, inverse8.data());
    lib(MOX_FN(moxiTransformLuma8x8InvAddPred_H264_16s8u_C1R))(pred.data(), 8, block.data(), decoded.data(), 8);
    expect_close({decoded.begin(), decoded.end()}, samples, bound, qp);

    lib(MOX_FN(moxiTransformQuantFwd4x4_H264_16s_C1))(residual.data(), block.data(), qp, count.data(), intra,
                                                      places.data(), last.data(), forward.data());
    lib(MOX_FN(moxiTransformQuantInvAddPred4x4_H264_16s_C1IR))(pred.data(), 4, block.data(), nullptr, decoded.data(), 4,
                                                               qp, 1, inverse.data());
    expect_close({decoded.begin(), decoded.begin() + 16}, {samples.begin(), samples.begin() + 16}, bound, qp);

    // A dequantised DC is 4 times the one that the transform gives.
    const auto dc = [&](int size, auto code, auto decode, const Mox16s* scale) {
      const Guarded<Mox16s> values(size), terms(size);
      Values want;
      random_.fill(std::span(values.begin(), values.size()), -2000, 2000);
      for (int value : values) want.push_back(4 * value);
      code(values.data(), terms.data()), decode(values.data(), qp, scale);
      expect_close({values.begin(), values.end()}, want, 16 * step + 8000.0 * weight / 7282, qp);
    };
    dc(
        16, [&](auto x, auto f) { luma(x, f, qp, count.data(), 1, places.data(), last.data(), forward.data()); },
        lib(MOX_FN(moxiTransformQuantInvLumaDC4x4_H264_16s_C1I)), inverse.data());
    if (qp <= 39) {
      dc(
          4, [&](auto x, auto f) { chroma(x, f, qp, count.data(), intra, 1, forward.data()); },
          lib(MOX_FN(moxiTransformQuantInvChromaDC2x2_H264_16s_C1I)), inverse.data());
      dc(
          8, [&](auto x, auto f) { chroma422(x, f, qp, count.data(), intra, 1, forward422.data()); },
          lib(MOX_FN(moxiTransformQuantInvChromaDC2x4_H264_16s_C1I)), inverse422.data());
    }
    ASSERT_FALSE(HasFailure());
  }
}

template <std::size_t I>
constexpr std::index_sequence<I> kAt;

TEST_P(ForwardTransform, Arguments) {
  // Good calls with the largest qp, qpPer or qpRem, the argument I; then numbers beside the range.
  const auto check = [this]<std::size_t I>(std::index_sequence<I>, auto symbol, int max, int may_be_null = -1,
                                           MoxStatus status = moxStsOutOfRange) {
    expect_null_pointers(lib(symbol), max, 256, may_be_null, {{status, set<I>(max + 1)}, {status, set<I>(-1)}});
  };
  check(kAt<1>, MOX_FN(moxiTransformQuantResidual_H264_16s_C1I), 51);
  check(kAt<2>, MOX_FN(moxiTransformQuantLumaDC_H264_16s_C1I), 51);
  check(kAt<2>, MOX_FN(moxiTransformQuantChromaDC_H264_16s_C1I), 39);
  check(kAt<2>, MOX_FN(moxiTransformQuantFwd4x4_H264_16s_C1), 51, 7);
  check(kAt<2>, MOX_FN(moxiTransformQuantFwd4x4_H264_16s32s_C1), 87, 7);
  check(kAt<2>, MOX_FN(moxiTransformQuantFwdChromaDC2x2_H264_16s_C1I), 39, 6);
  check(kAt<2>, MOX_FN(moxiTransformQuantFwdChromaDC2x2_H264_32s_C1I), 75, 6);
  check(kAt<2>, MOX_FN(moxiTransformQuantFwdChromaDC2x4_H264_16s_C1I), 39, 6);
  check(kAt<2>, MOX_FN(moxiTransformQuantFwdChromaDC2x4_H264_32s_C1I), 75, 6);
  check(kAt<2>, MOX_FN(moxiTransformQuantFwdLumaDC4x4_H264_16s_C1I), 51, 7);
  check(kAt<2>, MOX_FN(moxiTransformQuantFwdLumaDC4x4_H264_32s_C1I), 87, 7);
  check(kAt<6>, MOX_FN(moxiQuantizeResidual4x4Fwd_H264_16s_C1), 51, 4);
  check(kAt<6>, MOX_FN(moxiQuantizeResidual4x4Fwd_H264_16s32s_C1), 51);
  check(kAt<6>, MOX_FN(moxiQuantizeResidual4x4Fwd_H264_32s_C1), 87, 4);
  check(kAt<2>, MOX_FN(moxiQuantLuma8x8_H264_16s_C1), 8, -1, moxStsBadQp);
  check(kAt<2>, MOX_FN(moxiQuantLuma8x8_H264_32s_C1), 14, -1, moxStsBadQp);
  check(kAt<3>, MOX_FN(moxiGenScaleLevel4x4_H264_8u16s_C1), 5);
  check(kAt<4>, MOX_FN(moxiGenScaleLevel8x8_H264_8u16s_D2), 5, -1, moxStsBadQp);
  const auto pointers = [this](auto... symbols) { (expect_null_pointers(lib(symbols), 4, 256), ...); };
  pointers(MOX_FN(moxiTransformResidual4x4Fwd_H264_16s_C1), MOX_FN(moxiTransformResidual4x4Fwd_H264_32s_C1),
           MOX_FN(moxiTransformPrediction_H264_8u16s_C1), MOX_FN(moxiTransformLuma8x8Fwd_H264_16s_C1I),
           MOX_FN(moxiTransformFwdLuma8x8_H264_16s_C1), MOX_FN(moxiTransformFwdLuma8x8_H264_16s32s_C1));
}

MOX_INSTANTIATE_GENERATIONS(ForwardTransform);

}  // namespace
}  // namespace mox::test
