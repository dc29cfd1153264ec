/// What the encoder writes, decoded: the decoder must give the encoder's own reconstruction, which must be near the
/// source and cost what such pictures may cost.
#include <gtest/gtest.h>

#include <cmath>
#include <numeric>

#include "moxdec/h264/cavlc.hpp"
#include "moxenc/cavlc.hpp"
#include "moxenc/clips.hpp"
#include "moxenc/encoder.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

using moxenc::Settings;

struct Clip {
  const char* name;
  int width, height, frames;
  Formula formula;
};

struct Encoded {
  std::vector<std::size_t> sizes;  ///< bytes of each frame
  double psnr;                     ///< of all samples
  std::size_t bytes() const { return std::accumulate(sizes.begin(), sizes.end(), std::size_t{0}); }
};

/// Encodes a clip, and decodes it with the example decoder.
Encoded encode(const Clip& clip, const Settings& settings) {
  Encoded encoded{{}, 0};
  moxenc::Encoder encoder({clip.width, clip.height}, {25, 1}, settings);
  Stream stream;
  std::vector<Stream> expected;
  double squares = 0, samples = 0;
  for (int i = 0; i < clip.frames; ++i) {
    const auto source = make_frame(clip.width, clip.height, i, clip.formula);
    const auto& units = encoder.encode(*source);
    stream.insert(stream.end(), units.begin(), units.end());
    encoded.sizes.push_back(units.size());
    expected.push_back(raw_planes(encoder.reconstruction()));
    const Stream wanted = raw_planes(*source);
    for (std::size_t k = 0; k < wanted.size(); ++k) squares += std::pow(wanted[k] - expected.back()[k], 2);
    samples += static_cast<double>(wanted.size());
  }
  encoded.psnr = 10 * std::log10(255.0 * 255 * samples / std::max(squares, 1e-9));
  const Decoded decoded = decode_all(stream);
  EXPECT_EQ(decoded.error, "") << clip.name;
  EXPECT_EQ(decoded.frames.size(), expected.size()) << clip.name;
  for (std::size_t i = 0; i < std::min(expected.size(), decoded.frames.size()); ++i) {
    EXPECT_TRUE(raw_planes(*decoded.frames[i]) == expected[i]) << clip.name << " qp " << settings.qp << " frame " << i;
  }
  return encoded;
}

/// Of errors that are spread evenly over a step to either side, which is more than dead zones make, and of rounding.
double worst_psnr(int qp) {
  const double step = 0.625 * std::exp2(qp / 6.0);
  return 10 * std::log10(255 * 255 / (step * step / 3 + 1.0 / 12));
}

/// Of a frame: 3200 bits for each macroblock, one byte more for two against false start codes, and headers.
std::size_t most_bytes(const Clip& clip) {
  return static_cast<std::size_t>((clip.width + 15) / 16 * ((clip.height + 15) / 16)) * 600 + 60;
}

TEST(Encoder, DecodesToItsReconstruction) {
  const Clip clips[] = {{"noise", 48, 48, 3, formulas::noise}, {"flips", 64, 48, 3, formulas::flips},
                        {"steps", 64, 32, 2, formulas::steps}, {"tiny", 2, 2, 3, formulas::noise},
                        {"tall", 16, 80, 4, formulas::pan},    {"wide", 146, 20, 4, formulas::cuts},
                        {"pan", 98, 82, 6, formulas::pan},     {"cuts", 66, 50, 10, formulas::cuts}};
  for (const Clip& clip : clips) {
    for (const int qp : {0, 1, 4, 11, 17, 20, 27, 34, 42, 51}) {
      for (const int keyint : {1, 4}) {
        const Encoded encoded = encode(clip, {.qp = qp, .keyint = keyint});
        for (const std::size_t size : encoded.sizes) EXPECT_LE(size, most_bytes(clip)) << clip.name << " qp " << qp;
        EXPECT_GT(encoded.psnr, worst_psnr(qp)) << clip.name << " qp " << qp << " keyint " << keyint;
      }
    }
  }
}

