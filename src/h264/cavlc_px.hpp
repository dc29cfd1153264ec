/// Portable kernels of CAVLC residual blocks.
///
/// A block is read in the order of the stream: coeff_token, signs of the trailing ones, levels, total_zeros, and
/// run_before by turns with the placing of levels, highest frequency first. The bits stay in registers; what is rare, a
/// level with an escape, is read from a plain cursor.
#pragma once

#include <algorithm>
#include <array>

#include "frame/arguments.hpp"
#include "frame/arithmetic.hpp"
#include "frame/table.hpp"
#include "frame/word_window.hpp"
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
/// [suffixLength]: a magnitude above it makes the suffix one bit longer. None is above the last one.
inline constexpr std::array<Mox32s, 7> vlc_inc = {0, 3, 6, 12, 24, 48, 65535};

/// The suffix of a longer level_prefix would not fit 32 bits.
inline constexpr Mox32s kLongestLevelPrefix = 35;

/// Widths of the roots with which tables are read most quickly.
inline constexpr Mox32s kCoeffTokenRoot = 8, kTotalZerosRoot = 6, kRunBeforeRoot = 3;

struct CoeffToken {
  Mox32s total;
  Mox32s ones;
};

/// False if the bits are no code.
MOX_READER_INLINE inline bool read_coeff_token(WordWindow& in, const MoxVlcTable* table, CoeffToken& token) {
  const Mox32s value = in.decode<kCoeffTokenRoot>(table).value();
  token = {value >> 8 & 0xFF, value & 0xFF};
  return token.total <= kMostCoeffs && token.ones <= kMostCoeffs;
}
static_assert((kVlcIllegal >> 8 & 0xFF) > kMostCoeffs);

/// The code of fixed length for nC from 8 on: TotalCoeff - 1 and TrailingOnes, but 3 for an empty block.
MOX_READER_INLINE inline CoeffToken read_fixed_coeff_token(WordWindow& in) {
  const auto code = static_cast<Mox32s>(in.get(6));
  return code == 3 ? CoeffToken{0, 0} : CoeffToken{(code >> 2) + 1, code & 3};
}

/// Reads a value that no legal table has at or above `limit`; there it is the mark of no code, or an odd table.
template <Mox32s kRoot>
MOX_READER_INLINE inline bool read_below(WordWindow& in, const MoxVlcTable* table, Mox32s limit, Mox32s& value) {
  value = in.decode<kRoot>(table).value();
  return static_cast<Mox32u>(value) < static_cast<Mox32u>(limit);
}
static_assert(kVlcIllegal > kMostCoeffs);

/// The first three are stored whether there are so many or not; more of them come from odd tables only.
MOX_READER_INLINE inline void read_trailing_ones(WordWindow& in, Mox32s ones, Mox32s* level) {
  constexpr auto kOne = [](Mox32u sign) { return 1 - 2 * static_cast<Mox32s>(sign); };
  if (ones <= 3) [[likely]] {
    in.fill(3);
    for (Mox32s i = 0; i < 3; ++i) level[i] = kOne(in.peek(i + 1) & 1);
    in.skip(ones);
  } else {
    for (Mox32s i = 0; i < ones; ++i) level[i] = kOne(in.get(1));
  }
}

struct CavlcLevel {
  Mox32s magnitude;
  bool negative;
  Mox32s value() const { return negative ? -magnitude : magnitude; }
};

/// Reads a level of any form; `raise` is 1 for the first one if it must exceed 1. False if level_prefix is too long.
inline bool read_any_level(MoxWordCursor& at, Mox32s suffixLength, Mox32s raise, CavlcLevel& level) {
  const Mox32s prefix = read_zeros(at, kLongestLevelPrefix);
  if (prefix > kLongestLevelPrefix) return false;
  if (prefix < 16) {
    const Mox32s bits = bitsToGetTbl16s[suffixLength][prefix];
    const Mox32u code = bits > 0 ? get_bits(at, bits) : static_cast<Mox32u>(prefix);
    const Mox32s base = addOffsetTbl16s[suffixLength][prefix];
    level = {static_cast<Mox32s>(code >> 1) + base + raise, (code & 1) != 0};  // 2529 at most
  } else {
    const Mox32u suffix = get_bits(at, prefix - 3);
    const auto code =
        wrap_to<Mox16u>(sadd[suffixLength] + 2 * raise + (1ll << (prefix - 3)) + (15 << suffixLength) + suffix - 4096);
    level = {code / 2 + 1, (code & 1) != 0};
  }
  return true;
}

