/// Inter prediction of macroblocks through the library.
#pragma once

#include "moxdec/avs/picture.hpp"

namespace moxdec::avs {

using Weights = std::array<std::array<Weight, 2>, 2>;

/// Writes the prediction of the macroblock at a column and a row of macroblocks into the picture, by the motion that
/// the picture has for it; `weights` is null if there are none. Throws DecodeError if a reference is missing.
void predict_macroblock(Picture& picture, int mb_x, int mb_y, const Weights* weights);

}  // namespace moxdec::avs
