/** @file
 *  CAST, the content-adaptive spatio-temporal noise filter of 8-bit planes.
 *
 *  The filter takes a frame and its own result for the frame before. Where nothing moves it is a recursion in time,
 *  where the picture is smooth a mean in space, and it leaves both off where there is motion or an edge. All of it is
 *  this library's own definition:
 *
 *  N is the noise level, S the spatial and K the temporal strength, c a sample of the frame, p that of the previous
 *  result in the same place, and n one of the 3x3 samples of the frame around c. What lies outside the region has the
 *  value of the nearest sample inside. / cuts off, all shifts round towards minus infinity.
 *
 *      motion   m = sum of the 9 |n - p|, each p in the place of its n                       0..2295
 *      edge     e = greatest n - least n                                                     0..255
 *      mean     s = (sum of the 9 n' with weights 1 2 1 / 2 4 2 / 1 2 1, + 8) >> 4
 *               n' = n if |n - c| <= 3 N, else c
 *      in space a = S * min(16, max(8 N - e, 0) * ((1023 + N) / N) >> 8) >> 4                0..16
 *      in time  t = K * min(16, max(24 N - m, 0) * ((1023 + 3 N) / (3 N)) >> 8) >> 4         0..15
 *      filtered f = (a * s + (16 - a) * c + 8) >> 4
 *      result   r = (t * p + (16 - t) * f + 8) >> 4
 *
 *  So the mean has full weight up to an edge of 4 N and none from 8 N on, and the previous result has full weight up to
 *  a motion of 12 N and none from 24 N on: the range of 9 samples of noise alone is about 3 N, and they differ from the
 *  result before by about 9 N together. A neighbour across an edge of more than 3 N has no part in the mean at all.
 *
 *  For a first frame, give the frame itself as the previous result. A sequence needs two result planes, in turn.
 *
 *  Memory. A call reads the regions of pSrc and pPrev and writes that of pDst, which must not overlap them. Steps count
 *  bytes, may be negative and are not tested; any alignment. The state holds parameters only and is not written, so
 *  threads may share it. It lies in memory of the caller of any alignment, of the size that
 *  moxiFilterDenoiseCASTGetSize tells; a copy must keep its distance to the next multiple of 16:
 *
 *      Mox8u memory[64];                                  what moxiFilterDenoiseCASTGetSize gives, or more
 *      MoxiDenoiseCASTState* state = (MoxiDenoiseCASTState*)memory;
 *      moxiFilterDenoiseCASTInit(state, 4, 16, 12);
 *
 *  Status. Null pointers in the order of the arguments, then the state's tag, sizes and parameters; nothing is written
 *  then. */
#ifndef MOXVC_DENOISE_CAST_H
#define MOXVC_DENOISE_CAST_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

/** Parameters of the filter, in the caller's memory. */
typedef struct MoxiDenoiseCASTState MoxiDenoiseCASTState;

/** Size of a state.
 *  @param[out] pSize bytes of memory that it needs at any alignment
 *  @retval moxStsNullPointer pSize is null */
MOX_API MoxStatus moxiFilterDenoiseCASTGetSize(Mox32s* pSize);

/** Fills a state.
 *  @param[out] pState           memory of that size
 *  @param      noiseLevel       N, about the standard deviation of the noise, 1 to 32
 *  @param      spatialStrength  S, sixteenths that the mean has at most, 0 to 16
 *  @param      temporalStrength K, sixteenths that the previous result has at most, 0 to 15
 *  @retval moxStsNullPointer pState is null
 *  @retval moxStsOutOfRange  noiseLevel, spatialStrength or temporalStrength is outside of its range */
MOX_API MoxStatus moxiFilterDenoiseCASTInit(MoxiDenoiseCASTState* pState, Mox32s noiseLevel, Mox32s spatialStrength,
                                            Mox32s temporalStrength);

/** Filters a frame.
 *  @param[in]  pSrc     frame
 *  @param      srcStep  bytes between its rows
 *  @param[in]  pPrev    result for the frame before
 *  @param      prevStep bytes between its rows
 *  @param[out] pDst     result
 *  @param      dstStep  bytes between its rows
 *  @param      roiSize  columns and rows of all three, from 1
 *  @param[in]  pState   state that moxiFilterDenoiseCASTInit has filled
 *  @retval moxStsNullPointer pSrc, pPrev, pDst or pState is null
 *  @retval moxStsBadContext  the state does not carry the tag of its kind
 *  @retval moxStsBadSize     a width or height is below 1 */
MOX_API MoxStatus moxiFilterDenoiseCAST_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pPrev, Mox32s prevStep,
                                               Mox8u* pDst, Mox32s dstStep, MoxiSize roiSize,
                                               const MoxiDenoiseCASTState* pState);

MOX_END_DECLS

#endif
