#include "moxvc/mpeg4_warp.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <string>
#include <string_view>
#include <vector>

#include "oracle/warp.hpp"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

using oracle::Warp;
using Samples = Plane<Mox8u>;

std::string describe(const Warp& w) {
  const std::vector<Mox32s> numbers{w.points, w.type,     w.accuracy,  w.rounding,     w.quarter,
                                    w.fcode,  w.sprite.x, w.sprite.y,  w.sprite.width, w.sprite.height,
                                    w.vop.x,  w.vop.y,    w.vop.width, w.vop.height};
  return testing::PrintToString(numbers) + testing::PrintToString(w.du) + testing::PrintToString(w.dv);
}

Placement random_placement(Random& random) {
  return random.chance(0.5) ? Placement::at_end() : Placement::aligned(random(0, 63));
}
Samples random_plane(Random& random, int width, int height) {
  const int step = width + random(0, 9);
  return Samples(width, height, random.chance(0.2) ? -step : step, random_placement(random));
}

class Mpeg4Warp : public PerGeneration {
 protected:
  struct Record : Guarded<Mox8u> {
    explicit Record(Placement placement = {}) : Guarded(384, placement) { std::fill(begin(), end(), Mox8u{0xFF}); }
    MoxiWarpSpec* get() const { return reinterpret_cast<MoxiWarpSpec*>(data()); }
  };
  MoxStatus init(const Record& record, const Warp& w) {
    return lib(MOX_FN(moxiWarpInit_MPEG4))(record.get(), w.du.data(), w.dv.data(), w.points, w.type, w.accuracy,
                                           w.rounding, w.quarter, w.fcode, &w.sprite, &w.vop);
  }
  /// The vector of `record` at (x, y), or that of the portable generation.
  MoxiMotionVector vector(const Record& record, Mox32s x, Mox32s y, bool portable = false) {
    const auto symbol = MOX_FN(moxiCalcGlobalMV_MPEG4);
    MoxiMotionVector v{};
    EXPECT_EQ((portable ? px(symbol) : lib(symbol))(x, y, &v, record.get()), moxStsOk);
    return v;
  }
  /// Warps a block of luma, or of two chroma planes. The record is shared by the generations.
  void warp(const Record& record, const MoxiRect& block, const std::vector<const Samples*>& sprite,
            const std::vector<const Samples*>& result, bool portable = false) {
    const auto pick = [&](auto symbol) { return portable ? px(symbol) : lib(symbol); };
    const Samples &s = *sprite[0], &s2 = *sprite.back(), &d = *result[0], &d2 = *result.back();
    const MoxStatus status =
        sprite.size() == 1
            ? pick(MOX_FN(moxiWarpLuma_MPEG4_8u_C1R))(s.at(0, 0), s.step(), d.at(0, 0), d.step(), &block, record.get())
            : pick(MOX_FN(moxiWarpChroma_MPEG4_8u_P2R))(s.at(0, 0), s.step(), s2.at(0, 0), s2.step(), d.at(0, 0),
                                                        d.step(), d2.at(0, 0), d2.step(), &block, record.get());
    ASSERT_EQ(status, moxStsOk);
  }
  /// A block against the oracle, or, with none, against the portable generation.
  void expect_block(const Record& record, const Warp& w, const oracle::Warper* expected, bool chroma,
                    const MoxiRect& block, Random& random) {
    const int width = chroma ? w.sprite.width / 2 + w.sprite.width % 2 : w.sprite.width;
    const int height = chroma ? w.sprite.height / 2 + w.sprite.height % 2 : w.sprite.height;
    const Samples first = random_plane(random, width, height), second = random_plane(random, width, height);
    const Samples result = random_plane(random, block.width, block.height);
    const Samples otherResult(block.width, block.height, block.width + random(0, 9), random_placement(random));
    fill(first.memory(), kPatterns[random(0, 6)], random);
    random.fill(second.memory());
    const Samples want(block.width, block.height, result.step());
    const Samples otherWant(block.width, block.height, otherResult.step());
    std::vector<const Samples*> sprites{&first}, results{&result}, wants{&want};
    if (chroma) sprites.push_back(&second), results.push_back(&otherResult), wants.push_back(&otherWant);
    ASSERT_NO_FATAL_FAILURE(warp(record, block, sprites, results));
    if (!expected) warp(record, block, sprites, wants, true);
    const int xs = chroma ? w.sprite.x / 2 : w.sprite.x, ys = chroma ? w.sprite.y / 2 : w.sprite.y;
    for (int y = 0; expected && y < block.height; ++y) {
      for (int x = 0; x < block.width; ++x) {
        const oracle::Place place = expected->place(block.x + x, block.y + y, chroma);
        for (std::size_t i = 0; i < wants.size(); ++i) {
          (*wants[i])(x, y) =
              static_cast<Mox8u>(oracle::sample(w, {place.x - 16 * xs, place.y - 16 * ys}, width, height, *sprites[i]));
        }
      }
    }
    for (std::size_t i = 0; i < wants.size(); ++i) {
      ASSERT_EQ(results[i]->copy(), wants[i]->copy())
          << describe(w) << ", chroma " << chroma << ", plane " << i << ", block " << block.width << "x" << block.height
          << " at " << block.x << "," << block.y;
    }
  }
};

