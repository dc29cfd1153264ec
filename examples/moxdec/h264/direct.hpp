/// Direct prediction: motion of B macroblocks that the stream does not write.
#pragma once

#include <array>
#include <cstdint>
#include <optional>

#include "common/h264_tables.hpp"
#include "moxdec/h264/motion.hpp"
#include "moxdec/h264/references.hpp"

namespace moxdec::h264 {

using example::Split;

/// How far `now` is on the way from one picture to another, in 256ths, from -1024 to 1023. Nothing if both are at the
/// same time.
std::optional<int> distance_scale(int now, int from, int to);

class DirectPredictor {
 public:
  /// `lists` are those of a B slice in a picture of this order count.
  void begin_slice(const SliceHeader& slice, const ReferenceLists& lists, const ReferenceBuffer& references, int order);
  /// Derives the quadrants whose bits are set, for both lists, and tells how far they are split. The neighbours of the
  /// macroblock at `address` are in the windows. Throws DecodeError if a reference is missing.
  void derive(std::array<MotionWindow, 2>& windows, int address, unsigned quadrants,
              std::array<Split, 4>& splits) const;

 private:
  /// Motion of the macroblock at the same place in the first picture of list 1.
  struct Colocated {
    MotionVector vector;
    std::int8_t reference;
    std::int8_t slot;
  };
  Colocated colocated(int address, int block) const;
  /// Calls `work` with each rectangle of a quadrant and the block that stands for it.
  template <class Work>
  void for_each_rect(int quadrant, Work work) const;
  void derive_spatial(std::array<MotionWindow, 2>& windows, int address, unsigned quadrants) const;
  void derive_temporal(std::array<MotionWindow, 2>& windows, int address, int quadrant) const;
  void find_scales(const ReferenceLists& lists, const ReferenceBuffer& references, int order);

  bool spatial_ = false;
  bool whole_quadrants_ = false;  // their outer corner stands for all four blocks
  const StoredPicture* colocated_ = nullptr;
  bool colocated_may_stand_still_ = false;
  // For temporal prediction.
  std::array<std::int8_t, kPictureSlots> indices_;  // into list 0 by slots of the colocated picture
  std::array<std::optional<int>, kMaxListEntries>
      scales_;  // by indices into list 0; nothing if vectors stay as they are
};

}  // namespace moxdec::h264
