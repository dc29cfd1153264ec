#include "moxvc/dct.h"

#include <gtest/gtest.h>

#include <cmath>
#include <optional>

#include "dct/dct.hpp"
#include "h264/transform_inputs.hpp"
#include "oracle/dct.hpp"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

using oracle::Block64;

/// What a plane of a function's destination becomes: the inverse transform of a block, or its DC alone.
struct Source {
  std::optional<Block<Mox16s>> block;
  Block64<long long> want;

  void make(int round, bool transposed, bool flat, Random& random) {
    block.emplace(flat ? random(1, 70) : round, flat ? 1 : 64, random);  // one coefficient can be read of a flat block
    Block64<long long> coefficients{};
    for (int i = 0; i < static_cast<int>(block->size()); ++i) {
      coefficients[transposed ? i % 8 * 8 + i / 8 : i] = (*block)[i];
    }
    want = oracle::dct_inverse(coefficients);
  }
};

class Dct : public PerGeneration {
 protected:
  Random random_;

  /// An inverse transform of `planes` planes to elements of T: call(u, v, dst, step, flag). `row` is the least step in
  /// elements if the step is tested, 0 if it is not; -1 stands for a destination without gaps.
  template <class T>
  void inverse(int planes, bool transposed, int row, int flags, auto call) {
    for (int round = 0; round < flags * Block<Mox16s>::rounds(64); ++round) {
      const int flag = round % flags, width = 8 * planes;
      Source sources[2];
      for (int p = 0; p < planes; ++p) sources[p].make(round / flags, transposed, flag >> p & 1, random_);
      const int step = row < 0 ? width : row > 0 ? random_(0, 1) * random_(1, 9) + width : random_(-40, 40);
      const int legal = std::abs(step) < width ? -width - 1 : step;
      const Plane<T> dst(width, 8, legal, any_placement<T>(random_)), want(width, 8, legal);
      for (int i = 0; i < 8 * width; ++i) {
        const long long value = sources[i % planes].want[i / width * 8 + i % width / planes];
        want(i % width, i / width) = static_cast<T>(sizeof(T) == 1 ? limited(value, 255) : value);
      }
      const auto* const second = planes == 2 ? sources[1].block->data() : nullptr;
      ASSERT_EQ(call(sources[0].block->data(), second, dst.at(0, 0), dst.step_bytes(), flag), moxStsOk);
      ASSERT_EQ(dst.copy(), want.copy()) << "round " << round << " flag " << flag;
    }
  }

  /// A forward transform of `planes` planes from elements of T: call(src, step, u, v).
  template <class T>
  void forward(int planes, int row, auto call) {
    for (int round = 0; round < 10 * static_cast<int>(std::size(kPatterns)); ++round) {
      const int width = 8 * planes, step = row < 0 ? width : row > 0 ? width + random_(0, 9) : -width - random_(0, 9);
      const Plane<T> src(width, 8, step, any_placement<T>(random_));
      const int limit = std::array{255, 2047, 32767}[random_(0, 2)];
      fill(src.memory(), kPatterns[round / 10], random_, sizeof(T) == 1 ? 0 : -limit - 1, sizeof(T) == 1 ? 255 : limit);
      const Guarded<Mox16s> dst[2]{Guarded<Mox16s>(64, any_placement<Mox16s>(random_)), Guarded<Mox16s>(64)};
      ASSERT_EQ(call(src.at(0, 0), src.step_bytes(), dst[0].data(), dst[1].data()), moxStsOk);
      for (int p = 0; p < planes; ++p) {
        Block64<long long> samples;
        for (int i = 0; i < 64; ++i) samples[i] = src(i % 8 * planes + p, i / 8);
        const auto want = oracle::dct_forward(samples);
        for (int i = 0; i < 64; ++i) ASSERT_EQ(dst[p][i], want[i]) << "round " << round << " coefficient " << i;
      }
    }
  }
};

