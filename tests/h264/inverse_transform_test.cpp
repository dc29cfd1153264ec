#include "moxvc/h264_inverse_transform.h"

#include <gtest/gtest.h>

#include "h264/inverse_transform_px.hpp"
#include "h264/transform_inputs.hpp"
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

/// The dequantised block before the transform; without a scaling list, the scales of a flat one say the same.
Values dequantised(const Values& levels, int qp, const Mox16s* scale, Rule rule) {
  Values result;
  for (int i = 0; i < 16; ++i) {
    result.push_back(keep(rule, oracle::rescaled(levels[i], oracle::scale_at(scale, qp % 6, i), qp / 6, 4)));
  }
  return result;
}
/// The residual of a block without AC coefficients.
long long flat_residual(long long dc) { return keep(Rule::kWrap16, keep(Rule::kWrap32, dc + 32) >> 6); }

class InverseTransform : public PerGeneration {
 protected:
  Random random_;

  template <class T>
  void residual_4x4(Rule rule, MoxStatus (*function)(const T*, T*)) {
    for (int round = 0; round < 4 * Block<T>::rounds(16); ++round) {
      const bool exact = round % 2 == 0;
      const Block<T> src(round % Block<T>::rounds(16), 16, random_), dst(0, 16, random_);
      for (int i = 0; exact && i < 16; ++i) src[i] = static_cast<T>(4 * random_(-255, 255));
      const Values input = src.values(), want = exact ? oracle::residual_by_basis(input, 4)
                                                      : oracle::residual(oracle::kInverse4, input, rule);
      ASSERT_EQ(function(src.data(), dst.data()), moxStsOk);
      ASSERT_EQ(dst.values(), want);
      ASSERT_EQ(src.values(), input);
      ASSERT_EQ(function(src.data(), src.data()), moxStsOk);
      ASSERT_EQ(src.values(), want) << "in place";
    }
  }

  /// A function that adds the residual of a 4x4 block: call(pred, predStep, block, dc, dst, dstStep, qp, ac, depth,
  /// scale). `cut_dc`: without AC coefficients, the product is cut to 16 bits before it is rounded. Gives the number of
  /// blocks that differ if sums wrap.
  template <class T, class Sample>
  int add_4x4(int max_qp, Rule rule, bool has_scale, bool cut_dc, auto call) {
    constexpr bool kHigh = sizeof(T) == 4;
    int struck = 0;
    for (int qp = 0; qp <= max_qp; ++qp) {
      for (int round = 0; round < Block<T>::rounds(16); ++round) {
        const Block<T> block(round, 16, random_), dc_value(0, 1, random_);
        const Scales scale_values(16, random_);
        const T* const dc = maybe(dc_value, random_);
        const Mox16s* const scale = has_scale ? maybe(scale_values, random_) : nullptr;
        const int depth = kHigh ? 9 + round % 6 : 8, maximum = (1 << depth) - 1, ac = any_flag(random_);
        const bool coded = kHigh ? ac % 2 : ac;
        const Values levels = block.values();
        Values values = dequantised(levels, qp, scale, cut_dc || coded ? oracle::wrapping(rule) : Rule::kWrap32);
        if (dc) values[0] = *dc;
        const Values want =
            coded ? oracle::residual(oracle::kInverse4, values, rule) : Values(16, flat_residual(values[0]));
        struck += coded && want != oracle::residual(oracle::kInverse4, values, oracle::wrapping(rule));
        expect_added<Sample>(
            4, 4, maximum, random_,
            [&](auto pred, int predStep, auto dst, int dstStep) {
              ASSERT_EQ(call(pred, predStep, block.data(), dc, dst, dstStep, qp, ac, depth, scale), moxStsOk);
            },
            [&](int p, int i) {  // at high depth, a DC that leads below 0 gives the maximum
              return kHigh && !coded && p + want[i] < 0 ? maximum : limited(p + want[i], maximum);
            });
        EXPECT_EQ(block.values(), coded ? want : levels);
        if (HasFailure()) ADD_FAILURE() << "qp " << qp << " ac " << ac << " round " << round;
        if (HasFailure()) return 0;
      }
    }
    return struck;
  }
};

