/// 8x8 transforms between one plane of samples and coefficients, for use inside the library.
#pragma once

#include "moxvc/types.h"

namespace mox {

/// The forward transform of 8x8 samples. srcStep is at least 8 bytes; tests and status as with the exported relatives.
MoxStatus moxiDCT8x8Fwd_8u16s_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox16s* pDst);
/// The inverse transform to 8x8 samples, limited to 0..255. dstStep is at least 8 bytes.
MoxStatus moxiDCT8x8Inv_16s8u_C1R(const Mox16s* pSrc, Mox8u* pDst, Mox32s dstStep);

}  // namespace mox
