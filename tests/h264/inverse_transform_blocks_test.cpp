#include "moxvc/h264_inverse_transform.h"

#include <gtest/gtest.h>

#include <functional>

#include "h264/transform_inputs.hpp"
#include "oracle/forward_transform.hpp"
#include "oracle/inverse_transform.hpp"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

using oracle::keep;
using oracle::Rule;
using oracle::Values;

class InverseTransformBlocks : public PerGeneration {
 protected:
  Random random_;

  /// A DC function with a scale at every QP against want(values, qp + extra, scale).
  template <class T>
  void dc(int count, int max_qp, int extra, MoxStatus (*function)(T*, Mox32s, const Mox16s*),
          const std::function<Values(const Values&, int, long long)>& want) {
    for (int qp = 0; qp <= max_qp; ++qp) {
      for (int round = 0; round < Block<T>::rounds(count); ++round) {
        const Block<T> block(round, count, random_);
        const Scales scale(1, random_);
        const Mox16s* const given = maybe(scale, random_);
        const long long used = oracle::scale_at(given, (qp + extra) % 6, 0);
        const Values expected = want(block.values(), qp + extra, used);
        ASSERT_EQ(function(block.data(), qp, given), moxStsOk);
        ASSERT_EQ(block.values(), expected) << "qp " << qp << " round " << round << " scale " << used;
      }
    }
  }

  template <class T>
  void dequant_8x8(int max_per, Rule rule, MoxStatus (*function)(T*, Mox32s, const Mox16s*)) {
    for (int per = 0; per <= max_per; ++per) {
      for (int round = 0; round < Block<T>::rounds(64); ++round) {
        const Block<T> block(round, 64, random_);
        const Scales scale(64, random_);
        Values want;
        for (int i = 0; i < 64; ++i) {
          const long long value = oracle::rescaled(keep(Rule::kSat16, block[i]), scale[i], per, 6);
          want.push_back(keep(per < 6 ? rule : oracle::wrapping(rule), value));
        }
        ASSERT_EQ(function(block.data(), per, scale.data()), moxStsOk);
        ASSERT_EQ(block.values(), want) << "per " << per << " round " << round;
      }
    }
  }
};

TEST_P(InverseTransformBlocks, DcWithoutScalingList) {
  for (int qp = 0; qp <= 51; ++qp) {
    for (int round = 0; round < Block<Mox16s>::rounds(16); ++round) {
      const Block<Mox16s> luma(round, 16, random_), chroma(round % 25, 4, random_);
      Values want = oracle::product(oracle::kH4, luma.values(), oracle::kH4, 4, 4);
      for (long long& f : want) {
        f = keep(Rule::kWrap16, (keep(Rule::kWrap16, f) * oracle::step_size(qp, 0) + 2) >> 2);
      }
      Values want_chroma = oracle::product(oracle::kH2, chroma.values(), oracle::kH2, 2, 2);
      for (long long& f : want_chroma) {
        f = keep(Rule::kWrap16, (keep(Rule::kWrap16, f) * oracle::step_size(qp, 0)) >> 1);
      }
      ASSERT_EQ(lib(MOX_FN(moxiTransformDequantLumaDC_H264_16s_C1I))(luma.data(), qp), moxStsOk);
      ASSERT_EQ(lib(MOX_FN(moxiTransformDequantChromaDC_H264_16s_C1I))(chroma.data(), qp), moxStsOk);
      ASSERT_EQ(luma.values(), want) << "qp " << qp << " round " << round;
      ASSERT_EQ(chroma.values(), want_chroma) << "qp " << qp << " round " << round;
    }
  }
}

TEST_P(InverseTransformBlocks, ScaledDc) {
  const auto chroma420 = [](Rule rule) {
    return [rule](const Values& c, int qp, long long scale) {
      Values f = oracle::product(oracle::kH2, c, oracle::kH2, 2, 2);
      for (long long& v : f) v = keep(rule, oracle::rescaled(keep(rule, v), scale, qp / 6, 5, false));
      return f;
    };
  };
  dc(4, 39, 0, lib(MOX_FN(moxiTransformQuantInvChromaDC2x2_H264_16s_C1I)), chroma420(Rule::kWrap16));
  dc(4, 75, 0, lib(MOX_FN(moxiTransformQuantInvChromaDC2x2_H264_32s_C1I)), chroma420(Rule::kWrap32));

  const auto chroma422 = [](Rule pairs) {
    return [pairs](const Values& c, int qp, long long scale) {
      Values f = oracle::hadamard_2x4(c, pairs);
      for (long long& v : f) {
        v = keep(qp < 36 ? pairs : oracle::wrapping(pairs), oracle::rescaled(v, scale, qp / 6, 6));
      }
      return f;
    };
  };
  dc(8, 39, 3, lib(MOX_FN(moxiTransformQuantInvChromaDC2x4_H264_16s_C1I)), chroma422(Rule::kSat16));
  dc(8, 75, 3, lib(MOX_FN(moxiTransformQuantInvChromaDC2x4_H264_32s_C1I)), chroma422(Rule::kWrap32));

  const auto luma = [](Rule rule) {
    return [rule](const Values& c, int qp, long long scale) {
      Values f = oracle::flow_2d(oracle::kHadamard4, c, rule, false);
      for (long long& v : f) {
        v = keep(qp < 36 ? rule : oracle::wrapping(rule), oracle::rescaled(v, scale, qp / 6, 6));
      }
      return f;
    };
  };
  dc(16, 51, 0, lib(MOX_FN(moxiTransformQuantInvLumaDC4x4_H264_16s_C1I)), luma(Rule::kSat16));
  dc(16, 87, 0, lib(MOX_FN(moxiTransformQuantInvLumaDC4x4_H264_32s_C1I)), luma(Rule::kWrap32));
}

