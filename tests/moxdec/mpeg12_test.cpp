/// Hand-made MPEG-1 and MPEG-2 streams: prediction that can be done by hand, display order, and one error message for
/// each thing that can be wrong or is not supported.
#include "common/mpeg12_tables.hpp"
#include "common/mpeg12_vlc_tables.hpp"
#include "moxdec/decoding.hpp"
#include "moxdec/stream_builder.hpp"

namespace mox::test {
namespace {

using example::VlcCodes;
using moxdec::Chroma;

constexpr int kI = 1, kP = 2, kB = 3, kD = 4, kTop = 1, kBottom = 2, kFrame = 3;

struct SequenceFields {
  int width = 32, height = 32;
  bool mpeg2 = true, progressive = false;
  int chroma_format = 1;
  int first_weight = -1;  // of a matrix for intra blocks, else 16; none if negative
};
struct PictureFields {
  int type = kI, structure = kFrame;
  int f_code = 1;
  bool full_pel = false;        // MPEG-1
  bool frame_pred_only = true;  // neither fields nor other kinds of motion
  bool nonlinear_scale = false;
  int dc_precision = 0;
};

class Mpeg {
 public:
  Mpeg& unit(int code, const BitWriter& bits) {
    out_.insert(out_.end(), {0, 0, 1, static_cast<std::uint8_t>(code)});
    Stream bytes = BitWriter(bits).align().payload();
    bytes.pop_back();  // the stop bit's
    out_.insert(out_.end(), bytes.begin(), bytes.end());
    return *this;
  }
  Mpeg& sequence(const SequenceFields& f = {}) {
    mpeg2_ = f.mpeg2;
    BitWriter w;
    w.u(12, f.width).u(12, f.height).u(4, 1).u(4, 3).u(18, 100).u(1, 1).u(10, 20).u(1, 0).u(1, f.first_weight >= 0);
    for (int i = 0; f.first_weight >= 0 && i < 64; ++i) w.u(8, i ? 16 : f.first_weight);
    unit(0xB3, w.u(1, 0));
    if (!f.mpeg2) return *this;
    return unit(
        0xB5,
        BitWriter().u(4, 1).u(8, 0x44).u(1, f.progressive).u(2, f.chroma_format).u(4, 0).u(12, 0).u(1, 1).u(16, 0));
  }
  Mpeg& picture(const PictureFields& f) {
    BitWriter w;
    w.u(10, 0).u(3, f.type).u(16, 0xFFFF);
    for (int i = 1; i < f.type && i < 3; ++i) w.u(1, f.full_pel).u(3, mpeg2_ ? 7 : f.f_code);
    unit(0, w.u(1, 0));
    return mpeg2_ ? coding_extension(f) : *this;
  }
  Mpeg& coding_extension(const PictureFields& f) {
    BitWriter w;
    w.u(4, 8);
    for (int i = 0; i < 4; ++i) w.u(4, f.f_code);
    w.u(2, f.dc_precision).u(2, f.structure).u(1, 0).u(1, f.frame_pred_only).u(1, 0).u(1, f.nonlinear_scale);
    return unit(0xB5, w.u(10, 0));
  }
  /// Macroblocks behind a header with quantiser scale `scale`.
  Mpeg& slice(int row, const BitWriter& macroblocks, int scale = 8) {
    return unit(1 + row, BitWriter().u(5, scale).u(1, 0).append(macroblocks));
  }
  /// A picture of 2x2 macroblocks in one shade.
  Mpeg& flat_i(int shade);
  /// A picture like the one before it in the stream, or for kB after it in display order.
  Mpeg& copy(int type);
  Mpeg& bytes(const Stream& more) {
    out_.insert(out_.end(), more.begin(), more.end());
    return *this;
  }
  const Stream& stream() const { return out_; }

