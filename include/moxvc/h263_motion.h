/** @file
 *  H.263 bidirectional prediction of PB frames (ITU-T H.263 Annex G).
 *
 *  The B blocks of a macroblock are predicted forwards from the picture before and, where that is possible, backwards
 *  from the P macroblock at the same place, which is decoded first. What is computed is what stands here; for a stream
 *  it is what the annex asks for.
 *
 *  With f a sample of the forward prediction, and b the P macroblock's at the same place plus the vector:
 *
 *      (f + b) >> 1       where all samples that b is made of lie inside the P macroblock
 *      f                  elsewhere
 *
 *  b is the sample itself, or halfway between samples their mean with halves up: (p + q + 1) >> 1 of two,
 *  (p + q + s + t + 2) >> 2 of four.
 */
#ifndef MOXVC_H263_MOTION_H
#define MOXVC_H263_MOTION_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

/** Adds the backward prediction to the forward prediction of an 8x8 B block.
 *  @param[in]  pForward       forward prediction, 8x8
 *  @param      forwardStep    bytes between its rows
 *  @param[in]  pMacroblock    P macroblock of the block's plane: 16x16 luma or 8x8 chroma samples, of which any may be
 *                             read, and none outside
 *  @param      macroblockStep bytes between its rows
 *  @param[out] pDst           prediction, 8x8; may be pForward with its step, and must not overlap otherwise
 *  @param      dstStep        bytes between its rows
 *  @param      block          place in the macroblock: 0 to 3 luma in raster order, 4 Cb, 5 Cr
 *  @param      vector         backward vector in half samples of the plane, any number
 *  @retval moxStsNullPointer pForward, pMacroblock or pDst is null
 *  @retval moxStsOutOfRange  block is outside 0..5; in both cases nothing is written
 *
 *  Any alignment. Steps may be negative and are not tested. */
MOX_API MoxStatus moxiAddBackPredPB_H263_8u_C1R(const Mox8u* pForward, Mox32s forwardStep, const Mox8u* pMacroblock,
                                                Mox32s macroblockStep, Mox8u* pDst, Mox32s dstStep, Mox32s block,
                                                MoxiPoint vector);

MOX_END_DECLS

#endif
