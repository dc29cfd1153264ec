/// Vector kernels of H.264 chroma interpolation.
///
/// A sample and its right neighbour, or its lower one where only the vertical axis has a fraction, stand side by side
/// as a pair. One instruction weights the pairs of a row and adds up each of them; the full form adds the row below.
/// One body over lanes of bytes or of words serves all sizes and both layouts.
#pragma once

#include <cstddef>

#include "frame/generation.hpp"
#include "frame/table.hpp"
#include "h264/interpolation_chroma_px.hpp"
#include "h264/row_blocks_vec.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// Pairs of neighbours, from the lower and the upper half of each block.
template <class Vector>
struct ChromaPairs {
  Vector low, high;
};

/// kBytes of a row as bytes, of one plane or of two interleaved ones. Sums are 16320 at most.
template <int kBytes, int kChannels, int kRows>
struct ChromaBytes {
  using Sample = Mox8u;
  static constexpr int B = kBytes == 16 ? simd::kBlocks : 1, kStrips = kRows * B, kRight = kChannels;
  static constexpr bool kHalf = kBytes * kRows <= 8;  ///< the upper halves of blocks are empty
  using Vector = simd::u8<B>;

  MOX_INLINE static Vector load(const Mox8u* p, std::ptrdiff_t gap) {
    return load_row_blocks<simd::u8, B, kBytes, kRows>(p, gap);
  }
  MOX_INLINE static ChromaPairs<Vector> pairs(Vector a, Vector b) { return {lo8(a, b), hi8(a, b)}; }
  /// 8 - d and d times the factor, in each pair.
  MOX_INLINE static Vector weights(int d, int factor) {
    return simd::as<simd::u8>(simd::splat<simd::u16, B>(((8 - d) | d << 8) * factor));
  }
  MOX_INLINE static simd::s16<B> sum(Vector pairs, Vector weights) { return maddubs(pairs, weights); }
  /// (sum + half) >> kShift
  template <int kShift>
  MOX_INLINE static simd::s16<B> rounded(simd::s16<B> sum) {
    return mulhrs(sum, simd::splat<simd::s16, B>(1 << (15 - kShift)));
  }
  MOX_INLINE static Vector pack(simd::s16<B> low, simd::s16<B> high) { return packus(low, high); }

  MOX_INLINE static void store(Vector v, const MoxiInterpKernelArgs<Mox8u>& a, std::ptrdiff_t at, std::ptrdiff_t gap) {
    if constexpr (kChannels == 1) {
      store_row_blocks<kBytes, kRows>(v, a.pDst + at, gap);
    } else {
      alignas(16) static constexpr Mox8u kApart[16] = {0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15};
      const Vector both = lookup(v, simd::table<simd::u8, B>(kApart));
      store_row_blocks<kBytes / 2, kRows>(both, a.pDst + at, gap);
      store_row_blocks<kBytes / 2, kRows>(hi64(both, both), a.pDst2 + at, gap);
    }
  }
};

/// Columns as words, less 32768: those that are weighted pair by pair have a sign. Sums are of 23 bits.
template <int kColumns, int kRows>
struct ChromaWords {
  using Sample = Mox16u;
  static constexpr int B = kColumns == 8 ? simd::kBlocks : 1, kStrips = kRows * B, kRight = 1;
  static constexpr bool kHalf = kColumns * kRows <= 4;
  using Vector = simd::s16<B>;

  MOX_INLINE static Vector moved(Vector v) { return v ^ simd::splat<simd::s16, B>(-32768); }
  MOX_INLINE static Vector load(const Mox16u* p, std::ptrdiff_t gap) {
    return moved(load_row_blocks<simd::s16, B, 2 * kColumns, kRows>(p, gap));
  }
  MOX_INLINE static ChromaPairs<Vector> pairs(Vector a, Vector b) { return {lo16(a, b), hi16(a, b)}; }
  MOX_INLINE static Vector weights(int d, int factor) {
    return simd::as<simd::s16>(simd::splat<simd::s32, B>(((8 - d) | d << 16) * factor));
  }
  MOX_INLINE static simd::s32<B> sum(Vector pairs, Vector weights) { return madd(pairs, weights); }
  template <int kShift>
  MOX_INLINE static simd::s32<B> rounded(simd::s32<B> sum) {
    return simd::shr<kShift>(sum + simd::splat<simd::s32, B>(1 << (kShift - 1)));
  }
  MOX_INLINE static Vector pack(simd::s32<B> low, simd::s32<B> high) { return packs(low, high); }
  MOX_INLINE static void store(Vector v, const MoxiInterpKernelArgs<Mox16u>& a, std::ptrdiff_t at, std::ptrdiff_t gap) {
    store_row_blocks<2 * kColumns, kRows>(simd::as<simd::u8>(moved(v)), a.pDst + at, gap);
  }
};

/// What becomes of a row and the row below it: the samples themselves, or the pairs that they are part of.
template <int kType, class Lanes>
class ChromaFilter {
 public:
  using Vector = typename Lanes::Vector;
  using Pairs = ChromaPairs<Vector>;

