#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <vector>

#include "block/block_planes.hpp"
#include "moxvc.h"
#include "oracle/metrics.hpp"
#include "support/call.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

using SumsFunction = decltype(moxiSAD8x8xN_8u16u_C1R);
using SmallestFunction = decltype(moxiSAD8x8xNI_8u16u_C1R);

struct Entry {
  const char* name;
  int size;
  /// The index is left alone by functions that have none.
  std::function<MoxStatus(const Block<Mox8u>&, const Block<Mox8u>&, Mox16u* sums, int count, Mox32s* index)> call;
  bool hasIndex = false;
};

class Candidates : public PerGeneration {
 protected:
  Entry entry(Symbol<SumsFunction> symbol, int size) const {
    return {symbol.name, size, [f = lib(symbol)](const auto& src, const auto& ref, Mox16u* sums, int count, Mox32s*) {
              return f(src.data(), src.step(), ref.data(), ref.step(), sums, count);
            }};
  }
  Entry entry(Symbol<SmallestFunction> symbol, int size) const {
    return {symbol.name, size,
            [f = lib(symbol)](const auto& src, const auto& ref, Mox16u* sums, int count, Mox32s* index) {
              return f(src.data(), src.step(), ref.data(), ref.step(), sums, count, index);
            },
            true};
  }
  std::vector<Entry> entries() const {
    return {entry(MOX_FN(moxiSAD16x16xN_8u16u_C1R), 16),  entry(MOX_FN(moxiSAD8x8xN_8u16u_C1R), 8),
            entry(MOX_FN(moxiSAD4x4xN_8u16u_C1R), 4),     entry(MOX_FN(moxiSAD2x2xN_8u16u_C1R), 2),
            entry(MOX_FN(moxiSAD16x16xNI_8u16u_C1R), 16), entry(MOX_FN(moxiSAD8x8xNI_8u16u_C1R), 8),
            entry(MOX_FN(moxiSAD4x4xNI_8u16u_C1R), 4)};
  }
};

/// Columns of one value each, so that sums spread over the whole range.
void fill_columns(const Block<Mox8u>& block, int width, int height, Random& random) {
  for (int x = 0; x < width; ++x) {
    const int value = random(0, 2) * random(100, 127);
    for (int y = 0; y < height; ++y) block.set(x, y, value);
  }
}

TEST_P(Candidates, EqualOracle) {
  Random random;
  for (const Entry& entry : entries()) {
    const int n = entry.size;
    for (int round = 0; round < 300; ++round) {
      const int asked = random(8, 47), count = asked / 8 * 8, width = n + count;
      const Block<Mox8u> source(n, n, random);
      const bool even = random.chance(0.4);  // whatever alignment could make easier
      const Block<Mox8u> reference =
          even ? Block<Mox8u>(width, n, 64, Placement::aligned(random(0, 15))) : Block<Mox8u>(width, n, random);
      source.fill(kPatterns[random.bits() % 7], random, 0, 255);
      reference.fill(kPatterns[random.bits() % 7], random, 0, 255);
      if (random.chance(0.3)) fill_columns(reference, width, n, random);
      std::vector<std::int64_t> sums;
      for (int k = 0; k < count; ++k) {
        const auto original = [&](int x, int y) { return source.get(x, y); };
        const auto candidate = [&](int x, int y) { return reference.get(k + x, y); };
        sums.push_back(oracle::Differences(n, n, original, candidate).power_sum(1));
      }
      const Guarded<Mox16u> stored(static_cast<std::size_t>(count), even ? Placement::aligned(0) : Placement::at_end());
      Mox32s index = -1;
      ASSERT_EQ(entry.call(source, reference, stored.data(), asked, &index), moxStsOk);
      ASSERT_EQ(std::vector<std::int64_t>(stored.begin(), stored.end()), sums) << entry.name << " round " << round;
      const auto smallest = std::min_element(sums.begin(), sums.end()) - sums.begin();
      ASSERT_EQ(index, entry.hasIndex ? smallest : -1) << entry.name << " round " << round;
    }
  }
}