TEST_P(Dct, InverseIsExact) {
  const auto plain = lib(MOX_FN(moxiDCT8x8Inv_16s_C1)), transposed = lib(MOX_FN(moxiDCT8x8Inv_AANTransposed_16s_C1));
  const auto in_place = lib(MOX_FN(moxiDCT8x8Inv_16s_C1I));
  const auto region = lib(MOX_FN(moxiDCT8x8Inv_16s_C1R));
  const auto region_transposed = lib(MOX_FN(moxiDCT8x8Inv_AANTransposed_16s_C1R));
  const auto pair = lib(MOX_FN(moxiDCT8x8Inv_AANTransposed_16s_P2C2R));
  const auto samples = lib(MOX_FN(moxiDCT8x8Inv_AANTransposed_16s8u_C1R));
  const auto sample_pairs = lib(MOX_FN(moxiDCT8x8Inv_AANTransposed_16s8u_P2C2R));
  const auto inv_or_set = lib(MOX_FN(moxiDCT8x8InvOrSet_16s8u_C1R));
  const auto inv_or_set_pair = lib(MOX_FN(moxiDCT8x8InvOrSet_16s8u_P2C2));
  inverse<Mox16s>(1, false, -1, 1, [=](auto u, auto, auto d, int, int) { return plain(u, d); });
  inverse<Mox16s>(1, true, -1, 1, [=](auto u, auto, auto d, int, int) { return transposed(u, d); });
  inverse<Mox16s>(1, false, -1, 1, [=](auto u, auto, auto d, int, int) {
    std::copy_n(u, 64, d);
    return in_place(d);
  });
  inverse<Mox16s>(1, true, -1, 1, [=](auto u, auto, auto d, int, int) {
    std::copy_n(u, 64, d);
    return transposed(d, d);
  });
  inverse<Mox16s>(1, false, 8, 1, [=](auto u, auto, auto d, int s, int) { return region(u, d, s); });
  inverse<Mox16s>(1, true, 8, 1, [=](auto u, auto, auto d, int s, int) { return region_transposed(u, d, s); });
  inverse<Mox16s>(2, true, 16, 1, [=](auto u, auto v, auto d, int s, int) { return pair(u, v, d, s); });
  inverse<Mox8u>(1, true, 8, 1, [=](auto u, auto, auto d, int s, int) { return samples(u, d, s); });
  inverse<Mox8u>(2, true, 16, 1, [=](auto u, auto v, auto d, int s, int) { return sample_pairs(u, v, d, s); });
  inverse<Mox8u>(1, false, 8, 2, [=](auto u, auto, auto d, int s, int f) { return inv_or_set(u, d, s, f * 256); });
  inverse<Mox8u>(2, false, 0, 4,
                 [=](auto u, auto v, auto d, int s, int f) { return inv_or_set_pair(u, v, d, s, f - 4); });
}

TEST_P(Dct, ForwardIsExact) {
  const auto plain = lib(MOX_FN(moxiDCT8x8Fwd_16s_C1));
  const auto in_place = lib(MOX_FN(moxiDCT8x8Fwd_16s_C1I));
  const auto region = lib(MOX_FN(moxiDCT8x8Fwd_16s_C1R));
  const auto pair = lib(MOX_FN(moxiDCT8x8Fwd_8u16s_C2P2));
  forward<Mox16s>(1, -1, [=](auto s, int, auto u, auto) { return plain(s, u); });
  forward<Mox16s>(1, -1, [=](auto s, int, auto u, auto) {
    std::copy_n(s, 64, u);
    return in_place(u);
  });
  forward<Mox16s>(1, 8, [=](auto s, int step, auto u, auto) { return region(s, step, u); });
  forward<Mox8u>(2, 0, [=](auto s, int step, auto u, auto v) { return pair(s, step, u, v); });
}

