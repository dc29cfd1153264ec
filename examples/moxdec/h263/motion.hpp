/// Vectors: their prediction from one another, and their codes.
#pragma once

#include "moxdec/h263/picture.hpp"

namespace moxdec::h263 {

/// Reads the vectors of the macroblock at a column and row, whose segment and number of vectors are known. Throws
/// DecodeError.
void read_vectors(ByteReader& bits, Picture& picture, int mb_x, int mb_y);

/// The vector of both chroma blocks, in their half samples.
MoxiMotionVector chroma_vector(const Macroblock& macroblock);

}  // namespace moxdec::h263
