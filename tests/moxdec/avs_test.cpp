/// Hand-made AVS streams: weights, bits that are no data, display order, and one error message for each thing that can
/// be wrong or is not supported.
#include "moxdec/avs/payload.hpp"
#include "moxdec/decoding.hpp"
#include "moxdec/stream_builder.hpp"

namespace mox::test {
namespace {

constexpr int kP = 1, kB = 2;
constexpr int kMacroblocks = 4;

struct SequenceFields {
  int profile = 0x20, width = 32, height = 32, chroma_format = 1, precision = 1;
  bool low_delay = false;
};

class Avs {
 public:
  /// The bits of `content` and the stuffing behind them.
  Avs& unit(int code, const BitWriter& content) {
    const Stream bytes = content.payload();
    out_.insert(out_.end(), {0, 0, 1, static_cast<std::uint8_t>(code)});
    out_.insert(out_.end(), bytes.begin(), bytes.end());
    return *this;
  }
  Avs& sequence(const SequenceFields& f = {}) {
    BitWriter w;
    w.u(8, f.profile).u(8, 0x40).u(1, 1).u(14, f.width).u(14, f.height).u(2, f.chroma_format).u(3, f.precision);
    w.u(4, 1).u(4, 3).u(18, 0).u(1, 1).u(12, 0).u(1, f.low_delay).u(1, 1).u(18, 0).u(3, 0);
    return unit(0xB0, w);
  }
  Avs& i_picture(int distance, bool progressive = true) {
    BitWriter w;
    w.u(16, 0).u(1, 0).u(1, 1).u(8, distance).u(1, progressive);
    if (!progressive) w.u(1, 0);
    return unit(0xB3, w.u(2, 0).u(1, 1).u(6, 20).u(4, 0).u(1, 1));
  }
  /// With runs of skipped macroblocks, one QP, and no loop filter.
  Avs& picture(int type, int distance, bool single_reference = true) {
    BitWriter w;
    w.u(16, 0).u(2, type).u(8, distance).u(1, 1).u(2, 0).u(1, 1).u(6, 20);
    if (type == kP) w.u(1, single_reference);
    return unit(0xB6, w.u(4, 0).u(1, 1).u(1, 1));
  }
  Avs& slice(const BitWriter& bits, int row = 0) { return unit(row, bits); }
  /// 128 in all samples: nothing to predict from, and DC in all blocks.
  Avs& grey(int distance) {
    BitWriter w;
    for (int i = 0; i < kMacroblocks; ++i) w.u(4, 15).ue(0).ue(4);
    return i_picture(distance).slice(w);
  }
  /// Luma of the reference times scale / 32 plus shift, chroma plus shift; weights of the other reference come first
  /// or second.
  Avs& weighted(int type, int distance, std::array<std::array<int, 2>, 2> weights) {
    BitWriter w;
    w.u(1, 1);
    for (const auto& [scale, shift] : weights) {
      w.u(8, scale).u(8, static_cast<std::uint8_t>(shift)).u(1, 1).u(8, 32).u(8, static_cast<std::uint8_t>(shift));
      w.u(1, 1);
    }
    return picture(type, distance).slice(w.u(1, 0).ue(kMacroblocks));
  }
  Avs& skipped(int type, int distance) { return picture(type, distance).slice(BitWriter().u(1, 0).ue(kMacroblocks)); }
  const Stream& stream() const { return out_; }

