/// Direct mode: motion of a macroblock of a B picture from the one in the same place of the reference behind it.
#pragma once

#include "moxdec/mpeg4/picture.hpp"

namespace moxdec::mpeg4 {

/// `difference` is added to each vector.
Motion direct_motion(const Picture& picture, const MbState& colocated, Vector difference);

}  // namespace moxdec::mpeg4
