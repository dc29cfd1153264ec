#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "moxvc.h"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

class ExpandPlane : public PerGeneration {
 protected:
  /// Expands the plane that lies E samples inside of another.
  MoxStatus expand(const Plane<Mox8u>& around, int E, Mox32u mode) const {
    return lib(MOX_FN(moxiExpandPlane_H264_8u_C1R))(around.at(E, E), around.width() - 2 * E, around.height() - 2 * E,
                                                    around.step(), E, mode);
  }
};

/// Fills what lies around the plane, each sample from the nearest one in a row of its field. `mode` 1 takes even rows
/// of the plane, 2 odd ones.
void expand_by_coordinates(const Plane<Mox8u>& around, int E, Mox32u mode) {
  const int width = around.width() - 2 * E, height = around.height() - 2 * E;
  const Plane<Mox8u> old(around.width(), around.height(), around.step());
  old.assign(around);
  for (int y = -E; y < height + E; ++y) {
    const bool odd = (y & 1) != 0;
    if (mode != 0 && odd != (mode == 2)) continue;
    const int nearest = std::clamp(y, mode == 2 ? 1 : 0, mode == 1 ? height - 2 : height - 1);
    for (int x = -E; x < width + E; ++x) around(x + E, y + E) = old(std::clamp(x, 0, width - 1) + E, nearest + E);
  }
}

TEST_P(ExpandPlane, EqualsNearestSamples) {
  Random random;
  for (Mox32u mode : {0, 1, 2}) {
    for (int E : {0, 1, 2, 3, 4, 7, 16, 32, 33, 48}) {
      for (int round = 0; round < 40; ++round) {
        const int width = random(1, round % 4 == 0 ? 70 : 9) + 2 * E, height = 2 * random(1, 9) + 2 * E;
        const int step = (width + random(0, 3) * 11) * (random.chance(0.3) ? -1 : 1);
        const Placement place = round % 2 ? Placement::at_end() : Placement::at_start();
        const Plane<Mox8u> plane(width, height, step, place), expected(width, height, step);
        random.fill(plane.memory());
        expected.assign(plane);
        expand_by_coordinates(expected, E, mode);
        ASSERT_EQ(expand(plane, E, mode), moxStsOk);
        ASSERT_TRUE(plane.copy() == expected.copy()) << "mode " << mode << " E " << E << " width " << width - 2 * E
                                                     << " height " << height - 2 * E << " step " << step;
      }
    }
  }
}

/// A plane of rows "12" and "34" with its margins, row by row; dots stay as they were.
struct Picture {
  Mox32u mode;
  int E;
  std::vector<std::string> rows;
};
const Picture kPictures[] = {
    {0, 1, {"1122", "1122", "3344", "3344"}},
    {1, 1, {"....", "1122", ".34.", "1122"}},
    {2, 1, {"3344", ".12.", "3344", "...."}},
    {1, 2, {"111222", "......", "111222", "..34..", "111222", "......"}},
    {2, 2, {"......", "333444", "..12..", "333444", "......", "333444"}},
};

TEST_P(ExpandPlane, PicturesByHand) {
  for (const auto& [mode, E, rows] : kPictures) {
    const int side = 2 + 2 * E;
    const Plane<Mox8u> plane(side, side, side);
    std::ranges::fill(plane.memory(), Mox8u{'.'});
    for (int i = 0; i < 4; ++i) plane(E + i % 2, E + i / 2) = static_cast<Mox8u>('1' + i);
    ASSERT_EQ(expand(plane, E, mode), moxStsOk);
    for (int y = 0; y < side; ++y) {
      EXPECT_EQ(std::string(plane.at(0, y), plane.at(0, y) + side), rows[y]) << "mode " << mode << " row " << y - E;
    }
  }
}

TEST_P(ExpandPlane, Arguments) {
  const Plane<Mox8u> plane(12, 12, 12);
  const auto function = lib(MOX_FN(moxiExpandPlane_H264_8u_C1R));
  const auto expect_size_first = [&](int E, const auto& last) {
    Call{function, std::tuple{plane.at(2, 2), 8, 8, 12, E, 0}}
        .keeps(plane.memory().data(), plane.memory().size())
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsBadSize, set<2>(7)},
                       {moxStsBadSize, set<2>(0)},
                       {moxStsBadSize, set<2>(-2)},
                       {moxStsBadSize, set<1>(0)},
                       last});
  };
  using Fault = decltype(Call{function, std::tuple{plane.at(2, 2), 8, 8, 12, 2, 0}})::Fault;
  expect_size_first(0, Fault{moxStsOk, set<5>(3u)});  // no margin: no mode is wrong
  expect_size_first(2, Fault{moxStsBadArg, set<5>(3u)});
  expect_size_first(2, Fault{moxStsBadArg, set<5>(0xFFFFFFFFu)});
}

