#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <string>
#include <vector>

#include "moxvc.h"
#include "oracle/deblock.hpp"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

using Pair = std::array<Mox32u, 2>;

/// Arguments of any form; those with thresholds by value take the first of two.
template <class T>
struct Arguments {
  T* plane;
  int step;
  Pair alpha, beta;
  const T* tc0;
  const Mox8u* bs;
  int depth = 8;
};

/// Thresholds as elements in guarded memory, as many as the form may read.
template <class T>
struct Narrow : Guarded<T> {
  explicit Narrow(const Pair& values, bool single = false) : Guarded<T>(single ? 1 : 2) {
    for (std::size_t i = 0; i < this->size(); ++i) (*this)[i] = static_cast<T>(values[i]);
  }
};

// One call for each signature.
auto adapt(decltype(moxiFilterDeblockingLuma_VerEdge_H264_8u_C1IR)* f, bool) {
  return [f](const Arguments<Mox8u>& a) {
    const Narrow<Mox8u> alpha(a.alpha), beta(a.beta);
    return f(a.plane, a.step, alpha.data(), beta.data(), a.tc0, a.bs);
  };
}
auto adapt(decltype(moxiFilterDeblockingLuma_VerEdge_MBAFF_H264_8u_C1IR)* f, bool) {
  return [f](const Arguments<Mox8u>& a) { return f(a.plane, a.step, a.alpha[0], a.beta[0], a.tc0, a.bs); };
}
auto adapt(decltype(moxiFilterDeblockingChroma422VerEdge_H264_8u_C1IR)* f, bool) {
  return [f](const Arguments<Mox8u>& a) {
    const Narrow<Mox8u> alpha(a.alpha), beta(a.beta);
    const MoxiDeblockParams record = {a.plane, a.step, alpha.data(), beta.data(), a.tc0, a.bs};
    return f(&record);
  };
}
auto adapt(decltype(moxiFilterDeblockingLumaVerEdge_H264_16u_C1IR)* f, bool single) {
  return [=](const Arguments<Mox16u>& a) {
    const Narrow<Mox16u> alpha(a.alpha, single), beta(a.beta, single);
    const MoxiDeblockParams_16u record = {a.plane, a.step, alpha.data(), beta.data(), a.tc0, a.bs, a.depth};
    return f(&record);
  };
}

/// bS lists of one edge that tell the forms apart, first of the outer edge, then of the second edge.
constexpr const char* kProbes[] = {"4444", "4443", "3344", "4000", "0456", "4443", "4000"};
/// Where a form runs the strong rule: as the oracle sees it, and what each probe gives for the quarters of the edge:
/// s strong, n normal, - unchanged.
struct Strong {
  oracle::StrongWhere where;
  const char* outcome[7];
};
constexpr Strong kOwn = {[](const Mox8u* bs, int, int quarter) { return bs[quarter] == 4; },
                         {"ssss", "sssn", "nnss", "s---", "-snn", "sssn", "s---"}};
constexpr Strong kFirst = {[](const Mox8u* bs, int, int) { return bs[0] == 4; },
                           {"ssss", "ssss", "nnnn", "ssss", "-nnn", "ssss", "ssss"}};
constexpr Strong kOuterFirst = {[](const Mox8u* bs, int edge, int) { return edge == 0 && bs[0] == 4; },
                                {"ssss", "ssss", "nnnn", "ssss", "-nnn", "nnnn", "n---"}};
constexpr Strong kOuterHalf = {[](const Mox8u* bs, int edge, int quarter) {
                                 return edge == 0 && (quarter < 2 ? bs[0] + bs[1] : bs[2] + bs[3]) == 8 &&
                                        bs[quarter] == 4;
                               },
                               {"ssss", "ssnn", "nnss", "n---", "-nnn", "nnnn", "n---"}};
constexpr Strong kOuterAll = {
    [](const Mox8u* bs, int edge, int) { return edge == 0 && std::count(bs, bs + 4, 4) == 4; },
    {"ssss", "nnnn", "nnnn", "n---", "-nnn", "nnnn", "n---"}};

template <class T>
struct Entry {
  const char* name;
  oracle::DeblockForm form;
  const char* const* outcome;
  std::function<MoxStatus(const Arguments<T>&)> call;

