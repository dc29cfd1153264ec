/// The code tables of MPEG-1 and MPEG-2 blocks (ISO/IEC 13818-2 tables B-12 to B-15): as text, and as descriptions for
/// moxiHuffmanTableInitAlloc_32s (DC sizes) and for moxiHuffmanRunLevelTableInitAlloc_32s and moxiCreateRLEncodeTable
/// (coefficients). MPEG-1 has the sizes 0 to 8 and table zero.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "common/vlc_description.hpp"

namespace example {

/// dct_dc_size from 0 to 11.
inline constexpr std::string_view kDcSizeLumaCodes =
    "100 00 01 101 110 1110 11110 111110 1111110 11111110 111111110 111111111";
inline constexpr std::string_view kDcSizeChromaCodes =
    "00 01 10 110 1110 11110 111110 1111110 11111110 111111110 1111111110 1111111111";
static_assert(VlcCodes(kDcSizeLumaCodes).count == 12 && VlcCodes(kDcSizeChromaCodes).count == 12);
static_assert(VlcCodes(kDcSizeLumaCodes).prefix_free() && VlcCodes(kDcSizeLumaCodes).unused() == 0);
static_assert(VlcCodes(kDcSizeChromaCodes).prefix_free() && VlcCodes(kDcSizeChromaCodes).unused() == 0);

/// A table of coefficients: for each run the codes of the levels 1, 2, 3 and so on without the sign bit that ends them.
struct RunLevelText {
  std::string_view endOfBlock, escape;
  std::array<std::string_view, 32> runs;
};

/// Table zero. In a non-intra block the first coefficient has 1 for run 0 and level 1, and no end of block comes there.
inline constexpr RunLevelText kDctCoefZeroCodes = {
    "10",
    "000001",
    {"11 0100 00101 0000110 00100110 00100001 0000001010 000000011101 000000011000 000000010011 000000010000 "
     "0000000011010 0000000011001 0000000011000 0000000010111 00000000011111 00000000011110 00000000011101 "
     "00000000011100 00000000011011 00000000011010 00000000011001 00000000011000 00000000010111 00000000010110 "
     "00000000010101 00000000010100 00000000010011 00000000010010 00000000010001 00000000010000 "
     "000000000011000 000000000010111 000000000010110 000000000010101 000000000010100 000000000010011 "
     "000000000010010 000000000010001 000000000010000",
     "011 000110 00100101 0000001100 000000011011 0000000010110 0000000010101 000000000011111 000000000011110 "
     "000000000011101 000000000011100 000000000011011 000000000011010 000000000011001 0000000000010011 "
     "0000000000010010 0000000000010001 0000000000010000",
     "0101 0000100 0000001011 000000010100 0000000010100",
     "00111 00100100 000000011100 0000000010011",
     "00110 0000001111 000000010010",
     "000111 0000001001 0000000010010",
     "000101 000000011110 0000000000010100",
     "000100 000000010101",
     "0000111 000000010001",
     "0000101 0000000010001",
     "00100111 0000000010000",
     "00100011 0000000000011010",
     "00100010 0000000000011001",
     "00100000 0000000000011000",
     "0000001110 0000000000010111",
     "0000001101 0000000000010110",
     "0000001000 0000000000010101",
     "000000011111",
     "000000011010",
     "000000011001",
     "000000010111",
     "000000010110",
     "0000000011111",
     "0000000011110",
     "0000000011101",
     "0000000011100",
     "0000000011011",
     "0000000000011111",
     "0000000000011110",
     "0000000000011101",
     "0000000000011100",
     "0000000000011011"}};

/// Table one: intra blocks with intra_vlc_format 1.
inline constexpr RunLevelText kDctCoefOneCodes = {
    "0110",
    "000001",
    {"10 110 0111 11100 11101 000101 000100 1111011 1111100 00100011 00100010 11111010 11111011 11111110 "
     "11111111 00000000011111 00000000011110 00000000011101 00000000011100 00000000011011 00000000011010 "
     "00000000011001 00000000011000 00000000010111 00000000010110 00000000010101 00000000010100 00000000010011 "
     "00000000010010 00000000010001 00000000010000 000000000011000 000000000010111 000000000010110 "
     "000000000010101 000000000010100 000000000010011 000000000010010 000000000010001 000000000010000",
     "010 00110 1111001 00100111 00100000 0000000010110 0000000010101 000000000011111 000000000011110 "
     "000000000011101 000000000011100 000000000011011 000000000011010 000000000011001 0000000000010011 "
     "0000000000010010 0000000000010001 0000000000010000",
     "00101 0000111 11111100 0000001100 0000000010100",
     "00111 00100110 000000011100 0000000010011",
     "000110 11111101 000000010010",
     "000111 000000100 0000000010010",
     "0000110 000000011110 0000000000010100",
     "0000100 000000010101",
     "0000101 000000010001",
     "1111000 0000000010001",
     "1111010 0000000010000",
     "00100001 0000000000011010",
     "00100101 0000000000011001",
     "00100100 0000000000011000",
     "000000101 0000000000010111",
     "000000111 0000000000010110",
     "0000001101 0000000000010101",
     "000000011111",
     "000000011010",
     "000000011001",
     "000000010111",
     "000000010110",
     "0000000011111",
     "0000000011110",
     "0000000011101",
     "0000000011100",
     "0000000011011",
     "0000000000011111",
     "0000000000011110",
     "0000000000011101",
     "0000000000011100",
     "0000000000011011"}};

/// The runs that stand for these two in the library's run-level tables.
inline constexpr int kEndOfBlockRun = 254, kEscapeRun = 255;

/// The codes of such a table one by one, without their sign bits. End of block and escape have level 0 and no sign bit.
struct RunLevelCodes {
  struct Entry {
    VlcCode code;
    int run, level;
  };
  std::array<Entry, 113> entries{};
  int count = 0;