TEST_P(InverseTransform, Residual4x4) {
  residual_4x4(Rule::kWrap16, lib(MOX_FN(moxiTransformResidual4x4Inv_H264_16s_C1)));
  residual_4x4(Rule::kWrap32, lib(MOX_FN(moxiTransformResidual4x4Inv_H264_32s_C1)));
}

TEST_P(InverseTransform, Add4x4) {
  const int struck = add_4x4<Mox16s, Mox8u>(
      51, Rule::kSat16, false, false,
      [this](auto pred, int predStep, auto block, auto dc, auto dst, int dstStep, int qp, int ac, int, auto) {
        if (dc && !ac && qp % 2) block = nullptr;
        return lib(MOX_FN(moxiDequantTransformResidualAndAdd_H264_16s_C1I))(pred, block, dc, dst, predStep, dstStep, qp,
                                                                            ac);
      });
  EXPECT_GT(struck, 100);  // blocks that a wrapping kernel gets wrong
  add_4x4<Mox16s, Mox8u>(
      51, Rule::kWrap16, true, true,
      [this](auto pred, int predStep, auto block, auto dc, auto dst, int dstStep, int qp, int ac, int, auto scale) {
        return lib(MOX_FN(moxiTransformQuantInvAddPred4x4_H264_16s_C1IR))(pred, predStep, block, dc, dst, dstStep, qp,
                                                                          ac, scale);
      });
  add_4x4<Mox32s, Mox16u>(87, Rule::kWrap32, true, false,
                          [this](auto pred, int predStep, auto block, auto dc, auto dst, int dstStep, int qp, int ac,
                                 int depth, auto scale) {
                            return lib(MOX_FN(moxiTransformQuantInvAddPred4x4_H264_32s_C1IR))(
                                pred, predStep, block, dc, dst, dstStep, qp, ac, depth, scale);
                          });
}

TEST_P(InverseTransform, DequantisedResidual) {
  for (int qp = 0; qp <= 51; ++qp) {
    for (int round = 0; round < Block<Mox16s>::rounds(16); ++round) {
      const Block<Mox16s> block(round, 16, random_), dc_value(0, 1, random_);
      const Mox16s* const dc = maybe(dc_value, random_);
      const int ac = any_flag(random_);
      Values want = dequantised(block.values(), qp, nullptr, ac ? Rule::kWrap16 : Rule::kWrap32);
      if (dc) want[0] = *dc;
      want = ac ? oracle::residual(oracle::kInverse4, want, Rule::kWrap16) : Values(16, flat_residual(want[0]));
      const int row = random_(4, 9);
      const Plane<Mox16s> plane(4, 4, row), expected(4, 4, row);
      for (int i = 0; i < 16; ++i) {
        plane(i % 4, i / 4) = block[i];
        expected(i % 4, i / 4) = static_cast<Mox16s>(want[i]);
      }
      const int step = 2 * row + random_(0, 1);  // an odd byte does not count
      ASSERT_EQ(lib(MOX_FN(moxiDequantTransformResidual_H264_16s_C1I))(plane.at(0, 0), step, dc, ac, qp), moxStsOk);
      ASSERT_EQ(plane.copy(), expected.copy()) << "qp " << qp << " ac " << ac << " round " << round;
    }
  }
}

