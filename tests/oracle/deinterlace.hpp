/// Slow deinterlacers for tests: for each sample the rule of its row, then its value; nullopt is a sample not written.
#pragma once

#include <algorithm>
#include <array>
#include <cstdlib>
#include <functional>
#include <initializer_list>
#include <optional>
#include <tuple>

namespace mox::test::oracle {

using Look = std::function<int(int frame, int x, int y)>;
using Written = std::optional<int>;

struct Frame {
  int width, height;
};

inline int rounded_mean(int a, int b) { return (a + b) / 2 + (a + b) % 2; }
inline int middle(std::array<int, 3> values) {
  std::sort(values.begin(), values.end());
  return values[1];
}

/// The candidate of least distance; among equals the vertical one, then the one that rises to the right.
inline int edge(const Look& look, int frame, int x, int above, int below) {
  std::array<std::tuple<int, int, int>, 3> candidates;
  for (int order = 0; order < 3; ++order) {
    const int lean = std::array{0, 1, -1}[static_cast<std::size_t>(order)];
    const int a = look(frame, x + lean, above), b = look(frame, x - lean, below);
    candidates[static_cast<std::size_t>(order)] = {std::abs(a - b), order, rounded_mean(a, b)};
  }
  return std::get<2>(*std::min_element(candidates.begin(), candidates.end()));
}

inline Written edge_detect(const Look& look, Frame size, int x, int y, int field, bool border) {
  if (border && y == (field ? size.height - 1 : 0)) return look(0, x, y);
  if (x == 0 || x == size.width - 1) return look(0, x, y);
  return edge(look, 0, x, y + field - 1, y + field);
}

inline Written triangle(const Look& look, Frame size, int x, int y, unsigned weight, int layout) {
  const bool upper = layout == 1, middle = layout == 4, lower = layout == 16;
  if (y == size.height - 1) return upper || middle ? Written() : look(0, x, y);
  if (y <= 0 && !middle && !lower) return y < 0 ? Written() : look(0, x, y);
  const int c = weight > 256 ? 256 : static_cast<int>(weight), s = (256 - c) / 2;
  return ((look(0, x, y - 1) + look(0, x, y + 1)) * s + look(0, x, y) * c) / 256;
}

/// Columns from the width on belong to the copied borders alone.
inline Written median_threshold(const Look& look, Frame size, int x, int y, int threshold, int field, bool border) {
  const int here = look(0, x, y);
  if (border && (y == 0 || y == size.height - 1)) return here;
  if (x >= size.width) return {};
  if (y % 2 != field) return y / 2 < size.height / 2 ? Written(here) : Written();
  const int m = middle({look(0, x, y - 1), here, look(0, x, y + 1)});
  return std::abs(m - here) < threshold ? here : m;
}

struct AdaptiveSettings {
  int threshold, topFirst, topField;
  bool copy, protect;
};

inline Written motion_adaptive(const Look& look, Frame size, int x, int y, const AdaptiveSettings& set) {
  const int c = set.topFirst == set.topField ? 0 : 1, s = c + 1;
  const bool first = y == 0, last = y == size.height - 1;
  if (y % 2 != set.topField && (first || last)) return look(s, x, y);
  if (y % 2 == set.topField) return set.copy && y / 2 < size.height / 2 ? Written(look(s, x, y)) : Written();
  int farthest = std::abs(look(s, x, y) - look(c, x, y));
  for (int row : {y - 1, y + 1}) {
    for (int i = 0; i < 4; ++i) {
      for (int k = 0; k < i; ++k) {
        if (i - k < 3) farthest = std::max(farthest, std::abs(look(i, x, row) - look(k, x, row)));
      }
    }
  }
  const bool still = farthest < set.threshold;
  const int C = look(c, x, y), d = still ? 30 : 6, up = look(s, x, y - 1), down = look(s, x, y + 1);
  if (still && !set.protect) return C;
  const bool under = std::max(up, down)<std::max(0, C - d), over = std::min(up, down)> std::min(235, C + d);
  return under || over ? rounded_mean(up, down) : C;
}

struct BlendSettings {
  int topFirst, topField;
  bool copy;
};

inline Written blend(const Look& look, Frame size, int x, int y, const BlendSettings& set,
                     const std::function<int(int)>& weight) {
  const int kept = set.topField ? 1 : 0;
  if (y % 2 == kept) return set.copy ? Written(look(1, x, y)) : Written();
  if (y == 0 || y == size.height - 1) return look(1, x, y);
  const auto moved = [&](int row) {
    return rounded_mean(std::abs(look(1, x, row) - look(0, x, row)), std::abs(look(1, x, row) - look(2, x, row)));
  };
  const int here = look(1, x, y), other = look(set.topFirst == set.topField ? 0 : 2, x, y);
  const int motion = std::max(std::abs(here - other), rounded_mean(moved(y - 1), moved(y + 1)));
  const bool end = x == 0 || x == size.width - 1;
  const int e = end ? look(1, x, kept ? y + 1 : y - 1) : edge(look, 1, x, y - 1, y + 1);
  const int m = middle({look(1, x, y - 1), look(1, x, y + 1), here});
  return (e * weight(motion) + m * (256 - weight(motion))) / 256;
}

}  // namespace mox::test::oracle
