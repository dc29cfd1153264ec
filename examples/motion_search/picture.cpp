#include "motion_search/picture.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "moxdec/error.hpp"

namespace motion_search {

Plane::Plane(int width, int height, int margin)
    : width_(width),
      height_(height),
      margin_(margin),
      step_((width + 2 * margin + 15) / 16 * 16),
      samples_(static_cast<std::size_t>(step_) * static_cast<std::size_t>(height + 2 * margin)) {}

void Plane::extend(int width, int height) {
  for (int y = 0; y < height; ++y) {
    std::memset(at(-margin_, y), *at(0, y), static_cast<std::size_t>(margin_));
    std::memset(at(width, y), *at(width - 1, y), static_cast<std::size_t>(width_ - width + margin_));
  }
  const auto row = static_cast<std::size_t>(width_ + 2 * margin_);
  for (int y = -margin_; y < 0; ++y) std::memcpy(at(-margin_, y), at(-margin_, 0), row);
  for (int y = height; y < height_ + margin_; ++y) std::memcpy(at(-margin_, y), at(-margin_, height - 1), row);
}

Picture::Picture(int width, int height, int margin)
    : width_(width),
      height_(height),
      planes_{Plane(columns() * 16, rows() * 16, margin), Plane(columns() * 8, rows() * 8, margin),
              Plane(columns() * 8, rows() * 8, margin)} {}

Picture::Picture(const moxdec::Frame& frame, int margin)
    : Picture(frame.format().width, frame.format().height, margin) {
  const moxdec::FrameFormat& format = frame.format();
  moxdec::require(format.bit_depth == 8 && format.chroma == moxdec::Chroma::k420,
                  "only 8-bit 4:2:0 pictures can be searched");
  for (int i = 0; i < 3; ++i) {
    for (int y = 0; y < plane_height(i); ++y) {
      std::memcpy(plane(i).at(0, y), frame.shown_row(i, y), static_cast<std::size_t>(plane_width(i)));
    }
    plane(i).extend(plane_width(i), plane_height(i));
  }
}

double psnr(const Picture& a, const Picture& b, int plane) {
  long long squares = 0;
  for (int y = 0; y < a.plane_height(plane); ++y) {
    for (int x = 0; x < a.plane_width(plane); ++x) {
      const int difference = *a.plane(plane).at(x, y) - *b.plane(plane).at(x, y);
      squares += difference * difference;
    }
  }
  if (squares == 0) return std::numeric_limits<double>::infinity();
  const double samples = static_cast<double>(a.plane_width(plane)) * a.plane_height(plane);
  return 10 * std::log10(255.0 * 255.0 * samples / static_cast<double>(squares));
}

}  // namespace motion_search
