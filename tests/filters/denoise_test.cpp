#include "moxvc/denoise.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "filters/filtering.hpp"
#include "oracle/denoise.hpp"
#include "support/call.hpp"
#include "support/library.hpp"

namespace mox::test {
namespace {

constexpr auto kUnknownFlags = static_cast<MoxStatus>(1);

/// A region and a rectangle in it: all of it, at its corners, inside, one column wide.
struct Rectangle {
  MoxiSize region;
  MoxiPoint offset;
  MoxiSize size;

  static Rectangle random(Random& random, int width, int leastHeight) {
    const int height = leastHeight + random(0, 9);
    if (random.chance(0.4)) return {{width, height}, {0, 0}, {width, height}};
    const int w = random(1, width), h = random(leastHeight, height);
    return {{width, height}, {random(0, width - w), random(0, height - h)}, {w, h}};
  }
};

class Denoise : public PerGeneration {
 protected:
  /// A filter's output of a rectangle is its output of the whole region there.
  template <class Call, class Expected>
  void run(int frames, bool upright, const Rectangle& r, Call call, Expected expected) {
    Filtering{frames, r.region.width, {0, r.region.height}, {0, r.size.height}, 0, r.size.width, upright}.run(
        random, call, [&](const Look& look, int x, int y) { return expected(look, x + r.offset.x, y + r.offset.y); });
  }
  std::shared_ptr<MoxiDenoiseAdaptiveState> state(MoxiSize mask) {
    MoxiDenoiseAdaptiveState* made = nullptr;
    EXPECT_EQ(lib(MOX_FN(moxiFilterDenoiseAdaptiveInitAlloc_8u_C1))(&made, mask, mask), moxStsOk);
    return {made, lib(MOX_FN(moxiFilterDenoiseAdaptiveFree_8u_C1))};
  }
  Random random;
};

constexpr int kThresholds[] = {0, 1, 3, 9, 40, 255, 256, 100000, -2147483647 - 1};

TEST_P(Denoise, Adaptive) {
  const auto filter = lib(MOX_FN(moxiFilterDenoiseAdaptive_8u_C1R));
  for (MoxiSize mask : {MoxiSize{1, 1}, {2, 1}, {1, 3}, {5, 4}, {8, 20}, {130, 1}}) {
    const auto record = state(mask);
    for (int width : kWidths) {
      for (int flags = 0; flags < 4 && !HasFatalFailure(); ++flags) {
        for (int repeat = 0; repeat < (mask.width == 1 ? 8 : 2); ++repeat) {
          const auto r = Rectangle::random(random, width + random(0, 2) * mask.width % 20, 1);
          const int threshold = kThresholds[random(0, 8)];
          run(
              3, false, r,
              [&](auto src, int srcStep, Mox8u* dst, int dstStep) {
                return filter(src, srcStep, dst, dstStep, r.region, mask, r.offset, r.size, threshold, flags,
                              record.get());
              },
              [&](const Look& look, int x, int y) {
                return oracle::adaptive(look, {r.region.width, r.region.height}, x, y,
                                        {mask.width, mask.height, threshold, flags});
              });
        }
      }
    }
  }
}

TEST_P(Denoise, Smooth) {
  const auto filter = lib(MOX_FN(moxiFilterDenoiseSmooth_8u_C1R));
  for (int width : kWidths) {
    for (int repeat = 0; repeat < 40 && !HasFatalFailure(); ++repeat) {
      const auto r = Rectangle::random(random, width, 3);
      const int threshold = kThresholds[random(0, 8)];
      const Guarded<Mox8u> buffer(static_cast<std::size_t>(2 * (r.size.width + 3) * (r.size.height + 3)));
      std::fill(buffer.begin(), buffer.end(), Mox8u{0});
      run(
          1, true, r,
          [&](auto src, int srcStep, Mox8u* dst, int dstStep) {
            return filter(src[0], srcStep, dst, dstStep, r.region, threshold, r.offset, r.size, buffer.data());
          },
          [&](const Look& look, int x, int y) {
            const auto sample = [&](int u, int v) { return look(0, u, v); };
            return oracle::Smoothing(sample, {r.region.width, r.region.height},
                                     {r.offset.x + r.size.width, r.offset.y + r.size.height}, threshold)(x, y);
          });
    }
  }
}

/// Its low-pass filter could use several; the 3x3 form never does.
TEST_P(Denoise, SmoothStartsNoThread) {
  std::vector<Mox8u> plane(300 * 200, 9), out(plane), buffer(2 * 303 * 203);
  const int before = threads_of_this_process();
  EXPECT_EQ(lib(MOX_FN(moxiFilterDenoiseSmooth_8u_C1R))(plane.data(), 300, out.data(), 300, {300, 200}, 5, {0, 0},
                                                        {300, 200}, buffer.data()),
            moxStsOk);
  EXPECT_EQ(threads_of_this_process(), before);
}

/// Flat frames and impulses, by hand.
TEST_P(Denoise, LiteralSamples) {
  constexpr int kWidth = 40, kHeight = 9;
  const auto adaptive = [&](std::vector<Mox8u> levels, int threshold, int flags, MoxiSize mask) {
    std::vector<std::vector<Mox8u>> planes;
    for (Mox8u level : levels) planes.emplace_back(kWidth * kHeight, level);
    const Mox8u* const src[] = {planes[0].data(), planes[1].data(), planes[2].data()};
    std::vector<Mox8u> out(1);
    EXPECT_EQ(lib(MOX_FN(moxiFilterDenoiseAdaptive_8u_C1R))(src, kWidth, out.data(), 1, {kWidth, kHeight}, mask,
                                                            {20, 4}, {1, 1}, threshold, flags, state(mask).get()),
              moxStsOk);
    return int{out[0]};
  };
  EXPECT_EQ(adaptive({200, 255, 200}, 0, 3, {1, 1}), 255) << "2295 * 7282 >> 16";
  EXPECT_EQ(adaptive({200, 200, 200}, 1, 3, {1, 1}), 199) << "5400 * 2427 >> 16, 199.98";
  EXPECT_EQ(adaptive({100, 109, 118}, 10, 1, {1, 1}), 104) << "(900 + 981) * 3641 >> 16, 104.5";
  EXPECT_EQ(adaptive({100, 109, 118}, 10, 2, {1, 1}), 113);
  EXPECT_EQ(adaptive({100, 109, 118}, 9, 3, {1, 1}), 109) << "981 * 7282 >> 16: the distance 9 is not below 9";
  EXPECT_EQ(adaptive({60, 63, 66}, 5, 3, {2, 2}), 63) << "4725 * 874 >> 16, 63.01";

  const auto smooth = [&](const std::vector<Mox8u>& plane, int threshold) {
    std::vector<Mox8u> out(plane.size()), buffer(2 * (kWidth + 3) * (kHeight + 3));
    EXPECT_EQ(lib(MOX_FN(moxiFilterDenoiseSmooth_8u_C1R))(plane.data(), kWidth, out.data(), kWidth, {kWidth, kHeight},
                                                          threshold, {0, 0}, {kWidth, kHeight}, buffer.data()),
              moxStsOk);
    return out;
  };
  for (Mox8u level : std::vector<Mox8u>{0, 200, 255}) {
    const std::vector<Mox8u> flat(kWidth * kHeight, level);
    EXPECT_EQ(smooth(flat, 5), flat) << "counts of 9, 6 and 4";
  }
  std::vector<Mox8u> impulse(kWidth * kHeight), spread = impulse;
  impulse[4 * kWidth + 20] = 255;
  for (int i = 0; i < 9; ++i) spread[static_cast<std::size_t>((3 + i / 3) * kWidth + 19 + i % 3)] = 28;
  EXPECT_EQ(smooth(impulse, 29), spread) << "means of 28 and 0, no edge";
  EXPECT_EQ(smooth(impulse, 28)[4 * kWidth + 20], 63) << "255 * 16384 >> 16: no edge up and left of it";
  EXPECT_EQ(smooth(impulse, 0), impulse);
}

TEST_P(Denoise, Arguments) {
  std::vector<Mox8u> memory(900, 7), scratch(2 * 11 * 11);
  Mox8u* const dst = memory.data() + 600;
  const Mox8u* frames[] = {dst - 600, dst - 400, dst - 200};
  const auto record = state({2, 1});
  const auto region = [](int width, int height) { return set<4>(MoxiSize{width, height}); };
  const auto without = [&](std::size_t frame) {
    return [=](auto& arguments, auto& keep) {
      auto spoiled = std::make_shared<std::vector<const Mox8u*>>(std::get<0>(arguments), std::get<0>(arguments) + 3);
      (*spoiled)[frame] = nullptr;
      std::get<0>(arguments) = spoiled->data();
      keep.push_back(std::move(spoiled));
    };
  };
  const auto mask = [](int width, int height) { return set<5>(MoxiSize{width, height}); };
  const auto offset = [](auto index, int x, int y) { return set<index.value>(MoxiPoint{x, y}); };
  const auto size = [](int width, int height) { return set<7>(MoxiSize{width, height}); };
  constexpr std::integral_constant<std::size_t, 6> kOffset;
  Call(lib(MOX_FN(moxiFilterDenoiseAdaptive_8u_C1R)), std::tuple{frames, 12, dst, 12, MoxiSize{12, 10}, MoxiSize{2, 1},
                                                                 MoxiPoint{4, 2}, MoxiSize{8, 8}, 9, 3, record.get()})
      .keeps(memory.data(), memory.size())
      .expect_order({{moxStsNullPointer, set<2>(nullptr)},
                     {moxStsNullPointer, set<10>(nullptr)},
                     {moxStsNullPointer, without(0)},
                     {moxStsNullPointer, without(1)},
                     {moxStsNullPointer, without(2)},
                     {moxStsBadSize, region(0, 10)},
                     {moxStsBadSize, region(12, 0)},
                     {moxStsBadSize, mask(0, 1)},
                     {moxStsBadSize, mask(1, 2)},
                     {moxStsBadSize, mask(2, 2)},
                     {moxStsBadSize, size(0, 8)},
                     {moxStsBadSize, size(8, -1)},
                     {moxStsBadSize, size(9, 8)},
                     {moxStsBadSize, offset(kOffset, 5, 2)},
                     {moxStsBadSize, offset(kOffset, 4, 3)},
                     {moxStsBadSize, offset(kOffset, -1, 2)},
                     {moxStsBadSize, offset(kOffset, 0x7FFFFFFF, 0x7FFFFFFF)},
                     {kUnknownFlags, set<9>(4)},
                     {kUnknownFlags, set<9>(-1)}});
  EXPECT_EQ(lib(MOX_FN(moxiFilterDenoiseAdaptive_8u_C1R))(nullptr, 12, dst, 12, {}, {}, {}, {}, 0, 9, nullptr),
            moxStsNullPointer);
  Call(lib(MOX_FN(moxiFilterDenoiseSmooth_8u_C1R)),
       std::tuple{frames[0], 12, dst, 12, MoxiSize{12, 10}, 9, MoxiPoint{4, 2}, MoxiSize{8, 8}, scratch.data()})
      .keeps(memory.data(), memory.size())
      .keeps(scratch.data(), scratch.size())
      .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                     {moxStsNullPointer, set<2>(nullptr)},
                     {moxStsNullPointer, set<8>(nullptr)},
                     {moxStsBadSize, region(0, 10)},
                     {moxStsBadSize, region(12, -5)},
                     {moxStsBadSize, size(0, 8)},
                     {moxStsBadSize, size(8, 0)},
                     {moxStsRegionTooSmall, size(8, 2)},
                     {moxStsBadSize, size(9, 8)},
                     {moxStsBadSize, offset(kOffset, 4, 3)},
                     {moxStsBadSize, offset(kOffset, 4, -1)},
                     {moxStsBadStep, set<1>(0)},
                     {moxStsBadStep, set<1>(-12)}});
}

MOX_INSTANTIATE_GENERATIONS(Denoise);

}  // namespace
}  // namespace mox::test