  /// A plane of exactly the samples that the form may read, rows `extra` samples further apart than they are wide.
  Plane<T> footprint(int extra = 0, Placement placement = {}) const {
    const int width = form.channels * (form.vertical ? form.across() : form.lines);
    return {width, form.vertical ? form.lines : form.across(), extra < 0 ? extra - width : extra + width, placement};
  }
  T* block(const Plane<T>& plane) const {
    return form.vertical ? plane.at(form.reach() * form.channels, 0) : plane.at(0, form.reach());
  }
  /// Sample `tap` across the edges of line i, where lines of the second channel follow those of the first.
  T& sample(const Plane<T>& plane, int i, int tap) const {
    const int channel = i / form.lines, line = i % form.lines;
    return form.vertical ? plane(tap * form.channels + channel, line) : plane(line * form.channels + channel, tap);
  }
  int all_lines() const { return form.channels * form.lines; }
  /// Calls visit(sample, tap, line) for all samples.
  template <class Visit>
  void each_sample(const Plane<T>& plane, Visit visit) const {
    for (int line = 0; line < all_lines(); ++line) {
      for (int tap = 0; tap < form.across(); ++tap) visit(sample(plane, line, tap), tap, line);
    }
  }
};

class Deblock : public PerGeneration {
 protected:
  template <class Function>
  auto entry(Symbol<Function> symbol, oracle::DeblockForm form, const Strong& strong) const {
    using T = std::conditional_t<std::is_same_v<Function, decltype(moxiFilterDeblockingLumaVerEdge_H264_16u_C1IR)>,
                                 Mox16u, Mox8u>;
    form.strong = strong.where;
    return Entry<T>{symbol.name, form, strong.outcome, adapt(lib(symbol), form.edges == 1)};
  }

  /// Calls visit with an entry for each form.
  template <class Visit>
  void each(Visit visit) const {
    constexpr bool kLuma = true, kChroma = false, kVer = true, kHor = false;
    // clang-format off
    visit(entry(MOX_FN(moxiFilterDeblockingLuma_VerEdge_H264_8u_C1IR), {kLuma, kVer, 1, 4, 16, 4, 2}, kOuterHalf));
    visit(entry(MOX_FN(moxiFilterDeblockingLuma_HorEdge_H264_8u_C1IR), {kLuma, kHor, 1, 4, 16, 4, 2}, kOuterAll));
    visit(entry(MOX_FN(moxiFilterDeblockingChroma_VerEdge_H264_8u_C1IR), {kChroma, kVer, 1, 2, 8, 8, 1}, kOuterAll));
    visit(entry(MOX_FN(moxiFilterDeblockingChroma_HorEdge_H264_8u_C1IR), {kChroma, kHor, 1, 2, 8, 8, 1}, kOuterAll));
    visit(entry(MOX_FN(moxiFilterDeblockingChroma_VerEdge_H264_8u_C2IR), {kChroma, kVer, 2, 2, 8, 8, 1}, kOuterAll));
    visit(entry(MOX_FN(moxiFilterDeblockingChroma_HorEdge_H264_8u_C2IR), {kChroma, kHor, 2, 2, 8, 8, 1}, kOuterHalf));
    visit(entry(MOX_FN(moxiFilterDeblockingLuma_VerEdge_MBAFF_H264_8u_C1IR), {kLuma, kVer, 1, 1, 8, 4, 1}, kOwn));
    visit(entry(MOX_FN(moxiFilterDeblockingChroma_VerEdge_MBAFF_H264_8u_C1IR), {kChroma, kVer, 1, 1, 4, 4, 0}, kOwn));
    visit(entry(MOX_FN(moxiFilterDeblockingChroma422VerEdge_H264_8u_C1IR), {kChroma, kVer, 1, 2, 16, 8, 2}, kOwn));
    visit(entry(MOX_FN(moxiFilterDeblockingChroma422HorEdge_H264_8u_C1IR), {kChroma, kHor, 1, 4, 8, 4, 1}, kFirst));
    visit(entry(MOX_FN(moxiFilterDeblockingLumaVerEdge_H264_16u_C1IR), {kLuma, kVer, 1, 4, 16, 4, 2}, kOwn));
    visit(entry(MOX_FN(moxiFilterDeblockingLumaHorEdge_H264_16u_C1IR), {kLuma, kHor, 1, 4, 16, 4, 2}, kOwn));
    visit(entry(MOX_FN(moxiFilterDeblockingLumaVerEdgeMBAFF_H264_16u_C1IR), {kLuma, kVer, 1, 1, 8, 4, 1}, kOwn));
    visit(entry(MOX_FN(moxiFilterDeblockingChromaVerEdge_H264_16u_C1IR), {kChroma, kVer, 1, 2, 8, 8, 1}, kOwn));
    visit(entry(MOX_FN(moxiFilterDeblockingChromaHorEdge_H264_16u_C1IR), {kChroma, kHor, 1, 2, 8, 8, 1}, kOuterFirst));
    visit(entry(MOX_FN(moxiFilterDeblockingChromaVerEdgeMBAFF_H264_16u_C1IR), {kChroma, kVer, 1, 1, 4, 4, 0}, kOwn));
    visit(entry(MOX_FN(moxiFilterDeblockingChroma422VerEdge_H264_16u_C1IR), {kChroma, kVer, 1, 2, 16, 8, 2}, kOwn));
    visit(entry(MOX_FN(moxiFilterDeblockingChroma422HorEdge_H264_16u_C1IR), {kChroma, kHor, 1, 4, 8, 4, 1}, kFirst));
    // clang-format on
  }
};

