#include "moxvc/h264_forward_transform.h"

#include <gtest/gtest.h>

#include <functional>
#include <numeric>

#include "h264/transform_inputs.hpp"
#include "oracle/forward_transform.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

using oracle::Rule;
using oracle::Unit;
using oracle::Values;

constexpr long long kLimit = 2063;
bool over_limit(long long level) { return std::abs(level) > kLimit; }

/// Places of a scan: mostly a permutation, sometimes any numbers.
struct Places : Guarded<Mox16s> {
  Places(int count, Random& random) : Guarded<Mox16s>(count, any_placement<Mox16s>(random)) {
    std::iota(begin(), end(), Mox16s{0});
    std::shuffle(begin(), end(), std::mt19937(random.bits()));
    if (random.chance(0.3)) random.fill(std::span(begin(), count), 0, 32767);
  }
};

enum class Scaled { kNever, kMaybe, kAlways };
enum class Sign { kNone, kOfLevel, kOfTransformed };

/// What a function does. The 8-bit family without scaling lists has the limit, flags of 8 bits and places of 7.
struct Form {
  int size, max_qp;
  std::function<Values(const Values&)> transform;
  Rule store;
  Sign sign;
  Scaled scaled = Scaled::kMaybe;
  bool dc = false, rough = false, rough_scaled = false, limited = false, has_intra = true, has_last = true;
  int added_qp = 0, qps_per_shift = 6;
};

class ForwardQuant : public PerGeneration {
 protected:
  Random random_;

  /// call(src, dst, transformed, qp, count, intra, needTransform, places, last, scale) leaves out what the function has
  /// no argument for. Gives the number of blocks over the limit.
  template <class T, class U, class Scale, class Count = Mox32s, class Last = Mox32s>
  int check(const Form& is, auto call) {
    int refused = 0;
    for (int i = 0; i < (is.max_qp + 1) * 20; ++i) {
      const int round = random_(0, Block<T>::rounds(is.size) - 1), qp = i / 20;
      const int per = (qp + is.added_qp) / is.qps_per_shift, rem = (qp + is.added_qp) % 6;
      const Block<T> src(round, is.size, random_), given(random_(0, 20), is.size, random_);
      const Block<U> other(0, is.size, random_);
      const Scales some(is.size, random_);
      const Guarded<Scale> scales(is.dc ? 1 : is.size, any_placement<Scale>(random_));
      std::copy_n(some.begin(), scales.size(), scales.begin());
      if (i % 8 == 0) random_.fill(std::span(scales.begin(), scales.size()));
      const Scale* const scale = is.scaled == Scaled::kAlways  ? scales.data()
                                 : is.scaled == Scaled::kMaybe ? maybe(scales, random_)
                                                               : nullptr;
      const Places places(is.size, random_);
      const Guarded<Count> count{55};
      const Guarded<Last> last{56};
      const int intra = any_flag(random_), need = any_flag(random_);
      const auto set = [&](int flag) { return is.limited ? flag % 256 != 0 : flag != 0; };
      const Unit unit{per + (scale ? 11 : 15) + (is.dc || is.size == 64), scale ? is.rough_scaled : is.rough,
                      !is.has_intra || set(intra), is.store, is.dc && sizeof(T) == 4};

      const Values before = src.values();
      const Values transformed = !is.dc || set(need) ? is.transform(before) : given.values();
      Values want = transformed;
      for (int k = 0; k < is.size; ++k) {
        want[k] = unit.level(want[k], oracle::forward_scale(scale, rem, is.dc ? 0 : k));
      }
      const auto beyond = std::find_if(want.begin(), want.end(), over_limit) - want.begin();
      const bool over = is.limited && beyond < is.size, counted = !over || !is.has_last;
      const long long number = oracle::count_of(want), place = oracle::last_of(want, places.data());
      const bool negative = is.sign != Sign::kNone && (is.sign == Sign::kOfLevel ? want : transformed)[0] != 0;
      // Chroma DC, which has no last place, stores levels over the limit; the others stop at a half.
      if (!counted) std::copy(before.begin() + beyond / 8 * 8, before.end(), want.begin() + beyond / 8 * 8);
      refused += over;

      const Block<U>* dst = &other;
      if constexpr (sizeof(T) == sizeof(U)) dst = is.dc || is.limited || i % 2 ? &src : &other;
      EXPECT_EQ(
          call(src.data(), dst->data(), given.data(), qp, count.data(), intra, need, places.data(), last.data(), scale),
          over ? moxStsLevelOverflow : moxStsOk);
      EXPECT_EQ(dst->values(), want);
      EXPECT_TRUE(!is.dc || given.values() == transformed);
      EXPECT_EQ(count[0], !counted ? 55 : negative ? -number : number);
      EXPECT_EQ(last[0], !counted || !is.has_last ? 56 : is.limited ? place % 128 : place);
      if (HasFailure()) ADD_FAILURE() << "qp " << qp << " round " << i;
      if (HasFailure()) return 0;
    }
    return refused;
  }
};

