/// Vector kernels of the camera path: 8 pixels of RGB at a time, planes of 4:2:0 by tiles of 16x16 pixels.
#pragma once

#include <algorithm>
#include <array>
#include <utility>

#include "filters/camera_px.hpp"
#include "frame/generation.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

// Scaling and conversion.

/// Four pixels, a component a doubleword.
struct CameraPixels {
  simd::s32<1> y, cb, cr;
};
/// Byte I of each doubleword.
template <int I>
MOX_INLINE simd::s32<1> camera_byte(simd::s32<1> v) {
  if constexpr (I == 3) return simd::shru<24>(v);
  return simd::shru<8 * I>(v) & simd::splat<simd::s32, 1>(255);
}
/// Four pairs Cb Y Cr Y, kScale pixels apart.
template <int kScale>
MOX_INLINE simd::s32<1> camera_pairs(const Mox8u* p) {
  if constexpr (kScale == 2) return simd::load_row<simd::s32, 1>(p);
  return simd::load4x4<simd::s32, 1>(p, 2 * kScale, simd::strips<1>(0));
}
/// Sums over the two pixels in the middle of kScale, which are one pair or the ends of two.
template <int kScale>
MOX_INLINE CameraPixels camera_sums(const Mox8u* p) {
  constexpr int kFirst = 2 * (kScale / 2 - 1) & ~3;  // of the left pixel's pair, in bytes
  const auto left = camera_pairs<kScale>(p + kFirst), right = kScale == 2 ? left : camera_pairs<kScale>(p + kFirst + 4);
  return {camera_byte < kScale == 2                ? 1
          : 3 > (left) + camera_byte < kScale == 2 ? 3
                                                   : 1 > (right),
          camera_byte<0>(left) + camera_byte<0>(right), camera_byte<2>(left) + camera_byte<2>(right)};
}
/// Four scaled pixels from p, the first of the rows that belong to them.
template <int kScale, bool kBilinear>
MOX_INLINE CameraPixels camera_scaled(const Mox8u* p, std::ptrdiff_t step) {
  if constexpr (kBilinear) {
    const Mox8u* const middle = p + (kScale / 2 - 1) * step;
    const CameraPixels upper = camera_sums<kScale>(middle), lower = camera_sums<kScale>(middle + step);
    const auto mean = [](auto a, auto b) { return simd::shr<2>(a + b + simd::splat<simd::s32, 1>(2)); };
    return {mean(upper.y, lower.y), mean(upper.cb, lower.cb), mean(upper.cr, lower.cr)};
  } else {
    const auto pairs = camera_pairs<kScale>(p);
    return {camera_byte<1>(pairs), camera_byte<0>(pairs), camera_byte<2>(pairs)};
  }
}

/// (a * kA + b * kB + more) >> 8; a and b fit words.
template <int kA, int kB>
MOX_INLINE simd::s32<1> camera_sum(simd::s32<1> a, simd::s32<1> b, simd::s32<1> more) {
  const auto factors = simd::splat<simd::s32, 1>(static_cast<int>(static_cast<Mox32u>(kB) << 16 | (kA & 0xFFFF)));
  return simd::shr<8>(madd(simd::as<simd::s16>(a | simd::shl<16>(b)), simd::as<simd::s16>(factors)) + more);
}

/// Red, green and blue of four pixels, not limited.
struct CameraRgb {
  simd::s32<1> red, green, blue;
};
MOX_INLINE CameraRgb camera_rgb(const CameraPixels& p) {
  const auto constant = [](int value) { return simd::splat<simd::s32, 1>(value); };
  constexpr int kY = 128 - 298 * 16;
  const auto ofCr = p.cr * constant(-208) + constant(kY + 308 * 128);
  return {camera_sum<298, 409>(p.y, p.cr, constant(kY - 409 * 128)), camera_sum<298, -100>(p.y, p.cb, ofCr),
          camera_sum<298, 516>(p.y, p.cb, constant(kY - 516 * 128))};
}

/// The upper kBits of eight levels, limited to 0..255.
template <int kBits>
MOX_INLINE simd::s16<1> camera_bits(simd::s32<1> first, simd::s32<1> second) {
  const auto levels = packs(first, second);
  return simd::shr<8 - kBits>(min(max(levels, simd::splat<simd::s16, 1>(0)), simd::splat<simd::s16, 1>(255)));
}

/// 8 words of a row to their places in the turned plane.
MOX_INLINE void camera_store(simd::s16<1> words, const TurnedPlane& dst, int x, int y) {
  alignas(16) static constexpr Mox8u kReverse[16] = {14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1};
  if (dst.right == 2) return store_row(words, dst.at(x, y));
  if (dst.right == -2) {
    return store_row(lookup(simd::as<simd::u8>(words), simd::table<simd::u8, 1>(kReverse)), dst.at(x + 7, y));
  }
  simd::store_rows<2, 8>(simd::as<simd::u8>(words), dst.at(x, y), dst.right);
}

