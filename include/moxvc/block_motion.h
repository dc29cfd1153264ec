/** @file
 *  Half-pel prediction of blocks, as MPEG-1, MPEG-2, MPEG-4 and H.263 use it: with a residual added (MC), taken from a
 *  current block (GetDiff), copied (Copy HP), averaged into a block (InterpolateAverage).
 *
 *  Prediction. With r the reference and rc the rounding bit, the predicted sample is
 *
 *  | Position           | P(x, y)                                                                      |
 *  |--------------------|------------------------------------------------------------------------------|
 *  | full               | r(x, y)                                                                      |
 *  | FH (half in y)     | (r(x, y) + r(x, y + 1) + 1 - rc) >> 1                                        |
 *  | HF (half in x)     | (r(x, y) + r(x + 1, y) + 1 - rc) >> 1                                        |
 *  | HH (half in both)  | (r(x, y) + r(x + 1, y) + r(x, y + 1) + r(x + 1, y + 1) + 2 - rc) >> 2        |
 *
 *  With two references F and B, each has its own position, and both the same rc; the prediction is their mean
 *  (P_F + P_B + 1) >> 1, rounded up whatever rc is.
 *
 *  Selectors. `mcType` (bits 2 and 3): 0 full, 4 FH, 8 HF, 12 HH. `acc` (bits 0 and 1) is the other way round: 0 full,
 *  1 HF, 2 FH, 3 HH. rc is bit 0 of `roundControl` or `rounding`: 0 to nearest, 1 towards zero. All other bits are
 *  ignored.
 *
 *  Layouts. `W x H` in a name is the block in samples; a C1 block is planar. In 16x8UV, 16x8BUV, 16x4, 16x4B, C2P2 and
 *  P2C2R rows interleave two channels, U0 V0 U1 V1 and so on, and x + 1 is the next sample of the same channel, two
 *  bytes on.
 *
 *  Memory. A reference is read over the block, one more row for FH and HH, one more sample for HF and HH (in
 *  interleaved layouts one of each channel, two bytes), and nothing else; other blocks exactly over their size. No
 *  pointer needs an alignment. Steps are bytes between rows, for 16-bit blocks too; any value is used as it comes, also
 *  a negative or odd one or 0. Rows are worked through downwards, so where destination rows overlap the last one
 *  stays. An 8-bit destination may be a reference itself, in the same place and with the same step, if its rows do
 *  not overlap; else no destination may overlap what is read.
 *
 *  Status. moxStsNullPointer if a pointer is null, in the order of the arguments; nothing is written then. Nothing
 *  else is tested.
 */
#ifndef MOXVC_BLOCK_MOTION_H
#define MOXVC_BLOCK_MOTION_H

#include "types.h"

MOX_BEGIN_DECLS

/** Motion compensation from one reference: dst = P + residual, limited to 0..255. The sum is exact for any residual.
 *  @param[in]  pSrcRef         reference, 16 x 16 samples and what the position adds
 *  @param      srcRefStep      bytes between its rows
 *  @param[in]  pSrcResidual    16 x 16 values, -32768 to 32767
 *  @param      srcResidualStep bytes between its rows
 *  @param[out] pDst            16 x 16 samples
 *  @param      dstStep         bytes between its rows
 *  @param      mcType          position: 0, 4, 8 or 12
 *  @param      roundControl    bit 0: rc
 *  @retval moxStsNullPointer pSrcRef, pSrcResidual or pDst is null */
MOX_API MoxStatus moxiMC16x16_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual,
                                    Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32s mcType,
                                    Mox32u roundControl);

/** As moxiMC16x16_8u_C1 for a block of 16 x 8. */
MOX_API MoxStatus moxiMC16x8_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual,
                                   Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32s mcType,
                                   Mox32u roundControl);

/** As moxiMC16x16_8u_C1 for a block of 8 x 16. */
MOX_API MoxStatus moxiMC8x16_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual,
                                   Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32s mcType,
                                   Mox32u roundControl);

