#include "h264/interpolation_luma_px.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <set>
#include <utility>

#include "h264/interpolation_regions.hpp"

namespace mox::test {
namespace {

struct Luma {
  static constexpr auto kPlain_8u = MOX_FN(moxiInterpolateLuma_H264_8u_C1R);
  static constexpr auto kTop_8u = MOX_FN(moxiInterpolateLumaTop_H264_8u_C1R);
  static constexpr auto kBottom_8u = MOX_FN(moxiInterpolateLumaBottom_H264_8u_C1R);
  static constexpr auto kPlain_16u = MOX_FN(moxiInterpolateLuma_H264_16u_C1R);
  static constexpr auto kTop_16u = MOX_FN(moxiInterpolateLumaTop_H264_16u_C1R);
  static constexpr auto kBottom_16u = MOX_FN(moxiInterpolateLumaBottom_H264_16u_C1R);
  static constexpr int kFractions = 4, kBefore = 2, kAfter = 3;
  static constexpr int kBadWidth_8u = 6, kBadHeight_8u = 6, kSmallestStep_16u = 4;
  static constexpr bool kAlwaysReads_16u = false, kNegativeTop_8u = true;
  static constexpr MoxiSize kSizes_8u[] = {{0, 4},  {4, 4},  {4, 8},  {8, 4},   {12, 4},  {8, 8},  {8, 16},
                                           {16, 8}, {20, 4}, {24, 4}, {28, 12}, {16, 16}, {4, 20}, {16, 32}};
  static constexpr MoxiSize kSizes_16u[] = {{4, 4}, {4, 8}, {8, 4}, {8, 8}, {8, 16}, {16, 8}, {16, 16}};
  static int written(int width) {
    static const std::map<int, int> kWritten = {{0, 4},   {4, 4},   {8, 8},   {12, 8},
                                                {16, 16}, {20, 16}, {24, 16}, {28, 16}};
    return kWritten.at(width);
  }
  static bool passes_8u(int width, int height) {
    return height % 4 == 0 && std::set{0, 4, 8, 12, 16, 20, 24, 28}.contains(width);
  }
  static bool passes_16u(int width, int height) {
    return std::set<std::pair<int, int>>{{4, 4}, {4, 8}, {8, 4}, {8, 8}, {8, 16}, {16, 8}, {16, 16}}.contains(
        {width, height});
  }
  template <class T>
  static std::int64_t sample(const oracle::Picture<T>& p, std::int64_t x, std::int64_t y, int dx, int dy, int max) {
    return oracle::luma_sample(p, x, y, dx, dy, max);
  }
};

class LumaInterpolation : public PerGeneration {};
MOX_INSTANTIATE_GENERATIONS(LumaInterpolation);

TEST_P(LumaInterpolation, EqualsTheOracle_8u) { check_all<Luma, Mox8u>(library(), Luma::kSizes_8u); }
TEST_P(LumaInterpolation, EqualsTheOracle_16u) { check_all<Luma, Mox16u>(library(), Luma::kSizes_16u); }
TEST_P(LumaInterpolation, ArgumentsAreTestedInOrder) { check_arguments<Luma>(library()); }
TEST_P(LumaInterpolation, SizesThatPass) { check_sizes<Luma>(library()); }

/// Results around a few samples of an empty 8-bit picture, worked out by hand; in 10 bits all is four times as much.
TEST_P(LumaInterpolation, HandCalculatedValues) {
  struct Row {
    std::array<int, 6> across;  ///< the row of the result, or with `vertical` its column, from -2 to 3
    bool vertical;
    std::array<int, 16> expected;  ///< [dy * 4 + dx]; -1 is not looked at
  };
  const Row rows[] = {
      // A single sample: b = h = 1280 / 32 = 40, j = 25600 / 1024 = 25.
      {{0, 0, 64, 0, 0, 0}, false, {64, 52, 40, 20, 52, 40, 33, 20, 40, 33, 25, 13, 20, 20, 13, 0}},
      // b = 9355 / 32 is cut to 255 before it is averaged.
      {{255, 0, 200, 255, 0, 0}, false, {200, 228, 255, 255, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1}},
      {{255, 0, 200, 255, 0, 0}, true, {200, -1, -1, -1, 228, -1, -1, -1, 255, -1, -1, -1, 255, -1, -1, -1}},
      // b = -550 / 32 is cut to 0.
      {{0, 255, 100, 0, 255, 0}, false, {100, 50, 0, 0, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1}},
      {{0, 255, 100, 0, 255, 0}, true, {100, -1, -1, -1, 50, -1, -1, -1, 0, -1, -1, -1, 0, -1, -1, -1}}};
  for (const Row& row : rows) {
    for (int position = 0; position < 16; ++position) {
      if (row.expected[position] < 0) continue;
      Mox8u picture[9 * 16] = {}, result[16];
      for (int i = 0; i < 6; ++i) picture[row.vertical ? i * 16 + 2 : 2 * 16 + i] = static_cast<Mox8u>(row.across[i]);
      const Region<Mox8u> region = {picture + 2 * 16 + 2, 16, result, 4, position % 4, position / 4, {4, 4}, 8};
      ASSERT_EQ(run<Luma>(library(), Form::kPlain, region, 0), moxStsOk);
      EXPECT_EQ(result[0], row.expected[position]) << "position " << position << " vertical " << row.vertical;
    }
  }
}

/// The kernels of any width, which no 8-bit export reaches, give what those of fixed widths give.
TEST(LumaKernels, AnyWidthEqualsFixedWidths) {
  Random random;
  Mox8u source[16 * 32];
  random.fill(std::span<Mox8u>(source));
  for (int width : {4, 8, 16}) {
    for (int position = 0; position < 16; ++position) {
      Mox8u fixed[4 * 16] = {}, any[4 * 16] = {};
      MoxiInterpKernelArgs<Mox8u> a = block_8u(source + 3 * 32 + 3, 32, fixed, 16, 0, 0, width, 4);
      px::h264_interpolate_luma_type_table_8u_v8u8[luma_index_8u(width, position % 4, position / 4)](a);
      a.pDst = any;
      px::h264_interpolate_luma_type_table_8u_pxmx[static_cast<std::size_t>(position)](a);
      EXPECT_TRUE(std::ranges::equal(fixed, any)) << "width " << width << " position " << position;
    }
  }
}

}  // namespace
}  // namespace mox::test
