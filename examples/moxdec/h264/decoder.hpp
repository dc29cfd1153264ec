/// H.264 byte streams: I pictures coded with CAVLC, 8-bit 4:2:0 frames.
#pragma once

#include "moxdec/codec.hpp"

namespace moxdec::h264 {

extern const Codec kCodec;

}  // namespace moxdec::h264
