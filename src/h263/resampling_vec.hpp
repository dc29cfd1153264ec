/// Vector kernels of H.263 resampling. Edge columns, and planes narrower than a vector, are left to the portable ones.
#pragma once

#include <cstddef>

#include "frame/access.hpp"
#include "frame/generation.hpp"
#include "h263/resampling_px.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// Calls work(i) for runs of `length` positions from i on that cover `count`; the last two may overlap.
template <class Work>
MOX_INLINE void cover(Mox32s count, Mox32s length, Work work) {
  for (Mox32s i = 0; i < count - length; i += length) work(i);
  work(count - length);
}

// ---- General form: eight samples of a row whose neighbours all lie inside. ----

/// Places are monotonic along a row, so what holds at both ends of a run holds within.
MOX_INLINE bool run_is_inside(const ResamplingRow& places, Mox32s column, MoxiSize size) {
  const MoxiPoint first = places.at(column), last = places.at(column + 7);
  const auto inside = [](Mox32s at, Mox32s length) { return at >= 0 && (at >> 4) < length - 1; };
  return inside(first.x, size.width) && inside(last.x, size.width) && inside(first.y, size.height) &&
         inside(last.y, size.height);
}

MOX_INLINE simd::u8<1> resample_run(const ResampledPlane& plane, const ResamplingRow& places, Mox32s column,
                                    Mox32s rounding) {
  using simd::as, simd::s16, simd::splat, simd::u16, simd::u8;
  MoxiPoint at[8];
  const Mox8u* src[8];
  for (int i = 0; i < 8; ++i) {
    at[i] = places.at(column + i);
    src[i] = plane.src + (at[i].y >> 4) * plane.srcStep + (at[i].x >> 4);
  }
  const auto upper = simd::collect_words([&](int i) { return load<Mox16u>(src[i]); });
  const auto lower = simd::collect_words([&](int i) { return load<Mox16u>(src[i] + plane.srcStep); });
  const auto fx = simd::collect_words([&](int i) { return at[i].x; }) & splat<u16, 1>(15);
  const auto fy = simd::collect_words([&](int i) { return at[i].y; }) & splat<u16, 1>(15);
  const auto sixteen = splat<u16, 1>(16);
  const auto weights = as<u8>((sixteen - fx) | simd::shl<8>(fx));
  const auto top = as<u16>(maddubs(as<u8>(upper), weights));     // 0..4080
  const auto bottom = as<u16>(maddubs(as<u8>(lower), weights));  // with rounding 65408 at most below
  const auto sum = (sixteen - fy) * top + fy * bottom + splat<u16, 1>(rounding);
  const auto samples = as<s16>(simd::shr<8>(sum));
  return packus(samples, samples);
}

inline MoxStatus h263_resample(const ResampledPlane& plane, const ResamplingMap& map, Mox32s rounding) {
  const Mox32s width = plane.dstSize.width;
  Mox8u* dst = plane.dst;
  for (Mox32s row = 0; row < plane.dstSize.height; ++row, dst += plane.dstStep) {
    const ResamplingRow places = map.row(row, plane.subsampled);
    Mox32s column = 0;
    while (column < width) {
      if (column + 8 <= width && run_is_inside(places, column, plane.srcSize)) {
        simd::raw_store8(dst + column, resample_run(plane, places, column, rounding).r);
        column += 8;
      } else {
        dst[column] = px::h263_resampled(plane, places.at(column), rounding);
        ++column;
      }
    }
  }
  return moxStsOk;
}

// ---- By two. ----

/// Of a pair of columns in each word the two samples between them, the left one in the low byte. Columns are 3 of the
/// nearer row and 1 of the other, 0..1020, so the sums are 4088 at most.
template <int B>
MOX_INLINE simd::u16<B> between_columns(simd::u16<B> left, simd::u16<B> right, simd::u16<B> rounding) {
  const auto sum = left + right + rounding;
  return simd::shr<4>(sum + (left + left)) | simd::shl<8>(simd::shr<4>(sum + (right + right)));
}

/// Doubles the length of rows. The new row `near` a quarter of the way from `upper` to `lower` goes to dst, and with
/// kBoth the one near `lower` to dstLower.
template <int B, bool kBoth>
MOX_INLINE void double_rows(const Mox8u* upper, const Mox8u* lower, Mox8u* dst, Mox8u* dstLower, Mox32s width,
                            Mox32s rounding) {
  using simd::u16;
  const auto round = simd::splat<u16, B>(rounding);
  const auto row = [](const Mox8u* p) { return simd::load_row_wide<B>(p); };
  cover(width - 1, 8 * B, [&](Mox32s i) {
    const u16<B> a = row(upper + i), b = row(upper + i + 1);
    const u16<B> c = kBoth ? row(lower + i) : a, d = kBoth ? row(lower + i + 1) : b;
    const u16<B> left = a + c, right = b + d;
    store_row(between_columns<B>(left + (a + a), right + (b + b), round), dst + 2 * i + 1);
    if constexpr (kBoth) store_row(between_columns<B>(left + (c + c), right + (d + d), round), dstLower + 2 * i + 1);
  });
  for (Mox32s edge : {0, width - 1}) {
    const Mox32s at = edge == 0 ? 0 : 2 * width - 1;
    dst[at] = px::h263_doubled(upper, lower, {edge, edge}, rounding);
    if constexpr (kBoth) dstLower[at] = px::h263_doubled(lower, upper, {edge, edge}, rounding);
  }
}

