#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <vector>

#include "moxvc.h"
#include "oracle/denoise_cast_mosquito.hpp"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

constexpr Placement kPlacements[] = {Placement::at_end(), Placement::at_start(), Placement::aligned(3)};

class DenoiseCast : public PerGeneration {
 protected:
  MoxiDenoiseCASTState* state(int noise, int spatial, int temporal) {
    EXPECT_EQ(lib(MOX_FN(moxiFilterDenoiseCASTInit))(record_.data(), noise, spatial, temporal), moxStsOk);
    return record_.data();
  }
  MoxStatus filter(const Plane<Mox8u>& src, const Plane<Mox8u>& prev, const Plane<Mox8u>& dst,
                   const MoxiDenoiseCASTState* record) const {
    return lib(MOX_FN(moxiFilterDenoiseCAST_8u_C1R))(src.at(0, 0), src.step(), prev.at(0, 0), prev.step(), dst.at(0, 0),
                                                     dst.step(), {src.width(), src.height()}, record);
  }
  Guarded<MoxiDenoiseCASTState> record_{1};
};

TEST_P(DenoiseCast, EqualsOracle) {
  Random random;
  std::array<int, 17> spatial{}, temporal{};  // how often each weight was met
  for (int round = 0; round < 500; ++round) {
    const int width = random(1, round % 4 ? 36 : 90), height = random(1, 9), extra = random(0, 2);
    const Placement placement = kPlacements[round % 3];
    const int step = round % 5 ? width + extra : -width - extra, noise = random(1, 32);
    const Plane<Mox8u> src(width, height, step, placement), prev(width, height, width + extra, placement);
    const Plane<Mox8u> dst(width, height, step, placement), expected(width, height, step);
    // Any samples; or slopes and steps under noise, which the frame before has in the same place, or moved.
    const int level = random(0, 255), jump = random(0, 200), at = random(0, width), slope = random(-3, 3);
    const int moved = random(0, 2) ? 0 : random(-3, 3), near = round % 4 ? noise : noise / 3;
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        const auto sample = [&](int column) {
          const int clean = level + slope * (column + y) + (column > at ? jump : 0);
          return static_cast<Mox8u>(round % 7 == 0 ? random.bits() : std::clamp(clean + random(-near, near), 0, 255));
        };
        src(x, y) = sample(x);
        prev(x, y) = sample(x - moved);
      }
    }
    if (round % 11 == 0) std::fill(src.memory().begin(), src.memory().end(), Mox8u{255});
    if (round % 22 == 0) std::fill(prev.memory().begin(), prev.memory().end(), Mox8u{0});
    const int inSpace = random(0, 16), inTime = random(0, 15);
    const oracle::Widened now(src, 1), before(prev, 1);
    for (int y = 0; y < height; ++y) {
      for (int x = 0; x < width; ++x) {
        const auto window = now.window(x - 1, y - 1, 3, 3);
        expected(x, y) = static_cast<Mox8u>(
            oracle::cast_filtered(window, before.window(x - 1, y - 1, 3, 3), noise, inSpace, inTime));
        ++spatial[oracle::cast_sixteenths(oracle::spread(window), 8 * noise, inSpace)];
        ++temporal[oracle::cast_sixteenths(std::abs(window[4] - before(x, y)) * 9, 24 * noise, inTime)];
      }
    }
    ASSERT_EQ(filter(src, prev, dst, state(noise, inSpace, inTime)), moxStsOk);
    ASSERT_EQ(dst.copy(), expected.copy()) << width << "x" << height << ", round " << round;
  }
  for (int weight = 0; weight < 16; ++weight) {
    EXPECT_GT(std::min(spatial[weight], temporal[weight]), 20) << "weight " << weight;
  }
}

/// By hand: the middle of 3x3 samples, all samples of the frame before being the same.
TEST_P(DenoiseCast, LiteralSamples) {
  struct Case {
    int noise, spatial, temporal;
    std::array<int, 9> src;
    int prev, middle;
  };
  constexpr Case kCases[] = {
      // s = (4 * 108 + 12 * 100 + 8) >> 4 = 102, m = 8: (12 * 100 + 4 * 102 + 8) >> 4
      {4, 16, 12, {100, 100, 100, 100, 108, 100, 100, 100, 100}, 100, 101},
      {4, 16, 12, {100, 100, 100, 100, 108, 100, 100, 100, 100}, 0, 102},   // all moves
      {4, 8, 0, {100, 100, 100, 100, 108, 100, 100, 100, 100}, 100, 105},   // (8 * 102 + 8 * 108 + 8) >> 4
      {4, 16, 0, {100, 100, 100, 100, 112, 100, 100, 100, 100}, 100, 103},  // 12 away is near, 1656 >> 4
      {4, 16, 0, {100, 100, 100, 100, 113, 100, 100, 100, 100}, 100, 113},  // and 13 is not
      // e = 24: a = (8 * 256) >> 8. s = (1600 + 12 - 132 + 8) >> 4 = 93, f = (8 * 93 + 8 * 100 + 8) >> 4
      {4, 16, 0, {88, 88, 88, 88, 100, 88, 88, 88, 112}, 100, 97},
      // e = 131: a = (125 * 32) >> 8 = 15, s = (400 + 341 + 162 + 8) >> 4 = 56, f = (15 * 56 + 100 + 8) >> 4
      {32, 16, 0, {31, 31, 31, 31, 100, 31, 31, 31, 162}, 100, 59},
      // m = 72: (24 * 86) >> 8 = 8, t = 12 * 8 >> 4 = 6: (6 * 92 + 10 * 100 + 8) >> 4
      {4, 16, 12, {100, 100, 100, 100, 100, 100, 100, 100, 100}, 92, 97},
      // m = 90: t = 12 * (516 >> 8) >> 4 = 1: (90 + 15 * 100 + 8) >> 4
      {4, 0, 12, {100, 100, 100, 100, 100, 100, 100, 100, 100}, 90, 99},
  };
  for (const Case& c : kCases) {
    const Plane<Mox8u> src(3, 3, 3), prev(3, 3, 3), dst(3, 3, 3);
    std::copy(c.src.begin(), c.src.end(), src.memory().begin());
    std::fill(prev.memory().begin(), prev.memory().end(), static_cast<Mox8u>(c.prev));
    ASSERT_EQ(filter(src, prev, dst, state(c.noise, c.spatial, c.temporal)), moxStsOk);
    EXPECT_EQ(dst(1, 1), c.middle) << "case " << &c - kCases;
  }
}

