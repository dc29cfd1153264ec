#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <limits>
#include <optional>
#include <vector>

#include "block/block_planes.hpp"
#include "moxvc.h"
#include "oracle/statistics.hpp"
#include "support/library.hpp"
#include "support/null_pointers.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

class Statistics : public PerGeneration {};

Pattern any_pattern(Random& random) {
  return random.chance(0.5) ? Pattern::kRandom : kPatterns[random.bits() % std::size(kPatterns)];
}

template <class T>
Block<T> random_block(int width, int height, Random& random, int low = std::numeric_limits<T>::min(),
                      int high = std::numeric_limits<T>::max()) {
  Block<T> block(width, height, random);
  block.fill(any_pattern(random), random, low, high);
  return block;
}

/// The samples of a part of a block.
template <class T>
std::vector<int> samples(const Block<T>& block, int x, int y, int size) {
  std::vector<int> values;
  for (int i = 0; i < size * size; ++i) values.push_back(block.get(x + i % size, y + i / size));
  return values;
}

/// n results with no other memory around them.
template <class T>
Guarded<T> results(std::size_t n, Random& random) {
  return Guarded<T>(n, random.chance(0.5) ? Placement::at_end() : Placement::at_start());
}

/// A block without padding, of one value or made by sample(x, y).
template <class T>
Block<T> packed(int width, int height, const std::function<int(int, int)>& sample) {
  Block<T> block(width, height, width * static_cast<int>(sizeof(T)), Placement::at_end());
  for (int i = 0; i < width * height; ++i) block.set(i % width, i / width, sample(i % width, i / width));
  return block;
}
template <class T>
Block<T> flat(int size, int value) {
  return packed<T>(size, size, [value](int, int) { return value; });
}

TEST_P(Statistics, VariancesAndDeviationsEqualOracle) {
  Random random;
  const auto scaled = lib(MOX_FN(moxiVariance16x16_8u32s));
  const auto deviation8 = lib(MOX_FN(moxiMeanAbsDev8x8_8u32s_C1R));
  const auto deviation16 = lib(MOX_FN(moxiMeanAbsDev16x16_8u32s_C1R));
  for (int round = 0; round < 600 && !HasFailure(); ++round) {
    const auto large = random_block<Mox8u>(16, 16, random), small = random_block<Mox8u>(8, 8, random);
    const auto out = results<Mox32s>(1, random);
    ASSERT_EQ(scaled(large.data(), large.step(), out.data()), moxStsOk);
    EXPECT_EQ(out[0], oracle::scaled_variance(samples(large, 0, 0, 16))) << "step " << large.step();
    ASSERT_EQ(deviation16(large.data(), large.step(), out.data()), moxStsOk);
    EXPECT_EQ(out[0], oracle::absolute_deviation(samples(large, 0, 0, 16))) << "step " << large.step();
    ASSERT_EQ(deviation8(small.data(), small.step(), out.data()), moxStsOk);
    EXPECT_EQ(out[0], oracle::absolute_deviation(samples(small, 0, 0, 8))) << "step " << small.step();
  }
}

TEST_P(Statistics, RoundedVariancesEqualOracle) {
  Random random;
  const auto check = [&]<class T>(Symbol<MoxStatus(const T*, Mox32s, Mox32s*, Mox32s*)> symbol) {
    for (int round = 0; round < 1000 && !HasFailure(); ++round) {
      const int widest = sizeof(T) == 1 ? 255 : 32767, narrow = sizeof(T) == 1 ? 255 : random(1, 5792);
      const int high = random.chance(0.7) ? narrow : widest, low = sizeof(T) == 1 ? random(0, 255) : -high;
      const auto block = random_block<T>(8, 8, random, low, high);
      const auto var = results<Mox32s>(1, random), sum = results<Mox32s>(1, random);
      ASSERT_EQ(lib(symbol)(block.data(), block.step(), var.data(), sum.data()), moxStsOk);
      EXPECT_EQ(var[0], oracle::rounded_variance(samples(block, 0, 0, 8))) << symbol.name << " step " << block.step();
      EXPECT_EQ(sum[0], oracle::sum_of(samples(block, 0, 0, 8))) << symbol.name << " step " << block.step();
    }
  };
  check(MOX_FN(moxiVarSum8x8_8u32s_C1R)), check(MOX_FN(moxiVarMean8x8_8u32s_C1R));
  check(MOX_FN(moxiVarSum8x8_16s32s_C1R)), check(MOX_FN(moxiVarMean8x8_16s32s_C1R));
}

