/// Slow noise filters for tests: every sample from its definition, the whole plane looked through each time.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <vector>

namespace mox::test::oracle {

/// Sample of a frame at a column and a row.
using Look = std::function<int(int frame, int x, int y)>;

struct Region {
  int width, height;
};

struct AdaptiveDenoise {
  int maskWidth, maskHeight, threshold, flags;
};

inline int adaptive(const Look& look, Region region, int x, int y, const AdaptiveDenoise& set) {
  std::vector<int> taken;
  for (int v = 0; v < region.height; ++v) {
    for (int u = 0; u < region.width; ++u) {
      if (std::abs(u - x) > set.maskWidth || std::abs(v - y) > set.maskHeight) continue;
      taken.push_back(look(1, u, v));
      for (int frame : {0, 2}) {
        const bool used = set.flags & (frame == 0 ? 1 : 2);
        if (used && std::abs(look(frame, u, v) - look(1, x, y)) < set.threshold) taken.push_back(look(frame, u, v));
      }
    }
  }
  long long sum = 0;
  for (int sample : taken) sum += sample;
  return static_cast<int>(sum * std::lround(65535.0 / static_cast<double>(taken.size())) >> 16 & 255);
}

class Smoothing {
 public:
  /// The rectangle to be filtered ends with the columns and rows before `end`.
  Smoothing(const std::function<int(int x, int y)>& sample, Region region, Region end, int threshold)
      : sample_(sample), region_(region), end_(end), threshold_(threshold) {}

  int operator()(int x, int y) const {
    if (x == 0 || y == 0 || x == region_.width - 1 || y == region_.height - 1 || on_edge(x, y)) return sample_(x, y);
    int sum = 0, count = 0;
    for (int i = 0; i < 9; ++i) {
      const int u = x - 1 + i % 3, v = y - 1 + i / 3;
      if (!on_edge(u, v)) sum += sample_(u, v), ++count;
    }
    return static_cast<int>(std::min(255l, sum * std::lround(65535.0 / count) >> 16));
  }

 private:
  bool on_edge(int x, int y) const {
    if (x == region_.width - 1 && end_.width == region_.width) return true;
    if (y == region_.height - 1 && end_.height == region_.height) return true;
    return std::max(std::abs(low(x, y) - low(x + 1, y + 1)), std::abs(low(x + 1, y) - low(x, y + 1))) >= threshold_;
  }
  int low(int x, int y) const {
    x = std::clamp(x, 1, region_.width - 2), y = std::clamp(y, 1, region_.height - 2);
    int sum = 0;
    for (int i = 0; i < 9; ++i) sum += sample_(x - 1 + i % 3, y - 1 + i / 3);
    return sum / 9;
  }

  std::function<int(int x, int y)> sample_;
  Region region_, end_;
  int threshold_;
};

/// The 5x5 mask, each weight a product of binomials.
inline int lowpass_5x5(const std::function<int(int x, int y)>& sample, int x, int y) {
  const auto choose = [](int k) { return std::min(k, 4 - k) == 0 ? 1 : std::min(k, 4 - k) == 1 ? 4 : 6; };
  int sum = 0;
  for (int i = 0; i < 25; ++i) sum += choose(i % 5) * choose(i / 5) * sample(x - 2 + i % 5, y - 2 + i / 5);
  return static_cast<int>(std::floor(sum / 256.0 + 0.5));
}

}  // namespace mox::test::oracle
