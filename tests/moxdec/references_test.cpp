/// Marking of references and the reference lists that follow from it, worked out by hand.
#include "moxdec/h264/references.hpp"

#include <gtest/gtest.h>

#include <algorithm>

#include "moxdec/error.hpp"

namespace mox::test {
namespace {

using moxdec::h264::ListChange;
using moxdec::h264::MarkingOperation;
using moxdec::h264::ReferenceBuffer;
using moxdec::h264::SliceHeader;
using moxdec::h264::SliceType;

/// A reference picture of a stream whose frame numbers go from 0 to 15. The first one is an IDR picture.
struct Reference {
  int frame_num;
  int order;
  std::vector<MarkingOperation> operations{};
  bool long_term = false;
};

struct Case {
  const char* name;
  int limit;
  std::vector<Reference> references;
  SliceType type;
  Reference current;
  std::array<std::vector<ListChange>, 2> changes;
  std::array<std::vector<int>, 2> expected;  // lists as order counts; -1 for an entry without a picture
};

class Decoding {
 public:
  explicit Decoding(int limit) {
    auto sps = std::make_shared<moxdec::h264::Sps>();
    sps->mb_width = sps->mb_height = 1;
    slice_.sps = sps;
    slice_.nal_ref_idc = 1;
    buffer_.configure(limit);
  }
  void begin(const Reference& reference) {
    slice_.frame_num = reference.frame_num;
    slice_.adaptive_marking = !reference.operations.empty();
    slice_.marking = reference.operations;
    slice_.long_term = reference.long_term;
    slice_.resets_order = std::ranges::any_of(reference.operations, [](auto& o) { return o.operation == 5; });
    for (int n = buffer_.first_missing(slice_); n != reference.frame_num; n = (n + 1) % 16) {
      SliceHeader missing = slice_;
      missing.frame_num = n;
      buffer_.add_missing(missing, {});
    }
    buffer_.begin(slice_, {reference.order, reference.order}, std::make_shared<moxdec::Frame>(kFormat, kLayout));
  }
  void finish() {
    buffer_.finish(slice_);
    slice_.idr = false;
  }
  std::vector<int> list(SliceType type, int list, const std::array<std::vector<ListChange>, 2>& changes, int count) {
    slice_.type = type;
    slice_.list_changes = changes;
    slice_.ref_count = {count, count};
    const auto lists = buffer_.lists(slice_);
    std::vector<int> orders;
    for (int i = 0; i < count; ++i) {
      const int slot = lists.slots[list][i];
      orders.push_back(slot < 0 ? -1 : buffer_.at(slot).order.frame());
    }
    return orders;
  }

