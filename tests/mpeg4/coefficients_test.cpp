#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <string>
#include <vector>

#include "oracle/mpeg4_coefficients.hpp"
#include "support/call.hpp"
#include "support/library.hpp"

namespace mox::test {
namespace {

using oracle::Block;
using oracle::Event;
using oracle::ReadTexture;
using oracle::Texture;

constexpr int kPadding = 2;
constexpr int kScans[] = {0, 1, 2, 3, -1};

class Mpeg4Coefficients : public PerGeneration {
 protected:
  void SetUp() override {
    PerGeneration::SetUp();
    for (int i = 0; i < 64; ++i) before_[i] = static_cast<Mox16s>(5 + i);
  }
  static std::string about(const Texture& t, const std::string& text, int offset) {
    return (testing::Message() << "intra " << t.intra << ", reversible " << t.reversible << ", no DC " << t.noDc
                               << ", scan " << t.scan << ", offset " << offset << ", bits " << text.substr(0, 100))
        .GetString();
  }
  static void fill(const Guarded<Mox8u>& bytes, std::string bits) {
    bits.resize(8 * bytes.size(), '0');
    for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<Mox8u>(value_of(bits.substr(8 * i, 8)));
  }
  void expect(const ReadTexture& expected, MoxStatus status, Mox32s last, std::ptrdiff_t moved, Mox32s at) {
    EXPECT_EQ(status, expected.good ? moxStsOk : moxStsBadCode);
    EXPECT_EQ(block_.copy(), std::vector<Mox16s>(expected.block.begin(), expected.block.end()));
    EXPECT_EQ(last, expected.last);
    EXPECT_EQ(moved, expected.good ? expected.consumed : 0);
    EXPECT_TRUE(at >= 0 && at <= 7) << at;
  }
  /// Reads `text` from bit `offset` of a byte on, with the library and the oracle. Behind the byte with the last bit
  /// that the oracle looks at there are as many bytes as a reader may load, and then unreadable memory.
  ReadTexture decode(const Texture& t, const std::string& text, int offset) {
    SCOPED_TRACE(about(t, text, offset));
    const ReadTexture expected = oracle::decode(t, text + std::string(3000, '0'), before_);
    const Guarded<Mox8u> bytes((offset + expected.tried + 7) / 8 + kPadding);
    fill(bytes, std::string(offset, '1') + text);
    std::copy(before_.begin(), before_.end(), block_.begin());
    const Mox8u* byte = bytes.data();
    Mox32s at = offset, last = 777;
    const MoxStatus status = t.intra ? lib(MOX_FN(moxiDecodeCoeffsIntra_MPEG4_1u16s))(
                                           &byte, &at, block_.data(), &last, t.reversible * 2, t.noDc * 4, t.scan)
                                     : lib(MOX_FN(moxiDecodeCoeffsInter_MPEG4_1u16s))(&byte, &at, block_.data(), &last,
                                                                                      t.reversible, t.scan);
    expect(expected, status, last, (byte - bytes.data()) * 8 + at - offset, at);
    return expected;
  }
  /// The same for the block that ends with `text`, at bit `offset` of a byte.
  ReadTexture decode_backwards(const Texture& t, const std::string& text, int offset) {
    SCOPED_TRACE("backwards, " + about(t, text, offset));
    std::string bits = std::string(3000, '0') + text;
    const ReadTexture expected = oracle::decode_backwards(t, bits, before_);
    const int needed = expected.tried + (offset - expected.tried % 8 + 8) % 8 + 8 * kPadding;
    bits.erase(0, bits.size() - needed);
    const Guarded<Mox8u> bytes((needed + 7) / 8, Placement::at_start());
    fill(bytes, bits + "1111111");
    std::copy(before_.begin(), before_.end(), block_.begin());
    const Mox8u* byte = bytes.data() + needed / 8;
    Mox32s at = offset, last = 777;
    const MoxStatus status =
        t.intra ? lib(MOX_FN(moxiDecodeCoeffsIntraRVLCBack_MPEG4_1u16s))(&byte, &at, block_.data(), &last, t.noDc)
                : lib(MOX_FN(moxiDecodeCoeffsInterRVLCBack_MPEG4_1u16s))(&byte, &at, block_.data(), &last);
    expect(expected, status, last, needed - ((byte - bytes.data()) * 8 + at), at);
    return expected;
  }
  /// Lets write(&byte, &offset) write behind `offset` bits that stay, and compares with the text.
  template <class Write>
  static void expect_written(const std::string& text, int offset, Write write) {
    std::string expected = std::string(offset, '1') + text, written;
    const std::size_t end = expected.size();
    expected.resize((end + 7) / 8 * 8, text.empty() ? '1' : '0');
    const Guarded<Mox8u> bytes(expected.size() / 8);
    std::fill(bytes.begin(), bytes.end(), Mox8u{255});
    Mox8u* byte = bytes.data();
    Mox32s at = offset;
    ASSERT_EQ(write(&byte, &at), moxStsOk);
    for (Mox8u b : bytes) written += bits_of(b, 8);
    ASSERT_EQ(written, expected);
    ASSERT_EQ((byte - bytes.data()) * 8 + at, static_cast<std::ptrdiff_t>(end));
    ASSERT_TRUE(at >= 0 && at <= 7) << at;
  }
  std::string encode(const Texture& t, const Block& block, int count, int offset) {
    const std::string text = oracle::encode(t, block, count);
    SCOPED_TRACE(about(t, text, offset));
    expect_written(text, offset, [&](Mox8u** byte, Mox32s* at) {
      return t.intra
                 ? lib(MOX_FN(moxiEncodeCoeffsIntra_MPEG4_16s1u))(block.data(), byte, at, count, t.reversible, t.noDc,
                                                                  t.scan)
                 : lib(MOX_FN(moxiEncodeCoeffsInter_MPEG4_16s1u))(block.data(), byte, at, count, t.reversible, t.scan);
    });
    return text;
  }

