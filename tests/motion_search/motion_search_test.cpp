/// Motion search on made pictures whose motion is known, and the program's arguments and messages.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <functional>
#include <string>

#include "motion_search/field.hpp"
#include "motion_search/report.hpp"
#include "moxdec/decoding.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

namespace ms = motion_search;
using ms::Method;
using ms::Vector;

constexpr int kRange = 16;

/// Smooth noise of -1 to 1: random values on a grid with so many units a cell, blended in between.
double noise(int cell, int seed, int x, int y) {
  const auto value = [&](int column, int row) {
    auto h = static_cast<Mox32u>(column) * 0x9E3779B1u ^ static_cast<Mox32u>(row) * 0x85EBCA77u ^
             static_cast<Mox32u>(seed) * 0xC2B2AE3Du;
    h = (h ^ h >> 15) * 0x2C1B3C6Du;
    return static_cast<double>(h >> 16) / 32768 - 1;
  };
  const auto blend = [](double a, double b, double t) { return a + (b - a) * t * t * (3 - 2 * t); };
  const int column = x / cell, row = y / cell;
  const double right = static_cast<double>(x % cell) / cell, down = static_cast<double>(y % cell) / cell;
  return blend(blend(value(column, row), value(column + 1, row), right),
               blend(value(column, row + 1), value(column + 1, row + 1), right), down);
}
/// A texture without repetition at x, y >= 0 in half samples, smooth enough for a search to walk down to its minimum.
int texture(int plane, int x, int y) {
  return static_cast<int>(128 + 80 * noise(22, plane, x, y) + 40 * noise(9, plane + 3, x, y));
}
using Texture = std::function<int(int plane, int x, int y)>;

/// Samples of sample(plane, x, y), x and y in samples of the plane.
ms::Picture picture(int width, int height, int margin, const Texture& sample) {
  ms::Picture made(width, height, margin);
  for (int i = 0; i < 3; ++i) {
    ms::Plane& plane = made.plane(i);
    for (int y = 0; y < made.plane_height(i); ++y) {
      for (int x = 0; x < made.plane_width(i); ++x) *plane.at(x, y) = static_cast<Mox8u>(sample(i, x, y));
    }
    plane.extend(made.plane_width(i), made.plane_height(i));
  }
  return made;
}
/// The texture seen from (x0, y0) whole luma samples.
ms::Picture view(int width, int height, int margin, int x0, int y0) {
  return picture(width, height, margin, [=](int plane, int x, int y) {
    return plane == 0 ? texture(0, 2 * (x0 + x), 2 * (y0 + y)) : texture(plane, 4 * x + 2 * x0, 4 * y + 2 * y0);
  });
}

/// Calls visit(macroblock, column, row) for those whose reference lies in the picture.
template <class Visit>
void each_inside(const ms::Field& field, int width, int height, Visit visit) {
  for (int i = 0; i < field.columns * field.rows; ++i) {
    const int column = i % field.columns, row = i / field.columns;
    if (column < 1 || row < 1 || 16 * column + 16 + kRange > width || 16 * row + 16 + kRange > height) continue;
    visit(field.at(column, row), column, row);
  }
}

