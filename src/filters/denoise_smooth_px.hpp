/// Portable kernels of the smoothing noise filter: one row each.
#pragma once

#include <array>
#include <cstddef>
#include <cstdlib>

#include "frame/arithmetic.hpp"
#include "moxvc/types.h"

namespace mox::px {

inline constexpr Mox8u kOnEdge = 255;

/// [count of samples]: reciprocal of the count; 0 is not used.
inline constexpr std::array<Mox16u, 10> DenomTable_16u = {1,     65535, 32768, 21845, 16384,
                                                          13107, 10923, 9362,  8192,  7282};

/// kOnEdge or 0 for `width` samples; reads one more, and one row more.
inline void ownDenoiseSmoothCreateMask_8u(const Mox8u* plane, std::ptrdiff_t step, Mox8u* mask, Mox32s width,
                                          Mox32s threshold) {
  for (Mox32s x = 0; x < width; ++x) {
    const Mox8u *const row = plane + x, *const below = row + step;
    const bool flat = std::abs(row[0] - below[1]) < threshold && std::abs(row[1] - below[0]) < threshold;
    mask[x] = flat ? 0 : kOnEdge;
  }
}

/// The mean of the sample and its neighbours, as far as they are not on an edge.
inline Mox8u average_unmasked(const Mox8u* src, std::ptrdiff_t srcStep, const Mox8u* mask, std::ptrdiff_t maskStep) {
  if (*mask == kOnEdge) return *src;
  Mox32s sum = 0, count = 0;
  for (int row = -1; row <= 1; ++row) {
    for (int column = -1; column <= 1; ++column) {
      if (mask[row * maskStep + column] == 0) sum += src[row * srcStep + column], ++count;
    }
  }
  return clip8((sum * DenomTable_16u[static_cast<std::size_t>(count)]) >> 16);
}
inline void ownDenoiseAverageMask(const Mox8u* src, std::ptrdiff_t srcStep, const Mox8u* mask, std::ptrdiff_t maskStep,
                                  Mox8u* dst, Mox32s width) {
  for (Mox32s x = 0; x < width; ++x) dst[x] = average_unmasked(src + x, srcStep, mask + x, maskStep);
}

}  // namespace mox::px
