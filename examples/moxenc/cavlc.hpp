/// Residual blocks as CAVLC codes (ITU-T H.264 9.2), analysed by the library.
#pragma once

#include "moxenc/bit_writer.hpp"
#include "moxvc.h"

namespace moxenc {

/// Scan position of each raster position of a 4x4 block, as quantisers take it.
const Mox16s* scan_positions();

/// Writes scan positions `first` (0, or 1 without DC) to 15 of a 4x4 block in raster order. No level lies beyond scan
/// position `last`, and none exceeds a magnitude of 2063. `nc` is the mean count of the neighbours. Returns TotalCoeff.
int write_block(BitWriter& bits, const Mox16s* levels, int first, int last, int nc);
/// A chroma DC block of four levels.
void write_chroma_dc(BitWriter& bits, const Mox16s* levels);
/// A block without levels.
void write_empty_block(BitWriter& bits, int nc);
void write_empty_chroma_dc(BitWriter& bits);

}  // namespace moxenc