/// Inputs of one call. Thresholds and bS lie in exactly the memory that the form may read.
template <class T>
struct Inputs {
  Guarded<T> tc0;
  Guarded<Mox8u> bs;
  int depth = 8;
  Pair alpha = {}, beta = {};

  explicit Inputs(const oracle::DeblockForm& form) : tc0(form.tc0_count()), bs(form.bs_count()) {}
  int max() const { return (1 << depth) - 1; }
  Arguments<T> with(T* block, int step) const { return {block, step, alpha, beta, tc0.data(), bs.data(), depth}; }

  void randomize(Random& random) {
    depth = sizeof(T) == 1 ? 8 : random(8, 16);
    const int unit = 1 << (depth - 8), widest = std::numeric_limits<T>::max();
    const auto pick = [&](std::array<int, 6> values) { return static_cast<Mox32u>(values[random.bits() % 6]); };
    for (Mox32u& value : alpha) value = pick({0, 1, 9 * unit, 30 * unit, 255 * unit, widest});
    for (Mox32u& value : beta) value = pick({1, 4 * unit, 9 * unit, 9 * unit, 18 * unit, widest});
    const int limit = static_cast<int>(pick({0, 1, 4 * unit, 9 * unit, 25 * unit, widest}));
    random.fill(std::span(tc0.begin(), tc0.size()), random.chance(0.2) ? limit : 0, limit);
    // All strong but some, legal mixes, all 3, values without a meaning; then whole edges off.
    static constexpr int kLow[] = {4, 0, 1, 3, 0}, kHigh[] = {4, 4, 3, 3, 255};
    const int kind = random(0, 4);
    random.fill(std::span(bs.begin(), bs.size()), kLow[kind], kHigh[kind]);
    if (kind == 0 && random.chance(0.6)) bs[random.bits() % bs.size()] = static_cast<Mox8u>(random(0, 5));
    for (std::size_t i = 0; i < bs.size(); i += 4) {
      if (random.chance(0.1)) std::fill_n(bs.data() + i, 4, Mox8u{0});
    }
  }
};

/// A slope with noise, as at the edges of flat blocks.
template <class T>
void fill_smooth(const Entry<T>& entry, const Plane<T>& plane, Random& random, int max) {
  const int unit = (max + 1) >> 8, noise = random(1, 5) * unit, base = random(0, max), slope = random(-2, 2) * unit;
  entry.each_sample(plane, [&](T& sample, int tap, int) {
    sample = static_cast<T>(std::clamp(base + slope * tap + random(-noise, noise), 0, max));
  });
}

/// Samples between rows; negative for rows that go upwards in memory.
constexpr int kExtra[] = {0, 1, 7, 32, 1000, -1, -5, -64};

