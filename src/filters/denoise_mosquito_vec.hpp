/// Vector kernels of the mosquito-noise filter: two blocks beside each other, where the picture goes on for two columns
/// on both sides; other blocks by the portable kernels.
#pragma once

#include <algorithm>

#include "filters/denoise_mosquito_px.hpp"
#include "frame/generation.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// Columns x to x + 15 of the source.
struct MosquitoColumns {
  const MosquitoPictures& pictures;
  int x;

  /// Row y, or the nearest one, moved by dx columns.
  MOX_INLINE simd::u8<1> load(int y, int dx) const {
    return {simd::raw16(pictures.src + clip(y, 0, pictures.size.height - 1) * pictures.srcStep + x + dx)};
  }
};

/// The least and the greatest of each sample and its neighbours in the row.
struct MosquitoRow {
  simd::u8<1> least, greatest;

  MOX_INLINE MosquitoRow(const MosquitoColumns& columns, int y) {
    const auto left = columns.load(y, -1), middle = columns.load(y, 0), right = columns.load(y, 1);
    least = min(left, min(middle, right)), greatest = max(left, max(middle, right));
  }
};
MOX_INLINE simd::u8<1> mosquito_spread(const MosquitoRow& above, const MosquitoRow& here, const MosquitoRow& below) {
  return max(here.greatest, max(above.greatest, below.greatest)) - min(here.least, min(above.least, below.least));
}
/// All ones where a is at least b.
MOX_INLINE simd::u8<1> mosquito_reaches(simd::u8<1> a, simd::u8<1> b) { return equal(max(a, b), a); }

/// Kinds of the two blocks from column x on, rows top to bottom - 1.
inline void mosquito_kinds(const MosquitoPictures& pictures, int x, int top, int bottom, Mox32s edge, Mox32s flat,
                           Mox8u* kinds) {
  using simd::as, simd::u16, simd::u8;
  const MosquitoColumns columns{pictures, x};
  auto least = simd::splat<u8, 1>(255), greatest = simd::zero<u8, 1>(), active = greatest;
  MosquitoRow above(columns, top - 1), here(columns, top);
  for (int y = top; y < bottom; ++y) {
    const MosquitoRow below(columns, y + 1);
    const auto samples = columns.load(y, 0);
    least = min(least, samples), greatest = max(greatest, samples);
    active = active - mosquito_reaches(mosquito_spread(above, here, below), simd::splat<u8, 1>(flat));
    above = here, here = below;
  }
  const auto depth = simd::splat<u8, 1>(255) - greatest;
  const auto kind = [=](auto low, auto high, Mox32s count) {
    const bool isEdge = 255 - smallest(as<u16>(high)).value - smallest(as<u16>(low)).value >= edge;
    const bool isTexture = 2 * count > 8 * (bottom - top);
    return static_cast<Mox8u>((isEdge ? kMosquitoEdge : 0) | (isTexture ? kMosquitoTexture : 0));
  };
  const auto counts = sad(active, simd::zero<u8, 1>());
  kinds[0] = kind(wide_lo(least), wide_lo(depth), simd::element<0>(counts));
  kinds[1] = kind(wide_hi(least), wide_hi(depth), simd::element<2>(counts));
}

/// As px::mosquito_mean; sums of 16352 at most.
MOX_INLINE simd::u8<1> mosquito_mean(const MosquitoColumns& columns, int y, Mox32s flat) {
  using simd::shr, simd::splat;
  const auto middle = columns.load(y, 0), most = splat<simd::u8, 1>(flat - 1);
  auto low = splat<simd::s16, 1>(32), high = low;
  const auto add = [&](simd::u8<1> a, simd::u8<1> b, int weight) {
    low = low + maddubs(lo8(a, b), splat<simd::u8, 1>(weight));
    high = high + maddubs(hi8(a, b), splat<simd::u8, 1>(weight));
  };
  const auto near = [&](int dx, int dy) {
    const auto sample = columns.load(y + dy, dx), distance = subs(sample, middle) | subs(middle, sample);
    return middle + ((sample - middle) & mosquito_reaches(most, distance));
  };
  for (int dy = -2; dy <= 2; ++dy) {
    const int weight = dy * dy == 4 ? 1 : 2;
    add(near(-2, dy), near(2, dy), weight);
    add(near(-1, dy), near(1, dy), 2 * weight);
    add(near(0, dy), simd::zero<simd::u8, 1>(), 2 * weight);
  }
  return packus(shr<6>(low), shr<6>(high));
}

