/// Blocks of elements in guarded byte planes, so that steps may be odd, zero, negative or shorter than a row.
#pragma once

#include <cstring>
#include <memory>
#include <vector>

#include "moxvc/types.h"
#include "support/guarded.hpp"
#include "support/random.hpp"

namespace mox::test {

/// Steps for rows of so many bytes.
inline int random_step(int rowBytes, Random& random) {
  const int steps[] = {rowBytes, rowBytes + 1, 2 * rowBytes + 3, 64, 1000, -rowBytes, -rowBytes - 5, -64, 0, 1, -3};
  return steps[random.bits() % std::size(steps)];
}
/// Ends at the guard page, starts at it, or lies anywhere.
inline Placement random_placement(Random& random) {
  const Placement places[] = {Placement::at_end(), Placement::at_start(), Placement::aligned(random(0, 15))};
  return places[random.bits() % 3];
}

/// A block of width x height elements of T, with no other memory around it.
template <class T>
class Block {
 public:
  Block(int width, int height, int step, Placement placement)
      : plane_(std::make_shared<const Plane<Mox8u>>(width * static_cast<int>(sizeof(T)), height, step, placement)) {}
  Block(int width, int height, Random& random)
      : Block(width, height, random_step(width * static_cast<int>(sizeof(T)), random), random_placement(random)) {}
  /// A copy with the same rows elsewhere.
  Block twin() const {
    Block other(plane_->width() / static_cast<int>(sizeof(T)), plane_->height(), plane_->step(), Placement::at_end());
    other.plane_->assign(*plane_);
    return other;
  }
  T* data() const { return reinterpret_cast<T*>(plane_->at(0, 0)); }
  int step() const { return plane_->step(); }
  int get(int x, int y) const {
    T value;
    std::memcpy(&value, plane_->at(x * static_cast<int>(sizeof(T)), y), sizeof value);
    return value;
  }
  void set(int x, int y, int value) const {
    const T element = static_cast<T>(value);
    std::memcpy(plane_->at(x * static_cast<int>(sizeof(T)), y), &element, sizeof element);
  }
  /// Fills with a pattern of elements of low..high.
  void fill(Pattern pattern, Random& random, int low, int high) const {
    const int width = plane_->width() / static_cast<int>(sizeof(T));
    std::vector<T> values(static_cast<std::size_t>(width * plane_->height()));
    test::fill(std::span(values), pattern, random, low, high);
    for (std::size_t i = 0; i < values.size(); ++i) {
      set(static_cast<int>(i) % width, static_cast<int>(i) / width, values[i]);
    }
  }
  void fill(int value) const {
    for (int y = 0; y < plane_->height(); ++y) {
      for (int x = 0; x < plane_->width() / static_cast<int>(sizeof(T)); ++x) set(x, y, value);
    }
  }
  bool operator==(const Block& other) const { return plane_->copy() == other.plane_->copy(); }

 private:
  std::shared_ptr<const Plane<Mox8u>> plane_;
};

}  // namespace mox::test
