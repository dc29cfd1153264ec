/// Vector kernels of H.264 luma interpolation, 8-bit.
///
/// A block of a vector is 8 samples wide as words, 16 as bytes. Half samples along one axis are sums of taps over pairs
/// of bytes, -2550 to 10710; the centre half sample takes the sums across of six rows, as words. A position is the data
/// that the portable kernels read: each of its two points becomes bytes, and the row their mean.
#pragma once

#include <algorithm>
#include <cstddef>
#include <type_traits>

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

/// Sums of 16 columns in vectors of one block: of the first and the last 8, or of the even and the odd ones.
template <int B>
struct LumaSums16 {
  simd::s16<B> first, second;
};
template <int B>
MOX_INLINE LumaSums16<B> luma_half(LumaSums16<B> sums) {
  return {luma_half(sums.first), luma_half(sums.second)};
}
template <int B>
MOX_INLINE LumaSums16<B> luma_centre(const LumaSums16<B>* sums) {
  simd::s16<B> first[6], second[6];
  for (int i = 0; i < 6; ++i) first[i] = sums[i].first, second[i] = sums[i].second;
  return {luma_centre(first), luma_centre(second)};
}

/// How the columns of a picture block lie in a vector: strips of 4 columns in the halves of each block, or of 8 columns
/// in each block, one strip below the other; or 16 columns in two blocks side by side.
template <int W, int Blocks>
struct LumaShape {
  static constexpr int B = Blocks;
  static constexpr int kStrips = W == 4 ? 2 * B : W == 8 ? B : 1;
  using Bytes = simd::u8<W == 16 ? 1 : B>;  ///< samples of a row to be written
  using Sums = simd::s16<B>;

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
  MOX_INLINE static Bytes pack_across(Sums v) {
    if constexpr (W == 16)
      return simd::part<0>(simd::regroup(packus(v, v)));
    else
      return packus(v, v);
  }
  MOX_INLINE static Bytes pack_down(Sums v) { return pack_across(v); }
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
  MOX_INLINE static Sums sum_across(const Mox8u* p, std::ptrdiff_t gap) {
    return luma_sum(pairs<-2>(p, gap), pairs<0>(p, gap), pairs<2>(p, gap));
  }
  /// Sums of the half samples below from three pairs of rows.
  using RowPair = simd::u8<B>;
  MOX_INLINE static RowPair pair_rows(simd::u8<B> upper, simd::u8<B> lower) { return lo8(upper, lower); }
  MOX_INLINE static Sums sum_down(RowPair before, RowPair around, RowPair behind) {
    return luma_sum(before, around, behind);
  }
};

/// 16 columns in each block, one strip below the other; their words fill two vectors. Neighbours across lie in memory
/// as the taps want them, for the even columns and, one byte on, for the odd ones.
template <int Blocks>
struct LumaShape16 {
  static constexpr int B = Blocks, kStrips = B;
  using Bytes = simd::u8<B>;
  using Sums = LumaSums16<B>;

  MOX_INLINE static Bytes load(const Mox8u* p, std::ptrdiff_t gap) {
    return simd::load16<simd::u8, B>(p, simd::strips<B>(gap));
  }
  MOX_INLINE static void store(Bytes v, Mox8u* p, std::ptrdiff_t gap) { simd::store16(v, p, simd::strips<B>(gap)); }

  static constexpr auto kInterleave =
      make_table<16>([]<std::size_t I>() { return static_cast<Mox8u>(I / 2 + I % 2 * 8); });
  MOX_INLINE static Bytes pack_across(Sums v) {
    return lookup(pack_down(v), simd::table<simd::u8, B>(kInterleave.data()));
  }
  MOX_INLINE static Bytes pack_down(Sums v) { return packus(v.first, v.second); }

  MOX_INLINE static Sums sum_across(const Mox8u* p, std::ptrdiff_t gap) {
    const auto half = [=](const Mox8u* q) { return luma_sum(load(q - 2, gap), load(q, gap), load(q + 2, gap)); };
    return {half(p), half(p + 1)};
  }
  struct RowPair {
    simd::u8<B> first, second;
  };
  MOX_INLINE static RowPair pair_rows(Bytes upper, Bytes lower) { return {lo8(upper, lower), hi8(upper, lower)}; }
  MOX_INLINE static Sums sum_down(RowPair before, RowPair around, RowPair behind) {
    return {luma_sum(before.first, around.first, behind.first), luma_sum(before.second, around.second, behind.second)};
  }
};