TEST_P(Statistics, VariancesByHand) {
  Mox32s var = -1, sum = -1;
  // 55 samples of 178 and 9 of 0: (9790 / 64)^2 = 23399.4384765625 lies between two floats and goes to 23399.4375,
  // so that 27228.4375 less that gives 3829. The exact variance is 3828.999.
  const auto rounded = packed<Mox8u>(8, 8, [](int x, int y) { return 8 * y + x < 9 ? 0 : 178; });
  lib(MOX_FN(moxiVarSum8x8_8u32s_C1R))(rounded.data(), 8, &var, &sum);
  EXPECT_EQ(var, 3829);
  EXPECT_EQ(sum, 9790);
  const auto rounded16 = packed<Mox16s>(8, 8, [](int x, int y) { return 8 * y + x < 9 ? 0 : -178; });
  lib(MOX_FN(moxiVarSum8x8_16s32s_C1R))(rounded16.data(), 16, &var, &sum);
  EXPECT_EQ(var, 3829);
  EXPECT_EQ(sum, -9790);
  const auto halves = packed<Mox8u>(16, 16, [](int, int y) { return y < 8 ? 0 : 255; });
  lib(MOX_FN(moxiVariance16x16_8u32s))(halves.data(), 16, &var);
  EXPECT_EQ(var, 128 * 255 * 255 - 32640 * 32640 / 256);
  lib(MOX_FN(moxiMeanAbsDev16x16_8u32s_C1R))(halves.data(), 16, &sum);  // the mean 127.5 counts as 128
  EXPECT_EQ(sum, 128 * 128 + 128 * 127);
  for (int value : {0, 1, 100, 255}) {
    const auto large = flat<Mox8u>(16, value), small = flat<Mox8u>(8, value);
    const auto words = flat<Mox16s>(8, -20 * value);
    lib(MOX_FN(moxiVariance16x16_8u32s))(large.data(), 16, &var);
    EXPECT_EQ(var, 0) << value;
    lib(MOX_FN(moxiVarSum8x8_8u32s_C1R))(small.data(), 8, &var, &sum);
    EXPECT_EQ(var, 0) << value;
    EXPECT_EQ(sum, 64 * value);
    lib(MOX_FN(moxiVarMean8x8_16s32s_C1R))(words.data(), 16, &var, &sum);
    EXPECT_EQ(var, 0) << value;
    EXPECT_EQ(sum, -1280 * value);
    lib(MOX_FN(moxiMeanAbsDev8x8_8u32s_C1R))(small.data(), 8, &var);
    EXPECT_EQ(var, 0) << value;
  }
}

using VarMeanDiff = decltype(moxiVarMeanDiff16x8_8u32s_C1R);