Warp random_warp(Random& random) {
  Warp w{random(0, 4), random(0, 2), random(0, 3), random(0, 2), random(0, 1) * random(1, 9), random(1, 7), {}, {}};
  if (w.points == 4) w.type = 1;
  const int most = random.chance(0.2) ? 4 : 64;
  w.sprite = {random(-20, 20), random(-20, 20), random(1, most), random(1, most)};
  w.vop = {random(-9, 9), random(-9, 9), random(1, most), random(1, most)};
  // Four points stay a quarter of the VOP's size in place, so that nothing near it goes to infinity.
  const bool still = w.points == 4;
  const int x = still ? w.vop.width / 4 : random.chance(0.5) ? 5 : 90, y = still ? w.vop.height / 4 : x;
  for (int i = 0; i < 4; ++i) w.du[i] = random(-x, x), w.dv[i] = random(-y, y);
  return w;
}

TEST_P(Mpeg4Warp, RandomBlocks) {
  Random random;
  for (int round = 0; round < 3000; ++round) {
    const Warp w = random_warp(random);
    const Record record(Placement::aligned(round % 16));
    ASSERT_EQ(init(record, w), moxStsOk);
    const auto before = record.copy();
    const oracle::Warper expected(w);
    for (bool chroma : {false, true}) {
      const int size = chroma ? 8 : 16, divisor = chroma ? 2 : 1, moved = w.points > 0;
      MoxiRect block{random(-60, 60), random(-60, 60), size, size};
      if (random.chance(0.5)) {  // mostly inside the sprite, if the first point moves all
        block.x = (w.sprite.x - moved * w.du[0] / 2) / divisor + random(0, 16);
        block.y = (w.sprite.y - moved * w.dv[0] / 2) / divisor + random(0, 16);
      }
      if (random.chance(0.3)) block.width = random(1, 20), block.height = random(1, 20);
      if (w.points == 4) {  // inside the VOP or next to it
        block = {(w.vop.x + random(0, w.vop.width / 2)) / divisor, (w.vop.y + random(0, w.vop.height / 2)) / divisor,
                 std::min(size, (w.vop.width + 1) / 2), std::min(size, (w.vop.height + 1) / 2)};
      }
      ASSERT_NO_FATAL_FAILURE(expect_block(record, w, &expected, chroma, block, random));
    }
    if (w.points < 4) {
      const int x = random(-40, 40), y = random(-40, 40);
      const MoxiMotionVector got = vector(record, x, y), want = expected.vector(x, y);
      ASSERT_TRUE(got.x == want.x && got.y == want.y)
          << describe(w) << ": " << got.x << "," << got.y << ", not " << want.x << "," << want.y;
    }
    ASSERT_EQ(record.copy(), before);
  }
}

