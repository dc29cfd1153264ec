/// Building of DV code tables for callers that keep one.
#pragma once

#include <algorithm>

#include "frame/memory.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// An entry: bits 0 to 7 length, 8 to 15 run, 16 to 31 level * 64.
inline constexpr Mox32u kDvUnusedEntry = 255;
constexpr Mox32u dv_table_entry(Mox32u length, Mox32u run, Mox32u level) {
  return (length & 255) | (run & 255) << 8 | level << 22;
}

/// A description: its first word's low byte is the index width, its codes begin in its fourth word.
inline int dv_index_width(const Mox32u* description) { return static_cast<int>(*description & 255); }

/// Fills a table of 2^width entries. Codes keep `more` bits beyond the length under which they stand.
inline void fill_dv_table(const Mox32u* description, Mox32u more, Mox32u* table) {
  const int width = dv_index_width(description);
  std::fill_n(table, std::size_t{1} << width, kDvUnusedEntry);
  const Mox32u* word = description + 3;
  for (int length = 1; length <= width; ++length) {
    const int spare = width - length;
    for (Mox32u codes = *word++; codes > 0; --codes, word += 3) {
      const Mox32u first = word[0] << spare & ((1u << width) - 1);
      std::fill_n(table + first, 1u << spare, dv_table_entry(static_cast<Mox32u>(length) + more, word[1], word[2]));
    }
  }
}

inline MoxStatus build_dv_table(const Mox32u* pTable1, const Mox32u* pTable2, Mox32u** ppHuffTable) {
  constexpr int kMostWidth = 28;  // of what the allocator's argument can tell
  constexpr Mox32u kSecondTableBits = 4;
  const int width1 = dv_index_width(pTable1), width2 = dv_index_width(pTable2);
  *ppHuffTable = nullptr;
  if (width1 > kMostWidth || width2 > kMostWidth) return moxStsNoMemory;
  const long long bytes = ((1ll << width1) + (1ll << width2)) * 4;
  if (bytes > 0x7FFFFFFF) return moxStsNoMemory;
  auto* const table = reinterpret_cast<Mox32u*>(moxsMalloc_8u(static_cast<Mox32s>(bytes)));
  if (!table) return moxStsNoMemory;
  fill_dv_table(pTable1, 0, table);
  fill_dv_table(pTable2, kSecondTableBits, table + (std::size_t{1} << width1));
  *ppHuffTable = table;
  return moxStsOk;
}

}  // namespace mox::px
