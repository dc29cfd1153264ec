#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "moxvc.h"
#include "oracle/h263_filter.hpp"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

using oracle::Across;

struct Form {
  std::string name;
  bool vertical;
  int positions, reach;  ///< along the edge; samples on each side
  std::function<MoxStatus(Mox8u*, int, int)> call;
  std::function<Across(const Across&, int)> expected;  ///< of old samples and quantiser

  /// A plane of exactly the samples that the form touches, rows `extra` samples further apart than they are wide.
  Plane<Mox8u> footprint(int extra, Placement placement) const {
    const int width = vertical ? 2 * reach : positions, height = vertical ? positions : 2 * reach;
    return {width, height, extra < 0 ? extra - width : extra + width, placement};
  }
  Mox8u& sample(const Plane<Mox8u>& plane, int position, int tap) const {
    return vertical ? plane(tap, position) : plane(position, tap);
  }
  Mox8u* edge(const Plane<Mox8u>& plane) const { return &sample(plane, 0, reach); }
  Across read(const Plane<Mox8u>& plane, int position) const {
    Across across{};
    for (int tap = 0; tap < 2 * reach; ++tap) across[2 - reach + tap] = sample(plane, position, tap);
    return across;
  }
  void write(const Plane<Mox8u>& plane, int position, const Across& across) const {
    for (int tap = 0; tap < 2 * reach; ++tap) {
      sample(plane, position, tap) = static_cast<Mox8u>(across[2 - reach + tap]);
    }
  }
};

class H263Filter : public PerGeneration {
 protected:
  std::vector<Form> forms() const {
    const auto limited = [this](auto symbol, bool vertical) {
      return Form{symbol.name,
                  vertical,
                  8,
                  2,
                  [f = lib(symbol)](Mox8u* edge, int step, int qp) { return f(edge, static_cast<Mox32u>(step), qp); },
                  [](const Across& old, int qp) { return oracle::deblocked(old, oracle::deblock_strength(qp)); }};
    };
    const auto wide = [this](auto symbol, bool vertical, int reach) {
      return Form{
          symbol.name,
          vertical,
          16,
          reach,
          [f = lib(symbol)](Mox8u* edge, int step, int) { return f(edge, static_cast<Mox32u>(step)); },
          [=](const Across& old, int) { return reach == 2 ? oracle::deblocked(old, 0) : oracle::smoothed(old); }};
    };
    return {limited(MOX_FN(moxiFilterDeblocking8x8HorEdge_H263_8u_C1IR), false),
            limited(MOX_FN(moxiFilterDeblocking8x8VerEdge_H263_8u_C1IR), true),
            wide(MOX_FN(moxiFilterDeblocking16x16HorEdge_H263_8u_C1IR), false, 2),
            wide(MOX_FN(moxiFilterDeblocking16x16VerEdge_H263_8u_C1IR), true, 2),
            wide(MOX_FN(moxiFilterBlockBoundaryHorEdge_H263_8u_C1IR), false, 1),
            wide(MOX_FN(moxiFilterBlockBoundaryVerEdge_H263_8u_C1IR), true, 1)};
  }
};

/// Samples between rows; negative for rows that go upwards in memory.
constexpr int kExtra[] = {0, 1, 13, 500, -1, -9};
constexpr Placement kPlacements[] = {Placement::at_end(), Placement::at_start(), Placement::aligned(5)};

TEST_P(H263Filter, EqualsOracle) {
  Random random;
  for (const Form& form : forms()) {
    for (int round = 0; round < 2000; ++round) {
      const int extra = kExtra[random.bits() % 6], qp = round % 31 + 1;
      const Placement placement = kPlacements[random.bits() % 3];
      const auto plane = form.footprint(extra, placement), expected = form.footprint(extra, placement);
      // Any samples, extremes, and steps over the edge as the ramp knows them.
      const int kind = random(0, 2), step = random(0, 40);
      for (int i = 0; i < form.positions; ++i) {
        for (int tap = 0; tap < 2 * form.reach; ++tap) {
          const int near = std::clamp(110 + (tap >= form.reach ? step : -step) + random(-6, 6), 0, 255);
          form.sample(plane, i, tap) = static_cast<Mox8u>(kind == 0   ? random(0, 255)
                                                          : kind == 1 ? 255 * random(0, 1)
                                                                      : near);
        }
      }
      expected.assign(plane);
      for (int i = 0; i < form.positions; ++i) form.write(expected, i, form.expected(form.read(plane, i), qp));
      ASSERT_EQ(form.call(form.edge(plane), plane.step(), qp), moxStsOk);
      ASSERT_EQ(plane.copy(), expected.copy()) << form.name << ", QP " << qp << ", round " << round;
    }
  }
}

