/// Portable kernel of Exp-Golomb elements.
#pragma once

#include "frame/arithmetic.hpp"
#include "frame/word_window.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// A code has as many bits behind its first one as zeros in front of it.
inline constexpr Mox32s kLongestExpGolomb = 32;

/// The element of a code, which is the number of the digits from its first one on.
constexpr long long exp_golomb_element(Mox32u code, bool isSigned) {
  const long long half = code >> 1;
  return !isSigned ? code - 1ll : code & 1 ? -half : half;
}

/// Reads a code that may exceed the next 32 bits.
template <class Value>
MoxStatus decode_long_exp_golomb(const Mox32u** ppBitStream, Mox32s* pBitOffset, Value* pDst, bool isSigned) {
  MoxWordCursor at{*ppBitStream, *pBitOffset};
  const Mox32s length = read_zeros(at, kLongestExpGolomb);
  if (length > kLongestExpGolomb) return moxStsBadBitstream;
  const Mox32u bits = get_bits(at, length);
  at.store(ppBitStream, pBitOffset);
  // The longest codes would need a 33rd bit; they are read and stand for 0.
  *pDst = wrap_to<Value>(exp_golomb_element(length == kLongestExpGolomb ? 1 : (1u << length) + bits, isSigned));
  return moxStsOk;
}

template <class Value>
MoxStatus decode_exp_golomb(const Mox32u** ppBitStream, Mox32s* pBitOffset, Value* pDst, bool isSigned) {
  const MoxWordCursor at{*ppBitStream, *pBitOffset};
  const WordWindow in = WordWindow::of_two_words(at);
  const Mox32s length = 2 * in.zeros() + 1;
  if (length > 32) [[unlikely]]
    return decode_long_exp_golomb(ppBitStream, pBitOffset, pDst, isSigned);
  *pDst = wrap_to<Value>(exp_golomb_element(in.peek(length), isSigned));
  const Mox32s offset = at.offset - length;  // below 0 in the next word
  MoxWordCursor{at.word + (offset < 0), offset & 31}.store(ppBitStream, pBitOffset);
  return moxStsOk;
}

}  // namespace mox::px
