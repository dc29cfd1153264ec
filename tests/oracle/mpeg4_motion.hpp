/// Slow MPEG-4 motion compensation for tests: lines with their mirror images written out, and weights by quadrants.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "moxvc/types.h"
#include "oracle/half_pel.hpp"

namespace mox::test::oracle {

/// The N samples at i + d / 4 of N + 1 samples.
inline std::vector<int> quarter_line(const std::vector<int>& line, int d, int rc) {
  std::vector<int> mirror(line.rbegin(), line.rend()), wide = mirror;
  wide.insert(wide.end(), line.begin(), line.end());
  wide.insert(wide.end(), mirror.begin(), mirror.end());
  const auto mean = [rc](int a, int b) { return static_cast<int>(std::floor((a + b + 1 - rc) / 2.0)); };
  std::vector<int> result;
  for (std::size_t i = 0; i + 1 < line.size(); ++i) {
    const int* const s = &wide[line.size() + i];
    const double sum = 160 * (s[0] + s[1]) - 48 * (s[-1] + s[2]) + 24 * (s[-2] + s[3]) - 8 * (s[-3] + s[4]);
    const int half = std::clamp(static_cast<int>(std::floor((sum + 128 - rc) / 256)), 0, 255);
    result.push_back(d == 0 ? s[0] : d == 1 ? mean(s[0], half) : d == 2 ? half : mean(half, s[1]));
  }
  return result;
}

using SampleRows = std::vector<std::vector<int>>;

/// The block of W x H at (x + dx / 4, y + dy / 4), [row][column]. Reads sample(x, y) of its footprint alone.
template <class Sample>
SampleRows quarter_block(Sample sample, int W, int H, int dx, int dy, int rc) {
  SampleRows rows, block(static_cast<std::size_t>(H));
  for (int y = 0; y < H + (dy != 0); ++y) {
    std::vector<int> row;
    for (int x = 0; x < W + (dx != 0); ++x) row.push_back(sample(x, y));
    if (dx == 0) row.push_back(0);
    rows.push_back(quarter_line(row, dx, rc));
  }
  for (std::size_t x = 0; x < static_cast<std::size_t>(W); ++x) {
    std::vector<int> column;
    for (const auto& row : rows) column.push_back(row[x]);
    if (dy == 0) column.push_back(0);
    const auto predicted = quarter_line(column, dy, rc);
    for (std::size_t y = 0; y < block.size(); ++y) block[y].push_back(predicted[y]);
  }
  return block;
}

/// Weight of a neighbour's vector at (x, y) of a block of 8x8, by its four equal quadrants.
inline int overlap_weight(int x, int y, const std::array<const char*, 4>& quadrant) {
  return quadrant[static_cast<std::size_t>(std::min(y, 7 - y))][std::min(x, 7 - x)] - '0';
}

/// The block made of five predictions of it, with its own vector and with those of the blocks around it.
struct Overlapped {
  SampleRows own, above, left, right, below;

  int operator()(int x, int y) const {
    const auto at = [&](const SampleRows& rows) {
      return rows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)];
    };
    const int vertical = overlap_weight(x, y, {"2222", "1122", "1111", "1111"});
    const int horizontal = overlap_weight(x, y, {"2111", "2211", "2211", "2211"});
    const int sum = (8 - vertical - horizontal) * at(own) + vertical * at(y < 4 ? above : below) +
                    horizontal * at(x < 4 ? left : right);
    return static_cast<int>(std::floor(sum / 8.0 + 0.5));
  }
};

}  // namespace mox::test::oracle
