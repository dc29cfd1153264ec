/// Hand-made macroblocks of the 8x8 transform: where its flag stands, and which intra modes need which neighbour.
#include <algorithm>
#include <set>

#include "moxdec/decoding.hpp"
#include "moxdec/stream_builder.hpp"

namespace mox::test {
namespace {

constexpr int kSliceP = 5, kSliceB = 6;

/// The header of a picture with one reference in each list and quantiser 26, without deblocking.
BitWriter inter_slice(int type) {
  const bool is_b = type == kSliceB;
  BitWriter lists;
  if (is_b) lists.u(1, 1);           // spatial direct prediction
  lists.u(1, 0).u(is_b ? 2 : 1, 0);  // counts and lists as they are
  return StreamBuilder::slice_header(
      {.nal_type = 1, .ref_idc = 0, .type = type, .frame_num = 1, .poc_lsb = 2, .list_fields = lists, .deblocking = 1});
}

/// A macroblock with a type and quadrants of these types, all vectors 0, of which the first quadrant has one
/// coefficient, a DC of 1.
struct InterCase {
  const char* name;
  int slice;
  std::uint32_t type;
  std::vector<std::uint32_t> quadrants;
  int vectors;
  bool direct_inference, has_flag;
};

std::vector<int> decode_inter(const InterCase& c, bool transform_8x8) {
  BitWriter w = inter_slice(c.slice).ue(0).ue(c.type);  // none skipped
  for (const auto quadrant : c.quadrants) w.ue(quadrant);
  for (int i = 0; i < c.vectors; ++i) w.se(0).se(0);
  w.ue(2);  // luma of the first quadrant
  if (c.has_flag) w.u(1, transform_8x8);
  w.se(0).u(4, 0b0101).u(3, 7);  // one coefficient, positive, at the first place; three blocks without any
  StreamBuilder b;
  b.sps({.profile = 100, .direct_inference = c.direct_inference});
  b.pps({.deblocking_control = true, .transform_8x8 = true});
  SliceFields reference = {.poc_lsb = 0, .deblocking = 1};
  const Decoded decoded = decode_all(b.raw_slice(reference, {100}).nal(1, 0, w).stream());
  EXPECT_EQ(decoded.error, "") << c.name;
  std::vector<int> row;
  if (decoded.frames.size() != 2) return row;
  for (int x = 0; x < 16; ++x) row.push_back(std::to_integer<int>(decoded.frames[1]->shown_row(0, 0)[x]));
  return row;
}

/// The flag is there if no part is smaller than 8x8, where direct prediction without inference counts as such. The DC
/// value adds 3 to a 4x4 block, 2 to an 8x8 block.
TEST(Transform8x8, FlagOfInterMacroblocks) {
  std::vector<int> small(16, 100), large(16, 100);
  std::fill_n(small.begin(), 4, 103);
  std::fill_n(large.begin(), 8, 102);
  for (const InterCase& c : {
           InterCase{"P 16x16", kSliceP, 0, {}, 1, true, true},
           InterCase{"P 8x8", kSliceP, 3, {0, 0, 0, 0}, 4, true, true},
           InterCase{"P 8x8 with one 4x8", kSliceP, 3, {0, 0, 2, 0}, 5, true, false},
           InterCase{"P 8x8 without inference", kSliceP, 3, {0, 0, 0, 0}, 4, false, true},
           InterCase{"direct", kSliceB, 0, {}, 0, true, true},
           InterCase{"direct without inference", kSliceB, 0, {}, 0, false, false},
           InterCase{"B 8x8 with direct", kSliceB, 22, {1, 0, 2, 0}, 2, true, true},
           InterCase{"B 8x8 with direct without inference", kSliceB, 22, {1, 0, 2, 0}, 2, false, false},
           InterCase{"B 8x8 without inference", kSliceB, 22, {1, 1, 2, 1}, 4, false, true},
           InterCase{"B 8x8 with one 4x4", kSliceB, 22, {0, 0, 0, 10}, 4, true, false},
       }) {
    EXPECT_EQ(decode_inter(c, false), small) << c.name;
    if (c.has_flag) {
      EXPECT_EQ(decode_inter(c, true), large) << c.name;
    }
  }
}

/// In a macroblock without neighbours each mode is either possible or refused, by the block that has it.
TEST(Transform8x8, IntraModesNeedNeighbours) {
  constexpr std::uint32_t kPlainMode = 2;
  const std::set<std::uint32_t> possible[4] = {{2}, {1, 2, 8}, {0, 2, 3, 7}, {0, 1, 2, 3, 4, 5, 6, 7, 8}};
  for (int block = 0; block < 4; ++block) {
    for (std::uint32_t mode = 0; mode < 9; ++mode) {
      BitWriter w = StreamBuilder::slice_header({.poc_lsb = 0}).ue(0).u(1, 1);
      for (int i = 0; i < 4; ++i) {
        // The last block expects the lower one of the modes of the two before it; the others miss a neighbour.
        const bool follows = i == 3 && (block == 1 || block == 2);
        const std::uint32_t expected = follows ? std::min(mode, kPlainMode) : kPlainMode;
        const std::uint32_t wanted = i == block ? mode : kPlainMode;
        if (wanted == expected) {
          w.u(1, 1);
        } else {
          w.u(1, 0).u(3, wanted < expected ? wanted : wanted - 1);
        }
      }
      w.ue(0).ue(3);  // chroma DC; no residual
      const Decoded decoded =
          decode_all(StreamBuilder().sps({.profile = 100}).pps({.transform_8x8 = true}).nal(5, 1, w).stream());
      const bool refused = decoded.error.find("a neighbour that is not there") != std::string::npos;
      EXPECT_EQ(refused, !possible[block].contains(mode)) << "block " << block << " mode " << mode << decoded.error;
      EXPECT_EQ(decoded.frames.size(), refused ? 0u : 1u);
    }
  }
}

}  // namespace
}  // namespace mox::test