/// What the form with three steps writes of a block: the named sizes cut what lies between them.
MoxiSize written(MoxiSize size) {
  constexpr std::array<std::array<int, 2>, 10> kNamed = {
      {{2, 2}, {2, 4}, {4, 2}, {4, 4}, {4, 8}, {8, 4}, {8, 8}, {8, 16}, {16, 8}, {16, 16}}};
  if (size.width % 2 || size.height % 2) return size;
  for (const auto& [width, height] : kNamed) {
    const auto lands = [](int side, int named) { return side == named || (named % 4 == 0 && side == named + 2); };
    if (lands(size.width, width) && lands(size.height, height)) return {width, height};
  }
  return size;
}

class AverageBlock : public PerGeneration {};

TEST_P(AverageBlock, EqualsOracle) {
  Random random;
  const auto one_step = lib(MOX_FN(moxiInterpolateBlock_H264_8u_P2P1R));
  const auto three_steps = lib(MOX_FN(moxiInterpolateBlock_H264_8u_P3P1R));
  for (int round = 0; round < 8 * 225; ++round) {
    const MoxiSize size = {2 + round % 15, 2 + round / 15 % 15};
    const bool one = round >= 4 * 225;
    const MoxiSize whole = one ? size : written(size);
    int steps[3];
    for (int& step : steps) {
      step = (size.width + random(0, 2) * 37) * (random.chance(0.3) ? -1 : 1);
      if (one) step = steps[0];
    }
    const Placement places[] = {Placement::at_end(), Placement::at_start(), Placement::aligned(random(0, 15))};
    const Plane<Mox8u> a(whole.width, whole.height, steps[0], places[round % 3]),
        b(whole.width, whole.height, steps[1], places[random.bits() % 3]), third(size.width, size.height, steps[2]),
        expected(size.width, size.height, steps[2]);
    fill(a.memory(), kPatterns[random.bits() % 7], random);
    fill(b.memory(), kPatterns[random.bits() % 7], random);
    expected.assign(third);
    for (int y = 0; y < whole.height; ++y) {
      for (int x = 0; x < whole.width; ++x) {
        const int sum = a(x, y) + b(x, y);
        expected(x, y) = static_cast<Mox8u>(sum / 2 + sum % 2);
      }
    }
    const auto status = one ? one_step(a.at(0, 0), b.at(0, 0), third.at(0, 0), size.width, size.height, steps[0])
                            : three_steps(a.at(0, 0), b.at(0, 0), third.at(0, 0), size.width, size.height, steps[0],
                                          steps[1], steps[2]);
    ASSERT_EQ(status, moxStsOk);
    ASSERT_TRUE(third.copy() == expected.copy()) << size.width << "x" << size.height << (one ? " one step" : "");
  }
}

TEST_P(AverageBlock, SamplesWritten) {
  struct Case {
    int width, height, samples;
  };
  for (const auto [width, height, samples] : {Case{5, 5, 25},
                                              {6, 4, 16},
                                              {6, 6, 16},
                                              {4, 6, 16},
                                              {2, 6, 8},
                                              {2, 8, 16},
                                              {6, 16, 96},
                                              {8, 10, 64},
                                              {12, 12, 144},
                                              {10, 14, 140},
                                              {16, 16, 256}}) {
    const Plane<Mox8u> ones(16, 16, 16), twos(16, 16, 16), result(16, 16, 16);
    std::ranges::fill(ones.memory(), Mox8u{1});
    std::ranges::fill(twos.memory(), Mox8u{2});
    std::ranges::fill(result.memory(), Mox8u{9});
    ASSERT_EQ(lib(MOX_FN(moxiInterpolateBlock_H264_8u_P3P1R))(ones.at(0, 0), twos.at(0, 0), result.at(0, 0), width,
                                                              height, 16, 16, 16),
              moxStsOk);
    EXPECT_EQ(std::ranges::count(result.memory(), 2), samples) << width << "x" << height;
    EXPECT_EQ(std::ranges::count(result.memory(), 9), 256 - samples) << width << "x" << height;
  }
}

TEST_P(AverageBlock, Arguments) {
  const Guarded<Mox8u> a(256), b(256), result(256);
  std::ranges::fill(a, Mox8u{200});
  const auto expect_order = [&](auto call) {
    call.keeps(result.data(), 256)
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set<1>(nullptr)},
                       {moxStsNullPointer, set<2>(nullptr)},
                       {moxStsBadSize, set<3>(1)},
                       {moxStsBadSize, set<3>(17)},
                       {moxStsBadSize, set<3>(-8)},
                       {moxStsBadSize, set<4>(1)},
                       {moxStsBadSize, set<4>(17)}});
  };
  // Steps are not tested, whatever they are.
  expect_order(
      Call{lib(MOX_FN(moxiInterpolateBlock_H264_8u_P2P1R)), std::tuple{a.data(), b.data(), result.data(), 8, 8, 7}});
  expect_order(Call{lib(MOX_FN(moxiInterpolateBlock_H264_8u_P3P1R)),
                    std::tuple{a.data(), b.data(), result.data(), 8, 8, 7, 0, 7}});
}

MOX_INSTANTIATE_GENERATIONS(ExpandPlane);
MOX_INSTANTIATE_GENERATIONS(AverageBlock);

}  // namespace
}  // namespace mox::test
