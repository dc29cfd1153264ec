/// H.264 byte streams: frame pictures of I, P and B slices coded with CAVLC, 8 to 14 bits, monochrome, 4:2:0
/// and 4:2:2.
#pragma once

#include "moxdec/codec.hpp"

namespace moxdec::h264 {

extern const Codec kCodec;

}  // namespace moxdec::h264
