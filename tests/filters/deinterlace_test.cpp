#include "moxvc/deinterlace.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "filters/filtering.hpp"
#include "oracle/deinterlace.hpp"
#include "support/call.hpp"
#include "support/library.hpp"

namespace mox::test {
namespace {

class Deinterlace : public PerGeneration {
 protected:
  /// Calls test(width, height) for all shapes from a least height on.
  template <class Test>
  void shapes(int leastWidth, int leastHeight, Test test) const {
    for (int width : kWidths) {
      for (int height = leastHeight; height <= 8 && width >= leastWidth && !HasFatalFailure(); ++height) {
        test(width, height);
      }
    }
  }
  Random random;
};

TEST_P(Deinterlace, EdgeDetect) {
  const auto filter = lib(MOX_FN(moxiDeinterlaceEdgeDetect_8u_C1R));
  shapes(1, 1, [&](int width, int height) {
    for (int field : {0, 1}) {
      for (int border : {0, 1, 2}) {
        const RowSpan source{border || field ? 0 : -1, height + (!border && field)};
        Filtering{1, width, source, {0, height}}.run(
            random,
            [&](auto src, int srcStep, Mox8u* dst, int dstStep) {
              return filter(src[0], srcStep, dst, dstStep, {width, height}, field, border);
            },
            [&](const Look& look, int x, int y) {
              return oracle::edge_detect(look, {width, height}, x, y, field, border != 0);
            });
      }
    }
  });
}

TEST_P(Deinterlace, FilterTriangle) {
  const auto filter = lib(MOX_FN(moxiDeinterlaceFilterTriangle_8u_C1R));
  shapes(1, 3, [&](int width, int height) {
    for (int layout : {0, 1, 4, 16, 5, -1}) {
      for (unsigned weight : {0u, 1u, 85u, 128u, 255u, 256u, 300u, 0x80000000u}) {
        const bool above = layout == 4 || layout == 16;
        Filtering{1, width, {above ? -2 : 0, height}, {above ? -1 : 0, height}}.run(
            random,
            [&](auto src, int srcStep, Mox8u* dst, int dstStep) {
              return filter(src[0], srcStep, dst, dstStep, {width, height}, weight, layout);
            },
            [&](const Look& look, int x, int y) {
              return oracle::triangle(look, {width, height}, x, y, weight, layout);
            });
      }
    }
  });
}

constexpr int kThresholds[] = {0, 1, 4, 20, 255, 256, 1000, -3};

TEST_P(Deinterlace, MedianThreshold) {
  const auto filter = lib(MOX_FN(moxiDeinterlaceMedianThreshold_8u_C1R));
  shapes(1, 2, [&](int width, int height) {
    for (int field : {0, 1}) {
      for (bool border : {false, true}) {
        // The row behind the last one is read if that one is filtered; copied borders are as long as the step.
        const RowSpan source{border || field ? 0 : -1, height + (!border && height % 2 != field)};
        for (int threshold : kThresholds) {
          Filtering{1, width, source, {0, height}, border ? 5 : 0}.run(
              random,
              [&](auto src, int srcStep, Mox8u* dst, int dstStep) {
                return filter(src[0], srcStep, dst, dstStep, {width, height}, threshold, field, border);
              },
              [&](const Look& look, int x, int y) {
                return oracle::median_threshold(look, {width, height}, x, y, threshold, field, border);
              });
        }
      }
    }
  });
}

TEST_P(Deinterlace, MotionAdaptive) {
  const auto filter = lib(MOX_FN(moxiDeinterlaceMotionAdaptive_8u_C1));
  shapes(1, 1, [&](int width, int height) {
    for (int flags = 0; flags < 16; ++flags) {
      for (int repeat = 0; repeat < 2; ++repeat) {
        const int threshold = kThresholds[random(0, 7)];
        const oracle::AdaptiveSettings set{threshold, flags & 1, flags >> 1 & 1, (flags & 4) != 0, (flags & 8) != 0};
        Filtering{4, width, {0, height}, {0, height}}.run(
            random,
            [&](auto src, int srcStep, Mox8u* dst, int dstStep) {
              return filter(src, srcStep, dst, dstStep, {width, height}, threshold, set.topFirst, set.topField,
                            set.copy, set.protect);
            },
            [&](const Look& look, int x, int y) {
              return oracle::motion_adaptive(look, {width, height}, x, y, set);
            });
      }
    }
  });
}

struct Points {
  Mox32s threshold[2];
  double constant[2];
};
/// Gentle and steep lines, lines whose offset is limited, hard switches, and both extremes.
constexpr Points kPoints[] = {
    {{10, 20}, {0, 1}}, {{0, 100}, {.25, 1}}, {{0, 250}, {-1000, 0}}, {{0, 1}, {-1e6, 1e6}}, {{3, 4}, {0, 100}},
    {{0, 256}, {0, 1}}, {{0, 10}, {.5, .5}},  {{20, 20}, {0, 1}},     {{255, 255}, {0, 1}},  {{1, 1}, {0, 1}},
    {{-5, -5}, {0, 1}}, {{300, 300}, {0, 1}}, {{1000, 1010}, {0, 1}}, {{0, 10}, {2, 2}},     {{0, 3}, {-126.99, 200}}};

TEST_P(Deinterlace, Blend) {
  const auto filter = lib(MOX_FN(moxiDeinterlaceBlend_8u_C1));
  for (Points points : kPoints) {
    MoxiDeinterlaceBlendState* state = nullptr;
    ASSERT_EQ(lib(MOX_FN(moxiDeinterlaceBlendInitAlloc_8u_C1))({3, 3}, points.threshold, points.constant, &state),
              moxStsOk);
    shapes(3, 3, [&](int width, int height) {
      for (int repeat = 0; repeat < 3; ++repeat) {
        const int flags = random(0, 7);
        const oracle::BlendSettings set{flags & 1, flags >> 1 & 1, (flags & 4) != 0};
        Filtering{3, width, {0, height}, {0, height}}.run(
            random,
            [&](auto src, int srcStep, Mox8u* dst, int dstStep) {
              return filter(src, srcStep, dst, dstStep, {width, height}, set.topFirst, set.topField, set.copy, state);
            },
            [&](const Look& look, int x, int y) {
              return oracle::blend(look, {width, height}, x, y, set, [&](int motion) { return state->pLUT[motion]; });
            });
      }
    });
    EXPECT_EQ(lib(MOX_FN(moxiDeinterlaceBlendFree_8u_C1))(state), moxStsOk);
  }
}

/// By hand: what one sample of a filtered row becomes, in a plane of three rows and one or more columns.
TEST_P(Deinterlace, LiteralSamples) {
  const auto triangle = [this](Mox32u weight, std::vector<Mox8u> column) {
    std::vector<Mox8u> out(3);
    EXPECT_EQ(lib(MOX_FN(moxiDeinterlaceFilterTriangle_8u_C1R))(column.data(), 1, out.data(), 1, {1, 3}, weight, 0),
              moxStsOk);
    return int{out[1]};
  };
  EXPECT_EQ(triangle(85, {255, 255, 255}), 254) << "weights of 85, 85, 85";
  EXPECT_EQ(triangle(300, {9, 77, 200}), 77);
  EXPECT_EQ(triangle(128, {10, 20, 31}), 20) << "(41 * 64 + 20 * 128) >> 8, 20.25";

  const auto edge = [this](std::vector<Mox8u> rows) {
    std::vector<Mox8u> out(3);
    EXPECT_EQ(lib(MOX_FN(moxiDeinterlaceEdgeDetect_8u_C1R))(rows.data(), 3, out.data(), 3, {3, 1}, 1, 0), moxStsOk);
    return int{out[1]};
  };
  EXPECT_EQ(edge({10, 90, 50, 0, 200, 13}), 12) << "falling to the right, (10 + 13 + 1) / 2";
  EXPECT_EQ(edge({50, 90, 10, 13, 200, 0}), 12) << "rising to the right";
  EXPECT_EQ(edge({10, 20, 30, 40, 26, 16}), 23) << "vertical and falling 6: the vertical one";
  EXPECT_EQ(edge({10, 90, 40, 45, 99, 15}), 43) << "both diagonals 5: the rising one";

  // One interpolated row; still frames but for the sample itself.
  const auto adaptive = [this](int threshold, int protect, Mox8u other, Mox8u here, Mox8u beside) {
    const Mox8u before[] = {beside, other, beside}, now[] = {beside, here, beside};
    const Mox8u* const frames[] = {before, now, now, now};
    Mox8u out[3] = {};
    EXPECT_EQ(lib(MOX_FN(moxiDeinterlaceMotionAdaptive_8u_C1))(frames, 1, out, 1, {1, 3}, threshold, 0, 0, 0, protect),
              moxStsOk);
    return int{out[1]};
  };
  EXPECT_EQ(adaptive(4, 0, 100, 103, 0), 100) << "still, not tested further";
  EXPECT_EQ(adaptive(3, 0, 100, 103, 0), 0) << "moves, combs";
  EXPECT_EQ(adaptive(4, 1, 100, 103, 70), 100) << "still, 30 below";
  EXPECT_EQ(adaptive(4, 1, 100, 103, 69), 69) << "still, 31 below";
  EXPECT_EQ(adaptive(0, 0, 100, 100, 106), 100) << "threshold 0: nothing is still, 6 above";
  EXPECT_EQ(adaptive(0, 0, 100, 100, 107), 107);
  EXPECT_EQ(adaptive(0, 0, 250, 250, 235), 235) << "below 244";
  EXPECT_EQ(adaptive(0, 0, 232, 232, 235), 232) << "235 is not above 235, though above 232 + 6 limited";
  EXPECT_EQ(adaptive(0, 0, 232, 232, 236), 236);
  EXPECT_EQ(adaptive(0, 0, 5, 5, 0), 5) << "nothing is below 0";
}

TEST_P(Deinterlace, Arguments) {
  std::vector<Mox8u> memory(400, 7);
  const Mox8u* const src = memory.data();
  Mox8u* const dst = memory.data() + 200;
  const auto size = [](int width, int height) { return set<4>(MoxiSize{width, height}); };
  Call(lib(MOX_FN(moxiDeinterlaceEdgeDetect_8u_C1R)), std::tuple{src, 8, dst, 8, MoxiSize{8, 4}, 1, 1})
      .keeps(memory.data(), memory.size())
      .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                     {moxStsNullPointer, set<2>(nullptr)},
                     {moxStsBadSize, size(0, 4)},
                     {moxStsBadSize, size(8, 0)}});
  Call(lib(MOX_FN(moxiDeinterlaceFilterTriangle_8u_C1R)), std::tuple{src, 8, dst, 8, MoxiSize{8, 4}, 128u, 0})
      .keeps(memory.data(), memory.size())
      .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                     {moxStsNullPointer, set<2>(nullptr)},
                     {moxStsBadSize, size(8, 2)},
                     {moxStsBadSize, size(-1, 4)}});
  Call(lib(MOX_FN(moxiDeinterlaceMedianThreshold_8u_C1R)), std::tuple{src, 8, dst, 8, MoxiSize{8, 4}, 3, 1, 1})
      .keeps(memory.data(), memory.size())
      .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                     {moxStsNullPointer, set<2>(nullptr)},
                     {moxStsBadSize, size(0, 4)},
                     {moxStsBadSize, size(8, 1)}});
}

