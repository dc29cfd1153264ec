/// Masks of the low n bits, n from 0 to 32.
#pragma once

#include "frame/table.hpp"
#include "moxvc/types.h"

namespace mox {

inline constexpr auto bit_mask = make_table<33>([]<std::size_t N>() { return static_cast<Mox32u>((1ull << N) - 1); });

/// The same table under the name that the byte-cursor families use.
inline constexpr auto& ownvc_BitMask = bit_mask;

static_assert(bit_mask[0] == 0 && bit_mask[1] == 1 && bit_mask[31] == 0x7FFFFFFF && bit_mask[32] == 0xFFFFFFFF);

}  // namespace mox