TEST_P(Deblock, EqualsOracle) {
  Random random;
  each([&]<class T>(const Entry<T>& entry) {
    Inputs<T> in(entry.form);
    int seen = 0, changed = 0;
    for (int round = 0; round < 600; ++round) {
      const Placement places[] = {Placement::at_end(), Placement::at_start(),
                                  Placement::aligned(random(0, 15) * static_cast<int>(sizeof(T)))};
      const auto plane = entry.footprint(kExtra[random.bits() % 8], places[round % 3]);
      const Plane<T> expected(plane.width(), plane.height(), plane.step());
      in.randomize(random);
      // The bit depth limits what the filter writes, not what it reads.
      const int highest = round % 8 == 0 ? std::numeric_limits<T>::max() : in.max();
      fill(plane.memory(), kPatterns[random.bits() % 7], random, 0, highest);
      const bool smooth = round % 4 != 0;
      if (smooth) fill_smooth(entry, plane, random, in.max());
      expected.assign(plane);
      const std::vector<T> before = plane.copy();
      ASSERT_EQ(entry.call(in.with(entry.block(plane), plane.step())), moxStsOk);
      oracle::deblock(entry.form, entry.block(expected), plane.step(), in.alpha, in.beta, in.tc0.data(), in.bs.data(),
                      in.max());
      ASSERT_TRUE(plane.copy() == expected.copy()) << entry.name << " round " << round << " step " << plane.step();
      if (!smooth) continue;
      seen += plane.width() * plane.height();
      for (std::size_t i = 0; i < before.size(); ++i) changed += before[i] != plane.memory()[i];
    }
    EXPECT_GT(changed, seen / 10) << entry.name << ": the inputs hardly reach the filter";
  });
}

