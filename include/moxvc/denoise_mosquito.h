/** @file
 *  Filter of mosquito noise: the ringing that coarse quantisation of 8x8 blocks leaves around edges, in 8-bit planes.
 *
 *  Only flat parts of blocks that hold an edge, or lie next to such a block, are smoothed. All of it is this library's
 *  own definition:
 *
 *  Blocks are those of the picture's grid of 8x8 samples; the last ones of a row or column may be cut by the border.
 *  A sample's spread is the greatest less the least of the 3x3 samples around it. What lies outside the picture has the
 *  value of the nearest sample inside. With the thresholds E of edges and F of flat parts:
 *
 *      edge     a block is one if the greatest less the least of its samples is E or more
 *      texture  a block is one if the spread is F or more at more than half of its samples
 *      ringing  a block is one if it is no texture, and it or one of the 8 blocks around it is an edge
 *
 *  A sample c of a ringing block whose spread is below F becomes
 *
 *      (sum of the 5x5 samples n' around it, with weights of row and column 1 2 2 2 1, + 32) >> 6
 *      n' = n if |n - c| < F, else c
 *
 *  and all others are copied. All samples are those of the source: no result has a part in another. Thresholds of 48 to
 *  96 for E and of 8 to 24 for F suit pictures of middle to low quality.
 *
 *  Memory. pSrc and pDst point to the first sample of whole pictures, of which a call filters a region: the result
 * there is that of the whole picture. Read are the blocks that hold a sample of the region, those around them and one
 * sample around these; written is the region of pDst, which must not overlap what is read. Steps count bytes, may be
 * negative and are not tested; any alignment. The state, which the library allocates, keeps a byte for each block and
 * is written by each call: threads may not share it.
 *
 *  Status. Null pointers in the order of the arguments, then sizes and parameters; nothing is written then. */
#ifndef MOXVC_DENOISE_MOSQUITO_H
#define MOXVC_DENOISE_MOSQUITO_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

/** Thresholds, size of the picture and kinds of its blocks. */
typedef struct MoxiDenoiseMosquitoState MoxiDenoiseMosquitoState;

/** Allocates a state. After an error nothing is allocated and ppState is as it was.
 *  @param      picSize       columns and rows of the pictures, 1 to 16384
 *  @param      edgeThreshold E, 1 to 255
 *  @param      flatThreshold F, 1 to edgeThreshold
 *  @param[out] ppState       the state; it goes back through moxiFilterDenoiseMosquitoFree_8u_C1
 *  @retval moxStsNullPointer ppState is null
 *  @retval moxStsBadSize     a width or height is outside 1..16384
 *  @retval moxStsOutOfRange  edgeThreshold or flatThreshold is outside of its range
 *  @retval moxStsNoMemory    an allocation failed */
MOX_API MoxStatus moxiFilterDenoiseMosquitoInitAlloc_8u_C1(MoxiSize picSize, Mox32s edgeThreshold, Mox32s flatThreshold,
                                                           MoxiDenoiseMosquitoState** ppState);

/** Filters a region of a picture.
 *  @param[in]     pSrc    picture
 *  @param         srcStep bytes between its rows
 *  @param[out]    pDst    picture of the results
 *  @param         dstStep bytes between its rows
 *  @param         roi     region of both, inside the picture
 *  @param[in,out] pState  state of pictures of that size
 *  @retval moxStsNullPointer    pSrc, pDst or pState is null
 *  @retval moxStsBadSize        the width or height of roi is below 1
 *  @retval moxStsRegionTooSmall roi does not lie in the picture */
MOX_API MoxStatus moxiFilterDenoiseMosquito_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep,
                                                   MoxiRect roi, MoxiDenoiseMosquitoState* pState);

/** Releases a state and what it holds.
 *  @param pState from moxiFilterDenoiseMosquitoInitAlloc_8u_C1; not to be used any more
 *  @retval moxStsNullPointer pState is null */
MOX_API MoxStatus moxiFilterDenoiseMosquitoFree_8u_C1(MoxiDenoiseMosquitoState* pState);

MOX_END_DECLS

#endif
