/// Memory that shows every access outside of it: buffers and planes between unreadable pages.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <span>
#include <type_traits>
#include <vector>

namespace mox::test {

/// Where a buffer lies between its guard pages: its end or its start touches one, or it starts `alignment` bytes behind
/// a multiple of 64.
struct Placement {
  enum Kind { kEnd, kStart, kAligned } kind = kEnd;
  int alignment = 0;
  static constexpr Placement at_end() { return {kEnd, 0}; }
  static constexpr Placement at_start() { return {kStart, 0}; }
  static constexpr Placement aligned(int bytes) { return {kAligned, bytes}; }
};

/// Bytes between two unreadable pages.
class GuardedBytes {
 public:
  GuardedBytes(std::size_t bytes, Placement placement);
  ~GuardedBytes();
  GuardedBytes(const GuardedBytes&) = delete;
  GuardedBytes& operator=(const GuardedBytes&) = delete;
  std::byte* data() const { return data_; }

 private:
  std::byte* mapping_;
  std::size_t mapped_;
  std::byte* data_;
};

/// `count` elements of T between two unreadable pages.
template <class T>
class Guarded {
 public:
  explicit Guarded(std::size_t count, Placement placement = {}) : bytes_(count * sizeof(T), placement), count_(count) {}
  Guarded(std::initializer_list<T> values, Placement placement = {}) : Guarded(values.size(), placement) {
    std::copy(values.begin(), values.end(), data());
  }
  T* data() const { return reinterpret_cast<T*>(bytes_.data()); }
  T& operator[](std::size_t i) const { return data()[i]; }
  T* begin() const { return data(); }
  T* end() const { return data() + count_; }
  std::size_t size() const { return count_; }
  std::vector<T> copy() const { return {begin(), end()}; }

 private:
  GuardedBytes bytes_;
  std::size_t count_;
};

/// A plane of width x height samples, rows `step` samples apart (negative: bottom row first in memory). Memory reaches
/// from the first sample to the last and no further. Padding between rows is filled with a pattern, so comparing two
/// planes' memory() shows stray writes too.
template <class T>
class Plane {
 public:
  Plane(int width, int height, int step, Placement placement = {})
      : width_(width),
        height_(height),
        step_(step),
        samples_(static_cast<std::size_t>(height - 1) * static_cast<std::size_t>(std::abs(step)) +
                     static_cast<std::size_t>(width),
                 placement) {
    for (std::size_t i = 0; i < samples_.size(); ++i) samples_[i] = static_cast<T>(0x5A + 37 * i);
  }
  int width() const { return width_; }
  int height() const { return height_; }
  int step() const { return step_; }
  int step_bytes() const { return step_ * static_cast<int>(sizeof(T)); }
  /// Address of a sample; (0, 0) is the first sample of the top row.
  T* at(int x, int y) const {
    const std::ptrdiff_t top = step_ < 0 ? -static_cast<std::ptrdiff_t>(height_ - 1) * step_ : 0;
    return samples_.data() + top + static_cast<std::ptrdiff_t>(y) * step_ + x;
  }
  T& operator()(int x, int y) const { return *at(x, y); }
  /// All samples and the padding, in memory order.
  std::span<T> memory() const { return {samples_.begin(), samples_.size()}; }
  std::vector<T> copy() const { return samples_.copy(); }
  /// Takes over the samples and the padding of a plane of the same shape.
  void assign(const Plane& other) const { std::copy(other.samples_.begin(), other.samples_.end(), samples_.begin()); }

 private:
  int width_, height_, step_;
  Guarded<T> samples_;
};

}  // namespace mox::test
