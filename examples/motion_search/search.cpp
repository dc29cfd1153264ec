#include "motion_search/search.hpp"

#include <algorithm>
#include <array>
#include <vector>

namespace motion_search {
namespace {

Vector rounded(Vector v) { return {v.x & ~1, v.y & ~1}; }

bool within(Vector v, int range) {
  return v.x >= -2 * range && v.x < 2 * range && v.y >= -2 * range && v.y < 2 * range;
}

/// Moves to the best of the vectors around the best one so far; false if that stays where it is.
bool improve(const Target& target, int range, std::span<const Vector> around, Match& best) {
  const Vector centre = best.vector;
  for (const Vector offset : around) {
    const Vector v = centre + offset;
    if (!within(v, range)) continue;
    const Match match = match_at(target, moxiSAD16x16_8u32s, v);
    if (match.sad < best.sad) best = match;
  }
  return !(best.vector == centre);
}

}  // namespace

Match match_at(const Target& target, Sad* sad, Vector vector) {
  const Place at = place(target.reference, target.referenceStep, vector);
  Match match{vector, 0};
  check(sad(target.block, target.blockStep, at.sample, target.referenceStep, &match.sad, at.mcType));
  return match;
}

Match full_search(const Target& target, int range) {
  Match best = match_at(target, moxiSAD16x16_8u32s, {});
  std::vector<Mox16u> sads(static_cast<std::size_t>(2 * range));
  for (int y = -range; y < range; ++y) {
    const Place row = place(target.reference, target.referenceStep, whole(-range, y));
    Mox32s index = 0;
    check(moxiSAD16x16xNI_8u16u_C1R(target.block, target.blockStep, row.sample, target.referenceStep, sads.data(),
                                    2 * range, &index));
    const Mox32s sad = sads[static_cast<std::size_t>(index)];
    if (sad < best.sad) best = {whole(index - range, y), sad};
  }
  return best;
}

Match diamond_search(const Target& target, int range, std::span<const Vector> starts) {
  static constexpr Vector kLarge[] = {whole(0, -2), whole(1, -1), whole(2, 0),  whole(1, 1),
                                      whole(0, 2),  whole(-1, 1), whole(-2, 0), whole(-1, -1)};
  static constexpr Vector kSmall[] = {whole(0, -1), whole(1, 0), whole(0, 1), whole(-1, 0)};
  Match best = match_at(target, moxiSAD16x16_8u32s, {});
  for (const Vector start : starts) {
    if (!within(rounded(start), range)) continue;
    const Match match = match_at(target, moxiSAD16x16_8u32s, rounded(start));
    if (match.sad < best.sad) best = match;
  }
  while (improve(target, range, kLarge, best)) {
  }
  improve(target, range, kSmall, best);
  return best;
}

Match search_around(const Target& target, Vector centre) {
  constexpr int kReach = 4;
  constexpr Mox32s kCostOfASample = 4;
  centre = rounded(centre);
  Match best = match_at(target, moxiSAD8x8_8u32s_C1R, centre);
  Mox32s best_cost = best.sad;
  for (int y = -kReach; y < kReach; ++y) {
    const Place row = place(target.reference, target.referenceStep, centre + whole(-kReach, y));
    std::array<Mox16u, 2 * kReach> sads;
    check(moxiSAD8x8xN_8u16u_C1R(target.block, target.blockStep, row.sample, target.referenceStep, sads.data(),
                                 2 * kReach));
    for (int x = -kReach; x < kReach; ++x) {
      const Mox32s sad = sads[static_cast<std::size_t>(x + kReach)];
      const Mox32s cost = sad + kCostOfASample * (std::abs(x) + std::abs(y));
      if (cost < best_cost) best = {centre + whole(x, y), sad}, best_cost = cost;
    }
  }
  return best;
}

Match refine(const Target& target, Sad* sad, Match best) {
  const Vector centre = best.vector;
  for (int y = -1; y <= 1; ++y) {
    for (int x = -1; x <= 1; ++x) {
      if (x == 0 && y == 0) continue;
      const Match match = match_at(target, sad, centre + Vector{x, y});
      if (match.sad < best.sad) best = match;
    }
  }
  return best;
}

}  // namespace motion_search
