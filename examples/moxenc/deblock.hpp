/// The deblocking filter in the loop (ITU-T H.264 8.7).
#pragma once

#include "moxenc/macroblock.hpp"
#include "moxenc/picture.hpp"

namespace moxenc {

/// Filters a whole reconstructed picture by what its macroblocks left behind.
void deblock(const moxdec::Frame& picture, const CodingState& state);

}  // namespace moxenc
