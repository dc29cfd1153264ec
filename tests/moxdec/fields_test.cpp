/// Field pictures: which two make a frame, and the reference lists of fields, worked out by hand.
#include "moxdec/decoding.hpp"
#include "moxdec/h264/references.hpp"
#include "moxdec/stream_builder.hpp"

namespace mox::test {
namespace {

using moxdec::h264::FieldOrder;
using moxdec::h264::kBottom;
using moxdec::h264::kTop;
using moxdec::h264::ListChange;
using moxdec::h264::MarkingOperation;
using moxdec::h264::Parity;
using moxdec::h264::SliceType;

TEST(Fields, MakeFramesInPairs) {
  const auto field = [](int frame_num, bool bottom, int poc_lsb, int ref_idc) {
    return SliceFields{.nal_type = 1,
                       .ref_idc = ref_idc,
                       .frame_num = frame_num,
                       .field_pic = 1,
                       .bottom = bottom,
                       .poc_lsb = poc_lsb};
  };
  StreamBuilder b;
  b.sps({.max_ref_frames = 4, .frame_mbs_only = false, .reorder_frames = 0}).pps();
  b.raw_slice({.field_pic = 1, .poc_lsb = 0}, {10}).raw_slice(field(0, true, 1, 1), {20});
  b.raw_slice(field(1, false, 2, 1), {30});  // alone
  b.raw_slice({.nal_type = 1, .frame_num = 2, .field_pic = 0, .poc_lsb = 4}, {40, 40});
  b.raw_slice(field(3, true, 6, 0), {50}).raw_slice(field(3, true, 8, 0), {60});  // of the same parity
  b.raw_slice(field(3, false, 10, 1), {70});                                      // of another kind
  b.raw_slice(field(4, true, 11, 0), {80});                                       // of another number
  b.raw_slice(field(4, true, 13, 0), {90}).raw_slice(field(4, false, 12, 0), {100});
  SliceFields reset = field(4, true, 14, 1);  // numbers and order start anew behind it
  reset.operations = {5, 0};
  b.raw_slice(reset, {110}).raw_slice(field(0, false, 1, 1), {120}).raw_slice(field(1, false, 2, 1), {130});
  const Decoded decoded = decode_all(b.stream());
  EXPECT_EQ(decoded.error, "");
  std::vector<std::pair<int, int>> shades;
  for (const auto& frame : decoded.frames) {
    const auto line = [&](int plane, int y) { return std::to_integer<int>(*frame->shown_row(plane, y)); };
    shades.emplace_back(line(0, 0), line(0, 1));
    EXPECT_EQ(frame->format().height, 32);
    for (const int y : {2, 30}) EXPECT_EQ(std::pair(line(0, y), line(0, y + 1)), shades.back()) << y;
    EXPECT_EQ(std::pair(line(1, 14), line(2, 15)), shades.back());
  }
  EXPECT_EQ(
      shades,
      (std::vector<std::pair<int, int>>{
          {10, 20}, {30, 30}, {40, 40}, {50, 50}, {60, 60}, {70, 70}, {80, 80}, {100, 90}, {120, 110}, {130, 130}}));
}

/// By a cycle of offsets 4 and 6, with bottom fields 1 behind; by frame numbers, which both fields share.
TEST(Fields, OrderCountsOfTheirOwn) {
  for (const int type : {1, 2}) {
    moxdec::h264::Sps sps;
    sps.poc_type = type;
    sps.offset_for_top_to_bottom = 1;
    sps.offset_for_non_ref_pic = -3;
    sps.offsets_for_ref_frame = {4, 6};
    sps.poc_delta_per_cycle = 10;
    moxdec::h264::SliceHeader slice;
    slice.sps = std::make_shared<const moxdec::h264::Sps>(sps);
    slice.field_pic = true;
    auto count = [&, order = moxdec::h264::PictureOrder()](int frame_num, Parity parity, int ref_idc,
                                                           int delta) mutable {
      slice.idr = frame_num == 0 && parity == kTop;
      slice.frame_num = frame_num, slice.bottom_field = parity == kBottom, slice.nal_ref_idc = ref_idc;
      slice.delta_poc[0] = delta;
      const FieldOrder found = order.next(slice);
      EXPECT_EQ(found.field(1 - parity), FieldOrder::kMissing);
      return found.field(parity);
    };
    EXPECT_EQ(count(0, kTop, 1, 0), 0);
    EXPECT_EQ(count(0, kBottom, 1, 0), type == 1 ? 1 : 0);
    EXPECT_EQ(count(3, kBottom, 1, 2), type == 1 ? 14 + 1 + 2 : 6);
    EXPECT_EQ(count(3, kTop, 1, -1), type == 1 ? 14 - 1 : 6);
    EXPECT_EQ(count(4, kTop, 0, 0), type == 1 ? 14 - 3 : 7);
  }
}

/// A field, or a frame if `parity` is negative. The second field of a frame follows its first one.
struct Reference {
  int frame_num;
  int parity;
  int order;
  std::array<MarkingOperation, 3> operations{};  // up to the first 0
};

class Decoding {
 public:
  explicit Decoding(int limit) {
    moxdec::h264::Sps sps;
    sps.mb_width = 1, sps.mb_height = 2;
    slice_.sps = std::make_shared<const moxdec::h264::Sps>(sps);
    slice_.nal_ref_idc = 1;
    buffer_.configure(limit);
  }
  void begin(const Reference& reference) {
    slice_.idr = first_;
    first_ = false;
    const bool second = slice_.field_pic && reference.parity == 1 - slice_.parity() && reference.parity >= 0 &&
                        reference.frame_num == slice_.frame_num;
    slice_.frame_num = reference.frame_num;
    slice_.field_pic = reference.parity >= 0;
    slice_.bottom_field = reference.parity == kBottom;
    slice_.marking.clear();
    for (const MarkingOperation& operation : reference.operations) {
      if (operation.operation != 0) slice_.marking.push_back(operation);
    }
    slice_.adaptive_marking = !slice_.marking.empty();
    FieldOrder order = {reference.order, reference.order};
    if (slice_.field_pic) (slice_.bottom_field ? order.top : order.bottom) = FieldOrder::kMissing;
    if (second) {
      buffer_.begin_second_field(order);
    } else {
      buffer_.begin(slice_, order, std::make_shared<moxdec::Frame>(kFormat, kLayout));
    }
  }
  void finish() { buffer_.finish(slice_); }
  std::vector<int> list(SliceType type, int list, const std::vector<ListChange>& changes, int count) {
    slice_.type = type;
    slice_.list_changes = {changes, changes};
    slice_.ref_count = {count, count};
    const auto lists = buffer_.lists(slice_);
    std::vector<int> orders;
    for (int i = 0; i < count; ++i) {
      const int id = lists.slots[list][i];
      orders.push_back(id < 0 ? -1 : buffer_.at(id).order_of(id));
    }
    return orders;
  }

