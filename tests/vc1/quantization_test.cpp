#include "moxvc/vc1_quantization.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "moxvc/vc1_transform.h"
#include "oracle/vc1.hpp"
#include "support/library.hpp"
#include "support/null_pointers.hpp"
#include "support/random.hpp"
#include "vc1/words.hpp"

namespace mox::test {
namespace {

using namespace std::placeholders;

constexpr MoxiSize kSizes[] = {{8, 8}, {8, 4}, {4, 8}, {4, 4}}, k8x8 = kSizes[0];
constexpr int kLeast = -0x7FFFFFFF - 1, kMost = 0x7FFFFFFF;
constexpr MoxStatus kRange = moxStsOutOfRange, kSize = moxStsBadSize;

template <std::size_t I>
auto size_fault(int width, int height) {
  return set<I>(MoxiSize{width, height});
}

/// The functions for one kind of blocks; those for intra blocks are not given the size.
struct Kind {
  bool uniform, intra;
  std::function<MoxStatus(Mox16s*, Mox32s, Mox32s, MoxiSize)> quantize;
  std::function<MoxStatus(const Mox16s*, Mox32s, Mox16s*, Mox32s, Mox32s, MoxiSize, MoxiSize*)> dequantize;
  std::function<MoxStatus(Mox16s*, Mox32s, Mox32s, MoxiSize, MoxiSize*)> dequantize_in_place;
};
#define MOX_KINDS(name, uniform)                                                                                 \
  Kind{uniform, false, lib(MOX_FN(moxiQuantInter##name##_VC1_16s_C1IR)),                                         \
       lib(MOX_FN(moxiQuantInvInter##name##_VC1_16s_C1R)), lib(MOX_FN(moxiQuantInvInter##name##_VC1_16s_C1IR))}, \
      Kind {                                                                                                     \
    uniform, true, std::bind(lib(MOX_FN(moxiQuantIntra##name##_VC1_16s_C1IR)), _1, _2, _3),                      \
        std::bind(lib(MOX_FN(moxiQuantInvIntra##name##_VC1_16s_C1R)), _1, _2, _3, _4, _5, _7),                   \
        std::bind(lib(MOX_FN(moxiQuantInvIntra##name##_VC1_16s_C1IR)), _1, _2, _3, _5)                           \
  }

class Vc1Quantization : public PerGeneration {
 protected:
  Random random_;

  void each_kind(auto check) {
    for (const Kind& kind : {MOX_KINDS(Uniform, true), MOX_KINDS(Nonuniform, false)}) {
      check(kind);
      if (HasFailure()) FAIL() << "uniform " << kind.uniform << " intra " << kind.intra;
    }
  }
};

/// The number of columns, or of rows of w, that hold all values other than 0.
int extent(const Values& values, int w, bool columns) {
  int last = 0;
  for (int i = 0; i < static_cast<int>(values.size()); ++i) {
    if (values[i] != 0) last = std::max(last, 1 + (columns ? i % w : i / w));
  }
  return last;
}

/// All 16-bit values in blocks of 64, with each quantiser; those of the inverse forms may be any.
TEST_P(Vc1Quantization, AllValues) {
  std::vector<Mox16s> want(65536);
  const auto check = [&](bool intra, auto one, auto function) {
    for (int i = 0; i < 65536; ++i) want[i] = static_cast<Mox16s>(one(i - 32768));
    for (int start = 0; start < 65536; start += 64) {
      Mox16s block[64];
      for (int i = 0; i < 64; ++i) block[i] = static_cast<Mox16s>(start + i - 32768);
      ASSERT_EQ(function(block), moxStsOk);
      ASSERT_EQ(block[0], intra ? start - 32768 : want[start]);
      ASSERT_TRUE(std::equal(block + 1, block + 64, want.begin() + start + 1)) << "from " << start - 32768;
    }
  };
  each_kind([&](const Kind& kind) {
    for (int d = 2; d <= 62; ++d) {
      check(
          kind.intra, [&](int x) { return oracle::vc1_quantized(x, d, kind.uniform); },
          [&](Mox16s* block) { return kind.quantize(block, 16, d, k8x8); });
      if (HasFailure()) FAIL() << "doubleQuant " << d;
    }
    for (int d : {2, 3, 19, 61, 62, 63, 200, 1, 0, -1, -7, 257, 32767, -32768, 65537, 98303, kMost, kLeast}) {
      MoxiSize corner;
      check(
          kind.intra, [&](int x) { return oracle::vc1_dequantized(x, d, kind.uniform); },
          [&](Mox16s* block) { return kind.dequantize_in_place(block, 16, d, k8x8, &corner); });
      if (HasFailure()) FAIL() << "inverse, doubleQuant " << d;
    }
  });
}

TEST_P(Vc1Quantization, SizesAndCorners) {
  each_kind([&](const Kind& kind) {
    for (int round = 0; round < 4 * Block<Mox16s>::rounds(64); ++round) {
      const MoxiSize size = kSizes[kind.intra ? 0 : round % 4];
      const auto [w, h] = size;
      const Values values = Block<Mox16s>(round / 4 % Block<Mox16s>::rounds(w * h), w * h, random_).values();
      const int forward_d = random_(2, 62), d = random_.chance(0.7) ? forward_d : 1 << random_(0, 15);
      Values quantized = values, computed = values, stored;
      for (long long& x : quantized) x = oracle::vc1_quantized(x, forward_d, kind.uniform);
      for (long long& x : computed) x = oracle::vc1_dequantized(x, d, kind.uniform);
      stored = computed;
      if (kind.intra) quantized[0] = stored[0] = values[0];

      const Plane<Mox8u> block = word_plane(w, h, random_), src = word_plane(w, h, random_);
      const Plane<Mox8u> other = word_plane(w, h, random_);
      put_words(block, values, w);
      auto expected = with_words(block, quantized);
      ASSERT_EQ(kind.quantize(words(block), block.step(), forward_d, size), moxStsOk);
      ASSERT_EQ(block.copy(), expected) << "doubleQuant " << forward_d << " round " << round;

      const Plane<Mox8u>& dst = round % 3 == 0 ? other : src;
      put_words(src, values, w);
      expected = with_words(dst, stored);
      const Guarded<MoxiSize> corner(1);
      const MoxStatus status =
          round % 3 == 1 ? kind.dequantize_in_place(words(src), src.step(), d, size, corner.data())
                         : kind.dequantize(words(src), src.step(), words(dst), dst.step(), d, size, corner.data());
      ASSERT_EQ(status, moxStsOk);
      ASSERT_EQ(dst.copy(), expected) << "doubleQuant " << d << " round " << round;
      ASSERT_EQ(corner[0].width, extent(computed, w, true)) << "round " << round;
      ASSERT_EQ(corner[0].height, std::max(extent(computed, w, false), kind.intra ? 1 : 0)) << "round " << round;
    }
  });
}

/// One coefficient, what becomes of it, and the corner, if the function is an inverse one. 18756 is 55 * 341 + 1, 18701
/// 55 * 340 + 1; 1 and 16 less half of 10 are -4 and 11. Inverse: 300 * 200 is -5536 + 65536; half of -7 is -4; 4096 *
/// 16 wraps to 0; 2 * -32768 is 0, which counts though the first coefficient of intra blocks stays, and one less is
/// not.
TEST_P(Vc1Quantization, ByHand) {
  struct Case {
    bool uniform, intra, inverse;
    int d, at, value, result, width, height;
  };
  const Case cases[] = {
      {true, false, false, 19, 1, 19, 0, 0, 0},       {true, false, false, 19, 0, 38, 1, 0, 0},
      {true, true, false, 19, 1, -19, 0, 0, 0},       {true, true, false, 19, 0, 19, 19, 0, 0},
      {true, false, false, 19, 1, 37, 1, 0, 0},       {true, false, false, 55, 1, 18756, 340, 0, 0},
      {true, false, false, 55, 1, 18701, 340, 0, 0},  {true, false, false, 2, 1, -32768, -16384, 0, 0},
      {true, false, false, 62, 9, 32767, 528, 0, 0},  {false, false, false, 10, 1, 1, 0, 0, 0},
      {false, false, false, 10, 1, 16, 1, 0, 0},      {false, false, false, 10, 1, -16, -1, 0, 0},
      {false, true, false, 10, 0, 16, 16, 0, 0},      {true, false, true, 200, 9, 300, -5536, 2, 2},
      {false, false, true, 7, 8, -3, -24, 1, 2},      {false, false, true, -7, 2, 3, -25, 3, 1},
      {true, false, true, 16, 63, 4096, 0, 0, 0},     {true, true, true, 16, 63, 4096, 0, 0, 1},
      {true, true, true, 2, 0, -32768, -32768, 0, 1}, {false, true, true, 2, 0, -32768, -32768, 1, 1},
      {true, true, true, 2, 0, 5, 5, 1, 1},           {true, true, true, 2, 1, 0, 0, 0, 1},
      {true, false, true, 2, 1, 0, 0, 0, 0}};
  each_kind([&](const Kind& kind) {
    for (const Case& c : cases) {
      if (c.uniform != kind.uniform || c.intra != kind.intra) continue;
      Mox16s block[64]{};
      MoxiSize corner{};
      block[c.at] = static_cast<Mox16s>(c.value);
      ASSERT_EQ(
          c.inverse ? kind.dequantize_in_place(block, 16, c.d, k8x8, &corner) : kind.quantize(block, 16, c.d, k8x8),
          moxStsOk);
      EXPECT_EQ(block[c.at], c.result) << "case " << &c - cases;
      EXPECT_EQ(std::pair(corner.width, corner.height), std::pair(c.width, c.height)) << "case " << &c - cases;
    }
  });
}

/// A block that goes through all four steps comes back to within what its quantiser drops, and the reported corner is
/// all that the inverse transform needs. Transform coefficients are 8 / 9 of an orthonormal transform's.
TEST_P(Vc1Quantization, CornerServesTheInverseTransform) {
  const auto forward = lib(MOX_FN(moxiTransform8x8Fwd_VC1_16s_C1R));
  const auto inverse = lib(MOX_FN(moxiTransform8x8Inv_VC1_16s_C1R));
  each_kind([&](const Kind& kind) {
    int small = 0;
    for (int round = 0; round < 61 * 20; ++round) {
      Mox16s residual[64], block[64], by_corner[64], by_all[64];
      const int d = 2 + round % 61, slope_x = random_(-12, 12), slope_y = random_(-12, 12), noise = random_(0, 20);
      for (int i = 0; i < 64; ++i) {
        residual[i] = static_cast<Mox16s>(slope_x * (i % 8) + slope_y * (i / 8) + random_(-noise, noise));
      }
      MoxiSize corner;
      ASSERT_EQ(forward(residual, 16, block, 16), moxStsOk);
      ASSERT_EQ(kind.quantize(block, 16, d, k8x8), moxStsOk);
      ASSERT_EQ(kind.dequantize_in_place(block, 16, d, k8x8, &corner), moxStsOk);
      ASSERT_EQ(inverse(block, 16, by_corner, 16, corner), moxStsOk);
      ASSERT_EQ(inverse(block, 16, by_all, 16, k8x8), moxStsOk);
      ASSERT_TRUE(std::equal(by_all, by_all + 64, by_corner)) << corner.width << "x" << corner.height;
      small += corner.width <= 4 && corner.height <= 4;
      double square = 0;
      for (int i = 0; i < 64; ++i) square += std::pow(by_all[i] - residual[i], 2);
      ASSERT_LE(std::sqrt(square / 64), 1 + (kind.uniform ? 1 : 1.5) * d * 9 / 8) << "doubleQuant " << d;
    }
    EXPECT_GT(small, 100);
  });
}

TEST_P(Vc1Quantization, Arguments) {
  const auto quantizers = [&](auto intra, auto inter) {
    expect_null_pointers(lib(intra), 16, 128, -1,
                         {{kRange, set<2>(63)}, {kRange, set<2>(1)}, {kRange, set<2>(kLeast)}});
    expect_null_pointers(
        lib(inter), 16, 128, -1,
        {{kRange, set<2>(63)}, {kRange, set<2>(1)}, {kSize, size_fault<3>(8, 6)}, {kSize, size_fault<3>(6, 4)}});
  };
  quantizers(MOX_FN(moxiQuantIntraUniform_VC1_16s_C1IR), MOX_FN(moxiQuantInterUniform_VC1_16s_C1IR));
  quantizers(MOX_FN(moxiQuantIntraNonuniform_VC1_16s_C1IR), MOX_FN(moxiQuantInterNonuniform_VC1_16s_C1IR));
  const auto inverse = [&](auto intra, auto intra_in_place, auto inter, auto inter_in_place) {
    expect_null_pointers(lib(intra), 16, 128);
    expect_null_pointers(lib(intra_in_place), 16, 128);
    expect_null_pointers(lib(inter), 16, 128, -1, {{kSize, size_fault<5>(4, 0)}, {kSize, size_fault<5>(-4, 8)}});
    expect_null_pointers(lib(inter_in_place), 16, 128, -1,
                         {{kSize, size_fault<3>(8, 16)}, {kSize, size_fault<3>(7, 8)}});
  };
  inverse(MOX_FN(moxiQuantInvIntraUniform_VC1_16s_C1R), MOX_FN(moxiQuantInvIntraUniform_VC1_16s_C1IR),
          MOX_FN(moxiQuantInvInterUniform_VC1_16s_C1R), MOX_FN(moxiQuantInvInterUniform_VC1_16s_C1IR));
  inverse(MOX_FN(moxiQuantInvIntraNonuniform_VC1_16s_C1R), MOX_FN(moxiQuantInvIntraNonuniform_VC1_16s_C1IR),
          MOX_FN(moxiQuantInvInterNonuniform_VC1_16s_C1R), MOX_FN(moxiQuantInvInterNonuniform_VC1_16s_C1IR));
}

MOX_INSTANTIATE_GENERATIONS(Vc1Quantization);

}  // namespace
}  // namespace mox::test