/// Sums of the half samples below, row after row.
template <class Shape>
class LumaSumsDown {
 public:
  MOX_INLINE void start(const Mox8u* p, std::ptrdiff_t step, std::ptrdiff_t gap) {
    next_ = p + 3 * step, step_ = step, gap_ = gap;
    const auto row = [=](int y) { return Shape::load(p + y * step, gap); };
    const Row a = row(-2), b = row(-1), c = row(0), d = row(1);
    last_ = row(2);
    first_ = Shape::pair_rows(a, b), second_ = Shape::pair_rows(b, c);
    third_ = Shape::pair_rows(c, d), fourth_ = Shape::pair_rows(d, last_);
  }
  MOX_INLINE auto operator()() {
    const Row row = Shape::load(next_, gap_);
    const auto fifth = Shape::pair_rows(last_, row);
    const auto sum = Shape::sum_down(first_, third_, fifth);
    first_ = second_, second_ = third_, third_ = fourth_, fourth_ = fifth, last_ = row;
    next_ += step_;
    return sum;
  }

 private:
  using Row = simd::u8<Shape::B>;

  const Mox8u* next_;
  std::ptrdiff_t step_, gap_;
  typename Shape::RowPair first_, second_, third_, fourth_;  ///< rows -2 and -1 to 1 and 2
  Row last_;                                                 ///< row 2
};

/// `height` rows of a block as wide as the shape: 16 at most for positions with the centre half sample.
template <LumaPosition kPosition, class Shape>
MOX_INLINE void interpolate_luma_part(const Mox8u* src, std::ptrdiff_t step, Mox8u* dst, std::ptrdiff_t dstStep,
                                      int height) {
  constexpr LumaPoint kU = kPosition.u, kV = kPosition.v;
  constexpr bool kCentre = kPosition.has(LumaSample::kJ);
  constexpr int kUnrolled = kCentre ? 1 : 4 / Shape::kStrips;
  const int rows = height / Shape::kStrips;
  const std::ptrdiff_t gap = rows * step, dstGap = rows * dstStep;

  typename Shape::Sums sums[kCentre ? kLocalRows : 1];  // across, from two rows above the block on
  if constexpr (kCentre) {
    const Mox8u* p = src - 2 * step;
    for (int y = 0; y < rows + 5; ++y, p += step) sums[y] = Shape::sum_across(p, gap);
  }
  constexpr int kRight = kU.sample == LumaSample::kH ? kU.right : kV.right;
  LumaSumsDown<Shape> down;
  if constexpr (kPosition.has(LumaSample::kH)) down.start(src + kRight, step, gap);
  const auto value = [&]<LumaPoint kPoint>(int y) {
    const Mox8u* const p = src + kPoint.right + kPoint.down * step;
    if constexpr (kPoint.sample == LumaSample::kG) return Shape::load(p, gap);
    if constexpr (kPoint.sample == LumaSample::kB && !kCentre)
      return Shape::pack_across(luma_half(Shape::sum_across(p, gap)));
    if constexpr (kPoint.sample == LumaSample::kB && kCentre)
      return Shape::pack_across(luma_half(sums[y + 2 + kPoint.down]));
    if constexpr (kPoint.sample == LumaSample::kH) return Shape::pack_down(luma_half(down()));
    if constexpr (kPoint.sample == LumaSample::kJ) return Shape::pack_across(luma_centre(sums + y));
  };
  for (int y = 0; y < rows; y += kUnrolled) {
    for (int i = 0; i < kUnrolled; ++i, src += step, dst += dstStep) {
      auto samples = value.template operator()<kU>(y + i);
      if constexpr (kV.sample != LumaSample::kNone) samples = avg(samples, value.template operator()<kV>(y + i));
      Shape::store(samples, dst, dstGap);
    }
  }
}

/// The centre needs sums of five rows more than a strip has, so there one strip is best.
template <int W, LumaPosition kPosition>
using LumaShapeOf = std::conditional_t<W == 16 && (simd::kBlocks == 1 || !kPosition.has(LumaSample::kJ)),
                                       LumaShape16<simd::kBlocks>, LumaShape<W, W == 4 ? 1 : simd::kBlocks>>;

/// Interpolates a block W columns wide. Where rows of sums are kept, blocks higher than 16 rows are done in parts.
template <int W, LumaPosition kPosition>
MoxStatus interpolate_luma_8u(const MoxiInterpKernelArgs<Mox8u>& a) {
  const std::ptrdiff_t step = a.srcStep, dstStep = a.dstStep;
  const Mox8u* src = a.pSrc;
  Mox8u* dst = a.pDst;
  const auto run = [&](int height) {
    interpolate_luma_part<kPosition, LumaShapeOf<W, kPosition>>(src, step, dst, dstStep, height);
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
