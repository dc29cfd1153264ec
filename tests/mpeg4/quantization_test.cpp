#include "moxvc/mpeg4_quantization.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <string_view>
#include <vector>

#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

using Block = std::vector<Mox16s>;
using Matrix = std::vector<Mox8u>;  ///< none if empty

/// One call: the direction, what its record is made of, and the arguments. `last` and `chroma` where they apply.
struct Use {
  bool inverse, intra;
  int depth, qp;
  Matrix matrix;
  int last = 63;
  bool chroma = false;
};
testing::Message describe(const Use& u) {
  return testing::Message() << "inverse " << u.inverse << ", intra " << u.intra << ", depth " << u.depth << ", qp "
                            << u.qp << ", matrix " << !u.matrix.empty() << ", last " << u.last << ", chroma "
                            << u.chroma;
}

// The definition case by case, signs apart, on wide integers, and on doubles: these hold the product of two floats and
// the sums that occur here exactly, so that one rounding to float is the rounding of the operation.
float rounded(double value) { return static_cast<float>(value); }
long long floor_of(long long value, long long divisor) {
  return value >= 0 ? value / divisor : -((-value + divisor - 1) / divisor);
}

long long level_of(int x, const Use& u, int w) {
  if (x < 0) return -level_of(-x, u, w);
  const long long inverse = 65536 / (2 * u.qp) + 1, dead = u.intra ? 0 : u.qp / 2;
  if (u.depth <= 8) {
    if (w == 0) return u.qp == 1 ? x / 2 : x < dead ? 0 : (x - dead) * inverse / 65536;
    const long long t = (16ll * x + w / 2) * (w == 1 ? 65535 : 65536 / w + 1) / 65536;
    return std::min(2047ll, (t + (u.intra ? (3 * u.qp + 2) / 4 : 0)) * inverse / 65536);
  }
  double value;
  if (w == 0) {
    value = rounded(std::max(0.0, static_cast<double>(x - dead)) * rounded(rounded(0.5000001) / double(u.qp)));
  } else {
    value = rounded(x * double{rounded(rounded(u.intra ? 8.0 : 8.00001) / double(u.qp))});
    value = rounded(value * rounded(1.0 / w));
    if (u.intra) value = rounded(value + rounded(0.501));
  }
  return std::min(2047ll, static_cast<long long>(value));
}

int scaler_of(int qp, bool chroma) {
  if (qp < 5) return 8;
  if (chroma) return qp < 25 ? (qp + 13) / 2 : qp - 6;
  return qp < 9 ? 2 * qp : qp < 25 ? qp + 8 : 2 * qp - 16;
}
long long dc_level_of(int x, int qp, bool chroma) {
  const int d = scaler_of(qp, chroma);
  if (qp <= 4) {
    return x >= 4 ? std::min(2047ll, floor_of(x + 4, 8)) : x < -3 ? std::max(-2047ll, floor_of(x + 3, 8)) : 0;
  }
  if (x >= (d + 1) / 2) return std::min(2047, (x + d / 2) / d);
  if (x <= -((d + 1) / 2)) return std::max(-2047, (x - d / 2) / d);
  return 0;
}

long long value_of(long long x, const Use& u, int w) {
  const long long limit = 1ll << (u.depth + 3), odd = u.qp % 2 ? u.qp : u.qp - 1;
  long long value = 0;
  if (w == 0) {
    value = x * 2 * u.qp + (x > 0 ? odd : x < 0 ? -odd : 0);
  } else if (u.intra) {
    value = floor_of(x * w * u.qp + (x < 0 ? 7 : 0), 8);
  } else if (x != 0) {
    value = x > 0 ? floor_of((2 * x + 1) * w * u.qp, 16) : floor_of((2 * x - 1) * w * u.qp + 15, 16);
  }
  return std::clamp(value, -limit, limit - 1);
}

