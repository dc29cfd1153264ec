#include "moxenc/inter.hpp"

#include <algorithm>

#include "moxenc/motion.hpp"
#include "moxenc/search.hpp"

namespace moxenc {
namespace {

/// The vector of a partition's first quarter.
std::size_t first_quarter(const Part& part) { return static_cast<std::size_t>(part.y % 2 * 2 + part.x % 2); }

/// One way to split a macroblock.
struct Choice {
  std::array<Vector, 4> vectors;
  int cost;
};

Target target_of(const Site& site, const moxdec::Frame& reference, const Part& part, Split split,
                 const Limits& limits) {
  const int x = 8 * part.x, y = 8 * part.y;
  return {site.source.at[0] + std::ptrdiff_t{y % 16} * site.source.step[0] + x % 16,
          site.source.step[0],
          sample_at(reference, 0, x, y),
          reference.step(0),
          shape_of(part.width, part.height),
          predict_vector(site.state.motion, part, split),
          limits,
          site.lambda};
}

/// Searches for whole samples, then between them. `known` is a vector for the macroblock, if there is one.
Match search(const Target& target, const Grid<Motion>& motion, const Part& part, const Vector* known) {
  const Vector around[] = {target.predicted, motion.at(part.x - 1, part.y).vector, motion.at(part.x, part.y - 1).vector,
                           motion.at(part.x + part.width, part.y - 1).vector, known ? *known : Vector{}};
  const Vector starts[] = {search_whole(target, around).vector, target.predicted};
  return refine(target, starts, Precision::kHalf);
}

/// The partitions of a split one after the other, as their prediction wants it. Halves begin at the vectors of their
/// quarters.
Choice search_split(const Site& site, const moxdec::Frame& reference, Split split, const Vector* whole,
                    const Choice* quarters, int limit) {
  constexpr int kTypeBits[4] = {1, 3, 3, 9};
  const Limits limits = limits_at(site);
  Choice choice{{}, site.lambda.satd * kTypeBits[static_cast<int>(split)]};
  for (int i = 0; i < part_count(split); ++i) {
    const Part part = part_of(site.x, site.y, split, i);
    auto& motion = site.state.motion;
    const Target target = target_of(site, reference, part, split, limits);
    Match match;
    if (quarters) {
      const std::size_t first = first_quarter(part), last = split == Split::kRows ? first + 1 : first + 2;
      const Vector starts[] = {quarters->vectors[first], quarters->vectors[last], *whole, target.predicted};
      match = refine(target, starts, Precision::kQuarter);
    } else {
      match = search(target, motion, part, whole);
    }
    choice.cost += match.cost;
    if (choice.cost >= limit) return choice;
    motion.fill(part.x, part.y, part.width, part.height, {match.vector, 0});
    for (int qy = 0; qy < part.height; ++qy) {
      for (int qx = 0; qx < part.width; ++qx) {
        choice.vectors[first_quarter({part.x + qx, part.y + qy, 1, 1})] = match.vector;
      }
    }
  }
  return choice;
}

}  // namespace

Limits limits_at(const Site& site) {
  constexpr int kOutside = kMargin - 16, kVertical = 63, kHorizontal = 1024;  // samples
  const int x = 16 * site.x, y = 16 * site.y, right = 16 * (site.state.columns - 1),
            bottom = 16 * (site.state.rows - 1);
  return {4 * std::max(-kOutside - x, -kHorizontal), 4 * std::min(right + kOutside - x, kHorizontal),
          4 * std::max(-kOutside - y, -kVertical), 4 * std::min(bottom + kOutside - y, kVertical)};
}

void predict_part(const Site& site, const moxdec::Frame& reference, const Part& part, Vector vector) {
  const int x = 8 * part.x, y = 8 * part.y;
  const Planes& picture = site.picture;
  expect_ok(moxiInterpolateLuma_H264_8u_C1R(
      sample_at(reference, 0, x + (vector.x >> 2), y + (vector.y >> 2)), reference.step(0),
      picture.at[0] + std::ptrdiff_t{y % 16} * picture.step[0] + x % 16, picture.step[0], vector.x & 3, vector.y & 3,
      {8 * part.width, 8 * part.height}));
  for (int i = 1; i < 3; ++i) {
    const auto plane = static_cast<std::size_t>(i);
    expect_ok(moxiInterpolateChroma_H264_8u_C1R(
        sample_at(reference, i, x / 2 + (vector.x >> 3), y / 2 + (vector.y >> 3)), reference.step(i),
        picture.at[plane] + std::ptrdiff_t{y / 2 % 8} * picture.step[plane] + x / 2 % 8, picture.step[plane],
        vector.x & 7, vector.y & 7, {4 * part.width, 4 * part.height}));
  }
}

void predict_inter(const Macroblock& mb, const Site& site, const moxdec::Frame& reference) {
  for (int i = 0; i < part_count(mb.split); ++i) {
    const Part part = part_of(site.x, site.y, mb.split, i);
    predict_part(site, reference, part, mb.vectors[first_quarter(part)]);
  }
}

int choose_inter(Macroblock& mb, const Site& site, const moxdec::Frame& reference) {
  Choice best = search_split(site, reference, Split::kNone, nullptr, nullptr, 1 << 30);
  const Vector whole = best.vectors[0];
  mb.split = Split::kNone;
  const auto consider = [&](Split split, const Choice& choice) {
    if (choice.cost < best.cost) best = choice, mb.split = split;
  };
  const Choice quarters = search_split(site, reference, Split::kQuarters, &whole, nullptr, 1 << 30);
  consider(Split::kQuarters, quarters);
  if (quarters.cost >= best.cost + 12 * site.lambda.satd) {
    mb.vectors = best.vectors;
    return best.cost;
  }
  for (const Split split : {Split::kRows, Split::kColumns}) {
    consider(split, search_split(site, reference, split, &whole, &quarters, best.cost));
  }
  mb.vectors = best.vectors;
  return best.cost;
}

}  // namespace moxenc
