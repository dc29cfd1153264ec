#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "moxvc.h"
#include "oracle/h263_resampling.hpp"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

constexpr Placement kPlacements[] = {Placement::at_end(), Placement::at_start(), Placement::aligned(7)};

/// A function that doubles or halves a plane.
struct ByTwo {
  std::string name;
  int scaleX, scaleY, halvesUp;  ///< scale 0: halved
  std::function<MoxStatus(const Mox8u*, int, Mox8u*, int, MoxiSize)> call;

  MoxiSize of(MoxiSize old) const {
    return scaleX == 0 ? MoxiSize{old.width / 2, old.height / 2} : MoxiSize{scaleX * old.width, scaleY * old.height};
  }
  /// Halved: in the middle of two; doubled: a quarter before and behind each.
  static int sixteenths(int at, int scale) { return scale == 0 ? 32 * at + 8 : scale == 1 ? 16 * at : 8 * at - 4; }
  int expected(const Plane<Mox8u>& old, int x, int y) const {
    return oracle::interpolated(old, -1, sixteenths(x, scaleX), sixteenths(y, scaleY), 16, 127 + halvesUp);
  }
};

/// Three planes of a 4:2:0 picture, and what the functions want to know of them.
struct Picture {
  explicit Picture(MoxiSize luma, int extra = 0, Placement placement = {})
      : size(luma),
        planes{{size.width, size.height, size.width + extra, placement},
               {size.width / 2, size.height / 2, size.width / 2 + extra, placement},
               {size.width / 2, size.height / 2, size.width / 2 + 2 * extra, placement}} {}
  MoxiSize size;
  Plane<Mox8u> planes[3];
  Mox8u* const data[3] = {planes[0].at(0, 0), planes[1].at(0, 0), planes[2].at(0, 0)};
  const Mox8u* const source[3] = {data[0], data[1], data[2]};
  const Mox32s steps[3] = {planes[0].step(), planes[1].step(), planes[2].step()};
};

class H263Resampling : public PerGeneration {
 protected:
  std::vector<ByTwo> by_two() const {
    std::vector<ByTwo> all;
    const auto add = [&](auto symbol, int scaleX, int scaleY, int halvesUp, int last) {
      all.push_back({symbol.name, scaleX, scaleY, halvesUp,
                     [=, f = lib(symbol)](auto... arguments) { return f(arguments..., last); }});
    };
    for (int r : {0, 1}) add(MOX_FN(moxiUpsampleFour_H263_8u_C1R), 2, 2, r, r);
    for (int r : {0, 1}) add(MOX_FN(moxiDownsampleFour_H263_8u_C1R), 0, 0, r, r);
    for (int d : {1, 2, 3}) add(MOX_FN(moxiSpatialInterpolation_H263_8u_C1R), 1 + (d & 1), 1 + (d >> 1), 1, d);
    return all;
  }
  MoxStatus resample(const Picture& old, const Picture& out, const MoxiPoint* corner, int wda, int fillMode,
                     const Mox8u* colour, int rcrpr) const {
    return lib(MOX_FN(moxiResample_H263_8u_P3R))(old.source, old.steps, out.data, out.steps, old.size, out.size, corner,
                                                 wda, fillMode, colour, rcrpr);
  }
};

TEST_P(H263Resampling, ByTwoEqualsOracle) {
  Random random;
  for (const ByTwo& form : by_two()) {
    for (int round = 0; round < 400; ++round) {
      const int unit = form.scaleX ? 1 : 2, extra = random(0, 3);
      const MoxiSize size = {unit * random(1, 70), unit * random(1, 5)}, to = form.of(size);
      const Plane<Mox8u> old(size.width, size.height, size.width + extra, kPlacements[round % 3]);
      const Plane<Mox8u> out(to.width, to.height, to.width + extra, kPlacements[round % 3]);
      const Plane<Mox8u> expected(to.width, to.height, to.width + extra);
      fill(old.memory(), kPatterns[random.bits() % 7], random);
      for (int y = 0; y < to.height; ++y) {
        for (int x = 0; x < to.width; ++x) expected(x, y) = static_cast<Mox8u>(form.expected(old, x, y));
      }
      ASSERT_EQ(form.call(old.at(0, 0), old.step(), out.at(0, 0), out.step(), size), moxStsOk);
      ASSERT_EQ(out.copy(), expected.copy()) << form.name << ", " << size.width << "x" << size.height << ", " << round;
    }
  }
}

