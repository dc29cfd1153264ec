#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <numeric>
#include <span>
#include <string>
#include <vector>

#include "oracle/mpeg12_block.hpp"
#include "support/call.hpp"
#include "support/library.hpp"

namespace mox::test {
namespace {

using oracle::Block;
using oracle::Coding;
using oracle::Decoded;

/// What the library makes of the descriptions; kept until the program ends. The portable generation builds them for
/// all.
template <class Table, class Function, class Description>
Table* built(Symbol<Function> builder, const Description& description) {
  Table* table = nullptr;
  EXPECT_EQ(Library::portable()[builder](description.data(), &table), moxStsOk);
  return table;
}
/// The DC sizes of MPEG-1, whose last code is not used.
constexpr std::string_view kShortSizes = "100 00 01 101 110 1110 11110 111110 1111110";

/// Codes as text and as the library's tables.
struct Codes {
  std::string_view sizesText;
  int sizeWidth;  ///< of each level; divides the longest code's length, so that no code reads no further than that
  const example::RunLevelText* text;
  std::vector<MoxVlcSpec> widths;
  oracle::CodeBook<int> sizes = oracle::code_book(sizesText);
  oracle::CodeBook<oracle::RunLevel> codes = oracle::code_book(*text);
  MoxVlcTable* sizeTable = built<MoxVlcTable>(MOX_FN(moxiHuffmanTableInitAlloc_32s),
                                              example::describe<60>(sizesText, sizeWidth, [](int i) { return i; }));
  MoxVlcTable* table = built<MoxVlcTable>(MOX_FN(moxiHuffmanRunLevelTableInitAlloc_32s), with_widths());
  MoxRLEncodeTable* encodeTable =
      built<MoxRLEncodeTable>(MOX_FN(moxiCreateRLEncodeTable), example::describe_run_levels(*text));