TEST(MotionSearch, FindsAPanExactly) {
  constexpr int kWidth = 176, kHeight = 144;
  const ms::Picture reference = view(kWidth, kHeight, ms::margin_for(kRange), 40, 40);
  for (const Vector pan : {Vector{0, 0}, {10, -6}, {-14, 12}, {30, 30}, {-32, -32}}) {
    const ms::Picture current = view(kWidth, kHeight, 0, 40 + pan.x / 2, 40 + pan.y / 2);
    SCOPED_TRACE(testing::Message() << "pan of " << pan.x << ' ' << pan.y << " half samples");
    const ms::Field field = ms::estimate(current, reference, Method::kFull, kRange);
    int inside = 0;
    each_inside(field, kWidth, kHeight, [&](const ms::Macroblock& mb, int column, int row) {
      EXPECT_EQ(mb.found, pan) << column << ' ' << row;
      EXPECT_EQ(mb.sad, 0) << column << ' ' << row;
      EXPECT_EQ(mb.vectors, (std::array{pan, pan, pan, pan})) << column << ' ' << row;
      EXPECT_FALSE(mb.split || mb.useless) << column << ' ' << row;
      ++inside;
    });
    EXPECT_EQ(inside, 9 * 7);
    const ms::Picture prediction = ms::predict(field, reference);
    for (int y = 16; y < 128; ++y) {
      for (int x = 16; x < 160; ++x)
        ASSERT_EQ(*prediction.plane(0).at(x, y), *current.plane(0).at(x, y)) << x << ' ' << y;
    }
    // Two whole samples of luma are one of chroma.
    for (int y = 8; y < 64 && pan.x % 4 == 0 && pan.y % 4 == 0; ++y) {
      for (int x = 8; x < 80; ++x)
        ASSERT_EQ(*prediction.plane(2).at(x, y), *current.plane(2).at(x, y)) << x << ' ' << y;
    }
  }
}

TEST(MotionSearch, FindsHalfSamples) {
  constexpr int kSide = 112;
  const ms::Picture reference = view(kSide, kSide, ms::margin_for(kRange), 40, 40);
  for (const Vector v : {Vector{7, 0}, {0, -5}, {-9, 3}, {1, 1}}) {
    // The mean of the samples around, as the prediction rounds it.
    const ms::Picture current = picture(kSide, kSide, 0, [&](int plane, int x, int y) -> int {
      const int left = 40 + x + (v.x >> 1), top = 40 + y + (v.y >> 1);
      const auto at = [&](int column, int row) { return texture(plane, 2 * (left + column), 2 * (top + row)); };
      if (plane > 0) return 128;
      return (at(0, 0) + at(v.x & 1, 0) + at(0, v.y & 1) + at(v.x & 1, v.y & 1) + 2) >> 2;
    });
    const ms::Field field = ms::estimate(current, reference, Method::kFull, kRange);
    each_inside(field, kSide, kSide, [&](const ms::Macroblock& mb, int column, int row) {
      EXPECT_EQ(mb.vectors, (std::array{v, v, v, v})) << column << ' ' << row;
    });
    const ms::Picture prediction = ms::predict(field, reference);
    for (int y = 16; y < 80; ++y) {
      for (int x = 16; x < 80; ++x)
        ASSERT_EQ(*prediction.plane(0).at(x, y), *current.plane(0).at(x, y)) << x << ' ' << y;
    }
  }
}

TEST(MotionSearch, SplitsWhereTheQuartersPart) {
  constexpr int kSide = 112;
  const ms::Picture reference = view(kSide, kSide, ms::margin_for(kRange), 300, 200);
  // The left half of a macroblock moves by two samples, the right half by one to the other side.
  const ms::Picture current = picture(kSide, kSide, 0, [&](int plane, int x, int y) -> int {
    if (plane > 0) return 128;
    const Mox8u* r = reference.plane(0).at(x, y);
    return x % 16 < 8 ? r[-2] : r[1];
  });
  const ms::Field field = ms::estimate(current, reference, Method::kFull, 4);
  each_inside(field, kSide, kSide, [](const ms::Macroblock& mb, int column, int row) {
    EXPECT_TRUE(mb.split) << column << ' ' << row;
    EXPECT_EQ(mb.vectors, (std::array<Vector, 4>{{{-4, 0}, {2, 0}, {-4, 0}, {2, 0}}})) << column << ' ' << row;
  });
  // In chroma that is one sample, and half a sample.
  const ms::Picture prediction = ms::predict(field, reference);
  for (int y = 8; y < 40; ++y) {
    for (int x = 8; x < 40; ++x) {
      ASSERT_EQ(*prediction.plane(0).at(2 * x, y), *current.plane(0).at(2 * x, y)) << x << ' ' << y;
      const Mox8u* r = reference.plane(1).at(x, y);
      ASSERT_EQ(*prediction.plane(1).at(x, y), x % 8 < 4 ? r[-1] : (r[0] + r[1] + 1) >> 1) << x << ' ' << y;
    }
  }
}