/// Mixes rows one to three and three to one.
template <int B>
MOX_INLINE void mix_rows(const Mox8u* upper, const Mox8u* lower, Mox8u* dst, Mox8u* dstLower, Mox32s width) {
  using simd::u8;
  cover(width, 16 * B, [&](Mox32s i) {
    const auto a = simd::load_row<u8, B>(upper + i), b = simd::load_row<u8, B>(lower + i);
    // (3 a + b + 2) >> 2: the mean downwards of a and b, and that of it and a upwards.
    const auto middle = avg(a, b) - ((a ^ b) & simd::splat<u8, B>(1));
    store_row(avg(a, middle), dst + i);
    store_row(avg(b, middle), dstLower + i);
  });
}

/// Calls edge(old row, new row) for the first and the last row of a plane with twice as many rows, and
/// between(old row, the next one, new row, the next one) for all others.
template <class Edge, class Between>
MOX_INLINE void double_columns(const Mox8u* src, std::ptrdiff_t srcStep, Mox8u* dst, std::ptrdiff_t dstStep,
                               Mox32s height, Edge edge, Between between) {
  edge(src, dst);
  for (Mox32s row = 1; row < height; ++row, src += srcStep, dst += 2 * dstStep) {
    between(src, src + srcStep, dst + dstStep, dst + 2 * dstStep);
  }
  edge(src, dst + dstStep);
}

template <int kX, int kY>
MoxStatus h263_enlarge(const Mox8u* src, std::ptrdiff_t srcStep, Mox8u* dst, std::ptrdiff_t dstStep, MoxiSize srcSize,
                       Mox32s rounding) {
  constexpr int B = simd::kBlocks;
  const Mox32s width = srcSize.width;
  if (width <= (kX == 2 ? 8 * B : 16 * B - 1)) {
    return px::h263_enlarge<kX, kY>(src, srcStep, dst, dstStep, srcSize, rounding);
  }
  const auto edge = [=](const Mox8u* from, Mox8u* to) {
    kX == 2 ? double_rows<B, false>(from, from, to, to, width, rounding) : mix_rows<B>(from, from, to, to, width);
  };
  if constexpr (kY == 1) {
    for (Mox32s row = 0; row < srcSize.height; ++row, src += srcStep, dst += dstStep) edge(src, dst);
  } else {
    double_columns(src, srcStep, dst, dstStep, srcSize.height, edge,
                   [=](const Mox8u* upper, const Mox8u* lower, Mox8u* to, Mox8u* toLower) {
                     kX == 2 ? double_rows<B, true>(upper, lower, to, toLower, width, rounding)
                             : mix_rows<B>(upper, lower, to, toLower, width);
                   });
  }
  return moxStsOk;
}

inline constexpr std::array<DoublingKernel, 3> kH263Enlarge = {h263_enlarge<2, 1>, h263_enlarge<1, 2>,
                                                               h263_enlarge<2, 2>};

/// Sums of four of 16 B columns, 0..1020 before rounding.
template <int B>
MOX_INLINE simd::s16<B> sums_of_four(const Mox8u* upper, const Mox8u* lower) {
  using simd::u8;
  const auto ones = simd::splat<u8, B>(1);
  return maddubs(simd::load_row<u8, B>(upper), ones) + maddubs(simd::load_row<u8, B>(lower), ones);
}

inline MoxStatus h263_halve(const Mox8u* src, std::ptrdiff_t srcStep, Mox8u* dst, std::ptrdiff_t dstStep,
                            MoxiSize srcSize, Mox32s rounding) {
  constexpr int B = simd::kBlocks;
  const Mox32s width = srcSize.width / 2;
  if (width < 16 * B) return px::h263_halve(src, srcStep, dst, dstStep, srcSize, rounding);
  const auto round = simd::splat<simd::s16, B>(rounding);
  for (Mox32s row = 0; row < srcSize.height / 2; ++row, src += 2 * srcStep, dst += dstStep) {
    cover(width, 16 * B, [&](Mox32s i) {
      const Mox8u* const upper = src + 2 * i;
      const auto first = sums_of_four<B>(upper, upper + srcStep);
      const auto second = sums_of_four<B>(upper + 16 * B, upper + srcStep + 16 * B);
      store_row(regroup(packus(simd::shr<2>(first + round), simd::shr<2>(second + round))), dst + i);
    });
  }
  return moxStsOk;
}

}  // namespace mox::vec