/// The functions of one plane of samples that other parts of the library use.
TEST_P(Dct, OnePlaneInside) {
  inverse<Mox8u>(1, false, 8, 1, [](auto u, auto, auto d, int s, int) { return moxiDCT8x8Inv_16s8u_C1R(u, d, s); });
  forward<Mox8u>(1, 8, [](auto s, int step, auto u, auto) { return moxiDCT8x8Fwd_8u16s_C1R(s, step, u); });
  Mox16s block[64]{};
  Mox8u samples[64]{};
  Call{&moxiDCT8x8Inv_16s8u_C1R, std::tuple{block, samples, 8}}.expect_order(
      {{moxStsNullPointer, set<0>(nullptr)}, {moxStsNullPointer, set<1>(nullptr)}, {moxStsBadStep, set<2>(7)}});
  Call{&moxiDCT8x8Fwd_8u16s_C1R, std::tuple{samples, 8, block}}.expect_order(
      {{moxStsNullPointer, set<0>(nullptr)}, {moxStsNullPointer, set<2>(nullptr)}, {moxStsBadStep, set<1>(-8)}});
}

/// A flat block is its DC and a block of the DC alone is flat: (DC + 4) >> 3. A cosine is its own coefficient.
TEST_P(Dct, ByHand) {
  Mox16s block[64], result[64];
  for (int value : {-256, -1, 0, 1, 100, 255}) {
    std::fill_n(block, 64, static_cast<Mox16s>(value));
    lib(MOX_FN(moxiDCT8x8Fwd_16s_C1))(block, result);
    EXPECT_EQ(result[0], 8 * value);
    EXPECT_TRUE(std::all_of(result + 1, result + 64, [](int c) { return c == 0; })) << value;
  }
  std::fill_n(block, 64, Mox16s{0});
  for (auto [dc, value] : {std::pair{3, 0}, {4, 1}, {-4, 0}, {-5, -1}, {2040, 255}, {-2048, -256}, {32767, 512}}) {
    block[0] = static_cast<Mox16s>(dc);
    lib(MOX_FN(moxiDCT8x8Inv_16s_C1))(block, result);
    EXPECT_TRUE(std::all_of(result, result + 64, [value = value](int s) { return s == value; })) << dc;
  }
  // F(1,0) = 800: 800 * sqrt(1/8) / 2 * cos(pi/16) is 138.7 in the first column, and 27.6 in the fourth.
  block[0] = 0, block[1] = 800;
  lib(MOX_FN(moxiDCT8x8Inv_16s_C1))(block, result);
  EXPECT_EQ(result[0], 139);
  EXPECT_EQ(result[56 + 3], 28);
  EXPECT_EQ(result[7], -139);
  lib(MOX_FN(moxiDCT8x8Fwd_16s_C1I))(result);
  EXPECT_NEAR(result[1], 800, 8 * 0.354 * 2.563 / 2);  // eight equal rows of samples, each rounded by up to 1/2
}

/// Each remainder that a rounding can meet: rows that are all alike leave a shift to the column pass.
TEST_P(Dct, EveryRemainder) {
  const auto floor_shift = [](long long value, int n) { return oracle::floor_divide(value, 1LL << n); };
  Mox16s block[64], result[64];
  for (int i = -24000; i < 24000; ++i) {
    const int value = i >> 3, dc = i & 7;
    std::fill_n(block, 64, Mox16s{0});
    block[0] = static_cast<Mox16s>(dc), block[1] = static_cast<Mox16s>(value);
    ASSERT_EQ(lib(MOX_FN(moxiDCT8x8Inv_16s_C1))(block, result), moxStsOk);
    for (int x = 0; x < 8; ++x) {
      const long long row = 8 * dc + floor_shift(value * oracle::dct_weight(1, x) + 512, 10);
      ASSERT_EQ(result[x], floor_shift(std::clamp(row, -32768LL, 32767LL) + 32, 6)) << value;
      ASSERT_EQ(result[56 + x], result[x]) << value;
    }
    if (dc > 0 || std::abs(value) > 1400) continue;
    for (int k = 0; k < 64; ++k) block[k] = static_cast<Mox16s>(k % 8 ? 0 : value);
    ASSERT_EQ(lib(MOX_FN(moxiDCT8x8Fwd_16s_C1))(block, result), moxStsOk);
    for (int u = 0; u < 8; ++u) {
      ASSERT_EQ(result[u], floor_shift(floor_shift(value * oracle::dct_weight(u, 0) + 1024, 11) + 2, 2)) << value;
    }
  }
}

