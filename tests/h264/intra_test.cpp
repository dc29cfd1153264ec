#include "moxvc/h264_intra.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "h264/intra8x8_px.hpp"
#include "oracle/intra.hpp"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

using oracle::Available;
using Predict = MoxStatus (*)(Mox8u*, Mox32s, Mox32s, Mox32s);
constexpr unsigned kEdges[] = {1, 2, 32, 64};

/// The mask number n of 16.
unsigned mask_of(unsigned n) {
  unsigned mask = 0;
  for (unsigned i = 0; i < 4; ++i) mask |= n >> i & 1 ? kEdges[i] : 0;
  return mask;
}

/// A plane that ends where the allowed neighbours end, with a block of w x h samples in it.
template <class T>
struct Setting {
  Setting(int w, int h, unsigned mask, Placement placement, int padding, bool upside_down = false)
      : x((mask & 34) != 0),
        y((mask & 97) != 0),
        plane(x + w + (mask & 64 ? w : 0), y + h, (x + w + (mask & 64 ? w : 0) + padding) * (upside_down ? -1 : 1),
              placement) {}
  T* block() const { return plane.at(x, y); }
  oracle::At samples() const {
    return [this](int i, int j) { return int{plane(x + i, y + j)}; };
  }
  int x, y;
  Plane<T> plane;
};

class Intra : public PerGeneration {
 protected:
  /// Predicts in all modes and with all edges; the oracle gives the status and, for moxStsOk and warnings, the samples.
  template <class Status, class Sample>
  void compare(Predict predict, int size, int modes, bool upside_down, Status status, Sample sample) {
    Random random;
    for (int n = 0; n < 16 * modes * 8; ++n) {
      const int mode = n % modes;
      const unsigned mask = mask_of(static_cast<unsigned>(n / modes % 16));
      const Setting<Mox8u> is(size, size, mask, n % 2 ? Placement::at_start() : Placement::at_end(), random(0, 3) * 5,
                              upside_down && random.chance(0.5));
      fill(is.plane.memory(), n < 16 * modes ? Pattern::kRandom : kPatterns[random(0, 6)], random);
      std::vector<Mox8u> samples = is.plane.copy();
      const MoxStatus wanted = status(mode, Available::of(mask));
      if (wanted >= 0) {
        for (int y = 0; y < size; ++y) {
          for (int x = 0; x < size; ++x) {
            samples[static_cast<std::size_t>(is.plane.at(is.x + x, is.y + y) - is.plane.memory().data())] =
                static_cast<Mox8u>(sample(mode, x, y, is.samples(), Available::of(mask)));
          }
        }
      }
      const Mox32s flags = static_cast<Mox32s>(mask | (random.bits() & ~99u));
      ASSERT_EQ(predict(is.block(), is.plane.step_bytes(), mode, flags), wanted) << "mode " << mode << " mask " << mask;
      ASSERT_EQ(is.plane.copy(), samples) << "mode " << mode << " mask " << mask;
    }
  }
};

TEST_P(Intra, EveryModeAndEdge) {
  compare(
      lib(MOX_FN(moxiPredictIntra_4x4_H264_8u_C1IR)), 4, 9, false,
      [](int mode, Available a) { return oracle::substitutes(mode, a) ? moxStsEdgeSubstituted : moxStsOk; },
      [](int mode, int x, int y, const oracle::At& p, Available a) { return oracle::luma_4x4(mode, x, y, p, a, 8); });
  compare(
      lib(MOX_FN(moxiPredictIntra_16x16_H264_8u_C1IR)), 16, 4, true,
      [](int mode, Available a) { return oracle::possible(mode, a) ? moxStsOk : moxStsEdgeUnavailable; },
      [](int mode, int x, int y, const oracle::At& p, Available a) { return oracle::luma_16x16(mode, x, y, p, a, 8); });
  compare(
      lib(MOX_FN(moxiPredictIntraChroma8x8_H264_8u_C1IR)), 8, 4, false,
      [](int mode, Available a) {
        return oracle::possible(oracle::to_luma_order(mode), a) ? moxStsOk : moxStsEdgeUnavailable;
      },
      [](int mode, int x, int y, const oracle::At& p, Available a) {
        return oracle::chroma(8, mode, x, y, p, a.top, a.left, a.left, 8);
      });
}

