#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <string>
#include <vector>

#include "moxvc/h264_cavlc.h"
#include "oracle/cavlc.hpp"
#include "support/bits.hpp"
#include "support/call.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

/// The kinds of block by the most coefficients they can have.
enum Kind { k2x2 = 4, k2x4 = 8, kAc = 15, kFull = 16 };
constexpr Kind kKinds[] = {k2x2, k2x4, kAc, kFull};
int elements(Kind kind) { return kind == kAc ? 16 : kind; }

using TablePointer = const MoxVlcTable*;

/// The standard's tables, built by a library, with roots wider than usual; single ones can be replaced.
class Tables {
 public:
  explicit Tables(const Library& library, int wider = 0) : library_(library) {
    const auto build_wider = [=, this](auto description) {
      description.words[2] += wider;
      return build(description.data());
    };
    for (int i = 0; i < 5; ++i) coeff_token[i] = build_wider(example::kCoeffTokenSpecs[i]);
    for (int i = 1; i < 16; ++i) total_zeros[i] = build_wider(example::kTotalZerosSpecs[i - 1]);
    for (int i = 1; i < 4; ++i) total_zeros_2x2[i] = build_wider(example::kTotalZeros2x2Specs[i - 1]);
    for (int i = 1; i < 8; ++i) total_zeros_2x4[i] = build_wider(example::kTotalZeros2x4Specs[i - 1]);
    for (int i = 1; i < 16; ++i) run_before[i] = build_wider(example::kRunBeforeSpecs[std::min(i, 7) - 1]);
  }
  ~Tables() {
    for (MoxVlcTable* table : built_) library_[MOX_FN(moxiHuffmanTableFree_32s)](table);
  }
  Tables(const Tables&) = delete;
  Tables& operator=(const Tables&) = delete;

  TablePointer build(const MoxVlcSpec* spec) {
    MoxVlcTable* table = nullptr;
    EXPECT_EQ(library_[MOX_FN(moxiHuffmanTableInitAlloc_32s)](spec, &table), moxStsOk);
    built_.push_back(table);
    return table;
  }
  /// A table in which "1" stands for the value and "0" is no code.
  TablePointer only(int value) {
    const MoxVlcSpec spec[] = {0, 1, 1, 1, 1, value, -1};
    return build(spec);
  }

  TablePointer coeff_token[5] = {}, total_zeros[16] = {}, total_zeros_2x2[4] = {}, total_zeros_2x4[8] = {},
               run_before[16] = {};

 private:
  const Library& library_;
  std::vector<MoxVlcTable*> built_;
};

/// What a call returned and left behind. A block that the call has not touched holds kOld.
struct Outcome {
  MoxStatus status;
  int consumed, count, moved;
  std::vector<int> block;
  bool operator==(const Outcome&) const = default;
};
constexpr int kOld = 0x5A5A;
void PrintTo(const Outcome& o, std::ostream* os) {
  *os << "status " << o.status << " consumed " << o.consumed << " count " << o.count << " moved " << o.moved
      << " block";
  for (int value : o.block) *os << ' ' << value;
}

const std::vector<Mox32s> kZigzag = {0, 1, 4, 8, 5, 2, 3, 6, 9, 12, 13, 10, 7, 11, 14, 15};

class Cavlc : public PerGeneration {
 protected:
  void SetUp() override {
    PerGeneration::SetUp();
    if (!IsSkipped()) tables_ = std::make_unique<Tables>(library());
  }

