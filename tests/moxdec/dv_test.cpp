/// DV streams: where macroblocks go, frames made by hand in all formats, what is refused, and the library's packed
/// conversions against the planes of a real stream.
#include <functional>
#include <set>

#include "moxdec/decoding.hpp"
#include "moxdec/dv/placement.hpp"
#include "moxvc.h"
#include "oracle/dv_segment.hpp"

namespace mox::test {
namespace {

using moxdec::Chroma;
using moxdec::dv::Place;
using moxdec::dv::Shape;
using moxdec::dv::Shuffling;
using oracle::DvTestBlock;

/// A kind of stream: what its source pack and its header say, and what follows from them.
struct Kind {
  const char* name;
  int source, application, channels, sequences;
  Shuffling shuffling;
  moxdec::FrameFormat format;
  unsigned rate, per;
  bool eight() const { return source % 32 >= 16; }
};
const Kind kKinds[] = {
    {"DV25 525", 0xC0, 1, 1, 10, Shuffling::k411, {720, 480, Chroma::k411, 8}, 30000, 1001},
    {"DV25 625", 0xE0, 0, 1, 12, Shuffling::k420, {720, 576, Chroma::k420, 8}, 25, 1},
    {"DV25 625 4:1:1", 0xE0, 1, 1, 12, Shuffling::k411, {720, 576, Chroma::k411, 8}, 25, 1},
    {"DV50 525", 0xC4, 1, 2, 10, Shuffling::k422, {720, 480, Chroma::k422, 8}, 30000, 1001},
    {"DV50 625", 0xE4, 1, 2, 12, Shuffling::k422, {720, 576, Chroma::k422, 8}, 25, 1},
    {"1080i60", 0xD4, 1, 4, 10, Shuffling::k1080At60, {1280, 1080, Chroma::k422, 8}, 30000, 1001},
    {"1080i50", 0xF4, 1, 4, 12, Shuffling::k1080At50, {1440, 1080, Chroma::k422, 8}, 25, 1},
    {"720p60", 0xD8, 1, 2, 10, Shuffling::k720, {960, 720, Chroma::k422, 8}, 60000, 1001},
    {"720p50", 0xF8, 1, 2, 12, Shuffling::k720, {960, 720, Chroma::k422, 8}, 50, 1},
};

TEST(DvPlacement, CoversThePictureOnce) {
  for (const Kind& kind : kKinds) {
    std::set<std::pair<int, int>> blocks;
    int count = 0;
    for (int i = 0; i < kind.channels * kind.sequences * 135; ++i) {
      const int sequence = i / 135;
      const Place place = place_of(kind.shuffling, kind.sequences, sequence / kind.sequences, sequence % kind.sequences,
                                   i / 5 % 27, i % 5);
      const int wide = place.shape == Shape::kFourWide ? 4 : 2, high = place.shape == Shape::kSquare ? 2 : 1;
      for (int b = 0; place.used && b < wide * high; ++b, ++count) {
        blocks.emplace(place.x + b % wide * 8, place.y + b / wide * 8);
      }
    }
    EXPECT_EQ(count, kind.format.width * kind.format.height / 64) << kind.name;
    EXPECT_EQ(std::ssize(blocks), count) << kind.name;
    EXPECT_EQ(*blocks.begin(), (std::pair{0, 0})) << kind.name;
    EXPECT_EQ(*blocks.rbegin(), (std::pair{kind.format.width - 8, kind.format.height - 8})) << kind.name;
  }
}

/// Places where an independent encoder has put macroblocks; of 4:1:1 and 4:2:0 those of the standards' tables, too.
TEST(DvPlacement, IsThatOfOthers) {
  struct Case {
    int kind, channel, sequence, k, m, x, y;
  };
  for (const Case& c : {Case{0, 0, 0, 0, 0, 288, 96}, Case{0, 0, 0, 1, 1, 128, 320}, Case{0, 0, 0, 0, 3, 0, 0},
                        Case{0, 0, 0, 6, 3, 32, 40}, Case{0, 0, 9, 26, 4, 704, 176}, Case{1, 0, 0, 1, 2, 432, 400},
                        Case{1, 0, 11, 5, 0, 304, 48}, Case{3, 1, 0, 1, 3, 0, 32}, Case{4, 0, 3, 4, 1, 160, 440},
                        Case{5, 0, 0, 0, 0, 576, 256}, Case{5, 2, 1, 0, 3, 80, 272}, Case{6, 3, 0, 0, 0, 720, 320},
                        Case{6, 0, 11, 9, 3, 0, 1072}, Case{7, 1, 9, 0, 3, 96, 128}, Case{8, 0, 0, 26, 0, 464, 288}}) {
    const Kind& kind = kKinds[c.kind];
    const Place place = place_of(kind.shuffling, kind.sequences, c.channel, c.sequence, c.k, c.m);
    EXPECT_EQ((std::pair{place.x, place.y}), (std::pair{c.x, c.y})) << kind.name << " segment " << c.k;
  }
}

using Blocks = std::function<DvTestBlock(int channel, int i)>;

/// A frame whose blocks are what `block` tells: i counts them in a macroblock.
Stream frame_of(const Kind& kind, const Blocks& block) {
  Stream stream(static_cast<std::size_t>(kind.channels * kind.sequences) * 12000, 0xFF);
  for (int s = 0; s < kind.channels * kind.sequences; ++s) {
    std::uint8_t* const sequence = &stream[static_cast<std::size_t>(s) * 12000];
    const auto id = [&](int at, int section, int number) {
      sequence[80 * at] = static_cast<std::uint8_t>(section << 5 | 31);
      sequence[80 * at + 1] = static_cast<std::uint8_t>(s % kind.sequences << 4 | 7);
      sequence[80 * at + 2] = static_cast<std::uint8_t>(number);
    };
    id(0, 0, 0);
    sequence[4] = static_cast<std::uint8_t>(0xF8 | kind.application);
    for (int i = 1; i < 6; ++i) id(i, i < 3 ? 1 : 2, i < 3 ? i - 1 : i - 3);
    sequence[4 * 80 + 3 + 5 * 7] = 0x60;  // the source pack is the eighth of the second VAUX block
    sequence[4 * 80 + 3 + 5 * 7 + 3] = static_cast<std::uint8_t>(kind.source);
    const int count = kind.eight() ? 8 : 6;
    std::vector<DvTestBlock> blocks(5 * count);
    for (int i = 0; i < 5 * count; ++i) blocks[i] = block(s / kind.sequences, i % count);
    const auto bytes = oracle::DvTestSegment(kind.eight() ? oracle::kDvTestEight : oracle::kDvTestSix, blocks, {},
                                             std::string(408 * 8, '1'))
                           .bytes();
    for (int k = 0; k < 27; ++k) {
      if (k % 3 == 0) id(6 + k / 3 * 16, 3, k / 3);
      for (int m = 0; m < 5; ++m) {
        const int at = 7 + 5 * k + k / 3 + m;
        std::copy_n(&bytes[80 * m], 80, sequence + 80 * at);
        id(at, 4, 5 * k + m);
      }
    }
  }
  return stream;
}

DvTestBlock flat(int dc, int mode = 0) { return {dc, mode, 0, {oracle::kDvEndOfBlock}}; }
/// Luma 160, Cr 138, Cb 118. Blocks that DV50 leaves out are black.
Blocks plain(const Kind& kind) {
  return [&kind](int, int i) {
    const bool left_out = kind.shuffling == Shuffling::k422 && (i == 1 || i == 3);
    const int chroma = kind.eight() ? (i - 4) / 2 : i - 4;
    return flat(i < 4 ? left_out ? -256 : 64 : chroma == 0 ? 20 : -20);
  };
}

TEST(DvStreams, OfAllKinds) {
  for (const Kind& kind : kKinds) {
    const Stream stream = frame_of(kind, plain(kind));
    const auto& codec = moxdec::find_codec(stream, "no ending");
    EXPECT_EQ(codec.name, "DV");
    const auto decoder = codec.open(stream);
    const auto frame = decoder->next();
    ASSERT_TRUE(frame) << kind.name;
    EXPECT_EQ(frame->format(), kind.format) << kind.name;
    EXPECT_EQ(decoder->frame_rate().numerator, kind.rate) << kind.name;
    EXPECT_EQ(decoder->frame_rate().denominator, kind.per) << kind.name;
    const Stream samples = raw_planes(*frame);
    const std::ptrdiff_t luma = std::ptrdiff_t{kind.format.width} * kind.format.height,
                         chroma = (std::ssize(samples) - luma) / 2;
    for (const auto& [first, count, value] : {std::tuple{std::ptrdiff_t{0}, luma, 160}, std::tuple{luma, chroma, 118},
                                              std::tuple{luma + chroma, chroma, 138}}) {
      EXPECT_EQ(std::count(&samples[first], &samples[first] + count, value), count) << kind.name;
    }
    EXPECT_EQ(decoder->next(), nullptr);
  }
}

/// Where the mode bit of the first block is set, the upper blocks of a macroblock are the lines of one field.
TEST(DvStreams, FieldsOf1080Lines) {
  const Kind& kind = kKinds[5];
  const Stream stream = frame_of(kind, [](int channel, int i) {
    const bool lower = i < 4 ? i >= 2 : i % 2;
    return flat(lower ? -40 : 40, channel < 2 && i == 0);
  });
  const Decoded decoded = decode_all(stream);
  ASSERT_EQ(decoded.frames.size(), 1u) << decoded.error;
  for (int plane = 0; plane < 3; ++plane) {
    const auto row = [&](int y) { return std::to_integer<int>(decoded.frames[0]->shown_row(plane, y)[3]); };
    // Channels 0 and 2 have every other row of macroblocks; the last 8 lines know no fields.
    EXPECT_EQ((std::vector{row(64), row(65), row(78), row(79)}), (std::vector{148, 108, 148, 108})) << plane;
    EXPECT_EQ((std::vector{row(80), row(81), row(87), row(88)}), (std::vector{148, 148, 148, 108})) << plane;
    EXPECT_EQ((std::vector{row(1072), row(1079)}), (std::vector{148, 148})) << plane;
  }
}

TEST(DvStreams, ErrorsAreNamed) {
  const Kind& kind = kKinds[0];
  const Stream good = frame_of(kind, plain(kind));
  const auto changed = [&](std::size_t at, int value) {
    Stream stream = good;
    stream.insert(stream.end(), good.begin(), good.end());
    stream[good.size() + at] = static_cast<std::uint8_t>(value);
    return stream;
  };
  const std::size_t pack = 4 * 80 + 3 + 5 * 7, video = 12000 * 3 + 80 * 7;
  Stream cut = good, rest = good;
  cut.insert(cut.end(), good.begin(), good.end() - 1);
  rest.push_back(0);
  struct Case {
    Stream stream;
    const char* message;
  };
  for (const Case& c :
       {Case{changed(0, 0x9F), "this is no DIF sequence"}, Case{changed(80, 0), "this is no DIF sequence"},
        Case{changed(pack, 0x61), "no pack tells the kind of video"},
        Case{changed(pack + 3, 0xC1), "this kind of video is not supported"},
        Case{changed(video, 0x7F), "a DIF block of video is missing, or not in its place"},
        Case{changed(video + 81, 0x27), "a DIF block of video is missing, or not in its place"},
        Case{changed(video + 162, 3), "a DIF block of video is missing, or not in its place"},
        Case{cut, "the stream ends in a frame"}, Case{rest, "the stream ends in a DIF sequence"}}) {
    const Decoded decoded = decode_all(c.stream);
    EXPECT_EQ(decoded.frames.size(), 1u) << c.message;
    EXPECT_EQ(decoded.error, "frame at byte 120000: " + std::string(c.message));
  }
}

/// The conversions of whole segments to packed pictures, against the planes.
TEST(DvStreams, PackedPicturesAreThePlanes) {
  Stream stream = read_file(vector_path("dv25_ntsc.dv"));
  const Decoded decoded = decode_all(stream);
  ASSERT_EQ(decoded.frames.size(), 1u) << decoded.error;
  stream.resize(stream.size() + 8);  // read with the last segment
  constexpr int kStep = 2 * 720;
  Stream packed(480 * kStep);
  for (int sequence = 0; sequence < 10; ++sequence) {
    for (int k = 0; k < 27; ++k) {
      Mox16s blocks[30 * 64] = {};
      Mox32u parameters[30];
      moxiHuffmanDecodeSegment_DV_8u16s(&stream[static_cast<std::size_t>(sequence * 12000 + 80 * (7 + 5 * k + k / 3))],
                                        nullptr, nullptr, blocks, parameters);
      for (int i = 0; i < 30; ++i) {
        moxiQuantInv_DV_16s_C1I(blocks + 64 * i, parameters[i]);
        (parameters[i] & 64 ? moxiDCT2x4x8Inv_16s_C1I : moxiDCT8x8Inv_16s_C1I)(blocks + 64 * i);
      }
      Mox8u* to[5];
      bool edge = false;
      for (int m = 0; m < 5; ++m) {
        const Place place = place_of(Shuffling::k411, 10, 0, sequence, k, m);
        to[m] = &packed[static_cast<std::size_t>(place.y * kStep + 2 * place.x)];
        edge = place.shape == Shape::kSquare;
      }
      const auto convert = edge ? moxiYCrCb411ToYCbCr422_EdgeDV_16s8u_P3C2R : moxiYCrCb411ToYCbCr422_5MBDV_16s8u_P3C2R;
      ASSERT_EQ(convert(blocks, blocks + 256, blocks + 320, 768, to, kStep), moxStsOk);
    }
  }
  int different = 0;
  for (int i = 0; i < 480 * kStep; ++i) {
    const int plane = i % 2 == 0 ? 0 : i % 4 == 1 ? 1 : 2, x = i % kStep / 2 / (plane ? 4 : 1);
    different += packed[i] != std::to_integer<int>(decoded.frames[0]->shown_row(plane, i / kStep)[x]);
  }
  EXPECT_EQ(different, 0);
}

}  // namespace
}  // namespace mox::test
