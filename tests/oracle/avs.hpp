/// Slow AVS residual, intra prediction and deblocking for tests: matrices of real numbers, and one sample at a time.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <functional>
#include <vector>

#include "avs/transform_tables.hpp"
#include "moxvc/types.h"

namespace mox::test::oracle {

using Matrix = std::array<std::array<double, 8>, 8>;

/// The transform's rows from the cosines that they stand for: the value of cos(m pi / 16) by m.
inline Matrix avs_matrix() {
  static constexpr double kCosines[] = {8, 10, 10, 9, 8, 6, 4, 2, 0};
  Matrix t{};
  for (int f = 0; f < 8; ++f) {
    for (int x = 0; x < 8; ++x) {
      const int angle = (2 * x + 1) * f % 32, folded = angle > 16 ? 32 - angle : angle;  // cos is even, and turns at pi
      t[f][x] = f == 0 ? 8 : folded > 8 ? -kCosines[16 - folded] : kCosines[folded];
    }
  }
  return t;
}
inline Matrix transposed(const Matrix& m) {
  Matrix result{};
  for (int i = 0; i < 64; ++i) result[i % 8][i / 8] = m[i / 8][i % 8];
  return result;
}
inline Matrix product(const Matrix& a, const Matrix& b) {
  Matrix result{};
  for (int i = 0; i < 512; ++i) result[i / 64][i / 8 % 8] += a[i / 64][i % 8] * b[i % 8][i / 8 % 8];
  return result;
}
/// All entries divided, rounded to the nearest integer (halves up) and limited to 16 bits.
inline Matrix rounded(Matrix m, double divisor) {
  for (auto& row : m) {
    for (double& v : row) v = std::clamp(std::floor(v / divisor + 0.5), -32768.0, 32767.0);
  }
  return m;
}
inline double avs_step(int qp) { return px::DequantTable[qp] / std::ldexp(1, px::avs_shift(qp)); }

/// The residual of 64 levels.
inline Matrix avs_residual(const Mox16s* levels, int qp) {
  Matrix w{};
  for (int i = 0; i < 64; ++i) w[i / 8][i % 8] = levels[i] * avs_step(qp);
  const Matrix h = rounded(product(rounded(w, 1), avs_matrix()), 8);
  return rounded(product(transposed(avs_matrix()), h), 128);
}

/// The levels of 64 residual values.
inline std::vector<Mox16s> avs_levels(const Mox16s* residual, int qp, int rounding) {
  Matrix x{};
  for (int i = 0; i < 64; ++i) x[i / 8][i % 8] = std::clamp<double>(residual[i], -255, 255);
  const Matrix t = avs_matrix(), y = rounded(product(product(t, x), transposed(t)), 32),
               norms = product(t, transposed(t));
  std::vector<Mox16s> levels(64);
  for (int i = 0; i < 64; ++i) {
    const double one = std::ldexp(1, 19 + qp / 8), v = y[i / 8][i % 8];
    const double factor = one / (8 * avs_step(qp)) * 512 / norms[i / 8][i / 8] * 512 / norms[i % 8][i % 8];
    const double level = std::floor((std::abs(v) * std::floor(factor + 0.5) + std::floor(rounding * one / 256)) / one);
    levels[i] = static_cast<Mox16s>(v < 0 ? -level : level);
  }
  return levels;
}

/// Which neighbours an 8x8 block has.
struct AvsNeighbours {
  bool above, left, corner, aboveRight, belowLeft;
};

/// A predicted sample of a block; at(x, y) are the samples around it. Modes of luma, 5 for plane.
inline int avs_predicted(int mode, int x, int y, const AvsNeighbours& has, const std::function<int(int, int)>& at) {
  const auto r = [&](int i) {
    return i == 0 ? has.corner ? at(-1, -1) : at(0, -1) : at(std::min(i, has.aboveRight ? 16 : 8) - 1, -1);
  };
  const auto c = [&](int i) {
    return i == 0 ? has.corner ? at(-1, -1) : at(-1, 0) : at(-1, std::min(i, has.belowLeft ? 16 : 8) - 1);
  };
  const auto smooth = [](auto v, int i) { return (v(i - 1) + 2 * v(i) + v(i + 1) + 2) / 4; };
  const auto slope = [](auto v) {
    double sum = 0;
    for (int i = -4; i <= 4; ++i) sum += i * v(4 + i);
    return std::floor((17 * sum + 16) / 32);
  };
  switch (mode) {
    case 0: return r(x + 1);
    case 1: return c(y + 1);
    case 2:
      if (!has.above && !has.left) return 128;
      if (!has.left) return smooth(r, x + 1);
      if (!has.above) return smooth(c, y + 1);
      return (smooth(r, x + 1) + smooth(c, y + 1)) / 2;
    case 3: return (smooth(r, x + y + 2) + smooth(c, x + y + 2)) / 2;
    case 4: return smooth([&](int i) { return i < 0 ? c(-i) : r(i); }, x - y);
    default: {
      const double plane = 16 * (r(8) + c(8)) + (x - 3) * slope(r) + (y - 3) * slope(c);
      return static_cast<int>(std::clamp(std::floor(plane / 32 + 0.5), 0.0, 255.0));
    }
  }
}

/// Samples p2 p1 p0 q0 q1 q2.
using AvsLine = std::array<int, 6>;

/// A line after deblocking.
inline AvsLine avs_deblocked(AvsLine v, bool luma, int strength, int alpha, int beta, int limit) {
  const auto near = [&](int i, int j, int most) { return std::abs(v[i] - v[j]) < most; };
  const auto eighths = [&](int sum) {
    return std::clamp(static_cast<int>(std::floor(sum / 8.0 + 0.5)), -limit, limit);
  };
  const auto sample = [](int value) { return std::clamp(value, 0, 255); };
  if (strength == 0 || !near(2, 3, alpha) || !near(1, 2, beta) || !near(3, 4, beta)) return v;
  AvsLine n = v;
  const bool flat = near(2, 3, alpha / 4 + 2), deep[] = {near(0, 2, beta), near(3, 5, beta)};
  if (strength == 1) {
    const int d = eighths(3 * (v[3] - v[2]) + v[1] - v[4]);
    n[2] = sample(v[2] + d), n[3] = sample(v[3] - d);
    if (luma && deep[0]) n[1] = sample(v[1] + eighths(3 * (n[2] - v[1]) + v[0] - n[3]));
    if (luma && deep[1]) n[4] = sample(v[4] - eighths(3 * (v[4] - n[3]) + n[2] - v[5]));
    return n;
  }
  for (int side : {0, 1}) {  // near the edge, beside it, across the edge
    const int a = side ? 3 : 2, b = side ? 4 : 1, o = side ? 2 : 3;
    const int mean = (2 * v[b] + v[a] + v[o] + 2) / 4;
    n[a] = flat && deep[side] ? (v[b] + 2 * v[a] + v[o] + 2) / 4 : mean;
    if (luma && flat && deep[side]) n[b] = mean;
  }
  return n;
}

}  // namespace mox::test::oracle