TEST_P(Statistics, PredictionErrorsEqualOracle) {
  Random random;
  const auto check = [&](Symbol<VarMeanDiff> symbol, int height, int mcType) {
    const int halfX = mcType >> 3 & 1, halfY = mcType >> 2 & 1;
    const auto src = random_block<Mox8u>(16, height, random);
    const auto ref = random_block<Mox8u>(16 + halfX, height + halfY, random);
    const std::size_t blocks = static_cast<std::size_t>(height) / 4;
    const auto srcSum = results<Mox32s>(blocks, random), var = results<Mox32s>(blocks, random),
               mean = results<Mox32s>(blocks, random);
    std::vector<oracle::ErrorStatistics> expected;
    for (int k = 0; k < height / 4; ++k) {
      const auto s = samples(src, k % 2 * 8, k / 2 * 8, 8);
      std::vector<int> predictions;
      for (int i = 0; i < 64; ++i) {
        const auto sample = [&](int x, int y) { return ref.get(x, y); };
        predictions.push_back(oracle::half_pel(sample, k % 2 * 8 + i % 8, k / 2 * 8 + i / 8, halfX, halfY, 0));
      }
      // The true sum, a wrong one, or any number.
      const int sum = random.chance(0.5)   ? static_cast<int>(oracle::sum_of(s))
                      : random.chance(0.5) ? random(-600000, 600000)
                                           : static_cast<int>(random.bits());
      srcSum[static_cast<std::size_t>(k)] = sum;
      expected.push_back(oracle::error_statistics(s, predictions, sum, height == 16 ? 16 : 32));
    }
    ASSERT_EQ(
        lib(symbol)(src.data(), src.step(), ref.data(), ref.step(), srcSum.data(), var.data(), mean.data(), mcType),
        moxStsOk);
    for (std::size_t k = 0; k < blocks; ++k) {
      EXPECT_EQ(mean[k], expected[k].mean) << symbol.name << " mcType " << mcType << " block " << k;
      EXPECT_EQ(var[k], expected[k].var) << symbol.name << " mcType " << mcType << " block " << k;
    }
  };
  for (int round = 0; round < 200 && !HasFailure(); ++round) {
    for (int mcType : {0, 4, 8, 12}) {
      check(MOX_FN(moxiVarMeanDiff16x16_8u32s_C1R), 16, mcType);
      check(MOX_FN(moxiVarMeanDiff16x8_8u32s_C1R), 8, mcType);
      check(MOX_FN(moxiVarMeanDiff16x8_8u32s_C1R), 8, mcType | (static_cast<int>(random.bits()) & ~12));
    }
  }
}

TEST_P(Statistics, PredictionErrorsByHand) {
  const auto src = flat<Mox8u>(16, 100), ref = packed<Mox8u>(17, 17, [](int x, int) { return x % 2 ? 90 : 98; });
  const auto large = lib(MOX_FN(moxiVarMeanDiff16x16_8u32s_C1R));
  const auto half = lib(MOX_FN(moxiVarMeanDiff16x8_8u32s_C1R));
  // Errors of 2 and 10: P = 64 * 94 = 6016, E = 32 * 4 + 32 * 100 = 3328, (3328 - 48^2) / 64 = 16. Between two columns
  // all errors are 6.
  using Four = std::array<Mox32s, 4>;
  const auto four = [](Mox32s value) { return Four{value, value, value, value}; };
  const Four untouched = four(-7);
  for (int mcType : {0, 8}) {
    const Mox32s mean = 48, variance = mcType ? 0 : 16;
    Four sums = four(6400), var = untouched, means = untouched;
    EXPECT_EQ(large(src.data(), 16, ref.data(), 17, sums.data(), var.data(), means.data(), mcType), moxStsOk);
    EXPECT_EQ(var, four(variance));
    EXPECT_EQ(means, four(mean));
    for (int other : {mcType + 2, mcType + 16, mcType - 64}) {
      var = means = untouched;
      EXPECT_EQ(large(src.data(), 16, ref.data(), 17, sums.data(), var.data(), means.data(), other), moxStsOk);
      EXPECT_EQ(var, untouched) << other;
      EXPECT_EQ(means, untouched) << other;
      EXPECT_EQ(half(src.data(), 16, ref.data(), 17, sums.data(), var.data(), means.data(), other), moxStsOk);
      EXPECT_EQ(var, (Four{variance, variance, -7, -7})) << other;
    }
  }
  for (const int difference : {-8, -7, 0, 7, 8}) {
    const Four sums = four(6400 + difference);
    Four var, means;
    large(src.data(), 16, src.data(), 16, sums.data(), var.data(), means.data(), 0);
    EXPECT_EQ(means, four(difference / 8)) << difference;
    EXPECT_EQ(var, four(0)) << difference;
  }
}

/// Where the difference at (x, y) goes: block after block, blocks and their samples in raster order.
int diff_index(int x, int y, int size) { return (y / 4 * (size / 4) + x / 4) * 16 + y % 4 * 4 + x % 4; }

