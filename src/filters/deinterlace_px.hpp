/// Portable kernels of the deinterlacers: one row of `width` samples each.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>

#include "frame/arguments.hpp"
#include "frame/arithmetic.hpp"
#include "moxvc/deinterlace.h"
#include "moxvc/types.h"

namespace mox::px {

/// The edge value between the samples at `a` above and at `b` below; both have neighbours left and right.
inline Mox8u edge_value(const Mox8u* a, const Mox8u* b) {
  const Mox32s d1 = std::abs(a[-1] - b[1]), d2 = std::abs(a[1] - b[-1]), d0 = std::abs(a[0] - b[0]);
  if (d1 < d2 && d1 < d0) return static_cast<Mox8u>(avg_up(a[-1], b[1]));
  if (d2 <= d1 && d2 < d0) return static_cast<Mox8u>(avg_up(a[1], b[-1]));
  return static_cast<Mox8u>(avg_up(a[0], b[0]));
}

/// Edge values; the first and the last column are those of the row `ends`.
inline void edge_row(const Mox8u* a, const Mox8u* b, const Mox8u* ends, Mox8u* dst, Mox32s width) {
  dst[0] = ends[0];
  for (Mox32s x = 1; x < width - 1; ++x) dst[x] = edge_value(a + x, b + x);
  dst[width - 1] = ends[width - 1];
}

/// Weights of 256ths: of the sample itself, and of each of its neighbours.
struct TriangleWeights {
  Mox32s here, beside;
};
inline void triangle_row(const Mox8u* src, std::ptrdiff_t step, Mox8u* dst, Mox32s width, TriangleWeights weights) {
  for (Mox32s x = 0; x < width; ++x) {
    const Mox32s beside = (src[x - step] + src[x + step]) * weights.beside;
    dst[x] = static_cast<Mox8u>((beside + src[x] * weights.here) >> 8);
  }
}

constexpr Mox8u median3(Mox8u a, Mox8u b, Mox8u c) { return std::max(std::min(a, b), std::min(std::max(a, b), c)); }

inline Mox8u median_unless_near(const Mox8u* src, std::ptrdiff_t step, Mox32s threshold) {
  const Mox8u median = median3(src[-step], src[0], src[step]);
  return std::abs(median - src[0]) < threshold ? src[0] : median;
}
inline void median_threshold_row(const Mox8u* src, std::ptrdiff_t step, Mox8u* dst, Mox32s width, Mox32s threshold) {
  for (Mox32s x = 0; x < width; ++x) dst[x] = median_unless_near(src + x, step, threshold);
}

inline void median_row(const Mox8u* a, const Mox8u* b, const Mox8u* c, Mox8u* dst, Mox32s width) {
  for (Mox32s x = 0; x < width; ++x) dst[x] = median3(a[x], b[x], c[x]);
}

/// The row r of four frames, or a sample of it.
struct FourFrames {
  std::array<const Mox8u*, 4> frame;
  std::ptrdiff_t step;  ///< of all of them
  Mox32s older;         ///< index of the frame that a still sample is taken from; interpolation is in the one after it

  FourFrames at(Mox32s x) const { return {{frame[0] + x, frame[1] + x, frame[2] + x, frame[3] + x}, step, older}; }
};
struct StillRule {
  Mox32s threshold;
  bool protect;  ///< test still samples for combing too
};
inline constexpr Mox32s kStillMargin = 30, kMovingMargin = 6, kVideoWhite = 235;

/// True if no two of the frames but the outermost differ by the threshold or more, at `row` bytes from the sample.
inline bool is_still_at(const FourFrames& in, std::ptrdiff_t row, Mox32s threshold) {
  const auto near = [&](int i, int k) { return std::abs(in.frame[i][row] - in.frame[k][row]) < threshold; };
  return near(1, 0) && near(1, 2) && near(1, 3) && near(2, 0) && near(2, 3);
}

inline Mox8u motion_adaptive_sample(const FourFrames& in, StillRule rule) {
  const Mox8u *const newer = in.frame[in.older + 1], other = *in.frame[in.older];
  const bool still = std::abs(*newer - other) < rule.threshold && is_still_at(in, in.step, rule.threshold) &&
                     is_still_at(in, -in.step, rule.threshold);
  if (still && !rule.protect) return other;
  const Mox32s margin = still ? kStillMargin : kMovingMargin;
  const Mox32s low = std::max(other - margin, 0), high = std::min(other + margin, kVideoWhite);
  const Mox32s up = newer[-in.step], down = newer[in.step];
  const bool combs = (up < low && down < low) || (up > high && down > high);
  return combs ? static_cast<Mox8u>(avg_up(up, down)) : other;
}
inline void motion_adaptive_row(const FourFrames& in, Mox8u* dst, Mox32s width, StillRule rule) {
  for (Mox32s x = 0; x < width; ++x) dst[x] = motion_adaptive_sample(in.at(x), rule);
}

/// The row r of three frames, or a sample of it.
struct ThreeFrames {
  const Mox8u *previous, *current, *next;
  std::ptrdiff_t step;     ///< of all of them
  const Mox8u* otherHere;  ///< the frame that row r is compared with
  bool endsBelow;          ///< the first and the last column take the sample below for an edge value, else that above

  ThreeFrames at(Mox32s x) const { return {previous + x, current + x, next + x, step, otherHere + x, endsBelow}; }
};

/// Mean distance of the current frame from its neighbours, at `row` bytes from the sample.
inline Mox32s motion_at(const ThreeFrames& in, std::ptrdiff_t row) {
  const Mox32s here = in.current[row];
  return avg_up(std::abs(here - in.previous[row]), std::abs(here - in.next[row]));
}
inline Mox8u blend_sample(const ThreeFrames& in, Mox8u edge, const Mox16u* weights) {
  const Mox32s fields = avg_up(motion_at(in, -in.step), motion_at(in, in.step));
  const Mox32s motion = std::max(std::abs(*in.current - *in.otherHere), fields);
  const Mox8u median = median3(in.current[-in.step], *in.current, in.current[in.step]);
  return static_cast<Mox8u>((edge * weights[motion] + median * weights[256 + motion]) >> 8);
}
inline void blend_row(const ThreeFrames& in, Mox8u* dst, Mox32s width, const MoxiDeinterlaceBlendState& state) {
  const Mox8u *const a = in.current - in.step, *const b = in.current + in.step, *const ends = in.endsBelow ? b : a;
  for (Mox32s x = 0; x < width; ++x) {
    const bool end = x == 0 || x == width - 1;
    dst[x] = blend_sample(in.at(x), end ? ends[x] : edge_value(a + x, b + x), state.pLUT);
  }
}

}  // namespace mox::px
