/// State record and portable kernels of MPEG-4 warping: maps of a block's samples into the sprite, interpolation,
/// vectors, brightness.
#pragma once

#include <algorithm>
#include <array>

#include "frame/access.hpp"
#include "frame/arithmetic.hpp"
#include "moxvc/mpeg4_warp.h"

/// What a warp keeps. Positions are in 1/16 of a sample unless they say otherwise; all integers wrap.
struct MoxiWarpSpec {
  struct Numerator {
    double right, down, constant;
  };
  /// Four points: numerator / divisor is a position in units of the accuracy.
  Numerator x, y, divisor;
  MoxiRect sprite, chromaSprite;
  MoxiPoint vop;
  Mox32s points, accuracy, quarterSample;
  Mox32s rounding;    ///< 1: half-sample means are rounded down
  Mox32s roundConst;  ///< of the general interpolation
  Mox32s leastVector, mostVector;
  MoxiPoint origin, chromaOrigin;  ///< where the VOP's first sample lies
  MoxiPoint right, down;           ///< two and three points: a step of one sample, times 2^logScale
  Mox32s logScale;
  Mox32u tag;
};

namespace mox::px {

/// The low 32 bits of value << n and floor(value / 2^n): counts go up to 34.
constexpr Mox32s shl_any(Mox32s value, Mox32s n) {
  return static_cast<Mox32s>(static_cast<unsigned long long>(static_cast<long long>(value)) << n);
}
constexpr Mox32s shr_any(Mox32s value, Mox32s n) { return value >> std::min(n, 31); }

/// Half of 2^n; 0 for n of 0, where nothing is left to round.
constexpr Mox32s half_of_power(Mox32s n) { return static_cast<Mox32s>((1ull << n) >> 1); }

/// Bits of a position that the accuracy leaves out.
constexpr Mox32s spare_bits(const MoxiWarpSpec& spec) { return 3 - spec.accuracy; }

// ---- Maps: from the place of a sample in its block to its position in the sprite. ----

/// Position in a direction: (start + right * column + down * row) >> shift, cut to the accuracy.
struct LinearMap {
  struct Axis {
    Mox32s start, right, down;
  };
  Axis x, y;
  Mox32s shift, mask;

  MoxiPoint operator()(Mox32s column, Mox32s row) const { return {along(x, column, row), along(y, column, row)}; }

