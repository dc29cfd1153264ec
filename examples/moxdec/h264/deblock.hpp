/// The deblocking filter: which edges, how strongly, with which thresholds.
#pragma once

#include "moxdec/h264/picture.hpp"

namespace moxdec::h264 {

/// Filters all edges of the macroblocks of a row, of a row of pairs if the picture has such, in the picture. The rows
/// above must be filtered, this row and the one below rebuilt: intra prediction uses unfiltered samples, and filtering
/// reaches three lines of each field up but none down.
void deblock_rows(Picture& picture, int row);

}  // namespace moxdec::h264