/** As moxiMC16x16_8u_C1 for a block of 8 x 8. */
MOX_API MoxStatus moxiMC8x8_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual,
                                  Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32s mcType,
                                  Mox32u roundControl);

/** As moxiMC16x16_8u_C1 for a block of 8 x 4. */
MOX_API MoxStatus moxiMC8x4_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual,
                                  Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32s mcType,
                                  Mox32u roundControl);

/** As moxiMC16x16_8u_C1 for a block of 4 x 8. */
MOX_API MoxStatus moxiMC4x8_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual,
                                  Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32s mcType,
                                  Mox32u roundControl);

/** As moxiMC16x16_8u_C1 for a block of 4 x 4. */
MOX_API MoxStatus moxiMC4x4_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual,
                                  Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32s mcType,
                                  Mox32u roundControl);

/** As moxiMC16x16_8u_C1 for a block of 4 x 2. */
MOX_API MoxStatus moxiMC4x2_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual,
                                  Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32s mcType,
                                  Mox32u roundControl);

/** As moxiMC16x16_8u_C1 for a block of 2 x 4. */
MOX_API MoxStatus moxiMC2x4_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual,
                                  Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32s mcType,
                                  Mox32u roundControl);

/** As moxiMC16x16_8u_C1 for a block of 2 x 2. */
MOX_API MoxStatus moxiMC2x2_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual,
                                  Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32s mcType,
                                  Mox32u roundControl);

/** Motion compensation of 8 x 8 samples of each of two interleaved channels, as moxiMC16x16_8u_C1. Reference, residual
 *  and destination are interleaved alike: 8 rows of 16 bytes, of 16 values in the residual.
 *  @retval moxStsNullPointer pSrcRef, pSrcResidual or pDst is null */
MOX_API MoxStatus moxiMC16x8UV_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual,
                                     Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32s mcType,
                                     Mox32u roundControl);

/** As moxiMC16x8UV_8u_C1 for 4 rows, so two interleaved channels too. */
MOX_API MoxStatus moxiMC16x4_8u_C1(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcResidual,
                                   Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32s mcType,
                                   Mox32u roundControl);

/** Motion compensation from two references: dst = ((P_F + P_B + 1) >> 1) + residual, limited to 0..255.
 *  @param[in]  pSrcRefF        forward reference, 16 x 16 samples and what its position adds
 *  @param      srcRefFStep     bytes between its rows
 *  @param      mcTypeF         its position: 0, 4, 8 or 12
 *  @param[in]  pSrcRefB        backward reference, 16 x 16 samples and what its position adds
 *  @param      srcRefBStep     bytes between its rows
 *  @param      mcTypeB         its position
 *  @param[in]  pSrcResidual    16 x 16 values, -32768 to 32767
 *  @param      srcResidualStep bytes between its rows
 *  @param[out] pDst            16 x 16 samples
 *  @param      dstStep         bytes between its rows
 *  @param      roundControl    bit 0: rc of both predictions, not of their mean
 *  @retval moxStsNullPointer pSrcRefF, pSrcRefB, pSrcResidual or pDst is null */
MOX_API MoxStatus moxiMC16x16B_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                                     Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual,
                                     Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32u roundControl);

/** As moxiMC16x16B_8u_C1 for a block of 16 x 8. */
MOX_API MoxStatus moxiMC16x8B_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                                    Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual,
                                    Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32u roundControl);

/** As moxiMC16x16B_8u_C1 for a block of 8 x 16. */
MOX_API MoxStatus moxiMC8x16B_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                                    Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual,
                                    Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32u roundControl);

/** As moxiMC16x16B_8u_C1 for a block of 8 x 8. */
MOX_API MoxStatus moxiMC8x8B_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                                   Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual,
                                   Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32u roundControl);

/** As moxiMC16x16B_8u_C1 for a block of 8 x 4. */
MOX_API MoxStatus moxiMC8x4B_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                                   Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual,
                                   Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32u roundControl);

/** As moxiMC16x16B_8u_C1 for a block of 4 x 8. */
MOX_API MoxStatus moxiMC4x8B_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                                   Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual,
                                   Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32u roundControl);

