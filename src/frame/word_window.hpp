/// A reading word cursor that holds its next bits in a register, for loops that read many codes.
///
/// It reads the word behind the one of the next bit at most, and that only when a bit is asked for. Its functions, and
/// those of a reader that has a window as a member, are to be inlined whatever their size: one that is not keeps the
/// window in memory, for all others too.
#pragma once

#include <bit>
#include <cstdint>

#include "frame/vlc_table.hpp"
#include "frame/word_cursor.hpp"

#define MOX_READER_INLINE [[gnu::always_inline]]

namespace mox {

class WordWindow {
 public:
  MOX_READER_INLINE explicit WordWindow(const MoxWordCursor& at)
      : next_(at.word + 1),
        bits_(std::uint64_t{*at.word} << (63 - at.offset)),
        offset_(static_cast<Mox32u>(at.offset) + 32) {}

  /// For a reader that is sure to read a bit: takes the word behind it at once, so that fill() has little to do.
  MOX_READER_INLINE static WordWindow of_two_words(const MoxWordCursor& at) {
    WordWindow window;
    window.next_ = at.word + 2;
    window.bits_ = (std::uint64_t{at.word[0]} << 32 | at.word[1]) << (31 - at.offset);
    window.offset_ = static_cast<Mox32u>(at.offset) + 64;
    return window;
  }

  /// The position of the next bit.
  MOX_READER_INLINE MoxWordCursor cursor() const { return {next_ - (offset_ >> 5), static_cast<Mox32s>(offset_ & 31)}; }

  /// Makes the next n bits, up to 32, available to peek and skip.
  MOX_READER_INLINE void fill(Mox32s n = 32) {
    if (offset_ >= static_cast<Mox32u>(n) + 31) return;
    bits_ |= std::uint64_t{*next_++} << (63 - offset_);
    offset_ += 32;
  }
  /// How many of the available bits in front of a one are zeros, and at least so many if there is none among them.
  MOX_READER_INLINE Mox32s zeros() const { return std::countl_zero(bits_ | 1); }
  /// The next n bits, 0 to 32.
  MOX_READER_INLINE Mox32u peek(Mox32s n) const { return static_cast<Mox32u>(bits_ >> 1 >> (63 - n)); }
  MOX_READER_INLINE void skip(Mox32s n) {
    bits_ <<= n & 63;
    offset_ -= static_cast<Mox32u>(n);
  }
  /// Fills and consumes the next n bits, 0 to 32.
  MOX_READER_INLINE Mox32u get(Mox32s n) {
    fill(n);
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
  /// The same, quicker if the root has `kWidth` bits, since the entry does not wait for the word that tells its width.
  template <Mox32s kWidth>
  MOX_READER_INLINE VlcLeaf decode(const Mox32s* table) {
    if (table[0] == kWidth) [[likely]] {
      fill(kWidth);
      const VlcLeaf leaf{table[1 + peek(kWidth)]};
      if (!(leaf.entry & kVlcLinkTag)) [[likely]] {
        skip(kWidth - leaf.give_back());
        return leaf;
      }
    }
    return decode(table);
  }

 private:
  WordWindow() = default;

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
  Mox32u offset_;       ///< of the next bit, from that word backwards: 31 if no bits are held, 32 more for each word
};

}  // namespace mox
