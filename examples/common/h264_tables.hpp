/// Constant tables of H.264 decoding besides the code tables: macroblock types, coded block patterns, scans,
/// quantisers, thresholds of the deblocking filter (ITU-T H.264 tables 7-13 to 7-18, 8-15 to 8-17 and 9-4, 6.4.3
/// and 8.5.6).
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace example {

/// coded_block_pattern by its code number, for pictures with 4:2:0 or 4:2:2 chroma: bits 0 to 3 are the luma quarters,
/// bits 4 and 5 the chroma part (0 none, 1 DC, 2 DC and AC).
inline constexpr std::array<std::uint8_t, 48> kCbpIntra = {
    47, 31, 15, 0,  23, 27, 29, 30, 7, 11, 13, 14, 39, 43, 45, 46, 16, 3,  5,  10, 12, 19, 21, 26,
    28, 35, 37, 42, 44, 1,  2,  4,  8, 17, 18, 20, 24, 6,  9,  22, 25, 32, 33, 34, 36, 40, 38, 41};
inline constexpr std::array<std::uint8_t, 48> kCbpInter = {
    0,  16, 1,  2,  4,  8,  32, 3,  5,  10, 12, 15, 47, 7,  11, 13, 14, 6,  9,  31, 35, 37, 42, 44,
    33, 34, 36, 40, 39, 43, 45, 46, 17, 18, 20, 24, 19, 21, 26, 28, 23, 27, 29, 30, 22, 25, 38, 41};

/// The same for pictures without chroma or with 4:4:4 chroma.
inline constexpr std::array<std::uint8_t, 16> kCbpIntraLuma = {15, 0, 7, 11, 13, 14, 3, 5, 10, 12, 1, 2, 4, 8, 6, 9};
inline constexpr std::array<std::uint8_t, 16> kCbpInterLuma = {0, 1, 2, 4, 8, 3, 5, 10, 12, 15, 7, 11, 13, 14, 6, 9};

/// How a macroblock or a quadrant is split for inter prediction: bit 0 into an upper and a lower half, bit 1 into a
/// left and a right one.
enum class Split : std::uint8_t { kNone, kRows, kColumns, kQuarters };

/// A type of B macroblocks or of their quadrants. `lists` tells which reference lists each half uses: bit 0 list 0, bit
/// 1 list 1; 0 for direct prediction. With kQuarters in a macroblock each quadrant has a type of its own.
struct InterType {
  Split split;
  std::array<std::uint8_t, 2> lists;
};
inline constexpr std::array<InterType, 23> kMbTypesB = {{
    {Split::kNone, {0, 0}}, {Split::kNone, {1, 1}},    {Split::kNone, {2, 2}}, {Split::kNone, {3, 3}},
    {Split::kRows, {1, 1}}, {Split::kColumns, {1, 1}}, {Split::kRows, {2, 2}}, {Split::kColumns, {2, 2}},
    {Split::kRows, {1, 2}}, {Split::kColumns, {1, 2}}, {Split::kRows, {2, 1}}, {Split::kColumns, {2, 1}},
    {Split::kRows, {1, 3}}, {Split::kColumns, {1, 3}}, {Split::kRows, {2, 3}}, {Split::kColumns, {2, 3}},
    {Split::kRows, {3, 1}}, {Split::kColumns, {3, 1}}, {Split::kRows, {3, 2}}, {Split::kColumns, {3, 2}},
    {Split::kRows, {3, 3}}, {Split::kColumns, {3, 3}}, {Split::kQuarters, {}},
}};
/// All parts of a quadrant use the same lists.
inline constexpr std::array<InterType, 13> kQuadrantTypesB = {{
    {Split::kNone, {0, 0}},
    {Split::kNone, {1, 1}},
    {Split::kNone, {2, 2}},
    {Split::kNone, {3, 3}},
    {Split::kRows, {1, 1}},
    {Split::kColumns, {1, 1}},
    {Split::kRows, {2, 2}},
    {Split::kColumns, {2, 2}},
    {Split::kRows, {3, 3}},
    {Split::kColumns, {3, 3}},
    {Split::kQuarters, {1, 1}},
    {Split::kQuarters, {2, 2}},
    {Split::kQuarters, {3, 3}},
}};

/// Raster position of each 4x4 scan index.
inline constexpr std::array<std::uint8_t, 16> kZigzag4x4 = {0, 1, 4, 8, 5, 2, 3, 6, 9, 12, 13, 10, 7, 11, 14, 15};
inline constexpr std::array<std::uint8_t, 16> kFieldScan4x4 = {0, 4, 1, 8, 12, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15};

/// Raster index, 4 * y + x, of the 4x4 luma block that comes i-th in coding order.
inline constexpr std::array<std::uint8_t, 16> kBlockRaster = {0, 1, 4, 5, 2, 3, 6, 7, 8, 9, 12, 13, 10, 11, 14, 15};

/// Chroma quantiser by the luma quantiser plus offset, clamped to 0..51.
inline constexpr std::array<std::uint8_t, 52> kChromaQp = {
    0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25,
    26, 27, 28, 29, 29, 30, 31, 32, 32, 33, 34, 34, 35, 35, 36, 36, 37, 37, 37, 38, 38, 38, 39, 39, 39, 39};

/// Thresholds of the deblocking filter by the mean quantiser plus the slice's offset, clamped to 0..51.
inline constexpr std::array<std::uint8_t, 52> kDeblockAlpha = {
    0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  0,  4,   4,   5,   6,   7,   8,   9,   10,  12,  13,
    15, 17, 20, 22, 25, 28, 32, 36, 40, 45, 50, 56, 63, 71, 80, 90, 101, 113, 127, 144, 162, 182, 203, 226, 255, 255};
inline constexpr std::array<std::uint8_t, 52> kDeblockBeta = {
    0, 0, 0, 0, 0, 0, 0, 0, 0,  0,  0,  0,  0,  0,  0,  0,  2,  2,  2,  3,  3,  3,  3,  4,  4,  4,
    6, 6, 7, 7, 8, 8, 9, 9, 10, 10, 11, 11, 12, 12, 13, 13, 14, 14, 15, 15, 16, 16, 17, 17, 18, 18};
/// tc0 for strength 1 to 3, [strength - 1].
inline constexpr std::array<std::array<std::uint8_t, 52>, 3> kDeblockTc0 = {
    {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1,  1,  1,
      1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5, 6, 6, 7, 8, 9, 10, 11, 13},
     {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,  1,  1,  1,  1,  1,
      1, 1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 4, 4, 5, 5, 6, 7, 8, 8, 10, 11, 12, 13, 15, 17},
     {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1,  1,  1,  1,  1,  1,  1,  1,  1,
      1, 2, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5, 6, 6, 7, 8, 9, 10, 11, 13, 14, 16, 18, 20, 23, 25}}};

namespace h264_tables {

/// Every value below `values.size()` stands in the table once.
template <std::size_t N>
constexpr bool is_permutation(const std::array<std::uint8_t, N>& values) {
  std::array<bool, N> seen{};
  for (const auto value : values) {
    if (value >= N || seen[value]) return false;
    seen[value] = true;
  }
  return true;
}
static_assert(is_permutation(kCbpIntra) && is_permutation(kCbpInter));
static_assert(is_permutation(kCbpIntraLuma) && is_permutation(kCbpInterLuma));
static_assert(is_permutation(kZigzag4x4) && is_permutation(kFieldScan4x4) && is_permutation(kBlockRaster));

}  // namespace h264_tables
}  // namespace example
