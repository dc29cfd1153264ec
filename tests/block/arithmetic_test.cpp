#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "block/block_planes.hpp"
#include "moxvc.h"
#include "oracle/half_pel.hpp"
#include "support/library.hpp"
#include "support/null_pointers.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

/// An element of the result, given those of both sources; in place the second is the old element.
using Formula = int (*)(int, int);
int first(int a, int) { return a; }
int added(int a, int b) { return oracle::sample_of(oracle::signed_16_bits(std::int64_t{a} + b)); }
int subtracted(int a, int b) { return oracle::signed_16_bits(std::int64_t{a} - b); }

template <class A, class B, class D>
struct Entry {
  const char* name;
  int size;
  Formula formula;
  bool inPlace;
  std::function<MoxStatus(const A*, int, const B*, int, D*, int)> call;
};

class BlockArithmetic : public PerGeneration {
 protected:
  template <class A, class Function>
  auto in_place(Symbol<Function> symbol, int size, Formula formula) const {
    const auto call = [f = lib(symbol)](const A* a, int aStep, const Mox8u*, int, Mox8u* d, int dStep) {
      return f(a, aStep, d, dStep);
    };
    return Entry<A, Mox8u, Mox8u>{symbol.name, size, formula, true, call};
  }
  template <class T, class D>
  auto of_two(Symbol<MoxStatus(const T*, Mox32s, const T*, Mox32s, D*, Mox32s)> symbol, int size,
              Formula formula) const {
    return Entry<T, T, D>{symbol.name, size, formula, false, lib(symbol)};
  }

  /// Calls visit with an entry for each function on two blocks.
  template <class Visit>
  void each(Visit visit) const {
    visit(in_place<Mox8u>(MOX_FN(moxiCopy8x8_8u_C1R), 8, first));
    visit(in_place<Mox8u>(MOX_FN(moxiCopy16x16_8u_C1R), 16, first));
    visit(in_place<Mox16s>(MOX_FN(moxiAdd8x8_16s8u_C1IRS), 8, added));
    visit(in_place<Mox8u>(MOX_FN(moxiAverage8x8_8u_C1IR), 8, oracle::mean));
    visit(in_place<Mox8u>(MOX_FN(moxiAverage16x16_8u_C1IR), 16, oracle::mean));
    visit(of_two(MOX_FN(moxiAverage8x8_8u_C1R), 8, oracle::mean));
    visit(of_two(MOX_FN(moxiAverage16x16_8u_C1R), 16, oracle::mean));
    visit(of_two(MOX_FN(moxiSub4x4_8u16s_C1R), 4, subtracted));
    visit(of_two(MOX_FN(moxiSub8x8_8u16s_C1R), 8, subtracted));
    visit(of_two(MOX_FN(moxiSub16x16_8u16s_C1R), 16, subtracted));
    visit(of_two(MOX_FN(moxiSub4x4_16u16s_C1R), 4, subtracted));
    visit(of_two(MOX_FN(moxiSub8x8_16u16s_C1R), 8, subtracted));
  }
};

template <class T>
void fill_any(const Block<T>& block, Random& random) {
  const Pattern pattern = random.chance(0.5) ? Pattern::kRandom : kPatterns[random.bits() % 7];
  // Half of the residuals are small or near the wrap.
  const int limits[][2] = {{-300, 300}, {32400, 32767}};
  const auto& narrow = limits[random.bits() % 2];
  const bool any = !std::is_same_v<T, Mox16s> || random.chance(0.5);
  block.fill(pattern, random, any ? std::numeric_limits<T>::min() : narrow[0],
             any ? std::numeric_limits<T>::max() : narrow[1]);
}

TEST_P(BlockArithmetic, EqualsOracle) {
  Random random;
  each([&]<class A, class B, class D>(const Entry<A, B, D>& entry) {
    const int n = entry.size;
    for (int round = 0; round < 300 && !HasFailure(); ++round) {
      const Block<A> a(n, n, random);
      const Block<B> b(n, n, random);
      const Block<D> d(n, n, random);
      fill_any(a, random), fill_any(b, random), fill_any(d, random);
      const Block<D> expected = d.twin();
      for (int i = 0; i < n * n; ++i) {
        const int x = i % n, y = i / n, old = entry.inPlace ? expected.get(x, y) : b.get(x, y);
        expected.set(x, y, entry.formula(a.get(x, y), old));
      }
      ASSERT_EQ(entry.call(a.data(), a.step(), b.data(), b.step(), d.data(), d.step()), moxStsOk);
      EXPECT_TRUE(d == expected) << entry.name << ", steps " << a.step() << ' ' << b.step() << ' ' << d.step();
    }
  });
}