/// By hand: A, B | C, D, quantiser (0: the 16x16 forms), and what becomes of them.
TEST_P(H263Filter, LiteralSamples) {
  struct Case {
    int qp;
    Across old, filtered;
  };
  constexpr Case kDeblocking[] = {
      {0, {0, 0, 255, 255}, {47, 95, 160, 208}},         // d 765 / 8 = 95
      {0, {255, 250, 255, 0}, {238, 255, 221, 17}},      // d 275 / 8 = 34: B clamped
      {0, {0, 5, 0, 255}, {17, 0, 34, 238}},             // d -275 / 8 = -34
      {1, {100, 100, 103, 103}, {100, 101, 102, 103}},   // d 9 / 8 = 1, up to strength 1
      {1, {103, 103, 100, 100}, {103, 102, 101, 100}},   // d -9 / 8 = -1
      {1, {100, 100, 106, 106}, {100, 100, 106, 106}},   // d 18 / 8 = 2, twice the strength
      {31, {100, 100, 132, 132}, {106, 112, 120, 126}},  // d 12, the strength itself
      {29, {148, 148, 100, 100}, {145, 142, 106, 103}},  // d -18: 6 is left
      {28, {100, 100, 132, 132}, {105, 110, 122, 127}},  // d 12, strength 11: 10 is left
      {31, {100, 100, 164, 164}, {100, 100, 164, 164}},  // d 24, twice the strength
  };
  constexpr Case kBoundary[] = {
      {0, {0, 0, 255, 0}, {0, 64, 191, 0}}, {0, {0, 9, 7, 0}, {0, 9, 8, 0}}, {0, {0, 77, 77, 0}, {0, 77, 77, 0}}};
  for (const Form& form : forms()) {
    for (const Case& c : form.reach == 1 ? std::span<const Case>(kBoundary) : std::span<const Case>(kDeblocking)) {
      if ((c.qp == 0) != (form.positions == 16)) continue;
      const auto plane = form.footprint(0, Placement::at_end());
      for (int i = 0; i < form.positions; ++i) form.write(plane, i, c.old);
      EXPECT_EQ(form.call(form.edge(plane), plane.step(), c.qp), moxStsOk);
      const Across filtered = form.reach == 2 ? c.filtered : Across{0, c.filtered[1], c.filtered[2], 0};
      for (int i = 0; i < form.positions; ++i) EXPECT_EQ(form.read(plane, i), filtered) << form.name << ", " << i;
    }
  }
}

TEST_P(H263Filter, Arguments) {
  std::vector<Mox8u> samples(16 * 16, 200);
  std::fill_n(samples.begin(), 128, Mox8u{190});
  Mox8u* const edge = &samples[8 * 16 + 8];
  const auto expect_order = [&](auto call, auto faults) { call.keeps(samples.data(), 256).expect_order(faults); };
  for (auto symbol :
       {MOX_FN(moxiFilterDeblocking8x8HorEdge_H263_8u_C1IR), MOX_FN(moxiFilterDeblocking8x8VerEdge_H263_8u_C1IR)}) {
    for (int bad : {0, 32, -1, 1 << 30}) {
      using Faults = std::vector<Call<Mox8u*, Mox32u, Mox32s>::Fault>;
      expect_order(Call(lib(symbol), std::tuple{edge, 16u, 31}),
                   Faults{{moxStsNullPointer, set<0>(nullptr)}, {moxStsBadQp, set<2>(bad)}});
    }
  }
  for (auto symbol :
       {MOX_FN(moxiFilterDeblocking16x16HorEdge_H263_8u_C1IR), MOX_FN(moxiFilterBlockBoundaryHorEdge_H263_8u_C1IR)}) {
    expect_order(Call(lib(symbol), std::tuple{edge - 8, 16u}),
                 std::vector<Call<Mox8u*, Mox32u>::Fault>{{moxStsNullPointer, set<0>(nullptr)}});
  }
  for (auto symbol :
       {MOX_FN(moxiFilterDeblocking16x16VerEdge_H263_8u_C1IR), MOX_FN(moxiFilterBlockBoundaryVerEdge_H263_8u_C1IR)}) {
    expect_order(Call(lib(symbol), std::tuple{samples.data() + 8, 16u}),
                 std::vector<Call<Mox8u*, Mox32u>::Fault>{{moxStsNullPointer, set<0>(nullptr)}});
  }
}

MOX_INSTANTIATE_GENERATIONS(H263Filter);

}  // namespace
}  // namespace mox::test