Block expected_block(Block block, const Use& u) {
  const bool weighted = !u.matrix.empty(), isDcAlone = u.inverse && u.intra && u.last < 1;
  const int last = u.inverse ? std::min(u.last, 63) : 63, limit = 1 << (u.depth + 3);
  const int end = isDcAlone ? 1 : last < 0 ? 0 : u.inverse && !weighted ? last / 8 * 8 + 8 : last + 1;
  long long sum = 0;
  for (int i = 0; i < end; ++i) {
    const int x = block[i], w = weighted ? u.matrix[i] : 0;
    const bool isDc = u.intra && i == 0;
    const long long result =
        !u.inverse ? (isDc ? dc_level_of(x, u.qp, u.chroma) : level_of(x, u, w))
                   : (isDc ? std::clamp(scaler_of(u.qp, u.chroma) * x, -limit, limit - 1) : value_of(x, u, w));
    block[i] = static_cast<Mox16s>(result);
    sum += result;
  }
  if (u.inverse && weighted && sum % 2 == 0) {
    block[63] = static_cast<Mox16s>(isDcAlone ? 1 : block[63] % 2 ? block[63] - 1 : block[63] + 1);
  }
  return block;
}

class Mpeg4Quantization : public PerGeneration {
 protected:
  /// Memory for a record, of exactly the size told.
  struct Memory : Guarded<Mox8u> {
    explicit Memory(bool inverse, Placement placement = {}) : Guarded(inverse ? 156 : 412, placement) {
      std::fill(begin(), end(), Mox8u{0xFF});  // floats that are no numbers, were they read
    }
    MoxiQuantFwdState* forward() const { return reinterpret_cast<MoxiQuantFwdState*>(data()); }
    MoxiQuantInvState* inverse() const { return reinterpret_cast<MoxiQuantInvState*>(data()); }
    bool holds(std::string_view tag) const { return std::search(begin(), end(), tag.begin(), tag.end()) != end(); }
  };

  MoxStatus init(const Memory& memory, const Use& u) {
    const Mox8u* const matrix = u.matrix.empty() ? nullptr : u.matrix.data();
    if (!u.inverse) {
      return lib(u.intra ? MOX_FN(moxiQuantIntraInit_MPEG4) : MOX_FN(moxiQuantInterInit_MPEG4))(
          matrix, memory.forward(), u.depth);
    }
    return lib(u.intra ? MOX_FN(moxiQuantInvIntraInit_MPEG4) : MOX_FN(moxiQuantInvInterInit_MPEG4))(
        matrix, memory.inverse(), u.depth);
  }
  MoxStatus run(const Memory& memory, const Use& u, Mox16s* block, Mox32s* count) {
    if (!u.inverse) {
      if (!u.intra) return lib(MOX_FN(moxiQuantInter_MPEG4_16s_C1I))(block, memory.forward(), u.qp, count);
      return lib(MOX_FN(moxiQuantIntra_MPEG4_16s_C1I))(block, memory.forward(), u.qp, count, u.chroma * 3);
    }
    if (!u.intra) return lib(MOX_FN(moxiQuantInvInter_MPEG4_16s_C1I))(block, u.last, memory.inverse(), u.qp);
    return lib(MOX_FN(moxiQuantInvIntra_MPEG4_16s_C1I))(block, u.last, memory.inverse(), u.qp, -u.chroma);
  }
  /// Runs one block in `work`.
  void expect_block(const Memory& memory, const Use& u, const Block& block, const Guarded<Mox16s>& work) {
    const Block expected = expected_block(block, u);
    std::copy(block.begin(), block.end(), work.begin());
    Mox32s count = -1;
    ASSERT_EQ(run(memory, u, work.data(), &count), moxStsOk) << describe(u);
    ASSERT_TRUE(std::equal(work.begin(), work.end(), expected.begin()))
        << describe(u) << testing::PrintToString(block) << " gives " << testing::PrintToString(work.copy());
    ASSERT_EQ(count, u.inverse ? -1 : 64 - std::count(expected.begin(), expected.end(), 0)) << describe(u);
  }
};

Matrix random_matrix(Random& random) {
  Matrix matrix(64);
  random.fill(std::span<Mox8u>(matrix), 1, random.chance(0.8) ? 255 : 3);
  return matrix;
}

