#include "moxvc/vc1_transform.h"

#include <gtest/gtest.h>

#include <bit>
#include <fstream>
#include <functional>

#include "oracle/vc1.hpp"
#include "support/library.hpp"
#include "support/null_pointers.hpp"
#include "support/random.hpp"
#include "vc1/words.hpp"

namespace mox::test {
namespace {

using namespace std::placeholders;
using oracle::Rule;

/// srcSizeNZ up to these limits selects that many columns and rows; 1 x 1 is the form of the first coefficient alone.
struct Class {
  int max_width, max_height, columns, rows;
};
constexpr int kAny = 0x7FFFFFFF;

struct Shape {
  int w, h;
  Symbol<decltype(moxiTransform8x8Inv_VC1_16s_C1R)> inverse;
  Symbol<decltype(moxiTransform8x8Inv_VC1_16s_C1IR)> inverse_in_place;
  Symbol<decltype(moxiTransform8x8Fwd_VC1_16s_C1R)> forward;
  Symbol<decltype(moxiTransform8x8Fwd_VC1_16s_C1IR)> forward_in_place;
  std::vector<Class> classes;
};
#define MOX_SHAPE(w, h, ...)                                                                                 \
  Shape {                                                                                                    \
    w, h, MOX_FN(moxiTransform##w##x##h##Inv_VC1_16s_C1R), MOX_FN(moxiTransform##w##x##h##Inv_VC1_16s_C1IR), \
        MOX_FN(moxiTransform##w##x##h##Fwd_VC1_16s_C1R), MOX_FN(moxiTransform##w##x##h##Fwd_VC1_16s_C1IR), { \
      {1, 1, 1, 1}, __VA_ARGS__, { kAny, kAny, w, h }                                                        \
    }                                                                                                        \
  }
const Shape kShapes[] = {MOX_SHAPE(8, 8, {2, 2, 2, 2}, {4, 4, 4, 4}), MOX_SHAPE(8, 4, {4, kAny, 4, 4}),
                         MOX_SHAPE(4, 8, {kAny, 4, 4, 4}), MOX_SHAPE(4, 4, {2, 2, 2, 2})};

class Vc1Transform : public PerGeneration {
 protected:
  Random random_;

  /// The forms of a function by turns: apart, with a source of columns x rows words and no more; one block, through
  /// both functions; overlapping.
  void expect_result(int round, const Shape& s, const Class& c, const Values& values, const Values& want, auto call,
                     auto in_place) {
    const int mode = round % 4;
    if (mode == 0) {
      const Plane<Mox8u> src = word_plane(c.columns, c.rows, random_), dst = word_plane(s.w, s.h, random_);
      put_words(src, values, s.w);
      const auto before = src.copy(), expected = with_words(dst, want);
      ASSERT_EQ(call(words(src), src.step(), words(dst), dst.step()), moxStsOk);
      ASSERT_EQ(dst.copy(), expected);
      ASSERT_EQ(src.copy(), before);
    } else if (mode < 3) {
      const Plane<Mox8u> block = word_plane(s.w, s.h, random_);
      put_words(block, values, s.w);
      const auto expected = with_words(block, want);
      Mox16s* const p = words(block);
      ASSERT_EQ(mode == 1 ? call(p, block.step(), p, block.step()) : in_place(p, block.step()), moxStsOk);
      ASSERT_EQ(block.copy(), expected);
    } else {
      std::vector<Mox8u> memory(800, 0xA5);
      const int from = random_(0, 400), to = random_(0, 400), step = random_(16, 40), dst_step = random_(16, 40);
      put_words(memory.data() + from, step, s.w, s.h, values, s.w);
      std::vector<Mox8u> expected = memory;
      put_words(expected.data() + to, dst_step, s.w, s.h, want, s.w);
      ASSERT_EQ(call(words(memory.data() + from), step, words(memory.data() + to), dst_step), moxStsOk);
      ASSERT_EQ(memory, expected);
    }
  }
};

/// What is not read of a block holds values too.
TEST_P(Vc1Transform, InverseIsExact) {
  for (const Shape& s : kShapes) {
    int struck = 0;
    for (int round = 0; round < 12 * Block<Mox16s>::rounds(64); ++round) {
      const MoxiSize size{random_(-1, 9), random_(-1, 9)};
      const Class& c = *std::find_if(s.classes.begin(), s.classes.end(), [size](const Class& one) {
        return size.width <= one.max_width && size.height <= one.max_height;
      });
      const Values values = Block<Mox16s>(round % Block<Mox16s>::rounds(s.w * s.h), s.w * s.h, random_).values();
      Values read = values;
      for (int i = 0; i < s.w * s.h; ++i) read[i] *= i % s.w < c.columns && i / s.w < c.rows;
      Values want = oracle::vc1_inverse(s.w, s.h, read);
      struck += want != oracle::vc1_inverse(s.w, s.h, read, Rule::kWrap32);
      if (c.columns == 1) {
        const long long row = (values[0] * oracle::vc1_weight(false, s.w, 0, 0) + 4) >> 3;
        want.assign(want.size(), (row * oracle::vc1_weight(false, s.h, 0, 0) + 64) >> 7);
      }
      expect_result(round, s, c, values, want, std::bind(lib(s.inverse), _1, _2, _3, _4, size),
                    std::bind(lib(s.inverse_in_place), _1, _2, size));
      if (HasFailure()) FAIL() << s.w << "x" << s.h << ", " << size.width << "x" << size.height << " round " << round;
    }
    EXPECT_GT(struck, 20);  // blocks that a kernel without the narrow sum gets wrong
  }
}

TEST_P(Vc1Transform, ForwardIsExact) {
  for (const Shape& s : kShapes) {
    int struck = 0;
    for (int round = 0; round < 6 * Block<Mox16s>::rounds(64); ++round) {
      const Values values = Block<Mox16s>(round % Block<Mox16s>::rounds(s.w * s.h), s.w * s.h, random_).values();
      const Values want = oracle::vc1_forward(s.w, s.h, values);
      struck += want != oracle::vc1_forward(s.w, s.h, values, Rule::kSat16);
      expect_result(round, s, s.classes.back(), values, want, lib(s.forward), lib(s.forward_in_place));
      if (HasFailure()) FAIL() << s.w << "x" << s.h << " round " << round;
    }
    EXPECT_EQ(struck > 0, s.w + s.h > 8);  // blocks whose sums wrap: those of four cannot
  }
}

/// Blocks with few coefficients or flat ones, where a line is a single product.
TEST_P(Vc1Transform, ByHand) {
  struct Case {
    const Shape& shape;
    MoxiSize size;
    std::vector<std::pair<int, int>> coefficients;  // raster index, value
    std::vector<int> rows;                          // of which each is flat
  };
  const Shape &k8x8 = kShapes[0], &k8x4 = kShapes[1], &k4x8 = kShapes[2], &k4x4 = kShapes[3];
  const Case cases[] = {
      {k8x8, {1, 1}, {{0, 5}, {1, 99}, {8, 99}, {63, 99}}, {1, 1, 1, 1, 1, 1, 1, 1}},  // (60 + 4) / 8, (96 + 64) / 128
      {k8x8, {1, 1}, {{0, 32767}}, std::vector(8, 4608)},                              // 49151 * 12
      {k8x8, {8, 8}, {{0, 32767}}, std::vector(8, 3072)},                              // 32767 * 12
      {k4x4, {0, -1}, {{0, -32768}}, std::vector(4, -9248)},                           // -69632 * 17
      {k4x4, {3, 1}, {{0, -32768}}, std::vector(4, -4352)},                            // -32768 * 17
      {k8x4, {1, 1}, {{0, 32767}}, std::vector(4, 6528)},                              // 49151 * 17
      {k4x8, {1, 1}, {{0, 32767}}, std::vector(8, 6528)},                              // 69630 * 12
      {k8x8, {4, 4}, {{24, 31}}, {6, -1, -6, -3, 3, 6, 1, -5}},  // 47: -15 * 47 + 65 = -640, and -641 gives -6
      {k4x8, {2, 4}, {{12, 22}, {20, 99}}, {6, -1, -6, -3, 3, 6, 1, -5}},  // (22 * 17 + 4) / 8 = 47, too
      {k8x8, {8, 8}, {{0, 32767}, {32, 32767}}, std::vector(8, 0)},        // 65534 wraps to -2
      {k4x4, {4, 4}, {{0, 32767}, {8, 32767}}, std::vector(4, 0)},
  };
  for (const Case& c : cases) {
    const Shape& s = c.shape;
    Mox16s block[64]{};
    for (auto [at, value] : c.coefficients) block[at] = static_cast<Mox16s>(value);
    ASSERT_EQ(lib(s.inverse_in_place)(block, 2 * s.w, c.size), moxStsOk);
    for (int i = 0; i < s.w * s.h; ++i) EXPECT_EQ(block[i], c.rows[i / s.w]) << "case " << &c - cases << " at " << i;
  }
  // 3 * 174760 / 4096 = 128, that * 174760 / 2^20 = 21.3. 32767 * 174760 is 2^32 + 1431393624, which gives 32767 in a
  // row, and in a column 1365. 32767 * 61680 / 2048 saturates, too; in a column it is 2021068560 / 2^19 = 3854.9.
  for (auto [shape, sample, dc] : {std::tuple{&k8x8, 3, 21}, {&k8x8, 32767, 1365}, {&k4x4, 32767, 3855}}) {
    Mox16s block[64];
    std::fill_n(block, 64, static_cast<Mox16s>(sample));
    ASSERT_EQ(lib(shape->forward_in_place)(block, 2 * shape->w), moxStsOk);
    EXPECT_EQ(block[0], dc);
    EXPECT_TRUE(std::all_of(block + 1, block + shape->w * shape->h, [](int v) { return v == 0; })) << sample;
  }
}

/// Differences of two successive pictures, and of neighbours in one, come back from forward and inverse transform.
TEST_P(Vc1Transform, ResidualsComeBack) {
  std::ifstream file(MOXVC_VECTORS "/pair_64x64.y", std::ios::binary);
  std::vector<char> bytes(2 * 64 * 64);
  ASSERT_TRUE(file.read(bytes.data(), static_cast<std::streamsize>(bytes.size())));
  for (int distance : {64 * 64, 1}) {
    std::vector<Mox16s> residual, result(64 * 64);
    for (int i = 0; i < 64 * 64; ++i) {
      residual.push_back(static_cast<Mox16s>(static_cast<Mox8u>(bytes[i + distance]) - static_cast<Mox8u>(bytes[i])));
    }
    ASSERT_GT(*std::max_element(residual.begin(), residual.end()), 100);
    for (const Shape& s : kShapes) {
      for (int y = 0; y < 64; y += s.h) {
        for (int x = 0; x < 64; x += s.w) {
          Mox16s* const block = result.data() + 64 * y + x;
          ASSERT_EQ(lib(s.forward)(residual.data() + 64 * y + x, 128, block, 128), moxStsOk);
          ASSERT_EQ(lib(s.inverse_in_place)(block, 128, MoxiSize{s.w, s.h}), moxStsOk);
        }
      }
      int peak = 0, off = 0;
      for (int i = 0; i < 64 * 64; ++i) {
        const int error = std::abs(result[i] - residual[i]);
        peak = std::max(peak, error), off += error != 0;
      }
      EXPECT_LE(peak, 1) << s.w << "x" << s.h;
      EXPECT_LT(off, 64 * 64 / 5) << s.w << "x" << s.h;
    }
  }
}

TEST_P(Vc1Transform, HadamardIsExact) {
  int struck = 0, limited_columns = 0;
  for (int round = 0; round < 10 * Block<Mox16s>::rounds(64); ++round) {
    const bool samples = round % 3 == 0;
    Values values = Block<Mox16s>(round % Block<Mox16s>::rounds(64), 64, random_).values();
    if (samples) {
      for (long long& v : values) v &= 255;
    }
    const Values want = oracle::hadamard_8x8(values);
    struck += want != oracle::hadamard_8x8(values, Rule::kWrap16);
    long long sum = 0;
    for (int i = 0; i < 64; ++i) {
      if (i < 8) {
        const long long column = oracle::hadamard_tree(
            {want[i], want[i + 8], want[i + 16], want[i + 24], want[i + 32], want[i + 40], want[i + 48], want[i + 56]});
        sum += column, limited_columns += column == 32767;
      }
      long long defined = 0;
      for (int k = 0; k < 64; ++k) defined += std::popcount(static_cast<unsigned>(i & k)) % 2 ? -values[k] : values[k];
      ASSERT_TRUE(!samples || want[i] == defined);  // no sum saturates
    }
    const Guarded<Mox16s> dst(64, any_placement<Mox16s>(random_));
    const Guarded<Mox32s> result(1);
    const Plane<Mox8u> bytes(8, 8, random_.chance(0.5) ? 8 : -11), src = word_plane(8, 8, random_);
    put_words(src, values, 8);
    for (int i = 0; i < 64; ++i) bytes(i % 8, i / 8) = static_cast<Mox8u>(values[i]);
    Mox16s* const in_place = src.step() == 16 && round % 2 ? words(src) : dst.data();
    ASSERT_EQ(samples
                  ? lib(MOX_FN(moxiHadamard8x8Sum_VC1_8u16s))(bytes.at(0, 0), bytes.step(), dst.data(), result.data())
                  : lib(MOX_FN(moxiHadamard8x8Sum_VC1_16s))(words(src), src.step(), in_place, result.data()),
              moxStsOk);
    if (!samples) std::memmove(dst.data(), in_place, 128);
    ASSERT_EQ(Values(dst.begin(), dst.end()), want) << "round " << round;
    ASSERT_EQ(result[0], sum) << "round " << round;
  }
  EXPECT_GT(struck, 100);
  EXPECT_GT(limited_columns, 100);
}

/// 64 * 255 alone, and a value at the first place, which then is everywhere: eight of them are above 32767.
TEST_P(Vc1Transform, HadamardByHand) {
  const std::vector<Mox8u> flat(64, 255);
  std::vector<Mox16s> block(64);
  Mox32s sum;
  lib(MOX_FN(moxiHadamard8x8Sum_VC1_8u16s))(flat.data(), 8, block.data(), &sum);
  EXPECT_EQ(std::pair(block[0], sum), std::pair(Mox16s{16320}, 16320));
  EXPECT_EQ(std::count(block.begin(), block.end(), 0), 63);
  block[0] = -32768;
  lib(MOX_FN(moxiHadamard8x8Sum_VC1_16s))(block.data(), 16, block.data(), &sum);
  EXPECT_EQ(std::count(block.begin(), block.end(), -32768), 64);
  EXPECT_EQ(sum, 8 * 32767);
}

TEST_P(Vc1Transform, Arguments) {
  for (const Shape& s : kShapes) {
    expect_null_pointers(lib(s.inverse), 16, 128);
    expect_null_pointers(lib(s.inverse_in_place), 16, 128);
    expect_null_pointers(lib(s.forward), 16, 128);
    expect_null_pointers(lib(s.forward_in_place), 16, 128);
  }
  expect_null_pointers(lib(MOX_FN(moxiHadamard8x8Sum_VC1_16s)), 16, 128);
  expect_null_pointers(lib(MOX_FN(moxiHadamard8x8Sum_VC1_8u16s)), 16, 128);
}

MOX_INSTANTIATE_GENERATIONS(Vc1Transform);

}  // namespace
}  // namespace mox::test
