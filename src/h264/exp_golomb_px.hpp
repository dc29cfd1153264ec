/// Portable kernel of Exp-Golomb elements.
#pragma once

#include "frame/arithmetic.hpp"
#include "frame/word_cursor.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// A code has as many bits behind its first one as zeros in front of it.
inline constexpr Mox32s kLongestExpGolomb = 32;

template <class Value>
MoxStatus decode_exp_golomb(const Mox32u** ppBitStream, Mox32s* pBitOffset, Value* pDst, bool isSigned) {
  MoxWordCursor at{*ppBitStream, *pBitOffset};
  const Mox32s length = read_zeros(at, kLongestExpGolomb);
  if (length > kLongestExpGolomb) return moxStsBadBitstream;
  const Mox32u bits = get_bits(at, length);
  at.store(ppBitStream, pBitOffset);
  // The longest codes would need a 33rd bit; they are read and stand for 0.
  const long long k = length == kLongestExpGolomb ? 0 : (1ll << length) - 1 + bits;
  *pDst = wrap_to<Value>(!isSigned ? k : k % 2 ? (k + 1) / 2 : -(k / 2));
  return moxStsOk;
}

}  // namespace mox::px
