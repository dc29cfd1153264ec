/// Vector kernels of the H.264 deblocking filter.
///
/// A line is an element of each of eight vectors, p3 to q3: bytes, or words for 16-bit samples. All arithmetic is of
/// sums that fit an element or of means with their lost bits put back, so one source serves both and no sample, even
/// one above the bit depth, overflows. Lines of a horizontal edge lie side by side as they are. Vertical edges are
/// transposed into a buffer on the stack, filtered there as horizontal ones, and written back if anything changed.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <type_traits>

#include "frame/generation.hpp"
#include "h264/deblock_px.hpp"
#include "simd/transpose.hpp"
#include "simd/vec.hpp"

namespace mox::vec {

template <class T, int B>
using DeblockVector = std::conditional_t<sizeof(T) == 1, simd::u8<B>, simd::u16<B>>;

template <class V>
MOX_INLINE V deblock_splat(int value) {
  if constexpr (std::is_same_v<V, simd::u8<V::B>>) return simd::splat<simd::u8, V::B>(value);
  if constexpr (std::is_same_v<V, simd::u16<V::B>>) return simd::splat<simd::u16, V::B>(value);
}
template <class V>
MOX_INLINE V deblock_ones() {
  return deblock_splat<V>(-1);
}

/// All ones where |a - b| is not below the threshold.
template <class V>
MOX_INLINE V deblock_far(V a, V b, V threshold) {
  return equal(subs(threshold, subs(a, b) | subs(b, a)), deblock_splat<V>(0));
}
/// (a + b) >> 1
template <class V>
MOX_INLINE V deblock_avg_down(V a, V b) {
  return avg(a, b) - ((a ^ b) & deblock_splat<V>(1));
}
template <class V>
MOX_INLINE V deblock_choose(V mask, V yes, V no) {
  return (mask & yes) | andnot(mask, no);
}

/// The samples across an edge, counted away from it; chroma takes two of each side.
template <bool kLuma, class V>
struct DeblockLines {
  static constexpr int kReach = kLuma ? 4 : 2;
  V p[kReach], q[kReach];
};

/// The amount that (4 (q0 - p0) + (p1 - q1) + 4) >> 3 is above or below 0; one of the two is 0.
template <class V>
struct DeblockDelta {
  V up, down;

