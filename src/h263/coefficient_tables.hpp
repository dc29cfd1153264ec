/// The coefficient codes of H.263, as text and as the tables that are made of it when the library is built.
#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "moxvc/types.h"

namespace mox {

/// [last flag]: for each run from 0 on, set apart by commas, the codes of the levels 1, 2, 3 and so on without the sign
/// bit that ends them.
struct LastRunLevelText {
  std::array<std::string_view, 2> rows;
};

/// The escape code of all tables: 7 bits, value 3.
inline constexpr Mox32u kTcoefEscape = 3;

inline constexpr LastRunLevelText kTcoefRows = {
    {"10 1111 010101 0010111 00011111 000100101 000100100 0000100001 0000100000 00000000111 00000000110 00000100000,"
     "110 010100 00011110 0000001111 00000100001 000001010000,1110 00011101 0000001110 000001010001,"
     "01101 000100011 0000001101,01100 000100010 000001010010,01011 0000001100 000001010011,"
     "010011 0000001011 000001010100,010010 0000001010,010001 0000001001,010000 0000001000,0010110 000001010101,"
     "0010101,0010100,00011100,00011011,000100001,000100000,000011111,000011110,000011101,000011100,000011011,"
     "000011010,00000100010,00000100011,000001010110,000001010111",
     "0111 000011001 00000000101,001111 00000000100,001110,001101,001100,0010011,0010010,0010001,0010000,00011010,"
     "00011001,00011000,00010111,00010110,00010101,00010100,00010011,000011000,000010111,000010110,000010101,"
     "000010100,000010011,000010010,000010001,0000000111,0000000110,0000000101,0000000100,00000100100,00000100101,"
     "00000100110,00000100111,000001011000,000001011001,000001011010,000001011011,000001011100,000001011101,"
     "000001011110,000001011111"}};

/// Of advanced intra coding: the same codes with other meanings.
inline constexpr LastRunLevelText kAdvancedTcoefRows = {
    {"10 110 1110 01100 01101 010000 010001 010010 0010110 00011011 000100000 000100001 000011010 000011011 000011100 "
     "000011101 000011110 000011111 00000100011 00000100010 000001010111 000001010110 000001010101 000001010100 "
     "000001010011,1111 010100 0010100 00011110 0000001111 00000100001 000001010000,01011 0010101 0000001110 "
     "0000001001,010101 00011101 0000001101 000001010001,010011 000100011 00000000111,0010111 000100010 000001010010,"
     "00011100 0000001100,00011111 0000001011,000100101 0000001010,000100100 00000000110,0000100001,0000100000,"
     "0000001000,00000100000",
     "0111 001100 0010000 00010011 000010001 000010010 0000000100 00000100111 00000100110 000001011111,"
     "001111 000010011 0000000101 00000100101,001110 000010100 00000100100,001101 0000000110 000001011110,"
     "0010001 0000000111,0010011 000001011101,0010010 000001011100,00010100 000001011011,00010101,00011010,00011001,"
     "00011000,00010111,00010110,000011001,000010101,000010110,000011000,000010111,00000000100,00000000101,"
     "000001011000,000001011001,000001011010"}};

/// Visits each code of a text: visit(last, run, level, code, length), without the sign bit, in the order of the text.
template <class Visit>
constexpr void for_each_code(const LastRunLevelText& text, Visit visit) {
  for (Mox32u last = 0; last < 2; ++last) {
    Mox32u run = 0, level = 1, code = 0, length = 0;
    for (std::size_t i = 0; i <= text.rows[last].size(); ++i) {
      const char c = i < text.rows[last].size() ? text.rows[last][i] : ',';
      if (c == '0' || c == '1') {
        code = 2 * code + (c == '1');
        ++length;
        continue;
      }
      visit(last, run, level, code, length);
      level = c == ',' ? 1 : level + 1;
      run += c == ',';
      code = length = 0;
    }
  }
}

/// An entry of a table for reading: last flag, run + 1 (what the scan index goes up by), magnitude of the level and
/// length with the sign bit, eight bits each from bit 0 up.
struct TcoefEntry {
  Mox32u word;
  constexpr bool last() const { return word & 1; }
  constexpr Mox32s advance() const { return static_cast<Mox32s>(word >> 8 & 0xFF); }
  constexpr Mox32s magnitude() const { return static_cast<Mox32s>(word >> 16 & 0xFF); }
  constexpr Mox32s length() const { return static_cast<Mox32s>(word >> 24); }
};

/// The longest code, its sign bit included; readers look at so many bits v. Below kLeastTcoef they begin no code.
inline constexpr Mox32s kMostTcoefBits = 13;
inline constexpr Mox32u kLeastTcoef = 16;

/// The entries of all v from `Low` to below `High`, cut by `Shift` bits: [(v >> Shift) - (Low >> Shift)].
template <Mox32u Low, Mox32u High, int Shift>
constexpr auto decode_table(const LastRunLevelText& text) {
  std::array<TcoefEntry, ((High - Low) >> Shift)> table{};
  for_each_code(text, [&](Mox32u last, Mox32u run, Mox32u level, Mox32u code, Mox32u length) {
    const Mox32u first = code << (kMostTcoefBits - length), end = (code + 1) << (kMostTcoefBits - length);
    if (first < Low || first >= High) return;
    for (Mox32u v = first; v < end; v += 1u << Shift) {
      TcoefEntry& entry = table[(v - Low) >> Shift];
      entry.word = entry.word != 0 ? ~0u : last | (run + 1) << 8 | level << 16 | (length + 1) << 24;
    }
  });
  return table;
}
/// True if each v begins exactly one code: complete and prefix-free.
template <std::size_t N>
constexpr bool is_complete(const std::array<TcoefEntry, N>& table) {
  for (TcoefEntry entry : table) {
    if (entry.word == 0 || entry.length() > kMostTcoefBits) return false;
  }
  return true;
}

/// v from 1024 up, from 256 and from 16. Between the last two lies the escape, from 192 on.
inline constexpr auto h263_coefTab0 = decode_table<1024, 8192, 6>(kTcoefRows);
inline constexpr auto h263_coefTab1 = decode_table<256, 1024, 3>(kTcoefRows);
inline constexpr auto h263_coefTab2 = decode_table<kLeastTcoef, kTcoefEscape << 6, 1>(kTcoefRows);
inline constexpr auto h263_advCoefTab0 = decode_table<1024, 8192, 6>(kAdvancedTcoefRows);
inline constexpr auto h263_advCoefTab1 = decode_table<256, 1024, 3>(kAdvancedTcoefRows);
inline constexpr auto h263_advCoefTab2 = decode_table<kLeastTcoef, kTcoefEscape << 6, 1>(kAdvancedTcoefRows);
static_assert(is_complete(h263_coefTab0) && is_complete(h263_coefTab1) && is_complete(h263_coefTab2));
static_assert(is_complete(h263_advCoefTab0) && is_complete(h263_advCoefTab1) && is_complete(h263_advCoefTab2));
static_assert(h263_coefTab0.size() == 112 && h263_coefTab1.size() == 96 && h263_coefTab2.size() == 88);

/// The tables for reading of one text.
struct TcoefDecodeTables {
  const TcoefEntry *tab0, *tab1, *tab2;
  constexpr TcoefEntry operator[](Mox32u v) const {
    if (v >= 1024) return tab0[(v >> 6) - 16];
    if (v >= 256) return tab1[(v >> 3) - 32];
    return tab2[(v >> 1) - 8];
  }
};
inline constexpr TcoefDecodeTables kTcoefTables = {h263_coefTab0.data(), h263_coefTab1.data(), h263_coefTab2.data()};
inline constexpr TcoefDecodeTables kAdvancedTcoefTables = {h263_advCoefTab0.data(), h263_advCoefTab1.data(),
                                                           h263_advCoefTab2.data()};

/// A code to be written, its lowest bit the sign.
struct TcoefCode {
  Mox16u bits;
  Mox16u length;
};
inline constexpr std::size_t kTcoefCodes = 102;

/// The codes in the order of their text. Their number is checked below, with all else.
template <std::size_t N = kTcoefCodes>
constexpr auto encode_table(const LastRunLevelText& text) {
  std::array<TcoefCode, N> table{};
  std::size_t row = 0;
  for_each_code(text, [&](Mox32u, Mox32u, Mox32u, Mox32u code, Mox32u length) {
    table[row++] = {static_cast<Mox16u>(2 * code), static_cast<Mox16u>(length + 1)};
  });
  return table;
}
/// [run]: the row of its level 1. Its rows end where those of the next run begin.
using TcoefOffsets = std::array<Mox8u, 65>;
constexpr TcoefOffsets row_offsets(const LastRunLevelText& text, Mox32u ofLast) {
  TcoefOffsets offsets{};
  Mox8u rows = 0;
  for_each_code(text, [&](Mox32u last, Mox32u run, Mox32u, Mox32u, Mox32u) {
    ++rows;
    if (last > ofLast) return;
    for (std::size_t next = last < ofLast ? 0 : run + 1; next < offsets.size(); ++next) offsets[next] = rows;
  });
  return offsets;
}

inline constexpr auto h263_VLCTab = encode_table(kTcoefRows);
inline constexpr auto h263_advVLCTab = encode_table(kAdvancedTcoefRows);
inline constexpr TcoefOffsets h263_Offs = row_offsets(kTcoefRows, 0), h263_Offs_l = row_offsets(kTcoefRows, 1);
inline constexpr TcoefOffsets h263_advOffs = row_offsets(kAdvancedTcoefRows, 0);
inline constexpr TcoefOffsets h263_advOffs_l = row_offsets(kAdvancedTcoefRows, 1);

/// The tables for writing of one text.
struct TcoefEncodeTables {
  const TcoefCode* codes;
  std::array<const Mox8u*, 2> offsets;  ///< [last flag]

