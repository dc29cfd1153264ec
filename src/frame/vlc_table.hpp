/// The multi-level code table: a tree of sub-tables in one array of 32-bit words.
///
/// Word h of a (sub-)table is its width w in bits; entry h + 1 + i belongs to the value i of the next w bits of the
/// stream; the root is at h = 0. The low 8 bits of an entry are a tag. From 128 up the entry is a link, and its bits 8
/// and up are the h of the next level. Below 128 it is a leaf: the tag is the number of bits to give back to the
/// stream, bits 8 and up are the value.
#pragma once

#include "frame/word_cursor.hpp"
#include "moxvc/types.h"

namespace mox {

inline constexpr Mox32s kVlcLinkTag = 128;
/// Value of a bit pattern that is no code, and the entry that unused places of a built table hold.
inline constexpr Mox32s kVlcIllegal = 0xF0F1;
inline constexpr Mox32s kVlcUnused = kVlcIllegal << 8 | 1;

/// A leaf: value by arithmetic shift, in a run-level table run and level, and the bits that were read beyond the code.
struct VlcLeaf {
  Mox32s entry;
  constexpr Mox32s value() const { return entry >> 8; }
  constexpr Mox8u run() const { return static_cast<Mox8u>(entry >> 8 & 0xFF); }
  constexpr Mox16s level() const { return static_cast<Mox16s>(entry >> 16); }
  constexpr Mox32s give_back() const { return entry & 0xFF; }
  constexpr bool illegal() const { return value() == kVlcIllegal; }
};

/// Walks the table by the bits at the cursor, which is left behind all bits read. The caller gives bits back.
inline VlcLeaf walk_vlc(MoxWordCursor& at, const Mox32s* table) {
  Mox32s h = 0;
  for (;;) {
    const Mox32s entry = table[h + 1 + static_cast<Mox32s>(get_bits(at, table[h]))];
    if (!(entry & kVlcLinkTag)) return {entry};
    h = entry >> 8;
  }
}

/// Decodes one code and gives back what was read beyond it.
inline VlcLeaf ownVlcDecode(MoxWordCursor& at, const Mox32s* table) {
  const VlcLeaf leaf = walk_vlc(at, table);
  ownUngetBits32(at, leaf.give_back());
  return leaf;
}

}  // namespace mox