TEST(MotionSearch, FullSearchIsTheBest) {
  Random random;
  // Odd sizes, and a range that leads far outside.
  for (const auto& [width, height] : {std::pair{1, 1}, {17, 33}, {95, 49}}) {
    std::vector<Mox8u> rough(4096);
    random.fill(std::span(rough));
    const auto grain = [&](int shift) {
      return [&rough, shift](int plane, int x, int y) {
        return (3 * texture(plane, 2 * x + shift, 2 * y) +
                rough[static_cast<std::size_t>((x * 61 + y * 7 + shift) & 4095)]) /
                   4 &
               255;
      };
    };
    const ms::Picture reference = picture(width, height, ms::margin_for(64), grain(0));
    const ms::Picture current = picture(width, height, 0, grain(9));
    const ms::Field full = ms::estimate(current, reference, Method::kFull, 64);
    const ms::Field diamond = ms::estimate(current, reference, Method::kDiamond, 64);
    const ms::Field zero = ms::estimate(current, reference, Method::kZero, 64);
    ASSERT_EQ(full.macroblocks.size(), static_cast<std::size_t>((width + 15) / 16 * ((height + 15) / 16)));
    for (std::size_t i = 0; i < full.macroblocks.size(); ++i) {
      EXPECT_LE(full.macroblocks[i].sad, diamond.macroblocks[i].sad) << width << ' ' << i;
      EXPECT_LE(diamond.macroblocks[i].sad, zero.macroblocks[i].sad) << width << ' ' << i;
      EXPECT_EQ(zero.macroblocks[i].vectors, (std::array<Vector, 4>{})) << width << ' ' << i;
    }
  }
}

TEST(MotionSearch, DiamondFollowsASmoothPan) {
  constexpr int kSide = 112;
  const ms::Picture reference = view(kSide, kSide, ms::margin_for(kRange), 40, 40);
  const ms::Picture current = view(kSide, kSide, 0, 47, 36);
  const ms::Field field = ms::estimate(current, reference, Method::kDiamond, kRange);
  int right = 0, inside = 0;
  each_inside(field, kSide, kSide, [&](const ms::Macroblock& mb, int, int) {
    right += mb.found == Vector{14, -8}, ++inside;
  });
  EXPECT_EQ(right, inside);
  EXPECT_GT(ms::psnr(current, ms::predict(field, reference), 0), 25);
}

TEST(MotionSearch, DiamondWalksAllTheWay) {
  // One hill, found without a hint. The search goes no further than its range.
  const auto hill = [](int margin, int x0, int y0) {
    return picture(96, 96, margin, [=](int, int x, int y) {
      return static_cast<int>(250 * std::exp(-(std::pow(x + x0 - 48, 2) + std::pow(y + y0 - 48, 2)) / 500));
    });
  };
  const ms::Picture reference = hill(ms::margin_for(kRange), 0, 0), current = hill(0, 11, -9);
  const ms::Target target{current.plane(0).at(32, 48), current.plane(0).step(), reference.plane(0).at(32, 48),
                          reference.plane(0).step()};
  EXPECT_EQ(ms::diamond_search(target, kRange, {}).vector, ms::whole(11, -9));
  EXPECT_EQ(ms::diamond_search(target, kRange, {}).sad, 0);
  const Vector near = ms::diamond_search(target, 8, {}).vector;
  EXPECT_TRUE(near.x <= 14 && near.y >= -16) << near.x << ' ' << near.y;
}

