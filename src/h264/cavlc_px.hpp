/// Portable kernels of CAVLC residual blocks.
///
/// A block is read in the order of the stream: coeff_token, signs of the trailing ones, levels, total_zeros, and
/// run_before by turns with the placing of levels, highest frequency first.
#pragma once

#include <algorithm>
#include <array>
#include <cstdlib>

#include "frame/arguments.hpp"
#include "frame/arithmetic.hpp"
#include "frame/table.hpp"
#include "frame/vlc_table.hpp"
#include "frame/word_cursor.hpp"
#include "moxvc/huffman.h"

namespace mox::px {

/// The largest block; no count and no run of a table can exceed it.
inline constexpr Mox32s kMostCoeffs = 16;

/// Number of level_suffix bits, and base of the magnitude, for a level_prefix below 16.
constexpr Mox32s suffix_bits(Mox32s suffixLength, Mox32s prefix) {
  if (prefix == 15) return 12;
  return suffixLength > 0 ? suffixLength : prefix == 14 ? 4 : 0;
}
constexpr Mox32s base_magnitude(Mox32s suffixLength, Mox32s prefix) {
  if (suffixLength > 0) return 1 + (prefix << (suffixLength - 1));
  return prefix == 15 ? 16 : prefix == 14 ? 8 : 1;
}

/// [suffixLength][level_prefix]
using LevelTable = std::array<std::array<Mox32s, 16>, 7>;
inline constexpr LevelTable bitsToGetTbl16s =
    make_table<7>([]<std::size_t S>() { return make_table<16>([]<std::size_t P>() { return suffix_bits(S, P); }); });
inline constexpr LevelTable addOffsetTbl16s =
    make_table<7>([]<std::size_t S>() { return make_table<16>([]<std::size_t P>() { return base_magnitude(S, P); }); });
/// [suffixLength]: what a level code of prefix 16 and more gains.
inline constexpr std::array<Mox32s, 7> sadd = {15, 0, 0, 0, 0, 0, 0};
/// [suffixLength]: a magnitude above it makes the suffix one bit longer.
inline constexpr std::array<Mox32s, 6> vlc_inc = {0, 3, 6, 12, 24, 48};

/// The suffix of a longer level_prefix would not fit 32 bits.
inline constexpr Mox32s kLongestLevelPrefix = 35;

/// What coeff_token says; a negative total stands for no code.
struct CoeffToken {
  Mox32s total;
  Mox32s ones;
};
inline constexpr CoeffToken kNoCoeffToken{-1, 0};

inline CoeffToken read_coeff_token(MoxWordCursor& at, const MoxVlcTable* table) {
  const Mox32s value = ownVlcDecode(at, table).value();
  const CoeffToken token{value >> 8 & 0xFF, value & 0xFF};
  return token.total > kMostCoeffs || token.ones > kMostCoeffs ? kNoCoeffToken : token;
}
static_assert((kVlcIllegal >> 8 & 0xFF) > kMostCoeffs);

/// The code of fixed length for nC from 8 on: TotalCoeff - 1 and TrailingOnes, but 3 for an empty block.
inline CoeffToken read_fixed_coeff_token(MoxWordCursor& at) {
  const auto code = static_cast<Mox32s>(get_bits(at, 6));
  return code == 3 ? CoeffToken{0, 0} : CoeffToken{(code >> 2) + 1, code & 3};
}

/// Reads a value that no legal table has at or above `limit`; there it is the mark of no code, or an odd table.
inline bool read_below(MoxWordCursor& at, const MoxVlcTable* table, Mox32s limit, Mox32s& value) {
  value = ownVlcDecode(at, table).value();
  return static_cast<Mox32u>(value) < static_cast<Mox32u>(limit);
}
static_assert(kVlcIllegal > kMostCoeffs);

inline void read_trailing_ones(MoxWordCursor& at, Mox32s ones, Mox32s* level) {
  const Mox32u signs = get_bits(at, ones);
  for (Mox32s i = 0; i < ones; ++i) level[i] = signs >> (ones - 1 - i) & 1 ? -1 : 1;
}

/// Reads a level; `raise` is 1 for the first one if it must exceed 1. False if level_prefix is too long.
inline bool read_level(MoxWordCursor& at, Mox32s suffixLength, Mox32s raise, Mox32s& level) {
  const Mox32s prefix = read_zeros(at, kLongestLevelPrefix);
  if (prefix > kLongestLevelPrefix) return false;
  Mox32s magnitude;
  Mox32u code;
  if (prefix < 16) {
    const Mox32s bits = bitsToGetTbl16s[suffixLength][prefix];
    code = bits > 0 ? get_bits(at, bits) : static_cast<Mox32u>(prefix);
    magnitude = static_cast<Mox32s>(code >> 1) + addOffsetTbl16s[suffixLength][prefix] + raise;  // 2529 at most
  } else {
    const Mox32u suffix = get_bits(at, prefix - 3);
    code =
        wrap_to<Mox16u>(sadd[suffixLength] + 2 * raise + (1ll << (prefix - 3)) + (15 << suffixLength) + suffix - 4096);
    magnitude = static_cast<Mox32s>(code / 2) + 1;
  }
  level = code & 1 ? -magnitude : magnitude;
  return true;
}

/// Reads the levels behind the trailing ones.
inline bool read_levels(MoxWordCursor& at, CoeffToken token, Mox32s* level) {
  const Mox32s first = token.ones;
  Mox32s suffixLength = token.total > 10 && token.ones < 3;
  Mox32s raise = token.ones < 3;
  Mox32s magnitude = 0;
  for (Mox32s i = first; i < token.total; ++i) {
    if (i == first + 1 && magnitude > 3) {
      suffixLength = 2;
    } else if (suffixLength < 6 && magnitude > vlc_inc[suffixLength]) {
      ++suffixLength;
    }
    if (!read_level(at, suffixLength, raise, level[i])) return false;
    magnitude = std::abs(level[i]);
    raise = 0;
  }
  return true;
}

/// A block's elements: how many, how many coefficients are coded at most, where coefficient k goes, and whether a
/// run_before above the zeros left is cut back to them.
struct ScanBlock {
  static constexpr Mox32s kElements = 16;
  static constexpr bool kCutsRun = true;
  Mox32s coded;
  const Mox32s* scan;
  Mox32s index(Mox32s k) const { return kElements - coded + k; }
  Mox32s position(Mox32s index) const { return scan[index]; }
};
struct Dc2x2Block {
  static constexpr Mox32s kElements = 4;
  static constexpr bool kCutsRun = false;
  static constexpr Mox32s coded = 4;
  static constexpr Mox32s index(Mox32s k) { return k; }
  static constexpr Mox32s position(Mox32s index) { return index; }
};
inline constexpr std::array<Mox32s, 8> ChromaDC422RasterScan = {0, 2, 1, 4, 6, 3, 5, 7};
struct Dc2x4Block {
  static constexpr Mox32s kElements = 8;
  static constexpr bool kCutsRun = false;
  static constexpr Mox32s coded = 8;
  static constexpr Mox32s index(Mox32s k) { return k; }
  static constexpr Mox32s position(Mox32s index) { return ChromaDC422RasterScan[index]; }
};

struct RunTables {
  const MoxVlcTable* const* total_zeros;
  const MoxVlcTable* const* run_before;
};

/// Reads the zeros and stores the levels between them. Only corrupt data has an index outside the block.
template <class Block, class Coeff>
MoxStatus place_levels(MoxWordCursor& at, const Block& block, const RunTables& tables, Mox32s total,
                       const Mox32s* level, Coeff* dst) {
  Mox32s zeros = 0;
  if (total < block.coded) {
    const MoxVlcTable* table = tables.total_zeros[total];
    if (!table) return moxStsNullPointer;
    if (!read_below(at, table, Block::kElements, zeros)) return moxStsBadBitstream;
  }
  for (Mox32s left = total; left > 0; --left) {
    Mox32s run = zeros;
    if (left > 1 && zeros > 0) {
      const MoxVlcTable* table = tables.run_before[zeros];
      if (!table) return moxStsNullPointer;
      if (!read_below(at, table, kMostCoeffs, run)) return moxStsBadBitstream;
    }
    const Mox32s index = block.index(zeros + left - 1);
    if (!outside(index, 0, Block::kElements - 1)) dst[block.position(index)] = wrap_to<Coeff>(*level);
    ++level;
    zeros -= Block::kCutsRun ? std::min(run, zeros) : run;
  }
  return moxStsOk;
}

/// Everything behind coeff_token.
template <class Block, class Coeff>
MoxStatus decode_levels(MoxWordCursor& at, const Block& block, const RunTables& tables, CoeffToken token,
                        Mox16s* pNumCoeff, Coeff** ppDstCoeffs) {
  if (token.total < 0) return moxStsBadBitstream;
  *pNumCoeff = wrap16(token.total);
  Mox32s level[kMostCoeffs];
  read_trailing_ones(at, token.ones, level);
  if (token.total == 0) return moxStsOk;
  Coeff* const dst = *ppDstCoeffs;
  std::fill_n(dst, Block::kElements, Coeff{0});
  if (!read_levels(at, token, level)) return moxStsBadBitstream;
  const MoxStatus status = place_levels(at, block, tables, token.total, level, dst);
  if (status == moxStsOk) *ppDstCoeffs = dst + Block::kElements;
  return status;
}

/// The table of an nC below 8.
constexpr Mox32s coeff_token_table(Mox32s nC) { return nC < 4 ? nC >> 1 : 2; }

template <class Coeff>
MoxStatus decode_coeffs(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox16s* pNumCoeff, Coeff** ppDstCoeffs,
                        Mox32s nC, const MoxVlcTable* const* ppTblCoeffToken, const RunTables& tables,
                        const ScanBlock& block) {
  MoxWordCursor at{*ppBitStream, *pBitOffset};
  CoeffToken token;
  if (nC < 8) {
    const MoxVlcTable* table = ppTblCoeffToken[coeff_token_table(nC)];
    if (!table) return moxStsNullPointer;
    token = read_coeff_token(at, table);
  } else {
    token = read_fixed_coeff_token(at);
  }
  const MoxStatus status = decode_levels(at, block, tables, token, pNumCoeff, ppDstCoeffs);
  if (status != moxStsBadBitstream) at.store(ppBitStream, pBitOffset);
  return status;
}

template <class Block, class Coeff>
MoxStatus decode_chroma_dc(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox16s* pNumCoeff, Coeff** ppDstCoeffs,
                           const MoxVlcTable* coeffToken, const RunTables& tables) {
  MoxWordCursor at{*ppBitStream, *pBitOffset};
  const CoeffToken token = read_coeff_token(at, coeffToken);
  const MoxStatus status = decode_levels(at, Block{}, tables, token, pNumCoeff, ppDstCoeffs);
  if (status != moxStsBadBitstream) at.store(ppBitStream, pBitOffset);
  return status;
}

/// [3 bits behind the sign of a single trailing one]: position, and bits of the whole block.
struct ChromaDCRun {
  Mox8u position, bits;
};
inline constexpr std::array<ChromaDCRun, 8> ChromaDCRunTable = {
    {{3, 5}, {2, 5}, {1, 4}, {1, 4}, {0, 3}, {0, 3}, {0, 3}, {0, 3}}};

/// As decode_chroma_dc, but the frequent blocks, those of one trailing one and empty ones, are decided from 5 bits.
/// Each pointer is tested only where it is needed, hence the tests in here.
template <class Coeff>
MoxStatus decode_chroma_dc_by_peek(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox16s* pNumCoeff,
                                   Coeff** ppDstCoeffs, const MoxVlcTable* coeffToken, const RunTables& tables) {
  MoxWordCursor at{*ppBitStream, *pBitOffset};
  const Mox32u bits = ownPeekBits32(at, 5);
  if (bits >> 4) {  // 1: one trailing one
    if (any_null(ppDstCoeffs)) return moxStsNullPointer;
    const ChromaDCRun run = ChromaDCRunTable[bits & 7];
    std::fill_n(*ppDstCoeffs, 4, Coeff{0});
    (*ppDstCoeffs)[run.position] = bits & 8 ? -1 : 1;
    *ppDstCoeffs += 4;
    *pNumCoeff = 1;
    get_bits(at, run.bits);
    at.store(ppBitStream, pBitOffset);
    return moxStsOk;
  }
  if (bits >> 3) {  // 01: no coefficients
    *pNumCoeff = 0;
    get_bits(at, 2);
    at.store(ppBitStream, pBitOffset);
    return moxStsOk;
  }
  if (any_null(ppDstCoeffs, coeffToken, tables.total_zeros, tables.run_before)) return moxStsNullPointer;
  return decode_chroma_dc<Dc2x2Block>(ppBitStream, pBitOffset, pNumCoeff, ppDstCoeffs, coeffToken, tables);
}

}  // namespace mox::px
