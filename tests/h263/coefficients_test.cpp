#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <string>
#include <vector>

#include "oracle/h263_coefficients.hpp"
#include "support/call.hpp"
#include "support/library.hpp"

namespace mox::test {
namespace {

using oracle::Block;
using oracle::Coding;
using oracle::Decoded;

constexpr int kPadding = 4;
const char* const kEnd = "01110";  // last, run 0, level 1, in both tables

std::vector<std::string> escapes(bool modified) {
  std::vector<std::string> texts;
  for (int level : {1, -1, 25, 127, -127, 128, -128, 129, -129, 159, 160, 1023, -1000, -1023, -1024}) {
    if (modified || std::abs(level) < 128) texts.push_back(oracle::escape({0, 61, level}));
  }
  return texts;
}

class H263Coefficients : public PerGeneration {
 protected:
  /// Reads `text` from bit `offset` of a byte on, with the library and the oracle. Behind the byte with the last bit
  /// that the oracle reads there are as many bytes as a reader may load, and then unreadable memory.
  Decoded decode(const Coding& coding, const std::string& text, int offset) {
    SCOPED_TRACE(testing::Message() << "intra " << coding.intra << ", advanced " << coding.advanced << ", modified "
                                    << coding.modified << ", scan " << coding.scan << ", qp " << coding.qp << ", bits "
                                    << text.substr(0, 100) << ", offset " << offset);
    Block before;
    for (int i = 0; i < 64; ++i) before[i] = static_cast<Mox16s>(5 + i);
    const Decoded expected = oracle::decode(coding, text + std::string(3000, '0'), before);
    const Guarded<Mox8u> bytes((offset + expected.consumed + 7) / 8 + kPadding);
    std::string bits = std::string(offset, '1') + text;
    bits.resize(8 * bytes.size(), '0');
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<Mox8u>(value_of(bits.substr(8 * i, 8)));
    std::copy(before.begin(), before.end(), block_.begin());
    const Mox8u* byte = bytes.data();
    Mox32s at = offset, last = 777;
    const auto& c = coding;
    const MoxStatus status =
        c.qp == 0
            ? c.intra
                  ? lib(MOX_FN(moxiDecodeCoeffsIntra_H263_1u16s))(&byte, &at, block_.data(), &last, c.advanced * 2,
                                                                  c.modified * 4, c.scan)
                  : lib(MOX_FN(moxiDecodeCoeffsInter_H263_1u16s))(&byte, &at, block_.data(), &last, c.modified, c.scan)
        : c.intra
            ? lib(MOX_FN(moxiReconstructCoeffsIntra_H263_1u16s))(&byte, &at, block_.data(), &last, c.cbp, c.qp,
                                                                 c.advanced, c.scan, c.modified)
            : lib(MOX_FN(moxiReconstructCoeffsInter_H263_1u16s))(&byte, &at, block_.data(), &last, c.qp, c.modified);
    EXPECT_EQ(status, expected.good ? moxStsOk : moxStsBadCode);
    EXPECT_EQ(block_.copy(), std::vector<Mox16s>(expected.block.begin(), expected.block.end()));
    EXPECT_EQ(last, expected.last);
    EXPECT_EQ((byte - bytes.data()) * 8 + at, offset + (expected.good ? expected.consumed : 0));
    EXPECT_TRUE(at >= 0 && at <= 7) << at;
    return expected;
  }
  /// Writes levels behind `offset` bits that stay, and compares with the text.
  std::string encode(const Coding& coding, const Block& block, int count, int offset) {
    const std::string text = oracle::encode(coding, block, count);
    std::string expected = std::string(offset, '1') + text, written;
    const std::size_t end = expected.size();
    expected.resize((end + 7) / 8 * 8, text.empty() ? '1' : '0');
    const Guarded<Mox8u> bytes(expected.size() / 8);
    std::fill(bytes.begin(), bytes.end(), Mox8u{255});
    Mox8u* byte = bytes.data();
    Mox32s at = offset;
    EXPECT_EQ(coding.intra ? lib(MOX_FN(moxiEncodeCoeffsIntra_H263_16s1u))(
                                 block.data(), &byte, &at, count, coding.advanced, coding.modified, coding.scan)
                           : lib(MOX_FN(moxiEncodeCoeffsInter_H263_16s1u))(block.data(), &byte, &at, count,
                                                                           coding.modified, coding.scan),
              moxStsOk);
    for (Mox8u b : bytes) written += bits_of(b, 8);
    EXPECT_EQ(written, expected);
    EXPECT_EQ((byte - bytes.data()) * 8 + at, static_cast<std::ptrdiff_t>(end));
    EXPECT_TRUE(at >= 0 && at <= 7) << at;
    return text;
  }

