#include "moxenc/inter.hpp"

#include <algorithm>

namespace moxenc {
namespace {

void predict_part(const Site& site, const moxdec::Frame& reference, const Part& part, Vector vector) {
  const int x = 8 * part.x, y = 8 * part.y;
  const Planes& picture = site.picture;
  expect_ok(moxiInterpolateLuma_H264_8u_C1R(
      sample_at(reference, 0, x + (vector.x >> 2), y + (vector.y >> 2)), reference.step(0),
      picture.at[0] + std::ptrdiff_t{y % 16} * picture.step[0] + x % 16, picture.step[0], vector.x & 3, vector.y & 3,
      {8 * part.width, 8 * part.height}));
  for (int i = 1; i < 3; ++i) {
    const auto plane = static_cast<std::size_t>(i);
    expect_ok(moxiInterpolateChroma_H264_8u_C1R(
        sample_at(reference, i, x / 2 + (vector.x >> 3), y / 2 + (vector.y >> 3)), reference.step(i),
        picture.at[plane] + std::ptrdiff_t{y / 2 % 8} * picture.step[plane] + x / 2 % 8, picture.step[plane],
        vector.x & 7, vector.y & 7, {4 * part.width, 4 * part.height}));
  }
}

}  // namespace

Limits limits_at(const Site& site) {
  constexpr int kOutside = kMargin - 16, kVertical = 63, kHorizontal = 1024;  // samples
  const int x = 16 * site.x, y = 16 * site.y, right = 16 * (site.state.columns - 1),
            bottom = 16 * (site.state.rows - 1);
  return {4 * std::max(-kOutside - x, -kHorizontal), 4 * std::min(right + kOutside - x, kHorizontal),
          4 * std::max(-kOutside - y, -kVertical), 4 * std::min(bottom + kOutside - y, kVertical)};
}

void predict_inter(const Macroblock& mb, const Site& site, const moxdec::Frame& reference) {
  for (int i = 0; i < part_count(mb.split); ++i) {
    const Part part = part_of(site.x, site.y, mb.split, i);
    predict_part(site, reference, part, mb.vectors[first_quarter(part)]);
  }
}

}  // namespace moxenc
