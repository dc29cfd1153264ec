/// Y4M files: raw 8-bit 4:2:0 pictures with a header.
#pragma once

#include "moxdec/codec.hpp"

namespace motion_search {

bool is_y4m(moxdec::Bytes data);

/// Frames of a file that is_y4m. The data must outlive the decoder. Throws moxdec::DecodeError.
std::unique_ptr<moxdec::Decoder> open_y4m(moxdec::Bytes data);

}  // namespace motion_search
