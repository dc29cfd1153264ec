/// The tables of MPEG-1 and MPEG-2 macroblocks (ISO/IEC 13818-2 tables B-1 to B-4 and B-9 to B-11, 6.3.11, table 7-6),
/// codes as text and as descriptions for moxiHuffmanTableInitAlloc_32s. Those of blocks are in mpeg12_vlc_tables.hpp.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "common/vlc_description.hpp"

namespace example {

/// macroblock_address_increment from 1 to 33, then macroblock_escape, then macroblock_stuffing (MPEG-1 only).
inline constexpr std::string_view kAddressIncrementCodes =
    "1 011 010 0011 0010 00011 00010 0000111 0000110 00001011 00001010 00001001 00001000 00000111 00000110 "
    "0000010111 0000010110 0000010101 0000010100 0000010011 0000010010 00000100011 00000100010 00000100001 "
    "00000100000 00000011111 00000011110 00000011101 00000011100 00000011011 00000011010 00000011001 00000011000 "
    "00000001000 00000001111";
inline constexpr int kAddressEscape = 34, kAddressStuffing = 35;

/// What a macroblock_type says.
enum MacroblockTypeFlag { kIntra = 1, kPattern = 2, kMotionBackward = 4, kMotionForward = 8, kQuant = 16 };

/// macroblock_type of a kind of picture: codes, and what each of them says.
template <std::size_t N>
struct MacroblockTypes {
  std::string_view codes;
  std::array<std::uint8_t, N> flags;
};
inline constexpr MacroblockTypes<2> kMacroblockTypesI = {"1 01", {kIntra, kQuant | kIntra}};
inline constexpr MacroblockTypes<7> kMacroblockTypesP = {
    "1 01 001 00011 00010 00001 000001",
    {kMotionForward | kPattern, kPattern, kMotionForward, kIntra, kQuant | kMotionForward | kPattern, kQuant | kPattern,
     kQuant | kIntra}};
inline constexpr MacroblockTypes<11> kMacroblockTypesB = {
    "10 11 010 011 0010 0011 00011 00010 000011 000010 000001",
    {kMotionForward | kMotionBackward, kMotionForward | kMotionBackward | kPattern, kMotionBackward,
     kMotionBackward | kPattern, kMotionForward, kMotionForward | kPattern, kIntra,
     kQuant | kMotionForward | kMotionBackward | kPattern, kQuant | kMotionForward | kPattern,
     kQuant | kMotionBackward | kPattern, kQuant | kIntra}};

/// coded_block_pattern from 0, which only 4:2:2 has, to 63. Bit 5 is the first block of luma, bit 0 the second of
/// chroma.
inline constexpr std::string_view kCodedBlockPatternCodes =
    "000000001 01011 01001 001101 1101 0010111 0010011 00011111 1100 0010110 0010010 00011110 10011 00011011 "
    "00010111 00010011 1011 0010101 0010001 00011101 10001 00011001 00010101 00010001 001111 00001111 00001101 "
    "000000011 01111 00001011 00000111 000000111 1010 0010100 0010000 00011100 001110 00001110 00001100 000000010 "
    "10000 00011000 00010100 00010000 01110 00001010 00000110 000000110 10010 00011010 00010110 00010010 01101 "
    "00001001 00000101 000000101 01100 00001000 00000100 000000100 111 01010 01000 001100";

/// motion_code from -16 to 16.
inline constexpr std::string_view kMotionCodes =
    "00000011001 00000011011 00000011101 00000011111 00000100001 00000100011 0000010011 0000010101 0000010111 "
    "00000111 00001001 00001011 0000111 00011 0011 011 1 010 0010 00010 0000110 00001010 00001000 00000110 "
    "0000010110 0000010100 0000010010 00000100010 00000100000 00000011110 00000011100 00000011010 00000011000";

/// dmvector from -1 to 1.
inline constexpr std::string_view kDmvectorCodes = "11 0 10";

/// So many codes, none the start of another, and so many of the 65536 values of 16 bits that begin with none.
constexpr bool is_code(std::string_view text, int count, int unused) {
  const VlcCodes codes(text);
  return codes.count == count && codes.prefix_free() && codes.unused() == unused;
}
static_assert(is_code(kAddressIncrementCodes, 35, 704) && is_code(kCodedBlockPatternCodes, 64, 128));
static_assert(is_code(kMotionCodes, 33, 768) && is_code(kDmvectorCodes, 3, 0) &&
              is_code(kMacroblockTypesI.codes, 2, 16384));
static_assert(is_code(kMacroblockTypesP.codes, 7, 1024) && is_code(kMacroblockTypesB.codes, 11, 1024));

inline constexpr auto kAddressIncrementSpec = describe<86>(kAddressIncrementCodes, 6, [](int i) { return i + 1; });
inline constexpr auto kMacroblockTypeSpecI =
    describe<10>(kMacroblockTypesI.codes, 6, [](int i) { return kMacroblockTypesI.flags[i]; });
inline constexpr auto kMacroblockTypeSpecP =
    describe<24>(kMacroblockTypesP.codes, 6, [](int i) { return kMacroblockTypesP.flags[i]; });
inline constexpr auto kMacroblockTypeSpecB =
    describe<32>(kMacroblockTypesB.codes, 6, [](int i) { return kMacroblockTypesB.flags[i]; });
inline constexpr auto kCodedBlockPatternSpec = describe<141>(kCodedBlockPatternCodes, 9, [](int i) { return i; });
inline constexpr auto kMotionCodeSpec = describe<82>(kMotionCodes, 6, [](int i) { return i - 16; });
inline constexpr auto kDmvectorSpec = describe<12>(kDmvectorCodes, 2, [](int i) { return i - 1; });

/// quantiser_scale by code, with q_scale_type 0 and 1; code 0 is forbidden. MPEG-1 takes the code itself.
inline constexpr std::array<std::array<std::uint8_t, 32>, 2> kQuantiserScales = {
    {{0,  2,  4,  6,  8,  10, 12, 14, 16, 18, 20, 22, 24, 26, 28, 30,
      32, 34, 36, 38, 40, 42, 44, 46, 48, 50, 52, 54, 56, 58, 60, 62},
     {0,  1,  2,  3,  4,  5,  6,  7,  8,  10, 12, 14, 16, 18, 20,  22,
      24, 28, 32, 36, 40, 44, 48, 52, 56, 64, 72, 80, 88, 96, 104, 112}}};

/// The default weights of intra blocks in raster order. Those of other blocks are 16 throughout.
inline constexpr std::array<std::int16_t, 64> kDefaultIntraWeights = {
    8,  16, 19, 22, 26, 27, 29, 34, 16, 16, 22, 24, 27, 29, 34, 37, 19, 22, 26, 27, 29, 34,
    34, 38, 22, 22, 26, 27, 29, 34, 37, 40, 22, 26, 27, 29, 32, 35, 40, 48, 26, 27, 29, 32,
    35, 40, 48, 58, 26, 27, 29, 34, 38, 46, 56, 69, 27, 29, 35, 38, 46, 56, 69, 83};
inline constexpr std::int16_t kDefaultNonIntraWeight = 16;

/// frame_rate_code as a fraction of frames per second; 0 and codes from 9 on are none.
struct FrameRateCode {
  std::uint32_t numerator, denominator;
};
inline constexpr std::array<FrameRateCode, 9> kFrameRates = {
    {{0, 0}, {24000, 1001}, {24, 1}, {25, 1}, {30000, 1001}, {30, 1}, {50, 1}, {60000, 1001}, {60, 1}}};

}  // namespace example