TEST_P(Deinterlace, ArgumentsOfFrames) {
  std::vector<Mox8u> memory(400, 7);
  Mox8u* const dst = memory.data() + 200;
  const Mox8u* frames[] = {dst - 200, dst - 150, dst - 100, dst - 50};
  const auto size = [](int width, int height) { return set<4>(MoxiSize{width, height}); };
  const auto without = [&](std::size_t frame) {
    return [=](auto& arguments, auto& keep) {
      auto spoiled = std::make_shared<std::vector<const Mox8u*>>(std::get<0>(arguments), std::get<0>(arguments) + 4);
      (*spoiled)[frame] = nullptr;
      std::get<0>(arguments) = spoiled->data();
      keep.push_back(std::move(spoiled));
    };
  };
  Call(lib(MOX_FN(moxiDeinterlaceMotionAdaptive_8u_C1)), std::tuple{frames, 8, dst, 8, MoxiSize{8, 4}, 10, 0, 0, 1, 1})
      .keeps(memory.data(), memory.size())
      .expect_order({{moxStsNullPointer, set<2>(nullptr)},
                     {moxStsNullPointer, without(0)},
                     {moxStsNullPointer, without(1)},
                     {moxStsNullPointer, without(2)},
                     {moxStsNullPointer, without(3)},
                     {moxStsBadSize, size(0, 4)},
                     {moxStsBadSize, size(8, 0)}});
  std::vector<Mox16u> table(512, 128);
  MoxiDeinterlaceBlendState state{table.data(), 0, 128, 255, 0};
  const auto tableless = set_field<8>(&MoxiDeinterlaceBlendState::pLUT, nullptr);
  Call(lib(MOX_FN(moxiDeinterlaceBlend_8u_C1)), std::tuple{frames, 8, dst, 8, MoxiSize{8, 4}, 0, 0, 1, &state})
      .keeps(memory.data(), memory.size())
      .expect_order({{moxStsNullPointer, set<2>(nullptr)},
                     {moxStsNullPointer, without(0)},
                     {moxStsNullPointer, without(1)},
                     {moxStsNullPointer, without(2)},
                     {moxStsNullPointer, tableless},
                     {moxStsBadSize, size(2, 4)},
                     {moxStsBadSize, size(8, 2)}});
  EXPECT_EQ(lib(MOX_FN(moxiDeinterlaceMotionAdaptive_8u_C1))(nullptr, 8, dst, 8, {0, 0}, 1, 0, 0, 0, 0),
            moxStsNullPointer);
  EXPECT_EQ(lib(MOX_FN(moxiDeinterlaceBlend_8u_C1))(nullptr, 8, dst, 8, {0, 0}, 0, 0, 0, &state), moxStsNullPointer);
}

MOX_INSTANTIATE_GENERATIONS(Deinterlace);

}  // namespace
}  // namespace mox::test