  const Guarded<Mox16s> block_ = Guarded<Mox16s>(64);
  Block before_;
};

template <class Visit>
void for_each_texture(Visit visit) {
  for (int form = 0; form < 8; ++form) {
    if (form % 4 == 2) continue;  // an inter block has no DC
    for (int scan : kScans) visit(Texture{form % 2 == 1, form >= 4, form / 2 % 2 == 1, scan});
  }
}
std::string end_code(const Texture& t) { return t.code({1, 0, -1}); }

/// Codes of the table, and of each escape.
std::vector<std::string> all_codes(const Texture& t) {
  std::vector<std::string> texts;
  for (const auto& entry : t.book()) {
    texts.push_back(entry.first);
    if (t.reversible) continue;
    texts.push_back("00000110" + entry.first);
    const bool fits = entry.second[0] == 0 || entry.second[1] < 20;  // with 41 more
    if (fits) texts.push_back("000001110" + entry.first);
  }
  for (int level : {1, -1, 28, 1023, -1024, 2047, -2047}) {
    for (int last : {0, 1}) texts.push_back(t.fields({last, last ? 61 : 40, level}));
  }
  return texts;
}

TEST_P(Mpeg4Coefficients, EveryCodeIsReadAtEveryOffset) {
  for_each_texture([&](const Texture& t) {
    for (const std::string& text : all_codes(t)) {
      for (int offset = t.scan + 1; offset < 8; offset += t.scan == 0 ? 1 : 3) {
        ASSERT_TRUE(decode(t, text + end_code(t), offset % 8).good);
        if (!t.reversible || t.scan != 0) continue;
        const bool last = decode(t, text + end_code(t), 0).consumed == static_cast<int>(text.size());
        ASSERT_TRUE(decode_backwards(t, end_code(t) + text + (last ? "" : end_code(t)), offset).good);
        ASSERT_EQ(decode_backwards(t, text + end_code(t), offset).good, last);
      }
    }
  });
}

TEST_P(Mpeg4Coefficients, RandomAndCorruptStreams) {
  Random random;
  int good[2] = {}, bad[2] = {};
  for (int round = 0; round < 60; ++round) {
    for_each_texture([&](const Texture& t) {
      const std::vector<std::string> texts = all_codes(t);
      std::string bits = random.chance(0.5) ? "" : end_code(t);
      const double corrupt = random.chance(0.4) ? 0.05 : 0;
      for (int left = random(0, 66); left > 0; --left) {
        std::string code =
            random.chance(0.1) ? texts[random(0, static_cast<int>(texts.size()) - 1)] : t.code({0, 0, 1});
        if (random.chance(corrupt)) code[random(0, static_cast<int>(code.size()) - 1)] ^= 1;
        bits += code;
      }
      if (random.chance(0.9)) bits += end_code(t);
      if (t.reversible) (decode_backwards(t, bits, random(0, 7)).good ? good : bad)[1]++;
      if (bits.compare(0, end_code(t).size(), end_code(t)) == 0) bits.erase(0, end_code(t).size());
      (decode(t, bits + random_bits(random, 60), random(0, 7)).good ? good : bad)[0]++;
      for (int from : {0, 7, 8, 9}) {  // an escape, with each bit of its fields wrong
        std::string code = t.fields({1, random(0, 20), random.chance(0.2) ? 0 : random(-2047, 2047)});
        code[random(from, 29)] ^= 1;
        decode(t, code + random_bits(random, 60), random(0, 7));
        if (t.reversible) decode_backwards(t, end_code(t) + code, random(0, 7));
      }
    });
  }
  for (int way : {0, 1}) EXPECT_TRUE(good[way] > 200 && bad[way] > 200) << good[way] << " good, " << bad[way] << " bad";
}

/// Streams by hand. Good ones are written again, and reversible ones read from their end too, behind a last code.
TEST_P(Mpeg4Coefficients, LiteralBlocks) {
  struct Case {
    Texture texture;
    const char* bits;
    int last;
    bool good;
    std::vector<std::pair<int, Mox16s>> values;
  };
  const Texture inter{0, 0, 0, 0}, intra{1, 0, 0, 0}, ac{1, 0, 1, 0}, rInter{0, 1, 0, 0}, rIntra{1, 1, 0, 0};
  const Case cases[] = {
      {inter, "0111 0", 0, true, {{0, 1}}},
      {intra, "110 1 0111 1", 1, true, {{0, -2}, {1, -1}}},
      {ac, "1110 0 0010001 1", 6, true, {{0, 5}, {8, 1}, {3, -1}}},
      {inter, "0000011 0 10 1 0111 0", 1, true, {{0, -13}, {1, 1}}},
      {intra, "0000011 0 0111 1", 0, true, {{0, -9}}},
      {inter, "0000011 10 0111 0", 41, true, {{22, 1}}},
      {intra, "0000011 10 000011100 1 0000011 11 1 000000 1 000001100011 1", 16, true, {{5, -2}, {12, 99}}},
      {inter, "0000011 11 1 111111 1 100000000001 1", 63, true, {{63, -2047}}},
      {{1, 0, 0, 2}, "1110 0 0111 0", 2, true, {{1, 1}, {2, 1}}},
      {{0, 0, 0, 1}, "1110 0 0111 0", 3, true, {{16, 1}, {24, 1}}},
      {rInter, "111 0 1011 1", 2, true, {{1, 1}, {8, -1}}},
      {rIntra, "111 0 1011 1", 1, true, {{0, 2}, {1, -1}}},
      {rIntra, "001111111111100 1 1011 0", 1, true, {{0, -27}, {1, 1}}},
      {rInter, "00001 1 111111 1 11111111111 1 0000 1", 63, true, {{63, -2047}}},
      {inter, "0000011 11 1 000000 1 000000000000 1", -1, false, {}},
      {inter, "0000011 11 1 000000 1 100000000000 1", -1, false, {}},
      {inter, "0000011 11 1 000000 0 000000000001 1", -1, false, {}},
      {inter, "0000011 11 1 000000 1 000000000001 0", -1, false, {}},
      {inter, "0000011 0 0000011 0 10 0", -1, false, {}},
      {intra, "0000011 10 0000011 10 10 0", -1, false, {}},
      {inter, "10 0 000000000111", 0, false, {{0, 1}}},
      {inter, "0000011 11 0 111111 1 000000000001 1 0111 0", 64, false, {{63, 1}}},
      {ac, "0000011 11 1 111111 1 000000000001 1", 64, false, {{0, 5}}},
      {rInter, "00001 1 000000 1 00000000000 1 0000 1", -1, false, {}},
      {rInter, "00001 1 000000 1 00000000001 1 0001 1", -1, false, {}},
      {rInter, "00000 1 000000 1 00000000001 1 0000 1", -1, false, {}},
  };
  for (const Case& c : cases) {
    Block expected{};
    for (const auto& [position, value] : c.values) expected[position] = value;
    const ReadTexture got = decode(c.texture, codes(c.bits), 5);
    EXPECT_EQ(got.good, c.good) << c.bits;
    EXPECT_EQ(got.block, expected) << c.bits;
    EXPECT_EQ(got.last, c.last) << c.bits;
    if (!c.good) continue;
    EXPECT_EQ(encode(c.texture, expected, static_cast<int>(c.values.size()) - c.texture.noDc, 3), codes(c.bits));
    if (!c.texture.reversible) continue;
    const ReadTexture back = decode_backwards(c.texture, "10110" + codes(c.bits), 3);
    EXPECT_TRUE(back.good && back.last == c.last) << c.bits;
    for (int i = 0; i < 64; ++i) EXPECT_EQ(back.block[i], expected[ownvc_Zigzag[i]]) << c.bits;
  }
}

/// 64 levels fill a block, 63 behind a DC; one more is too many from either end.
TEST_P(Mpeg4Coefficients, FullBlocks) {
  for_each_texture([&](const Texture& t) {
    for (int levels : {62, 63, 64, 65}) {
      std::string text = end_code(t);
      for (int i = 1; i < levels; ++i) text.insert(0, t.code({0, 0, 1}));
      const ReadTexture got = decode(t, text, 2);
      EXPECT_EQ(got.good, levels <= 63 - t.start());
      EXPECT_EQ(got.last, std::min(levels + t.start(), 64));
      if (!t.reversible) continue;
      EXPECT_EQ(decode_backwards(t, end_code(t) + text, 2).good, got.good);
    }
  });
}

TEST_P(Mpeg4Coefficients, WrittenBlocksAreReadAgain) {
  Random random;
  for (int round = 0; round < 40; ++round) {
    for_each_texture([&](Texture t) {
      Block block{};
      const double density = random(1, 60) / 64.0, large = random.chance(0.5) ? 0.2 : 0;
      for (Mox16s& level : block) {
        const int most = random.chance(large) ? (random.chance(0.5) ? 2047 : 60) : 3;
        if (random.chance(density)) level = static_cast<Mox16s>(random(-most, most));
      }
      block[63] = static_cast<Mox16s>(random.chance(0.5) ? 2047 : -1);
      const int first = t.start() + 1;
      const auto count = static_cast<int>(64 - first - std::count(block.begin() + first, block.end(), 0));
      for (int told : {count, random(1, 64 - first), 64 - first}) {
        const std::string text = encode(t, block, told, random(0, 7));
        if (told != count) continue;
        if (t.scan == 3 || (t.scan == 2 && !t.intra)) t.scan = 0;  // what they stand for in writing
        const ReadTexture got = decode(t, text, random(0, 7));
        ASSERT_TRUE(got.good && std::equal(block.begin() + first, block.end(), got.block.begin() + first));
        if (!t.reversible) continue;
        const ReadTexture back = decode_backwards(t, end_code(t) + text, random(0, 7));
        ASSERT_TRUE(back.good && back.last == got.last);
        for (int i = first; i < 64; ++i) ASSERT_EQ(back.block[i], block[t.position(i, 0)]);
      }
    });
  }
}

TEST_P(Mpeg4Coefficients, DcIsReadAndWritten) {
  const auto read = [&](const std::string& text, int tried, int offset, int type, int* consumed) {
    const Guarded<Mox8u> bytes((offset + tried + 7) / 8 + kPadding);
    fill(bytes, std::string(offset, '1') + text);
    const Mox8u* byte = bytes.data();
    Mox32s at = offset;
    Mox16s dc = -9999;
    const MoxStatus status = lib(MOX_FN(moxiDecodeDCIntra_MPEG4_1u16s))(&byte, &at, &dc, type);
    *consumed = static_cast<int>(byte - bytes.data()) * 8 + at - offset;
    EXPECT_EQ(status, dc == -9999 ? moxStsBadCode : moxStsOk);
    return int{dc};
  };
  const char* const kShort[2][5] = {{"011", "11", "10", "010", "001"}, {"11", "10", "01", "001", "0001"}};
  int consumed;
  for (int i = -2 * 5000; i <= 2 * 5000; ++i) {
    const int type = i & 1, given = i / 2, dc = std::min(std::max(given, -4095), 4095), offset = (i & 15) / 2;
    int size = 0;
    while (std::abs(dc) >> size != 0) ++size;
    std::string text = size < 5 ? kShort[type][size] : std::string(size - 2 + type, '0') + "1";
    if (size > 0) text += bits_of(dc > 0 ? dc : dc + (1 << size) - 1, size);
    if (size > 8) text += "1";
    const int length = static_cast<int>(text.size());
    ASSERT_NO_FATAL_FAILURE(expect_written(text, offset, [&](Mox8u** byte, Mox32s* at) {
      return lib(MOX_FN(moxiEncodeDCIntra_MPEG4_16s1u))(static_cast<Mox16s>(given), byte, at, type ? 1 : 2);
    }));
    ASSERT_EQ(read(text, length, offset, type ? 2 : 0, &consumed), dc);
    ASSERT_EQ(consumed, length);
    if (size <= 8) continue;
    text.back() = '0';  // the marker
    ASSERT_EQ(read(text, length, offset, type, &consumed), -9999);
    ASSERT_EQ(consumed, 0);
  }
  EXPECT_EQ(read("000000000001" + std::string(14, '1'), 12, 3, 0, &consumed), -9999);
  EXPECT_EQ(read("0000000000001" + std::string(14, '1'), 12, 3, 1, &consumed), -9999);
}

/// Reading with inverse quantisation is reading, then inverse quantisation, up to an error too.
TEST_P(Mpeg4Coefficients, Reconstruction) {
  Random random;
  Mox8u matrix[64], record[156];
  auto* const spec = reinterpret_cast<MoxiQuantInvState*>(record);
  for (int round = 0; round < 1500; ++round) {
    const bool weighted = round % 2 == 1;
    const Texture t{false, round % 4 > 1, false, random(0, 1)};
    for (Mox8u& weight : matrix) weight = static_cast<Mox8u>(random(1, 255));
    px(MOX_FN(moxiQuantInvInterInit_MPEG4))(weighted ? matrix : nullptr, spec, random(4, 12));
    const int qp = random(0, 40);
    const std::vector<std::string> texts = all_codes(t);
    std::string text;
    for (int left = random(0, 20); left > 0; --left) {
      text += random.chance(0.3) ? texts[random(0, static_cast<int>(texts.size()) - 1)] : t.code({0, 0, 2});
    }
    text += random.chance(0.1) ? "00000000000000000" : end_code(t);
    SCOPED_TRACE(about(t, text, qp));
    ReadTexture expected = oracle::decode(t, text + std::string(3000, '0'), before_);
    Mox16s levels[64];
    std::copy(expected.block.begin(), expected.block.end(), levels);
    MoxStatus status = px(MOX_FN(moxiQuantInvInter_MPEG4_16s_C1I))(expected.block.data(), 63, spec, qp);
    const bool refused = status != moxStsOk && !t.reversible, partial = !expected.good && !refused;
    if (partial) status = moxStsBadCode;
    if (refused) expected.block = before_, expected.last = 777;
    if (partial && t.reversible) std::copy(levels, levels + 64, expected.block.begin());
    const Guarded<Mox8u> bytes((expected.tried + 7) / 8 + kPadding);
    fill(bytes, text);
    std::copy(before_.begin(), before_.end(), block_.begin());
    const Mox8u* byte = bytes.data();
    Mox32s at = 0, last = 777;
    // Other selectors are zigzag.
    const int scan = t.scan == 1 ? 1 : kScans[random(2, 4)];
    ASSERT_EQ(lib(MOX_FN(moxiReconstructCoeffsInter_MPEG4_1u16s))(&byte, &at, block_.data(), &last, t.reversible, scan,
                                                                  spec, qp),
              status);
    // Behind an error there is no mismatch control.
    if (partial) expected.block[63] = levels[63] == 0 ? Mox16s{0} : block_[63];
    ASSERT_EQ(block_.copy(), std::vector<Mox16s>(expected.block.begin(), expected.block.end()));
    ASSERT_EQ(last, expected.last);
    ASSERT_EQ((byte - bytes.data()) * 8 + at, expected.good && !refused ? expected.consumed : 0);
  }
}

TEST_P(Mpeg4Coefficients, Arguments) {
  const std::vector<Mox8u> bytes(20, 0x70);
  const Guarded<Mox8u> ends(5);
  fill(ends, codes("10110 10110 10110 10110 10110 10110 10110 10110"));
  std::vector<Mox8u> written(20);
  Mox16s block[64] = {1}, dc = 1;
  Mox8u record[156] = {}, other[156] = {};
  auto* const spec = reinterpret_cast<MoxiQuantInvState*>(record);
  auto* const wrongSpec = reinterpret_cast<MoxiQuantInvState*>(other);
  px(MOX_FN(moxiQuantInvInterInit_MPEG4))(nullptr, spec, 8);
  px(MOX_FN(moxiQuantInvIntraInit_MPEG4))(nullptr, wrongSpec, 8);
  const Mox8u *byte = nullptr, *nothing = nullptr;
  Mox8u *out = nullptr, *nowhere = nullptr;
  Mox32s at = 0, last = 5;
  const auto keeping = [&](auto call) {
    byte = bytes.data(), out = written.data(), at = 0;
    call.keeps(&byte, sizeof byte).keeps(&out, sizeof out).keeps(&at, sizeof at).keeps(&last, sizeof last);
    return call.keeps(block, sizeof block).keeps(&dc, sizeof dc).keeps(written.data(), written.size());
  };
  for (Mox32s wrong : {-1, 8, INT_MIN}) {
    const auto read = [&](bool backwards, auto symbol, auto more, auto... rest) {
      Call call = keeping(Call{lib(symbol), std::tuple{&byte, &at, block, &last, rest...}});
      std::vector<typename decltype(call)::Fault> faults = {
          {moxStsNullPointer, set<0>(nullptr)}, {moxStsNullPointer, set<0>(&nothing)},
          {moxStsNullPointer, set<1>(nullptr)}, {moxStsNullPointer, set<2>(nullptr)},
          {moxStsNullPointer, set<3>(nullptr)}, {moxStsBadBitOffset, set<1>(&wrong)}};
      more(faults);
      if (backwards) byte = ends.end();
      call.expect_order(faults, moxStsOk);
    };
    const auto none = [](auto&) {};
    read(false, MOX_FN(moxiDecodeCoeffsIntra_MPEG4_1u16s), none, 0, 0, 0);
    read(false, MOX_FN(moxiDecodeCoeffsInter_MPEG4_1u16s), none, 0, 0);
    read(true, MOX_FN(moxiDecodeCoeffsIntraRVLCBack_MPEG4_1u16s), none, 0);
    read(true, MOX_FN(moxiDecodeCoeffsInterRVLCBack_MPEG4_1u16s), none);
    const auto record_faults = [&](auto& faults) {
      faults.push_back({moxStsNullPointer, set<6>(nullptr)});
      faults.push_back({moxStsBadContext, set<6>(wrongSpec)});
      faults.push_back({moxStsBadQp, set<7>(wrong == 8 ? 32 : wrong + 1)});
    };
    read(false, MOX_FN(moxiReconstructCoeffsInter_MPEG4_1u16s), record_faults, 0, 0, spec, 31);
    const auto write = [&](int most, auto symbol, auto... rest) {
      keeping(Call{lib(symbol), std::tuple{block, &out, &at, 1, rest...}})
          .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                         {moxStsNullPointer, set<1>(nullptr)},
                         {moxStsNullPointer, set<1>(&nowhere)},
                         {moxStsNullPointer, set<2>(nullptr)},
                         {moxStsBadBitOffset, set<2>(&wrong)},
                         {moxStsOutOfRange, set<3>(wrong == 8 ? most + 1 : wrong + 1)}});
    };
    write(64, MOX_FN(moxiEncodeCoeffsIntra_MPEG4_16s1u), 0, 0, 0);
    write(63, MOX_FN(moxiEncodeCoeffsIntra_MPEG4_16s1u), 1, 2, 0);
    write(64, MOX_FN(moxiEncodeCoeffsInter_MPEG4_16s1u), 0, 0);
    keeping(Call{lib(MOX_FN(moxiDecodeDCIntra_MPEG4_1u16s)), std::tuple{&byte, &at, &dc, 0}})
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set<0>(&nothing)},
                       {moxStsNullPointer, set<1>(nullptr)},
                       {moxStsNullPointer, set<2>(nullptr)},
                       {moxStsBadBitOffset, set<1>(&wrong)}});
    keeping(Call{lib(MOX_FN(moxiEncodeDCIntra_MPEG4_16s1u)), std::tuple{Mox16s{7}, &out, &at, 0}})
        .expect_order({{moxStsNullPointer, set<1>(nullptr)},
                       {moxStsNullPointer, set<1>(&nowhere)},
                       {moxStsNullPointer, set<2>(nullptr)},
                       {moxStsBadBitOffset, set<2>(&wrong)}});
  }
  // Reversible codes come before the record.
  for (auto [state, qp, status] : {std::tuple{static_cast<MoxiQuantInvState*>(nullptr), 0, moxStsNullPointer},
                                   std::tuple{wrongSpec, 0, moxStsBadContext}, std::tuple{spec, 32, moxStsBadQp},
                                   std::tuple{spec, 31, moxStsOk}}) {
    byte = ends.data(), at = 0;
    EXPECT_EQ(lib(MOX_FN(moxiReconstructCoeffsInter_MPEG4_1u16s))(&byte, &at, block, &last, 1, 0, state, qp), status);
    EXPECT_TRUE(byte == ends.data() && at == 5);
    EXPECT_EQ(block[0], qp == 31 ? 93 : 1);
  }
}

MOX_INSTANTIATE_GENERATIONS(Mpeg4Coefficients);

}  // namespace
}  // namespace mox::test