/// Sums and products that can be done by hand.
TEST_P(InverseTransform, ByHand) {
  const auto add = lib(MOX_FN(moxiTransformQuantInvAddPred4x4_H264_16s_C1IR));
  const auto add_high = lib(MOX_FN(moxiTransformQuantInvAddPred4x4_H264_32s_C1IR));
  const Guarded<Mox16s> block(16), large_dc{32767};
  const Guarded<Mox32s> block32(16), dc32{-640};
  const Plane<Mox8u> plane(4, 4, 4);
  // 7 * 16 * 10 / 16 = 70 at QP 0, 1120 at QP 24, where the shift to the left is 0; then (DC + 32) >> 6 is added.
  block[0] = 7;
  for (auto [qp, sum] : {std::pair{0, 101}, {18, 109}, {24, 118}, {30, 135}}) {
    std::fill(plane.memory().begin(), plane.memory().end(), Mox8u{100});
    add(plane.at(0, 0), 4, block.data(), nullptr, plane.at(0, 0), 4, qp, 0, nullptr);
    EXPECT_EQ(plane(3, 3), sum) << "qp " << qp;
  }
  // The residual of DC -640 is -10. Without AC coefficients, 5 - 10 becomes the maximum; with them, 0.
  for (int i = 0; i < 12; ++i) {
    const int depth = 9 + i / 2, ac = i % 2;
    const Plane<Mox16u> high(4, 4, 4);
    std::fill(high.memory().begin(), high.memory().end(), Mox16u{5});
    std::fill(block32.begin(), block32.end(), 0);
    add_high(high.at(0, 0), 4, block32.data(), dc32.data(), high.at(0, 0), 4, 0, ac, depth, nullptr);
    EXPECT_EQ(high(1, 2), ac ? 0 : (1 << depth) - 1) << "depth " << depth;
  }
  // 32767 + 32 saturates in one function, 511 and white, and wraps in the other, -512 and black.
  block[0] = 0;
  lib(MOX_FN(moxiDequantTransformResidualAndAdd_H264_16s_C1I))(plane.at(0, 0), block.data(), large_dc.data(),
                                                               plane.at(0, 0), 4, 4, 0, 1);
  EXPECT_EQ(block[9], 511);
  EXPECT_EQ(plane(2, 2), 255);
  std::fill(block.begin(), block.end(), Mox16s{0});
  add(plane.at(0, 0), 4, block.data(), large_dc.data(), plane.at(0, 0), 4, 0, 1, nullptr);
  EXPECT_EQ(block[9], -512);
  EXPECT_EQ(plane(2, 2), 0);
}

/// The kernels of macroblock reconstruction: a block at width 4, a couple at width 8.
TEST(InverseTransformKernels, SinglesAndCouples) {
  using namespace px;
  Random random;
  for (int round = 0; round < 52 * 20; ++round) {
    const int qp = round % 52, width = round % 2 ? 8 : 4;
    const Block<Mox16s> block(round % 53, 4 * width, random), dc(0, width / 4, random);
    const Values levels = block.values();
    const auto run = [&](auto add, bool ac, bool dc_given) {
      Values want(4 * width);
      for (int i = 0; i < 16 * (width / 4); i += 16) {
        Values values = dequantised({levels.begin() + i, levels.begin() + i + 16}, qp, nullptr, Rule::kWrap16);
        if (!ac) std::fill(values.begin(), values.end(), 0);
        if (dc_given) values[0] = dc[i / 16];
        const Values residual = oracle::residual(oracle::kInverse4, values, Rule::kSat16);
        for (int k = 0; k < 16; ++k) want[k / 4 * width + i / 4 + k % 4] = residual[k];
      }
      expect_added<Mox8u>(width, 4, 255, random, add, [&](int p, int i) { return limited(p + want[i], 255); });
      EXPECT_EQ(block.values(), levels);
    };
    Mox16s* const c = block.data();
    const Mox16s* const d = dc.data();
    if (width == 4) {
      run([&](auto... plane) { dequant_transform_residual_and_add_no_dc_h264_mmp(plane..., c, qp); }, true, false);
      run([&](auto... plane) { dequant_transform_residual_and_add_dc_ac_h264_mmp(plane..., d, c, qp); }, true, true);
      run([&](auto... plane) { dequant_transform_residual_and_add_no_ac_h264_mmp(plane..., d); }, false, true);
    } else {
      run([&](auto... plane) { dequant_transform_residual_and_add_no_dc_couple_h264_sse2(plane..., c, qp); }, true,
          false);
      run([&](auto... plane) { dequant_transform_residual_and_add_dc_ac_couple_h264_sse2(plane..., d, c, qp); }, true,
          true);
      run([&](auto... plane) { dequant_transform_residual_and_add_no_ac_couple_h264_sse2(plane..., d); }, false, true);
    }
    ASSERT_FALSE(testing::Test::HasFailure()) << "qp " << qp << " width " << width;
  }
}

