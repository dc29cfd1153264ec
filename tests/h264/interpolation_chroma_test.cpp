#include <algorithm>
#include <set>

#include "h264/interpolation_chroma_px.hpp"
#include "h264/interpolation_regions.hpp"

namespace mox::test {
namespace {

struct Chroma {
  static constexpr auto kPlain_8u = MOX_FN(moxiInterpolateChroma_H264_8u_C1R);
  static constexpr auto kTop_8u = MOX_FN(moxiInterpolateChromaTop_H264_8u_C1R);
  static constexpr auto kBottom_8u = MOX_FN(moxiInterpolateChromaBottom_H264_8u_C1R);
  static constexpr auto kPlain_16u = MOX_FN(moxiInterpolateChroma_H264_16u_C1R);
  static constexpr auto kTop_16u = MOX_FN(moxiInterpolateChromaTop_H264_16u_C1R);
  static constexpr auto kBottom_16u = MOX_FN(moxiInterpolateChromaBottom_H264_16u_C1R);
  static constexpr int kFractions = 8, kBefore = 0, kAfter = 1;
  static constexpr int kBadWidth_8u = 5, kBadHeight_8u = 7, kSmallestStep_16u = 8;
  static constexpr bool kAlwaysReads_16u = true, kNegativeTop_8u = false;
  static constexpr MoxiSize kSizes_8u[] = {{0, 2}, {2, 2}, {2, 4},  {2, 6},  {4, 2},  {4, 4},  {6, 4}, {4, 8},
                                           {8, 4}, {8, 8}, {10, 2}, {12, 4}, {14, 6}, {8, 16}, {8, 24}};
  static constexpr MoxiSize kSizes_16u[] = {{2, 2}, {2, 16}, {4, 2}, {4, 8}, {8, 4}, {8, 16}, {16, 2}, {16, 16}};
  static int written(int width) { return width <= 2 ? 2 : width <= 6 ? 4 : 8; }
  static bool passes_8u(int width, int height) {
    return height % 2 == 0 && std::set{0, 2, 4, 6, 8, 10, 12, 14}.contains(width);
  }
  static bool passes_16u(int width, int height) {
    const std::set sides = {2, 4, 8, 16};
    return sides.contains(width) && sides.contains(height);
  }
  template <class T>
  static std::int64_t sample(const oracle::Picture<T>& p, std::int64_t x, std::int64_t y, int dx, int dy, int max) {
    return oracle::chroma_sample(p, x, y, dx, dy, max);
  }
};

class ChromaInterpolation : public PerGeneration {};
MOX_INSTANTIATE_GENERATIONS(ChromaInterpolation);

TEST_P(ChromaInterpolation, EqualsTheOracle_8u) { check_all<Chroma, Mox8u>(library(), Chroma::kSizes_8u); }
TEST_P(ChromaInterpolation, EqualsTheOracle_16u) { check_all<Chroma, Mox16u>(library(), Chroma::kSizes_16u); }
TEST_P(ChromaInterpolation, ArgumentsAreTestedInOrder) {
  check_arguments<Chroma>(library());
  const Guarded<Mox8u> source(1024), u(256), v(256);
  Call{lib(MOX_FN(moxiInterpolateChroma_H264_8u_C2P2R)),
       std::tuple{source.data(), 64, u.data(), v.data(), 16, 1, 1, MoxiSize{4, 4}}}
      .keeps(u.data(), 256)
      .keeps(v.data(), 256)
      .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                     {moxStsNullPointer, set<2>(nullptr)},
                     {moxStsNullPointer, set<3>(nullptr)},
                     {moxStsBadArg, set<5>(8)},
                     {moxStsBadArg, set<6>(-1)},
                     {moxStsBadSize, set<7>(MoxiSize{4, 3})},
                     {moxStsBadSize, set<7>(MoxiSize{16, 4})}});
}
TEST_P(ChromaInterpolation, SizesThatPass) { check_sizes<Chroma>(library()); }

