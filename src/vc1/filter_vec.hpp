/// Vector kernels of the VC-1 filters.
///
/// Deblocking takes 8 lines a block. A line is four words, the pairs P1 P2, P3 P4, P5 P6 and P7 P8 with the first
/// sample in the low byte: so they lie across a vertical edge, and rows of a horizontal one are interleaved to them.
#pragma once

#include <cstddef>

#include "frame/generation.hpp"
#include "simd/vec.hpp"
#include "vc1/filter_px.hpp"

namespace mox::vec {

/// The four pairs of samples of each line.
template <int B>
struct VC1Lines {
  simd::u8<B> p12, p34, p56, p78;
};
/// What becomes of P4 and P5, as words.
template <int B>
struct VC1Middle {
  simd::s16<B> p4, p5;
};

/// Words by blocks: the bit of the segment that a line belongs to.
alignas(32) inline constexpr Mox16s kVC1SegmentBits[16] = {1, 1, 1, 1, 2, 2, 2, 2, 4, 4, 4, 4, 8, 8, 8, 8};

/// (2 (a - d) - 5 (b - c) + 4) >> 3 of the pairs a b and c d, -223..223
template <int B>
MOX_INLINE simd::s16<B> vc1_activity(simd::u8<B> ab, simd::u8<B> cd) {
  const auto first = simd::as<simd::u8>(simd::splat<simd::u16, B>(0xFB02));   // 2, -5
  const auto second = simd::as<simd::u8>(simd::splat<simd::u16, B>(0xFE05));  // 5, -2
  return simd::shr<3>(maddubs(ab, first) + maddubs(cd, second) + simd::splat<simd::s16, B>(4));
}

/// 8 lines a block, the first of them line `firstLine` of the edge.
template <int B>
MOX_INLINE VC1Middle<B> vc1_deblock(const VC1Lines<B>& in, Mox32s pquant, Mox32u mask, int firstLine) {
  using simd::as, simd::s16, simd::shl, simd::shr, simd::u16, simd::u8;
  // Each group of four words becomes its third.
  alignas(16) static constexpr Mox8u kThird[16] = {4, 5, 4, 5, 4, 5, 4, 5, 12, 13, 12, 13, 12, 13, 12, 13};
  const auto bits = simd::load_row<s16, B>(kVC1SegmentBits + firstLine);
  const auto asked = equal(simd::splat<s16, B>(static_cast<int>(mask)) & bits, bits);

  const auto a0 = vc1_activity(in.p34, in.p56), size = abs(a0);
  const auto a3 = min(abs(vc1_activity(in.p12, in.p34)), abs(vc1_activity(in.p56, in.p78)));
  const auto p4 = as<s16>(shr<8>(as<u16>(in.p34))), p5 = as<s16>(in.p56) & simd::splat<s16, B>(0xFF);
  const auto apart = p4 - p5, most = shr<1>(abs(apart));
  const auto candidate =
      greater(simd::splat<s16, B>(pquant), size) & greater(size, a3) & greater(most, simd::zero<s16, B>());
  const auto decided = as<s16>(lookup(as<u8>(candidate), simd::table<u8, B>(kThird)));

  const auto excess = size - a3;  // of candidates 1..30
  const auto change = min(shr<3>(excess + shl<2>(excess)), most);
  const auto opposed = shr<15>(a0 ^ apart);  // otherwise d is limited to 0
  const auto d = signed_by(change & opposed & candidate & decided & asked, apart);
  return {p4 - d, p5 + d};
}

/// Rows of four words as columns: the words of r[0] to r[7] in each block.
template <int B>
struct VC1Columns {
  simd::s16<B> v[4];

