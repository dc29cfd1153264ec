#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "moxvc.h"
#include "oracle/h261.hpp"
#include "support/call.hpp"
#include "support/library.hpp"

namespace mox::test {
namespace {

using oracle::Block;
using oracle::H261Coding;
using oracle::H261Decoded;

/// Guarded bytes that begin with a text of bits, the rest of them ones.
struct BitBytes : Guarded<Mox8u> {
  BitBytes(std::string bits, std::size_t count) : Guarded(count) {
    bits.resize(8 * count, '1');
    for (std::size_t i = 0; i < count; ++i) (*this)[i] = static_cast<Mox8u>(value_of(bits.substr(8 * i, 8)));
  }
};

/// A selector of the coding's scan; any but -1 is zigzag.
int scan_of(const H261Coding& coding, int offset) {
  constexpr int kZigzag[] = {0, -2, 2, 77};
  return coding.zigzag ? kZigzag[offset % 4] : -1;
}

class H261Coefficients : public PerGeneration {
 protected:
  /// Decodes `bits` behind `offset` bits of a byte, with the library and the oracle. Behind the last byte of the last
  /// legal code there are four bytes.
  H261Decoded decode(const H261Coding& coding, std::string bits, int offset) {
    SCOPED_TRACE(testing::Message() << (coding.intra ? "intra" : "inter") << ", zigzag " << coding.zigzag << ", QP "
                                    << coding.qp << ", offset " << offset << ", bits " << bits.substr(0, 150));
    bits.append(64, '0');
    const H261Decoded expected = oracle::h261_decode(coding, bits);
    const auto size = static_cast<std::size_t>((offset + expected.legal + 7) / 8 + 4);
    const BitBytes bytes(std::string(offset, '1') + bits, size);
    std::fill(block_.begin(), block_.end(), Mox16s{-9999});
    const Mox8u* byte = bytes.data();
    Mox32s left = offset, last = 777;
    const auto run = [&](auto symbol, int parameter) {
      return lib(symbol)(&byte, &left, block_.data(), &last, parameter);
    };
    const int scan = scan_of(coding, offset);
    const MoxStatus status = coding.qp ? coding.intra ? run(MOX_FN(moxiReconstructCoeffsIntra_H261_1u16s), coding.qp)
                                                      : run(MOX_FN(moxiReconstructCoeffsInter_H261_1u16s), coding.qp)
                             : coding.intra ? run(MOX_FN(moxiDecodeCoeffsIntra_H261_1u16s), scan)
                                            : run(MOX_FN(moxiDecodeCoeffsInter_H261_1u16s), scan);
    EXPECT_EQ(status, expected.good ? moxStsOk : moxStsBadCode);
    EXPECT_EQ(block_.copy(), std::vector<Mox16s>(expected.block.begin(), expected.block.end()));
    EXPECT_EQ(last, expected.last);
    EXPECT_EQ((byte - bytes.data()) * 8 + left, offset + (expected.good ? expected.legal : 0));
    EXPECT_TRUE(left >= 0 && left <= 7) << left;
    return expected;
  }
  /// Writes a block behind `offset` bits and compares with the text; returns that.
  std::string encode(const H261Coding& coding, const Block& levels, int count, int offset) {
    const std::string text = oracle::h261_encode(coding, levels, count);
    const auto size = (offset + text.size() + 7) / 8;
    const BitBytes bytes(std::string(offset, '0'), size);
    std::string expected = std::string(offset, '0') + text;
    const std::size_t end = expected.size();
    expected.resize(8 * size, '0');
    Mox8u* byte = bytes.data();
    Mox32s left = offset;
    EXPECT_EQ(lib(coding.intra ? MOX_FN(moxiEncodeCoeffsIntra_H261_16s1u) : MOX_FN(moxiEncodeCoeffsInter_H261_16s1u))(
                  levels.data(), &byte, &left, count, scan_of(coding, offset)),
              moxStsOk);
    std::string written;
    for (Mox8u b : bytes) written += bits_of(b, 8);
    EXPECT_EQ(written, expected);
    EXPECT_EQ(static_cast<std::size_t>((byte - bytes.data()) * 8 + left), end);
    EXPECT_TRUE(left >= 0 && left <= 7) << left;
    return text;
  }

