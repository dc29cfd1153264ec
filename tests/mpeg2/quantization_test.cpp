#include "moxvc/mpeg2_quantization.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <functional>
#include <span>
#include <vector>

#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/null_pointers.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

using Block = std::vector<Mox16s>;

// The arithmetic by its definition: on integers without bounds, and on doubles, which hold every product of two floats.
long long wrapped(long long value) { return ((value + 32768) % 65536 + 65536) % 65536 - 32768; }
long long limited(long long value) { return std::min(std::max(value, -32768ll), 32767ll); }
long long floor_of(long long value, int divisor) { return (value - ((value % divisor) + divisor) % divisor) / divisor; }
int sign_of(long long value) { return (value > 0) - (value < 0); }

int quantized(int c, int scale, float reciprocal) {
  const auto factor = static_cast<float>(16.0 / static_cast<float>(scale));
  const auto scaled = static_cast<float>(static_cast<double>(c) * factor);
  const auto value = static_cast<float>(static_cast<double>(scaled) * reciprocal);
  if (!(std::fabs(value) < 2147483648.0)) return -2047;
  return static_cast<int>(std::clamp(std::trunc(static_cast<double>(value)), -2047.0, 2047.0));
}
int quantized_flat(int c, int scale) {
  if (scale < 2) return c;
  const long long reciprocal = (65536 + scale / 2) / scale;
  return sign_of(c) * static_cast<int>(std::min(2047ll, limited(std::abs(c)) * reciprocal / 65536));
}
long long dequantized_intra(int c, int scale, int weight) {
  return floor_of(limited(wrapped(wrapped(1ll * c * scale) * weight) + (c < 0 ? 15 : 0)), 16);
}
long long dequantized(int c, int scale, int weight) {
  const long long w = wrapped(1ll * scale * weight) & 0xFFFF, p = wrapped(c * w);
  if (c == 0) return 0;
  return floor_of(limited(limited(p + (p < 0 ? -1 : 1) * (w / 2)) + (p < 0 ? 15 : 0)), 16);
}
long long dequantized_flat(int c, int scale) {
  const long long product = wrapped(limited(limited(2 * c) + sign_of(c)) * scale);
  return std::clamp(floor_of(limited(product + (c < 0)), 2), -2048ll, 2047ll);
}
/// The block of value(i), with an odd sum unless a lane saturates.
Block with_odd_sum(const std::function<long long(int)>& value) {
  Block block(64);
  long long lanes[8] = {}, sum = 0;
  for (int i = 0; i < 64; ++i) {
    block[i] = static_cast<Mox16s>(value(i));
    lanes[i % 8] = limited(lanes[i % 8] + block[i]);
  }
  for (long long lane : lanes) sum += lane;
  if (sum % 2 == 0) block[63] = static_cast<Mox16s>(block[63] + (block[63] % 2 ? -1 : 1));
  return block;
}

constexpr int kDefaultWeights[64] = {8,  16, 19, 22, 26, 27, 29, 34, 16, 16, 22, 24, 27, 29, 34, 37,
                                     19, 22, 26, 27, 29, 34, 34, 38, 22, 22, 26, 27, 29, 34, 37, 40,
                                     22, 26, 27, 29, 32, 35, 40, 48, 26, 27, 29, 32, 35, 40, 48, 58,
                                     26, 27, 29, 34, 38, 46, 56, 69, 27, 29, 35, 38, 46, 56, 69, 83};

class Mpeg2Quantization : public PerGeneration {
 protected:
  static constexpr int kScales[] = {1, 2, 3, 16, 31, 62, 112, 255, -1, -7, 65535, 131073, INT_MAX, INT_MIN};
  /// A block at some alignment, or at the end of memory.
  struct Placed : Guarded<Mox16s> {
    Placed(const Block& block, int alignment)
        : Guarded(64, alignment == 0 ? Placement::at_end() : Placement::aligned(alignment)) {
      std::copy(block.begin(), block.end(), begin());
    }
  };
  Block random_block(Random& random) {
    Block block(64);
    const int range = 1 << random(1, 15);
    fill(std::span<Mox16s>(block), kPatterns[random(0, 6)], random, -range, range - 1);
    return block;
  }
};

