#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

#include "frame/access.hpp"
#include "moxvc.h"
#include "oracle/vc1_filter.hpp"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

constexpr Placement kPlacements[] = {Placement::at_end(), Placement::at_start(), Placement::aligned(5)};

/// A plane around an edge: `taps` samples of each line, of `channels` interleaved channels.
struct Edge {
  bool vertical;
  int lines, taps, channels, bytes = 1;

  Plane<Mox8u> plane(int extra, Placement placement) const {
    const int width = (vertical ? taps : lines) * channels * bytes, height = vertical ? lines : taps;
    return {width, height, extra < 0 ? extra - width : extra + width, placement};
  }
  Mox8u* at(const Plane<Mox8u>& plane, int line, int tap, int channel = 0) const {
    return vertical ? plane.at((tap * channels + channel) * bytes, line)
                    : plane.at((line * channels + channel) * bytes, tap);
  }
  /// The first sample behind the edge in a line, of the plane or not.
  Mox8u* behind(const Plane<Mox8u>& plane, int line = 0) const {
    return at(plane, 0, taps / 2) + line * (vertical ? plane.step() : channels * bytes);
  }
};

struct DeblockForm {
  Symbol<MoxStatus(Mox8u*, Mox32s, Mox32s, Mox32u)> symbol;
  Edge edge;
  Mox32u masks;
};
constexpr DeblockForm kDeblock[] = {{MOX_FN(moxiFilterDeblockingLuma_VerEdge_VC1_8u_C1IR), {true, 16, 8, 1}, 15},
                                    {MOX_FN(moxiFilterDeblockingLuma_HorEdge_VC1_8u_C1IR), {false, 16, 8, 1}, 15},
                                    {MOX_FN(moxiFilterDeblockingChroma_VerEdge_VC1_8u_C1IR), {true, 8, 8, 1}, 3},
                                    {MOX_FN(moxiFilterDeblockingChroma_HorEdge_VC1_8u_C1IR), {false, 8, 8, 1}, 3},
                                    {MOX_FN(moxiFilterDeblockingChroma_VerEdge_VC1_8u_C2IR), {true, 8, 8, 2}, 15},
                                    {MOX_FN(moxiFilterDeblockingChroma_HorEdge_VC1_8u_C2IR), {false, 8, 8, 2}, 15}};

/// A smoothing form with the arguments of all: one or two 16-bit planes, the picture, blocks.
struct SmoothForm {
  std::string name;
  bool vertical;
  int blocks, planes;
  std::function<MoxStatus(Mox16s*, Mox16s*, Mox32s, Mox8u*, Mox32s, Mox32u)> call;
};

class VC1Filter : public PerGeneration {
 protected:
  SmoothForm luma(Symbol<MoxStatus(Mox16s*, Mox32s, Mox8u*, Mox32s, Mox32u)> symbol, bool vertical) const {
    return {symbol.name, vertical, 2, 1,
            [f = lib(symbol)](Mox16s* x, auto, int step, Mox8u* to, int toStep, Mox32u mask) {
              return f(x, step, to, toStep, mask);
            }};
  }
  SmoothForm chroma(Symbol<MoxStatus(Mox16s*, Mox32s, Mox8u*, Mox32s)> symbol, bool vertical) const {
    return {symbol.name, vertical, 1, 1, [f = lib(symbol)](Mox16s* x, auto, int step, Mox8u* to, int toStep, auto) {
              return f(x, step, to, toStep);
            }};
  }
  SmoothForm pair(Symbol<MoxStatus(Mox16s*, Mox16s*, Mox32s, Mox8u*, Mox32s)> symbol, bool vertical) const {
    return {symbol.name, vertical, 1, 2,
            [f = lib(symbol)](Mox16s* u, Mox16s* v, int step, Mox8u* to, int toStep, auto) {
              return f(u, v, step, to, toStep);
            }};
  }
  std::vector<SmoothForm> smooth_forms() const {
    return {luma(MOX_FN(moxiSmoothingLuma_VerEdge_VC1_16s8u_C1R), true),
            luma(MOX_FN(moxiSmoothingLuma_HorEdge_VC1_16s8u_C1R), false),
            chroma(MOX_FN(moxiSmoothingChroma_VerEdge_VC1_16s8u_C1R), true),
            chroma(MOX_FN(moxiSmoothingChroma_HorEdge_VC1_16s8u_C1R), false),
            pair(MOX_FN(moxiSmoothingChroma_VerEdge_VC1_16s8u_P2C2R), true),
            pair(MOX_FN(moxiSmoothingChroma_HorEdge_VC1_16s8u_P2C2R), false)};
  }
};

