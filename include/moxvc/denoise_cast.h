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
 *  Halves are rounded upwards in every frame, which leaves a still noisy picture up to about half a level brighter.
 *  For a first frame, give the frame itself as the previous result. A sequence needs two result planes, in turn.
 *
 *  Memory. A call reads the regions of pSrc and pPrev and writes that of pDst, which must not overlap them. Steps count
 *  bytes, may be negative and are not tested; any alignment. The state is a small record of the caller's that holds
 *  parameters only: moxiFilterDenoiseCASTInit fills it, the filter does not write it, so threads may share it, and it
 *  may be copied. It has no tag: a record that was never filled is not refused. With any other contents than those of
 *  Init the result is not defined, but no memory other than that named is touched.
 *
 *      MoxiDenoiseCASTState state;
 *      moxiFilterDenoiseCASTInit(&state, 4, 16, 12);
 *
 *  Status. Null pointers in the order of the arguments, then sizes and parameters; nothing is written then. */
#ifndef MOXVC_DENOISE_CAST_H
#define MOXVC_DENOISE_CAST_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

/** Parameters of the filter, in the form in which it needs them. */
typedef struct MoxiDenoiseCASTState {
  Mox32s nearest;     /**< 3 N: a neighbour that differs by more has no part in the mean */
  Mox32s edgeEnd;     /**< 8 N: no mean from this edge on */
  Mox32s edgeScale;   /**< 256ths of its weight for each level below that */
  Mox32s motionEnd;   /**< 24 N: no previous result from this motion on */
  Mox32s motionScale; /**< 256ths of its weight for each level below that */
  Mox32s spatial;     /**< S */
  Mox32s temporal;    /**< K */
} MoxiDenoiseCASTState;

/** Fills a state.
 *  @param[out] pState           record to fill
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
 *  @retval moxStsBadSize     a width or height is below 1 */
MOX_API MoxStatus moxiFilterDenoiseCAST_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, const Mox8u* pPrev, Mox32s prevStep,
                                               Mox8u* pDst, Mox32s dstStep, MoxiSize roiSize,
                                               const MoxiDenoiseCASTState* pState);

MOX_END_DECLS

#endif