/// A transform of oracle::, each sum by the rule.
auto with(Values (*transform)(const Values&, Rule), Rule rule) {
  return [=](const Values& values) { return transform(values, rule); };
}
Values untransformed(const Values& values) { return values; }
/// The 16-bit magnitudes of an 8x8 block saturate.
Values with_magnitudes(Values values) {
  for (long long& value : values) value = std::max(value, -32767LL);
  return values;
}

TEST_P(ForwardQuant, Limited) {
  const auto residual = lib(MOX_FN(moxiTransformQuantResidual_H264_16s_C1I));
  const auto luma = lib(MOX_FN(moxiTransformQuantLumaDC_H264_16s_C1I));
  const auto chroma = lib(MOX_FN(moxiTransformQuantChromaDC_H264_16s_C1I));
  const auto limited = [this](const Form& is, auto call) {
    EXPECT_GT((check<Mox16s, Mox16s, Mox16s, int8_t, Mox8u>(is, call)), 30);  // blocks over the limit
  };
  Form is{16, 51, with(oracle::forward_4x4, Rule::kWrap16), Rule::kSat16, Sign::kOfLevel, Scaled::kNever};
  is.limited = true;
  limited(is, [=](auto, auto x, auto, int qp, auto count, int intra, int, auto places, auto last, auto) {
    return residual(x, qp, count, intra, places, last);
  });
  is.dc = true, is.has_intra = false, is.transform = with(oracle::forward_luma_dc, Rule::kWrap16);
  limited(is, [=](auto, auto x, auto block, int qp, auto count, int, int need, auto places, auto last, auto) {
    return luma(x, block, qp, count, need, places, last);
  });
  is.size = 4, is.max_qp = 39, is.has_intra = true, is.has_last = false;
  is.transform = with(oracle::chroma_dc_2x2, Rule::kWrap16);
  limited(is, [=](auto, auto x, auto block, int qp, auto count, int intra, int need, auto...) {
    return chroma(x, block, qp, count, intra, need);
  });
}

TEST_P(ForwardQuant, Residual) {
  const auto transformed = [](auto function) {
    return [=](auto src, auto dst, auto, int qp, auto count, int intra, int, auto places, auto last, auto scale) {
      return function(src, dst, qp, count, intra, places, last, scale);
    };
  };
  Form is{16, 51, with(oracle::forward_4x4, Rule::kWrap16), Rule::kWrap16, Sign::kOfLevel};
  check<Mox16s, Mox16s, Mox16s>(is, transformed(lib(MOX_FN(moxiTransformQuantFwd4x4_H264_16s_C1))));
  is.max_qp = 87, is.transform = with(oracle::forward_4x4, Rule::kWrap32), is.store = Rule::kWrap32;
  check<Mox16s, Mox32s, Mox16s>(is, transformed(lib(MOX_FN(moxiTransformQuantFwd4x4_H264_16s32s_C1))));

  const auto alone = [](auto function) {
    return [=](auto src, auto dst, auto, int qp, auto count, int intra, int, auto places, auto last, auto scale) {
      return function(src, dst, count, last, scale, places, static_cast<Mox32u>(qp), intra);
    };
  };
  is = {16, 51, untransformed, Rule::kSat16, Sign::kNone};
  check<Mox16s, Mox16s, Mox16s>(is, alone(lib(MOX_FN(moxiQuantizeResidual4x4Fwd_H264_16s_C1))));
  is.max_qp = 87, is.store = Rule::kWrap32;
  check<Mox32s, Mox32s, Mox32s>(is, alone(lib(MOX_FN(moxiQuantizeResidual4x4Fwd_H264_32s_C1))));
  is.max_qp = 51, is.scaled = Scaled::kAlways;
  check<Mox16s, Mox32s, Mox32s>(is, alone(lib(MOX_FN(moxiQuantizeResidual4x4Fwd_H264_16s32s_C1))));

  const auto luma_8x8 = [](auto function) {
    return [=](auto src, auto dst, auto, int per, auto count, int intra, int, auto places, auto last, auto scale) {
      return function(src, dst, per, intra, places, scale, count, last);
    };
  };
  is = {64, 8, with_magnitudes, Rule::kSat16, Sign::kOfLevel, Scaled::kAlways};
  is.rough_scaled = true, is.qps_per_shift = 1;
  check<Mox16s, Mox16s, Mox16s>(is, luma_8x8(lib(MOX_FN(moxiQuantLuma8x8_H264_16s_C1))));
  is.max_qp = 14, is.transform = untransformed, is.store = Rule::kWrap32;
  check<Mox32s, Mox32s, Mox16u>(is, luma_8x8(lib(MOX_FN(moxiQuantLuma8x8_H264_32s_C1))));
}

