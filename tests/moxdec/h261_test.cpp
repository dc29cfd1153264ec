/// Hand-made H.261 streams: the places of groups, vectors, the loop filter, and one error message for each thing that
/// can be wrong or is not supported.
#include "common/h261_vlc_tables.hpp"
#include "moxdec/decoding.hpp"
#include "moxdec/stream_builder.hpp"

namespace mox::test {
namespace {

using example::VlcCodes;

constexpr int kQcif = 0, kCif = 1;

BitWriter& code(BitWriter& w, std::string_view codes, int index) {
  const auto [bits, length] = VlcCodes(codes)[index];
  return w.u(length, bits);
}
/// A macroblock `increment` addresses on, of one shade.
BitWriter& intra(BitWriter& w, int shade, int increment = 1) {
  code(w, example::kH261AddressCodes, increment - 1).u(4, 1);
  for (int i = 0; i < 6; ++i) w.u(8, shade).u(2, 2);
  return w;
}
/// A predicted macroblock without a residual; differences of its vector.
BitWriter& moved(BitWriter& w, int x, int y, bool filter = false, int increment = 1) {
  code(w, example::kH261AddressCodes, increment - 1);
  filter ? w.u(3, 1) : w.u(9, 1);
  return code(code(w, example::kH261VectorCodes, 16 + x), example::kH261VectorCodes, 16 + y);
}
/// A whole group of one shade, or one with another shade right of its first column.
BitWriter flat(int shade, int right = 0) {
  BitWriter w;
  for (int i = 0; i < 33; ++i) intra(w, right && i % 11 ? right : shade);
  return w;
}

class H261 {
 public:
  H261& picture(int format = kQcif, int high_resolution_off = 1) {
    bits_.u(20, 16).u(5, 0).u(3, 0).u(1, format).u(1, high_resolution_off).u(1, 1).u(1, 1).u(8, 77).u(1, 0);
    return *this;
  }
  H261& group(int number, const BitWriter& macroblocks, int quantiser = 8) {
    bits_.u(16, 1).u(4, number).u(5, quantiser).u(1, 1).u(8, 55).u(1, 0).append(macroblocks);
    return *this;
  }
  /// A picture whose other groups have nothing but copies, or are of one shade.
  H261& with_first(const BitWriter& first, const BitWriter& others = {}) {
    return picture().group(1, first).group(3, others).group(5, others);
  }
  Stream stream() const {
    Stream bytes = BitWriter(bits_).align().payload();
    bytes.pop_back();  // the stop bit's
    return bytes;
  }