  /// The description with these level widths in place of its own two.
  std::vector<MoxVlcSpec> with_widths() const {
    const auto description = example::describe_run_levels(*text);
    std::vector<MoxVlcSpec> words = {0, static_cast<MoxVlcSpec>(widths.size())};
    words.insert(words.end(), widths.begin(), widths.end());
    words.insert(words.end(), description.data() + 4, description.data() + description.size);
    return words;
  }
};
const std::vector<Codes>& all_codes() {
  static const auto& all = *new std::vector<Codes>{{example::kDcSizeLumaCodes, 3, &example::kDctCoefZeroCodes, {9, 8}},
                                                   {example::kDcSizeChromaCodes, 5, &example::kDctCoefOneCodes, {17}},
                                                   {kShortSizes, 7, &example::kDctCoefZeroCodes, {0, 5, 0, 1, 11}}};
  return all;
}

class Mpeg12Block : public PerGeneration {
 protected:
  /// Decodes `bits` from a word's bit `offset` on, with the library and the oracle. Behind the text there is one word.
  Decoded decode(const Coding& coding, const Codes& codes, const std::string& bits, int offset, int pred = 0) {
    SCOPED_TRACE(testing::Message() << (coding.mpeg2 ? "MPEG-2 " : "MPEG-1 ") << (coding.intra ? "intra" : "non-intra")
                                    << ", bits " << bits.substr(0, 100) << ", offset " << offset);
    const Decoded expected = oracle::Decoder(coding, bits, pred).run();
    WordStream in(bits.substr(0, static_cast<std::size_t>(expected.consumed)), offset);
    std::copy(coding.scan.begin(), coding.scan.end(), scan_.begin());
    std::copy(coding.weights.begin(), coding.weights.end(), weights_.begin());
    std::fill(block_.begin(), block_.end(), Mox16s{-9999});
    auto dc = static_cast<Mox16s>(pred);
    Mox32s last = 777;
    const auto intra = [&](auto function, auto... shift) {
      return function(&in.word, &in.offset, codes.sizeTable, codes.table, scan_.data(), coding.quantScale,
                      weights_.data(), &dc, shift..., block_.data(), &last);
    };
    const auto other = [&](auto function) {
      return function(&in.word, &in.offset, codes.table, codes.table, scan_.data(), coding.quantScale, weights_.data(),
                      block_.data(), &last);
    };
    const MoxStatus status =
        coding.intra   ? coding.mpeg2 ? intra(lib(MOX_FN(moxiReconstructDCTBlockIntra_MPEG2_32s)), coding.shiftDC)
                                      : intra(lib(MOX_FN(moxiReconstructDCTBlockIntra_MPEG1_32s)))
          : coding.mpeg2 ? other(lib(MOX_FN(moxiReconstructDCTBlock_MPEG2_32s)))
                       : other(lib(MOX_FN(moxiReconstructDCTBlock_MPEG1_32s)));
    EXPECT_EQ(status, expected.good ? moxStsOk : moxStsBadBitstream);
    EXPECT_EQ(block_.copy(), std::vector<Mox16s>(expected.block.begin(), expected.block.end()));
    EXPECT_EQ(in.consumed(), expected.consumed);
    EXPECT_EQ(last, expected.good ? expected.last : 777);
    EXPECT_EQ(dc, coding.intra ? expected.pred : pred);
    return expected;
  }
  /// Writes a block into cleared words behind some bits of others, with an end of block, and compares with the text.
  std::string put(const Coding& coding, const Codes& codes, const Block& block, int pred, int count, int begun) {
    const std::string end = oracle::code_of(coding.codes, {example::kEndOfBlockRun, 0});
    const std::string text = oracle::encode(coding, block, pred, count) + end;
    const std::string expected = std::string(begun, '1') + text;
    const Guarded<Mox32u> words((expected.size() + 31) / 32);
    std::fill(words.begin(), words.end(), 0u);
    if (begun) words[0] = ~0u << (32 - begun);
    Mox32u* word = words.data();
    Mox32s offset = 32 - begun, dc = pred;
    const auto eob = static_cast<Mox32u>(value_of(end));
    const auto length = static_cast<Mox32s>(end.size());
    std::vector<Mox32u> sizes(2 * 33);
    for (const auto& [code, size] : coding.sizes) {
      sizes[2 * size] = static_cast<Mox32u>(value_of(code));
      sizes[2 * size + 1] = static_cast<Mox32u>(code.size());
    }
    EXPECT_EQ(coding.intra ? lib(MOX_FN(moxiPutIntraBlock))(&word, &offset, block.data(), &dc, sizes.data(),
                                                            codes.encodeTable, coding.scan.data(), length, eob, count)
                           : lib(MOX_FN(moxiPutNonIntraBlock))(&word, &offset, block.data(), codes.encodeTable,
                                                               coding.scan.data(), length, eob, count),
              moxStsOk);
    std::string written;
    for (Mox32u w : words) written += bits_of(w, 32);
    EXPECT_EQ(written, expected + std::string(written.size() - expected.size(), '0'));
    EXPECT_EQ((word - words.data()) * 32 + 32 - offset, static_cast<std::ptrdiff_t>(expected.size()));
    EXPECT_TRUE(offset >= 1 && offset <= 32) << offset;
    EXPECT_EQ(dc, coding.intra ? block[0] : pred);
    return text;
  }