/// Columns x to x + 15 of rows top to bottom - 1; the left and the right block ring or not.
inline void mosquito_filter(const MosquitoPictures& pictures, int x, int top, int bottom, bool left, bool right,
                            Mox32s flat) {
  using simd::splat, simd::u8;
  const MosquitoColumns columns{pictures, x};
  const auto ringing = lo64(splat<u8, 1>(left ? 255 : 0), splat<u8, 1>(right ? 255 : 0));
  MosquitoRow above(columns, top - 1), here(columns, top);
  for (int y = top; y < bottom; ++y) {
    const MosquitoRow below(columns, y + 1);
    const auto samples = columns.load(y, 0);
    const auto smooth = andnot(mosquito_reaches(mosquito_spread(above, here, below), splat<u8, 1>(flat)), ringing);
    const auto mean = top_bits(smooth) ? mosquito_mean(columns, y, flat) : samples;
    store_row((mean & smooth) | andnot(smooth, samples), pictures.dst + y * pictures.dstStep + x);
    above = here, here = below;
  }
}

/// All blocks of an area: two(bx, by) where both lie whole in `columns` and the picture, else one(bx, by).
template <class Two, class One>
MOX_INLINE void mosquito_by_two(const MosquitoArea& blocks, const MosquitoArea& columns, int width, Two two, One one) {
  const int first = std::max(columns.left, 2), last = std::min(columns.right - 16, width - 18);
  for (int by = blocks.top; by < blocks.bottom; ++by) {
    for (int bx = blocks.left; bx < blocks.right;) {
      if (8 * bx >= first && 8 * bx <= last && bx + 1 < blocks.right) {
        two(bx, by), bx += 2;
      } else {
        one(bx, by), ++bx;
      }
    }
  }
}

inline MoxStatus ownFilterDenoiseMosquito_8u(const MosquitoPictures& pictures, const MosquitoArea& region,
                                             const MoxiDenoiseMosquitoState& state) {
  const MosquitoArea picture = area_of(pictures.size), blocks = region.blocks();
  const Mox32s flat = state.flat;
  mosquito_by_two(
      blocks.wider().cut(area_of(state.grid)), picture, picture.right,
      [&](int bx, int by) {
        Mox8u* const kinds = state.kinds + by * state.grid.width + bx;
        mosquito_kinds(pictures, 8 * bx, 8 * by, std::min(8 * by + 8, picture.bottom), state.edge, flat, kinds);
      },
      [&](int bx, int by) {
        const MosquitoArea block = mosquito_block(bx, by).cut(picture);
        state.kinds[by * state.grid.width + bx] = px::mosquito_kind(pictures, block, state.edge, flat);
      });
  mosquito_by_two(
      blocks, region, picture.right,
      [&](int bx, int by) {
        const MosquitoArea rows = mosquito_block(bx, by).cut(region);
        mosquito_filter(pictures, 8 * bx, rows.top, rows.bottom, is_ringing(state, bx, by),
                        is_ringing(state, bx + 1, by), flat);
      },
      [&](int bx, int by) {
        px::mosquito_filter(pictures, mosquito_block(bx, by).cut(region), is_ringing(state, bx, by), flat);
      });
  return moxStsOk;
}

}  // namespace mox::vec
