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

/// A DC function: its shape, the values that its quantiser takes, and what it leaves out.
struct Dc {
  int size, max_qp, added_qp;
  std::function<Values(const Values&, Rule)> transform;
  Rule sums, store;
  bool rough_default, rough_scaled, byte_flags = false;
};

class ForwardQuant : public PerGeneration {
 protected:
  Random random_;

  /// A function with blocks [qp] of 4x4 residuals: call(src, dst, qp, count, intra, places, last, scale).
  template <class T>
  void transformed_4x4(int max_qp, Rule rule, auto call) {
    for (int qp = 0; qp <= max_qp; ++qp) {
      for (int round = 0; round < Block<Mox16s>::rounds(16); ++round) {
        const Block<Mox16s> src(round, 16, random_);
        const Block<T> other(0, 16, random_);
        const Scales scales(16, random_);
        const Places places(16, random_);
        const Guarded<Mox32s> count(1), last(1);
        const Mox16s* const scale = maybe(scales, random_);
        const int intra = any_flag(random_);
        const Unit unit{qp / 6 + (scale ? 11 : 15), false, intra != 0, rule};
        Values want = oracle::forward_4x4(src.values(), rule);
        for (int i = 0; i < 16; ++i) want[i] = unit.level(want[i], oracle::forward_scale(scale, qp % 6, i));
        const Block<T>* dst = &other;
        if constexpr (sizeof(T) == 2) dst = round % 2 ? &src : &other;
        ASSERT_EQ(call(src.data(), dst->data(), qp, count.data(), intra, places.data(), last.data(), scale), moxStsOk);
        ASSERT_EQ(dst->values(), want) << "qp " << qp << " round " << round;
        ASSERT_EQ(count[0], want[0] ? -oracle::count_of(want) : oracle::count_of(want));
        ASSERT_EQ(last[0], oracle::last_of(want, places.data()));
      }
    }
  }

  /// A DC function: call(levels, block, qp, count, intra, needTransform, places, last, scale) leaves out what the
  /// function has no argument for. Without a scale it has the limit: luma, with a last place, stops at a half, chroma
  /// tells afterwards.
  template <class T, class Count, class Last>
  void dc(const Dc& is, bool has_scale, bool has_intra, bool has_last, auto call) {
    for (int qp = 0; qp <= is.max_qp; ++qp) {
      for (int round = 0; round < Block<T>::rounds(is.size); ++round) {
        const Block<T> levels(round, is.size, random_), block(random_(0, 20), is.size, random_);
        const Scales scales(1, random_);
        const Places places(is.size, random_);
        const Guarded<Count> count{55};
        const Guarded<Last> last{56};
        const Mox16s* const scale = has_scale ? maybe(scales, random_) : nullptr;
        const int intra = any_flag(random_), need = any_flag(random_), per = (qp + is.added_qp) / 6;
        const auto set = [&](int flag) { return is.byte_flags ? flag % 256 != 0 : flag != 0; };
        const Unit unit{per + (scale ? 12 : 16), scale ? is.rough_scaled : is.rough_default, !has_intra || set(intra),
                        is.store, sizeof(T) == 4};
        const Values before = levels.values();
        const Values terms = set(need) ? is.transform(before, is.sums) : block.values();
        Values want = terms;
        for (long long& x : want) x = unit.level(x, oracle::forward_scale(scale, (qp + is.added_qp) % 6, 0));
        const auto half = std::find_if(want.begin(), want.end(), over_limit) - want.begin();
        const bool over = !has_scale && half < is.size, counted = !over || !has_last;
        const long long number = oracle::count_of(want);
        const bool dc_sign = has_scale && has_last ? terms[0] != 0 : want[0] != 0;
        const long long want_last = oracle::last_of(want, places.data());
        if (over && has_last) std::copy(before.begin() + half / 8 * 8, before.end(), want.begin() + half / 8 * 8);
        ASSERT_EQ(call(levels.data(), block.data(), qp, count.data(), intra, need, places.data(), last.data(), scale),
                  over ? moxStsLevelOverflow : moxStsOk);
        ASSERT_EQ(block.values(), terms) << "qp " << qp << " round " << round;
        ASSERT_EQ(levels.values(), want) << "qp " << qp << " round " << round;
        ASSERT_EQ(count[0], !counted ? 55 : dc_sign ? -number : number);
        ASSERT_EQ(last[0], !counted || !has_last ? 56 : has_scale ? want_last : want_last % 128);
      }
    }
  }

