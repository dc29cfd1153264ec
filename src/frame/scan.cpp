#include "moxvc/scan.h"

#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "frame/scan_px.hpp"

using namespace mox;

MoxStatus moxiScanFwd_16s_C1(const Mox16s* pSrc, Mox16s* pDst, Mox32s count, Mox32s scan) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (outside(count, 1, 64)) return moxStsOutOfRange;
  return active::scan_forward(pSrc, pDst, count, active::scan_table(scan));
}

MoxStatus moxiScanInv_16s_C1(const Mox16s* pSrc, Mox16s* pDst, Mox32s lastIndex, Mox32s scan) {
  if (any_null(pSrc, pDst)) return moxStsNullPointer;
  if (outside(lastIndex, 0, 63)) return moxStsOutOfRange;
  return active::scan_inverse(pSrc, pDst, lastIndex, active::scan_table(scan));
}
