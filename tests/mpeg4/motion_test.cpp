#include <gtest/gtest.h>

#include <array>
#include <span>
#include <string>
#include <vector>

#include "moxvc.h"
#include "oracle/mpeg4_motion.hpp"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

constexpr Placement kPlacements[] = {Placement::at_end(), Placement::at_start(), Placement::aligned(7)};
/// Samples between rows; negative for rows that go upwards in memory.
int step_of(int width, Random& random) {
  const int steps[] = {width, width + 1, 64, 1000, -width, -width - 9};
  return steps[random.bits() % std::size(steps)];
}
Plane<Mox8u> plane_of(int width, int height, Random& random) {
  return {width, height, step_of(width, random), kPlacements[random.bits() % 3]};
}

class Mpeg4Motion : public PerGeneration {
 protected:
  struct Copy {
    std::string name;
    int width, height;
    decltype(&moxiCopy8x8QP_MPEG4_8u_C1R) call;
  };
  std::vector<Copy> copies() const {
    return {{"16x16", 16, 16, lib(MOX_FN(moxiCopy16x16QP_MPEG4_8u_C1R))},
            {"16x8", 16, 8, lib(MOX_FN(moxiCopy16x8QP_MPEG4_8u_C1R))},
            {"8x8", 8, 8, lib(MOX_FN(moxiCopy8x8QP_MPEG4_8u_C1R))}};
  }
  struct Overlap {
    std::string name;
    int size, fraction;  ///< bits of a vector's fraction
    decltype(&moxiOBMC8x8HP_MPEG4_8u_C1R) call;
    int neighbours() const { return size / 2; }
  };
  std::vector<Overlap> overlaps() const {
    return {{"16x16HP", 16, 1, lib(MOX_FN(moxiOBMC16x16HP_MPEG4_8u_C1R))},
            {"16x16QP", 16, 2, lib(MOX_FN(moxiOBMC16x16QP_MPEG4_8u_C1R))},
            {"8x8HP", 8, 1, lib(MOX_FN(moxiOBMC8x8HP_MPEG4_8u_C1R))},
            {"8x8QP", 8, 2, lib(MOX_FN(moxiOBMC8x8QP_MPEG4_8u_C1R))}};
  }
};

TEST_P(Mpeg4Motion, CopiesEqualOracle) {
  Random random;
  for (const Copy& copy : copies()) {
    for (int round = 0; round < 32 * 28; ++round) {
      const int dx = round & 3, dy = round >> 2 & 3, rc = round >> 4 & 1;
      const auto src = plane_of(copy.width + (dx != 0), copy.height + (dy != 0), random);
      fill(src.memory(), kPatterns[round / 32 % 7], random);
      const auto dst = plane_of(copy.width, copy.height, random);
      const Plane<Mox8u> expected(dst.width(), dst.height(), dst.step());
      const auto block =
          oracle::quarter_block([&](int x, int y) { return src(x, y); }, copy.width, copy.height, dx, dy, rc);
      for (int y = 0; y < copy.height; ++y) std::copy(block[y].begin(), block[y].end(), expected.at(0, y));
      ASSERT_EQ(copy.call(src.at(0, 0), src.step(), dst.at(0, 0), dst.step(), dx | dy << 2, rc - 2), moxStsOk);
      ASSERT_EQ(dst.copy(), expected.copy()) << copy.name << ", " << dx << ", " << dy << ", rc " << rc;
    }
  }
}

