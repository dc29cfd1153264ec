/// Constants of the AVS 8x8 transform and quantiser, for both directions.
#pragma once

#include <array>

#include "frame/table.hpp"
#include "moxvc/types.h"

namespace mox {

/// What a level is worth at a qp: scale / 2^shift, near 2 * 2^(qp / 8).
struct AvsDequant {
  Mox32s scale, shift;
};

}  // namespace mox

namespace mox::px {

inline constexpr Mox32s kAvsMostQp = 63;

/// [frequency][sample]
inline constexpr Mox32s kAvsTransform[8][8] = {{8, 8, 8, 8, 8, 8, 8, 8},         {10, 9, 6, 2, -2, -6, -9, -10},  //
                                               {10, 4, -4, -10, -10, -4, 4, 10}, {9, -2, -10, -6, 6, 10, 2, -9},  //
                                               {8, -8, -8, 8, 8, -8, -8, 8},     {6, -10, 2, 9, -9, -2, 10, -6},  //
                                               {4, -10, 10, -4, -4, 10, -10, 4}, {2, -6, 9, -10, 10, -9, 6, -2}};

/// Sum of the squares of a row.
constexpr Mox32s avs_norm(int frequency) {
  Mox32s sum = 0;
  for (const Mox32s value : kAvsTransform[frequency]) sum += value * value;
  return sum;
}
/// True if the product of two rows is 0 for all pairs of different rows.
constexpr bool avs_rows_are_orthogonal() {
  for (int i = 0; i < 8; ++i) {
    for (int j = 0; j < i; ++j) {
      Mox32s sum = 0;
      for (int k = 0; k < 8; ++k) sum += kAvsTransform[i][k] * kAvsTransform[j][k];
      if (sum != 0) return false;
    }
  }
  return true;
}
static_assert(avs_rows_are_orthogonal() && avs_norm(0) == 512 && avs_norm(1) == 442 && avs_norm(2) == 464);

inline constexpr Mox32s DequantTable[64] = {32768, 36061, 38968, 42495, 46341, 50535, 55437, 60424,  //
                                            32932, 35734, 38968, 42495, 46177, 50535, 55109, 59933,  //
                                            65535, 35734, 38968, 42577, 46341, 50617, 55027, 60097,  //
                                            32809, 35734, 38968, 42454, 46382, 50576, 55109, 60056,  //
                                            65535, 35734, 38968, 42495, 46320, 50515, 55109, 60076,  //
                                            65535, 35744, 38968, 42495, 46341, 50535, 55099, 60087,  //
                                            65535, 35734, 38973, 42500, 46341, 50535, 55109, 60097,  //
                                            32771, 35734, 38965, 42497, 46341, 50535, 55109, 60099};

/// 14 less one for each 8 of qp. A scale of 65535 stands for 2^16, one octave above its row.
constexpr Mox32s avs_shift(Mox32s qp) { return 14 - (qp >> 3) + (DequantTable[qp] == 65535); }
constexpr AvsDequant avs_dequant(Mox32s qp) { return {DequantTable[qp], avs_shift(qp)}; }

/// True if no step is further than 1 part in 100 from its ideal, by the eighth power: (step / 2)^8 is 2^qp.
constexpr bool avs_steps_are_even() {
  for (Mox32s qp = 0; qp <= kAvsMostQp; ++qp) {
    const double step = static_cast<double>(DequantTable[qp]) / static_cast<double>(1 << avs_shift(qp)) / 2;
    const double square = step * step, fourth = square * square, ideal = static_cast<double>(1ull << qp);
    if (fourth * fourth > 1.08 * ideal || fourth * fourth < 0.92 * ideal) return false;
  }
  return true;
}
static_assert(avs_steps_are_even());

}  // namespace mox::px
