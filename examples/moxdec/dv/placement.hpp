/// Where the macroblocks of a video segment lie in the picture.
#pragma once

#include "moxdec/dv/profile.hpp"

namespace moxdec::dv {

/// The luma blocks of a macroblock: four side by side, two, or two above two.
enum class Shape { kFourWide, kTwoWide, kSquare };

struct Place {
  int x = 0, y = 0;  ///< of its first luma sample
  Shape shape = Shape::kSquare;
  bool used = true;  ///< false for macroblocks that belong to no part of the picture
};

/// The place of macroblock `m`, 0 to 4, of segment `k`, 0 to 26, of a sequence of a channel.
Place place_of(Shuffling shuffling, int sequences, int channel, int sequence, int k, int m);

}  // namespace moxdec::dv
