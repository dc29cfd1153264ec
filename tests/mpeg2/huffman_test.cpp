#include "moxvc/huffman.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "support/allocator.hpp"
#include "support/bits.hpp"
#include "support/call.hpp"
#include "support/library.hpp"

namespace mox::test {
namespace {

struct Leaf {
  int value, run, level;
};

/// A prefix-free set of codes as text, and the widths of its levels.
struct CodeSet {
  std::map<std::string, Leaf> codes;
  std::vector<int> widths;

  static CodeSet random(Random& random) {
    std::vector<std::string> leaves = {"1", "0"};
    for (int splits = random(0, 80); splits > 0; --splits) {
      // The last leaf is all zeros: split often, it gives codes of more than 32 bits.
      const int last = static_cast<int>(leaves.size()) - 1, split = random.chance(0.5) ? last : random(0, last);
      if (leaves[split].size() >= 60) continue;
      leaves.push_back(leaves[split] + '0');
      leaves[split] += '1';
      if (split != last) std::swap(leaves[last], leaves[last + 1]);
    }
    CodeSet set;
    std::size_t longest = 0, room = 0;
    for (const std::string& code : leaves) {
      if (!set.codes.empty() && random.chance(0.1)) continue;
      Leaf& leaf = set.codes[code] = {random(-0x800000, 0x7FFFFF), random(0, 255), random(-32768, 32767)};
      if (leaf.value == 61681) leaf.value = 0;  // the mark of no code; with run 241 it is level 240
      if (leaf.run == 241) leaf.level |= 1;
      longest = std::max(longest, code.size());
    }
    for (; room < longest; room += set.widths.back()) set.widths.push_back(random(1, 9));
    return set;
  }
  std::vector<MoxVlcSpec> spec(bool runLevel) const {
    std::vector<MoxVlcSpec> words = {-1, static_cast<int>(widths.size())};
    words.insert(words.end(), widths.begin(), widths.end());
    for (std::size_t length = 1, entered = 0; entered < codes.size(); ++length) {
      const std::size_t count = words.size();
      words.push_back(0);
      for (const auto& [code, leaf] : codes) {
        if (code.size() != length) continue;
        ++words[count], ++entered;
        words.push_back(static_cast<Mox32s>(value_of(code)));
        if (runLevel) {
          words.insert(words.end(), {leaf.run, leaf.level});
        } else {
          words.push_back(leaf.value);
        }
      }
    }
    words.push_back(-1);
    return words;
  }
  /// The level boundaries that some code reaches beyond, as the bits in front of them.
  std::set<std::pair<std::string, int>> sub_tables() const {
    std::set<std::pair<std::string, int>> starts = {{"", widths[0]}};
    for (const auto& code : codes) {
      std::size_t boundary = widths[0];
      for (std::size_t i = 1; boundary < code.first.size(); boundary += widths[i++]) {
        starts.insert({code.first.substr(0, boundary), widths[i]});
      }
    }
    return starts;
  }
};

class Huffman : public PerGeneration {
 protected:
  MoxVlcTable* build(const std::vector<MoxVlcSpec>& spec, bool runLevel, MoxStatus expected = moxStsOk) {
    const Guarded<MoxVlcSpec> words(spec.size());
    std::copy(spec.begin(), spec.end(), words.begin());
    MoxVlcTable *const unset = reinterpret_cast<MoxVlcTable*>(this), *table = unset;
    EXPECT_EQ(runLevel ? lib(MOX_FN(moxiHuffmanRunLevelTableInitAlloc_32s))(words.data(), &table)
                       : lib(MOX_FN(moxiHuffmanTableInitAlloc_32s))(words.data(), &table),
              expected);
    EXPECT_EQ(table == unset, expected != moxStsOk);
    EXPECT_EQ(g_live.size(), expected == moxStsOk) << "nothing but the table stays allocated";
    return table;
  }
  void release(MoxVlcTable* table) {
    EXPECT_EQ(lib(MOX_FN(moxiHuffmanTableFree_32s))(table), moxStsOk);
    EXPECT_TRUE(g_live.empty());
  }
  /// Reads one code from the stream, with all that must hold for the outcome.
  void expect_one(const std::string& bits, int offset, const MoxVlcTable* table, MoxStatus status, int value,
                  int used) {
    WordStream stream(bits, offset);
    Mox32s got = 1234567;
    EXPECT_EQ(lib(MOX_FN(moxiDecodeHuffmanOne_1u32s))(&stream.word, &stream.offset, &got, table), status) << bits;
    EXPECT_EQ(got, value) << bits;
    EXPECT_EQ(stream.consumed(), used) << bits;
  }
  void expect_pair(const std::string& bits, int offset, const MoxVlcTable* table, MoxStatus status, int run, int level,
                   int used) {
    WordStream stream(bits, offset);
    Mox8u first = 77;
    Mox16s second = -777;
    EXPECT_EQ(lib(MOX_FN(moxiDecodeHuffmanPair_1u16s))(&stream.word, &stream.offset, table, &first, &second), status);
    EXPECT_EQ(first, run) << bits;
    EXPECT_EQ(second, level) << bits;
    EXPECT_EQ(stream.consumed(), used) << bits;
  }
};

TEST_P(Huffman, TableLayout) {
  // 1, 01 in the root; 000, 0010 and 00110 below 00. Run-level pairs, end of block and escape among them, and a run of
  // 9 bits.
  const std::vector<MoxVlcSpec> spec = {99, 3, 2,   2,  1, 1, 1,     0,      2, 1, 1, 254,   0,
                                        1,  0, 255, -3, 1, 2, 0x103, -32768, 1, 6, 4, 32767, -1};
  reset_allocator();
  MoxVlcTable* table = build(spec, true);
  EXPECT_EQ(g_sizes, (std::vector<int>{5 * 8, 13 * 4}));
  const std::vector<MoxVlcTable> expected = {2,
                                             5 << 8 | 128,
                                             254 << 8,
                                             2 << 16 | 1,
                                             2 << 16 | 1,
                                             2,
                                             -3 * 65536 + (255 << 8) + 1,
                                             -3 * 65536 + (255 << 8) + 1,
                                             -32768 * 65536 + (3 << 8),
                                             10 << 8 | 128,
                                             1,
                                             32767 << 16 | 4 << 8,
                                             0xF0F101};
  EXPECT_EQ(std::vector<MoxVlcTable>(table, table + 13), expected);
  release(table);
}

TEST_P(Huffman, RandomCodes) {
  Random random;
  for (int round = 0; round < 120; ++round) {
    const CodeSet set = CodeSet::random(random);
    std::vector<int> sizes(1, static_cast<int>(8 * set.codes.size()));
    sizes.push_back(0);
    const auto parts = set.sub_tables();
    for (const auto& part : parts) sizes.back() += 4 * ((1 << part.second) + 1);
    for (bool run_level : {false, true}) {
      reset_allocator();
      MoxVlcTable* table = build(set.spec(run_level), run_level);
      EXPECT_EQ(g_sizes, sizes);
      const auto expect = [&](const std::string& bits, MoxStatus status, const Leaf& leaf, std::size_t used) {
        const int offset = random(0, 31), length = static_cast<int>(used);
        if (run_level) {
          expect_pair(bits, offset, table, status, leaf.run, leaf.level, status == moxStsOk ? length : 0);
        } else {
          expect_one(bits, offset, table, status, leaf.value, length);
        }
      };
      for (const auto& [code, leaf] : set.codes) expect(code, moxStsOk, leaf, code.size());
      for (int i = 0; i < 50; ++i) {
        const std::string bits = random_bits(random, 80);
        const auto found = std::find_if(set.codes.begin(), set.codes.end(), [&](const auto& code) {
          return bits.compare(0, code.first.size(), code.first) == 0;
        });
        if (found != set.codes.end()) {
          expect(bits, moxStsOk, found->second, found->first.size());
          continue;
        }
        std::size_t read = 0, level = 0;
        do read += set.widths[level++];
        while (level < set.widths.size() && parts.count({bits.substr(0, read), set.widths[level]}));
        expect(bits, moxStsBadBitstream, {61681, 77, -777}, read);
      }
      release(table);
    }
  }
}

TEST_P(Huffman, NoMemory) {
  const std::vector<MoxVlcSpec> single = {0, 1, 2, 1, 1, 5, -1}, pair = {0, 1, 2, 1, 1, 5, 6, -1};
  for (bool run_level : {false, true}) {
    for (std::size_t failing : {1, 2}) {
      reset_allocator(failing);
      build(run_level ? pair : single, run_level, moxStsNoMemory);
      EXPECT_EQ(g_sizes.size(), failing);
    }
    reset_allocator();
    build({0, 1, 2, -1}, run_level, moxStsNoMemory);
    build({0, 1, 2, 0, 0, -1}, run_level, moxStsNoMemory);
    EXPECT_TRUE(g_sizes.empty()) << "a description without codes asks for nothing";
    for (int width : {23, 31, 63, 0x7FFFFFFF}) build({0, 1, width, 1, 1, 5, 6, -1}, true, moxStsNoMemory);
  }
}

TEST_P(Huffman, WrongDescriptionsStayInsideTheTable) {
  // Bits above the length of 1, twice the code 00 and one that begins with it, 0111 longer than the levels.
  reset_allocator();
  MoxVlcTable* table = build({0, 2, 2, 1, 1, -1, 7, 2, 0, 8, 0, 9, 2, 1, 10, 2, 11, 1, 7, 12, -1}, false);
  expect_one("1", 31, table, moxStsOk, 7, 1);
  expect_one("00", 31, table, moxStsOk, 9, 2);
  expect_one("010", 31, table, moxStsOk, 11, 3);
  expect_one("0111", 31, table, moxStsBadBitstream, 61681, 3);
  release(table);

  Random random;
  for (int round = 0; round < 1000; ++round) {
    std::vector<MoxVlcSpec> spec = {0, random(-1, 4)};
    int room = 0;
    for (int i = 0; i < spec[1]; ++i) spec.push_back(random(-1, 7)), room += std::max(spec.back(), 0);
    for (int length = 1, last = random(1, 40); length <= last; ++length) {
      spec.push_back(random.chance(0.4) || length == 1 ? random(1, 3) : 0);
      for (int i = spec.back(); i > 0; --i)
        spec.insert(spec.end(), {static_cast<Mox32s>(random.bits() >> random(0, 31)), 5});
    }
    spec.push_back(-1);
    table = build(spec, false);
    WordStream stream(random_bits(random, 64), random(0, 31));
    Mox32s value;
    const MoxStatus status = lib(MOX_FN(moxiDecodeHuffmanOne_1u32s))(&stream.word, &stream.offset, &value, table);
    ASSERT_EQ(value, status == moxStsOk ? 5 : 61681);
    ASSERT_LE(stream.consumed(), room);
    release(table);
  }
}

TEST_P(Huffman, EncodeTable) {
  const auto create = lib(MOX_FN(moxiCreateRLEncodeTable));
  MoxRLEncodeTable* table = nullptr;
  // End of block 10 and escape 000001; run 0 with levels to 2, run 1 without a code, run 2 with level 1.
  const MoxVlcSpec spec[] = {0, 1, 8, 0, 1,  2, 254, 0,   2, 6, 0,  1, 7, 0,  -1, 0,  2, 8,
                             0, 2, 9, 0, -2, 1, 1,   255, 0, 2, 42, 2, 1, 43, 2,  -1, -1};
  const std::vector<MoxRLEncodeTable> expected = {2 << 20 | 0x22 << 10 | 0x16,
                                                  24,
                                                  36,
                                                  44,
                                                  9 << 16 | 5,
                                                  7 << 16 | 3,
                                                  2,
                                                  6 << 16 | 3,
                                                  8 << 16 | 5,
                                                  -1,
                                                  43 << 16 | 7,
                                                  1,
                                                  42 << 16 | 7,
                                                  0,
                                                  0};
  const MoxVlcSpec empty[] = {0, 1, 2, -1};
  reset_allocator();
  ASSERT_EQ(create(spec, &table), moxStsOk);
  EXPECT_EQ(g_sizes, (std::vector<int>{15 * 4}));
  EXPECT_EQ(std::vector<MoxRLEncodeTable>(table, table + 15), expected);
  release(table);
  ASSERT_EQ(create(empty, &table), moxStsOk);
  EXPECT_EQ(std::vector<MoxRLEncodeTable>(table, table + 3), (std::vector<MoxRLEncodeTable>{0, 8, -1}));
  release(table);

  reset_allocator(1);
  MoxRLEncodeTable* none = nullptr;
  EXPECT_EQ(create(spec, &none), moxStsNoMemory);
  EXPECT_EQ(none, nullptr);
  EXPECT_EQ(create(nullptr, &none), moxStsNullPointer);
  EXPECT_EQ(create(spec, nullptr), moxStsNullPointer);

  Random random;
  for (int round = 0; round < 1000; ++round) {  // wrong descriptions: no level that a header allows is outside
    std::vector<MoxVlcSpec> words = {0, 0};
    for (int length = random(1, 50); length > 0; --length) {
      words.push_back(random(0, 3));
      for (int i = words.back(); i > 0; --i) {
        const int level = random.chance(0.9) ? random(-40, 40) : static_cast<int>(random.bits());
        words.insert(words.end(), {random(-9, 999), random(-1, random.chance(0.9) ? 20 : 999), level});
      }
    }
    words.push_back(-1);
    reset_allocator();
    ASSERT_EQ(create(words.data(), &table), moxStsOk);
    for (int run = 0; run <= table[0] >> 20; ++run) {
      const int section = table[1 + run] / 4, most = std::max(table[section], 0);
      ASSERT_TRUE(section - most >= 0 && section + most < g_sizes[0] / 4) << round;
    }
    release(table);
  }
}

TEST_P(Huffman, Arguments) {
  const MoxVlcSpec spec[] = {0, 1, 1, 1, 1, 5, -1};
  MoxVlcTable *table = nullptr, *none = nullptr;
  for (auto builder :
       {lib(MOX_FN(moxiHuffmanTableInitAlloc_32s)), lib(MOX_FN(moxiHuffmanRunLevelTableInitAlloc_32s))}) {
    EXPECT_EQ(builder(nullptr, &none), moxStsNullPointer);
    EXPECT_EQ(none, nullptr);
    EXPECT_EQ(builder(spec, nullptr), moxStsNullPointer);
  }
  EXPECT_EQ(lib(MOX_FN(moxiHuffmanTableFree_32s))(nullptr), moxStsNullPointer);
  table = build({spec, spec + 7}, false);
  WordStream stream("11"), pair_stream("11");
  const Mox32u* no_words = nullptr;
  Mox32s value = 0;
  Call{lib(MOX_FN(moxiDecodeHuffmanOne_1u32s)), std::tuple{&stream.word, &stream.offset, &value, table}}
      .keeps(&value, sizeof value)
      .keeps(&stream.offset, sizeof stream.offset)
      .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                     {moxStsNullPointer, set<0>(&no_words)},
                     {moxStsNullPointer, set<1>(nullptr)},
                     {moxStsNullPointer, set<2>(nullptr)},
                     {moxStsNullPointer, set<3>(nullptr)}});
  Mox8u first = 0;
  Mox16s second = 0;
  Call{lib(MOX_FN(moxiDecodeHuffmanPair_1u16s)),
       std::tuple{&pair_stream.word, &pair_stream.offset, table, &first, &second}}
      .keeps(&pair_stream.offset, sizeof pair_stream.offset)
      .keeps(&first, sizeof first)
      .keeps(&second, sizeof second)
      .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                     {moxStsNullPointer, set<0>(&no_words)},
                     {moxStsNullPointer, set<1>(nullptr)},
                     {moxStsNullPointer, set<2>(nullptr)},
                     {moxStsNullPointer, set<3>(nullptr)},
                     {moxStsNullPointer, set<4>(nullptr)}});
  release(table);
}

MOX_INSTANTIATE_GENERATIONS(Huffman);

}  // namespace
}  // namespace mox::test
