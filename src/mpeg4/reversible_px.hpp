/// Portable kernels that read MPEG-4 texture of reversible codes, forwards and backwards.
#pragma once

#include <algorithm>
#include <cstdint>

#include "mpeg4/coefficients_px.hpp"
#include "mpeg4/reversible_tables.hpp"

namespace mox::px {

/// The escape: 00001, last flag, run, marker, level, marker, 0000, sign. 30 bits.
inline TextureCode read_reversible_escape(AccumulatorReader& in) {
  const Mox32u head = take_bits(in, 13), level = take_bits(in, 12), tail = take_bits(in, 5);
  if ((head & 1) == 0 || (level & 1) == 0 || level >> 1 == 0 || tail > 1) return {};
  const auto magnitude = static_cast<Mox32s>(level >> 1);
  return {(head >> 7 & 1) != 0, static_cast<Mox32s>(head >> 1 & 63) + 1, tail != 0 ? -magnitude : magnitude};
}

inline TextureCode read_reversible_code(AccumulatorReader& in, const ReversibleTables& tables) {
  const Mox32u v = in.peek(16);
  if (v >> 11 == 1) return read_reversible_escape(in);
  const Mox8u row = ownvc_mp4_RVLC_ind.row(v >> 8, v >> 1 & 127);
  if (row == ReversibleIndex::kNone) return {};
  const TcoefEntry entry = tables.forward[row];
  in.skip(entry.length());
  const bool isNegative = v >> (16 - entry.length()) & 1;
  return {entry.last(), entry.advance(), isNegative ? -entry.magnitude() : entry.magnitude()};
}

/// Levels behind scan index `index`.
inline MoxStatus decode_reversible(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef, Mox32s index,
                                   Mox32s* pIndexCoeff, const ScanTable& scan, const ReversibleTables& tables) {
  return read_texture(
      ppBitStream, pBitOffset, pCoef, index, pIndexCoeff, scan,
      [&](AccumulatorReader& in) { return read_reversible_code(in, tables); },
      [](Mox32s level, Mox32s) { return static_cast<Mox16s>(level); });
}

/// Reader of the bits in front of a position, the nearest first. Loads no byte before one of its bits is wanted.
class BackwardReader {
 public:
  BackwardReader(const Mox8u* bytes, Mox32s offset)
      : bytes_(bytes), bits_(offset == 0 ? 0u : std::uint64_t{*bytes} >> (8 - offset)), count_(offset) {}

  /// The n bits in front, 1 to 32, in stream order.
  Mox32u peek(Mox32s n) {
    for (; count_ < n; count_ += 8) bits_ |= std::uint64_t{*--bytes_} << count_;
    return static_cast<Mox32u>(bits_) & ownvc_BitMask[static_cast<std::size_t>(n)];
  }
  /// Moves n bits that a peek has shown towards the start.
  void skip(Mox32s n) {
    bits_ >>= n;
    count_ -= n;
  }
  void store(const Mox8u** ppBitStream, Mox32s* pBitOffset) const {
    *ppBitStream = bytes_ + count_ / 8;
    *pBitOffset = count_ % 8;
  }

 private:
  const Mox8u* bytes_;
  std::uint64_t bits_;  // bit 0 is the nearest; the low count_ bits are unread
  Mox32s count_;
};

/// The code that ends at the position.
inline TextureCode read_code_backwards(BackwardReader& in, const std::array<TcoefEntry, kReversibleCodes>& rows) {
  const Mox32u v = in.peek(16);
  const bool isNegative = v & 1;
  if ((v >> 1 & 31) == 16) {
    const Mox32u fields = in.peek(30);
    in.skip(30);
    const auto magnitude = static_cast<Mox32s>(fields >> 6 & 0x7FF);
    if (fields >> 25 != 1 || (fields >> 17 & 1) == 0 || magnitude == 0) return {};
    return {(fields >> 24 & 1) != 0, static_cast<Mox32s>(fields >> 18 & 63) + 1, isNegative ? -magnitude : magnitude};
  }
  const Mox8u row = ownvc_mp4_RVLCb_ind.row(v >> 1 & 255, v >> 9);
  if (row == ReversibleIndex::kNone) return {};
  const TcoefEntry entry = rows[row];
  in.skip(entry.length());
  return {entry.last(), entry.advance(), isNegative ? -entry.magnitude() : entry.magnitude()};
}

/// Reads the block that ends at the position, behind scan index `start`. Levels go from the end of the block downwards,
/// and when the block in front is met, whose last code has the last flag, they move to their places. On a failure
/// *pIndexCoeff is the place of the next level.
inline MoxStatus decode_backwards(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef, Mox32s start,
                                  Mox32s* pIndexCoeff, const std::array<TcoefEntry, kReversibleCodes>& rows) {
  BackwardReader in(*ppBitStream, *pBitOffset);
  std::fill(pCoef + start + 1, pCoef + 64, Mox16s{0});
  Mox32s place = 63;
  for (;;) {
    const BackwardReader behind = in;
    const TextureCode code = read_code_backwards(in, rows);
    if (code.level != 0 && code.last && place < 63) {
      behind.store(ppBitStream, pBitOffset);
      break;
    }
    if (code.level == 0 || code.last != (place == 63) || place - code.advance < start) {
      *pIndexCoeff = place;
      return moxStsBadCode;
    }
    pCoef[place] = static_cast<Mox16s>(code.level);
    place -= code.advance;
  }
  std::fill(std::copy(pCoef + place + 1, pCoef + 64, pCoef + start + 1), pCoef + 64, Mox16s{0});
  *pIndexCoeff = start + 63 - place;
  return moxStsOk;
}

}  // namespace mox::px
