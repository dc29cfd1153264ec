#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <string>
#include <vector>

#include "avs/run_level_tables.hpp"
#include "moxvc.h"
#include "support/bits.hpp"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

using Decode = decltype(moxiDecodeLumaBlockIntra_AVS_1u16s);

/// A table, up to which magnitude it serves, and the order of its codes.
struct Level {
  const px::AvsVlcTable* table;
  int threshold, order, maxRun;
};
struct Blocks {
  Symbol<Decode> symbol;
  int escapeOrder;
  std::vector<Level> levels;

  const Level& for_magnitude(int magnitude) const {
    return *std::find_if(levels.begin(), levels.end() - 1, [=](const Level& l) { return magnitude <= l.threshold; });
  }
};
const Blocks kBlocks[] = {{MOX_FN(moxiDecodeLumaBlockIntra_AVS_1u16s),
                           1,
                           {{&px::VLC0_Intra, 0, 2, 22},
                            {&px::VLC1_Intra, 1, 2, 14},
                            {&px::VLC2_Intra, 2, 2, 9},
                            {&px::VLC3_Intra, 4, 2, 6},
                            {&px::VLC4_Intra, 7, 2, 4},
                            {&px::VLC5_Intra, 10, 2, 2},
                            {&px::VLC6_Intra, 65535, 2, 1}}},
                          {MOX_FN(moxiDecodeLumaBlockInter_AVS_1u16s),
                           0,
                           {{&px::VLC0_Inter, 0, 3, 25},
                            {&px::VLC1_Inter, 1, 2, 18},
                            {&px::VLC2_Inter, 2, 2, 13},
                            {&px::VLC3_Inter, 3, 2, 9},
                            {&px::VLC4_Inter, 6, 2, 6},
                            {&px::VLC5_Inter, 9, 2, 4},
                            {&px::VLC6_Inter, 65535, 2, 3}}},
                          {MOX_FN(moxiDecodeChromaBlock_AVS_1u16s),
                           0,
                           {{&px::VLC0_Chroma, 0, 2, 24},
                            {&px::VLC1_Chroma, 1, 0, 19},
                            {&px::VLC2_Chroma, 2, 1, 10},
                            {&px::VLC3_Chroma, 4, 1, 7},
                            {&px::VLC4_Chroma, 65535, 0, 4}}}};

constexpr int kField[64] = {0,  8,  16, 1,  24, 32, 9,  17, 40, 48, 25, 2,  10, 56, 33, 18, 3,  41, 49, 26, 11, 19,
                            4,  57, 34, 12, 42, 27, 20, 50, 35, 28, 5,  13, 58, 43, 36, 21, 6,  29, 51, 44, 14, 22,
                            37, 59, 52, 30, 45, 60, 38, 53, 46, 61, 54, 7,  62, 15, 23, 31, 39, 47, 55, 63};

/// Raster position of a scan position; the zigzag by walking the diagonals.
int raster(int position, bool field) {
  if (field) return kField[position];
  for (int d = 0, left = position;; left -= 8 - std::abs(7 - d), ++d) {
    const int length = 8 - std::abs(7 - d), low = std::max(0, d - 7);
    if (left >= length) continue;
    const int along = d % 2 ? low + left : low + length - 1 - left;  // row on this diagonal
    return along * 8 + d - along;
  }
}

std::string exp_golomb(long long number, int order) {
  const long long value = number + (1ll << order);
  const int length = 64 - std::countl_zero(static_cast<unsigned long long>(value));
  return std::string(length - order - 1, '0') + bits_of(value, length);
}

/// Writes a block symbol by symbol, as an encoder does that knows the state of the decoder.
class Writer {
 public:
  explicit Writer(const Blocks& blocks) : blocks_(blocks), level_(&blocks.levels[0]) {}