/** As moxiMC16x16B_8u_C1 for a block of 4 x 4. */
MOX_API MoxStatus moxiMC4x4B_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                                   Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual,
                                   Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32u roundControl);

/** As moxiMC16x16B_8u_C1 for a block of 4 x 2. */
MOX_API MoxStatus moxiMC4x2B_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                                   Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual,
                                   Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32u roundControl);

/** As moxiMC16x16B_8u_C1 for a block of 2 x 4. */
MOX_API MoxStatus moxiMC2x4B_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                                   Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual,
                                   Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32u roundControl);

/** As moxiMC16x16B_8u_C1 for a block of 2 x 2. */
MOX_API MoxStatus moxiMC2x2B_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                                   Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual,
                                   Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32u roundControl);

/** As moxiMC16x16B_8u_C1 for 8 rows of two interleaved channels, laid out as in moxiMC16x8UV_8u_C1. */
MOX_API MoxStatus moxiMC16x8BUV_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                                      Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual,
                                      Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32u roundControl);

/** As moxiMC16x8BUV_8u_C1 for 4 rows. */
MOX_API MoxStatus moxiMC16x4B_8u_C1(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                                    Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcResidual,
                                    Mox32s srcResidualStep, Mox8u* pDst, Mox32s dstStep, Mox32u roundControl);

/** NV12 motion compensation with a residual for each channel: as moxiMC16x16_8u_C1 over 8 x 8 samples of U and of V.
 *  @param[in]  pSrcRef    interleaved reference, 8 rows of 16 bytes and what the position adds
 *  @param      srcRefStep bytes between its rows
 *  @param[in]  pSrcU      residual of the even bytes, 8 x 8 values
 *  @param[in]  pSrcV      residual of the odd bytes, 8 x 8 values
 *  @param      srcUVStep  bytes between the rows of either residual
 *  @param[out] pDst       8 interleaved rows of 16 bytes
 *  @param      dstStep    bytes between its rows
 *  @param      mcType     position: 0, 4, 8 or 12
 *  @param      roundControl bit 0: rc
 *  @retval moxStsNullPointer pSrcRef, pSrcU, pSrcV or pDst is null */
MOX_API MoxStatus moxiMC8x8_16s8u_P2C2R(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcU,
                                        const Mox16s* pSrcV, Mox32s srcUVStep, Mox8u* pDst, Mox32s dstStep,
                                        Mox32s mcType, Mox32u roundControl);

/** As moxiMC8x8_16s8u_P2C2R for 4 rows. */
MOX_API MoxStatus moxiMC8x4_16s8u_P2C2R(const Mox8u* pSrcRef, Mox32s srcRefStep, const Mox16s* pSrcU,
                                        const Mox16s* pSrcV, Mox32s srcUVStep, Mox8u* pDst, Mox32s dstStep,
                                        Mox32s mcType, Mox32u roundControl);

/** NV12 motion compensation from two references: the prediction of moxiMC16x8BUV_8u_C1 with the residuals of
 *  moxiMC8x8_16s8u_P2C2R.
 *  @retval moxStsNullPointer pSrcRefF, pSrcRefB, pSrcU, pSrcV or pDst is null */
MOX_API MoxStatus moxiMC8x8B_16s8u_P2C2R(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF,
                                         const Mox8u* pSrcRefB, Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcU,
                                         const Mox16s* pSrcV, Mox32s srcUVStep, Mox8u* pDst, Mox32s dstStep,
                                         Mox32u roundControl);

/** As moxiMC8x8B_16s8u_P2C2R for 4 rows. */
MOX_API MoxStatus moxiMC8x4B_16s8u_P2C2R(const Mox8u* pSrcRefF, Mox32s srcRefFStep, Mox32s mcTypeF,
                                         const Mox8u* pSrcRefB, Mox32s srcRefBStep, Mox32s mcTypeB, const Mox16s* pSrcU,
                                         const Mox16s* pSrcV, Mox32s srcUVStep, Mox8u* pDst, Mox32s dstStep,
                                         Mox32u roundControl);