TEST_P(Mpeg4Quantization, AllValuesOfACoefficient) {
  Random random;
  const Guarded<Mox16s> work(64);
  Block block(64);
  for (int form = 0; form < 72; ++form) {
    const int depth = 4 + form / 8, most = (1 << (depth - 3)) - 1;
    for (int qp : {1, random(1, most), most}) {
      Use u{form % 2 == 1, form / 2 % 2 == 1, depth, qp, form / 4 % 2 == 1 ? random_matrix(random) : Matrix()};
      const Memory memory(u.inverse, Placement::aligned(qp % 16));
      ASSERT_EQ(init(memory, u), moxStsOk);
      for (int first = -32768; first < 32768; first += 64) {
        for (int i = 0; i < 64; ++i) block[i] = static_cast<Mox16s>(first + (i * 27 + qp) % 64);
        ASSERT_NO_FATAL_FAILURE(expect_block(memory, u, block, work));
      }
      for (int wrong : {0, most + 1}) {
        u.qp = wrong;
        EXPECT_EQ(run(memory, u, block.data(), &u.last), moxStsBadQp) << describe(u);
      }
    }
  }
}

/// The DC of 1 and values about the limits between its levels, for all parameters and scalers.
TEST_P(Mpeg4Quantization, Dc) {
  const Guarded<Mox16s> work(64);
  const Memory forward(false), inverse(true);
  ASSERT_EQ(init(forward, {false, true, 12, 1, {}}), moxStsOk);
  ASSERT_EQ(init(inverse, {true, true, 12, 1, {}}), moxStsOk);
  for (int qp = 1; qp < 512; ++qp) {
    for (bool chroma : {false, true}) {
      Block block(64);
      for (int step = -20; step <= 20; ++step) {
        block[0] = static_cast<Mox16s>(step / 4 * scaler_of(qp, chroma) / 2 + step % 4);
        ASSERT_NO_FATAL_FAILURE(expect_block(forward, {false, true, 12, qp, {}, 63, chroma}, block, work));
      }
      block[0] = 1;
      ASSERT_NO_FATAL_FAILURE(expect_block(inverse, {true, true, 12, qp, {}, 0, chroma}, block, work));
    }
  }
}

TEST_P(Mpeg4Quantization, RandomBlocks) {
  Random random;
  for (int round = 0; round < 6000; ++round) {
    Use u{random.chance(0.6), random.chance(0.5), random.chance(0.5) ? 8 : random(4, 12), 1, {}};
    u.qp = random(1, (1 << (u.depth - 3)) - 1);
    u.chroma = random.chance(0.5);
    if (random.chance(0.6)) u.matrix = random_matrix(random);
    if (random.chance(0.8)) u.last = random.chance(0.1) ? (random.chance(0.5) ? INT_MIN : INT_MAX) : random(-2, 70);
    const Memory memory(u.inverse, random.chance(0.3) ? Placement::at_end() : Placement::aligned(random(0, 15)));
    ASSERT_EQ(init(memory, u), moxStsOk);
    const auto before = memory.copy();
    Block block(64);
    const int range = 1 << random(1, 15);
    fill(std::span<Mox16s>(block), kPatterns[random(0, 6)], random, -range, range - 1);
    const Guarded<Mox16s> work(64, random.chance(0.3) ? Placement::at_end() : Placement::aligned(2 * random(0, 8)));
    ASSERT_NO_FATAL_FAILURE(expect_block(memory, u, block, work));
    ASSERT_EQ(memory.copy(), before);
  }
}