  MOX_INLINE explicit VC1Columns(const simd::s16<B>* r) {
    const auto a = lo16(r[0], r[1]), b = lo16(r[2], r[3]), c = lo16(r[4], r[5]), d = lo16(r[6], r[7]);
    const auto upper = lo32(a, b), lower = lo32(c, d), upper2 = hi32(a, b), lower2 = hi32(c, d);
    v[0] = lo64(upper, lower), v[1] = hi64(upper, lower), v[2] = lo64(upper2, lower2), v[3] = hi64(upper2, lower2);
  }
};

/// 8 samples a block in the lower half, which lie at p; those of one channel in 8 interleaved pairs, the first channel
/// in half 0 of the lines and the second in half 1.
template <int B, int kChannels>
MOX_INLINE simd::u8<B> vc1_samples(const Mox8u* p, std::ptrdiff_t apart, int half) {
  if constexpr (kChannels == 1) {
    return simd::load8<simd::u8, B>(p + half * apart, simd::strips<B>(apart));
  } else {
    alignas(32) static constexpr Mox8u kSplit[32] = {0, 2, 4, 6, 8, 10, 12, 14, 128, 128, 128, 128, 128, 128, 128, 128,
                                                     1, 3, 5, 7, 9, 11, 13, 15, 128, 128, 128, 128, 128, 128, 128, 128};
    return lookup(simd::table<simd::u8, B>(p), simd::load_row<simd::u8, B>(kSplit + 16 * half));
  }
}
/// 8 lines a block of a vertical edge.
template <int B, int kChannels>
MOX_INLINE VC1Lines<B> vc1_ver_lines(const Mox8u* edge, std::ptrdiff_t step, int half) {
  using simd::as, simd::u8;
  simd::s16<B> rows[8];
  for (int y = 0; y < 8; ++y) {
    rows[y] = as<simd::s16>(vc1_samples<B, kChannels>(edge - 4 * kChannels + y * step, 8 * step, half));
  }
  const VC1Columns<B> pairs(rows);
  return {as<u8>(pairs.v[0]), as<u8>(pairs.v[1]), as<u8>(pairs.v[2]), as<u8>(pairs.v[3])};
}
/// 8 lines a block of a horizontal edge.
template <int B, int kChannels>
MOX_INLINE VC1Lines<B> vc1_hor_lines(const Mox8u* edge, std::ptrdiff_t step, int half) {
  const auto pair = [=](int row) {
    return lo8(vc1_samples<B, kChannels>(edge + row * step, 8, half),
               vc1_samples<B, kChannels>(edge + (row + 1) * step, 8, half));
  };
  return {pair(-4), pair(-2), pair(0), pair(2)};
}

/// P4 and P5 of up to 16 lines, in halves of 8: one after the other, or of the first and of the second channel.
struct VC1Halves {
  simd::s16<1> p4[2], p5[2];

  /// P4 and P5 as bytes side by side, line by line.
  MOX_INLINE simd::u8<1> pairs(int half) const { return simd::as<simd::u8>(p4[half] | simd::shl<8>(p5[half])); }
};
template <int kHalves, class Lines>
MOX_INLINE VC1Halves vc1_deblock_halves(Lines lines, Mox32s pquant, Mox32u mask) {
  constexpr int B = kHalves < simd::kBlocks ? kHalves : simd::kBlocks;
  VC1Halves halves;
  for (int i = 0; i < kHalves; i += B) {
    const auto middle = vc1_deblock<B>(lines.template operator()<B>(i), pquant, mask, 8 * i);
    halves.p4[i] = simd::part<0>(middle.p4), halves.p5[i] = simd::part<0>(middle.p5);
    if constexpr (B == 2) halves.p4[i + 1] = simd::part<1>(middle.p4), halves.p5[i + 1] = simd::part<1>(middle.p5);
  }
  return halves;
}

/// Samples of segments that the mask does not name are written as they were.
template <int kLines, int kChannels>
MoxStatus ownFilterDeblocking_VerEdge_VC1(Mox8u* edge, std::ptrdiff_t step, Mox32s pquant, Mox32u mask) {
  constexpr int kHalves = kLines * kChannels / 8;
  if (mask == 0) return moxStsOk;
  const auto lines = [=]<int B>(int half) { return vc1_ver_lines<B, kChannels>(edge, step, half); };
  const auto out = vc1_deblock_halves<kHalves>(lines, pquant, mask);
  if constexpr (kChannels == 2) {
    simd::store_rows<4, 4>(lo8(out.pairs(0), out.pairs(1)), edge - 2, step);
    simd::store_rows<4, 4>(hi8(out.pairs(0), out.pairs(1)), edge - 2 + 4 * step, step);
  } else {
    for (int i = 0; i < kHalves; ++i) simd::store_rows<2, 8>(out.pairs(i), edge - 1 + 8 * i * step, step);
  }
  return moxStsOk;
}
template <int kLines, int kChannels>
MoxStatus ownFilterDeblocking_HorEdge_VC1(Mox8u* edge, std::ptrdiff_t step, Mox32s pquant, Mox32u mask) {
  constexpr int kHalves = kLines * kChannels / 8;
  if (mask == 0) return moxStsOk;
  const auto lines = [=]<int B>(int half) { return vc1_hor_lines<B, kChannels>(edge, step, half); };
  const auto out = vc1_deblock_halves<kHalves>(lines, pquant, mask);
  if constexpr (kChannels == 2) {
    simd::store_row(out.p4[0] | simd::shl<8>(out.p4[1]), edge - step);
    simd::store_row(out.p5[0] | simd::shl<8>(out.p5[1]), edge);
  } else if constexpr (kHalves == 2) {
    simd::store_row(packus(out.p4[0], out.p4[1]), edge - step);
    simd::store_row(packus(out.p5[0], out.p5[1]), edge);
  } else {
    simd::store_rows<8, 2>(packus(out.p4[0], out.p5[0]), edge - step, step);
  }
  return moxStsOk;
}

/// Smooths 8 lines a block, of which x[0] to x[3] hold a sample each; sums wrap as the portable kernel's do.
template <int B>
MOX_INLINE void vc1_smooth(simd::s16<B>* x) {
  using simd::as, simd::s16, simd::s32, simd::shl, simd::shr;
  const auto r = as<s16>(simd::splat<s32, B>(0x00030004)), q = as<s16>(simd::splat<s32, B>(0x00040003));
  const auto outer = x[0] - x[3], both = outer + x[1] - x[2];
  x[0] = shr<3>(shl<3>(x[0]) - outer + r);
  x[1] = shr<3>(shl<3>(x[1]) - both + q);
  x[2] = shr<3>(shl<3>(x[2]) + both + r);
  x[3] = shr<3>(shl<3>(x[3]) + outer + q);
}
/// Samples of the picture: 128 added and limited.
template <int B>
MOX_INLINE simd::u8<B> vc1_picture(simd::s16<B> a, simd::s16<B> b) {
  const auto grey = simd::splat<simd::s16, B>(128);
  return packus(a + grey, b + grey);
}

/// The samples around a vertical edge, smoothed and stored; the same as bytes, four rows a vector.
template <int B>
struct VC1SmoothedRows {
  simd::u8<B> picture[2];

