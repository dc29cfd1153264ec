/// From slices to one finished picture, and the references that the next ones use.
#pragma once

#include <exception>
#include <memory>

#include "moxdec/h264/macroblock.hpp"
#include "moxdec/h264/output_order.hpp"
#include "moxdec/h264/picture.hpp"
#include "moxdec/h264/rebuilder.hpp"
#include "moxdec/h264/references.hpp"

namespace moxdec::h264 {

class PictureDecoder {
 public:
  /// Both to be called before the first picture, if at all.
  void set_outside(OutsideSamples outside) { outside_ = outside; }
  void set_threads(int count) { rebuilder_.set_threads(count); }
  /// Whether a field waits for the other field of its frame, and whether this slice belongs to that one.
  bool has_single_field() const { return single_field_ && !in_work_; }
  bool completes_frame(const SliceHeader& first_slice) const;
  /// Hands the frame of a single field out, whose lines stand for the missing ones.
  std::shared_ptr<const Frame> take_single_field();
  /// Starts the picture of this slice; one that is still in work is given up, and so is a single field that it does not
  /// belong to.
  void begin(const SliceHeader& first_slice);
  bool in_work() const { return in_work_; }
  /// Whether the picture in work lacks nothing.
  bool is_complete() const { return in_work_ && decoded_ == picture_.macroblock_count(); }
  /// Decodes the macroblocks of a slice; `bits` stands behind its header. The slices of a picture may come in any
  /// order. Throws DecodeError, and then gives the picture up.
  void decode_slice(const SliceHeader& header, BitReader& bits);
  /// The frame's place in display order, behind memory management.
  int order() const { return references_.current().order.frame(); }
  /// Filters what is left to be filtered, marks the references and hands the frame out; null behind the first field of
  /// a frame. Throws DecodeError if macroblocks are missing.
  std::shared_ptr<const Frame> finish();

 private:
  void configure(const SliceHeader& slice);
  void fill_gap(const SliceHeader& slice);
  std::shared_ptr<const LevelScales> scales_of(const SliceHeader& header);
  void begin_slice(const Slice& slice);
  /// Returns the DecodeError that ended it.
  std::exception_ptr read_slice(const Slice& slice, BitReader& bits);
  void read_macroblocks(MacroblockReader& reader, const Slice& slice, BitReader& bits, int& address);
  void skip_macroblocks(MacroblockReader& reader, BitReader& bits, int count, int& address);
  template <class Read>
  void take_macroblock(int& address, Read read);

  CavlcTables tables_;
  FramePool pool_;
  OutsideSamples outside_ = OutsideSamples::kOnDemand;
  std::shared_ptr<const Sps> sps_;  // for which pool and references are made
  PictureOrder orders_;
  ReferenceBuffer references_;
  InterSlice inter_;
  std::shared_ptr<const LevelScales> scales_;  // of these two sets
  std::shared_ptr<const Sps> scales_sps_;
  std::shared_ptr<const Pps> scales_pps_;
  SliceHeader first_slice_;  // of the picture in work
  bool expands_ = false;
  Picture picture_;
  bool in_work_ = false;
  bool single_field_ = false;  // of the frame that was in work last
  int decoded_ = 0;            // macroblocks, wherever they lie
  bool field_ = false;         // of the macroblock in work
  Rebuilder rebuilder_{picture_};
};

}  // namespace moxdec::h264
