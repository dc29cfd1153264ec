/// Hand-made H.263 streams: headers, prediction that can be done by hand, groups and slices, and one error message for
/// each thing that can be wrong or is not supported.
#include "common/h263_vlc_tables.hpp"
#include "moxdec/decoding.hpp"
#include "moxdec/stream_builder.hpp"

namespace mox::test {
namespace {

using example::VlcCodes;
using moxdec::Chroma;

constexpr int kI = 0, kP = 1;

/// Flags of an extended header.
enum Option {
  kModifiedQuantiser = 1,
  kIndependent = 4,
  kSelection = 8,
  kSlices = 16,
  kDeblocking = 32,
  kAdvancedPrediction = 128,
  kArithmetic = 256,
  kUnrestricted = 512,
  kClock = 1024
};

struct Plain {
  int type = kI, format = 1, flags = 0;  // flags: unrestricted, arithmetic, advanced prediction, PB
  int quantiser = 8, multipoint = 0;
};
struct Extended {
  int type = kI, options = 0, width = 32, height = 16, quantiser = 8;
  int full = 1;      // 0: options and size as before
  int rounding = 0;  // 2: reduced resolution, 4: resampling
  int rectangular = 0, divisor = 60, ending = 1;
};

BitWriter& code(BitWriter& w, std::string_view codes, int index) {
  const auto [bits, length] = VlcCodes(codes)[index];
  return w.u(length, bits);
}
/// An intra macroblock of one shade, in an I or a P picture.
BitWriter& intra(BitWriter& w, int shade, int type = kI) {
  if (type == kP) w.u(1, 0);
  code(w, type == kP ? example::kMcbpcInterCodes : example::kMcbpcIntraCodes, type == kP ? 12 : 0);
  code(w, example::kCbpyCodes, 0);
  for (int i = 0; i < 6; ++i) w.u(8, shade);
  return w;
}
/// A predicted macroblock without a residual, up to its vector.
BitWriter& inter(BitWriter& w) { return w.u(1, 0).u(1, 1).u(2, 3); }
/// The same with the differences of its vector.
BitWriter& moved(BitWriter& w, int x, int y) {
  return code(code(inter(w), example::kVectorCodes, 32 + x), example::kVectorCodes, 32 + y);
}
/// A component of a vector in the reversible code.
BitWriter& reversible(BitWriter& w, int value) {
  const int magnitude = std::abs(value);
  if (value == 0) return w.u(1, 1);
  w.u(1, 0);
  int size = 0;
  while (magnitude >> (size + 1)) ++size;
  for (int i = size; i-- > 0;) w.u(1, magnitude >> i & 1).u(1, 1);
  return w.u(1, value < 0).u(1, 0);
}
BitWriter bits(int count, std::uint32_t value) { return BitWriter().u(count, value); }
BitWriter shades(std::initializer_list<int> values) {
  BitWriter w;
  for (const int value : values) intra(w, value);
  return w;
}

class H263 {
 public:
  H263& picture(const Plain& f, const BitWriter& macroblocks) {
    BitWriter w;
    w.u(22, 32).u(8, 3).u(5, 16).u(3, f.format).u(1, f.type).u(4, f.flags).u(5, f.quantiser).u(1, f.multipoint);
    return add(w.u(1, 1).u(8, 77).u(1, 0).append(macroblocks));
  }
  H263& picture(const Extended& f, const BitWriter& macroblocks) {
    BitWriter w;
    w.u(22, 32).u(8, 3).u(5, 16).u(3, 7).u(3, f.full);
    if (f.full) w.u(3, 6).u(11, f.options).u(4, 8);
    w.u(3, f.type).u(3, f.rounding).u(3, f.ending).u(1, 0);
    if (f.full) w.u(4, 15).u(9, f.width / 4 - 1).u(1, 1).u(9, f.height / 4).u(16, 0x0C0B);
    if (f.full && f.options & kClock) w.u(1, 1).u(7, f.divisor);
    if (f.options & kClock) w.u(2, 3);
    if (f.full && f.options & kUnrestricted) w.u(2, 1);
    if (f.full && f.options & kSlices) w.u(1, f.rectangular).u(1, 1);
    return add(w.u(5, f.quantiser).u(1, 0).append(macroblocks));
  }
  const Stream& stream() const { return bytes_; }