/// Results that follow by hand from the formulas.
TEST_P(Intra, KnownSamples) {
  const auto row = [](const Setting<Mox8u>& is, int y, int width) {
    return std::vector<int>(is.block() + y * is.plane.step(), is.block() + y * is.plane.step() + width);
  };
  Setting<Mox8u> small(4, 4, 99, {}, 0);
  for (int i = -1; i < 8; ++i) small.block()[i - small.plane.step()] = static_cast<Mox8u>(10 * (i + 1));
  for (int i = 0; i < 4; ++i) small.block()[i * small.plane.step() - 1] = 100;
  const auto predict = [&](int mode, int mask) {
    return lib(MOX_FN(moxiPredictIntra_4x4_H264_8u_C1IR))(small.block(), small.plane.step(), mode, mask);
  };
  EXPECT_EQ(predict(0, 2), moxStsEdgeSubstituted);
  for (int y = 0; y < 4; ++y) EXPECT_EQ(row(small, y, 4), std::vector<int>(4, 128));
  EXPECT_EQ(predict(3, 1), moxStsOk);
  EXPECT_EQ(row(small, 3, 4), std::vector<int>(4, 40)) << "the last sample above repeats";
  EXPECT_EQ(row(small, 0, 4), (std::vector<int>{20, 30, 38, 40}));
  EXPECT_EQ(predict(7, 64), moxStsEdgeSubstituted);
  EXPECT_EQ(row(small, 3, 4), (std::vector<int>{128, 109, 72, 60})) << "of 128 128 128 128 50 60 70";
  EXPECT_EQ(predict(5, 99), moxStsOk);
  EXPECT_EQ(row(small, 2, 4), (std::vector<int>{75, 5, 15, 25})) << "(0 + 2 * 100 + 100 + 2) >> 2, then row 0";

  Setting<Mox8u> large(16, 16, 35, {}, 0), chroma(8, 8, 35, {}, 0);
  const auto predict_16x16 = lib(MOX_FN(moxiPredictIntra_16x16_H264_8u_C1IR));
  const auto predict_chroma = lib(MOX_FN(moxiPredictIntraChroma8x8_H264_8u_C1IR));
  for (int i = -1; i < 16; ++i) {
    large.block()[i - large.plane.step()] = static_cast<Mox8u>(i + 1);
    if (i >= 0) large.block()[i * large.plane.step() - 1] = 0;
  }
  EXPECT_EQ(predict_16x16(large.block(), large.plane.step(), 3, 35), moxStsOk);
  const std::vector<int> ramp = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
  for (int y : {0, 7, 15}) EXPECT_EQ(row(large, y, 16), ramp);
  std::fill(large.plane.memory().begin(), large.plane.memory().end(), Mox8u{255});
  std::fill(chroma.plane.memory().begin(), chroma.plane.memory().end(), Mox8u{255});
  EXPECT_EQ(predict_16x16(large.block(), large.plane.step(), 3, 35), moxStsOk);
  EXPECT_EQ(predict_chroma(chroma.block(), chroma.plane.step(), 3, 35), moxStsOk);
  for (int y = 0; y < 8; ++y) EXPECT_EQ(row(large, 2 * y, 16), std::vector<int>(16, 255));
  for (int y = 0; y < 8; ++y) EXPECT_EQ(row(chroma, y, 8), std::vector<int>(8, 255));

  const int expected[4][4] = {{13, 20, 40, 30}, {10, 20, 10, 20}, {15, 15, 40, 40}, {128, 128, 128, 128}};
  for (int i = 0; i < 8; ++i) {
    chroma.block()[i - chroma.plane.step()] = i < 4 ? 10 : 20;
    chroma.block()[i * chroma.plane.step() - 1] = i < 4 ? 15 : 40;
  }
  for (int mask : {3, 1, 2, 0}) {  // top and left, top, left, none
    EXPECT_EQ(predict_chroma(chroma.block(), chroma.plane.step(), 0, mask), moxStsOk);
    const auto& dc = expected[mask == 3 ? 0 : mask == 0 ? 3 : mask];
    EXPECT_EQ(row(chroma, 3, 8), (std::vector<int>{dc[0], dc[0], dc[0], dc[0], dc[1], dc[1], dc[1], dc[1]})) << mask;
    EXPECT_EQ(row(chroma, 4, 8), (std::vector<int>{dc[2], dc[2], dc[2], dc[2], dc[3], dc[3], dc[3], dc[3]})) << mask;
  }
}

