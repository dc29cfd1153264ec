/// Reading of header elements on the library's word cursor.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>

#include "moxdec/error.hpp"
#include "moxvc.h"

namespace moxdec::h264 {

/// The library reads without knowing the end of the data: the words lie before `kPaddingWords` words of ones, and each
/// read is tested afterwards. A read that ends in a word behind the last one throws; one that ends between the last bit
/// and the end of its word is found by the next more_data() or expect_inside().
class BitReader {
 public:
  /// More than one residual block can take behind the end: 16 levels of at most 7 bits, 16 runs of at most 11 bits.
  static constexpr std::size_t kPaddingWords = 64;

  BitReader(const Mox32u* words, std::size_t bits)
      : first_(words), word_(words), last_(words + bits / 32), bits_(bits) {}

  /// The next `count` bits, 1 to 32.
  Mox32u bits(int count) {
    const Mox32u value = next_word() >> (32 - count);
    advance(count);
    return value;
  }
  bool flag() { return bits(1) != 0; }
  /// The same without going on.
  bool next_flag() const { return *word_ >> offset_ & 1; }
  void skip(std::size_t count) {
    for (; count > 32; count -= 32) bits(32);
    if (count > 0) bits(static_cast<int>(count));
  }

  Mox32u ue() { return static_cast<Mox32u>(exp_golomb(0)); }
  Mox32s se() { return exp_golomb(1); }
  /// Values with their legal range; `name` says what is wrong outside of it.
  int ue(Mox32u high, const char* name) {
    const Mox32u value = ue();
    if (value > high) out_of_range(name);
    return static_cast<int>(value);
  }
  int se(int low, int high, const char* name) {
    const int value = se();
    if (value < low || value > high) out_of_range(name);
    return value;
  }

  /// Moves to the next multiple of 8 bits.
  void align() { skip((8 - position() % 8) % 8); }

  std::size_t position() const {
    return static_cast<std::size_t>(word_ - first_) * 32 + static_cast<std::size_t>(31 - offset_);
  }
  bool more_data() const {
    expect_inside();
    return position() < bits_;
  }
  void expect_inside() const {
    if (position() > bits_) [[unlikely]]
      overrun();
  }
  /// The cheap form: finds what has gone past the last word.
  void expect_no_overrun() const {
    if (word_ > last_) [[unlikely]]
      overrun();
  }

  /// The cursor, for the library's functions. Call expect_no_overrun() behind them.
  const Mox32u** word() { return &word_; }
  Mox32s* offset() { return &offset_; }

 private:
  Mox32u next_word() const {
    const std::uint64_t two_words = std::uint64_t{word_[0]} << 32 | word_[1];
    return static_cast<Mox32u>(two_words << (31 - offset_) >> 32);
  }
  void advance(int count) {
    offset_ -= count;
    if (offset_ < 0) offset_ += 32, ++word_;
    expect_no_overrun();
  }
  /// Codes of up to 31 bits, which are nearly all, lie in the next word: half of their bits, rounded down, are zeros in
  /// front of the value, one added.
  Mox32s exp_golomb(int is_signed) {
    const Mox32u next = next_word();
    const int zeros = std::countl_zero(next);
    if (zeros > 15) return long_exp_golomb(is_signed);
    const auto code = static_cast<Mox32s>(next >> (31 - 2 * zeros));
    advance(2 * zeros + 1);
    if (!is_signed) return code - 1;
    return code % 2 == 0 ? code / 2 : -(code / 2);
  }
  Mox32s long_exp_golomb(int is_signed) {
    Mox32s value = 0;
    if (moxiDecodeExpGolombOne_H264_1u32s(&word_, &offset_, &value, is_signed) != moxStsOk) [[unlikely]]
      too_long();
    expect_no_overrun();
    return value;
  }
  [[noreturn]] static void overrun();
  [[noreturn]] static void too_long();
  [[noreturn]] static void out_of_range(const char* name);

  const Mox32u* first_;
  const Mox32u* word_;
  const Mox32u* last_;  // the word of the first bit behind the data
  std::size_t bits_;
  Mox32s offset_ = 31;
};

}  // namespace moxdec::h264