 private:
  Stream out_;
};

int chroma(const moxdec::Frame& frame, int plane, int x, int y) {
  return std::to_integer<int>(frame.shown_row(plane, y)[x]);
}

TEST(AvsPrediction, IsWeighted) {
  // 128 * 16 / 32 + 10 = 74; then (74 * 48 + 16) >> 5 = 111, less 11.
  Avs m;
  m.sequence().grey(0).weighted(kP, 1, {{{16, 10}, {0, 0}}}).weighted(kP, 3, {{{48, -11}, {0, 0}}});
  // Between them, in display order: (74 + 5) * 1 and (100 - 3), their mean rounded up.
  m.weighted(kB, 2, {{{32, 5}, {32, -3}}});
  const Decoded decoded = decode_all(m.stream());
  EXPECT_EQ(decoded.error, "");
  EXPECT_EQ(decoded.shades(), (std::vector<int>{128, 74, 88, 100}));
  ASSERT_EQ(decoded.frames.size(), 4u);
  for (const int plane : {1, 2}) {
    EXPECT_EQ(chroma(*decoded.frames[1], plane, 15, 15), 138);
    EXPECT_EQ(chroma(*decoded.frames[2], plane, 0, 8), 134);  // (143 + 124 + 1) >> 1
    EXPECT_EQ(chroma(*decoded.frames[3], plane, 7, 0), 127);
  }
}

/// Sixteen 8x8 blocks in four macroblocks of four parts: weights of one part leave its neighbours alone.
TEST(AvsPrediction, IsWeightedByTheMacroblock) {
  BitWriter w;
  w.u(1, 1);
  for (int i = 0; i < 2; ++i) w.u(8, 32).u(8, 20).u(1, 1).u(8, 32).u(8, 20).u(1, 1);
  w.u(1, 1);
  for (int i = 0; i < kMacroblocks; ++i) {
    w.ue(0).ue(3);  // four parts, each one moved by a quarter sample more: no two are predicted together
    for (int part = 0; part < 4; ++part) w.se(part == 0 && i == 0 ? 1 : 4 * part).se(i);
    w.u(1, i % 2).ue(0);  // weighted or not; nothing coded
  }
  Avs m;
  m.sequence().grey(0).picture(kP, 1).slice(w);
  const Decoded decoded = decode_all(m.stream());
  EXPECT_EQ(decoded.error, "");
  ASSERT_EQ(decoded.frames.size(), 2u);
  for (int y = 0; y < 32; y += 4) {
    for (int x = 0; x < 32; x += 4) {
      const int expected = x < 16 ? 128 : 148;
      EXPECT_EQ(chroma(*decoded.frames[1], 0, x, y), expected) << x << ", " << y;
      EXPECT_EQ(chroma(*decoded.frames[1], 2, x / 2, y / 2), expected) << x << ", " << y;
    }
  }
}

TEST(AvsPayload, LosesBitsThatKeepStartCodesAway) {
  moxdec::avs::Payload payload;
  const Stream unit = {0x81, 0, 0, 2, 0xC0, 0, 0, 3, 0, 2, 0x80};
  payload.assign(unit);
  moxdec::avs::BitReader bits = payload.reader();
  // 00 00 02 is 22 zeros; 00 00 03 and a lone 02 are data. The last 1 is stuffing.
  EXPECT_EQ(bits.bits(8), 0x81u);
  EXPECT_EQ(bits.bits(22), 0u);
  EXPECT_EQ(bits.bits(32), 0xC0000003u);
  EXPECT_EQ(bits.bits(16), 0x0002u);
  EXPECT_FALSE(bits.more_data());
}

TEST(AvsOrder, HoldsReferencesBack) {
  const auto shift = [](Avs& m, int type, int distance, int value) {
    m.weighted(type, distance, {{{32, value}, {32, value}}});
  };
  Avs m;
  m.sequence().skipped(kB, 0).grey(3);  // a B picture without references is left out
  m.skipped(kB, 2);
  shift(m, kP, 6, 10);
  m.skipped(kB, 4).skipped(kB, 5);
  shift(m, kP, 7, 10);
  EXPECT_EQ(decode_all(m.stream()).shades(), (std::vector<int>{128, 133, 133, 138, 148}));
  // The end of a sequence lets go of its references.
  const Decoded decoded = decode_all(m.unit(0xB1, {}).sequence().skipped(kP, 8).stream());
  EXPECT_EQ(decoded.frames.size(), 5u);
  EXPECT_NE(decoded.error.find("without a picture before it"), std::string::npos) << decoded.error;
}

TEST(AvsErrors, AreNamed) {
  const auto sequence = [](const SequenceFields& f) { return Avs().sequence(f).stream(); };
  const Avs s = Avs().sequence(), ready = Avs(s).grey(0);
  const auto p = [&](const BitWriter& bits) { return Avs(ready).picture(kP, 1, false).slice(bits).stream(); };
  const auto part = [](int reference) { return BitWriter().u(1, 0).ue(0).ue(0).u(1, reference); };
  const BitWriter grey = BitWriter().u(4, 15).ue(0).ue(4), vertical = BitWriter().u(3, 0).u(3, 7).ue(0).ue(4);
  BitWriter five;
  for (int i = 0; i < 5; ++i) five.append(grey);
  const struct {
    const char* name;
    Stream stream;
    const char* message;
    std::size_t frames;
  } cases[] = {
      {"profile", sequence({.profile = 0x48}), "a profile other than Jizhun", 0},
      {"4:2:2", sequence({.chroma_format = 2}), "a chroma format other than 4:2:0", 0},
      {"10 bits", sequence({.precision = 2}), "samples of other than 8 bits", 0},
      {"no size", sequence({.width = 0}), "a picture has no size", 0},
      {"nothing", s.stream(), "no picture found", 0},
      {"fields", Avs(s).i_picture(0, false).stream(), "field pictures are not supported", 0},
      {"cut header", Avs().unit(0xB0, BitWriter().u(8, 0x20).u(9, 1).u(28, 9).u(5, 9)).i_picture(0).stream(),
       "the data end too early", 0},
      {"no picture", Avs(s).slice(grey).stream(), "a slice without a picture header", 0},
      {"P first", Avs(s).skipped(kP, 1).stream(), "a P picture without a picture before it", 0},
      {"type", Avs(ready).picture(3, 1).stream(), "picture_coding_type is out of range", 1},
      {"distance", Avs(ready).skipped(kP, 0).stream(), "the same distance", 1},
      {"second reference", p(part(1).se(0).se(0).ue(0)), "a reference is missing", 1},
      {"long vector", p(part(0).se(16385).se(0).ue(0)), "mv_diff_x is out of range", 1},
      {"no type", p(BitWriter().u(1, 0).ue(0).ue(80)), "mb_type is out of range", 1},
      {"run", p(BitWriter().u(1, 0).ue(5)), "mb_skip_run is out of range", 1},
      {"cbp", Avs(s).i_picture(0).slice(BitWriter().u(4, 15).ue(0).ue(64)).stream(), "cbp is out of range", 0},
      {"mode", Avs(s).i_picture(0).slice(vertical).stream(), "an intra mode needs samples that are not there", 0},
      {"too many", Avs(s).i_picture(0).slice(five).stream(), "more macroblocks than the picture has", 1},
      {"too few", Avs(s).i_picture(0).slice(grey).stream(), "macroblocks are missing at the end", 0},
      {"second row", Avs(s).i_picture(0).slice(grey, 1).stream(), "macroblocks are missing in front", 0},
      {"twice", Avs(ready).slice(grey).stream(), "macroblocks are missing in front", 1},
  };
  for (const auto& c : cases) {
    const Decoded decoded = decode_all(c.stream);
    EXPECT_NE(decoded.error.find(c.message), std::string::npos) << c.name << ": " << decoded.error;
    EXPECT_EQ(decoded.frames.size(), c.frames) << c.name;
  }
}

}  // namespace
}  // namespace mox::test
