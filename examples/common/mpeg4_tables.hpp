/// Tables of MPEG-4 Part 2 headers: default weights, and the lengths of warping displacements (ISO/IEC 14496-2 6.3.3,
/// table B-33). The codes of macroblock headers and vectors are in h263_vlc_tables.hpp.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "common/prefix_table.hpp"

namespace example {

/// In raster order.
inline constexpr std::array<std::uint8_t, 64> kMpeg4IntraWeights = {
    8,  17, 18, 19, 21, 23, 25, 27, 17, 18, 19, 21, 23, 25, 27, 28, 20, 21, 22, 23, 24, 26,
    28, 30, 21, 22, 23, 24, 26, 28, 30, 32, 22, 23, 24, 26, 28, 30, 32, 35, 23, 24, 26, 28,
    30, 32, 35, 38, 25, 26, 28, 30, 32, 35, 38, 41, 27, 28, 30, 32, 35, 38, 41, 45};
inline constexpr std::array<std::uint8_t, 64> kMpeg4InterWeights = {
    16, 17, 18, 19, 20, 21, 22, 23, 17, 18, 19, 20, 21, 22, 23, 24, 18, 19, 20, 21, 22, 23,
    24, 25, 19, 20, 21, 22, 23, 24, 26, 27, 20, 21, 22, 23, 25, 26, 27, 28, 21, 22, 23, 24,
    26, 27, 28, 30, 22, 23, 24, 26, 27, 28, 30, 31, 23, 24, 25, 27, 28, 30, 31, 33};

/// Bits of a displacement, 0 to 14.
inline constexpr std::string_view kWarpingLengthCodes =
    "00 010 011 100 101 110 1110 11110 111110 1111110 11111110 111111110 1111111110 11111111110 111111111110";
static_assert(VlcCodes(kWarpingLengthCodes).count == 15 && VlcCodes(kWarpingLengthCodes).prefix_free());
inline constexpr PrefixTable<12> kWarpingLength(kWarpingLengthCodes, kCodeIndex);

}  // namespace example
