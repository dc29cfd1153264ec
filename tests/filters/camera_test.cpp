#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <tuple>
#include <vector>

#include "moxvc.h"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

constexpr Placement kPlacements[] = {Placement::at_end(), Placement::at_start(), Placement::aligned(3)};

/// A picture as rows of values.
using Picture = std::vector<std::vector<int>>;

/// Turned by as many quarters as the rotation asks for, each the columns of the one before, the last one first.
Picture turned(Picture picture, int rotation) {
  for (int quarters = std::vector<int>{0, 1, 3, 2}[rotation]; quarters > 0; --quarters) {
    Picture next(picture[0].size());
    for (const auto& row : picture) {
      for (std::size_t x = 0; x < row.size(); ++x) next[row.size() - 1 - x].push_back(row[x]);
    }
    picture = next;
  }
  return picture;
}

/// Component 0 Y, 1 Cb, 2 Cr of a packed picture, a value for each pixel.
Picture component(const Plane<Mox8u>& packed, int which) {
  Picture picture(packed.height());
  for (int y = 0; y < packed.height(); ++y) {
    for (int x = 0; x < packed.width() / 2; ++x) {
      picture[y].push_back(packed(which == 0 ? 2 * x + 1 : x / 2 * 4 + 2 * (which == 2), y));
    }
  }
  return picture;
}

/// Scaled down: the first of each n x n pixels, or the mean of the four in their middle.
Picture scaled(const Picture& picture, int n, bool bilinear) {
  Picture small(picture.size() / n);
  for (std::size_t y = 0; y < small.size(); ++y) {
    for (std::size_t x = 0; x < picture[0].size() / n; ++x) {
      double sum = 0;
      for (int i = 0; i < n * n; ++i) {
        const bool middle = std::abs(2 * (i % n) - n + 1) == 1 && std::abs(2 * (i / n) - n + 1) == 1;
        sum += (bilinear ? middle / 4.0 : i == 0) * picture[y * n + i / n][x * n + i % n];
      }
      small[y].push_back(static_cast<int>(std::floor(sum + 0.5)));
    }
  }
  return small;
}

/// The word of a colour: `format` has the number of bits of red, green and blue as its digits.
int word(double y, double cb, double cr, int format) {
  const double parts[3] = {298 * (y - 16) + 409 * (cr - 128), 298 * (y - 16) - 100 * (cb - 128) - 208 * (cr - 128),
                           298 * (y - 16) + 516 * (cb - 128)};
  const int bits[3] = {format / 100, format / 10 % 10, format % 10};
  int all = 0;
  for (int i = 0; i < 3; ++i) {
    const double level = std::clamp(std::floor(parts[i] / 256 + 0.5), 0.0, 255.0);
    all = (all << bits[i]) + static_cast<int>(std::floor(level / (256 >> bits[i])));
  }
  return all;
}

template <class T>
void write(const Picture& picture, const Plane<T>& plane) {
  for (int y = 0; y < plane.height(); ++y) {
    for (int x = 0; x < plane.width(); ++x) plane(x, y) = static_cast<T>(picture[y][x]);
  }
}

class Camera : public PerGeneration {
 protected:
  MoxStatus resize(const Plane<Mox8u>& src, const Plane<Mox16u>& dst, int scale, int interpolation, int format,
                   int rotation) const {
    return lib(MOX_FN(moxiResizeCCRotate_8u_C2R))(src.at(0, 0), src.step(), reinterpret_cast<Mox8u*>(dst.at(0, 0)),
                                                  dst.step_bytes(), {src.width() / 2, src.height()}, scale,
                                                  interpolation, format, rotation);
  }
  MoxStatus convert(const Plane<Mox8u>& src, const Plane<Mox8u>& y, const Plane<Mox8u>& cb, const Plane<Mox8u>& cr,
                    int rotation) const {
    return lib(MOX_FN(moxiCbYCr422ToYCbCr420_Rotate_8u_C2P3R))(src.at(0, 0), src.step(), y.at(0, 0), y.step(),
                                                               cb.at(0, 0), cb.step(), cr.at(0, 0), cr.step(),
                                                               {src.width() / 2, src.height()}, rotation);
  }
};