TEST_P(ForwardQuant, ScaledDc) {
  const auto chroma = [](auto function) {
    return [=](auto, auto dst, auto block, int qp, auto count, int intra, int need, auto, auto, auto scale) {
      return function(dst, block, qp, count, intra, need, scale);
    };
  };
  Form is{4, 39, with(oracle::chroma_dc_2x2, Rule::kSat16), Rule::kSat16, Sign::kOfLevel};
  is.dc = true, is.has_last = false;
  check<Mox16s, Mox16s, Mox16s>(is, chroma(lib(MOX_FN(moxiTransformQuantFwdChromaDC2x2_H264_16s_C1I))));
  is.size = 8, is.added_qp = 3, is.rough = is.rough_scaled = true;
  is.transform = with(oracle::hadamard_2x4, Rule::kSat16);
  check<Mox16s, Mox16s, Mox16s>(is, chroma(lib(MOX_FN(moxiTransformQuantFwdChromaDC2x4_H264_16s_C1I))));
  is.max_qp = 75, is.store = Rule::kWrap32, is.transform = with(oracle::hadamard_2x4, Rule::kWrap32);
  check<Mox32s, Mox32s, Mox16s>(is, chroma(lib(MOX_FN(moxiTransformQuantFwdChromaDC2x4_H264_32s_C1I))));
  is.size = 4, is.added_qp = 0, is.rough = is.rough_scaled = false;
  is.transform = with(oracle::chroma_dc_2x2, Rule::kWrap32);
  check<Mox32s, Mox32s, Mox16s>(is, chroma(lib(MOX_FN(moxiTransformQuantFwdChromaDC2x2_H264_32s_C1I))));

  const auto luma = [](auto function) {
    return [=](auto, auto dst, auto block, int qp, auto count, int, int need, auto places, auto last, auto scale) {
      return function(dst, block, qp, count, need, places, last, scale);
    };
  };
  is = {16, 51, with(oracle::forward_luma_dc, Rule::kWrap16), Rule::kWrap16, Sign::kOfTransformed};
  is.dc = true, is.has_intra = false, is.rough_scaled = true;
  check<Mox16s, Mox16s, Mox16s>(is, luma(lib(MOX_FN(moxiTransformQuantFwdLumaDC4x4_H264_16s_C1I))));
  is.max_qp = 87, is.store = Rule::kWrap32, is.transform = with(oracle::forward_luma_dc, Rule::kWrap32);
  check<Mox32s, Mox32s, Mox16s>(is, luma(lib(MOX_FN(moxiTransformQuantFwdLumaDC4x4_H264_32s_C1I))));
}

