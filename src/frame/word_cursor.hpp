/// The bitstream cursor on 32-bit words of H.264, MPEG-1/2 and AVS.
///
/// Words are in native order, the stream's first bit is bit 31 of its word. A reading offset is the index of the next
/// bit, 31 to 0; a writing offset is the count of free bits, 32 to 1. Functions work on a copy and store it back.
#pragma once

#include <bit>

#include "frame/bit_masks.hpp"
#include "moxvc/types.h"

namespace mox {

/// A position; Word is const Mox32u for reading, Mox32u for writing.
template <class Word>
struct BasicWordCursor {
  Word* word;
  Mox32s offset;

  /// Hands the position back to the caller's pair.
  void store(Word** ppBitStream, Mox32s* pBitOffset) const { *ppBitStream = word, *pBitOffset = offset; }
};
using MoxWordCursor = BasicWordCursor<const Mox32u>;
using MoxWordWriter = BasicWordCursor<Mox32u>;

/// The next n bits, 1 to 32, with junk above them; the caller masks. The following word is read only if the field
/// reaches into it.
inline Mox32u ownGetBits32(MoxWordCursor& at, Mox32s n) {
  const Mox32s d = at.offset - n;
  if (d >= 0) {
    at.offset = d;
    return *at.word >> (d + 1);  // d is 30 at most
  }
  const Mox32u first = *at.word++ << (-d - 1);
  at.offset = d + 32;
  return d == -1 ? first : first | *at.word >> (d + 33);
}

/// The next n bits, 0 to 32, alone.
inline Mox32u get_bits(MoxWordCursor& at, Mox32s n) { return n == 0 ? 0 : ownGetBits32(at, n) & bit_mask[n]; }

/// The next bit.
inline Mox32u ownGetBit32(MoxWordCursor& at) { return ownGetBits32(at, 1) & 1; }

/// Puts n bits back, 0 to 32.
inline void ownUngetBits32(MoxWordCursor& at, Mox32s n) {
  at.offset += n;
  if (at.offset >= 32) at.offset -= 32, --at.word;
}

/// The next n bits, 1 to 32, masked, with the cursor left where it stands.
inline Mox32u ownPeekBits32(MoxWordCursor at, Mox32s n) { return ownGetBits32(at, n) & bit_mask[n]; }

/// Consumes the zeros up to the next one bit, and that bit, and returns how many zeros there were. Gives up with a
/// number above `most`, the position then being of no use, once it has seen so many.
inline Mox32s read_zeros(MoxWordCursor& at, Mox32s most) {
  Mox32s zeros = 0;
  while (zeros <= most) {
    const Mox32u rest = *at.word << (31 - at.offset);
    if (rest != 0) {
      const Mox32s here = std::countl_zero(rest);
      at.offset -= here + 1;
      if (at.offset < 0) at.offset = 31, ++at.word;
      return zeros + here;
    }
    zeros += at.offset + 1;
    at.offset = 31, ++at.word;
  }
  return zeros;
}

/// Writes the low n bits of code, 1 to 32, into a buffer that the caller has cleared: bits of the current word are
/// OR-ed in, a following word is assigned only if the code reaches it.
inline void ownPutBits32(MoxWordWriter& at, Mox32u code, Mox32s n) {
  const Mox32s d = at.offset - n;
  code &= bit_mask[n];
  if (d > 0) {
    *at.word |= code << d;
    at.offset = d;
  } else if (d == 0) {
    *at.word++ |= code;
    at.offset = 32;
  } else {
    *at.word++ |= code >> -d;
    *at.word = code << (32 + d);
    at.offset = 32 + d;
  }
}

}  // namespace mox