/** Difference from a prediction: diff = cur - P, -255 to 255.
 *  @param[in]  pSrcCur          current block, 16 x 16 samples
 *  @param      srcCurStep       bytes between its rows
 *  @param[in]  pSrcRef          reference, 16 x 16 samples and what the position adds
 *  @param      srcRefStep       bytes between its rows
 *  @param[out] pDstDiff         16 x 16 differences
 *  @param      dstDiffStep      bytes between their rows
 *  @param[out] pDstPredictor    null, or where P goes as 16 x 16 values of 16 bits
 *  @param      dstPredictorStep bytes between their rows
 *  @param      mcType           position: 0, 4, 8 or 12
 *  @param      roundControl     bit 0: rc
 *  @retval moxStsNullPointer pSrcCur, pSrcRef or pDstDiff is null */
MOX_API MoxStatus moxiGetDiff16x16_8u16s_C1(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRef,
                                            Mox32s srcRefStep, Mox16s* pDstDiff, Mox32s dstDiffStep,
                                            Mox16s* pDstPredictor, Mox32s dstPredictorStep, Mox32s mcType,
                                            Mox32u roundControl);

/** As moxiGetDiff16x16_8u16s_C1 for a block of 16 x 8. */
MOX_API MoxStatus moxiGetDiff16x8_8u16s_C1(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRef,
                                           Mox32s srcRefStep, Mox16s* pDstDiff, Mox32s dstDiffStep,
                                           Mox16s* pDstPredictor, Mox32s dstPredictorStep, Mox32s mcType,
                                           Mox32u roundControl);

/** As moxiGetDiff16x16_8u16s_C1 for a block of 8 x 16. */
MOX_API MoxStatus moxiGetDiff8x16_8u16s_C1(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRef,
                                           Mox32s srcRefStep, Mox16s* pDstDiff, Mox32s dstDiffStep,
                                           Mox16s* pDstPredictor, Mox32s dstPredictorStep, Mox32s mcType,
                                           Mox32u roundControl);

/** As moxiGetDiff16x16_8u16s_C1 for a block of 8 x 8. */
MOX_API MoxStatus moxiGetDiff8x8_8u16s_C1(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRef,
                                          Mox32s srcRefStep, Mox16s* pDstDiff, Mox32s dstDiffStep,
                                          Mox16s* pDstPredictor, Mox32s dstPredictorStep, Mox32s mcType,
                                          Mox32u roundControl);

/** As moxiGetDiff16x16_8u16s_C1 for a block of 8 x 4. */
MOX_API MoxStatus moxiGetDiff8x4_8u16s_C1(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRef,
                                          Mox32s srcRefStep, Mox16s* pDstDiff, Mox32s dstDiffStep,
                                          Mox16s* pDstPredictor, Mox32s dstPredictorStep, Mox32s mcType,
                                          Mox32u roundControl);

/** Difference of two 4 x 4 blocks: diff = cur - ref.
 *  @retval moxStsNullPointer pSrcCur, pSrcRef or pDstDiff is null */
MOX_API MoxStatus moxiGetDiff4x4_8u16s_C1(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRef,
                                          Mox32s srcRefStep, Mox16s* pDstDiff, Mox32s dstDiffStep);

/** Difference from two references: diff = cur - ((P_F + P_B + 1) >> 1), -255 to 255. References as in
 *  moxiMC16x16B_8u_C1, blocks as in moxiGetDiff16x16_8u16s_C1.
 *  @retval moxStsNullPointer pSrcCur, pSrcRefF, pSrcRefB or pDstDiff is null */
MOX_API MoxStatus moxiGetDiff16x16B_8u16s_C1(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRefF,
                                             Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                                             Mox32s srcRefBStep, Mox32s mcTypeB, Mox16s* pDstDiff, Mox32s dstDiffStep,
                                             Mox32u roundControl);

/** As moxiGetDiff16x16B_8u16s_C1 for a block of 16 x 8. */
MOX_API MoxStatus moxiGetDiff16x8B_8u16s_C1(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRefF,
                                            Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                                            Mox32s srcRefBStep, Mox32s mcTypeB, Mox16s* pDstDiff, Mox32s dstDiffStep,
                                            Mox32u roundControl);