  template <class Coeff>
  Outcome decode(const Library& lib, Kind kind, int nC, const std::string& bits, int offset = 31,
                 const std::vector<Mox32s>& scan = kZigzag) {
    WordStream stream(bits, offset);
    const Guarded<Coeff> block(elements(kind), offset % 2 ? Placement::at_end() : Placement::at_start());
    std::fill(block.begin(), block.end(), static_cast<Coeff>(kOld));
    const Guarded<Mox32s> positions(16);
    std::copy(scan.begin(), scan.end(), positions.begin());
    Coeff* dst = block.data();
    Mox16s count = kOld;
    Outcome outcome;
    if (kind >= kAc) {
      outcome.status =
          coeffs<Coeff>(lib)(&stream.word, &stream.offset, &count, &dst, nC, static_cast<Mox16s>(kind),
                             tables_->coeff_token, tables_->total_zeros, tables_->run_before, positions.data());
    } else if (kind == k2x4) {
      outcome.status = dc2x4<Coeff>(lib)(&stream.word, &stream.offset, &count, &dst, tables_->coeff_token[4],
                                         tables_->total_zeros_2x4, tables_->run_before);
    } else {
      outcome.status = dc2x2<Coeff>(lib)(&stream.word, &stream.offset, &count, &dst, tables_->coeff_token[3],
                                         tables_->total_zeros_2x2, tables_->run_before);
    }
    outcome.consumed = stream.consumed(), outcome.count = count, outcome.moved = static_cast<int>(dst - block.data());
    outcome.block.assign(block.begin(), block.end());
    return outcome;
  }
  /// Both element types at all kinds of position: the outcome is as told, its block in 16 bits as 16-bit values.
  void expect(Kind kind, int nC, const std::string& text, Outcome expected) {
    const std::string bits = codes(text);
    for (int offset : {31, 30, 17, 4, 3, 2, 1, 0}) {
      EXPECT_EQ(decode<Mox32s>(library(), kind, nC, bits, offset), expected) << bits << " at " << offset;
    }
    for (int& value : expected.block) value = static_cast<Mox16s>(value);
    for (int offset : {31, 30, 17, 4, 3, 2, 1, 0}) {
      EXPECT_EQ(decode<Mox16s>(library(), kind, nC, bits, offset), expected) << bits << " at " << offset;
    }
  }
  void expect_block(Kind kind, int nC, const std::string& bits, int count, const std::vector<int>& block) {
    expect(kind, nC, bits, {moxStsOk, static_cast<int>(codes(bits).size()), count, elements(kind), block});
  }
  /// A code that does not exist, with the count and the block as far as they came.
  void expect_bad(Kind kind, int nC, const std::string& bits, int count, const std::vector<int>& block) {
    expect(kind, nC, bits + "11111111", {moxStsBadBitstream, 0, count, 0, block});
  }

  /// The function of an element type.
  template <class Coeff, class Narrow, class Wide>
  static auto form(const Library& lib, Symbol<Narrow> narrow, Symbol<Wide> wide) {
    if constexpr (sizeof(Coeff) == 2) return lib[narrow];
    if constexpr (sizeof(Coeff) == 4) return lib[wide];
  }
  template <class Coeff>
  static auto coeffs(const Library& lib) {
    return form<Coeff>(lib, MOX_FN(moxiDecodeCAVLCCoeffs_H264_1u16s), MOX_FN(moxiDecodeCAVLCCoeffs_H264_1u32s));
  }
  template <class Coeff>
  static auto dc2x2(const Library& lib) {
    return form<Coeff>(lib, MOX_FN(moxiDecodeCAVLCChromaDcCoeffs_H264_1u16s),
                       MOX_FN(moxiDecodeCAVLCChromaDcCoeffs_H264_1u32s));
  }
  template <class Coeff>
  static auto dc2x4(const Library& lib) {
    return form<Coeff>(lib, MOX_FN(moxiDecodeCAVLCChroma422DcCoeffs_H264_1u16s),
                       MOX_FN(moxiDecodeCAVLCChroma422DcCoeffs_H264_1u32s));
  }

  std::unique_ptr<Tables> tables_;
};

std::vector<int> old_block(Kind kind) { return std::vector<int>(elements(kind), kOld); }

/// Levels in all ranges: ones only, small, at the thresholds where suffixes grow, up to the escapes of prefix 14 and
/// 15, up to the 16 bits of a level code.
std::vector<int> random_block(Random& random, Kind kind) {
  constexpr int kGreatest[] = {1, 2, 9, 40, 2100, 32768, 0};
  const int greatest = kGreatest[random(0, 6)];
  const double density = random(0, 10) / 10.0;
  std::vector<int> block(kind);
  for (int& level : block) {
    if (!random.chance(density)) continue;
    if (greatest == 0) {
      level = (3 << random(0, 4)) + random(0, 1);
    } else {
      level = random.chance(0.2) ? greatest : random(1, random.chance(0.5) ? greatest : 1);
    }
    if (random.chance(0.5)) level = -level;
  }
  return block;
}

