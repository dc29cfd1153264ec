/// Prediction of motion vectors (ITU-T H.264 8.4.1).
#pragma once

#include "moxenc/macroblock.hpp"

namespace moxenc {

/// Of a partition, whose earlier ones in the macroblock stand in the grid. `split` is that of the macroblock.
Vector predict_vector(const Grid<Motion>& motion, const Part& part, Split split);

/// The vector of a macroblock that is skipped.
Vector predict_skip(const Grid<Motion>& motion, int mb_x, int mb_y);

}  // namespace moxenc