TEST_P(Mpeg2Quantization, Forward) {
  Random random;
  const float odd[] = {0, -0.0f, -1, 1e-30f, 1e-42f, 65536, 3e38f, INFINITY, -INFINITY, NAN};
  for (int round = 0; round < 2000; ++round) {
    const Block block = random_block(random);
    const int scale = random.chance(0.7) ? random(1, 112) : kScales[random(0, 13)];
    const bool intra = random.chance(0.5), isFlat = random.chance(0.3);
    Guarded<float> reciprocals(64);
    for (float& m : reciprocals) m = 1.0f / static_cast<float>(random(1, 255));
    if (round % 5 == 0) reciprocals[random(0, 63)] = odd[random(0, 9)];
    const Placed got(block, 2 * random(0, 8));
    Mox32s count = -1, expected_count = 0;
    const auto function = intra ? lib(MOX_FN(moxiQuantIntra_MPEG2_16s_C1I)) : lib(MOX_FN(moxiQuant_MPEG2_16s_C1I));
    ASSERT_EQ(function(got.data(), scale, isFlat ? nullptr : reciprocals.data(), &count), moxStsOk);
    Block expected = block;
    for (int i = intra; i < 64; ++i) {
      const float reciprocal = isFlat ? static_cast<float>(1.0 / kDefaultWeights[i]) : reciprocals[i];
      expected[i] = static_cast<Mox16s>(isFlat && !intra ? quantized_flat(block[i], scale)
                                                         : quantized(block[i], scale, reciprocal));
      expected_count += expected[i] != 0;
    }
    ASSERT_EQ(got.copy(), expected) << "scale " << scale << ", intra " << intra << ", flat " << isFlat;
    ASSERT_EQ(count, expected_count);
  }
}

TEST_P(Mpeg2Quantization, Inverse) {
  Random random;
  for (int round = 0; round < 3000; ++round) {
    const Block block = random_block(random);
    const int scale = random.chance(0.7) ? random(1, 112) : kScales[random(0, 13)];
    Guarded<Mox16u> weights(64);
    random.fill(std::span<Mox16u>(weights.begin(), 64), 0, random.chance(0.8) ? 255 : 65535);
    const int alignment = 2 * random(0, 8);
    const Placed intra(block, alignment), matrix(block, alignment), flat(block, alignment);
    ASSERT_EQ(lib(MOX_FN(moxiQuantInvIntra_MPEG2_16s_C1I))(intra.data(), scale, weights.data()), moxStsOk);
    ASSERT_EQ(lib(MOX_FN(moxiQuantInv_MPEG2_16s_C1I))(matrix.data(), scale, weights.data()), moxStsOk);
    ASSERT_EQ(lib(MOX_FN(moxiQuantInv_MPEG2_16s_C1I))(flat.data(), scale, nullptr), moxStsOk);
    ASSERT_EQ(intra.copy(),
              with_odd_sum([&](int i) { return i == 0 ? block[0] : dequantized_intra(block[i], scale, weights[i]); }))
        << scale;
    ASSERT_EQ(matrix.copy(), with_odd_sum([&](int i) { return dequantized(block[i], scale, weights[i]); })) << scale;
    ASSERT_EQ(flat.copy(), with_odd_sum([&](int i) { return dequantized_flat(block[i], scale); })) << scale;
    Mox32s zeros = -1;
    ASSERT_EQ(lib(MOX_FN(moxiCountZeros8x8_16s_C1))(matrix.data(), &zeros), moxStsOk);
    ASSERT_EQ(zeros, std::count(matrix.begin(), matrix.end(), 0));
  }
}

