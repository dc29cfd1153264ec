/// MPEG-1/2 blocks as text, one character for each bit: a slow encoder and a slow decoder over plain lists of codes.
#pragma once

#include <array>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "common/mpeg12_vlc_tables.hpp"
#include "moxvc/types.h"
#include "support/bits.hpp"

namespace mox::test::oracle {

using Block = std::array<Mox16s, 64>;
using Scan = std::array<Mox32s, 64>;
using RunLevel = std::pair<int, int>;
template <class Value>
using CodeBook = std::map<std::string, Value>;

/// Codes with their sign bits.
inline CodeBook<RunLevel> code_book(const example::RunLevelText& text) {
  CodeBook<RunLevel> book;
  for (const auto& [code, run, level] : example::RunLevelCodes(text).entries) {
    const std::string bits = bits_of(code.bits, code.length);
    if (level == 0) {
      book[bits] = {run, 0};
    } else {
      book[bits + '0'] = {run, level};
      book[bits + '1'] = {run, -level};
    }
  }
  return book;
}
inline CodeBook<int> code_book(std::string_view text) {
  CodeBook<int> book;
  for (const example::VlcCode& code : example::VlcCodes(text)) {
    const int value = static_cast<int>(book.size());
    book[bits_of(code.bits, code.length)] = value;
  }
  return book;
}
template <class Value>
std::string code_of(const CodeBook<Value>& book, const Value& value) {
  for (const auto& [code, meaning] : book) {
    if (meaning == value) return code;
  }
  return "";
}

/// What a block is coded with.
struct Coding {
  bool intra, mpeg2;
  CodeBook<int> sizes;
  CodeBook<RunLevel> codes;
  Scan scan;
  int quantScale, shiftDC;
  std::array<Mox16s, 64> weights;
};

struct Decoded {
  bool good = false;
  Block block{};
  int consumed = 0, last = -1, pred = 0;
};

class Decoder {
 public:
  Decoder(const Coding& coding, std::string_view bits, int pred) : coding_(coding), bits_(bits) { out_.pred = pred; }

  Decoded run() {
    out_.good = (!coding_.intra || read_dc()) && read_coefficients();
    out_.consumed = at_;
    if (!out_.good || !coding_.mpeg2) return out_;
    long long sum = 0;
    for (Mox16s value : out_.block) sum += value;
    if (sum % 2 == 0) out_.block[63] = static_cast<Mox16s>(out_.block[63] + (out_.block[63] % 2 ? -1 : 1));
    if (!coding_.intra && out_.last == 0) out_.last = 1;
    return out_;
  }

 private:
  int bits(int n) {
    at_ += n;
    return static_cast<int>(value_of(bits_.substr(at_ - n, n)));
  }
  int signed_bits(int n) {
    const int value = bits(n);
    return value < 1 << (n - 1) ? value : value - (1 << n);
  }
  /// The next code's value; null with the position one bit in front of the longest code's end if there is none.
  template <class Value>
  const Value* code(const CodeBook<Value>& book) {
    std::size_t longest = 0;
    for (const auto& entry : book) longest = std::max(longest, entry.first.size());
    for (std::size_t length = 1; length <= longest; ++length) {
      const auto found = book.find(std::string(bits_.substr(at_, length)));
      if (found == book.end()) continue;
      at_ += static_cast<int>(length);
      return &found->second;
    }
    at_ += static_cast<int>(longest) - 1;
    return nullptr;
  }
  bool read_dc() {
    const int* size = code(coding_.sizes);
    if (!size) return false;
    int difference = *size ? bits(*size) : 0;
    if (*size && difference < 1 << (*size - 1)) difference -= (1 << *size) - 1;
    out_.pred = static_cast<Mox16s>(out_.pred + (coding_.mpeg2 ? 1 : 8) * difference);
    out_.block[0] = static_cast<Mox16s>(out_.pred * (coding_.mpeg2 ? 1 << coding_.shiftDC : 1));
    out_.last = 0;
    return true;
  }
  RunLevel read_escape() {
    const int run = bits(6);
    if (coding_.mpeg2) return {run, signed_bits(12)};
    const int level = signed_bits(8);
    if (level == 0) return {run, bits(8)};
    return {run, level == -128 ? bits(8) - 256 : level};
  }
  bool read_coefficients() {
    for (bool first = !coding_.intra;; first = false) {
      RunLevel next;
      if (first && bits_[at_] == '1') {
        next = {0, bits(2) == 2 ? 1 : -1};
      } else {
        const RunLevel* found = code(coding_.codes);
        if (!found) return false;
        if (found->first == example::kEndOfBlockRun) return true;
        next = found->first == example::kEscapeRun ? read_escape() : *found;
      }
      out_.last += next.first + 1;
      if (out_.last > 63) return false;
      const int position = coding_.scan[out_.last];
      out_.block[position] = dequantized(next.second, coding_.weights[position]);
    }
  }
  Mox16s dequantized(int level, int weight) const {
    const int half = coding_.intra || level == 0 ? 0 : level < 0 ? -1 : 1;
    const auto product = static_cast<Mox32s>((2ll * level + half) * coding_.quantScale * weight);
    if (coding_.mpeg2) return static_cast<Mox16s>(product / 32);
    int value = product / 16;
    if (value % 2 == 0 && value != 0) value += value > 0 ? -1 : 1;
    return static_cast<Mox16s>(std::min(std::max(value, -2048), 2047));
  }

  const Coding& coding_;
  std::string_view bits_;
  int at_ = 0;
  Decoded out_;
};

/// An escape in a form of the standard; MPEG-1 has a short form and two long ones.
inline std::string escape(bool mpeg2, int run, int level) {
  const std::string head = "000001" + bits_of(run, 6);
  if (mpeg2) return head + bits_of(level, 12);
  if (level > -128 && level < 128 && level != 0) return head + bits_of(level, 8);
  return head + (level < 0 ? "10000000" : "00000000") + bits_of(level, 8);
}

/// The text of a block with MPEG-2 escapes and without an end, of at most `count` coefficients but the intra DC.
inline std::string encode(const Coding& coding, const Block& block, int pred, long long count) {
  std::string bits;
  int run = 0, first = 0;
  if (coding.intra) {
    const int difference = block[0] - pred;
    int size = 0;
    while (std::abs(difference) >> size) ++size;
    bits = code_of(coding.sizes, size) + bits_of(difference - (difference < 0), size);
    first = 1;
  }
  for (int i = first; i < 64 && (count > 0 || i == 0); ++i) {
    const int level = block[coding.scan[i]];
    if (level == 0) {
      ++run;
      continue;
    }
    const std::string code = code_of(coding.codes, {run, level});
    bits += i == 0 && std::abs(level) == 1 ? (level > 0 ? "10" : "11") : code.empty() ? escape(true, run, level) : code;
    run = 0;
    --count;
  }
  return bits;
}

}  // namespace mox::test::oracle
