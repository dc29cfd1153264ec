#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <span>
#include <vector>

#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

enum Form { kInter, kIntra, kAdvanced };

// The arithmetic by its definition, on integers without bounds.
long long wrapped(long long value) { return ((value + 32768) % 65536 + 65536) % 65536 - 32768; }
long long limited(long long value, long long low, long long high) { return std::min(std::max(value, low), high); }

long long quantized(Form form, bool modified, int q, long long x) {
  long long m = std::abs(x);
  if (q == 1) {
    m /= 2;
  } else if (m != 0) {
    if (form == kInter) m = std::max(m - q / 2, 0ll);
    if (form == kAdvanced) m = std::min(m + 3 * q / 4, 32767ll);
    m = m * (65536 / (2 * q) + 1) / 65536;
  }
  if (!modified && (q < 8 || form == kAdvanced)) m = std::min(m, 127ll);
  return x < 0 ? -m : m;
}
long long dequantized(Form form, bool modified, int q, long long x) {
  if (x == 0 || form == kAdvanced) return wrapped(x * 2 * q);
  const int o = q % 2 == 1 ? q : q - 1;
  const long long value = limited(wrapped(x * 2 * q) + (x < 0 ? -o : o), -32768, 32767);
  return modified ? value : limited(value, -2048, 2047);
}

class H263Quantization : public PerGeneration {
 protected:
  MoxStatus quantize(Form form, bool modified, int q, Mox16s* block, Mox32s* count) {
    if (form == kInter) return lib(MOX_FN(moxiQuantInter_H263_16s_C1I))(block, q, count, modified);
    return lib(MOX_FN(moxiQuantIntra_H263_16s_C1I))(block, q, count, form == kAdvanced ? -4 : 0, modified);
  }
  MoxStatus dequantize(Form form, bool modified, int q, Mox16s* block, int last) {
    if (form == kInter) return lib(MOX_FN(moxiQuantInvInter_H263_16s_C1I))(block, last, q, modified);
    return lib(MOX_FN(moxiQuantInvIntra_H263_16s_C1I))(block, last, q, form == kAdvanced, modified);
  }
};

/// Every coefficient and every level with every quantiser; the first one of a block, a DC or not, is every 63rd.
TEST_P(H263Quantization, AllValues) {
  const Guarded<Mox16s> ends(64), starts(64, Placement::at_start());
  for (int kind = 0; kind < 6 * 31; ++kind) {
    const Form form = static_cast<Form>(kind % 3);
    const bool modified = kind % 6 > 2;
    const int q = 1 + kind / 6;
    SCOPED_TRACE(testing::Message() << "form " << form << ", modified " << modified << ", q " << q);
    for (int base = -32768; base < 32768; base += 63) {
      std::vector<Mox16s> levels(64), values(64);
      Mox32s count = -1, expected_count = 0;
      for (int i = 0; i < 64; ++i) {
        const long long x = wrapped(base + i);
        ends[i] = starts[i] = static_cast<Mox16s>(x);
        levels[i] = static_cast<Mox16s>(quantized(form, modified, q, x));
        values[i] = static_cast<Mox16s>(dequantized(form, modified, q, x));
        if (i == 0 && form == kIntra) {
          const long long dc = (x + 4 + 32768) / 8 - 4096;  // downwards
          levels[i] = static_cast<Mox16s>(dc == 0 ? 1 : dc == 255 ? 254 : dc);
          values[i] = static_cast<Mox16s>(wrapped(8 * x));
        }
        expected_count += levels[i] != 0;
      }
      ASSERT_EQ(quantize(form, modified, q, ends.data(), &count), moxStsOk);
      ASSERT_EQ(ends.copy(), levels) << base;
      ASSERT_EQ(count, expected_count);
      ASSERT_EQ(dequantize(form, modified, q, starts.data(), 63), moxStsOk);
      ASSERT_EQ(starts.copy(), values) << base;
    }
  }
}

/// Whole groups of eight, and memory of so many levels only.
TEST_P(H263Quantization, GroupsUpToTheLastIndex) {
  Random random;
  for (Form form : {kInter, kIntra, kAdvanced}) {
    for (int last = 0; last < 130; ++last) {
      const int told = last == 129 ? INT_MAX : last;
      const int end = form == kIntra && last == 0 ? 1 : std::min(last / 8 + 1, 8) * 8;
      const Guarded<Mox16s> block(end == 1 ? 1 : end,
                                  last % 2 ? Placement::at_end() : Placement::aligned(2 * (last % 8)));
      random.fill(std::span(block.begin(), block.end()), 1, 50);
      std::vector<Mox16s> expected = block.copy();
      for (Mox16s& level : expected) level = static_cast<Mox16s>(dequantized(form, false, 6, level));
      if (form == kIntra) expected[0] = static_cast<Mox16s>(8 * block[0]);
      ASSERT_EQ(dequantize(form, false, 6, block.data(), told), moxStsOk);
      ASSERT_EQ(block.copy(), expected) << "form " << form << ", last " << told;
      Mox16s whole[64];
      std::fill(whole, whole + 64, Mox16s{1});
      dequantize(form, false, 6, whole, told);
      ASSERT_EQ(std::count(whole + end, whole + 64, 1), 64 - end) << "form " << form << ", last " << told;
    }
  }
}