TEST_P(Cavlc, RandomBlocks) {
  Random random;
  std::vector<Mox32s> scan(16);
  for (int round = 0; round < 3000; ++round) {
    if (round == 1500) tables_ = std::make_unique<Tables>(library(), 1);
    const Kind kind = kKinds[random(0, 3)];
    const int nC = kind == k2x2 ? -1 : kind == k2x4 ? -2 : random(0, 17);
    const std::vector<int> block = random_block(random, kind);
    const std::string bits = oracle::encode(block, nC);
    std::iota(scan.begin(), scan.end(), 0);
    for (int i = 15; i > 0; --i) std::swap(scan[i], scan[random(0, i)]);

    const int count = static_cast<int>(block.size() - std::count(block.begin(), block.end(), 0));
    Outcome expected{moxStsOk, static_cast<int>(bits.size()), count, elements(kind), std::vector<int>(elements(kind))};
    const int dc2x4[4][2] = {{0, 2}, {1, 5}, {3, 6}, {4, 7}};  // coefficient by row and column
    for (int i = 0; i < elements(kind); ++i) {
      if (kind == k2x2) expected.block[i] = block[i];
      if (kind == k2x4) expected.block[i] = block[dc2x4[i / 2][i % 2]];
      if (kind == kFull) expected.block[scan[i]] = block[i];
      if (kind == kAc && i > 0) expected.block[scan[i]] = block[i - 1];
    }
    if (count == 0) expected.moved = 0, expected.block = old_block(kind);
    const int offset = random(0, 31);
    ASSERT_EQ(decode<Mox32s>(library(), kind, nC, bits, offset, scan), expected) << "nC " << nC << " bits " << bits;
    for (int& value : expected.block) value = static_cast<Mox16s>(value);
    ASSERT_EQ(decode<Mox16s>(library(), kind, nC, bits, offset, scan), expected) << "nC " << nC << " bits " << bits;
  }
}

