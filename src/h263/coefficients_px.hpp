/// Portable kernels of H.263 coefficients: reading, reading with inverse quantisation, and writing of blocks.
#pragma once

#include <algorithm>
#include <cstdlib>

#include "frame/arithmetic.hpp"
#include "frame/byte_cursor.hpp"
#include "frame/scan_px.hpp"
#include "h263/coefficient_tables.hpp"
#include "h263/quantization_px.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// What a code says: a level, and by how much the scan index goes up. Level 0: it was no code.
struct Tcoef {
  bool last;
  Mox32s advance, level;
};

/// The escape levels that are none, but with modified quantisation -128 announces 11 bits: 5 low ones, 6 signed high
/// ones.
inline constexpr Mox32s kExtendedLevel = -128;

inline Tcoef read_escape(LookAheadReader& in, bool isModified) {
  const Mox32u fields = in.ownPeekBits8(22);
  in.ownSkipBits8(22);
  Mox32s level = wrap_to<std::int8_t>(fields & 0xFF);
  if (level == kExtendedLevel) {
    if (!isModified) return {};
    const Mox32u extended = in.ownPeekBits8(11);
    in.ownSkipBits8(11);
    level = (shl32(static_cast<Mox32s>(extended), 26) >> 26) * 32 + static_cast<Mox32s>(extended >> 6);
  }
  return {(fields >> 14 & 1) != 0, static_cast<Mox32s>(fields >> 8 & 63) + 1, level};
}

inline Tcoef read_code(LookAheadReader& in, const TcoefDecodeTables& tables, bool isModified) {
  const Mox32u v = in.ownPeekBits8(kMostTcoefBits);
  if (v >> 6 == kTcoefEscape) return read_escape(in, isModified);
  if (v < kLeastTcoef) return {};
  const TcoefEntry entry = tables[v];
  in.ownSkipBits8(entry.length());
  const bool isNegative = v >> (kMostTcoefBits - entry.length()) & 1;
  return {entry.last(), entry.advance(), isNegative ? -entry.magnitude() : entry.magnitude()};
}

/// Reads levels behind scan index `index`, which becomes that of the last one, and stores coefficient(level).
template <class Coefficient>
inline MoxStatus read_levels(LookAheadReader& in, const TcoefDecodeTables& tables, const ScanTable& scan,
                             bool isModified, Mox16s* block, Mox32s& index, Coefficient coefficient) {
  for (bool last = false; !last;) {
    const Tcoef code = read_code(in, tables, isModified);
    if (code.level == 0 || index + code.advance > 63) return moxStsBadCode;
    index += code.advance;
    block[scan[index]] = coefficient(code.level);
    last = code.last;
  }
  return moxStsOk;
}

/// The caller's reading position, moved only by a block without an error.
struct ReadPosition {
  const Mox8u** ppBitStream;
  Mox32s* pBitOffset;
  LookAheadReader reader() const { return {*ppBitStream, *pBitOffset}; }
  MoxStatus leave(const LookAheadReader& in, MoxStatus status) const {
    if (status == moxStsOk) in.store(ppBitStream, pBitOffset);
    return status;
  }
};

/// A block of codes alone: clears what lies behind scan index `index`, and reads from there.
template <class Coefficient>
inline MoxStatus read_block(const ReadPosition& at, const TcoefDecodeTables& tables, const ScanTable& scan,
                            bool isModified, Mox16s* block, Mox32s index, Mox32s* pIndexCoeff,
                            Coefficient coefficient) {
  LookAheadReader in = at.reader();
  std::fill(block + index + 1, block + 64, Mox16s{0});
  const MoxStatus status = read_levels(in, tables, scan, isModified, block, index, coefficient);
  *pIndexCoeff = index;
  return at.leave(in, status);
}

inline Mox16s plain_level(Mox32s level) { return static_cast<Mox16s>(level); }

inline MoxStatus decode_intra(const ReadPosition& at, Mox16s* pCoef, Mox32s* pIndexCoeff, bool isAdvanced,
                              bool isModified, Mox32s scan) {
  return read_block(at, isAdvanced ? kAdvancedTcoefTables : kTcoefTables, scan_or_none(scan), isModified, pCoef,
                    isAdvanced ? -1 : 0, pIndexCoeff, plain_level);
}

inline MoxStatus decode_inter(const ReadPosition& at, Mox16s* pCoef, Mox32s* pIndexCoeff, bool isModified,
                              Mox32s scan) {
  return read_block(at, kTcoefTables, scan_or_none(scan), isModified, pCoef, -1, pIndexCoeff, plain_level);
}

/// Reads the 8 bits of an intra DC. 0 if they are illegal.
inline Mox16s read_dc(LookAheadReader& in) {
  const Mox32u bits = in.ownPeekBits8(8);
  in.ownSkipBits8(8);
  if ((bits & 127) == 0) return 0;
  return static_cast<Mox16s>(bits == 255 ? 128 : bits);
}

inline MoxStatus decode_dc(const ReadPosition& at, Mox16s* pDC) {
  LookAheadReader in = at.reader();
  const Mox16s dc = read_dc(in);
  if (dc == 0) return moxStsBadCode;
  *pDC = dc;
  return at.leave(in, moxStsOk);
}