TEST_P(Camera, ResizeEqualsOracle) {
  Random random;
  for (int round = 0; round < 600; ++round) {
    const int n = 2 << round % 3, interpolation = 1 + round / 3 % 2, rotation = round / 6 % 4;
    const int format = std::vector<int>{565, 555, 444}[round / 24 % 3];
    const int width = 2 * random(4, round % 5 ? 30 : 160), height = random(8, 40), extra = random(0, 3);
    const int step = round % 7 ? 2 * width + extra : -2 * width - extra;
    const Plane<Mox8u> src(2 * width, height, step, kPlacements[random(0, 2)]);
    fill(src.memory(), kPatterns[random(0, 6)], random);
    const auto part = [&](int which) { return scaled(component(src, which), n, interpolation == 2); };
    const Picture cb = part(1), cr = part(2);
    Picture words = part(0);
    for (std::size_t row = 0; row < words.size(); ++row) {
      for (std::size_t x = 0; x < cb[0].size(); ++x)
        words[row][x] = word(words[row][x], cb[row][x], cr[row][x], format);
    }
    words = turned(words, rotation);
    const int across = static_cast<int>(words[0].size()), down = static_cast<int>(words.size());
    const int dstStep = round % 2 ? across + extra : -across - extra;
    const Plane<Mox16u> dst(across, down, dstStep, round % 3 ? kPlacements[round % 2] : Placement::aligned(2));
    const Plane<Mox16u> expected(across, down, dstStep);
    write(words, expected);
    ASSERT_EQ(resize(src, dst, n, interpolation, format, rotation), moxStsOk);
    ASSERT_EQ(dst.copy(), expected.copy()) << width << "x" << height << " by " << n << ", round " << round;
  }
}

TEST_P(Camera, PlanesEqualOracle) {
  Random random;
  for (int round = 0; round < 300; ++round) {
    const int rotation = round % 4, width = 2 * random(1, round % 5 ? 20 : 70), height = 2 * random(1, 20);
    const bool quarter = rotation == moxRotate90Left || rotation == moxRotate90Right;
    const int extra = random(0, 3), step = round % 7 ? 2 * width + extra : -2 * width - extra;
    const Plane<Mox8u> src(2 * width, height, step, kPlacements[round % 3]);
    random.fill(src.memory());
    const int across = quarter ? height : width, down = quarter ? width : height;
    const Plane<Mox8u> y(across, down, across + extra, kPlacements[round % 3]);
    const Plane<Mox8u> cb(across / 2, down / 2, round % 2 ? across : -across, kPlacements[random(0, 2)]);
    const Plane<Mox8u> cr(across / 2, down / 2, across / 2 + extra, kPlacements[round % 3]);
    const Plane<Mox8u>* const planes[3] = {&y, &cb, &cr};
    ASSERT_EQ(convert(src, y, cb, cr, rotation), moxStsOk);
    for (int c = 0; c < 3; ++c) {  // two rows and twice the same column
      const Plane<Mox8u> expected(planes[c]->width(), planes[c]->height(), planes[c]->step());
      const Picture whole = component(src, c);
      write(turned(c ? scaled(whole, 2, true) : whole, rotation), expected);
      ASSERT_EQ(planes[c]->copy(), expected.copy()) << width << "x" << height << ", component " << c << ", " << round;
    }
  }
}

/// Y, Cb and Cr of white, black, middle grey, red, green and blue, and their words by hand.
TEST_P(Camera, LiteralColours) {
  constexpr struct {
    Mox8u y, cb, cr;
    int words[3];
  } kCases[] = {
      {235, 128, 128, {0xFFFF, 0x7FFF, 0xFFF}}, {16, 128, 128, {0, 0, 0}},
      {128, 128, 128, {0x8410, 0x4210, 0x888}},  // 130 each
      {81, 90, 240, {0xF800, 0x7C00, 0xF00}},    // R 255, G 2 >> 8, B below 0
      {145, 54, 34, {0x7E0, 0x3E0, 0xF0}},       // R 124 >> 8, G 255, B 1
      {41, 240, 110, {0x1F, 0x1F, 0xF}},         // R 216 >> 8, G 122 >> 8, B 255
  };
  for (const auto& c : kCases) {
    const Plane<Mox8u> src(16, 8, 16);
    for (int i = 0; i < 128; ++i) src(i % 16, i / 16) = i % 2 ? c.y : i % 4 ? c.cr : c.cb;
    for (int format = 0; format < 3; ++format) {
      const Plane<Mox16u> dst(1, 1, 1);
      ASSERT_EQ(resize(src, dst, 8, 2, std::vector<int>{565, 555, 444}[format], 0), moxStsOk);
      EXPECT_EQ(dst(0, 0), c.words[format]) << "colour " << &c - kCases << ", format " << format;
    }
  }
}

