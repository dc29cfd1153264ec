/// The bundled streams through the program, with every generation and in every kind of output.
#include <png.h>

#include <algorithm>
#include <cmath>
#include <iostream>

#include "moxdec/contact_sheet.hpp"
#include "moxdec/decoding.hpp"
#include "support/library.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

std::string output_path(const std::string& name) { return testing::TempDir() + std::to_string(getpid()) + name; }

using Streams = PerGeneration;

TEST_P(Streams, DecodeToTheReference) {
  const std::string generation = GetParam();
  const std::string environment = "LD_LIBRARY_PATH='" MOXVC_LIB_DIR "/" + generation + ":" MOXVC_LIB_DIR "' ";
  const std::vector<Vector> vectors = manifest();
  ASSERT_GE(vectors.size(), 19u);
  for (const Vector& vector : vectors) {
    const Ran ran =
        run("{ " + environment + kMoxdec + vector_path(vector.file) + " -o - --quiet; echo $? >&2; } | md5sum");
    EXPECT_EQ(ran.err, "0\n") << vector.file;
    EXPECT_EQ(ran.out.substr(0, 32), vector.md5) << vector.file;
  }
}

MOX_INSTANTIATE_GENERATIONS(Streams);

TEST(Report, TellsSizeAndFrames) {
  for (const Vector& vector : manifest()) {
    const Ran ran = run(kMoxdec + vector_path(vector.file));
    const std::string size = std::to_string(vector.width) + "x" + std::to_string(vector.height);
    const std::string codec = vector.codec() + ", ";
    EXPECT_NE(ran.err.find(codec + size + ", " + std::to_string(vector.frames) + " frames, "), std::string::npos)
        << ran.err;
    EXPECT_EQ(ran.out, "");
  }
}

/// The slices of each picture in a random order give the same picture: prediction stays inside slices, and the filter
/// does not care.
class SliceOrder : public testing::TestWithParam<const char*> {};

TEST_P(SliceOrder, MayBeAny) {
  const auto stream = read_file(vector_path(GetParam()));
  const std::uint8_t start[] = {0, 0, 1};
  std::vector<Stream> units;
  for (auto at = std::search(stream.begin(), stream.end(), start, start + 3); at != stream.end();) {
    const auto end = std::search(at + 3, stream.end(), start, start + 3);
    units.emplace_back(at, end);
    at = end;
  }
  const auto is_slice = [](const Stream& unit) { return unit[3] % 32 == 1 || unit[3] % 32 == 5; };
  const auto begins_picture = [](const Stream& unit) { return unit[4] >= 128; };  // first macroblock 0
  Random random;
  int moved = 0;
  for (std::size_t first = 0; first < units.size(); ++first) {
    std::size_t end = first + 1;
    if (!is_slice(units[first])) continue;
    while (end < units.size() && is_slice(units[end]) && !begins_picture(units[end])) ++end;
    for (std::size_t i = end - 1; i > first; --i) {
      const auto other = static_cast<std::size_t>(random(static_cast<int>(first), static_cast<int>(i)));
      moved += other != i;
      std::swap(units[i], units[other]);
    }
    first = end - 1;
  }
  ASSERT_GT(moved, 5);
  Stream shuffled;
  for (const Stream& unit : units) shuffled.insert(shuffled.end(), unit.begin(), unit.end());

  const Decoded expected = decode_all(stream);
  for (const int threads : {1, 2, 3}) {
    expect_equal(decode_all(shuffled, References::kPlain, threads), expected, std::to_string(threads) + " threads");
  }
}

INSTANTIATE_TEST_SUITE_P(, SliceOrder, testing::Values("h264_i_slices_crop.264", "h264_base_p_multiref.264"));

/// Prediction from margins and prediction with samples repeated on demand, one thread and several are ways to the same
/// pictures.
TEST(OtherWays, GiveTheSameFrames) {
  for (const Vector& vector : manifest()) {
    if (!vector.is_h264()) continue;
    const Stream stream = read_file(vector_path(vector.file));
    const Decoded plain = decode_all(stream), expanded = decode_all(stream, References::kExpanded, 3);
    EXPECT_EQ(plain.error, "") << vector.file;
    for (const auto& frame : expanded.frames) EXPECT_GT(frame->layout().margin, 0);
    expect_equal(expanded, plain, vector.file + " expanded, 3 threads");
    expect_equal(decode_all(stream, References::kPlain, 2), plain, vector.file + " 2 threads");
  }
}

