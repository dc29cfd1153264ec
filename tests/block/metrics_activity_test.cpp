#include <gtest/gtest.h>

#include <utility>

#include "block/block_planes.hpp"
#include "moxvc.h"
#include "oracle/metrics.hpp"
#include "support/library.hpp"
#include "support/null_pointers.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

class Activity : public PerGeneration {
 protected:
  /// Calls visit with each of the frame and field functions and a block of its samples.
  template <class Visit>
  void each(Visit visit) const {
    visit(lib(MOX_FN(moxiFrameFieldSAD16x16_8u32s_C1R)), Mox8u());
    visit(lib(MOX_FN(moxiFrameFieldSAD16x16_16s32s_C1R)), Mox16s());
  }
};

using Sums = std::pair<Mox32s, Mox32s>;
template <class Function, class T>
Sums frame_and_field(Function* function, const Block<T>& block) {
  const Guarded<Mox32s> frame({-1}), field({-1});
  EXPECT_EQ(function(block.data(), block.step(), frame.data(), field.data()), moxStsOk);
  return {frame[0], field[0]};
}

/// The SAD of `count` rows from `first` with those `distance` further down.
template <class T>
std::int64_t rows_apart(const Block<T>& block, int first, int count, int distance) {
  return oracle::Differences(
             16, count, [&](int x, int y) { return block.get(x, first + y); },
             [&](int x, int y) { return block.get(x, first + y + distance); })
      .power_sum(1);
}

TEST_P(Activity, EqualsOracle) {
  Random random;
  each([&]<class T>(auto function, T) {
    for (int round = 0; round < 400; ++round) {
      const Block<T> block(16, 16, random);
      const int reach = sizeof(T) == 1 ? 255 : round % 2 ? 32767 : 300;
      block.fill(kPatterns[random.bits() % 7], random, sizeof(T) == 1 ? 0 : -reach - 1, reach);
      const std::int64_t frame = rows_apart(block, 0, 7, 1) + rows_apart(block, 8, 7, 1);
      const std::int64_t field = rows_apart(block, 0, 14, 2);
      ASSERT_EQ(frame_and_field(function, block), Sums(frame % 65536, field % 65536)) << sizeof(T) << " " << round;
    }
  });
}

TEST_P(Activity, StripedBlocks) {
  struct Case {
    int rows, value;  ///< groups of so many rows are 0 and `value` in turn
    Sums bytes, words;
  };
  // 16 samples a pair of rows; 57120 = 14 pairs of 16 * 255; words: 14 * 16 * 20000 and 2 * 16 * 20000 modulo 65536
  const Case cases[] = {{8, 255, {0, 8160}, {0, 8160}},           {1, 255, {57120, 0}, {57120, 0}},
                        {2, 255, {24480, 57120}, {24480, 57120}}, {1, 20000, {}, {4480000 % 65536, 0}},
                        {8, 20000, {}, {0, 640000 % 65536}},      {8, -32768, {}, {0, 0}}};
  each([&]<class T>(auto function, T) {
    for (const Case& c : cases) {
      if (sizeof(T) == 1 && c.value != 255) continue;
      const Block<T> block(16, 16, 64, Placement::at_end());
      for (int i = 0; i < 256; ++i) block.set(i % 16, i / 16, i / 16 / c.rows % 2 ? c.value : 0);
      EXPECT_EQ(frame_and_field(function, block), sizeof(T) == 1 ? c.bytes : c.words) << c.rows << " " << c.value;
    }
  });
}

TEST_P(Activity, DifferencesWithTheirSum) {
  Random random;
  const auto function = lib(MOX_FN(moxiSubSAD8x8_8u16s_C1R));
  for (int round = 0; round < 1000; ++round) {
    const Block<Mox8u> a(8, 8, random), b(8, 8, random);
    a.fill(kPatterns[random.bits() % 7], random, 0, 255), b.fill(kPatterns[random.bits() % 7], random, 0, 255);
    const Block<Mox16s> stored(8, 8, random), expected = stored.twin();
    for (int i = 0; i < 64; ++i) expected.set(i % 8, i / 8, a.get(i % 8, i / 8) - b.get(i % 8, i / 8));
    const Guarded<Mox32s> sum({-1});
    ASSERT_EQ(function(a.data(), a.step(), b.data(), b.step(), stored.data(), stored.step(), sum.data()), moxStsOk);
    ASSERT_TRUE(stored == expected) << "round " << round << " step " << stored.step();
    const auto sample = [](const Block<Mox8u>& block) { return [&](int x, int y) { return block.get(x, y); }; };
    ASSERT_EQ(sum[0], oracle::Differences(8, 8, sample(a), sample(b)).power_sum(1)) << "round " << round;
  }
}

TEST_P(Activity, NullPointers) {
  expect_null_pointers(lib(MOX_FN(moxiFrameFieldSAD16x16_8u32s_C1R)), 32, 1200);
  expect_null_pointers(lib(MOX_FN(moxiFrameFieldSAD16x16_16s32s_C1R)), 32, 1200);
  expect_null_pointers(lib(MOX_FN(moxiSubSAD8x8_8u16s_C1R)), 32, 1200);
}

MOX_INSTANTIATE_GENERATIONS(Activity);

}  // namespace
}  // namespace mox::test
