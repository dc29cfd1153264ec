/// The matrices of the VC-1 transforms, and which part of a block an inverse transform reads.
#pragma once

#include <algorithm>
#include <array>

#include "moxvc/types.h"

namespace mox::px {

/// [k][j]: the weight of coefficient k in sample j.
template <int N>
using Vc1Matrix = std::array<std::array<Mox16s, N>, N>;

template <int N>
inline constexpr Vc1Matrix<N> kVc1Inverse{};
template <>
inline constexpr Vc1Matrix<8> kVc1Inverse<8> = {{{12, 12, 12, 12, 12, 12, 12, 12},
                                                 {16, 15, 9, 4, -4, -9, -15, -16},
                                                 {16, 6, -6, -16, -16, -6, 6, 16},
                                                 {15, -4, -16, -9, 9, 16, 4, -15},
                                                 {12, -12, -12, 12, 12, -12, -12, 12},
                                                 {9, -16, 4, 15, -15, -4, 16, -9},
                                                 {6, -16, 16, -6, -6, 16, -16, 6},
                                                 {4, -9, 15, -16, 16, -15, 9, -4}}};
template <>
inline constexpr Vc1Matrix<4> kVc1Inverse<4> = {
    {{17, 17, 17, 17}, {22, 10, -10, -22}, {17, -17, -17, 17}, {10, -22, 22, -10}}};

template <int N>
inline constexpr Vc1Matrix<N> kVc1Forward{};
template <>
inline constexpr Vc1Matrix<8> kVc1Forward<8> = {{{21845, 21845, 21845, 21845, 21845, 21845, 21845, 21845},
                                                 {29026, 27212, 16327, 7257, -7257, -16327, -27212, -29026},
                                                 {28728, 10773, -10773, -28728, -28728, -10773, 10773, 28728},
                                                 {27212, -7257, -29026, -16327, 16327, 29026, 7257, -27212},
                                                 {21845, -21845, -21845, 21845, 21845, -21845, -21845, 21845},
                                                 {16327, -29026, 7257, 27212, -27212, -7257, 29026, -16327},
                                                 {10773, -28728, 28728, -10773, -10773, 28728, -28728, 10773},
                                                 {7257, -16327, 27212, -29026, 29026, -27212, 16327, -7257}}};
template <>
inline constexpr Vc1Matrix<4> kVc1Forward<4> = {{{15420, 15420, 15420, 15420},
                                                 {19751, 8978, -8978, -19751},
                                                 {15420, -15420, -15420, 15420},
                                                 {8978, -19751, 19751, -8978}}};

/// Bits that a pass drops; they are rounded off.
inline constexpr int kVc1InverseRowShift = 3, kVc1InverseColumnShift = 7;
template <int N>
inline constexpr int kVc1ForwardRowShift = N == 8 ? 12 : 11;
template <int N>
inline constexpr int kVc1ForwardColumnShift = N == 8 ? 20 : 19;

/// The rounding of sample j in the column pass of an inverse transform N high.
template <int N>
constexpr Mox32s vc1_column_rounding(int j) {
  return N == 8 && j >= 4 ? 65 : 64;
}

/// The only sample value of a block W x H of which the first coefficient alone counts. Nothing saturates.
template <int W, int H>
constexpr Mox16s vc1_dc_sample(Mox16s dc) {
  const Mox32s row = (dc * kVc1Inverse<W>[0][0] + 4) >> 3;
  return static_cast<Mox16s>((row * kVc1Inverse<H>[0][0] + 64) >> 7);  // [-9248, 9247]
}
static_assert(vc1_dc_sample<8, 8>(32767) == 4608 && vc1_dc_sample<8, 8>(5) == 1);

/// What an inverse transform W x H reads: index i stands for a square of 2^i by 2^i, as far as the block has it, and 0
/// for the first coefficient alone.
template <int W, int H>
constexpr int vc1_read_index(MoxiSize size) {
  if (size.width < 2 && size.height < 2) return 0;
  if (W == H && size.width <= 2 && size.height <= 2) return 1;
  return (W == 4 || size.width <= 4) && (H == 4 || size.height <= 4) ? 2 : 3;
}
static_assert(vc1_read_index<8, 8>({1, 2}) == 1 && vc1_read_index<8, 4>({1, 2}) == 2 &&
              vc1_read_index<4, 8>({9, 5}) == 3);
/// Number of these indices: a block 4x4 is all read with index 2.
template <int W, int H>
inline constexpr int kVc1ReadIndices = std::max(W, H) == 8 ? 4 : 3;

}  // namespace mox::px
