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

  /// What call(block, four numbers, levels, runs) gives. The results are checked to be the only memory written.
  template <class T>
  Analysis run(const Guarded<T>& block, int positions, auto call) {
    const Guarded<Mox8u> numbers[4] = {Guarded<Mox8u>(1), Guarded<Mox8u>(1), Guarded<Mox8u>(1), Guarded<Mox8u>(1)};
    const Guarded<T> levels(positions);
    const Guarded<Mox8u> runs(positions - 1);
    constexpr T kUntouched = 0x5A5A;
    std::fill(levels.begin(), levels.end(), kUntouched);
    std::fill(runs.begin(), runs.end(), Mox8u{0xA5});
    const auto before = block.copy();
    EXPECT_EQ(call(block.data(), numbers[0].data(), numbers[1].data(), numbers[2].data(), numbers[3].data(),
                   levels.data(), runs.data()),
              moxStsOk);
    EXPECT_EQ(block.copy(), before);
    Analysis result{{numbers[0][0], numbers[1][0], numbers[2][0], numbers[3][0]}, {}, {}};
    const auto level_end = levels.begin() + std::clamp(result.numbers[2] - result.numbers[0], 0, positions);
    const auto run_end = runs.begin() + std::clamp(result.numbers[2] - 1, 0, positions - 1);
    EXPECT_EQ(std::count(level_end, levels.end(), kUntouched), levels.end() - level_end);
    EXPECT_EQ(std::count(run_end, runs.end(), Mox8u{0xA5}), runs.end() - run_end);
    result.levels.assign(levels.begin(), level_end), result.runs.assign(runs.begin(), run_end);
    return result;
  }

  /// Random blocks of every range of positions, as they lie anywhere in memory.
  template <class T>
  void scanned(auto function, int high_bits) {
    for (int round = 0; round < 6000; ++round) {
      const int first = random_(0, 15), last = random_(first, 15), count = last - first + 1;
      const int extremes[] = {1, 1, 2, int{std::numeric_limits<T>::max()}};
      const int most = extremes[random_(0, 3)];
      const double density = random_(0, 10) / 10.0;
      const Guarded<T> block(16);
      const Guarded<Mox32s> scan(last + 1);
      std::vector<Mox32s> order(16);
      std::iota(order.begin(), order.end(), 0);
      std::shuffle(order.begin(), order.end(), std::mt19937(random_.bits()));
      std::copy_n(order.begin(), last + 1, scan.begin());
      std::fill_n(scan.begin(), first, 1 << 28);  // not read
      std::vector<int> values;
      for (T& c : block) c = static_cast<T>(random_.chance(density) ? random_(-most - (most > 2), most) : 0);
      for (int k = first; k <= last; ++k) values.push_back(block[order[k]]);
      const Analysis got = run(block, count, [&](auto src, auto... results) {
        return function(src, first + high_bits, scan.data(), last - high_bits, results...);
      });
      ASSERT_EQ(got, analysis_of(values)) << "positions " << first << " to " << last << ", round " << round;
    }
  }

  /// Every block of -1, 0, 1 and one larger value; `order` is the scan, lowest frequency first.
  template <class T>
  void chroma(const std::vector<int>& order, auto function) {
    const int size = static_cast<int>(order.size());
    const T large = std::numeric_limits<T>::min();
    const Guarded<T> block(size);
    for (int pattern = 0; pattern < 1 << 2 * size; ++pattern) {
      std::vector<int> values(size);
      for (int k = 0; k < size; ++k) {
        block[order[k]] = std::array<T, 4>{0, 1, -1, large}[pattern >> 2 * k & 3];
        values[k] = block[order[k]];
      }
      ASSERT_EQ(run(block, size, function), analysis_of(values)) << "pattern " << pattern;
    }
  }
};

TEST_P(CavlcAnalysis, Scanned) {
  scanned<Mox16s>(lib(MOX_FN(moxiEncodeCoeffsCAVLC_H264_16s)), 256);  // of which only the low byte counts
  scanned<Mox32s>(lib(MOX_FN(moxiEncodeCoeffsCAVLC_H264_32s)), 0);
}