enum Samples { kBoth, k8u, k16u };
struct LineCase {
  const char* what;
  bool luma;
  Samples samples;
  Mox32u alpha, beta;
  int bs, tc0, depth;
  std::array<int, 8> before, after;  // p3 to p0, q0 to q3; a chroma line is p1 p0 q0 q1 of these
};
// Worked out by hand. The step 60 | 70 has a delta of (4 * 10 - 10 + 4) >> 3 = 4.
constexpr LineCase kLineCases[] = {
    // clang-format off
    {"bS 0", true, kBoth, 40, 10, 0, 9, 8, {60, 60, 60, 60, 70, 70, 70, 70}, {60, 60, 60, 60, 70, 70, 70, 70}},
    {"alpha 0", true, kBoth, 0, 10, 4, 9, 8, {60, 60, 60, 60, 60, 60, 60, 68}, {60, 60, 60, 60, 60, 60, 60, 68}},
    {"alpha at step", true, kBoth, 10, 10, 1, 9, 8, {60, 60, 60, 60, 70, 70, 70, 70}, {60, 60, 60, 60, 70, 70, 70, 70}},
    {"alpha above", true, kBoth, 11, 10, 1, 0, 8, {60, 60, 60, 60, 70, 70, 70, 70}, {60, 60, 60, 62, 68, 70, 70, 70}},
    {"tc0 1", true, kBoth, 40, 10, 2, 1, 8, {60, 60, 60, 60, 70, 70, 70, 70}, {60, 60, 61, 63, 67, 69, 70, 70}},
    {"tc0 4", true, kBoth, 40, 10, 3, 4, 8, {60, 60, 60, 60, 70, 70, 70, 70}, {60, 60, 62, 64, 66, 67, 70, 70}},
    {"p2 far", true, kBoth, 40, 10, 3, 2, 8, {60, 70, 60, 60, 70, 70, 70, 70}, {60, 70, 60, 63, 67, 68, 70, 70}},
    {"q2 far", true, kBoth, 40, 10, 3, 2, 8, {60, 60, 60, 60, 70, 70, 80, 70}, {60, 60, 62, 63, 67, 70, 80, 70}},
    {"delta 0", true, kBoth, 40, 10, 1, 4, 8, {60, 64, 56, 60, 60, 56, 60, 60}, {60, 64, 60, 60, 60, 60, 60, 60}},
    {"tc wraps to 1", true, k8u, 40, 10, 1, 255, 8, {60, 60, 60, 60, 70, 70, 70, 70}, {60, 60, 62, 61, 69, 67, 70, 70}},
    {"tc wraps to 0", true, k8u, 40, 10, 1, 254, 8, {60, 60, 60, 60, 70, 70, 70, 70}, {60, 60, 62, 60, 70, 67, 70, 70}},
    {"tc wraps", true, k16u, 40, 10, 1, 65535, 8, {60, 60, 60, 60, 70, 70, 70, 70}, {60, 60, 62, 61, 69, 67, 70, 70}},
    {"strong", true, kBoth, 36, 10, 4, 0, 8, {20, 60, 60, 60, 70, 70, 70, 110}, {20, 51, 63, 64, 66, 68, 79, 110}},
    {"not flat", true, kBoth, 35, 10, 4, 0, 8, {60, 60, 60, 60, 70, 70, 70, 70}, {60, 60, 60, 63, 68, 70, 70, 70}},
    {"strong p2 far", true, kBoth, 40, 10, 4, 9, 8, {60, 70, 60, 60, 70, 70, 70, 70}, {60, 70, 60, 63, 66, 68, 69, 70}},
    {"strong q2 far", true, kBoth, 40, 10, 4, 9, 8, {60, 60, 60, 60, 70, 70, 80, 70}, {60, 61, 63, 64, 68, 70, 80, 70}},
    {"chroma tc0 0", false, kBoth, 40, 10, 1, 0, 8, {0, 0, 60, 60, 70, 70, 0, 0}, {0, 0, 60, 61, 69, 70, 0, 0}},
    {"chroma tc0 9", false, kBoth, 40, 10, 1, 9, 8, {0, 0, 60, 60, 70, 70, 0, 0}, {0, 0, 60, 64, 66, 70, 0, 0}},
    {"downwards", false, kBoth, 40, 10, 3, 9, 8, {0, 0, 70, 70, 60, 60, 0, 0}, {0, 0, 70, 66, 64, 60, 0, 0}},
    {"p1 at beta", false, kBoth, 40, 10, 3, 9, 8, {0, 0, 50, 60, 70, 70, 0, 0}, {0, 0, 50, 60, 70, 70, 0, 0}},
    {"p1 below beta", false, kBoth, 40, 11, 3, 9, 8, {0, 0, 50, 60, 70, 70, 0, 0}, {0, 0, 50, 63, 67, 70, 0, 0}},
    {"q1 at beta", false, kBoth, 40, 10, 3, 9, 8, {0, 0, 60, 60, 70, 80, 0, 0}, {0, 0, 60, 60, 70, 80, 0, 0}},
    {"q1 below beta", false, kBoth, 40, 11, 3, 9, 8, {0, 0, 60, 60, 70, 80, 0, 0}, {0, 0, 60, 63, 67, 80, 0, 0}},
    {"clip to 0", false, kBoth, 40, 30, 1, 9, 8, {0, 0, 1, 1, 0, 20, 0, 0}, {0, 0, 1, 0, 3, 20, 0, 0}},
    {"clip to 255", false, kBoth, 40, 30, 1, 9, 8, {0, 0, 254, 254, 255, 235, 0, 0}, {0, 0, 254, 255, 252, 235, 0, 0}},
    {"clip to 511", false, k16u, 40, 30, 1, 9, 9, {0, 0, 510, 510, 511, 491, 0, 0}, {0, 0, 510, 511, 508, 491, 0, 0}},
    {"depth 14", false, k16u, 40, 30, 1, 9, 14, {0, 0, 510, 510, 511, 491, 0, 0}, {0, 0, 510, 513, 508, 491, 0, 0}},
    {"no delta", false, k16u, 40, 10, 1, 9, 8, {0, 0, 300, 300, 300, 300, 0, 0}, {0, 0, 300, 300, 300, 300, 0, 0}},
    {"chroma tc wraps", false, k8u, 40, 10, 1, 255, 8, {0, 0, 60, 60, 70, 70, 0, 0}, {0, 0, 60, 60, 70, 70, 0, 0}},
    {"16u: no wrap", false, k16u, 40, 10, 1, 255, 8, {0, 0, 60, 60, 70, 70, 0, 0}, {0, 0, 60, 64, 66, 70, 0, 0}},
    {"16u: wraps", false, k16u, 40, 10, 1, 65535, 8, {0, 0, 60, 60, 70, 70, 0, 0}, {0, 0, 60, 60, 70, 70, 0, 0}},
    {"chroma strong", false, kBoth, 11, 9, 4, 0, 8, {0, 0, 52, 60, 70, 78, 0, 0}, {0, 0, 52, 61, 70, 78, 0, 0}},
    // clang-format on
};

