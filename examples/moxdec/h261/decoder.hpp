/// H.261 streams of QCIF and CIF pictures, without the framing of transmission channels.
#pragma once

#include "moxdec/codec.hpp"

namespace moxdec::h261 {

extern const Codec kCodec;

}  // namespace moxdec::h261