TEST_P(InverseTransform, Arguments) {
  const Guarded<Mox16s> block(16), dc(1);
  const Guarded<Mox32s> block32(16);
  const Guarded<Mox8u> pred(16), dst(16);
  const Guarded<Mox16u> pred16(16), dst16(16);
  constexpr MoxStatus null = moxStsNullPointer, range = moxStsOutOfRange;

  Call{lib(MOX_FN(moxiDequantTransformResidual_H264_16s_C1I)), std::tuple{block.data(), 8, nullptr, 0, 51}}
      .keeps(block.data(), 32)
      .expect_order({{null, set<0>(nullptr)}, {range, set<4>(52)}, {range, set<4>(-1)}, {moxStsBadStep, set<1>(7)}});
  const auto residual_and_add = lib(MOX_FN(moxiDequantTransformResidualAndAdd_H264_16s_C1I));
  Call{residual_and_add, std::tuple{pred.data(), block.data(), nullptr, dst.data(), 4, 4, 51, 1}}
      .keeps(dst.data(), 16)
      .expect_order({{null, set<0>(nullptr)},
                     {null, set<1>(nullptr)},
                     {null, set<3>(nullptr)},
                     {range, set<6>(52)},
                     {range, set<6>(-1)}});
  Call{residual_and_add, std::tuple{pred.data(), nullptr, dc.data(), dst.data(), 4, 4, 0, 0}}
      .keeps(dst.data(), 16)
      .expect_order({{null, set<2>(nullptr)}, {null, set<7>(1)}});
  Call{lib(MOX_FN(moxiTransformQuantInvAddPred4x4_H264_16s_C1IR)),
       std::tuple{pred.data(), 4, block.data(), nullptr, dst.data(), 4, 51, 1, nullptr}}
      .keeps(dst.data(), 16)
      .expect_order({{null, set<0>(nullptr)},
                     {null, set<2>(nullptr)},
                     {null, set<4>(nullptr)},
                     {range, set<6>(52)},
                     {range, set<6>(-1)}});
  Call{lib(MOX_FN(moxiTransformQuantInvAddPred4x4_H264_32s_C1IR)),
       std::tuple{pred16.data(), 4, block32.data(), nullptr, dst16.data(), 4, 87, 1, 14, nullptr}}
      .keeps(dst16.data(), 32)
      .expect_order({{null, set<0>(nullptr)},
                     {null, set<2>(nullptr)},
                     {null, set<4>(nullptr)},
                     {range, set<6>(88)},
                     {range, set<6>(-1)},
                     {range, set<8>(15)},
                     {range, set<8>(8)}});
  Call{lib(MOX_FN(moxiTransformResidual4x4Inv_H264_16s_C1)), std::tuple{block.data(), block.data()}}.expect_order(
      {{null, set<0>(nullptr)}, {null, set<1>(nullptr)}});
  Call{lib(MOX_FN(moxiTransformResidual4x4Inv_H264_32s_C1)), std::tuple{block32.data(), block32.data()}}.expect_order(
      {{null, set<0>(nullptr)}, {null, set<1>(nullptr)}});
}

MOX_INSTANTIATE_GENERATIONS(InverseTransform);

}  // namespace
}  // namespace mox::test
