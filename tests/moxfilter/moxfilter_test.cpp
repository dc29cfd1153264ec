/// The filter program: its results, its figures, what it makes of a clip to measure with, its messages.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <functional>
#include <string>

#include "moxdec/decoding.hpp"
#include "moxfilter/filter.hpp"

namespace mox::test {
namespace {

using moxfilter::Kind;
using Picture = std::function<int(int frame, int plane, int x, int y)>;

/// A soft texture that moves by two luma samples to the right and one down a picture, on a still background.
int moving(int frame, int plane, int x, int y) {
  const double scale = plane == 0 ? 1 : 2, px = scale * x - 2 * frame, py = scale * y - frame;
  const bool still = scale * x < 24;
  const double wave = still ? std::sin(scale * x / 5) : std::sin(px / 7 + py / 5) + std::cos(py / 4 - px / 11) / 2;
  return static_cast<int>(128 + (70 - 10 * plane) * wave);
}

struct Size {
  int width, height;
  int columns(int plane) const { return plane == 0 ? width : (width + 1) / 2; }
  int rows(int plane) const { return plane == 0 ? height : (height + 1) / 2; }
  std::size_t samples(int plane) const { return static_cast<std::size_t>(columns(plane) * rows(plane)); }
  std::size_t bytes() const { return samples(0) + 2 * samples(1); }
};

/// Raw planes of pictures.
std::string planes(Size size, int first, int frames, const Picture& picture) {
  std::string bytes;
  for (int i = first; i < first + frames; ++i) {
    for (int plane = 0; plane < 3; ++plane) {
      for (int y = 0; y < size.rows(plane); ++y) {
        for (int x = 0; x < size.columns(plane); ++x) bytes += static_cast<char>(picture(i, plane, x, y));
      }
    }
  }
  return bytes;
}
std::string y4m(Size size, int frames, const Picture& picture) {
  std::string bytes = "YUV4MPEG2 W" + std::to_string(size.width) + " H" + std::to_string(size.height) + " F50:1\n";
  for (int i = 0; i < frames; ++i) bytes += "FRAME\n" + planes(size, i, 1, picture);
  return bytes;
}

const std::string kProgram = "'" MOXVC_BIN_DIR "/moxfilter' ";

/// Files of one test, removed at the end.
class Moxfilter : public testing::Test {
 protected:
  Moxfilter() : folder_(testing::TempDir() + "moxfilter" + std::to_string(getpid())) {
    std::filesystem::create_directory(folder_);
  }
  ~Moxfilter() override { std::filesystem::remove_all(folder_); }
  std::string path(const std::string& name) const { return folder_ + "/" + name; }
  std::string file(const std::string& name, const std::string& bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
    return path(name);
  }
  /// What comes out as raw planes.
  std::string filtered(const std::string& arguments) const {
    const Ran ran = run(kProgram + arguments + " --quiet -o " + path("out.yuv"));
    EXPECT_EQ(ran.code, 0) << arguments << ran.err;
    EXPECT_EQ(ran.out + ran.err, "") << arguments;
    const Stream bytes = read_file(path("out.yuv"));
    return {bytes.begin(), bytes.end()};
  }
  /// PSNR of luma, U and V before, then after.
  std::vector<double> figures(const std::string& arguments) const {
    const Ran ran = run(kProgram + arguments);
    EXPECT_EQ(ran.code, 0) << arguments << ran.err;
    std::vector<double> figures(6);
    const auto at = ran.out.find("  before ");
    const int read =
        at == std::string::npos
            ? 0
            : std::sscanf(&ran.out[at], " before Y %lf dB, U %lf dB, V %lf dB after Y %lf dB, U %lf dB, V %lf",
                          &figures[0], &figures[1], &figures[2], &figures[3], &figures[4], &figures[5]);
    EXPECT_EQ(read, 6) << arguments << ran.out;
    return figures;
  }