TEST(MotionSearch, MarginsRepeatTheEdge) {
  // 33 x 9 shown, 48 x 16 stored, 20 around.
  const ms::Picture made = picture(33, 9, 20, [](int plane, int x, int y) { return plane * 40 + x * 3 + y; });
  for (int y = -20; y < 36; ++y) {
    for (int x = -20; x < 68; ++x) {
      ASSERT_EQ(*made.plane(0).at(x, y), std::clamp(x, 0, 32) * 3 + std::clamp(y, 0, 8)) << x << ' ' << y;
    }
  }
  for (int y = -20; y < 28; ++y) {
    for (int x = -20; x < 44; ++x) {
      ASSERT_EQ(*made.plane(2).at(x, y), 80 + std::clamp(x, 0, 16) * 3 + std::clamp(y, 0, 4)) << x << ' ' << y;
    }
  }
}

TEST(MotionSearch, FiguresOfAField) {
  ms::Field field{2, 2, std::vector<ms::Macroblock>(4), 0};
  field.macroblocks[1].vectors.fill({6, 8});  // length 5
  field.macroblocks[2] = {{}, 10, true, {{{1, 0}, {0, 1}, {-3, 0}, {-1, -1}}}, true};
  const ms::FieldStatistics s = ms::statistics_of(field);
  EXPECT_EQ(s.macroblocks, 4);
  EXPECT_EQ(s.still, 2);
  EXPECT_EQ(s.split, 1);
  EXPECT_EQ(s.useless, 1);
  EXPECT_EQ(s.sad, 10);
  EXPECT_EQ(s.positions, (std::array{12, 1, 2, 1}));
  EXPECT_NEAR(s.mean_length, (4 * 5 + 0.5 + 0.5 + 1.5 + std::sqrt(0.5)) / 16, 1e-9);
  const ms::Picture a = picture(33, 9, 0, [](int, int, int) { return 100; });
  const ms::Picture b = picture(33, 9, 0, [](int plane, int x, int) { return plane == 0 && x == 32 ? 133 : 100; });
  EXPECT_NEAR(ms::psnr(a, b, 0), 10 * std::log10(255.0 * 255 / 33), 1e-9);
  EXPECT_TRUE(std::isinf(ms::psnr(a, b, 1)));
}

const std::string kProgram = "'" MOXVC_BIN_DIR "/motion_search' ";

/// Files of one test, removed at the end.
class MotionSearchProgram : public testing::Test {
 protected:
  MotionSearchProgram() : folder_(testing::TempDir() + "motion_search" + std::to_string(getpid())) {
    std::filesystem::create_directory(folder_);
  }
  ~MotionSearchProgram() override { std::filesystem::remove_all(folder_); }
  std::string path(const std::string& name) const { return folder_ + "/" + name; }
  std::string file(const std::string& name, const std::string& bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
    return path(name);
  }

 private:
  std::string folder_;
};

/// Pictures that move two samples to the left in each frame.
std::string y4m(const std::string& header, int width, int height, int frames) {
  std::string bytes = "YUV4MPEG2 " + header + "\n";
  for (int i = 0; i < frames; ++i) {
    const ms::Picture seen = view(width, height, 0, 40 + 2 * i, 40);
    bytes += "FRAME Ip\n";
    for (int plane = 0; plane < 3; ++plane) {
      for (int y = 0; y < seen.plane_height(plane); ++y) {
        bytes.append(reinterpret_cast<const char*>(seen.plane(plane).at(0, y)),
                     static_cast<std::size_t>(seen.plane_width(plane)));
      }
    }
  }
  return bytes;
}

