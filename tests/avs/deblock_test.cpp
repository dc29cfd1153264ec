#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "moxvc.h"
#include "oracle/avs.hpp"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

using oracle::AvsLine;
using Function = decltype(moxiFilterDeblockingLuma_VerEdge_AVS_8u_C1IR);

struct Form {
  Symbol<Function> symbol;
  bool luma, vertical;

  int lines() const { return luma ? 16 : 8; }
  int edges() const { return luma ? 2 : 1; }
  int before() const { return vertical ? 4 : 3; }  ///< samples in front of the first edge that are read
  int across() const { return (luma ? 8 : 0) + 2 * before(); }
  /// A sample by its line and its place, 0 being the first one behind the first edge.
  Mox8u& sample(const Plane<Mox8u>& p, int line, int place) const {
    return vertical ? p(before() + place, line) : p(line, before() + place);
  }
};
constexpr Form kForms[] = {{MOX_FN(moxiFilterDeblockingLuma_VerEdge_AVS_8u_C1IR), true, true},
                           {MOX_FN(moxiFilterDeblockingLuma_HorEdge_AVS_8u_C1IR), true, false},
                           {MOX_FN(moxiFilterDeblockingChroma_VerEdge_AVS_8u_C1IR), false, true},
                           {MOX_FN(moxiFilterDeblockingChroma_HorEdge_AVS_8u_C1IR), false, false}};

class AvsDeblock : public PerGeneration {};
MOX_INSTANTIATE_GENERATIONS(AvsDeblock);

/// A plane of exactly the samples that a form reads. Half edges without strength and their surroundings take part.
TEST_P(AvsDeblock, EqualsOracle) {
  Random random;
  for (const Form& form : kForms) {
    for (int round = 0; round < 1500; ++round) {
      const int width = form.vertical ? form.across() : form.lines(),
                height = form.vertical ? form.lines() : form.across();
      const int step = (random.chance(0.3) ? -1 : 1) * (width + random(0, 20));
      const auto placement = random.chance(0.5) ? Placement::at_end() : Placement::at_start();
      const Plane<Mox8u> plane(width, height, step, placement), expected(width, height, step, placement);
      // Any samples, extremes, or steps of the size of the thresholds.
      const int kind = random(0, 3), size = random(0, 30), noise = random(0, 8);
      for (int line = 0; line < form.lines(); ++line) {
        for (int place = -form.before(); place < form.across() - form.before(); ++place) {
          const int side = (place < 0 ? 0 : place < 8 ? size : -size) + random(0, 1) * 100 * (kind == 3);
          const int near = std::clamp(128 + side + random(-noise, noise), 0, 255);
          form.sample(plane, line, place) = static_cast<Mox8u>(kind == 0   ? random(0, 255)
                                                               : kind == 1 ? 255 * random(0, 1)
                                                                           : near);
        }
      }
      expected.assign(plane);

      const auto edges = static_cast<std::size_t>(form.edges());
      const Guarded<Mox8u> alpha(edges), beta(edges), limit(edges), strengths(2 * edges);
      for (std::size_t e = 0; e < edges; ++e) {
        const bool wild = random.chance(0.2);
        alpha[e] = static_cast<Mox8u>(random(0, wild ? 255 : 64)),
        beta[e] = static_cast<Mox8u>(random(0, wild ? 255 : 27));
        limit[e] = static_cast<Mox8u>(random(0, wild ? 255 : 9));
      }
      for (Mox8u& strength : strengths) strength = static_cast<Mox8u>(random.chance(0.05) ? 255 : random(0, 2));
      for (std::size_t e = 0; e < edges; ++e) {
        for (int line = 0; line < form.lines(); ++line) {
          AvsLine old;
          const auto at = [&](int i) -> Mox8u& { return form.sample(expected, line, 8 * static_cast<int>(e) + i - 3); };
          for (int i = 0; i < 6; ++i) old[i] = at(i);
          const int strength = strengths[2 * e + (line >= form.lines() / 2)];
          const AvsLine now = oracle::avs_deblocked(old, form.luma, strength, alpha[e], beta[e], limit[e]);
          for (int i = 0; i < 6; ++i) at(i) = static_cast<Mox8u>(now[i]);
        }
      }
      ASSERT_EQ(lib(form.symbol)(&form.sample(plane, 0, 0), plane.step(), alpha.data(), beta.data(), limit.data(),
                                 strengths.data()),
                moxStsOk);
      ASSERT_EQ(plane.copy(), expected.copy()) << form.symbol.name << ", round " << round;
    }
  }
}

/// By hand: p2 p1 p0 | q0 q1 q2, strength and thresholds, and what becomes of them in luma.
TEST_P(AvsDeblock, LiteralLines) {
  const struct {
    Mox8u strength, alpha, beta, limit;
    AvsLine before, after;
  } kCases[] = {
      {2, 30, 5, 0, {100, 100, 100, 104, 104, 104}, {100, 101, 101, 103, 103, 104}},  // flat on both sides
      {2, 30, 5, 0, {90, 98, 100, 110, 112, 113}, {90, 98, 102, 109, 112, 113}},      // a gap of 10: 30 / 4 + 2 = 9
      {2, 10, 5, 0, {100, 100, 100, 110, 110, 110}, {100, 100, 100, 110, 110, 110}},  // not below alpha
      {1, 30, 5, 3, {99, 97, 100, 108, 111, 108}, {99, 98, 101, 107, 110, 108}},
      {1, 30, 5, 1, {90, 100, 100, 108, 108, 120}, {90, 100, 101, 107, 108, 120}}};
  for (const auto& c : kCases) {
    const Plane<Mox8u> plane(16, 6, 16);
    for (int x = 0; x < 16; ++x) {
      for (int i = 0; i < 6; ++i) plane(x, i) = static_cast<Mox8u>(c.before[i]);
    }
    const Mox8u alpha[] = {c.alpha, 0}, beta[] = {c.beta, 0}, limit[] = {c.limit, 0},
                strengths[] = {c.strength, c.strength, 0, 0};
    lib(kForms[1].symbol)(plane.at(0, 3), 16, alpha, beta, limit, strengths);
    for (int i = 0; i < 6; ++i) EXPECT_EQ(plane(9, i), c.after[i]) << "strength " << +c.strength << ", sample " << i;
  }
}

TEST_P(AvsDeblock, NullPointers) {
  Mox8u plane[32 * 24] = {}, values[4] = {2, 2, 2, 2};
  const auto null = moxStsNullPointer;
  for (const Form& form : kForms) {
    Call{lib(form.symbol), std::tuple{plane + 4 * 32 + 4, 32, values, values, values, values}}
        .keeps(plane, sizeof plane)
        .expect_order({{null, set<0>(nullptr)},
                       {null, set<2>(nullptr)},
                       {null, set<3>(nullptr)},
                       {null, set<4>(nullptr)},
                       {null, set<5>(nullptr)}});
  }
}

}  // namespace
}  // namespace mox::test