  const Guarded<Mox16s> block_ = Guarded<Mox16s>(64);
};

/// Every kind of block: visit(coding). Reconstruction has one scan.
template <class Visit>
void for_each_coding(Random& random, Visit visit) {
  for (bool intra : {false, true}) {
    visit(H261Coding{intra, false, 0});
    visit(H261Coding{intra, true, 0});
    visit(H261Coding{intra, true, random(1, 31)});
  }
}
/// The DC in front of an intra block.
std::string dc_of(const H261Coding& coding, int dc) { return coding.intra ? bits_of(dc, 8) : ""; }

TEST_P(H261Coefficients, EveryCodeIsReadAtEveryOffset) {
  Random random;
  std::vector<std::string> texts;
  for (const auto& [code, meaning] : oracle::h261_codes()) texts.push_back(code);
  ASSERT_EQ(texts.size(), 126u);
  for (int level = -128; level < 128; ++level) texts.push_back(oracle::h261_escape(random(0, 62), level));
  for_each_coding(random, [&](const H261Coding& coding) {
    for (const std::string& text : texts) {
      for (int offset = 0; offset < 8; ++offset) {
        decode(coding, dc_of(coding, 77) + (coding.intra ? "" : "01000") + text + "10", offset);
      }
      decode(coding, dc_of(coding, 77) + text + "10", random(0, 7));
    }
    for (int first = 0; first < 256; ++first) decode(coding, bits_of(first, 8) + "10", first % 8);
  });
}

TEST_P(H261Coefficients, RandomAndCorruptStreams) {
  Random random;
  int good = 0, bad = 0, beyond = 0;
  for (int round = 0; round < 500; ++round) {
    for_each_coding(random, [&](const H261Coding& coding) {
      std::string bits = dc_of(coding, random(1, 255));
      for (int left = random(0, 66); left > 0; --left) {
        auto code = oracle::h261_codes().begin();
        std::advance(code, random(0, 125));
        if (random.chance(0.1)) bits += oracle::h261_escape(random.chance(0.9) ? random(0, 3) : 63, random(-127, 127));
        bits += random.chance(0.1) ? code->first : random.chance(0.5) ? "110" : "111";
      }
      if (random.chance(0.7)) bits += "10";
      if (random.chance(0.1)) bits = dc_of(coding, 1);
      const H261Decoded got = decode(coding, bits + random_bits(random, 1500), random(0, 7));
      (got.good ? good : bad)++;
      beyond += !got.good && got.last > 50;
    });
  }
  EXPECT_TRUE(good > 300 && bad > 300 && beyond > 50) << good << " good, " << bad << " bad, " << beyond << " beyond";
}

/// Streams by hand, with zigzag scan: values by raster position.
TEST_P(H261Coefficients, LiteralBlocks) {
  struct Case {
    bool intra;
    int qp;
    const char* bits;
    bool good;
    int last;
    std::vector<std::pair<int, Mox16s>> values;
  };
  const char* const kEscape = "000001";
  const std::string to63 = std::string("10 ") + kEscape + "111110 00000011";  // level 3 at index 63, behind 1 at 0
  const std::string over = to63 + kEscape + "111110 00000001", end = to63 + kEscape + "111111 00000001";
  const Case cases[] = {
      {false, 0, "10 10", true, 0, {{0, 1}}},
      {false, 0, "11 10", true, 0, {{0, -1}}},
      {false, 0, "11 110 111 0101 1 10", true, 5, {{0, -1}, {1, 1}, {8, -1}, {2, -1}}},  // run 2: index 5
      {false, 0, "0100 0 10", true, 0, {{0, 2}}},
      {false, 0, "000001 000000 10000001 10", true, 0, {{0, -127}}},
      {false, 5, "10 111 10", true, 1, {{0, 15}, {1, -15}}},     // 2 5 1 + 5
      {false, 6, "11 0100 0 10", true, 1, {{0, -17}, {1, 29}}},  // 12 + 5, 24 + 5
      {false, 31, "000001 000000 01111111 000001 000000 10000001 10", true, 1, {{0, 2047}, {1, -2048}}},
      {true, 0, "00000001 10", true, 0, {{0, 1}}},
      {true, 0, "11111111 110 10", true, 1, {{0, 128}, {1, 1}}},
      {true, 1, "11111111 111 10", true, 1, {{0, 1024}, {1, -3}}},
      {true, 31, "11111110 10", true, 0, {{0, 2032}}},
      {true, 0, "00000000 10", false, -1, {}},
      {true, 8, "10000000 10", false, -1, {}},
      {true, 0, "00000001 110 000000000", false, 1, {{1, 1}}},  // no code: no DC either
      {false, 0, "11 0100 0 000001 000000 10000000 10", false, 1, {{0, -1}, {1, 2}}},
      {false, 0, "000000000", false, -1, {}},
      {false, 0, over.c_str(), false, 63, {{0, 1}, {63, 3}}},  // index 126
      {false, 0, end.c_str(), true, 63, {{0, 1}, {63, 3}}},    // index 127
  };
  for (const Case& c : cases) {
    Block expected{};
    for (const auto& [position, value] : c.values) expected[position] = value;
    const H261Decoded got = decode({c.intra, true, c.qp}, codes(c.bits), 3);
    EXPECT_EQ(got.good, c.good) << c.bits;
    EXPECT_EQ(got.last, c.last) << c.bits;
    EXPECT_EQ(got.block, expected) << c.bits;
  }
}

TEST_P(H261Coefficients, WrittenBlocks) {
  Random random;
  for (int round = 0; round < 150; ++round) {
    for_each_coding(random, [&](H261Coding coding) {
      coding.qp = 0;
      Block levels{};
      const int density = random(0, 64), extreme = random(1, 127);
      for (Mox16s& level : levels) {
        if (random(0, 63) < density)
          level = static_cast<Mox16s>(random.chance(0.7) ? random(-2, 2) : random(-1, 1) * extreme);
      }
      levels[0] = static_cast<Mox16s>(coding.intra ? random.chance(0.1) ? 128 : random(1, 127) : random(-2, 2));
      if (levels == Block{}) levels[5] = 1;
      const auto count = static_cast<int>(64 - std::count(levels.begin(), levels.end(), 0));
      for (int told : {1, random(1, count), 64}) encode(coding, levels, told, random(0, 7));
      const int offset = random(0, 7);
      const H261Decoded back = decode(coding, encode(coding, levels, count, offset), offset);
      EXPECT_TRUE(back.good);
      EXPECT_EQ(back.block, levels);
    });
  }
  // What no decoder reads back: low bits, and a whole block of escapes.
  Block levels;
  random.fill<Mox16s>(levels, -32768, 32767);
  levels[7] = -32768;
  for (bool intra : {false, true}) encode({intra, true, 0}, levels, 64, 7);
}

TEST_P(H261Coefficients, LiteralText) {
  Block levels{};
  levels[0] = 128;
  levels[1] = -2, levels[16] = 1, levels[63] = 20;  // indices 1, 3, 63
  EXPECT_EQ(encode({true, true, 0}, levels, 4, 5), codes("11111111 0100 1 011 0 000001 111011 00010100 10"));
  EXPECT_EQ(encode({true, true, 0}, levels, 1, 0), codes("11111111 10"));
  EXPECT_EQ(encode({true, false, 0}, levels, 3, 0), codes("11111111 0100 1 0000001110 0 10"));  // run 14
  levels[0] = -1;
  EXPECT_EQ(encode({false, true, 0}, levels, 3, 7), codes("11 0100 1 011 0 10"));
  levels[0] = 0;
  EXPECT_EQ(encode({false, true, 0}, levels, 1, 7), codes("000110 1 10"));  // run 1, level -2
}

/// Null pointers, of the stream too; the bit offset; then the last fault, which decoding does not have.
TEST_P(H261Coefficients, Arguments) {
  std::vector<Mox8u> stream(200, 0x51);  // an intra DC, or 010 100 01: no fault
  const Block levels = {1, 2, 3};
  const Mox8u *read = stream.data(), *noRead = nullptr;
  Mox8u *write = stream.data(), *noWrite = nullptr;
  Mox32s offset = 0, low = -1, high = 8, last = 5;
  const auto expect_order = [&](auto function, auto good, auto faults) {
    Call call(function, good);
    call.keeps(block_.data(), 128).keeps(&last, 4).keeps(stream.data(), stream.size()).keeps(&offset, 4);
    call.keeps(&read, sizeof read).keeps(&write, sizeof write).expect_order(faults);
    offset = 0, read = write = stream.data();
  };
  std::fill(block_.begin(), block_.end(), Mox16s{-9999});
  std::fill(stream.begin() + 1, stream.end(), Mox8u{0xAA});  // ends of block
  for (Mox32s* bad : {&low, &high}) {
    using Faults = std::vector<Call<const Mox8u**, Mox32s*, Mox16s*, Mox32s*, Mox32s>::Fault>;
    const std::tuple good{&read, &offset, block_.data(), &last, 7};
    Faults faults = {{moxStsNullPointer, set<0>(nullptr)}, {moxStsNullPointer, set<0>(&noRead)},
                     {moxStsNullPointer, set<1>(nullptr)}, {moxStsNullPointer, set<2>(nullptr)},
                     {moxStsNullPointer, set<3>(nullptr)}, {moxStsBadBitOffset, set<1>(bad)}};
    expect_order(lib(MOX_FN(moxiDecodeCoeffsIntra_H261_1u16s)), good, faults);
    expect_order(lib(MOX_FN(moxiDecodeCoeffsInter_H261_1u16s)), good, faults);
    faults.push_back({moxStsBadQp, set<4>(bad == &low ? 0 : 32)});
    expect_order(lib(MOX_FN(moxiReconstructCoeffsIntra_H261_1u16s)), good, faults);
    expect_order(lib(MOX_FN(moxiReconstructCoeffsInter_H261_1u16s)), good, faults);
    for (auto encode : {MOX_FN(moxiEncodeCoeffsIntra_H261_16s1u), MOX_FN(moxiEncodeCoeffsInter_H261_16s1u)}) {
      using EncodeFaults = std::vector<Call<const Mox16s*, Mox8u**, Mox32s*, Mox32s, Mox32s>::Fault>;
      expect_order(lib(encode), std::tuple{levels.data(), &write, &offset, 3, 0},
                   EncodeFaults{{moxStsNullPointer, set<0>(nullptr)},
                                {moxStsNullPointer, set<1>(nullptr)},
                                {moxStsNullPointer, set<1>(&noWrite)},
                                {moxStsNullPointer, set<2>(nullptr)},
                                {moxStsBadBitOffset, set<2>(bad)},
                                {moxStsOutOfRange, set<3>(bad == &low ? 0 : 65)}});
      stream[0] = 0x51;
      std::fill(stream.begin() + 1, stream.end(), Mox8u{0xAA});
    }
  }
}

MOX_INSTANTIATE_GENERATIONS(H261Coefficients);

}  // namespace
}  // namespace mox::test
