/// Vector kernels of MPEG-4 quarter-sample copies: rows first, then columns of what they gave.
///
/// Taps are eighths of the portable ones, so that products of bytes and their sums fit words: the sum of all positive
/// ones is 46 * 255, of all negative ones -14 * 255.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

#include "block/half_pel_copy_vec.hpp"
#include "mpeg4/motion_px.hpp"

namespace mox::vec {

/// Half samples as words, from the four pairs of neighbours that each is made of.
template <int kRc, int B>
MOX_INLINE simd::s16<B> half_samples(simd::u8<B> first, simd::u8<B> second, simd::u8<B> third, simd::u8<B> fourth) {
  using simd::as, simd::s16, simd::splat, simd::u16, simd::u8;
  const auto taps = [](int even, int odd) { return as<u8>(splat<u16, B>((even & 0xFF) | (odd & 0xFF) << 8)); };
  const auto sum = maddubs(first, taps(-1, 3)) + maddubs(second, taps(-6, 20)) + maddubs(third, taps(20, -6)) +
                   maddubs(fourth, taps(3, -1));
  return mulhrs(kRc ? sum - splat<s16, B>(1) : sum, splat<s16, B>(1024));  // (sum + 16 - rc) >> 5
}

template <int kRc, int B>
MOX_INLINE simd::u8<B> quarter_mean(simd::u8<B> a, simd::u8<B> b) {
  return kRc ? avg(a, b) - ((a ^ b) & simd::splat<simd::u8, B>(1)) : avg(a, b);
}

/// Where the pairs of a row lie among its samples, [pair][8 columns][byte]. Rows of 8 are loaded as samples 0 to 7 and
/// 1 to 8, rows of 16 as samples 0 to 15 for the left columns and 1 to 16 for the right ones.
template <int W>
struct RowPairs {
  alignas(32) Mox8u at[4][W / 8][16] = {};
  constexpr RowPairs() {
    for (int pair = 0; pair < 4; ++pair) {
      for (int i = 0; i < 2 * W; ++i) {
        const int sample = mirrored_place(i / 2 - 3 + 2 * pair + i % 2, W);
        const int byte = W == 8 ? (sample == 8 ? 15 : sample) : sample - i / 16;
        at[pair][i / 16][i % 16] = static_cast<Mox8u>(byte);
      }
    }
  }
};
template <int W>
inline constexpr RowPairs<W> kRowPairs;

/// 8 B words as bytes, in the lower half where B is 1.
template <int B>
MOX_INLINE simd::u8<1> as_bytes(simd::s16<B> words) {
  if constexpr (B == 1) {
    return packus(words, words);
  } else {
    return packus(simd::part<0>(words), simd::part<1>(words));
  }
}

/// Half samples of 8 B columns. `group` counts the 8 columns of the first block.
template <int W, int kRc, int B>
MOX_INLINE simd::s16<B> half_row(simd::u8<B> samples, int group) {
  const auto pair = [&](int i) { return lookup(samples, simd::load_row<simd::u8, B>(kRowPairs<W>.at[i][group])); };
  return half_samples<kRc>(pair(0), pair(1), pair(2), pair(3));
}

/// W samples at a position of D quarters; the upper half is undefined where W is 8.
template <int W, int D, int kRc>
MOX_INLINE simd::u8<1> quarter_row(const Mox8u* src) {
  using simd::u8;
  u8<1> half, full;
  if constexpr (W == 8) {
    const auto samples = simd::load8x2<u8, 1>(src, 1, simd::strips<1>(0));
    half = as_bytes(half_row<W, kRc>(samples, 0));
    full = D == 3 ? hi64(samples, samples) : samples;
  } else {
    constexpr int B = std::min(W / 8, simd::kBlocks);
    const auto columns = [&](int group) {
      return half_row<W, kRc>(simd::load16<u8, B>(src + group, simd::strips<B>(1)), group);
    };
    if constexpr (B == 1) {
      half = packus(columns(0), columns(1));
    } else {
      half = as_bytes(columns(0));
    }
    full = {simd::raw16(src + D / 2)};
  }
  return D == 2 ? half : quarter_mean<kRc>(half, full);
}

template <int W, int D, int kRc>
MOX_INLINE void quarter_rows(const Mox8u* src, std::ptrdiff_t srcStep, Mox8u* dst, std::ptrdiff_t dstStep, int rows) {
  for (int y = 0; y < rows; ++y, src += srcStep, dst += dstStep) store_bytes<W>(quarter_row<W, D, kRc>(src), dst);
}

/// Seven pairs of rows below each other; each has a part in four half samples, every second one in one of them.
template <int B>
struct RowWindow {
  simd::u8<B> last, p0, p1, p2, p3, p4, p5, p6;

