/// Portable sums of absolute transformed differences. All sums are exact in 32 bits.
#pragma once

#include <cstdlib>

#include "frame/access.hpp"
#include "frame/arithmetic.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// Hadamard transform of N values that lie `distance` apart, in place. The order of the coefficients is of no account.
template <int N>
void hadamard(Mox32s* v, int distance) {
  for (int half = 1; half < N; half *= 2) {
    for (int i = 0; i < N; ++i) {
      if (i & half) continue;
      const Mox32s a = v[i * distance], b = v[(i + half) * distance];
      v[i * distance] = a + b, v[(i + half) * distance] = a - b;
    }
  }
}

/// The sum of magnitudes of an N x N Hadamard transform of the differences, which are kept in 16 bits with a sign. At
/// most 2^24: by length, coefficients are N times the differences.
template <int N, class T>
Mox32s transformed_sum(const T* src, Mox32s srcStep, const T* ref, Mox32s refStep) {
  Mox32s d[N * N];
  for (int y = 0; y < N; ++y) {
    for (int x = 0; x < N; ++x) d[y * N + x] = wrap16(load<T>(src + x) - load<T>(ref + x));
    src = step_bytes(src, srcStep), ref = step_bytes(ref, refStep);
  }
  for (int i = 0; i < N; ++i) hadamard<N>(d + i * N, 1);
  for (int i = 0; i < N; ++i) hadamard<N>(d + i, N);
  Mox32s sum = 0;
  for (Mox32s coefficient : d) sum += std::abs(coefficient);
  return sum;
}

/// The sum over the 4 x 4 blocks of a block.
template <int W, int H>
MoxStatus satd_block(const Mox8u* src, Mox32s srcStep, const Mox8u* ref, Mox32s refStep, Mox32s* result) {
  Mox32s sum = 0;
  for (int y = 0; y < H; y += 4) {
    for (int x = 0; x < W; x += 4) {
      sum += transformed_sum<4>(step_bytes(src, std::ptrdiff_t{y} * srcStep) + x, srcStep,
                                step_bytes(ref, std::ptrdiff_t{y} * refStep) + x, refStep);
    }
  }
  *result = sum;
  return moxStsOk;
}

/// One 8 x 8 transform.
template <class T>
MoxStatus sa8d_block(const T* src, Mox32s srcStep, const T* ref, Mox32s refStep, Mox32s* result) {
  *result = transformed_sum<8>(src, srcStep, ref, refStep);
  return moxStsOk;
}

}  // namespace mox::px