 private:
  bool mpeg2_ = true;
  Stream out_;
};

BitWriter& code(BitWriter& w, std::string_view codes, int index) {
  const auto [bits, length] = VlcCodes(codes)[index];
  return w.u(length, bits);
}
/// An intra macroblock of one shade, `change` above the one before it in the slice, behind its type. Of 4:2:0.
BitWriter& blocks(BitWriter& w, int change) {
  int size = 0;
  while (std::abs(change) >> size) ++size;
  code(w, example::kDcSizeLumaCodes, size).u(size, change < 0 ? change + (1 << size) - 1 : change).u(2, 2);
  for (int i = 1; i < 6; ++i) code(w, i < 4 ? example::kDcSizeLumaCodes : example::kDcSizeChromaCodes, 0).u(2, 2);
  return w;
}
BitWriter& intra(BitWriter& w, int change) { return blocks(w.u(2, 3), change); }
/// A macroblock of a P picture with a forward vector and no residual; the differences are small motion codes.
BitWriter& moved(BitWriter& w, int x, int y) {
  return code(code(w.u(1, 1).u(3, 1), example::kMotionCodes, 16 + x), example::kMotionCodes, 16 + y);
}
BitWriter row_of(int shade) {
  BitWriter w;
  return intra(intra(w, shade - 128), 0);
}
BitWriter still() {
  BitWriter w;
  return moved(moved(w, 0, 0), 0, 0);
}
Mpeg& Mpeg::flat_i(int shade) { return picture({}).slice(0, row_of(shade)).slice(1, row_of(shade)); }
Mpeg& Mpeg::copy(int type) {
  BitWriter w = still();
  if (type == kB) {  // backward alone
    w = {};
    for (int i = 0; i < 2; ++i) w.u(1, 1).u(3, 2).u(2, 3);
  }
  return picture({.type = type}).slice(0, w).slice(1, w);
}

/// Samples of row y of the luma plane.
std::vector<int> row_at(const moxdec::Frame& frame, int y, std::initializer_list<int> columns) {
  std::vector<int> values;
  for (const int x : columns) values.push_back(std::to_integer<int>(frame.shown_row(0, y)[x]));
  return values;
}

TEST(Mpeg12Prediction, ByHalfSamples) {
  // Shades 100 and 121 side by side; a vector of 15 half samples to the right and one down.
  BitWriter two, w;
  intra(intra(two, -28), 21);
  moved(moved(w, 15, 1), -15, -1);
  Mpeg m;
  m.sequence().picture({}).slice(0, two).slice(1, two);
  m.picture({.type = kP}).slice(0, w).slice(1, still());
  const Decoded decoded = decode_all(m.stream());
  EXPECT_EQ(decoded.error, "");
  ASSERT_EQ(decoded.frames.size(), 2u);
  EXPECT_EQ(row_at(*decoded.frames[1], 3, {0, 7, 8, 9, 16}), (std::vector<int>{100, 100, 111, 121, 121}));
}

TEST(Mpeg12Prediction, OfMacroblocksLeftOut) {
  // MPEG-1, three shades of 16 columns. The vector of the first macroblock is 8 full samples; the one that is left out
  // behind it moves as far. Macroblock stuffing stands before the last one.
  BitWriter shades, same, b;
  intra(intra(intra(shades, -28), 50), 50);
  moved(moved(moved(same, 0, 0), 0, 0), 0, 0);
  for (const int x : {8, -8}) {
    if (x < 0) b.u(11, 15);
    (x > 0 ? b.u(1, 1) : b.u(3, 3)).u(4, 2);
    code(code(b, example::kMotionCodes, 16 + x), example::kMotionCodes, 16);
  }
  Mpeg m;
  m.sequence({.width = 48, .height = 16, .mpeg2 = false}).picture({}).slice(0, shades).picture({.type = kP});
  m.slice(0, same).picture({.type = kB, .full_pel = true}).slice(0, b);
  const Decoded decoded = decode_all(m.stream());
  EXPECT_EQ(decoded.error, "");
  ASSERT_EQ(decoded.frames.size(), 3u);
  EXPECT_EQ(row_at(*decoded.frames[1], 9, {7, 8, 23, 24, 31, 32, 47}),
            (std::vector<int>{100, 150, 150, 200, 200, 200, 200}));
}

TEST(Mpeg12Prediction, OfASecondFieldFromTheFirst) {
  // The top field is intra. The bottom field, forward from the top field at no distance, equals it.
  BitWriter top, bottom;
  intra(intra(top, 40), 20);
  for (int i = 0; i < 2; ++i) bottom.u(1, 1).u(3, 1).u(2, 1).u(1, 0).u(2, 3);
  Mpeg m;
  m.sequence().picture({.structure = kTop}).slice(0, top);
  m.picture({.type = kP, .structure = kBottom, .frame_pred_only = false}).slice(0, bottom);
  const Decoded decoded = decode_all(m.stream());
  EXPECT_EQ(decoded.error, "");
  ASSERT_EQ(decoded.frames.size(), 1u);
  for (const int y : {0, 1, 30, 31}) EXPECT_EQ(row_at(*decoded.frames[0], y, {0, 31}), (std::vector<int>{168, 188}));
}

/// A picture of one macroblock with F(1,0) in the first blocks of luma and U: level * 16 * weight / 16, scale code 8.
Stream textured(const BitWriter& matrices, int level) {
  BitWriter w;
  w.u(2, 3);
  for (int i = 0; i < 6; ++i) {
    code(w, i < 4 ? example::kDcSizeLumaCodes : example::kDcSizeChromaCodes, 0);
    if (i == 0 || i == 4) w.u(6, 1).u(6, 0).u(12, level);
    w.u(2, 2);
  }
  Mpeg m;
  return m.sequence({.width = 16, .height = 16, .progressive = true})
      .picture({})
      .unit(0xB5, matrices)
      .slice(0, w)
      .stream();
}

TEST(Mpeg12Coefficients, AreWeightedAndLimited) {
  const auto matrix = [](BitWriter& w, int weight) {
    w.u(1, 1).u(8, 16).u(8, weight);
    for (int i = 2; i < 64; ++i) w.u(8, 16);
  };
  BitWriter none, luma, chroma;
  none.u(4, 3).u(4, 0);
  matrix(luma.u(4, 3), 32);
  luma.u(3, 0);
  matrix(chroma.u(4, 3).u(2, 0), 48);
  chroma.u(1, 0);
  // The first sample is 128 + F * sqrt(1/8) / 2 * cos(pi/16), with 7 pi/16 the fourth. F is 2047 at most.
  struct Case {
    const BitWriter& matrices;
    int level, column, luma, u;
  };
  for (const Case& c : {Case{none, 10, 0, 128 + 28, 128 + 28}, Case{luma, 10, 0, 128 + 55, 128 + 55},
                        Case{chroma, 10, 0, 128 + 28, 128 + 83}, Case{luma, -10, 0, 128 - 55, 128 - 55},
                        Case{none, 2000, 3, 128 + 71, 128 + 71}}) {
    const Decoded decoded = decode_all(textured(c.matrices, c.level));
    ASSERT_EQ(decoded.frames.size(), 1u) << decoded.error;
    EXPECT_NEAR(std::to_integer<int>(decoded.frames[0]->shown_row(0, 2)[c.column]), c.luma, 1) << c.level;
    EXPECT_NEAR(std::to_integer<int>(decoded.frames[0]->shown_row(1, 2)[c.column]), c.u, 1) << c.level;
  }
}

TEST(Mpeg12Order, HoldsReferencesBack) {
  Mpeg m;
  m.sequence().flat_i(10).flat_i(40).copy(kB).flat_i(70).copy(kB).copy(kB);
  EXPECT_EQ(decode_all(m.stream()).shades(), (std::vector<int>{10, 40, 40, 70, 70, 70}));
  // Another size: the last picture of the old one comes first, and nothing is predicted from it.
  m.sequence({.progressive = true}).flat_i(90).unit(0xB7, {}).copy(kP);
  const Decoded decoded = decode_all(m.stream());
  EXPECT_EQ(decoded.shades(), (std::vector<int>{10, 40, 40, 70, 70, 70, 90}));
  EXPECT_NE(decoded.error.find("predicted from is missing"), std::string::npos) << decoded.error;
}

TEST(Mpeg12Order, LeavesOutWhatHasLostItsReference) {
  const auto group = [](std::uint32_t flags) { return BitWriter().u(25, 0).u(2, flags).u(5, 0); };
  constexpr std::uint32_t kOpen = 0, kBrokenLink = 1, kClosed = 2;
  Mpeg m;
  m.sequence().unit(0xB8, group(kOpen)).flat_i(10).copy(kB).flat_i(40).copy(kB);
  EXPECT_EQ(decode_all(m.stream()).shades(), (std::vector<int>{10, 40, 40}));
  m.unit(0xB8, group(kOpen)).flat_i(70).copy(kB).unit(0xB8, group(kBrokenLink)).flat_i(90).copy(kB).flat_i(20);
  EXPECT_EQ(decode_all(m.stream()).shades(), (std::vector<int>{10, 40, 40, 70, 70, 90, 20}));
  m = Mpeg().sequence().unit(0xB8, group(kClosed)).flat_i(10).copy(kB);
  EXPECT_EQ(decode_all(m.stream()).shades(), (std::vector<int>{10, 10}));
}

TEST(Mpeg12Headers, TellSizeAndRate) {
  Mpeg m;
  m.sequence({.width = 18, .height = 20, .progressive = true}).flat_i(50);
  const auto decoder = moxdec::find_codec(m.stream(), "").open(m.stream());
  const auto frame = decoder->next();
  ASSERT_TRUE(frame);
  EXPECT_EQ(frame->format(), (moxdec::FrameFormat{18, 20, Chroma::k420, 8}));
  EXPECT_EQ(decoder->frame_rate().numerator, 25u);
  EXPECT_EQ(decoder->frame_rate().denominator, 1u);
  EXPECT_EQ(decoder->next(), nullptr);
}

struct Refused {
  const char* name;
  Stream stream;
  const char* message;
  std::size_t frames = 0;
};

TEST(Mpeg12Errors, AreNamed) {
  const Mpeg s = Mpeg().sequence(), ready = Mpeg(s).flat_i(100);
  const auto rows = [](const Mpeg& m, const BitWriter& first) { return Mpeg(m).slice(0, first).slice(1, still()); };
  const auto p = [&](const BitWriter& first) { return rows(Mpeg(ready).picture({.type = kP}), first).stream(); };
  const auto i = [&](const BitWriter& first) { return rows(Mpeg(s).picture({}), first).stream(); };
  const auto bits = [](int count, std::uint32_t value) { return BitWriter().u(count, value); };
  BitWriter outside, to_right, left_out, gap, late, cut, long_run, forward, too_wide = row_of(1);
  intra(too_wide, 0);
  code(code(forward.u(1, 1).u(4, 2), example::kMotionCodes, 16), example::kMotionCodes, 16);
  moved(outside, -1, 0);
  moved(moved(to_right, 0, 0), 1, 0);
  intra(left_out, 0).u(3, 3);
  moved(gap, 0, 0).u(11, 8);
  blocks(late.u(3, 3).u(1, 1), 0);
  cut.u(2, 3).u(3, 0);
  long_run.u(2, 3);
  code(long_run, example::kDcSizeLumaCodes, 0);
  for (int n = 0; n < 3; ++n) long_run.u(6, 1).u(6, 30).u(12, 5);
  const BitWriter b_intra = blocks(BitWriter().u(1, 1).u(5, 3), 0).u(3, 3).u(4, 2);
  const Stream mpeg1_dc = Mpeg().sequence({.mpeg2 = false}).picture({}).coding_extension({}).slice(0, {}).stream();
  const std::vector<Refused> cases = {
      {"D picture", Mpeg(s).picture({.type = kD}).stream(), "D pictures are not supported"},
      {"type 0", Mpeg(s).picture({.type = 0}).stream(), "a picture type is none"},
      {"4:4:4", Mpeg().sequence({.chroma_format = 3}).stream(), "a chroma format other than"},
      {"no size", Mpeg().sequence({.width = 0}).stream(), "a picture has no size"},
      {"weight 0", Mpeg().sequence({.first_weight = 0}).stream(), "a weight of the quantiser is 0"},
      {"scalable", Mpeg(s).unit(0xB5, bits(8, 0x50)).stream(), "scalable streams are not supported"},
      {"system", Mpeg(s).unit(0xBA, {}).stream(), "a system stream is not supported"},
      {"nothing", s.stream(), "no picture found"},
      {"no header", Mpeg(s).slice(0, {}).stream(), "a slice without a picture header"},
      {"no extension", Mpeg(s).unit(0, bits(30, 1 << 17)).slice(0, {}).stream(), "a picture without its extension"},
      {"extension in MPEG-1", mpeg1_dc, "or with one in MPEG-1"},
      {"structure", Mpeg(s).picture({.structure = 0}).stream(), "a picture structure is none"},
      {"scale", Mpeg(s).picture({}).slice(0, row_of(1), 0).stream(), "a quantiser scale is 0"},
      {"P first", Mpeg(s).copy(kP).stream(), "a picture that is predicted from is missing"},
      {"B second", rows(Mpeg(ready).picture({.type = kB}), forward).stream(),
       "a picture that is predicted from is missing", 1},
      {"to the left", p(outside), "a vector points outside of the picture", 1},
      {"to the right", p(to_right), "a vector points outside of the picture", 1},
      {"range", rows(Mpeg(ready).picture({.type = kP, .f_code = 15}), still()).stream(), "a range of vectors", 1},
      {"no code", p(bits(30, 9 << 26)), "broken vector", 1},
      {"no type", i(bits(30, 1 << 29)), "broken type of a macroblock"},
      {"no address", i(bits(30, 1)), "broken address of a macroblock"},
      {"escapes", p(gap.u(11, 8).u(1, 1)), "more macroblocks than the picture has", 1},
      {"too wide", Mpeg(s).picture({}).slice(0, row_of(1)).slice(1, too_wide).stream(),
       "more macroblocks than the picture has", 1},
      {"starts late", i(late), "macroblocks are missing, or come twice"},
      {"ends early", Mpeg(s).picture({}).slice(0, row_of(1)).flat_i(3).stream(), "macroblocks are missing at the end"},
      {"left out", i(left_out), "a macroblock of an I picture is left out"},
      {"left out in B", rows(Mpeg(ready).flat_i(9).picture({.type = kB}), b_intra).stream(),
       "left out behind an intra one", 2},
      {"cut", Mpeg(s).picture({}).slice(0, cut).stream(), "broken coefficients"},
      {"beyond the block", Mpeg(s).picture({}).slice(0, long_run).stream(), "broken coefficients"},
      {"field, field",
       Mpeg(s)
           .picture({.structure = kTop})
           .slice(0, row_of(1))
           .picture({.structure = kTop})
           .slice(0, row_of(1))
           .stream(),
       "a field without the other one"},
      {"one field", Mpeg(s).picture({.structure = kTop}).slice(0, row_of(1)).stream(), "a field without the other one"},
      {"progressive field",
       Mpeg().sequence({.progressive = true}).picture({.structure = kTop}).slice(0, row_of(1)).stream(),
       "a field in a progressive sequence"},
      {"motion 0", rows(Mpeg(ready).picture({.type = kP, .frame_pred_only = false}), bits(7, 0x48)).stream(),
       "a kind of motion is none", 1},
      {"dual prime in B",
       rows(Mpeg(ready).flat_i(9).picture({.type = kB, .frame_pred_only = false}), bits(7, 0x57)).stream(),
       "dual prime in a B picture", 2},
  };
  for (const Refused& c : cases) {
    const Decoded decoded = decode_all(c.stream);
    EXPECT_NE(decoded.error.find(c.message), std::string::npos) << c.name << ": " << decoded.error;
    EXPECT_EQ(decoded.frames.size(), c.frames) << c.name;
  }
}

}  // namespace
}  // namespace mox::test