/** As moxiGetDiff16x16B_8u16s_C1 for a block of 8 x 16. */
MOX_API MoxStatus moxiGetDiff8x16B_8u16s_C1(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRefF,
                                            Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                                            Mox32s srcRefBStep, Mox32s mcTypeB, Mox16s* pDstDiff, Mox32s dstDiffStep,
                                            Mox32u roundControl);

/** As moxiGetDiff16x16B_8u16s_C1 for a block of 8 x 8. */
MOX_API MoxStatus moxiGetDiff8x8B_8u16s_C1(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRefF,
                                           Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                                           Mox32s srcRefBStep, Mox32s mcTypeB, Mox16s* pDstDiff, Mox32s dstDiffStep,
                                           Mox32u roundControl);

/** As moxiGetDiff16x16B_8u16s_C1 for a block of 8 x 4. */
MOX_API MoxStatus moxiGetDiff8x4B_8u16s_C1(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRefF,
                                           Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                                           Mox32s srcRefBStep, Mox32s mcTypeB, Mox16s* pDstDiff, Mox32s dstDiffStep,
                                           Mox32u roundControl);

/** NV12 difference: diff = cur - P over 8 x 8 samples of U and of V.
 *  @param[in]  pSrcCur      interleaved current block, 8 rows of 16 bytes
 *  @param      srcCurStep   bytes between its rows
 *  @param[in]  pSrcRef      interleaved reference, 8 rows of 16 bytes and what the position adds
 *  @param      srcRefStep   bytes between its rows
 *  @param[out] pDstDiffU    8 x 8 differences of the even bytes
 *  @param      dstDiffUStep bytes between their rows
 *  @param[out] pDstDiffV    8 x 8 differences of the odd bytes, required
 *  @param      dstDiffVStep bytes between their rows
 *  @param      mcType       position: 0, 4, 8 or 12
 *  @param      roundControl bit 0: rc
 *  @retval moxStsNullPointer pSrcCur, pSrcRef, pDstDiffU or pDstDiffV is null */
MOX_API MoxStatus moxiGetDiff8x8_8u16s_C2P2(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRef,
                                            Mox32s srcRefStep, Mox16s* pDstDiffU, Mox32s dstDiffUStep,
                                            Mox16s* pDstDiffV, Mox32s dstDiffVStep, Mox32s mcType, Mox32u roundControl);

/** As moxiGetDiff8x8_8u16s_C2P2 for 4 rows. */
MOX_API MoxStatus moxiGetDiff8x4_8u16s_C2P2(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRef,
                                            Mox32s srcRefStep, Mox16s* pDstDiffU, Mox32s dstDiffUStep,
                                            Mox16s* pDstDiffV, Mox32s dstDiffVStep, Mox32s mcType, Mox32u roundControl);

/** NV12 difference from two references, with the prediction of moxiMC16x8BUV_8u_C1.
 *  @retval moxStsNullPointer pSrcCur, pSrcRefF, pSrcRefB, pDstDiffU or pDstDiffV is null */
MOX_API MoxStatus moxiGetDiff8x8B_8u16s_C2P2(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRefF,
                                             Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                                             Mox32s srcRefBStep, Mox32s mcTypeB, Mox16s* pDstDiffU, Mox32s dstDiffUStep,
                                             Mox16s* pDstDiffV, Mox32s dstDiffVStep, Mox32u roundControl);

/** As moxiGetDiff8x8B_8u16s_C2P2 for 4 rows. */
MOX_API MoxStatus moxiGetDiff8x4B_8u16s_C2P2(const Mox8u* pSrcCur, Mox32s srcCurStep, const Mox8u* pSrcRefF,
                                             Mox32s srcRefFStep, Mox32s mcTypeF, const Mox8u* pSrcRefB,
                                             Mox32s srcRefBStep, Mox32s mcTypeB, Mox16s* pDstDiffU, Mox32s dstDiffUStep,
                                             Mox16s* pDstDiffV, Mox32s dstDiffVStep, Mox32u roundControl);

