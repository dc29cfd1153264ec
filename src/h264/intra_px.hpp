/// Portable intra predictors: 4x4 luma, 16x16 luma, chroma of any height.
///
/// All are in place: the neighbours are read from the plane around the block. Templates over the sample type; steps
/// count samples, which for 8-bit planes are bytes, and depth is the number of bits of a sample.
#pragma once

#include <algorithm>
#include <bit>

#include "h264/intra_directions_px.hpp"

namespace mox::px {

template <int N, class Pixel>
Mox32s sum_along(const Pixel* samples, std::ptrdiff_t stride) {
  Mox32s sum = 0;
  for (int i = 0; i < N; ++i) sum += samples[i * stride];
  return sum;
}

/// Mean of N samples above and N to the left, N a power of two; a null pointer takes an edge out.
template <int N, class Pixel>
Mox32s mean_of_edges(const Pixel* above, const Pixel* left, std::ptrdiff_t step, Mox32s depth) {
  constexpr int kLog = std::countr_zero(static_cast<unsigned>(N));
  if (above && left) return (sum_along<N>(above, 1) + sum_along<N>(left, step) + N) >> (kLog + 1);
  if (above) return (sum_along<N>(above, 1) + N / 2) >> kLog;
  if (left) return (sum_along<N>(left, step) + N / 2) >> kLog;
  return mid_sample(depth);
}

template <int N, class Pixel>
void predict_dc(Block<Pixel> block, bool top, bool left, Mox32s depth) {
  const Mox32s dc = mean_of_edges<N>(top ? &block(0, -1) : nullptr, left ? &block(-1, 0) : nullptr, block.step, depth);
  each_sample<N, N>(block, [&](int, int) { return dc; });
}

template <int W, int H, class Pixel>
void predict_vertical(Block<Pixel> block) {
  for (int y = 0; y < H; ++y) std::copy_n(&block(0, -1), W, &block(0, y));
}

template <int W, int H, class Pixel>
void predict_horizontal(Block<Pixel> block) {
  for (int y = 0; y < H; ++y) std::fill_n(&block(0, y), W, Pixel{block(-1, y)});
}

/// Slope of N neighbours around their middle, in 1/32 of a sample for each sample. `first` is the one beside the
/// block's corner, the corner itself lies one stride before it.
template <int N, class Pixel>
Mox32s slope(const Pixel* first, std::ptrdiff_t stride) {
  Mox32s sum = 0;
  for (int i = 1; i <= N / 2; ++i) {
    sum += i * (first[(N / 2 - 1 + i) * stride] - first[(N / 2 - 1 - i) * stride]);
  }
  return ((N == 8 ? 34 : 5) * sum + 32) >> 6;
}

/// A plane through the edges of a W x H block; each side is 8 or 16.
template <int W, int H, class Pixel>
void predict_plane(Block<Pixel> block, Mox32s depth) {
  const Mox32s b = slope<W>(&block(0, -1), 1), c = slope<H>(&block(-1, 0), block.step);
  const Mox32s a = 16 * (block(W - 1, -1) + block(-1, H - 1));
  each_sample<W, H>(block, [&](int x, int y) {
    return clip_depth((a + b * (x - (W / 2 - 1)) + c * (y - (H / 2 - 1)) + 16) >> 5, depth);
  });
}

/// 4x4 luma in any mode. Denied edges that the mode needs count as mid-range samples, and the status says so. A mode
/// above 8 predicts like DC.
template <class Pixel>
MoxStatus predict_luma_4x4_h264(Pixel* pSrcDst, Mox32s step, Mox32u mode, Mox32u available, Mox32s depth = 8) {
  const Block<Pixel> block{pSrcDst, step};
  if (mode == kDC || mode > kLastIntraMode) {
    predict_dc<4>(block, available & kTop, available & kLeft, depth);
    return moxStsOk;
  }
  const Mox32u used = kEdgesOfMode[mode];
  predict_direction(block, mode, load_edge<4>(block, used & available, mid_sample(depth)));
  // Nothing above and right is no reason for a warning: the row above is made longer instead.
  return used & ~available & kWholeCorner ? moxStsEdgeSubstituted : moxStsOk;
}

/// 16x16 luma, the caller having tested the edges that the mode needs.
template <class Pixel>
void predict_luma_16x16_vertical_h264_sse2(Pixel* pSrcDst, Mox32s step) {
  predict_vertical<16, 16>(Block<Pixel>{pSrcDst, step});
}
template <class Pixel>
void predict_luma_16x16_horizontal_h264_ssse3(Pixel* pSrcDst, Mox32s step) {
  predict_horizontal<16, 16>(Block<Pixel>{pSrcDst, step});
}
template <class Pixel>
void predict_luma_16x16_dc_h264_sse2(Pixel* pSrcDst, Mox32s step, Mox32s topUnavailable, Mox32s leftUnavailable,
                                     Mox32s depth = 8) {
  predict_dc<16>(Block<Pixel>{pSrcDst, step}, !topUnavailable, !leftUnavailable, depth);
}
template <class Pixel>
void predict_luma_16x16_plane_h264_sse2(Pixel* pSrcDst, Mox32s step, Mox32s depth = 8) {
  predict_plane<16, 16>(Block<Pixel>{pSrcDst, step}, depth);
}

/// Chroma, 8 wide and H high, the caller having tested the edges that the mode needs.
template <int H, class Pixel>
void predict_chroma_vertical_h264(Pixel* pSrcDst, Mox32s step) {
  predict_vertical<8, H>(Block<Pixel>{pSrcDst, step});
}
template <int H, class Pixel>
void predict_chroma_horizontal_h264(Pixel* pSrcDst, Mox32s step) {
  predict_horizontal<8, H>(Block<Pixel>{pSrcDst, step});
}
template <int H, class Pixel>
void predict_chroma_plane_h264(Pixel* pSrcDst, Mox32s step, Mox32s depth = 8) {
  predict_plane<8, H>(Block<Pixel>{pSrcDst, step}, depth);
}

/// A DC for each 4x4 block. The first block and those of the right column take both edges, but the top right one
/// prefers the row above, and the left column below the first block the samples beside it. The left edge may be there
/// for one half of the rows alone.
template <int H, class Pixel>
void predict_chroma_dc_h264(Pixel* pSrcDst, Mox32s step, bool top, bool leftOfUpperHalf, bool leftOfLowerHalf,
                            Mox32s depth = 8) {
  const Block<Pixel> plane{pSrcDst, step};
  Mox32s dc[H / 4][2];
  for (int y = 0; y < H; y += 4) {
    const bool left = y < H / 2 ? leftOfUpperHalf : leftOfLowerHalf;
    for (int x = 0; x < 8; x += 4) {
      const bool use_top = top && !(x == 0 && y > 0 && left);
      const bool use_left = left && !(x > 0 && y == 0 && top);
      dc[y / 4][x / 4] =
          mean_of_edges<4>(use_top ? &plane(x, -1) : nullptr, use_left ? &plane(-1, y) : nullptr, step, depth);
    }
  }
  each_sample<8, H>(plane, [&](int x, int y) { return dc[y / 4][x / 4]; });
}

}  // namespace mox::px