/// The numbers of the procedure: uniform in -low..high, from its linear congruential generator.
class ProcedureRandom {
 public:
  int operator()(int low, int high) {
    state_ = state_ * 1103515245 + 12345;
    const double unit = static_cast<double>(state_ & 0x7FFFFFFE) / 0x7FFFFFFF;
    return static_cast<int>(unit * (low + high + 1)) - low;
  }

 private:
  Mox32u state_ = 1;
};

double rounded(double value, double low, double high) { return std::clamp(std::floor(value + 0.5), low, high); }

/// IEEE 1180-1990 3.2 and 3.3: 10000 blocks of each range and sign go through the defining forward transform, are
/// rounded to coefficients of 12 bits, and come back through the defining inverse and through ours.
TEST_P(Dct, AccuracyOfInverse) {
  constexpr int kBlocks = 10000;
  const auto inverse = lib(MOX_FN(moxiDCT8x8Inv_16s_C1));
  for (auto [low, high] : {std::pair{256, 255}, {5, 5}, {300, 300}}) {
    for (int sign : {1, -1}) {
      ProcedureRandom number;
      Block64<double> sum{}, square{};
      double peak = 0;
      for (int n = 0; n < kBlocks; ++n) {
        Block64<double> block;
        for (double& sample : block) sample = sign * number(low, high);
        block = oracle::dct(block, false);
        Mox16s coefficients[64], result[64];
        for (int i = 0; i < 64; ++i) block[i] = coefficients[i] = static_cast<Mox16s>(rounded(block[i], -2048, 2047));
        block = oracle::dct(block, true);
        inverse(coefficients, result);
        for (int i = 0; i < 64; ++i) {
          const double error = rounded(result[i], -256, 255) - rounded(block[i], -256, 255);
          peak = std::max(peak, std::abs(error));
          sum[i] += error, square[i] += error * error;
        }
      }
      double mean = 0, mean_square = 0;
      for (int i = 0; i < 64; ++i) {
        EXPECT_LE(std::abs(sum[i]) / kBlocks, 0.015) << "mean error at " << i;
        EXPECT_LE(square[i] / kBlocks, 0.06) << "mean square error at " << i;
        mean += sum[i] / (64 * kBlocks), mean_square += square[i] / (64 * kBlocks);
      }
      EXPECT_LE(peak, 1);
      EXPECT_LE(std::abs(mean), 0.0015);
      EXPECT_LE(mean_square, 0.02);
      EXPECT_GT(mean_square, 0) << "nothing was compared";
      if (HasFailure()) FAIL() << "range -" << low << ".." << high << " sign " << sign;
    }
  }
  Mox16s zero[64]{};
  inverse(zero, zero);
  EXPECT_TRUE(std::all_of(zero, zero + 64, [](int s) { return s == 0; }));
}

/// Forward coefficients of differences of 9 bits are within 1 of the definition, and seldom off its rounding.
TEST_P(Dct, AccuracyOfForward) {
  const auto forward = lib(MOX_FN(moxiDCT8x8Fwd_16s_C1));
  int off = 0;
  constexpr int kBlocks = 2000;
  for (int n = 0; n < kBlocks; ++n) {
    Block64<double> block;
    Mox16s samples[64];
    random_.fill(std::span<Mox16s>(samples), -256, 255);
    std::copy_n(samples, 64, block.begin());
    block = oracle::dct(block, false);
    forward(samples, samples);
    for (int i = 0; i < 64; ++i) {
      ASSERT_LT(std::abs(samples[i] - block[i]), 1);
      off += samples[i] != rounded(block[i], -2048, 2048);
    }
  }
  EXPECT_LT(off, kBlocks * 64 * 3 / 100);
}