TEST_P(H263Resampling, EqualsOracle) {
  Random random;
  constexpr int kFills[4][3] = {{77, 201, 3}, {16, 128, 128}, {128, 128, 128}, {-1, -1, -1}};
  constexpr Mox8u kColour[3] = {77, 201, 3};
  for (int round = 0; round < 300; ++round) {
    const Picture old({2 * random(1, 30), 2 * random(1, 20)}, random(0, 2), kPlacements[round % 3]);
    const Picture out({2 * random(1, 40), 2 * random(1, 12)}, 1, kPlacements[random(0, 2)]);
    for (const auto& plane : old.planes) random.fill(plane.memory());
    const int wda = random(2, 3), fillMode = random(0, 3), rcrpr = random(0, 1), unit = wda == 2 ? 2 : 16;
    // The pictures' corners on each other and a little away, far away, or as far as they may lie.
    const int spread = round % 8 == 0 ? 400 * unit : 3 * unit;
    MoxiPoint corner[4];
    std::array<int, 4> in[2];
    for (int i = 0; i < 4; ++i) {
      corner[i] = {(i & 1) * unit * (old.size.width - out.size.width) + random(-spread, spread),
                   (i >> 1) * unit * (old.size.height - out.size.height) + random(-spread, spread)};
      if (round % 50 == 7) corner[i] = {random(0, 1) ? 32767 : -32768, random(0, 1) ? 32767 : -32768};
      in[0][static_cast<std::size_t>(i)] = corner[i].x * 32 / unit;
      in[1][static_cast<std::size_t>(i)] = corner[i].y * 32 / unit;
    }
    ASSERT_EQ(resample(old, out, corner, wda, fillMode, kColour, rcrpr), moxStsOk);
    for (int p = 0; p < 3; ++p) {
      const Plane<Mox8u>& plane = out.planes[p];
      for (int y = 0; y < plane.height(); ++y) {
        for (int x = 0; x < plane.width(); ++x) {
          const auto at = [&](int axis) { return oracle::place(in[axis], out.size, p ? 2 : 1, {x, y}, axis); };
          ASSERT_EQ(plane(x, y),
                    oracle::interpolated(old.planes[p], kFills[fillMode][p], at(0), at(1), 16, 127 + rcrpr))
              << "plane " << p << ", " << x << ", " << y << ", round " << round;
        }
      }
    }
  }
}

/// Pictures of twice and half the size with their corners on each other.
TEST_P(H263Resampling, GeneralFormEqualsByTwo) {
  Random random;
  for (const ByTwo& form : by_two()) {
    for (MoxiSize size : {MoxiSize{4, 4}, MoxiSize{36, 20}, MoxiSize{100, 44}, MoxiSize{176, 144}}) {
      if (form.scaleX != form.scaleY) continue;
      const Picture old(size), out(form.of(size)), expected(form.of(size));
      for (const auto& plane : old.planes) random.fill(plane.memory());
      const MoxiPoint to = {2 * (size.width - out.size.width), 2 * (size.height - out.size.height)};
      const MoxiPoint corner[4] = {{0, 0}, {to.x, 0}, {0, to.y}, to};
      ASSERT_EQ(resample(old, out, corner, 2, 3, nullptr, form.halvesUp), moxStsOk);
      for (int p = 0; p < 3; ++p) {
        const MoxiSize plane = {old.planes[p].width(), old.planes[p].height()};
        form.call(old.source[p], old.steps[p], expected.data[p], expected.steps[p], plane);
        ASSERT_EQ(out.planes[p].copy(), expected.planes[p].copy())
            << form.name << ", " << size.width << ", plane " << p;
      }
    }
  }
}

