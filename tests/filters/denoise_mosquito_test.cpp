#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "moxvc.h"
#include "oracle/denoise_cast_mosquito.hpp"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace {
// An allocator of the test's own, in place of the core library's: blocks end at an unreadable page, and the allocation
// number g_failing fails.
std::map<void*, std::unique_ptr<mox::test::GuardedBytes>> g_live;
int g_count, g_failing;
}  // namespace

extern "C" __attribute__((visibility("default"))) void* moxMalloc(int length) {
  if (++g_count == g_failing) return nullptr;
  auto block = std::make_unique<mox::test::GuardedBytes>(length, mox::test::Placement::at_end());
  void* const address = block->data();
  g_live[address] = std::move(block);
  return address;
}
extern "C" __attribute__((visibility("default"))) void moxFree(void* pointer) { g_live.erase(pointer); }

namespace mox::test {
namespace {

constexpr Placement kPlacements[] = {Placement::at_end(), Placement::at_start(), Placement::aligned(3)};

class DenoiseMosquito : public PerGeneration {
 protected:
  /// Filters a region of a picture, of which only the part from `origin` on lies in `src`.
  MoxStatus filter(const Plane<Mox8u>& src, const Plane<Mox8u>& dst, MoxiSize picture, int edge, int flat, MoxiRect roi,
                   MoxiPoint origin = {0, 0}) const {
    g_count = g_failing = 0;
    MoxiDenoiseMosquitoState* state = nullptr;
    EXPECT_EQ(lib(MOX_FN(moxiFilterDenoiseMosquitoInitAlloc_8u_C1))(picture, edge, flat, &state), moxStsOk);
    const auto before = std::uintptr_t(origin.x + std::ptrdiff_t{origin.y} * src.step());
    const auto* const first = reinterpret_cast<const Mox8u*>(reinterpret_cast<std::uintptr_t>(src.at(0, 0)) - before);
    const MoxStatus status =
        lib(MOX_FN(moxiFilterDenoiseMosquito_8u_C1R))(first, src.step(), dst.at(0, 0), dst.step(), roi, state);
    EXPECT_EQ(lib(MOX_FN(moxiFilterDenoiseMosquitoFree_8u_C1))(state), moxStsOk);
    EXPECT_TRUE(g_live.empty());
    return status;
  }
};

/// Blocks with nothing, ringing, an edge under ringing or texture in them.
void draw(const Plane<Mox8u>& plane, int edge, int flat, Random& random) {
  for (int y0 = 0; y0 < plane.height(); y0 += 8) {
    for (int x0 = 0; x0 < plane.width(); x0 += 8) {
      const int kind = random(0, 5), jump = random(edge - 2, edge + 2), at = random(0, 13);
      const int noise = kind == 0 ? 0 : kind == 1 ? random(0, 2 * flat) : random(0, flat / 2);
      for (int i = 0; i < 64; ++i) {
        const int x = x0 + i % 8, y = y0 + i / 8, shape = kind == 2 && i % 8 + i / 8 > at ? jump : 0;
        if (x >= plane.width() || y >= plane.height()) continue;
        plane(x, y) = static_cast<Mox8u>(std::clamp(100 + shape + random(-noise, noise), 0, 255));
      }
    }
  }
}

TEST_P(DenoiseMosquito, EqualsOracle) {
  Random random;
  std::ptrdiff_t smoothed = 0, textures = 0, away = 0;
  for (int round = 0; round < 250; ++round) {
    const MoxiSize size = {random(1, round % 4 ? 40 : 100), random(1, 36)};
    const int extra = random(0, 9), step = round % 5 ? size.width + extra : -size.width - extra;
    const int edge = random(2, round % 9 ? 90 : 255), flat = random(1, round % 2 ? std::min(edge, 24) : edge);
    const Plane<Mox8u> src(size.width, size.height, step, kPlacements[round % 3]);
    const Plane<Mox8u> dst(size.width, size.height, -step, kPlacements[random(0, 2)]);
    const Plane<Mox8u> expected(size.width, size.height, -step);
    round % 10 ? draw(src, edge, flat, random) : random.fill(src.memory());
    const oracle::Mosquito whole(src, edge, flat);
    MoxiRect roi = {0, 0, size.width, size.height};
    if (round % 2) {
      roi.x = random(0, size.width - 1), roi.y = random(0, size.height - 1);
      roi.width = random(1, size.width - roi.x), roi.height = random(1, size.height - roi.y);
    }
    for (int y = roi.y; y < roi.y + roi.height; ++y) {
      for (int x = roi.x; x < roi.x + roi.width; ++x) {
        expected(x, y) = static_cast<Mox8u>(whole.filtered[y][x]);
        smoothed += whole.filtered[y][x] != src(x, y);
      }
    }
    textures += std::count(whole.texture.begin(), whole.texture.end(), true);
    away += std::count(whole.ringing.begin(), whole.ringing.end(), false);
    // Of the source, only what the region asks for.
    const MoxiPoint first = {std::max(roi.x / 8 * 8 - 9, 0), std::max(roi.y / 8 * 8 - 9, 0)};
    const MoxiPoint last = {std::min((roi.x + roi.width + 7) / 8 * 8 + 9, size.width),
                            std::min((roi.y + roi.height + 7) / 8 * 8 + 9, size.height)};
    const Plane<Mox8u> part(last.x - first.x, last.y - first.y, step, kPlacements[round % 3]);
    for (int y = first.y; y < last.y; ++y)
      std::copy(src.at(first.x, y), src.at(last.x - 1, y) + 1, part.at(0, y - first.y));
    ASSERT_EQ(filter(part, dst, size, edge, flat, roi, first), moxStsOk);
    ASSERT_EQ(dst.copy(), expected.copy()) << size.width << "x" << size.height << ", round " << round;
  }
  EXPECT_GT(smoothed, 10000);
  EXPECT_GT(std::min(textures, away - textures), 500);
}

/// By hand: two blocks of 100, a few samples of the first are lifted, the second has an edge in the middle, or the
/// third.
TEST_P(DenoiseMosquito, LiteralSamples) {
  struct Case {
    int edge, flat, lift, edgeColumn, stripes;
    std::vector<int> row;  ///< row 6 from column 3 on
  };
  const Case kCases[] = {
      {50, 10, 8, 12, 0, {101, 101, 100}},   // weights 4, 4 and 2 of 64 for what is 8 above: 6464, 6464 and 6448 >> 6
      {51, 10, 8, 12, 0, {108, 100, 100}},   // no edge
      {50, 10, 8, 20, 0, {108, 100, 100}},   // not next to it
      {50, 10, 10, 12, 0, {110, 100, 100}},  // not flat, nor is what lies beside it
      {50, 11, 10, 12, 0, {101, 101, 100}},  // 6472, 6472 and 6452 >> 6
      {50, 10, 8, 12, 24, {101, 101, 100}},  // 3 rows of stripes: 32 of 64 samples are not flat
      {50, 10, 8, 12, 25, {108, 100, 100}},  // and a sample below them: 34, a texture
  };
  for (const Case& c : kCases) {
    const Plane<Mox8u> src(24, 8, 24), dst(24, 8, 24);
    for (int i = 0; i < 24 * 8; ++i) src(i % 24, i / 24) = i % 24 < c.edgeColumn ? 100 : 150;
    for (int i = 0; i < c.stripes; ++i) src(i % 8, i / 8) = i % 2 ? 100 : 120;
    src(3, 6) = static_cast<Mox8u>(100 + c.lift);
    ASSERT_EQ(filter(src, dst, {24, 8}, c.edge, c.flat, {0, 0, 24, 8}), moxStsOk);
    EXPECT_EQ(std::vector<int>(dst.at(3, 6), dst.at(6, 6)), c.row) << "case " << &c - kCases;
    EXPECT_EQ(dst(c.edgeColumn - 1, 3) + dst(c.edgeColumn, 3), 250) << "the edge stays";
  }
}

TEST_P(DenoiseMosquito, NoMemory) {
  const auto allocate = lib(MOX_FN(moxiFilterDenoiseMosquitoInitAlloc_8u_C1));
  auto* const kept = reinterpret_cast<MoxiDenoiseMosquitoState*>(&g_count);
  for (int failing : {1, 2}) {
    g_count = 0, g_failing = failing;
    MoxiDenoiseMosquitoState* state = kept;
    EXPECT_EQ(allocate({16384, 16384}, 255, 255, &state), moxStsNoMemory);
    EXPECT_EQ(state, kept);
    EXPECT_EQ(g_count, failing);
    EXPECT_TRUE(g_live.empty());
  }
  g_failing = 0;
}

TEST_P(DenoiseMosquito, Arguments) {
  std::vector<Mox8u> src(32 * 16, 9), dst(32 * 16, 8);
  MoxiDenoiseMosquitoState *state = nullptr, *other = nullptr;
  for (const bool high : {false, true}) {
    Call(lib(MOX_FN(moxiFilterDenoiseMosquitoInitAlloc_8u_C1)), std::tuple{MoxiSize{32, 16}, 60, 12, &state})
        .keeps(&state, sizeof state)
        .expect_order({{moxStsNullPointer, set<3>(nullptr)},
                       {moxStsBadSize, set<0>(high ? MoxiSize{16385, 1} : MoxiSize{8, 0})},
                       {moxStsOutOfRange, set<1>(high ? 256 : 0)},
                       {moxStsOutOfRange, set<2>(high ? 61 : 0)}});
    if (!high) other = state, state = nullptr;
  }
  for (const MoxiRect bad : {MoxiRect{-1, 0, 8, 8},
                             {0, -1, 8, 8},
                             {25, 0, 8, 8},
                             {0, 9, 8, 8},
                             {0x7FFFFFFF, 0, 8, 8},
                             {0, 0, 0x7FFFFFFF, 0x7FFFFFFF}}) {
    const MoxiRect empty = bad.x ? MoxiRect{0, 0, 0, 8} : MoxiRect{40, 0, 8, -1};
    Call(lib(MOX_FN(moxiFilterDenoiseMosquito_8u_C1R)),
         std::tuple{src.data(), 32, dst.data(), 32, MoxiRect{24, 8, 8, 8}, state})
        .keeps(dst.data(), 8 * 32)
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set<2>(nullptr)},
                       {moxStsNullPointer, set<5>(nullptr)},
                       {moxStsBadSize, set<4>(empty)},
                       {moxStsRegionTooSmall, set<4>(bad)}});
  }
  const auto release = lib(MOX_FN(moxiFilterDenoiseMosquitoFree_8u_C1));
  EXPECT_EQ(release(state), moxStsOk);
  EXPECT_EQ(release(other), moxStsOk);
  EXPECT_EQ(release(nullptr), moxStsNullPointer);
}

MOX_INSTANTIATE_GENERATIONS(DenoiseMosquito);

}  // namespace
}  // namespace mox::test