/// Sums and differences as a call must leave them. `difference(x, y)` gives the exact differences.
template <class S>
void expect_sums(const Block<S>& sums, const std::optional<Block<Mox16s>>& diff, int size,
                 const std::function<int(int, int)>& difference) {
  std::vector<std::int64_t> expected(static_cast<std::size_t>(size * size / 16));
  for (int i = 0; i < size * size; ++i) {
    const int x = i % size, y = i / size, d = oracle::signed_16_bits(difference(x, y));
    expected[static_cast<std::size_t>(diff_index(x, y, size) / 16)] += d;
    if (diff) {
      ASSERT_EQ(diff->get(diff_index(x, y, size), 0), d) << "difference at " << x << ' ' << y;
    }
  }
  for (int i = 0; i < size * size / 16; ++i) {
    ASSERT_EQ(sums.get(i, 0), expected[static_cast<std::size_t>(i)]) << "sum of block " << i;
  }
}

std::optional<Block<Mox16s>> random_diff(bool wanted, int size, Random& random) {
  if (!wanted) return std::nullopt;
  return Block<Mox16s>(size * size, 1, 0, random_placement(random));
}
template <class S>
Block<S> random_sums(int size, Random& random) {
  return Block<S>(size * size / 16, 1, 0, random_placement(random));
}

TEST_P(Statistics, SumsOfDifferencesEqualOracle) {
  Random random;
  const auto check = [&]<class T, class S>(Symbol<MoxStatus(const T*, Mox32s, const T*, Mox32s, S*, Mox16s*)> symbol,
                                           int size) {
    for (int round = 0; round < 400 && !HasFailure(); ++round) {
      const auto src = random_block<T>(size, size, random), pred = random_block<T>(size, size, random);
      const auto sums = random_sums<S>(size, random);
      const auto diff = random_diff(round % 2, size, random);
      ASSERT_EQ(
          lib(symbol)(src.data(), src.step(), pred.data(), pred.step(), sums.data(), diff ? diff->data() : nullptr),
          moxStsOk);
      expect_sums(sums, diff, size, [&](int x, int y) { return src.get(x, y) - pred.get(x, y); });
      EXPECT_FALSE(HasFailure()) << symbol.name << " steps " << src.step() << ' ' << pred.step();
    }
  };
  check(MOX_FN(moxiSumsDiff8x8Blocks4x4_8u16s_C1), 8);
  check(MOX_FN(moxiSumsDiff16x16Blocks4x4_8u16s_C1), 16);
  check(MOX_FN(moxiSumsDiff8x8Blocks4x4_16u32s_C1R), 8);
  check(MOX_FN(moxiSumsDiff16x16Blocks4x4_16u32s_C1R), 16);
}

TEST_P(Statistics, SumsOfDifferencesOfChannelsEqualOracle) {
  Random random;
  const auto f = lib(MOX_FN(moxiSumsDiff8x8Blocks4x4_8u16s_C2P2));
  for (int round = 0; round < 800 && !HasFailure(); ++round) {
    const auto src = random_block<Mox8u>(16, 8, random);
    const Block<Mox8u> pred[] = {random_block<Mox8u>(8, 8, random), random_block<Mox8u>(8, 8, random)};
    const Block<Mox16s> sums[] = {random_sums<Mox16s>(8, random), random_sums<Mox16s>(8, random)};
    const std::optional<Block<Mox16s>> diff[] = {random_diff(round & 1, 8, random), random_diff(round & 2, 8, random)};
    ASSERT_EQ(f(src.data(), src.step(), pred[0].data(), pred[0].step(), pred[1].data(), pred[1].step(), sums[0].data(),
                diff[0] ? diff[0]->data() : nullptr, sums[1].data(), diff[1] ? diff[1]->data() : nullptr),
              moxStsOk);
    for (int channel : {0, 1}) {
      SCOPED_TRACE(testing::Message() << "channel " << channel << ", differences wanted: " << round % 4);
      expect_sums(sums[channel], diff[channel], 8,
                  [&](int x, int y) { return src.get(2 * x + channel, y) - pred[channel].get(x, y); });
    }
  }
}

