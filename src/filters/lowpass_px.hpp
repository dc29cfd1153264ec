/// Portable kernels of the low-pass filter: one row each.
#pragma once

#include <cstddef>

#include "moxvc/types.h"

namespace mox::px {

inline void lowpass_3x3_row(const Mox8u* src, std::ptrdiff_t step, Mox8u* dst, Mox32s width) {
  for (Mox32s x = 0; x < width; ++x) {
    Mox32s sum = 0;
    for (std::ptrdiff_t row = -step, i = 0; i < 3; row += step, ++i) {
      sum += src[row + x - 1] + src[row + x] + src[row + x + 1];
    }
    dst[x] = static_cast<Mox8u>(sum / 9);
  }
}

/// The weights 1 4 6 4 1 down the five samples around p.
inline Mox16u weigh_column(const Mox8u* p, std::ptrdiff_t step) {
  return static_cast<Mox16u>(p[-2 * step] + p[2 * step] + 4 * (p[-step] + p[step]) + 6 * p[0]);  // 0..4080
}
/// The same along five of its results, and down to a sample: (65280 + 128) >> 8 at most.
inline Mox8u weigh_row(const Mox16u* p) {
  return static_cast<Mox8u>((p[0] + p[4] + 4 * (p[1] + p[3]) + 6 * p[2] + 128) >> 8);
}

/// `columns` has room for width + 4 values.
inline void lowpass_5x5_row(const Mox8u* src, std::ptrdiff_t step, Mox8u* dst, Mox32s width, Mox16u* columns) {
  for (std::ptrdiff_t x = 0; x < width + std::ptrdiff_t{4}; ++x) columns[x] = weigh_column(src + x - 2, step);
  for (std::ptrdiff_t x = 0; x < width; ++x) dst[x] = weigh_row(columns + x);
}

}  // namespace mox::px