TEST_P(Deblock, LinesByHand) {
  each([&]<class T>(const Entry<T>& entry) {
    const int reach = entry.form.reach();
    const auto plane = entry.footprint();
    Inputs<T> in(entry.form);
    for (const LineCase& c : kLineCases) {
      if (c.luma != entry.form.luma || c.samples == (sizeof(T) == 1 ? k16u : k8u)) continue;
      const auto in_line = [=](const auto& line, int tap) { return tap < 2 * reach ? line[4 - reach + tap] : 0; };
      entry.each_sample(plane, [&](T& sample, int tap, int) { sample = static_cast<T>(in_line(c.before, tap)); });
      in.depth = c.depth, in.alpha = {c.alpha, 0}, in.beta = {c.beta, 0};
      std::fill(in.tc0.begin(), in.tc0.end(), static_cast<T>(c.tc0));
      std::fill_n(in.bs.begin(), 4, static_cast<Mox8u>(c.bs));
      ASSERT_EQ(entry.call(in.with(entry.block(plane), plane.step())), moxStsOk);
      entry.each_sample(plane, [&](T sample, int tap, int line) {
        ASSERT_EQ(sample, in_line(c.after, tap)) << entry.name << ", " << c.what << ": line " << line << " tap " << tap;
      });
    }
  });
}

TEST_P(Deblock, WhereTheStrongRuleRuns) {
  each([&]<class T>(const Entry<T>& entry) {
    const auto& form = entry.form;
    const auto plane = entry.footprint();
    for (int probe = 0; probe < (form.edges == 1 ? 5 : 7); ++probe) {
      const int edge = probe < 5 ? 0 : 1, q0 = form.reach() + 4 * edge;
      entry.each_sample(plane, [&](T& sample, int tap, int) { sample = tap < q0 ? 60 : 70; });
      Inputs<T> in(form);
      in.alpha = {40, 40}, in.beta = {10, 10};
      for (int i = 0; i < 4; ++i) in.bs[form.bsRow * edge + i] = static_cast<Mox8u>(kProbes[probe][i] - '0');
      ASSERT_EQ(entry.call(in.with(entry.block(plane), plane.step())), moxStsOk);
      for (int i = 0; i < entry.all_lines(); ++i) {
        const int p0 = entry.sample(plane, i, q0 - 1);
        const char rule = p0 == 60 ? '-' : p0 == (form.luma ? 62 : 61) ? 'n' : p0 == (form.luma ? 64 : 63) ? 's' : '?';
        EXPECT_EQ(rule, entry.outcome[probe][i % form.lines >> form.shift])
            << entry.name << " bS " << kProbes[probe] << " edge " << edge << " line " << i << " p0 " << p0;
      }
    }
  });
}

TEST_P(Deblock, ReadsNoSampleOfAnEdgeThatIsOff) {
  each([&]<class T>(const Entry<T>& entry) {
    const Guarded<T> page(1);
    T* const unreadable = page.end() + 1024;
    Inputs<T> in(entry.form);
    in.alpha = in.beta = {255, 255};
    if (entry.form.bsRow == 8) std::fill_n(in.bs.data() + 4, 4, Mox8u{4});  // a row of luma alone
    EXPECT_EQ(entry.call(in.with(unreadable, 32)), moxStsOk);
    if (entry.form.edges > 1) return;
    std::fill(in.bs.begin(), in.bs.end(), Mox8u{4});
    in.alpha = {0, 255};
    EXPECT_EQ(entry.call(in.with(unreadable, 32)), moxStsOk);
  });
}