/** Half-pel copy: dst = P.
 *  @param[in]  pSrc     reference, 16 x 16 samples and what the position adds
 *  @param      srcStep  bytes between its rows
 *  @param[out] pDst     16 x 16 samples
 *  @param      dstStep  bytes between its rows
 *  @param      acc      position: 0 full, 1 HF, 2 FH, 3 HH
 *  @param      rounding bit 0: rc
 *  @retval moxStsNullPointer pSrc or pDst is null */
MOX_API MoxStatus moxiCopy16x16HP_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep, Mox32s acc,
                                         Mox32s rounding);

/** As moxiCopy16x16HP_8u_C1R for a block of 16 x 8. */
MOX_API MoxStatus moxiCopy16x8HP_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep, Mox32s acc,
                                        Mox32s rounding);

/** As moxiCopy16x16HP_8u_C1R for a block of 8 x 8. */
MOX_API MoxStatus moxiCopy8x8HP_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep, Mox32s acc,
                                       Mox32s rounding);

/** As moxiCopy16x16HP_8u_C1R for a block of 8 x 4. */
MOX_API MoxStatus moxiCopy8x4HP_8u_C1R(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pDst, Mox32s dstStep, Mox32s acc,
                                       Mox32s rounding);

/** Average of a block and a prediction: srcDst = (srcDst + P + 1) >> 1, rounded up whatever rc is.
 *  @param[in]     pSrc       reference, 16 x 16 samples and what the position adds
 *  @param         srcStep    bytes between its rows
 *  @param[in,out] pSrcDst    16 x 16 samples
 *  @param         srcDstStep bytes between its rows
 *  @param         acc        position: 0 full, 1 HF, 2 FH, 3 HH
 *  @param         rounding   bit 0: rc
 *  @retval moxStsNullPointer pSrc or pSrcDst is null */
MOX_API MoxStatus moxiInterpolateAverage16x16_8u_C1IR(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pSrcDst,
                                                      Mox32s srcDstStep, Mox32s acc, Mox32s rounding);

/** As moxiInterpolateAverage16x16_8u_C1IR for a block of 16 x 8. */
MOX_API MoxStatus moxiInterpolateAverage16x8_8u_C1IR(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pSrcDst,
                                                     Mox32s srcDstStep, Mox32s acc, Mox32s rounding);

/** As moxiInterpolateAverage16x16_8u_C1IR for a block of 8 x 8. */
MOX_API MoxStatus moxiInterpolateAverage8x8_8u_C1IR(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pSrcDst,
                                                    Mox32s srcDstStep, Mox32s acc, Mox32s rounding);

/** As moxiInterpolateAverage16x16_8u_C1IR for a block of 8 x 4. */
MOX_API MoxStatus moxiInterpolateAverage8x4_8u_C1IR(const Mox8u* pSrc, Mox32s srcStep, Mox8u* pSrcDst,
                                                    Mox32s srcDstStep, Mox32s acc, Mox32s rounding);

/** Prediction plus residual of an 8 x 8 block: dst = P + residual, where the sum wraps to 16 bits before it is limited
 *  to 0..255. So P 1 and residual 32767 give 0; moxiMC8x8_8u_C1 gives 255.
 *  @param[in]  pSrcResidual    8 x 8 values
 *  @param      srcResidualStep bytes between their rows
 *  @param[in]  pRef            reference, 8 x 8 samples and what the position adds
 *  @param      refStep         bytes between its rows
 *  @param[out] pDst            8 x 8 samples
 *  @param      dstStep         bytes between its rows
 *  @param      acc             position: 0 full, 1 HF, 2 FH, 3 HH
 *  @param      rounding        bit 0: rc
 *  @retval moxStsNullPointer pSrcResidual, pRef or pDst is null */
MOX_API MoxStatus moxiAdd8x8HP_16s8u_C1RS(const Mox16s* pSrcResidual, Mox32s srcResidualStep, const Mox8u* pRef,
                                          Mox32s refStep, Mox8u* pDst, Mox32s dstStep, Mox32s acc, Mox32s rounding);

MOX_END_DECLS

#endif
