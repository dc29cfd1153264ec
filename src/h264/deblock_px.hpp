/// Portable kernels of the H.264 deblocking filter: one filter of a line, and one description for each form.
///
/// A kernel filters one edge. `edge` is the first sample behind it on its first line, `tc0` and `bs` are the edge's
/// four values, `outer` says that it is the macroblock's own edge. Steps count samples. Samples across the edge are
/// named p3 p2 p1 p0 | q0 q1 q2 q3.
#pragma once

#include <cstddef>

#include "frame/access.hpp"
#include "frame/arithmetic.hpp"
#include "moxvc/types.h"

namespace mox {

/// Where the strong rule runs. Any other line with a bS that is not 0 gets the normal rule, with its tc0.
enum class Strong {
  kOwn,         ///< on each line whose bS is 4
  kFirst,       ///< on all lines of an edge whose first bS is 4, lines with bS 0 too
  kOuterFirst,  ///< the same, on the outer edge only
  kOuterHalf,   ///< on the outer edge, for each half whose two bS are 4
  kOuterAll,    ///< on the outer edge, if its four bS are 4
};

enum class Component { kLuma, kChroma };
enum class Direction { kVertical, kHorizontal };

/// The edges that one call filters. They lie 4 samples apart; the four bS and four tc0 values of an edge belong to
/// equal groups of its lines.
struct EdgeForm {
  Component component;
  Direction direction;
  int channels;  ///< 2 if each line has its sample in both of two interleaved channels
  int edges;
  int lines;  ///< lines across each edge
  int bsRow;  ///< bS values from one edge to the next
  Strong strong;

  constexpr bool luma() const { return component == Component::kLuma; }
  /// Samples from p0 to q0, and from a line to the next.
  constexpr std::ptrdiff_t across(Mox32s step) const { return direction == Direction::kVertical ? channels : step; }
  constexpr std::ptrdiff_t along(Mox32s step) const { return direction == Direction::kVertical ? step : channels; }
  constexpr int lines_per_bs() const { return lines / 4; }
};

namespace forms {
using enum Component;
using enum Direction;
inline constexpr EdgeForm kLumaVer_8u = {kLuma, kVertical, 1, 4, 16, 4, Strong::kOuterHalf};
inline constexpr EdgeForm kLumaHor_8u = {kLuma, kHorizontal, 1, 4, 16, 4, Strong::kOuterAll};
inline constexpr EdgeForm kChromaVer_8u = {kChroma, kVertical, 1, 2, 8, 8, Strong::kOuterAll};
inline constexpr EdgeForm kChromaHor_8u = {kChroma, kHorizontal, 1, 2, 8, 8, Strong::kOuterAll};
inline constexpr EdgeForm kChromaVer_8u_C2 = {kChroma, kVertical, 2, 2, 8, 8, Strong::kOuterAll};
inline constexpr EdgeForm kChromaHor_8u_C2 = {kChroma, kHorizontal, 2, 2, 8, 8, Strong::kOuterHalf};
inline constexpr EdgeForm kLumaVer_16u = {kLuma, kVertical, 1, 4, 16, 4, Strong::kOwn};
inline constexpr EdgeForm kLumaHor_16u = {kLuma, kHorizontal, 1, 4, 16, 4, Strong::kOwn};
inline constexpr EdgeForm kChromaVer_16u = {kChroma, kVertical, 1, 2, 8, 8, Strong::kOwn};
inline constexpr EdgeForm kChromaHor_16u = {kChroma, kHorizontal, 1, 2, 8, 8, Strong::kOuterFirst};
inline constexpr EdgeForm kChroma422Ver = {kChroma, kVertical, 1, 2, 16, 8, Strong::kOwn};
inline constexpr EdgeForm kChroma422Hor = {kChroma, kHorizontal, 1, 4, 8, 4, Strong::kFirst};
inline constexpr EdgeForm kLumaMbaff = {kLuma, kVertical, 1, 1, 8, 4, Strong::kOwn};
inline constexpr EdgeForm kChromaMbaff = {kChroma, kVertical, 1, 1, 4, 4, Strong::kOwn};
}  // namespace forms

}  // namespace mox

