/// What the quantisers of whole 8x8 blocks share.
#pragma once

#include "frame/table.hpp"
#include "moxvc/types.h"

namespace mox::px {

/// The greatest magnitude of a level.
inline constexpr Mox32s kMostLevel = 2047;

/// Changes the last coefficient by 1, from odd downwards or from even upwards, if a block's sum is even; of `sum` bit 0
/// counts.
constexpr void make_sum_odd(Mox16s* block, Mox32s sum) { block[63] = static_cast<Mox16s>(block[63] ^ (~sum & 1)); }

/// [qp - 1]: reciprocal of the step 2 * qp in 16 bits, rounded upwards. Half of 1 to 32768 is exact by it, too.
inline constexpr auto _p_QuantInv =
    make_table<31>([]<std::size_t I>() { return static_cast<Mox32s>(65536 / (2 * (I + 1)) + 1); });
static_assert(_p_QuantInv[0] == 32769 && _p_QuantInv[30] == 1058);
static_assert(32767 * _p_QuantInv[0] >> 16 == 16383 && 32768 * _p_QuantInv[0] >> 16 == 16384);

}  // namespace mox::px
