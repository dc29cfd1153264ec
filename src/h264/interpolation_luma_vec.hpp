/// Vector kernels of H.264 luma interpolation, 8-bit.
///
/// A block of a vector is 8 samples wide. Half samples along one axis are sums of taps over pairs of bytes, -2550 to
/// 10710; the centre half sample takes the sums across of six rows, as words. A position is the data that the portable
/// kernels read: each of its two points becomes bytes, and the row their mean.
#pragma once

#include <algorithm>
#include <cstddef>

#include "frame/generation.hpp"
#include "h264/interpolation_luma_px.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// Weights of pairs of bytes.
template <int B>
MOX_INLINE simd::u8<B> luma_weights(int first, int second) {
  return simd::as<simd::u8>(simd::splat<simd::u16, B>((first & 0xFF) | (second & 0xFF) << 8));
}

/// The six taps over three pairs of neighbours.
template <int B>
MOX_INLINE simd::s16<B> luma_sum(simd::u8<B> before, simd::u8<B> around, simd::u8<B> behind) {
  return maddubs(before, luma_weights<B>(1, -5)) + maddubs(around, luma_weights<B>(20, 20)) +
         maddubs(behind, luma_weights<B>(-5, 1));
}

/// Half samples from sums.
template <int B>
MOX_INLINE simd::s16<B> luma_half(simd::s16<B> sum) {
  return mulhrs(sum, simd::splat<simd::s16, B>(1024));  // (sum + 16) >> 5
}

/// The centre half samples from the sums of six rows: (a - 5 b + 20 c + 512) >> 10, not yet limited to 0..255.
template <int B>
MOX_INLINE simd::s16<B> luma_centre(const simd::s16<B>* sums) {
  const auto a = sums[0] + sums[5], b = sums[1] + sums[4], c = sums[2] + sums[3];  // -5100..21420
  // Divided by 16 in two steps. Between them up to 33150, which may saturate: the result is far outside 0..255.
  const auto v = simd::shr<2>(adds(simd::shr<2>(a - b) - b, c)) + c;
  return mulhrs(v, simd::splat<simd::s16, B>(512));  // (v + 32) >> 6
}

/// How the columns of a picture block lie in a vector: strips of 4 columns in the halves of each block, or of 8 columns
/// in each block, one strip below the other; or 16 columns in two blocks side by side.
template <int W, int Blocks>
struct LumaShape {
  static constexpr int B = Blocks;
  static constexpr int kStrips = W == 4 ? 2 * B : W == 8 ? B : 1;
  using Bytes = simd::u8<W == 16 ? 1 : B>;  ///< samples of a row to be written

  /// 8 samples a block, `gap` bytes from strip to strip.
  MOX_INLINE static simd::u8<B> load(const Mox8u* p, std::ptrdiff_t gap) {
    if constexpr (W == 4)
      return simd::gather<simd::u8, B>(p, simd::strips<B>(2 * gap),
                                       [gap](const Mox8u* q) { return simd::load_rows<4, 2>(q, gap).r; });
    else if constexpr (W == 8)
      return simd::load8<simd::u8, B>(p, simd::strips<B>(gap));
    else
      return simd::load_row8_twice<B>(p);
  }
  MOX_INLINE static Bytes load_bytes(const Mox8u* p, std::ptrdiff_t gap) {
    if constexpr (W == 16)
      return simd::load_row<simd::u8, 1>(p);
    else
      return load(p, gap);
  }
  MOX_INLINE static Bytes pack(simd::s16<B> v) {
    if constexpr (W == 16)
      return simd::part<0>(simd::regroup(packus(v, v)));
    else
      return packus(v, v);
  }
  MOX_INLINE static void store(Bytes v, Mox8u* p, std::ptrdiff_t gap) {
    if constexpr (W == 4)
      simd::scatter<0, B>(v.r, p, simd::strips<B>(2 * gap),
                          [gap](Mox8u* q, auto one) { simd::store_rows<4, 2>({one}, q, gap); });
    else if constexpr (W == 8)
      simd::store8(v, p, simd::strips<B>(gap));
    else
      simd::store_row(v, p);
  }

