/// Hand-made macroblocks whose samples follow by hand calculation: what no encoder puts into a small stream.
#include <algorithm>

#include "moxdec/decoding.hpp"
#include "moxdec/stream_builder.hpp"

namespace mox::test {
namespace {

/// mb_type of 16x16 macroblocks with DC prediction: without coded parts, with chroma, with luma.
constexpr std::uint32_t kPlain = 3, kWithChroma = 11, kWithLuma = 15;

/// Chroma mode DC, no change of the quantiser.
BitWriter& begin_macroblock(BitWriter& w, std::uint32_t type) { return w.ue(type).ue(0).se(0); }

const SliceFields kSlice = {.poc_lsb = 0};

std::vector<int> first_row(const Decoded& decoded) {
  std::vector<int> samples;
  for (int x = 0; x < decoded.frames.at(0)->format().width; ++x) {
    samples.push_back(std::to_integer<int>(decoded.frames[0]->shown_row(0, 0)[x]));
  }
  return samples;
}

/// Two slices of one macroblock each. The first one has a luma DC of 1, which at quantiser 40 adds 4 to the predicted
/// 128; the second one is 128. The strong filter smooths the edge, if it runs.
TEST(Macroblocks, DeblockingModes) {
  std::vector<int> plain(32, 132), filtered;
  std::fill(plain.begin() + 16, plain.end(), 128);
  filtered = plain;
  const int edge[] = {132, 131, 131, 130, 129, 128};  // the last one 129, until the inner edge behind it is filtered
  std::copy(std::begin(edge), std::end(edge), filtered.begin() + 13);
  for (const int mode : {0, 1, 2}) {
    SliceFields slice = kSlice;
    slice.deblocking = mode;
    BitWriter left = StreamBuilder::slice_header(slice);
    begin_macroblock(left, kPlain).u(4, 0b0101);  // one coefficient, positive, at the first place
    slice.first_mb = 1;
    BitWriter right = StreamBuilder::slice_header(slice);
    begin_macroblock(right, kPlain).u(1, 1);
    StreamBuilder b;
    b.sps({.mb_width = 2}).pps({.deblocking_control = true, .init_qp = 40}).nal(5, 1, left).nal(5, 1, right);
    const Decoded decoded = decode_all(b.stream());
    ASSERT_EQ(decoded.error, "");
    EXPECT_EQ(first_row(decoded), mode == 0 ? filtered : plain) << mode;
  }
}

/// Raw macroblocks are filtered with quantiser 0, which is not at all, whatever the slice's quantiser.
TEST(Macroblocks, RawSamplesStay) {
  StreamBuilder b;
  b.sps({.mb_width = 2}).pps({.init_qp = 51}).raw_slice(kSlice, {100, 105});
  std::vector<int> expected(32, 100);
  std::fill(expected.begin() + 16, expected.end(), 105);
  EXPECT_EQ(first_row(decode_all(b.stream())), expected);
}

/// Samples of all depths and chroma formats, each plane a ramp of its own; luma alone gets grey chroma of 4:2:0.
TEST(Macroblocks, RawSamplesOfAllFormats) {
  for (const auto& format : {std::pair{0, 8}, {0, 12}, {1, 9}, {1, 10}, {2, 8}, {2, 14}}) {
    const int chroma_format = format.first, depth = format.second;
    const auto sample = [depth](int plane, int i) { return (100 * plane + 7 * i) & ((1 << depth) - 1); };
    const int chroma_samples = 64 * chroma_format;
    BitWriter w = StreamBuilder::slice_header(kSlice).ue(25).align();
    for (int i = 0; i < 256; ++i) w.u(depth, sample(0, i));
    for (int plane = 1; plane < 3; ++plane) {
      for (int i = 0; i < chroma_samples; ++i) w.u(depth, sample(plane, i));
    }
    StreamBuilder b;
    b.sps({.profile = 244, .chroma_format = chroma_format, .bit_depth = depth}).pps().nal(5, 1, w);
    const Decoded decoded = decode_all(b.stream());
    ASSERT_EQ(decoded.frames.size(), 1u) << decoded.error;
    Stream expected;
    const auto expect = [&](int value) {
      expected.push_back(static_cast<std::uint8_t>(value));
      if (depth > 8) expected.push_back(static_cast<std::uint8_t>(value >> 8));
    };
    for (int i = 0; i < 256; ++i) expect(sample(0, i));
    for (int i = 0; i < std::max(2 * chroma_samples, 128); ++i) {
      expect(chroma_format == 0 ? 1 << (depth - 1) : sample(1 + i / chroma_samples, i % chroma_samples));
    }
    EXPECT_EQ(raw_planes(*decoded.frames[0]), expected) << chroma_format << " " << depth;
  }
}

/// The quantiser of 10 bits goes from -12 to 51, and round in both directions. A DC value of 1 adds 16 at 40, 1 at 15.
TEST(Macroblocks, QuantiserOfDeepSamples) {
  const auto decode = [](int init_qp, int delta) {
    BitWriter w = StreamBuilder::slice_header(kSlice).ue(kPlain).ue(0).se(delta).u(4, 0b0101);
    StreamBuilder b;
    b.sps({.profile = 110, .bit_depth = 10}).pps({.init_qp = init_qp}).nal(5, 1, w);
    return decode_all(b.stream());
  };
  const auto shade = [](const Decoded& decoded) {
    return decoded.frames.empty() ? -1 : *reinterpret_cast<const std::uint16_t*>(decoded.frames[0]->shown_row(0, 0));
  };
  EXPECT_EQ(shade(decode(40, 0)), 512 + 16);
  EXPECT_EQ(shade(decode(20, 20)), 512 + 16);
  EXPECT_EQ(shade(decode(-8, -16)), 512 + 16);
  EXPECT_EQ(shade(decode(48, 31)), 512 + 1);
  EXPECT_NE(decode(26, 32).error.find("mb_qp_delta is out of range"), std::string::npos);
  EXPECT_NE(decode(26, -33).error.find("mb_qp_delta is out of range"), std::string::npos);
}

/// A macroblock beside a raw one: raw blocks count as 16 coefficients, so the codes have six bits, 000011 for none. Of
/// the chroma blocks the left ones see 16 and what is above; the right ones see the left ones.
TEST(Macroblocks, RawBlocksCountAsFull) {
  BitWriter w = StreamBuilder::slice_header(kSlice);
  begin_macroblock(StreamBuilder::raw_macroblock(w, 100), kWithChroma).u(6, 3).u(4, 0b0101);
  for (int plane = 0; plane < 2; ++plane) w.u(6, 3).u(1, 1).u(6, 3).u(1, 1);
  const Decoded decoded = decode_all(StreamBuilder().sps({.mb_width = 2}).pps().nal(5, 1, w).stream());
  ASSERT_EQ(decoded.error, "");
  EXPECT_EQ(first_row(decoded), std::vector<int>(32, 100));
}

/// Tables of 16 coefficients serve blocks of 15 too, so broken streams can name a 16th coefficient or a 17th place.
TEST(Macroblocks, MoreCoefficientsThanTheBlockHas) {
  const auto decode = [](auto write_block) {
    BitWriter w = StreamBuilder::slice_header(kSlice);
    begin_macroblock(StreamBuilder::raw_macroblock(w, 100), kWithLuma).u(6, 3);
    write_block(w);
    return decode_all(StreamBuilder().sps({.mb_width = 2}).pps().nal(5, 1, w).stream()).error;
  };
  // 16 coefficients: three ones, then levels of ones.
  const auto sixteen = decode([](BitWriter& w) { w.u(6, 63).u(32, ~0u).u(32, ~0u); });
  EXPECT_NE(sixteen.find("macroblock 1: broken coefficients"), std::string::npos) << sixteen;
  // 10 coefficients behind 6 zeros, all of them before the last one: the 17th place. Then the data end.
  const auto place = decode([](BitWriter& w) { w.u(6, 0b100111).u(3, 0).u(1, 1).u(12, 0xFFF).u(4, 1).u(3, 0b100); });
  EXPECT_NE(place.find("macroblock 1: the data end too early"), std::string::npos) << place;
}

/// The last of four macroblocks has all neighbours in its slice but the one above at the left.
TEST(Macroblocks, NeighbourOfAnotherSlice) {
  for (const std::uint32_t type : {kPlain, 4u}) {  // DC, plane
    SliceFields second = kSlice;
    second.first_mb = 1;
    BitWriter w = StreamBuilder::slice_header(second);
    begin_macroblock(StreamBuilder::raw_macroblock(StreamBuilder::raw_macroblock(w, 100), 100), type).u(6, 3);
    if (type != kPlain) w.u(8, 0xFF);  // Another error, which is read before the first one is found.
    StreamBuilder b;
    b.sps({.mb_width = 2, .mb_height = 2}).pps().raw_slice(kSlice, {100}).nal(5, 1, w);
    for (const int threads : {1, 2, 3}) {
      const std::string error = decode_all(b.stream(), References::kPlain, threads).error;
      const auto refused = error.find("macroblock 3: intra prediction from a neighbour that is not");
      EXPECT_EQ(refused != std::string::npos, type != kPlain) << error;
    }
  }
}

}  // namespace
}  // namespace mox::test
