#include "moxvc/h264_cavlc_analysis.h"

#include <gtest/gtest.h>

#include <array>
#include <numeric>

#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/null_pointers.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

/// What a call has to give: the four numbers, the levels and the runs.
struct Analysis {
  std::array<int, 4> numbers;  // trailing ones, their signs, coefficients, total zeros
  std::vector<int> levels, runs;
  bool operator==(const Analysis&) const = default;
};

/// Of a block in scan order, lowest frequency first: from the places of its coefficients.
Analysis analysis_of(const std::vector<int>& scanned) {
  std::vector<int> places;
  for (int k = static_cast<int>(scanned.size()) - 1; k >= 0; --k) {
    if (scanned[k] != 0) places.push_back(k);
  }
  const int total = static_cast<int>(places.size());
  if (total == 0) return {{0, 0, 0, static_cast<int>(scanned.size())}, {}, {}};
  const auto is_level = [&](int k) { return std::abs(scanned[k]) != 1; };
  const int ones =
      std::min<int>(3, static_cast<int>(std::find_if(places.begin(), places.end(), is_level) - places.begin()));
  Analysis result{{ones, 0, total, places[0] + 1 - total}, {}, {}};
  for (int i = 0; i < total; ++i) {
    if (i >= ones) result.levels.push_back(scanned[places[i]]);
    if (i < ones && scanned[places[i]] < 0) result.numbers[1] |= 1 << (ones - 1 - i);
    if (i > 0) result.runs.push_back(places[i - 1] - places[i] - 1);
  }
  return result;
}

class CavlcAnalysis : public PerGeneration {
 protected:
  Random random_;

  /// call(src, first, scan, last, four numbers, levels, runs) on whole blocks of the given scan, or without one on any
  /// range of positions in any scan. There is no more room than the positions need.
  template <class T>
  void check(std::vector<Mox32s> order, auto call) {
    const bool any_scan = order.empty();
    for (int round = 0; round < 3000; ++round) {
      if (any_scan) order.resize(16), std::iota(order.begin(), order.end(), 0);
      if (any_scan) std::shuffle(order.begin(), order.end(), std::mt19937(random_.bits()));
      const int end = static_cast<int>(order.size()) - 1;
      const int first = any_scan ? random_(0, end) : 0, last = any_scan ? random_(first, end) : end;
      const Guarded<Mox32s> scan(last + 1);
      std::copy_n(order.begin(), last + 1, scan.begin());
      std::fill_n(scan.begin(), first, 1 << 28);  // not read

      const int most = std::array{1, 1, 2, int{std::numeric_limits<T>::max()}}[random_(0, 3)];
      const double density = random_(0, 10) / 10.0;
      const Guarded<T> block(order.size()), levels(last - first + 1);
      for (T& c : block) c = static_cast<T>(random_.chance(density) ? random_(-most - (most > 2), most) : 0);
      std::vector<int> values;
      for (int k = first; k <= last; ++k) values.push_back(block[order[k]]);
      const Analysis want = analysis_of(values);

      const Guarded<Mox8u> numbers(4), runs(last - first);
      std::fill(levels.begin(), levels.end(), T{0x5A5A}), std::fill(runs.begin(), runs.end(), Mox8u{0xA5});
      Mox8u* const n = numbers.data();
      ASSERT_EQ(call(block.data(), first, scan.data(), last, n, n + 1, n + 2, n + 3, levels.data(), runs.data()),
                moxStsOk);
      Analysis got{{n[0], n[1], n[2], n[3]}, {levels.begin(), levels.end()}, {runs.begin(), runs.end()}};
      for (std::size_t i = want.levels.size(); i < levels.size(); ++i) ASSERT_EQ(levels[i], T{0x5A5A});
      for (std::size_t i = want.runs.size(); i < runs.size(); ++i) ASSERT_EQ(runs[i], 0xA5);
      got.levels.resize(want.levels.size()), got.runs.resize(want.runs.size());
      ASSERT_EQ(got, want) << "positions " << first << " to " << last << ", round " << round;
    }
  }
};