TEST_P(InverseTransformBlocks, Dequant8x8) {
  dequant_8x8(8, Rule::kSat16, lib(MOX_FN(moxiQuantLuma8x8Inv_H264_16s_C1I)));
  dequant_8x8(14, Rule::kWrap32, lib(MOX_FN(moxiQuantInvLuma8x8_H264_32s_C1I)));
}

TEST_P(InverseTransformBlocks, Add8x8) {
  int saturated = 0;
  for (int round = 0; round < 3 * Block<Mox16s>::rounds(64); ++round) {
    const bool exact = round % 3 == 0;
    const Block<Mox16s> block(round % Block<Mox16s>::rounds(64), 64, random_);
    const Block<Mox32s> wide(round % Block<Mox32s>::rounds(64), 64, random_);
    for (int i = 0; exact && i < 64; ++i) block[i] = static_cast<Mox16s>(64 * random_(-3, 3)), wide[i] = 5 * block[i];
    const Values levels = wide.values();
    const Values narrow = exact ? oracle::residual_by_basis(block.values(), 8)
                                : oracle::residual(oracle::kInverse8, block.values(), Rule::kSat16);
    saturated += !exact && narrow != oracle::residual(oracle::kInverse8, block.values(), Rule::kWrap16);
    expect_added<Mox8u>(
        8, 8, 255, random_,
        [&](auto pred, int predStep, auto dst, int dstStep) {
          lib(MOX_FN(moxiTransformLuma8x8InvAddPred_H264_16s8u_C1R))(pred, predStep, block.data(), dst, dstStep);
        },
        [&](int p, int i) { return limited(p + narrow[i], 255); });
    ASSERT_FALSE(HasFatalFailure()) << "16s round " << round;
    ASSERT_EQ(block.values(), narrow);

    const int depth = 9 + round % 6, maximum = (1 << depth) - 1;
    const Values sums = oracle::flow_2d(oracle::kInverse8, levels, Rule::kWrap32, true);
    const Values basis = oracle::residual_by_basis(levels, 8);
    expect_added<Mox16u>(
        8, 8, maximum, random_,
        [&](auto pred, int predStep, auto dst, int dstStep) {
          lib(MOX_FN(moxiTransformInvAddPredLuma8x8_H264_32s16u_C1R))(pred, predStep, wide.data(), dst, dstStep, depth);
        },
        [&](int p, int i) {
          return limited(exact ? p + basis[i] : keep(Rule::kWrap32, sums[i] + 32 + p * 64LL) >> 6, maximum);
        });
    ASSERT_FALSE(HasFatalFailure()) << "32s round " << round;
    ASSERT_EQ(wide.values(), levels);
  }
  EXPECT_GT(saturated, 50);  // blocks that a wrapping kernel gets wrong
}

