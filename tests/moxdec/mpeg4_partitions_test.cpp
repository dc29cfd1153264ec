/// Partitioned packets of MPEG-4: what damage costs. Streams without damage are among the bundled ones, with the same
/// pictures in plain and in reversible codes.
#include <algorithm>
#include <cstdlib>

#include "moxdec/decoding.hpp"
#include "moxdec/mpeg4/packet_texture.hpp"
#include "moxdec/stream_builder.hpp"
#include "support/random.hpp"

namespace mox::test {
namespace {

using moxdec::mpeg4::Macroblock;
using moxdec::mpeg4::MacroblockLevels;
using moxdec::mpeg4::PacketTexture;

constexpr const char* kDamaged = "the texture of macroblocks is damaged";

/// Macroblocks of random levels, written by the library.
struct Packet {
  std::vector<Macroblock> macroblocks;
  std::vector<MacroblockLevels> levels;
  std::vector<std::size_t> ends;  // bits up to the end of each macroblock
  Stream bytes = Stream(1 << 16);

  /// `alike`: six coded blocks in each, none of which depends on others.
  Packet(Random& random, bool reversible, bool alike = false) {
    Mox8u* byte = bytes.data();
    Mox32s offset = 0;
    for (int i = 0; i < 24; ++i) {
      Macroblock mb;
      mb.intra = !alike && random(0, 1);
      mb.dc_codes = random(0, 3) > 0;
      mb.pattern = alike ? 63 : random(0, 5) ? random(0, 63) : 0;
      MacroblockLevels written{};
      for (int block = 0; block < 6; ++block) {
        if (!mb.is_coded(block)) continue;
        const int first = mb.intra && mb.dc_codes, count = random(1, 12);
        for (int n = 0; n < count;) {
          Mox16s& level = written[block][random(first, n < 2 ? 63 : 12 + n)];
          if (level != 0) continue;
          level = static_cast<Mox16s>(random(1, random(0, 9) ? 3 : 2047) * (random(0, 1) ? 1 : -1));
          ++n;
        }
        constexpr Mox32s kByIndex = -1;
        EXPECT_EQ(mb.intra ? moxiEncodeCoeffsIntra_MPEG4_16s1u(written[block].data(), &byte, &offset, count, reversible,
                                                               mb.dc_codes, kByIndex)
                           : moxiEncodeCoeffsInter_MPEG4_16s1u(written[block].data(), &byte, &offset, count, reversible,
                                                               kByIndex),
                  moxStsOk);
      }
      macroblocks.push_back(mb);
      levels.push_back(written);
      ends.push_back(8 * static_cast<std::size_t>(byte - bytes.data()) + static_cast<std::size_t>(offset));
    }
  }
  std::size_t begin_of(std::size_t i) const { return i == 0 ? 0 : ends[i - 1]; }
  /// The macroblock with a bit.
  std::size_t at(std::size_t bit) const {
    return static_cast<std::size_t>(std::upper_bound(ends.begin(), ends.end(), bit) - ends.begin());
  }

