/// Inter prediction: blocks of reference pictures, averaged or weighted, put into the picture.
#pragma once

#include <array>
#include <cstdint>

#include "moxdec/h264/inter_library.hpp"
#include "moxdec/h264/macroblock.hpp"
#include "moxdec/h264/picture.hpp"
#include "moxdec/h264/references.hpp"
#include "moxvc.h"

namespace moxdec::h264 {

/// Where blocks outside a reference come from.
enum class OutsideSamples {
  kOnDemand,  // the library repeats the nearest samples for each block that needs them
  kExpanded,  // frames have margins with those samples; only blocks beyond the margins are treated so, and fields
};
/// Samples of luma on each side. A block of 16x16 with its filter's footprint lies in the margin if its vector leaves
/// the picture by no more than 13 samples.
inline constexpr int kMargin = 32;

/// Fills the margins of a finished frame.
void expand(const Frame& frame);

class InterPredictor {
 public:
  void set_outside(OutsideSamples outside) { expanded_ = outside == OutsideSamples::kExpanded; }
  /// The header must stay while the slice is decoded.
  void begin_slice(const SliceHeader& slice, const ReferenceLists& lists, const ReferenceBuffer& references);
  /// Predicts all planes of a macroblock. Throws DecodeError if the library refuses, which no motion should cause.
  void predict(const Picture& picture, const Macroblock& mb);

 private:
  enum class Weighting { kNone, kExplicit, kImplicit };

  struct Planes {
    std::array<const std::byte*, 3> plane;
  };
  using ImplicitWeights = std::array<std::array<std::int16_t, kMaxListEntries>, kMaxListEntries>;
  /// Where predicted samples go. Steps count samples.
  template <class Sample>
  struct Target {
    std::array<Sample*, 3> plane;
    Mox32s luma_step;
    Mox32s chroma_step;
    Mox32s step(int i) const { return i == 0 ? luma_step : chroma_step; }
  };
  /// A macroblock in the frame or the field that it and its references are, in samples of luma.
  struct Unit {
    const MbMotion& motion;
    PicturePart part;
    int parity;  // of a field; -1 for a frame
    MoxiSize size;
    MoxiPoint position;
    Mox32s luma_step;  // in samples
    Mox32s chroma_step;
    bool is_field() const { return parity >= 0; }
  };
  /// A block in work, in samples of luma.
  struct Block {
    const Unit& unit;
    MoxiPoint position;  // in the frame or the field
    const MoxiSize& size;
    int index;  // of its first 4x4 block in the macroblock
    int reference(int list) const { return unit.motion.references[list][quadrant_of(index)]; }
    int picture_id(int list) const { return unit.motion.pictures[list][quadrant_of(index)]; }
  };

  void find_implicit_weights(PicturePart part, const SliceHeader& slice, const ReferenceLists& lists,
                             const ReferenceBuffer& references);
  template <class Sample>
  static Unit unit_of(const Picture& picture, const Macroblock& mb);
  template <class Sample>
  void predict_macroblock(const Picture& picture, const Macroblock& mb) const;
  /// `target` is where the block goes in the picture.
  template <class Sample>
  void predict_block(const Block& block, const Target<Sample>& target) const;
  template <class Sample>
  void fetch(const Block& block, int list, const Target<Sample>& target) const;
  /// From the first sample of the reference, a frame or a field. Vectors count quarters of luma samples, eighths of
  /// chroma samples.
  template <class Sample>
  void fetch_luma(const Block& block, MoxiPoint vector, const Sample* source, const Target<Sample>& target) const;
  template <class Sample>
  void fetch_chroma(const Block& block, MoxiPoint vector, const std::array<const Sample*, 2>& sources,
                    const Target<Sample>& target) const;
  template <class Sample>
  void weight(const Block& block, int list, const Target<Sample>& target) const;
  /// In place of the first one.
  template <class Sample>
  MoxStatus combine_plane(const Block& block, int plane, const Target<Sample>& first,
                          const Target<Sample>& second) const;
  /// Samples of luma around the references that a block may use.
  int margin(const Unit& unit) const { return expanded_ && !unit.is_field() ? kMargin : 0; }
  /// From luma to the rows of a plane.
  int rows(int plane, int y) const { return plane == 0 ? y : y >> chroma_shift_y_; }
  MoxiSize size_in(int plane, MoxiSize size) const {
    return {plane == 0 ? size.width : size.width >> 1, rows(plane, size.height)};
  }
  SampleWeight explicit_weight(const Block& block, int list, int plane) const;

  bool expanded_ = false;
  int bit_depth_ = 8;
  int planes_ = 3;
  int chroma_shift_y_ = 1;
  Weighting weighting_ = Weighting::kNone;
  const WeightTable* explicit_ = nullptr;
  /// Of list 1, by the part of the picture and the indices of both lists; of list 0 it is 64 less this one.
  std::array<ImplicitWeights, kPictureParts> implicit_;
  std::array<Planes, kPictureSlots> sources_;
};

}  // namespace moxdec::h264