/// The same, in registers if the suffix has suffixLength bits.
MOX_READER_INLINE inline bool read_level(WordWindow& in, Mox32s suffixLength, Mox32s raise, CavlcLevel& level) {
  in.fill(15 + 6);
  const Mox32s prefix = in.zeros();
  if (prefix >= (suffixLength > 0 ? 15 : 14)) [[unlikely]] {
    MoxWordCursor at = in.cursor();
    CavlcLevel escaped;
    if (!read_any_level(at, suffixLength, raise, escaped)) return false;
    in = WordWindow(at);
    level = escaped;  // not its address, which would keep all levels in memory
    return true;
  }
  in.skip(prefix + 1);
  const Mox32s code = prefix << suffixLength | static_cast<Mox32s>(in.peek(suffixLength));
  in.skip(suffixLength);
  level = {(code >> 1) + 1 + raise, (code & 1) != 0};
  return true;
}

/// Reads the levels behind the trailing ones.
MOX_READER_INLINE inline bool read_levels(WordWindow& in, CoeffToken token, Mox32s* level) {
  Mox32s i = token.ones;
  if (i >= token.total) return true;
  const Mox32s raise = token.ones < 3;
  CavlcLevel read;
  if (!read_level(in, token.total > 10 && raise, raise, read)) return false;
  level[i] = read.value();
  Mox32s suffixLength = 1;
  while (++i < token.total) {
    suffixLength += read.magnitude > vlc_inc[suffixLength];
    if (!read_level(in, suffixLength, 0, read)) return false;
    level[i] = read.value();
  }
  return true;
}

/// A block's elements: how many, how many coefficients are coded at most, where coefficient k goes, and whether a
/// run_before above the zeros left is cut back to them.
struct ScanBlock {
  static constexpr Mox32s kElements = 16;
  static constexpr bool kCutsRun = true;
  Mox32s coded;
  const Mox32s* scan;  ///< of the coded ones
  Mox32s position(Mox32s k) const { return scan[k]; }
};
struct Dc2x2Block {
  static constexpr Mox32s kElements = 4;
  static constexpr bool kCutsRun = false;
  static constexpr Mox32s coded = 4;
  static constexpr Mox32s position(Mox32s k) { return k; }
};
inline constexpr std::array<Mox32s, 8> ChromaDC422RasterScan = {0, 2, 1, 4, 6, 3, 5, 7};
struct Dc2x4Block {
  static constexpr Mox32s kElements = 8;
  static constexpr bool kCutsRun = false;
  static constexpr Mox32s coded = 8;
  static constexpr Mox32s position(Mox32s k) { return ChromaDC422RasterScan[static_cast<std::size_t>(k)]; }
};

struct RunTables {
  const MoxVlcTable* const* total_zeros;
  const MoxVlcTable* const* run_before;
};

/// Stores a level. Only corrupt data has a k outside the block.
template <class Block, class Coeff>
MOX_READER_INLINE inline void place_level(const Block& block, Mox32s k, Mox32s level, Coeff* dst) {
  if (static_cast<Mox32u>(k) < static_cast<Mox32u>(block.coded)) dst[block.position(k)] = wrap_to<Coeff>(level);
}

/// Reads the zeros and stores the levels between them, 1 or more.
template <class Block, class Coeff>
MOX_READER_INLINE inline MoxStatus place_levels(WordWindow& in, const Block& block, const RunTables& tables,
                                                Mox32s total, const Mox32s* level, Coeff* dst) {
  Mox32s zeros = 0;
  if (total < block.coded) {
    const MoxVlcTable* table = tables.total_zeros[total];
    if (!table) return moxStsNullPointer;
    if (!read_below<kTotalZerosRoot>(in, table, Block::kElements, zeros)) return moxStsBadBitstream;
  }
  Mox32s left = total;
  for (; left > 1 && zeros > 0; --left) {
    const MoxVlcTable* table = tables.run_before[zeros];
    if (!table) return moxStsNullPointer;
    Mox32s run;
    if (!read_below<kRunBeforeRoot>(in, table, kMostCoeffs, run)) return moxStsBadBitstream;
    place_level(block, zeros + left - 1, *level++, dst);
    zeros -= Block::kCutsRun ? std::min(run, zeros) : run;
  }
  place_level(block, zeros + left - 1, *level++, dst);  // behind all zeros that are left
  while (--left > 0) place_level(block, left - 1, *level++, dst);
  return moxStsOk;
}

