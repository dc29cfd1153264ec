/// Slow MPEG-4 post filters for tests: real numbers for what the filters round, sorted samples and counts for what they
/// decide by.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <numeric>
#include <vector>

namespace mox::test::oracle {

/// v0 to v9 across an edge between v4 and v5.
using PostAcross = std::array<int, 10>;

/// Halves away from zero.
inline int nearest(double value) { return static_cast<int>(std::lround(value)); }

inline bool flat(const PostAcross& v) {
  PostAcross steps;
  std::adjacent_difference(v.begin(), v.end(), steps.begin());
  return std::count_if(steps.begin() + 1, steps.end(), [](int step) { return step >= -2 && step <= 2; }) > 5;
}

inline PostAcross post_deblocked(const PostAcross& v, int qp) {
  PostAcross out = v;
  if (flat(v)) {
    std::vector<int> inner(v.begin() + 1, v.end() - 1), wide = inner;
    std::sort(inner.begin(), inner.end());
    if (inner.back() - inner.front() >= 2 * qp) return v;
    wide.insert(wide.begin(), 4, std::abs(v[1] - v[0]) < qp ? v[0] : v[1]);
    wide.insert(wide.end(), 4, std::abs(v[8] - v[9]) < qp ? v[9] : v[8]);
    constexpr std::array kSixteenths = {1, 1, 2, 2, 4, 2, 2, 1, 1};
    for (std::size_t n = 1; n < 9; ++n) {
      out[n] = nearest(std::inner_product(kSixteenths.begin(), kSixteenths.end(), &wide[n - 1], 0.0) / 16);
    }
    return out;
  }
  constexpr std::array kTaps = {2, -5, 5, -2};
  const auto component = [&](int n) { return nearest(std::inner_product(kTaps.begin(), kTaps.end(), &v[n], 0.0) / 8); };
  const int a0 = component(3);
  if (std::abs(a0) >= qp) return v;
  const int size = std::min({std::abs(a0), std::abs(component(1)), std::abs(component(5))});
  const int change = nearest(5 * ((a0 < 0 ? -size : size) - a0) / 8.0), limit = (v[4] - v[5]) / 2;
  // Towards the other sample and no further than half the way.
  const int allowed = limit < 0 ? std::clamp(change, limit, 0) : std::clamp(change, 0, limit);
  out[4] -= allowed;
  out[5] += allowed;
  return out;
}

/// Thresholds of four luma blocks, given their samples.
inline std::array<int, 4> dering_thresholds(std::array<std::vector<int>, 4> blocks) {
  std::array<int, 4> range, threshold;
  for (std::size_t k = 0; k < 4; ++k) {
    std::sort(blocks[k].begin(), blocks[k].end());
    range[k] = blocks[k].back() - blocks[k].front();
    threshold[k] = nearest((blocks[k].back() + blocks[k].front()) / 2.0);
  }
  const auto most = static_cast<std::size_t>(std::max_element(range.begin(), range.end()) - range.begin());
  if (range[most] < 16) return {};
  auto result = threshold;
  for (std::size_t k = 0; k < 4; ++k) {
    if (range[k] < 32 && range[most] >= 64) result[k] = threshold[most];
  }
  return result;
}

/// The middle one of nine samples in raster order.
inline int deringed(const std::array<int, 9>& window, int threshold, int qp) {
  const auto below = std::count_if(window.begin(), window.end(), [=](int sample) { return sample < threshold; });
  if (below % 9 != 0) return window[4];
  constexpr std::array kSixteenths = {1, 2, 1, 2, 4, 2, 1, 2, 1};
  const double mean = std::inner_product(window.begin(), window.end(), kSixteenths.begin(), 0.0) / 16;
  return window[4] + std::clamp(nearest(mean) - window[4], -(qp / 2), qp / 2);
}

}  // namespace mox::test::oracle