/// One white pixel in black: where nearest and bilinear find it. A quarter of it is Y 71: R, G and B 64.
TEST_P(Camera, LiteralPlaces) {
  constexpr struct {
    int scale, x, y, nearest, bilinear;
  } kCases[] = {{2, 0, 0, 0xFFFF, 0x4208}, {2, 1, 1, 0, 0x4208}, {4, 0, 0, 0xFFFF, 0}, {4, 1, 2, 0, 0x4208},
                {4, 3, 3, 0, 0},           {8, 3, 4, 0, 0x4208}, {8, 4, 3, 0, 0x4208}, {8, 2, 3, 0, 0}};
  for (const auto& c : kCases) {
    const Plane<Mox8u> src(16, 8, 16);
    for (int i = 0; i < 128; ++i) src(i % 16, i / 16) = i % 2 ? 16 : 128;
    src(2 * c.x + 1, c.y) = 235;
    for (const int interpolation : {1, 2}) {
      const Plane<Mox16u> dst(8 / c.scale, 8 / c.scale, 8 / c.scale);
      ASSERT_EQ(resize(src, dst, c.scale, interpolation, 565, 0), moxStsOk);
      EXPECT_EQ(dst(0, 0), interpolation == 1 ? c.nearest : c.bilinear) << "case " << &c - kCases;
    }
  }
}

/// Four turns of 4x4 pixels, luma 1 to 16, packed again after each with the chroma rows twice: the upper row by hand,
/// and the picture comes back.
TEST_P(Camera, LiteralTurns) {
  using Luma = std::vector<Mox8u>;
  const Luma asIs = {1, 2, 3, 4}, left = {4, 8, 12, 16}, right = {13, 9, 5, 1}, upsideDown = {16, 15, 14, 13};
  const std::vector<Luma> upper[4] = {{asIs, asIs, asIs, asIs},
                                      {left, upsideDown, right, asIs},
                                      {right, upsideDown, left, asIs},
                                      {upsideDown, asIs, upsideDown, asIs}};
  const Plane<Mox8u> packed(8, 4, 8), first(8, 4, 8), y(4, 4, 4), cb(2, 2, 2), cr(2, 2, 2);
  for (int i = 0; i < 32; ++i) first(i % 8, i / 8) = static_cast<Mox8u>(i % 2 ? i / 2 + 1 : 100 + i % 8 + i / 16 * 30);
  for (int rotation = 0; rotation < 4; ++rotation) {
    packed.assign(first);
    for (const Luma& row : upper[rotation]) {
      ASSERT_EQ(convert(packed, y, cb, cr, rotation), moxStsOk);
      EXPECT_EQ(Luma(y.at(0, 0), y.at(3, 0) + 1), row) << "rotation " << rotation;
      for (int i = 0; i < 32; ++i)
        packed(i % 8, i / 8) = i % 2 ? y(i % 8 / 2, i / 8) : (i % 4 ? cr : cb)(i % 8 / 4, i / 16);
    }
    EXPECT_EQ(packed.copy(), first.copy()) << "rotation " << rotation;
  }
}

TEST_P(Camera, Arguments) {
  std::vector<Mox8u> src(2 * 16 * 16, 90), out(2 * 16 * 16, 1);
  const Mox8u* const from = src.data();
  for (const int bad : {0, 1}) {
    Call(lib(MOX_FN(moxiResizeCCRotate_8u_C2R)), std::tuple{from, 32, out.data(), 16, MoxiSize{16, 16}, 2, 1, 565, 3})
        .keeps(out.data(), out.size())
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set<2>(nullptr)},
                       {moxStsBadSize, set<4>(bad ? MoxiSize{9, 16} : MoxiSize{6, 16})},
                       {moxStsBadScaleFactor, set<5>(bad ? 16 : 0)},
                       {moxStsBadInterpolation, set<6>(bad ? 3 : 0)},
                       {moxStsBadArg, set<7>(bad ? 888 : 0)},
                       {moxStsBadArg, set<8>(bad ? 4 : -1)}});
    Call(lib(MOX_FN(moxiCbYCr422ToYCbCr420_Rotate_8u_C2P3R)),
         std::tuple{from, 32, out.data(), 16, &out[256], 8, &out[320], 8, MoxiSize{16, 16}, 0})
        .keeps(out.data(), out.size())
        .expect_order({{moxStsNullPointer, set<0>(nullptr)},
                       {moxStsNullPointer, set<2>(nullptr)},
                       {moxStsNullPointer, set<4>(nullptr)},
                       {moxStsNullPointer, set<6>(nullptr)},
                       {moxStsBadSize, set<8>(bad ? MoxiSize{16, 3} : MoxiSize{0, 16})},
                       {moxStsBadArg, set<9>(bad ? 4 : -1)}});
  }
  const auto resize = lib(MOX_FN(moxiResizeCCRotate_8u_C2R));
  for (const int scale : {1, 3, 5, 6, 7, -2}) {
    EXPECT_EQ(resize(from, 32, out.data(), 16, {16, 16}, scale, 1, 565, 0), moxStsBadScaleFactor);
  }
  EXPECT_EQ(resize(from, 32, out.data(), 16, {16, 7}, 2, 1, 565, 0), moxStsBadSize);
}

MOX_INSTANTIATE_GENERATIONS(Camera);

}  // namespace
}  // namespace mox::test
