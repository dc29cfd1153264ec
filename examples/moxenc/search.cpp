#include "moxenc/search.hpp"

#include <array>

namespace moxenc {
namespace {

using SadWithPosition = decltype(moxiSAD16x16_8u32s);
using Distance = decltype(moxiSAD8x16_8u32s_C1R);

template <SadWithPosition* F>
int sad_of(const Mox8u* a, Mox32s a_step, const Mox8u* b, Mox32s b_step) {
  Mox32s distance;
  expect_ok(F(a, a_step, b, b_step, &distance, 0));
  return distance;
}
template <Distance* F>
int distance_of(const Mox8u* a, Mox32s a_step, const Mox8u* b, Mox32s b_step) {
  Mox32s distance;
  expect_ok(F(a, a_step, b, b_step, &distance));
  return distance;
}

/// [2 * (height / 8 - 1) + width / 8 - 1].
constexpr Shape kShapes[4] = {
    {8, 8, sad_of<moxiSAD8x8_8u32s_C1R>, distance_of<moxiSATD8x8_8u32s_C1R>, nullptr},
    {16, 8, sad_of<moxiSAD16x8_8u32s_C1R>, distance_of<moxiSATD16x8_8u32s_C1R>, nullptr},
    {8, 16, distance_of<moxiSAD8x16_8u32s_C1R>, distance_of<moxiSATD8x16_8u32s_C1R>, nullptr},
    {16, 16, sad_of<moxiSAD16x16_8u32s>, distance_of<moxiSATD16x16_8u32s_C1R>, moxiSAD16x16xN_8u16u_C1R}};

constexpr Vector moved(Vector v, int x, int y) {
  return {static_cast<std::int16_t>(v.x + x), static_cast<std::int16_t>(v.y + y)};
}
constexpr Vector rounded(Vector v) {
  return {static_cast<std::int16_t>((v.x + 2) & ~3), static_cast<std::int16_t>((v.y + 2) & ~3)};
}

const Mox8u* place(const Target& target, Vector v) {
  return target.reference + std::ptrdiff_t{v.y >> 2} * target.reference_step + (v.x >> 2);
}

int cost_whole(const Target& target, Vector v) {
  return target.shape.sad(target.source, target.source_step, place(target, v), target.reference_step) +
         target.lambda.sad * target.bits_of(v);
}

int cost_between(const Target& target, Vector v) {
  const Mox8u* block = place(target, v);
  Mox32s step = target.reference_step;
  alignas(16) Mox8u between[16 * 16];
  if ((v.x & 3) != 0 || (v.y & 3) != 0) {
    expect_ok(moxiInterpolateLuma_H264_8u_C1R(block, step, between, 16, v.x & 3, v.y & 3,
                                              {target.shape.width, target.shape.height}));
    block = between, step = 16;
  }
  return target.shape.satd(target.source, target.source_step, block, step) + target.lambda.satd * target.bits_of(v);
}

template <class Cost>
void consider(const Target& target, Vector v, Match& best, Cost cost_of) {
  if (!target.limits.allow(v)) return;
  const int cost = cost_of(target, v);
  if (cost < best.cost) best = {v, cost};
}

/// Looks around the best one; returns whether there is a better one.
template <std::size_t N, class Cost>
bool improve(const Target& target, const Vector (&steps)[N], Match& best, Cost cost_of) {
  const Vector centre = best.vector;
  for (const Vector step : steps) consider(target, moved(centre, step.x, step.y), best, cost_of);
  return !(best.vector == centre);
}

/// All vectors of whole samples up to four around the best one, a row of them with each call.
void sweep(const Target& target, Match& best) {
  constexpr int kReach = 4, kRow = 8;
  const Vector centre = best.vector;
  if (!target.limits.allow(moved(centre, -16, -4 * kReach)) || !target.limits.allow(moved(centre, 12, 4 * kReach)))
    return;
  for (int y = -kReach; y <= kReach; ++y) {
    const Vector first = moved(centre, -16, 4 * y);
    std::array<Mox16u, kRow> sads;
    expect_ok(target.shape.sads(target.source, target.source_step, place(target, first), target.reference_step,
                                sads.data(), kRow));
    const int row_bits = se_length(first.y - target.predicted.y);
    for (int x = 0; x < kRow; ++x) {
      const int sad = sads[static_cast<std::size_t>(x)];
      if (sad >= best.cost) continue;
      const Vector v = moved(first, 4 * x, 0);
      const int cost = sad + target.lambda.sad * (row_bits + se_length(v.x - target.predicted.x));
      if (cost < best.cost) best = {v, cost};
    }
  }
}

}  // namespace

const Shape& shape_of(int width, int height) { return kShapes[2 * height + width - 3]; }

Match search_whole(const Target& target, std::span<const Vector> starts) {
  static constexpr Vector kHexagon[] = {{-8, 0}, {-4, 8}, {4, 8}, {8, 0}, {4, -8}, {-4, -8}};
  static constexpr Vector kSquare[] = {{0, -4}, {-4, 0}, {4, 0}, {0, 4}, {-4, -4}, {4, -4}, {-4, 4}, {4, 4}};
  constexpr int kMostSteps = 16, kBadBits = 100;
  Match best{{}, cost_whole(target, {})};
  for (const Vector start : starts) {
    if (!(rounded(start) == Vector{})) consider(target, rounded(start), best, cost_whole);
  }
  for (int i = 0; i < kMostSteps && improve(target, kHexagon, best, cost_whole); ++i) {
  }
  improve(target, kSquare, best, cost_whole);
  if (target.shape.sads && best.cost > kBadBits * target.lambda.sad) sweep(target, best);
  return best;
}

Match refine(const Target& target, std::span<const Vector> starts, Precision from) {
  static constexpr Vector kHalf[] = {{0, -2}, {-2, 0}, {2, 0}, {0, 2}};
  static constexpr Vector kQuarter[] = {{0, -1}, {-1, 0}, {1, 0}, {0, 1}};
  constexpr int kMostSteps = 2;
  Match best{starts[0], cost_between(target, starts[0])};
  for (const Vector start : starts.subspan(1)) {
    if (!(start == best.vector)) consider(target, start, best, cost_between);
  }
  for (int i = 0; from == Precision::kHalf && i < kMostSteps && improve(target, kHalf, best, cost_between); ++i) {
  }
  for (int i = 0; i < kMostSteps && improve(target, kQuarter, best, cost_between); ++i) {
  }
  return best;
}

}  // namespace moxenc