/// Coefficient `at` of a block that is zero elsewhere, but for `before63` in coefficient 63: by hand.
TEST_P(Mpeg4Quantization, LiteralValues) {
  enum Form { kP, kI, kC, kInvP, kInvI, kInvC };  // inter, intra with luma or chroma DC
  struct Case {
    Form form;
    int depth, qp, weight, at, value, result, last, before63, after63;
  };
  // 98 * 6554 is 9.8 times 65536. Of weight 1 the reciprocal is too small: 10 counts as 159 sixteenths. 106 + 4 is 11
  // times 10. Above 8 bits 950 / 200 and 1000 / 200; 50.5, and with 0.501 added 51.001. The scalers of the DC are 8 for
  // 4, 10 and 9 for 5. Inverse with weight 17, 595 / 16 and 255 / 8 towards zero; a DC of 30 is even, 27 odd.
  // clang-format off
  const Case cases[] = {
      {kP, 8, 1, 0, 0, -1, 0, 63, 0, 0}, {kP, 8, 1, 0, 0, -3, -1, 63, 0, 0}, {kP, 8, 1, 0, 0, -32768, -16384, 63, 0, 0},
      {kP, 8, 5, 0, 0, 100, 9, 63, 0, 0}, {kI, 8, 5, 0, 1, 100, 10, 63, 0, 0}, {kI, 8, 5, 0, 1, 99, 9, 63, 0, 0},
      {kP, 8, 1, 1, 0, 10, 79, 63, 0, 0}, {kP, 8, 1, 1, 0, -32768, -2047, 63, 0, 0},
      {kP, 8, 5, 16, 0, 106, 10, 63, 0, 0}, {kI, 8, 5, 16, 1, -106, -11, 63, 0, 0},
      {kP, 10, 100, 0, 0, -1000, -4, 63, 0, 0}, {kI, 10, 100, 0, 1, -1000, -5, 63, 0, 0},
      {kP, 10, 10, 16, 0, 1010, 50, 63, 0, 0}, {kI, 10, 10, 16, 1, -1010, -51, 63, 0, 0},
      {kI, 12, 1, 0, 1, 32767, 2047, 63, 0, 0}, {kI, 8, 4, 0, 0, 3, 0, 63, 0, 0}, {kI, 8, 4, 0, 0, -4, -1, 63, 0, 0},
      {kI, 8, 4, 16, 0, 32767, 2047, 63, 0, 0}, {kI, 8, 5, 16, 0, -14, -1, 63, 0, 0}, {kI, 8, 5, 0, 0, 15, 2, 63, 0, 0},
      {kC, 8, 5, 0, 0, 13, 1, 63, 0, 0}, {kC, 8, 5, 0, 0, 14, 2, 63, 0, 0}, {kInvP, 8, 5, 0, 0, 3, 35, 63, 0, 0},
      {kInvP, 8, 4, 0, 0, -3, -27, 63, 0, 0}, {kInvP, 8, 31, 0, 0, -2047, -2048, 63, 0, 0},
      {kInvP, 4, 1, 0, 0, 100, 127, 63, 0, 0}, {kInvP, 8, 5, 0, 15, 3, 35, 8, 0, 0},
      {kInvP, 8, 5, 0, 16, 3, 3, 8, 0, 0}, {kInvP, 8, 5, 17, 0, -3, -37, 63, 0, 0},
      {kInvI, 8, 5, 17, 1, -3, -31, 63, 0, 0}, {kInvP, 8, 5, 16, 0, 3, 35, 63, 3, 34},
      {kInvP, 8, 5, 16, 0, 3, 35, 62, 3, 3}, {kInvP, 8, 5, 16, 5, 3, 3, 4, 0, 1}, {kInvI, 8, 5, 16, 1, 1, 10, 63, 0, 1},
      {kInvI, 8, 5, 16, 0, 3, 30, 0, 7, 1}, {kInvC, 8, 5, 16, 0, 3, 27, 0, 7, 7}, {kInvI, 8, 5, 0, 0, 3, 30, 0, 7, 7},
      {kInvI, 8, 5, 0, 0, 300, 2047, 1, 0, 0}};
  // clang-format on
  for (const Case& c : cases) {
    const Use u{
        c.form >= kInvP, c.form % 3 != 0, c.depth, c.qp, Matrix(c.weight ? 64 : 0, static_cast<Mox8u>(c.weight)),
        c.last,          c.form % 3 == 2};
    Block block(64);
    block[63] = static_cast<Mox16s>(c.before63);
    block[c.at] = static_cast<Mox16s>(c.value);
    Mox32s count = -1;
    const Memory memory(u.inverse);
    EXPECT_EQ(init(memory, u), moxStsOk);
    EXPECT_EQ(run(memory, u, block.data(), &count), moxStsOk);
    EXPECT_EQ(block[c.at], c.result) << "case " << &c - cases;
    EXPECT_EQ(block[63], c.after63) << "case " << &c - cases;
    EXPECT_EQ(count, u.inverse ? -1 : c.result != 0) << "case " << &c - cases;
  }
}

