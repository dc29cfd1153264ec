/// From macroblocks as they were read to finished samples, in the thread that reads or in others behind it.
#pragma once

#include <vector>

#include "moxdec/follower.hpp"
#include "moxdec/h264/inter_prediction.hpp"
#include "moxdec/h264/macroblock.hpp"
#include "moxdec/h264/picture.hpp"

namespace moxdec::h264 {

/// Predicts, adds residuals, and filters behind that. All threads are through with a slice at its end, so that two of
/// them only ever share its picture: the reading one writes state and motion of macroblocks that none of the others has
/// got yet, the rebuilding one their samples, the filter those of rows that nothing is predicted from any more.
class Rebuilder {
 public:
  explicit Rebuilder(Picture& picture);

  /// With two threads, rebuilding and the filter have one of their own; with three or more, one each. To be called
  /// before the first picture, if at all, as is the other.
  void set_threads(int count);
  void set_outside(OutsideSamples outside) { predictor_.set_outside(outside); }

  void begin_picture();
  void begin_slice(const Slice& slice, const ReferenceLists& lists, const ReferenceBuffer& references);
  /// The place for the next macroblock to be read.
  Macroblock& macroblock() { return runs_[place_].macroblocks[runs_[place_].count]; }
  /// That macroblock and its state in the picture are whole. Macroblocks of a slice have rising addresses.
  void add(int address);
  /// Throws DecodeError for the first macroblock of the slice that could not be rebuilt.
  void end_slice();
  /// Filters what is left. To be called once all macroblocks are there.
  void end_picture();

 private:
  /// Macroblocks that are handed over together.
  struct Run {
    std::vector<Macroblock> macroblocks;
    std::size_t count = 0;
    int end = 0;  // the address behind the last one
  };

  void hand_over();
  void rebuild(Run& run);
  void rebuild(Macroblock& mb);
  void filter_ready_rows();
  void filter_row();
  void wait();
  int rows_at_once() const { return picture_.mbaff ? 2 : 1; }

  Picture& picture_;
  const Slice* slice_ = nullptr;
  InterPredictor predictor_;
  std::vector<Run> runs_{1};
  std::size_t place_ = 0;  // of the run that is being filled
  int complete_ = 0;       // macroblocks without a gap, from the first one on
  int ready_rows_ = 0;     // one row, of pairs if there are any, behind the complete ones
  int filtered_rows_ = 0;
  // Their threads end before what they use.
  Follower filter_;
  Follower rebuilding_;
};

}  // namespace moxdec::h264