/// By hand: a line of samples and its half samples; quarters follow by means. Across and down.
TEST_P(Mpeg4Motion, LiteralLines) {
  struct Case {
    std::vector<int> line;
    int d, rc;
    std::vector<int> predicted;
  };
  const Case cases[] = {
      {{0, 0, 0, 0, 255, 0, 0, 0, 0}, 2, 0, {0, 24, 0, 159, 159, 0, 24, 0}},  // 255 by 24 and by 160, over 256
      {{0, 0, 0, 0, 255, 0, 0, 0, 0}, 1, 0, {0, 12, 0, 80, 207, 0, 12, 0}},
      {{0, 0, 0, 0, 255, 0, 0, 0, 0}, 1, 1, {0, 12, 0, 79, 207, 0, 12, 0}},
      {{0, 0, 0, 0, 255, 0, 0, 0, 0}, 3, 0, {0, 12, 0, 207, 80, 0, 12, 0}},
      {{0, 0, 0, 0, 255, 0, 0, 0, 0}, 3, 1, {0, 12, 0, 207, 79, 0, 12, 0}},
      {{255, 0, 0, 0, 0, 0, 0, 0, 0}, 2, 0, {112, 0, 16, 0, 0, 0, 0, 0}},    // 160 - 48, 24 - 48, 24 - 8
      {{0, 255, 0, 0, 0, 0, 0, 0, 0}, 2, 1, {183, 151, 0, 24, 0, 0, 0, 0}},  // 160 + 24, 160 - 8
      {{0, 0, 0, 1, 0, 1, 1, 1, 0}, 2, 0, {0, 0, 1, 1, 0, 1, 1, 1}},         // the fourth is 128 / 256
      {{0, 0, 0, 1, 0, 1, 1, 1, 0}, 2, 1, {0, 0, 1, 0, 0, 1, 1, 1}},
      {{255, 255, 255, 255, 0, 0, 0, 0, 0}, 2, 0, {255, 239, 255, 128, 0, 16, 0, 0}},  // 264, 240, 288, 128, -32, 16
      {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 255},
       2,
       0,
       {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 16, 0, 112}},
  };
  for (const Copy& copy : copies()) {
    for (const Case& c : cases) {
      for (const bool down : {false, true}) {
        if (c.predicted.size() != static_cast<std::size_t>(down ? copy.height : copy.width)) continue;
        const Plane<Mox8u> src(copy.width + !down, copy.height + down, 20), dst(copy.width, copy.height, 16);
        const auto of_line = [down](const std::vector<int>& line, int x, int y) { return line[down ? y : x]; };
        for (int y = 0; y < src.height(); ++y) {
          for (int x = 0; x < src.width(); ++x) src(x, y) = static_cast<Mox8u>(of_line(c.line, x, y));
        }
        copy.call(src.at(0, 0), 20, dst.at(0, 0), 16, down ? c.d << 2 : c.d, c.rc);
        for (int y = 0; y < copy.height; ++y) {
          for (int x = 0; x < copy.width; ++x) {
            ASSERT_EQ(dst(x, y), of_line(c.predicted, x, y))
                << copy.name << ", case " << &c - cases << ", " << x << ", " << y;
          }
        }
      }
    }
  }
}

/// A call of overlapped motion compensation: what it is about, and the samples that it may read.
struct Scene {
  int size, fraction;
  MoxiMotionVector own;
  std::vector<MoxiMotionVector> around;
  int left = 99, top = 99, right = -99, bottom = -99;

  Scene(int blockSize, int fractionBits, int round, Random& random) : size(blockSize), fraction(fractionBits) {
    const auto draw = [&] { return static_cast<Mox16s>(random(-4 << fraction, 4 << fraction)); };
    own = {draw(), draw()};
    around.assign(static_cast<std::size_t>(size / 2), own);
    for (auto& v : around) {
      if (round % 4 != 0 && random.chance(0.8)) v = {draw(), draw()};  // the rest are alike, as in real pictures
    }
    for (int i = 0; i < size * size / 64; ++i) {
      for (const auto& [x, y] : {std::pair{0, 0}, {0, -1}, {-1, 0}, {1, 0}, {0, 1}}) extend(i % 2, i / 2, x, y);
    }
  }
  /// The vector of the 8x8 block in column bx and row by, counted from the call's first.
  MoxiMotionVector vector(int bx, int by) const {
    const int blocks = size / 8;
    const auto at = [&](int side, int i) { return around[static_cast<std::size_t>(side * blocks + i)]; };
    return by < 0 ? at(0, bx) : bx < 0 ? at(1, by) : bx >= blocks ? at(2, by) : by >= blocks ? at(3, bx) : own;
  }
  int whole(int v) const { return v >> fraction; }
  int part(int v) const { return v & ((1 << fraction) - 1); }

  oracle::Overlapped predicted(const Plane<Mox8u>& src, int bx, int by, int rc) const {
    const auto block = [&](int x, int y) -> oracle::SampleRows {
      const MoxiMotionVector v = vector(bx + x, by + y);
      const auto sample = [&](int sx, int sy) {
        return src(8 * bx + sx + whole(v.x) - left, 8 * by + sy + whole(v.y) - top);
      };
      if (fraction == 2) return oracle::quarter_block(sample, 8, 8, part(v.x), part(v.y), rc);
      oracle::SampleRows rows(8, std::vector<int>(8));
      for (int i = 0; i < 64; ++i)
        rows[i / 8][i % 8] = oracle::half_pel(sample, i % 8, i / 8, part(v.x), part(v.y), rc);
      return rows;
    };
    return {block(0, 0), block(0, -1), block(-1, 0), block(1, 0), block(0, 1)};
  }

 private:
  void extend(int bx, int by, int dx, int dy) {
    const MoxiMotionVector v = vector(bx + dx, by + dy);
    const int x = 8 * bx + whole(v.x), y = 8 * by + whole(v.y);
    left = std::min(left, x), right = std::max(right, x + 8 + (part(v.x) != 0));
    top = std::min(top, y), bottom = std::max(bottom, y + 8 + (part(v.y) != 0));
  }
};

