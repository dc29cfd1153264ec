/// Run-level tables of AVS blocks. A table turns code numbers into runs and levels, or into the end of the block.
#pragma once

#include <algorithm>
#include <array>

#include "frame/scan_tables.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// Code numbers from this one on are escapes.
inline constexpr int kAvsCodes = 59;
/// Run of the end of the block, and of numbers that no code has: it never fits into a block.
inline constexpr Mox8u kAvsEndRun = 64;

struct AvsRunLevel {
  Mox8u run;
  signed char level;
  constexpr bool operator==(const AvsRunLevel&) const = default;
};

struct AvsVlcTable {
  AvsRunLevel rows[64];   ///< by code number
  Mox8u refAbsLevel[32];  ///< by run: the smallest magnitude that needs an escape; 0 for a run that is not in the table
};
static_assert(sizeof(AvsVlcTable) == 160);

/// What a table is made from: codes come in couples of a level and its negative, and with each run the magnitudes
/// grow by 1 from couple to couple. So the runs of the couples and the row of the end of the block are all it takes.
struct AvsVlcRuns {
  int endRow;
  Mox8u runs[(kAvsCodes - 1) / 2];
};

constexpr AvsVlcTable make_avs_table(const AvsVlcRuns& from) {
  AvsVlcTable table{};
  std::fill(std::begin(table.rows), std::end(table.rows), AvsRunLevel{kAvsEndRun, 0});
  std::fill(std::begin(table.refAbsLevel), std::end(table.refAbsLevel), Mox8u{0});
  int row = 0;
  for (const Mox8u run : from.runs) {
    if (row == from.endRow) ++row;
    Mox8u& next = table.refAbsLevel[run];
    const auto level = static_cast<signed char>(std::max<Mox8u>(next, 1));
    table.rows[row++] = {run, level};
    table.rows[row++] = {run, static_cast<signed char>(-level)};
    next = static_cast<Mox8u>(level + 1);
  }
  return table;
}

inline constexpr AvsVlcTable VLC0_Intra = make_avs_table(
    {58, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 0, 11, 12, 13, 14, 1, 15, 16, 0, 17, 18, 2, 19, 20, 3, 21, 4, 22}});
inline constexpr AvsVlcTable VLC1_Intra =
    make_avs_table({8, {0, 1, 0, 2, 3, 4, 5, 0, 1, 6, 7, 8, 2, 0, 9, 10, 3, 1, 11, 4, 0, 12, 5, 13, 6, 7, 2, 0, 14}});
inline constexpr AvsVlcTable VLC2_Intra =
    make_avs_table({8, {0, 0, 1, 0, 2, 1, 0, 3, 0, 4, 1, 2, 5, 0, 3, 6, 1, 0, 2, 4, 7, 5, 0, 8, 1, 3, 6, 0, 9}});
inline constexpr AvsVlcTable VLC3_Intra =
    make_avs_table({8, {0, 0, 0, 1, 0, 0, 1, 2, 0, 1, 0, 3, 0, 2, 1, 4, 0, 1, 3, 0, 2, 5, 0, 1, 6, 4, 3, 0, 2}});
inline constexpr AvsVlcTable VLC4_Intra =
    make_avs_table({6, {0, 0, 0, 0, 0, 0, 1, 0, 0, 1, 0, 0, 2, 1, 0, 1, 0, 0, 1, 3, 2, 0, 1, 0, 0, 2, 4, 1, 0}});
inline constexpr AvsVlcTable VLC5_Intra =
    make_avs_table({0, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 1, 0, 2, 0, 1, 0, 1, 0, 0, 1, 0, 2}});
inline constexpr AvsVlcTable VLC6_Intra =
    make_avs_table({0, {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0}});

inline constexpr AvsVlcTable VLC0_Inter = make_avs_table(
    {58, {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 0, 13, 14, 15, 16, 17, 18, 0, 19, 20, 1, 21, 22, 23, 24, 25}});
inline constexpr AvsVlcTable VLC1_Inter = make_avs_table(
    {2, {0, 1, 2, 3, 4, 5, 0, 6, 7, 8, 9, 1, 10, 11, 0, 12, 13, 2, 14, 3, 15, 4, 16, 0, 5, 17, 18, 6, 1}});
inline constexpr AvsVlcTable VLC2_Inter =
    make_avs_table({2, {0, 1, 0, 2, 3, 0, 1, 4, 5, 6, 2, 0, 7, 1, 3, 8, 9, 0, 4, 10, 5, 11, 2, 0, 1, 12, 6, 3, 13}});
inline constexpr AvsVlcTable VLC3_Inter =
    make_avs_table({2, {0, 0, 1, 0, 2, 1, 0, 3, 0, 4, 1, 2, 5, 0, 3, 6, 1, 0, 2, 7, 4, 0, 8, 3, 5, 1, 9, 0, 2}});
inline constexpr AvsVlcTable VLC4_Inter =
    make_avs_table({2, {0, 0, 0, 1, 0, 0, 1, 2, 0, 1, 0, 3, 0, 2, 1, 4, 0, 1, 3, 5, 0, 2, 0, 6, 1, 3, 4, 0, 2}});
inline constexpr AvsVlcTable VLC5_Inter =
    make_avs_table({0, {0, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0, 2, 0, 1, 0, 1, 0, 3, 2, 0, 1, 0, 1, 4, 0, 2, 0, 3, 1}});