TEST_P(Dct, Arguments) {
  const Guarded<Mox16s> a(64), b(64), wide(128);
  const Guarded<Mox8u> samples(128);
  const auto one = [&](auto symbol) {
    Call{lib(symbol), std::tuple{a.data()}}.expect_order({{moxStsNullPointer, set<0>(nullptr)}});
  };
  const auto two = [&](auto symbol) {
    Call{lib(symbol), std::tuple{a.data(), b.data()}}
        .keeps(b.data(), 128)
        .expect_order({{moxStsNullPointer, set<0>(nullptr)}, {moxStsNullPointer, set<1>(nullptr)}});
  };
  /// Pointers of the given indices, then a step; the least step is good, one less is not, nor is a negative one.
  const auto stepped = [&]<std::size_t... P>(auto symbol, auto good, auto step_at, std::index_sequence<P...>) {
    constexpr std::size_t kStep = decltype(step_at)::value;
    const int least = std::get<kStep>(good);
    Call{lib(symbol), good}
        .keeps(samples.data(), 128)
        .keeps(wide.data(), 256)
        .expect_order({{moxStsNullPointer, set<P>(nullptr)}...,
                       {moxStsBadStep, set<kStep>(least - 1)},
                       {moxStsBadStep, set<kStep>(-least)}});
  };
  constexpr std::integral_constant<std::size_t, 1> kAt1;
  constexpr std::integral_constant<std::size_t, 2> kAt2;
  constexpr std::integral_constant<std::size_t, 3> kAt3;
  constexpr std::index_sequence<0, 1> kFirstTwo;
  constexpr std::index_sequence<0, 1, 2> kFirstThree;
  one(MOX_FN(moxiDCT8x8Fwd_16s_C1I));
  one(MOX_FN(moxiDCT8x8Inv_16s_C1I));
  two(MOX_FN(moxiDCT8x8Fwd_16s_C1));
  two(MOX_FN(moxiDCT8x8Inv_16s_C1));
  two(MOX_FN(moxiDCT8x8Inv_AANTransposed_16s_C1));
  stepped(MOX_FN(moxiDCT8x8Fwd_16s_C1R), std::tuple{a.data(), 16, wide.data()}, kAt1, std::index_sequence<0, 2>());
  stepped(MOX_FN(moxiDCT8x8Inv_16s_C1R), std::tuple{a.data(), wide.data(), 16}, kAt2, kFirstTwo);
  stepped(MOX_FN(moxiDCT8x8Inv_AANTransposed_16s_C1R), std::tuple{a.data(), wide.data(), 16}, kAt2, kFirstTwo);
  stepped(MOX_FN(moxiDCT8x8Inv_AANTransposed_16s8u_C1R), std::tuple{a.data(), samples.data(), 8}, kAt2, kFirstTwo);
  stepped(MOX_FN(moxiDCT8x8InvOrSet_16s8u_C1R), std::tuple{a.data(), samples.data(), 8, 0}, kAt2, kFirstTwo);
  stepped(MOX_FN(moxiDCT8x8Inv_AANTransposed_16s_P2C2R), std::tuple{a.data(), b.data(), wide.data(), 32}, kAt3,
          kFirstThree);
  stepped(MOX_FN(moxiDCT8x8Inv_AANTransposed_16s8u_P2C2R), std::tuple{a.data(), b.data(), samples.data(), 16}, kAt3,
          kFirstThree);
  Call{lib(MOX_FN(moxiDCT8x8Fwd_8u16s_C2P2)), std::tuple{samples.data(), 16, a.data(), b.data()}}
      .keeps(a.data(), 128)
      .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                     {moxStsNullPointer, set<2>(nullptr)},
                     {moxStsNullPointer, set<3>(nullptr)}});
  Call{lib(MOX_FN(moxiDCT8x8InvOrSet_16s8u_P2C2)), std::tuple{a.data(), b.data(), samples.data(), 16, 3}}
      .keeps(samples.data(), 128)
      .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                     {moxStsNullPointer, set<1>(nullptr)},
                     {moxStsNullPointer, set<2>(nullptr)}});
}

MOX_INSTANTIATE_GENERATIONS(Dct);

}  // namespace
}  // namespace mox::test
