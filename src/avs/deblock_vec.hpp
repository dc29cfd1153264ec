/// Vector kernels of AVS deblocking: eight lines side by side as words.
#pragma once

#include <cstddef>

#include "avs/deblock_px.hpp"
#include "frame/generation.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

using AvsWords = simd::s16<1>;

/// Samples across an edge, one line in each word.
struct AvsAcross {
  AvsWords p2, p1, p0, q0, q1, q2;
};

MOX_INLINE AvsWords avs_splat(int value) { return simd::splat<simd::s16, 1>(value); }
/// All ones where |v| is below the limit.
MOX_INLINE AvsWords avs_below(AvsWords v, AvsWords limit) { return greater(limit, abs(v)); }
MOX_INLINE AvsWords avs_choose(AvsWords mask, AvsWords yes, AvsWords no) { return (mask & yes) | andnot(mask, no); }
MOX_INLINE AvsWords avs_clip(AvsWords v, AvsWords low, AvsWords high) { return min(max(v, low), high); }
MOX_INLINE bool avs_any(AvsWords mask) { return !is_zero(simd::as<simd::u16>(mask)); }

/// All ones in the lines of the halves that are chosen.
MOX_INLINE AvsWords avs_lines(bool first, bool second) { return lo64(avs_splat(-first), avs_splat(-second)); }

/// New samples s0 and s1 of a side at strength 2, from its old ones and the other side's first one.
template <bool kLuma>
MOX_INLINE void smooth_avs_lines(AvsWords lines, AvsWords flat, AvsWords beta, AvsWords o0, AvsWords& s0, AvsWords& s1,
                                 AvsWords s2) {
  const auto both = s0 + o0 + avs_splat(2);
  const auto weak = simd::shr<2>(s1 + s1 + both), strong = simd::shr<2>(s1 + s0 + both);
  const auto deep = flat & avs_below(s2 - s0, beta);
  s0 = avs_choose(lines, avs_choose(deep, strong, weak), s0);
  if (kLuma) s1 = avs_choose(lines & deep, weak, s1);
}

/// Strength 1 for the chosen lines.
template <bool kLuma>
MOX_INLINE void adjust_avs_lines(AvsWords lines, AvsWords beta, AvsWords limit, AvsAcross& s) {
  const auto zero = avs_splat(0), most = avs_splat(255);
  const auto limited = [&](AvsWords eighths, AvsWords where) {
    return avs_clip(simd::shr<3>(eighths + avs_splat(4)), zero - limit, limit) & where;
  };
  const auto times3 = [](AvsWords v) { return v + v + v; };
  const auto ap = lines & avs_below(s.p2 - s.p0, beta), aq = lines & avs_below(s.q2 - s.q0, beta);
  const auto d = limited(times3(s.q0 - s.p0) + s.p1 - s.q1, lines);
  s.p0 = avs_clip(s.p0 + d, zero, most);
  s.q0 = avs_clip(s.q0 - d, zero, most);
  if (!kLuma) return;
  s.p1 = s.p1 + limited(times3(s.p0 - s.p1) + s.p2 - s.q0, ap);  // limited to bytes when packed
  s.q1 = s.q1 - limited(times3(s.q1 - s.q0) + s.p0 - s.q2, aq);
}

/// Filters lines 0 to 3 and 4 to 7 with a strength each. False if nothing changes.
template <bool kLuma>
MOX_INLINE bool deblock_avs_lines(AvsAcross& s, Mox8u first, Mox8u second, const AvsThresholds& t) {
  const auto alpha = avs_splat(t.alpha), beta = avs_splat(t.beta), gap = s.p0 - s.q0;
  const auto change = avs_lines(first != 0, second != 0) & avs_below(gap, alpha) & avs_below(s.p1 - s.p0, beta) &
                      avs_below(s.q1 - s.q0, beta);
  if (!avs_any(change)) return false;
  if (first == 1 || second == 1)
    adjust_avs_lines<kLuma>(change & avs_lines(first == 1, second == 1), beta, avs_splat(t.limit), s);
  if (first > 1 || second > 1) {
    const auto lines = change & avs_lines(first > 1, second > 1);
    const auto flat = avs_below(gap, avs_splat((t.alpha >> 2) + 2));
    const auto p0 = s.p0;
    smooth_avs_lines<kLuma>(lines, flat, beta, s.q0, s.p0, s.p1, s.p2);
    smooth_avs_lines<kLuma>(lines, flat, beta, p0, s.q0, s.q1, s.q2);
  }
  return true;
}