TEST_P(Cavlc, BlocksByHand) {
  // Zigzag 0, 3, 0, 1, -1, -1, 0, 1: coeff_token 5 and 3, signs + - -, levels 1 and 3, total_zeros 3, runs 1, 0, 0, 1.
  expect_block(kFull, 0, "0000100 011 1 0010 111 10 1 1 01", 5, {0, 3, -1, 0, 0, -1, 1, 0, 1, 0, 0, 0, 0, 0, 0, 0});
  // The 6-bit code: 000011 is empty, 000000 is one coefficient that is no trailing one: level -2, total_zeros 0.
  expect(kFull, 8, "000011", {moxStsOk, 6, 0, 0, old_block(kFull)});
  expect_block(kFull, 100, "000000 01 1", 1, {-2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
  // 000010 says two ones of one coefficient: both signs are read, the first one is placed.
  expect_block(kFull, 8, "000010 10 1", 1, {-1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0});
  // 15 coefficients of 15: no total_zeros. nC 8, three ones, levels 1 (suffix length 0, then 1).
  expect_block(kAc, 8, "111011 000 1 10 10 10 10 10 10 10 10 10 10 10", 15,
               {0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1});
  expect_block(k2x2, -1, "1 1 001", 1, {0, 0, -1, 0});
  expect(k2x2, -1, "01", {moxStsOk, 2, 0, 0, old_block(k2x2)});
  expect_block(k2x4, -2, "01 0 00000", 1, {0, 0, 0, 0, 0, 0, 0, 1});
  expect_block(k2x4, -2, "01 1 0011", 1, {0, 0, 0, 0, 0, 0, -1, 0});
}

TEST_P(Cavlc, LevelsAtTheLimits) {
  // One coefficient, not a trailing one (suffix length 0, magnitude raised by 1), at index 0.
  const auto first = [](int prefix, const std::string& suffix) {
    return "000000" + std::string(prefix, '0') + "1" + suffix + "1";
  };
  const auto expect_level = [&](const std::string& bits, int level) {
    std::vector<int> block(16);
    block[0] = level;
    expect_block(kFull, 8, bits, 1, block);
  };
  expect_level(first(14, "0000"), 9);
  expect_level(first(14, "1111"), -16);
  expect_level(first(15, "000000000000"), 17);
  expect_level(first(15, "111111111111"), -2064);
  // Level codes 15 + 15 + 2 + 2^(prefix - 3) - 4096 + suffix, of which 16 bits count.
  expect_level(first(16, std::string(13, '0')), 2065);
  expect_level(first(19, bits_of(65534 - 32 - 65536 + 4096, 16)), 32768);
  expect_level(first(19, bits_of(65535 - 32 - 65536 + 4096, 16)), -32768);
  expect_level(first(19, bits_of(65536 - 32 - 65536 + 4096, 16)), 1);
  expect_level(first(20, std::string(17, '1')), -30736);  // 258079 = 3 * 65536 + 61471
  expect_level(first(35, std::string(32, '0')), 30737);   // 2^32 - 4064 leaves 61472
  expect_level(first(35, bits_of(4065, 32)), -1);         // 2^32 + 1
  for (int prefix : {36, 37, 40, 63, 64, 100, 200}) expect_bad(kFull, 8, first(prefix, ""), 1, std::vector<int>(16));
}

TEST_P(Cavlc, CodesThatDoNotExist) {
  const std::vector<int> cleared(16);
  expect_bad(kFull, 0, "000000000000000", kOld, old_block(kFull));
  expect_bad(kAc, 2, "0000000000000", kOld, old_block(kAc));
  expect_bad(kFull, 4, "0000000000", kOld, old_block(kFull));
  expect_bad(k2x4, -2, "0000000000000", kOld, old_block(k2x4));
  expect_bad(kFull, 0, "01 0 000000000", 1, cleared);
  expect_bad(kFull, 0, "001 00 000000 00000000000", 2, cleared);
  // Three ones with 13 zeros: the first run is 1, its level is stored, the next one does not exist.
  std::vector<int> partly(16);
  partly[15] = -1;
  expect_bad(kFull, 0, "00011 100 000000 110 00000000000", 3, partly);
  // Tables of the caller's that are not complete, or say what no block can have.
  tables_->total_zeros_2x4[2] = tables_->total_zeros_2x2[2] = tables_->run_before[2] = tables_->only(2);
  expect_bad(k2x2, -1, "001 00 0", 2, {0, 0, 0, 0});
  expect_bad(k2x4, -2, "001 00 1 0", 2, {0, 0, 0, 0, 0, 0, 0, 0});
  for (int value : {16, 1000, -1}) {
    tables_->total_zeros[1] = tables_->only(value);
    expect_bad(kFull, 0, "01 0 1", 1, cleared);
    tables_->run_before[14] = tables_->only(value);
    expect_bad(kFull, 0, "001 00 000000 1", 2, cleared);
  }
  for (int value : {0x1100, 0x2000, 0xFF00, 0x1011, 0x10FF}) {
    tables_->coeff_token[1] = tables_->coeff_token[3] = tables_->coeff_token[4] = tables_->only(value);
    expect_bad(kFull, 3, "1", kOld, old_block(kFull));
    expect_bad(k2x4, -2, "1", kOld, old_block(k2x4));
  }
}

TEST_P(Cavlc, RunsAboveTheZerosLeft) {
  // Two ones, 7 zeros, run 10: cut back to 7.
  expect_block(kFull, 0, "001 01 0011 0000001", 2, {-1, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0});
  // Three ones a, b, c with a run of 2 for 1 zero left: a at 3, 2 - 2 - 1 makes b 0, and c, with 0 zeros again, as
  // well.
  tables_->run_before[1] = tables_->only(2);
  expect_block(k2x2, -1, "000101 010 0 1", 3, {1, 0, 0, 1});
  // A run of 7 for 2: a at 4, b at -4 and outside, c at 0.
  tables_->run_before[2] = tables_->only(7);
  expect_block(k2x4, -2, "00001 011 01 1", 3, {-1, 0, 0, 0, 0, 0, 1, 0});
}

TEST_P(Cavlc, CoefficientsBeyondTheBlockAreDropped) {
  // 16 coefficients in a block of 15, 3 and 13 of them with 14 ones more than fit: the first, at index 16, is lost.
  expect_block(kAc, 8, "111111 100 1 10 10 10 10 10 10 10 10 10 10 10 10", 16,
               {0, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1});
  expect_block(kAc, 0, "01 0 000000001", 1, std::vector<int>(16));
}

TEST_P(Cavlc, MissingTablesLeaveThePositionReached) {
  const auto expect_null = [&](Kind kind, int nC, const std::string& bits, int consumed, int count) {
    const bool cleared = count != kOld;
    expect(kind, nC, bits,
           {moxStsNullPointer, consumed, count, 0, cleared ? std::vector<int>(elements(kind)) : old_block(kind)});
  };
  tables_->coeff_token[2] = nullptr;
  expect_null(kFull, 7, "1111", 0, kOld);
  expect(kFull, 8, "000011", {moxStsOk, 6, 0, 0, old_block(kFull)});
  tables_->run_before[3] = tables_->run_before[2] = nullptr;
  expect_null(kFull, 0, "001 01 100", 8, 2);
  expect_null(k2x2, -1, "001 01 00", 7, 2);
  expect_null(k2x4, -2, "001 01 001", 8, 2);
  tables_->total_zeros[2] = tables_->total_zeros_2x2[2] = tables_->total_zeros_2x4[2] = nullptr;
  expect_null(kFull, 0, "001 01", 5, 2);
  expect_null(k2x2, -1, "001 01", 5, 2);
  expect_null(k2x4, -2, "001 01", 5, 2);
}

TEST_P(Cavlc, PeekNeedsNoMoreThanItUses) {
  const auto function = lib(MOX_FN(moxiDecodeCAVLCChromaDcCoeffs_H264_1u16s));
  const Guarded<Mox16s> block(4);
  Mox16s* dst = block.data();
  Mox16s count = kOld;
  WordStream empty("01"), one("101"), two("001001");
  EXPECT_EQ(function(&empty.word, &empty.offset, &count, nullptr, nullptr, nullptr, nullptr), moxStsOk);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(empty.consumed(), 2);
  EXPECT_EQ(function(&one.word, &one.offset, &count, &dst, nullptr, nullptr, nullptr), moxStsOk);
  EXPECT_EQ(block.copy(), (std::vector<Mox16s>{1, 0, 0, 0}));
  EXPECT_EQ(one.consumed(), 3);

  const auto order = [&](WordStream& stream, bool tables) {
    dst = block.data();
    std::vector<
        Call<const Mox32u**, Mox32s*, Mox16s*, Mox16s**, TablePointer, const TablePointer*, const TablePointer*>::Fault>
        faults = {{moxStsNullPointer, set<0>(nullptr)},
                  {moxStsNullPointer, set<1>(nullptr)},
                  {moxStsNullPointer, set<2>(nullptr)},
                  {moxStsNullPointer, set<3>(nullptr)}};
    if (tables) {
      faults.push_back({moxStsNullPointer, set<4>(nullptr)});
      faults.push_back({moxStsNullPointer, set<5>(nullptr)});
      faults.push_back({moxStsNullPointer, set<6>(nullptr)});
    }
    Call{function, std::tuple{&stream.word, &stream.offset, &count, &dst, tables_->coeff_token[3],
                              tables_->total_zeros_2x2, tables_->run_before}}
        .keeps(&stream.offset, sizeof stream.offset)
        .keeps(&count, sizeof count)
        .keeps(&dst, sizeof dst)
        .keeps(block.data(), 8)
        .expect_order(faults);
  };
  WordStream again("101");
  order(again, false);
  order(two, true);
}

TEST_P(Cavlc, Arguments) {
  const auto check = [&](auto* element) {
    using Coeff = std::remove_pointer_t<decltype(element)>;
    const Guarded<Coeff> block(16);
    Coeff *dst = block.data(), *no_block = nullptr;
    const Mox32u* no_words = nullptr;
    const TablePointer no_tables[3] = {};
    Mox16s count = kOld;
    WordStream stream("0101");
    const auto kept = [&](auto call) {
      dst = block.data();
      return call.keeps(&stream.offset, sizeof stream.offset)
          .keeps(&count, sizeof count)
          .keeps(&dst, sizeof dst)
          .keeps(block.data(), 16 * sizeof(Coeff));
    };
    kept(Call{coeffs<Coeff>(library()),
              std::tuple{&stream.word, &stream.offset, &count, &dst, 0, Mox16s{16}, tables_->coeff_token,
                         tables_->total_zeros, tables_->run_before, kZigzag.data()}})
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set<1>(nullptr)},
                       {moxStsNullPointer, set<2>(nullptr)},
                       {moxStsNullPointer, set<3>(nullptr)},
                       {moxStsNullPointer, set<6>(nullptr)},
                       {moxStsNullPointer, set<7>(nullptr)},
                       {moxStsNullPointer, set<8>(nullptr)},
                       {moxStsNullPointer, set<9>(nullptr)},
                       {moxStsNullPointer, set<0>(&no_words)},
                       {moxStsNullPointer, set<3>(&no_block)},
                       {moxStsOutOfRange, set<5>(Mox16s{14})},
                       {moxStsOutOfRange, set<5>(Mox16s{17})},
                       {moxStsOutOfRange, set<4>(-1)},
                       {moxStsNullPointer, set<6>(no_tables)}});
    const auto check_dc = [&](auto function, TablePointer token, const TablePointer* zeros) {
      kept(Call{function, std::tuple{&stream.word, &stream.offset, &count, &dst, token, zeros, tables_->run_before}})
          .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                         {moxStsNullPointer, set<1>(nullptr)},
                         {moxStsNullPointer, set<2>(nullptr)},
                         {moxStsNullPointer, set<3>(nullptr)},
                         {moxStsNullPointer, set<4>(nullptr)},
                         {moxStsNullPointer, set<5>(nullptr)},
                         {moxStsNullPointer, set<6>(nullptr)},
                         {moxStsNullPointer, set<0>(&no_words)},
                         {moxStsNullPointer, set<3>(&no_block)}});
    };
    if (sizeof(Coeff) == 4) check_dc(dc2x2<Coeff>(library()), tables_->coeff_token[3], tables_->total_zeros_2x2);
    check_dc(dc2x4<Coeff>(library()), tables_->coeff_token[4], tables_->total_zeros_2x4);
  };
  check(static_cast<Mox16s*>(nullptr));
  check(static_cast<Mox32s*>(nullptr));
}