 private:
  H263& add(const BitWriter& picture) {
    Stream more = BitWriter(picture).align().payload();
    more.pop_back();  // the stop bit's
    bytes_.insert(bytes_.end(), more.begin(), more.end());
    return *this;
  }
  Stream bytes_;
};

/// Samples of a row of the last frame, if there are as many frames as there should be.
std::vector<int> last_row(const Decoded& decoded, std::size_t frames, int y, std::initializer_list<int> columns,
                          int plane = 0) {
  EXPECT_EQ(decoded.error, "");
  EXPECT_EQ(decoded.frames.size(), frames);
  std::vector<int> values;
  if (decoded.frames.size() != frames) return values;
  for (const int x : columns) values.push_back(std::to_integer<int>(decoded.frames.back()->shown_row(plane, y)[x]));
  return values;
}
using Row = std::vector<int>;

TEST(H263Headers, TellSizeAndRateAndKeepOptions) {
  // The third picture is as the second: 36x20 with a clock of its own, and shown without what rounds it up.
  H263 h;
  h.picture(Plain{}, shades({9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9,
                             9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9}));
  h.picture(Extended{.options = kClock, .width = 36, .height = 20}, shades({50, 60, 70, 80, 90, 100}));
  h.picture(Extended{.type = kP, .options = kClock, .full = 0}, bits(6, 63));
  const auto decoder = moxdec::find_codec(h.stream(), "").open(h.stream());
  EXPECT_EQ(decoder->next()->format(), (moxdec::FrameFormat{128, 96, Chroma::k420, 8}));
  EXPECT_EQ(decoder->frame_rate().numerator, 30000u);
  EXPECT_EQ(decoder->next()->format(), (moxdec::FrameFormat{36, 20, Chroma::k420, 8}));
  EXPECT_EQ(decoder->frame_rate().numerator, 1800000u);
  EXPECT_EQ(decoder->frame_rate().denominator, 60 * 1001u);
  const auto copy = decoder->next();
  EXPECT_EQ(copy->format(), (moxdec::FrameFormat{36, 20, Chroma::k420, 8}));
  EXPECT_EQ(std::to_integer<int>(copy->shown_row(2, 9)[17]), 100);
  EXPECT_EQ(decoder->next(), nullptr);
}

TEST(H263Prediction, ByHalfSamplesWithBothRoundings) {
  for (const int rounding : {0, 1}) {
    BitWriter w;
    moved(moved(w, 15, 1), -15, -1);
    const Decoded decoded = decode_all(
        H263().picture(Extended{}, shades({100, 121})).picture(Extended{.type = kP, .rounding = rounding}, w).stream());
    EXPECT_EQ(last_row(decoded, 2, 3, {7, 8, 9, 16}), (Row{100, 111 - rounding, 121, 121}));
    EXPECT_EQ(last_row(decoded, 2, 3, {3, 4, 5, 8}, 1), (Row{100, 111 - rounding, 121, 121}));
  }
}

TEST(H263Prediction, ByLongVectors) {
  // A shade for each of 8 columns. Sums of -63, -64, 62 and 64 half samples: only beyond 31.5 samples they come back.
  BitWriter columns, w;
  for (int i = 0; i < 48; ++i) intra(columns, 20 + 20 * (i % 8));
  for (const int x : {-32, -31, -1, 31, 31, 2}) moved(w, x, 0);
  w.u(32, 0xFFFFFFFF).u(10, 0x3FF);
  const auto decoded = [&](int flags) {
    return decode_all(H263().picture(Plain{}, columns).picture(Plain{.type = kP, .flags = flags}, w).stream());
  };
  EXPECT_EQ(last_row(decoded(8), 2, 0, {0, 31, 32, 48, 49, 64, 65, 80}), (Row{20, 20, 60, 90, 100, 120, 140, 120}));
  // Without the option, sums come back within 16 samples: -63 is 1, then 0.
  EXPECT_EQ(last_row(decoded(0), 2, 0, {30, 31, 32, 47}), (Row{40, 50, 60, 60}));
}

TEST(H263Prediction, ByReversibleVectors) {
  // (1, 1) with its marker, then 13 more to the right and 1 less down, then so far to the left that the block lies
  // beyond the picture.
  BitWriter w;
  inter(w).u(6, 0).u(1, 1);
  inter(w).u(9, 0b011011100).u(3, 0b010);
  reversible(reversible(inter(w), -300), -300);
  const Decoded decoded =
      decode_all(H263()
                     .picture(Extended{.options = kUnrestricted, .width = 48}, shades({100, 121, 200}))
                     .picture(Extended{.type = kP, .options = kUnrestricted, .width = 48}, w)
                     .stream());
  EXPECT_EQ(last_row(decoded, 2, 5, {14, 15, 24, 25, 32, 47}), (Row{100, 111, 121, 200, 100, 100}));
  EXPECT_EQ(last_row(decoded, 2, 0, {16, 23}, 1), (Row{100, 100}));
}

TEST(H263Prediction, OverlapsBlocks) {
  // The second macroblock's vector of 8 samples takes part in the right half of the first, where it leads from column
  // 12 on to the other shade; a weight of 1/8 is worth 10. So it does not if it is intra or belongs to another slice.
  enum { kPlainCase, kIntraCase, kSliceCase };
  for (const int c : {kPlainCase, kIntraCase, kSliceCase}) {
    const int options = kAdvancedPrediction | (c == kSliceCase ? kSlices : 0);
    BitWriter first = c == kSliceCase ? bits(8, 129) : BitWriter(), w = first;
    moved(w, 0, 0);
    if (c == kSliceCase) w.u(17, 1).u(1, 1).u(6, 1).u(5, 8).u(1, 1).u(2, 0);
    c == kIntraCase ? intra(w, 180, kP) : moved(w, 16, 0);
    const Decoded decoded = decode_all(H263()
                                           .picture(Extended{.options = options}, first.append(shades({100, 180})))
                                           .picture(Extended{.type = kP, .options = options}, w)
                                           .stream());
    const bool plain = c == kPlainCase;
    EXPECT_EQ(last_row(decoded, 2, 0, {11, 12, 14, 15, 16}),
              (plain ? Row{100, 110, 110, 120, 180} : Row{100, 100, 100, 100, 180}));
    EXPECT_EQ(last_row(decoded, 2, 3, {11, 12, 14, 15, 16}),
              (plain ? Row{100, 110, 120, 120, 180} : Row{100, 100, 100, 100, 180}));
  }
}

TEST(H263Segments, GroupHeadersEndPrediction) {
  // Both vectors above are 8 samples to the right, the difference below is 0.
  for (const bool header : {false, true}) {
    BitWriter w;
    moved(moved(w, 16, 0), 0, 0);
    if (header) w.u(17, 1).u(5, 1).u(2, 0).u(5, 8);
    moved(moved(w, 0, 0), 0, 0);
    const Decoded decoded = decode_all(H263()
                                           .picture(Extended{.height = 32}, shades({100, 200, 100, 200}))
                                           .picture(Extended{.type = kP, .height = 32}, w)
                                           .stream());
    EXPECT_EQ(last_row(decoded, 2, 0, {7, 8}), (Row{100, 200}));
    EXPECT_EQ(last_row(decoded, 2, 16, {7, 8}), (Row{100, header ? 100 : 200}));
  }
}

/// The header of a slice from macroblock `address` on, of a picture of 32x32; `width` if rectangular.
BitWriter slice(bool first, int address, int width = 0) {
  BitWriter w;
  if (!first) w.u(17, 1);
  w.u(1, 1).u(6, address);
  if (!first) w.u(5, 8);
  if (width > 0) w.u(3, width - 1);
  w.u(1, 1);
  if (!first) w.u(2, 0);
  return w;
}

TEST(H263Segments, SlicesComeInAnyOrder) {
  BitWriter rows = slice(true, 2), columns = slice(true, 1, 1);
  rows.append(shades({30, 40}))
      .append(slice(false, 0))
      .append(shades({10}))
      .append(slice(false, 1))
      .append(shades({20}));
  columns.append(shades({20, 40})).append(slice(false, 0, 1)).append(shades({10, 30}));
  for (const int rectangular : {0, 1}) {
    const Decoded decoded =
        decode_all(H263()
                       .picture(Extended{.options = kSlices, .height = 32, .rectangular = rectangular},
                                rectangular ? columns : rows)
                       .stream());
    EXPECT_EQ(last_row(decoded, 1, 15, {15, 16}), (Row{10, 20}));
    EXPECT_EQ(last_row(decoded, 1, 16, {15, 16}), (Row{30, 40}));
  }
}

TEST(H263Quantiser, Changes) {
  // A level of 2 at F(1,0): 4 q + q or q - 1, of which about 0.1734 goes to the first sample.
  struct Change {
    int options, before, count;
    std::uint32_t value;
    int sample;
  };
  constexpr int kModified = kModifiedQuantiser;
  for (const Change& c : {Change{0, 20, 2, 0, 116},
                          {0, 20, 2, 1, 115},
                          {0, 20, 2, 2, 118},
                          {0, 20, 2, 3, 119},
                          {0, 31, 2, 3, 127},
                          {0, 1, 2, 1, 101},
                          {kModified, 20, 2, 2, 115},
                          {kModified, 20, 2, 3, 119},
                          {kModified, 20, 6, 31, 127}}) {
    BitWriter w;
    code(code(w, example::kMcbpcIntraCodes, 4), example::kCbpyCodes, 8).u(c.count, c.value);
    w.u(8, 100).u(10, 0b0000110010);
    for (int i = 1; i < 6; ++i) w.u(8, 100);
    const Decoded decoded =
        decode_all(H263().picture(Extended{.options = c.options, .width = 16, .quantiser = c.before}, w).stream());
    EXPECT_EQ(last_row(decoded, 1, 0, {0, 8}), (Row{c.sample, 100})) << c.before << ' ' << c.value;
  }
}

TEST(H263Segments, AddressesAndWidthsHaveTheBitsOfTheSize) {
  struct Size {
    int macroblocks, address_bits, width_bits;
  };
  for (const Size& size : {Size{12, 6, 5}, {22, 6, 5}, {23, 6, 6}, {48, 6, 7}, {49, 7, 7}, {99, 7, 7}, {100, 9, 7}}) {
    BitWriter w;
    w.u(1, 1).u(size.address_bits, 1).u(size.width_bits, size.macroblocks - 2).u(1, 1);
    for (int i = 1; i < size.macroblocks; ++i) intra(w, 200);
    w.u(17, 1).u(1, 1).u(size.address_bits, 0).u(5, 8).u(size.width_bits, 0).u(1, 1).u(2, 0);
    const Extended f{.options = kSlices, .width = 16 * size.macroblocks, .rectangular = 1};
    EXPECT_EQ(last_row(decode_all(H263().picture(f, intra(w, 100)).stream()), 1, 0, {15, 16}), (Row{100, 200}));
  }
}

TEST(H263Deblocking, TakesTheStrengthOfTheMacroblockBehindTheEdge) {
  // d = 60 / 8, 12 / 8 in the third picture. A quantiser of 5 would leave the edge as it is.
  const Extended f{.options = kDeblocking | kModifiedQuantiser, .quantiser = 5};
  const Extended p{.type = kP, .options = f.options, .quantiser = 31, .full = 0};
  BitWriter w, coded;
  code(code(intra(w, 100), example::kMcbpcIntraCodes, 4), example::kCbpyCodes, 0).u(6, 31);
  for (int i = 0; i < 6; ++i) w.u(8, 120);
  moved(coded, 0, 0).u(1, 1);
  H263 h;
  EXPECT_EQ(last_row(decode_all(h.picture(f, w).stream()), 1, 9, {13, 14, 15, 16, 17, 18}),
            (Row{100, 103, 107, 113, 117, 120}));
  EXPECT_EQ(last_row(decode_all(h.picture(p, bits(2, 3)).stream()), 2, 9, {14, 15, 16, 17}), (Row{103, 107, 113, 117}));
  EXPECT_EQ(last_row(decode_all(h.picture(p, coded).stream()), 3, 9, {14, 15, 16, 17}), (Row{103, 108, 112, 117}));
}

struct Refused {
  const char* name;
  Stream stream;
  const char* message;
  std::size_t frames = 0;
};

TEST(H263Errors, AreNamed) {
  const H263 ready = H263().picture(Extended{}, shades({100, 200}));
  const auto plain = [](const Plain& f) { return H263().picture(f, {}).stream(); };
  const auto extended = [](const Extended& f) { return H263().picture(f, {}).stream(); };
  const auto p = [&](const BitWriter& w, int options = 0) {
    return H263(ready).picture(Extended{.type = kP, .options = options}, w).stream();
  };
  const auto sliced = [](const BitWriter& w, int rectangular = 0) {
    return H263().picture(Extended{.options = kSlices, .height = 32, .rectangular = rectangular}, w).stream();
  };
  BitWriter far, twice = slice(true, 1), below = slice(true, 3), zeros;
  for (int i = 0; i < 2; ++i) reversible(reversible(inter(far), 8000), 0);
  twice.append(shades({1})).append(slice(false, 1)).append(shades({1}));
  below.append(shades({1, 1}));
  Stream cut = ready.stream();
  cut.insert(cut.end(), cut.begin(), cut.begin() + 6);
  const std::vector<Refused> cases = {
      {"annex C", plain({.multipoint = 1}), "continuous presence (annex C) is not supported"},
      {"annex E", plain({.flags = 4}), "arithmetic coding (annex E) is not supported"},
      {"annex E, extended", extended({.options = kArithmetic}), "arithmetic coding (annex E) is not supported"},
      {"annex G", plain({.type = kP, .flags = 1}), "PB frames (annex G) are not supported"},
      {"annex M", extended({.type = 2}), "improved PB frames (annex M) are not supported"},
      {"annex N", extended({.options = kSelection}), "selection of reference pictures (annex N) is not supported"},
      {"annex O", extended({.type = 3}), "B pictures and layers (annex O) are not supported"},
      {"annex P", extended({.rounding = 4}), "resampling of reference pictures (annex P) is not supported"},
      {"annex Q", extended({.rounding = 2}), "updates of reduced resolution (annex Q) are not supported"},
      {"annex R", extended({.options = kIndependent}), "independent segments (annex R) are not supported"},
      {"format 6", plain({.format = 6}), "a picture format is none"},
      {"type 7", extended({.type = 7}), "a broken picture type"},
      {"ending", extended({.ending = 3}), "a broken picture type"},
      {"no options", extended({.full = 0}), "options that no header before has told"},
      {"no height", extended({.height = 0}), "a picture has no size"},
      {"too high", extended({.height = 1156}), "is too high"},
      {"clock 0", extended({.options = kClock, .divisor = 0}), "a picture clock is none"},
      {"quantiser", extended({.quantiser = 0}), "a quantiser is 0"},
      {"P first", extended({.type = kP}), "a picture that is predicted from is missing"},
      {"other size", H263(ready).picture(Extended{.type = kP, .width = 48}, {}).stream(),
       "a picture that is predicted from is missing", 1},
      {"no type", p(bits(20, 0)), "broken type of a macroblock", 1},
      {"no pattern", p(bits(20, 1 << 18)), "broken pattern of blocks", 1},
      {"no vector", p(bits(20, 7 << 16)), "broken vector", 1},
      {"too far", p(far, kUnrestricted), "a vector is too long", 1},
      {"marker", p(inter(zeros).u(8, 0), kUnrestricted), "a marker bit is 0", 1},
      {"DC 0", H263().picture(Extended{}, bits(13, 0b1001100000000)).stream(), "broken coefficients"},
      {"cut", cut, "the data end too early", 1},
      {"group", H263().picture(Extended{.height = 32}, shades({1, 1}).u(17, 1).u(5, 2)).stream(),
       "a group of blocks is missing"},
      {"twice", sliced(twice), "a macroblock comes twice"},
      {"below", sliced(below), "more macroblocks than the picture has"},
      {"wide", sliced(slice(true, 1, 2), 1), "a slice is wider than the picture"},
  };
  for (const Refused& c : cases) {
    const Decoded decoded = decode_all(c.stream);
    EXPECT_NE(decoded.error.find(c.message), std::string::npos) << c.name << ": " << decoded.error;
    EXPECT_EQ(decoded.frames.size(), c.frames) << c.name;
  }
}

}  // namespace
}  // namespace mox::test
