/// Writer of DV video segments: blocks as lists of codes, and what a decoder has to make of them.
#pragma once

#include <algorithm>
#include <array>
#include <numeric>
#include <sstream>
#include <string>
#include <vector>

#include "moxvc/types.h"
#include "support/bits.hpp"

namespace mox::oracle {

/// [run]: the codes of levels 0, 1 and so on without their signs; level 0 is a run alone. As in the standards' tables.
inline constexpr const char* kDvCodeRows[] = {
    "11111001110 00 010 1000 1001 10110 10111 110010 110011 1101101 1101110 1101111 11101010 11101011 11101100 "
    "11101101 11101110 11101111 111101011 111101100 111101101 111101110 111101111",
    "11111001111 0111 10101 1101011 1101100 11100111 11101000 11101001 111101010 1111100100 1111100101 "
    "1111100110 11111010011 11111010100 11111010101 111110111101 111110111110 111110111111",
    "111110101100 10100 1101010 11100110 111101000 111101001 1111100011 111110111000 111110111001 111110111010 "
    "111110111011 111110111100",
    "111110101101 110000 11100100 111100110 1111100001 1111100010 11111010010 111110110111",
    "111110101110 110001 11100101 111100111 11111010001 111110110110",
    "111110101111 1101000 111100100 1111100000",
    "- 1101001 111100101 11111010000",
    "- 11100000 111110110000 111110110100",
    "- 11100001 111110110001 111110110101",
    "- 11100010 111110110010",
    "- 11100011 111110110011",
    "- 111100000",
    "- 111100001",
    "- 111100010",
    "- 111100011",
};

struct DvTestCode {
  std::string bits;
  int advance, level;
};
inline const DvTestCode kDvEndOfBlock{"0110", 64, 0};

/// All codes but the end of a block.
inline const std::vector<DvTestCode>& dv_test_codes() {
  static const auto codes = [] {
    std::vector<DvTestCode> list;
    for (int run = 0; run < 15; ++run) {
      std::istringstream row(kDvCodeRows[run]);
      std::string code;
      for (int level = 0; row >> code; ++level) {
        if (code == "-") continue;
        if (level == 0) list.push_back({code, run + 1, 0});
        for (int sign = 0; sign < 2 && level > 0; ++sign) {
          list.push_back({code + (sign ? "1" : "0"), run + 1, sign ? -level : level});
        }
      }
    }
    for (int run = 0; run < 64; ++run) list.push_back({"1111110" + test::bits_of(run, 6), run + 1, 0});
    for (int i = 0; i < 512; ++i) list.push_back({"1111111" + test::bits_of(i, 9), 1, i % 2 ? -(i / 2) : i / 2});
    return list;
  }();
  return codes;
}

struct DvTestBlock {
  int dc = 0, mode = 0, block_class = 0;
  std::vector<DvTestCode> codes;  ///< the last one ends the block

  std::string bits() const {
    std::string all = test::bits_of(static_cast<unsigned>(dc) & 511, 9) + test::bits_of(mode, 1);
    all += test::bits_of(block_class, 2);
    for (const auto& code : codes) all += code.bits;
    return all;
  }
};

struct DvTestLayout {
  std::vector<int> offsets, bits;
  bool scan_by_mode;
};
inline const DvTestLayout kDvTestSix{{4, 18, 32, 46, 60, 70}, {112, 112, 112, 112, 80, 80}, true};
inline const DvTestLayout kDvTestEight{{4, 14, 24, 34, 44, 54, 64, 72}, {80, 80, 80, 80, 80, 80, 64, 64}, false};

/// A segment in bits, and how many of each block's bits it has room for.
class DvTestSegment {
 public:
  /// Unused bits keep what `filling` has, which is one character for each bit of 408 bytes.
  DvTestSegment(const DvTestLayout& layout, const std::vector<DvTestBlock>& blocks, const std::array<int, 5>& qno,
                std::string filling)
      : layout_(layout), blocks_(blocks), qno_(qno), stream_(std::move(filling)), placed_(blocks.size()) {
    const int count = static_cast<int>(layout.bits.size());
    std::vector<Part> all_needs, all_spares;
    for (int m = 0; m < 5; ++m) {
      put(640 * m + 28, test::bits_of(qno[m], 4));
      std::vector<Part> needs, spares;
      for (int b = 0; b < count; ++b) {
        const int i = m * count + b, at = 640 * m + 8 * layout.offsets[b], room = layout.bits[b];
        const std::string bits = blocks[i].bits();
        const int length = static_cast<int>(bits.size());
        placed_[i] = std::min(length, room);
        put(at, bits.substr(0, placed_[i]));
        if (length > room) needs.push_back({i, 0, 0});
        if (length < room) spares.push_back({i, at + length, at + room});
      }
      pour(needs, spares);
      all_needs.insert(all_needs.end(), needs.begin(), needs.end());
      all_spares.insert(all_spares.end(), spares.begin(), spares.end());
    }
    pour(all_needs, all_spares);
  }

