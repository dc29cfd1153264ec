/// Vector kernels of the H.264 deblocking filter.
///
/// A line is an element of each of eight vectors, p3 to q3: a byte, or a word for 16-bit samples. All arithmetic is of
/// sums that fit an element or of means with their lost bits put back, so one source serves both and no sample, even
/// one above the bit depth, overflows. Lines of a horizontal edge lie side by side as they are. Vertical chroma edges,
/// which do not touch each other, are transposed in registers: one by one, or both at once where samples are bytes.
/// Vertical luma edges do: those that follow each other are transposed together into a buffer on the stack, filtered
/// there as horizontal ones, and written back if anything changed.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
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

template <class V>
MOX_INLINE V deblock_distance(V a, V b) {
  return subs(a, b) | subs(b, a);
}
/// All ones where |a - b| is not below the threshold.
template <class V>
MOX_INLINE V deblock_far(V a, V b, V threshold) {
  return equal(subs(threshold, deblock_distance(a, b)), deblock_splat<V>(0));
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

/// Filters the lines from byte `first` of a row on, as `rule` asks. False if none passes the thresholds.
template <bool kStrong, class Rule, bool kLuma, class V>
MOX_INLINE bool deblock_lines(const Rule& rule, DeblockLines<kLuma, V>& s, int first) {
  const V beta = rule.betas();
  const V slope = max(deblock_distance(s.p[1], s.p[0]), deblock_distance(s.q[1], s.q[0]));
  const V room = min(subs(rule.alphas(), deblock_distance(s.p[0], s.q[0])), subs(beta, slope));
  const V passed = min(room, rule.active_lines(first));
  if (is_zero(simd::as<simd::u16>(passed))) return false;
  const V off = equal(passed, deblock_splat<V>(0));
  if constexpr (!kStrong) {
    deblock_normal(s, off, beta, rule.limits(first), rule.largest);
  } else {
    const V strong = rule.strong_lines(first);
    if (!rule.all_strong()) deblock_normal(s, off | strong, beta, rule.limits(first), rule.largest);
    deblock_strong(s, andnot(off, strong), rule.flat_steps(), beta);
  }
  return true;
}

/// What an edge asks of its lines, which are taken kPart bytes of a row at a time.
template <EdgeForm kForm, class T>
struct DeblockEdge {
  static constexpr bool kLuma = kForm.luma(), kTransposed = kForm.direction == Direction::kVertical && !kLuma;
  static constexpr int kElements = kForm.lines * kForm.channels, kBytes = kElements * static_cast<int>(sizeof(T));
  static constexpr int B = kTransposed ? 1 : std::clamp(kBytes / 16, 1, simd::kBlocks),
                       kPart = std::min(kBytes, 16 * B);
  using V = DeblockVector<T, B>;
  using Bytes = simd::u8<B>;
  using Lines = DeblockLines<kLuma, V>;

  int alpha, beta;
  const T* tc0;
  Mox32u strong, active;  ///< by quarters of the edge, a byte for each
  Mox32s largest;

  static MOX_INLINE Bytes quarters(Mox32u bytes) {
    return simd::as<simd::u8>(simd::splat<simd::s32, B>(static_cast<int>(bytes)));
  }
  template <int kUnit>
  static MOX_INLINE V spread(Bytes values, int first) {
    const Mox8u* const index = kDeblockSpread<kElements, sizeof(T), kUnit>.data() + first;
    return {lookup(values, simd::load_row<simd::u8, B>(index)).r};
  }
  MOX_INLINE V limits(int first) const {
    if constexpr (sizeof(T) == 1) return spread<1>(quarters(load<Mox32u>(tc0)), first);
    if constexpr (sizeof(T) == 2)
      return spread<2>(simd::gather<simd::u8, B>(tc0, simd::strips<B>(0), simd::raw8), first);
  }

  MOX_INLINE V alphas() const { return deblock_splat<V>(alpha); }
  MOX_INLINE V betas() const { return deblock_splat<V>(beta); }
  MOX_INLINE V flat_steps() const { return deblock_splat<V>((alpha >> 2) + 2); }
  MOX_INLINE V active_lines(int first) const { return spread<1>(quarters(active), first); }
  MOX_INLINE V strong_lines(int first) const { return spread<1>(quarters(strong), first); }
  MOX_INLINE bool all_strong() const { return strong == 0xFFFFFFFF; }

  /// Lines side by side; `step` leads across the edge. Only the strong rule needs the samples farthest from it.
  template <bool kStrong>
  static MOX_INLINE void load_rows(Lines& s, const T* q0, std::ptrdiff_t step) {
    const auto row = [](const T* p) -> V {
      if constexpr (kPart == 8) return {simd::raw8(p)};
      if constexpr (kPart >= 16) return {simd::load_row<simd::u8, B>(p).r};
    };
    for (int k = 0; k < (kLuma && !kStrong ? 3 : Lines::kReach); ++k)
      s.p[k] = row(q0 - (k + 1) * step), s.q[k] = row(q0 + k * step);
  }
  template <bool kStrong>
  static MOX_INLINE void store_rows(const Lines& s, T* q0, std::ptrdiff_t step) {
    const auto row = [](V v, T* p) {
      if constexpr (kPart == 8) simd::raw_store8(p, v.r);
      if constexpr (kPart >= 16) simd::store_row(v, p);
    };
    for (int k = 0; k < (!kLuma ? 1 : !kStrong ? 2 : 3); ++k)
      row(s.p[k], q0 - (k + 1) * step), row(s.q[k], q0 + k * step);
  }

  /// Chroma lines below each other; `step` leads from one to the next.
  static constexpr int kSample = kForm.channels * static_cast<int>(sizeof(T)), kLines = kPart / kSample;
  static MOX_INLINE void load_columns(Lines& s, const T* q0, std::ptrdiff_t step) {
    using Columns = simd::Transposition<kLines, 4, kSample>;
    simd::u8<1> r[Columns::kCount];
    Columns::load_columns(reinterpret_cast<const Mox8u*>(q0 - 2 * kForm.channels), step * std::ptrdiff_t{sizeof(T)}, r);
    if constexpr (kPart == 8) {
      s.p[1] = {r[0].r}, s.p[0] = {hi64(r[0], r[0]).r}, s.q[0] = {r[1].r}, s.q[1] = {hi64(r[1], r[1]).r};
    } else {
      s.p[1] = {r[0].r}, s.p[0] = {r[1].r}, s.q[0] = {r[2].r}, s.q[1] = {r[3].r};
    }
  }
  static MOX_INLINE void store_columns(const Lines& s, T* q0, std::ptrdiff_t step) {
    constexpr int kPair = 2 * kSample, kRows = 16 / kPair;
    const simd::u8<1> p0 = {s.p[0].r}, r0 = {s.q[0].r};
    Mox8u* const to = reinterpret_cast<Mox8u*>(q0 - kForm.channels);
    const std::ptrdiff_t stride = step * std::ptrdiff_t{sizeof(T)};
    simd::store_rows<kPair, kRows>(simd::interleave_lo<kSample>(p0, r0), to, stride);
    if constexpr (kPart == 16)
      simd::store_rows<kPair, kRows>(simd::interleave_hi<kSample>(p0, r0), to + kRows * stride, stride);
  }
};

template <bool kStrong, EdgeForm kForm, class T>
MOX_INLINE bool filter_edge_lines(const DeblockEdge<kForm, T>& rule, T* edge, Mox32s step) {
  using Edge = DeblockEdge<kForm, T>;
  bool any = false;
  for (int first = 0; first < Edge::kBytes; first += Edge::kPart) {
    typename Edge::Lines s;
    if constexpr (Edge::kTransposed) {
      T* const q0 = edge + first / Edge::kSample * std::ptrdiff_t{step};
      Edge::load_columns(s, q0, step);
      if (deblock_lines<kStrong>(rule, s, first)) Edge::store_columns(s, q0, step);
    } else {
      T* const q0 = edge + first / static_cast<int>(sizeof(T));
      Edge::template load_rows<kStrong>(s, q0, step);
      if (!deblock_lines<kStrong>(rule, s, first)) continue;
      Edge::template store_rows<kStrong>(s, q0, step);
      any = true;
    }
  }
  return any;
}
/// Filters one edge: a chroma edge where it is, a luma edge whose lines lie side by side, `step` leading across it.
/// True if a line of luma passed the thresholds.
template <EdgeForm kForm, class T>
bool filter_edge(T* edge, Mox32s step, Mox32u alpha, Mox32u beta, const T* tc0, const Mox8u* bs, bool outer,
                 Mox32s largest) {
  const Mox32u strong = deblock_strong_quarters<kForm>(bs, outer), active = load<Mox32u>(bs) | strong;
  const DeblockEdge<kForm, T> rule = {static_cast<int>(alpha), static_cast<int>(beta), tc0, strong, active, largest};
  return strong == 0 ? filter_edge_lines<false>(rule, edge, step) : filter_edge_lines<true>(rule, edge, step);
}

/// For each byte of eight lines of two edges, one behind the other, which of their eight quarters it belongs to.
template <int kLines>
alignas(16) inline constexpr auto kDeblockPairSpread = [] {
  std::array<std::array<Mox8u, 16>, kLines / 8> index{};
  for (int line = 0; line < kLines; ++line) {
    for (int edge = 0; edge < 2; ++edge)
      index[line / 8][8 * edge + line % 8] = static_cast<Mox8u>(4 * edge + line / (kLines / 4));
  }
  return index;
}();

/// What two vertical chroma edges ask of their lines, of which a vector has eight of each.
template <EdgeForm kForm>
struct DeblockPair {
  using V = simd::u8<1>;

  const Mox8u *alpha, *beta, *tc0;
  std::uint64_t strong, active;  ///< by quarters of both edges, a byte for each
  static constexpr Mox32s largest = 255;

  static MOX_INLINE V of_each(const Mox8u* values) {
    return lo64(deblock_splat<V>(values[0]), deblock_splat<V>(values[1]));
  }
  static MOX_INLINE V spread(const void* quarters, int line) {
    const Mox8u* const index = kDeblockPairSpread<kForm.lines>[static_cast<std::size_t>(line / 8)].data();
    return lookup(V{simd::raw8(quarters)}, simd::load_row<simd::u8, 1>(index));
  }
  MOX_INLINE V alphas() const { return of_each(alpha); }
  MOX_INLINE V betas() const { return of_each(beta); }
  MOX_INLINE V flat_steps() const { return deblock_splat<V>(0); }  // of luma alone
  MOX_INLINE V active_lines(int line) const { return spread(&active, line); }
  MOX_INLINE V strong_lines(int line) const { return spread(&strong, line); }
  MOX_INLINE V limits(int line) const { return spread(tc0, line); }
  MOX_INLINE bool all_strong() const { return false; }

  /// Filters both edges. The samples that they read, eight columns, are written back if anything changed.
  template <bool kStrong>
  MOX_INLINE void filter(Mox8u* first, Mox32s step) const {
    for (int line = 0; line < kForm.lines; line += 8, first += 8 * std::ptrdiff_t{step}) {
      using Eight = simd::Transposition<8, 8, 1>;
      simd::u8<1> r[Eight::kCount];
      Eight::load_columns(first, step, r);
      DeblockLines<false, V> s = {{hi64(r[0], r[2]), lo64(r[0], r[2])}, {lo64(r[1], r[3]), hi64(r[1], r[3])}};
      if (!deblock_lines<kStrong>(*this, s, line)) continue;
      r[0] = lo64(s.p[1], s.p[0]), r[1] = lo64(s.q[0], s.q[1]);
      r[2] = hi64(s.p[1], s.p[0]), r[3] = hi64(s.q[0], s.q[1]);
      Eight::store_columns(r, first, step);
    }
  }
};

/// The forms whose vertical edges are filtered in pairs.
template <EdgeForm kForm, class T>
inline constexpr bool kDeblockInPairs = sizeof(T) == 1 && kForm.direction == Direction::kVertical &&
                                        !kForm.luma() && kForm.channels == 1 && kForm.edges == 2;

/// Filters both vertical chroma edges of a block.
template <EdgeForm kForm>
MoxStatus filter_pair(Mox8u* block, Mox32s step, const Mox8u* alpha, const Mox8u* beta, const Mox8u* tc0,
                      const Mox8u* bs) {
  const auto of_both = [](Mox32u outer, Mox32u inner) { return outer | std::uint64_t{inner} << 32; };
  const Mox8u* const inner = bs + kForm.bsRow;
  const std::uint64_t strong =
      of_both(deblock_strong_quarters<kForm>(bs, true), deblock_strong_quarters<kForm>(inner, false));
  const DeblockPair<kForm> rule = {alpha, beta, tc0, strong, of_both(load<Mox32u>(bs), load<Mox32u>(inner)) | strong};
  strong == 0 ? rule.template filter<false>(block - 2, step) : rule.template filter<true>(block - 2, step);
  return moxStsOk;
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

/// Filters `count` vertical luma edges that follow each other; `filter(edge, step, i)` filters edge i of them in the
/// buffer. Exactly the samples of these edges are read: four columns to the left of each, and four behind the last.
template <EdgeForm kForm, class T, class Filter>
MOX_INLINE void filter_columns(T* edge, Mox32s step, int count, Filter filter) {
  using Eight = simd::Transposition<kForm.lines, 8, sizeof(T)>;
  using Four = simd::Transposition<kForm.lines, 4, sizeof(T)>;
  alignas(32) T buffer[kForm.lines * (4 * kForm.edges + 4)];
  const std::ptrdiff_t stride = step * std::ptrdiff_t{sizeof(T)};
  constexpr int kRun = 8 * static_cast<int>(sizeof(T)), kBufferRun = kRun * kForm.lines;
  Mox8u *const rows = reinterpret_cast<Mox8u*>(edge - 4), *const columns = reinterpret_cast<Mox8u*>(buffer);
  const int runs = (count + 1) / 2;
  const bool half = count % 2 == 0;  // four columns more
  for (int i = 0; i < runs; ++i) Eight::to_columns(rows + kRun * i, stride, columns + kBufferRun * i);
  if (half) Four::to_columns(rows + kRun * runs, stride, columns + kBufferRun * runs);
  bool any = false;
  for (int i = 0; i < count; ++i) any |= filter(buffer + (4 + 4 * i) * kForm.lines, kForm.lines, i);
  if (!any) return;
  for (int i = 0; i < runs; ++i) Eight::to_rows(columns + kBufferRun * i, rows + kRun * i, stride);
  if (half) Four::to_rows(columns + kBufferRun * runs, rows + kRun * runs, stride);
}

/// True if the vectors hold the largest sample.
template <class T>
constexpr bool fits_samples(Mox32s largest) {
  return largest == static_cast<T>(largest);
}

/// Filters vertical luma edges by runs of edges that have something to do.
template <EdgeForm kForm, auto kKernel, class T, class... Max>
[[gnu::noinline]] MoxStatus filter_runs(T* block, Mox32s step, const T* alpha, const T* beta, const T* tc0,
                                        const Mox8u* bs, Max... max) {
  const auto off = [=](int e) { return load<Mox32u>(bs + e * kForm.bsRow) == 0; };
  for (int first = 0, end; first < kForm.edges; first = end) {
    end = first + 1;
    if (off(first)) continue;
    while (end < kForm.edges && !off(end)) ++end;
    filter_columns<kForm>(block + 4 * first, step, end - first, [=](T* edge, Mox32s across, int i) {
      const int e = first + i;
      return kKernel(edge, across, alpha[e > 0], beta[e > 0], tc0 + 4 * e, bs + e * kForm.bsRow, e == 0, max...);
    });
  }
  return moxStsOk;
}

/// Filters the edges of a block in order.
template <EdgeForm kForm, auto kKernel, class T, class... Max>
MoxStatus filter_block(T* block, Mox32s step, const T* alpha, const T* beta, const T* tc0, const Mox8u* bs,
                       Max... max) {
  if constexpr (sizeof...(max) == 1) {
    if (!fits_samples<T>(max...))
      return px::filter_block<kForm, px::filter_edge<kForm, T>>(block, step, alpha, beta, tc0, bs, max...);
  }
  if constexpr (kDeblockInPairs<kForm, T>) {
    if (load<Mox32u>(bs) != 0 && load<Mox32u>(bs + kForm.bsRow) != 0)
      return filter_pair<kForm>(block, step, alpha, beta, tc0, bs);
  }
  if constexpr (kForm.direction == Direction::kHorizontal || !kForm.luma()) {
    return px::filter_block<kForm, kKernel>(block, step, alpha, beta, tc0, bs, max...);
  } else {
    if ((load<std::uint64_t>(bs) | load<std::uint64_t>(bs + 8)) == 0) return moxStsOk;
    return filter_runs<kForm, kKernel>(block, step, alpha, beta, tc0, bs, max...);
  }
}

/// Filters the one edge of a mixed frame and field pair. The four lines of chroma are not worth a vector.
template <EdgeForm kForm, class T>
MoxStatus filter_single_edge(T* edge, Mox32s step, Mox32u alpha, Mox32u beta, const T* tc0, const Mox8u* bs,
                             Mox32s max) {
  constexpr Mox32u kLargest = std::numeric_limits<T>::max();
  if (!kForm.luma() || !fits_samples<T>(max) || alpha > kLargest || beta > kLargest)
    return px::filter_single_edge<kForm>(edge, step, alpha, beta, tc0, bs, max);
  if (alpha == 0 || load<Mox32u>(bs) == 0) return moxStsOk;
  if constexpr (kForm.luma()) {
    filter_columns<kForm>(edge, step, 1, [=](T* columns, Mox32s across, int) {
      return filter_edge<kForm>(columns, across, alpha, beta, tc0, bs, true, max);
    });
  }
  return moxStsOk;
}

}  // namespace mox::vec
