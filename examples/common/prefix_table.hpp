/// Decoding of prefix codes with one look-up: for the short tables of headers and vectors. (Tables of coefficients are
/// the library's.)
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "common/vlc_description.hpp"

namespace example {

struct PrefixEntry {
  std::int16_t value = 0;
  std::uint8_t length = 0;  // 0: no code begins with these bits
};

/// An entry for each value of `Width` bits, the length of the longest code.
template <int Width>
class PrefixTable {
 public:
  static constexpr int kWidth = Width;

  /// Code i of the text stands for value(i).
  template <class Value>
  constexpr PrefixTable(std::string_view text, Value value) {
    const VlcCodes codes(text);
    for (int i = 0; i < codes.count; ++i) {
      const int free_bits = Width - codes[i].length;
      const std::size_t first = std::size_t{codes[i].bits} << free_bits;
      for (std::size_t at = first; at < first + (std::size_t{1} << free_bits); ++at) {
        entries_[at] = {static_cast<std::int16_t>(value(i)), static_cast<std::uint8_t>(codes[i].length)};
      }
    }
  }
  constexpr const PrefixEntry& operator[](std::uint32_t bits) const { return entries_[bits]; }

 private:
  std::array<PrefixEntry, std::size_t{1} << Width> entries_{};
};

/// Code i stands for i.
inline constexpr auto kCodeIndex = [](int i) { return i; };

}  // namespace example