TEST_P(CavlcAnalysis, ChromaDc) {
  chroma<Mox16s>({0, 1, 2, 3}, lib(MOX_FN(moxiEncodeChromaDcCoeffsCAVLC_H264_16s)));
  chroma<Mox32s>({0, 1, 2, 3}, lib(MOX_FN(moxiEncodeCoeffsCAVLCChromaDC2x2_H264_32s)));
  // The values of four rows of two as the standard numbers them: c[0][0], c[1][0], c[0][1], c[2][0], ...
  chroma<Mox16s>({0, 2, 1, 4, 6, 3, 5, 7}, lib(MOX_FN(moxiEncodeCoeffsCAVLCChromaDC2x4_H264_16s)));
  chroma<Mox32s>({0, 2, 1, 4, 6, 3, 5, 7}, lib(MOX_FN(moxiEncodeCoeffsCAVLCChromaDC2x4_H264_32s)));
}

TEST_P(CavlcAnalysis, ByHand) {
  const auto function = lib(MOX_FN(moxiEncodeCoeffsCAVLC_H264_16s));
  const std::vector<Mox32s> scan = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};
  const auto of = [&](std::initializer_list<Mox16s> block) {
    const int size = static_cast<int>(block.size());
    return run(Guarded<Mox16s>(block), size,
               [&](auto src, auto... results) { return function(src, 0, scan.data(), size - 1, results...); });
  };
  EXPECT_EQ(of({1, 1, 2}), (Analysis{{0, 0, 3, 0}, {2, 1, 1}, {0, 0}}));
  EXPECT_EQ(of({1, 1, -1, 1}), (Analysis{{3, 2, 4, 0}, {1}, {0, 0, 0}}));
  EXPECT_EQ(of({0, 0, 0, 0}), (Analysis{{0, 0, 0, 4}, {}, {}}));
  EXPECT_EQ(of({0, 3, 0, 1, -1, -1, 0, 1, 0, 0}), (Analysis{{3, 3, 5, 3}, {1, 3}, {1, 0, 0, 1}}));
  EXPECT_EQ(of({0, 0, -1, 0}), (Analysis{{1, 1, 1, 2}, {}, {}}));
}

TEST_P(CavlcAnalysis, Arguments) {
  // All positions are 7 in a good call, and scan[7] is 0.
  const auto pointers = [this](auto... symbols) { (expect_null_pointers(lib(symbols), 7, 64), ...); };
  pointers(MOX_FN(moxiEncodeChromaDcCoeffsCAVLC_H264_16s), MOX_FN(moxiEncodeCoeffsCAVLCChromaDC2x2_H264_32s),
           MOX_FN(moxiEncodeCoeffsCAVLCChromaDC2x4_H264_16s), MOX_FN(moxiEncodeCoeffsCAVLCChromaDC2x4_H264_32s));
  const Guarded<Mox16s> block(16), levels(16);
  const Guarded<Mox32s> block32(16), levels32(16), scan(16);
  const Guarded<Mox8u> results(4), runs(15);
  Mox8u* const r = results.data();
  constexpr MoxStatus null = moxStsNullPointer, range = moxStsOutOfRange;
  const auto check = [&](auto function, auto* src, auto* dst, auto last_fault) {
    Call{function, std::tuple{src, 7, scan.data(), 7, r, r + 1, r + 2, r + 3, dst, runs.data()}}
        .keeps(r, 4)
        .expect_order({{null, set<0>(nullptr)},
                       {null, set<2>(nullptr)},
                       {null, set<4>(nullptr)},
                       {null, set<5>(nullptr)},
                       {null, set<6>(nullptr)},
                       {null, set<7>(nullptr)},
                       {null, set<8>(nullptr)},
                       {null, set<9>(nullptr)},
                       {range, set<3>(16)},
                       {range, set<3>(6)},
                       {range, last_fault}});
  };
  check(lib(MOX_FN(moxiEncodeCoeffsCAVLC_H264_16s)), block.data(), levels.data(), set<1>(256 + 8));
  check(lib(MOX_FN(moxiEncodeCoeffsCAVLC_H264_32s)), block32.data(), levels32.data(), set<1>(257));
}

MOX_INSTANTIATE_GENERATIONS(CavlcAnalysis);

}  // namespace
}  // namespace mox::test