 private:
  std::string folder_;
};

/// Plane by plane through the library: call(pictures, step, last result, result, size), all planes closely packed.
template <class Call>
std::string by_library(Size size, int frames, const std::string& clip, Call call) {
  std::string out(clip.size(), '\0');
  const auto bytes = [](const std::string& s) { return reinterpret_cast<const Mox8u*>(s.data()); };
  for (int i = 0; i < frames; ++i) {
    std::size_t place = 0;
    for (int plane = 0; plane < 3; ++plane) {
      const auto at = [&](int frame) {
        return static_cast<std::size_t>(std::clamp(frame, 0, frames - 1)) * size.bytes() + place;
      };
      const auto source = [&](int offset) { return bytes(clip) + at(i + offset); };
      const Mox8u* last = i == 0 ? source(0) : bytes(out) + at(i - 1);
      EXPECT_EQ(call(source, size.columns(plane), last, reinterpret_cast<Mox8u*>(&out[at(i)]),
                     MoxiSize{size.columns(plane), size.rows(plane)}),
                moxStsOk);
      place += size.samples(plane);
    }
  }
  return out;
}

/// Tells the first difference and the lengths, not all the samples.
testing::AssertionResult same(const std::string& a, const std::string& b) {
  const auto [at, other] = std::ranges::mismatch(a, b);
  if (at == a.end() && other == b.end()) return testing::AssertionSuccess();
  return testing::AssertionFailure() << "differ at " << at - a.begin() << " of " << a.size() << " and " << b.size();
}

TEST_F(Moxfilter, DeinterlacersGiveWhatTheLibraryGives) {
  constexpr Size kSize{37, 28};
  constexpr int kFrames = 9;
  // Still for three pictures at a time, so that each of those around has its say.
  const auto jerky = [](int frame, int plane, int x, int y) { return moving(frame / 3, plane, x, y); };
  const std::string input = file("in.y4m", y4m(kSize, kFrames, jerky)), raw = planes(kSize, 0, kFrames, jerky);
  Mox32s motion[2] = {3, 90};
  double weights[2] = {0.1, 0.9};
  MoxiDeinterlaceBlendState* state = nullptr;
  ASSERT_EQ(moxiDeinterlaceBlendInitAlloc_8u_C1({37, 28}, motion, weights, &state), moxStsOk);
  for (int i = 0; i < 4; ++i) {
    const int first = i % 2, kept = i / 2, before = kept == first ? 1 : 2;
    const std::string fields =
        std::string(" --first ") + (first ? "bottom" : "top") + " --keep " + (kept ? "bottom" : "top");
    const auto adaptive = [&](auto source, int step, const Mox8u*, Mox8u* out, MoxiSize size) {
      const Mox8u* four[4] = {source(-before), source(1 - before), source(2 - before), source(3 - before)};
      return moxiDeinterlaceMotionAdaptive_8u_C1(four, step, out, step, size, 7, first, kept, 1, 1);
    };
    EXPECT_TRUE(same(filtered(input + " --filter motion --threshold 7 --protect 1" + fields),
                     by_library(kSize, kFrames, raw, adaptive)))
        << fields;
    const auto blend = [&](auto source, int step, const Mox8u*, Mox8u* out, MoxiSize size) {
      const Mox8u* three[3] = {source(-1), source(0), source(1)};
      return moxiDeinterlaceBlend_8u_C1(three, step, out, step, size, first, kept, 1, state);
    };
    EXPECT_TRUE(same(
        filtered(input + " --filter blend --motion-low 3 --motion-high 90 --weight-low 10 --weight-high 90" + fields),
        by_library(kSize, kFrames, raw, blend)))
        << fields;
  }
  EXPECT_EQ(moxiDeinterlaceBlendFree_8u_C1(state), moxStsOk);
  // Every row of an odd number lies between two others, here their mean but for the outermost columns.
  const auto ramp = [](int, int, int, int y) { return 10 * y; };
  const auto interpolated = [](int, int plane, int x, int y) {
    const bool outermost = x == 0 || x == (plane == 0 ? 11 : 5);
    return 10 * (outermost ? y / 2 * 2 : y);
  };
  EXPECT_TRUE(
      same(filtered(file("ramp.y4m", y4m({12, 9}, 2, ramp)) + " --filter edge"), planes({12, 9}, 0, 2, interpolated)));
}

TEST_F(Moxfilter, DenoisersGiveWhatTheLibraryGives) {
  constexpr Size kSize{37, 27};
  constexpr int kFrames = 4;
  const std::string input = file("in.y4m", y4m(kSize, kFrames, moving)), raw = planes(kSize, 0, kFrames, moving);
  MoxiDenoiseAdaptiveState* state = nullptr;
  ASSERT_EQ(moxiFilterDenoiseAdaptiveInitAlloc_8u_C1(&state, {37, 27}, {2, 3}), moxStsOk);
  const auto adaptive = [&](auto source, int step, const Mox8u*, Mox8u* out, MoxiSize size) {
    const Mox8u* three[3] = {source(-1), source(0), source(1)};
    return moxiFilterDenoiseAdaptive_8u_C1R(three, step, out, step, size, {2, 3}, {0, 0}, size, 30, 1, state);
  };
  EXPECT_TRUE(same(filtered(input + " --filter adaptive --mask-width 2 --mask-height 3 --threshold 30 --temporal 1"),
                   by_library(kSize, kFrames, raw, adaptive)));
  EXPECT_EQ(moxiFilterDenoiseAdaptiveFree_8u_C1(state), moxStsOk);
  MoxiDenoiseCASTState context;
  ASSERT_EQ(moxiFilterDenoiseCASTInit(&context, 9, 11, 13), moxStsOk);
  const auto cast = [&](auto source, int step, const Mox8u* last, Mox8u* out, MoxiSize size) {
    return moxiFilterDenoiseCAST_8u_C1R(source(0), step, last, step, out, step, size, &context);
  };
  EXPECT_TRUE(same(filtered(input + " --filter cast --noise-level 9 --spatial 11 --temporal 13"),
                   by_library(kSize, kFrames, raw, cast)));
}

TEST_F(Moxfilter, DeinterlacersComeNearTheOriginal) {
  const std::map<std::string_view, double> bars = {
      {"edge", 39.5}, {"triangle", 27.5}, {"median", 30.5}, {"motion", 35}, {"blend", 35}};
  for (const Size size : {Size{96, 64}, Size{65, 53}}) {
    const std::string input = file("in.y4m", y4m(size, 13, moving));
    for (const moxfilter::Filter& filter : moxfilter::deinterlacers()) {
      for (const int bottom : {0, 1}) {
        const std::string name(filter.name), field = bottom ? "bottom" : "top";
        const std::string arguments = input + " --interlace --filter " + name + " --keep " + field;
        SCOPED_TRACE(arguments);
        const auto psnr = figures(arguments);
        EXPECT_GT(psnr[3], bars.at(filter.name)) << psnr[0];
        for (const std::size_t plane : {0u, 1u, 2u}) EXPECT_GT(psnr[3 + plane], psnr[plane] + 0.5);
        if (name == "triangle") continue;
        // Six pictures; the rows of the field that stays are those of the original.
        const std::string out = filtered(arguments), all = planes(size, 0, 12, moving);
        ASSERT_EQ(out.size(), 6 * size.bytes());
        const auto columns = static_cast<std::size_t>(size.width);
        for (std::size_t i = 0; i < 6; ++i) {
          for (auto y = static_cast<std::size_t>(bottom); y < static_cast<std::size_t>(size.height); y += 2) {
            const std::size_t original = 2 * i + static_cast<std::size_t>(bottom);
            ASSERT_EQ(out.substr(i * size.bytes() + y * columns, columns),
                      all.substr(original * size.bytes() + y * columns, columns))
                << i << ' ' << y;
          }
        }
      }
    }
  }
}

TEST_F(Moxfilter, DenoisersTakeNoiseAway) {
  constexpr Size kSize{96, 64};
  const auto soft = [](int frame, int plane, int x, int y) {
    return static_cast<int>(128 + 50 * std::sin((x + frame) / 20.0 + plane) + 30 * std::cos(y / 15.0));
  };
  const std::string input = file("in.y4m", y4m(kSize, 6, soft));
  for (const char* filter : {"adaptive", "smooth", "cast"}) {
    const auto psnr = figures(input + " --noise 8 --filter " + filter);
    EXPECT_NEAR(psnr[0], 20 * std::log10(255.0 / 8), 0.2) << filter;
    for (const std::size_t plane : {0u, 1u, 2u}) EXPECT_GT(psnr[3 + plane], psnr[plane] + 0.5) << filter << plane;
  }
  // Ringing beside edges, which lie in the middle of blocks.
  const auto edge = [](int, int, int x, int) { return (x + 4) % 16 < 8 ? 40 : 200; };
  const auto ringing = [&](int frame, int plane, int x, int y) {
    const bool beside = x % 8 == 3 || x % 8 == 4;
    return edge(frame, plane, x, y) + (beside ? 0 : x % 2 * 12 - 6);
  };
  const auto psnr = figures(file("ringing.y4m", y4m(kSize, 2, ringing)) + " --filter mosquito --original " +
                            file("edge.y4m", y4m(kSize, 2, edge)));
  EXPECT_GT(psnr[3], psnr[0] + 1);
}

TEST_F(Moxfilter, MakesClipsToMeasureWith) {
  constexpr Size kSize{18, 7};
  // A filter that changes nothing shows what it was given.
  const auto shade = [](int frame, int plane, int, int) { return 60 * plane + 10 * frame; };
  const std::string shades = file("in.y4m", y4m(kSize, 5, shade));
  for (const int bottom : {0, 1}) {
    const auto woven = [&](int frame, int plane, int x, int y) {
      return shade(2 * frame + (y + bottom) % 2, plane, x, y);
    };
    EXPECT_EQ(filtered(shades + " --interlace --filter triangle --centre 256 --first " + (bottom ? "bottom" : "top")),
              planes(kSize, 0, 2, woven));
  }
  // Two rows of five are of a picture that differs by 10; the last of five pictures has no other.
  const auto psnr = figures(file("five.y4m", y4m({4, 10}, 5, shade)) + " --interlace --filter triangle --centre 256");
  EXPECT_NEAR(psnr[0], 10 * std::log10(255.0 * 255 / 50), 0.005);
  EXPECT_NEAR(psnr[1], 10 * std::log10(255.0 * 255 / 40), 0.005);

  const std::string grey = file("grey.y4m", y4m({64, 64}, 4, [](int, int, int, int) { return 128; }));
  const std::string same = " --filter cast --spatial 0 --temporal 0 --noise 10";
  const std::string noisy = filtered(grey + same);
  EXPECT_EQ(filtered(grey + same), noisy);
  EXPECT_NE(filtered(grey + same + " --seed 2"), noisy);
  double sum = 0, squares = 0;
  for (const char sample : noisy) {
    const double noise = static_cast<Mox8u>(sample) - 128;
    sum += noise, squares += noise * noise;
  }
  const auto count = static_cast<double>(noisy.size());  // 24576: the mean deviates by 0.06, the deviation by 0.045
  EXPECT_NEAR(sum / count, 0, 0.3);
  EXPECT_NEAR(std::sqrt(squares / count), 10, 0.25);
}

TEST_F(Moxfilter, DrawsAndWrites) {
  const auto shade = [](int frame, int, int, int) { return 16 + 50 * frame; };
  const std::string input = file("in.y4m", y4m({100, 50}, 4, shade)), png = path("out.png");
  for (const auto& [more, pictures] : {std::pair{"", 2}, {" --interlace --picture 9", 3}}) {
    ASSERT_EQ(run(kProgram + input + " --filter edge -o " + png + more).code, 0);
    const Stream drawn = read_file(png);
    ASSERT_GT(drawn.size(), 24u);
    EXPECT_EQ(std::string(&drawn[1], &drawn[4]), "PNG");
    EXPECT_EQ(drawn[18] * 256 + drawn[19], 4 + pictures * (4 * 100 + 4));  // enlarged to 320 columns or more
    EXPECT_EQ(drawn[22] * 256 + drawn[23], 4 + 4 * 50 + 4);
  }
  ASSERT_EQ(run(kProgram + input + " --filter edge --interlace -o " + path("out.y4m")).code, 0);
  const Stream written = read_file(path("out.y4m"));
  EXPECT_TRUE(std::string(written.begin(), written.end()).starts_with("YUV4MPEG2 W100 H50 F25:1 Ip A0:0 C420mpeg2\n"));
  const Ran stream = run(kProgram + vector_path("h264_tiny_i.264") + " --filter smooth --frames 1");
  EXPECT_NE(stream.out.find("smooth, 64x64, 1 picture, "), std::string::npos) << stream.out << stream.err;
  const Ran help = run(kProgram + "--help");
  for (const auto& table : {moxfilter::deinterlacers(), moxfilter::denoisers()}) {
    for (const auto& filter : table)
      EXPECT_NE(help.out.find("\n  " + std::string(filter.name) + " "), std::string::npos);
  }
}

TEST_F(Moxfilter, ErrorsAreOneLineAndACode) {
  const auto clip = [&](const char* name, Size size, int frames) { return file(name, y4m(size, frames, moving)); };
  const std::string good = clip("good.y4m", {16, 16}, 3), one = clip("one.y4m", {16, 16}, 1),
                    tiny = clip("tiny.y4m", {4, 4}, 3), line = clip("line.y4m", {9, 2}, 3),
                    none = clip("none.y4m", {16, 16}, 0),
                    cut = file("cut.y4m", y4m({16, 16}, 3, moving).substr(0, 999)), junk = file("junk.bin", "junk");
  const std::string hint = " (try moxfilter --help)",
                    to_many = "--interlace, --noise and --original exclude each other";
  struct Case {
    std::string arguments;
    int code;
    std::string message;
  };
  for (const Case& c : {
           Case{"", 2, "no input" + hint},
           Case{good, 2, "no filter: --filter is missing" + hint},
           Case{good + " --filter sharpen", 2, "there is no filter sharpen" + hint},
           Case{good + " --threshold 3 --filter median", 2, "--threshold must follow --filter" + hint},
           Case{good + " --filter edge --threshold 3", 2, "--threshold is no option of edge" + hint},
           Case{good + " --filter median --threshold 257", 2, "--threshold takes a number from 0 to 256" + hint},
           Case{good + " --filter mosquito --edge 9 --flat 10", 2, "--flat takes at most the value of --edge" + hint},
           Case{good + " --filter edge --keep upper", 2, "--keep takes top or bottom" + hint},
           Case{good + " --filter edge --sharp", 2, "unknown argument --sharp" + hint},
           Case{good + " --filter smooth --interlace", 2,
                "--interlace, --first and --keep are for deinterlacers" + hint},
           Case{good + " --filter edge --interlace --noise 3", 2, to_many + hint},
           Case{"no/such/file --filter edge", 1, "no/such/file: No such file or directory"},
           Case{junk + " --filter edge", 1, junk + ": not a stream of a known kind"},
           Case{cut + " --filter edge", 1, cut + ": Y4M: frame 2 is cut off"},
           Case{none + " --filter edge", 1, none + ": there are no pictures"},
           Case{one + " --filter edge --interlace", 1, one + ": there are no two pictures to weave"},
           Case{good + " --filter cast --original " + one, 1,
                good + ": the original has fewer pictures or another format"},
           Case{good + " --filter cast --original " + tiny, 1,
                good + ": the original has fewer pictures or another format"},
           Case{good + " --filter cast -o no/such/out.png", 1, "no/such/out.png: No such file or directory"},
           Case{tiny + " --filter blend", 1,
                tiny + ": blend cannot filter a plane of 2x2 samples: the size is not one it takes"},
           Case{line + " --filter smooth", 1, line + ": smooth cannot filter a plane of 9x2 samples: it is too small"},
           Case{line + " --filter edge", 1,
                line + ": edge cannot filter a plane of 5x1 samples: the size is not one it takes"},
       }) {
    const Ran ran = run(kProgram + c.arguments);
    EXPECT_EQ(ran.code, c.code) << c.arguments;
    EXPECT_EQ(ran.err, "moxfilter: " + c.message + "\n") << c.arguments;
    EXPECT_EQ(ran.out, "") << c.arguments;
  }
}

}  // namespace
}  // namespace mox::test
