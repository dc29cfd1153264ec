/// Choice of the partitions of an inter macroblock, and of their vectors.
#pragma once

#include "moxenc/inter.hpp"

namespace moxenc {

/// Sets split and vectors of `mb`; returns the cost. `reference` has margins.
int choose_partitions(Macroblock& mb, const Site& site, const moxdec::Frame& reference);

}  // namespace moxenc