 private:
  BitWriter bits_;
};

std::vector<int> samples_at(const moxdec::Frame& frame, int plane, int y, std::initializer_list<int> columns) {
  std::vector<int> values;
  for (const int x : columns) values.push_back(std::to_integer<int>(frame.shown_row(plane, y)[x]));
  return values;
}

TEST(H261Pictures, GroupsLieInTheirPlaces) {
  H261 cif, qcif;
  cif.picture(kCif);
  for (int i = 1; i <= 12; ++i) cif.group(i, flat(10 * i));
  qcif.picture().group(1, flat(10)).group(3, flat(30)).group(5, flat(50));
  const Decoded large = decode_all(cif.stream()), small = decode_all(qcif.stream());
  ASSERT_EQ(large.frames.size(), 1u) << large.error;
  ASSERT_EQ(small.frames.size(), 1u) << small.error;
  EXPECT_EQ(large.frames[0]->format(), (moxdec::FrameFormat{352, 288, moxdec::Chroma::k420, 8}));
  for (int row = 0; row < 6; ++row) {
    const std::vector<int> two = {20 * row + 10, 20 * row + 20};
    EXPECT_EQ(samples_at(*large.frames[0], 0, 48 * row, {175, 176}), two);
    EXPECT_EQ(samples_at(*large.frames[0], 2, 24 * row + 23, {87, 88}), two);
  }
  for (int row = 0; row < 3; ++row) EXPECT_EQ(samples_at(*small.frames[0], 0, 48 * row + 47, {175})[0], 20 * row + 10);
}

TEST(H261Prediction, MovesAndFilters) {
  // Shades 100 and 200 meet at column 16. Stuffing stands in front of the second macroblock, which is filtered.
  BitWriter second;
  code(intra(second, 50), example::kH261AddressCodes, 33);
  moved(moved(second, -5, 0, true), 5, 0);
  const Decoded decoded = decode_all(H261().with_first(flat(100, 200), flat(100)).with_first(second).stream());
  EXPECT_EQ(decoded.error, "");
  ASSERT_EQ(decoded.frames.size(), 2u);
  const moxdec::Frame& frame = *decoded.frames[1];
  // From column 11 on: 4 of 8 columns in the first block are dark, none of the second; the edge of blocks stays as it
  // is.
  for (const int y : {0, 7, 15}) {
    EXPECT_EQ(samples_at(frame, 0, y, {0, 16, 19, 20, 21, 22, 24, 32}),
              (std::vector<int>{50, 100, 100, 125, 175, 200, 200, 200}));
  }
  // Chroma from column 6 on: -5 / 2 towards zero.
  EXPECT_EQ(samples_at(frame, 1, 3, {8, 9, 10, 11}), (std::vector<int>{100, 125, 175, 200}));
  EXPECT_EQ(samples_at(frame, 0, 20, {0, 15, 16}), (std::vector<int>{100, 100, 200}));
}

TEST(H261Prediction, VectorsFollowFromTheOnesBefore) {
  // A shade of its own for each macroblock. Differences add up, wrap, and start from 0 in a row's first macroblock,
  // behind a gap and behind an intra macroblock.
  BitWriter shades;
  for (int i = 0; i < 33; ++i) intra(shades, 20 + 5 * i);
  const auto decoded_with = [&](int x) {
    BitWriter w;
    moved(moved(moved(w, 8, 0), 8, 15), -15, -15);  // (8, 0), (-16, 15), (1, 0)
    moved(moved(w, 3, 0, false, 2), 10, 0);         // one left out, (3, 0), (13, 0)
    moved(w, x, 1, false, 6);                       // (x, 1) in the second row
    return decode_all(H261().with_first(shades, flat(1)).with_first(moved(intra(w, 99), 9, 0)).stream());
  };
  EXPECT_NE(decoded_with(-4).error.find("a vector points outside of the picture"), std::string::npos);
  const Decoded decoded = decoded_with(4);
  EXPECT_EQ(decoded.error, "");
  ASSERT_EQ(decoded.frames.size(), 2u);
  const moxdec::Frame& frame = *decoded.frames[1];
  EXPECT_EQ(samples_at(frame, 0, 0, {7, 8, 16, 46, 47, 48, 64 + 12, 64 + 13, 80 + 2, 80 + 3}),
            (std::vector<int>{20, 25, 20, 30, 35, 35, 40, 45, 45, 50}));
  EXPECT_EQ(samples_at(frame, 0, 1, {16, 31}), (std::vector<int>{75, 75}));
  EXPECT_EQ(samples_at(frame, 0, 16, {0, 11, 12, 16, 32 + 6, 32 + 7}), (std::vector<int>{75, 75, 80, 99, 85, 90}));
}

struct Refused {
  const char* name;
  Stream stream;
  const char* message;
  std::size_t frames = 0;
};

TEST(H261Errors, AreNamed) {
  const auto bits = [](int count, std::uint32_t value) { return BitWriter().u(count, value); };
  const H261 ready = H261().with_first(flat(100), flat(100));
  const auto p = [&](const BitWriter& first) { return H261(ready).with_first(first).stream(); };
  const auto i = [&](const BitWriter& first) { return H261().with_first(first).stream(); };
  BitWriter left, below, many, coefficients = bits(5, 17), quantiser = bits(8, 129);
  moved(left, -1, 0);
  moved(moved(below, 0, 0, false, 33), 0, 0);
  intra(intra(many, 9, 33), 9);
  const Stream twice = H261(ready).picture().group(1, {}).group(1, {}).stream();
  const Stream extra = H261(ready).group(7, {}).stream();
  const Stream cut = [&] {
    Stream all = ready.stream();
    all.resize(60);
    return all;
  }();
  const std::vector<Refused> cases = {
      {"still image", H261().picture(kQcif, 0).group(1, {}).stream(),
       "still images of high resolution are not supported"},
      {"order", H261().picture().group(3, {}).stream(), "groups of blocks are missing"},
      {"twice", twice, "groups of blocks are missing", 1},
      {"end", H261(ready).picture().group(1, {}).stream(), "groups of blocks are missing", 1},
      {"too many groups", extra, "a group of blocks that the picture does not have", 1},
      {"quantiser of a group", H261().picture().group(1, {}, 0).stream(), "a quantiser is 0"},
      {"quantiser of a macroblock", p(quantiser.u(5, 0)), "a quantiser is 0", 1},
      {"copies first", i({}), "a picture that is predicted from is missing"},
      {"to the left", p(left), "a vector points outside of the picture", 1},
      {"addresses", p(below), "more macroblocks than the group has", 1},
      {"one too many", p(many), "more macroblocks than the group has", 1},
      {"no address", p(bits(14, 1)), "broken address of a macroblock", 1},
      {"no type", p(bits(14, 1 << 13)), "broken type of a macroblock", 1},
      {"no vector", p(bits(30, 1u << 29 | 1u << 20)), "broken vector", 1},
      {"no pattern", p(bits(14, 3 << 12)), "broken pattern of blocks", 1},
      {"DC 0", i(coefficients.u(8, 0)), "broken coefficients"},
      {"cut", cut, "the data end too early"},
  };
  for (const Refused& c : cases) {
    const Decoded decoded = decode_all(c.stream);
    EXPECT_NE(decoded.error.find(c.message), std::string::npos) << c.name << ": " << decoded.error;
    EXPECT_EQ(decoded.frames.size(), c.frames) << c.name;
  }
}

}  // namespace
}  // namespace mox::test
