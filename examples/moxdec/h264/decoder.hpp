/// H.264 byte streams: frame pictures of I, P and B slices coded with CAVLC, 8-bit 4:2:0.
#pragma once

#include "moxdec/codec.hpp"

namespace moxdec::h264 {

extern const Codec kCodec;

}  // namespace moxdec::h264