TEST_P(Deblock, ReadsOnlyTheEdgesThatAreOn) {
  each([&]<class T>(const Entry<T>& entry) {
    Entry<T> lone = entry;
    lone.form.edges = 1;
    for (int edge = 0; edge < entry.form.edges; ++edge) {
      for (const Placement place : {Placement::at_start(), Placement::at_end()}) {
        const auto plane = lone.footprint(0, place);
        lone.each_sample(plane, [&](T& sample, int tap, int) { sample = tap < entry.form.reach() ? 60 : 70; });
        Inputs<T> in(entry.form);
        in.alpha = {40, 40}, in.beta = {10, 10};
        std::fill_n(in.bs.data() + entry.form.bsRow * edge, 4, Mox8u{3});
        const int back = 4 * edge * (entry.form.vertical ? entry.form.channels : plane.step());
        ASSERT_EQ(entry.call(in.with(lone.block(plane) - back, plane.step())), moxStsOk);
        for (int i = 0; i < lone.all_lines(); ++i) {
          ASSERT_EQ(lone.sample(plane, i, entry.form.reach()), entry.form.luma ? 68 : 69)
              << entry.name << " line " << i;
        }
      }
    }
  });
}

TEST_P(Deblock, ThresholdsByValueAreUnsigned32Bit) {
  const Guarded<Mox8u> tc0(4), bs({4, 4, 4, 4});
  const auto line_after = [&](Mox32u alpha, Mox32u beta) {
    const Plane<Mox8u> plane(8, 8, 8);
    for (int i = 0; i < 64; ++i) plane.memory()[i] = i % 8 < 4 ? 0 : 255;
    EXPECT_EQ(lib(MOX_FN(moxiFilterDeblockingLuma_VerEdge_MBAFF_H264_8u_C1IR))(plane.at(4, 0), 8, alpha, beta,
                                                                               tc0.data(), bs.data()),
              moxStsOk);
    return std::vector<int>(plane.at(0, 7), plane.at(0, 7) + 8);
  };
  EXPECT_EQ(line_after(255, 255), (std::vector<int>{0, 0, 0, 0, 255, 255, 255, 255}));
  EXPECT_EQ(line_after(256, 256), (std::vector<int>{0, 0, 0, 64, 191, 255, 255, 255}));
  EXPECT_EQ(line_after(256, 1), (std::vector<int>{0, 0, 0, 64, 191, 255, 255, 255}));
  EXPECT_EQ(line_after(0xFFFFFFFF, 0xFFFFFFFF), (std::vector<int>{0, 32, 64, 96, 159, 191, 223, 255}));
}

/// Memory for calls that would change samples: a chequered plane with room around the block, bS 3, tc0 and
/// thresholds 9.
template <class T>
struct Filterable {
  Guarded<T> plane = Guarded<T>(20 * 20), nines = Guarded<T>(16);
  Guarded<Mox8u> bs = Guarded<Mox8u>(16);
  T* block = plane.data() + 4 * 20 + 4;
  Filterable() {
    for (std::size_t i = 0; i < plane.size(); ++i) plane[i] = static_cast<T>(i * 2 % 5);
    std::fill(nines.begin(), nines.end(), T{9});
    std::fill(bs.begin(), bs.end(), Mox8u{3});
  }
};

TEST_P(Deblock, SeparateArguments) {
  const Filterable<Mox8u> m;
  const auto expect_order = [&](auto function) {
    Call{function, std::tuple{m.block, 20, m.nines.data(), m.nines.data(), m.nines.data(), m.bs.data()}}
        .keeps(m.plane.data(), m.plane.size())
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set<2>(nullptr)},
                       {moxStsNullPointer, set<3>(nullptr)},
                       {moxStsNullPointer, set<4>(nullptr)},
                       {moxStsNullPointer, set<5>(nullptr)}});
  };
  expect_order(lib(MOX_FN(moxiFilterDeblockingLuma_VerEdge_H264_8u_C1IR)));
  expect_order(lib(MOX_FN(moxiFilterDeblockingLuma_HorEdge_H264_8u_C1IR)));
  expect_order(lib(MOX_FN(moxiFilterDeblockingChroma_VerEdge_H264_8u_C1IR)));
  expect_order(lib(MOX_FN(moxiFilterDeblockingChroma_HorEdge_H264_8u_C1IR)));
  expect_order(lib(MOX_FN(moxiFilterDeblockingChroma_VerEdge_H264_8u_C2IR)));
  expect_order(lib(MOX_FN(moxiFilterDeblockingChroma_HorEdge_H264_8u_C2IR)));
  const auto expect_order_by_value = [&](auto function, Mox32u alpha) {
    Call{function, std::tuple{m.block, 20, alpha, 9, m.nines.data(), m.bs.data()}}
        .keeps(m.plane.data(), m.plane.size())
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set<4>(nullptr)},
                       {moxStsNullPointer, set<5>(nullptr)}});
  };
  for (Mox32u alpha : {0, 9}) {  // pointers are tested before alpha 0 ends the call
    expect_order_by_value(lib(MOX_FN(moxiFilterDeblockingLuma_VerEdge_MBAFF_H264_8u_C1IR)), alpha);
    expect_order_by_value(lib(MOX_FN(moxiFilterDeblockingChroma_VerEdge_MBAFF_H264_8u_C1IR)), alpha);
  }
}

