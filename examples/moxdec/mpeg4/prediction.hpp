/// Prediction of macroblocks from references, through the library.
#pragma once

#include <vector>

#include "moxdec/mpeg4/picture.hpp"

namespace moxdec::mpeg4 {

/// The library's record of the warp of a picture with global motion.
class GlobalMotion {
 public:
  /// Sets the warp up for a picture. Throws DecodeError.
  void begin_picture(const Picture& picture);
  /// The vector that stands for the warp of a macroblock.
  Vector vector(const Place& place) const;
  const MoxiWarpSpec* record() const { return reinterpret_cast<const MoxiWarpSpec*>(memory_.data()); }

 private:
  std::vector<Mox8u> memory_;
};

/// Writes the prediction of a macroblock into the picture. Throws DecodeError if a reference is missing.
void predict_macroblock(const Picture& picture, const Place& place, const Motion& motion, const GlobalMotion& warp);

}  // namespace moxdec::mpeg4
