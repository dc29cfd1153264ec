/// The code tables of CAVLC residual blocks (ITU-T H.264 tables 9-5 and 9-7 to 9-10): as text, in the order of their
/// values, and as descriptions for moxiHuffmanTableInitAlloc_32s.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#include "common/vlc_description.hpp"

namespace example {

/// coeff_token. One row for each TotalCoeff from 0, in it the codes of TrailingOnes 0 to min(3, TotalCoeff).
/// [0] nC 0 and 1, [1] nC 2 and 3, [2] nC 4 to 7, [3] nC -1 (chroma DC of 4:2:0), [4] nC -2 (chroma DC of 4:2:2).
/// From nC 8 on the code has 6 fixed bits and needs no table.
inline constexpr std::array<std::string_view, 5> kCoeffTokenCodes = {
    "1 "
    "000101 01 "
    "00000111 000100 001 "
    "000000111 00000110 0000101 00011 "
    "0000000111 000000110 00000101 000011 "
    "00000000111 0000000110 000000101 0000100 "
    "0000000001111 00000000110 0000000101 00000100 "
    "0000000001011 0000000001110 00000000101 000000100 "
    "0000000001000 0000000001010 0000000001101 0000000100 "
    "00000000001111 00000000001110 0000000001001 00000000100 "
    "00000000001011 00000000001010 00000000001101 0000000001100 "
    "000000000001111 000000000001110 00000000001001 00000000001100 "
    "000000000001011 000000000001010 000000000001101 00000000001000 "
    "0000000000001111 000000000000001 000000000001001 000000000001100 "
    "0000000000001011 0000000000001110 0000000000001101 000000000001000 "
    "0000000000000111 0000000000001010 0000000000001001 0000000000001100 "
    "0000000000000100 0000000000000110 0000000000000101 0000000000001000",

    "11 "
    "001011 10 "
    "000111 00111 011 "
    "0000111 001010 001001 0101 "
    "00000111 000110 000101 0100 "
    "00000100 0000110 0000101 00110 "
    "000000111 00000110 00000101 001000 "
    "00000001111 000000110 000000101 000100 "
    "00000001011 00000001110 00000001101 0000100 "
    "000000001111 00000001010 00000001001 000000100 "
    "000000001011 000000001110 000000001101 00000001100 "
    "000000001000 000000001010 000000001001 00000001000 "
    "0000000001111 0000000001110 0000000001101 000000001100 "
    "0000000001011 0000000001010 0000000001001 0000000001100 "
    "0000000000111 00000000001011 0000000000110 0000000001000 "
    "00000000001001 00000000001000 00000000001010 0000000000001 "
    "00000000000111 00000000000110 00000000000101 00000000000100",

    "1111 "
    "001111 1110 "
    "001011 01111 1101 "
    "001000 01100 01110 1100 "
    "0001111 01010 01011 1011 "
    "0001011 01000 01001 1010 "
    "0001001 001110 001101 1001 "
    "0001000 001010 001001 1000 "
    "00001111 0001110 0001101 01101 "
    "00001011 00001110 0001010 001100 "
    "000001111 00001010 00001101 0001100 "
    "000001011 000001110 00001001 00001100 "
    "000001000 000001010 000001101 00001000 "
    "0000001101 000000111 000001001 000001100 "
    "0000001001 0000001100 0000001011 0000001010 "
    "0000000101 0000001000 0000000111 0000000110 "
    "0000000001 0000000100 0000000011 0000000010",

    "01 "
    "000111 1 "
    "000100 000110 001 "
    "000011 0000011 0000010 000101 "
    "000010 00000011 00000010 0000000",

    "1 "
    "0001111 01 "
    "0001110 0001101 001 "
    "000000111 0001100 0001011 00001 "
    "000000110 000000101 0001010 000001 "
    "0000000111 0000000110 000000100 0001001 "
    "00000000111 00000000110 0000000101 0001000 "
    "000000000111 000000000110 00000000101 0000000100 "
    "0000000000111 000000000101 000000000100 00000000100"};

/// total_zeros from 0 on, for blocks of 16 and 15 coefficients, [TotalCoeff - 1] for 1 to 15.
inline constexpr std::array<std::string_view, 15> kTotalZerosCodes = {
    "1 011 010 0011 0010 00011 00010 000011 000010 0000011 0000010 00000011 00000010 000000011 000000010 000000001",
    "111 110 101 100 011 0101 0100 0011 0010 00011 00010 000011 000010 000001 000000",
    "0101 111 110 101 0100 0011 100 011 0010 00011 00010 000001 00001 000000",
    "00011 111 0101 0100 110 101 100 0011 011 0010 00010 00001 00000",
    "0101 0100 0011 111 110 101 100 011 0010 00001 0001 00000",
    "000001 00001 111 110 101 100 011 010 0001 001 000000",
    "000001 00001 101 100 011 11 010 0001 001 000000",
    "000001 0001 00001 011 11 10 010 001 000000",
    "000001 000000 0001 11 10 001 01 00001",
    "00001 00000 001 11 10 01 0001",
    "0000 0001 001 010 1 011",
    "0000 0001 01 1 001",
    "000 001 1 01",
    "00 01 1",
    "0 1"};

/// total_zeros of chroma DC blocks, [TotalCoeff - 1]: 2x2 (4:2:0) for 1 to 3, 2x4 (4:2:2) for 1 to 7.
inline constexpr std::array<std::string_view, 3> kTotalZeros2x2Codes = {"1 01 001 000", "1 01 00", "1 0"};
inline constexpr std::array<std::string_view, 7> kTotalZeros2x4Codes = {"1 010 011 0010 0011 0001 00001 00000",
                                                                        "000 01 001 100 101 110 111",
                                                                        "000 001 01 10 110 111",
                                                                        "110 00 01 10 111",
                                                                        "00 01 10 11",
                                                                        "00 01 1",
                                                                        "0 1"};

/// run_before from 0 on, [zerosLeft - 1] for 1 to 6; [6] is for 7 and more.
inline constexpr std::array<std::string_view, 7> kRunBeforeCodes = {
    "1 0",
    "1 01 00",
    "11 10 01 00",
    "11 10 01 001 000",
    "11 10 011 010 001 000",
    "11 000 001 011 010 101 100",
    "111 110 101 100 011 010 001 0001 00001 000001 0000001 00000001 000000001 0000000001 00000000001"};

/// Place of a (TotalCoeff, TrailingOnes) among the codes of a coeff_token table.
constexpr int coeff_token_index(int totalCoeff, int trailingOnes) {
  return (totalCoeff < 3 ? totalCoeff * (totalCoeff + 1) / 2 : 4 * totalCoeff - 6) + trailingOnes;
}
static_assert(coeff_token_index(1, 1) == 2 && coeff_token_index(3, 0) == 6 && coeff_token_index(16, 3) == 61);

/// What the leaf of a coeff_token table holds: TrailingOnes in the low byte, TotalCoeff above.
constexpr std::int32_t coeff_token_value(int index) {
  int totalCoeff = 0;
  while (coeff_token_index(totalCoeff + 1, 0) <= index) ++totalCoeff;
  return totalCoeff << 8 | (index - coeff_token_index(totalCoeff, 0));
}
static_assert(coeff_token_value(0) == 0 && coeff_token_value(2) == 0x101 && coeff_token_value(61) == 0x1003);

/// The descriptions of a set of tables. The widths are those that the library reads most quickly: the roots stay in the
/// first-level cache, and the frequent codes end there.
template <int Words, std::size_t N, class Value>
constexpr auto describe_all(const std::array<std::string_view, N>& texts, int width, Value value) {
  return [&]<std::size_t... I>(std::index_sequence<I...>) {
    return std::array{describe<Words>(texts[I], width, value)...};
  }
  (std::make_index_sequence<N>{});
}

inline constexpr auto kCoeffTokenSpecs = describe_all<145>(kCoeffTokenCodes, 8, coeff_token_value);
inline constexpr auto kTotalZerosSpecs = describe_all<46>(kTotalZerosCodes, 6, [](int i) { return i; });
inline constexpr auto kTotalZeros2x2Specs = describe_all<15>(kTotalZeros2x2Codes, 6, [](int i) { return i; });
inline constexpr auto kTotalZeros2x4Specs = describe_all<25>(kTotalZeros2x4Codes, 6, [](int i) { return i; });
inline constexpr auto kRunBeforeSpecs = describe_all<48>(kRunBeforeCodes, 3, [](int i) { return i; });

/// Table `i` of a set is prefix-free, has `count` codes, and leaves `unused` of the 65536 values of 16 bits without
/// one.
template <std::size_t N>
constexpr bool well_formed(const std::array<std::string_view, N>& texts, int i, int count, int unused) {
  const VlcCodes codes(texts[i]);
  return codes.prefix_free() && codes.count == count && codes.unused() == unused;
}
/// Tables first to last of a set are complete; first has `count` codes, each further one `growth` more.
template <std::size_t N>
constexpr bool complete(const std::array<std::string_view, N>& texts, int first, int last, int count, int growth) {
  for (int i = first; i <= last; ++i) {
    if (!well_formed(texts, i, count + growth * (i - first), 0)) return false;
  }
  return true;
}
static_assert(well_formed(kCoeffTokenCodes, 0, 62, 2) && well_formed(kCoeffTokenCodes, 1, 62, 8));
static_assert(well_formed(kCoeffTokenCodes, 2, 62, 64) && well_formed(kCoeffTokenCodes, 3, 14, 0));
static_assert(well_formed(kCoeffTokenCodes, 4, 30, 56));
static_assert(well_formed(kTotalZerosCodes, 0, 16, 128) && complete(kTotalZerosCodes, 1, 14, 15, -1));
static_assert(complete(kTotalZeros2x2Codes, 0, 2, 4, -1));
static_assert(complete(kTotalZeros2x4Codes, 0, 6, 8, -1));
static_assert(complete(kRunBeforeCodes, 0, 5, 2, 1) && well_formed(kRunBeforeCodes, 6, 15, 32));

}  // namespace example