TEST_P(Mpeg4Quantization, Records) {
  const auto size = [&](auto symbol) {
    Mox32s bytes = -1;
    EXPECT_EQ(lib(symbol)(&bytes), moxStsOk);
    EXPECT_EQ(lib(symbol)(nullptr), moxStsNullPointer);
    return bytes;
  };
  EXPECT_EQ(size(MOX_FN(moxiQuantIntraGetSize_MPEG4)), 412);
  EXPECT_EQ(size(MOX_FN(moxiQuantInterGetSize_MPEG4)), 412);
  EXPECT_EQ(size(MOX_FN(moxiQuantInvIntraGetSize_MPEG4)), 156);
  EXPECT_EQ(size(MOX_FN(moxiQuantInvInterGetSize_MPEG4)), 156);
  EXPECT_EQ(lib(MOX_FN(moxiQuantIntraInit_MPEG4))(nullptr, nullptr, 8), moxStsNullPointer);
  EXPECT_EQ(lib(MOX_FN(moxiQuantInterInit_MPEG4))(nullptr, nullptr, 8), moxStsNullPointer);
  EXPECT_EQ(lib(MOX_FN(moxiQuantInvIntraInit_MPEG4))(nullptr, nullptr, 13), moxStsNullPointer);
  EXPECT_EQ(lib(MOX_FN(moxiQuantInvInterInit_MPEG4))(nullptr, nullptr, 13), moxStsNullPointer);
  const Guarded<Mox16s> work(64);
  constexpr const char* kTags[] = {"UAMC", "TAMC", "SAMC", "RAMC"};
  for (int direction = 0; direction < 4; ++direction) {
    Use u{direction / 2 == 1, direction % 2 == 1, 0, 1, Matrix(64, 16)};
    for (int depth : {INT_MIN, 3, 13, INT_MAX}) {
      const Memory memory(u.inverse);
      const auto before = memory.copy();
      u.depth = depth;
      EXPECT_EQ(init(memory, u), u.inverse ? moxStsOutOfRange : moxStsOk);
      EXPECT_EQ(memory.copy() == before, u.inverse);
      EXPECT_EQ(run(memory, u, work.data(), &u.last), u.inverse ? moxStsBadContext : moxStsBadQp);
    }
    // A matrix with a 0 is refused, wherever it stands; the record carries its tag, and no matrix.
    for (int at : {0, 63}) {
      for (int depth : {8, 12}) {
        const Memory memory(u.inverse);
        Use bad{u.inverse, u.intra, depth, 3, Matrix(64, 16)};
        bad.matrix[at] = 0;
        EXPECT_EQ(init(memory, bad), moxStsBadQp);
        EXPECT_TRUE(memory.holds(kTags[direction]));
        bad.matrix.clear();
        expect_block(memory, bad, Block(64, 99), work);
      }
    }
  }
}

TEST_P(Mpeg4Quantization, Arguments) {
  Mox16s block[64] = {9};
  Mox32s count = 5;
  const Memory memories[] = {Memory(false), Memory(false), Memory(true), Memory(true)};
  for (int i = 0; i < 4; ++i) ASSERT_EQ(init(memories[i], {i / 2 == 1, i % 2 == 1, 6, 7, {}}), moxStsOk);
  const auto forward = [&](auto symbol, auto* other, auto good) {
    Call{lib(symbol), good}
        .keeps(block, sizeof block)
        .keeps(&count, sizeof count)
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set<1>(nullptr)},
                       {moxStsNullPointer, set<3>(nullptr)},
                       {moxStsBadContext, set<1>(other)},
                       {moxStsBadQp, set<2>(-1)}});
  };
  MoxiQuantFwdState *const inter = memories[0].forward(), *const intra = memories[1].forward();
  forward(MOX_FN(moxiQuantInter_MPEG4_16s_C1I), intra, std::tuple{block, inter, 7, &count});
  forward(MOX_FN(moxiQuantIntra_MPEG4_16s_C1I), inter, std::tuple{block, intra, 7, &count, 0});
  const auto inverse = [&](auto symbol, auto* other, auto good) {
    Call{lib(symbol), good}
        .keeps(block, sizeof block)
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set<2>(nullptr)},
                       {moxStsBadContext, set<2>(other)},
                       {moxStsBadQp, set<3>(INT_MIN)}});
  };
  MoxiQuantInvState *const invInter = memories[2].inverse(), *const invIntra = memories[3].inverse();
  inverse(MOX_FN(moxiQuantInvInter_MPEG4_16s_C1I), invIntra, std::tuple{block, 63, invInter, 7});
  inverse(MOX_FN(moxiQuantInvIntra_MPEG4_16s_C1I), invInter, std::tuple{block, 63, invIntra, 7, 0});
}

MOX_INSTANTIATE_GENERATIONS(Mpeg4Quantization);

}  // namespace
}  // namespace mox::test
