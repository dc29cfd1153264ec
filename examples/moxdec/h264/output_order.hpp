/// Picture order counts, and the queue that brings pictures from decoding order into display order.
#pragma once

#include <cstdint>
#include <deque>
#include <limits>
#include <memory>
#include <vector>

#include "moxdec/frame.hpp"
#include "moxdec/h264/slice_header.hpp"

namespace moxdec::h264 {

/// Order counts of the two fields of a frame, or of the only one that there is so far.
struct FieldOrder {
  static constexpr int kMissing = std::numeric_limits<std::int32_t>::max();

  int top = 0;
  int bottom = 0;
  int frame() const { return top < bottom ? top : bottom; }
  int field(int parity) const { return parity == 0 ? top : bottom; }
  /// Takes over the field that is missing here.
  void complete(const FieldOrder& other) {
    (top == kMissing ? top : bottom) = top == kMissing ? other.top : other.bottom;
  }
  /// As pictures behind a memory management operation 5 see it.
  FieldOrder rebased() const {
    return {top == kMissing ? kMissing : top - frame(), bottom == kMissing ? kMissing : bottom - frame()};
  }
};

/// Order counts of the pictures of a stream, from their first slice headers (ITU-T H.264 8.2.1).
class PictureOrder {
 public:
  /// To be called once for each picture, in decoding order. The counts are those before any memory management; they can
  /// be rebased. Throws DecodeError for a count that 32 bits cannot hold.
  FieldOrder next(const SliceHeader& slice);

 private:
  FieldOrder from_lsb(const SliceHeader& slice);
  FieldOrder from_cycle(const SliceHeader& slice) const;
  FieldOrder from_frame_num(const SliceHeader& slice) const;

  std::int64_t previous_msb_ = 0;  // of the last reference picture
  int previous_lsb_ = 0;
  int previous_frame_num_ = 0;
  std::int64_t frame_num_offset_ = 0;
};

/// Pictures that wait for their turn on display.
class OutputQueue {
 public:
  /// How many pictures may have to wait, 0 to 16.
  void set_window(int pictures) { window_ = static_cast<std::size_t>(pictures); }
  void add(std::shared_ptr<const Frame> frame, int order);
  /// All that wait are shown before anything that comes later.
  void flush();
  /// The next picture to show; null if none is due.
  std::shared_ptr<const Frame> take();

 private:
  struct Waiting {
    std::shared_ptr<const Frame> frame;
    int order;
  };
  void release_first();

  std::size_t window_ = 0;
  std::vector<Waiting> waiting_;
  std::deque<std::shared_ptr<const Frame>> due_;
};

}  // namespace moxdec::h264
