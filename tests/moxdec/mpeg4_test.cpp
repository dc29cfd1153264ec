/// Hand-made MPEG-4 streams: what the bundled ones do not hold, display order, and one error message for each thing
/// that can be wrong or is not supported.
#include "common/h263_vlc_tables.hpp"
#include "moxdec/decoding.hpp"
#include "moxdec/mpeg4/decoder.hpp"
#include "moxdec/stream_builder.hpp"

namespace mox::test {
namespace {

using example::VlcCodes;

constexpr int kI = 0, kP = 1, kB = 2, kS = 3;
constexpr int kObject0 = 0, kLayer = 0x20, kSequenceEnd = 0xB1, kGroup = 0xB3, kObject = 0xB5, kPicture = 0xB6;
constexpr std::string_view kLumaSizes = "011 11 10 010 001 0001 00001 000001 0000001";

struct LayerFields {
  int width = 32, height = 32;
  int version = 1;
  int resolution = 25, fixed_step = 0;
  bool every_option = false;  // aspect ratio, controls, estimates of complexity
  int chroma = 1, shape = 0;
  bool overlapped = false;
  int sprite = 0, warping_points = 0, brightness = 0;
  bool deep_samples = false;
  std::vector<int> weights{};  // of intra blocks; a 0 is written behind them
  bool resync = false, new_references = false, reduced = false, scalable = false;
};
struct PictureFields {
  int type = kI, time = 0;
  bool coded = true;
  int threshold = 0, quantiser = 8, f_code = 1;
  bool complexity = false;
};

BitWriter& code(BitWriter& w, std::string_view codes, int index) {
  const auto [bits, length] = VlcCodes(codes)[index];
  return w.u(length, bits);
}

class Mpeg4 {
 public:
  Mpeg4() { unit(kObject0, {}); }
  Mpeg4& unit(int start_code, const BitWriter& bits) {
    out_.insert(out_.end(), {0, 0, 1, static_cast<std::uint8_t>(start_code)});
    Stream bytes = BitWriter(bits).align().payload();
    bytes.pop_back();  // the stop bit's
    out_.insert(out_.end(), bytes.begin(), bytes.end());
    return *this;
  }
  Mpeg4& layer(const LayerFields& f = {});
  Mpeg4& picture(const PictureFields& f, const BitWriter& macroblocks);
  /// 2x2 macroblocks of one shade.
  Mpeg4& flat(int shade, int time);
  /// Like the reference.
  Mpeg4& still(int time) { return picture({.type = kP, .time = time}, BitWriter().u(4, 15)); }
  const Stream& stream() const { return out_; }

