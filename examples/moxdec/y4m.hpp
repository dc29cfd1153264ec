/// Y4M files: raw 8-bit 4:2:0 pictures with a header.
#pragma once

#include "moxdec/codec.hpp"

namespace moxdec {

bool is_y4m(Bytes data);

/// Frames of a file that is_y4m. The data must outlive the decoder. Throws DecodeError.
std::unique_ptr<Decoder> open_y4m(Bytes data);

/// Frames of a Y4M file, or of a stream of a known codec. The data must outlive the decoder. Throws DecodeError.
std::unique_ptr<Decoder> open_video(Bytes data, std::string_view file_name);

}  // namespace moxdec
