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

inline constexpr unsigned kAllQuadrants = 15;

class DirectPredictor {
 public:
  /// Where a macroblock is, in rows of macroblocks of its picture.
  struct Place {
    int x, y;
    PicturePart part;
  };

  /// `lists` are those of a B slice of the picture in work.
  void begin_slice(const SliceHeader& slice, const ReferenceLists& lists, const ReferenceBuffer& references);
  /// Derives the quadrants whose bits are set, for both lists, and tells how far they are split. The neighbours of the
  /// macroblock are in the windows. Throws DecodeError if a reference is missing.
  void derive(std::array<MotionWindow, 2>& windows, const Place& place, unsigned quadrants,
              std::array<Split, 4>& splits) const;

 private:
  /// Motion at the same place in the first picture of list 1.
  struct Colocated {
    MotionVector vector;
    std::int8_t reference;
    std::int8_t picture;
  };
  /// The macroblocks there that the upper and the lower half face.
  struct Facing {
    std::array<const MbMotion*, 2> half;
    bool mixed = false;  // frame and field; then rows of blocks come from `first` on, `next` further in the lower half
    int first = 0;
    int next = 0;
  };
  bool is_field_at(const Place& place) const { return field_pic_ || place.part != PicturePart::kWhole; }
  /// Of macroblocks.
  int pair_of(const Place& place) const { return field_pic_ ? place.y : place.y / 2; }
  int parity_of_fields(const Place& place) const {
    return place.part != PicturePart::kWhole ? parity_of(place.part) : colocated_parity_;
  }
  /// The row there that a macroblock faces if both pictures are of the same kind.
  const MbMotion* facing_row(const Place& place) const;
  void fetch_early(const Place& place) const;
  Facing find_facing(const Place& place) const;
  Colocated colocated(const Facing& facing, int block) const;
  int map_to_list0(const Colocated& there, PicturePart part) const;
  /// Calls `work` with each rectangle of the quadrants and the block that stands for it.
  template <class Work>
  void for_each_rect(unsigned quadrants, Work work) const;
  void derive_spatial(std::array<MotionWindow, 2>& windows, const Place& place, unsigned quadrants) const;
  void derive_temporal(std::array<MotionWindow, 2>& windows, const Place& place, unsigned quadrants) const;
  void find_indices(const ReferenceLists& lists, const ReferenceBuffer& references);
  void find_scales(PicturePart part, const SliceHeader& slice, const ReferenceLists& lists,
                   const ReferenceBuffer& references);

  bool spatial_ = false;
  bool whole_quadrants_ = false;  // their outer corner stands for all four blocks
  const StoredPicture* colocated_ = nullptr;
  bool colocated_may_stand_still_ = false;
  bool field_pic_ = false;
  int parity_ = 0;            // of a field picture
  int colocated_parity_ = 0;  // the field that counts where a picture has fields; in a frame, the nearer one
  int mb_width_ = 0;
  // For temporal prediction.
  /// Into list 0 by the structure, frame or top or bottom field, and the slot that the colocated picture knew.
  std::array<std::array<std::int8_t, kPictureSlots>, 3> indices_;
  /// By indices into list 0; nothing if vectors stay as they are.
  std::array<std::array<std::optional<int>, kMaxListEntries>, kPictureParts> scales_;
};

}  // namespace moxdec::h264
