/// MPEG-4 Part 2 video elementary streams.
#pragma once

#include "moxdec/codec.hpp"

namespace moxdec::mpeg4 {

extern const Codec kCodec;

}  // namespace moxdec::mpeg4
