/// The bitstream cursor on bytes of H.261, H.263 and MPEG-4.
///
/// Bytes are in stream order, the first bit of a byte is its bit 7. The offset, 0 to 7, counts the bits of the byte
/// that are consumed, for reading and writing alike.
#pragma once

#include <cstdint>

#include "frame/access.hpp"
#include "frame/bit_masks.hpp"
#include "moxvc/types.h"

namespace mox {

/// Reader with a 32-bit look-ahead word, for H.261 and H.263. Loads four bytes at a time: up to three beyond the data.
class LookAheadReader {
 public:
  LookAheadReader(const Mox8u* bytes, Mox32s offset) : bytes_(bytes), word_(load_be32(bytes)), position_(offset) {}

  /// The next n bits, 1 to 22. Loads here and not in the skip: behind the last code there may be nothing to load.
  Mox32u ownPeekBits8(Mox32s n) {
    if (position_ > kReload) {
      bytes_ += position_ / 8;
      word_ = load_be32(bytes_);
      position_ %= 8;
    }
    return word_ >> (32 - position_ - n) & bit_mask[n];
  }

  /// Consumes n bits.
  void ownSkipBits8(Mox32s n) { position_ += n; }

  /// Hands the position behind the last consumed bit back to the caller's pair.
  void store(const Mox8u** ppBitStream, Mox32s* pBitOffset) const {
    *ppBitStream = bytes_ + position_ / 8;
    *pBitOffset = position_ % 8;
  }

 private:
  static constexpr Mox32s kReload = 10;  // leaves 22 bits, the longest field
  const Mox8u* bytes_;
  Mox32u word_;
  Mox32s position_;
};

/// Reader with an accumulator that is refilled by bytes, for MPEG-4: up to two bytes beyond the data. (A refill by 16
/// bits would reach three: one with the last data byte, and two more for a peek that begins near that byte's end.)
class AccumulatorReader {
 public:
  AccumulatorReader(const Mox8u* bytes, Mox32s offset) : bytes_(bytes), bits_(0), count_(0) {
    if (offset != 0) {
      count_ = 8 - offset;
      bits_ = *bytes_++ & ownvc_BitMask[count_];
    }
  }

  /// The next n bits, 1 to 16.
  Mox32u peek(Mox32s n) {
    for (; count_ < n; count_ += 8) bits_ = bits_ << 8 | *bytes_++;
    return bits_ >> (count_ - n) & ownvc_BitMask[n];
  }

  /// Consumes n bits that a peek has shown.
  void skip(Mox32s n) { count_ -= n; }

  /// Hands the position behind the last consumed bit back to the caller's pair.
  void store(const Mox8u** ppBitStream, Mox32s* pBitOffset) const {
    *ppBitStream = bytes_ - (count_ + 7) / 8;
    *pBitOffset = (8 - count_ % 8) % 8;
  }

 private:
  const Mox8u* bytes_;
  Mox32u bits_;   // the low count_ bits are unread
  Mox32s count_;  // 0 to 23
};

/// A writing position on bytes.
struct MoxByteWriter {
  Mox8u* byte;
  Mox32s offset;
};

/// Writes the low n bits of code, 1 to 32. The bits already in the first byte are kept; the rest of every byte touched
/// is overwritten, so the buffer needs no clearing.
inline void ownPutBits8(MoxByteWriter& at, Mox32u code, Mox32s n) {
  const Mox32u kept = at.offset == 0 ? 0u : *at.byte & ~(0xFFu >> at.offset);
  const std::uint64_t left_aligned = std::uint64_t{code & ownvc_BitMask[n]} << (64 - n) >> at.offset;
  const Mox32s end = at.offset + n;
  for (Mox32s i = 0; 8 * i < end; ++i) at.byte[i] = static_cast<Mox8u>(left_aligned >> (56 - 8 * i));
  at.byte[0] = static_cast<Mox8u>(at.byte[0] | kept);
  at.byte += end / 8;
  at.offset = end % 8;
}

}  // namespace mox
