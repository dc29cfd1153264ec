/// From modes and coefficients to samples.
#pragma once

#include "moxdec/h264/macroblock.hpp"
#include "moxdec/h264/picture.hpp"

namespace moxdec::h264 {

/// Predicts an intra macroblock in the picture and adds its residual; copies raw samples. The coefficients are used up.
/// Throws DecodeError if a mode needs a neighbour that is denied.
void reconstruct_intra(Picture& picture, const Slice& slice, Macroblock& mb);

/// Adds the residual of an inter macroblock to its prediction in the picture. The coefficients are used up.
void reconstruct_inter(Picture& picture, const Slice& slice, Macroblock& mb);

}  // namespace moxdec::h264
