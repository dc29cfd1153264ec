#include <gtest/gtest.h>

#include <vector>

#include "moxvc.h"
#include "oracle/h263_resampling.hpp"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

class H263Motion : public PerGeneration {
 protected:
  auto function() const { return lib(MOX_FN(moxiAddBackPredPB_H263_8u_C1R)); }
};

/// What is inside follows from ranges worked out beforehand.
TEST_P(H263Motion, EqualsOracle) {
  Random random;
  for (int round = 0; round < 6000; ++round) {
    const int block = round % 6, size = block < 4 ? 16 : 8, sign = random(0, 1) ? 1 : -1;
    const int x = block < 4 ? 8 * (block % 2) : 0, y = block < 4 ? 8 * (block / 2) : 0;
    MoxiPoint vector = {random(-40, 40), random(-6, 6)};
    if (random(0, 1)) std::swap(vector.x, vector.y);
    const Placement placement = round & 1 ? Placement::at_end() : Placement::at_start();
    const Plane<Mox8u> forward(8, 8, sign * 9, placement), expected(8, 8, sign * 9, placement);
    const Plane<Mox8u> macroblock(size, size, -sign * (size + random(0, 3)), placement);
    const Plane<Mox8u> apart(8, 8, sign * 9, placement);
    const Plane<Mox8u>& out = random(0, 1) ? forward : apart;
    for (const auto* plane : {&apart, &forward}) fill(plane->memory(), kPatterns[random.bits() % 7], random);
    random.fill(macroblock.memory());
    expected.assign(out);
    const auto columns = oracle::backward_range(x, size, vector.x), rows = oracle::backward_range(y, size, vector.y);
    for (int row = 0; row < 8; ++row) {
      for (int column = 0; column < 8; ++column) {
        const bool inside = row >= rows[0] && row <= rows[1] && column >= columns[0] && column <= columns[1];
        const int backward =
            oracle::interpolated(macroblock, -1, 2 * (x + column) + vector.x, 2 * (y + row) + vector.y, 2, 2);
        const int f = forward(column, row);
        expected(column, row) = static_cast<Mox8u>(inside ? (f + backward) / 2 : f);
      }
    }
    ASSERT_EQ(function()(forward.at(0, 0), forward.step(), macroblock.at(0, 0), macroblock.step(), out.at(0, 0),
                         out.step(), block, vector),
              moxStsOk);
    ASSERT_EQ(out.copy(), expected.copy()) << "block " << block << ", vector " << vector.x << ", " << vector.y;
  }
}

/// By hand: forward samples of 11, a macroblock of 20 in column 0, 23 in column 1, 0 elsewhere.
TEST_P(H263Motion, LiteralSamples) {
  std::vector<Mox8u> forward(64, 11), macroblock(256), out(64);
  for (std::size_t y = 0; y < 16; ++y) macroblock[16 * y] = 20, macroblock[16 * y + 1] = 23;
  const auto first_row = [&](int block, MoxiPoint vector) {
    EXPECT_EQ(function()(forward.data(), 8, macroblock.data(), 16, out.data(), 8, block, vector), moxStsOk);
    return std::vector<Mox8u>(out.begin(), out.begin() + 8);
  };
  using Row = std::vector<Mox8u>;
  EXPECT_EQ(first_row(0, {0, 0}), (Row{15, 17, 5, 5, 5, 5, 5, 5}));     // 31 / 2, 34 / 2
  EXPECT_EQ(first_row(0, {1, 1}), (Row{16, 11, 5, 5, 5, 5, 5, 5}));     // 22 (up), 12 (up)
  EXPECT_EQ(first_row(2, {-3, 0}), (Row{11, 11, 16, 11, 5, 5, 5, 5}));  // two columns lie outside
  EXPECT_EQ(first_row(1, {1, 0}), (Row{5, 5, 5, 5, 5, 5, 5, 11}));      // the last one, by its right neighbour
  EXPECT_EQ(first_row(3, {0, -16}), (Row{5, 5, 5, 5, 5, 5, 5, 5}));
  EXPECT_EQ(first_row(4, {6, 0}), (Row{5, 5, 5, 5, 5, 11, 11, 11}));
  for (int away : {-17, 33, 1 << 30, -(1 << 30), 0x7FFFFFFF, -0x7FFFFFFF - 1}) {
    EXPECT_EQ(first_row(0, {0, away}), Row(8, 11)) << away;
    EXPECT_EQ(first_row(4, {away, 0}), Row(8, 11)) << away;
  }
}

TEST_P(H263Motion, Arguments) {
  std::vector<Mox8u> forward(64, 1), macroblock(256, 9), out(64);
  for (int block : {-1, 6}) {
    Call(function(), std::tuple{forward.data(), 8, macroblock.data(), 16, out.data(), 8, 5, MoxiPoint{0, 0}})
        .keeps(out.data(), out.size())
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set<2>(nullptr)},
                       {moxStsNullPointer, set<4>(nullptr)},
                       {moxStsOutOfRange, set<6>(block)}});
  }
}

MOX_INSTANTIATE_GENERATIONS(H263Motion);

}  // namespace
}  // namespace mox::test