 private:
  Mox32s along(const Axis& axis, Mox32s column, Mox32s row) const {
    const Mox32s moved = add32(axis.start, add32(mul32(axis.right, column), mul32(axis.down, row)));
    return shr_any(moved, shift) & mask;
  }
};

/// No point, or one: `offset` is the position of the block's first sample.
constexpr LinearMap translation(MoxiPoint offset) { return {{offset.x, 16, 0}, {offset.y, 0, 16}, 0, -1}; }

/// The position of sample `at` in a sprite that begins at `sprite`, where the VOP's first sample goes to `origin`.
constexpr Mox32s moved_along(Mox32s at, Mox32s sprite, Mox32s vop, Mox32s origin) {
  return add32(mul32(16, sub32(sub32(at, sprite), vop)), origin);
}

template <bool kChroma>
MoxiPoint translation_offset(const MoxiWarpSpec& spec, const MoxiRect& block) {
  const MoxiRect& sprite = kChroma ? spec.chromaSprite : spec.sprite;
  if (spec.points == 0) {
    return {moved_along(block.x, sprite.x, 0, 0), moved_along(block.y, sprite.y, 0, 0)};
  }
  const MoxiPoint vop = kChroma ? MoxiPoint{spec.vop.x / 2, spec.vop.y / 2} : spec.vop;
  const MoxiPoint origin = kChroma ? spec.chromaOrigin : spec.origin;
  return {moved_along(block.x, sprite.x, vop.x, origin.x), moved_along(block.y, sprite.y, vop.y, origin.y)};
}

/// right * dx + down * dy of two or three points.
constexpr Mox32s linear_part(Mox32s right, Mox32s dx, Mox32s down, Mox32s dy) {
  return add32(mul32(right, dx), mul32(down, dy));
}

inline LinearMap luma_map(const MoxiWarpSpec& spec, const MoxiRect& block) {
  const Mox32s shift = spec.logScale, spare = spare_bits(spec);
  const Mox32s dx = sub32(block.x, spec.vop.x), dy = sub32(block.y, spec.vop.y);
  const auto axis = [&](Mox32s right, Mox32s down, Mox32s origin, Mox32s sprite) {
    const Mox32s start = add32(shl_any(sub32(origin, mul32(16, sprite)), shift), linear_part(right, dx, down, dy));
    return LinearMap::Axis{add32(start, half_of_power(shift + spare)), right, down};
  };
  return {axis(spec.right.x, spec.down.x, spec.origin.x, spec.sprite.x),
          axis(spec.right.y, spec.down.y, spec.origin.y, spec.sprite.y), shift, shl32(-1, spare)};
}

/// Twice the distance of a chroma sample from the VOP's first luma sample, in luma samples: it lies between two.
constexpr Mox32s doubled_distance(Mox32s at, Mox32s vop) { return add32(sub32(mul32(4, at), mul32(2, vop)), 1); }

/// As in luma with two bits more: distances are doubled, and positions halved.
inline LinearMap chroma_map(const MoxiWarpSpec& spec, const MoxiRect& block) {
  const Mox32s shift = spec.logScale + 2, spare = spare_bits(spec);
  const Mox32s dx = doubled_distance(block.x, spec.vop.x), dy = doubled_distance(block.y, spec.vop.y);
  const auto axis = [&](Mox32s right, Mox32s down, Mox32s origin, Mox32s sprite) {
    const Mox32s first = sub32(shl_any(sub32(origin, 8), spec.logScale + 1), shl_any(mul32(16, sprite), shift));
    const Mox32s start = add32(first, linear_part(right, dx, down, dy));
    return LinearMap::Axis{add32(start, half_of_power(shift + spare)), mul32(4, right), mul32(4, down)};
  };
  return {axis(spec.right.x, spec.down.x, spec.origin.x, spec.chromaSprite.x),
          axis(spec.right.y, spec.down.y, spec.origin.y, spec.chromaSprite.y), shift, shl32(-1, spare)};
}

/// To the nearest integer; -2^31 for what is no number or fits no 32 bits.
inline Mox32s nearest_unit(double value) {
  const double moved = value < 0 ? value - 0.5000000001 : value + 0.5000000001;
  return moved > -2147483649.0 && moved < 2147483648.0 ? static_cast<Mox32s>(moved) : shl32(1, 31);
}

/// Four points. Every operation is rounded to double precision in the order written.
template <bool kChroma>
struct ProjectiveMap {
  const MoxiWarpSpec& spec;
  const MoxiRect& block;