/// Interleaved samples, from memory that ends behind the last pair that is needed.
TEST_P(ChromaInterpolation, InterleavedEqualsTheOracle) {
  Random random;
  for (MoxiSize size : Chroma::kSizes_8u) {
    for (int fraction = 0; fraction < 64; ++fraction) {
      const int dx = fraction % 8, dy = fraction / 8, width = Chroma::written(size.width), sign = fraction % 3 ? 1 : -1;
      const int columns = 2 * (width + (dx != 0));
      const Plane<Mox8u> source(columns, size.height + (dy != 0), sign * (columns + fraction % 5),
                                (dx + dy) % 2 ? Placement::at_end() : Placement::at_start());
      fill_samples(source.memory(), Content(fraction % 3), 255, random);
      const Plane<Mox8u> u(width, size.height, sign * (width + 3)), v(width, size.height, u.step());
      const Plane<Mox8u> expected(width, size.height, u.step());
      ASSERT_EQ(lib(MOX_FN(moxiInterpolateChroma_H264_8u_C2P2R))(source.at(0, 0), source.step(), u.at(0, 0), v.at(0, 0),
                                                                 u.step(), dx, dy, size),
                moxStsOk);
      for (int channel : {0, 1}) {
        oracle::Picture<Mox8u> picture = {source.at(channel, 0), source.step()};
        picture.channels = 2;
        for (int i = 0; i < width * size.height; ++i)
          expected(i % width, i / width) =
              static_cast<Mox8u>(oracle::chroma_sample(picture, i % width, i / width, dx, dy, 255));
        ASSERT_EQ((channel ? v : u).copy(), expected.copy())
            << size.width << "x" << size.height << " fraction " << dx << "," << dy << " channel " << channel;
      }
    }
  }
}

TEST_P(ChromaInterpolation, HandCalculatedValues) {
  struct Row {
    Mox8u a, b, e, f;  ///< the sample, its right, lower and diagonal neighbours
    int dx, dy, expected;
  };
  const Row rows[] = {{1, 2, 9, 9, 4, 0, 2},                                   // (4 + 8 + 4) / 8
                      {1, 9, 2, 9, 0, 4, 2},           {0, 1, 2, 4, 4, 4, 2},  // (16 * 7 + 32) / 64
                      {10, 20, 30, 40, 1, 7, 29},                              // (70 + 20 + 1470 + 280 + 32) / 64
                      {255, 255, 255, 255, 3, 5, 255}, {7, 255, 255, 255, 0, 0, 7}};
  for (const Row& row : rows) {
    const Mox8u source[3 * 4] = {row.a, row.b, 0, 0, row.e, row.f};
    Mox8u result[4];
    const Region<Mox8u> region = {source, 4, result, 2, row.dx, row.dy, {2, 2}, 8};
    ASSERT_EQ(run<Chroma>(library(), Form::kPlain, region, 0), moxStsOk);
    EXPECT_EQ(result[0], row.expected) << row.dx << "," << row.dy;
  }
}

/// The 8-bit Top form takes a negative count for a block so many rows further up; nothing is repeated.
TEST_P(ChromaInterpolation, TopOfANegativeCount) {
  Mox8u source[16 * 8], above[4 * 4], moved[4 * 4];
  Random random;
  random.fill(std::span<Mox8u>(source));
  const Region<Mox8u> region = {source + 5 * 8, 8, above, 4, 3, 5, {4, 4}, 8};
  ASSERT_EQ(run<Chroma>(library(), Form::kTop, region, -3), moxStsOk);
  const Region<Mox8u> same = {source + 2 * 8, 8, moved, 4, 3, 5, {4, 4}, 8};
  ASSERT_EQ(run<Chroma>(library(), Form::kPlain, same, 0), moxStsOk);
  EXPECT_TRUE(std::equal(above, above + 16, moved));
}

/// The kernels of any width, which no 8-bit export reaches, give what those of fixed widths give; likewise the one-pass
/// kernels of interleaved samples.
TEST(ChromaKernels, AnyWidthEqualsFixedWidths) {
  Random random;
  Mox8u source[9 * 32];
  random.fill(std::span<Mox8u>(source));
  for (int width : {2, 4, 8}) {
    for (int fraction = 0; fraction < 64; ++fraction) {
      const int dx = fraction % 8, dy = fraction / 8;
      const auto type = static_cast<std::size_t>(chroma_type(dx, dy));
      Mox8u fixed[2][8 * 8] = {}, any[2][8 * 8] = {};
      MoxiInterpKernelArgs<Mox8u> a = block_8u(source, 32, fixed[0], 8, dx, dy, width, 8);
      px::h264_interpolate_chroma_type_table_8u_v8u8[chroma_index_8u(width, dx, dy)](a);
      a.pDst = any[0];
      px::h264_interpolate_chroma_type_table_8u_pxmx[type](a);
      EXPECT_TRUE(std::ranges::equal(fixed[0], any[0])) << width << " fraction " << dx << "," << dy;

      Library::portable()[MOX_FN(moxiInterpolateChroma_H264_8u_C2P2R)](source, 32, fixed[0], fixed[1], 8, dx, dy,
                                                                       {width, 8});
      a.pDst2 = any[1];
      px::h264_interpolate_chroma_type_table_nv12touv_8u_pxmx[type](a);
      EXPECT_TRUE(std::ranges::equal(fixed[0], any[0])) << width << " U, fraction " << dx << "," << dy;
      EXPECT_TRUE(std::ranges::equal(fixed[1], any[1])) << width << " V, fraction " << dx << "," << dy;
    }
  }
}

}  // namespace
}  // namespace mox::test