  MOX_INLINE DeblockDelta(V p1, V p0, V q0, V q1) {
    // With bytes: mean = 128 + ((q0 - p0) >> 1); quarter = 192 + ((p1 - q1) >> 2), 128..255, so that
    // rest = 96 + (((q0 - p0 & 1) + (p1 - q1 >> 2) + 1) >> 1), 64..128, and the amount is mean + rest - 224.
    constexpr int kBits = std::is_same_v<V, simd::u8<V::B>> ? 8 : 16;
    const V ones = deblock_ones<V>();
    const V mean = avg(q0, p0 ^ ones), quarter = avg(avg(p1, q1 ^ ones), ones);
    const V rest = avg(quarter, (p0 ^ q0) & deblock_splat<V>(1));
    const V level = deblock_splat<V>(7 << (kBits - 3)) - rest;
    up = subs(mean, level), down = subs(level, mean);
  }
};

/// p1 of the normal rule; it stays within `limit` of its old value.
template <class V>
MOX_INLINE V deblock_normal_second(const V* a, V mean, V limit) {
  return min(max(deblock_avg_down(a[2], mean), subs(a[1], limit)), adds(a[1], limit));
}

/// The normal rule for the lines that are not off.
template <bool kLuma, class V>
MOX_INLINE void deblock_normal(DeblockLines<kLuma, V>& s, V off, V beta, V tc0, Mox32s largest) {
  V *const p = s.p, *const q = s.q;
  const DeblockDelta<V> delta(p[1], p[0], q[0], q[1]);
  V tc = tc0 + deblock_splat<V>(1);  // wraps
  if constexpr (kLuma) {
    const V mean = avg(p[0], q[0]);
    const V farP = deblock_far(p[2], p[0], beta), farQ = deblock_far(q[2], q[0], beta);
    tc = tc + deblock_splat<V>(1) + farP + farQ;
    p[1] = deblock_normal_second(p, mean, andnot(off | farP, tc0));
    q[1] = deblock_normal_second(q, mean, andnot(off | farQ, tc0));
  }
  tc = andnot(off, tc);
  const V up = min(delta.up, tc), down = min(delta.down, tc);
  p[0] = subs(adds(p[0], up), down);
  q[0] = adds(subs(q[0], up), down);
  if constexpr (std::is_same_v<V, simd::u16<V::B>>) {  // a delta of 0 leaves a sample above the depth as it is
    const V limit = equal(up | down, deblock_splat<V>(0)) | deblock_splat<V>(largest);
    p[0] = min(p[0], limit), q[0] = min(q[0], limit);
  }
}

/// The strong rule for one side, a, of the lines `on`; b lies across the edge and is old. Lines that are deep as well
/// change three samples.
template <bool kLuma, class V>
MOX_INLINE void deblock_strong_side(V (&a)[kLuma ? 4 : 2], V b0, V b1, V on, [[maybe_unused]] V deep) {
  const V one = deblock_splat<V>(1);
  const V weak = avg(a[1], deblock_avg_down(a[0], b1));
  if constexpr (!kLuma) {
    a[0] = deblock_choose(on, weak, a[0]);
  } else {
    const V inner = avg(a[0], b0), innerOdd = a[0] ^ b0;
    // sum = a2 + a1 + a0 + b0: `second` is (sum + 2) >> 2 and `carry` is bit 1 of the sum, so that sum >> 2 is their
    // difference.
    const V outer = avg(a[2], a[1]), odd = (a[2] ^ a[1]) | innerOdd, apart = outer ^ inner;
    const V second = avg(outer, inner) - (odd & apart & one), carry = (odd ^ apart) & one;
    // (2 (a3 + a2) + sum + 4) >> 3
    const V third = avg(avg(a[3], a[2]) - (andnot(carry, a[3] ^ a[2]) & one), second - carry);
    // (a2 + b1 + 2 (a1 + a0 + b0) + 4) >> 3
    const V ends = deblock_avg_down(a[2], b1), mixed = avg(ends, a[1]);
    const V first = avg(mixed, inner) - (((ends ^ a[1]) | innerOdd) & (mixed ^ inner) & one);
    a[0] = deblock_choose(on, deblock_choose(deep, first, weak), a[0]);
    a[1] = deblock_choose(deep, second, a[1]);
    a[2] = deblock_choose(deep, third, a[2]);
  }
}
template <bool kLuma, class V>
MOX_INLINE void deblock_strong(DeblockLines<kLuma, V>& s, V on, V alpha, V beta) {
  const V p0 = s.p[0], p1 = s.p[1];
  V deepP = on, deepQ = on;
  if constexpr (kLuma) {
    const V steep = deblock_far(p0, s.q[0], alpha);
    deepP = andnot(steep | deblock_far(s.p[2], p0, beta), on);
    deepQ = andnot(steep | deblock_far(s.q[2], s.q[0], beta), on);
  }
  deblock_strong_side<kLuma>(s.p, s.q[0], s.q[1], on, deepP);
  deblock_strong_side<kLuma>(s.q, p0, p1, on, deepQ);
}

/// For each byte of a row of lines where to find it in four values of kUnit bytes: elements of kBytes bytes, a quarter
/// of the lines to each value; 128, which gives 0, behind the last line.
template <int kElements, int kBytes, int kUnit>
alignas(32) inline constexpr auto kDeblockSpread = [] {
  std::array<Mox8u, std::max(16, kElements * kBytes)> index{};
  index.fill(128);
  for (int i = 0; i < kElements * kBytes; ++i)
    index[i] = static_cast<Mox8u>(i / kBytes / (kElements / 4) * kUnit + i % kUnit);
  return index;
}();

/// All ones in the byte of each quarter of an edge where the strong rule runs.
template <EdgeForm kForm>
MOX_INLINE Mox32u deblock_strong_quarters(const Mox8u* bs, bool outer) {
  Mox32u quarters = 0;
  for (int i = 0; i < 4; ++i) quarters |= is_strong<kForm>(bs, i, outer) ? 0xFFu << 8 * i : 0;
  return quarters;
}

/// A row of the lines' samples, of 4 or 8 bytes or of whole blocks.
template <int kBytes, class V>
MOX_INLINE V deblock_load(const void* p) {
  if constexpr (kBytes == 4) return {simd::raw4(p)};
  if constexpr (kBytes == 8) return {simd::raw8(p)};
  if constexpr (kBytes >= 16) return {simd::load_row<simd::u8, V::B>(p).r};
}
template <int kBytes, class V>
MOX_INLINE void deblock_store(V v, void* p) {
  if constexpr (kBytes == 4) simd::raw_store4(p, v.r);
  if constexpr (kBytes == 8) simd::raw_store8(p, v.r);
  if constexpr (kBytes >= 16) simd::store_row(v, p);
}

/// Filters one edge whose lines lie side by side; `step` leads across it. True if a line passed the thresholds.
template <EdgeForm kForm, class T>
bool filter_edge(T* edge, Mox32s step, Mox32u alpha, Mox32u beta, const T* tc0, const Mox8u* bs, bool outer,
                 Mox32s largest) {
  using simd::as, simd::s32, simd::u8;
  constexpr int kElements = kForm.lines * kForm.channels, kBytes = kElements * static_cast<int>(sizeof(T));
  constexpr int B = std::clamp(kBytes / 16, 1, simd::kBlocks), kReach = kForm.luma() ? 4 : 2;
  using V = DeblockVector<T, B>;
  const Mox32u strong = deblock_strong_quarters<kForm>(bs, outer), active = load<Mox32u>(bs) | strong;
  const auto spread = [](u8<B> values, const Mox8u* index) {
    return V{lookup(values, simd::load_row<u8, B>(index)).r};
  };
  const auto quarters = [](Mox32u bytes) { return as<u8>(simd::splat<s32, B>(static_cast<int>(bytes))); };

  bool any = false;
  for (int i = 0; i < std::max(1, kBytes / (16 * B)); ++i) {
    const int first = 16 * B * i;
    const Mox8u* const byQuarter = kDeblockSpread<kElements, sizeof(T), 1>.data() + first;
    T* const at = edge + first / static_cast<int>(sizeof(T));
    DeblockLines<kForm.luma(), V> s;
    for (int k = 0; k < kReach; ++k) {
      s.p[k] = deblock_load<kBytes, V>(at - (k + 1) * std::ptrdiff_t{step});
      s.q[k] = deblock_load<kBytes, V>(at + k * std::ptrdiff_t{step});
    }
    const V b = deblock_splat<V>(static_cast<int>(beta));
    const V off = equal(spread(quarters(active), byQuarter), deblock_splat<V>(0)) |
                  deblock_far(s.p[0], s.q[0], deblock_splat<V>(static_cast<int>(alpha))) |
                  deblock_far(s.p[1], s.p[0], b) | deblock_far(s.q[1], s.q[0], b);
    if (is_zero(as<simd::u16>(off ^ deblock_ones<V>()))) continue;
    any = true;
    const V strongLines = spread(quarters(strong), byQuarter);
    if (strong != 0xFFFFFFFF) {
      const u8<B> limits =
          sizeof(T) == 1 ? quarters(load<Mox32u>(tc0)) : simd::gather<u8, B>(tc0, simd::strips<B>(0), simd::raw8);
      const V tc = spread(limits, kDeblockSpread<kElements, sizeof(T), sizeof(T)>.data() + first);
      deblock_normal(s, off | strongLines, b, tc, largest);
    }
    if (strong != 0)
      deblock_strong(s, andnot(off, strongLines), deblock_splat<V>(static_cast<int>((alpha >> 2) + 2)), b);
    for (int k = 0; k < (kForm.luma() ? 3 : 1); ++k) {
      if (k == 2 && strong == 0) break;
      deblock_store<kBytes>(s.p[k], at - (k + 1) * std::ptrdiff_t{step});
      deblock_store<kBytes>(s.q[k], at + k * std::ptrdiff_t{step});
    }
  }
  return any;
}

/// The edge kernels of the 8-bit 4:2:0 forms.
template <EdgeForm kForm>
bool filter_edge_8u(Mox8u* edge, Mox32s step, Mox32u alpha, Mox32u beta, const Mox8u* tc0, const Mox8u* bs,
                    bool outer) {
  return filter_edge<kForm>(edge, step, alpha, beta, tc0, bs, outer, 255);
}
inline constexpr auto deblocking_luma_vert_edge_h264_sse2 = &filter_edge_8u<forms::kLumaVer_8u>;
inline constexpr auto deblocking_luma_horz_edge_h264_ssse3 = &filter_edge_8u<forms::kLumaHor_8u>;
inline constexpr auto deblocking_chroma_vert_edge_h264_sse2 = &filter_edge_8u<forms::kChromaVer_8u>;
inline constexpr auto deblocking_chroma_horz_edge_h264_ssse3 = &filter_edge_8u<forms::kChromaHor_8u>;
inline constexpr auto deblocking_chroma_vert_edge_nv12_h264_sse2 = &filter_edge_8u<forms::kChromaVer_8u_C2>;
inline constexpr auto deblocking_chroma_horz_edge_nv12_h264_sse2 = &filter_edge_8u<forms::kChromaHor_8u_C2>;

/// Filters `count` vertical edges that follow each other; `filter(edge, step, i)` filters edge i of them in the buffer.
/// Exactly the samples of these edges are read: four columns for each, and four more in luma.
template <EdgeForm kForm, class T, class Filter>
MOX_INLINE void filter_columns(T* edge, Mox32s step, int count, Filter filter) {
  constexpr int kReach = kForm.luma() ? 4 : 2, kColumn = kForm.lines * kForm.channels;
  constexpr int kBytes = kForm.channels * static_cast<int>(sizeof(T));
  using Eight = simd::Transposition<kForm.lines, 8, kBytes>;
  using Four = simd::Transposition<kForm.lines, 4, kBytes>;
  alignas(32) T buffer[kColumn * (kForm.luma() ? 4 * kForm.edges + 4 : 4 * kForm.edges)];
  const int width = 4 * (kForm.luma() ? count + 1 : count), pairs = width / 8;
  const std::ptrdiff_t stride = step * std::ptrdiff_t{sizeof(T)};
  Mox8u* const rows = reinterpret_cast<Mox8u*>(edge - kReach * kForm.channels);
  Mox8u* const columns = reinterpret_cast<Mox8u*>(buffer);
  constexpr int kStride = kColumn * static_cast<int>(sizeof(T));
  for (int i = 0; i < pairs; ++i) Eight::to_columns(rows + 8 * kBytes * i, stride, columns + 8 * kStride * i);
  if (width % 8 != 0) Four::to_columns(rows + 8 * kBytes * pairs, stride, columns + 8 * kStride * pairs);
  bool any = false;
  for (int i = 0; i < count; ++i) any |= filter(buffer + (kReach + 4 * i) * kColumn, kColumn, i);
  if (!any) return;
  for (int i = 0; i < pairs; ++i) Eight::to_rows(columns + 8 * kStride * i, rows + 8 * kBytes * i, stride);
  if (width % 8 != 0) Four::to_rows(columns + 8 * kStride * pairs, rows + 8 * kBytes * pairs, stride);
}

/// True if the vectors hold the largest sample.
template <class T>
constexpr bool fits_samples(Mox32s largest) {
  return largest == static_cast<T>(largest);
}

/// Filters the edges of a block in order, vertical ones by runs of edges that have something to do.
template <EdgeForm kForm, auto kKernel, class T, class... Max>
MoxStatus filter_block(T* block, Mox32s step, const T* alpha, const T* beta, const T* tc0, const Mox8u* bs,
                       Max... max) {
  if constexpr (sizeof...(max) == 1) {
    if (!fits_samples<T>(max...))
      return px::filter_block<kForm, px::filter_edge<kForm, T>>(block, step, alpha, beta, tc0, bs, max...);
  }
  if constexpr (kForm.direction == Direction::kHorizontal)
    return px::filter_block<kForm, kKernel>(block, step, alpha, beta, tc0, bs, max...);
  const auto off = [=](int e) { return load<Mox32u>(bs + e * kForm.bsRow) == 0; };
  for (int first = 0, end; first < kForm.edges; first = end) {
    end = first + 1;
    if (off(first)) continue;
    while (end < kForm.edges && !off(end)) ++end;
    filter_columns<kForm>(block + 4 * first * kForm.channels, step, end - first, [=](T* edge, Mox32s across, int i) {
      const int e = first + i;
      return kKernel(edge, across, alpha[e > 0], beta[e > 0], tc0 + 4 * e, bs + e * kForm.bsRow, e == 0, max...);
    });
  }
  return moxStsOk;
}

/// Filters the one edge of a mixed frame and field pair.
template <EdgeForm kForm, class T>
MoxStatus filter_single_edge(T* edge, Mox32s step, Mox32u alpha, Mox32u beta, const T* tc0, const Mox8u* bs,
                             Mox32s max) {
  constexpr Mox32u kLargest = std::numeric_limits<T>::max();
  if (!fits_samples<T>(max) || alpha > kLargest || beta > kLargest)
    return px::filter_single_edge<kForm>(edge, step, alpha, beta, tc0, bs, max);
  if (alpha == 0 || load<Mox32u>(bs) == 0) return moxStsOk;
  filter_columns<kForm>(edge, step, 1, [=](T* columns, Mox32s across, int) {
    return filter_edge<kForm>(columns, across, alpha, beta, tc0, bs, true, max);
  });
  return moxStsOk;
}

}  // namespace mox::vec
