#include <gtest/gtest.h>

#include <cstdint>
#include <string>

#include "moxvc/h264_cavlc.h"
#include "support/bits.hpp"
#include "support/call.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

/// ue(v) of a codeNum (ITU-T H.264 9.1): the digits of codeNum + 1 behind as many zeros as digits follow the first.
std::string encode(std::uint64_t codeNum) {
  int digits = 1;
  while ((codeNum + 1) >> digits) ++digits;
  return std::string(digits - 1, '0') + bits_of(codeNum + 1, digits);
}

class ExpGolomb : public PerGeneration {
 protected:
  void expect(const std::string& bits, int offset, bool isSigned, MoxStatus status, std::int64_t value, int used) {
    WordStream narrow(bits, offset), wide(bits, offset);
    Mox16s value16 = 0x5A5A;
    Mox32s value32 = 0x5A5A5A5A;
    EXPECT_EQ(lib(MOX_FN(moxiDecodeExpGolombOne_H264_1u16s))(&narrow.word, &narrow.offset, &value16, isSigned), status);
    EXPECT_EQ(lib(MOX_FN(moxiDecodeExpGolombOne_H264_1u32s))(&wide.word, &wide.offset, &value32, isSigned), status);
    EXPECT_EQ(value16, status == moxStsOk ? static_cast<Mox16s>(value) : 0x5A5A) << bits;
    EXPECT_EQ(value32, status == moxStsOk ? static_cast<Mox32s>(value) : 0x5A5A5A5A) << bits;
    EXPECT_EQ(narrow.consumed(), used) << bits << " at " << offset;
    EXPECT_EQ(wide.consumed(), used) << bits << " at " << offset;
  }
};

TEST_P(ExpGolomb, FirstCodes) {
  // The mapping of se(v): 0, 1, -1, 2, -2, 3.
  const struct {
    const char* bits;
    int ue, se;
  } cases[] = {{"1", 0, 0}, {"010", 1, 1}, {"011", 2, -1}, {"00100", 3, 2}, {"00101", 4, -2}, {"00110", 5, 3}};
  for (const auto& c : cases) {
    for (int offset = 0; offset < 32; ++offset) {
      expect(c.bits, offset, false, moxStsOk, c.ue, static_cast<int>(std::string(c.bits).size()));
      expect(c.bits, offset, true, moxStsOk, c.se, static_cast<int>(std::string(c.bits).size()));
    }
  }
}

TEST_P(ExpGolomb, AllLengths) {
  Random random;
  for (int length = 0; length < 32; ++length) {
    const std::uint64_t first = (std::uint64_t{1} << length) - 1, last = 2 * first;
    for (std::uint64_t code :
         {first, last, first + random.bits() % (last - first + 1), first + random.bits() % (last - first + 1)}) {
      const std::string bits = encode(code);
      const auto half = static_cast<std::int64_t>((code + 1) / 2);
      expect(bits, random(0, 31), false, moxStsOk, static_cast<std::int64_t>(code), 2 * length + 1);
      expect(bits, random(0, 31), true, moxStsOk, code % 2 ? half : -half, 2 * length + 1);
    }
  }
}

TEST_P(ExpGolomb, LongestCodeIsZeroAndLongerOnesLeaveThePosition) {
  Random random;
  for (int offset = 0; offset < 32; ++offset) {
    for (bool is_signed : {false, true}) {
      expect(std::string(32, '0') + '1' + random_bits(random, 32), offset, is_signed, moxStsOk, 0, 65);
      for (int zeros : {33, 34, 40, 64}) {
        expect(std::string(zeros, '0') + '1' + random_bits(random, 64), offset, is_signed, moxStsBadBitstream, 0, 0);
      }
    }
  }
}

TEST_P(ExpGolomb, Arguments) {
  WordStream stream(encode(2) + encode(2) + encode(2) + encode(2));
  Mox16s value16 = 0;
  Mox32s value32 = 0, below = -1, above = 32;
  const Mox32u* none = nullptr;
  const auto expect_order = [&](auto function, auto* value) {
    Call{function, std::tuple{&stream.word, &stream.offset, value, 0}}
        .keeps(value, sizeof *value)
        .keeps(&stream.offset, sizeof stream.offset)
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set<0>(&none)},
                       {moxStsNullPointer, set<1>(nullptr)},
                       {moxStsNullPointer, set<2>(nullptr)},
                       {moxStsBadArg, set<1>(&below)},
                       {moxStsBadArg, set<1>(&above)}});
    EXPECT_EQ(*value, 2);
  };
  const auto narrow = lib(MOX_FN(moxiDecodeExpGolombOne_H264_1u16s));
  const auto wide = lib(MOX_FN(moxiDecodeExpGolombOne_H264_1u32s));
  expect_order(narrow, &value16);
  expect_order(wide, &value32);
  // The 16-bit form looks at the low byte of isSigned, the 32-bit form at all of it.
  EXPECT_EQ(narrow(&stream.word, &stream.offset, &value16, 0x100), moxStsOk);
  EXPECT_EQ(wide(&stream.word, &stream.offset, &value32, 0x100), moxStsOk);
  EXPECT_EQ(value16, 2);
  EXPECT_EQ(value32, -1);
}

MOX_INSTANTIATE_GENERATIONS(ExpGolomb);

}  // namespace
}  // namespace mox::test