  const Guarded<Mox16s> block_ = Guarded<Mox16s>(64);
};

/// Every form with each scan, without (qp 0) and with inverse quantisation.
template <class Visit>
void for_each_coding(Visit visit) {
  for (int form = 0; form < 6 * 4 * 4; ++form) {
    const int kind = form % 3, scan = form / 6 % 4, qps[] = {0, 1, 12, 31};
    visit(Coding{kind > 0, kind == 2, form / 3 % 2 == 1, scan == 3 ? -1 : scan, qps[form / 24]});
  }
}
std::string dc_of(const Coding& coding, Random& random) {
  return coding.has_dc() ? bits_of(random(1, 127) + 128 * random(0, 1), 8) : "";
}

TEST_P(H263Coefficients, EveryCodeIsReadAtEveryOffset) {
  Random random;
  for_each_coding([&](const Coding& coding) {
    std::vector<std::string> texts = escapes(coding.modified);
    for (const auto& entry : oracle::kBooks[coding.advanced]) texts.push_back(entry.first);
    for (const std::string& text : texts) {
      const int step = coding.qp == 0 ? 1 : 3;
      for (int offset = random(0, step - 1); offset < 8; offset += step) {
        ASSERT_TRUE(decode(coding, dc_of(coding, random) + text + kEnd, offset).good);
      }
    }
  });
}

TEST_P(H263Coefficients, RandomAndCorruptStreams) {
  Random random;
  int good = 0, bad = 0;
  for (int round = 0; round < 40; ++round) {
    for_each_coding([&](Coding coding) {
      std::string bits = random.chance(0.05) ? bits_of(128 * random(0, 1), 8) : dc_of(coding, random);
      for (int left = random(0, 60); left > 0; --left) {
        auto code = oracle::kBooks[coding.advanced].begin();
        std::advance(code, random(0, 203));
        const int kind = random(0, 9), level = coding.modified ? random(-1024, 1023) : random(-128, 127);
        bits += kind == 0 ? oracle::escape({0, random(0, 3), level}) : kind == 1 ? code->first : "100";
      }
      if (random.chance(0.7)) bits += kEnd;
      if (random.chance(0.1)) bits += "000000001";
      if (random.chance(0.1)) coding.cbp = 0;
      (decode(coding, bits + random_bits(random, 60), random(0, 7)).good ? good : bad)++;
    });
  }
  EXPECT_TRUE(good > 1000 && bad > 500) << good << " good, " << bad << " bad";
}

/// Streams by hand. Those that are read without quantisation are written again.
TEST_P(H263Coefficients, LiteralBlocks) {
  struct Case {
    Coding coding;
    const char* bits;
    int last;
    bool good;
    std::vector<std::pair<int, Mox16s>> values;
  };
  const Coding inter{0, 0, 0, 0}, modified{0, 0, 1, 0};
  const Case cases[] = {
      {inter, "0111 0", 0, true, {{0, 1}}},
      {inter, "10 1 0000011 1 101001 01100011", 42, true, {{0, -1}, {15, 99}}},
      {inter, "0000011 1 111111 10000001", 63, true, {{63, -127}}},
      {modified, "0000011 1 000000 10000000 00001 000100", 0, true, {{0, 129}}},
      {modified, "0000011 1 000000 10000000 00000 111100", 0, true, {{0, -128}}},
      {modified, "0000011 1 000000 10000000 00000 100000", 0, true, {{0, -1024}}},
      {{0, 0, 0, 9}, "1110 0 0111 1", 3, true, {{2, 1}, {3, -1}}},
      {{1, 0, 0, 2}, "1111 0 001111 0", 3, true, {{0, 5}, {1, 2}, {3, 1}}},
      {{1, 1, 0, 1}, "110 1 0010001 1", 5, true, {{0, -2}, {9, -1}}},
      {{0, 0, 0, 0, 12}, "10 0 0111 1", 1, true, {{0, 35}, {1, -35}}},
      {{0, 0, 0, 0, 31}, "0000011 1 000000 00101000", 0, true, {{0, 2047}}},
      {{0, 0, 0, 0, 31}, "0000011 1 000000 11011000", 0, true, {{0, -2048}}},
      {{0, 0, 1, 0, 31}, "0000011 1 000000 00101000", 0, true, {{0, 2511}}},
      {{0, 0, 1, 0, 31}, "0000011 1 000000 10000000 11111 011111", 0, true, {{0, -2079}}},
      {{1, 0, 0, 0, 7}, "11111111 0111 0", 1, true, {{0, 1024}, {1, 21}}},
      {{1, 1, 0, 2, 8}, "0111 1", 0, true, {{0, -16}}},
      {inter, "0000011 1 000000 10000000", -1, false, {}},
      {modified, "0000011 1 000000 00000000", -1, false, {}},
      {modified, "0000011 1 000000 10000000 00000 000000", -1, false, {}},
      {inter, "10 0 0000000001111", 0, false, {{0, 1}}},
      {inter, "0000011 0 111111 00000001 0111 0", 63, false, {{63, 1}}},
  };
  for (const Case& c : cases) {
    Block expected{};
    for (const auto& [position, value] : c.values) expected[position] = value;
    const Decoded got = decode(c.coding, codes(c.bits), 5);
    EXPECT_EQ(got.good, c.good) << c.bits;
    EXPECT_EQ(got.block, expected) << c.bits;
    EXPECT_EQ(got.last, c.last) << c.bits;
    if (c.good && c.coding.qp == 0) {
      const int count = static_cast<int>(c.values.size()) - (c.coding.from_one() ? 1 : 0);
      EXPECT_EQ(encode(c.coding, expected, count, 3), codes(c.bits));
    }
  }
}

TEST_P(H263Coefficients, WrittenBlocksAreReadAgain) {
  Random random;
  for (int round = 0; round < 60; ++round) {
    for_each_coding([&](const Coding& coding) {
      if (coding.qp != 0) return;
      Block block{};
      const double density = random(1, 60) / 64.0, large = random.chance(0.5) ? 0.1 : 0;
      const int most = coding.modified ? 1023 : 127;
      for (Mox16s& level : block) {
        if (random.chance(density))
          level = static_cast<Mox16s>(random.chance(large) ? random(-most, most) : random(-3, 3));
      }
      block[63] = static_cast<Mox16s>(random.chance(0.5) ? most : -1);
      const auto count =
          static_cast<int>(64 - coding.from_one() - std::count(block.begin() + coding.from_one(), block.end(), 0));
      for (int told : {count, random(1, 64), 64}) {
        const std::string text = encode(coding, block, told, random(0, 7));
        if (told != count) continue;
        const Decoded got = decode(coding, text, random(0, 7));
        ASSERT_TRUE(got.good);
        ASSERT_TRUE(std::equal(block.begin() + coding.from_one(), block.end(), got.block.begin() + coding.from_one()));
      }
    });
  }
}

TEST_P(H263Coefficients, DcIsReadAndWritten) {
  for (int i = 0; i < 256 * 8; ++i) {
    const int offset = i % 8, level = i / 8;
    const bool good = level % 128 != 0;
    const Guarded<Mox8u> written((offset + 15) / 8), bytes(1 + kPadding);
    Mox8u* end = written.data();
    const Mox8u* byte = bytes.data();
    Mox32s at = offset, read_at = offset;
    Mox16s dc = -9;
    written[0] = 255;
    ASSERT_EQ(lib(MOX_FN(moxiEncodeDCIntra_H263_16s1u))(static_cast<Mox16s>(level), &end, &at), moxStsOk);
    std::string text;
    for (Mox8u b : written) text += bits_of(b, 8);
    std::string expected = std::string(offset, '1') + bits_of(level == 128 ? 255 : level, 8);
    expected.resize(text.size(), '0');
    ASSERT_EQ(text, expected);
    ASSERT_TRUE(end == written.data() + 1 && at == offset);
    bytes[0] = static_cast<Mox8u>(level >> offset);
    bytes[1] = static_cast<Mox8u>(level << (8 - offset));
    ASSERT_EQ(lib(MOX_FN(moxiDecodeDCIntra_H263_1u16s))(&byte, &read_at, &dc), good ? moxStsOk : moxStsBadCode);
    ASSERT_EQ(dc, !good ? -9 : level == 255 ? 128 : level);
    ASSERT_TRUE(byte == bytes.data() + good && read_at == offset);
  }
}

TEST_P(H263Coefficients, Arguments) {
  const std::vector<Mox8u> bytes(20, 0x70);  // a DC, then codes with their last flag
  std::vector<Mox8u> written(20);
  Mox16s block[64] = {1}, dc = 1;
  const Mox8u *byte = nullptr, *nothing = nullptr;
  Mox8u *out = nullptr, *nowhere = nullptr;
  Mox32s at = 0, last = 5;
  const auto keeping = [&](auto call) {
    byte = bytes.data(), out = written.data(), at = 0;
    call.keeps(&byte, sizeof byte).keeps(&out, sizeof out).keeps(&at, sizeof at).keeps(&last, sizeof last);
    return call.keeps(block, sizeof block).keeps(&dc, sizeof dc).keeps(written.data(), written.size());
  };
  for (Mox32s wrong : {-1, 8, INT_MIN}) {
    const auto read = [&]<std::size_t kQp>(std::integral_constant<std::size_t, kQp>, auto symbol, auto... rest) {
      Call call = keeping(Call{lib(symbol), std::tuple{&byte, &at, block, &last, rest...}});
      std::vector<typename decltype(call)::Fault> faults = {
          {moxStsNullPointer, set<0>(nullptr)}, {moxStsNullPointer, set<0>(&nothing)},
          {moxStsNullPointer, set<1>(nullptr)}, {moxStsNullPointer, set<2>(nullptr)},
          {moxStsNullPointer, set<3>(nullptr)}, {moxStsBadBitOffset, set<1>(&wrong)}};
      if constexpr (kQp != 0) faults.push_back({moxStsBadQp, set<kQp>(wrong == 8 ? 32 : wrong + 1)});
      call.expect_order(faults);
    };
    read(std::integral_constant<std::size_t, 0>(), MOX_FN(moxiDecodeCoeffsIntra_H263_1u16s), 0, 0, 0);
    read(std::integral_constant<std::size_t, 0>(), MOX_FN(moxiDecodeCoeffsInter_H263_1u16s), 0, 0);
    read(std::integral_constant<std::size_t, 5>(), MOX_FN(moxiReconstructCoeffsIntra_H263_1u16s), 1, 31, 0, 0, 0);
    read(std::integral_constant<std::size_t, 4>(), MOX_FN(moxiReconstructCoeffsInter_H263_1u16s), 1, 0);
    const auto write = [&](auto symbol, auto... rest) {
      keeping(Call{lib(symbol), std::tuple{block, &out, &at, 1, rest...}})
          .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                         {moxStsNullPointer, set<1>(nullptr)},
                         {moxStsNullPointer, set<1>(&nowhere)},
                         {moxStsNullPointer, set<2>(nullptr)},
                         {moxStsBadBitOffset, set<2>(&wrong)},
                         {moxStsOutOfRange, set<3>(wrong == 8 ? 65 : wrong + 1)}});
    };
    write(MOX_FN(moxiEncodeCoeffsIntra_H263_16s1u), 1, 0, 0);
    write(MOX_FN(moxiEncodeCoeffsInter_H263_16s1u), 0, 0);
    keeping(Call{lib(MOX_FN(moxiDecodeDCIntra_H263_1u16s)), std::tuple{&byte, &at, &dc}})
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set<0>(&nothing)},
                       {moxStsNullPointer, set<1>(nullptr)},
                       {moxStsNullPointer, set<2>(nullptr)},
                       {moxStsBadBitOffset, set<1>(&wrong)}});
    keeping(Call{lib(MOX_FN(moxiEncodeDCIntra_H263_16s1u)), std::tuple{Mox16s{7}, &out, &at}})
        .expect_order({{moxStsNullPointer, set<1>(nullptr)},
                       {moxStsNullPointer, set<1>(&nowhere)},
                       {moxStsNullPointer, set<2>(nullptr)},
                       {moxStsBadBitOffset, set<2>(&wrong)}});
  }
}

MOX_INSTANTIATE_GENERATIONS(H263Coefficients);

}  // namespace
}  // namespace mox::test
