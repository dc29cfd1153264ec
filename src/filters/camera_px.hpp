/// Portable kernels of the camera path: packed 4:2:2 scaled, converted and turned.
#pragma once

#include <array>
#include <cstddef>

#include "frame/access.hpp"
#include "frame/arithmetic.hpp"
#include "frame/table.hpp"
#include "moxvc/camera.h"

namespace mox {

/// A turned plane seen as it was before: its first sample, and the ways from a sample to the one right of it and to the
/// one below it, in bytes.
struct TurnedPlane {
  Mox8u* first;
  std::ptrdiff_t right, down;

  Mox8u* at(int x, int y) const { return first + x * right + y * down; }
};

/// The plane at dst for a picture of `size` before it is turned.
inline TurnedPlane turned_plane(Mox8u* dst, std::ptrdiff_t step, int sampleBytes, MoxiSize size, Mox32s rotation) {
  const std::ptrdiff_t lastX = size.width - 1, lastY = size.height - 1;
  switch (rotation) {
    case moxRotate90Left: return {dst + lastX * step, -step, sampleBytes};
    case moxRotate90Right: return {dst + lastY * sampleBytes, step, -sampleBytes};
    case moxRotate180: return {dst + lastY * step + lastX * sampleBytes, -sampleBytes, -step};
    default: return {dst, sampleBytes, step};
  }
}

/// A packed picture, Cb Y Cr Y.
struct PackedSource {
  const Mox8u* first;
  std::ptrdiff_t step;

  const Mox8u* row(int y) const { return first + y * step; }
};

struct CameraColour {
  Mox32s y, cb, cr;
};

/// Bits of red, green and blue in a pixel.
struct CameraFormat {
  int red, green, blue;
};
inline constexpr CameraFormat kCameraFormats[3] = {{5, 6, 5}, {5, 5, 5}, {4, 4, 4}};

/// A turned and scaled picture of packed RGB, `size` before it is turned.
using CameraKernel = MoxStatus (*)(const PackedSource& src, const TurnedPlane& dst, MoxiSize size);

/// Index of a kernel, each part from 0: log2 of the scale - 1, bilinear, format.
constexpr std::size_t camera_index(std::size_t scale, bool isBilinear, std::size_t format) {
  return scale + 3 * isBilinear + 6 * format;
}

}  // namespace mox

namespace mox::px {

/// The pixel in column x of a row.
inline CameraColour camera_pixel(const Mox8u* row, int x) {
  const Mox8u* const pair = row + 4 * std::ptrdiff_t{x >> 1};
  return {pair[1 + 2 * (x & 1)], pair[0], pair[2]};
}

/// The mean of the 2x2 pixels at column x of two rows.
inline CameraColour camera_mean(const Mox8u* upper, const Mox8u* lower, int x) {
  CameraColour sum = {2, 2, 2};
  for (const Mox8u* row : {upper, lower}) {
    for (int i : {x, x + 1}) {
      const CameraColour pixel = camera_pixel(row, i);
      sum = {sum.y + pixel.y, sum.cb + pixel.cb, sum.cr + pixel.cr};
    }
  }
  return {sum.y >> 2, sum.cb >> 2, sum.cr >> 2};
}

/// The upper bits of red, green and blue as one word.
template <CameraFormat kFormat>
constexpr Mox16u camera_word(const CameraColour& colour) {
  const Mox32s y = 298 * (colour.y - 16) + 128, cb = colour.cb - 128, cr = colour.cr - 128;
  const Mox32s red = clip8((y + 409 * cr) >> 8) >> (8 - kFormat.red);
  const Mox32s green = clip8((y - 100 * cb - 208 * cr) >> 8) >> (8 - kFormat.green);
  const Mox32s blue = clip8((y + 516 * cb) >> 8) >> (8 - kFormat.blue);
  return static_cast<Mox16u>((red << kFormat.green | green) << kFormat.blue | blue);
}

template <int kScale, bool kBilinear, CameraFormat kFormat>
MoxStatus camera_resize(const PackedSource& src, const TurnedPlane& dst, MoxiSize size) {
  constexpr int kMiddle = kScale / 2 - 1;
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      const CameraColour colour = kBilinear ? camera_mean(src.row(kScale * y + kMiddle),
                                                          src.row(kScale * y + kMiddle + 1), kScale * x + kMiddle)
                                            : camera_pixel(src.row(kScale * y), kScale * x);
      store(dst.at(x, y), camera_word<kFormat>(colour));
    }
  }
  return moxStsOk;
}

/// [camera_index].
inline constexpr auto ownResizeCCRotate_8u = make_table<18>(
    []<std::size_t I>() -> CameraKernel { return &camera_resize<2 << I % 3, I / 3 % 2 != 0, kCameraFormats[I / 6]>; });
static_assert(camera_index(2, true, 2) == 17);

/// Planes of 4:2:0 from a packed picture of `size`.
inline MoxStatus ownCbYCr422ToYCbCr420_Rotate_8u(const PackedSource& src, const std::array<TurnedPlane, 3>& dst,
                                                 MoxiSize size) {
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) *dst[0].at(x, y) = src.row(y)[2 * std::ptrdiff_t{x} + 1];
  }
  for (int y = 0; y < size.height / 2; ++y) {
    for (int x = 0; x < size.width / 2; ++x) {
      const Mox8u *const upper = src.row(2 * y) + 4 * std::ptrdiff_t{x}, *const lower = upper + src.step;
      *dst[1].at(x, y) = static_cast<Mox8u>(avg_up(upper[0], lower[0]));
      *dst[2].at(x, y) = static_cast<Mox8u>(avg_up(upper[2], lower[2]));
    }
  }
  return moxStsOk;
}

}  // namespace mox::px
