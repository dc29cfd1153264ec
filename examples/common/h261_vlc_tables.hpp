/// The codes of macroblock headers and vectors of H.261 (ITU-T H.261 tables 1 to 4).
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "common/prefix_table.hpp"

namespace example {

/// MBA: by how much the address of a macroblock is above the one before it, 1 to 33; or stuffing.
inline constexpr int kH261Stuffing = 0;
inline constexpr std::string_view kH261AddressCodes =
    "1 011 010 0011 0010 00011 00010 0000111 0000110 00001011 00001010 00001001 00001000 00000111 00000110 0000010111 "
    "0000010110 0000010101 0000010100 0000010011 0000010010 00000100011 00000100010 00000100001 00000100000 "
    "00000011111 00000011110 00000011101 00000011100 00000011011 00000011010 00000011001 00000011000 00000001111";
static_assert(VlcCodes(kH261AddressCodes).count == 34 && VlcCodes(kH261AddressCodes).prefix_free());
inline constexpr PrefixTable<11> kH261Address(kH261AddressCodes, [](int i) { return i == 33 ? kH261Stuffing : i + 1; });

/// MTYPE: what a macroblock has. A macroblock that is not intra is predicted.
enum H261MacroblockFlag { kH261Intra = 1, kH261Quant = 2, kH261Vector = 4, kH261Pattern = 8, kH261Filter = 16 };
inline constexpr std::string_view kH261TypeCodes = "0001 0000001 1 00001 000000001 00000001 0000000001 001 01 000001";
inline constexpr std::array<std::uint8_t, 10> kH261Types = {
    kH261Intra,
    kH261Intra | kH261Quant,
    kH261Pattern,
    kH261Pattern | kH261Quant,
    kH261Vector,
    kH261Vector | kH261Pattern,
    kH261Vector | kH261Pattern | kH261Quant,
    kH261Vector | kH261Filter,
    kH261Vector | kH261Filter | kH261Pattern,
    kH261Vector | kH261Filter | kH261Pattern | kH261Quant,
};
static_assert(VlcCodes(kH261TypeCodes).count == 10 && VlcCodes(kH261TypeCodes).prefix_free());
inline constexpr PrefixTable<10> kH261Type(kH261TypeCodes, [](int i) { return kH261Types[i]; });

/// MVD: difference of a vector component, from -16 to 15 full samples.
inline constexpr std::string_view kH261VectorCodes =
    "00000011001 00000011011 00000011101 00000011111 00000100001 00000100011 0000010011 0000010101 0000010111 00000111 "
    "00001001 00001011 0000111 00011 0011 011 1 010 0010 00010 0000110 00001010 00001000 00000110 0000010110 "
    "0000010100 0000010010 00000100010 00000100000 00000011110 00000011100 00000011010";
static_assert(VlcCodes(kH261VectorCodes).count == 32 && VlcCodes(kH261VectorCodes).prefix_free());
inline constexpr PrefixTable<11> kH261VectorDifference(kH261VectorCodes, [](int i) { return i - 16; });

/// CBP: which blocks are coded, 1 to 63; bit 5 is the first luma block, bit 0 is Cr.
inline constexpr std::string_view kH261PatternCodes =
    "01011 01001 001101 1101 0010111 0010011 00011111 1100 0010110 0010010 00011110 10011 00011011 00010111 00010011 "
    "1011 0010101 0010001 00011101 10001 00011001 00010101 00010001 001111 00001111 00001101 000000011 01111 00001011 "
    "00000111 000000111 1010 0010100 0010000 00011100 001110 00001110 00001100 000000010 10000 00011000 00010100 "
    "00010000 01110 00001010 00000110 000000110 10010 00011010 00010110 00010010 01101 00001001 00000101 000000101 "
    "01100 00001000 00000100 000000100 111 01010 01000 001100";
static_assert(VlcCodes(kH261PatternCodes).count == 63 && VlcCodes(kH261PatternCodes).prefix_free());
inline constexpr PrefixTable<9> kH261BlockPattern(kH261PatternCodes, [](int i) { return i + 1; });

}  // namespace example
