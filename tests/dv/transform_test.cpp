#include "moxvc/dv_transform.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string_view>

#include "h264/transform_inputs.hpp"
#include "oracle/dct.hpp"
#include "oracle/dv_segment.hpp"
#include "support/call.hpp"
#include "support/library.hpp"

namespace mox::test {
namespace {

using oracle::Block64;
using oracle::DvTestSegment;

/// Weight of a frequency by the cosines of the standards.
double weight(int frequency) {
  const auto c = [](int m) { return std::cos(m * std::numbers::pi / 16); };
  const double weights[] = {
      1, c(4) / (4 * c(7) * c(2)), c(4) / (2 * c(6)), 1 / (2 * c(5)), 7.0 / 8, c(4) / c(3), c(4) / c(2), c(4) / c(1)};
  return weights[frequency];
}
/// log2 of a step, by the row of the standards' table and the area.
int step_shift(int row, int position) {
  constexpr std::string_view kRows = "33443344233423342233223312231223112211220112011200110011000100000000";
  row = std::min(row, 16);
  return kRows[4 * row + (position < 6 ? 0 : position < 21 ? 1 : position < 43 ? 2 : 3)] - '0';
}

class DvTransform : public PerGeneration {
 protected:
  Random random_;
};

TEST_P(DvTransform, Dequantises) {
  const auto function = lib(MOX_FN(moxiQuantInv_DV_16s_C1I));
  for (int round = 0; round < 16 * 4 * 2 * 6; ++round) {
    const int qno = round % 16, block_class = round / 16 % 4, mode = round / 64 % 2, kind = round / 128;
    const Guarded<Mox16s> block(64, any_placement<Mox16s>(random_));
    const bool decoded = kind < 4;  // such as a segment decoder gives
    for (Mox16s& c : block) {
      c = static_cast<Mox16s>(decoded ? 64 * (kind ? random_(-255, 255) : 255 - 510 * random_(0, 1))
                                      : random_(-32768, 32767));
    }
    const auto input = block.copy();
    const Mox32u others = random_.bits() & 0xFFF0FF8F;
    ASSERT_EQ(function(block.data(), others | mode << 6 | block_class << 4 | qno << 16), moxStsOk);
    EXPECT_EQ(block[0], oracle::floor_divide(input[0], 32));
    for (int n = 1; n < 64; ++n) {
      const int i = DvTestSegment::scan(mode, n);
      const double weights = weight(i % 8) * weight(mode ? i / 8 % 4 * 2 : i / 8);
      const int shift = step_shift(qno + std::array{6, 3, 0, 1}[block_class], n);
      const long long scaled = oracle::floor_divide(input[i], block_class == 3 ? 8 : 16) << shift;
      const long long wrapped = ((scaled + 32768) & 0xFFFF) - 32768;
      ASSERT_EQ(block[i], oracle::floor_divide(wrapped * std::llround(16384 / weights) + 16384, 32768))
          << "qno " << qno << " class " << block_class << " mode " << mode << " position " << n;
      if (decoded) {  // by definition: levels times the step, over half the weights
        const double value = input[i] / 64.0 * std::exp2(shift + (block_class == 3)) * 2 / weights;
        ASSERT_NEAR(block[i], value, 0.5 + std::abs(value) / 32000);
      }
    }
  }
}

TEST_P(DvTransform, DequantisesDv100) {
  const auto function = lib(MOX_FN(moxiQuantInv_DV100_16s_C1I));
  constexpr int kSteps[16] = {1, 1, 2, 3, 4, 5, 6, 7, 8, 16, 18, 20, 22, 24, 28, 52};
  // Sums of the weights of each kind over the scan positions 1 to 63, and the same of weights times positions.
  constexpr int kSums[4][2] = {{2866, 120594}, {5353, 246339}, {4603, 214053}, {10468, 490610}};
  for (int kind = 0; kind < 4; ++kind) {
    Block64<int> weights{};
    Mox16s units[64];
    std::fill_n(units, 64, Mox16s{32 * 64});  // level 32 and step 1: the weights
    ASSERT_EQ(function(units, 0, kind), moxStsOk);
    int sum = 0, moment = 0;
    for (int n = 1; n < 64; ++n) {
      const int i = DvTestSegment::scan(false, n);
      weights[i] = units[i];
      sum += units[i], moment += n * units[i];
    }
    EXPECT_EQ(sum, kSums[kind][0]);
    EXPECT_EQ(moment, kSums[kind][1]);
    EXPECT_EQ(units[0], 64);
    for (int round = 0; round < 64 * 3; ++round) {
      const int qno = round % 16, block_class = round / 16 % 4;
      const Guarded<Mox16s> block(64, any_placement<Mox16s>(random_));
      for (Mox16s& c : block) c = static_cast<Mox16s>(round < 128 ? 64 * random_(-255, 255) : random_(-32768, 32767));
      const auto input = block.copy();
      ASSERT_EQ(function(block.data(), (random_.bits() & 0xFFF0FFCF) | block_class << 4 | qno << 16, kind), moxStsOk);
      EXPECT_EQ(block[0], oracle::floor_divide(input[0], 32));
      for (int i = 1; i < 64; ++i) {
        const long long level = oracle::floor_divide(input[i], 64) * kSteps[qno] << block_class;
        const long long value = oracle::floor_divide(level * weights[i] + 16, 32);
        ASSERT_EQ(block[i], std::clamp(value, -32768ll, 32767ll)) << "qno " << qno << " class " << block_class;
      }
    }
  }
}

/// Sample (x, y) of the lowest n x n frequencies, or, for n = 8, of sums and differences of lines.
long long sample(const Block64<long long>& c, int x, int y, int n) {
  long long sum = 1 << 18;
  for (int v = 0; v < n; ++v) {
    long long row = 512;
    for (int u = 0; u < n; ++u) row += oracle::dct_weight(8 / n * u, x) * c[8 * v + u];
    const long long weight =
        n == 8 ? (v >= 4 && y % 2 ? -1 : 1) * oracle::dct_weight(v % 4 * 2, y / 2) : oracle::dct_weight(8 / n * v, y);
    sum += weight * std::clamp(oracle::floor_divide(row, 1024), -32768ll, 32767ll);
  }
  return oracle::floor_divide(sum, 1 << 19);
}

TEST_P(DvTransform, TransformsAreExact) {
  const std::pair<decltype(&moxiDCT2x4x8Inv_16s_C1I), int> functions[] = {
      {lib(MOX_FN(moxiDCT2x4x8Inv_16s_C1I)), 8},
      {lib(MOX_FN(moxiDCT8x4x2To4x4Inv_DV_16s_C1I)), 4},
      {lib(MOX_FN(moxiDCT8x4x2To2x2Inv_DV_16s_C1I)), 2}};
  for (const auto& [function, n] : functions) {
    for (int round = 0; round < 8 * Block<Mox16s>::rounds(64); ++round) {
      const Block<Mox16s> block(round % Block<Mox16s>::rounds(64), 64, random_);
      Block64<long long> input;
      std::copy(block.begin(), block.end(), input.begin());
      Block64<long long> want = input;
      for (int i = 0; i < n * n; ++i) want[i] = sample(input, i % n, i / n, n);
      ASSERT_EQ(function(block.data()), moxStsOk);
      ASSERT_TRUE(std::equal(want.begin(), want.end(), block.begin())) << n << " round " << round;
    }
  }
}

/// Against the definition: sums and differences of two lines, with four vertical frequencies each.
TEST_P(DvTransform, TwoFieldsByDefinition) {
  for (int round = 0; round < 200; ++round) {
    Block64<double> samples{};
    Mox16s block[64];
    for (double& s : samples) s = random_(-128, 127);
    for (int i = 0; i < 64; ++i) {
      const int u = i % 8, v = i / 8 % 4, sign = i < 32 ? 1 : -1;
      double sum = 0;
      for (int k = 0; k < 32; ++k) {
        const int x = k % 8, y = k / 8;
        sum += (samples[16 * y + x] + sign * samples[16 * y + 8 + x]) * oracle::dct_factor(u, x) *
               (v ? 0.5 : std::sqrt(0.125)) * std::cos((2 * y + 1) * v * std::numbers::pi / 8);
      }
      block[i] = static_cast<Mox16s>(std::lround(sum));
    }
    lib(MOX_FN(moxiDCT2x4x8Inv_16s_C1I))(block);
    for (int i = 0; i < 64; ++i) ASSERT_NEAR(block[i], samples[i], 2);
  }
}

/// By hand: a DC of 803 is 100 and 3/8; F(1,0) = 800 is 800 sqrt(1/8) cos(pi/8) / 2 = 130.7 in the first of four
/// columns, 54.1 in the second, and 100 in the first of two.
TEST_P(DvTransform, ReducedByHand) {
  const auto result = [&](auto symbol, int at, Mox16s value, int count) {
    std::vector<Mox16s> block(64);
    block[at] = value;
    lib(symbol)(block.data());
    return std::vector<int>(block.begin(), block.begin() + count);
  };
  EXPECT_EQ(result(MOX_FN(moxiDCT8x4x2To4x4Inv_DV_16s_C1I), 0, 804, 16), std::vector(16, 101));
  EXPECT_EQ(result(MOX_FN(moxiDCT8x4x2To2x2Inv_DV_16s_C1I), 0, 803, 4), std::vector(4, 100));
  EXPECT_EQ(result(MOX_FN(moxiDCT8x4x2To4x4Inv_DV_16s_C1I), 1, 800, 4), (std::vector{131, 54, -54, -131}));
  EXPECT_EQ(result(MOX_FN(moxiDCT8x4x2To2x2Inv_DV_16s_C1I), 8, 800, 4), (std::vector{100, 100, -100, -100}));
}

TEST_P(DvTransform, Arguments) {
  const Guarded<Mox16s> block(64);
  const auto one = [&](auto symbol, auto... more) {
    Call{lib(symbol), std::tuple{block.data(), more...}}.expect_order({{moxStsNullPointer, set<0>(nullptr)}});
  };
  one(MOX_FN(moxiQuantInv_DV_16s_C1I), 0u);
  one(MOX_FN(moxiDCT2x4x8Inv_16s_C1I));
  one(MOX_FN(moxiDCT8x4x2To4x4Inv_DV_16s_C1I));
  one(MOX_FN(moxiDCT8x4x2To2x2Inv_DV_16s_C1I));
  for (const int kind : {-1, 4}) {
    Call{lib(MOX_FN(moxiQuantInv_DV100_16s_C1I)), std::tuple{block.data(), 0u, 3}}
        .keeps(block.data(), 128)
        .expect_order({{moxStsNullPointer, set<0>(nullptr)}, {moxStsOutOfRange, set<2>(kind)}});
  }
}

MOX_INSTANTIATE_GENERATIONS(DvTransform);

}  // namespace
}  // namespace mox::test
