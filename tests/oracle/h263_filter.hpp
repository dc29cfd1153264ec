/// Slow H.263 edge filters for tests: magnitudes and signs apart, the ramp by its three branches.
#pragma once

#include <algorithm>
#include <array>
#include <cstdlib>

namespace mox::test::oracle {

/// The samples across an edge at one position.
using Across = std::array<int, 4>;

/// As many as the quantiser has reached of the quantisers where the strength rises.
inline int deblock_strength(int qp) {
  constexpr std::array kRises = {1, 3, 5, 7, 10, 12, 14, 17, 20, 23, 26, 29};
  return static_cast<int>(std::count_if(kRises.begin(), kRises.end(), [=](int rise) { return qp >= rise; }));
}

/// Strength 0 stands for no limit.
inline Across deblocked(const Across& s, int strength) {
  const int step = 4 * (s[2] - s[1]) + s[0] - s[3], size = std::abs(step) / 8, way = step < 0 ? -1 : 1;
  int change = size;
  if (strength > 0 && size > strength) change = size < 2 * strength ? 2 * strength - size : 0;
  const int outer = std::min(std::abs(s[0] - s[3]) / 4, change / 2) * (s[0] < s[3] ? -1 : 1);
  Across result = {s[0] - outer, s[1] + way * change, s[2] - way * change, s[3] + outer};
  for (int& sample : result) sample = std::clamp(sample, 0, 255);
  return result;
}

/// Halves go up; both means lie a quarter of the way to the other sample.
inline Across smoothed(const Across& s) {
  const auto quarter_way = [](int from, int to) {
    const int quarters = 4 * from + (to - from);
    return quarters / 4 + (quarters % 4 >= 2);
  };
  return {s[0], quarter_way(s[1], s[2]), quarter_way(s[2], s[1]), s[3]};
}

}  // namespace mox::test::oracle
