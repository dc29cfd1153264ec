/// Choice of intra modes: each prediction is made in the picture and compared with the source by SATD.
#pragma once

#include "moxenc/site.hpp"

namespace moxenc {

/// The best 16x16 mode goes to `mb`; returns its cost. The picture holds any prediction.
int choose_intra_16x16(Macroblock& mb, const Site& site);

/// Chooses and codes one 4x4 block after the other: levels in `mb`, samples in the picture. Returns the cost, or a
/// larger one than `limit` as soon as it is passed, with the rest left open.
int code_intra_4x4(Macroblock& mb, const Site& site, int limit);

/// Chooses the chroma mode and leaves its prediction in the picture.
void predict_intra_chroma(Macroblock& mb, const Site& site);

}  // namespace moxenc