TEST_P(CavlcAnalysis, Scanned) {
  const auto narrow = lib(MOX_FN(moxiEncodeCoeffsCAVLC_H264_16s));
  check<Mox16s>({}, [=](auto src, int first, auto scan, int last, auto... results) {
    return narrow(src, first + 256, scan, last - 512, results...);  // the low bytes alone count
  });
  check<Mox32s>({}, lib(MOX_FN(moxiEncodeCoeffsCAVLC_H264_32s)));
}

TEST_P(CavlcAnalysis, ChromaDc) {
  const auto whole = [](auto function) {
    return [=](auto src, int, auto, int, auto... results) { return function(src, results...); };
  };
  check<Mox16s>({0, 1, 2, 3}, whole(lib(MOX_FN(moxiEncodeChromaDcCoeffsCAVLC_H264_16s))));
  check<Mox32s>({0, 1, 2, 3}, whole(lib(MOX_FN(moxiEncodeCoeffsCAVLCChromaDC2x2_H264_32s))));
  // Four rows of two as 8.5.11.1 numbers them: c[0][0], c[1][0], c[0][1], c[2][0], c[3][0], c[1][1], c[2][1], c[3][1].
  check<Mox16s>({0, 2, 1, 4, 6, 3, 5, 7}, whole(lib(MOX_FN(moxiEncodeCoeffsCAVLCChromaDC2x4_H264_16s))));
  check<Mox32s>({0, 2, 1, 4, 6, 3, 5, 7}, whole(lib(MOX_FN(moxiEncodeCoeffsCAVLCChromaDC2x4_H264_32s))));
}

/// Blocks done by hand, against what all others are compared with.
TEST(CavlcAnalysisOracle, ByHand) {
  EXPECT_EQ(analysis_of({1, 1, 2}), (Analysis{{0, 0, 3, 0}, {2, 1, 1}, {0, 0}}));
  EXPECT_EQ(analysis_of({1, 1, -1, 1}), (Analysis{{3, 2, 4, 0}, {1}, {0, 0, 0}}));
  EXPECT_EQ(analysis_of({0, 0, 0, 0}), (Analysis{{0, 0, 0, 4}, {}, {}}));
  EXPECT_EQ(analysis_of({0, 3, 0, 1, -1, -1, 0, 1, 0, 0}), (Analysis{{3, 3, 5, 3}, {1, 3}, {1, 0, 0, 1}}));
  EXPECT_EQ(analysis_of({0, 0, -1, 0}), (Analysis{{1, 1, 1, 2}, {}, {}}));
}

TEST_P(CavlcAnalysis, Arguments) {
  const auto pointers = [this](auto... symbols) { (expect_null_pointers(lib(symbols), 7, 64), ...); };
  pointers(MOX_FN(moxiEncodeChromaDcCoeffsCAVLC_H264_16s), MOX_FN(moxiEncodeCoeffsCAVLCChromaDC2x2_H264_32s),
           MOX_FN(moxiEncodeCoeffsCAVLCChromaDC2x4_H264_16s), MOX_FN(moxiEncodeCoeffsCAVLCChromaDC2x4_H264_32s));
  const Guarded<Mox16s> block(16), levels(16);
  const Guarded<Mox32s> block32(16), levels32(16), scan(16);
  const Guarded<Mox8u> results(4), runs(15);
  Mox8u* const r = results.data();
  constexpr MoxStatus null = moxStsNullPointer, range = moxStsOutOfRange;
  const auto check = [&]<std::size_t... I>(std::index_sequence<I...>, auto function, auto* src, auto* dst, int beyond) {
    Call{function, std::tuple{src, 7, scan.data(), 7, r, r + 1, r + 2, r + 3, dst, runs.data()}}
        .keeps(r, 4)
        .expect_order({{null, set<I>(nullptr)}..., {range, set<3>(16)}, {range, set<3>(6)}, {range, set<1>(beyond)}});
  };
  constexpr std::index_sequence<0, 2, 4, 5, 6, 7, 8, 9> pointer;
  check(pointer, lib(MOX_FN(moxiEncodeCoeffsCAVLC_H264_16s)), block.data(), levels.data(), 256 + 8);
  check(pointer, lib(MOX_FN(moxiEncodeCoeffsCAVLC_H264_32s)), block32.data(), levels32.data(), 257);
}

MOX_INSTANTIATE_GENERATIONS(CavlcAnalysis);

}  // namespace
}  // namespace mox::test