  MoxiPoint operator()(Mox32s column, Mox32s row) const {
    const Mox32s x = add32(block.x, column), y = add32(block.y, row);
    const MoxiRect& sprite = kChroma ? spec.chromaSprite : spec.sprite;
    const double dx = kChroma ? doubled_distance(x, spec.vop.x) : sub32(x, spec.vop.x);
    const double dy = kChroma ? doubled_distance(y, spec.vop.y) : sub32(y, spec.vop.y);
    const double divisor = spec.divisor.right * dx + spec.divisor.down * dy + (kChroma ? 2 : 1) * spec.divisor.constant;
    const double inverse = 1.0 / (kChroma ? 4.0 * divisor : divisor);
    const auto along = [&](const MoxiWarpSpec::Numerator& n, Mox32s spriteStart) {
      // Half a luma sample, 2^accuracy units, lies between the first samples of luma and chroma.
      const double value = kChroma
                               ? 2 * n.right * dx + 2 * n.down * dy + 4 * n.constant - (2 << spec.accuracy) * divisor
                               : n.right * dx + n.down * dy + n.constant;
      return sub32(shl32(nearest_unit(value * inverse), spare_bits(spec)), mul32(16, spriteStart));
    };
    return {along(spec.x, sprite.x), along(spec.y, sprite.y)};
  }
};

// ---- Interpolation. ----

/// A plane of the sprite, and the block made of it.
struct WarpedPlane {
  const Mox8u* src;
  Mox32s srcStep;
  Mox8u* dst;
  Mox32s dstStep;
};

/// The two samples about a position in one direction, inside 0..size - 1, and the weight of the second in 1/16.
struct Neighbours {
  std::ptrdiff_t first, second;
  Mox32s weight;
  Neighbours(Mox32s position, Mox32s size)
      : first(clip(position >> 4, 0, size - 1)),
        second(clip((position >> 4) + 1, 0, size - 1)),
        weight(position & 15) {}
};

inline Mox8u interpolate(const Mox8u* src, std::ptrdiff_t step, const Neighbours& x, const Neighbours& y,
                         Mox32s roundConst) {
  const Mox8u *const above = src + y.first * step, *const below = src + y.second * step;
  const Mox32s top = 16 * above[x.first] + (above[x.second] - above[x.first]) * x.weight;
  const Mox32s bottom = 16 * below[x.first] + (below[x.second] - below[x.first]) * x.weight;
  return static_cast<Mox8u>((16 * top + roundConst + y.weight * (bottom - top)) >> 8);
}

/// A sample of planes that share their positions.
template <std::size_t kPlanes, class Map>
void warp_sample(const std::array<WarpedPlane, kPlanes>& planes, const MoxiRect& sprite, Mox32s roundConst,
                 const Map& map, Mox32s column, Mox32s row) {
  const MoxiPoint position = map(column, row);
  const Neighbours x(position.x, sprite.width), y(position.y, sprite.height);
  for (const WarpedPlane& plane : planes) {
    plane.dst[static_cast<std::ptrdiff_t>(row) * plane.dstStep + column] =
        interpolate(plane.src, plane.srcStep, x, y, roundConst);
  }
}

template <std::size_t kPlanes, class Map>
MoxStatus warp(const std::array<WarpedPlane, kPlanes>& planes, const MoxiRect& sprite, const MoxiRect& block,
               Mox32s roundConst, const Map& map) {
  for (Mox32s row = 0; row < block.height; ++row) {
    for (Mox32s column = 0; column < block.width; ++column) warp_sample(planes, sprite, roundConst, map, column, row);
  }
  return moxStsOk;
}

/// True if a block at a position lies inside 0..size - 1 with all that a half-sample copy reads.
constexpr bool copy_is_inside(Mox32s position, Mox32s block, Mox32s size) {
  const long long first = position >> 4, last = first + block - 1 + (position % 16 != 0);
  return first >= 0 && last < size;
}

// ---- Vectors and brightness. ----

/// A part of the mean motion vector of the 256 samples at (xOffset, yOffset); `offset` is that of this direction.
inline Mox32s mean_vector(const MoxiWarpSpec& spec, Mox32s right, Mox32s down, Mox32s origin, Mox32s xOffset,
                          Mox32s yOffset, Mox32s offset) {
  const Mox32s spare = spare_bits(spec), shift = spec.logScale + spare;
  Mox32s sum = sub32(mul32(sub32(origin >> spare, shl32(offset, spec.accuracy + 1)), 256), 1920 << (spec.accuracy + 1));
  for (Mox32s i = 0; i < 256; ++i) {
    const Mox32s moved = linear_part(right, add32(xOffset, i % 16), down, add32(yOffset, i / 16));
    sum = add32(sum, shr_any(add32(moved, half_of_power(shift)), shift));
  }
  const Mox32s bits = spec.accuracy + 8 - spec.quarterSample;
  return add32(sub32(sum, sum < 0), 1 << (bits - 1)) >> bits;
}

inline void change_brightness(Mox8u* samples, std::ptrdiff_t step, Mox32s width, Mox32s height, Mox32s change) {
  const Mox32s factor = (change * 1024 + (change < 0 ? -50 : 50)) / 100 + 1024;
  for (Mox32s y = 0; y < height; ++y, samples += step) {
    for (Mox32s x = 0; x < width; ++x) samples[x] = clip8((samples[x] * factor + 520) >> 10);
  }
}

}  // namespace mox::px