TEST(Y4m, IsTheRawPlanesWithHeaders) {
  const std::string path = output_path("out.y4m"), input = vector_path("h264_i_slices_crop.264");
  ASSERT_EQ(run(kMoxdec + input + " -o '" + path + "'").code, 0);
  const auto bytes = read_file(path);
  std::string expected = "YUV4MPEG2 W98 H76 F25:1 Ip A0:0 C420mpeg2\n";
  for (const auto& frame : decode_all(read_file(input)).frames) {
    const auto planes = raw_planes(*frame);
    expected += "FRAME\n";
    expected.append(planes.begin(), planes.end());
  }
  EXPECT_TRUE(std::ranges::equal(bytes, expected, {}, {}, [](char c) { return static_cast<std::uint8_t>(c); }));
  std::remove(path.c_str());
}

/// Formats that no bundled stream has: what is shown lies at an odd place of the coded size.
TEST(Y4m, OtherFormats) {
  struct Case {
    moxdec::FrameFormat format;
    const char* name;
    std::size_t bytes;
  };
  for (const Case& c :
       {Case{{6, 4, moxdec::Chroma::k422, 8}, "422", 48}, Case{{8, 2, moxdec::Chroma::k411, 8}, "411", 24},
        Case{{6, 4, moxdec::Chroma::k420, 10}, "420p10", 72}, Case{{7, 3, moxdec::Chroma::k422, 12}, "422p12", 90}}) {
    const moxdec::Frame frame(c.format, {32, 32, 8, 2, 16});
    std::vector<std::uint8_t> expected;
    for (int plane = 0; plane < 3; ++plane) {
      const int bytes = c.format.plane_width(plane) * c.format.sample_bytes();
      const int left = 8 * c.format.sample_bytes() >> (plane ? moxdec::chroma_shift_x(c.format.chroma) : 0);
      const int top = 2 >> (plane ? moxdec::chroma_shift_y(c.format.chroma) : 0);
      for (int y = 0; y < c.format.plane_height(plane); ++y) {
        auto* row = frame.samples<std::uint8_t>(plane) + (top + y) * frame.step(plane) + left;
        for (int x = 0; x < bytes; ++x) expected.push_back(row[x] = static_cast<std::uint8_t>(50 * plane + 10 * y + x));
      }
    }
    EXPECT_EQ(expected.size(), c.bytes);
    const std::string path = output_path("format.y4m");
    const auto writer = moxdec::open_writer(path);
    writer->write(frame, {30000, 1001});
    const moxdec::Frame other({2, 2, c.format.chroma, 8}, {16, 16, 0, 0, 0});
    EXPECT_THROW(writer->write(other, {}), moxdec::OutputError);
    writer->finish();
    const auto bytes = read_file(path);
    std::remove(path.c_str());
    const std::string size = " W" + std::to_string(c.format.width) + " H" + std::to_string(c.format.height);
    const std::string header = "YUV4MPEG2" + size + " F30000:1001 Ip A0:0 C" + c.name + "\nFRAME\n";
    EXPECT_EQ(std::string(bytes.begin(), bytes.begin() + std::min(std::ssize(header), std::ssize(bytes))), header);
    EXPECT_TRUE(std::equal(bytes.begin() + std::ssize(header), bytes.end(), expected.begin(), expected.end()))
        << c.name;
  }
}

struct Png {
  int width = 0, height = 0;
  std::vector<std::uint8_t> pixels;
  const std::uint8_t* at(int x, int y) const { return &pixels[static_cast<std::size_t>(3 * (y * width + x))]; }
};
Png read_png(const std::string& path) {
  png_image image{};
  image.version = PNG_IMAGE_VERSION;
  EXPECT_TRUE(png_image_begin_read_from_file(&image, path.c_str())) << image.message;
  image.format = PNG_FORMAT_RGB;
  Png png{static_cast<int>(image.width), static_cast<int>(image.height), {}};
  png.pixels.resize(PNG_IMAGE_SIZE(image));
  EXPECT_TRUE(png_image_finish_read(&image, nullptr, png.pixels.data(), 0, nullptr)) << image.message;
  std::remove(path.c_str());
  return png;
}