  /// The levels of each macroblock as they are read.
  PacketTexture read(bool reversible, std::size_t expected = 24) const {
    moxdec::PaddedBytes padded;
    padded.assign(bytes);
    PacketTexture texture(reversible);
    for (std::size_t i = 0; i < expected; ++i) texture.expect(macroblocks[i]);
    texture.read(moxdec::ByteReader(padded), ends.back());
    return texture;
  }
};

TEST(Mpeg4Partitions, CoefficientsAreReadFromBothEnds) {
  Random random;
  constexpr std::size_t kZeros = 64, kDoubtful = PacketTexture::kDoubtfulBits;
  for (int round = 0; round < 200; ++round) {
    const bool reversible = round % 2;
    Packet packet(random, reversible);
    const std::size_t count = packet.ends.size(), size = packet.ends.back();
    const PacketTexture whole = packet.read(reversible);
    for (std::size_t i = 0; i < count; ++i) {
      ASSERT_TRUE(whole.levels(i)) << i;
      ASSERT_EQ(*whole.levels(i), packet.levels[i]) << i;
    }
    // No code has so many zeros: both readers stop there.
    const std::size_t at = static_cast<std::size_t>(random(0, static_cast<int>(size - kZeros)));
    for (std::size_t bit = at; bit < at + kZeros; ++bit) {
      packet.bytes[bit / 8] = static_cast<std::uint8_t>(packet.bytes[bit / 8] & ~(0x80 >> bit % 8));
    }
    const PacketTexture damaged = packet.read(reversible);
    // From the back, a block begins where another one is seen to end: the first one behind the damage is lost.
    const std::size_t front = packet.begin_of(packet.at(at)), last = packet.ends[packet.at(at + kZeros - 1)];
    const std::size_t back = last < size ? packet.ends[packet.at(last)] : size;
    for (std::size_t i = 0; i < count; ++i) {
      const Macroblock& mb = packet.macroblocks[i];
      const std::size_t begin = packet.begin_of(i), end = packet.ends[i];
      const bool in_front = end + kDoubtful <= front, behind = begin >= back + kDoubtful;
      const bool alone = !mb.intra || mb.dc_codes;
      if (in_front || (behind && reversible && alone)) {
        ASSERT_TRUE(damaged.levels(i)) << i << " of round " << round;
        ASSERT_EQ(*damaged.levels(i), packet.levels[i]) << i << " of round " << round;
      } else if ((begin < at + kZeros && end > at) || (behind && !(reversible && alone))) {
        ASSERT_FALSE(damaged.levels(i)) << i << " of round " << round;
      }
    }
  }
}

TEST(Mpeg4Partitions, CoefficientsThatBothReadersClaimAreLost) {
  // With more macroblocks than are expected, each reader takes others for them.
  Random random;
  const PacketTexture texture = Packet(random, true, true).read(true, 20);
  for (std::size_t i = 0; i < 20; ++i) EXPECT_FALSE(texture.levels(i)) << i;
}

/// Columns of macroblocks that are as they were, of all rows one behind the other.
std::string same_macroblocks(const moxdec::Frame& a, const moxdec::Frame& b) {
  std::string same;
  for (int y = 0; y < a.format().height; y += 16) {
    for (int x = 0; x < a.format().width; x += 16) {
      bool equal = true;
      for (int row = y; row < y + 16; ++row) {
        equal &= std::equal(a.shown_row(0, row) + x, a.shown_row(0, row) + x + 16, b.shown_row(0, row) + x);
      }
      same += equal ? '=' : '.';
    }
  }
  return same;
}

TEST(Mpeg4Partitions, DamageOfTextureStaysInThePacket) {
  // Two thirds of the way through the first packet.
  const std::pair<const char*, bool> vectors[] = {{"mpeg4_partitions.m4v", false}, {"mpeg4_reversible.m4v", true}};
  for (const auto& [name, reversible] : vectors) {
    Stream stream = read_file(vector_path(name));
    const Decoded whole = decode_all(stream);
    const std::uint8_t picture[] = {0, 0, 1, 0xB6}, zeros[] = {0, 0};
    const auto first = std::search(stream.begin(), stream.end(), picture, picture + 4);
    const auto next = std::search(first + 4, stream.end(), zeros, zeros + 2);
    std::fill_n(first + (next - first) * 2 / 3, 8, std::uint8_t{2});
    const Decoded damaged = decode_all(stream);
    EXPECT_NE(damaged.error.find(kDamaged), std::string::npos) << name << damaged.error;
    ASSERT_EQ(damaged.frames.size(), whole.frames.size()) << name;
    const std::string same = same_macroblocks(*whole.frames[0], *damaged.frames[0]);
    const auto lost = same.find('.'), last_lost = same.rfind('.');
    ASSERT_NE(lost, std::string::npos) << name;
    EXPECT_GT(lost, 0u);
    // The first packet has macroblocks 0 to 42.
    EXPECT_EQ(last_lost < 42, reversible) << same;
  }
}

/// Bits as text.
BitWriter& add(BitWriter& w, std::string_view text) {
  for (const char bit : text) {
    if (bit != ' ') w.u(1, bit == '1');
  }
  return w;
}
void unit(Stream& stream, int code, BitWriter bits) {
  for (bits.u(1, 0); bits.bit_count() % 8 != 0;) bits.u(1, 1);
  const Stream bytes = bits.payload();
  stream.insert(stream.end(), {0, 0, 1, static_cast<std::uint8_t>(code)});
  stream.insert(stream.end(), bytes.begin(), bytes.end() - 1);  // without the stop bit's
}

/// 32x32: shade 172 at the left, 84 at the right; then a P picture of which the macroblocks are left out, moved from
/// the left, intra of shade 108, and left out.
constexpr std::string_view kIntraFirst =
    "1 0001 10110 011 011 011 11 11  1 00001 010011 011 011 011 11 11  1 011 011 011 011 11 11  1 011 011 011 011 11 "
    "11 "
    "1101011000000000001";
constexpr std::string_view kIntraSecond = "0 0011  0 0011  0 0011  0 0011";
constexpr std::string_view kMovedFirst = "1  0 1 0000000000101 1  0 00011  1  11111000000000001";
constexpr std::string_view kMovedSecond = "11  0 0011 001 0101 011 011 011 11 11";

Decoded decode_pictures(bool interlaced, std::string_view intra, std::string_view moved) {
  Stream stream = {0, 0, 1, 0};
  BitWriter layer;
  layer.u(9, 1).u(1, 0).u(4, 1).u(1, 0).u(2, 0).u(1, 1).u(16, 25).u(1, 1).u(1, 0).u(1, 1).u(13, 32).u(1, 1).u(13, 32);
  unit(stream, 0x20, add(layer.u(1, 1).u(1, interlaced), "1 0 0 0 1 1 1 1 0"));
  BitWriter first, second;
  unit(stream, 0xB6, add(add(first, "00 0 1 00000 1 1 000 01000"), intra));
  unit(stream, 0xB6, add(add(second, "01 0 1 00001 1 1 0 000 01000 001"), moved));
  return decode_all(stream);
}

TEST(Mpeg4Partitions, MotionAndDcSurvive) {
  const std::vector<int> still = {172, 84, 172, 84}, moved = {172, 172, 108, 84}, motion_alone = {172, 172, 172, 84};
  struct Case {
    std::string intra_second, moved_first, moved_second, error;
    std::vector<std::vector<int>> shades;
  };
  const std::string zeros(40, '0'), intra(kIntraSecond), first(kMovedFirst), second(kMovedSecond);
  std::vector<Case> cases = {{intra, first, second, "", {still, moved}},
                             {zeros, first, second, kDamaged, {still, moved}},
                             {intra, first, zeros, kDamaged, {still, motion_alone}},
                             {intra, first, "11" + zeros, kDamaged, {still, motion_alone}},
                             {intra, "1 1 1 1", "1 1", "the marker behind a partition is missing", {still}},
                             {intra, "0 00000000000000", "", "broken type of a macroblock", {still}}};
  // Packets that end in the byte of the marker, or just behind, as stuffing moves them.
  for (std::string stuffing; stuffing.size() < 80; stuffing += "0 000000001 ") {
    cases.push_back(
        {intra, stuffing + "1  0 1 0000000000101 1  1  1  11111000000000001", "11", "", {still, motion_alone}});
  }
  for (const Case& c : cases) {
    const Decoded decoded =
        decode_pictures(false, std::string(kIntraFirst) + c.intra_second, c.moved_first + c.moved_second);
    EXPECT_EQ(decoded.error.empty(), c.error.empty());
    EXPECT_NE(decoded.error.find(c.error), std::string::npos) << decoded.error;
    std::vector<std::vector<int>> shades;
    for (const auto& frame : decoded.frames) {
      auto& of_frame = shades.emplace_back();
      for (const auto& [x, y] : {std::pair{5, 5}, {20, 5}, {5, 20}, {20, 20}}) {
        of_frame.push_back(std::to_integer<int>(frame->shown_row(0, y)[x]));
      }
    }
    EXPECT_EQ(shades, c.shades) << c.error;
  }
  EXPECT_NE(decode_pictures(true, "", "").error.find("partitions of interlaced"), std::string::npos);
}

}  // namespace
}  // namespace mox::test