/// A picture in which nothing moves costs a header and a run of skipped macroblocks.
TEST(Encoder, SkipsWhatStands) {
  const Encoded encoded = encode({"still", 96, 64, 5, formulas::still}, {.qp = 20, .keyint = 100});
  for (std::size_t i = 2; i < 5; ++i) EXPECT_LE(encoded.sizes[i], 14u) << i;
}

/// Motion by whole samples leaves only what comes in at the edges, that by quarters little more.
TEST(Encoder, FindsMotion) {
  for (const Clip& clip : {Clip{"pan", 160, 128, 4, formulas::pan}, Clip{"waves", 160, 128, 4, formulas::waves}}) {
    const Encoded moving = encode(clip, {.qp = 24, .keyint = 100}), standing = encode(clip, {.qp = 24, .keyint = 1});
    for (std::size_t i = 1; i < 4; ++i) EXPECT_LT(4 * moving.sizes[i], standing.sizes[i]) << clip.name << i;
  }
}

TEST(Encoder, KeepsTheBitrate) {
  for (const int kbits : {120, 300, 600}) {
    const Encoded encoded = encode({"cuts", 96, 80, 150, formulas::cuts}, {.kbits = kbits, .keyint = 30});
    const double got = 8e-3 * static_cast<double>(encoded.bytes()) / (150 / 25.0);
    EXPECT_NEAR(got, kbits, 0.1 * kbits);
  }
}

TEST(Encoder, TellsTheFormat) {
  const auto units = [](int width, int height, moxdec::FrameRate rate) {
    moxenc::Encoder encoder({width, height}, rate, {});
    return encoder.encode(*make_frame(width, height, 0, formulas::still));
  };
  const Stream stream = units(50, 36, {30000, 1001});
  const auto decoder = moxdec::find_codec(stream, "x.264").open(stream);
  const auto frame = decoder->next();
  EXPECT_EQ(frame->format(), (moxdec::FrameFormat{50, 36}));
  EXPECT_EQ(decoder->frame_rate().numerator * 1001ull, decoder->frame_rate().denominator * 30000ull);
  for (const auto& [width, height, fps, level] :
       {std::array{176, 144, 15, 10}, {352, 288, 30, 13}, {720, 576, 25, 30}, {1280, 720, 30, 31}, {16, 1024, 1, 21}}) {
    EXPECT_EQ(moxenc::level_of({width, height, {static_cast<std::uint32_t>(fps), 1}, 0}), level) << width;
  }
  EXPECT_THROW(units(17, 16, {}), std::runtime_error);
}

/// Blocks of all counts and of levels up to the limits, read by the decoder.
TEST(Cavlc, BlocksComeBack) {
  Random random;
  const moxdec::h264::CavlcTables tables;
  for (int round = 0; round < 4000; ++round) {
    const int first = random(0, 1), nc = random(0, 16), high = std::array{1, 2, 15, 40, 2063}[random(0, 4)];
    std::array<Mox16s, 16> levels{};
    int last = first, count = 0;
    for (int k = first; k < 16; ++k) {
      const int level = random.chance(round % 16 / 15.0) ? random(-high, high) : 0;
      levels[example::kZigzag4x4[k]] = static_cast<Mox16s>(level);
      if (level != 0) last = k, ++count;
    }
    moxenc::BitWriter bits;
    EXPECT_EQ(moxenc::write_block(bits, levels.data(), first, last, nc), count);
    const std::size_t size = bits.size();
    bits.finish();
    std::vector<Mox32u> words((bits.bytes().size() + 3) / 4 + moxdec::h264::BitReader::kPaddingWords, ~0u);
    for (std::size_t i = 0; i < bits.bytes().size(); ++i) {
      const int shift = 24 - 8 * static_cast<int>(i % 4);
      words[i / 4] = (words[i / 4] & ~(255u << shift)) | static_cast<Mox32u>(bits.bytes()[i]) << shift;
    }
    moxdec::h264::BitReader reader(words.data(), size);
    std::array<Mox16s, 16> read{};
    Mox16s* out = read.data();
    EXPECT_EQ(tables.read_block(reader, &out, nc, 16 - first, false), count);
    EXPECT_EQ(read, levels);
    EXPECT_EQ(reader.position(), size);
  }
}

}  // namespace
}  // namespace mox::test