  /// Bytes from 2 columns before each strip on, `kFirst` telling the tap: 8 for 4 columns, from the column before for
  /// the last two taps; two runs of 8, 5 apart, for 8 columns; 16 in each block, 5 apart, for 16 columns.
  template <int kFirst>
  MOX_INLINE static simd::u8<B> span(const Mox8u* p, std::ptrdiff_t gap) {
    if constexpr (W == 4)
      return simd::load8x2<simd::u8, B>(p - (kFirst == 2 ? 1 : 2), gap, simd::strips<B>(2 * gap));
    else if constexpr (W == 8)
      return simd::load8x2<simd::u8, B>(p - 2, 5, simd::strips<B>(gap));
    else
      return simd::load16<simd::u8, B>(p - 2, simd::strips<B>(5));
  }
  /// Where in a span the samples `kFirst` and `kFirst` + 1 behind each column are.
  template <int kFirst>
  static constexpr auto kPairs = make_table<std::size_t{16} * B>([]<std::size_t I>() {
    constexpr int kColumn = static_cast<int>(W == 4 ? I % 8 / 2 : W == 8 ? I % 16 / 2 : I / 2);
    constexpr int kSample = kColumn + kFirst + static_cast<int>(I % 2);
    if constexpr (W == 4) return static_cast<Mox8u>(kSample + (kFirst == 2 ? 1 : 2) + I % 16 / 8 * 8);
    if constexpr (W == 8) return static_cast<Mox8u>(kSample + (kSample <= 5 ? 2 : 5));
    if constexpr (W == 16) return static_cast<Mox8u>(kSample + (I < 16 ? 2 : -3));
  });
  template <int kFirst>
  MOX_INLINE static simd::u8<B> pairs(const Mox8u* p, std::ptrdiff_t gap) {
    return lookup(span<kFirst>(p, gap), simd::load_row<simd::u8, B>(kPairs<kFirst>.data()));
  }
  /// Sums of the half samples to the right.
  MOX_INLINE static simd::s16<B> sum_across(const Mox8u* p, std::ptrdiff_t gap) {
    return luma_sum(pairs<-2>(p, gap), pairs<0>(p, gap), pairs<2>(p, gap));
  }
};

/// Sums of the half samples below, row after row.
template <class Shape>
class LumaSumsDown {
 public:
  using Bytes = simd::u8<Shape::B>;

  MOX_INLINE void start(const Mox8u* p, std::ptrdiff_t step, std::ptrdiff_t gap) {
    next_ = p + 3 * step, step_ = step, gap_ = gap;
    const auto row = [=](int y) { return Shape::load(p + y * step, gap); };
    const Bytes a = row(-2), b = row(-1), c = row(0), d = row(1);
    last_ = row(2);
    first_ = lo8(a, b), second_ = lo8(b, c), third_ = lo8(c, d), fourth_ = lo8(d, last_);
  }
  MOX_INLINE simd::s16<Shape::B> operator()() {
    const Bytes row = Shape::load(next_, gap_), fifth = lo8(last_, row);
    const auto sum = luma_sum(first_, third_, fifth);
    first_ = second_, second_ = third_, third_ = fourth_, fourth_ = fifth, last_ = row;
    next_ += step_;
    return sum;
  }

 private:
  const Mox8u* next_;
  std::ptrdiff_t step_, gap_;
  Bytes first_, second_, third_, fourth_, last_;  ///< pairs of rows -2 and -1 to 1 and 2, and row 2
};