  /// The code of a run and a level; false if neither a row nor an escape stands for it.
  bool put(int run, int level) {
    const int magnitude = std::abs(level), base = run <= level_->maxRun ? level_->table->refAbsLevel[run] : 1;
    const auto* row = std::find(level_->table->rows, level_->table->rows + 59,
                                px::AvsRunLevel{static_cast<Mox8u>(run), static_cast<signed char>(level)});
    if (row != level_->table->rows + 59 && row->level == level) {
      bits += exp_golomb(row - level_->table->rows, level_->order);
    } else if (magnitude >= base) {
      bits += exp_golomb(59 + 2 * run + (level > 0), level_->order) + exp_golomb(magnitude - base, blocks_.escapeOrder);
    } else {
      return false;
    }
    if (run < 64 - filled) {
      levels.push_back(level), runs.push_back(run);
      if (magnitude > level_->threshold) level_ = &blocks_.for_magnitude(magnitude);
      filled += run + 1;
    }
    return true;
  }
  void end() {
    const auto* row = std::find(level_->table->rows, level_->table->rows + 59, px::AvsRunLevel{64, 0});
    bits += exp_golomb(row - level_->table->rows, level_->order);
  }
  /// The coefficients, the last symbol being the lowest in frequency.
  std::vector<Mox16s> coefficients(bool field) const {
    std::vector<Mox16s> block(64);
    for (std::size_t i = levels.size(), position = 0; i-- > 0; ++position) {
      position += runs[i];
      block[raster(static_cast<int>(position), field)] = static_cast<Mox16s>(levels[i]);
    }
    return block;
  }

  std::string bits;
  std::vector<int> runs, levels;
  int filled = 0;

 private:
  const Blocks& blocks_;
  const Level* level_;
};

class AvsCoefficients : public PerGeneration {
 protected:
  /// Decodes and compares coefficients, count and position.
  void expect_block(const Blocks& blocks, const Writer& writer, Mox32u scanType, int start) const {
    WordStream stream(writer.bits, start);
    Guarded<Mox16s> block(64);
    std::fill(block.begin(), block.end(), Mox16s{99});
    Mox32s count = -1;
    ASSERT_EQ(lib(blocks.symbol)(&stream.word, &stream.offset, &count, block.data(), scanType), moxStsOk);
    EXPECT_EQ(block.copy(), writer.coefficients(scanType & 1)) << blocks.symbol.name << writer.bits;
    EXPECT_EQ(count, scanType == 0 ? writer.filled : 63);
    EXPECT_EQ(stream.consumed(), static_cast<int>(writer.bits.size())) << blocks.symbol.name << writer.bits;
  }
};
MOX_INSTANTIATE_GENERATIONS(AvsCoefficients);

/// Sums over the rows of the published tables.
TEST(AvsTables, HaveThePublishedRows) {
  const std::vector<Mox32u> sums[] = {
      {0x0ca45408, 0xb6fbff46, 0xf799e7b4, 0x7cb9c0ec, 0x767ad57e, 0x7de1db22, 0x33283716},
      {0xa6861ba2, 0xf522974e, 0xeb25512e, 0x91ada7d8, 0x23c93ad4, 0x0099a1a4, 0x04ff770c},
      {0x61d52808, 0xa50b6d86, 0x465eda7e, 0x8fcde922, 0x4fabee10}};
  for (int family = 0; family < 3; ++family) {
    for (std::size_t i = 0; i < kBlocks[family].levels.size(); ++i) {
      Mox32u sum = 0;
      for (int row = 0; row < 59; ++row) {
        const px::AvsRunLevel& r = kBlocks[family].levels[i].table->rows[row];
        sum = sum * 31 + static_cast<Mox32u>(r.run * 64 + (r.level & 63));
      }
      EXPECT_EQ(sum, sums[family][i]) << "family " << family << ", table " << i;
    }
  }
}

TEST_P(AvsCoefficients, RandomBlocks) {
  Random random;
  for (const Blocks& blocks : kBlocks) {
    for (int round = 0; round < 1200; ++round) {
      Writer writer(blocks);
      const int most = random.chance(0.2) ? 0 : random(0, 20), high = 1 << random(0, random.chance(0.1) ? 17 : 5);
      for (int symbols = random(0, 64); symbols > 0 && writer.filled < 64; --symbols) {
        const int magnitude = random(1, high);
        writer.put(std::min(random(0, most), 63 - writer.filled), random.chance(0.5) ? magnitude : -magnitude);
      }
      // The block ends by its code, or by any symbol that does not fit.
      const int over = 64 - writer.filled + random(0, 30);
      if (random.chance(0.5) || !writer.put(over, random.chance(0.5) ? 700 : -1)) writer.end();
      expect_block(blocks, writer, static_cast<Mox32u>(random(0, 3)), random(0, 31));
      if (HasFailure()) return;
    }
  }
}