  std::vector<Mox8u> bytes() const {
    std::vector<Mox8u> all(stream_.size() / 8);
    for (std::size_t i = 0; i < all.size(); ++i) all[i] = static_cast<Mox8u>(test::value_of(stream_.substr(8 * i, 8)));
    return all;
  }
  /// The coefficients and the parameter word of block i, from its own bits alone if `limit` is not 0.
  Mox32u expect(int i, Mox16s* coefficients, int limit = 0) const {
    const DvTestBlock& block = blocks_[i];
    const int count = static_cast<int>(layout_.bits.size());
    const int room = limit ? layout_.bits[i % count] : placed_[i];
    int used = 12, position = 0;
    bool ended = false;
    coefficients[0] = static_cast<Mox16s>(128 * block.dc);
    for (const auto& code : block.codes) {
      used += static_cast<int>(code.bits.size());
      if (used > room) break;
      ended = code.bits == kDvEndOfBlock.bits;
      if (position + code.advance >= (limit ? limit : 64)) break;
      position += code.advance;
      coefficients[scan(layout_.scan_by_mode && block.mode, position)] = static_cast<Mox16s>(64 * code.level);
    }
    return static_cast<Mox32u>(ended | block.block_class << 4 | block.mode << 6 | position << 8 |
                               qno_[i / count] << 16);
  }
  int placed(int i) const { return placed_[i]; }

  /// Raster position of a scan position: zigzag by diagonals, or the list of the two fields.
  static int scan(bool two_fields, int position) {
    constexpr Mox8u kTwoFields[32] = {0,  1, 8, 2,  9,  16, 24, 17, 10, 3, 4,  11, 18, 25, 26, 19,
                                      12, 5, 6, 13, 20, 27, 28, 21, 14, 7, 15, 22, 29, 30, 23, 31};
    if (two_fields) return kTwoFields[position / 2] + position % 2 * 32;
    static const auto zigzag = [] {  // by diagonals, every other one upwards
      std::array<int, 64> order;
      const auto key = [](int i) { return (i % 8 + i / 8) * 8 + ((i % 8 + i / 8) % 2 ? i / 8 : i % 8); };
      std::iota(order.begin(), order.end(), 0);
      std::sort(order.begin(), order.end(), [=](int a, int b) { return key(a) < key(b); });
      return order;
    }();
    return zigzag[position];
  }

 private:
  /// A block that needs room, or free bits from `at` to `end`.
  struct Part {
    int block, at, end;
  };
  void put(int at, const std::string& bits) { stream_.replace(at, bits.size(), bits); }
  /// Puts what is left of the needs, one after the other, into the free bits; both lists keep what then remains.
  void pour(std::vector<Part>& needs, std::vector<Part>& spares) {
    while (!needs.empty() && !spares.empty()) {
      const int i = needs.front().block;
      Part& spare = spares.front();
      const std::string rest = blocks_[i].bits().substr(placed_[i]);
      const int count = std::min(static_cast<int>(rest.size()), spare.end - spare.at);
      put(spare.at, rest.substr(0, count));
      placed_[i] += count, spare.at += count;
      if (count == static_cast<int>(rest.size())) needs.erase(needs.begin());
      if (spare.at == spare.end) spares.erase(spares.begin());
    }
  }

  const DvTestLayout& layout_;
  std::vector<DvTestBlock> blocks_;
  std::array<int, 5> qno_;
  std::string stream_;
  std::vector<int> placed_;
};

}  // namespace mox::oracle
