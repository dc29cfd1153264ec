/// Pictures of whole macroblocks, and where macroblocks lie in them.
#pragma once

#include <array>
#include <memory>

#include "moxdec/frame.hpp"
#include "moxvc.h"

namespace moxenc {

using FramePtr = std::shared_ptr<moxdec::Frame>;

/// Luma samples around a reference that hold copies of its edges; half as many around chroma.
inline constexpr int kMargin = 64;

/// The first samples of a macroblock in the planes of a picture.
struct Planes {
  std::array<Mox8u*, 3> at;
  std::array<Mox32s, 3> step;
};
inline Mox8u* sample_at(const moxdec::Frame& frame, int plane, int x, int y) {
  return frame.samples<Mox8u>(plane) + std::ptrdiff_t{y} * frame.step(plane) + x;
}
inline Planes macroblock_at(const moxdec::Frame& frame, int mb_x, int mb_y) {
  return {{sample_at(frame, 0, 16 * mb_x, 16 * mb_y), sample_at(frame, 1, 8 * mb_x, 8 * mb_y),
           sample_at(frame, 2, 8 * mb_x, 8 * mb_y)},
          {frame.step(0), frame.step(1), frame.step(2)}};
}

/// A picture of the shown size in whole macroblocks, with room for margins.
FramePtr make_picture(const moxdec::FrameFormat& format);

/// Copies what is shown, and repeats its last samples up to whole macroblocks.
void copy_source(const moxdec::Frame& from, const moxdec::Frame& to);

/// Fills the margins of all planes.
void fill_margins(const moxdec::Frame& frame);

}  // namespace moxenc
