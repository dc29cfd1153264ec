/// What the quantisers of whole 8x8 blocks share.
#pragma once

#include "moxvc/types.h"

namespace mox::px {

/// The greatest magnitude of a level.
inline constexpr Mox32s kMostLevel = 2047;

/// Changes the last coefficient by 1, from odd downwards or from even upwards, if a block's sum is even; of `sum` bit 0
/// counts.
constexpr void make_sum_odd(Mox16s* block, Mox32s sum) { block[63] = static_cast<Mox16s>(block[63] ^ (~sum & 1)); }

}  // namespace mox::px
