#include <gtest/gtest.h>

#include <algorithm>

#include "moxvc.h"
#include "oracle/h261.hpp"
#include "support/call.hpp"
#include "support/library.hpp"

namespace mox::test {
namespace {

class H261Filter : public PerGeneration {
 protected:
  MoxStatus filter(const Plane<Mox8u>& src, const Plane<Mox8u>& dst) const {
    return lib(MOX_FN(moxiFilter8x8_H261_8u_C1R))(src.at(0, 0), src.step(), dst.at(0, 0), dst.step());
  }
};

TEST_P(H261Filter, EqualsOracle) {
  Random random;
  constexpr int kSteps[] = {8, 9, 8, 64, -8, -19};
  constexpr Placement kPlacements[] = {Placement::at_end(), Placement::at_start(), Placement::aligned(3)};
  for (Pattern pattern : kPatterns) {
    for (int round = 0; round < 300; ++round) {
      const Plane<Mox8u> src(8, 8, kSteps[random.bits() % 6], kPlacements[random.bits() % 3]);
      const int step = kSteps[random.bits() % 6];
      const Plane<Mox8u> dst(8, 8, step, kPlacements[random.bits() % 3]), expected(8, 8, step);
      fill(src.memory(), pattern, random);
      for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 8; ++x) {
          expected(x, y) =
              static_cast<Mox8u>(oracle::h261_filtered(x, y, [&](int column, int row) { return src(column, row); }));
        }
      }
      const auto before = src.copy();
      ASSERT_EQ(filter(src, dst), moxStsOk);
      ASSERT_EQ(dst.copy(), expected.copy()) << name_of(pattern);
      ASSERT_EQ(src.copy(), before);
      const Plane<Mox8u> inPlace(8, 8, src.step());
      inPlace.assign(src);
      ASSERT_EQ(filter(inPlace, inPlace), moxStsOk);
      for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 8; ++x) ASSERT_EQ(inPlace(x, y), dst(x, y)) << x << ", " << y;
      }
    }
  }
}

/// One sample of 200 by hand: inside, beside a corner, on the border, in the corner.
TEST_P(H261Filter, LiteralImpulses) {
  struct Case {
    int x, y, toX, toY, value;
  };
  for (const Case& c : {Case{3, 3, 3, 3, 50}, Case{3, 3, 4, 3, 25}, Case{3, 3, 2, 2, 13}, Case{1, 1, 0, 1, 0},
                        Case{1, 1, 0, 0, 0}, Case{3, 0, 3, 0, 100}, Case{3, 0, 2, 0, 50}, Case{3, 0, 3, 1, 25},
                        Case{3, 0, 4, 1, 13}, Case{0, 3, 0, 3, 100}, Case{0, 3, 1, 4, 13}, Case{7, 7, 7, 7, 200},
                        Case{7, 7, 6, 7, 50}, Case{7, 7, 7, 6, 50}, Case{7, 7, 6, 6, 13}}) {
    const Plane<Mox8u> src(8, 8, 8), dst(8, 8, 8);
    std::ranges::fill(src.memory(), Mox8u{0});
    src(c.x, c.y) = 200;
    ASSERT_EQ(filter(src, dst), moxStsOk);
    EXPECT_EQ(dst(c.toX, c.toY), c.value) << c.x << ", " << c.y << " to " << c.toX << ", " << c.toY;
  }
}

TEST_P(H261Filter, Arguments) {
  Mox8u src[64] = {}, dst[64] = {1, 2, 3};
  Call{lib(MOX_FN(moxiFilter8x8_H261_8u_C1R)), std::tuple{src, 8, dst, 8}}.keeps(dst, 64).expect_order(
      {{moxStsNullPointer, set<0>(nullptr)}, {moxStsNullPointer, set<2>(nullptr)}});
}

MOX_INSTANTIATE_GENERATIONS(H261Filter);

}  // namespace
}  // namespace mox::test
