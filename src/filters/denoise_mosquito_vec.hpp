/// Vector kernels of the mosquito-noise filter: two whole blocks beside each other. Blocks that the picture or the
/// region cuts by columns are left to the portable kernels.
#pragma once

#include <algorithm>

#include "filters/denoise_mosquito_px.hpp"
#include "frame/generation.hpp"
#include "frame/table.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// Columns x to x + 15 of the source; kBorder if the picture has less than two more of them on a side.
template <bool kBorder>
struct MosquitoColumns {
  const MosquitoPictures& pictures;
  int x;

  /// [dx + 2]: places of samples dx to the right, the first and the last standing for those outside.
  alignas(16) static constexpr auto kMoved = make_table<5>([]<std::size_t I>() {
    return make_table<16>([]<std::size_t N>() { return static_cast<Mox8u>(clip(int{N + I} - 2, 0, 15)); });
  });

  /// Row y, or the nearest one, moved by dx columns of -2..2.
  MOX_INLINE simd::u8<1> load(int y, int dx) const {
    const Mox8u* const row = pictures.src + clip(y, 0, pictures.size.height - 1) * pictures.srcStep;
    if constexpr (kBorder) {
      const int from = clip(x + dx, 0, pictures.size.width - 16), move = x + dx - from;
      return lookup(simd::load_row<simd::u8, 1>(row + from), simd::table<simd::u8, 1>(&kMoved[std::size_t(move + 2)]));
    }
    return simd::load_row<simd::u8, 1>(row + x + dx);
  }
};
/// Calls body(columns) with the columns from x on.
template <class Body>
MOX_INLINE void with_columns(const MosquitoPictures& pictures, int x, Body body) {
  if (x < 2 || x > pictures.size.width - 18) {
    body(MosquitoColumns<true>{pictures, x});
  } else {
    body(MosquitoColumns<false>{pictures, x});
  }
}

/// The least and the greatest of each sample and its neighbours in the row.
struct MosquitoRow {
  simd::u8<1> least, greatest;

  template <class Columns>
  MOX_INLINE MosquitoRow(const Columns& columns, int y) {
    const auto left = columns.load(y, -1), middle = columns.load(y, 0), right = columns.load(y, 1);
    least = min(left, min(middle, right)), greatest = max(left, max(middle, right));
  }
};
MOX_INLINE simd::u8<1> mosquito_spread(const MosquitoRow& above, const MosquitoRow& here, const MosquitoRow& below) {
  return max(here.greatest, max(above.greatest, below.greatest)) - min(here.least, min(above.least, below.least));
}
/// All ones where a is at least b.
MOX_INLINE simd::u8<1> mosquito_reaches(simd::u8<1> a, simd::u8<1> b) { return equal(max(a, b), a); }

/// Kinds of two blocks, rows top to bottom - 1.
template <class Columns>
void mosquito_kinds(const Columns& columns, int top, int bottom, Mox32s edge, Mox32s flat, Mox8u* kinds) {
  using simd::as, simd::u16, simd::u8;
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
template <class Columns>
MOX_INLINE simd::u8<1> mosquito_mean(const Columns& columns, int y, Mox32s flat) {
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

/// Rows top to bottom - 1; the left and the right block ring or not.
template <class Columns>
void mosquito_filter(const Columns& columns, int top, int bottom, bool left, bool right, Mox32s flat) {
  using simd::splat, simd::u8;
  const MosquitoPictures& pictures = columns.pictures;
  const auto ringing = lo64(splat<u8, 1>(left ? 255 : 0), splat<u8, 1>(right ? 255 : 0));
  MosquitoRow above(columns, top - 1), here(columns, top);
  for (int y = top; y < bottom; ++y) {
    const MosquitoRow below(columns, y + 1);
    const auto samples = columns.load(y, 0);
    const auto smooth = andnot(mosquito_reaches(mosquito_spread(above, here, below), splat<u8, 1>(flat)), ringing);
    const auto mean = top_bits(smooth) ? mosquito_mean(columns, y, flat) : samples;
    store_row((mean & smooth) | andnot(smooth, samples), pictures.dst + y * pictures.dstStep + columns.x);
    above = here, here = below;
  }
}

/// All blocks of an area: two(bx, by) for those of them, and of samples, whose columns are all in the area of samples,
/// else one(bx, by). Some may come twice.
template <class Two, class One>
MOX_INLINE void mosquito_by_two(const MosquitoArea& blocks, const MosquitoArea& samples, Two two, One one) {
  const int first = (samples.left + 7) >> 3, behind = samples.right >> 3;
  for (int by = blocks.top; by < blocks.bottom; ++by) {
    for (int bx = blocks.left; bx < blocks.right;) {
      if (bx >= first && bx < behind && behind - first >= 2) {
        bx = std::min(bx, behind - 2);
        two(bx, by);
        bx += 2;
      } else {
        one(bx, by), ++bx;
      }
    }
  }
}

inline MoxStatus ownFilterDenoiseMosquito_8u(const MosquitoPictures& pictures, const MosquitoArea& region,
                                             const MoxiDenoiseMosquitoState& state) {
  const MosquitoArea picture = area_of(pictures.size), blocks = region.blocks();
  const MosquitoArea around = blocks.wider().cut(area_of(state.grid));
  const Mox32s flat = state.flat;
  mosquito_by_two(
      around, around.samples().cut(picture),
      [&](int bx, int by) {
        Mox8u* const kinds = state.kinds + by * state.grid.width + bx;
        with_columns(pictures, 8 * bx, [&](const auto& columns) {
          mosquito_kinds(columns, 8 * by, std::min(8 * by + 8, picture.bottom), state.edge, flat, kinds);
        });
      },
      [&](int bx, int by) {
        const MosquitoArea block = mosquito_block(bx, by).cut(picture);
        state.kinds[by * state.grid.width + bx] = px::mosquito_kind(pictures, block, state.edge, flat);
      });
  mosquito_by_two(
      blocks, region,
      [&](int bx, int by) {
        const MosquitoArea rows = mosquito_block(bx, by).cut(region);
        const bool left = is_ringing(state, bx, by), right = is_ringing(state, bx + 1, by);
        with_columns(pictures, 8 * bx,
                     [&](const auto& columns) { mosquito_filter(columns, rows.top, rows.bottom, left, right, flat); });
      },
      [&](int bx, int by) {
        px::mosquito_filter(pictures, mosquito_block(bx, by).cut(region), is_ringing(state, bx, by), flat);
      });
  return moxStsOk;
}

}  // namespace mox::vec
