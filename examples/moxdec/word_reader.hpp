/// Reading of elements on the library's word cursor, for MPEG-1/2 and AVS.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "moxdec/codec.hpp"
#include "moxdec/error.hpp"
#include "moxvc.h"

namespace moxdec {

/// The library reads without knowing the end of the data: the words lie before `kPaddingWords` words of zeros, where no
/// code begins, and each read is tested afterwards.
class WordReader {
 public:
  /// More than one block can take: 64 coefficients of at most 28 bits, and the DC.
  static constexpr std::size_t kPaddingWords = 64;

  WordReader(const Mox32u* words, std::size_t bits) : first_(words), word_(words), bits_(bits) {}

  /// The next `count` bits, 1 to 32, of which the cursor stays in front.
  Mox32u peek(int count) const {
    const std::uint64_t two_words = std::uint64_t{word_[0]} << 32 | word_[1];
    return static_cast<Mox32u>(two_words << (31 - offset_) >> (64 - count));
  }
  Mox32u bits(int count) {
    const Mox32u value = peek(count);
    offset_ -= count;
    if (offset_ < 0) offset_ += 32, ++word_;
    expect_inside();
    return value;
  }
  int number(int count) { return static_cast<int>(bits(count)); }
  bool flag() { return bits(1) != 0; }
  void skip(int count) {
    for (; count > 32; count -= 32) bits(32);
    if (count > 0) bits(count);
  }
  void marker() { require(flag(), "a marker bit is 0"); }

  void expect_inside() const { require(position() <= bits_, "the data end too early"); }

  /// The cursor, for the library's functions. Call expect_inside() behind them.
  const Mox32u** word() { return &word_; }
  Mox32s* offset() { return &offset_; }

 private:
  std::size_t position() const {
    return static_cast<std::size_t>(word_ - first_) * 32 + static_cast<std::size_t>(31 - offset_);
  }

  const Mox32u* first_;
  const Mox32u* word_;
  std::size_t bits_;
  Mox32s offset_ = 31;
};

/// A payload in words whose first bit is bit 31.
class Payload {
 public:
  void assign(Bytes payload);
  WordReader reader() const { return {words_.data(), bits_}; }

 private:
  std::vector<Mox32u> words_;
  std::size_t bits_ = 0;
};

}  // namespace moxdec
