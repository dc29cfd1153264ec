/// Portable kernels that write MPEG-4 texture.
#pragma once

#include <bit>
#include <cstdlib>

#include "frame/arithmetic.hpp"
#include "frame/byte_cursor.hpp"
#include "frame/scan_tables.hpp"
#include "mpeg4/coefficient_tables.hpp"
#include "mpeg4/reversible_tables.hpp"

namespace mox::px {

/// A level other than 0, the zeros in front of it, and whether it ends its block.
struct TextureLevel {
  bool last;
  Mox32s run, level;
  Mox32s magnitude() const { return std::abs(level); }
  Mox32u sign() const { return level < 0; }
  /// Last flag, run and marker, as all escapes with fields have them.
  Mox32u head() const { return Mox32u{last} << 7 | static_cast<Mox32u>(run) << 1 | 1; }
};

/// The shortest form that a code has: plain, with a smaller level, with a smaller run; else fields.
inline void put_texture(MoxByteWriter& at, const TextureTables& tables, const TextureLevel& next) {
  const auto put = [&](const TcoefCode* code) { ownPutBits8(at, code->bits | next.sign(), code->length); };
  const Mox32s magnitude = next.magnitude();
  if (const TcoefCode* code = tables.writing.find(next.last, next.run, magnitude)) return put(code);
  const auto run = static_cast<std::size_t>(next.run);
  const Mox32s rest = magnitude - tables.limits.LMAX[next.last][run];
  if (const TcoefCode* code = tables.writing.find(next.last, next.run, rest)) {
    ownPutBits8(at, kTcoefEscape << 1, 8);
    return put(code);
  }
  const Mox32s limit = magnitude < 64 ? tables.limits.RMAX[next.last][static_cast<std::size_t>(magnitude)] : 0;
  if (limit != 0 && next.run >= limit) {
    if (const TcoefCode* code = tables.writing.find(next.last, next.run - limit, magnitude)) {
      ownPutBits8(at, kTcoefEscape << 2 | 2, 9);
      return put(code);
    }
  }
  const Mox32u level = static_cast<Mox32u>(next.level) & 0xFFF;
  ownPutBits8(at, (kTcoefEscape << 2 | 3) << 21 | next.head() << 13 | level << 1 | 1, 30);
}

inline void put_reversible(MoxByteWriter& at, const TcoefEncodeTables& tables, const TextureLevel& next) {
  const Mox32u magnitude = static_cast<Mox32u>(next.magnitude()), sign = next.sign();
  if (const TcoefCode* code = tables.find(next.last, next.run, next.magnitude())) {
    return ownPutBits8(at, code->bits | sign, code->length);
  }
  ownPutBits8(at, 1u << 25 | next.head() << 17 | (magnitude & 0x7FF) << 6 | 1u << 5 | sign, 30);
}

/// Writes `count` levels other than 0 from scan index `first` on with put(at, level), the last one with its flag. Ends
/// with the block when there are fewer.
template <class Put>
inline MoxStatus write_texture(const Mox16s* pCoeffs, Mox8u** ppBitStream, Mox32s* pBitOffset, Mox32s count,
                               Mox32s first, const ScanTable& scan, Put put) {
  MoxByteWriter at{*ppBitStream, *pBitOffset};
  Mox32s run = 0;
  for (auto i = static_cast<std::size_t>(first); i < 64 && count > 0; ++i) {
    const Mox32s level = pCoeffs[scan[i]];
    if (level == 0) {
      ++run;
      continue;
    }
    put(at, TextureLevel{--count == 0, run, level});
    run = 0;
  }
  *ppBitStream = at.byte;
  *pBitOffset = at.offset;
  return moxStsOk;
}

inline MoxStatus encode_texture(const Mox16s* pCoeffs, Mox8u** ppBitStream, Mox32s* pBitOffset, Mox32s count,
                                Mox32s first, const ScanTable& scan, const TextureTables& tables) {
  return write_texture(pCoeffs, ppBitStream, pBitOffset, count, first, scan,
                       [&](MoxByteWriter& at, const TextureLevel& next) { put_texture(at, tables, next); });
}

inline MoxStatus encode_reversible(const Mox16s* pCoeffs, Mox8u** ppBitStream, Mox32s* pBitOffset, Mox32s count,
                                   Mox32s first, const ScanTable& scan, const ReversibleTables& tables) {
  return write_texture(pCoeffs, ppBitStream, pBitOffset, count, first, scan,
                       [&](MoxByteWriter& at, const TextureLevel& next) { put_reversible(at, tables.writing, next); });
}

inline MoxStatus encode_texture_dc(Mox16s dcCoeff, Mox8u** ppBitStream, Mox32s* pBitOffset, bool isChroma) {
  constexpr Mox32s kMost = (1 << kMostDcSize) - 1;
  const Mox32s dc = clip(dcCoeff, -kMost, kMost);
  const Mox32s size = static_cast<Mox32s>(std::bit_width(static_cast<Mox32u>(std::abs(dc))));
  const TcoefCode code = (isChroma ? mVLC_DCSIZE_TB14 : mVLC_DCSIZE_TB13)[static_cast<std::size_t>(size)];
  MoxByteWriter at{*ppBitStream, *pBitOffset};
  ownPutBits8(at, code.bits, code.length);
  if (size != 0) ownPutBits8(at, static_cast<Mox32u>(dc < 0 ? dc + (1 << size) - 1 : dc), size);
  if (size > kMostUnmarkedDcSize) ownPutBits8(at, 1, 1);
  *ppBitStream = at.byte;
  *pBitOffset = at.offset;
  return moxStsOk;
}

}  // namespace mox::px
