/// H.261 blocks as text, one character for each bit, and the loop filter by its nine weights.
#pragma once

#include <algorithm>
#include <cstdlib>

#include "common/h264_scaling_tables.hpp"
#include "oracle/mpeg12_block.hpp"

namespace mox::test::oracle {

/// Codes with their sign bits: the shorter ones of MPEG-1, up to 14 bits.
inline const CodeBook<RunLevel>& h261_codes() {
  static const auto& codes = *new CodeBook<RunLevel>([] {
    auto book = code_book(example::kDctCoefZeroCodes);
    std::erase_if(book, [](const auto& entry) { return entry.first.size() > 14 || entry.second.second == 0; });
    return book;
  }());
  return codes;
}
inline std::string h261_escape(int run, int level) { return "000001" + bits_of(run, 6) + bits_of(level & 255, 8); }

/// How a block is coded; qp 0 stands for levels that are not multiplied out.
struct H261Coding {
  bool intra, zigzag;
  int qp;
  int position(int index) const { return zigzag ? example::kZigzag8x8[index] : index; }
  Mox16s value(int level) const {
    const int size = qp * (2 * std::abs(level) + 1) - (qp % 2 == 0);
    return static_cast<Mox16s>(qp == 0 ? level : std::clamp(level < 0 ? -size : size, -2048, 2047));
  }
};

struct H261Decoded {
  bool good = false;
  Block block{};
  int legal = 0, last = -1;  ///< bits of legal codes, scan index
};

inline H261Decoded h261_decode(const H261Coding& coding, std::string_view bits) {
  H261Decoded out;
  const auto at = [&](int from, int n) { return static_cast<int>(value_of(bits.substr(out.legal + from, n))); };
  const int dc = coding.intra ? at(0, 8) : 0;
  if (coding.intra) {
    if (dc % 128 == 0) return out;
    out.last = 0;
    out.legal = 8;
  }
  for (bool first = !coding.intra;; first = false) {
    int length = 2;
    RunLevel next{0, at(0, 2) == 2 ? 1 : -1};
    if (!first || at(0, 1) == 0) {
      if (at(0, 2) == 2) break;
      if (at(0, 6) == 1) {
        length = 20;
        next = {at(6, 6), at(12, 8) - 256 * at(12, 1)};
        if (next.second % 128 == 0) return out;
        if (out.last + next.first == 126) break;  // 63 zeros behind index 63
      } else {
        const auto& codes = h261_codes();
        auto found = codes.end();
        for (length = 2; length < 14 && found == codes.end();) {
          found = codes.find(std::string(bits.substr(out.legal, ++length)));
        }
        if (found == codes.end()) return out;
        next = found->second;
      }
    }
    if (out.last + next.first + 1 > 63) return out;
    out.last += next.first + 1;
    out.legal += length;
    out.block[coding.position(out.last)] = coding.value(next.second);
  }
  out.legal += at(0, 1) ? 2 : 20;
  out.good = true;
  if (coding.intra) out.block[0] = static_cast<Mox16s>((dc == 255 ? 128 : dc) * (coding.qp ? 8 : 1));
  return out;
}

/// The first `count` levels other than 0, the DC of an intra block among them whatever it is.
inline std::string h261_encode(const H261Coding& coding, const Block& levels, int count) {
  std::string bits;
  if (coding.intra) bits = bits_of((levels[0] == 128 ? 255 : levels[0]) & 255, 8);
  int run = 0, left = count - coding.intra;
  for (int i = coding.intra; i < 64; ++i, ++run) {
    const int level = levels[coding.position(i)];
    if (level == 0 || left-- <= 0) continue;
    const std::string code = code_of(h261_codes(), {run, level});
    if (i == 0 && std::abs(level) == 1) {
      bits += level < 0 ? "11" : "10";
    } else {
      bits += code.empty() ? h261_escape(run, level) : code;
    }
    run = -1;
  }
  return bits + "10";
}

/// A sample of the loop filter: nine weights, those outside of the block going to the middle.
template <class Sample>
int h261_filtered(int x, int y, Sample sample) {
  const auto weight = [](int at, int d) { return at % 7 == 0 ? (d == 0 ? 4 : 0) : 2 - std::abs(d); };
  int sum = 0;
  for (int dy = -1; dy <= 1; ++dy) {
    for (int dx = -1; dx <= 1; ++dx) {
      const int w = weight(y, dy) * weight(x, dx);
      if (w) sum += w * sample(x + dx, y + dy);
    }
  }
  return (sum + 8) / 16;
}

}  // namespace mox::test::oracle