/// Random bits, sparse in ones so that long codes occur: the same outcome in all generations and for both types, within
/// the block, the stream and the contract.
TEST_P(Cavlc, RandomBits) {
  Random random;
  int bad = 0, good = 0;
  for (int round = 0; round < 3000; ++round) {
    const Kind kind = kKinds[random(0, 3)];
    const int nC = random(0, 12), offset = random(0, 31);
    const double ones = 0.1 * random(1, 5);
    std::string bits(16 * 67 + 100, '0');
    for (char& bit : bits) bit = random.chance(ones) ? '1' : '0';
    const Outcome outcome = decode<Mox32s>(library(), kind, nC, bits, offset);
    Outcome narrow = outcome;
    for (int& value : narrow.block) value = static_cast<Mox16s>(value);
    ASSERT_EQ(decode<Mox16s>(library(), kind, nC, bits, offset), narrow) << bits;
    ASSERT_EQ(decode<Mox32s>(Library::portable(), kind, nC, bits, offset), outcome) << bits;
    ASSERT_TRUE(outcome.status == moxStsOk || outcome.status == moxStsBadBitstream) << outcome.status;
    if (outcome.status == moxStsBadBitstream) {
      ++bad;
      ASSERT_TRUE(outcome.consumed == 0 && outcome.moved == 0);
    } else {
      ++good;
      ASSERT_TRUE(outcome.count >= 0 && outcome.count <= elements(kind)) << outcome.count;
      ASSERT_EQ(outcome.moved, outcome.count > 0 ? elements(kind) : 0);
      ASSERT_LE(std::count_if(outcome.block.begin(), outcome.block.end(), [](int v) { return v != 0 && v != kOld; }),
                outcome.count);
    }
  }
  EXPECT_GT(bad, 100);
  EXPECT_GT(good, 100);
}

MOX_INSTANTIATE_GENERATIONS(Cavlc);

}  // namespace
}  // namespace mox::test