TEST_P(Statistics, SumsOfDifferencesByHand) {
  // 40000 - 1 counts as -25537, 0 - 65535 as 1, 0 - 32768 as -32768.
  const int kCases[][3] = {{40000, 1, -25537}, {0, 65535, 1}, {65535, 0, -1}, {0, 32768, -32768}, {32767, 0, 32767}};
  for (const auto& c : kCases) {
    const auto src = flat<Mox16u>(16, c[0]), pred = flat<Mox16u>(16, c[1]);
    std::vector<Mox32s> sums(16);
    lib(MOX_FN(moxiSumsDiff16x16Blocks4x4_16u32s_C1R))(src.data(), 32, pred.data(), 32, sums.data(), nullptr);
    EXPECT_EQ(sums, std::vector<Mox32s>(16, 16 * c[2])) << c[0] << " - " << c[1];
  }
}

TEST_P(Statistics, EdgesEqualOracle) {
  Random random;
  const auto check = [&]<class T, class R>(Symbol<MoxStatus(const T*, Mox32s, Mox32u, Mox32u, R*)> symbol) {
    constexpr int kHalf = sizeof(T) == 1 ? 128 : 32768;
    for (int round = 0; round < 600 && !HasFailure(); ++round) {
      const auto src = random_block<T>(16, 16, random);
      const auto out = results<R>(1, random);
      const Mox32u thresholds[] = {
          0, 1, kHalf - 2, kHalf - 1, kHalf, 2 * kHalf - 1, static_cast<Mox32u>(random(0, kHalf))};
      const Mox32u threshold = thresholds[random.bits() % std::size(thresholds)];
      const int edges = oracle::edges([&](int x, int y) { return src.get(x, y); }, threshold, kHalf);
      for (const int count : {edges - 1, edges, random(0, 255)}) {
        if (count < 0) continue;
        out[0] = 77;
        ASSERT_EQ(lib(symbol)(src.data(), src.step(), threshold, static_cast<Mox32u>(count), out.data()), moxStsOk);
        EXPECT_EQ(out[0], edges > count ? 1u : 0u)
            << symbol.name << " step " << src.step() << " threshold " << threshold << " count " << count;
      }
    }
  };
  check(MOX_FN(moxiEdgesDetect16x16_8u_C1R)), check(MOX_FN(moxiEdgesDetect16x16_16u_C1R));
}