/// A pixel of a frame by the definition of BT.601, the mean of 2 x 2 pixels if `half`.
std::vector<double> expected_rgb(const moxdec::Frame& frame, int x, int y, bool half) {
  const auto sample = [&](int plane, int sx, int sy) {
    return static_cast<double>(std::to_integer<int>(frame.shown_row(plane, sy)[sx]));
  };
  const double luma = half ? (sample(0, 2 * x, 2 * y) + sample(0, 2 * x + 1, 2 * y) + sample(0, 2 * x, 2 * y + 1) +
                              sample(0, 2 * x + 1, 2 * y + 1)) /
                                 4
                           : sample(0, x, y);
  const double u = sample(1, half ? x : x / 2, half ? y : y / 2), v = sample(2, half ? x : x / 2, half ? y : y / 2);
  const double kr = 0.299, kb = 0.114, kg = 1 - kr - kb;
  const double l = (luma - 16) / 219, pb = (u - 128) / 224, pr = (v - 128) / 224;
  const double r = l + 2 * (1 - kr) * pr, b = l + 2 * (1 - kb) * pb, g = (l - kr * r - kb * b) / kg;
  return {std::clamp(255 * r, 0.0, 255.0), std::clamp(255 * g, 0.0, 255.0), std::clamp(255 * b, 0.0, 255.0)};
}

TEST(ContactSheet, ShowsTheFrames) {
  struct Case {
    const char* file;
    int columns, rows, width, height;
    bool half;
  };
  // Two pictures of 64x64 as they are; twelve of 352x288 at half their size.
  for (const Case& c :
       {Case{"h264_tiny_i.264", 2, 1, 64, 64, false}, Case{"h264_base_intra_filter.264", 4, 3, 176, 144, true}}) {
    const std::string path = output_path("out.png"), input = vector_path(c.file);
    ASSERT_EQ(run(kMoxdec + input + " -o '" + path + "'").code, 0);
    const Png png = read_png(path);
    ASSERT_EQ(png.width, c.columns * (c.width + 4) + 4);
    ASSERT_EQ(png.height, c.rows * (c.height + 4) + 4);
    const auto frames = decode_all(read_file(input)).frames;
    Random random;
    for (int i = 0; i < 200; ++i) {
      const int frame = random(0, static_cast<int>(frames.size()) - 1), x = random(0, c.width - 1),
                y = random(0, c.height - 1);
      const auto expected = expected_rgb(*frames[static_cast<std::size_t>(frame)], x, y, c.half);
      const std::uint8_t* pixel =
          png.at(4 + frame % c.columns * (c.width + 4) + x, 4 + frame / c.columns * (c.height + 4) + y);
      for (int channel = 0; channel < 3; ++channel) {
        EXPECT_NEAR(pixel[channel], expected[static_cast<std::size_t>(channel)], 1) << c.file << " frame " << frame;
      }
    }
  }
}

TEST(ContactSheet, DeepSamplesLookTheSame) {
  const moxdec::Frame shallow({8, 4, moxdec::Chroma::k422, 8}, {16, 16, 0, 0, 0});
  const moxdec::Frame deep({8, 4, moxdec::Chroma::k422, 10}, {16, 16, 0, 0, 0});
  Random random;
  for (int plane = 0; plane < 3; ++plane) {
    for (int i = 0; i < shallow.step(plane) * 4; ++i) {
      const int value = random(16, 235), x = i % shallow.step(plane), y = i / shallow.step(plane);
      shallow.samples<std::uint8_t>(plane)[i] = static_cast<std::uint8_t>(value);
      if (x < 16)
        deep.samples<std::uint16_t>(plane)[y * deep.step(plane) / 2 + x] = static_cast<std::uint16_t>(4 * value);
    }
  }
  for (const int scale : {1, 2}) {
    EXPECT_EQ(moxdec::small_copy(deep, scale).pixels, moxdec::small_copy(shallow, scale).pixels) << scale;
  }
}

TEST(ContactSheet, SpreadsManyFramesEvenly) {
  const std::string path = output_path("many.png");
  moxdec::ContactSheet sheet(path);
  const moxdec::FrameFormat format{4, 2, moxdec::Chroma::k420, 8};
  for (int i = 0; i < 200; ++i) {
    const moxdec::Frame frame(format, {16, 16, 0, 0, 0});
    for (int plane = 0; plane < 3; ++plane) {
      std::fill_n(frame.samples<std::uint8_t>(plane), frame.step(plane) * 2,
                  static_cast<std::uint8_t>(plane ? 128 : 16 + i));
    }
    sheet.write(frame, {});
  }
  sheet.finish();
  // Every 8th frame: 25 copies of 4x2 in five rows.
  const Png png = read_png(path);
  ASSERT_EQ(png.width, 5 * 8 + 4);
  ASSERT_EQ(png.height, 5 * 6 + 4);
  for (int i = 0; i < 25; ++i) {
    EXPECT_NEAR(png.at(4 + i % 5 * 8, 4 + i / 5 * 6)[0], 8 * i * 255.0 / 219, 1) << "copy " << i;
  }
}

}  // namespace
}  // namespace mox::test