/// Eight columns from q on.
template <bool kLuma>
MOX_INLINE void deblock_avs_columns(Mox8u* q, std::ptrdiff_t step, Mox8u first, Mox8u second, const AvsThresholds& t) {
  const auto row = [=](int y) { return simd::load8_wide<1>(q + y * step, {{0}}); };
  AvsAcross s{row(-3), row(-2), row(-1), row(0), row(1), row(2)};
  if (!deblock_avs_lines<kLuma>(s, first, second, t)) return;
  if (kLuma) {
    simd::store8x2(packus(s.p1, s.p0), q - 2 * step, step, simd::strips<1>(0));
    simd::store8x2(packus(s.q0, s.q1), q, step, simd::strips<1>(0));
  } else {
    simd::store8x2(packus(s.p0, s.q0), q - step, step, simd::strips<1>(0));
  }
}

/// Eight rows from q on, of which four samples on each side are read.
template <bool kLuma>
MOX_INLINE void deblock_avs_rows(Mox8u* q, std::ptrdiff_t step, Mox8u first, Mox8u second, const AvsThresholds& t) {
  using simd::as, simd::u8;
  const auto rows = [=](int y) { return simd::load8x2<u8, 1>(q - 4 + y * step, 4 * step, {{0}}); };
  // Rows y and y + 4 side by side become columns -4 to 3 by three rounds of interleaving.
  const auto interleave = [](u8<1> a, u8<1> b, auto& low, auto& high) { low = lo8(a, b), high = hi8(a, b); };
  u8<1> r02[2], r13[2], even[2], odd[2];
  interleave(rows(0), rows(2), r02[0], r02[1]);
  interleave(rows(1), rows(3), r13[0], r13[1]);
  interleave(r02[0], r13[0], even[0], even[1]);  // columns 0 to 3 and 4 to 7 of rows 0 to 3
  interleave(r02[1], r13[1], odd[0], odd[1]);    // of rows 4 to 7
  const auto left01 = lo32(as<simd::s32>(even[0]), as<simd::s32>(odd[0]));
  const auto left23 = hi32(as<simd::s32>(even[0]), as<simd::s32>(odd[0]));
  const auto right01 = lo32(as<simd::s32>(even[1]), as<simd::s32>(odd[1]));
  const auto right23 = hi32(as<simd::s32>(even[1]), as<simd::s32>(odd[1]));
  AvsAcross s{wide_hi(as<u8>(left01)),  wide_lo(as<u8>(left23)),  wide_hi(as<u8>(left23)),
              wide_lo(as<u8>(right01)), wide_hi(as<u8>(right01)), wide_lo(as<u8>(right23))};
  if (!deblock_avs_lines<kLuma>(s, first, second, t)) return;
  if (kLuma) {
    const auto p = packus(s.p1, s.p0), r = packus(s.q0, s.q1);
    const auto outer = lo8(p, r), inner = hi8(p, r);  // p1 q0, p0 q1
    simd::store_rows<4, 4>(lo8(outer, inner), q - 2, step);
    simd::store_rows<4, 4>(hi8(outer, inner), q - 2 + 4 * step, step);
  } else {
    const auto both = packus(s.p0, s.q0);
    simd::store_rows<2, 8>(lo8(both, hi64(both, both)), q - 1, step);
  }
}

/// An edge of luma is 16 lines with a strength for each 8, one of chroma 8 lines with a strength for each 4.
template <bool kLuma>
void deblock_avs_vertical(Mox8u* q, std::ptrdiff_t step, const Mox8u* bS, const AvsThresholds& t) {
  if constexpr (kLuma) {
    if (bS[0] != 0) deblock_avs_rows<true>(q, step, bS[0], bS[0], t);
    if (bS[1] != 0) deblock_avs_rows<true>(q + 8 * step, step, bS[1], bS[1], t);
  } else {
    deblock_avs_rows<false>(q, step, bS[0], bS[1], t);
  }
}
template <bool kLuma>
void deblock_avs_horizontal(Mox8u* q, std::ptrdiff_t step, const Mox8u* bS, const AvsThresholds& t) {
  if constexpr (kLuma) {
    if (bS[0] != 0) deblock_avs_columns<true>(q, step, bS[0], bS[0], t);
    if (bS[1] != 0) deblock_avs_columns<true>(q + 8, step, bS[1], bS[1], t);
  } else {
    deblock_avs_columns<false>(q, step, bS[0], bS[1], t);
  }
}

}  // namespace mox::vec
