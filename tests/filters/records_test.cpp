#include <gtest/gtest.h>

#include <numeric>
#include <vector>

#include "moxvc.h"
#include "support/allocator.hpp"
#include "support/call.hpp"
#include "support/library.hpp"

namespace mox::test {
namespace {

class FilterRecords : public PerGeneration {};

/// A record is stored before its table is allocated; a null stands for what is not there. Then both are freed.
template <class Record, class Create, class Free>
void expect_allocations(Create create, Free free, Mox16u* Record::*table, int tableBytes) {
  Record other, *record = &other;
  reset_allocator(1);
  EXPECT_EQ(create(&record), moxStsNoMemory);
  EXPECT_EQ(record, &other) << "written without a record";
  reset_allocator(2);
  EXPECT_EQ(create(&record), moxStsNoMemory);
  ASSERT_TRUE(g_live.count(record)) << "no record";
  EXPECT_EQ(record->*table, nullptr);
  EXPECT_EQ(free(record), moxStsOk);
  reset_allocator();
  EXPECT_EQ(create(&record), moxStsOk);
  EXPECT_EQ(g_sizes, (std::vector<int>{static_cast<int>(sizeof(Record)), tableBytes}));
  EXPECT_EQ(g_live.size(), 2u);
  EXPECT_EQ(free(record), moxStsOk);
  EXPECT_TRUE(g_live.empty()) << "not all was freed";
  EXPECT_EQ(free(nullptr), moxStsNullPointer);
}

TEST_P(FilterRecords, Allocation) {
  const auto blend = lib(MOX_FN(moxiDeinterlaceBlendInitAlloc_8u_C1));
  expect_allocations<MoxiDeinterlaceBlendState>(
      [&](auto** record) {
        Mox32s threshold[] = {1, 2};
        double constant[] = {0, 1};
        return blend({3, 3}, threshold, constant, record);
      },
      lib(MOX_FN(moxiDeinterlaceBlendFree_8u_C1)), &MoxiDeinterlaceBlendState::pLUT, 1024);
  const auto adaptive = lib(MOX_FN(moxiFilterDenoiseAdaptiveInitAlloc_8u_C1));
  expect_allocations<MoxiDenoiseAdaptiveState>(
      [&](auto** record) {
        return adaptive(record, {720, 576}, {2, 3});
      },
      lib(MOX_FN(moxiFilterDenoiseAdaptiveFree_8u_C1)), &MoxiDenoiseAdaptiveState::pRecip, 2 * (3 * 7 * 7 + 1));
  // More entries than an allocation can have.
  MoxiDenoiseAdaptiveState* record = nullptr;
  EXPECT_EQ(adaptive(&record, {1 << 30, 1 << 30}, {1 << 30, 1}), moxStsNoMemory);
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record->pRecip, nullptr);
  EXPECT_EQ(lib(MOX_FN(moxiFilterDenoiseAdaptiveFree_8u_C1))(record), moxStsOk);
}

TEST_P(FilterRecords, Reciprocals) {
  reset_allocator();
  MoxiDenoiseAdaptiveState* state = nullptr;
  ASSERT_EQ(lib(MOX_FN(moxiFilterDenoiseAdaptiveInitAlloc_8u_C1))(&state, {20, 30}, {1, 9}), moxStsOk);
  EXPECT_EQ(state->maskSize.width * 100 + state->maskSize.height, 109);
  EXPECT_EQ(state->maxRoiSize.width * 100 + state->maxRoiSize.height, 2030);
  EXPECT_EQ(state->pRecip[0], 1);
  for (int n = 1; n <= 3 * 19 * 19; ++n) {
    // Nearer to 65535 / n than one half; the half itself goes up.
    const int twice = 2 * (n * state->pRecip[n] - 65535);
    EXPECT_TRUE(twice > -n && twice <= n) << n << ": " << state->pRecip[n];
  }
  EXPECT_EQ(lib(MOX_FN(moxiFilterDenoiseAdaptiveFree_8u_C1))(state), moxStsOk);
}

/// By hand: points, the line that they give, and the weight at some motions.
TEST_P(FilterRecords, BlendLines) {
  struct Weight {
    int motion, weight;
  };
  struct Case {
    const char* name;
    int threshold[2];
    double constant[2];
    int slope, offset, motionHigh, motionLow;
    Weight weights[3];
  };
  constexpr Case kCases[] = {
      {"line", {10, 20}, {0, 1}, 26, -256, 19, 8, {{9, 0}, {10, 4}, {20, 256}}},
      {"falling points are sorted", {20, 10}, {1, 0}, 26, -256, 19, 8, {{9, 0}, {10, 4}, {19, 238}}},
      {"offset above 0", {0, 100}, {.25, 1}, 2, 64, 96, 0, {{0, 64}, {95, 254}, {96, 256}}},
      {"slope of 1", {0, 256}, {0, 1}, 1, 0, 255, 0, {{0, 0}, {77, 77}, {255, 255}}},
      {"offset of 257", {0, 10}, {1.00390625, 1.00390625}, 0, 256, 255, 0, {{0, 256}, {9, 256}, {255, 256}}},
      {"above the range", {0, 10}, {2, 3}, 0, 256, 255, 0, {{0, 256}, {9, 256}, {255, 256}}},
      {"constant", {0, 10}, {.5, .5}, 0, 128, 255, 0, {{0, 128}, {10, 128}, {255, 128}}},
      {"constant below 0", {0, 10}, {-1, -1}, 0, 0, 255, 256, {{0, 0}, {10, 0}, {255, 0}}},
      {"beyond all motion", {1000, 1010}, {0, 1}, 0, 0, 255, 256, {{0, 0}, {128, 0}, {255, 0}}},
      {"offset limited", {0, 250}, {-1000, 0}, 130, -32511, 252, 249, {{250, 0}, {251, 119}, {252, 249}}},
      {"constants limited", {0, 1}, {-1e6, 1e6}, 8420863, -32511, 0, 0, {{0, 0}, {1, 256}, {255, 256}}},
      {"slope limited to 0", {0, 100}, {-1000, -127}, 0, 0, 255, 256, {{0, 0}, {100, 0}, {255, 0}}},
      {"threshold 0 divides", {-10, 0}, {-1000, -127}, 0, 0, 255, 256, {{0, 0}, {100, 0}, {255, 0}}},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(c.name);
    reset_allocator();
    Mox32s threshold[] = {c.threshold[0], c.threshold[1]};
    double constant[] = {c.constant[0], c.constant[1]};
    MoxiDeinterlaceBlendState* state = nullptr;
    ASSERT_EQ(lib(MOX_FN(moxiDeinterlaceBlendInitAlloc_8u_C1))({3, 3}, threshold, constant, &state), moxStsOk);
    EXPECT_EQ((std::vector{state->slope, state->offset, state->motionHigh, state->motionLow}),
              (std::vector{c.slope, c.offset, c.motionHigh, c.motionLow}));
    for (const Weight& w : c.weights) EXPECT_EQ(state->pLUT[w.motion], w.weight) << w.motion;
    for (int m = 0; m < 256; ++m) {
      EXPECT_EQ(state->pLUT[m] + state->pLUT[256 + m], 256) << m;
      if (m < c.motionLow || m > c.motionHigh) {
        EXPECT_EQ(state->pLUT[m], m < c.motionLow ? 0 : 256) << m;
      }
    }
    EXPECT_EQ(std::vector(threshold, threshold + 2),
              (std::vector{std::min(c.threshold[0], c.threshold[1]), std::max(c.threshold[0], c.threshold[1])}));
    const double least = std::min(c.constant[0], c.constant[1]), greatest = std::max(c.constant[0], c.constant[1]);
    EXPECT_EQ(constant[0], least < -32768 ? -32768 : least);
    EXPECT_EQ(constant[1], greatest > 32767 ? 32767 : greatest);
    EXPECT_EQ(lib(MOX_FN(moxiDeinterlaceBlendFree_8u_C1))(state), moxStsOk);
  }
}

/// Equal thresholds: a switch, and neither slope nor offset.
TEST_P(FilterRecords, BlendSwitches) {
  for (int t : {20, 0, 255, 256, 300, -5}) {
    Mox32s threshold[] = {t, t};
    double constant[] = {7, -7};
    MoxiDeinterlaceBlendState* state = nullptr;
    reset_allocator();
    ASSERT_EQ(lib(MOX_FN(moxiDeinterlaceBlendInitAlloc_8u_C1))({3, 3}, threshold, constant, &state), moxStsOk);
    EXPECT_EQ(state->motionHigh, t - 1);
    EXPECT_EQ(state->motionLow, t);
    EXPECT_EQ(std::accumulate(state->pLUT, state->pLUT + 256, 0), 256 * (256 - std::clamp(t, 0, 256))) << t;
    for (int m = 0; m < 256; ++m) {
      EXPECT_EQ(state->pLUT[m], m < t ? 0 : 256) << m;
      EXPECT_EQ(state->pLUT[256 + m], m < t ? 256 : 0) << m;
    }
    EXPECT_EQ(constant[0] * 10 + constant[1], -63) << "sorted";
    EXPECT_EQ(lib(MOX_FN(moxiDeinterlaceBlendFree_8u_C1))(state), moxStsOk);
  }
}

TEST_P(FilterRecords, Arguments) {
  reset_allocator();
  Mox32s threshold[] = {1, 2};
  double constant[] = {0, 1};
  MoxiDeinterlaceBlendState* blend = nullptr;
  Call(lib(MOX_FN(moxiDeinterlaceBlendInitAlloc_8u_C1)), std::tuple{MoxiSize{3, 3}, threshold, constant, &blend})
      .keeps(&blend, sizeof blend)
      .expect_order({{moxStsNullPointer, set<3>(nullptr)},
                     {moxStsBadSize, set<0>(MoxiSize{2, 3})},
                     {moxStsBadSize, set<0>(MoxiSize{3, 2})}});
  EXPECT_EQ(lib(MOX_FN(moxiDeinterlaceBlendFree_8u_C1))(blend), moxStsOk);
  const auto region = [](int width, int height) { return set<1>(MoxiSize{width, height}); };
  const auto mask = [](int width, int height) { return set<2>(MoxiSize{width, height}); };
  MoxiDenoiseAdaptiveState* adaptive = nullptr;
  Call(lib(MOX_FN(moxiFilterDenoiseAdaptiveInitAlloc_8u_C1)), std::tuple{&adaptive, MoxiSize{4, 5}, MoxiSize{4, 5}})
      .keeps(&adaptive, sizeof adaptive)
      .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                     {moxStsBadSize, region(0, 5)},
                     {moxStsBadSize, region(4, 0)},
                     {moxStsBadSize, mask(0, 5)},
                     {moxStsBadSize, mask(4, -1)},
                     {moxStsBadSize, mask(5, 5)},
                     {moxStsBadSize, mask(4, 6)}});
  EXPECT_EQ(lib(MOX_FN(moxiFilterDenoiseAdaptiveFree_8u_C1))(adaptive), moxStsOk);
}

MOX_INSTANTIATE_GENERATIONS(FilterRecords);

}  // namespace
}  // namespace mox::test