template <int kScale, bool kBilinear, CameraFormat kFormat>
MoxStatus camera_resize(const PackedSource& src, const TurnedPlane& dst, MoxiSize size) {
  if (size.width < 8) return px::camera_resize<kScale, kBilinear, kFormat>(src, dst, size);
  for (int y = 0; y < size.height; ++y) {
    for (int at = 0; at < size.width; at += 8) {
      const int x = std::min(at, size.width - 8);
      const Mox8u* const from = src.row(kScale * y) + 2 * kScale * std::ptrdiff_t{x};
      const CameraRgb first = camera_rgb(camera_scaled<kScale, kBilinear>(from, src.step));
      const CameraRgb second = camera_rgb(camera_scaled<kScale, kBilinear>(from + 8 * kScale, src.step));
      const auto red = camera_bits<kFormat.red>(first.red, second.red);
      const auto green = camera_bits<kFormat.green>(first.green, second.green);
      const auto blue = camera_bits<kFormat.blue>(first.blue, second.blue);
      camera_store(simd::shl<kFormat.blue>(simd::shl<kFormat.green>(red) | green) | blue, dst, x, y);
    }
  }
  return moxStsOk;
}

/// [camera_index].
inline constexpr auto ownResizeCCRotate_8u = make_table<18>(
    []<std::size_t I>() -> CameraKernel { return &camera_resize<2 << I % 3, I / 3 % 2 != 0, kCameraFormats[I / 6]>; });

// Planes of 4:2:0.

/// 8 rows of 16 samples.
using CameraTile = std::array<simd::u8<1>, 8>;

/// The columns of a tile, two by two: bytes of column 2 i, then of column 2 i + 1.
MOX_INLINE CameraTile camera_columns(const CameraTile& rows) {
  // Rows 0, 4, 2, 6, ... are joined, so that three times the same step brings bytes of a column together.
  CameraTile from = rows, to;
  for (int pass = 0; pass < 3; ++pass) {
    for (std::size_t i = 0; i < 4; ++i) {
      to[2 * i] = lo8(from[i], from[i + 4]);
      to[2 * i + 1] = hi8(from[i], from[i + 4]);
    }
    from = to;
  }
  return from;
}

/// The left 8 columns of a tile to one place, the right ones to another.
MOX_INLINE void camera_store(CameraTile tile, const std::array<TurnedPlane, 2>& dst, std::array<int, 2> x, int y) {
  alignas(16) static constexpr Mox8u kReverse[16] = {7, 6, 5, 4, 3, 2, 1, 0, 15, 14, 13, 12, 11, 10, 9, 8};
  const bool quarter = dst[0].down == 1 || dst[0].down == -1;
  if (quarter) tile = camera_columns(tile);
  const bool reversed = (quarter ? dst[0].down : dst[0].right) < 0;
  for (int i = 0; i < 8; ++i) {
    auto line = tile[static_cast<std::size_t>(i)];
    if (reversed) line = lookup(line, simd::table<simd::u8, 1>(kReverse));
    const int back = reversed ? 7 : 0;
    if (quarter) {  // columns 2 i and 2 i + 1 of the tile lie in the same half
      const std::size_t half = i >= 4;
      simd::raw_store8(dst[half].at(x[half] + 2 * (i & 3), y + back), line.r);
      simd::raw_store8(dst[half].at(x[half] + 2 * (i & 3) + 1, y + back), hi64(line, line).r);
    } else {
      simd::raw_store8(dst[0].at(x[0] + back, y + i), line.r);
      simd::raw_store8(dst[1].at(x[1] + back, y + i), hi64(line, line).r);
    }
  }
}

/// 16 pixels: 16 samples of luma; Cb and Cr in turn.
struct CameraLine {
  simd::u8<1> luma, chroma;

  MOX_INLINE explicit CameraLine(const Mox8u* p) {
    const auto first = simd::load_row<simd::u16, 1>(p), second = simd::load_row<simd::u16, 1>(p + 16);
    const auto even = [](auto v) { return simd::as<simd::s16>(v & simd::splat<simd::u16, 1>(255)); };
    const auto odd = [](auto v) { return simd::as<simd::s16>(simd::shr<8>(v)); };
    luma = packus(odd(first), odd(second)), chroma = packus(even(first), even(second));
  }
};

/// The 16x16 pixels at (x, y), both even.
MOX_INLINE void camera_tile(const PackedSource& src, const std::array<TurnedPlane, 3>& dst, int x, int y) {
  alignas(16) static constexpr Mox8u kApart[16] = {0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15};
  CameraTile luma, chroma;
  for (std::size_t half : {0, 1}) {
    for (std::size_t i = 0; i < 8; i += 2) {
      const Mox8u* const p = src.row(y + static_cast<int>(8 * half + i)) + 2 * std::ptrdiff_t{x};
      const CameraLine upper(p), lower(p + src.step);
      luma[i] = upper.luma, luma[i + 1] = lower.luma;
      chroma[4 * half + i / 2] = lookup(avg(upper.chroma, lower.chroma), simd::table<simd::u8, 1>(kApart));
    }
    camera_store(luma, {dst[0], dst[0]}, {x, x + 8}, y + 8 * static_cast<int>(half));
  }
  camera_store(chroma, {dst[1], dst[2]}, {x / 2, x / 2}, y / 2);
}

/// The last tiles of a row and of a column begin where they have room.
inline MoxStatus ownCbYCr422ToYCbCr420_Rotate_8u(const PackedSource& src, const std::array<TurnedPlane, 3>& dst,
                                                 MoxiSize size) {
  if (std::min(size.width, size.height) < 16) return px::ownCbYCr422ToYCbCr420_Rotate_8u(src, dst, size);
  for (int y = 0; y < size.height; y += 16) {
    for (int x = 0; x < size.width; x += 16) {
      camera_tile(src, dst, std::min(x, size.width - 16), std::min(y, size.height - 16));
    }
  }
  return moxStsOk;
}

}  // namespace mox::vec