  MOX_INLINE VC1SmoothedRows(Mox16s* edge, std::ptrdiff_t step) {
    Mox8u* const first = reinterpret_cast<Mox8u*>(edge) - 2 * sizeof(Mox16s);
    const auto blocks = simd::strips<B>(8 * step);
    simd::s16<B> rows[8];
    for (int y = 0; y < 8; ++y) rows[y] = simd::load8<simd::s16, B>(first + y * step, blocks);
    VC1Columns<B> x(rows);
    vc1_smooth(x.v);
    const auto left = lo16(x.v[0], x.v[1]), right = lo16(x.v[2], x.v[3]);
    const auto left2 = hi16(x.v[0], x.v[1]), right2 = hi16(x.v[2], x.v[3]);
    const simd::s16<B> two[] = {lo32(left, right), hi32(left, right), lo32(left2, right2), hi32(left2, right2)};
    for (int i = 0; i < 4; ++i) store8x2(two[i], first + 2 * i * step, step, blocks);
    picture[0] = vc1_picture(two[0], two[1]), picture[1] = vc1_picture(two[2], two[3]);
  }
};
template <int B>
MOX_INLINE void vc1_smooth_ver(Mox16s* edge, std::ptrdiff_t step, Mox8u* dst, std::ptrdiff_t dstStep) {
  const VC1SmoothedRows<B> rows(edge, step);
  for (int i = 0; i < 2; ++i) {
    Mox8u* const to = dst - 2 + 4 * i * dstStep;
    simd::store_rows<4, 4>(simd::part<0>(rows.picture[i]), to, dstStep);
    if constexpr (B == 2) simd::store_rows<4, 4>(simd::part<1>(rows.picture[i]), to + 8 * dstStep, dstStep);
  }
}

/// The samples around 8 B columns of a horizontal edge, smoothed and stored.
template <int B>
struct VC1SmoothedColumns {
  simd::s16<B> x[4];

