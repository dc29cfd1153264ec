/// The reversible coefficient codes of MPEG-4: a bit pattern can be read from either end, its sign bit standing last.
#pragma once

#include <algorithm>

#include "h263/coefficient_tables.hpp"

namespace mox {

/// The codes of both kinds of blocks are the same, with other meanings.
inline constexpr LastRunLevelText kReversibleIntraRows = {
    {"110 111 1010 01001 010100 010101 0110100 01110100 01110101 011011101 011101100 0111101100 0111101101 0111110100 "
     "01111101100 01111101101 01111110100 011101111101 011110111100 0111110111101 0111111011100 011110111101 "
     "0111111011101 01111110111101 01111111011100 01111111011101 001111111111100,0001 01000 0101101 01101100 01101101 "
     "011011100 0111011101 01111011100 01111011101 011101111100 0111110111100 01111101111101 01111110111100,00100 "
     "0101100 010111100 0111011100 01110111100 01110111101 0111011111101 0111101111100 0111101111101 01111011111101 "
     "01111101111100,00101 01011100 010111101 01101111101 011011111100 0111011111100 01110111111101 01111011111100 "
     "001111111111101,001100 01011101 0110111101 001111111101 011011111101 01101111111101,001101 001111101 "
     "01011111100 010111111100 01101111111100 01110111111100,0011100 0101111100 01011111101 010111111101 "
     "010111111111100,0011101 0101111101 01101111100 0110111111101 010111111111101,00111100 0110111100 0101111111101 "
     "01011111111101,00111101 00111111101 0110111111100 011011111111100,001111100 001111111100,0011111100 "
     "0101111111100,0011111101 011011111111101,00111111100,0011111111100,0011111111101,00111111111100,00111111111101,"
     "01011111111100,011101111111100",
     "1011 01111000 01111110101 0111111101100 01111111101100,10010 011101101 011111011100 01111111101101 "
     "011101111111101,10011 01111111000 011110111111100,011000 011111011101,011001 011111101100,100010 0111111101101,"
     "100011 0111111110100,0110101 0111111110101,0111000 0111111111000,0111001 0111111111001,1000010 01111111110100,"
     "1000011 01111111110101,01111001 01111111111000,10000010 011110111111101,10000011,011110100,011110101,011111000,"
     "011111001,100000010,100000011,0111110101,0111111000,0111111001,1000000010,1000000011,01111111001,10000000010,"
     "10000000011,011111101101,011111110100,011111110101,011111111000,011111111001,100000000010,100000000011,"
     "1000000000010,1000000000011,01111111111001,10000000000010,10000000000011,011111011111100,011111011111101,"
     "011111101111100,011111101111101"}};
inline constexpr LastRunLevelText kReversibleInterRows = {
    {"110 0001 00100 0011100 00111100 00111101 001111100 0011111100 0011111101 00111111100 00111111101 001111111100 "
     "0011111111100 0011111111101 0101111111100 0101111111101 00111111111100 00111111111101 001111111111100,111 "
     "001100 01011100 001111101 0101111100 01011111100 001111111101 0110111111100 01011111111100 01011111111101,1010 "
     "0011101 010111100 01011111101 010111111100 01101111111100 01101111111101,00101 01011101 0101111101 010111111101 "
     "0110111111101 01110111111100 001111111111101,01000 01101100 01101111100 0111011111100 010111111111100,01001 "
     "010111101 01101111101 0111011111101,001101 0110111100 011011111100 01110111111101,010100 0110111101 "
     "011011111101 010111111111101,010101 0111011100 0111101111100,0101100 0111011101 01111011111100,0101101 "
     "01110111100,0110100 011101111100,01101101 0111101111101,01110100 01111011111101,01110101 01111101111100,"
     "011011100 01111101111101,011011101 01111110111100,011101100 011011111111100,0111101100,0111101101,0111110100,"
     "01110111101,01111011100,01111011101,01111101100,01111101101,01111110100,011101111101,011110111100,011110111101,"
     "0111110111100,0111110111101,0111111011100,0111111011101,01111110111101,01111111011100,01111111011101,"
     "011011111111101,011101111111100",
     "1011 01111000 01111110101 0111111101100 01111111101100,10010 011101101 011111011100 01111111101101 "
     "011101111111101,10011 01111111000 011110111111100,011000 011111011101,011001 011111101100,100010 0111111101101,"
     "100011 0111111110100,0110101 0111111110101,0111000 0111111111000,0111001 0111111111001,1000010 01111111110100,"
     "1000011 01111111110101,01111001 01111111111000,10000010 011110111111101,10000011,011110100,011110101,011111000,"
     "011111001,100000010,100000011,0111110101,0111111000,0111111001,1000000010,1000000011,01111111001,10000000010,"
     "10000000011,011111101101,011111110100,011111110101,011111111000,011111111001,100000000010,100000000011,"
     "1000000000010,1000000000011,01111111111001,10000000000010,10000000000011,011111011111100,011111011111101,"
     "011111101111100,011111101111101"}};

inline constexpr std::size_t kReversibleCodes = 169;
inline constexpr Mox32u kMostReversibleBits = 15;  // without the sign

/// For writing.
inline constexpr auto vlc_TB23a = encode_table<kReversibleCodes>(kReversibleIntraRows);
inline constexpr auto vlc_TB23b = encode_table<kReversibleCodes>(kReversibleInterRows);
inline constexpr TcoefOffsets vlc_TB23a_offs = row_offsets(kReversibleIntraRows, 0);
inline constexpr TcoefOffsets vlc_TB23a_offs_l = row_offsets(kReversibleIntraRows, 1);
inline constexpr TcoefOffsets vlc_TB23b_offs = row_offsets(kReversibleInterRows, 0);
inline constexpr TcoefOffsets vlc_TB23b_offs_l = row_offsets(kReversibleInterRows, 1);
inline constexpr TcoefEncodeTables mVLC_TB23a = {vlc_TB23a.data(), {vlc_TB23a_offs.data(), vlc_TB23a_offs_l.data()}};
inline constexpr TcoefEncodeTables mVLC_TB23b = {vlc_TB23b.data(), {vlc_TB23b_offs.data(), vlc_TB23b_offs_l.data()}};

/// The codes in order of length and value: what row of the tables for reading belongs to each.
constexpr bool in_row_order(TcoefCode a, TcoefCode b) {
  return a.length != b.length ? a.length < b.length : a.bits < b.bits;
}
constexpr auto sorted_codes(std::array<TcoefCode, kReversibleCodes> codes) {
  std::sort(codes.begin(), codes.end(), in_row_order);
  return codes;
}
inline constexpr auto kReversibleRowCodes = sorted_codes(vlc_TB23a);

/// For reading: [row] entries of each kind of block, for both directions.
constexpr auto reversible_rows(const LastRunLevelText& text) {
  std::array<TcoefEntry, kReversibleCodes> rows{};
  for_each_code(text, [&](Mox32u last, Mox32u run, Mox32u level, Mox32u code, Mox32u length) {
    const TcoefCode written{static_cast<Mox16u>(2 * code), static_cast<Mox16u>(length + 1)};
    const auto row = std::lower_bound(kReversibleRowCodes.begin(), kReversibleRowCodes.end(), written, in_row_order);
    if (row == kReversibleRowCodes.end() || row->bits != written.bits || row->length != written.length) return;
    rows[static_cast<std::size_t>(row - kReversibleRowCodes.begin())].word =
        last | (run + 1) << 8 | level << 16 | (length + 1) << 24;
  });
  return rows;
}
inline constexpr auto tableB23_Forw_Intra = reversible_rows(kReversibleIntraRows);
inline constexpr auto tableB23_Forw_Inter = reversible_rows(kReversibleInterRows);
inline constexpr auto& tableB23_Back_Intra = tableB23_Forw_Intra;
inline constexpr auto& tableB23_Back_Inter = tableB23_Forw_Inter;

/// Rows by bits of the stream. [8 bits], which are the next ones, or going backwards the last ones: a row, or
/// kSecondLevel and the number of a table for [7 further bits]. All bits stand in stream order.
struct ReversibleIndex {
  static constexpr Mox8u kSecondLevel = 200, kNone = 255;
  static constexpr std::size_t kTables = 20;
  std::array<Mox8u, 256> ind0;
  std::array<std::array<Mox8u, 128>, kTables> iptr;
  bool isPrefixFree = true;

