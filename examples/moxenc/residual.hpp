/// From source and prediction to levels, and back to samples.
#pragma once

#include "moxenc/macroblock.hpp"
#include "moxenc/picture.hpp"

namespace moxenc {

/// QP of chroma.
inline int chroma_qp(int qp) { return example::kChromaQp[static_cast<std::size_t>(qp)]; }

/// Each of these begins with a prediction in the picture, replaces the levels of its part of the macroblock and its
/// bits of Residual::coded; quantise functions leave the picture alone. Those that return false have met a level that
/// cannot be written.

/// The luma of an inter macroblock. If all it has are a few small levels, which cost more than they help, it gets none.
void quantise_luma_inter(Macroblock& mb, const Planes& source, const Planes& picture);
[[nodiscard]] bool quantise_luma_16x16(Macroblock& mb, const Planes& source, const Planes& picture);
[[nodiscard]] bool quantise_chroma(Macroblock& mb, const Planes& source, const Planes& picture);

/// Codes and reconstructs one block of an Intra 4x4 macroblock. `block` in raster order.
void code_block(Macroblock& mb, std::size_t block, const Planes& source, const Planes& picture);

/// Adds the luma of an inter or Intra 16x16 macroblock to its prediction, and the chroma of any.
void reconstruct_luma(const Macroblock& mb, const Planes& picture, std::uint32_t unusable_neighbours);
void reconstruct_chroma(const Macroblock& mb, const Planes& picture);

}  // namespace moxenc
