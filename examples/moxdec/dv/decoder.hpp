/// DV25, DV50 and DV100 streams of DIF sequences.
#pragma once

#include "moxdec/codec.hpp"

namespace moxdec::dv {

extern const Codec kCodec;

}  // namespace moxdec::dv
