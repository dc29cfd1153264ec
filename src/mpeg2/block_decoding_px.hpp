/// Portable kernels of MPEG-1/2 block decoding: codes, scan and dequantisation in one loop.
#pragma once

#include <algorithm>

#include "frame/arithmetic.hpp"
#include "frame/word_window.hpp"
#include "moxvc/huffman.h"

namespace mox::px {

/// Runs that a coefficient table gives in place of a run. As all runs beyond 63, that of no code among them, they carry
/// the scan index over the end of the block, so that one test finds them all.
inline constexpr Mox32s kEndOfBlockRun = 254, kEscapeRun = 255;
static_assert((kVlcUnused >> 8 & 0xFF) > 63);

struct RunAndLevel {
  Mox32s run, level;
};

/// What differs between the standards: the fields behind the escape code, and the way from the product of twice the
/// level, scale and weight to the coefficient.
struct Mpeg1Coefficients {
  MOX_READER_INLINE static RunAndLevel read_escape(WordWindow& in) {
    const auto run = static_cast<Mox32s>(in.get(6));
    Mox32s level = wrap_to<std::int8_t>(in.get(8));
    if ((level & 127) == 0) level = static_cast<Mox32s>(in.get(8)) + 2 * level;
    return {run, level};
  }
  static Mox16s reconstruct(Mox32s product) {
    const Mox32s value = product / 16;
    const Mox32s odd = value & 1 ? value : value - sign_of(value);
    return static_cast<Mox16s>(clip(odd, -2048, 2047));
  }
};
struct Mpeg2Coefficients {
  MOX_READER_INLINE static RunAndLevel read_escape(WordWindow& in) {
    const Mox32u fields = in.get(18);
    return {static_cast<Mox32s>(fields >> 12), shl32(static_cast<Mox32s>(fields), 20) >> 20};
  }
  static Mox16s reconstruct(Mox32s product) { return wrap16(product / 32); }
};

/// Where the coefficients of a block go, and by what they are multiplied.
struct BlockTarget {
  const Mox32s* scan;
  Mox32s quantScale;
  const Mox16s* weights;
  Mox16s* coefficients;
};

/// A block on its way from the stream to memory.
template <class Standard, bool kIntra>
class BlockReader {
 public:
  MOX_READER_INLINE BlockReader(const MoxWordCursor& at, const BlockTarget& target) : in(at), target_(target) {
    std::fill_n(target_.coefficients, 64, Mox16s{0});
  }

  /// Puts a level behind `run` zeros. False if that is beyond the end of the block.
  MOX_READER_INLINE bool put(Mox32s run, Mox32s level) {
    last += run + 1;
    if (last > 63) return false;
    store(level);
    return true;
  }
  /// Reads one code, and puts its level. False at the end of the block, at no code, and beyond the end.
  MOX_READER_INLINE bool read(const MoxVlcTable* table) {
    const VlcLeaf leaf = in.decode(table);
    const Mox32s run = leaf.run();
    const Mox32s index = last + run + 1;
    if (index > 63) return read_special(run);
    last = index;
    store(wrap_to<std::int8_t>(leaf.level()));
    return true;
  }
  MOX_READER_INLINE void read_all(const MoxVlcTable* table) {
    while (read(table)) continue;
  }

  WordWindow in;
  Mox32s last = -1;    ///< scan index of the last coefficient
  Mox32s parity = 0;   ///< bit 0 is that of the sum of all coefficients
  bool ended = false;  ///< by an end-of-block code

 private:
  MOX_READER_INLINE void store(Mox32s level) {
    const Mox32s position = target_.scan[last];
    const Mox32s doubled = kIntra ? 2 * level : 2 * level + sign_of(level);
    const Mox16s value = Standard::reconstruct(mul32(mul32(doubled, target_.quantScale), target_.weights[position]));
    target_.coefficients[position] = value;
    parity ^= value;
  }
  MOX_READER_INLINE bool read_special(Mox32s run) {
    ended = run == kEndOfBlockRun;
    if (run != kEscapeRun) return false;
    const RunAndLevel escaped = Standard::read_escape(in);
    return put(escaped.run, escaped.level);
  }

