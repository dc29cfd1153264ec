/// Portable VC-1 transforms: sums of products, rows first, as the header states them. All input is read before anything
/// is written. Addresses need no alignment.
#pragma once

#include "frame/access.hpp"
#include "frame/arithmetic.hpp"
#include "frame/table.hpp"
#include "vc1/transform_tables.hpp"

namespace mox::px {

/// A column of the inverse transform, of values W apart. The coefficients that have equal magnitudes in all samples, 0
/// and N / 2, are added or subtracted first, and that sum is kept in 16 bits: all sizes so give the same at the
/// extremes.
template <int N, int W>
Mox16s vc1_inverse_column(const Mox16s* column, int j) {
  constexpr auto& kMatrix = kVc1Inverse<N>;
  const Mox32s flat = column[0], half = column[N / 2 * W];
  Mox32s sum = vc1_column_rounding<N>(j) + kMatrix[0][j] * wrap16(kMatrix[N / 2][j] > 0 ? flat + half : flat - half);
  for (int k = 1; k < N; ++k) {
    if (k != N / 2) sum += kMatrix[k][j] * column[k * W];
  }
  return sat16(sum >> kVc1InverseColumnShift);
}

/// kSide: columns and rows that are read, as far as the block has them.
template <int W, int H, int kSide>
MoxStatus vc1_inverse(const Mox16s* src, Mox32s srcStep, Mox16s* dst, Mox32s dstStep) {
  Mox16s rows[H * W]{};
  for (int y = 0; y < std::min(H, kSide); ++y) {
    const Mox16s* const row = step_bytes(src, std::ptrdiff_t{y} * srcStep);
    for (int x = 0; x < W; ++x) {
      Mox32s sum = 4;
      for (int k = 0; k < std::min(W, kSide); ++k) sum += kVc1Inverse<W>[k][x] * load<Mox16s>(row + k);
      rows[y * W + x] = sat16(sum >> kVc1InverseRowShift);
    }
  }
  for (int y = 0; y < H; ++y) {
    Mox16s* const row = step_bytes(dst, std::ptrdiff_t{y} * dstStep);
    for (int x = 0; x < W; ++x) store(row + x, vc1_inverse_column<H, W>(rows + x, y));
  }
  return moxStsOk;
}

template <int W, int H>
MoxStatus vc1_inverse_dc(const Mox16s* src, Mox32s, Mox16s* dst, Mox32s dstStep) {
  const Mox16s sample = vc1_dc_sample<W, H>(load<Mox16s>(src));
  for (int y = 0; y < H; ++y) {
    for (int x = 0; x < W; ++x) store(step_bytes(dst, std::ptrdiff_t{y} * dstStep) + x, sample);
  }
  return moxStsOk;
}

using Vc1TransformKernel = MoxStatus (*)(const Mox16s* src, Mox32s srcStep, Mox16s* dst, Mox32s dstStep);

/// [vc1_read_index]
template <int W, int H>
inline constexpr auto kVc1InverseTable = make_table<kVc1ReadIndices<W, H>>([]<std::size_t I>() -> Vc1TransformKernel {
  if constexpr (I == 0)
    return &vc1_inverse_dc<W, H>;
  else
    return &vc1_inverse<W, H, 1 << I>;
});

/// Sums wrap at 32 bits.
template <int W, int H>
MoxStatus vc1_forward(const Mox16s* src, Mox32s srcStep, Mox16s* dst, Mox32s dstStep) {
  constexpr int kRowShift = kVc1ForwardRowShift<W>, kColumnShift = kVc1ForwardColumnShift<H>;
  Mox16s rows[H][W];
  for (int y = 0; y < H; ++y) {
    const Mox16s* const row = step_bytes(src, std::ptrdiff_t{y} * srcStep);
    for (int k = 0; k < W; ++k) {
      Mox32s sum = 1 << (kRowShift - 1);
      for (int x = 0; x < W; ++x) sum = add32(sum, kVc1Forward<W>[k][x] * load<Mox16s>(row + x));
      rows[y][k] = sat16(sum >> kRowShift);
    }
  }
  for (int k = 0; k < H; ++k) {
    Mox16s* const row = step_bytes(dst, std::ptrdiff_t{k} * dstStep);
    for (int x = 0; x < W; ++x) {
      Mox32s sum = 1 << (kColumnShift - 1);
      for (int y = 0; y < H; ++y) sum = add32(sum, kVc1Forward<H>[k][y] * rows[y][x]);
      store(row + x, sat16(sum >> kColumnShift));
    }
  }
  return moxStsOk;
}

}  // namespace mox::px
