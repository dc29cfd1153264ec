/// Intra prediction sample by sample, by the equations of ITU-T H.264 8.3, for any depth.
#pragma once

#include <functional>
#include <vector>

namespace mox::oracle {

/// The sample at (x, y) relative to a block; called for its neighbours only.
using At = std::function<int(int x, int y)>;
/// Which neighbours may be used.
struct Available {
  bool top, left, corner, right;
  static Available of(unsigned mask) { return {(mask & 1) != 0, (mask & 2) != 0, (mask & 32) != 0, (mask & 64) != 0}; }
};

inline int three(int a, int b, int c) { return (a + 2 * b + c + 2) >> 2; }
inline int two(int a, int b) { return (a + b + 1) >> 1; }

/// One sample of an n x n block in mode 0, 1 or 3 to 8; p holds all neighbours.
inline int directional(int n, int mode, int x, int y, const At& p) {
  const auto across_corner = [&](int z, bool transposed) {  // vertical right, or horizontal down with x and y swapped
    const At q = [&, transposed](int a, int b) { return transposed ? p(b, a) : p(a, b); };
    const int u = transposed ? y : x, v = transposed ? x : y;
    if (z >= 0 && z % 2 == 0) return two(q(u - v / 2 - 1, -1), q(u - v / 2, -1));
    if (z >= 0) return three(q(u - v / 2 - 2, -1), q(u - v / 2 - 1, -1), q(u - v / 2, -1));
    if (z == -1) return three(p(-1, 0), p(-1, -1), p(0, -1));
    return three(q(-1, v - 2 * u - 1), q(-1, v - 2 * u - 2), q(-1, v - 2 * u - 3));
  };
  const int up = x + 2 * y, last = n - 1;
  switch (mode) {
    case 0: return p(x, -1);
    case 1: return p(-1, y);
    case 3:
      if (x == last && y == last) return (p(2 * n - 2, -1) + 3 * p(2 * n - 1, -1) + 2) >> 2;
      return three(p(x + y, -1), p(x + y + 1, -1), p(x + y + 2, -1));
    case 4:
      if (x > y) return three(p(x - y - 2, -1), p(x - y - 1, -1), p(x - y, -1));
      if (x < y) return three(p(-1, y - x - 2), p(-1, y - x - 1), p(-1, y - x));
      return three(p(0, -1), p(-1, -1), p(-1, 0));
    case 5: return across_corner(2 * x - y, false);
    case 6: return across_corner(2 * y - x, true);
    case 7:
      if (y % 2 == 0) return two(p(x + y / 2, -1), p(x + y / 2 + 1, -1));
      return three(p(x + y / 2, -1), p(x + y / 2 + 1, -1), p(x + y / 2 + 2, -1));
    default:
      if (up > 2 * n - 3) return p(-1, last);
      if (up == 2 * n - 3) return (p(-1, last - 1) + 3 * p(-1, last) + 2) >> 2;
      if (up % 2 == 0) return two(p(-1, y + x / 2), p(-1, y + x / 2 + 1));
      return three(p(-1, y + x / 2), p(-1, y + x / 2 + 1), p(-1, y + x / 2 + 2));
  }
}

/// The rounded mean of what there is, the middle of the range if there is nothing.
inline int mean(const std::vector<int>& samples, int depth) {
  if (samples.empty()) return 1 << (depth - 1);
  int sum = 0;
  for (int sample : samples) sum += sample;
  const int n = static_cast<int>(samples.size());
  return (2 * sum + n) / (2 * n);
}
inline int mean_of_edges(int n, const At& p, bool top, bool left, int depth) {
  std::vector<int> samples;
  for (int i = 0; i < n; ++i) {
    if (top) samples.push_back(p(i, -1));
    if (left) samples.push_back(p(-1, i));
  }
  return mean(samples, depth);
}

inline int luma_4x4(int mode, int x, int y, const At& p, Available a, int depth) {
  if (mode == 2) return mean_of_edges(4, p, a.top, a.left, depth);
  return directional(4, mode, x, y, [&](int i, int j) {
    if (j >= 0) return a.left ? p(i, j) : 1 << (depth - 1);
    if (i < 0) return a.corner ? p(i, j) : 1 << (depth - 1);
    if (i > 3 && a.right) return p(i, j);
    return a.top ? p(i > 3 ? 3 : i, j) : 1 << (depth - 1);
  });
}
/// True if a 4x4 block in this mode is predicted from something that is not there.
inline bool substitutes(int mode, Available a) {
  if (mode == 2) return false;
  const bool needs_top = mode != 1 && mode != 8, needs_left = mode == 1 || mode == 8 || (mode >= 4 && mode <= 6);
  return (needs_top && !a.top) || (needs_left && !a.left) || (mode >= 4 && mode <= 6 && !a.corner);
}

/// An 8x8 sample: the neighbours of 8.3.2.2.1, case by case, then the formulas. Denied ones are mid-range.
inline int luma_8x8(int mode, int x, int y, const At& p, Available a, int depth) {
  const At raw = [&](int i, int j) { return j < 0 && i > 7 && !a.right ? p(7, -1) : p(i, j); };
  const At filtered = [&](int i, int j) {
    if (i >= 0 && a.top) {
      if (i == 0) return a.corner ? three(raw(-1, -1), raw(0, -1), raw(1, -1)) : (3 * raw(0, -1) + raw(1, -1) + 2) >> 2;
      if (i == 15) return (raw(14, -1) + 3 * raw(15, -1) + 2) >> 2;
      return three(raw(i - 1, -1), raw(i, -1), raw(i + 1, -1));
    }
    if (i < 0 && j < 0 && a.corner) {
      if (a.top && a.left) return three(raw(0, -1), raw(-1, -1), raw(-1, 0));
      if (a.top) return (3 * raw(-1, -1) + raw(0, -1) + 2) >> 2;
      return a.left ? (3 * raw(-1, -1) + raw(-1, 0) + 2) >> 2 : raw(-1, -1);
    }
    if (j >= 0 && a.left) {
      if (j == 0) return a.corner ? three(raw(-1, -1), raw(-1, 0), raw(-1, 1)) : (3 * raw(-1, 0) + raw(-1, 1) + 2) >> 2;
      if (j == 7) return (raw(-1, 6) + 3 * raw(-1, 7) + 2) >> 2;
      return three(raw(-1, j - 1), raw(-1, j), raw(-1, j + 1));
    }
    return 1 << (depth - 1);
  };
  return mode == 2 ? mean_of_edges(8, filtered, a.top, a.left, depth) : directional(8, mode, x, y, filtered);
}

/// A plane of w x h samples.
inline int plane(int w, int h, int x, int y, const At& p, int depth) {
  int across = 0, down = 0;
  for (int i = 1; i <= w / 2; ++i) across += i * (p(w / 2 - 1 + i, -1) - p(w / 2 - 1 - i, -1));
  for (int i = 1; i <= h / 2; ++i) down += i * (p(-1, h / 2 - 1 + i) - p(-1, h / 2 - 1 - i));
  const auto rate = [](int length, int sum) { return length == 16 ? (5 * sum + 32) >> 6 : (17 * sum + 16) >> 5; };
  const int a = 16 * (p(w - 1, -1) + p(-1, h - 1));
  const int value = (a + rate(w, across) * (x - w / 2 + 1) + rate(h, down) * (y - h / 2 + 1) + 16) >> 5;
  return value < 0 ? 0 : value >= 1 << depth ? (1 << depth) - 1 : value;
}

/// Modes in the order of 16x16; false if the edges do not do.
inline bool possible(int mode, Available a) {
  return mode == 2 || ((mode == 1 || a.top) && (mode == 0 || a.left) && (mode != 3 || a.corner));
}
inline int luma_16x16(int mode, int x, int y, const At& p, Available a, int depth) {
  if (mode == 2) return mean_of_edges(16, p, a.top, a.left, depth);
  return mode == 3 ? plane(16, 16, x, y, p, depth) : directional(16, mode, x, y, p);
}

/// Chroma modes count DC, horizontal, vertical, plane.
inline int to_luma_order(int chroma_mode) { return chroma_mode == 3 ? 3 : 2 - chroma_mode; }

/// The left edge may be there for one half of the rows alone.
inline int chroma(int h, int mode, int x, int y, const At& p, bool top, bool upper_left, bool lower_left, int depth) {
  if (mode == 3) return plane(8, h, x, y, p, depth);
  if (mode != 0) return directional(8, to_luma_order(mode), x, y, p);
  const int bx = x / 4, by = y / 4;
  const bool left = y < h / 2 ? upper_left : lower_left;
  std::vector<int> above, beside;
  for (int i = 0; i < 4; ++i) {
    if (top) above.push_back(p(4 * bx + i, -1));
    if (left) beside.push_back(p(-1, 4 * by + i));
  }
  if (bx == 1 && by == 0) return mean(above.empty() ? beside : above, depth);
  if (bx == 0 && by > 0) return mean(beside.empty() ? above : beside, depth);
  above.insert(above.end(), beside.begin(), beside.end());
  return mean(above, depth);
}

}  // namespace mox::oracle
