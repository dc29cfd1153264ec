#include "moxfilter/report.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>

namespace moxfilter {
namespace {

constexpr int kLeastSide = 320;  ///< samples are repeated until a picture gets there
constexpr int kMostSide = 4096;  ///< larger ones are made smaller

moxdec::RgbImage enlarged(const moxdec::RgbImage& image, int factor) {
  moxdec::RgbImage large(image.width * factor, image.height * factor);
  for (int y = 0; y < large.height; ++y) {
    for (int x = 0; x < large.width; ++x) {
      const std::size_t from = 3 * (static_cast<std::size_t>(y / factor) * static_cast<std::size_t>(image.width) +
                                    static_cast<std::size_t>(x / factor));
      std::memcpy(large.at(x, y), &image.pixels[from], 3);
    }
  }
  return large;
}

}  // namespace

void Quality::add(const Frame& a, const Frame& b) {
  for (int plane = 0; plane < 3; ++plane) {
    const int width = a.format().plane_width(plane), height = a.format().plane_height(plane);
    Sums& sums = planes_[static_cast<std::size_t>(plane)];
    for (int y = 0; y < height; ++y) {
      const auto *p = a.shown_row(plane, y), *q = b.shown_row(plane, y);
      long long squares = 0;
      for (int x = 0; x < width; ++x) {
        const int difference = std::to_integer<int>(p[x]) - std::to_integer<int>(q[x]);
        squares += difference * difference;
      }
      sums.squares += static_cast<double>(squares);
    }
    sums.samples += static_cast<double>(width) * height;
  }
}

double Quality::psnr(int plane) const {
  const Sums& sums = planes_[static_cast<std::size_t>(plane)];
  if (sums.squares == 0) return std::numeric_limits<double>::infinity();
  return 10 * std::log10(255.0 * 255.0 * sums.samples / sums.squares);
}

std::string Quality::text() const {
  std::array<char, 100> line;
  std::snprintf(line.data(), line.size(), "Y %.2f dB, U %.2f dB, V %.2f dB", psnr(0), psnr(1), psnr(2));
  return line.data();
}

moxdec::RgbImage side_by_side(const Pair& pair, const Frame& result) {
  const int side = std::max(result.format().width, result.format().height);
  const int reduction = (side + kMostSide - 1) / kMostSide, factor = (kLeastSide + side - 1) / side;
  std::vector<moxdec::RgbImage> pictures;
  for (const Frame* frame : {pair.input.get(), &result, pair.original.get()}) {
    if (frame) pictures.push_back(enlarged(moxdec::small_copy(*frame, reduction), factor));
  }
  return moxdec::arrange(pictures, static_cast<int>(pictures.size()));
}

}  // namespace moxfilter