TEST_P(BlockArithmetic, AddsAConstant) {
  Random random;
  for (int round = 0; round < 600 && !HasFailure(); ++round) {
    const int extremes[] = {-32768, -257, -256, -1, 0, 1, 255, 32512, 32513, 32767};
    const int value = round % 2 ? random(-300, 300) : extremes[random.bits() % std::size(extremes)];
    const Block<Mox8u> d(8, 8, random);
    fill_any(d, random);
    const Block<Mox8u> expected = d.twin();
    for (int i = 0; i < 64; ++i) expected.set(i % 8, i / 8, added(value, expected.get(i % 8, i / 8)));
    ASSERT_EQ(lib(MOX_FN(moxiAddC8x8_16s8u_C1IR))(static_cast<Mox16s>(value), d.data(), d.step()), moxStsOk);
    EXPECT_TRUE(d == expected) << "value " << value << " step " << d.step();
  }
}

TEST_P(BlockArithmetic, ByHand) {
  const Block<Mox8u> sample(8, 8, 8, Placement::at_end()), other = sample.twin(), mean = sample.twin();
  const Block<Mox16s> residual(8, 8, 16, Placement::at_end());
  const struct {
    int sample, value, sum;
  } kSums[] = {{200, 32767, 0}, {1, 32767, 0},  {0, 32767, 255}, {255, -256, 0}, {0, 255, 255},   {255, 255, 255},
               {200, 55, 255},  {200, 54, 254}, {7, -7, 0},      {7, -6, 1},     {255, -32768, 0}};
  for (const auto& c : kSums) {
    sample.fill(c.sample), residual.fill(c.value);
    lib(MOX_FN(moxiAdd8x8_16s8u_C1IRS))(residual.data(), 16, sample.data(), 8);
    EXPECT_EQ(sample.get(7, 7), c.sum) << c.sample << " + " << c.value;
    sample.set(3, 4, c.sample);
    lib(MOX_FN(moxiAddC8x8_16s8u_C1IR))(static_cast<Mox16s>(c.value), sample.data(), 8);
    EXPECT_EQ(sample.get(3, 4), c.sum) << c.sample << " + constant " << c.value;
  }
  const int kMeans[][3] = {{0, 1, 1}, {254, 255, 255}, {255, 0, 128}, {7, 7, 7}};
  for (const auto& c : kMeans) {
    sample.set(0, 7, c[0]), other.set(0, 7, c[1]);
    lib(MOX_FN(moxiAverage8x8_8u_C1R))(sample.data(), 8, other.data(), 8, mean.data(), 8);
    EXPECT_EQ(mean.get(0, 7), c[2]);
  }
  const int kDifferences[][3] = {{40000, 1, -25537}, {0, 1, -1}, {0, 65535, 1}, {65535, 0, -1}, {32768, 0, -32768}};
  for (const auto& c : kDifferences) {
    const Block<Mox16u> a(4, 4, 8, Placement::at_end()), b = a.twin();
    a.set(3, 3, c[0]), b.set(3, 3, c[1]);
    lib(MOX_FN(moxiSub4x4_16u16s_C1R))(a.data(), 8, b.data(), 8, residual.data(), 8);
    EXPECT_EQ(residual.data()[15], c[2]) << c[0] << " - " << c[1];
  }
}

TEST_P(BlockArithmetic, NullPointers) {
  const auto check = [&](auto symbol) {
    SCOPED_TRACE(symbol.name);
    expect_null_pointers(lib(symbol), 64, 16 * 64);
  };
  check(MOX_FN(moxiCopy8x8_8u_C1R)), check(MOX_FN(moxiCopy16x16_8u_C1R));
  check(MOX_FN(moxiAdd8x8_16s8u_C1IRS)), check(MOX_FN(moxiAddC8x8_16s8u_C1IR));
  check(MOX_FN(moxiAverage8x8_8u_C1IR)), check(MOX_FN(moxiAverage16x16_8u_C1IR));
  check(MOX_FN(moxiAverage8x8_8u_C1R)), check(MOX_FN(moxiAverage16x16_8u_C1R));
  check(MOX_FN(moxiSub4x4_8u16s_C1R)), check(MOX_FN(moxiSub8x8_8u16s_C1R)), check(MOX_FN(moxiSub16x16_8u16s_C1R));
  check(MOX_FN(moxiSub4x4_16u16s_C1R)), check(MOX_FN(moxiSub8x8_16u16s_C1R));
}

MOX_INSTANTIATE_GENERATIONS(BlockArithmetic);

}  // namespace
}  // namespace mox::test