/// Any 32-bit numbers: the generations agree, nothing outside the sprite is read, and vectors keep their limits.
TEST_P(Mpeg4Warp, AnyNumbers) {
  Random random;
  const auto any = [&] {
    const auto bits = static_cast<Mox32s>(random.bits());
    return random.chance(0.1) ? (bits < 0 ? INT_MIN : INT_MAX) : bits >> random(0, 31);
  };
  for (int round = 0; round < 3000; ++round) {
    Warp w = random_warp(random);
    w.sprite = {any(), any(), random(1, 40), random(1, 40)};
    w.vop = {any(), any(), std::max(1, any()), std::max(1, any())};
    for (int i = 0; i < 4; ++i) w.du[i] = random.chance(0.1) ? 0 : any(), w.dv[i] = random.chance(0.1) ? 0 : any();
    const Record record;
    ASSERT_EQ(init(record, w), moxStsOk);
    const int size = random.chance(0.5) ? 8 : 16;
    for (bool chroma : {false, true}) {
      ASSERT_NO_FATAL_FAILURE(expect_block(record, w, nullptr, chroma, {any(), any(), size, size}, random));
    }
    const Mox32s x = any(), y = any();
    const MoxiMotionVector v = vector(record, x, y), same = vector(record, x, y, true);
    ASSERT_TRUE(v.x == same.x && v.y == same.y) << describe(w);
    for (Mox16s part : {v.x, v.y}) ASSERT_TRUE(part >= -(16 << w.fcode) && part < 16 << w.fcode) << describe(w);
  }
}

/// Maps worked out by hand, on a sprite p(x, y) = 16 x + y of 16 x 16 samples, for a VOP at (0, 0).
TEST_P(Mpeg4Warp, LiteralSamples) {
  struct Case {
    bool chroma;
    Warp warp;
    int x, y, result;
  };
  const MoxiRect sprite{0, 0, 16, 16}, chromaSprite{0, 0, 32, 32}, vop{0, 0, 8, 8}, small{0, 0, 4, 4}, one{0, 0, 1, 1};
  const Warp half{1, 0, 0, 0, 0, 1, sprite, vop, {3}, {1}}, down{1, 0, 0, 1, 0, 1, sprite, vop, {0}, {1}};
  const Warp still{1, 1, 0, 1, 0, 1, sprite, vop, {0}, {1}}, third{1, 0, 0, 0, 0, 1, chromaSprite, vop, {3}, {0}};
  const Warp fine{1, 0, 3, 0, 0, 1, chromaSprite, vop, {1}, {0}}, zoom{2, 0, 0, 0, 0, 1, sprite, vop, {0, 16}, {}};
  const Warp zoomChroma{2, 0, 1, 0, 0, 1, chromaSprite, vop, {0, 16}, {}};
  const Warp mirror{3, 0, 0, 0, 0, 1, sprite, vop, {0, -16, 16}, {0, 16, -16}};
  const Warp wide{2, 0, 0, 0, 0, 1, sprite, {0, 0, 5, 8}, {0, 5}, {}};
  const Warp single{2, 0, 3, 0, 0, 1, sprite, one, {0, 1}, {}};
  const Warp bent{4, 1, 3, 0, 0, 1, sprite, small, {0, 0, 0, -2}, {0, 0, 0, -2}};
  const Case cases[] = {
      // x + 1.5, y + 0.5: 16 x 1.5 + 0.5 rounded up; then half a row rounded down, and up again for a static sprite.
      {false, half, 2, 3, 60},
      {false, half, 15, 15, 255},
      {false, down, 2, 3, 35},
      {false, still, 2, 3, 36},
      // 1.5 luma samples: 3 halves give 1 half in chroma, as 1.5 / 2 does not fit; in 1/16, 0.25 remains.
      {true, third, 2, 3, 43},
      {true, fine, 2, 3, 39},
      // Twice the size: (2 x, 2 y); a chroma sample lies at 2 x + 0.25, and 16 * 4.25 + 6.25 is 74.
      {false, zoom, 2, 3, 38 + 32},
      {true, zoomChroma, 2, 3, 74},
      // The axes exchanged.
      {false, mirror, 2, 3, 50},
      // 5 samples become 7.5: a step is 1.5, at x = 3 4.5, at y = 2 3.
      {false, wide, 3, 2, 75},
      // One sample becomes 1.5, with nothing to round in 1/16; (1.5, 1.5) is 25.5.
      {false, single, 1, 1, 26},
      // (x, y) goes to (1.5 x, 1.5 y) / (1 + (x + y) / 8): 2.4 is 38 / 16, 1.2 is 19 / 16, so 19 + 19 / 16.
      {false, bent, 2, 0, 38},
      {false, bent, 1, 1, 20},
      {false, bent, 4, 4, 51},
  };
  for (const Case& c : cases) {
    const Samples plane(16, 16, 16), other(16, 16, 16), result(1, 1, 1), otherResult(1, 1, 1);
    for (int i = 0; i < 256; ++i)
      plane(i % 16, i / 16) = other(i % 16, i / 16) = static_cast<Mox8u>(i % 16 * 16 + i / 16);
    const Record record;
    ASSERT_EQ(init(record, c.warp), moxStsOk);
    std::vector<const Samples*> sprites{&plane}, results{&result};
    if (c.chroma) sprites.push_back(&other), results.push_back(&otherResult);
    ASSERT_NO_FATAL_FAILURE(warp(record, {c.x, c.y, 1, 1}, sprites, results));
    EXPECT_EQ(result(0, 0), c.result) << "case " << &c - cases;
    EXPECT_EQ((*results.back())(0, 0), c.result) << "case " << &c - cases;
  }
}

