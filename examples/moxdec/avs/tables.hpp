/// Constants of AVS (GB/T 20090.2).
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

namespace moxdec::avs {

/// Coded blocks by code number (table 62): of an intra and of an inter macroblock. Bits 0 to 3 luma, 4 Cb, 5 Cr.
inline constexpr std::array<std::array<std::uint8_t, 2>, 64> kCodedBlocks = {{
    {63, 0},  {15, 15}, {31, 63}, {47, 31}, {0, 16},  {14, 32}, {13, 47}, {11, 13},  //
    {7, 14},  {5, 11},  {10, 12}, {8, 5},   {12, 10}, {61, 7},  {4, 48},  {55, 3},   //
    {1, 2},   {2, 8},   {59, 4},  {3, 1},   {62, 61}, {9, 55},  {6, 59},  {29, 62},  //
    {45, 29}, {51, 27}, {23, 23}, {39, 19}, {27, 30}, {46, 28}, {53, 9},  {30, 6},   //
    {43, 60}, {37, 21}, {60, 44}, {16, 26}, {21, 51}, {28, 35}, {19, 18}, {35, 20},  //
    {42, 24}, {26, 53}, {44, 17}, {32, 37}, {58, 39}, {24, 45}, {20, 58}, {17, 43},  //
    {18, 42}, {48, 46}, {22, 36}, {33, 33}, {25, 34}, {49, 40}, {40, 52}, {36, 49},  //
    {34, 50}, {50, 56}, {52, 25}, {54, 22}, {41, 54}, {56, 57}, {38, 41}, {57, 38},
}};

/// Each pattern stands once in a column.
constexpr bool is_permutation(int column) {
  std::uint64_t seen = 0;
  for (const auto& row : kCodedBlocks) seen |= std::uint64_t{1} << row[column];
  return ~seen == 0;
}
static_assert(is_permutation(0) && is_permutation(1));

/// The QP of chroma from that of luma.
constexpr int chroma_qp(int qp) {
  constexpr std::array<std::uint8_t, 21> kFrom43 = {42, 43, 43, 44, 44, 45, 45, 46, 46, 47, 47,
                                                    48, 48, 48, 49, 49, 49, 50, 50, 50, 51};
  return qp < 43 ? qp : kFrom43[static_cast<std::size_t>(qp - 43)];
}

/// Thresholds of the loop filter by QP (table 51).
inline constexpr std::array<std::uint8_t, 64> kAlpha = {0,  0,  0,  0,  0,  0,  1,  1,  1,  1,  1,  2,  2,  2,  3,  3,
                                                        4,  4,  5,  5,  6,  7,  8,  9,  10, 11, 12, 13, 15, 16, 18, 20,
                                                        22, 24, 26, 28, 30, 33, 33, 35, 35, 36, 37, 37, 39, 39, 42, 44,
                                                        46, 48, 50, 52, 53, 54, 55, 56, 57, 58, 59, 60, 61, 62, 63, 64};
inline constexpr std::array<std::uint8_t, 64> kBeta = {0,  0,  0,  0,  0,  0,  1,  1,  1,  1,  1,  1,  1,  2,  2,  2,
                                                       2,  2,  3,  3,  3,  3,  4,  4,  4,  4,  5,  5,  5,  5,  6,  6,
                                                       6,  7,  7,  7,  8,  8,  8,  9,  9,  10, 10, 11, 11, 12, 13, 14,
                                                       15, 16, 17, 18, 19, 20, 21, 22, 23, 23, 24, 24, 25, 25, 26, 27};
inline constexpr std::array<std::uint8_t, 64> kClip = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1,
                                                       1, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 2, 2, 2, 3, 3, 3, 3, 3, 3,
                                                       3, 4, 4, 4, 5, 5, 5, 6, 6, 6, 7, 7, 7, 7, 8, 8, 8, 9, 9, 9};

constexpr int filter_index(int qp, int offset) { return std::clamp(qp + offset, 0, 63); }

}  // namespace moxdec::avs
