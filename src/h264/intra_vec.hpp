/// Vector intra predictors: 4x4 luma, 16x16 luma, chroma of any height.
///
/// Rows and columns that are copied as they are stay with the portable kernels, which compilers make vectors of.
#pragma once

#include <algorithm>
#include <bit>

#include "frame/generation.hpp"
#include "h264/intra_directions_vec.hpp"
#include "h264/intra_px.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// The neighbours of a 4x4 block as they are. `available` are those that the mode uses; all but the ones above and
/// right are there.
template <class Pixel>
struct RawEdges {
  px::Block<Pixel> block;
  Mox32u available;

  MOX_INLINE IntraLine<Pixel> top() const {
    const bool right = available & kTopRight;
    const auto last = all_samples(block(right ? 7 : 3, -1));
    const IntraLine<Pixel> behind{right ? load_neighbours<4>(&block(4, -1)) : last};
    return ended<8>(joined<4>(IntraLine<Pixel>{load_neighbours<4>(&block(0, -1))}, behind), last);
  }
  MOX_INLINE IntraLine<Pixel> left() const {
    return ended<4>(IntraLine<Pixel>{load_column<4>(&block(-1, 0), block.step)}, all_samples(block(-1, 3)));
  }
  MOX_INLINE IntraLine<Pixel> around() const {
    const IntraLine<Pixel> above{load_neighbours<4>(&block(0, -1))};
    const IntraLine<Pixel> upwards{load_column<4>(&block(-1, 3), -block.step)};
    return joined<4>(upwards, preceded(all_samples(block(-1, -1)), above));
  }
};

/// DC, and whatever lacks an edge, is portable.
template <class Pixel>
MoxStatus predict_luma_4x4_h264(Pixel* pSrcDst, Mox32s step, Mox32u mode, Mox32u available, Mox32s depth = 8) {
  const px::Block<Pixel> block{pSrcDst, step};
  if (mode == kDC || mode > kLastIntraMode || kEdgesOfMode[mode] & ~available & kWholeCorner) {
    return px::predict_luma_4x4_h264(pSrcDst, step, mode, available, depth);
  }
  predict_from<4>(block, mode, RawEdges<Pixel>{block, available & kEdgesOfMode[mode]});
  return moxStsOk;
}

/// The sum of the first N samples, 8 or 16.
template <int N, class Pixel>
MOX_INLINE Mox32s sum_of(const IntraLine<Pixel>& v) {
  if constexpr (sizeof(Pixel) == 1) {
    return total_of_sad(sad(N == 16 ? v.r[0] : lo64(v.r[0], IntraBytes{}), IntraBytes{}));
  } else {
    simd::s32<1> sum{};
    for (int i = 0; i < N / 8; ++i) {
      const simd::u16<1> samples{v.r[i].r};
      sum = sum + wide_lo(samples) + wide_hi(samples);
    }
    return total(sum);
  }
}
/// The mean of as many edges of N samples as make up the sum.
template <int N>
MOX_INLINE Mox32s rounded_mean(Mox32s sum, int edges, Mox32s depth) {
  constexpr int kLog = std::countr_zero(unsigned{N});
  return edges == 0 ? mid_sample(depth) : (sum + (N * edges >> 1)) >> (kLog + edges - 1);
}

template <int W, int H, class Pixel>
MOX_INLINE void fill_block(px::Block<Pixel> block, IntraBytes v) {
  constexpr int kWidth = std::min(W, IntraLine<Pixel>::kEach);
  for (int y = 0; y < H; ++y) {
    for (int x = 0; x < W; x += kWidth) store_predicted<kWidth>(v, &block(x, y));
  }
}

template <class Pixel>
void predict_luma_16x16_dc_h264_sse2(Pixel* pSrcDst, Mox32s step, Mox32s topUnavailable, Mox32s leftUnavailable,
                                     Mox32s depth = 8) {
  const px::Block<Pixel> block{pSrcDst, step};
  Mox32s sum = 0;
  if (!topUnavailable) {
    const IntraLine<Pixel> first{load_neighbours<8>(&block(0, -1))}, last{load_neighbours<8>(&block(8, -1))};
    sum += sum_of<16>(joined<8>(first, last));
  }
  if (!leftUnavailable) sum += px::sum_along<16>(&block(-1, 0), block.step);
  const Mox32s dc = rounded_mean<16>(sum, !topUnavailable + !leftUnavailable, depth);
  fill_block<16, 16>(block, all_samples(static_cast<Pixel>(dc)));
}