/// By hand.
TEST_P(H263Resampling, LiteralSamples) {
  const Mox8u two[4] = {0, 16, 32, 100};  // 2x2
  const auto up = lib(MOX_FN(moxiUpsampleFour_H263_8u_C1R));
  const auto interpolate = lib(MOX_FN(moxiSpatialInterpolation_H263_8u_C1R));
  const auto down = lib(MOX_FN(moxiDownsampleFour_H263_8u_C1R));
  std::vector<Mox8u> out(16);
  EXPECT_EQ(up(two, 2, out.data(), 4, {2, 2}, 1), moxStsOk);
  EXPECT_EQ(out, (std::vector<Mox8u>{0, 4, 12, 16, 8, 15, 30, 37, 24, 38, 65, 79, 32, 49, 83, 100}));
  EXPECT_EQ(interpolate(two, 2, out.data(), 4, {2, 2}, 1), moxStsOk);
  EXPECT_EQ(std::vector<Mox8u>(out.begin(), out.begin() + 8), (std::vector<Mox8u>{0, 4, 12, 16, 32, 49, 83, 100}));
  EXPECT_EQ(interpolate(two, 2, out.data(), 2, {2, 2}, 2), moxStsOk);
  EXPECT_EQ(std::vector<Mox8u>(out.begin(), out.begin() + 8), (std::vector<Mox8u>{0, 16, 8, 37, 24, 79, 32, 100}));
  // Halves: (0 + 2 + 6) / 16 in the first direction, and 2 of 4.
  const Mox8u halves[4] = {0, 0, 0, 8}, pair[4] = {1, 0, 0, 1};
  for (int r : {0, 1}) {
    EXPECT_EQ(up(halves, 2, out.data(), 4, {2, 2}, r), moxStsOk);
    EXPECT_EQ(out[5], r) << "8 / 16";
    EXPECT_EQ(down(pair, 2, out.data(), 1, {2, 2}, r), moxStsOk);
    EXPECT_EQ(out[0], r) << "2 / 4";
  }
  // One sample to the right and half a sample down, which is a half and a quarter in chroma.
  const Mox8u luma[8] = {10, 20, 30, 40, 50, 60, 71, 80}, chroma[2] = {100, 200};
  const Mox8u* const source[3] = {luma, chroma, chroma};
  const Mox32s steps[3] = {4, 2, 2};
  std::vector<Mox8u> y(8), cb(2), cr(2);
  Mox8u* const planes[3] = {y.data(), cb.data(), cr.data()};
  const MoxiPoint right = {2, 1}, corner[4] = {right, right, right, right};
  const auto resample = [&](int fillMode) {
    return lib(MOX_FN(moxiResample_H263_8u_P3R))(source, steps, planes, steps, {4, 2}, {4, 2}, corner, 2, fillMode,
                                                 nullptr, 0);
  };
  EXPECT_EQ(resample(3), moxStsOk);
  EXPECT_EQ(y, (std::vector<Mox8u>{40, 50, 60, 60, 60, 71, 80, 80}));  // 50.5 goes down
  EXPECT_EQ(cb, (std::vector<Mox8u>{150, 200}));
  EXPECT_EQ(resample(1), moxStsOk);
  EXPECT_EQ(y, (std::vector<Mox8u>{40, 50, 60, 16, 38, 43, 48, 16}));
  EXPECT_EQ(cr, (std::vector<Mox8u>{144, 155}));  // 144.5 and 155
}

