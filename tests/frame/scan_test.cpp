#include "moxvc/scan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <vector>

#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

/// The zigzag by its definition: diagonals of growing x + y, walked upwards when the sum is even, downwards when odd.
std::vector<int> zigzag_by_walk() {
  std::vector<int> order;
  for (int sum = 0; sum < 15; ++sum) {
    for (int i = 0; i <= sum; ++i) {
      const int x = sum % 2 ? sum - i : i, y = sum - x;
      if (x < 8 && y < 8) order.push_back(8 * y + x);
    }
  }
  return order;
}

class Scan : public PerGeneration {
 protected:
  /// The raster position that each scan index comes from, as the function shows it.
  std::vector<int> order(int selector) {
    Guarded<Mox16s> block(64), scanned(64);
    for (int i = 0; i < 64; ++i) block[i] = static_cast<Mox16s>(i + 1);
    EXPECT_EQ(lib(MOX_FN(moxiScanFwd_16s_C1))(block.data(), scanned.data(), 64, selector), moxStsOk);
    std::vector<int> positions;
    for (Mox16s value : scanned) positions.push_back(value - 1);
    return positions;
  }
};

TEST_P(Scan, Orders) {
  EXPECT_EQ(order(0), zigzag_by_walk());
  for (int other : {-1, 3, 1000}) EXPECT_EQ(order(other), order(0)) << other;
  // The standard's alternate scans: starts, ends and the turn between the halves.
  const auto vertical = order(1), horizontal = order(2);
  const std::vector<int> vertical_head = {0, 8, 16, 24, 1, 9, 2, 10, 17, 25, 32, 40, 48, 56, 57, 49};
  const std::vector<int> horizontal_head = {0, 1, 2, 3, 8, 9, 16, 17, 10, 11, 4, 5, 6, 7, 15, 14};
  EXPECT_TRUE(std::equal(vertical_head.begin(), vertical_head.end(), vertical.begin()));
  EXPECT_TRUE(std::equal(horizontal_head.begin(), horizontal_head.end(), horizontal.begin()));
  EXPECT_EQ(std::vector<int>(vertical.end() - 4, vertical.end()), (std::vector<int>{39, 47, 55, 63}));
  EXPECT_EQ(std::vector<int>(horizontal.end() - 4, horizontal.end()), (std::vector<int>{60, 61, 62, 63}));
}

TEST_P(Scan, ForwardStopsAfterCountBelowTwenty) {
  Random random;
  for (int round = 0; round < 200; ++round) {
    const int selector = random(0, 2), count = random(1, 64);
    const auto positions = order(selector);
    Guarded<Mox16s> block(64), scanned(64);
    fill(std::span(block.begin(), 64), random.chance(0.5) ? Pattern::kSparse : Pattern::kRandom, random);
    ASSERT_EQ(lib(MOX_FN(moxiScanFwd_16s_C1))(block.data(), scanned.data(), count, selector), moxStsOk);
    int seen = 0;
    for (int i = 0; i < 64; ++i) {
      const Mox16s value = block[positions[i]];
      const bool dropped = count < 20 && seen >= count;
      ASSERT_EQ(scanned[i], dropped ? 0 : value) << "index " << i << " count " << count;
      seen += value != 0;
    }
  }
}

TEST_P(Scan, InverseUndoesForward) {
  Random random;
  for (int last = 0; last < 64; ++last) {
    const int selector = random(0, 2);
    Guarded<Mox16s> scanned(last + 1), block(64);
    for (Mox16s& value : scanned) value = static_cast<Mox16s>(random(-32768, 32767));
    ASSERT_EQ(lib(MOX_FN(moxiScanInv_16s_C1))(scanned.data(), block.data(), last, selector), moxStsOk);
    std::map<int, Mox16s> expected;
    const auto positions = order(selector);
    for (int i = 0; i <= last; ++i) expected[positions[i]] = scanned[i];
    for (int i = 0; i < 64; ++i) ASSERT_EQ(block[i], expected.count(i) ? expected[i] : 0) << i;
  }
}

TEST_P(Scan, Arguments) {
  Guarded<Mox16s> src(64), dst(64);
  Call{lib(MOX_FN(moxiScanFwd_16s_C1)), std::tuple{src.data(), dst.data(), 64, 0}}
      .keeps(dst.data(), 128)
      .expect_order(
          {{moxStsNullPointer, set<0>(nullptr)}, {moxStsNullPointer, set<1>(nullptr)}, {moxStsOutOfRange, set<2>(0)}});
  Call{lib(MOX_FN(moxiScanFwd_16s_C1)), std::tuple{src.data(), dst.data(), 1, 0}}
      .keeps(dst.data(), 128)
      .expect_order({{moxStsOutOfRange, set<2>(65)}});
  Call{lib(MOX_FN(moxiScanInv_16s_C1)), std::tuple{src.data(), dst.data(), 63, 0}}
      .keeps(dst.data(), 128)
      .expect_order(
          {{moxStsNullPointer, set<0>(nullptr)}, {moxStsNullPointer, set<1>(nullptr)}, {moxStsOutOfRange, set<2>(-1)}});
  Call{lib(MOX_FN(moxiScanInv_16s_C1)), std::tuple{src.data(), dst.data(), 0, 0}}
      .keeps(dst.data(), 128)
      .expect_order({{moxStsOutOfRange, set<2>(64)}});
}

MOX_INSTANTIATE_GENERATIONS(Scan);

}  // namespace
}  // namespace mox::test
