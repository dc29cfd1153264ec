/// The filter of block edges inside the coding loop (annex J), through the library.
#pragma once

#include "moxdec/h263/picture.hpp"

namespace moxdec::h263 {

void deblock_picture(const Picture& picture);

}  // namespace moxdec::h263