/// The best of 24 candidates at each place in turn, and again as good from there on.
TEST_P(Candidates, FirstOfEqualMinima) {
  for (const Entry& entry : entries()) {
    if (!entry.hasIndex) continue;
    const int n = entry.size;
    const Block<Mox8u> source(n, n, 16, Placement::at_end()), reference(n + 24, n, 48, Placement::at_end());
    Random random;
    source.fill(Pattern::kLow, random, 255, 255);
    for (int best = 0; best < 24; ++best) {
      for (int other = best; other < 24; ++other) {  // flat areas of 255 begin at columns `best` and `other`
        reference.fill(Pattern::kLow, random, 0, 0);
        for (int y = 0; y < n; ++y) {
          for (int x = 0; x < n; ++x) reference.set(best + x, y, 255), reference.set(other + x, y, 255);
        }
        Mox16u sums[24];
        Mox32s index = -1;
        EXPECT_EQ(entry.call(source, reference, sums, 24, &index), moxStsOk);
        EXPECT_EQ(index, best) << entry.name;
        EXPECT_EQ(sums[best] + sums[other], 0) << entry.name;
      }
    }
  }
}

TEST_P(Candidates, ExtremesAndDroppedCandidates) {
  Random random;
  for (const Entry& entry : entries()) {
    const int n = entry.size;
    const Block<Mox8u> source(n, n, 16, Placement::at_end()), reference(n + 8, n, 48, Placement::at_end());
    source.fill(Pattern::kLow, random, 255, 255);
    reference.fill(Pattern::kLow, random, 0, 0);
    for (int count : {8, 9, 15}) {
      std::vector<Mox16u> sums(16, 4321), expected(8, static_cast<Mox16u>(n * n * 255));
      expected.resize(16, 4321);
      Mox32s index = -1;
      EXPECT_EQ(entry.call(source, reference, sums.data(), count, &index), moxStsOk);
      EXPECT_EQ(sums, expected) << entry.name;
      EXPECT_EQ(index, entry.hasIndex ? 0 : -1) << entry.name;
    }
  }
}

TEST_P(Candidates, Arguments) {
  const std::vector<Mox8u> samples(16 * 24, 3);
  Mox16u sums[8] = {1, 2, 3};
  Mox32s index = -1;
  const Mox8u* const p = samples.data();
  for (int bad : {7, 0, -1, -8, -100, std::numeric_limits<int>::min()}) {
    for (auto symbol : {MOX_FN(moxiSAD16x16xN_8u16u_C1R), MOX_FN(moxiSAD8x8xN_8u16u_C1R),
                        MOX_FN(moxiSAD4x4xN_8u16u_C1R), MOX_FN(moxiSAD2x2xN_8u16u_C1R)}) {
      Call{lib(symbol), std::tuple{p, 16, p, 24, sums, 8}}
          .keeps(sums, sizeof sums)
          .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                         {moxStsNullPointer, set<2>(nullptr)},
                         {moxStsNullPointer, set<4>(nullptr)},
                         {moxStsBadSize, set<5>(bad)}});
    }
    for (auto symbol :
         {MOX_FN(moxiSAD16x16xNI_8u16u_C1R), MOX_FN(moxiSAD8x8xNI_8u16u_C1R), MOX_FN(moxiSAD4x4xNI_8u16u_C1R)}) {
      Call{lib(symbol), std::tuple{p, 16, p, 24, sums, 8, &index}}
          .keeps(sums, sizeof sums)
          .keeps(&index, sizeof index)
          .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                         {moxStsNullPointer, set<2>(nullptr)},
                         {moxStsNullPointer, set<4>(nullptr)},
                         {moxStsNullPointer, set<6>(nullptr)},
                         {moxStsBadSize, set<5>(bad)}});
    }
  }
}

MOX_INSTANTIATE_GENERATIONS(Candidates);

}  // namespace
}  // namespace mox::test