TEST_P(Deblock, RecordArguments) {
  const auto expect_order = [](auto function, const auto& m, const auto& record) {
    using Record = std::decay_t<decltype(record)>;
    Call{function, std::tuple{&record}}
        .keeps(m.plane.data(), m.plane.size() * sizeof m.plane[0])
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set_field<0>(&Record::pSrcDstPlane, nullptr)},
                       {moxStsNullPointer, set_field<0>(&Record::pAlpha, nullptr)},
                       {moxStsNullPointer, set_field<0>(&Record::pBeta, nullptr)},
                       {moxStsNullPointer, set_field<0>(&Record::pThresholds, nullptr)},
                       {moxStsNullPointer, set_field<0>(&Record::pBs, nullptr)}});
  };
  const Filterable<Mox8u> m;
  const MoxiDeblockParams record = {m.block, 20, m.nines.data(), m.nines.data(), m.nines.data(), m.bs.data()};
  expect_order(lib(MOX_FN(moxiFilterDeblockingChroma422VerEdge_H264_8u_C1IR)), m, record);
  expect_order(lib(MOX_FN(moxiFilterDeblockingChroma422HorEdge_H264_8u_C1IR)), m, record);
  for (int depth : {10, -1, 0, 31, 32}) {  // the depth is not tested
    const Filterable<Mox16u> w;
    const MoxiDeblockParams_16u wide = {w.block,        20,          w.nines.data(), w.nines.data(),
                                        w.nines.data(), w.bs.data(), depth};
    expect_order(lib(MOX_FN(moxiFilterDeblockingLumaVerEdge_H264_16u_C1IR)), w, wide);
    expect_order(lib(MOX_FN(moxiFilterDeblockingLumaHorEdge_H264_16u_C1IR)), w, wide);
    expect_order(lib(MOX_FN(moxiFilterDeblockingLumaVerEdgeMBAFF_H264_16u_C1IR)), w, wide);
    expect_order(lib(MOX_FN(moxiFilterDeblockingChromaVerEdge_H264_16u_C1IR)), w, wide);
    expect_order(lib(MOX_FN(moxiFilterDeblockingChromaHorEdge_H264_16u_C1IR)), w, wide);
    expect_order(lib(MOX_FN(moxiFilterDeblockingChromaVerEdgeMBAFF_H264_16u_C1IR)), w, wide);
    expect_order(lib(MOX_FN(moxiFilterDeblockingChroma422VerEdge_H264_16u_C1IR)), w, wide);
    expect_order(lib(MOX_FN(moxiFilterDeblockingChroma422HorEdge_H264_16u_C1IR)), w, wide);
  }
}

TEST_P(Deblock, FormsThatAreNotAvailable) {
  const auto f = lib(MOX_FN(moxiFilterDeblockingChroma422VerEdgeMBAFF_H264_8u_C1IR));
  const auto f16 = lib(MOX_FN(moxiFilterDeblockingChroma422VerEdgeMBAFF_H264_16u_C1IR));
  const Guarded<MoxiDeblockParams> record(1);
  const Guarded<MoxiDeblockParams_16u> record16(1);
  for (std::size_t unreadable : {0, 1}) {
    EXPECT_EQ(f(record.data() + unreadable), moxStsRegionTooSmall);
    EXPECT_EQ(f16(record16.data() + unreadable), moxStsRegionTooSmall);
  }
  EXPECT_EQ(f(nullptr), moxStsRegionTooSmall);
  EXPECT_EQ(f16(nullptr), moxStsRegionTooSmall);
}

MOX_INSTANTIATE_GENERATIONS(Deblock);

}  // namespace
}  // namespace mox::test