TEST_P(Mpeg4Motion, OverlapEqualsOracle) {
  Random random;
  for (const Overlap& overlap : overlaps()) {
    for (int round = 0; round < 700; ++round) {
      const Scene scene(overlap.size, overlap.fraction, round, random);
      const auto src = plane_of(scene.right - scene.left, scene.bottom - scene.top, random);
      const auto dst = plane_of(overlap.size, overlap.size, random);
      fill(src.memory(), kPatterns[random.bits() % 7], random);
      const Plane<Mox8u> expected(dst.width(), dst.height(), dst.step());
      const int rc = round & 1;
      for (int i = 0; i < overlap.size * overlap.size / 64; ++i) {
        const auto block = scene.predicted(src, i % 2, i / 2, rc);
        for (int k = 0; k < 64; ++k) {
          expected(8 * (i % 2) + k % 8, 8 * (i / 2) + k / 8) = static_cast<Mox8u>(block(k % 8, k / 8));
        }
      }
      const Mox8u* const place = src.at(0, 0) - scene.left - std::ptrdiff_t{scene.top} * src.step();
      ASSERT_EQ(overlap.call(place, src.step(), dst.at(0, 0), dst.step(), scene.own, scene.around.data(), rc + 2),
                moxStsOk);
      ASSERT_EQ(dst.copy(), expected.copy()) << overlap.name << ", round " << round;
    }
  }
}

/// By hand. Vectors lead to flat squares of 16 x 16 beside each other, the own one to zeros and neighbour i to
/// values[i].
TEST_P(Mpeg4Motion, LiteralOverlap) {
  const auto overlapped = [](const Overlap& overlap, const std::vector<int>& values) {
    const Plane<Mox8u> src(16 * 9, 16, 16 * 9), dst(overlap.size, overlap.size, overlap.size);
    std::fill(src.memory().begin(), src.memory().end(), Mox8u{0});
    std::vector<MoxiMotionVector> around;
    for (int i = 0; i < overlap.neighbours(); ++i) {
      around.push_back({static_cast<Mox16s>(16 * (i + 1) << overlap.fraction), 0});
      for (int y = 0; y < 16; ++y) std::fill_n(src.at(16 * (i + 1), y), 16, static_cast<Mox8u>(values[i]));
    }
    overlap.call(src.at(0, 0), src.step(), dst.at(0, 0), dst.step(), {0, 0}, around.data(), 0);
    return dst.copy();
  };
  const std::vector<Mox8u> kSquare = {22, 12, 12, 12, 22, 22, 22, 42,  // 2 of 8 above, 2 of 80 at the left: 176 / 8
                                      21, 21, 12, 12, 22, 22, 41, 41,  //
                                      21, 21, 11, 11, 21, 21, 41, 41,  //
                                      21, 21, 11, 11, 21, 21, 41, 41,  //
                                      22, 22, 12, 12, 22, 22, 42, 42,  // from here on 16 below
                                      22, 22, 12, 12, 22, 22, 42, 42,  //
                                      22, 22, 14, 14, 24, 24, 42, 42,  //
                                      24, 14, 14, 14, 24, 24, 24, 44};
  for (const Overlap& overlap : overlaps()) {
    if (overlap.size == 8) {
      EXPECT_EQ(overlapped(overlap, {8, 80, 160, 16}), kSquare) << overlap.name;
      continue;
    }
    const auto dst = overlapped(overlap, {8, 16, 24, 32, 40, 48, 56, 64});
    const auto at = [&](int x, int y) { return int{dst[static_cast<std::size_t>(16 * y + x)]}; };
    using Samples = std::vector<int>;
    EXPECT_EQ((Samples{at(0, 0), at(7, 0), at(8, 0), at(15, 0)}),
              (Samples{8, 2, 4, 14}));  // 2 of 8 and 2 of 24: 64 / 8
    EXPECT_EQ((Samples{at(0, 7), at(0, 8), at(15, 7), at(15, 8), at(7, 7)}), (Samples{6, 8, 10, 12, 0}));
    EXPECT_EQ((Samples{at(0, 15), at(7, 15), at(8, 15), at(15, 15)}), (Samples{22, 14, 16, 28}));
  }
}

TEST_P(Mpeg4Motion, Arguments) {
  std::vector<Mox8u> src(17 * 32, 90), dst(16 * 32, 1);
  const std::vector<MoxiMotionVector> around(8, MoxiMotionVector{1, 1});
  for (const Copy& copy : copies()) {
    for (const int bad : {16, -1, 1 << 30}) {
      Call(copy.call, std::tuple{src.data(), 32, dst.data(), 32, 15, 1})
          .keeps(dst.data(), dst.size())
          .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                         {moxStsNullPointer, set<2>(nullptr)},
                         {moxStsOutOfRange, set<4>(bad)}});
    }
  }
  for (const Overlap& overlap : overlaps()) {
    Call(overlap.call, std::tuple{src.data(), 32, dst.data(), 32, around[0], around.data(), 1})
        .keeps(dst.data(), dst.size())
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set<2>(nullptr)},
                       {moxStsNullPointer, set<5>(nullptr)}});
  }
}

MOX_INSTANTIATE_GENERATIONS(Mpeg4Motion);

}  // namespace
}  // namespace mox::test
