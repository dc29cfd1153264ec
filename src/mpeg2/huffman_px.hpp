/// Portable builders and readers of multi-level code tables.
#pragma once

#include <algorithm>

#include "frame/arithmetic.hpp"
#include "frame/bit_masks.hpp"
#include "frame/memory.hpp"
#include "frame/vlc_table.hpp"
#include "moxvc/huffman.h"

namespace mox::px {

/// Entries of a description: how many words they take, and their leaf in a table, tag 0.
struct SingleValue {
  static constexpr int kWords = 2;
  static constexpr Mox32s leaf(const MoxVlcSpec* entry) { return shl32(entry[1], 8); }
};
struct RunLevel {
  static constexpr int kWords = 3;
  static constexpr Mox32s leaf(const MoxVlcSpec* entry) { return shl32(entry[2], 16) | (entry[1] & 0xFF) << 8; }
};

/// A code, right-aligned, with nothing above its length.
struct CodeWord {
  Mox32u bits;
  Mox32s length;

  constexpr CodeWord(Mox32s word, Mox32s codeLength)
      : bits(static_cast<Mox32u>(word) & bit_mask[std::min(codeLength, 32)]), length(codeLength) {}
  /// The first n bits, n up to the length.
  constexpr Mox32u prefix(Mox32s n) const { return length - n < 32 ? bits >> (length - n) : 0; }
  /// The n bits behind the first `from`, n up to 32.
  constexpr Mox32u slice(Mox32s from, Mox32s n) const { return prefix(from + n) & bit_mask[n]; }
};
static_assert(CodeWord(0x7FB, 9).prefix(9) == 0x1FB && CodeWord(0x1FB, 9).slice(3, 4) == 0xE);

/// A description, read with its level widths in bounds: none is negative, and there are none when N is not positive.
template <class Entry>
struct VlcSpecView {
  const MoxVlcSpec* words;

  Mox32s levels() const { return std::max(words[1], 0); }
  Mox32s width(Mox32s level) const { return level < levels() ? std::max(words[2 + level], 0) : 0; }
  /// The length of the longest code that the levels can hold.
  long long capacity() const {
    long long sum = 0;
    for (Mox32s level = 0; level < levels(); ++level) sum += width(level);
    return sum;
  }
  /// visit(length, entry) for every entry, by ascending length.
  template <class Visit>
  void for_each(Visit visit) const {
    const MoxVlcSpec* at = words + 2 + levels();
    for (Mox32s length = 1; *at >= 0; ++length) {
      for (Mox32s left = *at++; left > 0; --left, at += Entry::kWords) visit(length, at);
    }
  }
};

/// Links reach this many words.
inline constexpr long long kMostTableWords = 1 << 23;

/// Words of a level: its width and its entries. A level of 40 bits stands for all that are too large anyway.
constexpr long long level_words(Mox32s width) { return (1ll << std::min(width, 40)) + 1; }

/// Words of the whole table: the root, and a sub-table for each different start of a code that reaches beyond the end
/// of a level. `list` has room for all codes. Stops counting once the table is too large.
template <class Entry>
long long table_words(const VlcSpecView<Entry>& spec, CodeWord* list) {
  const long long capacity = spec.capacity();
  long long size = level_words(spec.width(0));
  CodeWord* end = list;
  spec.for_each([&](Mox32s length, const MoxVlcSpec* entry) {
    if (length > capacity) return;
    const CodeWord code(entry[0], length);
    long long reached = spec.width(0);
    for (Mox32s level = 1; reached < length && size <= kMostTableWords; reached += spec.width(level++)) {
      const auto boundary = static_cast<Mox32s>(reached);
      const auto shares = [=](const CodeWord& other) {
        return other.length > boundary && other.prefix(boundary) == code.prefix(boundary);
      };
      if (std::none_of(list, end, shares)) size += level_words(spec.width(level));
    }
    *end++ = code;
  });
  return size;
}

/// A table under construction.
template <class Entry>
class TableWriter {
 public:
  TableWriter(const VlcSpecView<Entry>& spec, MoxVlcTable* table, Mox32s size)
      : spec_(spec), capacity_(spec.capacity()), table_(table), free_(table + level_words(spec.width(0))) {
    std::fill_n(table, size, kVlcUnused);
    *table = spec.width(0);
  }

