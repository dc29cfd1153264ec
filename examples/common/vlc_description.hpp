/// Code descriptions for the library's table builders, made at compile time from codes written as text.
///
/// A description is an array of 32-bit words: one that is not used, the number of table levels, the width of each
/// level, then for code length 1, 2, 3 and so on the number of codes of that length and a pair (code, value) for each,
/// then -1.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <string_view>

namespace example {

/// A code of `length` bits, right-aligned.
struct VlcCode {
  std::uint32_t bits;
  int length;
};

/// The codes of a text such as "1 011 010", in its order. At most 72 codes of at most 16 bits.
struct VlcCodes {
  std::array<VlcCode, 72> codes{};
  int count = 0;

  constexpr explicit VlcCodes(std::string_view text) {
    while (!text.empty()) {
      const auto end = std::min(text.find(' '), text.size());
      if (end > 0) codes[count++] = parse(text.substr(0, end));
      text.remove_prefix(std::min(end + 1, text.size()));
    }
  }
  constexpr const VlcCode& operator[](int i) const { return codes[i]; }
  constexpr const VlcCode* begin() const { return codes.data(); }
  constexpr const VlcCode* end() const { return codes.data() + count; }

  constexpr int longest() const {
    int length = 0;
    for (const VlcCode& code : *this) length = std::max(length, code.length);
    return length;
  }
  /// How many of the 65536 values of 16 bits begin with no code: 0 for a complete table.
  constexpr int unused() const {
    int left = 1 << 16;
    for (const VlcCode& code : *this) left -= 1 << (16 - code.length);
    return left;
  }
  /// No code is the start of another one.
  constexpr bool prefix_free() const {
    for (const VlcCode& a : *this) {
      for (const VlcCode& b : *this) {
        if (&a != &b && a.length <= b.length && b.bits >> (b.length - a.length) == a.bits) return false;
      }
    }
    return true;
  }

 private:
  static constexpr VlcCode parse(std::string_view digits) {
    VlcCode code{0, static_cast<int>(digits.size())};
    for (char digit : digits) code.bits = code.bits << 1 | (digit == '1');
    return code;
  }
};

/// A description; `Words` is room enough for it.
template <int Words>
struct VlcDescription {
  std::array<std::int32_t, Words> words{};
  int size = 0;

  constexpr const std::int32_t* data() const { return words.data(); }
  constexpr void add(std::int32_t word) { words[size++] = word; }
};

/// The description of a table whose levels are all `width` bits wide. Code i stands for value(i).
template <int Words, class Value>
constexpr VlcDescription<Words> describe(std::string_view text, int width, Value value) {
  const VlcCodes codes(text);
  const int longest = codes.longest();
  VlcDescription<Words> description;
  description.add(0);
  const int levels = (longest + width - 1) / width;
  description.add(levels);
  for (int level = 0; level < levels; ++level) description.add(width);
  for (int length = 1; length <= longest; ++length) {
    description.add(static_cast<int>(
        std::count_if(codes.begin(), codes.end(), [=](const VlcCode& code) { return code.length == length; })));
    for (int i = 0; i < codes.count; ++i) {
      if (codes[i].length != length) continue;
      description.add(static_cast<std::int32_t>(codes[i].bits));
      description.add(value(i));
    }
  }
  description.add(-1);
  return description;
}

}  // namespace example
