/// The codes of macroblock headers and vectors that H.263 and MPEG-4 Part 2 share (ITU-T H.263 tables 7, 8, 12, 13, 14;
/// ISO/IEC 14496-2 tables B-6 to B-8 and B-12).
#pragma once

#include <string_view>

#include "common/prefix_table.hpp"

namespace example {

/// Types of a macroblock as the codes number them.
enum H263MacroblockType { kInter, kInterQ, kInter4V, kIntra, kIntraQ, kInter4VQ };

/// MCBPC: 4 times the macroblock's type and the coded chroma blocks (2: Cb, 1: Cr); or stuffing.
inline constexpr int kMcbpcStuffing = -1;

inline constexpr std::string_view kMcbpcIntraCodes = "1 001 010 011 0001 000001 000010 000011 000000001";
static_assert(VlcCodes(kMcbpcIntraCodes).count == 9 && VlcCodes(kMcbpcIntraCodes).prefix_free());
inline constexpr PrefixTable<9> kMcbpcIntra(kMcbpcIntraCodes,
                                            [](int i) { return i == 8 ? kMcbpcStuffing : 4 * kIntra + i; });

/// The last four codes, four vectors with a change of quantiser, are H.263's alone.
inline constexpr std::string_view kMcbpcInterCodes =
    "1 0011 0010 000101 011 0000111 0000110 000000101 010 0000101 0000100 00000101 00011 00000100 00000011 0000011 "
    "000100 000000100 000000011 000000010 00000000010 0000000001100 0000000001110 0000000001111 000000001";
static_assert(VlcCodes(kMcbpcInterCodes).count == 25 && VlcCodes(kMcbpcInterCodes).prefix_free());
inline constexpr PrefixTable<13> kMcbpcInter(kMcbpcInterCodes, [](int i) { return i == 24 ? kMcbpcStuffing : i; });

/// CBPY of an intra macroblock: bit 3 is the first luma block. In an inter macroblock the value is 15 less this one.
inline constexpr std::string_view kCbpyCodes =
    "0011 00101 00100 1001 00011 0111 000010 1011 00010 000011 0101 1010 0100 1000 0110 11";
static_assert(VlcCodes(kCbpyCodes).count == 16 && VlcCodes(kCbpyCodes).prefix_free());
inline constexpr PrefixTable<6> kCbpy(kCbpyCodes, kCodeIndex);

/// Difference of a vector component, from -32 to 32 in its smallest unit.
inline constexpr std::string_view kVectorCodes =
    "0000000000101 0000000000111 000000000101 000000000111 000000001001 000000001011 000000001101 000000001111 "
    "00000001001 00000001011 00000001101 00000001111 00000010001 00000010011 00000010101 00000010111 00000011001 "
    "00000011011 00000011101 00000011111 00000100001 00000100011 0000010011 0000010101 0000010111 00000111 00001001 "
    "00001011 0000111 00011 0011 011 1 010 0010 00010 0000110 00001010 00001000 00000110 0000010110 0000010100 "
    "0000010010 00000100010 00000100000 00000011110 00000011100 00000011010 00000011000 00000010110 00000010100 "
    "00000010010 00000010000 00000001110 00000001100 00000001010 00000001000 000000001110 000000001100 000000001010 "
    "000000001000 000000000110 000000000100 0000000000110 0000000000100";
static_assert(VlcCodes(kVectorCodes).count == 65 && VlcCodes(kVectorCodes).prefix_free());
inline constexpr PrefixTable<13> kVectorDifference(kVectorCodes, [](int i) { return i - 32; });

}  // namespace example
