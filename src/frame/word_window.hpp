/// A reading word cursor that holds its next bits in a register, for loops that read many codes.
///
/// It reads the word behind the one of the next bit at most, and that only when a bit is asked for. Its functions, and
/// those of a reader that has a window as a member, are to be inlined whatever their size: one that is not keeps the
/// window in memory, for all others too.
#pragma once

#include <cstdint>

#include "frame/vlc_table.hpp"
#include "frame/word_cursor.hpp"

#define MOX_READER_INLINE [[gnu::always_inline]]

namespace mox {

class WordWindow {
 public:
  MOX_READER_INLINE explicit WordWindow(const MoxWordCursor& at)
      : next_(at.word + 1), bits_(std::uint64_t{*at.word} << (63 - at.offset)), held_(at.offset + 1) {}

  /// The position of the next bit.
  MOX_READER_INLINE MoxWordCursor cursor() const {
    const Mox32s words = (held_ + 31) >> 5;  // that hold bits not yet consumed
    return {next_ - words, 31 - (32 * words - held_)};
  }

  /// Makes the next 32 bits available to peek and skip.
  MOX_READER_INLINE void fill() {
    if (held_ >= 32) return;
    bits_ |= std::uint64_t{*next_++} << (32 - held_);
    held_ += 32;
  }
  /// The next n bits, 0 to 32.
  MOX_READER_INLINE Mox32u peek(Mox32s n) const { return static_cast<Mox32u>(bits_ >> 1 >> (63 - n)); }
  MOX_READER_INLINE void skip(Mox32s n) {
    bits_ <<= n & 63;
    held_ -= n;
  }
  /// Fills and consumes the next n bits, 0 to 32.
  MOX_READER_INLINE Mox32u get(Mox32s n) {
    fill();
    const Mox32u value = peek(n);
    skip(n);
    return value;
  }

  /// Decodes one code and gives back what was read beyond it, as ownVlcDecode does.
  MOX_READER_INLINE VlcLeaf decode(const Mox32s* table) {
    fill();
    const Mox32s width = table[0], entry = table[1 + peek(width)];
    if (entry & kVlcLinkTag) return decode_on(table, width, entry);
    skip(width - VlcLeaf{entry}.give_back());
    return {entry};
  }

 private:
  /// Goes on from a link in the root.
  MOX_READER_INLINE VlcLeaf decode_on(const Mox32s* table, Mox32s width, Mox32s entry) {
    do {
      skip(width);
      fill();
      const Mox32s h = entry >> 8;
      width = table[h];
      entry = table[h + 1 + static_cast<Mox32s>(peek(width))];
    } while (entry & kVlcLinkTag);
    const Mox32s used = width - VlcLeaf{entry}.give_back();
    if (used >= 0) {
      skip(used);
    } else {  // the code ends in front of this level
      MoxWordCursor at = cursor();
      ownUngetBits32(at, -used);
      *this = WordWindow(at);
    }
    return {entry};
  }

  const Mox32u* next_;  ///< the first word of which no bits are held
  std::uint64_t bits_;  ///< the held bits from the top down, zeros behind them
  Mox32s held_;
};

}  // namespace mox
