/// Values of the blocks of a picture, for their neighbours.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace moxenc {

/// Columns -1 to width, rows -1 to height - 1. Blocks outside the picture, and those not yet coded, hold one value.
template <class T>
class Grid {
 public:
  Grid(int width, int height, T unknown)
      : step_(width + 2), unknown_(unknown), values_(static_cast<std::size_t>(step_ * (height + 1)), unknown) {}

  void forget() { std::ranges::fill(values_, unknown_); }
  T& at(int x, int y) { return values_[index(x, y)]; }
  const T& at(int x, int y) const { return values_[index(x, y)]; }
  void fill(int x, int y, int width, int height, T value) {
    for (int row = y; row < y + height; ++row) std::fill_n(&at(x, row), width, value);
  }

 private:
  std::size_t index(int x, int y) const { return static_cast<std::size_t>((y + 1) * step_ + x + 1); }

  int step_;
  T unknown_;
  std::vector<T> values_;
};

}  // namespace moxenc