/// Numbers that can be checked on paper.
TEST_P(ForwardQuant, ByHand) {
  const Places places(16, random_);
  const Guarded<Mox16s> block(16), terms(16);
  const Guarded<int8_t> count(1);
  const Guarded<Mox8u> last(1);
  const Guarded<Mox32s> number(1), place(1);
  const auto residual = lib(MOX_FN(moxiTransformQuantResidual_H264_16s_C1I));
  // All 2: DC 32. 32 * 13107 / 32768 = 12.8, which a third makes 13 and a sixth 12; -2 mirrors it.
  for (auto [value, intra, level] : {std::tuple{2, 1, 13}, {2, 0, 12}, {2, 256, 12}, {-2, 1, -13}}) {
    std::fill(block.begin(), block.end(), static_cast<Mox16s>(value));
    EXPECT_EQ(residual(block.data(), 0, count.data(), intra, places.data(), last.data()), moxStsOk);
    EXPECT_EQ(block[0], level);
    EXPECT_EQ(count[0], -1);
    EXPECT_EQ(last[0], places[0] % 128);
  }
  // Rows of 400, -400, -400, 400 make coefficient 8, in the second half, 6400: 6400 * 13107 / 32768 = 2560 is over the
  // limit. The first half is stored; its DC level is that of the 2 in all values.
  for (int i = 0; i < 16; ++i) block[i] = static_cast<Mox16s>(2 + (i / 4 == 0 || i / 4 == 3 ? 400 : -400));
  EXPECT_EQ(residual(block.data(), 0, count.data(), 1, places.data(), last.data()), moxStsLevelOverflow);
  EXPECT_EQ(block.copy(), (std::vector<Mox16s>{13, 0, 0, 0, 0, 0, 0, 0, -398, -398, -398, -398, 402, 402, 402, 402}));
  // 5466 * 9362 + 342 * 32 = 51183636 is just above 781 * 65536; a true sixth, 10922, would not reach it.
  const auto chroma = lib(MOX_FN(moxiTransformQuantFwdChromaDC2x4_H264_16s_C1I));
  terms[7] = 5466;
  EXPECT_EQ(chroma(block.data(), terms.data(), 0, number.data(), 0, 0, nullptr), moxStsOk);
  EXPECT_EQ(block[7], 781);
  EXPECT_EQ(number[0], 1);
  // 10315 * 13107 / 65536 is just below 2063, which a third reaches: the last level within the limit. With 10320,
  // 2063.98, it is 2064.
  for (auto [value, level, status] : {std::tuple{10315, 2063, moxStsOk}, {-10320, -2064, moxStsLevelOverflow}}) {
    terms[2] = static_cast<Mox16s>(value);
    EXPECT_EQ(lib(MOX_FN(moxiTransformQuantChromaDC_H264_16s_C1I))(block.data(), terms.data(), 0, count.data(), 1, 0),
              status);
    EXPECT_EQ(block[2], level);
    EXPECT_EQ(count[0], 1);
  }
  // 8x8, rounded by 342 * 32: 3 * 18197 becomes 65535, just below a level, and -2 * 27296 just reaches one.
  const Guarded<Mox16s> values(64), scales(64), scan(64), levels(64);
  values[0] = 3, scales[0] = 18197, values[63] = -2, scales[63] = 27296, scan[63] = 40;
  EXPECT_EQ(lib(MOX_FN(moxiQuantLuma8x8_H264_16s_C1))(values.data(), levels.data(), 4, 0, scan.data(), scales.data(),
                                                      number.data(), place.data()),
            moxStsOk);
  EXPECT_EQ(levels[0], 0);
  EXPECT_EQ(levels[63], -1);
  EXPECT_EQ(number[0], 1);
  EXPECT_EQ(place[0], 40);
  // A transformed luma DC of 1 has the level 0, and is told all the same.
  const auto luma = lib(MOX_FN(moxiTransformQuantFwdLumaDC4x4_H264_16s_C1I));
  for (int dc : {0, 1}) {
    std::fill(terms.begin(), terms.end(), Mox16s{0});
    terms[0] = static_cast<Mox16s>(dc), terms[5] = 30000;
    luma(block.data(), terms.data(), 51, number.data(), 0, places.data(), place.data(), nullptr);
    EXPECT_EQ(block[0], 0);
    EXPECT_EQ(number[0], dc ? -1 : 1);
  }
  // The DC values of a white picture: their sum, 16 * 4080, is halved before it is cut to 16 bits.
  std::fill(block.begin(), block.end(), Mox16s{4080});
  luma(block.data(), terms.data(), 51, number.data(), 1, places.data(), place.data(), nullptr);
  EXPECT_EQ(terms[0], 32640);
  EXPECT_EQ(block[0], 18);  // 32640 * 9362 / 2^24 = 18.2
}

MOX_INSTANTIATE_GENERATIONS(ForwardQuant);

}  // namespace
}  // namespace mox::test