 private:
  static constexpr moxdec::FrameFormat kFormat = {16, 16, moxdec::Chroma::k420, 8};
  static constexpr moxdec::FrameLayout kLayout = {16, 16, 0, 0, 0};
  ReferenceBuffer buffer_;
  SliceHeader slice_ = [] {
    SliceHeader slice;
    slice.idr = true;
    return slice;
  }();
};

const std::vector<Reference> kFour = {{0, 0}, {1, 8}, {2, 4}, {3, 16}};

const Case kCases[] = {
    {"the latest first", 4, kFour, SliceType::kP, {4, 20}, {}, {{{16, 4, 8, 0}}}},
    {"shorter and longer lists", 4, kFour, SliceType::kP, {4, 20}, {}, {{{16, 4}}}},
    {"longer than the buffer", 4, kFour, SliceType::kP, {4, 20}, {}, {{{16, 4, 8, 0, -1}}}},
    {"the oldest leaves", 2, kFour, SliceType::kP, {4, 20}, {}, {{{16, 4, -1}}}},
    {"one at least", 0, kFour, SliceType::kP, {4, 20}, {}, {{{16, -1}}}},
    {"numbers wrap", 3, {{0, 0}, {14, 8}, {15, 16}, {0, 24}}, SliceType::kP, {1, 32}, {}, {{{24, 16, 8}}}},
    {"the nearest in time first", 4, kFour, SliceType::kB, {4, 6}, {}, {{{4, 0, 8, 16}, {8, 16, 4, 0}}}},
    {"equal lists differ in the first two",
     3,
     {{0, 0}, {1, 4}, {2, 8}},
     SliceType::kB,
     {3, 12},
     {},
     {{{8, 4, 0}, {4, 8, 0}}}},
    {"equal before they are cut", 3, {{0, 0}, {1, 4}, {2, 8}}, SliceType::kB, {3, 12}, {}, {{{8}, {4}}}},
    {"equal with a single entry", 1, {{0, 0}}, SliceType::kB, {1, 4}, {}, {{{0, -1}, {0, -1}}}},
    {"long-term pictures come last, by index",
     4,
     {{0, 0, {}, true}, {1, 8, {{4, 3}, {6, 2}}}, {2, 4, {{6, 1}}}, {3, 16}},
     SliceType::kP,
     {4, 20},
     {},
     {{{16, 0, 4, 8}}}},
    {"long-term pictures have no time",
     4,
     {{0, 0, {}, true}, {1, 8, {{4, 3}, {6, 2}}}, {2, 4}, {3, 16}},
     SliceType::kB,
     {4, 12},
     {},
     {{{4, 16, 0, 8}, {16, 4, 0, 8}}}},
    {"operation 1 drops by distance",
     4,
     {{0, 0}, {1, 8}, {2, 4}, {3, 16, {{1, 1}}}},
     SliceType::kP,
     {4, 20},
     {},
     {{{16, 4, 0, -1}}}},
    {"operation 1 across the wrap",
     3,
     {{0, 0}, {14, 8}, {15, 16}, {0, 24, {{1, 1}}}},
     SliceType::kP,
     {1, 32},
     {},
     {{{24, 16, -1}}}},
    {"operation 1 on a picture that is not there",
     4,
     {{0, 0}, {1, 8, {{1, 5}}}},
     SliceType::kP,
     {2, 20},
     {},
     {{{8, 0, -1}}}},
    {"operation 2 drops by index",
     4,
     {{0, 0, {}, true}, {1, 8}, {2, 4, {{2, 0}}}},
     SliceType::kP,
     {3, 20},
     {},
     {{{4, 8, -1}}}},
    {"operation 3 gives an index, and takes it from another",
     4,
     {{0, 0, {}, true}, {1, 8}, {2, 4, {{3, 0, 0}}}},
     SliceType::kP,
     {3, 20},
     {},
     {{{4, 8, -1}}}},
    {"operation 4 drops from an index on",
     4,
     {{0, 0, {}, true}, {1, 8, {{6, 1}}}, {2, 4, {{4, 1}}}},
     SliceType::kP,
     {3, 20},
     {},
     {{{4, 0, -1}}}},
    {"operation 5 drops all and counts anew",
     4,
     {{0, 0, {}, true}, {1, 8}, {2, 20, {{5}}}},
     SliceType::kP,
     {1, 4},
     {},
     {{{0, -1}}}},
    {"changes: down, up, twice the same",
     4,
     kFour,
     SliceType::kP,
     {4, 20},
     {{{{0, 1}, {1, 0}, {0, 0}}}},
     {{{4, 16, 4, 8}}}},
    {"changes past the wrap",
     3,
     {{0, 0}, {14, 8}, {15, 16}, {0, 24}},
     SliceType::kP,
     {1, 32},
     {{{{0, 2}, {1, 1}}}},
     {{{8, 24, 16}}}},
    {"changes to a long-term picture",
     4,
     {{0, 0, {}, true}, {1, 8}, {2, 4}},
     SliceType::kP,
     {3, 20},
     {{{{2, 0}, {0, 1}}}},
     {{{0, 8, 4}}}},
    {"changes of list 1 alone", 4, kFour, SliceType::kB, {4, 6}, {{{}, {{0, 3}}}}, {{{4, 0, 8}, {0, 8, 16}}}},
    {"a change to a picture that is not there", 4, {{0, 0}, {1, 8}}, SliceType::kP, {2, 20}, {{{{2, 7}}}}, {{{-1, 8}}}},
    {"left-out pictures take places", 4, {{0, 0}, {1, 8}}, SliceType::kP, {4, 20}, {}, {{{-1, -1, 8, 0}}}},
    {"more left out than there is room", 3, {{0, 0}, {1, 8}}, SliceType::kP, {9, 20}, {}, {{{-1, -1, -1}}}},
    {"left-out pictures have no time", 4, {{0, 0}, {1, 8}}, SliceType::kB, {4, 4}, {}, {{{0, 8, -1}, {8, 0, -1}}}},
};

TEST(References, Lists) {
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

TEST(References, MoreThanAnnounced) {
  Decoding decoding(1);
  decoding.begin({0, 0});
  decoding.finish();
  decoding.begin({1, 8, {{4, 0}}});
  EXPECT_THROW(decoding.finish(), moxdec::DecodeError);
  // Long-term pictures fill the buffer: none can slide out.
  Decoding full(1);
  full.begin({0, 0, {}, true});
  full.finish();
  full.begin({1, 8});
  EXPECT_THROW(full.finish(), moxdec::DecodeError);
}

}  // namespace
}  // namespace mox::test
