/// Slow H.264 interpolation for tests: one sample at a time from a picture that answers any coordinate. Quarter samples
/// follow from where they lie between full and half samples, not from a list of positions.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "moxvc/types.h"

namespace mox::test::oracle {

inline constexpr std::int64_t kNoEdge = std::numeric_limits<std::int32_t>::max() * std::int64_t{4};

/// A plane whose columns and rows outside first..last are the nearest of these.
template <class T>
struct Picture {
  const T* origin;
  std::ptrdiff_t step;  ///< in samples
  std::int64_t firstX = -kNoEdge, lastX = kNoEdge, firstY = -kNoEdge, lastY = kNoEdge;
  int channels = 1;

  std::int64_t at(std::int64_t x, std::int64_t y) const {
    return origin[std::clamp(y, firstY, lastY) * step + std::clamp(x, firstX, lastX) * channels];
  }
};

/// The sum of six taps; `value(i)` is the sample i to the right of, or below, the one in front of the half sample.
template <class Value>
double six_taps(Value value) {
  static constexpr int kTaps[] = {1, -5, 20, 20, -5, 1};
  double sum = 0;
  for (int i = 0; i < 6; ++i) sum += kTaps[i] * static_cast<double>(value(i - 2));
  return sum;
}

/// The sample at (x + halfX / 2, y + halfY / 2), halves 0 to 2.
template <class T>
std::int64_t half_sample(const Picture<T>& p, std::int64_t x, std::int64_t y, int halfX, int halfY, std::int64_t max) {
  x += halfX / 2, y += halfY / 2;
  const bool right = halfX % 2 != 0, down = halfY % 2 != 0;
  const auto row_sum = [&](int j) { return six_taps([&](int i) { return p.at(x + i, y + j); }); };
  double value = static_cast<double>(p.at(x, y));
  if (right && down) value = six_taps(row_sum) / 1024;
  if (right && !down) value = row_sum(0) / 32;
  if (!right && down) value = six_taps([&](int j) { return p.at(x, y + j); }) / 32;
  return std::clamp(static_cast<std::int64_t>(std::floor(value + 0.5)), std::int64_t{0}, right || down ? max : kNoEdge);
}

/// The luma sample at (x + dx / 4, y + dy / 4).
template <class T>
std::int64_t luma_sample(const Picture<T>& p, std::int64_t x, std::int64_t y, int dx, int dy, std::int64_t max) {
  const auto half = [&](int halfX, int halfY) { return half_sample(p, x, y, halfX, halfY, max); };
  std::int64_t sum;
  if (dx % 2 != 0 && dy % 2 != 0) {  // diagonal: the nearest half samples of a full row and of a full column
    sum = half(1, dy == 3 ? 2 : 0) + half(dx == 3 ? 2 : 0, 1);
  } else {
    sum = half(dx / 2, dy / 2) + half((dx + 1) / 2, (dy + 1) / 2);
  }
  return (sum + 1) / 2;
}

/// The chroma sample at (x + dx / 8, y + dy / 8).
template <class T>
std::int64_t chroma_sample(const Picture<T>& p, std::int64_t x, std::int64_t y, int dx, int dy, std::int64_t) {
  double sum = 0;
  for (int j : {0, 1}) {
    for (int i : {0, 1}) {
      const double weight = (i ? dx : 8 - dx) / 8.0 * ((j ? dy : 8 - dy) / 8.0);
      if (weight > 0) sum += weight * static_cast<double>(p.at(x + i, y + j));
    }
  }
  return static_cast<std::int64_t>(std::floor(sum + 0.5));
}

}  // namespace mox::test::oracle
