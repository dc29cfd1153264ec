/// Y4M files: raw 8-bit 4:2:0 pictures with a header.
#pragma once

#include "moxdec/codec.hpp"

namespace moxdec {

bool is_y4m(Bytes data);

/// Frames of a file that is_y4m. The data must outlive the decoder. Throws DecodeError.
std::unique_ptr<Decoder> open_y4m(Bytes data);

}  // namespace moxdec