  /// Null if it has to be escaped.
  constexpr const TcoefCode* find(bool last, Mox32s run, Mox32s magnitude) const {
    const Mox8u* const rows = offsets[last] + run;
    return magnitude <= rows[1] - rows[0] ? &codes[rows[0] + magnitude - 1] : nullptr;
  }
};
inline constexpr TcoefEncodeTables h263_VLCParams = {h263_VLCTab.data(), {h263_Offs.data(), h263_Offs_l.data()}};
inline constexpr TcoefEncodeTables h263_advVLCParams = {h263_advVLCTab.data(),
                                                        {h263_advOffs.data(), h263_advOffs_l.data()}};

/// True if every code that is written is read as the same last flag, run and level.
constexpr bool agree(const TcoefEncodeTables& writing, const TcoefDecodeTables& reading) {
  std::size_t found = 0;
  for (int last = 0; last < 2; ++last) {
    for (Mox32s run = 0; run < 64; ++run) {
      for (Mox32s level = 1; const TcoefCode* code = writing.find(last, run, level); ++level, ++found) {
        const TcoefEntry entry = reading[static_cast<Mox32u>(code->bits) << (kMostTcoefBits - code->length)];
        if (entry.last() != last || entry.advance() != run + 1 || entry.magnitude() != level) return false;
        if (entry.length() != code->length) return false;
      }
    }
  }
  return found == kTcoefCodes;
}
static_assert(agree(h263_VLCParams, kTcoefTables) && agree(h263_advVLCParams, kAdvancedTcoefTables));

}  // namespace mox
