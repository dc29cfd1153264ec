/// Tests of the rectangles that the noise filters work on.
#pragma once

#include "frame/arguments.hpp"
#include "moxvc/types.h"

namespace mox {

constexpr bool is_empty(MoxiSize size) { return size.width < 1 || size.height < 1; }

/// True if the rectangle, not empty, lies inside the region.
constexpr bool lies_inside(MoxiPoint offset, MoxiSize size, MoxiSize region) {
  return !outside(offset.x, 0, static_cast<long long>(region.width) - size.width) &&
         !outside(offset.y, 0, static_cast<long long>(region.height) - size.height);
}

}  // namespace mox