/// Coefficient `at` of a block that is zero elsewhere: by hand.
TEST_P(H263Quantization, LiteralValues) {
  struct Case {
    Form form;
    bool modified, forward;
    int q, at, value, result;
  };
  const Case cases[] = {// 1792 * 4682 and 2048 * 4097 are just above 128 * 65536.
                        {kInter, 0, 1, 7, 5, 1795, 127},
                        {kInter, 1, 1, 7, 5, 1795, 128},
                        {kInter, 0, 1, 8, 5, 2052, 128},
                        {kInter, 0, 1, 8, 5, -2051, -127},
                        {kInter, 0, 1, 9, 0, 3, 0},
                        {kInter, 1, 1, 1, 0, -32768, -16384},
                        {kIntra, 0, 1, 7, 5, -1792, -127},
                        {kIntra, 1, 1, 7, 5, -1792, -128},
                        {kIntra, 0, 1, 1, 5, -3, -1},
                        {kIntra, 0, 1, 9, 0, 4, 1},
                        {kIntra, 0, 1, 9, 0, 0, 1},
                        {kIntra, 0, 1, 9, 0, -4, 1},
                        {kIntra, 0, 1, 9, 0, -5, -1},
                        {kIntra, 0, 1, 9, 0, 2036, 254},
                        {kIntra, 0, 1, 9, 0, 2044, 256},
                        {kAdvanced, 0, 1, 31, 0, 32767, 127},
                        {kAdvanced, 1, 1, 31, 0, 32767, 528},
                        // 10 + 6 is a step of 16, 9 + 6 less; a sum above 32767 gave 529.
                        {kAdvanced, 0, 1, 8, 5, -10, -1},
                        {kAdvanced, 0, 1, 8, 5, 9, 0},
                        {kAdvanced, 1, 1, 2, 5, -32768, -8192},
                        {kInter, 0, 0, 8, 5, -1, -23},
                        {kInter, 0, 0, 7, 5, 1, 21},
                        {kInter, 0, 0, 31, 5, 40, 2047},
                        {kInter, 0, 0, 31, 5, -40, -2048},
                        {kInter, 1, 0, 31, 5, 40, 2511},
                        {kInter, 1, 0, 31, 5, 600, -28305},
                        {kInter, 1, 0, 30, 5, 546, 32767},
                        {kIntra, 0, 0, 31, 0, 5000, -25536},
                        {kIntra, 0, 0, 31, 5, 1, 93},
                        {kAdvanced, 0, 0, 8, 0, 1, 16},
                        {kAdvanced, 0, 0, 31, 5, 1000, -3536}};
  for (const Case& c : cases) {
    std::vector<Mox16s> block(64);
    block[c.at] = static_cast<Mox16s>(c.value);
    Mox32s count = -1;
    EXPECT_EQ(c.forward ? quantize(c.form, c.modified, c.q, block.data(), &count)
                        : dequantize(c.form, c.modified, c.q, block.data(), 63),
              moxStsOk);
    EXPECT_EQ(block[c.at], c.result) << "case " << &c - cases;
    if (c.forward) {
      EXPECT_EQ(count, (c.form == kIntra && c.at != 0) + (c.result != 0)) << "case " << &c - cases;
    }
  }
}

TEST_P(H263Quantization, Arguments) {
  std::vector<Mox16s> block(64, 9);
  Mox32s count = 5;
  for (int qp : {0, 32, INT_MIN}) {
    const auto forward = [&](auto symbol, auto... flags) {
      Call{lib(symbol), std::tuple{block.data(), 31, &count, flags...}}
          .keeps(block.data(), 128)
          .keeps(&count, sizeof count)
          .expect_order({{moxStsNullPointer, set<0>(nullptr)}, {moxStsBadQp, set<1>(qp)}});
    };
    forward(MOX_FN(moxiQuantIntra_H263_16s_C1I), 0, 0);
    forward(MOX_FN(moxiQuantInter_H263_16s_C1I), 0);
    const auto inverse = [&](auto symbol, auto... flags) {
      Call{lib(symbol), std::tuple{block.data(), 0, 1, flags...}}
          .keeps(block.data(), 128)
          .expect_order(
              {{moxStsNullPointer, set<0>(nullptr)}, {moxStsBadQp, set<2>(qp)}, {moxStsOutOfRange, set<1>(-1)}});
    };
    inverse(MOX_FN(moxiQuantInvIntra_H263_16s_C1I), 0, 0);
    inverse(MOX_FN(moxiQuantInvInter_H263_16s_C1I), 0);
  }
}

MOX_INSTANTIATE_GENERATIONS(H263Quantization);

}  // namespace
}  // namespace mox::test
