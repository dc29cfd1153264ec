/// Figures and pictures that show what a filter did.
#pragma once

#include <array>
#include <string>

#include "moxdec/contact_sheet.hpp"
#include "moxfilter/clip.hpp"

namespace moxfilter {

/// How near a clip is to another one.
class Quality {
 public:
  void add(const Frame& a, const Frame& b);
  /// Peak signal-to-noise ratio of a plane over all pictures, in dB; infinity if they are equal.
  double psnr(int plane) const;
  /// Those of the three planes.
  std::string text() const;

 private:
  struct Sums {
    double squares = 0, samples = 0;
  };
  std::array<Sums, 3> planes_;
};

/// A picture before and after filtering, and the original where it is known, side by side. Small ones are enlarged.
moxdec::RgbImage side_by_side(const Pair& pair, const Frame& result);

}  // namespace moxfilter
