/// H.263 blocks as text, one character for each bit: a slow encoder and a slow decoder over plain lists of codes.
#pragma once

#include <algorithm>
#include <array>
#include <map>
#include <sstream>
#include <string>

#include "frame/scan_tables.hpp"
#include "h263/coefficient_tables.hpp"
#include "support/bits.hpp"

namespace mox::test::oracle {

using Block = std::array<Mox16s, 64>;
/// Last flag, run, level.
using Event = std::array<int, 3>;
using CodeBook = std::map<std::string, Event>;

/// Codes with their sign bits.
inline CodeBook code_book(const LastRunLevelText& text) {
  CodeBook book;
  for (int last : {0, 1}) {
    std::istringstream rows{std::string(text.rows[last])};
    std::string row, code;
    for (int run = 0; std::getline(rows, row, ','); ++run) {
      std::istringstream codes(row);
      for (int level = 1; codes >> code; ++level) {
        book[code + '0'] = {last, run, level};
        book[code + '1'] = {last, run, -level};
      }
    }
  }
  return book;
}
inline const CodeBook kBooks[2] = {code_book(kTcoefRows), code_book(kAdvancedTcoefRows)};

inline std::string escape(const Event& event) {
  const auto [last, run, level] = event;
  const std::string head = "0000011" + bits_of(last, 1) + bits_of(run, 6);
  if (std::abs(level) < 128) return head + bits_of(level, 8);
  return head + "10000000" + bits_of(level % 32 + 32, 5) + bits_of((level + 1024) / 32 - 32, 6);
}

/// How a block is coded, and what is made of its levels.
struct Coding {
  bool intra, advanced, modified;
  int scan;
  int qp = 0;  ///< 0: levels stay
  int cbp = 1;

  bool has_dc() const { return intra && !advanced && qp != 0; }
  bool from_one() const { return intra && !advanced; }
  int position(int index) const {
    if (qp != 0 && !advanced) return ownvc_Zigzag[index];
    return scan == 0   ? ownvc_Zigzag[index]
           : scan == 1 ? ownvc_AltScanV[index]
           : scan == 2 ? ownvc_AltScanH[index]
                       : index;
  }
  Mox16s coefficient(int level) const {
    if (qp == 0) return static_cast<Mox16s>(level);
    if (advanced) return static_cast<Mox16s>(2 * level * qp);
    const int value = (2 * level + (level < 0 ? -1 : 1)) * qp - (qp % 2 == 1 ? 0 : level < 0 ? -1 : 1);
    return static_cast<Mox16s>(modified ? value : std::min(std::max(value, -2048), 2047));
  }
};

struct Decoded {
  bool good = false;
  Block block{};
  int consumed = 0, last = -1;
};

/// Reads into `block`. The text must be longer than any block.
inline Decoded decode(const Coding& coding, const std::string& text, const Block& block) {
  Decoded out{false, block, 0, -1};
  const auto bits = [&](int n) {
    return out.consumed += n, static_cast<int>(value_of(text.substr(out.consumed - n, n)));
  };
  const auto signed_bits = [&](int n) { return (bits(n) ^ 1 << (n - 1)) - (1 << (n - 1)); };
  if (coding.has_dc()) {
    const int dc = bits(8);
    if (dc % 128 == 0) return out;
    out.block[0] = static_cast<Mox16s>(dc == 255 ? 1024 : 8 * dc);
    out.last = 0;
    if (coding.cbp == 0) return out.good = true, out;
  }
  if (coding.from_one()) out.last = 0;
  for (int i = out.last + 1; i < 64; ++i) out.block[i] = 0;
  const CodeBook& book = kBooks[coding.intra && coding.advanced];
  while (!out.good) {
    Event event{};
    int length = 0;
    for (int n = 3; n <= 13 && length == 0; ++n) {
      const auto found = book.find(text.substr(out.consumed, n));
      if (found != book.end()) event = found->second, length = n;
    }
    out.consumed += length;
    if (length == 0 && text.compare(out.consumed, 7, "0000011") == 0) {
      bits(7);
      event = {bits(1), bits(6), signed_bits(8)};
      if (event[2] == -128) {
        const int low = coding.modified ? bits(5) : 0;
        event[2] = coding.modified ? 32 * signed_bits(6) + low : 0;
      }
    }
    if (event[2] == 0 || out.last + event[1] + 1 > 63) break;
    out.last += event[1] + 1;
    out.block[coding.position(out.last)] = coding.coefficient(event[2]);
    out.good = event[0] == 1;
  }
  return out;
}

/// The text of the first `count` levels other than 0, all if there are fewer.
inline std::string encode(const Coding& coding, const Block& block, int count) {
  std::string text;
  int run = 0;
  for (int i = coding.from_one(); i < 64 && count > 0; ++i, ++run) {
    Event event{count == 1, run, block[coding.position(i)]};
    if (event[2] == 0) continue;
    std::string bits = escape(event);
    for (const auto& [code, meaning] : kBooks[coding.intra && coding.advanced]) {
      if (meaning == event) bits = code;
    }
    text += bits;
    run = -1;
    --count;
  }
  return text;
}

}  // namespace mox::test::oracle
