/// Slow VC-1 interpolation for tests: real numbers and the rounding that belongs to them; block forms by a picture that
/// answers any coordinate, line by line.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>

#include "moxvc.h"

namespace mox::test::oracle {

/// The sample (x, y) of one channel.
using VC1Picture = std::function<int(std::int64_t x, std::int64_t y)>;

/// Taps of a position; those of a quarter mirror those of the other.
inline double vc1_taps(int position, const std::function<double(int)>& sample) {
  constexpr std::array kQuarter = {-4, 53, 18, -3}, kHalf = {-1, 9, 9, -1};
  double sum = 0;
  for (int i = -1; i <= 2; ++i) {
    const int tap = position == 2 ? kHalf[i + 1] : position == 1 ? kQuarter[i + 1] : kQuarter[2 - i];
    sum += tap * sample(i);
  }
  return sum;
}

/// Halves go down by `less` of the smallest part.
inline int vc1_rounded(double value, double parts, int less) {
  return static_cast<int>(std::floor(value / parts + 0.5 - less / parts));
}

inline int vc1_bicubic(const VC1Picture& picture, std::int64_t x, std::int64_t y, int dx, int dy, int roundControl) {
  const auto gain = [](int position) { return position == 2 ? 16.0 : 64.0; };
  const auto column = [&](int i) { return vc1_taps(dy, [&](int j) { return picture(x + i, y + j); }); };
  int result = picture(x, y);
  if (dx != 0 && dy == 0) {
    result = vc1_rounded(vc1_taps(dx, [&](int i) { return picture(x + i, y); }), gain(dx), roundControl);
  } else if (dx == 0 && dy != 0) {
    result = vc1_rounded(column(0), gain(dy), 1 - roundControl);
  } else if (dx != 0) {
    const double first = gain(dx) * gain(dy) / 128;  // 128 are left for the second filter
    const auto t = [&](int i) { return vc1_rounded(column(i), first, 1 - roundControl); };
    result = vc1_rounded(vc1_taps(dx, t), 128, roundControl);
  }
  return std::clamp(result, 0, 255);
}

/// Each corner weighs by the area to the corner opposite.
inline int vc1_bilinear(const VC1Picture& picture, std::int64_t x, std::int64_t y, int dx, int dy, int roundControl) {
  double sum = 0;
  for (int corner = 0; corner < 4; ++corner) {
    const int right = corner % 2, down = corner / 2;
    const int area = (4 - std::abs(4 * right - dx)) * (4 - std::abs(4 * down - dy));
    if (area > 0) sum += area * picture(x + right, y + down);
  }
  return vc1_rounded(sum, 16, roundControl);
}

/// The plane or field of a block form, continued in all directions. Lines are counted in the frame, of which pSrc is
/// line isBottomField.
class VC1PaddedPicture {
 public:
  VC1PaddedPicture(const MoxiVC1ICInterpolationParams& a, int channels, int channel)
      : a_(a), channels_(channels), channel_(channel) {}

  int operator()(std::int64_t x, std::int64_t row) const {
    const std::int64_t height = a_.frameSize.height, rows = a_.isFieldPicture ? height / 2 : height;
    const bool above = row < 0;
    if (!above && row < rows) return in_plane(x, row, bottom_table(row));
    if (!a_.isInterlacedRef) {
      // The window starts one row above the block, or with row 0.
      const std::int64_t start = std::max<std::int64_t>(a_.blockPos.y, 1) - 1;
      return in_plane(x, above ? 0 : rows - 1, bottom_table(above ? start : start + 1));
    }
    if (a_.isFieldPicture) return line(x, above ? 0 : height - 1, !above);
    // Of the first two or the last two lines, the one of the same parity.
    const std::int64_t parity = std::abs(row % 2), nearest = above ? parity : height - 2 + parity;
    return line(x, nearest, nearest % 2 != 0);
  }

 private:
  bool bottom_table(std::int64_t row) const { return a_.isFieldPicture ? a_.isBottomField != 0 : row % 2 != 0; }
  int in_plane(std::int64_t x, std::int64_t row, bool bottom) const {
    return line(x, (a_.isFieldPicture ? 2 * row : row) + a_.isBottomField, bottom);
  }
  int line(std::int64_t x, std::int64_t frameLine, bool bottom) const {
    const std::int64_t column = std::clamp<std::int64_t>(x, 0, a_.frameSize.width - 1);
    const int sample = a_.pSrc[(frameLine - a_.isBottomField) * a_.srcStep + column * channels_ + channel_];
    const Mox8u* const table = bottom ? a_.pLUTBottom : a_.pLUTTop;
    return table ? table[sample] : sample;
  }

  const MoxiVC1ICInterpolationParams& a_;
  int channels_, channel_;
};

}  // namespace mox::test::oracle