  MOX_INLINE ChromaFilter(Mox32s dx, Mox32s dy) {
    row_ = Lanes::weights(kType == 2 ? dy : dx, kType == 3 ? 8 - dy : 1);
    below_ = Lanes::weights(dx, dy);
  }
  MOX_INLINE Vector operator()(Vector row, Vector below) const {
    if constexpr (kType == 0) return row;
    const Pairs pairs = Lanes::pairs(row, below);
    return (*this)(pairs, pairs);
  }
  MOX_INLINE Vector operator()(const Pairs& row, const Pairs& below) const {
    const auto low = half(row.low, below.low);
    if constexpr (Lanes::kHalf) return Lanes::pack(low, low);
    return Lanes::pack(low, half(row.high, below.high));
  }

 private:
  MOX_INLINE auto half(Vector row, Vector below) const {
    if constexpr (kType == 3)
      return Lanes::template rounded<6>(Lanes::sum(row, row_) + Lanes::sum(below, below_));
    else
      return Lanes::template rounded<3>(Lanes::sum(row, row_));
  }

  Vector row_, below_;  ///< weights of pairs
};

/// The columns from x on that the lanes take. The record is a copy: what is stored cannot change it.
template <int kType, class Lanes, class T = typename Lanes::Sample>
MOX_INLINE void interpolate_chroma_lanes(MoxiInterpKernelArgs<T> a, int x = 0) {
  constexpr std::ptrdiff_t kSize = sizeof(T);
  constexpr bool kDown = kType >> 1;
  const int rows = a.height / Lanes::kStrips;
  const std::ptrdiff_t step = a.srcStep, gap = rows * step * kSize, dstGap = rows * a.dstStep * kSize;
  const auto take = [gap](const T* p) {
    const auto row = Lanes::load(p, gap);
    if constexpr (kType % 2 == 0)
      return row;
    else
      return Lanes::pairs(row, Lanes::load(p + Lanes::kRight, gap));
  };
  const ChromaFilter<kType, Lanes> filter(a.dx, a.dy);
  const T* src = a.pSrc + x;
  std::ptrdiff_t to = x;
  auto row = take(src);
  for (int y = 0; y < rows; ++y, src += step, to += a.dstStep) {
    const auto next = take(src + (kDown ? step : 0));
    Lanes::store(filter(kDown ? row : next, next), a, to, dstGap);
    row = next;
  }
}

/// Blocks of kChannels planes that lie in one, W columns of each.
template <int W, int kChannels, int kType>
MoxStatus interpolate_chroma_8u(const MoxiInterpKernelArgs<Mox8u>& a) {
  constexpr int kBytes = W * kChannels, kRows = kBytes < 8 ? 8 / kBytes : 1;
  if (a.height <= 0) return moxStsOk;
  if (kRows == 4 && a.height % 4 != 0)
    interpolate_chroma_lanes<kType, ChromaBytes<kBytes, kChannels, 2>>(a);
  else
    interpolate_chroma_lanes<kType, ChromaBytes<kBytes, kChannels, kRows>>(a);
  return moxStsOk;
}

/// A block of any even width and height.
template <int kType>
MoxStatus interpolate_chroma_16u(const MoxiInterpKernelArgs<Mox16u>& a) {
  if (a.height <= 0) return moxStsOk;
  int x = 0;
  for (; x + 8 <= a.width; x += 8) interpolate_chroma_lanes<kType, ChromaWords<8, 1>>(a, x);
  if (a.width & 4) interpolate_chroma_lanes<kType, ChromaWords<4, 2>>(a, x), x += 4;
  if (a.width & 2) interpolate_chroma_lanes<kType, ChromaWords<2, 2>>(a, x);
  return moxStsOk;
}

/// [row of chroma_index_8u | type]; rows of widths 2, 4, 8, 8
inline constexpr auto h264_interpolate_chroma_type_table_8u_v8u8 = make_table<16>(
    []<std::size_t I>() -> InterpKernel<Mox8u> { return &interpolate_chroma_8u<chroma_row_width(I / 4), 1, I % 4>; });
/// The same for interleaved samples: one pass, where the portable kernels need two stages.
inline constexpr auto h264_interpolate_chroma_table_nv12_8u = make_table<16>(
    []<std::size_t I>() -> InterpKernel<Mox8u> { return &interpolate_chroma_8u<chroma_row_width(I / 4), 2, I % 4>; });

/// [type], any even width
inline constexpr auto h264_interpolate_chroma_type_table_16u_pxmx =
    make_table<4>([]<std::size_t I>() -> InterpKernel<Mox16u> { return &interpolate_chroma_16u<I>; });

/// The full formula whatever the fraction, so it always reads one more column and one more row.
inline MoxStatus own_InterpolateChroma_H264_16u(const MoxiInterpKernelArgs<Mox16u>& a) {
  return interpolate_chroma_16u<3>(a);
}

/// Interleaved chroma; typeIndex is chroma_index_8u.
inline MoxStatus launch_h264_interpolate_chroma_nv12touv(const MoxiInterpKernelArgs<Mox8u>& a) {
  return h264_interpolate_chroma_table_nv12_8u[a.typeIndex](a);
}

}  // namespace mox::vec