TEST_P(Mpeg4Warp, LiteralVectors) {
  struct Case {
    Warp warp;
    int x, y;
  };
  const MoxiRect vop{0, 0, 16, 16};
  const Case cases[] = {
      {{0, 0, 3, 0, 1, 1, vop, vop, {9}, {9}}, 0, 0},
      {{1, 0, 0, 0, 0, 1, vop, vop, {3}, {-5}}, 3, -5},
      {{1, 0, 0, 0, 1, 1, vop, vop, {3}, {-5}}, 6, -10},
      {{1, 0, 0, 0, 0, 1, vop, vop, {40}, {-40}}, 31, -32},
      {{1, 0, 0, 0, 0, 7, vop, vop, {40}, {-40}}, 40, -40},
      // Twice the size moves the mean sample by 7.5, turning about moves it by -15; then limited.
      {{2, 0, 0, 0, 0, 2, vop, vop, {0, 32}, {}}, 15, 15},
      {{2, 0, 3, 0, 1, 2, vop, vop, {0, 32}, {}}, 30, 30},
      {{2, 0, 0, 0, 0, 2, vop, vop, {0, -64}, {}}, -30, -30},
      {{2, 0, 0, 0, 0, 1, vop, vop, {0, 0, 0}, {0, 128}}, -32, 31},
      // A step right of 2 and down of 1: 7.5 and 0.
      {{3, 0, 2, 0, 0, 2, vop, vop, {0, 32, 0}, {0, 0, 0}}, 15, 0},
  };
  for (const Case& c : cases) {
    const Record record;
    ASSERT_EQ(init(record, c.warp), moxStsOk);
    const MoxiMotionVector v = vector(record, 0, 0);
    EXPECT_TRUE(v.x == c.x && v.y == c.y) << "case " << &c - cases << ": " << v.x << "," << v.y;
  }
}

TEST_P(Mpeg4Warp, Brightness) {
  struct Case {
    int change, before, after;
  };
  // Factors in 1/1024: 2048, 0, 1034, 512, -123, 17900.
  const Case cases[] = {{100, 0, 0},     {100, 127, 254}, {100, 128, 255},  {-100, 255, 0}, {1, 51, 52},
                        {1, 100, 101},   {-50, 255, 128}, {-50, 1, 1},      {-112, 0, 0},   {-112, 255, 0},
                        {1648, 14, 245}, {1648, 15, 255}, {1648, 255, 255}, {0, 77, 77}};
  for (const Case& c : cases) {
    const Samples plane(21, 5, 24), want(21, 5, 24);
    for (int i = 0; i < 105; ++i) {
      plane(i % 21, i / 21) = static_cast<Mox8u>(c.before);
      want(i % 21, i / 21) = static_cast<Mox8u>(c.after);
    }
    EXPECT_EQ(lib(MOX_FN(moxiChangeSpriteBrightness_MPEG4_8u_C1IR))(plane.at(0, 0), 24, 21, 5, c.change), moxStsOk);
    EXPECT_EQ(plane.copy(), want.copy()) << c.change << ": " << c.before;
  }
}