/// Inverse quantisation of one level by a rule. It wraps where there are no limits.
struct Dequantizer {
  DequantRule rule;
  Mox16s operator()(Mox32s level) const {
    const Mox32s value = level * rule.step + (level < 0 ? -rule.offset : rule.offset);
    return rule.low > -32768 ? static_cast<Mox16s>(clip(value, rule.low, rule.high)) : wrap16(value);
  }
};

inline MoxStatus reconstruct_inter(const ReadPosition& at, Mox16s* pCoef, Mox32s* pIndexCoeff, Mox32s qp,
                                   bool isModified) {
  return read_block(at, kTcoefTables, ownvc_Zigzag, isModified, pCoef, -1, pIndexCoeff,
                    Dequantizer{dequant_rule(qp, isModified)});
}

inline MoxStatus reconstruct_advanced(const ReadPosition& at, Mox16s* pCoef, Mox32s* pIndexCoeff, Mox32s qp,
                                      Mox32s scan, bool isModified) {
  return read_block(at, kAdvancedTcoefTables, scan_or_none(scan), isModified, pCoef, -1, pIndexCoeff,
                    Dequantizer{advanced_dequant_rule(qp)});
}

inline MoxStatus reconstruct_intra(const ReadPosition& at, Mox16s* pCoef, Mox32s* pIndexCoeff, bool isCoded, Mox32s qp,
                                   bool isModified) {
  LookAheadReader in = at.reader();
  const Mox16s dc = read_dc(in);
  Mox32s index = dc == 0 ? -1 : 0;
  MoxStatus status = dc == 0 ? moxStsBadCode : moxStsOk;
  if (dc != 0) pCoef[0] = static_cast<Mox16s>(8 * dc);
  if (dc != 0 && isCoded) {
    std::fill(pCoef + 1, pCoef + 64, Mox16s{0});
    status = read_levels(in, kTcoefTables, ownvc_Zigzag, isModified, pCoef, index,
                         Dequantizer{dequant_rule(qp, isModified)});
  }
  *pIndexCoeff = index;
  return at.leave(in, status);
}

/// Writes one level and the zeros in front of it.
inline void put_level(MoxByteWriter& at, const TcoefEncodeTables& tables, bool last, Mox32s run, Mox32s level,
                      bool isModified) {
  if (const TcoefCode* code = tables.find(last, run, std::abs(level))) {
    return ownPutBits8(at, code->bits | Mox32u{level < 0}, code->length);
  }
  const Mox32u head = kTcoefEscape << 15 | Mox32u{last} << 14 | static_cast<Mox32u>(run) << 8;
  const auto bits = static_cast<Mox32u>(level);
  if (!isModified || std::abs(level) < 128) return ownPutBits8(at, head | (bits & 0xFF), 22);
  ownPutBits8(at, head | (kExtendedLevel & 0xFF), 22);
  ownPutBits8(at, (bits & 31) << 6 | (bits >> 5 & 63), 11);
}

/// Writes `count` levels other than 0 from scan index `first` on, the last one with its flag. Ends with the block when
/// there are fewer.
inline MoxStatus write_block(Mox8u** ppBitStream, Mox32s* pBitOffset, const TcoefEncodeTables& tables,
                             const ScanTable& scan, bool isModified, const Mox16s* block, int first, Mox32s count) {
  MoxByteWriter at{*ppBitStream, *pBitOffset};
  Mox32s run = 0;
  for (int i = first; i < 64 && count > 0; ++i) {
    const Mox32s level = block[scan[i]];
    if (level == 0) {
      ++run;
      continue;
    }
    put_level(at, tables, --count == 0, run, level, isModified);
    run = 0;
  }
  *ppBitStream = at.byte;
  *pBitOffset = at.offset;
  return moxStsOk;
}

inline MoxStatus encode_intra(const Mox16s* pCoeffs, Mox8u** ppBitStream, Mox32s* pBitOffset, Mox32s count,
                              bool isAdvanced, bool isModified, Mox32s scan) {
  return write_block(ppBitStream, pBitOffset, isAdvanced ? h263_advVLCParams : h263_VLCParams, scan_or_none(scan),
                     isModified, pCoeffs, isAdvanced ? 0 : 1, count);
}

inline MoxStatus encode_inter(const Mox16s* pCoeffs, Mox8u** ppBitStream, Mox32s* pBitOffset, Mox32s count,
                              bool isModified, Mox32s scan) {
  return write_block(ppBitStream, pBitOffset, h263_VLCParams, scan_or_none(scan), isModified, pCoeffs, 0, count);
}

inline MoxStatus encode_dc(Mox16s dc, Mox8u** ppBitStream, Mox32s* pBitOffset) {
  MoxByteWriter at{*ppBitStream, *pBitOffset};
  ownPutBits8(at, dc == 128 ? 255 : static_cast<Mox32u>(dc), 8);
  *ppBitStream = at.byte;
  *pBitOffset = at.offset;
  return moxStsOk;
}

}  // namespace mox::px
