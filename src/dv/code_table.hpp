/// The run-level code of DV coefficients, its decoding table, and the scans (IEC 61834-2, SMPTE 314M and 370M).
#pragma once

#include <array>

#include "moxvc/types.h"

namespace mox {

/// What a code does: it takes `length` bits, moves `advance` scan positions on, and stores `level`, a multiple of 64.
struct DvCodeEntry {
  Mox8u length;
  signed char advance;
  Mox16s level;
};
static_assert(sizeof(DvCodeEntry) == 4);

/// A code of the list below: `length` bits with the sign, that many coefficients of 0, then one of magnitude `level`.
/// Level 0 is a run alone, without a sign bit.
struct DvCode {
  Mox8u length, run, level;
};
/// The end of a block moves past all positions.
inline constexpr int kDvEndLength = 4, kDvEndAdvance = 64;
inline constexpr DvCode kDvEnd = {kDvEndLength, kDvEndAdvance - 1, 0};

/// Ascending: each code is the one before it, plus 1, with zeros behind it up to its length. Then follow 64 runs alone
/// of 13 bits, 0 to 63, and the escape, 1111111, eight bits of magnitude and a sign.
inline constexpr DvCode kDvCodes[] = {
    {3, 0, 1},  {4, 0, 2},  kDvEnd,      {5, 1, 1},   {5, 0, 3},   {5, 0, 4},   {6, 2, 1},   {6, 1, 2},   {6, 0, 5},
    {6, 0, 6},  {7, 3, 1},  {7, 4, 1},   {7, 0, 7},   {7, 0, 8},   {8, 5, 1},   {8, 6, 1},   {8, 2, 2},   {8, 1, 3},
    {8, 1, 4},  {8, 0, 9},  {8, 0, 10},  {8, 0, 11},  {9, 7, 1},   {9, 8, 1},   {9, 9, 1},   {9, 10, 1},  {9, 3, 2},
    {9, 4, 2},  {9, 2, 3},  {9, 1, 5},   {9, 1, 6},   {9, 1, 7},   {9, 0, 12},  {9, 0, 13},  {9, 0, 14},  {9, 0, 15},
    {9, 0, 16}, {9, 0, 17}, {10, 11, 1}, {10, 12, 1}, {10, 13, 1}, {10, 14, 1}, {10, 5, 2},  {10, 6, 2},  {10, 3, 3},
    {10, 4, 3}, {10, 2, 4}, {10, 2, 5},  {10, 1, 8},  {10, 0, 18}, {10, 0, 19}, {10, 0, 20}, {10, 0, 21}, {10, 0, 22},
    {11, 5, 3}, {11, 3, 4}, {11, 3, 5},  {11, 2, 6},  {11, 1, 9},  {11, 1, 10}, {11, 1, 11}, {11, 0, 0},  {11, 1, 0},
    {12, 6, 3}, {12, 4, 4}, {12, 3, 6},  {12, 1, 12}, {12, 1, 13}, {12, 1, 14}, {12, 2, 0},  {12, 3, 0},  {12, 4, 0},
    {12, 5, 0}, {13, 7, 2}, {13, 8, 2},  {13, 9, 2},  {13, 10, 2}, {13, 7, 3},  {13, 8, 3},  {13, 4, 5},  {13, 3, 7},
    {13, 2, 7}, {13, 2, 8}, {13, 2, 9},  {13, 2, 10}, {13, 2, 11}, {13, 1, 15}, {13, 1, 16}, {13, 1, 17},
};

/// The next 9 bits of the stream are the index of an entry, if they are below kDvLongCodes. If they are below
/// kDvEscape, the low 10 bits of the next 13 are: they start with 1, since the 13 start with 1111. Else the code is the
/// escape.
inline constexpr unsigned kDvLongCodes = 480, kDvEscape = 508;
inline constexpr int kDvShortBits = 9, kDvLongBits = 13, kDvEscapeBits = 16;
inline constexpr unsigned kDvTableSize = 960;

namespace dv_table {

struct Builder {
  std::array<DvCodeEntry, kDvTableSize> table{};
  unsigned next = 0;  // the first 13 bits that no code has so far
  bool ascending = true;

  /// Enters a code of `length` bits, the last one the sign if the level is not 0.
  constexpr void add(int length, int run, int level) {
    const int spare = kDvLongBits - length;
    ascending = ascending && next % (1u << spare) == 0;
    for (int sign = 0; sign < (level ? 2 : 1); ++sign) {
      const DvCodeEntry entry{static_cast<Mox8u>(length), static_cast<signed char>(run + 1),
                              static_cast<Mox16s>((sign ? -level : level) * 64)};
      for (const unsigned end = next + (1u << spare); next < end; ++next) enter(entry);
    }
  }
  constexpr void enter(const DvCodeEntry& entry) {
    const unsigned index = next >> (kDvLongBits - kDvShortBits);
    // Codes of 9 bits at most belong below kDvLongCodes, and all longer ones behind.
    ascending = ascending && (index < kDvLongCodes) == (entry.length <= kDvShortBits);
    table[index < kDvLongCodes ? index : next & 1023] = entry;
  }
};

inline constexpr Builder kBuilt = [] {
  Builder builder;
  for (const DvCode& code : kDvCodes) builder.add(code.length, code.run, code.level);
  for (int run = 0; run < 64; ++run) builder.add(kDvLongBits, run, 0);
  return builder;
}();
// No code begins with another one, and together with the escape they are all there is.
static_assert(kBuilt.ascending && kBuilt.next == kDvEscape << (kDvLongBits - kDvShortBits));
constexpr bool reachable(unsigned first, unsigned end) {
  for (unsigned i = first; i < end; ++i) {
    if (kBuilt.table[i].length == 0) return false;
  }
  return true;
}
static_assert(reachable(0, kDvLongCodes) && reachable(512, kDvTableSize));

}  // namespace dv_table

inline constexpr auto& kDvCodeTable = dv_table::kBuilt.table;
static_assert(kDvCodeTable[192].length == kDvEndLength && kDvCodeTable[223].advance == kDvEndAdvance);
static_assert(kDvCodeTable[191].level == -128 && kDvCodeTable[224].level == 64 && kDvCodeTable[959].advance == 64);

/// True if 9 bits of the stream begin with the end of a block.
constexpr bool dv_ends_block(unsigned index) { return index >> 5 == 6; }

/// Raster positions by scan position: of 8-8 blocks, then of 2-4-8 blocks, whose sums are rows 0 to 3.
inline constexpr std::array<Mox8u, 128> kDvScans = {
    0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,  12, 19, 26, 33, 40, 48,
    41, 34, 27, 20, 13, 6,  7,  14, 21, 28, 35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23,
    30, 37, 44, 51, 58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63,  //
    0,  32, 1,  33, 8,  40, 2,  34, 9,  41, 16, 48, 24, 56, 17, 49, 10, 42, 3,  35, 4,  36,
    11, 43, 18, 50, 25, 57, 26, 58, 19, 51, 12, 44, 5,  37, 6,  38, 13, 45, 20, 52, 27, 59,
    28, 60, 21, 53, 14, 46, 7,  39, 15, 47, 22, 54, 29, 61, 30, 62, 23, 55, 31, 63};

}  // namespace mox