/// Every mask and quantiser, on planes of exactly the samples around the edge.
TEST_P(VC1Filter, DeblockingEqualsOracle) {
  Random random;
  int changed = 0;
  for (const auto& [symbol, edge, masks] : kDeblock) {
    const int c = edge.channels;
    for (int round = 0; round < 3000; ++round) {
      const int pquant = round % 31 + 1, extra = random(-20, 20);
      const Mox32u mask = static_cast<Mox32u>(round / 31) & masks;
      const auto plane = edge.plane(extra, kPlacements[round % 3]),
                 expected = edge.plane(extra, kPlacements[round % 3]);
      // Steps over the edge as the filter is made for, near both limits too; any samples; extremes.
      const int kind = random(0, 7), step = random(0, 2 * pquant + 4), noise = random(0, 6);
      const int level = kind % 2 == 0 ? 100 : kind == 1 ? 4 : 250;
      for (int i = 0; i < edge.lines * 8 * c; ++i) {
        const int tap = i / c % 8, way = i / (8 * c) % 5 == 0 ? -step : step;
        const int near = std::clamp(level + (tap >= 4 ? way : 0) + random(-noise, noise), 0, 255);
        const int sample = kind == 6 ? random(0, 255) : kind == 7 ? 255 * random(0, 1) : near;
        *edge.at(plane, i / (8 * c), tap, i % c) = static_cast<Mox8u>(sample);
      }
      expected.assign(plane);
      for (int segment = 0; segment < edge.lines * c / 4; ++segment) {
        if (!(mask >> segment & 1)) continue;
        const int channel = c == 2 ? segment / 2 : 0, first = 4 * (c == 2 ? segment % 2 : segment);
        std::array<oracle::VC1Line, 4> lines;
        for (int i = 0; i < 32; ++i) lines[i / 8][i % 8] = *edge.at(plane, first + i / 8, i % 8, channel);
        oracle::vc1_deblock_segment(lines, pquant);
        for (int i = 0; i < 32; ++i) {
          *edge.at(expected, first + i / 8, i % 8, channel) = static_cast<Mox8u>(lines[i / 8][i % 8]);
        }
      }
      changed += expected.copy() != plane.copy();
      ASSERT_EQ(lib(symbol)(edge.behind(plane), plane.step(), pquant, mask), moxStsOk);
      ASSERT_EQ(plane.copy(), expected.copy()) << symbol.name << ", pquant " << pquant << ", mask " << mask;
    }
    // With no segment asked for, unreadable memory is a place like any other.
    const auto nowhere = edge.plane(0, Placement::at_end());
    EXPECT_EQ(lib(symbol)(&nowhere.memory().back() + 1, 16, 1, 0), moxStsOk);
  }
  EXPECT_GT(changed, 4000) << "of 18000 edges";
}

/// By hand: a line that stands around a third one, and what becomes of its P4 and P5.
TEST_P(VC1Filter, DeblockingLiteralLines) {
  using Line = std::array<Mox8u, 8>;
  struct Case {
    const char* what;
    int pquant;
    Line line, third;
    int p4, p5;
  };
  constexpr Line kStep = {10, 10, 10, 10, 18, 18, 18, 18}, kLarge = {0, 0, 0, 0, 60, 60, 60, 60};
  constexpr Line kPeaks = {50, 110, 110, 50, 54, 0, 0, 54};
  constexpr Case kCases[] = {
      {"a0 (-16 + 40 + 4) / 8 = 3, d -15 / 8 = -1", 4, kStep, kStep, 11, 17},
      {"a0 at the quantiser", 3, kStep, kStep, 10, 18},
      {"a0 (16 - 40 + 4) / 8 = -3, d 15 / 8 = 1", 5, {18, 18, 18, 18, 10, 10, 10, 10}, kStep, 17, 11},
      {"a0 (-120 + 300 + 4) / 8 = 23, d -115 / 8 = -14", 31, kLarge, kLarge, 14, 46},
      {"a0 (220 + 20 + 4) / 8 = 30, d limited to c, -2", 31, kPeaks, kPeaks, 52, 52},
      {"a3 as large as a0", 31, {0, 4, 12, 16, 24, 28, 36, 40}, kStep, 16, 24},
      {"third line flat", 31, kStep, {9, 9, 9, 9, 9, 9, 9, 9}, 10, 18},
      {"third line with c 0", 31, kStep, {10, 10, 0, 10, 11, 30, 11, 11}, 10, 18},
      {"third line with a0 19, a3 10, d limited to 0", 31, kStep, {90, 90, 90, 52, 50, 10, 10, 10}, 11, 17},
  };
  for (const Case& c : kCases) {
    std::array<Line, 8> rows;
    for (int i = 0; i < 8; ++i) rows[i] = i % 4 == 2 ? c.third : c.line;
    EXPECT_EQ(lib(MOX_FN(moxiFilterDeblockingChroma_VerEdge_VC1_8u_C1IR))(&rows[0][4], 8, c.pquant, 3), moxStsOk);
    for (int i : {0, 1, 3, 4, 5, 7}) {
      EXPECT_EQ(rows[i][3], c.p4) << c.what << ", line " << i;
      EXPECT_EQ(rows[i][4], c.p5) << c.what << ", line " << i;
    }
  }
}

