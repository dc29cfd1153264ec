/// Decoded pictures that later ones refer to: their marking, and the reference lists of slices.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <vector>

#include "moxdec/frame.hpp"
#include "moxdec/h264/motion.hpp"
#include "moxdec/h264/output_order.hpp"
#include "moxdec/h264/slice_header.hpp"

namespace moxdec::h264 {

enum class Marking : std::uint8_t { kUnused, kShortTerm, kLongTerm };

/// One reference for each of the 16 that a stream may keep, and the picture in work.
inline constexpr int kPictureSlots = 17;

struct StoredPicture {
  std::shared_ptr<Frame> frame;  // null for one that the stream left out
  std::vector<MbMotion> motion;
  /// Which pictures the slots of `motion` were then. Serial numbers count from 1 and are never given twice.
  std::array<std::uint32_t, kPictureSlots> serials{};
  std::uint32_t serial = 0;
  Marking marking = Marking::kUnused;
  FieldOrder order;
  int frame_num = 0;
  int long_term_index = 0;
};

/// Places in the reference buffer; kNoReference for entries without a picture, which no macroblock may use.
struct ReferenceLists {
  std::array<std::array<std::int8_t, kMaxListEntries>, 2> slots;
  std::array<int, 2> count = {0, 0};
};

/// The pictures that may be referred to. One that is missing, because the stream left it out or was joined late, is an
/// error only for a macroblock that uses it; marking a missing picture does nothing.
class ReferenceBuffer {
 public:
  /// For streams that keep `limit` references (at least one). Forgets all pictures.
  void configure(int limit);

  /// Starts a picture. An IDR picture forgets all others.
  StoredPicture& begin(const SliceHeader& slice, FieldOrder order, std::shared_ptr<Frame> frame);
  /// The frame number of the first one of the pictures between the last reference and this one that the stream left
  /// out, as far as they could still be in the buffer; the slice's own number if there are none.
  int first_missing(const SliceHeader& slice) const;
  /// Stands for a picture that the stream left out.
  void add_missing(const SliceHeader& slice, FieldOrder order);
  /// Marks the references behind the picture in work, itself included. To be called once behind its last slice.
  void finish(const SliceHeader& slice);

  /// The lists of a slice of the picture in work.
  ReferenceLists lists(const SliceHeader& slice) const;
  const StoredPicture& at(int slot) const { return pictures_[static_cast<std::size_t>(slot)]; }

 private:
  using Slots = std::vector<std::int8_t>;

  StoredPicture& current() { return pictures_[static_cast<std::size_t>(current_)]; }
  const StoredPicture& current() const { return pictures_[static_cast<std::size_t>(current_)]; }
  template <class Pred>
  Slots select(Pred pred) const;
  void take_slot();
  static void release(StoredPicture& picture);
  void slide();
  void apply(const MarkingOperation& operation, const SliceHeader& slice);
  StoredPicture* find_short_term(int number, const SliceHeader& slice);
  StoredPicture* find_long_term(int index);
  void make_long_term(StoredPicture& picture, int index);

  Slots order_by_number(const SliceHeader& slice) const;
  void order_by_time(const SliceHeader& slice, std::array<Slots, 2>& lists) const;
  int number(const StoredPicture& picture, const SliceHeader& slice) const;
  void change(std::array<std::int8_t, kMaxListEntries>& list, int count, const std::vector<ListChange>& changes,
              const SliceHeader& slice) const;

  std::array<StoredPicture, kPictureSlots> pictures_;
  int limit_ = 1;
  int current_ = 0;
  std::uint32_t serial_ = 0;
  int last_number_ = -1;  // frame_num of the last reference; -1 before the first picture
};

}  // namespace moxdec::h264