inline constexpr AvsVlcTable VLC6_Inter =
    make_avs_table({0, {0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 2, 0, 0, 1, 0, 0, 0, 1, 0, 0, 2, 3, 1, 0}});

inline constexpr AvsVlcTable VLC0_Chroma = make_avs_table(
    {58, {0, 1, 2, 3, 4, 5, 6, 0, 7, 8, 9, 10, 11, 12, 13, 14, 0, 15, 16, 17, 18, 19, 20, 21, 1, 22, 23, 24, 0}});
inline constexpr AvsVlcTable VLC1_Chroma = make_avs_table(
    {0, {0, 1, 0, 2, 3, 4, 5, 0, 6, 7, 1, 8, 9, 10, 0, 11, 12, 13, 2, 14, 3, 0, 1, 15, 16, 17, 4, 18, 19}});
inline constexpr AvsVlcTable VLC2_Chroma =
    make_avs_table({2, {0, 0, 1, 0, 2, 0, 1, 3, 0, 4, 1, 2, 5, 0, 6, 3, 0, 7, 1, 8, 2, 4, 5, 0, 9, 10, 0, 1, 3}});
inline constexpr AvsVlcTable VLC3_Chroma =
    make_avs_table({0, {0, 0, 0, 0, 1, 0, 1, 0, 2, 0, 1, 0, 3, 2, 0, 1, 4, 0, 2, 1, 3, 0, 5, 0, 6, 1, 0, 4, 7}});
inline constexpr AvsVlcTable VLC4_Chroma =
    make_avs_table({0, {0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 1, 0, 2, 0, 1, 0, 0, 1, 3, 2, 0, 1, 0, 4}});

/// Largest run whose escapes begin at refAbsLevel, by the threshold of the table in use: [threshold], and the last
/// entry that a family uses for all thresholds beyond.
inline constexpr Mox32s VLC_IntraMaxRun[12] = {22, 14, 9, 6, 6, 4, 4, 4, 2, 2, 2, 1};
inline constexpr Mox32s VLC_InterMaxRun[12] = {25, 18, 13, 9, 6, 6, 6, 4, 4, 4, 3, 1};
inline constexpr Mox32s VLC_ChromaMaxRun[6] = {24, 19, 10, 7, 7, 4};

inline constexpr std::array<Mox8u, 64> kAvsFieldScan = {0,  8,  16, 1,  24, 32, 9,  17, 40, 48, 25, 2,  10, 56, 33, 18,
                                                        3,  41, 49, 26, 11, 19, 4,  57, 34, 12, 42, 27, 20, 50, 35, 28,
                                                        5,  13, 58, 43, 36, 21, 6,  29, 51, 44, 14, 22, 37, 59, 52, 30,
                                                        45, 60, 38, 53, 46, 61, 54, 7,  62, 15, 23, 31, 39, 47, 55, 63};
/// [frame or field][scan position]: raster position.
inline constexpr const ScanTable* AVSScan[2] = {&ownvc_Zigzag, &kAvsFieldScan};
static_assert(is_permutation(kAvsFieldScan));

constexpr bool ends_at(const AvsVlcTable& table, int row) {
  return table.rows[row] == AvsRunLevel{kAvsEndRun, 0} && table.rows[kAvsCodes] == AvsRunLevel{kAvsEndRun, 0};
}
static_assert(ends_at(VLC0_Intra, 58) && ends_at(VLC0_Inter, 58) && ends_at(VLC0_Chroma, 58));
static_assert(ends_at(VLC1_Intra, 8) && ends_at(VLC2_Intra, 8) && ends_at(VLC3_Intra, 8) && ends_at(VLC4_Intra, 6));
static_assert(ends_at(VLC1_Inter, 2) && ends_at(VLC2_Inter, 2) && ends_at(VLC3_Inter, 2) && ends_at(VLC4_Inter, 2));
static_assert(ends_at(VLC1_Chroma, 0) && ends_at(VLC2_Chroma, 2) && ends_at(VLC3_Chroma, 0) && ends_at(VLC4_Chroma, 0));
static_assert(ends_at(VLC5_Intra, 0) && ends_at(VLC6_Intra, 0) && ends_at(VLC5_Inter, 0) && ends_at(VLC6_Inter, 0));
static_assert(VLC0_Intra.rows[0] == AvsRunLevel{0, 1} && VLC0_Intra.rows[1] == AvsRunLevel{0, -1} &&
              VLC0_Intra.rows[5] == AvsRunLevel{2, -1} && VLC0_Intra.rows[56] == AvsRunLevel{22, 1} &&
              VLC0_Intra.rows[57] == AvsRunLevel{22, -1} && VLC6_Intra.rows[1] == AvsRunLevel{0, 1} &&
              VLC6_Intra.rows[4] == AvsRunLevel{0, -2} && VLC6_Intra.rows[58] == AvsRunLevel{0, -26});

/// True if every run up to the largest is in the table, and each row's magnitude is below refAbsLevel.
constexpr bool is_whole(const AvsVlcTable& table, Mox32s maxRun) {
  const auto last = table.refAbsLevel + maxRun + 1;
  const bool runs = std::find(table.refAbsLevel, last, Mox8u{0}) == last && *last == 0;
  return runs && std::all_of(table.rows, table.rows + kAvsCodes, [&](const AvsRunLevel& row) {
           return row.run == kAvsEndRun || (row.run <= maxRun && row.level != 0 &&
                                            std::max<int>(row.level, -row.level) < table.refAbsLevel[row.run]);
         });
}

}  // namespace mox::px