TEST_P(H263Resampling, Arguments) {
  std::vector<Mox8u> memory(64, 9), results(256, 9);
  for (auto symbol : {MOX_FN(moxiUpsampleFour_H263_8u_C1R), MOX_FN(moxiDownsampleFour_H263_8u_C1R),
                      MOX_FN(moxiSpatialInterpolation_H263_8u_C1R)}) {
    using C = Call<const Mox8u*, Mox32s, Mox8u*, Mox32s, MoxiSize, Mox32s>;
    const std::string name = symbol.name;
    const bool halves = name == "moxiDownsampleFour_H263_8u_C1R";
    const int step = halves ? 2 : 8, bad = name == "moxiSpatialInterpolation_H263_8u_C1R" ? 4 : 2;
    for (MoxiSize size : {MoxiSize{0, 4}, MoxiSize{4, -2}, MoxiSize{16386, 4}, MoxiSize{4, 16386}}) {
      C(lib(symbol), std::tuple{memory.data(), 4, results.data(), step, MoxiSize{4, 4}, 1})
          .keeps(results.data(), results.size())
          .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                         {moxStsNullPointer, set<2>(nullptr)},
                         {moxStsBadSize, set<4>(size)},
                         {moxStsBadStep, set<1>(3)},
                         {moxStsBadStep, set<3>(step - 1)},
                         {moxStsOutOfRange, set<5>(size.width ? bad : -1)}});
    }
    EXPECT_EQ(lib(symbol)(memory.data(), 4, results.data(), step, {4, 3}, 1), halves ? moxStsBadSize : moxStsOk);
  }
  const auto interpolate = lib(MOX_FN(moxiSpatialInterpolation_H263_8u_C1R));
  EXPECT_EQ(interpolate(memory.data(), 4, results.data(), 3, {4, 4}, 2), moxStsBadStep);
  EXPECT_EQ(interpolate(memory.data(), 4, results.data(), 8, {4, 4}, 0), moxStsOutOfRange);
}

TEST_P(H263Resampling, ArgumentsOfGeneralForm) {
  using C = Call<const Mox8u* const*, const Mox32s*, Mox8u* const*, const Mox32s*, MoxiSize, MoxiSize, const MoxiPoint*,
                 Mox32s, Mox32s, const Mox8u*, Mox32s>;
  const Picture old({4, 4}), out({4, 4});
  const MoxiPoint corner[4] = {};
  const Mox8u colour[3] = {};
  constexpr MoxiSize kBadSizes[3] = {{0, 4}, {4, 3}, {4, 16386}};
  for (int i = 0; i < 3; ++i) {  // spoil plane i
    const Mox8u* source[3] = {old.data[0], old.data[1], old.data[2]};
    Mox8u* data[3] = {out.data[0], out.data[1], out.data[2]};
    Mox32s steps[3] = {4, 2, 2};
    MoxiPoint far[4] = {};
    source[i] = data[i] = nullptr, --steps[i], (i ? far[i].x : far[3].y) = i ? 32768 : -32769;
    C(lib(MOX_FN(moxiResample_H263_8u_P3R)),
      std::tuple{old.source, old.steps, out.data, out.steps, old.size, out.size, corner, 2, 0, colour, 0})
        .keeps(out.data[0], 16)
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set<0>(&source[0])},
                       {moxStsNullPointer, set<1>(nullptr)},
                       {moxStsNullPointer, set<2>(nullptr)},
                       {moxStsNullPointer, set<2>(&data[0])},
                       {moxStsNullPointer, set<3>(nullptr)},
                       {moxStsNullPointer, set<6>(nullptr)},
                       {moxStsNullPointer, set<9>(nullptr)},
                       {moxStsBadSize, set<4>(kBadSizes[i])},
                       {moxStsBadSize, set<5>(kBadSizes[i])},
                       {moxStsBadStep, set<1>(&steps[0])},
                       {moxStsBadStep, set<3>(&steps[0])},
                       {moxStsOutOfRange, set<6>(&far[0])},
                       {moxStsOutOfRange, set<7>(i ? 4 : 1)},
                       {moxStsOutOfRange, set<10>(i ? 2 : -1)}});
  }
  for (int fillMode : {-1, 4}) EXPECT_EQ(resample(old, out, corner, 3, fillMode, nullptr, 0), moxStsOutOfRange);
}

MOX_INSTANTIATE_GENERATIONS(H263Resampling);

}  // namespace
}  // namespace mox::test