/// By hand, scan included: the position of a symbol follows from those behind it.
TEST_P(AvsCoefficients, LiteralBlocks) {
  const struct {
    int family;
    Mox32u scanType;
    std::string bits;
    Mox32s count;
    std::vector<std::pair<int, int>> nonzero;  ///< raster position and value
  } kCases[] = {
      {0, 0, codes("000 111110"), 0, {}},  // the end: number 58 at order 2
      {0, 1, codes("000 111110"), 63, {}},
      {0, 0, codes("100 0 1100"), 1, {{0, 1}}},              // number 0: run 0, 1; the end of table 1 is number 8
      {0, 0, codes("000 111111 10 0 1100"), 1, {{0, -4}}},   // number 59: an escape of run 0 from -4 on
      {0, 0, codes("0000 1000000 11 0 1010"), 1, {{0, 5}}},  // number 60: from 4 on; the end of table 4 is number 6
      {1, 0, codes("1001 110"), 1, {{0, -1}}},               // number 1 at order 3, the end at order 2
      {2, 0, codes("111 010 1"), 3, {{8, -1}, {0, 1}}},      // run 1, -1 at order 2; run 0, 1 and the end at order 0
      {2, 1, codes("111 010 1"), 63, {{16, -1}, {0, 1}}}};
  for (const auto& c : kCases) {
    WordStream stream(c.bits);
    std::vector<Mox16s> block(64), expected(64);
    for (auto [position, value] : c.nonzero) expected[position] = static_cast<Mox16s>(value);
    Mox32s count = -1;
    lib(kBlocks[c.family].symbol)(&stream.word, &stream.offset, &count, block.data(), c.scanType);
    EXPECT_EQ(block, expected) << c.bits;
    EXPECT_EQ(count, c.count) << c.bits;
    EXPECT_EQ(stream.consumed(), static_cast<int>(c.bits.size())) << c.bits;
  }
}

/// A code of 32 zeros is read, its level kept in 16 bits; one of 33 ends the block behind 32 of them.
TEST_P(AvsCoefficients, LongestCodes) {
  const Blocks& blocks = kBlocks[0];
  const struct {
    std::string bits;
    int consumed, first;
  } kCases[] = {
      {std::string(32, '0') + "1" + std::string(34, '0'), 32 + 35 + 2, 0},
      {std::string(33, '0'), 32, 0},
      {codes("000 111111") + std::string(32, '0') + "11" + std::string(27, '0') + "10100" + codes("10 0 0"), -1, -22},
      {codes("000 111111") + std::string(40, '0'), 9 + 32, 0}};
  for (const auto& c : kCases) {
    for (int start : {31, 0, 13}) {
      WordStream stream(c.bits, start, 5);
      std::vector<Mox16s> block(64);
      Mox32s count = -1;
      EXPECT_EQ(lib(blocks.symbol)(&stream.word, &stream.offset, &count, block.data(), 0), moxStsOk);
      EXPECT_EQ(block[0], c.first) << c.bits;
      if (c.consumed >= 0) {
        EXPECT_EQ(stream.consumed(), c.consumed) << c.bits;
      }
    }
  }
}

/// Any bits end a block within 65 symbols of two codes each, 68 bits at most.
TEST_P(AvsCoefficients, DamagedDataIsBounded) {
  Random random;
  for (int round = 0; round < 300; ++round) {
    std::string bits(65 * 2 * 68, '0');
    const double ones = random.chance(0.3) ? 0.0 : 0.02 * random(1, 50);
    for (char& bit : bits) bit = random.chance(ones) ? '1' : '0';
    WordStream stream(bits, random(0, 31));
    Mox16s block[64];
    Mox32s count = -1;
    ASSERT_EQ(lib(kBlocks[round % 3].symbol)(&stream.word, &stream.offset, &count, block, 0), moxStsOk);
    ASSERT_GE(stream.consumed(), 3);
    ASSERT_LE(stream.consumed(), static_cast<int>(bits.size()));
    ASSERT_EQ(std::clamp(count, 0, 64), count);
  }
}

TEST_P(AvsCoefficients, ArgumentOrder) {
  for (const Blocks& blocks : kBlocks) {
    Mox32u words[4] = {0x80000000, ~0u, ~0u, ~0u};
    const Mox32u *word = words, *none = nullptr;
    Mox32s offset = 31, count = 7;
    Mox16s block[64] = {5};
    Call{lib(blocks.symbol), std::tuple{&word, &offset, &count, block, 0u}}
        .keeps(&word, sizeof word)
        .keeps(&offset, sizeof offset)
        .keeps(&count, sizeof count)
        .keeps(block, sizeof block)
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set<0>(&none)},
                       {moxStsNullPointer, set<1>(nullptr)},
                       {moxStsNullPointer, set<2>(nullptr)},
                       {moxStsNullPointer, set<3>(nullptr)}});
  }
}

}  // namespace
}  // namespace mox::test
