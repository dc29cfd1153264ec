/// Prediction of macroblocks from the reference, through the library.
#pragma once

#include "moxdec/h263/picture.hpp"

namespace moxdec::h263 {

/// Predicts all macroblocks that are not intra and adds their residuals. Throws DecodeError if there is no reference.
void predict_picture(const Picture& picture);

}  // namespace moxdec::h263
