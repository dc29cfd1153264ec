/// Vector kernels of the MPEG-4 deringing post filter: 16 luma samples of a row at a time, or 8 of each chroma plane.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

#include "frame/generation.hpp"
#include "mpeg4/filter_deringing_px.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// The columns of a luma macroblock: two blocks beside each other.
struct RingingLuma {
  RingingPlane plane;  ///< at the column of the macroblock
  alignas(16) static constexpr Mox8u kLeft[16] = {0, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14};
  alignas(16) static constexpr Mox8u kRight[16] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 15};

  MOX_INLINE simd::u8<1> load(int y, int dx) const { return {simd::raw16(plane.src + y * plane.srcStep + dx)}; }
  MOX_INLINE void store(simd::u8<1> v, int y) const { simd::raw_store16(plane.dst + y * plane.dstStep, v.r); }
};
/// The columns of both chroma blocks of a macroblock.
struct RingingChroma {
  RingingPlane u, v;
  alignas(16) static constexpr Mox8u kLeft[16] = {0, 0, 1, 2, 3, 4, 5, 6, 8, 8, 9, 10, 11, 12, 13, 14};
  alignas(16) static constexpr Mox8u kRight[16] = {1, 2, 3, 4, 5, 6, 7, 7, 9, 10, 11, 12, 13, 14, 15, 15};

  MOX_INLINE simd::u8<1> load(int y, int dx) const {
    const simd::u8<1> first{simd::raw8(u.src + y * u.srcStep + dx)}, second{simd::raw8(v.src + y * v.srcStep + dx)};
    return lo64(first, second);
  }
  MOX_INLINE void store(simd::u8<1> both, int y) const {
    simd::raw_store8(u.dst + y * u.dstStep, both.r);
    simd::raw_store8(v.dst + y * v.dstStep, hi64(both, both).r);
  }
};

/// Of both blocks of 8 columns, rows y to y + 7.
template <class Columns>
MOX_INLINE std::array<BlockLevels, 2> levels_of_two(const Columns& columns, int y) {
  using simd::as, simd::u16;
  auto least = columns.load(y, 0), greatest = least;
  for (int row = y + 1; row < y + 8; ++row) {
    const auto samples = columns.load(row, 0);
    least = min(least, samples), greatest = max(greatest, samples);
  }
  const auto depth = simd::splat<simd::u8, 1>(255) - greatest;
  const auto levels = [](auto low, auto high) -> BlockLevels {
    const Mox32s bottom = smallest(as<u16>(low)).value, top = 255 - smallest(as<u16>(high)).value;
    return {(top + bottom + 1) >> 1, top - bottom};
  };
  return {levels(wide_lo(least), wide_lo(depth)), levels(wide_hi(least), wide_hi(depth))};
}

/// Samples of a row, and of them with their neighbours the least, the greatest and the sums of weights 1, 2, 1.
struct RingingRow {
  simd::u8<1> samples, least, greatest;
  simd::s16<1> low, high;
};

/// Columns that are the first or the last of the picture have themselves as neighbours there.
template <class Columns>
struct RingingColumns {
  Columns columns;
  bool isFirst, isLast;

  MOX_INLINE RingingRow row(int y) const {
    using simd::shl, simd::u8;
    const auto middle = columns.load(y, 0);
    const auto left = isFirst ? lookup(middle, simd::table<u8, 1>(Columns::kLeft)) : columns.load(y, -1);
    const auto right = isLast ? lookup(middle, simd::table<u8, 1>(Columns::kRight)) : columns.load(y, 1);
    return {middle, min(middle, min(left, right)), max(middle, max(left, right)),
            wide_lo(left) + shl<1>(wide_lo(middle)) + wide_lo(right),
            wide_hi(left) + shl<1>(wide_hi(middle)) + wide_hi(right)};
  }
};

MOX_INLINE simd::u8<1> deringed(const RingingRow& above, const RingingRow& here, const RingingRow& below,
                                simd::u8<1> threshold, simd::u8<1> limit) {
  using simd::shl, simd::shr, simd::u8;
  const auto eight = simd::splat<simd::s16, 1>(8);
  const auto mean = packus(shr<4>(above.low + shl<1>(here.low) + below.low + eight),  // sums of 4088 at most
                           shr<4>(above.high + shl<1>(here.high) + below.high + eight));
  const auto smoothed = min(max(mean, subs(here.samples, limit)), adds(here.samples, limit));
  const auto least = min(here.least, min(above.least, below.least));
  const auto greatest = max(here.greatest, max(above.greatest, below.greatest));
  // Across the threshold: the greatest reaches it and the least does not.
  const auto across = andnot(equal(max(least, threshold), least), equal(max(greatest, threshold), greatest));
  return (here.samples & across) | andnot(across, smoothed);
}

/// Rows y to y + 7 of a picture of `height` rows.
template <class Columns>
MOX_INLINE void dering_rows(const RingingColumns<Columns>& from, int y, int height, Mox32s firstThreshold,
                            Mox32s secondThreshold, simd::u8<1> limit) {
  using simd::splat, simd::u8;
  const auto threshold = lo64(splat<u8, 1>(firstThreshold), splat<u8, 1>(secondThreshold));
  RingingRow above = from.row(std::max(y - 1, 0)), here = from.row(y);
  for (int row = y; row < y + 8; ++row) {
    const RingingRow below = from.row(std::min(row + 1, height - 1));
    from.columns.store(deringed(above, here, below, threshold, limit), row);
    above = here;
    here = below;
  }
}

MOX_INLINE RingingPlane at_column(const RingingPlane& plane, int x) {
  return {plane.src + x, plane.srcStep, plane.dst + x, plane.dstStep};
}

inline MoxStatus ownFilterDeringingThreshold_MPEG4(const RingingPicture& picture) {
  const auto& planes = picture.planes;
  const int height = 8 * picture.macroblocksDown;
  for (int y = 0; y < picture.macroblocksDown; ++y) {
    for (int x = 0; x < picture.macroblocksAcross; ++x) {
      const bool isFirst = x == 0, isLast = x == picture.macroblocksAcross - 1;
      const auto limit = simd::splat<simd::u8, 1>(picture.qp[y * picture.qpStep + x] >> 1);
      const RingingColumns<RingingLuma> luma{{at_column(planes[0], 16 * x)}, isFirst, isLast};
      const auto upper = levels_of_two(luma.columns, 16 * y), lower = levels_of_two(luma.columns, 16 * y + 8);
      const auto thresholds = luma_thresholds({upper[0], upper[1], lower[0], lower[1]});
      dering_rows(luma, 16 * y, 2 * height, thresholds[0], thresholds[1], limit);
      dering_rows(luma, 16 * y + 8, 2 * height, thresholds[2], thresholds[3], limit);
      const RingingColumns<RingingChroma> chroma{
          {at_column(planes[1], 8 * x), at_column(planes[2], 8 * x)}, isFirst, isLast};
      const auto levels = levels_of_two(chroma.columns, 8 * y);
      dering_rows(chroma, 8 * y, height, levels[0].threshold, levels[1].threshold, limit);
    }
  }
  return moxStsOk;
}

}  // namespace mox::vec
