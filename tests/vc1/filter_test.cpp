#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

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
  /// The first sample behind the edge at line 0, whether or not it lies in the plane.
  Mox8u* behind(const Plane<Mox8u>& plane, int line) const {
    return at(plane, 0, taps / 2) + line * (vertical ? plane.step() : channels * bytes);
  }
};

class VC1Filter : public PerGeneration {
 protected:
  using Deblock = MoxStatus(Mox8u*, Mox32s, Mox32s, Mox32u);
  struct DeblockForm {
    Symbol<Deblock> symbol;
    Edge edge;
    Mox32u masks() const { return (1u << edge.lines * edge.channels / 4) - 1; }
  };
  static std::vector<DeblockForm> deblock_forms() {
    return {{MOX_FN(moxiFilterDeblockingLuma_VerEdge_VC1_8u_C1IR), {true, 16, 8, 1}},
            {MOX_FN(moxiFilterDeblockingLuma_HorEdge_VC1_8u_C1IR), {false, 16, 8, 1}},
            {MOX_FN(moxiFilterDeblockingChroma_VerEdge_VC1_8u_C1IR), {true, 8, 8, 1}},
            {MOX_FN(moxiFilterDeblockingChroma_HorEdge_VC1_8u_C1IR), {false, 8, 8, 1}},
            {MOX_FN(moxiFilterDeblockingChroma_VerEdge_VC1_8u_C2IR), {true, 8, 8, 2}},
            {MOX_FN(moxiFilterDeblockingChroma_HorEdge_VC1_8u_C2IR), {false, 8, 8, 2}}};
  }

