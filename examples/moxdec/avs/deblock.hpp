/// The loop filter of a whole picture through the library.
#pragma once

#include "moxdec/avs/picture.hpp"

namespace moxdec::avs {

/// Filters a picture whose macroblocks are all reconstructed.
void filter_picture(const Picture& picture);

}  // namespace moxdec::avs
