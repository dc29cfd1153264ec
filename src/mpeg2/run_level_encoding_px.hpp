/// Portable kernels of run-level encoding: the table of codes by run and level, and the writers of blocks.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>

#include "frame/arithmetic.hpp"
#include "frame/word_cursor.hpp"
#include "moxvc/mpeg12_block.h"
#include "mpeg2/block_decoding_px.hpp"
#include "mpeg2/huffman_px.hpp"

namespace mox::px {

/// What a description says on the whole, by run cut to 8 bits.
struct RunLevelCounts {
  std::array<long long, 256> codes{};
  std::array<long long, 256> largest;  ///< the largest magnitude of a level, -1 without codes
  Mox32s escape = 0, endOfBlock = 0;   ///< 10 bits: code << 4 | length
  Mox32s maxRun = 0;
  long long total = 0;

  explicit RunLevelCounts(const VlcSpecView<RunLevel>& spec) {
    largest.fill(-1);
    spec.for_each([this](Mox32s length, const MoxVlcSpec* entry) { count(length, entry); });
  }
  /// Word of the section of each run up to maxRun: its header, the words of negative levels being in front of it.
  std::array<long long, 256> sections() const {
    std::array<long long, 256> at{};
    at[0] = codes[0] / 2 + maxRun + 2;
    for (Mox32s run = 1; run <= maxRun; ++run) at[run] = at[run - 1] + codes[run - 1] / 2 + codes[run] / 2 + 1;
    return at;
  }
  long long words() const { return 2 * maxRun + total + 3; }

 private:
  void count(Mox32s length, const MoxVlcSpec* entry) {
    const Mox32s run = entry[1] & 0xFF, shortCode = (shl32(entry[0], 4) | length) & 0x3FF;
    ++total;
    if (run == kEscapeRun) {
      escape = shortCode;
    } else if (run == kEndOfBlockRun) {
      endOfBlock = shortCode;
    } else {
      ++codes[run];
      largest[run] = std::max(largest[run], std::abs(static_cast<long long>(entry[2])));
      maxRun = std::max(maxRun, run);
    }
  }
};

/// Fills in the codes. A code that has no place in the table, or no length that can be written, is left out.
inline void fill_codes(const VlcSpecView<RunLevel>& spec, const RunLevelCounts& counts, MoxRLEncodeTable* table) {
  const auto section = counts.sections();
  const long long size = counts.words();
  std::fill_n(table, size, 0);
  spec.for_each([&](Mox32s length, const MoxVlcSpec* entry) {
    const Mox32s run = entry[1] & 0xFF;
    const long long place = section[run] + entry[2];
    if (run > counts.maxRun || length > 32 || outside(place, counts.maxRun + 2, size - 1)) return;
    table[place] = shl32(entry[0], 16) | length;
  });
  // Headers last: whatever the description, no level that a header allows lies outside the table.
  table[0] = counts.maxRun << 20 | counts.endOfBlock << 10 | counts.escape;
  for (Mox32s run = 0; run <= counts.maxRun; ++run) {
    const long long at = section[run];
    table[1 + run] = static_cast<Mox32s>(4 * at);
    table[at] = static_cast<Mox32s>(std::min({counts.largest[run], at, size - 1 - at}));
  }
}

inline MoxStatus build_run_level_table(const MoxVlcSpec* pSpec, MoxRLEncodeTable** ppTable) {
  const VlcSpecView<RunLevel> spec{pSpec};
  const RunLevelCounts counts(spec);
  auto* const table = allocate_for<MoxRLEncodeTable>(counts.words());
  if (!table) return moxStsNoMemory;
  fill_codes(spec, counts, table);
  *ppTable = table;
  return moxStsOk;
}

/// Writes one coefficient and the zeros in front of it: its code, or the escape code 000001 with 6 bits of the run and
/// 12 bits of the level.
inline void put_level(MoxWordWriter& at, const MoxRLEncodeTable* table, Mox32s run, Mox32s level) {
  if (run <= table[0] >> 20) {
    const MoxRLEncodeTable* const section = table + table[1 + run] / 4;
    const auto code = static_cast<Mox32u>(std::abs(level) <= *section ? section[level] : 0);
    if (code != 0) return ownPutBits32(at, code >> 16, static_cast<Mox32s>(code & 0xFFFF));
  }
  ownPutBits32(at, 1, 6);
  ownPutBits32(at, static_cast<Mox32u>(run), 6);
  ownPutBits32(at, static_cast<Mox32u>(level), 12);
}

/// What the writers know of a block.
struct BlockSource {
  const Mox16s* coefficients;
  const MoxRLEncodeTable* table;
  const Mox32s* scan;
  Mox32s eobLength;
  Mox32u eobCode;
};

/// Writes the next `count` non-zero coefficients from scan position 1 on, and the end of the block. Ends with the block
/// when there are fewer.
inline void put_rest(MoxWordWriter& at, const BlockSource& block, Mox32s run, Mox32s count) {
  for (Mox32s i = 1; i < 64 && count > 0; ++i) {
    const Mox32s level = block.coefficients[block.scan[i]];
    if (level == 0) {
      ++run;
      continue;
    }
    put_level(at, block.table, run, level);
    run = 0;
    --count;
  }
  if (block.eobLength > 0) ownPutBits32(at, block.eobCode, std::min(block.eobLength, 32));
}

inline MoxStatus put_intra(Mox32u** ppBitStream, Mox32s* pBitOffset, const BlockSource& block, Mox32s* pDCPred,
                           const Mox32u* dcSizes, Mox32s count) {
  MoxWordWriter at{*ppBitStream, *pBitOffset};
  const Mox32s difference = sub32(block.coefficients[0], *pDCPred);
  *pDCPred = block.coefficients[0];
  const auto magnitude = static_cast<Mox32u>(difference < 0 ? sub32(0, difference) : difference);
  const auto size = static_cast<Mox32s>(std::bit_width(magnitude));
  ownPutBits32(at, dcSizes[2 * size], static_cast<Mox32s>(dcSizes[2 * size + 1]));
  if (size > 0) ownPutBits32(at, static_cast<Mox32u>(sub32(difference, difference < 0)), size);
  put_rest(at, block, 0, count);
  at.store(ppBitStream, pBitOffset);
  return moxStsOk;
}

inline MoxStatus put_non_intra(Mox32u** ppBitStream, Mox32s* pBitOffset, const BlockSource& block, Mox32s count) {
  MoxWordWriter at{*ppBitStream, *pBitOffset};
  const Mox32s level = block.coefficients[0];
  if (std::abs(level) == 1) {
    ownPutBits32(at, level < 0 ? 3 : 2, 2);
  } else if (level != 0) {
    put_level(at, block.table, 0, level);
  }
  put_rest(at, block, level == 0, std::max(count, 0) - (level != 0));
  at.store(ppBitStream, pBitOffset);
  return moxStsOk;
}

}  // namespace mox::px