 private:
  static constexpr moxdec::FrameFormat kFormat = {16, 32, moxdec::Chroma::k420, 8};
  static constexpr moxdec::FrameLayout kLayout = {16, 32, 0, 0, 0};
  moxdec::h264::ReferenceBuffer buffer_;
  moxdec::h264::SliceHeader slice_;
  bool first_ = true;
};

struct Case {
  const char* name;
  int limit;
  std::vector<Reference> references;
  SliceType type;
  Reference current;
  std::vector<ListChange> changes;
  std::array<std::vector<int>, 2> expected;  // lists as order counts; -1 for an entry without a picture
};

const std::vector<Reference> kTwoFrames = {{0, kTop, 0}, {0, kBottom, 1}, {1, kTop, 8}, {1, kBottom, 9}};
std::vector<Reference> two_frames_and(std::vector<Reference> more) {
  more.insert(more.begin(), kTwoFrames.begin(), kTwoFrames.end());
  return more;
}
/// Number of the current field less that of the one to be dropped, less 1: the upper field of frame 1, seen from the
/// lower field of frame 2, has 2 against 5.
const MarkingOperation kDropUpperOf1 = {1, 2};

const Case kCases[] = {
    {"parities in turn", 4, kTwoFrames, SliceType::kP, {2, kTop, 16}, {}, {{{8, 9, 0, 1, -1}}}},
    {"the first field of its own frame",
     4,
     two_frames_and({{2, kTop, 16}}),
     SliceType::kP,
     {2, kBottom, 17},
     {},
     {{{9, 16, 1, 8, 0}}}},
    {"the nearest frames first", 4, kTwoFrames, SliceType::kB, {2, kTop, 4}, {}, {{{0, 1, 8, 9}, {8, 9, 0, 1}}}},
    {"equal lists", 4, kTwoFrames, SliceType::kB, {2, kBottom, 20}, {}, {{{9, 8, 1, 0}, {8, 9, 1, 0}}}},
    {"its own first field has its own time",
     4,
     two_frames_and({{2, kBottom, 6}}),
     SliceType::kB,
     {2, kTop, 4},
     {},
     {{{0, 1, 8, 6, 9}, {8, 6, 0, 9, 1}}}},
    {"whole frames leave", 2, two_frames_and({{2, kTop, 16}}), SliceType::kP, {2, kBottom, 17}, {}, {{{9, 16, 8, -1}}}},
    {"second fields take no room",
     2,
     two_frames_and({{2, kTop, 16}, {2, kBottom, 17}}),
     SliceType::kP,
     {3, kTop, 24},
     {},
     {{{16, 17, 8, 9}}}},
    {"a single field leaves",
     4,
     two_frames_and({{2, kTop, 16}, {2, kBottom, 17, {{kDropUpperOf1}}}}),
     SliceType::kP,
     {3, kTop, 24},
     {},
     {{{16, 17, 0, 9, 1}}}},
    {"frames need both fields",
     4,
     two_frames_and({{2, kTop, 16}, {2, kBottom, 17, {{kDropUpperOf1}}}}),
     SliceType::kP,
     {3, -1, 24},
     {},
     {{{16, 0, -1}}}},
    {"long-term fields",
     4,
     {{0, kTop, 0}, {0, kBottom, 1}, {1, kTop, 8, {{{4, 1}, {6, 0}}}}, {1, kBottom, 9, {{{6, 0}}}}},
     SliceType::kP,
     {2, kTop, 16},
     {},
     {{{0, 1, 8, 9}}}},
    // Numbers: 5 the current field, 0 the lower field of frame 0; 1 the upper long-term field.
    {"changed lists",
     4,
     {{0, kTop, 0}, {0, kBottom, 1}, {1, kTop, 8, {{{4, 1}, {6, 0}}}}, {1, kBottom, 9, {{{6, 0}}}}},
     SliceType::kP,
     {2, kTop, 16},
     {{2, 1}, {0, 4}},
     {{{8, 1, 0, 9}}}},
    // 3 makes the upper field of frame 0 long-term; its lower one leaves.
    {"fields made long-term later",
     4,
     two_frames_and({{2, kTop, 16, {{{4, 1}, {3, 3, 0}, {1, 4}}}}}),
     SliceType::kP,
     {2, kBottom, 17},
     {},
     {{{9, 16, 8, 0}}}},
};

TEST(Fields, ReferenceLists) {
  for (const Case& c : kCases) {
    Decoding decoding(c.limit);
    for (const Reference& reference : c.references) {
      decoding.begin(reference);
      decoding.finish();
    }
    decoding.begin(c.current);
    for (int list = 0; list < list_count(c.type); ++list) {
      EXPECT_EQ(decoding.list(c.type, list, c.changes, static_cast<int>(c.expected[list].size())), c.expected[list])
          << c.name << ", list " << list;
    }
  }
}

}  // namespace
}  // namespace mox::test