 private:
  Stream out_;
};

Mpeg4& Mpeg4::layer(const LayerFields& f) {
  BitWriter w;
  w.u(9, 1).u(1, f.version != 1);
  if (f.version != 1) w.u(4, f.version).u(3, 1);
  f.every_option ? w.u(4, 15).u(16, 0x0C0B) : w.u(4, 1);
  const bool controls = f.every_option || f.chroma != 1;
  w.u(1, controls);
  if (controls) w.u(2, f.chroma).u(1, 0).u(1, 1).u(32, 0xFFFFFFFF).u(32, 0xFFFFFFFF).u(15, 0x7FFF);
  w.u(2, f.shape).u(1, 1).u(16, f.resolution).u(1, 1).u(1, f.fixed_step > 0);
  if (f.fixed_step) w.u(5, f.fixed_step);
  w.u(1, 1).u(13, f.width).u(1, 1).u(13, f.height).u(1, 1).u(1, 0).u(1, !f.overlapped);
  w.u(f.version == 1 ? 1 : 2, f.sprite);
  if (f.sprite) w.u(6, f.warping_points).u(2, 0).u(1, f.brightness);
  w.u(1, f.deep_samples).u(1, !f.weights.empty());
  if (!f.weights.empty()) {
    w.u(1, 1);
    for (const int weight : f.weights) w.u(8, weight);
    w.u(8, 0).u(1, 0);
  }
  if (f.version != 1) w.u(1, 0);  // quarter samples
  w.u(1, !f.every_option);
  // Estimates of opaque blocks, of intra blocks and bits of codes, of half samples in P and interpolation in B
  // pictures.
  if (f.every_option) w.u(2, 0).u(1, 0).u(6, 32).u(1, 0).u(4, 8).u(1, 1).u(1, 0).u(4, 1).u(1, 0).u(6, 9).u(1, 1);
  w.u(1, !f.resync).u(1, 0);
  if (f.version != 1) w.u(1, f.new_references).u(1, f.reduced);
  return unit(kLayer, w.u(1, f.scalable));
}

Mpeg4& Mpeg4::picture(const PictureFields& f, const BitWriter& macroblocks) {
  BitWriter w;
  w.u(2, f.type).u(f.time / 25 + 1, (2u << f.time / 25) - 2).u(1, 1).u(5, f.time % 25).u(1, 1).u(1, f.coded);
  if (!f.coded) return unit(kPicture, w);
  if (f.type == kP || f.type == kS) w.u(1, 0);
  if (f.complexity) w.u(20, 0).u(f.type == kI ? 0 : 8, 0).u(f.type == kB ? 8 : 0, 0);
  w.u(3, f.threshold).u(5, f.quantiser);
  for (int i = 0; i < (f.type == kI ? 0 : f.type == kB ? 2 : 1); ++i) w.u(3, f.f_code);
  return unit(kPicture, w.append(macroblocks));
}

/// The DC of an intra block of luma, `change` above the predicted level.
BitWriter& dc(BitWriter& w, int change) {
  int size = 0;
  while (std::abs(change) >> size) ++size;
  return code(w, kLumaSizes, size).u(size, change < 0 ? change + (1 << size) - 1 : change);
}
/// A flat intra macroblock behind its type; a level counts 2 shades at quantiser 8.
BitWriter& flat_blocks(BitWriter& w, int change) {
  w.u(1, 0).u(4, 3);
  for (int i = 0; i < 4; ++i) dc(w, i == 0 ? change : 0);
  return w.u(4, 15);
}
BitWriter& intra(BitWriter& w, int change) { return flat_blocks(w.u(1, 1), change); }

/// Ends the first packet of a picture with a header of so many bits, 19 in I and 25 in B pictures.
BitWriter& fill(BitWriter& w, int header) {
  w.u(1, 0);
  while ((w.bit_count() + header) % 8 != 0) w.u(1, 1);
  return w;
}

Mpeg4& Mpeg4::flat(int shade, int time) {
  BitWriter w;
  for (int i = 0; i < 4; ++i) intra(w, i == 0 ? (shade - 128) / 2 : 0);
  return picture({.type = kI, .time = time}, w);
}

/// A macroblock of a B picture with zero vectors: of a type, a number of zeros before a one.
BitWriter b_macroblocks(int type) {
  BitWriter w;
  for (int i = 0; i < 4; ++i) w.u(2, 1).u(type + 1, 1).u(type == 1 ? 4 : 2, 15);
  return w;
}

std::vector<int> samples(const moxdec::Frame& frame, int plane, int y, std::initializer_list<int> columns) {
  std::vector<int> values;
  for (const int x : columns) values.push_back(std::to_integer<int>(frame.shown_row(plane, y)[x]));
  return values;
}

TEST(Mpeg4Intra, DcMayHaveTheCodesOfTheAc) {
  // From quantiser 13 on. The first macroblock counts with its own quantiser, 14, the second with that of the first,
  // the third with that of the second, 12. A level is 8 shades / 22, 20, 20 of the DC's scale.
  const auto escape = [](BitWriter& w, int level) { return w.u(9, 15).u(1, 1).u(6, 0).u(1, 1).u(12, level).u(1, 1); };
  const auto with_quantiser = [&](BitWriter& w, int change, int level) {
    w.u(4, 1).u(1, 0);
    code(w, example::kCbpyCodes, 8).u(2, change);
    escape(w, level);
  };
  BitWriter w;
  with_quantiser(w, 3, 8);   // 14: 1024 / 22 is 46.5
  with_quantiser(w, 1, -8);  // 12: 55 * 22 / 20 is 60.5
  flat_blocks(w.u(1, 1), 4);
  const Decoded decoded =
      decode_all(Mpeg4().layer({.width = 48, .height = 16}).picture({.threshold = 1, .quantiser = 12}, w).stream());
  EXPECT_EQ(decoded.error, "");
  ASSERT_EQ(decoded.frames.size(), 1u);
  EXPECT_EQ(samples(*decoded.frames[0], 0, 3, {0, 8, 16, 31, 32, 47}),
            (std::vector<int>{151, 151, 133, 133, 143, 143}));
}

TEST(Mpeg4Intra, PredictedLevelsAreScaled) {
  // F(0,1) of the second block has level 10 at quantiser 8. At the left of the next macroblock that counts 8 at
  // quantiser 10: 2 * 10 * 8 + 9 is 169.
  BitWriter w;
  dc(code(w.u(1, 1).u(1, 0), example::kCbpyCodes, 4), 0);
  dc(w, 0).u(9, 15).u(1, 1).u(6, 1).u(1, 1).u(12, 10).u(1, 1);
  dc(dc(w, 0), 0).u(4, 15);
  w.u(4, 1).u(1, 1).u(4, 3).u(2, 3);
  for (int i = 0; i < 4; ++i) dc(w, 0);
  const Decoded decoded = decode_all(Mpeg4().layer({.width = 32, .height = 16}).picture({}, w.u(4, 15)).stream());
  ASSERT_EQ(decoded.frames.size(), 1u) << decoded.error;
  for (const auto& [row, value] : {std::pair{0, 157}, std::pair{7, 99}, std::pair{8, 128}}) {
    EXPECT_NEAR(samples(*decoded.frames[0], 0, row, {8})[0], value, 1) << row;
    EXPECT_NEAR(samples(*decoded.frames[0], 0, row, {31})[0], value, 1) << row;
  }
}

TEST(Mpeg4Coefficients, AreWeighted) {
  // F(1,0) of the first block has level 10: 10 * weight * 8 / 8. The last weight sent stands for the others.
  for (const auto& [weights, difference] : {std::pair{std::vector{8, 16}, 28}, std::pair{std::vector{8, 32}, 55}}) {
    BitWriter w;
    w.u(1, 1).u(1, 0);
    dc(code(w, example::kCbpyCodes, 8), 0).u(9, 15).u(1, 1).u(6, 0).u(1, 1).u(12, 10).u(1, 1);
    for (int i = 1; i < 4; ++i) dc(w, 0);
    const Decoded decoded =
        decode_all(Mpeg4().layer({.width = 16, .height = 16, .weights = weights}).picture({}, w.u(4, 15)).stream());
    ASSERT_EQ(decoded.frames.size(), 1u) << decoded.error;
    EXPECT_NEAR(samples(*decoded.frames[0], 0, 2, {0})[0], 128 + difference, 1);
    EXPECT_NEAR(samples(*decoded.frames[0], 0, 2, {7})[0], 128 - difference, 1);
  }
}

TEST(Mpeg4Packets, StandAlone) {
  // Nothing is predicted from another packet. The second one changes the quantiser and repeats the header.
  BitWriter w;
  intra(intra(w, 11), 0);
  fill(w, 19);
  w.u(17, 1).u(2, 2).u(5, 4).u(1, 1).u(1, 0).u(1, 1).u(5, 0).u(1, 1).u(2, kI).u(3, 0);
  intra(intra(w, 11), 0);
  const Decoded decoded = decode_all(Mpeg4().layer({.resync = true}).picture({}, w).stream());
  EXPECT_EQ(decoded.error, "");
  ASSERT_EQ(decoded.frames.size(), 1u);
  EXPECT_EQ(samples(*decoded.frames[0], 0, 15, {0, 31}), (std::vector<int>{150, 150}));
  EXPECT_EQ(samples(*decoded.frames[0], 0, 16, {0, 31}), (std::vector<int>{139, 139}));
}

TEST(Mpeg4Packets, HaveALongerMarkerInBPictures) {
  BitWriter w;
  fill(w.u(2, 3), 25).u(18, 1).u(2, 2).u(5, 8).u(1, 0).u(2, 3);
  const Mpeg4 m = Mpeg4().layer({.resync = true}).flat(100, 0).flat(150, 2).picture({.type = kB, .time = 1}, w);
  const Decoded decoded = decode_all(m.stream());
  EXPECT_EQ(decoded.error, "");
  EXPECT_EQ(decoded.shades(), (std::vector<int>{100, 125, 150}));
}

TEST(Mpeg4Packets, MayBeginAmongMacroblocksWithoutBits) {
  // The P picture leaves out the second and the third macroblock. Those of the B picture are direct.
  BitWriter p;
  for (int i = 0; i < 4; ++i) i % 3 ? p.u(1, 1) : p.u(6, 0x1F);
  for (const auto& [address, error] : {std::pair{1, ""}, std::pair{2, ""}, std::pair{3, ""}, std::pair{0, "missing"}}) {
    BitWriter w;
    fill(w.u(1, 1), 25).u(18, 1).u(2, address).u(5, 8).u(1, 0).u(1, 1);
    const Mpeg4 m = Mpeg4().layer({.resync = true}).flat(100, 0).picture({.type = kP, .time = 2}, p);
    const Decoded decoded = decode_all(Mpeg4(m).picture({.type = kB, .time = 1}, w).stream());
    EXPECT_EQ(decoded.error.empty(), *error == 0) << decoded.error;
    EXPECT_NE(decoded.error.find(error), std::string::npos) << decoded.error;
    EXPECT_EQ(decoded.frames.size(), *error ? 2u : 3u);
  }
}

TEST(Mpeg4Bidirectional, TypesOfMacroblocks) {
  // Direct without and with vectors, interpolated, backward, forward; references of shades 100 and 150.
  const Mpeg4 ready = Mpeg4().layer().flat(100, 0).flat(150, 3);
  const std::pair<BitWriter, int> cases[] = {{BitWriter().u(4, 15), 125},
                                             {b_macroblocks(0), 125},
                                             {b_macroblocks(1), 125},
                                             {b_macroblocks(2), 150},
                                             {b_macroblocks(3), 100}};
  for (const auto& [macroblocks, shade] : cases) {
    const Decoded decoded = decode_all(Mpeg4(ready).picture({.type = kB, .time = 1}, macroblocks).stream());
    EXPECT_EQ(decoded.error, "");
    EXPECT_EQ(decoded.shades(), (std::vector<int>{100, shade, 150}));
  }
  // What a P picture leaves out, a B picture in front of it does not code.
  const Decoded skipped =
      decode_all(Mpeg4().layer().flat(70, 0).still(2).picture({.type = kB, .time = 1}, {}).stream());
  EXPECT_EQ(skipped.error, "");
  EXPECT_EQ(skipped.shades(), (std::vector<int>{70, 70, 70}));
}

TEST(Mpeg4Order, HoldsReferencesBack) {
  Mpeg4 m;
  const auto b = [](Mpeg4& to, int time) -> Mpeg4& { return to.picture({.type = kB, .time = time}, b_macroblocks(3)); };
  b(b(m.layer().flat(10, 0).flat(40, 3), 1), 2).flat(70, 4);
  EXPECT_EQ(decode_all(m.stream()).shades(), (std::vector<int>{10, 10, 10, 40, 70}));
  // Not coded: shown again, but for one that only fills a place; a header of the same layer changes nothing.
  m.picture({.type = kP, .time = 4, .coded = false}, {}).picture({.type = kP, .time = 5, .coded = false}, {});
  m.layer().still(6).unit(kSequenceEnd, {}).layer({.width = 16});
  b(m.flat(20, 0), 1);  // it has lost its reference
  EXPECT_EQ(decode_all(m.stream()).shades(), (std::vector<int>{10, 10, 10, 40, 70, 70, 70, 20}));
}

TEST(Mpeg4Order, CountsSecondsFromGroups) {
  const auto group = [](int minutes, bool broken) {
    return BitWriter().u(5, 0).u(6, minutes).u(1, 1).u(6, 0).u(1, 0).u(1, broken);
  };
  // Past the second: B pictures count from the second of the reference before them.
  Mpeg4 m;
  m.layer().unit(kGroup, group(1, false)).flat(10, 23).flat(40, 27).picture({.type = kB, .time = 26}, b_macroblocks(2));
  EXPECT_EQ(decode_all(m.stream()).shades(), (std::vector<int>{10, 40, 40}));
  m.unit(kGroup, group(2, true)).flat(70, 2).picture({.type = kB, .time = 1}, b_macroblocks(3));
  const Decoded decoded = decode_all(m.stream());
  EXPECT_EQ(decoded.error, "");
  EXPECT_EQ(decoded.shades(), (std::vector<int>{10, 40, 40, 70}));
}

TEST(Mpeg4Headers, MayHoldMore) {
  BitWriter shade;
  intra(intra(shade, -20), 0);
  Mpeg4 m;
  m.unit(0xB0, BitWriter().u(8, 0xF5)).unit(kObject, BitWriter().u(1, 1).u(4, 2).u(3, 1).u(4, 1).u(1, 0));
  m.layer({.width = 18, .height = 10, .version = 2, .fixed_step = 2, .every_option = true});
  m.picture({.complexity = true}, shade).picture({.type = kP, .time = 3, .complexity = true}, BitWriter().u(2, 3));
  m.picture({.type = kB, .time = 2, .complexity = true}, {});
  const auto decoder = moxdec::find_codec(m.stream(), "").open(m.stream());
  for (int i = 0; i < 3; ++i) {
    const auto frame = decoder->next();
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->format(), (moxdec::FrameFormat{18, 10, moxdec::Chroma::k420, 8}));
    EXPECT_EQ(samples(*frame, 0, 9, {0, 17}), (std::vector<int>{88, 88}));
  }
  EXPECT_EQ(decoder->frame_rate().numerator, 25u);
  EXPECT_EQ(decoder->frame_rate().denominator, 2u);
  EXPECT_EQ(decoder->next(), nullptr);
}

TEST(Mpeg4Errors, AreNamed) {
  struct Refused {
    const char* name;
    Mpeg4 stream;
    const char* message;
    std::size_t frames = 0;
  };
  const auto layer = [](const LayerFields& f) { return Mpeg4().layer(f); };
  const Mpeg4 s = Mpeg4().layer(), ready = Mpeg4(s).flat(100, 0), two = Mpeg4(ready).flat(150, 3);
  const auto i = [&](const BitWriter& w) { return Mpeg4(s).picture({}, w); };
  const auto p = [&](const BitWriter& w) { return Mpeg4(ready).picture({.type = kP, .time = 1}, w); };
  const auto b = [&](int time, const BitWriter& w) { return Mpeg4(two).picture({.type = kB, .time = time}, w); };
  const auto bits = [](int count, std::uint32_t value) { return BitWriter().u(count, value); };
  BitWriter gap, long_run;
  fill(intra(gap, 0), 19).u(17, 1).u(2, 2).u(5, 8).u(1, 0);
  dc(code(long_run.u(2, 2), example::kCbpyCodes, 8), 0);
  for (int n = 0; n < 2; ++n) long_run.u(9, 15).u(1, 0).u(6, 40).u(1, 1).u(12, 5).u(1, 1);
  const std::vector<Refused> cases = {
      {"shape", layer({.shape = 1}), "shapes other than rectangular are not supported"},
      {"4:2:2", layer({.chroma = 2}), "a chroma format other than 4:2:0"},
      {"no ticks", layer({.resolution = 0}), "a second has no ticks"},
      {"no size", layer({.height = 0}), "a picture has no size"},
      {"large", layer({.width = 8191, .height = 8191}), "pictures are too large"},
      {"overlapped", layer({.overlapped = true}), "overlapped motion compensation is not supported"},
      {"sprite", layer({.sprite = 1}), "static sprites are not supported"},
      {"points", layer({.version = 2, .sprite = 2, .warping_points = 4}), "more warping points than"},
      {"brightness", layer({.version = 2, .sprite = 2, .brightness = 1}), "a change of brightness"},
      {"deep", layer({.deep_samples = true}), "samples of other than 8 bits are not supported"},
      {"weight 0", layer({.weights = {0}}), "a weight of the quantiser is 0"},
      {"references", layer({.version = 2, .new_references = true}), "selection of new references is not supported"},
      {"reduced", layer({.version = 2, .reduced = true}), "reduced resolution is not supported"},
      {"scalable", layer({.scalable = true}), "scalable streams are not supported"},
      {"object", Mpeg4(s).unit(kObject, bits(8, 0x10)), "a visual object other than video is not supported"},
      {"nothing", s, "no picture found"},
      {"no sprite", Mpeg4(s).picture({.type = kS}, {}), "a sprite's picture in a layer without a sprite"},
      {"quantiser", Mpeg4(s).picture({.quantiser = 0}, {}), "a quantiser is 0"},
      {"range", Mpeg4(s).picture({.type = kP, .f_code = 0}, {}), "a range of vectors is none"},
      {"P first", Mpeg4(s).still(0), "a picture that is predicted from is missing"},
      {"B late", b(3, {}), "the time of a B picture is not between", 2},
      {"B early", b(0, {}), "the time of a B picture is not between", 2},
      {"no type", i(bits(30, 0)), "broken type of a macroblock"},
      {"six types", p(bits(30, 0x00080000)), "broken type of a macroblock", 1},
      {"no B type", b(1, bits(30, 0)), "broken type of a macroblock", 2},
      {"no pattern", i(bits(30, 1 << 29)), "broken pattern of blocks"},
      {"no vector", p(bits(30, 0x1C000000)), "broken vector", 1},
      {"no DC", i(bits(30, 0x23000000)), "broken DC of a block"},
      {"beyond the block", i(long_run), "broken coefficients"},
      {"short", p(bits(1, 1)), "the data end too early", 1},
      {"gap", Mpeg4().layer({.resync = true}).picture({}, gap), "macroblocks are missing, or come twice"},
  };
  for (const Refused& c : cases) {
    const Decoded decoded = decode_all(c.stream.stream());
    EXPECT_NE(decoded.error.find(c.message), std::string::npos) << c.name << ": " << decoded.error;
    EXPECT_EQ(decoded.frames.size(), c.frames) << c.name;
  }
  const std::pair<Stream, const char*> unknown[] = {{{0, 0, 0x80, 2, 8, 8}, "to be decoded as H.263"},
                                                    {Mpeg4().flat(9, 0).stream(), "in front of the first header"}};
  for (const auto& [stream, message] : unknown) {
    try {
      moxdec::mpeg4::kCodec.open(stream)->next();
      ADD_FAILURE() << message;
    } catch (const moxdec::DecodeError& error) {
      EXPECT_NE(std::string(error.what()).find(message), std::string::npos) << error.what();
    }
  }
}

}  // namespace
}  // namespace mox::test