  MOX_INLINE VC1SmoothedColumns(Mox16s* edge, std::ptrdiff_t step) {
    Mox8u* const first = reinterpret_cast<Mox8u*>(edge) - 2 * step;
    for (int i = 0; i < 4; ++i) x[i] = simd::load_row<simd::s16, B>(first + i * step);
    vc1_smooth(x);
    for (int i = 0; i < 4; ++i) simd::store_row(x[i], first + i * step);
  }
};
template <int B>
MOX_INLINE void vc1_smooth_hor(Mox16s* edge, std::ptrdiff_t step, Mox8u* dst, std::ptrdiff_t dstStep) {
  const VC1SmoothedColumns<B> c(edge, step);
  store8x2(vc1_picture(c.x[0], c.x[1]), dst - 2 * dstStep, dstStep, simd::strips<B>(8));
  store8x2(vc1_picture(c.x[2], c.x[3]), dst, dstStep, simd::strips<B>(8));
}

inline MoxStatus ownSmoothing8_VerEdge_VC1(Mox16s* edge, std::ptrdiff_t step, Mox8u* dst, std::ptrdiff_t dstStep) {
  vc1_smooth_ver<1>(edge, step, dst, dstStep);
  return moxStsOk;
}
inline MoxStatus ownSmoothing8_HorEdge_VC1(Mox16s* edge, std::ptrdiff_t step, Mox8u* dst, std::ptrdiff_t dstStep) {
  vc1_smooth_hor<1>(edge, step, dst, dstStep);
  return moxStsOk;
}
inline MoxStatus ownSmoothing16_VerEdge_VC1(Mox16s* edge, std::ptrdiff_t step, Mox8u* dst, std::ptrdiff_t dstStep,
                                            Mox32u mask) {
  if (simd::kBlocks == 2 && mask == 3) {
    vc1_smooth_ver<simd::kBlocks>(edge, step, dst, dstStep);
  } else {
    if (mask & 1) vc1_smooth_ver<1>(edge, step, dst, dstStep);
    if (mask & 2) vc1_smooth_ver<1>(step_bytes(edge, 8 * step), step, dst + 8 * dstStep, dstStep);
  }
  return moxStsOk;
}
inline MoxStatus ownSmoothing16_HorEdge_VC1(Mox16s* edge, std::ptrdiff_t step, Mox8u* dst, std::ptrdiff_t dstStep,
                                            Mox32u mask) {
  if (simd::kBlocks == 2 && mask == 3) {
    vc1_smooth_hor<simd::kBlocks>(edge, step, dst, dstStep);
  } else {
    if (mask & 1) vc1_smooth_hor<1>(edge, step, dst, dstStep);
    if (mask & 2) vc1_smooth_hor<1>(edge + 8, step, dst + 8, dstStep);
  }
  return moxStsOk;
}
inline MoxStatus ownSmoothingPair_VerEdge_VC1(Mox16s* u, Mox16s* v, std::ptrdiff_t step, Mox8u* dst,
                                              std::ptrdiff_t dstStep) {
  const VC1SmoothedRows<1> first(u, step), second(v, step);
  for (int i = 0; i < 2; ++i) {
    Mox8u* const to = dst - 4 + 4 * i * dstStep;
    simd::store_rows<8, 2>(lo8(first.picture[i], second.picture[i]), to, dstStep);
    simd::store_rows<8, 2>(hi8(first.picture[i], second.picture[i]), to + 2 * dstStep, dstStep);
  }
  return moxStsOk;
}
inline MoxStatus ownSmoothingPair_HorEdge_VC1(Mox16s* u, Mox16s* v, std::ptrdiff_t step, Mox8u* dst,
                                              std::ptrdiff_t dstStep) {
  const VC1SmoothedColumns<1> first(u, step), second(v, step);
  for (int i = 0; i < 4; ++i) {
    const auto both = vc1_picture(first.x[i], second.x[i]);
    simd::store_row(lo8(both, hi64(both, both)), dst + (i - 2) * dstStep);
  }
  return moxStsOk;
}

/// Maps 16 B samples: the rule of the portable kernel with its constants gathered, -1020..4088 before the shift.
template <int B>
MOX_INLINE void vc1_map_range(const Mox8u* src, Mox8u* dst, Mox32s rangeMap) {
  using simd::s16, simd::shr;
  const auto factor = simd::splat<s16, B>(rangeMap + 9), rest = simd::splat<s16, B>(4 + 128 * 8 - 128 * (rangeMap + 9));
  const auto y = simd::load_row<simd::u8, B>(src);
  simd::store_row(packus(shr<3>(wide_lo(y) * factor + rest), shr<3>(wide_hi(y) * factor + rest)), dst);
}
inline MoxStatus ownRangeMapping_VC1(const Mox8u* src, std::ptrdiff_t srcStep, Mox8u* dst, std::ptrdiff_t dstStep,
                                     MoxiSize size, Mox32s rangeMap) {
  constexpr Mox32s kRun = 16 * simd::kBlocks;
  for (Mox32s y = 0; y < size.height; ++y, src += srcStep, dst += dstStep) {
    Mox32s x = 0;
    for (; size.width - x >= kRun; x += kRun) vc1_map_range<simd::kBlocks>(src + x, dst + x, rangeMap);
    px::vc1_map_range(src + x, dst + x, size.width - x, rangeMap);
  }
  return moxStsOk;
}

}  // namespace mox::vec
