/// Vector kernels of the H.263 filters across block edges: positions side by side as words.
#pragma once

#include <cstddef>

#include "frame/generation.hpp"
#include "h263/filter_px.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

/// Samples across an edge, one position in each word.
template <int B>
struct AcrossEdge {
  simd::s16<B> a, b, c, d;
};

/// Samples as bytes: in each block those of A and then of B, and those of C and then of D.
template <int B>
struct EdgeBytes {
  simd::u8<B> ab, cd;
};

/// No limit of the strength.
struct Unlimited {
  template <int B>
  MOX_INLINE simd::u16<B> operator()(simd::u16<B> size) const {
    return size;
  }
};
/// The ramp down from the strength to 0.
struct RampDown {
  Mox32s strength;
  template <int B>
  MOX_INLINE simd::u16<B> operator()(simd::u16<B> size) const {
    const auto excess = subs(size, simd::splat<simd::u16, B>(strength));  // 159 at most
    return subs(size, excess + excess);
  }
};

/// Words become bytes only at the end, where packing limits them to 0..255.
template <int B, class Limit>
MOX_INLINE EdgeBytes<B> deblock(const AcrossEdge<B>& in, Limit limit) {
  using simd::as, simd::s16, simd::u16, simd::shl, simd::shr;
  const auto apart = in.a - in.d;                 // -255..255
  const auto d = shl<2>(in.c - in.b) + apart;     // -1275..1275
  const auto r = limit(shr<3>(as<u16>(abs(d))));  // 0..159
  const auto s = signed_by(as<s16>(r), d);
  const auto t = signed_by(min(as<s16>(shr<2>(as<u16>(abs(apart)))), as<s16>(shr<1>(r))), apart);
  return {packus(in.a - t, in.b + s), packus(in.c - s, in.d + t)};
}

/// 8 B columns from `edge` on.
template <int B, class Limit>
MOX_INLINE void deblock_columns(Mox8u* edge, std::ptrdiff_t step, Limit limit) {
  const auto row = [=](std::ptrdiff_t y) { return simd::as<simd::s16>(simd::load_row_wide<B>(edge + y * step)); };
  const auto out = deblock<B>({row(-2), row(-1), row(0), row(1)}, limit);
  const auto gap = step;
  store8x2(out.ab, edge - 2 * step, gap, simd::strips<B>(8));
  store8x2(out.cd, edge, gap, simd::strips<B>(8));
}

/// 8 rows from `edge` on, transposed on their way in and out. All rows are read before one is written.
template <class Limit>
MOX_INLINE void deblock_rows(Mox8u* edge, std::ptrdiff_t step, Limit limit) {
  using simd::as, simd::s32, simd::u8;
  alignas(16) static constexpr Mox8u kByColumns[16] = {0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15};
  const auto columns = simd::table<u8, 1>(kByColumns);
  Mox8u* const first = edge - 2;
  const auto upper = as<s32>(lookup(simd::load_rows<4, 4>(first, step), columns));
  const auto lower = as<s32>(lookup(simd::load_rows<4, 4>(first + 4 * step, step), columns));
  const auto ab = as<u8>(lo32(upper, lower)), cd = as<u8>(hi32(upper, lower));
  const auto out = deblock<1>({wide_lo(ab), wide_hi(ab), wide_lo(cd), wide_hi(cd)}, limit);
  const auto ac = lo8(out.ab, out.cd), bd = hi8(out.ab, out.cd);
  simd::store_rows<4, 4>(lo8(ac, bd), first, step);
  simd::store_rows<4, 4>(hi8(ac, bd), first + 4 * step, step);
}

/// B' and C' of 8 pairs B, C, as words.
struct SmoothPairs {
  simd::s16<1> b, c;
  MOX_INLINE explicit SmoothPairs(simd::u8<1> pairs) : b(weighted(pairs, 0x0103)), c(weighted(pairs, 0x0301)) {}

 private:
  /// (low byte of weights * B + high byte * C + 2) >> 2
  MOX_INLINE static simd::s16<1> weighted(simd::u8<1> pairs, int weights) {
    const auto sum = maddubs(pairs, simd::as<simd::u8>(simd::splat<simd::u16, 1>(weights)));  // 0..1020
    return simd::shr<2>(sum + simd::splat<simd::s16, 1>(2));
  }
};

inline MoxStatus ownFilterDeblocking8x8_H263_H(Mox8u* edge, Mox32s step, Mox32s strength) {
  deblock_columns<1>(edge, step, RampDown{strength});
  return moxStsOk;
}
inline MoxStatus ownFilterDeblocking8x8_H263_V(Mox8u* edge, Mox32s step, Mox32s strength) {
  deblock_rows(edge, step, RampDown{strength});
  return moxStsOk;
}
inline MoxStatus ownFilterDeblocking16x16_H263_H(Mox8u* edge, Mox32s step) {
  for (int x = 0; x < 16; x += 8 * simd::kBlocks) deblock_columns<simd::kBlocks>(edge + x, step, Unlimited());
  return moxStsOk;
}
inline MoxStatus ownFilterDeblocking16x16_H263_V(Mox8u* edge, Mox32s step) {
  const std::ptrdiff_t half = std::ptrdiff_t{8} * step;
  deblock_rows(edge, step, Unlimited());
  deblock_rows(edge + half, step, Unlimited());
  return moxStsOk;
}
inline MoxStatus ownFilterBB16x16_H263_H(Mox8u* edge, Mox32s step) {
  Mox8u* const above = edge - step;
  const simd::u8<1> b{simd::raw16(above)}, c{simd::raw16(edge)};
  const SmoothPairs left(lo8(b, c)), right(hi8(b, c));
  simd::raw_store16(above, packus(left.b, right.b).r);
  simd::raw_store16(edge, packus(left.c, right.c).r);
  return moxStsOk;
}
inline MoxStatus ownFilterBB16x16_H263_V(Mox8u* edge, Mox32s step) {
  for (std::ptrdiff_t y : {0, 8}) {
    Mox8u* const pairs = edge - 1 + y * step;
    const SmoothPairs rows(simd::load_rows<2, 8>(pairs, step));
    const auto out = packus(rows.b, rows.c);
    simd::store_rows<2, 8>(lo8(out, hi64(out, out)), pairs, step);
  }
  return moxStsOk;
}

}  // namespace mox::vec
