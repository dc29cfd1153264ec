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
  std::array<Marking, 2> marking = {Marking::kUnused, Marking::kUnused};  // by parity
  bool mbaff = false;
  FieldOrder order;
  int frame_num = 0;
  int long_term_index = 0;

  /// As a frame, or in one field at least.
  bool is(Marking wanted) const { return marking[kTop] == wanted && marking[kBottom] == wanted; }
  bool has(Marking wanted) const { return marking[kTop] == wanted || marking[kBottom] == wanted; }
  bool is_used() const { return !is(Marking::kUnused); }
  /// Of the frame or the field that is named.
  bool is(Marking wanted, int id) const { return is_field(id) ? marking[parity_of(id)] == wanted : is(wanted); }
  int order_of(int id) const { return is_field(id) ? order.field(parity_of(id)) : order.frame(); }
  /// Of a part of this picture, when a slice of it is in work.
  int order_of(PicturePart part, const SliceHeader& slice) const {
    if (part != PicturePart::kWhole) return order.field(parity_of(part));
    return slice.field_pic ? order.field(slice.parity()) : order.frame();
  }
};

/// Frames or fields, by their names; kNoReference for entries without a picture, which no macroblock may use.
struct ReferenceLists {
  /// What index `index` means in a part of the picture. A field has twice the entries of its frame: of each frame first
  /// the field of the same parity.
  std::int8_t picture(int list, int index, PicturePart part) const {
    if (part == PicturePart::kWhole) return slots[list][index];
    const int slot = slots[list][index >> 1];
    return slot < 0 ? kNoReference : field_id(slot, parity_of(part) ^ (index & 1));
  }
  int entries(int list, PicturePart part) const { return count[list] << (part == PicturePart::kWhole ? 0 : 1); }

  std::array<std::array<std::int8_t, kMaxListEntries>, 2> slots;
  std::array<int, 2> count = {0, 0};
};

/// The pictures that may be referred to. One that is missing, because the stream left it out or was joined late, is an
/// error only for a macroblock that uses it; marking a missing picture does nothing.
class ReferenceBuffer {
 public:
  /// For streams that keep `limit` references (at least one). Forgets all pictures.
  void configure(int limit);

  /// Starts a frame or the first field of one. An IDR picture forgets all others.
  StoredPicture& begin(const SliceHeader& slice, FieldOrder order, std::shared_ptr<Frame> frame);
  /// Goes on with the second field; `order` has its count.
  StoredPicture& begin_second_field(FieldOrder order);
  /// The frame number of the first one of the pictures between the last reference and this one that the stream left
  /// out, as far as they could still be in the buffer; the slice's own number if there are none.
  int first_missing(const SliceHeader& slice) const;
  /// Stands for a picture that the stream left out.
  void add_missing(const SliceHeader& slice, FieldOrder order);
  /// Marks the references behind the picture in work, itself included. To be called once behind its last slice; for
  /// each field, if they are pictures.
  void finish(const SliceHeader& slice);

  /// The lists of a slice of the picture in work.
  ReferenceLists lists(const SliceHeader& slice) const;
  /// Of the picture in work, or of the one that was finished last.
  const StoredPicture& current() const { return pictures_[static_cast<std::size_t>(current_)]; }
  const StoredPicture& at(int id) const { return pictures_[static_cast<std::size_t>(slot_of(id))]; }

 private:
  using Slots = std::vector<std::int8_t>;

  StoredPicture& current() { return pictures_[static_cast<std::size_t>(current_)]; }
  template <class Pred>
  Slots select(Pred pred) const;
  void take_slot();
  /// Takes the marking from a frame, or from the fields that are named.
  void release(int id);
  void slide();
  void apply(const MarkingOperation& operation, const SliceHeader& slice);
  std::int8_t find(int number, Marking marking, const SliceHeader& slice) const;
  void make_long_term(int id, int index);
  std::int8_t own_id(const SliceHeader& slice) const;

  Slots order_by_number(const SliceHeader& slice) const;
  void order_by_time(const SliceHeader& slice, std::array<Slots, 2>& lists) const;
  int time_of(const StoredPicture& picture, const SliceHeader& slice) const;
  void append(Slots& list, const Slots& frames, Marking marking, const SliceHeader& slice) const;
  bool may_refer_to(const StoredPicture& picture, Marking marking, const SliceHeader& slice) const;
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