/// The predictors of wider samples and of 8 x 16 chroma, which the exported functions here do not reach.
TEST(IntraTemplates, AnyDepth) {
  Random random;
  for (int n = 0; n < 16 * 9 * 4; ++n) {
    const int depth = random(9, 14), mode = n % 9;
    const unsigned mask = mask_of(static_cast<unsigned>(n / 9 % 16));
    const Available a = Available::of(mask);
    const auto check = [&](int w, int h, auto predict, auto sample) {
      const Setting<Mox16u> is(w, h, mask, n % 2 ? Placement::at_start() : Placement::at_end(), 3);
      fill(is.plane.memory(), n < 16 * 9 ? Pattern::kRandom : kPatterns[random(0, 6)], random, 0, (1 << depth) - 1);
      std::vector<int> expected;
      for (int i = 0; i < w * h; ++i) expected.push_back(sample(i % w, i / w, is.samples()));
      predict(is.block(), is.plane.step());
      for (int i = 0; i < w * h; ++i) {
        ASSERT_EQ(is.samples()(i % w, i / w), expected[static_cast<std::size_t>(i)])
            << w << "x" << h << " mode " << mode << " mask " << mask << " depth " << depth << " sample " << i;
      }
    };
    const Mox32u m = static_cast<Mox32u>(mode);
    check(
        4, 4, [&](Mox16u* block, int step) { px::predict_luma_4x4_h264(block, step, m, mask, depth); },
        [&](int x, int y, const oracle::At& p) { return oracle::luma_4x4(mode, x, y, p, a, depth); });
    check(
        8, 8, [&](Mox16u* block, int step) { px::predict_luma_8x8_h264(block, step, m, mask, depth); },
        [&](int x, int y, const oracle::At& p) { return oracle::luma_8x8(mode, x, y, p, a, depth); });
    const bool lower_left = random.chance(0.5) ? a.left : !a.left && (mask & 32) != 0;
    check(
        8, 16,
        [&](Mox16u* block, int step) { px::predict_chroma_dc_h264<16>(block, step, a.top, a.left, lower_left, depth); },
        [&](int x, int y, const oracle::At& p) {
          return oracle::chroma(16, 0, x, y, p, a.top, a.left, lower_left, depth);
        });
    check(
        16, 16,
        [&](Mox16u* block, int step) { px::predict_luma_16x16_dc_h264_sse2(block, step, !a.top, !a.left, depth); },
        [&](int x, int y, const oracle::At& p) { return oracle::luma_16x16(2, x, y, p, a, depth); });
    if (!oracle::possible(3, a)) continue;
    check(
        16, 16, [&](Mox16u* block, int step) { px::predict_luma_16x16_plane_h264_sse2(block, step, depth); },
        [&](int x, int y, const oracle::At& p) { return oracle::luma_16x16(3, x, y, p, a, depth); });
    check(
        8, 16, [&](Mox16u* block, int step) { px::predict_chroma_plane_h264<16>(block, step, depth); },
        [&](int x, int y, const oracle::At& p) { return oracle::plane(8, 16, x, y, p, depth); });
  }
}

TEST_P(Intra, Arguments) {
  const Plane<Mox8u> plane(16, 16, 16);
  const auto kept = plane.memory();
  const auto check = [&](Predict predict, Mox32s smallest_step, Mox32s modes, Mox32s dc_mode) {
    using Faults = std::vector<Call<Mox8u*, Mox32s, Mox32s, Mox32s>::Fault>;
    Faults faults = {{moxStsNullPointer, set<0>(nullptr)}};
    if (smallest_step) faults.push_back({moxStsBadStep, set<1>(smallest_step - 1)});
    faults.push_back({moxStsOutOfRange, set<2>(modes)});
    faults.push_back({moxStsOutOfRange, set<2>(-1)});
    // Where edges are refused, that comes last.
    if (modes == 4)
      faults.push_back({moxStsEdgeUnavailable, [](auto& arguments, auto&) {
                          std::get<2>(arguments) = 3;
                          std::get<3>(arguments) = 3;
                        }});
    // Predicted with neither edge, so that nothing beside the block is read.
    Call{predict, std::tuple{plane.at(0, 0), smallest_step ? smallest_step : 16, dc_mode, 0}}
        .keeps(kept.data(), kept.size())
        .expect_order(faults);
  };
  check(lib(MOX_FN(moxiPredictIntra_4x4_H264_8u_C1IR)), 4, 9, 2);
  check(lib(MOX_FN(moxiPredictIntra_16x16_H264_8u_C1IR)), 0, 4, 2);
  check(lib(MOX_FN(moxiPredictIntraChroma8x8_H264_8u_C1IR)), 8, 4, 0);
}

MOX_INSTANTIATE_GENERATIONS(Intra);

}  // namespace
}  // namespace mox::test