/// Everything behind coeff_token.
template <class Block, class Coeff>
MOX_READER_INLINE inline MoxStatus decode_levels(WordWindow& in, const Block& block, const RunTables& tables,
                                                 CoeffToken token, Mox16s* pNumCoeff, Coeff** ppDstCoeffs) {
  *pNumCoeff = wrap16(token.total);
  if (token.total == 0) {
    in.skip(token.ones);  // 0 bits but for odd tables; they count for the position alone
    return moxStsOk;
  }
  Coeff* const dst = *ppDstCoeffs;
  std::fill_n(dst, Block::kElements, Coeff{0});
  Mox32s level[kMostCoeffs];
  read_trailing_ones(in, token.ones, level);
  if (!read_levels(in, token, level)) return moxStsBadBitstream;
  const MoxStatus status = place_levels(in, block, tables, token.total, level, dst);
  if (status == moxStsOk) *ppDstCoeffs = dst + Block::kElements;
  return status;
}

/// The table of an nC below 8.
constexpr Mox32s coeff_token_table(Mox32s nC) { return nC < 4 ? nC >> 1 : 2; }

template <class Coeff>
MOX_READER_INLINE inline MoxStatus decode_coeffs(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox16s* pNumCoeff,
                                                 Coeff** ppDstCoeffs, Mox32s nC,
                                                 const MoxVlcTable* const* ppTblCoeffToken, const RunTables& tables,
                                                 const ScanBlock& block) {
  WordWindow in = WordWindow::of_two_words({*ppBitStream, *pBitOffset});
  CoeffToken token;
  if (nC < 8) {
    const MoxVlcTable* table = ppTblCoeffToken[coeff_token_table(nC)];
    if (!table) return moxStsNullPointer;
    if (!read_coeff_token(in, table, token)) return moxStsBadBitstream;
  } else {
    token = read_fixed_coeff_token(in);
  }
  const MoxStatus status = decode_levels(in, block, tables, token, pNumCoeff, ppDstCoeffs);
  if (status != moxStsBadBitstream) in.cursor().store(ppBitStream, pBitOffset);
  return status;
}

/// Reads the block in front of `in`.
template <class Block, class Coeff>
MOX_READER_INLINE inline MoxStatus decode_chroma_dc(WordWindow in, const Mox32u** ppBitStream, Mox32s* pBitOffset,
                                                    Mox16s* pNumCoeff, Coeff** ppDstCoeffs,
                                                    const MoxVlcTable* coeffToken, const RunTables& tables) {
  CoeffToken token;
  if (!read_coeff_token(in, coeffToken, token)) return moxStsBadBitstream;
  const MoxStatus status = decode_levels(in, Block{}, tables, token, pNumCoeff, ppDstCoeffs);
  if (status != moxStsBadBitstream) in.cursor().store(ppBitStream, pBitOffset);
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
MOX_READER_INLINE inline MoxStatus decode_chroma_dc_by_peek(const Mox32u** ppBitStream, Mox32s* pBitOffset,
                                                            Mox16s* pNumCoeff, Coeff** ppDstCoeffs,
                                                            const MoxVlcTable* coeffToken, const RunTables& tables) {
  WordWindow in = WordWindow::of_two_words({*ppBitStream, *pBitOffset});
  const Mox32u bits = in.peek(5);
  if (bits >> 3) {
    // 1: one trailing one, 01: no coefficients. One way for both, since a branch would be foretold badly: what there is
    // of an empty block is stored aside.
    const bool one = bits >> 4;
    if (one & (ppDstCoeffs == nullptr)) return moxStsNullPointer;
    Coeff unused[4], *aside = unused;
    Coeff** const to = one ? ppDstCoeffs : &aside;
    Coeff* const dst = *to;
    const ChromaDCRun run = ChromaDCRunTable[bits & 7];
    std::fill_n(dst, 4, Coeff{0});
    dst[run.position] = bits & 8 ? -1 : 1;
    *to = dst + 4;
    *pNumCoeff = one;
    in.skip(one ? run.bits : 2);
    in.cursor().store(ppBitStream, pBitOffset);
    return moxStsOk;
  }
  if (any_null(ppDstCoeffs, coeffToken, tables.total_zeros, tables.run_before)) return moxStsNullPointer;
  return decode_chroma_dc<Dc2x2Block>(in, ppBitStream, pBitOffset, pNumCoeff, ppDstCoeffs, coeffToken, tables);
}

}  // namespace mox::px
