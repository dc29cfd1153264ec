#include "motion_search/report.hpp"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>

namespace motion_search {
namespace {

/// The picture gets so wide or high at least.
constexpr int kDrawnSide = 640;

struct Colour {
  std::uint8_t red, green, blue;
};
constexpr Colour kOne = {255, 220, 40}, kPart = {80, 255, 90}, kUseless = {255, 70, 60};

std::string format(const char* text, ...) __attribute__((format(printf, 1, 2)));
std::string format(const char* text, ...) {
  std::array<char, 200> line;
  va_list arguments;
  va_start(arguments, text);
  std::vsnprintf(line.data(), line.size(), text, arguments);
  va_end(arguments);
  return line.data();
}

double percent(int part, int whole) { return 100.0 * part / whole; }

class Drawing {
 public:
  Drawing(const Picture& picture, int scale)
      : scale_(scale), image_(picture.width() * scale, picture.height() * scale) {
    for (int y = 0; y < image_.height; ++y) {
      for (int x = 0; x < image_.width; ++x) {
        const auto grey = static_cast<std::uint8_t>(*picture.plane(0).at(x / scale, y / scale) * 3 / 4);
        set(x, y, {grey, grey, grey});
      }
    }
  }
  /// From (x, y) in samples along a vector.
  void arrow(int x, int y, Vector v, Colour colour) {
    const int steps = std::max({std::abs(v.x), std::abs(v.y), 1}) * scale_;
    for (int i = 0; i <= steps; ++i)
      set(x * scale_ + v.x * scale_ * i / (2 * steps), y * scale_ + v.y * scale_ * i / (2 * steps), colour);
    for (int dot = 0; dot < 9; ++dot) set(x * scale_ + dot % 3 - 1, y * scale_ + dot / 3 - 1, colour);
  }
  moxdec::RgbImage take() { return std::move(image_); }

 private:
  void set(int x, int y, Colour c) {
    if (x < 0 || y < 0 || x >= image_.width || y >= image_.height) return;
    std::uint8_t* pixel = image_.at(x, y);
    pixel[0] = c.red, pixel[1] = c.green, pixel[2] = c.blue;
  }

  int scale_;
  moxdec::RgbImage image_;
};

}  // namespace

FieldStatistics statistics_of(const Field& field) {
  FieldStatistics s;
  double length = 0;
  for (const Macroblock& mb : field.macroblocks) {
    ++s.macroblocks;
    s.split += mb.split, s.useless += mb.useless, s.sad += mb.sad;
    s.still += std::ranges::count(mb.vectors, Vector{}) == 4;
    for (const Vector v : mb.vectors) {
      ++s.positions[static_cast<std::size_t>((v.x & 1) * 2 + (v.y & 1))];
      length += std::hypot(v.x / 2.0, v.y / 2.0);
    }
  }
  s.mean_length = length / (4 * s.macroblocks);
  return s;
}

std::string describe(const char* name, const Field& field, const Picture& current, const Picture& prediction) {
  const FieldStatistics s = statistics_of(field);
  const int vectors = 4 * s.macroblocks;
  const double time = field.seconds / s.macroblocks;
  return format("%s\n", name) +
         format("  prediction      Y %.2f dB, U %.2f dB, V %.2f dB\n", psnr(current, prediction, 0),
                psnr(current, prediction, 1), psnr(current, prediction, 2)) +
         format("  search          %.2f us a macroblock, mean SAD %.1f\n", 1e6 * time,
                static_cast<double>(s.sad) / s.macroblocks) +
         format("  macroblocks     %d: %.1f %% still, %.1f %% split into 8x8, %.1f %% better without prediction\n",
                s.macroblocks, percent(s.still, s.macroblocks), percent(s.split, s.macroblocks),
                percent(s.useless, s.macroblocks)) +
         format("  vectors         mean length %.2f samples\n", s.mean_length) +
         format("  positions       full %.1f %%, half in y %.1f %%, half in x %.1f %%, half in both %.1f %%\n",
                percent(s.positions[0], vectors), percent(s.positions[1], vectors), percent(s.positions[2], vectors),
                percent(s.positions[3], vectors));
}

moxdec::RgbImage draw(const Field& field, const Picture& picture) {
  const int side = std::max(picture.width(), picture.height());
  Drawing drawing(picture, std::max(1, (kDrawnSide + side - 1) / side));
  for (int i = 0; i < field.columns * field.rows; ++i) {
    const int x = i % field.columns * 16, y = i / field.columns * 16;
    const Macroblock& mb = field.macroblocks[static_cast<std::size_t>(i)];
    const Colour colour = mb.useless ? kUseless : mb.split ? kPart : kOne;
    for (int k = 0; k < 4; ++k) {
      if (mb.split)
        drawing.arrow(x + 4 + k % 2 * 8, y + 4 + k / 2 * 8, mb.vectors[static_cast<std::size_t>(k)], colour);
    }
    if (!mb.split) drawing.arrow(x + 8, y + 8, mb.vectors[0], colour);
  }
  return drawing.take();
}

}  // namespace motion_search
