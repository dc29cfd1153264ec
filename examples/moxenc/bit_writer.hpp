/// Bits of a unit's payload, most significant first.
#pragma once

#include <bit>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace moxenc {

/// Bits of the Exp-Golomb code of a value from 0 on, and of one with a sign.
constexpr int ue_length(std::uint32_t value) { return 2 * std::bit_width(value + 1) - 1; }
constexpr std::uint32_t se_index(int value) {
  return value > 0 ? 2 * static_cast<std::uint32_t>(value) - 1 : 2 * static_cast<std::uint32_t>(-value);
}
constexpr int se_length(int value) { return ue_length(se_index(value)); }
static_assert(ue_length(0) == 1 && ue_length(2) == 3 && ue_length(3) == 5 && se_length(-1) == 3);

class BitWriter {
 public:
  /// The low `length` bits of `bits`, which has no others; 0 to 32.
  void put(std::uint32_t bits, int length) {
    held_ = held_ << length | bits;
    count_ += length;
    if (count_ >= 32) flush(4);
  }
  void flag(bool value) { put(value, 1); }
  /// ue(v), of values below 65535, and se(v).
  void ue(std::uint32_t value) { put(value + 1, ue_length(value)); }
  void se(int value) { ue(se_index(value)); }
  /// Zeros up to the next whole byte.
  void align() {
    if (count_ % 8 != 0) put(0, 8 - count_ % 8);
  }
  /// A one, and zeros up to the next whole byte.
  void finish() {
    put(1, 1);
    align();
    flush(count_ / 8);
  }

  std::size_t size() const { return 8 * bytes_.size() + static_cast<std::size_t>(count_); }
  /// To be looked at once finished.
  const std::vector<std::uint8_t>& bytes() const { return bytes_; }
  void clear() { bytes_.clear(), count_ = 0; }

 private:
  void flush(int bytes) {
    for (; bytes > 0; --bytes) {
      count_ -= 8;
      bytes_.push_back(static_cast<std::uint8_t>(held_ >> count_));
    }
  }

  std::vector<std::uint8_t> bytes_;
  std::uint64_t held_ = 0;  ///< the low `count_` bits are not yet in `bytes_`, at most 31
  int count_ = 0;
};

}  // namespace moxenc
