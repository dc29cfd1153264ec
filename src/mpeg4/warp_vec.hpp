/// Vector kernels of MPEG-4 warping: 8 samples of a row at a time. Their four neighbours come by single loads, all else
/// is done side by side.
#pragma once

#include <array>
#include <cstddef>
#include <cstdlib>

#include "frame/generation.hpp"
#include "mpeg4/warp_px.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// Positions of 8 samples in one direction, in 1/16 of a sample.
struct WarpPositions {
  simd::s32<1> first4, last4;
};

/// As the map gives them, one by one or, if it is linear, side by side; sums and products wrap in both.
template <class Map>
MOX_INLINE std::array<WarpPositions, 2> warp_positions(const Map& map, Mox32s column, Mox32s row) {
  alignas(16) Mox32s x[8], y[8];
  for (int i = 0; i < 8; ++i) {
    const MoxiPoint position = map(column + i, row);
    x[i] = position.x, y[i] = position.y;
  }
  const auto load = [](const Mox32s* p) -> WarpPositions {
    return {simd::load_row<simd::s32, 1>(p), simd::load_row<simd::s32, 1>(p + 4)};
  };
  return {load(x), load(y)};
}
MOX_INLINE std::array<WarpPositions, 2> warp_positions(const LinearMap& map, Mox32s column, Mox32s row) {
  using simd::s32, simd::splat;
  alignas(16) static constexpr Mox32s kColumns[8] = {0, 1, 2, 3, 4, 5, 6, 7};
  const auto along = [&](const LinearMap::Axis& axis) -> WarpPositions {
    const auto start = splat<s32, 1>(add32(axis.start, add32(mul32(axis.right, column), mul32(axis.down, row))));
    const auto right = splat<s32, 1>(axis.right);
    const auto four = [&](const Mox32s* columns) {
      const auto moved = start + right * simd::load_row<s32, 1>(columns);
      return shr(moved, map.shift) & splat<s32, 1>(map.mask);
    };
    return {four(kColumns), four(kColumns + 4)};
  };
  return {along(map.x), along(map.y)};
}

/// The first of the two samples about 8 positions, and the weight of the second, 0 to 16. The first is never the last
/// of the sprite: outside, one of the two has all the weight.
struct WarpNeighbours {
  simd::s32<1> first4, last4;
  simd::s16<1> weights;

  MOX_INLINE WarpNeighbours(const WarpPositions& positions, Mox32s size) {
    using simd::s32, simd::shl, simd::shr, simd::splat;
    const auto end = splat<s32, 1>(16 * (size - 1)), last = splat<s32, 1>(size - 2);
    const auto a = min(max(positions.first4, simd::zero<s32, 1>()), end);
    const auto b = min(max(positions.last4, simd::zero<s32, 1>()), end);
    first4 = min(shr<4>(a), last), last4 = min(shr<4>(b), last);
    weights = packs(a - shl<4>(first4), b - shl<4>(last4));
  }
};

/// True if sizes are such that the above holds and offsets in the plane fit 32 bits.
inline bool offsets_fit(const WarpedPlane& plane, const MoxiRect& sprite) {
  constexpr long long kMost = 1 << 26;
  if (sprite.width < 2 || sprite.height < 2 || sprite.width > kMost || sprite.height > kMost) return false;
  return std::llabs(plane.srcStep) * sprite.height < (1ll << 31) - kMost;
}

/// 8 samples of a plane.
MOX_INLINE void warp_eight(const WarpedPlane& plane, const WarpNeighbours& x, const WarpNeighbours& y,
                           simd::u16<1> roundConst, Mox8u* dst) {
  using simd::as, simd::s16, simd::s32, simd::shl, simd::shr, simd::splat, simd::u16, simd::u8;
  alignas(16) Mox32s offsets[8];
  const auto step = splat<s32, 1>(plane.srcStep);
  store_row(y.first4 * step + x.first4, offsets);
  store_row(y.last4 * step + x.last4, offsets + 4);
  const auto sixteen = splat<s16, 1>(16);
  const auto pairWeights = as<u8>((sixteen - x.weights) | shl<8>(x.weights));
  const auto top = maddubs(simd::load_pairs(plane.src, offsets), pairWeights);  // 0..4080, bottom too
  const auto bottom = maddubs(simd::load_pairs(plane.src + plane.srcStep, offsets), pairWeights);
  const auto sum = as<u16>(top * (sixteen - y.weights)) + as<u16>(bottom * y.weights) + roundConst;  // 0..65408
  const auto samples = as<s16>(shr<8>(sum));
  simd::raw_store8(dst, packus(samples, samples).r);
}

template <std::size_t kPlanes, class Map>
MoxStatus warp(const std::array<WarpedPlane, kPlanes>& planes, const MoxiRect& sprite, const MoxiRect& block,
               Mox32s roundConst, const Map& map) {
  for (const WarpedPlane& plane : planes) {
    if (!offsets_fit(plane, sprite)) return px::warp(planes, sprite, block, roundConst, map);
  }
  const auto rounding = simd::splat<simd::u16, 1>(roundConst);
  const Mox32s eights = block.width > 0 ? block.width & ~7 : 0;
  for (Mox32s row = 0; row < block.height; ++row) {
    for (Mox32s column = 0; column < eights; column += 8) {
      const auto positions = warp_positions(map, column, row);
      const WarpNeighbours x(positions[0], sprite.width), y(positions[1], sprite.height);
      for (const WarpedPlane& plane : planes) {
        warp_eight(plane, x, y, rounding, plane.dst + static_cast<std::ptrdiff_t>(row) * plane.dstStep + column);
      }
    }
    for (Mox32s column = eights; column < block.width; ++column)
      warp_sample(planes, sprite, roundConst, map, column, row);
  }
  return moxStsOk;
}

}  // namespace mox::vec
