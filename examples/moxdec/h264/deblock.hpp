/// The deblocking filter: which edges, how strongly, with which thresholds.
#pragma once

#include "moxdec/h264/picture.hpp"

namespace moxdec::h264 {

/// Filters all edges of the macroblocks of a row, in the picture. The rows above must be filtered, this row and the one
/// below rebuilt: intra prediction uses unfiltered samples, and filtering reaches three rows up but none down.
void deblock_row(Picture& picture, int row);

}  // namespace moxdec::h264
