/** @file
 *  H.264 CAVLC encoding: what a bit writer needs to know of a block (ITU-T H.264 7.3.5.3.2, 9.2). No bits are written
 *  here, and levels are not adjusted.
 *
 *  A function visits the block's positions from the highest scan position to the lowest and reads nothing else of
 *  it. In that order, the coefficients that are 1 or -1, up to three of them and before any other coefficient, are
 *  the trailing ones; all later ones are levels.
 *
 *  Results, all of them by pointer:
 *  - pTrailingOnes: their number, 0 to 3.
 *  - pTrailingOneSigns: a bit for each of them, 1 for -1; the one visited last is bit 0, the first the highest.
 *  - pNumOutCoeffs: number of coefficients that are not 0.
 *  - pTotalZeros: zeros visited after the first coefficient. Of a block without coefficients, all positions.
 *  - pLevels: the levels in the order visited; pNumOutCoeffs - pTrailingOnes of them.
 *  - pRuns: the zeros between a coefficient and the next one visited; pNumOutCoeffs - 1 numbers, or none.
 *
 *  Nothing is written to pLevels and pRuns beyond these counts; the arrays must not overlap the block. Null pointers
 *  are tested first; after an error nothing has been written. */
#ifndef MOXVC_H264_CAVLC_ANALYSIS_H
#define MOXVC_H264_CAVLC_ANALYSIS_H

#include "types.h"

MOX_BEGIN_DECLS

/** A block by its scan, for all blocks but chroma DC.
 *  @param[in]  pSrc              the block
 *  @param      firstPos          lowest scan position: 0, or 1 for a block of AC coefficients; only the low 8 bits
 *                                count, as an unsigned number
 *  @param[in]  pScan             scan position k stands in pSrc[pScan[k]]; read from firstPos to lastPos
 *  @param      lastPos           highest scan position, up to 15; only the low 8 bits count, as an unsigned number
 *  @param[out] pTrailingOnes,pTrailingOneSigns,pNumOutCoeffs,pTotalZeros one number each
 *  @param[out] pLevels           room for lastPos - firstPos + 1 levels
 *  @param[out] pRuns             room for lastPos - firstPos runs
 *  @retval moxStsNullPointer a pointer is null
 *  @retval moxStsOutOfRange  lastPos is above 15 or below firstPos */
MOX_API MoxStatus moxiEncodeCoeffsCAVLC_H264_16s(const Mox16s* pSrc, Mox32s firstPos, const Mox32s* pScan,
                                                 Mox32s lastPos, Mox8u* pTrailingOnes, Mox8u* pTrailingOneSigns,
                                                 Mox8u* pNumOutCoeffs, Mox8u* pTotalZeros, Mox16s* pLevels,
                                                 Mox8u* pRuns);

/** The same for coefficients of more than 16 bits; all bits of firstPos and lastPos count.
 *  @param[in]  pSrc     the block
 *  @param      firstPos lowest scan position, not below 0 (not tested)
 *  @param[in]  pScan    scan position k stands in pSrc[pScan[k]]; read from firstPos to lastPos
 *  @param      lastPos  highest scan position, up to 15
 *  @param[out] pTrailingOnes,pTrailingOneSigns,pNumOutCoeffs,pTotalZeros one number each
 *  @param[out] pLevels  room for lastPos - firstPos + 1 levels
 *  @param[out] pRuns    room for lastPos - firstPos runs
 *  @retval moxStsNullPointer a pointer is null
 *  @retval moxStsOutOfRange  lastPos is above 15 or below firstPos */
MOX_API MoxStatus moxiEncodeCoeffsCAVLC_H264_32s(const Mox32s* pSrc, Mox32s firstPos, const Mox32s* pScan,
                                                 Mox32s lastPos, Mox8u* pTrailingOnes, Mox8u* pTrailingOneSigns,
                                                 Mox8u* pNumOutCoeffs, Mox8u* pTotalZeros, Mox32s* pLevels,
                                                 Mox8u* pRuns);

/** A 4:2:0 chroma DC block, visited as pSrc[3], 2, 1, 0.
 *  @param[in]  pSrc    4 values
 *  @param[out] pTrailingOnes,pTrailingOneSigns,pNumOutCoeffs,pTotalZeros one number each
 *  @param[out] pLevels room for 4 levels
 *  @param[out] pRuns   room for 3 runs
 *  @retval moxStsNullPointer a pointer is null */
MOX_API MoxStatus moxiEncodeChromaDcCoeffsCAVLC_H264_16s(const Mox16s* pSrc, Mox8u* pTrailingOnes,
                                                         Mox8u* pTrailingOneSigns, Mox8u* pNumOutCoeffs,
                                                         Mox8u* pTotalZeros, Mox16s* pLevels, Mox8u* pRuns);
/** @copydoc moxiEncodeChromaDcCoeffsCAVLC_H264_16s */
MOX_API MoxStatus moxiEncodeCoeffsCAVLCChromaDC2x2_H264_32s(const Mox32s* pSrc, Mox8u* pTrailingOnes,
                                                            Mox8u* pTrailingOneSigns, Mox8u* pNumOutCoeffs,
                                                            Mox8u* pTotalZeros, Mox32s* pLevels, Mox8u* pRuns);

/** A 4:2:2 chroma DC block of four rows of two, visited as pSrc[7], 5, 3, 6, 4, 1, 2, 0.
 *  @param[in]  pSrc    8 values
 *  @param[out] pTrailingOnes,pTrailingOneSigns,pNumOutCoeffs,pTotalZeros one number each
 *  @param[out] pLevels room for 8 levels
 *  @param[out] pRuns   room for 7 runs
 *  @retval moxStsNullPointer a pointer is null */
MOX_API MoxStatus moxiEncodeCoeffsCAVLCChromaDC2x4_H264_16s(const Mox16s* pSrc, Mox8u* pTrailingOnes,
                                                            Mox8u* pTrailingOneSigns, Mox8u* pNumOutCoeffs,
                                                            Mox8u* pTotalZeros, Mox16s* pLevels, Mox8u* pRuns);
/** @copydoc moxiEncodeCoeffsCAVLCChromaDC2x4_H264_16s */
MOX_API MoxStatus moxiEncodeCoeffsCAVLCChromaDC2x4_H264_32s(const Mox32s* pSrc, Mox8u* pTrailingOnes,
                                                            Mox8u* pTrailingOneSigns, Mox8u* pNumOutCoeffs,
                                                            Mox8u* pTotalZeros, Mox32s* pLevels, Mox8u* pRuns);

MOX_END_DECLS

#endif