/// Null pointers, then a record without a tag.
template <std::size_t kRecord, std::size_t... kPointers, class Function>
void expect_record_order(Function call, MoxiWarpSpec* bad) {
  call.expect_order({{moxStsNullPointer, set<kPointers>(nullptr)}..., {moxStsBadContext, set<kRecord>(bad)}});
}

TEST_P(Mpeg4Warp, Arguments) {
  Mox32s size = 0, displacements[4] = {};
  EXPECT_EQ(lib(MOX_FN(moxiWarpGetSize_MPEG4))(nullptr), moxStsNullPointer);
  EXPECT_EQ(lib(MOX_FN(moxiWarpGetSize_MPEG4))(&size), moxStsOk);
  EXPECT_EQ(size, 384);
  MoxiRect rect{0, 0, 16, 16}, empty{0, 0, 16, 0}, narrow{0, 0, -1, 16};
  const Record record, none;
  // clang-format off
  Call{lib(MOX_FN(moxiWarpInit_MPEG4)),
       std::tuple{record.get(), displacements, displacements, 4, 1, 3, 0, 0, 7, &rect, &rect}}
      .keeps(record.data(), 384)
      .expect_order({{moxStsNullPointer, set<0>(nullptr)}, {moxStsNullPointer, set<9>(nullptr)},
                     {moxStsNullPointer, set<10>(nullptr)}, {moxStsOutOfRange, set<3>(5)}, {moxStsOutOfRange, set<3>(-1)},
                     {moxStsOutOfRange, set<4>(2)}, {moxStsOutOfRange, set<5>(4)}, {moxStsOutOfRange, set<5>(-1)},
                     {moxStsOutOfRange, set<8>(0)}, {moxStsOutOfRange, set<8>(8)}, {moxStsBadSize, set<9>(&empty)},
                     {moxStsBadSize, set<10>(&narrow)}, {moxStsNullPointer, set<1>(nullptr)},
                     {moxStsNullPointer, set<2>(nullptr)}});
  // clang-format on
  constexpr std::string_view kTag = "QAMC";
  EXPECT_NE(std::search(record.begin(), record.end(), kTag.begin(), kTag.end()), record.end());
  EXPECT_EQ(lib(MOX_FN(moxiWarpInit_MPEG4))(record.get(), nullptr, nullptr, 0, 2, 0, 1, 1, 1, &rect, &rect), moxStsOk);

  const Samples src(16, 16, 16), dst(16, 16, 16), dst2(16, 16, 16);
  Mox8u *const from = src.at(0, 0), *const to = dst.at(0, 0), *const to2 = dst2.at(0, 0);
  MoxiMotionVector v{1, 2};
  MoxiWarpSpec *const spec = record.get(), *const bad = none.get();
  expect_record_order<3, 2, 3>(Call{lib(MOX_FN(moxiCalcGlobalMV_MPEG4)), std::tuple{0, 0, &v, spec}}.keeps(&v, 4), bad);
  expect_record_order<5, 0, 2, 4, 5>(
      Call{lib(MOX_FN(moxiWarpLuma_MPEG4_8u_C1R)), std::tuple{from, 16, to, 16, &rect, spec}}.keeps(to, 256), bad);
  expect_record_order<9, 0, 2, 4, 6, 8, 9>(
      Call{lib(MOX_FN(moxiWarpChroma_MPEG4_8u_P2R)), std::tuple{from, 16, from, 16, to, 16, to2, 16, &rect, spec}}
          .keeps(to, 256)
          .keeps(to2, 256),
      bad);
  for (const MoxiRect& nothing : {empty, narrow}) {
    const auto before = dst.copy();
    EXPECT_NO_FATAL_FAILURE(warp(record, nothing, {&src}, {&dst}));
    EXPECT_EQ(dst.copy(), before);
  }
  Call brightness{lib(MOX_FN(moxiChangeSpriteBrightness_MPEG4_8u_C1IR)), std::tuple{dst.at(0, 0), 16, 16, 16, 1648}};
  brightness.keeps(dst.at(0, 0), 256)
      .expect_order(
          {{moxStsNullPointer, set<0>(nullptr)}, {moxStsOutOfRange, set<4>(-113)}, {moxStsOutOfRange, set<4>(1649)}});
}

MOX_INSTANTIATE_GENERATIONS(Mpeg4Warp);

}  // namespace
}  // namespace mox::test
