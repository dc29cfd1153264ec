/// Portable kernels of the adaptive noise filter.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>

#include "frame/arithmetic.hpp"
#include "moxvc/denoise.h"
#include "moxvc/types.h"

namespace mox::px {

/// A call: frames in time order, both neighbours null where they are not used, and what to make of them.
struct AdaptiveFilter {
  const Mox8u *previous, *current, *next;
  std::ptrdiff_t step;
  MoxiSize region, mask;
  Mox32s threshold;
  const Mox16u* recip;
};

/// Columns and rows of the window around a sample, cut to the region; the ends are not part of it.
struct Window {
  std::ptrdiff_t left, right, top, bottom;

  Window(const AdaptiveFilter& filter, std::ptrdiff_t x, std::ptrdiff_t y)
      : left(std::max<std::ptrdiff_t>(x - filter.mask.width, 0)),
        right(std::min<std::ptrdiff_t>(x + filter.mask.width + 1, filter.region.width)),
        top(std::max<std::ptrdiff_t>(y - filter.mask.height, 0)),
        bottom(std::min<std::ptrdiff_t>(y + filter.mask.height + 1, filter.region.height)) {}
};

struct SumOfSamples {
  long long sum = 0;
  std::ptrdiff_t count = 0;

  /// Adds the samples of a window that `admits` takes.
  template <class Admits>
  void add(const Mox8u* frame, std::ptrdiff_t step, const Window& window, Admits admits) {
    for (std::ptrdiff_t y = window.top; y < window.bottom; ++y) {
      for (std::ptrdiff_t x = window.left; x < window.right; ++x) {
        const Mox8u sample = frame[y * step + x];
        if (admits(sample)) sum += sample, ++count;
      }
    }
  }
};

inline Mox8u adaptive_sample(const AdaptiveFilter& filter, std::ptrdiff_t x, std::ptrdiff_t y) {
  const Window window(filter, x, y);
  const Mox32s centre = filter.current[y * filter.step + x];
  const auto near = [&](Mox32s sample) { return std::abs(centre - sample) < filter.threshold; };
  SumOfSamples total;
  total.add(filter.current, filter.step, window, [](Mox32s) { return true; });
  for (const Mox8u* frame : {filter.previous, filter.next}) {
    if (frame) total.add(frame, filter.step, window, near);
  }
  return wrap_to<Mox8u>((total.sum * filter.recip[total.count]) >> 16);
}

/// Row y of the region from column `first` on, `width` samples of it.
inline void adaptive_row(const AdaptiveFilter& filter, std::ptrdiff_t first, std::ptrdiff_t y, Mox8u* dst,
                         Mox32s width) {
  for (std::ptrdiff_t x = 0; x < width; ++x) dst[x] = adaptive_sample(filter, first + x, y);
}

/// The same for half-widths of 1.
inline void ownFilterDenoiseAdaptive_8u_C1R_3x3(const AdaptiveFilter& filter, std::ptrdiff_t first, std::ptrdiff_t y,
                                                Mox8u* dst, Mox32s width) {
  adaptive_row(filter, first, y, dst, width);
}

}  // namespace mox::px