namespace mox::px {

/// One side of a line, counted away from the edge: sample 0 touches it.
template <class T>
struct Side {
  T* nearest;
  std::ptrdiff_t away;
  T& operator[](int i) const { return nearest[i * away]; }
};

/// Old values of one side. Chroma looks at two samples of each side.
template <bool kLuma>
struct Old {
  static constexpr int kCount = kLuma ? 4 : 2;
  Mox32s sample[kCount];
  template <class T>
  explicit Old(Side<T> side) {
    for (int i = 0; i < kCount; ++i) sample[i] = side[i];
  }
  Mox32s operator[](int i) const { return sample[i]; }
};

constexpr bool closer(Mox32s a, Mox32s b, Mox32u threshold) {
  return static_cast<Mox32u>(a < b ? b - a : a - b) < threshold;
}

/// The low bits of a value that a sample of type T can hold: tc wraps with the width of the form's samples.
template <class T>
constexpr Mox32s low_bits(Mox32s value) {
  return static_cast<T>(value);
}

/// The normal rule for the second sample of a luma side, a; b0 lies across the edge. Stays between old sample values.
inline Mox32s normal_second(const Old<true>& a, Mox32s b0, Mox32s tc0) {
  return a[1] + clip((a[2] + avg_up(a[0], b0) - 2 * a[1]) >> 1, -tc0, tc0);
}

template <bool kLuma, class T>
void normal_line(Side<T> ps, Side<T> qs, const Old<kLuma>& p, const Old<kLuma>& q, Mox32u beta, Mox32s tc0,
                 Mox32s max) {
  Mox32s tc = tc0 + 1;
  if constexpr (kLuma) {
    const bool ap = closer(p[2], p[0], beta), aq = closer(q[2], q[0], beta);
    if (ap) ps[1] = static_cast<T>(normal_second(p, q[0], tc0));
    if (aq) qs[1] = static_cast<T>(normal_second(q, p[0], tc0));
    tc = tc0 + ap + aq;
  }
  tc = low_bits<T>(tc);
  const Mox32s delta = clip(((q[0] - p[0]) * 4 + (p[1] - q[1]) + 4) >> 3, -tc, tc);
  if (delta == 0) return;  // leaves a sample above max as it is
  ps[0] = static_cast<T>(clip(p[0] + delta, 0, max));
  qs[0] = static_cast<T>(clip(q[0] - delta, 0, max));
}

/// The strong rule for one side, a; b lies across the edge. `flat`: the step over the edge is small.
template <bool kLuma, class T>
void strong_side(Side<T> side, const Old<kLuma>& a, const Old<kLuma>& b, Mox32u beta, bool flat) {
  if constexpr (kLuma) {
    if (flat && closer(a[2], a[0], beta)) {
      side[0] = static_cast<T>((a[2] + 2 * a[1] + 2 * a[0] + 2 * b[0] + b[1] + 4) >> 3);
      side[1] = static_cast<T>((a[2] + a[1] + a[0] + b[0] + 2) >> 2);
      side[2] = static_cast<T>((2 * a[3] + 3 * a[2] + a[1] + a[0] + b[0] + 4) >> 3);
      return;
    }
  }
  side[0] = static_cast<T>((2 * a[1] + a[0] + b[1] + 2) >> 2);
}

/// Filters the line whose q0 is at `q0`. max is the largest sample.
template <bool kLuma, class T>
void filter_line(T* q0, std::ptrdiff_t across, Mox32u alpha, Mox32u beta, Mox32s tc0, bool strong, Mox32s max) {
  const Side<T> ps = {q0 - across, -across}, qs = {q0, across};
  const Old<kLuma> p(ps), q(qs);
  if (!closer(p[0], q[0], alpha) || !closer(p[1], p[0], beta) || !closer(q[1], q[0], beta)) return;
  if (!strong) return normal_line<kLuma>(ps, qs, p, q, beta, tc0, max);
  const bool flat = closer(p[0], q[0], (alpha >> 2) + 2);
  strong_side<kLuma>(ps, p, q, beta, flat);
  strong_side<kLuma>(qs, q, p, beta, flat);
}

/// True if the strong rule runs on the lines of bS group 0 to 3.
template <EdgeForm kForm>
bool is_strong(const Mox8u* bs, int group, bool outer) {
  switch (kForm.strong) {
    case Strong::kOwn: return bs[group] == 4;
    case Strong::kFirst: return bs[0] == 4;
    case Strong::kOuterFirst: return outer && bs[0] == 4;
    case Strong::kOuterHalf: return outer && bs[group & 2] == 4 && bs[group | 1] == 4;
    case Strong::kOuterAll: break;
  }
  return outer && load<Mox32u>(bs) == 0x04040404;
}

/// Filters one edge, line by line.
template <EdgeForm kForm, class T>
void filter_edge(T* edge, Mox32s step, Mox32u alpha, Mox32u beta, const T* tc0, const Mox8u* bs, bool outer,
                 Mox32s max) {
  for (int line = 0; line < kForm.lines; ++line) {
    const int group = line / kForm.lines_per_bs();
    const bool strong = is_strong<kForm>(bs, group, outer);
    if (bs[group] == 0 && !strong) continue;
    T* q0 = edge + line * kForm.along(step);
    for (int channel = 0; channel < kForm.channels; ++channel) {
      filter_line<kForm.luma()>(q0 + channel, kForm.across(step), alpha, beta, tc0[group], strong, max);
    }
  }
}

/// The edge kernels of the 8-bit 4:2:0 forms.
template <EdgeForm kForm>
void filter_edge_8u(Mox8u* edge, Mox32s step, Mox32u alpha, Mox32u beta, const Mox8u* tc0, const Mox8u* bs,
                    bool outer) {
  filter_edge<kForm>(edge, step, alpha, beta, tc0, bs, outer, 255);
}
inline constexpr auto deblocking_luma_vert_edge_h264_sse2 = &filter_edge_8u<forms::kLumaVer_8u>;
inline constexpr auto deblocking_luma_horz_edge_h264_ssse3 = &filter_edge_8u<forms::kLumaHor_8u>;
inline constexpr auto deblocking_chroma_vert_edge_h264_sse2 = &filter_edge_8u<forms::kChromaVer_8u>;
inline constexpr auto deblocking_chroma_horz_edge_h264_ssse3 = &filter_edge_8u<forms::kChromaHor_8u>;
inline constexpr auto deblocking_chroma_vert_edge_nv12_h264_sse2 = &filter_edge_8u<forms::kChromaVer_8u_C2>;
inline constexpr auto deblocking_chroma_horz_edge_nv12_h264_sse2 = &filter_edge_8u<forms::kChromaHor_8u_C2>;

/// Filters the edges of a block in order. max goes to a kernel that takes the largest sample.
template <EdgeForm kForm, auto kKernel, class T, class... Max>
MoxStatus filter_block(T* block, Mox32s step, const T* alpha, const T* beta, const T* tc0, const Mox8u* bs,
                       Max... max) {
  for (int e = 0; e < kForm.edges; ++e, tc0 += 4, bs += kForm.bsRow) {
    if (load<Mox32u>(bs) == 0) continue;
    kKernel(block + 4 * e * kForm.across(step), step, alpha[e > 0], beta[e > 0], tc0, bs, e == 0, max...);
  }
  return moxStsOk;
}

/// Filters the one edge of a mixed frame and field pair.
template <EdgeForm kForm, class T>
MoxStatus filter_single_edge(T* edge, Mox32s step, Mox32u alpha, Mox32u beta, const T* tc0, const Mox8u* bs,
                             Mox32s max) {
  if (alpha == 0 || load<Mox32u>(bs) == 0) return moxStsOk;
  filter_edge<kForm>(edge, step, alpha, beta, tc0, bs, true, max);
  return moxStsOk;
}

}  // namespace mox::px
