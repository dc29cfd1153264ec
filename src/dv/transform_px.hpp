/// Portable dequantisation and inverse transforms of DV blocks.
#pragma once

#include <algorithm>

#include "dct/dct_px.hpp"
#include "dv/quant_tables.hpp"
#include "frame/arithmetic.hpp"

namespace mox::px {

/// 128 times 9 bits to four times 9 bits.
constexpr Mox16s dv_dc(Mox16s value) { return static_cast<Mox16s>(value >> 5); }

inline MoxStatus dv_dequantize(Mox16s* block, DvBlockParameter parameter) {
  const auto& reciprocals = kDvReciprocals[parameter.mode()];
  const auto& steps = kDvSteps[parameter.mode()][dv_quantisation_level(parameter)];
  const int shift = parameter.block_class() == 3 ? 3 : 4;
  block[0] = dv_dc(block[0]);
  for (int i = 1; i < 64; ++i) {
    const Mox16s scaled = wrap16((block[i] >> shift) * steps[i]);
    block[i] = static_cast<Mox16s>(round_shift(scaled * reciprocals[i], 15));
  }
  return moxStsOk;
}

inline MoxStatus dv100_dequantize(Mox16s* block, DvBlockParameter parameter, Mox32s kind) {
  const Mox32s step = kDv100Steps[parameter.qno()];
  block[0] = dv_dc(block[0]);
  for (int i = 1; i < 64; ++i) {
    const Mox32s weight = kDv100Weights[kind][i] << parameter.block_class();
    block[i] = sat16(round_shift((block[i] >> 6) * step * weight, 5));  // below 2^27
  }
  return moxStsOk;
}

/// Value x of N, of the inverse transform of N frequencies `stride` values apart. |sum| < 31521 * 32768.
template <int N>
Mox32s dv_reduced_sum(const Mox16s* src, int stride, int x) {
  Mox32s sum = 0;
  for (int u = 0; u < N; ++u) sum += kDctBasis[8 / N * u][x] * src[u * stride];
  return sum;
}

/// Rows are lines of a frame: sums and differences of 4 frequencies make two lines each. |even| < 2^30 and so is |odd|.
inline MoxStatus dct_inverse_248(Mox16s* block) {
  for (int v = 0; v < 8; ++v) inverse_line<kInverseRowShift>(block + 8 * v, block + 8 * v, 1);
  for (int x = 0; x < 8; ++x) {
    Mox16s column[8];
    for (int y = 0; y < 4; ++y) {
      const Mox32s sum = dv_reduced_sum<4>(block + x, 8, y), difference = dv_reduced_sum<4>(block + 32 + x, 8, y);
      column[2 * y] = sat16(round_shift(sum + difference, kInverseColumnShift));
      column[2 * y + 1] = sat16(round_shift(sum - difference, kInverseColumnShift));
    }
    for (int y = 0; y < 8; ++y) block[8 * y + x] = column[y];
  }
  return moxStsOk;
}

/// The lowest N x N frequencies to the first N * N values.
template <int N>
MoxStatus dct_inverse_reduced(Mox16s* block) {
  Mox16s rows[N * N], result[N * N];
  for (int i = 0; i < N * N; ++i) {
    rows[i] = sat16(round_shift(dv_reduced_sum<N>(block + i / N * 8, 1, i % N), kInverseRowShift));
  }
  for (int i = 0; i < N * N; ++i) {
    result[i] = sat16(round_shift(dv_reduced_sum<N>(rows + i % N, N, i / N), kInverseColumnShift));
  }
  std::copy_n(result, N * N, block);
  return moxStsOk;
}

}  // namespace mox::px