  constexpr explicit RunLevelCodes(const RunLevelText& text) {
    entries[count++] = {VlcCodes(text.endOfBlock)[0], kEndOfBlockRun, 0};
    entries[count++] = {VlcCodes(text.escape)[0], kEscapeRun, 0};
    for (int run = 0; run < 32; ++run) {
      int level = 0;
      for (const VlcCode& code : VlcCodes(text.runs[run])) entries[count++] = {code, run, ++level};
    }
  }
  /// How many of the 65536 values of 16 bits begin with no code, or -1 if a code is the start of another one.
  constexpr int unused() const {
    int left = 1 << 16;
    for (const Entry& a : entries) {
      for (const Entry& b : entries) {
        const int longer = b.code.length - a.code.length;
        if (&a != &b && longer >= 0 && b.code.bits >> longer == a.code.bits) return -1;
      }
      left -= 1 << (16 - a.code.length);
    }
    return left;
  }
};
static_assert(RunLevelCodes(kDctCoefZeroCodes).count == 113 && RunLevelCodes(kDctCoefZeroCodes).unused() == 16);
static_assert(RunLevelCodes(kDctCoefOneCodes).count == 113 && RunLevelCodes(kDctCoefOneCodes).unused() == 144);

/// The description of a table of coefficients, each code with either sign. The two levels of 9 and 8 bits let all
/// frequent codes end in the first.
constexpr VlcDescription<694> describe_run_levels(const RunLevelText& text) {
  const RunLevelCodes codes(text);
  VlcDescription<694> description;
  for (int word : {0, 2, 9, 8}) description.add(word);
  for (int length = 1; length <= 17; ++length) {
    const int counted = description.size;
    description.add(0);
    for (const auto& [code, run, level] : codes.entries) {
      const bool isSigned = level > 0;
      if (code.length + isSigned != length) continue;
      for (int sign = 0; sign <= isSigned; ++sign) {
        ++description.words[counted];
        description.add(static_cast<std::int32_t>(isSigned ? code.bits << 1 | sign : code.bits));
        description.add(run);
        description.add(sign ? -level : level);
      }
    }
  }
  description.add(-1);
  return description;
}

inline constexpr auto kDcSizeLumaSpec = describe<37>(kDcSizeLumaCodes, 9, [](int i) { return i; });
inline constexpr auto kDcSizeChromaSpec = describe<38>(kDcSizeChromaCodes, 10, [](int i) { return i; });
inline constexpr auto kDctCoefZeroSpec = describe_run_levels(kDctCoefZeroCodes);
inline constexpr auto kDctCoefOneSpec = describe_run_levels(kDctCoefOneCodes);

}  // namespace example