  /// A quantiser alone: call(src, dst, qp, intra, places, scale, count, last). The default table has 4 bits more.
  template <class T, class U, class Scale>
  void quantiser(int size, int max_qp, int qps_per_shift, Unit unit, bool may_be_null, bool is_signed, auto call) {
    const int shift = unit.shift;
    for (int qp = 0; qp <= max_qp; ++qp) {
      for (int round = 0; round < Block<T>::rounds(size); ++round) {
        const Block<T> src(round, size, random_);
        const Block<U> other(0, size, random_);
        const Scales values(size, random_);
        const Guarded<Scale> scales(size, any_placement<Scale>(random_));
        std::copy(values.begin(), values.end(), scales.begin());
        if (round % 8 == 0) random_.fill(std::span(scales.begin(), scales.size()));
        const Scale* const scale = may_be_null ? maybe(scales, random_) : scales.data();
        const Places places(size, random_);
        const Guarded<Mox32s> count(1), last(1);
        const int intra = any_flag(random_);
        unit.intra = intra != 0, unit.shift = shift + qp / qps_per_shift + (scale ? 0 : 4);
        Values want = src.values();
        for (int i = 0; i < size; ++i) {
          // The 16-bit magnitude of an 8x8 block saturates.
          const long long x = sizeof(T) == 2 && size == 64 ? std::max(want[i], -32767LL) : want[i];
          want[i] = unit.level(x, oracle::forward_scale(scale, qp % 6, i));
        }
        const Block<U>* dst = &other;
        if constexpr (sizeof(T) == sizeof(U)) dst = round % 2 ? &src : &other;
        ASSERT_EQ(call(src.data(), dst->data(), qp, intra, places.data(), scale, count.data(), last.data()), moxStsOk);
        ASSERT_EQ(dst->values(), want) << "qp " << qp << " round " << round;
        ASSERT_EQ(count[0], is_signed && want[0] ? -oracle::count_of(want) : oracle::count_of(want));
        ASSERT_EQ(last[0], oracle::last_of(want, places.data()));
      }
    }
  }
};

TEST_P(ForwardQuant, ResidualWithLimit) {
  const auto function = lib(MOX_FN(moxiTransformQuantResidual_H264_16s_C1I));
  int halves[3] = {};
  for (int qp = 0; qp <= 51; ++qp) {
    for (int round = 0; round < 2 * Block<Mox16s>::rounds(16); ++round) {
      const Block<Mox16s> block(round % Block<Mox16s>::rounds(16), 16, random_);
      const Places places(16, random_);
      const Guarded<int8_t> count{55};
      const Guarded<Mox8u> last{56};
      const int intra = any_flag(random_);
      const Unit unit{qp / 6 + 15, false, intra % 256 != 0, Rule::kSat16};
      const Values before = block.values();
      Values want = oracle::forward_4x4(before, Rule::kWrap16);
      for (int i = 0; i < 16; ++i) want[i] = unit.level(want[i], oracle::forward_multiplier(qp % 6, i));
      const long long number = oracle::count_of(want), place = oracle::last_of(want, places.data()) % 128;
      const auto half = (std::find_if(want.begin(), want.end(), over_limit) - want.begin()) / 8;
      std::copy(before.begin() + 8 * half, before.end(), want.begin() + 8 * half);
      ++halves[half];
      ASSERT_EQ(function(block.data(), qp, count.data(), intra, places.data(), last.data()),
                half < 2 ? moxStsLevelOverflow : moxStsOk);
      ASSERT_EQ(block.values(), want) << "qp " << qp << " round " << round;
      ASSERT_EQ(count[0], half < 2 ? 55 : want[0] ? -number : number);
      ASSERT_EQ(last[0], half < 2 ? 56 : place);
    }
  }
  for (int seen : halves) EXPECT_GT(seen, 5);  // overflow in the first half, in the second alone, none
}

TEST_P(ForwardQuant, Residual4x4) {
  transformed_4x4<Mox16s>(51, Rule::kWrap16, lib(MOX_FN(moxiTransformQuantFwd4x4_H264_16s_C1)));
  transformed_4x4<Mox32s>(87, Rule::kWrap32, lib(MOX_FN(moxiTransformQuantFwd4x4_H264_16s32s_C1)));
}

TEST_P(ForwardQuant, DcWithLimit) {
  const Dc luma{16, 51, 0, oracle::luma_dc, Rule::kWrap16, Rule::kSat16, false, false, true};
  dc<Mox16s, int8_t, Mox8u>(
      luma, false, false, true,
      [this](auto levels, auto block, int qp, auto count, int, int need, auto places, auto last, auto) {
        return lib(MOX_FN(moxiTransformQuantLumaDC_H264_16s_C1I))(levels, block, qp, count, need, places, last);
      });
  const Dc chroma{4, 39, 0, oracle::chroma_dc_2x2, Rule::kWrap16, Rule::kSat16, false, false, true};
  dc<Mox16s, int8_t, Mox8u>(
      chroma, false, true, false, [this](auto levels, auto block, int qp, auto count, int intra, int need, auto...) {
        return lib(MOX_FN(moxiTransformQuantChromaDC_H264_16s_C1I))(levels, block, qp, count, intra, need);
      });
}

