#include <gtest/gtest.h>

#include "moxvc/dv_segment.h"
#include "oracle/dv_segment.hpp"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"

namespace mox::test {
namespace {

using oracle::DvTestBlock;
using oracle::DvTestCode;
using oracle::DvTestLayout;
using oracle::DvTestSegment;
using oracle::kDvEndOfBlock;
using oracle::kDvTestEight;
using oracle::kDvTestSix;

const std::string kOnes(408 * 8, '1');
const DvTestCode kLevelOne{"000", 1, 1};  // 3 bits

/// A block of `bits` bits: levels of 1 and -2 on end, then the end code.
DvTestBlock block_of(int bits, int dc = 0) {
  DvTestBlock block{dc, 0, 0, {}};
  int left = bits - 12 - 4;
  for (; left % 3; left -= 4) block.codes.push_back({"0101", 1, -2});
  for (; left > 0; left -= 3) block.codes.push_back(kLevelOne);
  block.codes.push_back(kDvEndOfBlock);
  EXPECT_EQ(static_cast<int>(block.bits().size()), bits);
  return block;
}

class DvSegment : public PerGeneration {
 protected:
  struct Result {
    std::vector<Mox16s> coefficients;
    std::vector<Mox32u> parameters;
  };
  /// Decodes a segment in guarded memory: `limit` scan positions of the first pass, or all passes if it is 0.
  Result decode(const std::vector<Mox8u>& bytes, bool eight, int limit = 0) {
    const std::size_t count = eight ? 40 : 30;
    const Guarded<Mox8u> stream(408);
    std::copy(bytes.begin(), bytes.end(), stream.begin());
    const Guarded<Mox16s> coefficients(64 * count);
    const Guarded<Mox32u> parameters(count);
    std::fill(coefficients.begin(), coefficients.end(), Mox16s{0});
    std::fill(parameters.begin(), parameters.end(), 0xFFFFFFFF);
    const auto plain =
        lib(eight ? MOX_FN(moxiHuffmanDecodeSegment_DV100_8u16s) : MOX_FN(moxiHuffmanDecodeSegment_DV_8u16s));
    const auto one_pass = lib(MOX_FN(moxiHuffmanDecodeSegmentOnePass_DV_8u16s));
    EXPECT_EQ(limit ? one_pass(stream.data(), nullptr, nullptr, coefficients.data(), parameters.data(), limit)
                    : plain(stream.data(), nullptr, nullptr, coefficients.data(), parameters.data()),
              moxStsOk);
    return {coefficients.copy(), parameters.copy()};
  }
  /// Decodes what the writer made, and compares it with what the writer knows. Returns the parameters.
  std::vector<Mox32u> check(const DvTestLayout& layout, const std::vector<DvTestBlock>& blocks,
                            const std::string& unused, int limit = 0) {
    const DvTestSegment segment(layout, blocks, {1, 15, 0, 8, 6}, unused);
    const Result got = decode(segment.bytes(), layout.bits.size() == 8, limit);
    std::vector<Mox16s> coefficients(64 * blocks.size());
    std::vector<Mox32u> parameters;
    for (int i = 0; i < static_cast<int>(blocks.size()); ++i) {
      parameters.push_back(segment.expect(i, &coefficients[64 * i], limit));
      EXPECT_EQ(got.parameters[i], parameters[i]) << "block " << i << " " << segment.placed(i) << " bits";
    }
    EXPECT_TRUE(got.coefficients == coefficients);
    return got.parameters;
  }
  static std::vector<DvTestBlock> sparse(int count, int bits = 16) { return std::vector(count, block_of(bits)); }
};

/// Segments whose blocks take anything between nothing and much more than their bits.
TEST_P(DvSegment, DecodesWhatWasWritten) {
  Random random;
  const auto& codes = oracle::dv_test_codes();
  int unfinished = 0, with_help = 0;
  for (int round = 0; round < 900 && !HasFailure(); ++round) {
    const DvTestLayout& layout = round % 3 ? kDvTestSix : kDvTestEight;
    const int count = static_cast<int>(layout.bits.size()), density = random(1, 60);
    std::vector<DvTestBlock> blocks(5 * count);
    for (DvTestBlock& block : blocks) {
      block = {random(-256, 255), random(0, 1), random(0, 3), {}};
      int position = 0;
      for (int wanted = random(0, density); wanted > 0 && position < 64; --wanted) {
        // Short codes mostly: runs of 0 and 1 come first, runs alone and escapes last.
        block.codes.push_back(codes[random(0, random.chance(0.9) ? 40 : static_cast<int>(codes.size()) - 1)]);
        position += block.codes.back().advance;
      }
      if (position < 64) block.codes.push_back(kDvEndOfBlock);
    }
    check(layout, blocks, random_bits(random, 408 * 8));
    if (count == 6) check(layout, blocks, random_bits(random, 408 * 8), random(1, 64));
    const DvTestSegment segment(layout, blocks, {}, kOnes);
    for (int i = 0; i < 5 * count; ++i) {
      const int length = static_cast<int>(blocks[i].bits().size());
      unfinished += segment.placed(i) < length;
      with_help += segment.placed(i) == length && length > layout.bits[i % count];
    }
  }
  EXPECT_GT(unfinished, 1000);
  EXPECT_GT(with_help, 1000);
}

TEST_P(DvSegment, EveryCode) {
  const auto& codes = oracle::dv_test_codes();
  EXPECT_EQ(codes.size(), 2u * 82 + 6 + 64 + 512);
  for (std::size_t first = 0; first < codes.size(); first += 30) {
    auto blocks = sparse(30);
    for (std::size_t i = 0; i < 30 && first + i < codes.size(); ++i) {
      blocks[i].mode = i % 2;
      blocks[i].codes = {codes[first + i]};
      if (codes[first + i].advance < 64) blocks[i].codes.push_back(kDvEndOfBlock);
    }
    check(kDvTestSix, blocks, kOnes);
  }
}

/// Words of block parameters by hand. QNO of macroblock 0 is 1.
TEST_P(DvSegment, ParametersOfShortBlocks) {
  auto blocks = sparse(30);
  const DvTestCode minus{"001", 1, -1}, far{"1111110111101", 62, 0}, past{"01110", 2, 1};
  blocks[1] = {-3, 1, 2, {minus, kDvEndOfBlock}};
  blocks[2].codes = {far, past};
  blocks[3].codes = {{"1111110111110", 63, 0}, kDvEndOfBlock};
  const auto six = check(kDvTestSix, blocks, kOnes);
  EXPECT_EQ(six[0], 0x10001u);
  EXPECT_EQ(six[1], 0x10161u);
  EXPECT_EQ(six[2], 0x13E00u);
  EXPECT_EQ(six[3], 0x13F01u);
  EXPECT_EQ(six[6], 0xF0001u);
  // The mode bit chooses the scan of DV, and is only reported by DV100.
  DvTestBlock two_fields{0, 1, 0, {kLevelOne, kDvEndOfBlock}};
  blocks = sparse(30), blocks[0] = two_fields;
  const std::vector<DvTestBlock> eight(40, two_fields);
  EXPECT_EQ(decode(DvTestSegment(kDvTestSix, blocks, {}, kOnes).bytes(), false).coefficients[32], 64);
  EXPECT_EQ(decode(DvTestSegment(kDvTestEight, eight, {}, kOnes).bytes(), true).coefficients[1], 64);
  EXPECT_EQ(check(kDvTestEight, eight, kOnes)[0], 0x10141u);
}

/// Who gets which bits: blocks of exact lengths among blocks of a DC and an end alone, or full ones.
TEST_P(DvSegment, BitsGoWhereTheyAreNeeded) {
  // Block 0 ends with its last bit: it neither needs nor gives. Block 1 takes 5 bits of block 2, which has 5 to spare,
  // so block 3 gets none of those, but 9 of block 4.
  auto blocks = sparse(30, 112);
  for (int i = 4; i < 30; ++i) blocks[i] = block_of(i % 6 < 4 ? 112 : 80);
  blocks[1] = block_of(112 + 5), blocks[2] = block_of(112 - 5), blocks[3] = block_of(112 + 9), blocks[4] = block_of(71);
  for (const auto parameter : check(kDvTestSix, blocks, kOnes)) EXPECT_EQ(parameter & 1, 1u);
  // The same with one bit too few: block 3, the later one, cannot finish.
  blocks[4] = block_of(72);
  const auto short_of_one = check(kDvTestSix, blocks, kOnes);
  EXPECT_EQ(short_of_one[1] & 1, 1u);
  EXPECT_EQ(short_of_one[3] & 1, 0u);
  // Macroblock 4 ends with what macroblock 0 has left behind its own need; in front of it stand macroblocks 1 to 3.
  for (int i = 0; i < 30; ++i) blocks[i] = block_of(i % 6 < 4 ? 112 : 80);
  blocks[0] = block_of(112 + 7), blocks[5] = block_of(80 - 7 - 40), blocks[24] = block_of(112 + 40);
  EXPECT_EQ(check(kDvTestSix, blocks, kOnes)[24] & 1, 1u);
  // All that is spare: a block of 64 positions with long codes runs through nine others.
  blocks = sparse(30);
  blocks[29].codes.assign(63, {"1111111100000011", 1, -129});
  blocks[29].codes.push_back(kDvEndOfBlock);
  EXPECT_EQ(check(kDvTestSix, blocks, kOnes)[29], 0x63F01u);
}

TEST_P(DvSegment, OnePassStopsAtTheLimit) {
  auto blocks = sparse(30);
  blocks[1] = block_of(19), blocks[2] = block_of(112 + 9);
  for (const auto parameter : {1, 2}) EXPECT_EQ(check(kDvTestSix, blocks, kOnes, 1)[parameter] & 0xFF01, 0u);
  EXPECT_EQ(check(kDvTestSix, blocks, kOnes, 1)[0] & 0xFF01, 1u);
  EXPECT_EQ(check(kDvTestSix, blocks, kOnes, 2)[1] & 0xFF01, 0x101u);
  check(kDvTestSix, blocks, kOnes, 64);
  // Limits that are none count as the next one that is.
  const auto bytes = DvTestSegment(kDvTestSix, blocks, {}, kOnes).bytes();
  EXPECT_TRUE(decode(bytes, false, 1000).coefficients == decode(bytes, false, 64).coefficients);
  EXPECT_TRUE(decode(bytes, false, -5).parameters == decode(bytes, false, 1).parameters);
}

/// Whatever the bits are, positions and levels keep their limits, and no memory but the stated one is touched.
TEST_P(DvSegment, AnyBits) {
  Random random;
  for (int round = 0; round < 600; ++round) {
    std::vector<Mox8u> bytes(408);
    fill(std::span(bytes), kPatterns[round % 7], random);
    for (Mox8u& byte : bytes) byte = static_cast<Mox8u>(byte | (round % 2 && random.chance(0.6) ? 0xFC : 0));
    decode(bytes, false, random(1, 64));
    for (const bool eight : {false, true}) {
      const Result result = decode(bytes, eight);
      for (int i = 0; i < 64 * (eight ? 40 : 30); ++i) {
        const Mox32u parameter = result.parameters[i / 64];
        const int position = DvTestSegment::scan(!eight && parameter & 64, i % 64);
        const int value = result.coefficients[i / 64 * 64 + position];
        ASSERT_EQ(parameter & ~0xF3F71u, 0u);
        ASSERT_TRUE(i % 64 == 0 || (value % 64 == 0 && std::abs(value) <= 255 * 64));
        ASSERT_TRUE(i % 64 <= static_cast<int>(parameter >> 8 & 63) || value == 0);
      }
    }
  }
}

TEST_P(DvSegment, TableOfTwoLists) {
  // 2 bits: no code of length 1; 00 is run 3, level -1, 01 is run 0, level 600, of which the low 10 bits stay. 3 bits,
  // 1 in front: one code of length 1, bit 1; two of length 3, the last of them also 111, as 7 of its 8 bits count.
  const Guarded<Mox32u> first{0xABCDEF02, 0, 0, 0, 2, 0, 3, 0xFFFFFFFF, 1, 0, 600};
  const Guarded<Mox32u> second{3, 0, 0, 1, 1, 300, 1, 0, 2, 0, 5, 2, 15, 6, 2};
  Mox32u* table = nullptr;
  ASSERT_EQ(lib(MOX_FN(moxiInitAllocHuffmanTable_DV_32u))(first.data(), second.data(), &table), moxStsOk);
  const auto entry = [](Mox32u length, Mox32u run, Mox32u level) { return length | run << 8 | (level * 64 << 16); };
  const Mox32u one = entry(5, 300 & 255, 1), none = 255;
  std::vector<Mox32u> want = {entry(2, 3, 0x3FF), entry(2, 0, 600 & 0x3FF), none, none, entry(7, 5, 2)};
  want.insert(want.end(), {none, none, none, one, one, one, entry(7, 6, 2)});
  EXPECT_EQ(std::vector<Mox32u>(table, table + 12), want);
  EXPECT_EQ(lib(MOX_FN(moxiFreeHuffmanTable_DV_32u))(table), moxStsOk);
  for (const Mox32u width : {28u, 40u, 255u}) {
    const Mox32u too_wide[] = {width, 0, 0};
    EXPECT_EQ(lib(MOX_FN(moxiInitAllocHuffmanTable_DV_32u))(too_wide, too_wide, &(table = &first[0])), moxStsNoMemory);
    EXPECT_EQ(table, nullptr);
  }
}

TEST_P(DvSegment, Arguments) {
  const Guarded<Mox8u> stream(408);
  const Guarded<Mox16s> coefficients(64 * 40);
  const Guarded<Mox32u> words(40), description{1, 0, 0, 0};
  Mox32u* table = words.data();
  const auto decoder = [&](auto symbol, auto... more) {
    Call{lib(symbol), std::tuple{stream.data(), nullptr, nullptr, coefficients.data(), words.data(), more...}}
        .keeps(coefficients.data(), 64 * 80)
        .keeps(words.data(), 160)
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set<3>(nullptr)},
                       {moxStsNullPointer, set<4>(nullptr)}});
  };
  std::fill(stream.begin(), stream.end(), Mox8u{0});
  decoder(MOX_FN(moxiHuffmanDecodeSegment_DV_8u16s));
  decoder(MOX_FN(moxiHuffmanDecodeSegment_DV100_8u16s));
  decoder(MOX_FN(moxiHuffmanDecodeSegmentOnePass_DV_8u16s), 64);
  Call{lib(MOX_FN(moxiInitAllocHuffmanTable_DV_32u)), std::tuple{description.data(), description.data(), &table}}
      .keeps(&table, sizeof table)
      .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                     {moxStsNullPointer, set<1>(nullptr)},
                     {moxStsNullPointer, set<2>(nullptr)}});
  EXPECT_EQ(lib(MOX_FN(moxiFreeHuffmanTable_DV_32u))(nullptr), moxStsNullPointer);
  EXPECT_EQ(lib(MOX_FN(moxiFreeHuffmanTable_DV_32u))(table), moxStsOk);
}

MOX_INSTANTIATE_GENERATIONS(DvSegment);

}  // namespace
}  // namespace mox::test