/// Every mask; both planes hold exactly the lines that are asked for, 16-bit samples at odd addresses too.
TEST_P(VC1Filter, SmoothingEqualsOracle) {
  Random random;
  for (const SmoothForm& form : smooth_forms()) {
    for (int round = 0; round < 1500; ++round) {
      const Mox32u mask = form.blocks == 1 ? 1 : static_cast<Mox32u>(round % 3 + 1);
      const int lines = mask == 3 ? 16 : 8, extra = random(-20, 20), toExtra = random(-20, 20);
      const Edge words = {form.vertical, lines, 4, 1, 2}, bytes = {form.vertical, lines, 4, form.planes};
      const auto a = kPlacements[round % 3], b = kPlacements[round % 2];
      const Plane<Mox8u> x[] = {words.plane(extra, a), words.plane(extra, b)};
      const Plane<Mox8u> y[] = {words.plane(extra, a), words.plane(extra, b)};
      const Plane<Mox8u> to = bytes.plane(toExtra, a), expected = bytes.plane(toExtra, a);
      const int range = std::array{32767, 3276, 300, 20}[round % 4];
      for (int i = 0; i < 2 * lines; ++i) {
        const int plane = i % 2, line = i / 2;
        std::array<int, 4> samples;
        for (int& s : samples) s = random.chance(0.2) ? range * (2 * random(0, 1) - 1) : random(-range - 1, range);
        const auto smoothed = plane < form.planes ? oracle::vc1_smoothed(samples, line % 2 != 0) : samples;
        for (int tap = 0; tap < 4; ++tap) {
          store(words.at(x[plane], line, tap), static_cast<Mox16s>(samples[tap]));
          store(words.at(y[plane], line, tap), static_cast<Mox16s>(smoothed[tap]));
          if (plane < form.planes)
            *bytes.at(expected, line, tap, plane) = static_cast<Mox8u>(std::clamp(smoothed[tap] + 128, 0, 255));
        }
      }
      // The second block alone starts 8 lines behind the edge's first.
      const int first = mask == 2 ? -8 : 0;
      const auto edge = [&](int plane) { return reinterpret_cast<Mox16s*>(words.behind(x[plane], first)); };
      ASSERT_EQ(form.call(edge(0), edge(1), x[0].step(), bytes.behind(to, first), to.step(), mask), moxStsOk);
      ASSERT_EQ(to.copy(), expected.copy()) << form.name << ", mask " << mask << ", round " << round;
      for (int plane : {0, 1}) ASSERT_EQ(x[plane].copy(), y[plane].copy()) << form.name << ", plane " << plane;
    }
  }
}

/// By hand: the samples of a line, and what becomes of them in even and in odd lines.
TEST_P(VC1Filter, SmoothingLiteralLines) {
  using Line = std::array<Mox16s, 4>;
  constexpr Line kCases[][3] = {
      {{0, 0, 8, 8}, {1, 2, 6, 7}, {1, 2, 6, 7}},                   // sums 8, 16, 48, 56
      {{0, 0, 4, 0}, {0, 0, 4, 0}, {0, 1, 3, 0}},                   // sums 0, 4, 28, 0: halves show r and q
      {{-128, 0, 0, 127}, {-96, 32, -32, 95}, {-96, 32, -32, 95}},  // sums -769, 255, -255, 761
      {{200, 200, 200, 200}, {200, 200, 200, 200}, {200, 200, 200, 200}},
  };
  for (const auto& c : kCases) {
    std::array<Line, 8> rows;
    std::array<std::array<Mox8u, 4>, 8> to;
    rows.fill(c[0]);
    EXPECT_EQ(lib(MOX_FN(moxiSmoothingChroma_VerEdge_VC1_16s8u_C1R))(&rows[0][2], 8, &to[0][2], 4), moxStsOk);
    for (int i = 0; i < 8; ++i) {
      EXPECT_EQ(rows[i], c[i % 2 + 1]) << "line " << i;
      for (int tap = 0; tap < 4; ++tap) EXPECT_EQ(to[i][tap], std::min(c[i % 2 + 1][tap] + 128, 255)) << "line " << i;
    }
  }
}