TEST_P(InverseTransformBlocks, SwitchingBlocks) {
  for (int qs = 0; qs <= 51; ++qs) {
    for (int round = 0; round < Block<Mox16s>::rounds(16); ++round) {
      const Block<Mox16s> block(round, 16, random_), prediction(random_(0, 36), 16, random_), dc_value(0, 1, random_);
      const Block<Mox16s> chroma(round % 25, 4, random_), chroma_prediction(random_(0, 24), 4, random_);
      const Mox16s* const dc = maybe(dc_value, random_);
      const int qp = random_(0, 51), ac = any_flag(random_), swap = any_flag(random_), d = swap ? qs : qp;
      Values want(16);
      for (int i = 0; i < 16; ++i) {
        const int odd = i % 2 + i / 4 % 2, weight = odd == 0 ? 16 : odd == 1 ? 20 : 25;
        const long long coded = keep(Rule::kWrap32, block[i] * oracle::step_size(d, i) * weight) >> 6;
        const long long t = (ac || i == 0 ? coded : 0) + prediction[i];
        want[i] = keep(Rule::kWrap16, oracle::requantised(t, qs, i, 0));
      }
      if (dc) want[0] = *dc;
      want = oracle::residual(oracle::kInverse4, want, Rule::kWrap16);
      for (long long& value : want) value = limited(value, 255);
      ASSERT_EQ(lib(MOX_FN(moxiDequantTransformResidual_SISP_H264_16s_C1I))(block.data(), prediction.data(), dc, ac, qp,
                                                                            qs, swap),
                moxStsOk);
      ASSERT_EQ(block.values(), want) << "qp " << qp << " qs " << qs << " ac " << ac << " round " << round;

      Values f = oracle::product(oracle::kH2, chroma_prediction.values(), oracle::kH2, 2, 2);
      for (int i = 0; i < 4; ++i) {
        const long long t = keep(Rule::kWrap16, f[i]) + ((chroma[i] * oracle::step_size(d, 0)) >> 1);
        f[i] = keep(Rule::kWrap16, oracle::requantised(t, qs, 0, 1));
      }
      Values want_chroma = oracle::product(oracle::kH2, f, oracle::kH2, 2, 2);
      for (long long& value : want_chroma) value = keep(Rule::kWrap16, value >> 1);
      ASSERT_EQ(lib(MOX_FN(moxiTransformDequantChromaDC_SISP_H264_16s_C1I))(chroma.data(), chroma_prediction.data(), qp,
                                                                            qs, swap),
                moxStsOk);
      ASSERT_EQ(chroma.values(), want_chroma) << "qp " << qp << " qs " << qs << " round " << round;
    }
  }
}

/// With no residual and a fine quantiser, a switching block gives its prediction back.
TEST_P(InverseTransformBlocks, SwitchingBlockKeepsPrediction) {
  for (int round = 0; round < 100; ++round) {
    Values samples(16);
    for (long long& sample : samples) sample = random_(0, 255);
    const Values transformed = oracle::forward_4x4(samples, Rule::kWrap32);
    const Guarded<Mox16s> block(16), prediction(16);
    std::copy(transformed.begin(), transformed.end(), prediction.begin());
    lib(MOX_FN(moxiDequantTransformResidual_SISP_H264_16s_C1I))(block.data(), prediction.data(), nullptr, 1, 51,
                                                                round % 3, 0);
    for (int i = 0; i < 16; ++i) ASSERT_LE(std::abs(block[i] - samples[i]), 1) << i;
  }
}

TEST_P(InverseTransformBlocks, ByHand) {
  const auto first = [](auto function, int value, auto... more) {
    const Guarded<Mox16s> block(16);
    block[0] = static_cast<Mox16s>(value);
    EXPECT_EQ(function(block.data(), more...), moxStsOk);
    return block[3];
  };
  const auto chroma = lib(MOX_FN(moxiTransformQuantInvChromaDC2x2_H264_16s_C1I));
  const Mox16s three = 3;  // -1 * 3: halved downwards at per 4, untouched at per 5, doubled at per 6
  EXPECT_EQ(first(chroma, -1, 24, &three), -2);
  EXPECT_EQ(first(chroma, -1, 30, &three), -3);
  EXPECT_EQ(first(chroma, -1, 36, &three), -6);
  EXPECT_EQ(first(lib(MOX_FN(moxiTransformDequantChromaDC_H264_16s_C1I)), -1, 1), -6);  // -11 >> 1
  const auto luma = lib(MOX_FN(moxiTransformDequantLumaDC_H264_16s_C1I));
  EXPECT_EQ(first(luma, 5, 0), 13);  // 50 / 4
  EXPECT_EQ(first(luma, 5, 6), 25);  // 50 / 2
  EXPECT_EQ(first(luma, 5, 12), 50);
  EXPECT_EQ(first(luma, 5, 51), 4480);  // 5 * 14 << 6
  const Guarded<Mox16s> prediction(16), block(64);
  prediction[0] = 1000;  // (1000 * 13107 + 16384) >> 15 = 400, times 10, and (4000 + 32) >> 6
  EXPECT_EQ(
      first(lib(MOX_FN(moxiDequantTransformResidual_SISP_H264_16s_C1I)), 0, prediction.data(), nullptr, 0, 51, 0, 0),
      63);
  const Plane<Mox8u> plane(8, 8, 8);
  block[0] = 32767;  // 32767 + 32 saturates: wrapped, the residual would be -512
  lib(MOX_FN(moxiTransformLuma8x8InvAddPred_H264_16s8u_C1R))(plane.at(0, 0), 8, block.data(), plane.at(0, 0), 8);
  EXPECT_EQ(block[63], 511);
  EXPECT_EQ(plane(7, 7), 255);
  // At high depth, 2^31 - 6401 + 32 + 100 * 64 wraps below 0. Were 100 added after the shift, the sum would be large.
  const Plane<Mox16u> high(8, 8, 8);
  const Guarded<Mox32s> wide(64);
  std::fill(high.memory().begin(), high.memory().end(), Mox16u{100});
  wide[0] = 0x7FFFFFFF - 6400;
  lib(MOX_FN(moxiTransformInvAddPredLuma8x8_H264_32s16u_C1R))(high.at(0, 0), 8, wide.data(), high.at(0, 0), 8, 14);
  EXPECT_EQ(high(3, 4), 0);
}