  BlockTarget target_;
};

/// The sizes that a stream position can be moved by at once. A larger one is no size but the mark of no code.
inline constexpr Mox32s kMostDcBits = 32;

/// Reads the difference of two DC values, 16 bits. False if there is no such size.
MOX_READER_INLINE inline bool read_dc_difference(WordWindow& in, const MoxVlcTable* sizes, Mox16s& difference) {
  const Mox32s size = in.decode(sizes).value() & 0xFFFF;
  if (size > kMostDcBits) return false;
  const std::uint64_t bits = in.get(size);
  const bool isNegative = size > 0 && !(bits >> (size - 1));
  difference = wrap_to<Mox16s>(static_cast<long long>(bits - (isNegative ? (std::uint64_t{1} << size) - 1 : 0)));
  return true;
}

template <class Standard, bool kIntra>
MOX_READER_INLINE inline MoxStatus finish(const BlockReader<Standard, kIntra>& block, const Mox32u** ppBitStream,
                                          Mox32s* pBitOffset) {
  block.in.cursor().store(ppBitStream, pBitOffset);
  return block.ended ? moxStsOk : moxStsBadBitstream;
}

/// Makes the sum of the coefficients odd.
inline void control_mismatch(Mox16s* coefficients, Mox32s parity) {
  coefficients[63] = static_cast<Mox16s>(coefficients[63] ^ (~parity & 1));
}

inline MoxStatus decode_intra_mpeg1(const Mox32u** ppBitStream, Mox32s* pBitOffset, const MoxVlcTable* dcSizes,
                                    const MoxVlcTable* ac, const BlockTarget& target, Mox16s* pDCPred,
                                    Mox32s* pDstSize) {
  BlockReader<Mpeg1Coefficients, true> block({*ppBitStream, *pBitOffset}, target);
  Mox16s difference;
  if (read_dc_difference(block.in, dcSizes, difference)) {
    *pDCPred = target.coefficients[0] = wrap16(*pDCPred + 8 * difference);
    block.last = 0;
    block.read_all(ac);
  }
  if (block.ended) *pDstSize = block.last;
  return finish(block, ppBitStream, pBitOffset);
}

inline MoxStatus decode_intra_mpeg2(const Mox32u** ppBitStream, Mox32s* pBitOffset, const MoxVlcTable* dcSizes,
                                    const MoxVlcTable* ac, const BlockTarget& target, Mox16s* pDCPred, Mox32s shiftDC,
                                    Mox32s* pDstSize) {
  BlockReader<Mpeg2Coefficients, true> block({*ppBitStream, *pBitOffset}, target);
  Mox16s difference;
  if (read_dc_difference(block.in, dcSizes, difference)) {
    *pDCPred = wrap16(*pDCPred + difference);
    target.coefficients[0] = wrap16(shl32(*pDCPred, shiftDC & 31));
    block.parity = target.coefficients[0];
    block.last = 0;
    block.read_all(ac);
  }
  if (block.ended) {
    control_mismatch(target.coefficients, block.parity);
    *pDstSize = block.last;
  }
  return finish(block, ppBitStream, pBitOffset);
}

/// Reads the first coefficient, which has a shorter code for levels 1 and -1, and all others.
template <class Block>
MOX_READER_INLINE inline void read_non_intra(Block& block, const MoxVlcTable* first, const MoxVlcTable* ac) {
  block.in.fill();
  if (block.in.peek(1)) {
    block.put(0, block.in.get(2) & 1 ? -1 : 1);
  } else if (!block.read(first)) {
    return;
  }
  block.read_all(ac);
}

inline MoxStatus decode_mpeg1(const Mox32u** ppBitStream, Mox32s* pBitOffset, const MoxVlcTable* first,
                              const MoxVlcTable* ac, const BlockTarget& target, Mox32s* pDstSize) {
  BlockReader<Mpeg1Coefficients, false> block({*ppBitStream, *pBitOffset}, target);
  read_non_intra(block, first, ac);
  if (block.ended) *pDstSize = block.last;
  return finish(block, ppBitStream, pBitOffset);
}

inline MoxStatus decode_mpeg2(const Mox32u** ppBitStream, Mox32s* pBitOffset, const MoxVlcTable* first,
                              const MoxVlcTable* ac, const BlockTarget& target, Mox32s* pDstSize) {
  BlockReader<Mpeg2Coefficients, false> block({*ppBitStream, *pBitOffset}, target);
  read_non_intra(block, first, ac);
  if (block.ended) {
    control_mismatch(target.coefficients, block.parity);
    *pDstSize = block.last == 0 ? 1 : block.last;
  }
  return finish(block, ppBitStream, pBitOffset);
}

}  // namespace mox::px
