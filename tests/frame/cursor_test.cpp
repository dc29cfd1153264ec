#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "frame/byte_cursor.hpp"
#include "frame/vlc_table.hpp"
#include "frame/word_cursor.hpp"
#include "support/bits.hpp"

namespace mox::test {
namespace {

TEST(BitMask, HasTheLowBits) {
  for (int n = 0; n <= 32; ++n) EXPECT_EQ(bit_mask[n], value_of(std::string(n, '1'))) << n;
}

TEST(WordCursor, ReadsLikeTextAndTouchesNothingBehind) {
  Random random;
  for (int round = 0; round < 2000; ++round) {
    const std::string bits = random_bits(random, random(1, 200));
    const int length = static_cast<int>(bits.size());
    const WordStream stream(bits, random(0, 31), 0);
    MoxWordCursor at{stream.word, stream.offset};
    int done = 0;
    for (int step = 0; step < 40; ++step) {
      const int kind = random(0, 4), n = random(kind > 0, std::max(1, std::min(32, length - done)));
      if (kind == 4 || done + n > length) {
        const int back = random(0, std::min(32, done));
        ownUngetBits32(at, back);
        done -= back;
      } else {
        const int taken = kind == 3 ? 1 : n;
        const Mox32u got = kind == 0   ? get_bits(at, n)
                           : kind == 1 ? ownGetBits32(at, n) & bit_mask[n]
                           : kind == 2 ? ownPeekBits32(at, n)
                                       : ownGetBit32(at);
        ASSERT_EQ(got, value_of(bits.substr(done, taken))) << "operation " << kind << " of " << n;
        done += kind == 2 ? 0 : taken;
      }
      const int position = static_cast<int>(at.word - stream.word) * 32 + stream.offset - at.offset;
      ASSERT_EQ(position, done);
      ASSERT_TRUE(at.offset >= 0 && at.offset <= 31) << at.offset;
    }
  }
}

TEST(WordCursor, EdgesOfAWord) {
  const Mox32u words[] = {0x80000001, 0x12345678, 0};
  MoxWordCursor at{words, 0};
  EXPECT_EQ(ownGetBits32(at, 1) & 1, 1u);
  EXPECT_TRUE(at.word == words + 1 && at.offset == 31);
  EXPECT_EQ(ownGetBits32(at, 32), 0x12345678u);
  EXPECT_TRUE(at.word == words + 2 && at.offset == 31);
  ownUngetBits32(at, 1);
  EXPECT_TRUE(at.word == words + 1 && at.offset == 0);
}

TEST(WordCursor, CountsZeros) {
  for (int offset = 0; offset < 32; ++offset) {
    for (int zeros = 0; zeros < 70; ++zeros) {
      for (int most : {0, 32, 35}) {
        const WordStream stream(std::string(zeros, '0') + '1', offset, 0);
        MoxWordCursor at{stream.word, stream.offset};
        const int counted = read_zeros(at, most);
        ASSERT_EQ(std::min(counted, most + 1), std::min(zeros, most + 1)) << offset;
        if (zeros <= most) {
          ASSERT_EQ((at.word - stream.word) * 32 + offset - at.offset, zeros + 1) << offset;
        }
      }
    }
    // Gives up before it leaves the second word.
    const WordStream endless(std::string(offset + 1 + 32, '0'), offset, 0);
    MoxWordCursor at{endless.word, endless.offset};
    EXPECT_GT(read_zeros(at, 32), 32);
  }
}

TEST(WordWriter, WritesLikeText) {
  Random random;
  for (int round = 0; round < 500; ++round) {
    std::string bits;
    std::vector<std::pair<Mox32u, int>> codes;
    const int start = random(1, 32);
    for (int i = random(1, 12); i > 0; --i) {
      const int n = random(1, 32);
      codes.push_back({random.bits(), n});
      bits += bits_of(codes.back().first, n);
    }
    const int used = 32 - start + static_cast<int>(bits.size());
    Guarded<Mox32u> words((used + 31) / 32);
    std::fill(words.begin(), words.end(), 0xFFFFFFFF);  // only the first word is cleared: the others are assigned
    words[0] = 0;
    MoxWordWriter at{words.data(), start};
    for (auto [code, n] : codes) {
      const bool at_end = at.offset == n;
      ownPutBits32(at, code, n);
      if (at_end && at.word != words.end()) {
        ASSERT_EQ(*at.word, 0xFFFFFFFF) << "a code that ends with its word leaves the next one alone";
        *at.word = 0;
      }
    }
    bits.insert(0, 32 - start, '0');
    bits.resize(32 * words.size(), '0');
    for (std::size_t i = 0; i < words.size(); ++i) ASSERT_EQ(words[i], value_of(bits.substr(32 * i, 32))) << i;
    ASSERT_EQ((at.word - words.data()) * 32 + 32 - at.offset, used);
    ASSERT_TRUE(at.offset >= 1 && at.offset <= 32);
  }
}

/// Bytes of a text of bits, `padding` zero bytes behind them.
void fill_bytes(const Guarded<Mox8u>& bytes, const std::string& bits) {
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    std::string byte = 8 * i < bits.size() ? bits.substr(8 * i, 8) : "";
    byte.resize(8, '0');
    bytes[i] = static_cast<Mox8u>(value_of(byte));
  }
}

/// Peeks and skips at random to the end of the data, whose last bit is the last or any other bit of its byte.
template <class Reader, class Peek, class Skip>
void expect_reads(int longest, int padding, Peek peek, Skip skip) {
  Random random;
  for (int round = 0; round < 2000; ++round) {
    const int offset = random(0, 7), length = offset + random(1, 150);
    std::string bits = random_bits(random, length);
    const Guarded<Mox8u> bytes((length + 7) / 8 + padding);
    fill_bytes(bytes, bits);
    bits.append(32, '0');
    Reader reader(bytes.data(), offset);
    int done = offset;
    while (done < length) {
      const int n = random(1, longest), used = random(0, std::min(n, length - done));
      ASSERT_EQ(peek(reader, n), value_of(bits.substr(done, n))) << "bit " << done << " of " << length;
      skip(reader, used);
      done += used;
      const Mox8u* byte = nullptr;
      Mox32s left = -1;
      reader.store(&byte, &left);
      ASSERT_EQ((byte - bytes.data()) * 8 + left, done);
      ASSERT_TRUE(left >= 0 && left <= 7) << left;
    }
  }
}

TEST(ByteCursor, ReadersReadLikeText) {
  expect_reads<LookAheadReader>(
      22, 3, [](auto& reader, int n) { return reader.ownPeekBits8(n); },
      [](auto& reader, int n) { reader.ownSkipBits8(n); });
  expect_reads<AccumulatorReader>(
      16, 2, [](auto& reader, int n) { return reader.peek(n); }, [](auto& reader, int n) { reader.skip(n); });
}

TEST(ByteCursor, WritesLikeTextAndKeepsTheBitsInFront) {
  Random random;
  for (int round = 0; round < 500; ++round) {
    const int offset = random(0, 7);
    const Mox8u first = static_cast<Mox8u>(random(0, 255));
    std::string bits = bits_of(first, 8).substr(0, offset);
    std::vector<std::pair<Mox32u, int>> codes;
    for (int i = random(1, 8); i > 0; --i) {
      codes.push_back({random.bits(), random(1, 32)});
      bits += bits_of(codes.back().first, codes.back().second);
    }
    const Guarded<Mox8u> bytes((bits.size() + 7) / 8), expected(bytes.size());
    fill_bytes(expected, bits);
    for (bool accumulated : {false, true}) {
      std::fill(bytes.begin(), bytes.end(), Mox8u{0xA5});
      bytes[0] = first;
      MoxByteWriter at{bytes.data(), offset};
      if (accumulated) {
        AccumulatorWriter writer(at);
        for (auto [code, n] : codes) writer.put(code & bit_mask[n], n);
        at = writer.finish();
      } else {
        for (auto [code, n] : codes) ownPutBits8(at, code, n);
      }
      ASSERT_EQ(bytes.copy(), expected.copy());
      ASSERT_EQ((at.byte - bytes.data()) * 8 + at.offset, static_cast<int>(bits.size()));
      ASSERT_LE(at.offset, 7);
    }
  }
}

TEST(VlcTable, Walk) {
  // 1: 5, 01: -7, 000: 9, 0010: largest, 00111: smallest, 00110: no code. Levels of 2, 2 and 1 bits.
  const Mox32s link = 128;
  const Mox32s table[] = {2,          5 << 8 | link,  -7 * 256, 5 * 256 | 1, 5 * 256 | 1,    2, 9 << 8 | 1, 9 << 8 | 1,
                          0x7FFFFF00, 10 << 8 | link, 1,        kVlcUnused,  -0x7FFFFFFF - 1};
  struct Case {
    const char* bits;
    int walked, length, value;
  };
  for (const Case& c : {Case{"1", 2, 1, 5}, Case{"01", 2, 2, -7}, Case{"000", 4, 3, 9}, Case{"0010", 4, 4, 0x7FFFFF},
                        Case{"00111", 5, 5, -0x800000}, Case{"00110", 5, 4, 61681}}) {
    for (int offset = 0; offset < 32; ++offset) {
      const WordStream stream(c.bits, offset);
      MoxWordCursor walked{stream.word, stream.offset}, decoded = walked;
      EXPECT_EQ(walk_vlc(walked, table).value(), c.value) << c.bits;
      const VlcLeaf leaf = ownVlcDecode(decoded, table);
      EXPECT_EQ(leaf.value(), c.value) << c.bits;
      EXPECT_EQ(leaf.illegal(), c.value == 61681) << c.bits;
      EXPECT_EQ((walked.word - stream.word) * 32 + offset - walked.offset, c.walked) << c.bits;
      EXPECT_EQ((decoded.word - stream.word) * 32 + offset - decoded.offset, c.length) << c.bits;
    }
  }
}

}  // namespace
}  // namespace mox::test
