/// MPEG-1 and MPEG-2 video elementary streams.
#pragma once

#include "moxdec/codec.hpp"

namespace moxdec::mpeg12 {

extern const Codec kCodec;

}  // namespace moxdec::mpeg12
