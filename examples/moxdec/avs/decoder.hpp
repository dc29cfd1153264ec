/// The AVS decoder: from the bytes of a stream to frames.
#pragma once

#include "moxdec/codec.hpp"

namespace moxdec::avs {

extern const Codec kCodec;

}  // namespace moxdec::avs
