/// Pictures as motion search needs them: whole macroblocks, with the outermost samples repeated on all sides, so that
/// a vector may point outside.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "moxdec/frame.hpp"
#include "moxvc.h"

namespace motion_search {

/// 8-bit samples with a margin on all four sides.
class Plane {
 public:
  Plane(int width, int height, int margin);
  Mox8u* at(int x, int y) { return samples_.data() + offset(x, y); }
  const Mox8u* at(int x, int y) const { return samples_.data() + offset(x, y); }
  /// Bytes from one row to the next.
  int step() const { return step_; }
  int width() const { return width_; }
  int height() const { return height_; }

  /// Repeats the last sample of each row from `width` on, the last row from `height` on, and fills the margin.
  void extend(int width, int height);

 private:
  std::ptrdiff_t offset(int x, int y) const { return (y + margin_) * std::ptrdiff_t{step_} + x + margin_; }

  int width_, height_, margin_, step_;
  std::vector<Mox8u> samples_;
};

class Picture {
 public:
  /// A picture of undefined samples.
  Picture(int width, int height, int margin);
  /// A copy of the shown part of a frame. Throws moxdec::DecodeError unless it is 8-bit 4:2:0.
  Picture(const moxdec::Frame& frame, int margin);

  /// Luma samples shown.
  int width() const { return width_; }
  int height() const { return height_; }
  /// Macroblocks of 16 x 16; the last column and row may reach beyond what is shown.
  int columns() const { return (width_ + 15) / 16; }
  int rows() const { return (height_ + 15) / 16; }
  /// 0 luma, 1 and 2 chroma.
  Plane& plane(int i) { return planes_[static_cast<std::size_t>(i)]; }
  const Plane& plane(int i) const { return planes_[static_cast<std::size_t>(i)]; }
  /// Samples of a plane that are shown.
  int plane_width(int i) const { return i == 0 ? width_ : (width_ + 1) / 2; }
  int plane_height(int i) const { return i == 0 ? height_ : (height_ + 1) / 2; }

 private:
  int width_, height_;
  std::array<Plane, 3> planes_;
};

/// Peak signal-to-noise ratio of the shown samples of a plane in dB; infinity if they are equal.
double psnr(const Picture& a, const Picture& b, int plane);

}  // namespace motion_search
