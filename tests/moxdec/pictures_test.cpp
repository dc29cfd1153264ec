/// Hand-made streams of raw pictures, each in one shade: display order, picture boundaries, parameter sets, and one
/// error message for each thing that can be wrong or is not supported.
#include "moxdec/decoding.hpp"
#include "moxdec/h264/nal.hpp"
#include "moxdec/h264/output_order.hpp"
#include "moxdec/h264/parameter_sets.hpp"
#include "moxdec/stream_builder.hpp"

namespace mox::test {
namespace {

/// A picture after the first one of an order type 0 stream.
SliceFields picture(int frame_num, int poc_lsb, int ref_idc = 1) {
  return {.nal_type = 1, .ref_idc = ref_idc, .frame_num = frame_num, .poc_lsb = poc_lsb};
}
const SliceFields kIdr = {.poc_lsb = 0};

TEST(DisplayOrder, ByOrderCount) {
  // Order counts 0 8 4 16 12 20 (their lower 4 bits are written), then a new start.
  const auto stream = [](int reorder_frames) {
    StreamBuilder b;
    b.sps({.reorder_frames = reorder_frames}).pps().raw_slice(kIdr, {10});
    b.raw_slice(picture(1, 8), {30}).raw_slice(picture(2, 4, 0), {20});
    b.raw_slice(picture(2, 0), {50}).raw_slice(picture(3, 12, 0), {40}).raw_slice(picture(3, 4), {60});
    return b.raw_slice({.idr_pic_id = 1, .poc_lsb = 0}, {70}).raw_slice(picture(1, 2), {80}).stream();
  };
  const std::vector<int> sorted = {10, 20, 30, 40, 50, 60, 70, 80};
  EXPECT_EQ(decode_all(stream(-1)).shades(), sorted);
  EXPECT_EQ(decode_all(stream(1)).shades(), sorted);
  EXPECT_EQ(decode_all(stream(0)).shades(), (std::vector<int>{10, 30, 20, 50, 40, 60, 70, 80}));
}

TEST(DisplayOrder, StartsAnewAtMemoryOperation5) {
  // Order counts 0 8, then 2 which becomes 0, then 4 and 2.
  StreamBuilder b;
  SliceFields reset = picture(2, 2);
  reset.operations = {1, 0, 3, 0, 1, 2, 0, 5, 0};
  b.sps().pps().raw_slice(kIdr, {10}).raw_slice(picture(1, 8), {20}).raw_slice(reset, {30});
  b.raw_slice(picture(1, 4), {50}).raw_slice(picture(2, 2, 0), {40});
  const Decoded decoded = decode_all(b.stream());
  EXPECT_EQ(decoded.error, "");
  EXPECT_EQ(decoded.shades(), (std::vector<int>{10, 20, 30, 40, 50}));
}

TEST(DisplayOrder, OfTwoFields) {
  // The bottom field comes 4 before the top one. After the new start the top field has 4, so 12 is not -4.
  SliceFields idr = kIdr, reset = picture(1, 6), next = picture(1, 12);
  idr.delta_poc = reset.delta_poc = next.delta_poc = {-4};
  reset.operations = {5, 0};
  StreamBuilder b;
  b.sps().pps({.bottom_field_poc = true}).raw_slice(idr, {10}).raw_slice(reset, {20}).raw_slice(next, {30});
  EXPECT_EQ(decode_all(b.stream()).shades(), (std::vector<int>{10, 20, 30}));
}

TEST(DisplayOrder, ByCycleOfOffsets) {
  // Offsets 4 and 6, -3 for pictures that are no reference. Frame numbers 1 2 3 4 have the counts 4 10 14 20.
  const SpsFields sps = {.poc_type = 1, .offset_for_non_ref = -3, .offsets_for_ref_frame = {4, 6}};
  const auto numbered = [](int frame_num, int delta, int ref_idc) {
    return SliceFields{
        .nal_type = ref_idc < 0 ? 5 : 1, .ref_idc = ref_idc ? 1 : 0, .frame_num = frame_num, .delta_poc = {delta}};
  };
  StreamBuilder b;
  b.sps(sps).pps().raw_slice(numbered(0, 0, -1), {10}).raw_slice(numbered(1, 0, 1), {20});
  b.raw_slice(numbered(2, 0, 1), {40}).raw_slice(numbered(3, 0, 0), {30});     // 10, then 10 - 3
  b.raw_slice(numbered(3, 5, 1), {60}).raw_slice(numbered(4, 1, 0), {50});     // 14 + 5, then 14 - 3 + 1
  for (int i = 4; i < 20; ++i) b.raw_slice(numbered(i % 16, 0, 1), {60 + i});  // 20, 24 to 90, 94
  b.raw_slice(numbered(4, -2, 0), {5}).raw_slice(numbered(4, 0, 1), {80});     // 94 - 3 - 2, then 100
  const Decoded decoded = decode_all(b.stream());
  EXPECT_EQ(decoded.error, "");
  std::vector<int> expected = {10, 20, 30, 40, 50, 60};
  for (int i = 4; i < 18; ++i) expected.push_back(60 + i);
  expected.insert(expected.end(), {5, 78, 79, 80});
  EXPECT_EQ(decoded.shades(), expected);
}

TEST(DisplayOrder, ByFrameNumber) {
  StreamBuilder b;
  b.sps({.poc_type = 2}).pps().raw_slice({}, {0});
  std::vector<int> expected = {0};
  for (int i = 1; i < 40; ++i) {
    b.raw_slice({.nal_type = 1, .ref_idc = i % 3 ? 1 : 0, .frame_num = (i - i / 3) % 16}, {i});
    expected.push_back(i);
  }
  EXPECT_EQ(decode_all(b.stream()).shades(), expected);
}

TEST(DisplayOrder, CountsThatOnlyTheCallerSees) {
  moxdec::h264::SliceHeader slice;
  auto count = [&, order = moxdec::h264::PictureOrder()](bool idr, int ref_idc, int frame_num) mutable {
    slice.idr = idr, slice.nal_ref_idc = ref_idc, slice.frame_num = frame_num;
    return order.next(slice).frame();
  };
  moxdec::h264::Sps sps;
  sps.poc_type = 2;
  slice.sps = std::make_shared<const moxdec::h264::Sps>(sps);
  EXPECT_EQ(count(true, 1, 0), 0);
  EXPECT_EQ(count(false, 1, 15), 30);
  EXPECT_EQ(count(false, 0, 0), 31);  // frame number 16
  EXPECT_EQ(count(false, 1, 0), 32);
  EXPECT_EQ(count(true, 1, 0), 0);
}

/// Each pair of headers belongs to two pictures; only one element differs.
TEST(PictureBoundary, EachElementCounts) {
  struct Case {
    const char* element;
    SliceFields first, second;
  };
  SliceFields other_set = picture(1, 2);
  other_set.pps_id = 1;
  SliceFields other_idr = kIdr;
  other_idr.idr_pic_id = 1;
  for (const Case& c : {Case{"frame_num", picture(1, 2), picture(2, 2)}, Case{"order", picture(1, 2), picture(1, 3)},
                        Case{"parameter set", picture(1, 2), other_set}, Case{"IDR number", kIdr, other_idr},
                        Case{"reference", picture(1, 2, 1), picture(1, 2, 0)}, Case{"IDR", picture(0, 0), kIdr}}) {
    StreamBuilder b;
    b.sps().pps().pps({.id = 1}).raw_slice(c.first, {1}).raw_slice(c.second, {2});
    const Decoded decoded = decode_all(b.stream());
    EXPECT_EQ(decoded.error, "") << c.element;
    EXPECT_EQ(decoded.shades(), (std::vector<int>{1, 2})) << c.element;
  }
}

TEST(PictureBoundary, UnitsBetweenPicturesCount) {
  // Two pictures with equal headers are told apart by what stands between them, and by nothing else.
  for (const int type : {6, 7, 8, 9, 12}) {
    StreamBuilder b;
    b.sps().pps().raw_slice(picture(1, 2), {1});
    if (type == 7) b.sps();
    if (type == 8) b.pps();
    if (type != 7 && type != 8) b.nal(type, 0, BitWriter().u(8, 0xF0));
    const Decoded decoded = decode_all(b.raw_slice(picture(1, 2), {2}).stream());
    if (type == 12) {  // filler
      EXPECT_NE(decoded.error.find("coded twice"), std::string::npos) << decoded.error;
    } else {
      EXPECT_EQ(decoded.shades(), (std::vector<int>{1, 2})) << type;
    }
  }
}

TEST(ParameterSets, SeveralAtATimeAndNewOnes) {
  StreamBuilder b;
  b.sps({.id = 3, .mb_width = 2, .crop = {1, 2, 0, 3}})
      .sps({.id = 31})
      .pps({.id = 255, .sps_id = 31})
      .pps({.id = 7, .sps_id = 3});
  b.raw_slice({.pps_id = 7, .poc_lsb = 0}, {10, 10}).raw_slice({.pps_id = 255, .poc_lsb = 0}, {20});
  b.sps({.id = 31}).zeros(3).pps({.id = 255, .sps_id = 31});  // a repetition
  SliceFields next = picture(1, 2);
  next.pps_id = 255;
  b.raw_slice(next, {30});
  b.sps({.id = 31, .mb_height = 2}).raw_slice({.pps_id = 255, .poc_lsb = 0}, {40, 40});
  const Decoded decoded = decode_all(b.stream());
  EXPECT_EQ(decoded.error, "");
  ASSERT_EQ(decoded.shades(), (std::vector<int>{10, 20, 30, 40}));
  const auto size = [&](std::size_t i) {
    return std::pair(decoded.frames[i]->format().width, decoded.frames[i]->format().height);
  };
  EXPECT_EQ(size(0), std::pair(32 - 6, 16 - 6));
  EXPECT_EQ(size(2), std::pair(16, 16));
  EXPECT_EQ(size(3), std::pair(16, 32));
  next.frame_num = 1;
  b.sps({.id = 31}).raw_slice(next, {50});
  EXPECT_NE(decode_all(b.stream()).error.find("changes without an IDR picture"), std::string::npos);
}

TEST(ParameterSets, UsabilityInformation) {
  // Every optional part is there; the frame rate and the number of reordered frames come behind most of them.
  BitWriter w;
  w.u(8, 66).u(8, 0).u(8, 30).ue(0).ue(0).ue(0).ue(0).ue(1).u(1, 0).ue(0).ue(0).u(1, 1).u(1, 1).u(1, 0).u(1, 1);
  w.u(1, 1).u(8, 255).u(32, 0x00030004).u(1, 1).u(1, 1).u(1, 1).u(4, 0).u(1, 1).u(24, 0x010101).u(1, 1).ue(5).ue(0);
  w.u(1, 1).u(32, 1001).u(32, 60000).u(1, 1);
  for (int i = 0; i < 2; ++i) {
    w.u(1, 1).ue(1).u(8, 0);
    for (int j = 0; j < 2; ++j) w.ue(70000).ue(0xFFFFFFFEu).u(1, 0);
    w.u(20, 0);
  }
  w.u(1, 0).u(1, 0).u(1, 1).u(1, 1).ue(0).ue(0).ue(16).ue(16).ue(1).ue(1);
  StreamBuilder b;
  b.nal(7, 3, w).pps().raw_slice(kIdr, {10}).raw_slice(picture(1, 8), {30}).raw_slice(picture(2, 4, 0), {20});
  const auto decoder = moxdec::find_codec(b.stream(), "").open(b.stream());
  std::vector<int> shades;
  while (const auto frame = decoder->next()) shades.push_back(std::to_integer<int>(*frame->shown_row(0, 0)));
  EXPECT_EQ(shades, (std::vector<int>{10, 20, 30}));
  EXPECT_EQ(decoder->frame_rate().numerator, 60000u);
  EXPECT_EQ(decoder->frame_rate().denominator, 2002u);
}

/// Parts that are read over, each followed by a value that shows where reading went on.
TEST(ParameterSets, PartsWithoutUse) {
  const auto reader_of = [](const BitWriter& w, moxdec::h264::Rbsp& payload) {
    payload.assign(w.payload());
    return payload.reader();
  };
  moxdec::h264::Rbsp payload;
  // Slice groups of each kind, the number of groups and what it takes.
  const std::pair<int, BitWriter> kGroups[] = {
      {3, BitWriter().ue(0).ue(5).ue(600).ue(1)},
      {2, BitWriter().ue(1)},
      {3, BitWriter().ue(2).ue(1).ue(2).ue(3).ue(4)},
      {2, BitWriter().ue(4).u(1, 1).ue(9)},
      {2, BitWriter().ue(6).ue(6).u(7, 0x55)},
      {3, BitWriter().ue(6).ue(6).u(14, 0x1555)},
      {8, BitWriter().ue(6).ue(20).u(31, 0x2AAAAAAA).u(32, 7)},
  };
  for (const auto& [groups, fields] : kGroups) {
    BitWriter w;
    w.ue(0).ue(0).u(2, 0).ue(groups - 1).append(fields).ue(0).ue(0).u(3, 0).se(7).se(0).se(0).u(3, 0);
    moxdec::h264::BitReader bits = reader_of(w, payload);
    EXPECT_EQ(parse_pps(bits, {}).init_qp, 33) << groups;
  }
  // Scaling lists: one left out, one that ends at its fourth value, a whole one of 16, one of 64.
  BitWriter w;
  w.u(8, 100).u(8, 0).u(8, 30).ue(0).ue(1).ue(0).ue(0).u(1, 0).u(1, 1);
  w.u(2, 1).se(2).se(-1).se(0).se(-9).u(4, 1);
  for (int i = 0; i < 16; ++i) w.se(i % 3 - 1);
  w.u(1, 0).u(1, 1);
  for (int i = 0; i < 64; ++i) w.se(i % 5 - 2);
  w.ue(0).ue(2).ue(1).u(1, 0).ue(6).ue(0).u(1, 1).u(1, 1).u(2, 0);
  moxdec::h264::BitReader bits = reader_of(w, payload);
  const moxdec::h264::Sps sps = moxdec::h264::parse_sps(bits);
  EXPECT_EQ(sps.mb_width, 7);
  ASSERT_TRUE(sps.scaling_lists);
  EXPECT_FALSE((*sps.scaling_lists)[0]);
  const auto& ended = (*sps.scaling_lists)[1];
  ASSERT_TRUE(ended);
  EXPECT_EQ(std::vector<int>(ended->begin(), ended->begin() + 16),
            (std::vector<int>{10, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9}));
}

TEST(Slices, RedundantOnesAreLeftOut) {
  StreamBuilder b;
  SliceFields primary = kIdr, redundant = kIdr;
  primary.redundant_pic_count = 0, redundant.redundant_pic_count = 1;
  b.sps().pps({.redundant_pic_count = true}).raw_slice(primary, {10}).raw_slice(redundant, {99});
  const Decoded decoded = decode_all(b.stream());
  EXPECT_EQ(decoded.error, "");
  EXPECT_EQ(decoded.shades(), (std::vector<int>{10}));
}

TEST(Errors, NameWhatIsWrong) {
  const auto macroblock = [](std::initializer_list<std::uint32_t> codes) {
    BitWriter w = StreamBuilder::slice_header(kIdr);
    for (const auto code : codes) w.ue(code);
    return StreamBuilder().sps().pps().nal(5, 1, w);
  };
  const auto with_sets = [](const SpsFields& sps, const PpsFields& pps, SliceFields slice = kIdr) {
    return StreamBuilder().sps(sps).pps(pps).raw_slice(slice, {1});
  };
  const auto slice = [&](SliceFields fields) { return with_sets({}, {}, fields); };
  const auto half_a_pair = [] {
    BitWriter w = StreamBuilder::slice_header({.field_pic = 0, .poc_lsb = 0});
    StreamBuilder::raw_macroblock(w.u(1, 0), 1);
    return StreamBuilder().sps({.frame_mbs_only = false, .mb_adaptive = true}).pps().nal(5, 1, w);
  };
  struct Case {
    StreamBuilder stream;
    const char* message;
  };
  const PpsFields plain;
  for (const Case& c : {
           Case{with_sets({}, {.cabac = true}), "CABAC is not supported"},
           Case{with_sets({}, {.slice_groups = 2}), "slice groups are not supported"},
           Case{with_sets({.profile = 244, .chroma_format = 3}, plain), "4:4:4 chroma is not supported"},
           Case{with_sets({.profile = 110, .bit_depth = 10, .chroma_depth = 9}, plain),
                "a bit depth of chroma other than luma's is not supported"},
           Case{with_sets({.profile = 110, .bit_depth = 10}, {.init_qp = -13}), "slice_qp_delta is out of range"},
           Case{half_a_pair(), "macroblock 1: half a pair of macroblocks"},
           Case{slice({.type = 3, .poc_lsb = 0}), "slice at byte 22: SP slices are not supported"},
           Case{slice({.type = 9, .poc_lsb = 0}), "SI slices are not supported"},
           Case{slice({.type = 5, .poc_lsb = 0}), "slice_type is out of range"},
           Case{slice({.nal_type = 2, .poc_lsb = 0}), "data partitioning is not supported"},
           Case{slice({.type = 10}), "slice_type is out of range"},
           Case{slice({.first_mb = 1}), "first_mb_in_slice is out of range"},
           Case{slice({.ref_idc = 0}), "nal_ref_idc is out of range"},
           Case{slice({.pps_id = 1}), "picture parameter set is missing"},
           Case{slice({.pps_id = 300}), "picture parameter set is missing"},
           Case{with_sets({}, {.sps_id = 1}), "sequence parameter set is missing"},
           Case{with_sets({}, {.sps_id = 32}),
                "picture parameter set at byte 14: seq_parameter_set_id is out of range"},
           Case{slice({.poc_lsb = 0, .qp_delta = 26}), "slice_qp_delta is out of range"},
           Case{with_sets({.poc_type = 3}, plain), "pic_order_cnt_type is out of range"},
           Case{with_sets({.mb_width = 1056}, plain), "picture width is out of range"},
           Case{with_sets({.mb_width = 1000, .mb_height = 1000}, plain), "picture size is out of range"},
           Case{with_sets({.crop = {4, 4, 0, 0}}, plain), "frame cropping leaves nothing"},
           Case{with_sets({.poc_type = 1, .offsets_for_ref_frame = {0x7FFFFFFF, 1}}, plain), "offset_for_ref_frame"},
           Case{with_sets({.mb_width = 2}, plain), "picture at byte 23: 1 of 2 macroblocks are missing"},
           Case{StreamBuilder().sps().pps().raw_slice(kIdr, {1, 1}), "data go on behind the last macroblock"},
           Case{StreamBuilder().sps().pps().nal(5, 1, StreamBuilder::slice_header(kIdr).ue(25)), "data end too early"},
           Case{StreamBuilder().sps().pps().nal(5, 1, BitWriter().ue(0).ue(7)), "data end too early"},
           Case{macroblock({3, 0, 0}), "data end too early"},   // by the last bit
           Case{macroblock({15, 0, 0}), "data end too early"},  // by all luma coefficients
           Case{StreamBuilder().sps().pps(), "no picture found"},
           Case{macroblock({26}), "macroblock 0: mb_type is out of range"},
           Case{macroblock({3, 4}), "intra_chroma_pred_mode is out of range"},
           Case{macroblock({3, 0, 53}), "mb_qp_delta is out of range"},
           // 16x16 and chroma prediction from above, which is outside.
           Case{macroblock({1, 0, 0, 0}), "a neighbour that is not there"},
           Case{macroblock({3, 2, 0, 0}), "a neighbour that is not there"},
       }) {
    const Decoded decoded = decode_all(c.stream.stream());
    EXPECT_NE(decoded.error.find(c.message), std::string::npos) << c.message << "; got: " << decoded.error;
    EXPECT_TRUE(decoded.frames.empty()) << c.message;
  }
}

/// A picture behind an IDR picture of two macroblocks; what is wrong in it, in its header or its first macroblocks.
TEST(Errors, OfInterSlices) {
  const BitWriter plain = BitWriter().u(2, 0), three_references = BitWriter().u(1, 1).ue(2).u(1, 0);
  const BitWriter spatial = BitWriter().u(1, 1).u(3, 0);
  const auto change = [](std::initializer_list<std::uint32_t> codes) {
    BitWriter w = BitWriter().u(1, 0).u(1, 1);
    for (const auto code : codes) w.ue(code);
    return w;
  };
  // Behind the header: how many are skipped, mb_type, ...
  const auto data = [](std::initializer_list<int> unsigned_codes, std::initializer_list<int> vectors = {}) {
    BitWriter w;
    for (const int code : unsigned_codes) w.ue(static_cast<std::uint32_t>(code));
    for (const int vector : vectors) w.se(vector);
    return w;
  };
  struct Case {
    int type;
    BitWriter list_fields, data;
    const char* message;
    std::vector<int> operations{};
    PpsFields pps{};
  };
  for (const Case& c : {
           Case{0, plain, data({3}), "macroblock 0: mb_skip_run is out of range"},
           Case{0, plain, data({0, 31}), "mb_type is out of range"},
           Case{1, spatial, data({0, 49}), "mb_type is out of range"},
           Case{0, plain, data({0, 3, 4}), "sub_mb_type is out of range"},
           Case{1, spatial, data({0, 22, 13}), "sub_mb_type is out of range"},
           Case{0, three_references, data({0, 0, 3}), "ref_idx is out of range"},
           Case{0, three_references, data({0, 0, 1}, {0, 0}), "macroblock 0: a reference picture is missing"},
           Case{0, plain, data({0, 0}, {40000, 0}), "mvd is out of range"},
           Case{0, plain, data({0, 0}, {30000, 0}).append(data({0, 0, 0}, {30000, 0})),
                "macroblock 1: motion vector is out of range"},
           Case{0, plain, data({0, 0}, {0, 0}).append(data({48})), "coded_block_pattern is out of range"},
           Case{0, plain, data({2}).append(data({0, 0})), "data go on behind the last macroblock"},
           Case{0, plain, data({1}), "picture at byte 803: 1 of 2 macroblocks are missing"},
           Case{0, change({4}), {}, "modification_of_pic_nums_idc is out of range"},
           Case{0, change({0, 16}), {}, "picture number is out of range"},
           Case{0, change({2, 16}), {}, "picture number is out of range"},
           Case{0, change({0, 0, 0, 0}), {}, "too many changes to a reference list"},
           Case{0, change({2, 3, 3}), data({2}), "a reference picture is missing"},
           Case{1, BitWriter().u(1, 1).u(1, 0).append(change({2, 3, 3})), data({2}), "of direct prediction is"},
           Case{0, BitWriter().u(1, 1).ue(32), {}, "num_ref_idx_active_minus1 is out of range"},
           Case{0, plain, {}, "memory_management_control_operation is out of range", {7}},
           Case{0, plain, {}, "long_term_pic_num is out of range", {2, 16}},
           Case{0, plain, {}, "difference_of_pic_nums_minus1 is out of range", {1, 16}},
           Case{0, plain, {}, "max_long_term_frame_idx_plus1 is out of range", {4, 17}},
           Case{0, plain, data({2}), "too many reference pictures", {4, 0, 0}},
           Case{0, BitWriter(plain).ue(8), {}, "luma_log2_weight_denom is out of range", {}, {.weighted_pred = true}},
           Case{0,
                BitWriter(plain).ue(0).ue(0).u(1, 1).se(128),
                {},
                "prediction weight is",
                {},
                {.weighted_pred = true}},
       }) {
    StreamBuilder b;
    b.sps({.mb_width = 2}).pps(c.pps).raw_slice(kIdr, {10, 20});
    SliceFields fields = picture(1, 2);
    fields.type = c.type, fields.list_fields = c.list_fields, fields.operations = c.operations;
    b.nal(1, 1, StreamBuilder::slice_header(fields).append(c.data));
    const Decoded decoded = decode_all(b.stream());
    EXPECT_NE(decoded.error.find(c.message), std::string::npos) << c.message << "; got: " << decoded.error;
    EXPECT_EQ(decoded.shades(), std::vector<int>{10}) << c.message;
  }
}

/// A 4x4 block predicted from above, outside the picture: the library puts 128 there and warns, which is an error here.
TEST(Errors, SubstitutedEdge) {
  BitWriter w = StreamBuilder::slice_header(kIdr);
  w.ue(0).u(4, 0);                         // 4x4 prediction; not the expected mode but 0, vertical
  for (int i = 1; i < 16; ++i) w.u(1, 1);  // as expected
  w.ue(0).ue(3);                           // chroma DC; no residual
  const Decoded decoded = decode_all(StreamBuilder().sps().pps().nal(5, 1, w).stream());
  EXPECT_NE(decoded.error.find("a neighbour that is not there"), std::string::npos) << decoded.error;
}

}  // namespace
}  // namespace mox::test
