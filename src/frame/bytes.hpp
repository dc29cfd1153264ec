/// Copies and fills that kernels share.
#pragma once

#include "moxvc/types.h"

namespace mox {

/// Plain runs of `length` elements. The C library's copy and fill already pass by the cache on long runs.
void moxsCopy_8u(const Mox8u* source, Mox8u* destination, Mox32s length);
void moxsCopy_16s(const Mox16s* source, Mox16s* destination, Mox32s length);
void moxsSet_8u(Mox8u value, Mox8u* destination, Mox32s length);
void moxsZero_8u(Mox8u* destination, Mox32s length);

/// Copies a region row by row. moxStsNullPointer, then moxStsBadSize for a width or height below 1.
MoxStatus moxiCopy_8u_C1R(const Mox8u* source, Mox32s sourceStep, Mox8u* destination, Mox32s destinationStep,
                          MoxiSize size);

/// Fills a region; one whose step equals its width is filled as one run. moxStsNullPointer, then moxStsBadSize. A
/// region of more than 512 KiB that is at least as large as the largest cache is stored past the caches.
MoxStatus moxiSet_8u_C1R(Mox8u value, Mox8u* destination, Mox32s step, MoxiSize size);

}  // namespace mox
