/// A PNG picture with small copies of frames in a grid.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "moxdec/output.hpp"

namespace moxdec {

/// 8-bit RGB rows without padding.
struct RgbImage {
  RgbImage(int image_width, int image_height)
      : width(image_width),
        height(image_height),
        pixels(std::size_t{3} * static_cast<std::size_t>(width) * static_cast<std::size_t>(height)) {}
  std::uint8_t* at(int x, int y) {
    return &pixels[std::size_t{3} *
                   (static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x))];
  }

  int width;
  int height;
  std::vector<std::uint8_t> pixels;
};

/// The frame in RGB (BT.601, limited range), each pixel the mean of `scale` x `scale` samples.
RgbImage small_copy(const Frame& frame, int scale);

/// Pictures in reading order, in a grid of so many columns.
RgbImage arrange(const std::vector<RgbImage>& copies, int columns);

/// Throws OutputError.
void write_png(const RgbImage& image, const std::string& path);

/// Shows the whole stream whatever its length: when there are too many copies, every second one is dropped, and of the
/// frames that follow half as many are taken.
class ContactSheet : public FrameWriter {
 public:
  static constexpr int kMaxCopies = 48;
  static constexpr int kMaxCopySide = 320;

  explicit ContactSheet(std::string path) : path_(std::move(path)) {}
  void write(const Frame& frame, FrameRate rate) override;
  void finish() override;

 private:
  std::string path_;
  std::vector<RgbImage> copies_;
  long long frames_ = 0;
  int stride_ = 1;  // every stride-th frame is shown
};

}  // namespace moxdec
