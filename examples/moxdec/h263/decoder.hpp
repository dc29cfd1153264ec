/// H.263 streams, with most of the options of its second version.
#pragma once

#include "moxdec/codec.hpp"

namespace moxdec::h263 {

extern const Codec kCodec;

}  // namespace moxdec::h263
