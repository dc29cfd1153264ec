/// Reading of elements on the library's byte cursor, for H.261, H.263 and MPEG-4.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "common/prefix_table.hpp"
#include "moxdec/codec.hpp"
#include "moxdec/error.hpp"
#include "moxvc.h"

namespace moxdec {

/// A copy of a stretch of the stream, with zeros behind it. The library reads without knowing the end of the data: more
/// than a block can take is there to be read, and each read is tested afterwards.
class PaddedBytes {
 public:
  /// 64 coefficients of at most 30 bits, and a DC.
  static constexpr std::size_t kPadding = 256;

  void assign(Bytes bytes) {
    memory_.assign(bytes.size() + kPadding, 0);
    if (!bytes.empty()) std::memcpy(memory_.data(), bytes.data(), bytes.size());
    size_ = bytes.size();
  }
  const Mox8u* data() const { return memory_.data(); }
  std::size_t size() const { return size_; }

 private:
  std::vector<Mox8u> memory_;
  std::size_t size_ = 0;
};

/// Valid as long as the bytes. May be copied: a copy is a place to come back to.
class ByteReader {
 public:
  explicit ByteReader(const PaddedBytes& bytes) : first_(bytes.data()), byte_(first_), bits_(8 * bytes.size()) {}

  /// The next `count` bits, 0 to 32; zeros behind the end.
  Mox32u peek(int count) const {
    std::uint64_t eight_bytes;
    std::memcpy(&eight_bytes, byte_, sizeof eight_bytes);
    return static_cast<Mox32u>(__builtin_bswap64(eight_bytes) << offset_ >> 1 >> (63 - count));
  }
  Mox32u bits(int count) {
    const Mox32u value = peek(count);
    advance(count);
    return value;
  }
  int number(int count) { return static_cast<int>(bits(count)); }
  bool flag() { return bits(1) != 0; }
  void skip(int count) {
    for (; count > 32; count -= 32) advance(32);
    advance(count);
  }
  void marker() { require(flag(), "a marker bit is 0"); }

  /// The value of the next code; `message` says what is wrong if there is none.
  template <int Width>
  int read(const example::PrefixTable<Width>& table, const char* message) {
    const example::PrefixEntry entry = table[peek(Width)];
    require(entry.length > 0, message);
    advance(entry.length);
    return entry.value;
  }

  void align() { advance((8 - offset_) % 8); }
  bool is_aligned() const { return offset_ == 0; }
  /// Bits from the first one to the cursor, and from there to the end.
  std::size_t position() const {
    return 8 * static_cast<std::size_t>(byte_ - first_) + static_cast<std::size_t>(offset_);
  }
  std::size_t left() const { return bits_ - position(); }

  void expect_inside() const { require(position() <= bits_, "the data end too early"); }

  /// The cursor, for the library's functions. Call expect_inside() behind them.
  const Mox8u** byte() { return &byte_; }
  Mox32s* offset() { return &offset_; }

 private:
  void advance(int count) {
    byte_ += (offset_ + count) / 8;
    offset_ = (offset_ + count) % 8;
    expect_inside();
  }

  const Mox8u* first_;
  const Mox8u* byte_;
  std::size_t bits_;
  Mox32s offset_ = 0;
};

}  // namespace moxdec