  /// Enters a code into every place that the bits read beyond it can select. Leaves out a code that the levels cannot
  /// hold, and one that begins with a shorter code.
  void add(const CodeWord& code, Mox32s leaf) {
    if (code.length > capacity_) return;
    MoxVlcTable* header = table_;
    Mox32s from = 0;
    for (Mox32s level = 0;; from += spec_.width(level++)) {
      const Mox32s width = spec_.width(level);
      if (code.length <= from + width) {
        const Mox32s spare = from + width - code.length;
        const Mox32u first = code.slice(from, width - spare) << spare;
        std::fill_n(header + 1 + first, 1u << spare, leaf | spare);
        return;
      }
      MoxVlcTable& entry = header[1 + code.slice(from, width)];
      if (entry == kVlcUnused) entry = open_level(spec_.width(level + 1));
      if (!(entry & kVlcLinkTag)) return;
      header = table_ + (entry >> 8);
    }
  }

 private:
  /// The link to a new sub-table at the next free word.
  Mox32s open_level(Mox32s width) {
    const Mox32s link = static_cast<Mox32s>(free_ - table_) << 8 | kVlcLinkTag;
    *free_ = width;
    free_ += level_words(width);
    return link;
  }

  VlcSpecView<Entry> spec_;
  long long capacity_;
  MoxVlcTable* table_;
  MoxVlcTable* free_;
};

/// Memory for `count` objects, or null when there is none or the allocator's argument cannot tell the size.
template <class T>
T* allocate_for(long long count) {
  if (count > 0x7FFFFFFF / static_cast<long long>(sizeof(T))) return nullptr;
  return reinterpret_cast<T*>(moxsMalloc_8u(static_cast<Mox32s>(count * static_cast<long long>(sizeof(T)))));
}

template <class Entry>
MoxStatus build_vlc_table(const MoxVlcSpec* pSpec, MoxVlcTable** ppTable) {
  const VlcSpecView<Entry> spec{pSpec};
  long long codes = 0;
  spec.for_each([&](Mox32s, const MoxVlcSpec*) { ++codes; });
  auto* const list = allocate_for<CodeWord>(codes);
  if (!list) return moxStsNoMemory;
  const long long size = table_words(spec, list);
  moxiFree(list);
  auto* const table = size <= kMostTableWords ? allocate_for<MoxVlcTable>(size) : nullptr;
  if (!table) return moxStsNoMemory;
  TableWriter<Entry> writer(spec, table, static_cast<Mox32s>(size));
  spec.for_each(
      [&](Mox32s length, const MoxVlcSpec* entry) { writer.add(CodeWord(entry[0], length), Entry::leaf(entry)); });
  *ppTable = table;
  return moxStsOk;
}

inline MoxStatus decode_huffman_one(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox32s* pValue,
                                    const MoxVlcTable* table) {
  MoxWordCursor at{*ppBitStream, *pBitOffset};
  const VlcLeaf leaf = walk_vlc(at, table);
  if (!leaf.illegal()) ownUngetBits32(at, leaf.give_back());
  at.store(ppBitStream, pBitOffset);
  *pValue = leaf.value();
  return leaf.illegal() ? moxStsBadBitstream : moxStsOk;
}

inline MoxStatus decode_huffman_pair(const Mox32u** ppBitStream, Mox32s* pBitOffset, const MoxVlcTable* table,
                                     Mox8u* pFirst, Mox16s* pSecond) {
  MoxWordCursor at{*ppBitStream, *pBitOffset};
  const VlcLeaf leaf = ownVlcDecode(at, table);
  if (leaf.illegal()) return moxStsBadBitstream;
  at.store(ppBitStream, pBitOffset);
  *pFirst = leaf.run();
  *pSecond = leaf.level();
  return moxStsOk;
}

}  // namespace mox::px