/// `height` rows of a block as wide as the shape: 16 at most for positions with the centre half sample.
template <LumaPosition kPosition, class Shape>
MOX_INLINE void interpolate_luma_part(const Mox8u* src, std::ptrdiff_t step, Mox8u* dst, std::ptrdiff_t dstStep,
                                      int height) {
  constexpr LumaPoint kU = kPosition.u, kV = kPosition.v;
  constexpr bool kCentre = kPosition.has(LumaSample::kJ);
  constexpr int B = Shape::B, kUnrolled = kCentre ? 1 : 4 / Shape::kStrips;
  const int rows = height / Shape::kStrips;
  const std::ptrdiff_t gap = rows * step, dstGap = rows * dstStep;

  simd::s16<B> sums[kCentre ? kLocalRows : 1];  // across, from two rows above the block on
  if constexpr (kCentre) {
    const Mox8u* p = src - 2 * step;
    for (int y = 0; y < rows + 5; ++y, p += step) sums[y] = Shape::sum_across(p, gap);
  }
  constexpr int kRight = kU.sample == LumaSample::kH ? kU.right : kV.right;
  LumaSumsDown<Shape> down;
  if constexpr (kPosition.has(LumaSample::kH)) down.start(src + kRight, step, gap);
  const auto value = [&]<LumaPoint kPoint>(int y) {
    const Mox8u* const p = src + kPoint.right + kPoint.down * step;
    if constexpr (kPoint.sample == LumaSample::kG) return Shape::load_bytes(p, gap);
    if constexpr (kPoint.sample == LumaSample::kB && !kCentre) return Shape::pack(luma_half(Shape::sum_across(p, gap)));
    if constexpr (kPoint.sample == LumaSample::kB && kCentre) return Shape::pack(luma_half(sums[y + 2 + kPoint.down]));
    if constexpr (kPoint.sample == LumaSample::kH) return Shape::pack(luma_half(down()));
    if constexpr (kPoint.sample == LumaSample::kJ) return Shape::pack(luma_centre(sums + y));
  };
  for (int y = 0; y < rows; y += kUnrolled) {
    for (int i = 0; i < kUnrolled; ++i, src += step, dst += dstStep) {
      auto samples = value.template operator()<kU>(y + i);
      if constexpr (kV.sample != LumaSample::kNone) samples = avg(samples, value.template operator()<kV>(y + i));
      Shape::store(samples, dst, dstGap);
    }
  }
}

/// Interpolates a block W columns wide. Where rows of sums are kept, blocks higher than 16 rows are done in parts.
template <int W, LumaPosition kPosition>
MoxStatus interpolate_luma_8u(const MoxiInterpKernelArgs<Mox8u>& a) {
  constexpr int B = W == 4 ? 1 : simd::kBlocks, kColumns = W == 16 && B == 1 ? 8 : W;
  const std::ptrdiff_t step = a.srcStep, dstStep = a.dstStep;
  const Mox8u* src = a.pSrc;
  Mox8u* dst = a.pDst;
  const auto run = [&](int height) {
    for (int x = 0; x < W; x += kColumns)
      interpolate_luma_part<kPosition, LumaShape<kColumns, B>>(src + x, step, dst + x, dstStep, height);
  };
  if constexpr (kPosition.has(LumaSample::kJ)) {
    for (int left = a.height; left > 0; left -= kLocalHeight) {
      run(std::min(left, kLocalHeight));
      src += kLocalHeight * step, dst += kLocalHeight * dstStep;
    }
  } else if (a.height > 0) {  // sums down are begun with rows that a block of no rows does not have
    run(a.height);
  }
  return moxStsOk;
}

/// Copies a block W columns wide, four rows at a time.
template <int W>
MoxStatus copy_luma_8u(const MoxiInterpKernelArgs<Mox8u>& a) {
  const std::ptrdiff_t step = a.srcStep, dstStep = a.dstStep;
  const Mox8u* src = a.pSrc;
  Mox8u* dst = a.pDst;
  const auto copy = [](const Mox8u* from, Mox8u* to) {
    if constexpr (W == 16)
      simd::store_row(simd::load_row<simd::u8, 1>(from), to);
    else
      simd::store_rows<W, 1>(simd::load_rows<W, 1>(from, 0), to, 0);
  };
  for (int y = a.height; y > 0; y -= 4, src += 4 * step, dst += 4 * dstStep) {
    for (int i = 0; i < 4; ++i) copy(src + i * step, dst + i * dstStep);
  }
  return moxStsOk;
}

/// Width of a row of luma_index_8u.
constexpr int luma_row_width(std::size_t row) { return row == 0 ? 4 : row == 1 ? 8 : 16; }

/// [row of luma_index_8u | dy * 4 | dx]; rows of widths 4, 8, 16, 16
inline constexpr auto h264_interpolate_luma_type_table_8u_v8u8 =
    make_table<64>([]<std::size_t I>() -> InterpKernel<Mox8u> {
      if constexpr (I % 16 == 0) return &copy_luma_8u<luma_row_width(I / 16)>;
      return &interpolate_luma_8u<luma_row_width(I / 16), luma_points::kPositions[I % 16]>;
    });

}  // namespace mox::vec
