/// Portable kernels that read MPEG-4 texture: blocks of codes that are not reversible, with and without inverse
/// quantisation, and intra DCs.
#pragma once

#include <algorithm>
#include <bit>

#include "frame/arithmetic.hpp"
#include "frame/byte_cursor.hpp"
#include "frame/scan_tables.hpp"
#include "mpeg4/coefficient_tables.hpp"
#include "mpeg4/quantization_px.hpp"

namespace mox::px {

/// What a code says: a level, and by how much the scan index goes up. Level 0: it was no code.
struct TextureCode {
  bool last;
  Mox32s advance, level;
};

inline Mox32u take_bits(AccumulatorReader& in, Mox32s n) {
  const Mox32u bits = in.peek(n);
  in.skip(n);
  return bits;
}

/// Behind the escape code and its form: last flag, run, marker, level, marker.
inline TextureCode read_fixed_fields(AccumulatorReader& in) {
  const Mox32u head = take_bits(in, 8), tail = take_bits(in, 13);
  const bool isGood = (head & 1) != 0 && (tail & 1) != 0 && (tail >> 1 & 0x7FF) != 0;
  if (!isGood) return {};
  const Mox32s level = shl32(static_cast<Mox32s>(tail >> 1), 20) >> 20;
  return {head >> 7 != 0, static_cast<Mox32s>(head >> 1 & 63) + 1, level};
}

/// A code and its sign, or the escape in one of its three forms: 0 and a code with a greater level, 10 and a code with
/// a greater run, 11 and fields.
inline TextureCode read_texture_code(AccumulatorReader& in, const TextureTables& tables) {
  Mox32u v = in.peek(kMostTcoefBits), form = 0;
  const bool isEscape = v >> 6 == kTcoefEscape;
  if (isEscape) {
    in.skip(7);
    form = in.peek(2);
    in.skip(form < 2 ? 1 : 2);
    if (form == 3) return read_fixed_fields(in);
    v = in.peek(kMostTcoefBits);
    if (v >> 6 == kTcoefEscape) return {};
  }
  if (v < kLeastTcoef) return {};
  const TcoefEntry entry = tables.reading[v];
  in.skip(entry.length());
  Mox32s advance = entry.advance(), magnitude = entry.magnitude();
  if (isEscape && form < 2) magnitude += tables.limits.LMAX[entry.last()][advance - 1];
  if (isEscape && form == 2) advance += tables.limits.RMAX[entry.last()][magnitude];
  const bool isNegative = v >> (kMostTcoefBits - entry.length()) & 1;
  return {entry.last(), advance, isNegative ? -magnitude : magnitude};
}

/// Reads a block: clears what lies behind scan index `index`, and stores coefficient(level, position) for each code
/// that read(in) gives. *pIndexCoeff gets the index of the last one, or the one beyond 63.
template <class Read, class Coefficient>
inline MoxStatus read_texture(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef, Mox32s index,
                              Mox32s* pIndexCoeff, const ScanTable& scan, Read read, Coefficient coefficient) {
  AccumulatorReader in(*ppBitStream, *pBitOffset);
  std::fill(pCoef + index + 1, pCoef + 64, Mox16s{0});
  for (bool last = false; !last;) {
    const TextureCode code = read(in);
    index += code.advance;
    if (code.level == 0 || index > 63) {
      *pIndexCoeff = index;
      return moxStsBadCode;
    }
    pCoef[scan[index]] = coefficient(code.level, scan[index]);
    last = code.last;
  }
  *pIndexCoeff = index;
  in.store(ppBitStream, pBitOffset);
  return moxStsOk;
}

/// Levels as they are, behind scan index `index`.
inline MoxStatus decode_texture(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef, Mox32s index,
                                Mox32s* pIndexCoeff, const ScanTable& scan, const TextureTables& tables) {
  return read_texture(
      ppBitStream, pBitOffset, pCoef, index, pIndexCoeff, scan,
      [&](AccumulatorReader& in) { return read_texture_code(in, tables); },
      [](Mox32s level, Mox32s) { return static_cast<Mox16s>(level); });
}

/// An inter block with inverse quantisation by a record that has been tested.
inline MoxStatus reconstruct_texture(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef, Mox32s* pIndexCoeff,
                                     const ScanTable& scan, const MoxiQuantInvState& state, Mox32s qp) {
  const CoefficientLimits limits = limits_of(state);
  const auto read = [](AccumulatorReader& in) { return read_texture_code(in, kInterTexture); };
  if (!state.hasMatrix) {
    return read_texture(ppBitStream, pBitOffset, pCoef, -1, pIndexCoeff, scan, read,
                        [=](Mox32s level, Mox32s) { return uniform_coefficient(level, qp, limits); });
  }
  Mox32s sum = 0;
  const MoxStatus status =
      read_texture(ppBitStream, pBitOffset, pCoef, -1, pIndexCoeff, scan, read, [&](Mox32s level, Mox32s position) {
        const Mox16s value = weighted_coefficient<false>(level, state.weights[position], qp, limits);
        sum += value;
        return value;
      });
  if (status == moxStsOk) make_sum_odd(pCoef, sum);
  return status;
}

/// A DC: the code of its size, its value, and above 8 bits a marker.
inline MoxStatus decode_texture_dc(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pDC, bool isChroma) {
  AccumulatorReader in(*ppBitStream, *pBitOffset);
  const Mox32u v = in.peek(kMostDcSize);
  const Mox32s zeros = std::countl_zero(v << (32 - kMostDcSize) | 1u << (31 - kMostDcSize));
  const Mox32s size = v >= 512   ? (isChroma ? kShortChromaDcSizes : kShortLumaDcSizes)[v >> 9]
                      : isChroma ? zeros + 1
                                 : zeros + 2;
  if (size > kMostDcSize) return moxStsBadCode;
  in.skip((isChroma ? mVLC_DCSIZE_TB14 : mVLC_DCSIZE_TB13)[static_cast<std::size_t>(size)].length);
  Mox32s dc = 0;
  if (size != 0) {
    dc = static_cast<Mox32s>(take_bits(in, size));
    if (dc < 1 << (size - 1)) dc -= (1 << size) - 1;
  }
  if (size > kMostUnmarkedDcSize && take_bits(in, 1) == 0) return moxStsBadCode;
  *pDC = static_cast<Mox16s>(dc);
  in.store(ppBitStream, pBitOffset);
  return moxStsOk;
}

}  // namespace mox::px