/// A still picture of two levels under noise, frame by frame.
TEST_P(DenoiseCast, NoiseFallsAndTheEdgeStays) {
  std::mt19937 engine(7);
  std::normal_distribution<double> noise(0, 4);
  const Plane<Mox8u> src(64, 64, 64), results[2] = {{64, 64, 64}, {64, 64, 64}};
  const auto clean = [](int x) { return x < 32 ? 80 : 160; };
  MoxiDenoiseCASTState* const record = state(4, 16, 12);
  for (int frame = 0; frame < 24; ++frame) {
    for (int i = 0; i < 64 * 64; ++i)
      src(i % 64, i / 64) = static_cast<Mox8u>(std::lround(clean(i % 64) + noise(engine)));
    ASSERT_EQ(filter(src, frame ? results[frame % 2] : src, results[1 - frame % 2], record), moxStsOk);
  }
  const Plane<Mox8u>& last = results[0];
  double before = 0, after = 0, left = 0, right = 0;
  for (int i = 0; i < 64 * 64; ++i) {
    before += std::pow(src(i % 64, i / 64) - clean(i % 64), 2) / 4096;
    after += std::pow(last(i % 64, i / 64) - clean(i % 64), 2) / 4096;
    if (i % 64 == 31) left += last(31, i / 64) / 64.0;
    if (i % 64 == 32) right += last(32, i / 64) / 64.0;
  }
  EXPECT_LT(after, before / 12);
  EXPECT_NEAR(left, 80, 1.5);
  EXPECT_NEAR(right, 160, 1.5);
}

/// What comes and goes at a contrast of 100 leaves nothing behind, and a flat frame stays.
TEST_P(DenoiseCast, MotionLeavesNoTrail) {
  const Plane<Mox8u> src(40, 20, 40), prev(40, 20, 40), dst(40, 20, 40);
  for (const bool moves : {false, true}) {
    for (Mox8u& sample : src.memory()) sample = 90;
    prev.assign(src);
    for (int i = 0; moves && i < 64; ++i) src(4 + i % 8, 4 + i / 8) = 190, prev(18 + i % 8, 6 + i / 8) = 190;
    ASSERT_EQ(filter(src, prev, dst, state(4, 16, 15)), moxStsOk);
    EXPECT_EQ(dst.copy(), src.copy()) << moves;
  }
}

TEST_P(DenoiseCast, Arguments) {
  const Plane<Mox8u> src(8, 8, 8), dst(8, 8, 8);
  const MoxiDenoiseCASTState* const record = state(4, 16, 12);
  for (const MoxiSize bad : {MoxiSize{0, 8}, MoxiSize{8, -1}}) {
    Call(lib(MOX_FN(moxiFilterDenoiseCAST_8u_C1R)),
         std::tuple{src.at(0, 0), 8, src.at(0, 0), 8, dst.at(0, 0), 8, MoxiSize{8, 8}, record})
        .keeps(dst.at(0, 0), 64)
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set<2>(nullptr)},
                       {moxStsNullPointer, set<4>(nullptr)},
                       {moxStsNullPointer, set<7>(nullptr)},
                       {moxStsBadSize, set<6>(bad)}});
  }
  MoxiDenoiseCASTState fresh{1, 2, 3, 4, 5, 6, 7};
  for (const bool high : {false, true}) {
    Call(lib(MOX_FN(moxiFilterDenoiseCASTInit)), std::tuple{&fresh, 32, 16, 15})
        .keeps(&fresh, sizeof fresh)
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsOutOfRange, set<1>(high ? 33 : 0)},
                       {moxStsOutOfRange, set<2>(high ? 17 : -1)},
                       {moxStsOutOfRange, set<3>(high ? 16 : -1)}});
  }
}

MOX_INSTANTIATE_GENERATIONS(DenoiseCast);

}  // namespace
}  // namespace mox::test