/// Coefficient `at` of a block that is zero elsewhere becomes `result`, coefficient 63 `last`: by hand.
TEST_P(Mpeg2Quantization, LiteralValues) {
  enum Form { kIntra, kMatrix, kFlat, kInvIntra, kInvMatrix, kInvFlat };
  struct Case {
    Form form;
    int scale, at, value, result, last;
  };
  // 3 * 21845 is 65535, below 1; of the inverse forms 65552 wraps to 16, -32784 to 32752, the weight of scale 4096 to
  // 0, 32768 to -32768, 4095 * 112 to -112; -3 * 10923 wraps to 32767, to which 1 is added in vain.
  const Case cases[] = {
      {kFlat, 1, 1, 5000, 5000, 0},      {kFlat, 2, 1, 5000, 2047, 0},       {kFlat, 2, 1, 3, 1, 0},
      {kFlat, 2, 1, -3, -1, 0},          {kFlat, 2, 1, -32768, -2047, 0},    {kFlat, 3, 1, 3, 0, 0},
      {kMatrix, 2, 1, 3, 1, 0},          {kMatrix, 2, 1, -32768, -2047, 0},  {kMatrix, -2, 1, 16, -8, 0},
      {kIntra, 2, 1, 16, 8, 0},          {kIntra, 1, 0, 7777, 7777, 0},      {kInvIntra, 5, 0, 1, 1, 0},
      {kInvIntra, 2, 1, -1, -2, 1},      {kInvIntra, 1, 1, -2048, -2048, 1}, {kInvIntra, 1, 1, 4097, 1, 0},
      {kInvIntra, 1, 1, -2049, 2047, 0}, {kInvMatrix, 9, 0, 0, 0, 1},        {kInvMatrix, 2, 1, 1, 3, 0},
      {kInvMatrix, 2, 1, -1, -3, 0},     {kInvMatrix, 4096, 1, 1, 0, 1},     {kInvMatrix, 1024, 1, 2, -2048, 1},
      {kInvFlat, 1, 1, 1, 1, 0},         {kInvFlat, 1, 1, -1, -1, 0},        {kInvFlat, 112, 1, 2047, -56, 1},
      {kInvFlat, 10923, 1, -1, 2047, 0}, {kInvFlat, 8, 1, 300, 2047, 0},     {kInvFlat, 8, 1, -300, -2048, 1}};
  const std::vector<Mox16u> weights(64, 16);
  const std::vector<float> reciprocals(64, 1.0f / 16);
  for (const Case& c : cases) {
    Block block(64);
    block[c.at] = static_cast<Mox16s>(c.value);
    Mox32s count = -1;
    const auto quant = lib(c.form == kIntra ? MOX_FN(moxiQuantIntra_MPEG2_16s_C1I) : MOX_FN(moxiQuant_MPEG2_16s_C1I));
    const auto inverse =
        lib(c.form == kInvIntra ? MOX_FN(moxiQuantInvIntra_MPEG2_16s_C1I) : MOX_FN(moxiQuantInv_MPEG2_16s_C1I));
    const MoxStatus status =
        c.form <= kFlat ? quant(block.data(), c.scale, c.form == kMatrix ? reciprocals.data() : nullptr, &count)
                        : inverse(block.data(), c.scale, c.form == kInvFlat ? nullptr : weights.data());
    const testing::Message which = testing::Message() << "case " << &c - cases;
    EXPECT_EQ(status, moxStsOk) << which;
    EXPECT_EQ(block[c.at], c.result) << which;
    EXPECT_EQ(block[63], c.last) << which;
    if (c.form <= kFlat) {
      EXPECT_EQ(count, c.result != 0 && c.at != 0) << which;
    }
  }
}

TEST_P(Mpeg2Quantization, Arguments) {
  Block block(64, 9);
  Mox32s count = 5;
  const float reciprocals[64] = {};
  const auto forward = [&](auto symbol) {
    Call{lib(symbol), std::tuple{block.data(), 1, reciprocals, &count}}
        .keeps(block.data(), 128)
        .keeps(&count, sizeof count)
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set<3>(nullptr)},
                       {moxStsZeroDivisor, set<1>(0)}});
    EXPECT_EQ(lib(symbol)(block.data(), 0, nullptr, &count), moxStsZeroDivisor);
  };
  forward(MOX_FN(moxiQuantIntra_MPEG2_16s_C1I));
  forward(MOX_FN(moxiQuant_MPEG2_16s_C1I));
  expect_null_pointers(lib(MOX_FN(moxiQuantInvIntra_MPEG2_16s_C1I)), 1, 128);
  expect_null_pointers(lib(MOX_FN(moxiQuantInv_MPEG2_16s_C1I)), 1, 128, 2);
  expect_null_pointers(lib(MOX_FN(moxiCountZeros8x8_16s_C1)), 1, 128);
}

MOX_INSTANTIATE_GENERATIONS(Mpeg2Quantization);

}  // namespace
}  // namespace mox::test
