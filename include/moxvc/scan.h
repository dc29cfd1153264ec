/** @file
 *  8x8 blocks between raster and scan order (zigzag and the two alternate scans of ISO/IEC 14496-2 7.4.2).
 *
 *  `scan` selects the order: 1 alternate vertical, 2 alternate horizontal, any other value zigzag. Both functions read
 *  at most 64 and write 64 coefficients; source and destination must not overlap. */
#ifndef MOXVC_SCAN_H
#define MOXVC_SCAN_H

#include "types.h"

MOX_BEGIN_DECLS

/** Raster order to scan order.
 *  @param[in]  pSrc  64 coefficients in raster order
 *  @param[out] pDst  64 coefficients in scan order. With a count of 20 or more the whole block is copied; below that,
 *                    the copy stops after `count` non-zero coefficients and the rest is zero
 *  @param      count number of non-zero coefficients, 1 to 64
 *  @param      scan  scan order
 *  @retval moxStsNullPointer pSrc or pDst is null
 *  @retval moxStsOutOfRange  count is not 1 to 64 */
MOX_API MoxStatus moxiScanFwd_16s_C1(const Mox16s* pSrc, Mox16s* pDst, Mox32s count, Mox32s scan);

/** Scan order to raster order.
 *  @param[in]  pSrc      lastIndex + 1 coefficients in scan order
 *  @param[out] pDst      64 coefficients in raster order, zero where none was given
 *  @param      lastIndex scan index of the last coefficient to place, 0 to 63
 *  @param      scan      scan order
 *  @retval moxStsNullPointer pSrc or pDst is null
 *  @retval moxStsOutOfRange  lastIndex is not 0 to 63 */
MOX_API MoxStatus moxiScanInv_16s_C1(const Mox16s* pSrc, Mox16s* pDst, Mox32s lastIndex, Mox32s scan);

MOX_END_DECLS

#endif