TEST_F(MotionSearchProgram, ReportsAndDraws) {
  const std::string input = file("pan.y4m", y4m("W97 H65 F25:1 Ip C420jpeg XTEST=1", 97, 65, 4));
  const std::string png = path("field.png");
  const Ran ran = run(kProgram + input + " --reference 1 --current 3 --range 8 -o " + png);
  EXPECT_EQ(ran.code, 0) << ran.err;
  EXPECT_EQ(ran.err, "");
  EXPECT_NE(ran.out.find("frame 3 from frame 1, 97x65, vectors of -8 to 7 samples"), std::string::npos) << ran.out;
  for (const char* part : {"full search\n", "diamond search\n", "no motion\n", "macroblocks     35: "}) {
    EXPECT_NE(ran.out.find(part), std::string::npos) << part << ran.out;
  }
  const Stream drawn = read_file(png);
  ASSERT_GT(drawn.size(), 24u);
  EXPECT_EQ(std::string(&drawn[1], &drawn[4]), "PNG");
  EXPECT_EQ(drawn[18] * 256 + drawn[19], 97 * 7);  // enlarged to 640 columns or more
  EXPECT_EQ(drawn[22] * 256 + drawn[23], 65 * 7);
  const Ran same = run(kProgram + input + " --current 0");
  EXPECT_NE(same.out.find("Y inf dB, U inf dB, V inf dB"), std::string::npos) << same.out;
  const Ran stream = run(kProgram + vector_path("h264_tiny_i.264"));
  EXPECT_EQ(stream.code, 0) << stream.err;
  EXPECT_NE(stream.out.find("64x64"), std::string::npos) << stream.out;
  EXPECT_EQ(run(kProgram + "--help").code, 0);
}

TEST_F(MotionSearchProgram, ErrorsAreOneLineAndACode) {
  const std::string good = y4m("W16 H16", 16, 16, 2);
  const std::string pan = file("good.y4m", good), cut = file("cut.y4m", good.substr(0, good.size() - 1)),
                    wide = file("wide.y4m", "YUV4MPEG2 W16 H16 C422\n"), none = file("none.y4m", "YUV4MPEG2 W16\n"),
                    huge = file("huge.y4m", "YUV4MPEG2 W99999 H16\n"), open = file("open.y4m", "YUV4MPEG2 W16 H16"),
                    junk = file("junk.y4m", "YUV4MPEG2 W16 H16\nFRAMX\n"), noise = file("noise.bin", "noise");
  struct Case {
    std::string arguments;
    int code;
    std::string message;
  };
  for (const Case& c : {
           Case{"", 2, "no input (try motion_search --help)"},
           Case{pan + " --range", 2, "--range takes a value (try motion_search --help)"},
           Case{pan + " --range 6", 2, "--range takes a multiple of 4 from 4 to 128 (try motion_search --help)"},
           Case{pan + " --range 132", 2, "--range takes a multiple of 4 from 4 to 128 (try motion_search --help)"},
           Case{pan + " --current -1", 2, "--current takes a number from 0 to 1000000 (try motion_search --help)"},
           Case{pan + " --reference 1x", 2, "--reference takes a number from 0 to 1000000 (try motion_search --help)"},
           Case{pan + " --slow", 2, "unknown argument --slow (try motion_search --help)"},
           Case{pan + " -o field.gif", 2, "the output must end in .png (try motion_search --help)"},
           Case{"no/such/file", 1, "no/such/file: No such file or directory"},
           Case{"/", 1, "/: Is a directory"},
           Case{pan + " --current 2", 1, pan + ": there is no frame 2"},
           Case{pan + " -o no/such/field.png", 1, "no/such/field.png: No such file or directory"},
           Case{cut, 1, cut + ": Y4M: frame 1 is cut off"},
           Case{junk, 1, junk + ": Y4M: frame 0 has no header"},
           Case{open, 1, open + ": Y4M: a header line has no end"},
           Case{none, 1, none + ": Y4M header: no width or no height"},
           Case{huge, 1, huge + ": Y4M header: sides must be 1 to 16384 samples"},
           Case{wide, 1, wide + ": Y4M header: only 8-bit 4:2:0 is supported, not C422"},
           Case{noise, 1, noise + ": not a stream of a known kind"},
       }) {
    const Ran ran = run(kProgram + c.arguments);
    EXPECT_EQ(ran.code, c.code) << c.arguments;
    EXPECT_EQ(ran.err, "motion_search: " + c.message + "\n") << c.arguments;
  }
}

}  // namespace
}  // namespace mox::test