  constexpr Mox8u row(Mox32u first, Mox32u second) const {
    const Mox8u entry = ind0[first];
    return entry < kSecondLevel || entry == kNone ? entry : iptr[entry - kSecondLevel][second];
  }
};

template <bool kBackward>
constexpr ReversibleIndex reversible_index() {
  ReversibleIndex index;
  index.ind0.fill(ReversibleIndex::kNone);
  for (auto& table : index.iptr) table.fill(ReversibleIndex::kNone);
  Mox8u tables = 0;
  for (Mox8u row = 0; row < kReversibleCodes; ++row) {
    const Mox32u bits = kReversibleRowCodes[row].bits >> 1, length = kReversibleRowCodes[row].length - 1u;
    const Mox32u width = length <= 8 ? 8 : kMostReversibleBits;
    for (Mox32u rest = 0; rest < 1u << (width - length); ++rest) {
      const Mox32u v = kBackward ? rest << length | bits : bits << (width - length) | rest;
      Mox8u* place = &index.ind0[kBackward ? v & 255 : v >> (width - 8)];
      if (width > 8) {
        if (*place == ReversibleIndex::kNone) *place = static_cast<Mox8u>(ReversibleIndex::kSecondLevel + tables++);
        if (*place < ReversibleIndex::kSecondLevel) index.isPrefixFree = false;
        place = &index.iptr[*place - ReversibleIndex::kSecondLevel][kBackward ? v >> 8 : v & 127];
      }
      if (*place != ReversibleIndex::kNone) index.isPrefixFree = false;
      *place = row;
    }
  }
  return index;
}
inline constexpr ReversibleIndex ownvc_mp4_RVLC_ind = reversible_index<false>();
inline constexpr ReversibleIndex ownvc_mp4_RVLCb_ind = reversible_index<true>();

/// True if every code that is written is found from both ends, as the same last flag, run and level.
constexpr bool reads_back(const TcoefEncodeTables& writing, const std::array<TcoefEntry, kReversibleCodes>& rows) {
  std::size_t found = 0;
  for (int last = 0; last < 2; ++last) {
    for (Mox32s run = 0; run < 64; ++run) {
      for (Mox32s level = 1; const TcoefCode* code = writing.find(last, run, level); ++level, ++found) {
        const Mox32u bits = code->bits >> 1, ahead = bits << (kMostReversibleBits + 1 - code->length);
        const Mox8u row = ownvc_mp4_RVLC_ind.row(ahead >> 7, ahead & 127);
        if (row >= kReversibleCodes || row != ownvc_mp4_RVLCb_ind.row(bits & 255, bits >> 8)) return false;
        if (rows[row].last() != last || rows[row].advance() != run + 1 || rows[row].magnitude() != level) return false;
        if (rows[row].length() != code->length) return false;
      }
    }
  }
  return found == kReversibleCodes;
}
static_assert(ownvc_mp4_RVLC_ind.isPrefixFree && ownvc_mp4_RVLCb_ind.isPrefixFree);
static_assert(reads_back(mVLC_TB23a, tableB23_Forw_Intra) && reads_back(mVLC_TB23b, tableB23_Forw_Inter));

/// All tables of a kind of block.
struct ReversibleTables {
  const std::array<TcoefEntry, kReversibleCodes>&forward, &backward;
  const TcoefEncodeTables& writing;
};
inline constexpr ReversibleTables kReversibleIntra = {tableB23_Forw_Intra, tableB23_Back_Intra, mVLC_TB23a};
inline constexpr ReversibleTables kReversibleInter = {tableB23_Forw_Inter, tableB23_Back_Inter, mVLC_TB23b};

}  // namespace mox
