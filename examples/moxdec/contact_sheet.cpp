#include "moxdec/contact_sheet.hpp"

#include <png.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace moxdec {
namespace {

constexpr int kGap = 4;

/// Sum of a plane's samples in a rectangle, divided by their number, on the scale of 8 bits.
template <class Sample>
float mean(const Frame& frame, int plane, int x0, int x1, int y0, int y1) {
  int sum = 0;
  for (int y = y0; y < y1; ++y) {
    const auto* row = reinterpret_cast<const Sample*>(frame.shown_row(plane, y));
    for (int x = x0; x < x1; ++x) sum += row[x];
  }
  const int count = (x1 - x0) * (y1 - y0), unit = 1 << (frame.format().bit_depth - 8);
  return static_cast<float>(sum) / static_cast<float>(count * unit);
}

std::uint8_t to_byte(float value) { return static_cast<std::uint8_t>(std::clamp(value + 0.5f, 0.0f, 255.0f)); }

void store_rgb(float luma, float blue, float red, std::uint8_t* out) {
  const float y = 1.164384f * (luma - 16), u = blue - 128, v = red - 128;
  out[0] = to_byte(y + 1.596027f * v);
  out[1] = to_byte(y - 0.391762f * u - 0.812968f * v);
  out[2] = to_byte(y + 2.017232f * u);
}

template <class Sample>
RgbImage small_copy_of(const Frame& frame, int scale) {
  const FrameFormat& format = frame.format();
  RgbImage copy((format.width + scale - 1) / scale, (format.height + scale - 1) / scale);
  for (int y = 0; y < copy.height; ++y) {
    for (int x = 0; x < copy.width; ++x) {
      float sample[3];
      for (int plane = 0; plane < 3; ++plane) {
        const int shift_x = plane == 0 ? 0 : chroma_shift_x(format.chroma);
        const int shift_y = plane == 0 ? 0 : chroma_shift_y(format.chroma);
        const int x0 = x * scale >> shift_x, y0 = y * scale >> shift_y;
        const int x1 = std::min(std::max((x + 1) * scale >> shift_x, x0 + 1), format.plane_width(plane));
        const int y1 = std::min(std::max((y + 1) * scale >> shift_y, y0 + 1), format.plane_height(plane));
        sample[plane] = mean<Sample>(frame, plane, x0, x1, y0, y1);
      }
      store_rgb(sample[0], sample[1], sample[2], copy.at(x, y));
    }
  }
  return copy;
}

}  // namespace

RgbImage small_copy(const Frame& frame, int scale) {
  return frame.format().sample_bytes() == 1 ? small_copy_of<std::uint8_t>(frame, scale)
                                            : small_copy_of<std::uint16_t>(frame, scale);
}

RgbImage arrange(const std::vector<RgbImage>& copies, int columns) {
  int width = 0, height = 0;
  for (const RgbImage& copy : copies) width = std::max(width, copy.width), height = std::max(height, copy.height);
  const int count = static_cast<int>(copies.size());
  const int rows = (count + columns - 1) / columns;
  RgbImage sheet(columns * (width + kGap) + kGap, rows * (height + kGap) + kGap);
  for (int i = 0; i < count; ++i) {
    const RgbImage& copy = copies[static_cast<std::size_t>(i)];
    const int x = kGap + i % columns * (width + kGap), y = kGap + i / columns * (height + kGap);
    const auto row = static_cast<std::size_t>(3 * copy.width);
    for (int j = 0; j < copy.height; ++j) {
      std::memcpy(sheet.at(x, y + j), copy.pixels.data() + row * static_cast<std::size_t>(j), row);
    }
  }
  return sheet;
}

void write_png(const RgbImage& image, const std::string& path) {
  png_image png{};
  png.version = PNG_IMAGE_VERSION;
  png.width = static_cast<png_uint_32>(image.width);
  png.height = static_cast<png_uint_32>(image.height);
  png.format = PNG_FORMAT_RGB;
  if (!png_image_write_to_file(&png, path.c_str(), 0, image.pixels.data(), 0, nullptr)) {
    throw OutputError(path + ": " + png.message);
  }
}

void ContactSheet::write(const Frame& frame, FrameRate) {
  if (frames_++ % stride_ != 0) return;
  const int side = std::max(frame.format().width, frame.format().height);
  copies_.push_back(small_copy(frame, (side + kMaxCopySide - 1) / kMaxCopySide));
  if (copies_.size() <= kMaxCopies) return;
  for (std::size_t i = 1; 2 * i < copies_.size(); ++i) std::swap(copies_[i], copies_[2 * i]);
  copies_.erase(copies_.begin() + (static_cast<std::ptrdiff_t>(copies_.size()) + 1) / 2, copies_.end());
  stride_ *= 2;
}

void ContactSheet::finish() {
  if (copies_.empty()) throw OutputError(path_ + ": there is no frame to show");
  const int columns = static_cast<int>(std::ceil(std::sqrt(copies_.size())));  // about as wide as it is high
  write_png(arrange(copies_, columns), path_);
}

}  // namespace moxdec