/// All samples with all maps, in rows of all lengths, into another plane and in place.
TEST_P(VC1Filter, RangeMapping) {
  Random random;
  const auto map = lib(MOX_FN(moxiRangeMapping_VC1_8u_C1R));
  for (int round = 0; round < 8 * 100; ++round) {
    const int rangeMap = round % 8, width = round / 8 + 1, height = 300 / width + 1;
    const int step = random.chance(0.5) ? width + random(0, 9) : -width - 3;
    const Placement at = kPlacements[round % 3];
    const Plane<Mox8u> from(width, height, step, at), to(width, height, step, at), expected(width, height, step, at);
    for (int i = 0; i < width * height; ++i) {
      from(i % width, i / width) = static_cast<Mox8u>(i);
      expected(i % width, i / width) = static_cast<Mox8u>(oracle::vc1_mapped(i % 256, rangeMap));
    }
    EXPECT_EQ(map(from.at(0, 0), step, to.at(0, 0), step, {width, height}, rangeMap), moxStsOk);
    ASSERT_EQ(to.copy(), expected.copy()) << "map " << rangeMap << ", width " << width;
    EXPECT_EQ(map(from.at(0, 0), step, from.at(0, 0), step, {width, height}, rangeMap), moxStsOk);
    ASSERT_EQ(from.copy(), expected.copy()) << "in place, map " << rangeMap << ", width " << width;
  }
  // By hand: (5 * 9 + 4) / 8 = 6.1, (-4 * 9 + 4) / 8 = -4, -128 * 9 / 8 = -144; doubled.
  Mox8u samples[] = {133, 124, 0, 255, 100, 255};
  const Mox8u mapped[] = {134, 124, 0, 255, 72, 255};
  EXPECT_EQ(map(samples, 6, samples, 6, {4, 1}, 0), moxStsOk);
  EXPECT_EQ(map(samples + 4, 6, samples + 4, 6, {2, 1}, 7), moxStsOk);
  EXPECT_TRUE(std::equal(samples, samples + 6, mapped));
}

TEST_P(VC1Filter, Arguments) {
  std::vector<Mox8u> bytes(64 * 64, 100), others(64 * 64, 90);
  Mox8u *const to = &bytes[16 * 64 + 16], *const from = &others[16 * 64 + 16];
  Mox16s* const words = reinterpret_cast<Mox16s*>(from);
  const auto expect = [&]<class... P>(Symbol<MoxStatus(P...)> symbol, auto good,
                                      const std::vector<typename Call<P...>::Fault>& faults) {
    Call(lib(symbol), good).keeps(bytes.data(), bytes.size()).keeps(others.data(), others.size()).expect_order(faults);
  };
  constexpr MoxStatus kNull = moxStsNullPointer;
  for (const auto& [symbol, edge, masks] : kDeblock) {
    for (int bad : {0, 32, -1}) {
      expect(symbol, std::tuple{to, 64, 31, masks},
             {{kNull, set<0>(nullptr)}, {moxStsBadQp, set<2>(bad)}, {moxStsOutOfRange, set<3>(masks + 1)}});
    }
  }
  for (auto symbol :
       {MOX_FN(moxiSmoothingLuma_VerEdge_VC1_16s8u_C1R), MOX_FN(moxiSmoothingLuma_HorEdge_VC1_16s8u_C1R)}) {
    expect(symbol, std::tuple{words, 64, to, 64, 3u},
           {{kNull, set<0>(nullptr)}, {kNull, set<2>(nullptr)}, {moxStsOutOfRange, set<4>(4u)}});
  }
  for (auto symbol :
       {MOX_FN(moxiSmoothingChroma_VerEdge_VC1_16s8u_C1R), MOX_FN(moxiSmoothingChroma_HorEdge_VC1_16s8u_C1R)}) {
    expect(symbol, std::tuple{words, 64, to, 64}, {{kNull, set<0>(nullptr)}, {kNull, set<2>(nullptr)}});
  }
  for (auto symbol :
       {MOX_FN(moxiSmoothingChroma_VerEdge_VC1_16s8u_P2C2R), MOX_FN(moxiSmoothingChroma_HorEdge_VC1_16s8u_P2C2R)}) {
    expect(symbol, std::tuple{words, words + 512, 64, to, 64},
           {{kNull, set<0>(nullptr)}, {kNull, set<1>(nullptr)}, {kNull, set<3>(nullptr)}});
  }
  for (int bad : {0, -1}) {
    expect(MOX_FN(moxiRangeMapping_VC1_8u_C1R), std::tuple{from, 64, to, 64, MoxiSize{4, 4}, 7},
           {{kNull, set<0>(nullptr)},
            {kNull, set<2>(nullptr)},
            {moxStsBadSize, set<4>(MoxiSize{bad, 4})},
            {moxStsBadSize, set<4>(MoxiSize{4, bad})},
            {moxStsOutOfRange, set<5>(bad == 0 ? 8 : -1)}});
  }
}

MOX_INSTANTIATE_GENERATIONS(VC1Filter);

}  // namespace
}  // namespace mox::test