  const Guarded<Mox32s> scan_ = Guarded<Mox32s>(64);
  const Guarded<Mox16s> weights_ = Guarded<Mox16s>(64), block_ = Guarded<Mox16s>(64);
};

/// Every form with each set of tables: visit(coding, codes). The scan is a random one that begins at 0.
template <class Visit>
void for_each_coding(Random& random, Visit visit) {
  for (const Codes& codes : all_codes()) {
    for (int form = 0; form < 4; ++form) {
      Coding coding{form % 2 == 0, form > 1, codes.sizes, codes.codes, {}, 1, 0, {}};
      for (int i = 0; i < 64; ++i) coding.scan[i] = i;
      for (int i = 63; i > 1; --i) std::swap(coding.scan[i], coding.scan[random(1, i)]);
      coding.quantScale = random(1, 112);
      coding.shiftDC = random(0, 3);
      random.fill<Mox16s>(coding.weights, 1, 255);
      visit(coding, codes);
    }
  }
}

/// A DC difference of a random size, in front of an intra block.
std::string random_dc(Random& random, const Coding& coding) {
  if (!coding.intra) return "";
  const int size = random(0, static_cast<int>(coding.sizes.size()) - 1);
  return oracle::code_of(coding.sizes, size) + random_bits(random, size);
}

TEST_P(Mpeg12Block, EveryCodeIsReadAtEveryOffset) {
  Random random;
  for_each_coding(random, [&](Coding coding, const Codes& codes) {
    const std::string end = oracle::code_of(coding.codes, {example::kEndOfBlockRun, 0});
    std::vector<std::string> texts;
    for (const auto& [code, meaning] : coding.codes) {
      if (meaning.second != 0) texts.push_back(code);
    }
    for (int level : {0, 1, -1, 127, 128, 255, -127, -128, -255, -256, 2047, -2047, -2048}) {
      if (coding.mpeg2 || std::abs(level) <= 256) texts.push_back(oracle::escape(coding.mpeg2, random(0, 62), level));
    }
    for (const auto& [code, size] : coding.sizes) {
      if (coding.intra) decode(coding, codes, code + random_bits(random, size) + end, random(0, 31), random(-999, 999));
    }
    if (coding.intra && codes.sizesText == kShortSizes) {
      EXPECT_FALSE(decode(coding, codes, "1111111", random(0, 31), random(-999, 999)).good);
    }
    for (const std::string& text : texts) {
      if (!coding.intra && text[0] == '1') continue;
      for (int offset = 0; offset < 32; ++offset) {
        const Decoded got = decode(coding, codes, random_dc(random, coding) + text + end, offset);
        ASSERT_TRUE(got.good);
      }
    }
    if (!coding.intra) {
      for (const char* first : {"10", "11"}) decode(coding, codes, first + end, random(0, 31));
    }
  });
}

TEST_P(Mpeg12Block, RandomAndCorruptStreams) {
  Random random;
  int good = 0, bad = 0;
  for (int round = 0; round < 60; ++round) {
    for_each_coding(random, [&](Coding coding, const Codes& codes) {
      std::string bits = random_dc(random, coding);
      for (int left = random(0, 70); left > 0; --left) {
        const int kind = random(0, 5);
        auto code = coding.codes.begin();
        std::advance(code, random(0, static_cast<int>(coding.codes.size()) - 1));
        if (kind == 0) bits += oracle::escape(coding.mpeg2, random.chance(0.8) ? random(0, 3) : 63, random(-255, 255));
        if (kind == 1 && code->second.first < 64) bits += code->first;
        if (kind > 1) bits += oracle::code_of(coding.codes, {0, random.chance(0.5) ? 1 : -1});
      }
      if (random.chance(0.7)) bits += oracle::code_of(coding.codes, {example::kEndOfBlockRun, 0});
      if (random.chance(0.1)) bits = "";
      if (random.chance(0.1)) coding.quantScale = static_cast<Mox32s>(random.bits());
      if (random.chance(0.1)) random.fill<Mox16s>(coding.weights);
      bits += random_bits(random, 3000);  // more than 64 of the longest escapes
      (decode(coding, codes, bits, random(0, 31), random(-32768, 32767)).good ? good : bad)++;
    });
  }
  EXPECT_TRUE(good > 200 && bad > 100) << good << " good, " << bad << " bad";
}

/// Streams by hand: codes of table zero, weights of 16, positions in raster order, DC shifted by 1 in MPEG-2.
TEST_P(Mpeg12Block, LiteralBlocks) {
  struct Case {
    bool intra, mpeg2;
    const char* bits;
    int quantScale, pred, last;
    std::vector<std::pair<int, Mox16s>> values;
  };
  const Case cases[] = {
      {true, true, "100 10", 1, 5, 0, {{0, 10}, {63, 1}}},  // DC alone: even, so 63 changes
      {true, true, "100 110 10", 16, 5, 1, {{0, 10}, {1, 16}, {63, 1}}},
      {true, true, "00 0 110 10", 1, 5, 1, {{0, 8}, {1, 1}}},                          // difference -1; 8 + 1 is odd
      {true, false, "01 01 10", 1, 100, 0, {{0, 84}}},                                 // difference -2, times 8
      {true, false, "100 110 10", 1, 0, 1, {{1, 1}}},                                  // 2 becomes 1
      {true, false, "100 111 10", 1, 0, 1, {{1, -1}}},                                 // -2 becomes -1
      {true, false, "100 000001000001 00000000 11111111 10", 31, 0, 2, {{2, 2047}}},   // level 255
      {true, false, "100 000001000000 10000000 00000000 10", 31, 0, 1, {{1, -2048}}},  // level -256
      {false, true, "10 10", 16, 0, 1, {{0, 24}, {63, 1}}},                            // index 0 is told as 1
      {false, true, "11 10", 2, 0, 1, {{0, -3}}},
      {false, true, "10 000001111110 000000000001 10", 2, 0, 63, {{0, 3}, {63, 2}}},  // 3 + 3 is even: 63 goes down
      {false, true, "000001111111 100000000000 10", 112, 0, 63, {{63, 32713}}},       // -229432 wraps, and is even
      {false, false, "10 10", 3, 0, 0, {{0, 9}}},
  };
  const Codes& codes = all_codes()[0];
  for (const Case& c : cases) {
    Coding coding{c.intra, c.mpeg2, codes.sizes, codes.codes, {}, c.quantScale, 1, {}};
    std::iota(coding.scan.begin(), coding.scan.end(), 0);
    coding.weights.fill(16);
    Block expected{};
    for (const auto& [position, value] : c.values) expected[position] = value;
    const Decoded got = decode(coding, codes, mox::test::codes(c.bits), 31, c.pred);
    EXPECT_TRUE(got.good) << c.bits;
    EXPECT_EQ(got.block, expected) << c.bits;
    EXPECT_EQ(got.last, c.last) << c.bits;
  }
}

/// Tables that no standard has: an end of block in place of the first coefficient; a code of one bit whose leaf lies
/// in the second level, where it gives back a bit of the first.
TEST_P(Mpeg12Block, OddTables) {
  constexpr MoxVlcTable kEnd = 254 << 8, kLink = 5 << 8 | 128, kOne = 1 << 16 | 2;
  const MoxVlcTable ends[] = {1, kEnd, kEnd}, spans[] = {2, kLink, kLink, kEnd | 1, kEnd | 1, 1, kOne, kOne};
  const std::vector<Mox16s> weights(64, 16);
  std::vector<Mox32s> scan(64);
  std::iota(scan.begin(), scan.end(), 0);
  for (bool mpeg2 : {false, true}) {
    const auto decode_with = [&](const MoxVlcTable* table, const std::string& bits, int offset) {
      WordStream in(bits, offset);
      Block block;
      Mox32s last = 777;
      EXPECT_EQ(lib(mpeg2 ? MOX_FN(moxiReconstructDCTBlock_MPEG2_32s) : MOX_FN(moxiReconstructDCTBlock_MPEG1_32s))(
                    &in.word, &in.offset, table, table, scan.data(), 2, weights.data(), block.data(), &last),
                moxStsOk);
      EXPECT_EQ(in.consumed(), static_cast<int>(bits.size()));
      return std::pair(last, block);
    };
    Block empty{};
    empty[63] = mpeg2;
    EXPECT_EQ(decode_with(ends, "0", 0), (std::pair{-1, empty}));
    for (int offset = 0; offset < 32; ++offset) {
      const auto [last, block] = decode_with(spans, "0001", offset);
      EXPECT_EQ(last, 2);
      EXPECT_EQ(block, (mpeg2 ? Block{3, 3, 3} : Block{5, 5, 5}));
    }
  }
}

TEST_P(Mpeg12Block, WrittenBlocks) {
  Random random;
  for (int round = 0; round < 60; ++round) {
    for_each_coding(random, [&](Coding coding, const Codes& codes) {
      if (&codes == &all_codes()[2]) return;  // its sizes are too short for random blocks
      coding.quantScale = 1;
      coding.mpeg2 = true;
      coding.shiftDC = 0;
      coding.weights.fill(16);
      Block block{};
      const int density = random(0, 60), extreme = random(1, 2047), first = coding.intra;
      for (int i = 0; i < 64; ++i) {
        if (random(0, 63) < density) block[i] = static_cast<Mox16s>(random.chance(0.7) ? random(-2, 2) : extreme);
        if (random.chance(0.02)) block[i] = static_cast<Mox16s>(random(-32768, 32767));  // more than 12 bits
      }
      const int pred = random(-500, 500), begun = random(0, 31);
      block[0] = static_cast<Mox16s>(coding.intra ? random(0, 1) ? pred : random(-1500, 1500) : random(-3, 3));
      const auto count = static_cast<int>(64 - first - std::count(block.begin() + first, block.end(), 0));
      for (int told : {count, count + 70, count - 1, random(0, 64), 0, INT_MIN}) {
        put(coding, codes, block, pred, told, begun);
      }
      if (!coding.intra) return;
      for (Mox16s& level : block) level = static_cast<Mox16s>(std::clamp<int>(level, -2047, 2047));
      block[63] = 0;
      Block got = decode(coding, codes, put(coding, codes, block, pred, 64, 0), 31, pred).block;
      got[63] = 0;
      EXPECT_EQ(got, block);
    });
  }
}

TEST_P(Mpeg12Block, LiteralText) {
  const Codes& codes = all_codes()[0];
  Coding coding{false, true, codes.sizes, codes.codes, {}, 1, 0, {}};
  std::iota(coding.scan.begin(), coding.scan.end(), 0);
  Block block{};
  block[0] = -1, block[33] = 1, block[34] = -41, block[35] = 40, block[40] = -3;
  EXPECT_EQ(put(coding, codes, block, 0, 5, 7), mox::test::codes("11 000001100000000000000001 000001000000111111010111 "
                                                                 "0000000000100000 000000010010 1 10"));
  coding.intra = true;
  block = {};
  EXPECT_EQ(put(coding, codes, block, 0, 0, 0), "10010");
  EXPECT_EQ(put(coding, codes, block, 6, 0, 29), mox::test::codes("101 001 10"));
  block[0] = 4;
  EXPECT_EQ(put(coding, codes, block, 0, 0, 32 - 8), mox::test::codes("101 100 10"))
      << "ends with the buffer's last bit";
}

/// All null pointers of a call, *ppBitStream among them. Memory that a good call would write is kept.
template <class... Parameters, class Good>
void expect_null_tests(MoxStatus (*function)(Parameters...), const Good& good, std::span<Mox16s> block) {
  using C = Call<Parameters...>;
  std::remove_pointer_t<std::tuple_element_t<0, typename C::Arguments>> noWords = nullptr;
  std::vector<typename C::Fault> faults = {{moxStsNullPointer, set<0>(&noWords)}};
  const auto add = [&]<std::size_t I>(std::integral_constant<std::size_t, I>) {
    if constexpr (std::is_pointer_v<std::tuple_element_t<I, typename C::Arguments>>) {
      faults.push_back({moxStsNullPointer, set<I>(nullptr)});
    }
  };
  [&]<std::size_t... I>(std::index_sequence<I...>) { (add(std::integral_constant<std::size_t, I>()), ...); }
  (std::index_sequence_for<Parameters...>());
  C(function, good)
      .keeps(std::get<0>(good), sizeof(void*))
      .keeps(std::get<1>(good), sizeof(Mox32s))
      .keeps(block.data(), block.size_bytes())
      .expect_order(faults);
}

TEST_P(Mpeg12Block, Arguments) {
  const Codes& codes = all_codes()[0];
  Block block{7};
  Mox32s scan[64] = {}, last = 0, pred = 0;
  Mox16s weights[64] = {}, dc = 0;
  const Mox32u sizes[64] = {4, 3, 0, 2, 1, 2, 5, 3};
  WordStream in("100101001010101010");  // for each decoder a DC size of 0 or a first level, and end of block
  Mox32u words[8] = {};
  Mox32u* word = words;
  Mox32s offset = 32;
  const auto nulls = [&](auto symbol, auto... arguments) {
    expect_null_tests(lib(symbol), std::tuple{arguments...}, block);
  };
  nulls(MOX_FN(moxiReconstructDCTBlockIntra_MPEG1_32s), &in.word, &in.offset, codes.sizeTable, codes.table, scan, 1,
        weights, &dc, block.data(), &last);
  nulls(MOX_FN(moxiReconstructDCTBlockIntra_MPEG2_32s), &in.word, &in.offset, codes.sizeTable, codes.table, scan, 1,
        weights, &dc, 0, block.data(), &last);
  nulls(MOX_FN(moxiReconstructDCTBlock_MPEG1_32s), &in.word, &in.offset, codes.table, codes.table, scan, 1, weights,
        block.data(), &last);
  nulls(MOX_FN(moxiReconstructDCTBlock_MPEG2_32s), &in.word, &in.offset, codes.table, codes.table, scan, 1, weights,
        block.data(), &last);
  nulls(MOX_FN(moxiPutIntraBlock), &word, &offset, block.data(), &pred, sizes, codes.encodeTable, scan, 2, 2u, 0);
  nulls(MOX_FN(moxiPutNonIntraBlock), &word, &offset, block.data(), codes.encodeTable, scan, 2, 2u, 0);
}

MOX_INSTANTIATE_GENERATIONS(Mpeg12Block);

}  // namespace
}  // namespace mox::test
