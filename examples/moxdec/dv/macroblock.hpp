/// From the coefficients of a macroblock to samples of the picture.
#pragma once

#include "moxdec/dv/placement.hpp"
#include "moxvc.h"

namespace moxdec::dv {

/// Dequantises, transforms and stores the blocks of a macroblock. `coefficients` are its 64 for each block, which
/// change, and `parameters` a word for each, as the library's segment decoders give them.
void reconstruct(const Profile& profile, const Place& place, Mox16s* coefficients, const Mox32u* parameters,
                 const Frame& frame);

}  // namespace moxdec::dv