  /// A smoothing form with all its arguments: planes (two for pairs), picture, blocks.
  struct SmoothForm {
    std::string name;
    bool vertical;
    int blocks, planes;
    std::function<MoxStatus(Mox16s*, Mox16s*, Mox32s, Mox8u*, Mox32s, Mox32u)> call;
  };
  std::vector<SmoothForm> smooth_forms() const {
    const auto luma = [this](auto symbol, bool vertical) {
      return SmoothForm{symbol.name, vertical, 2, 1,
                        [f = lib(symbol)](auto* x, auto*, int step, Mox8u* to, int toStep, Mox32u mask) {
                          return f(x, step, to, toStep, mask);
                        }};
    };
    const auto chroma = [this](auto symbol, bool vertical) {
      return SmoothForm{symbol.name, vertical, 1, 1,
                        [f = lib(symbol)](auto* x, auto*, int step, Mox8u* to, int toStep, Mox32u) {
                          return f(x, step, to, toStep);
                        }};
    };
    const auto pair = [this](auto symbol, bool vertical) {
      return SmoothForm{symbol.name, vertical, 1, 2,
                        [f = lib(symbol)](auto* u, auto* v, int step, Mox8u* to, int toStep, Mox32u) {
                          return f(u, v, step, to, toStep);
                        }};
    };
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
  for (const auto& [symbol, edge, masks] : [] {
         std::vector<std::tuple<Symbol<Deblock>, Edge, Mox32u>> all;
         for (const auto& form : deblock_forms()) all.emplace_back(form.symbol, form.edge, form.masks());
         return all;
       }()) {
    for (int round = 0; round < 3000; ++round) {
      const int pquant = round % 31 + 1, extra = random(-20, 20), step = random(0, 2 * pquant + 4),
                noise = random(0, 6);
      const Placement placement = kPlacements[round % 3];
      const auto plane = edge.plane(extra, placement), expected = edge.plane(extra, placement);
      // Steps over the edge as the filter is made for, any samples, extremes.
      const int kind = random(0, 7);
      for (int line = 0; line < edge.lines; ++line) {
        const int way = random.chance(0.8) ? step : -step;
        for (int i = 0; i < 8 * edge.channels; ++i) {
          const int tap = i / edge.channels, level = (kind % 2 == 0 ? 100 : kind == 1 ? 4 : 250) + (tap >= 4 ? way : 0);
          const int near = std::clamp(level + random(-noise, noise), 0, 255);
          *edge.at(plane, line, tap, i % edge.channels) = static_cast<Mox8u>(kind == 6   ? random(0, 255)
                                                                             : kind == 7 ? 255 * random(0, 1)
                                                                                         : near);
        }
      }
      expected.assign(plane);
      const Mox32u mask = static_cast<Mox32u>(round / 31) & masks;
      for (int segment = 0; segment < edge.lines * edge.channels / 4; ++segment) {
        if (!(mask >> segment & 1)) continue;
        const int channel = edge.channels == 2 ? segment / 2 : 0,
                  first = 4 * (edge.channels == 2 ? segment % 2 : segment);
        std::array<oracle::VC1Line, 4> lines;
        for (int i = 0; i < 32; ++i) lines[i / 8][i % 8] = *edge.at(plane, first + i / 8, i % 8, channel);
        oracle::vc1_deblock_segment(lines, pquant);
        for (int i = 0; i < 32; ++i)
          *edge.at(expected, first + i / 8, i % 8, channel) = static_cast<Mox8u>(lines[i / 8][i % 8]);
      }
      changed += expected.copy() != plane.copy();
      ASSERT_EQ(lib(symbol)(edge.behind(plane, 0), plane.step(), pquant, mask), moxStsOk);
      ASSERT_EQ(plane.copy(), expected.copy())
          << symbol.name << ", pquant " << pquant << ", mask " << mask << ", round " << round;
    }
    // With no segment asked for, unreadable memory is a place like any other.
    const auto nowhere = edge.plane(0, Placement::at_end());
    EXPECT_EQ(lib(symbol)(&nowhere.memory().back() + 1, 16, 1, 0), moxStsOk);
  }
  EXPECT_GT(changed, 4000) << "of 18000 edges";
}

/// By hand: a line, three times beside a third line of its own, and what P4 and P5 become.
TEST_P(VC1Filter, DeblockingLiteralLines) {
  using Line = oracle::VC1Line;
  struct Case {
    const char* what;
    int pquant;
    Line line, third;
    int p4, p5;
  };
  constexpr Line kStep = {10, 10, 10, 10, 18, 18, 18, 18};  // a0 (-16 + 40 + 4) / 8 = 3, c -4, d -15 / 8 = -1
  constexpr Case kCases[] = {
      {"a step of 8", 4, kStep, kStep, 11, 17},
      {"at the quantiser", 3, kStep, kStep, 10, 18},
      {"down", 5, {18, 18, 18, 18, 10, 10, 10, 10}, kStep, 17, 11},  // a0 (16 - 40 + 4) / 8 = -2.5: -3, d 15 / 8 = 1
      {"third line flat", 31, kStep, {9, 9, 9, 9, 9, 9, 9, 9}, 10, 18},
      {"third line of c 0", 31, kStep, {10, 10, 0, 10, 11, 30, 11, 11}, 10, 18},
      {"third line that turns away decides", 31, kStep, {90, 90, 90, 50, 52, 10, 10, 10}, 11, 17},  // a0 21, a1 25, a2
                                                                                                    // 26
      {"a3 as large as a0", 31, {0, 4, 12, 16, 24, 28, 36, 40}, kStep, 16, 24},
      {"limited to c", 31, {50, 110, 110, 50, 54, 0, 0, 54}, {50, 110, 110, 50, 54, 0, 0, 54}, 52, 52},  // a0 30, d -18
      {"a large step", 31, {0, 0, 0, 0, 60, 60, 60, 60}, {0, 0, 0, 0, 60, 60, 60, 60}, 14, 46},  // a0 (-120 + 304) / 8
                                                                                                 // = 23
  };
  for (const auto& form : deblock_forms()) {
    for (const Case& c : kCases) {
      const auto plane = form.edge.plane(0, Placement::at_end());
      for (int line = 0; line < form.edge.lines; ++line) {
        for (int i = 0; i < 8 * form.edge.channels; ++i) {
          const int tap = i / form.edge.channels;
          *form.edge.at(plane, line, tap, i % form.edge.channels) =
              static_cast<Mox8u>((line % 4 == 2 ? c.third : c.line)[tap]);
        }
      }
      EXPECT_EQ(lib(form.symbol)(form.edge.behind(plane, 0), plane.step(), c.pquant, form.masks()), moxStsOk);
      for (int line = 0; line < form.edge.lines; line += line % 4 == 1 ? 2 : 1) {
        for (int channel = 0; channel < form.edge.channels; ++channel) {
          EXPECT_EQ(*form.edge.at(plane, line, 3, channel), c.p4)
              << form.symbol.name << ", " << c.what << ", line " << line;
          EXPECT_EQ(*form.edge.at(plane, line, 4, channel), c.p5)
              << form.symbol.name << ", " << c.what << ", line " << line;
        }
      }
    }
  }
}

/// Every mask; both planes hold exactly the lines that are asked for, 16-bit samples at odd addresses too.
TEST_P(VC1Filter, SmoothingEqualsOracle) {
  Random random;
  for (const SmoothForm& form : smooth_forms()) {
    for (int round = 0; round < 1500; ++round) {
      const Mox32u mask = form.blocks == 1 ? 1 : static_cast<Mox32u>(round % 3 + 1);
      const int first = mask == 2 ? 8 : 0, lines = mask == 3 ? 16 : 8;
      const Edge words = {form.vertical, lines, 4, 1, 2}, bytes = {form.vertical, lines, 4, form.planes};
      const int extra = random(-20, 20), toExtra = random(-20, 20);
      const Plane<Mox8u> x[2] = {words.plane(extra, kPlacements[round % 3]),
                                 words.plane(extra, kPlacements[round % 2])};
      const Plane<Mox8u> y[2] = {words.plane(extra, kPlacements[round % 3]),
                                 words.plane(extra, kPlacements[round % 2])};
      const Plane<Mox8u> to = bytes.plane(toExtra, kPlacements[round % 3]),
                         expected = bytes.plane(toExtra, kPlacements[round % 3]);
      const int range = round % 4 == 0 ? 32767 : round % 4 == 1 ? 3276 : round % 4 == 2 ? 300 : 20;
      for (int plane = 0; plane < 2; ++plane) {
        for (int line = 0; line < lines; ++line) {
          std::array<int, 4> samples;
          for (int& sample : samples)
            sample = random.chance(0.2) ? range * (2 * random(0, 1) - 1) : random(-range - 1, range);
          const auto smoothed = oracle::vc1_smoothed(samples, line % 2 != 0);
          for (int tap = 0; tap < 4; ++tap) {
            const auto before = static_cast<Mox16s>(samples[tap]),
                       after = static_cast<Mox16s>(plane < form.planes ? smoothed[tap] : before);
            std::memcpy(words.at(x[plane], line, tap), &before, 2),
                std::memcpy(words.at(y[plane], line, tap), &after, 2);
            if (plane < form.planes)
              *bytes.at(expected, line, tap, plane) = static_cast<Mox8u>(std::clamp(after + 128, 0, 255));
          }
        }
      }
      const auto edge = [&](int plane) { return reinterpret_cast<Mox16s*>(words.behind(x[plane], -first)); };
      ASSERT_EQ(form.call(edge(0), edge(1), x[0].step(), bytes.behind(to, -first), to.step(), mask), moxStsOk);
      ASSERT_EQ(to.copy(), expected.copy()) << form.name << ", mask " << mask << ", round " << round;
      for (int plane : {0, 1})
        ASSERT_EQ(x[plane].copy(), y[plane].copy()) << form.name << ", plane " << plane << ", mask " << mask;
    }
  }
}

/// By hand: an even and an odd line of the samples x, and what becomes of them.
TEST_P(VC1Filter, SmoothingLiteralLines) {
  struct Case {
    Mox16s x[4], even[4], odd[4];
  };
  constexpr Case kCases[] = {
      {{0, 0, 8, 8}, {1, 2, 6, 7}, {1, 2, 6, 7}},                   // sums 8, 16, 48, 56
      {{0, 0, 4, 0}, {0, 0, 4, 0}, {0, 1, 3, 0}},                   // sums 0, 4, 28, 0: halves show r and q
      {{-128, 0, 0, 127}, {-96, 32, -32, 95}, {-96, 32, -32, 95}},  // sums -769, 255, -255, 761
      {{200, 200, 200, 200}, {200, 200, 200, 200}, {200, 200, 200, 200}},
  };
  for (const SmoothForm& form : smooth_forms()) {
    for (const Case& c : kCases) {
      const int lines = 8 * form.blocks;
      const Edge words = {form.vertical, lines, 4, 1, 2}, bytes = {form.vertical, lines, 4, form.planes};
      const auto u = words.plane(0, {}), v = words.plane(0, {}), to = bytes.plane(0, {});
      for (int i = 0; i < 4 * lines; ++i) {
        for (const auto* plane : {&u, &v}) std::memcpy(words.at(*plane, i / 4, i % 4), &c.x[i % 4], 2);
      }
      const auto edge = [&](const auto& plane) { return reinterpret_cast<Mox16s*>(words.behind(plane, 0)); };
      EXPECT_EQ(form.call(edge(u), edge(v), u.step(), bytes.behind(to, 0), to.step(), form.blocks == 2 ? 3 : 1),
                moxStsOk);
      for (int i = 0; i < 4 * lines; ++i) {
        const Mox16s y = (i / 4 % 2 == 0 ? c.even : c.odd)[i % 4];
        for (int plane = 0; plane < form.planes; ++plane) {
          EXPECT_EQ(std::memcmp(words.at(plane == 0 ? u : v, i / 4, i % 4), &y, 2), 0)
              << form.name << ", line " << i / 4 << ", tap " << i % 4;
          EXPECT_EQ(*bytes.at(to, i / 4, i % 4, plane), std::min(y + 128, 255)) << form.name << ", line " << i / 4;
        }
      }
    }
  }
}

/// All samples with all maps, in rows of all lengths, into another plane and in place.
TEST_P(VC1Filter, RangeMapping) {
  Random random;
  const auto map = lib(MOX_FN(moxiRangeMapping_VC1_8u_C1R));
  for (int round = 0; round < 8 * 100; ++round) {
    const int rangeMap = round % 8, width = round / 8 + 1, height = 300 / width + 1,
              step = random.chance(0.5) ? width + random(0, 9) : -width - 3;
    const Placement placement = kPlacements[round % 3];
    const Plane<Mox8u> from(width, height, step, placement), to(width, height, step, placement),
        expected(width, height, step, placement);
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
  const auto expect = [&](auto call, auto faults) {
    call.keeps(bytes.data(), 4096).keeps(others.data(), 4096).expect_order(faults);
  };
  for (const auto& form : deblock_forms()) {
    for (int pquant : {0, 32, -1}) {
      expect(Call(lib(form.symbol), std::tuple{to, 64, 31, form.masks()}),
             std::vector<Call<Mox8u*, Mox32s, Mox32s, Mox32u>::Fault>{{moxStsNullPointer, set<0>(nullptr)},
                                                                      {moxStsBadQp, set<2>(pquant)},
                                                                      {moxStsOutOfRange, set<3>(form.masks() + 1)}});
    }
  }
  for (auto symbol :
       {MOX_FN(moxiSmoothingLuma_VerEdge_VC1_16s8u_C1R), MOX_FN(moxiSmoothingLuma_HorEdge_VC1_16s8u_C1R)}) {
    expect(Call(lib(symbol), std::tuple{words, 64, to, 64, 3u}),
           std::vector<Call<Mox16s*, Mox32s, Mox8u*, Mox32s, Mox32u>::Fault>{{moxStsNullPointer, set<0>(nullptr)},
                                                                             {moxStsNullPointer, set<2>(nullptr)},
                                                                             {moxStsOutOfRange, set<4>(4u)}});
  }
  for (auto symbol :
       {MOX_FN(moxiSmoothingChroma_VerEdge_VC1_16s8u_C1R), MOX_FN(moxiSmoothingChroma_HorEdge_VC1_16s8u_C1R)}) {
    expect(Call(lib(symbol), std::tuple{words, 64, to, 64}),
           std::vector<Call<Mox16s*, Mox32s, Mox8u*, Mox32s>::Fault>{{moxStsNullPointer, set<0>(nullptr)},
                                                                     {moxStsNullPointer, set<2>(nullptr)}});
  }
  for (auto symbol :
       {MOX_FN(moxiSmoothingChroma_VerEdge_VC1_16s8u_P2C2R), MOX_FN(moxiSmoothingChroma_HorEdge_VC1_16s8u_P2C2R)}) {
    expect(Call(lib(symbol), std::tuple{words, words + 512, 64, to, 64}),
           std::vector<Call<Mox16s*, Mox16s*, Mox32s, Mox8u*, Mox32s>::Fault>{{moxStsNullPointer, set<0>(nullptr)},
                                                                              {moxStsNullPointer, set<1>(nullptr)},
                                                                              {moxStsNullPointer, set<3>(nullptr)}});
  }
  for (int bad : {0, -1}) {
    expect(Call(lib(MOX_FN(moxiRangeMapping_VC1_8u_C1R)), std::tuple{from, 64, to, 64, MoxiSize{4, 4}, 7}),
           std::vector<Call<const Mox8u*, Mox32s, Mox8u*, Mox32s, MoxiSize, Mox32s>::Fault>{
               {moxStsNullPointer, set<0>(nullptr)},
               {moxStsNullPointer, set<2>(nullptr)},
               {moxStsBadSize, set<4>(MoxiSize{bad, 4})},
               {moxStsBadSize, set<4>(MoxiSize{4, bad})},
               {moxStsOutOfRange, set<5>(bad == 0 ? 8 : -1)}});
  }
}

MOX_INSTANTIATE_GENERATIONS(VC1Filter);

}  // namespace
}  // namespace mox::test
