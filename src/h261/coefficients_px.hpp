/// Portable kernels that read and write the coefficients of H.261 blocks.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "frame/arithmetic.hpp"
#include "frame/byte_cursor.hpp"
#include "h261/coefficient_tables.hpp"

namespace mox::px {

/// What becomes of the levels of a block: they are stored as they are.
struct KeepLevels {
  Mox16s operator()(Mox32s level) const { return static_cast<Mox16s>(level); }
  static Mox16s dc(Mox32s code) { return static_cast<Mox16s>(code); }
};
/// They are multiplied out by the quantiser.
struct DequantizeLevels {
  Mox32s qp;
  Mox16s operator()(Mox32s level) const {
    const Mox32s odd = qp % 2 ? qp : qp - 1;
    return static_cast<Mox16s>(clip(level * 2 * qp + (level > 0 ? odd : -odd), -2048, 2047));
  }
  static Mox16s dc(Mox32s code) { return static_cast<Mox16s>(8 * code); }
};

/// A step of the scan index, 0 at an illegal code, and the level there.
struct Coefficient {
  Mox32s steps, level;
};

inline Coefficient read_coefficient(LookAheadReader& in) {
  const Mox32u fields = in.ownPeekBits8(20);  // of an escape: 6 bits code, 6 bits run, 8 bits level
  const Mox32u v = fields >> 6;
  if (is_escape(v)) {
    in.ownSkipBits8(20);
    const Mox32s level = wrap_to<std::int8_t>(fields);
    return {(level & 127) != 0 ? static_cast<Mox32s>(fields >> 8 & 63) + 1 : 0, level};
  }
  if (v < 2 * kNoCodeLimit) return {0, 0};
  const CoefficientRow& row = coefficient_row(v);
  in.ownSkipBits8(row.length);
  const bool isNegative = v >> (14 - row.length) & 1;
  return {row.steps, isNegative ? -row.magnitude : row.magnitude};
}

/// A block on its way from the stream to memory.
template <class Levels>
class BlockReader {
 public:
  BlockReader(const Mox8u* bytes, Mox32s offset, Mox16s* coef, const ScanTable& scan, Levels levels)
      : in_(bytes, offset), coef_(coef), scan_(scan), levels_(levels) {
    std::fill_n(coef, 64, Mox16s{0});
  }

  /// The DC of an intra block, 0 if its code is illegal.
  Mox16s read_dc() {
    const auto code = static_cast<Mox32s>(in_.ownPeekBits8(8));
    if ((code & 127) == 0) return 0;
    in_.ownSkipBits8(8);
    last_ = 0;
    return levels_.dc(code == 255 ? 128 : code);
  }
  /// The short form that an inter block may begin with.
  void read_first() {
    const Mox32u code = in_.ownPeekBits8(2);
    if (code < 2) return;
    in_.ownSkipBits8(2);
    last_ = 0;
    coef_[0] = levels_(code == 2 ? 1 : -1);
  }
  /// Reads to the end of the block.
  MoxStatus read_rest() {
    for (;;) {
      const Coefficient next = read_coefficient(in_);
      if (next.steps == 0) return moxStsBadCode;
      const Mox32s reached = last_ + next.steps;
      if (reached > 63) return reached >= kEndOfBlockIndex ? moxStsOk : moxStsBadCode;
      last_ = reached;
      coef_[scan_[reached]] = levels_(next.level);
    }
  }
  /// Hands over the index of the last coefficient, and of a good block the position behind it.
  MoxStatus finish(MoxStatus status, const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox32s* pIndexCoeff) const {
    *pIndexCoeff = last_;
    if (status == moxStsOk) in_.store(ppBitStream, pBitOffset);
    return status;
  }

 private:
  LookAheadReader in_;
  Mox16s* coef_;
  const ScanTable& scan_;
  Levels levels_;
  Mox32s last_ = -1;
};

template <class Levels>
MoxStatus decode_intra(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef, Mox32s* pIndexCoeff,
                       const ScanTable& scan, Levels levels) {
  BlockReader<Levels> block(*ppBitStream, *pBitOffset, pCoef, scan, levels);
  const Mox16s dc = block.read_dc();
  const MoxStatus status = dc == 0 ? moxStsBadCode : block.read_rest();
  if (status == moxStsOk) pCoef[0] = dc;
  return block.finish(status, ppBitStream, pBitOffset, pIndexCoeff);
}

template <class Levels>
MoxStatus decode_inter(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef, Mox32s* pIndexCoeff,
                       const ScanTable& scan, Levels levels) {
  BlockReader<Levels> block(*ppBitStream, *pBitOffset, pCoef, scan, levels);
  block.read_first();
  return block.finish(block.read_rest(), ppBitStream, pBitOffset, pIndexCoeff);
}

inline void put_code(AccumulatorWriter& out, CoefficientCode code) { out.put(code.bits, code.length); }

inline void put_coefficient(AccumulatorWriter& out, Mox32s run, Mox32s level) {
  const Mox32s magnitude = std::abs(level);
  const bool tabled = run <= kMostCodedRun && magnitude <= kMostCodedLevel;
  const CoefficientCode code = tabled ? h261_VLCTab[run][magnitude] : CoefficientCode();
  if (code.length != 0) return out.put(2u * code.bits + (level < 0), code.length + 1);
  put_code(out, kEscapeCode);
  out.put(static_cast<Mox32u>(run << 8 | (level & 0xFF)), 14);
}

/// Writes the next `count` coefficients other than 0 from scan index i on, and the end of the block.
inline void put_coefficients(AccumulatorWriter& out, const Mox16s* pCoeffs, const ScanTable& scan, Mox32s i,
                             Mox32s count) {
  for (Mox32s run = 0; i < 64 && count > 0; ++i) {
    const Mox32s level = pCoeffs[scan[i]];
    if (level == 0) {
      ++run;
      continue;
    }
    put_coefficient(out, run, level);
    run = 0;
    --count;
  }
  put_code(out, kEndOfBlockCode);
}

inline MoxStatus finish(const AccumulatorWriter& out, Mox8u** ppBitStream, Mox32s* pBitOffset) {
  const MoxByteWriter at = out.finish();
  *ppBitStream = at.byte;
  *pBitOffset = at.offset;
  return moxStsOk;
}

inline MoxStatus encode_intra(const Mox16s* pCoeffs, Mox8u** ppBitStream, Mox32s* pBitOffset, Mox32s countNonZero,
                              const ScanTable& scan) {
  AccumulatorWriter out({*ppBitStream, *pBitOffset});
  out.put(static_cast<Mox32u>(pCoeffs[0] == 128 ? 255 : pCoeffs[0]) & 0xFF, 8);
  put_coefficients(out, pCoeffs, scan, 1, countNonZero - 1);
  return finish(out, ppBitStream, pBitOffset);
}

inline MoxStatus encode_inter(const Mox16s* pCoeffs, Mox8u** ppBitStream, Mox32s* pBitOffset, Mox32s countNonZero,
                              const ScanTable& scan) {
  AccumulatorWriter out({*ppBitStream, *pBitOffset});
  const bool shortForm = std::abs(pCoeffs[0]) == 1;
  if (shortForm) out.put(pCoeffs[0] < 0 ? 3 : 2, 2);
  put_coefficients(out, pCoeffs, scan, shortForm, countNonZero - shortForm);
  return finish(out, ppBitStream, pBitOffset);
}

}  // namespace mox::px
