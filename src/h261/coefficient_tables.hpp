/// Codes of H.261 coefficients: their one list, and the tables to read and to write them that follow from it.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>

#include "frame/scan_px.hpp"
#include "moxvc/types.h"

namespace mox {

/// [run]: codes of the levels 1, 2, 3 and so on, without the sign bit that ends them.
inline constexpr std::array<std::string_view, 27> kCoefficientCodes = {
    "11 0100 00101 0000110 00100110 00100001 0000001010 000000011101 000000011000 000000010011 000000010000 "
    "0000000011010 0000000011001 0000000011000 0000000010111",
    "011 000110 00100101 0000001100 000000011011 0000000010110 0000000010101",
    "0101 0000100 0000001011 000000010100 0000000010100",
    "00111 00100100 000000011100 0000000010011",
    "00110 0000001111 000000010010",
    "000111 0000001001 0000000010010",
    "000101 000000011110",
    "000100 000000010101",
    "0000111 000000010001",
    "0000101 0000000010001",
    "00100111 0000000010000",
    "00100011",
    "00100010",
    "00100000",
    "0000001110",
    "0000001101",
    "0000001000",
    "000000011111",
    "000000011010",
    "000000011001",
    "000000010111",
    "000000010110",
    "0000000011111",
    "0000000011110",
    "0000000011101",
    "0000000011100",
    "0000000011011"};

/// A code without its sign bit, right-aligned; a length of 0 says that there is none.
struct CoefficientCode {
  Mox16u bits = 0;
  Mox8u length = 0;

  constexpr CoefficientCode() = default;
  constexpr explicit CoefficientCode(std::string_view text) : length(static_cast<Mox8u>(text.size())) {
    for (char bit : text) bits = static_cast<Mox16u>(2 * bits + (bit == '1'));
  }
};

inline constexpr CoefficientCode kEndOfBlockCode("10");
/// Behind it 6 bits of the run and 8 bits of the level.
inline constexpr CoefficientCode kEscapeCode("000001");

/// Calls visit(run, level, code) for each code with a run and a level.
template <class Visit>
constexpr void for_each_coefficient_code(Visit visit) {
  for (int run = 0; run < static_cast<int>(kCoefficientCodes.size()); ++run) {
    std::string_view left = kCoefficientCodes[run];
    for (int level = 1; !left.empty(); ++level) {
      const auto end = std::min(left.find(' '), left.size());
      visit(run, level, CoefficientCode(left.substr(0, end)));
      left.remove_prefix(std::min(end + 1, left.size()));
    }
  }
}

/// What a code says. `steps`, the run plus 1, is what the scan index gains; `length` counts the sign bit.
struct CoefficientRow {
  Mox8u steps, magnitude, length;
  friend constexpr bool operator==(const CoefficientRow&, const CoefficientRow&) = default;
};
/// The end of the block carries the index to 127 or above, where no run of a code gets it.
inline constexpr Mox8u kEndOfBlockSteps = 128;
inline constexpr Mox32s kEndOfBlockIndex = 127;

/// Bits that tell any code, the sign bit not among them; values below the limit are no code.
inline constexpr int kCodeBits = 13;
inline constexpr int kNoCodeLimit = 16;

/// Rows by the next kCodeBits bits.
struct CoefficientRows {
  std::array<CoefficientRow, 1 << kCodeBits> rows{};
  bool prefixFree = true;

  constexpr CoefficientRows() {
    for_each_coefficient_code([this](int run, int level, CoefficientCode code) {
      enter(code, {static_cast<Mox8u>(run + 1), static_cast<Mox8u>(level), static_cast<Mox8u>(code.length + 1)});
    });
    enter(kEndOfBlockCode, {kEndOfBlockSteps, 0, 2});
    enter(kEscapeCode, {0, 0, 6});
  }
  constexpr bool complete() const {
    for (int i = 0; i < (1 << kCodeBits); ++i) {
      if ((rows[i].length == 0) != (i < kNoCodeLimit)) return false;
    }
    return true;
  }
  /// N rows from bits `first` << shift on, each for all values of the `shift` lower bits.
  template <std::size_t N>
  constexpr std::array<CoefficientRow, N> table(int first, int shift) const {
    std::array<CoefficientRow, N> table{};
    for (std::size_t i = 0; i < N; ++i) table[i] = rows[(first + i) << shift];
    return table;
  }

 private:
  constexpr void enter(CoefficientCode code, CoefficientRow row) {
    const int spare = kCodeBits - code.length;
    for (int i = code.bits << spare; i < (code.bits + 1) << spare; ++i) {
      prefixFree = prefixFree && rows[i].length == 0;
      rows[i] = row;
    }
  }
};
inline constexpr CoefficientRows kCoefficientRows;
static_assert(kCoefficientRows.prefixFree && kCoefficientRows.complete());

/// By the first 5, 8 and 13 of 14 bits v: v from 2560 on, from 512 on, and from 32 on but for the escape, which fills
/// 256 to 511. Below 32 there is no code.
inline constexpr auto h261_coefTab0 = kCoefficientRows.table<27>(5, 8);
inline constexpr auto h261_coefTab1 = kCoefficientRows.table<32>(8, 5);
inline constexpr auto h261_coefTab2 = kCoefficientRows.table<112>(16, 0);

constexpr bool is_escape(Mox32u v) { return (v & ~0xFFu) == 0x100; }
/// The row of 14 bits that begin with a code other than the escape.
constexpr const CoefficientRow& coefficient_row(Mox32u v) {
  return v >= 2560  ? h261_coefTab0[(v >> 9) - 5]
         : v >= 512 ? h261_coefTab1[(v >> 6) - 8]
                    : h261_coefTab2[(v >> 1) - 16];
}
static_assert([] {
  for (Mox32u v = 32; v < 1 << 14; ++v) {
    const CoefficientRow& row = kCoefficientRows.rows[v >> 1];
    if (is_escape(v) ? row.steps != 0 : coefficient_row(v) != row) return false;
  }
  return true;
}());

/// [run][level], level 0 without a code.
inline constexpr int kMostCodedRun = 26, kMostCodedLevel = 15;
inline constexpr auto h261_VLCTab = [] {
  std::array<std::array<CoefficientCode, kMostCodedLevel + 1>, kMostCodedRun + 1> table{};
  for_each_coefficient_code([&](int run, int level, CoefficientCode code) { table[run][level] = code; });
  return table;
}();

/// -1: no scan, else zigzag.
constexpr const ScanTable& coefficient_scan(Mox32s scan) { return scan == -1 ? px::kNoScan : ownvc_Zigzag; }

}  // namespace mox