TEST_P(InverseTransformBlocks, Arguments) {
  const Guarded<Mox16s> block(64), scale(64);
  const Guarded<Mox32s> block32(64);
  const Guarded<Mox8u> pred(64), dst(64);
  const Guarded<Mox16u> pred16(64), dst16(64);
  constexpr MoxStatus null = moxStsNullPointer;
  const auto in_range = [](auto function, auto* values, int max, MoxStatus status, auto... more) {
    Call{function, std::tuple{values, max, more...}}
        .keeps(values, 64)
        .expect_order({{moxStsNullPointer, set<0>(nullptr)}, {status, set<1>(max + 1)}, {status, set<1>(-1)}});
    EXPECT_EQ(function(values, 0, more...), moxStsOk);
  };
  in_range(lib(MOX_FN(moxiTransformDequantLumaDC_H264_16s_C1I)), block.data(), 51, moxStsOutOfRange);
  in_range(lib(MOX_FN(moxiTransformDequantChromaDC_H264_16s_C1I)), block.data(), 51, moxStsOutOfRange);
  for (const Mox16s* given : {static_cast<const Mox16s*>(nullptr), static_cast<const Mox16s*>(scale.data())}) {
    const MoxStatus range = moxStsOutOfRange;
    in_range(lib(MOX_FN(moxiTransformQuantInvChromaDC2x2_H264_16s_C1I)), block.data(), 39, range, given);
    in_range(lib(MOX_FN(moxiTransformQuantInvChromaDC2x2_H264_32s_C1I)), block32.data(), 75, range, given);
    in_range(lib(MOX_FN(moxiTransformQuantInvChromaDC2x4_H264_16s_C1I)), block.data(), 39, range, given);
    in_range(lib(MOX_FN(moxiTransformQuantInvChromaDC2x4_H264_32s_C1I)), block32.data(), 75, range, given);
    in_range(lib(MOX_FN(moxiTransformQuantInvLumaDC4x4_H264_16s_C1I)), block.data(), 51, range, given);
    in_range(lib(MOX_FN(moxiTransformQuantInvLumaDC4x4_H264_32s_C1I)), block32.data(), 87, range, given);
  }
  const auto dequant = lib(MOX_FN(moxiQuantLuma8x8Inv_H264_16s_C1I));
  const auto dequant32 = lib(MOX_FN(moxiQuantInvLuma8x8_H264_32s_C1I));
  in_range(dequant, block.data(), 8, moxStsBadQp, scale.data());
  in_range(dequant32, block32.data(), 14, moxStsBadQp, scale.data());
  EXPECT_EQ(dequant(block.data(), 9, nullptr), null);
  EXPECT_EQ(dequant32(block32.data(), 15, nullptr), null);

  Call{lib(MOX_FN(moxiDequantTransformResidual_SISP_H264_16s_C1I)),
       std::tuple{block.data(), scale.data(), nullptr, 1, 51, 51, 1}}
      .keeps(block.data(), 32)
      .expect_order({{null, set<0>(nullptr)}, {null, set<1>(nullptr)}});
  Call{lib(MOX_FN(moxiTransformDequantChromaDC_SISP_H264_16s_C1I)), std::tuple{block.data(), scale.data(), 51, 51, 1}}
      .keeps(block.data(), 8)
      .expect_order({{null, set<0>(nullptr)}, {null, set<1>(nullptr)}});
  Call{lib(MOX_FN(moxiTransformLuma8x8InvAddPred_H264_16s8u_C1R)),
       std::tuple{pred.data(), 8, block.data(), dst.data(), 8}}
      .keeps(dst.data(), 64)
      .expect_order({{null, set<0>(nullptr)}, {null, set<2>(nullptr)}, {null, set<3>(nullptr)}});
  Call{lib(MOX_FN(moxiTransformInvAddPredLuma8x8_H264_32s16u_C1R)),
       std::tuple{pred16.data(), 8, block32.data(), dst16.data(), 8, 9}}
      .keeps(dst16.data(), 128)
      .expect_order({{null, set<0>(nullptr)}, {null, set<2>(nullptr)}, {null, set<3>(nullptr)}});
}

MOX_INSTANTIATE_GENERATIONS(InverseTransformBlocks);

}  // namespace
}  // namespace mox::test
