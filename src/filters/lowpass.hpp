/// Low-pass filter of planes, for the other filters of the library.
#pragma once

#include "moxvc/types.h"

namespace mox {

/// Mask selectors.
inline constexpr Mox32s kLowpass3x3 = 33, kLowpass5x5 = 55;

/// Filters a region. Reads one sample around it with the 3x3 mask, two with the 5x5 mask; the destination must not
/// overlap what is read.
///
/// The 3x3 mask is the mean of nine samples, the fraction cut off. The 5x5 mask has the weights 1 4 6 4 1 of 16 in both
/// directions and rounds once, halves up: (sum + 128) >> 8. It spreads its rows over a team of ownGetNumThreads
/// threads, with a row buffer for each of them from one allocation; the result does not depend on their number.
///
/// moxStsNullPointer, moxStsBadSize for a width or height below 1, moxStsBadStep for a step below 1, moxStsBadMask for
/// another selector, and with the 5x5 mask moxStsNoMemory.
MoxStatus moxiFilterLowpass_8u_C1R(const Mox8u* source, Mox32s sourceStep, Mox8u* destination, Mox32s destinationStep,
                                   MoxiSize size, Mox32s mask);

}  // namespace mox