TEST_P(Statistics, EdgesByHand) {
  const auto bytes = [&](const Block<Mox8u>& block, Mox32u difference, Mox32u count) {
    Mox8u result = 77;
    EXPECT_EQ(lib(MOX_FN(moxiEdgesDetect16x16_8u_C1R))(block.data(), 16, difference, count, &result), moxStsOk);
    return static_cast<int>(result);
  };
  const auto words = [&](const Block<Mox16u>& block, Mox32u difference, Mox32u count) {
    Mox32u result = 77;
    EXPECT_EQ(lib(MOX_FN(moxiEdgesDetect16x16_16u_C1R))(block.data(), 32, difference, count, &result), moxStsOk);
    return static_cast<int>(result);
  };
  const auto flat8 = flat<Mox8u>(16, 9);
  const auto flat16 = flat<Mox16u>(16, 9);
  // A negative threshold counts all 225.
  EXPECT_EQ(bytes(flat8, 200, 224), 1);
  EXPECT_EQ(bytes(flat8, 200, 225), 0);
  EXPECT_EQ(bytes(flat8, 0, 0), 0);
  EXPECT_EQ(bytes(flat8, 128, 256 + 224), 1);  // low 8 bits
  EXPECT_EQ(bytes(flat8, 256, 0), 0);
  EXPECT_EQ(words(flat16, 40000, 224), 1);
  EXPECT_EQ(words(flat16, 40000, 256), 0);
  EXPECT_EQ(words(flat16, 65535, 257), 77);
  EXPECT_EQ(words(flat16, 65536, 0), 77);
  EXPECT_EQ(words(flat16, 0xFFFFFFFF, 0), 77);
  // One odd sample: itself and its neighbours above and to the left. In column 15 or row 15 it is a neighbour alone,
  // in the corner nothing.
  const int kSpots[][3] = {{0, 0, 1},  {7, 7, 3},   {8, 3, 3},  {14, 14, 3},
                           {15, 0, 1}, {15, 15, 0}, {3, 15, 1}, {0, 9, 2}};
  for (const auto& [spotX, spotY, edges] : kSpots) {
    const auto spot = [x0 = spotX, y0 = spotY](int x, int y) { return x == x0 && y == y0 ? 200 : 9; };
    SCOPED_TRACE(testing::Message() << spotX << ' ' << spotY);
    if (edges > 0) {
      EXPECT_EQ(bytes(packed<Mox8u>(16, 16, spot), 126, static_cast<Mox32u>(edges - 1)), 1);
      EXPECT_EQ(words(packed<Mox16u>(16, 16, spot), 190, static_cast<Mox32u>(edges - 1)), 1);
    }
    EXPECT_EQ(bytes(packed<Mox8u>(16, 16, spot), 126, static_cast<Mox32u>(edges)), 0);
    EXPECT_EQ(bytes(packed<Mox8u>(16, 16, spot), 127, 0), 0);  // differences above 127 count as 127
    EXPECT_EQ(words(packed<Mox16u>(16, 16, spot), 190, static_cast<Mox32u>(edges)), 0);
    EXPECT_EQ(words(packed<Mox16u>(16, 16, spot), 191, 0), 0);
  }
}

TEST_P(Statistics, NullPointers) {
  const auto check = [&](auto symbol, int mayBeNull = -1) {
    SCOPED_TRACE(symbol.name);
    expect_null_pointers(lib(symbol), 64, 17 * 64, mayBeNull);
  };
  check(MOX_FN(moxiVariance16x16_8u32s));
  check(MOX_FN(moxiVarSum8x8_8u32s_C1R)), check(MOX_FN(moxiVarMean8x8_8u32s_C1R));
  check(MOX_FN(moxiVarSum8x8_16s32s_C1R)), check(MOX_FN(moxiVarMean8x8_16s32s_C1R));
  check(MOX_FN(moxiMeanAbsDev8x8_8u32s_C1R)), check(MOX_FN(moxiMeanAbsDev16x16_8u32s_C1R));
  check(MOX_FN(moxiVarMeanDiff16x8_8u32s_C1R)), check(MOX_FN(moxiVarMeanDiff16x16_8u32s_C1R));
  check(MOX_FN(moxiSumsDiff8x8Blocks4x4_8u16s_C1), 5), check(MOX_FN(moxiSumsDiff16x16Blocks4x4_8u16s_C1), 5);
  check(MOX_FN(moxiSumsDiff8x8Blocks4x4_16u32s_C1R), 5), check(MOX_FN(moxiSumsDiff16x16Blocks4x4_16u32s_C1R), 5);
  check(MOX_FN(moxiEdgesDetect16x16_8u_C1R)), check(MOX_FN(moxiEdgesDetect16x16_16u_C1R));

  std::vector<Mox8u> src(16 * 64), pred(8 * 64);
  std::vector<Mox16s> sums(8), diff(128);
  Call{lib(MOX_FN(moxiSumsDiff8x8Blocks4x4_8u16s_C2P2)),
       std::tuple{src.data(), 64, pred.data(), 64, pred.data(), 64, sums.data(), diff.data(), sums.data() + 4,
                  diff.data() + 64}}
      .keeps(sums.data(), 16)
      .keeps(diff.data(), 256)
      .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                     {moxStsNullPointer, set<2>(nullptr)},
                     {moxStsNullPointer, set<4>(nullptr)},
                     {moxStsNullPointer, set<6>(nullptr)},
                     {moxStsNullPointer, set<8>(nullptr)}});
}

MOX_INSTANTIATE_GENERATIONS(Statistics);

}  // namespace
}  // namespace mox::test
