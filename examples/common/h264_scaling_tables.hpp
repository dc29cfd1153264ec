/// Constant tables of the 8x8 transform and of scaling lists (ITU-T H.264 tables 7-3 and 7-4, 8.5.6, 8.5.7 and 8.5.9).
#pragma once

#include <array>
#include <cstdint>

#include "common/h264_tables.hpp"

namespace example {

/// Raster position of each 8x8 scan index.
inline constexpr std::array<std::uint8_t, 64> kZigzag8x8 = {
    0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,  12, 19, 26, 33, 40, 48,
    41, 34, 27, 20, 13, 6,  7,  14, 21, 28, 35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23,
    30, 37, 44, 51, 58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};
inline constexpr std::array<std::uint8_t, 64> kFieldScan8x8 = {
    0,  8,  16, 1,  9,  24, 32, 17, 2, 25, 40, 48, 56, 33, 10, 3,  18, 41, 49, 57, 26, 11,
    4,  19, 34, 42, 50, 58, 27, 12, 5, 20, 35, 43, 51, 59, 28, 13, 6,  21, 36, 44, 52, 60,
    29, 14, 22, 37, 45, 53, 61, 30, 7, 15, 38, 46, 54, 62, 23, 31, 39, 47, 55, 63};

/// The lists that a stream can ask for without writing them, in scan order: for intra and for inter macroblocks.
inline constexpr std::array<std::array<std::uint8_t, 16>, 2> kDefaultScaling4x4 = {
    {{6, 13, 13, 20, 20, 20, 28, 28, 28, 28, 32, 32, 32, 37, 37, 42},
     {10, 14, 14, 20, 20, 20, 24, 24, 24, 24, 27, 27, 27, 30, 30, 34}}};
inline constexpr std::array<std::array<std::uint8_t, 64>, 2> kDefaultScaling8x8 = {
    {{6,  10, 10, 13, 11, 13, 16, 16, 16, 16, 18, 18, 18, 18, 18, 23, 23, 23, 23, 23, 23, 25,
      25, 25, 25, 25, 25, 25, 27, 27, 27, 27, 27, 27, 27, 27, 29, 29, 29, 29, 29, 29, 29, 31,
      31, 31, 31, 31, 31, 33, 33, 33, 33, 33, 36, 36, 36, 36, 38, 38, 38, 40, 40, 42},
     {9,  13, 13, 15, 13, 15, 17, 17, 17, 17, 19, 19, 19, 19, 19, 21, 21, 21, 21, 21, 21, 22,
      22, 22, 22, 22, 22, 22, 24, 24, 24, 24, 24, 24, 24, 24, 25, 25, 25, 25, 25, 25, 25, 27,
      27, 27, 27, 27, 27, 28, 28, 28, 28, 28, 30, 30, 30, 30, 32, 32, 32, 33, 33, 35}}};

/// What a coefficient is multiplied with besides its scaling list value, [quantiser % 6][class]; classes are
/// those of kClasses4x4 and kClasses8x8.
inline constexpr std::array<std::array<std::uint8_t, 3>, 6> kLevelScale4x4 = {
    {{10, 16, 13}, {11, 18, 14}, {13, 20, 16}, {14, 23, 18}, {16, 25, 20}, {18, 29, 23}}};
inline constexpr std::array<std::array<std::uint8_t, 6>, 6> kLevelScale8x8 = {{{20, 18, 32, 19, 25, 24},
                                                                               {22, 19, 35, 21, 28, 26},
                                                                               {26, 23, 42, 24, 33, 31},
                                                                               {28, 25, 45, 26, 35, 33},
                                                                               {32, 28, 51, 30, 40, 38},
                                                                               {36, 32, 58, 34, 46, 43}}};
/// Classes of positions, [4 * (y % 4) + x % 4].
inline constexpr std::array<std::uint8_t, 16> kClasses4x4 = {0, 2, 0, 2, 2, 1, 2, 1, 0, 2, 0, 2, 2, 1, 2, 1};
inline constexpr std::array<std::uint8_t, 16> kClasses8x8 = {0, 3, 4, 3, 3, 1, 5, 1, 4, 5, 2, 5, 3, 1, 5, 1};

namespace h264_tables {

static_assert(is_permutation(kZigzag8x8) && is_permutation(kFieldScan8x8));

}  // namespace h264_tables
}  // namespace example
