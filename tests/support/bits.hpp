/// Bitstreams as text, one character for each bit, and their words in guarded memory.
#pragma once

#include <bitset>
#include <cstdint>
#include <string>
#include <string_view>

#include "moxvc/types.h"
#include "support/guarded.hpp"
#include "support/random.hpp"

namespace mox::test {

/// The low `length` bits of a value.
inline std::string bits_of(std::uint64_t value, int length) {
  return std::bitset<64>(value).to_string().substr(static_cast<std::size_t>(64 - length));
}
inline std::uint64_t value_of(std::string_view bits) {
  return bits.empty() ? 0 : std::bitset<64>(std::string(bits)).to_ullong();
}
/// A text without the blanks that set its codes apart.
inline std::string codes(std::string text) {
  std::erase(text, ' ');
  return text;
}
inline std::string random_bits(Random& random, int length) {
  std::string bits;
  for (int i = 0; i < length; ++i) bits += random.chance(0.5) ? '1' : '0';
  return bits;
}

/// A position in a stream of words that begins `31 - offset` bits into its first word, in front of them ones. Behind
/// the word of the last bit follow `padding` words of ones and then unreadable memory.
class WordStream {
 public:
  explicit WordStream(std::string bits, int start = 31, int padding = 1)
      : offset(start), start_(start), words_(((31 - start) + bits.size() + 31) / 32 + padding) {
    bits.insert(0, 31 - start, '1');
    bits.resize(32 * words_.size(), '1');
    for (std::size_t i = 0; i < words_.size(); ++i) words_[i] = static_cast<Mox32u>(value_of(bits.substr(32 * i, 32)));
    word = words_.data();
  }
  WordStream(const WordStream&) = delete;
  WordStream& operator=(const WordStream&) = delete;

  /// Bits between the start and the position; -1 if the offset is not 0 to 31.
  int consumed() const {
    if (offset < 0 || offset > 31) return -1;
    return static_cast<int>(word - words_.data()) * 32 + start_ - offset;
  }

  const Mox32u* word;
  Mox32s offset;

 private:
  int start_;
  Guarded<Mox32u> words_;
};

}  // namespace mox::test