/// 32 times the values of a plane, 8 of them in a register for samples of 8 bits, 4 for wider ones.
template <class Pixel>
struct PlaneValues;
template <>
struct PlaneValues<Mox8u> {
  using V = simd::s16<1>;  // within [-11472, 19648]
  alignas(16) static constexpr Mox16s kColumns[] = {0, 1, 2, 3, 4, 5, 6, 7};
  static MOX_INLINE V all(Mox32s value) { return simd::splat<simd::s16, 1>(value); }
  static MOX_INLINE IntraBytes samples(V a, V b, Mox32s) { return packus(simd::shr<5>(a), simd::shr<5>(b)); }
};
template <>
struct PlaneValues<Mox16u> {
  using V = simd::s32<1>;
  alignas(16) static constexpr Mox32s kColumns[] = {0, 1, 2, 3};
  static MOX_INLINE V all(Mox32s value) { return simd::splat<simd::s32, 1>(value); }
  static MOX_INLINE IntraBytes samples(V a, V b, Mox32s depth) {
    const auto limit = simd::splat<simd::u16, 1>(sample_max(depth));
    return {min(packus(simd::shr<5>(a), simd::shr<5>(b)), limit).r};
  }
};

/// A plane through the edges of a W x H block.
template <int W, int H, class Pixel>
MOX_INLINE void predict_plane_rows(px::Block<Pixel> block, Mox32s depth) {
  using Values = PlaneValues<Pixel>;
  constexpr int kEach = IntraLine<Pixel>::kEach / 2, kCount = W / kEach;
  const Mox32s b = px::slope<W>(&block(0, -1), 1), c = px::slope<H>(&block(-1, 0), block.step);
  const Mox32s first = 16 * (block(W - 1, -1) + block(-1, H - 1) + 1) - b * (W / 2 - 1) - c * (H / 2 - 1);
  const auto columns = typename Values::V{simd::raw16(Values::kColumns)} * Values::all(b), down = Values::all(c);
  typename Values::V v[kCount];
  for (int i = 0; i < kCount; ++i) v[i] = columns + Values::all(first + i * kEach * b);
  for (int y = 0; y < H; ++y) {
    if constexpr (kCount == 1) {
      const auto next = v[0] + down;
      const auto rows = Values::samples(v[0], next, depth);
      store_predicted<W>(rows, &block(0, y));
      store_predicted<W>(hi64(rows, rows), &block(0, ++y));
      v[0] = next + down;
    } else {
      for (int i = 0; i < kCount; i += 2) {
        store_predicted<2 * kEach>(Values::samples(v[i], v[i + 1], depth), &block(i * kEach, y));
        v[i] = v[i] + down, v[i + 1] = v[i + 1] + down;
      }
    }
  }
}
template <class Pixel>
void predict_luma_16x16_plane_h264_sse2(Pixel* pSrcDst, Mox32s step, Mox32s depth = 8) {
  predict_plane_rows<16, 16>(px::Block<Pixel>{pSrcDst, step}, depth);
}
template <int H, class Pixel>
void predict_chroma_plane_h264(Pixel* pSrcDst, Mox32s step, Mox32s depth = 8) {
  predict_plane_rows<8, H>(px::Block<Pixel>{pSrcDst, step}, depth);
}

/// Every DC is the mean of two sums of four neighbours, which may be the same.
template <int H, class Pixel>
void predict_chroma_dc_h264(Pixel* pSrcDst, Mox32s step, bool top, bool leftOfUpperHalf, bool leftOfLowerHalf,
                            Mox32s depth = 8) {
  const px::Block<Pixel> plane{pSrcDst, step};
  const Mox32s missing = 4 * mid_sample(depth);
  Mox32s above[2] = {missing, missing};
  if (top) above[0] = px::sum_along<4>(&plane(0, -1), 1), above[1] = px::sum_along<4>(&plane(4, -1), 1);
  for (int y = 0; y < H; y += 4) {
    const bool left = y < H / 2 ? leftOfUpperHalf : leftOfLowerHalf;
    const Mox32s beside = left ? px::sum_along<4>(&plane(-1, y), plane.step) : missing;
    const auto dc = [=](int x) {
      const bool use_top = top && !(x == 0 && y > 0 && left), use_left = left && !(x > 0 && y == 0 && top);
      return all_samples(static_cast<Pixel>(((use_top ? above[x] : beside) + (use_left ? beside : above[x]) + 4) >> 3));
    };
    fill_block<8, 4>(px::Block<Pixel>{&plane(0, y), step}, fours<Pixel>(dc(0), dc(1)));
  }
}

}  // namespace mox::vec
