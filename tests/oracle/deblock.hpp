/// Slow deblocking for tests. Lines are eight numbers, sides are told apart by an index, the strong rule is a table of
/// weights, and the edges of a form follow from a row of numbers.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "moxvc/types.h"

namespace mox::test::oracle {

/// Where the strong rule runs: for a quarter of an edge's lines, given the edge's four bS.
using StrongWhere = bool (*)(const Mox8u* bs, int edge, int quarter);

struct DeblockForm {
  bool luma, vertical;
  int channels, edges, lines;
  int bsRow, shift;  ///< line i of edge e: bS entry bsRow * e + (i >> shift), tc0 entry 4 * e + (i >> shift)
  StrongWhere strong = nullptr;

  int reach() const { return luma ? 4 : 2; }                    ///< samples read on each side of an edge
  int across() const { return 4 * (edges - 1) + 2 * reach(); }  ///< from the first sample read to the last
  int bs_count() const { return bsRow * (edges - 1) + 4; }
  int tc0_count() const { return 4 * edges; }
};

struct LineRule {
  bool luma, strong;
  std::int64_t alpha, beta, tc0;
  std::int64_t tcValues;  ///< tc is kept modulo this
  std::int64_t max;
};

/// Samples in the order p3 p2 p1 p0 q0 q1 q2 q3.
using Line = std::array<std::int64_t, 8>;

inline std::int64_t eighth(const Line& line, const std::array<int, 8>& weights, bool mirrored) {
  std::int64_t sum = 4;
  for (int i = 0; i < 8; ++i) sum += weights[i] * line[mirrored ? 7 - i : i];
  return sum / 8;
}

inline Line strong_line(const Line& old, const LineRule& rule) {
  static constexpr std::array<int, 8> kP2 = {2, 3, 1, 1, 1}, kP1 = {0, 2, 2, 2, 2}, kP0 = {0, 1, 2, 2, 2, 1},
                                      kShortP0 = {0, 0, 4, 2, 0, 2};
  Line line = old;
  const bool flat = rule.luma && std::abs(old[3] - old[4]) < rule.alpha / 4 + 2;
  for (bool q : {false, true}) {
    const auto tap = [q](int i) { return q ? 7 - i : i; };
    const bool wide = flat && std::abs(old[tap(1)] - old[tap(3)]) < rule.beta;
    line[tap(3)] = eighth(old, wide ? kP0 : kShortP0, q);
    if (wide) line[tap(2)] = eighth(old, kP1, q), line[tap(1)] = eighth(old, kP2, q);
  }
  return line;
}

inline Line normal_line(const Line& old, const LineRule& rule) {
  const auto limited = [](double value, std::int64_t limit) {
    return std::clamp(static_cast<std::int64_t>(std::floor(value)), -limit, limit);
  };
  Line line = old;
  std::int64_t tc = rule.tc0 + !rule.luma;
  const auto mean = std::floor(static_cast<double>(old[3] + old[4] + 1) / 2);
  for (int first : {2, 5}) {
    const int second = first == 2 ? 1 : 6, edge = first == 2 ? 3 : 4;
    if (!rule.luma || std::abs(old[second] - old[edge]) >= rule.beta) continue;
    ++tc;
    line[first] += limited((static_cast<double>(old[second] - 2 * old[first]) + mean) / 2, rule.tc0);
  }
  const auto delta = limited(static_cast<double>(4 * (old[4] - old[3]) + old[2] - old[5] + 4) / 8, tc % rule.tcValues);
  if (delta != 0) {
    line[3] = std::clamp<std::int64_t>(old[3] + delta, 0, rule.max);
    line[4] = std::clamp<std::int64_t>(old[4] - delta, 0, rule.max);
  }
  return line;
}

inline Line filter(const Line& old, const LineRule& rule) {
  if (std::abs(old[3] - old[4]) >= rule.alpha) return old;
  if (std::max(std::abs(old[2] - old[3]), std::abs(old[5] - old[4])) >= rule.beta) return old;
  return rule.strong ? strong_line(old, rule) : normal_line(old, rule);
}

/// Filters a block. alpha and beta hold two values each, `max` is the largest sample.
template <class T>
void deblock(const DeblockForm& form, T* block, std::ptrdiff_t step, const std::array<Mox32u, 2>& alpha,
             const std::array<Mox32u, 2>& beta, const T* tc0, const Mox8u* bs, int max) {
  for (int e = 0; e < form.edges; ++e) {
    for (int i = 0; i < form.lines * form.channels; ++i) {
      const int line = i / form.channels, channel = i % form.channels, quarter = line >> form.shift;
      const bool strong = form.strong(bs + form.bsRow * e, e, quarter);
      if (bs[form.bsRow * e + quarter] == 0 && !strong) continue;
      const LineRule rule = {
          form.luma, strong, alpha[e != 0], beta[e != 0], tc0[4 * e + quarter], std::int64_t{1} << 8 * sizeof(T), max};
      const auto sample = [&](int tap) -> T& {
        const int a = 4 * e + tap - 4;
        return form.vertical ? block[line * step + a * form.channels + channel]
                             : block[a * step + line * form.channels + channel];
      };
      Line values = {};
      for (int tap = 4 - form.reach(); tap < 4 + form.reach(); ++tap) values[tap] = sample(tap);
      values = filter(values, rule);
      for (int tap = 4 - form.reach(); tap < 4 + form.reach(); ++tap) sample(tap) = static_cast<T>(values[tap]);
    }
  }
}

}  // namespace mox::test::oracle