  /// Named, since an array that moves up by one stays in memory.
  MOX_INLINE void add(simd::u8<B> row) {
    p0 = p1, p1 = p2, p2 = p3, p3 = p4, p4 = p5, p5 = p6;
    p6 = lo8(last, row);
    last = row;
  }
  template <int kRc>
  MOX_INLINE simd::u8<1> half() const {
    return as_bytes(half_samples<kRc>(p0, p2, p4, p6));
  }
};

/// 8 B columns.
template <int B, int H, int D, int kRc>
MOX_INLINE void quarter_columns_group(const Mox8u* src, std::ptrdiff_t srcStep, Mox8u* dst, std::ptrdiff_t dstStep) {
  RowWindow<B> window{};
  const auto add = [&](int y) {
    window.add(simd::load8<simd::u8, B>(src + mirrored_place(y, H) * srcStep, simd::strips<B>(8)));
  };
  for (int y = -3; y < 4; ++y) add(y);
#pragma GCC unroll 16
  for (int y = 0; y < H; ++y, dst += dstStep) {
    add(y + 4);
    const auto half = window.template half<kRc>();
    const auto out = D == 2 ? half : quarter_mean<kRc>(half, load_bytes<8 * B>(src + (y + D / 2) * srcStep));
    store_bytes<8 * B>(out, dst);
  }
}

template <int W, int H, int D, int kRc>
[[gnu::noinline]] MoxStatus quarter_columns(const Mox8u* src, std::ptrdiff_t srcStep, Mox8u* dst,
                                            std::ptrdiff_t dstStep) {
  constexpr int B = std::min(W / 8, simd::kBlocks);
  for (int x = 0; x < W; x += 8 * B) quarter_columns_group<B, H, D, kRc>(src + x, srcStep, dst + x, dstStep);
  return moxStsOk;
}

template <int W, int H, int Dx, int Dy, int kRc>
MoxStatus copy_quarter(const Mox8u* src, Mox32s srcStep, Mox8u* dst, Mox32s dstStep) {
  if constexpr (Dx == 0 && Dy == 0) {
    return copy_half_pel<W, H, HalfPel::kFull, 0>(src, srcStep, dst, dstStep);
  } else if constexpr (Dx == 0) {
    return quarter_columns<W, H, Dy, kRc>(src, srcStep, dst, dstStep);
  } else if constexpr (Dy == 0) {
    quarter_rows<W, Dx, kRc>(src, srcStep, dst, dstStep, H);
    return moxStsOk;
  } else {
    alignas(16) Mox8u rows[(H + 1) * W];
    quarter_rows<W, Dx, kRc>(src, srcStep, rows, W, H + 1);
    return quarter_columns<W, H, Dy, kRc>(rows, W, dst, dstStep);
  }
}

template <int W, int H>
inline constexpr auto kQuarterCopy = make_table<32>([]<std::size_t I>() -> QuarterCopyKernel {
  return &copy_quarter<W, H, quarters_in_x(I), quarters_in_y(I), quarter_rounding(I)>;
});

/// Index quarter_index.
inline constexpr auto ownvc_Copy16x16QP_8u_C1R = kQuarterCopy<16, 16>;
inline constexpr auto ownvc_Copy16x8QP_8u_C1R = kQuarterCopy<16, 8>;
inline constexpr auto ownvc_Copy8x8QP_8u_C1R = kQuarterCopy<8, 8>;

}  // namespace mox::vec