TEST_P(ForwardQuant, ScaledDc) {
  const auto chroma = [](auto function) {
    return [function](auto levels, auto block, int qp, auto count, int intra, int need, auto, auto, auto scale) {
      return function(levels, block, qp, count, intra, need, scale);
    };
  };
  const auto luma = [](auto function) {
    return [function](auto levels, auto block, int qp, auto count, int, int need, auto places, auto last, auto scale) {
      return function(levels, block, qp, count, need, places, last, scale);
    };
  };
  Dc is{4, 39, 0, oracle::chroma_dc_2x2, Rule::kSat16, Rule::kSat16, false, false};
  dc<Mox16s, Mox32s, Mox32s>(is, true, true, false, chroma(lib(MOX_FN(moxiTransformQuantFwdChromaDC2x2_H264_16s_C1I))));
  is.max_qp = 75, is.sums = is.store = Rule::kWrap32;
  dc<Mox32s, Mox32s, Mox32s>(is, true, true, false, chroma(lib(MOX_FN(moxiTransformQuantFwdChromaDC2x2_H264_32s_C1I))));
  is = {8, 39, 3, oracle::hadamard_2x4, Rule::kSat16, Rule::kSat16, true, true};
  dc<Mox16s, Mox32s, Mox32s>(is, true, true, false, chroma(lib(MOX_FN(moxiTransformQuantFwdChromaDC2x4_H264_16s_C1I))));
  is.max_qp = 75, is.sums = is.store = Rule::kWrap32;
  dc<Mox32s, Mox32s, Mox32s>(is, true, true, false, chroma(lib(MOX_FN(moxiTransformQuantFwdChromaDC2x4_H264_32s_C1I))));
  is = {16, 51, 0, oracle::luma_dc, Rule::kWrap16, Rule::kWrap16, false, true};
  dc<Mox16s, Mox32s, Mox32s>(is, true, false, true, luma(lib(MOX_FN(moxiTransformQuantFwdLumaDC4x4_H264_16s_C1I))));
  is.max_qp = 87, is.sums = is.store = Rule::kWrap32;
  dc<Mox32s, Mox32s, Mox32s>(is, true, false, true, luma(lib(MOX_FN(moxiTransformQuantFwdLumaDC4x4_H264_32s_C1I))));
}

TEST_P(ForwardQuant, Quantisers) {
  const auto residual = [](auto function) {
    return [function](auto src, auto dst, int qp, int intra, auto places, auto scale, auto count, auto last) {
      return function(src, dst, count, last, scale, places, static_cast<Mox32u>(qp), intra);
    };
  };
  const Unit saturating{11, false, false, Rule::kSat16}, wrapping{11, false, false, Rule::kWrap32};
  quantiser<Mox16s, Mox16s, Mox16s>(16, 51, 6, saturating, true, false,
                                    residual(lib(MOX_FN(moxiQuantizeResidual4x4Fwd_H264_16s_C1))));
  quantiser<Mox16s, Mox32s, Mox32s>(16, 51, 6, wrapping, false, false,
                                    residual(lib(MOX_FN(moxiQuantizeResidual4x4Fwd_H264_16s32s_C1))));
  quantiser<Mox32s, Mox32s, Mox32s>(16, 87, 6, wrapping, true, false,
                                    residual(lib(MOX_FN(moxiQuantizeResidual4x4Fwd_H264_32s_C1))));
  quantiser<Mox16s, Mox16s, Mox16s>(64, 8, 1, {12, true, false, Rule::kSat16}, false, true,
                                    lib(MOX_FN(moxiQuantLuma8x8_H264_16s_C1)));
  quantiser<Mox32s, Mox32s, Mox16u>(64, 14, 1, {12, true, false, Rule::kWrap32}, false, true,
                                    lib(MOX_FN(moxiQuantLuma8x8_H264_32s_C1)));
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
  // 32000 * 10000 >> 11 is 156250 and a third makes no difference: cut to 16 bits that is 25178.
  const Guarded<Mox16s> scale(16);
  scale[0] = 10000;
  std::fill(block.begin(), block.end(), Mox16s{2000});
  lib(MOX_FN(moxiTransformQuantFwd4x4_H264_16s_C1))(block.data(), terms.data(), 0, number.data(), 1, places.data(),
                                                    place.data(), scale.data());
  EXPECT_EQ(terms[0], 25178);
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
