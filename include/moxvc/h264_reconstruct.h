/** @file
 *  H.264 macroblock reconstruction, 8-bit 4:2:0 (ITU-T H.264 8.3, 8.5).
 *
 *  One luma and one chroma call, in any order, finish a macroblock. An intra function predicts its blocks in the
 *  plane itself, from the samples around them; for an inter function the caller has written the prediction into the
 *  plane. The residual is then dequantised, transformed and added, and the sum is limited to 0..255.
 *
 *  Planes point at the macroblock's first sample; a step is the distance of two rows in bytes, may be negative and is
 *  not tested unless the function says so. Written are the 16 x 16 luma (half macroblock: 16 x 8) or 8 x 8 chroma
 *  samples of the macroblock. Read besides are the neighbours that the mode of a block uses, as far as edgeType
 *  allows them: at most the row above (with 4x4 and 8x8 blocks from the macroblock above and right 4 and 8 samples
 *  more), the column to the left, and the corner.
 *
 *  Packed coefficients. ppSrcCoeff points to a pointer to 16-bit coefficients, which is left behind the last block
 *  that was used. Blocks lie one behind the other, in the order in which they are reconstructed; only blocks whose
 *  bit is set in the coded block pattern take room. A 4x4 block takes 16 coefficients in raster order, coefficient 0
 *  always included; an 8x8 block 64; an Intra 16x16 DC block 16; a chroma DC block 4. The DC blocks stand before the
 *  blocks they belong to, those of chroma both before the first U block. Used coefficients may be overwritten, DC
 *  blocks by their DC values, other blocks by their residual; lossless blocks and all behind the last used one stay
 *  as they are.
 *
 *  Coded block pattern, cbp4x4:
 *
 *  | bits   | block                                                                          |
 *  |--------|--------------------------------------------------------------------------------|
 *  | 0      | Intra 16x16 luma DC; ignored by the other functions                            |
 *  | 1..16  | luma 4x4 blocks 0 to 15 in coding order; of Intra 16x16 the coefficients but DC |
 *  | 17, 18 | chroma DC, U and V                                                             |
 *  | 19..22 | U 4x4 blocks 0 to 3, coefficients but DC                                       |
 *  | 23..26 | V 4x4 blocks 0 to 3, coefficients but DC                                       |
 *
 *  Bits of cbp8x8: 0..3 for the 8x8 luma blocks; of cbp4x2: 0..7 for the 4x4 blocks of a half macroblock; of cbp8x2:
 *  0 and 1 for its 8x8 blocks. Other bits are ignored. Coding order of 4x4 blocks goes through the 8x8 quadrants: the
 *  first samples of blocks 0 to 15 are at (0,0) (4,0) (0,4) (4,4), (8,0) (12,0) (8,4) (12,4), (0,8) (4,8) (0,12)
 *  (4,12), (8,8) (12,8) (8,12) (12,12). Chroma blocks are at (0,0) (4,0) (0,4) (4,4).
 *
 *  Modes of 4x4 and 8x8 blocks, in coding order, and of 16x16 and chroma: as in h264_intra.h.
 *
 *  edgeType: neighbouring macroblocks that cannot be used. 1 left, 4 above, 16 above and left, 32 above and right;
 *  other bits are ignored. Inside the macroblock, neighbours that are not yet reconstructed are left out as well.
 *
 *  Half macroblocks serve pictures in which the upper and the lower half of a macroblock have different left
 *  neighbours. A luma half form works on the upper 16 x 8 samples, blocks 0 to 7 (8x8 blocks 0 and 1); the lower half
 *  is a second call with the plane 8 rows further down and modes, pattern bits and edges of that half.
 *
 *  Functions with 4x4MB, 8x8MB or _16x16MB in their names take scaling tables: pQuantTable holds the inverse scale of
 *  each coefficient, 16 or 64 in raster order, for the QP modulo 6 (as from moxiGenScaleLevel4x4_H264_8u16s_C1). In
 *  them, a bypass whose low 8 bits are not 0 together with a QP of 0 makes the residual lossless: coefficients are
 *  differences of samples, added as they are; DC values take the place of their blocks' coefficient 0.
 *
 *  Order of tests: ppSrcCoeff, *ppSrcCoeff (even if no block is coded), planes, pMBIntraTypes, tables; then the QP,
 *  luma 0 to 51, chroma 0 to 39; then what the function names. Unless a function says otherwise, an error comes
 *  before anything is written. With no bit set that the function uses, it ends after the tests and the prediction. */
#ifndef MOXVC_H264_RECONSTRUCT_H
#define MOXVC_H264_RECONSTRUCT_H

#include "types.h"

MOX_BEGIN_DECLS

/** Adds the luma residual of an inter macroblock.
 *  @param[in,out] ppSrcCoeff    packed coefficients
 *  @param[in,out] pSrcDstYPlane 16 x 16 samples, the prediction
 *  @param         srcDstYStep   bytes between rows
 *  @param         cbp4x4        bits 1 to 16 count
 *  @param         qp            0 to 51
 *  @retval moxStsNullPointer a pointer or *ppSrcCoeff is null
 *  @retval moxStsOutOfRange  qp is not 0 to 51 */
MOX_API MoxStatus moxiReconstructLumaInterMB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane,
                                                            Mox32s srcDstYStep, Mox32u cbp4x4, Mox32s qp);

/** Reconstructs the luma of an Intra 4x4 macroblock.
 *  @param[in,out] ppSrcCoeff    packed coefficients
 *  @param[in,out] pSrcDstYPlane first sample of the macroblock
 *  @param         srcDstYStep   bytes between rows
 *  @param[in]     pMBIntraTypes 16 modes in coding order, 0 to 8, not tested; the prediction of another is unspecified
 *  @param         cbp4x4        bits 1 to 16 count
 *  @param         qp            0 to 51
 *  @param         edgeType      neighbours that cannot be used
 *  @retval moxStsNullPointer     a pointer or *ppSrcCoeff is null
 *  @retval moxStsOutOfRange      qp is not 0 to 51
 *  @retval moxStsEdgeSubstituted a warning: all blocks are done, at least one with 128 for an edge that its mode uses
 *                                and edgeType denies (as moxiPredictIntra_4x4_H264_8u_C1IR does) */
MOX_API MoxStatus moxiReconstructLumaIntraMB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane,
                                                            Mox32s srcDstYStep, const Mox32u* pMBIntraTypes,
                                                            Mox32u cbp4x4, Mox32s qp, Mox32u edgeType);

/** Reconstructs the luma of an Intra 16x16 macroblock.
 *  @param[in,out] ppSrcCoeff    packed coefficients
 *  @param[in,out] pSrcDstYPlane first sample of the macroblock
 *  @param         srcDstYStep   bytes between rows
 *  @param         intraLumaMode 0 to 3
 *  @param         cbp4x4        bits 0 to 16 count; without bit 0 the DC values are zeros
 *  @param         qp            0 to 51
 *  @param         edgeType      neighbours that cannot be used
 *  @retval moxStsNullPointer     a pointer or *ppSrcCoeff is null
 *  @retval moxStsOutOfRange      qp is not 0 to 51, or intraLumaMode not 0 to 3
 *  @retval moxStsEdgeUnavailable the mode needs an edge that edgeType denies; nothing is written */
MOX_API MoxStatus moxiReconstructLumaIntra16x16MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane,
                                                                 Mox32s srcDstYStep, Mox32u intraLumaMode,
                                                                 Mox32u cbp4x4, Mox32s qp, Mox32u edgeType);

/** Reconstructs the upper 16 x 8 luma samples of an Intra 4x4 macroblock.
 *
 *  Differs from moxiReconstructLumaIntraMB_H264_16s8u_C1R in its tests, and where one neighbour is there without the
 *  edge beside it: block 0 has no corner if the row above or the left column is denied, and block 5 no samples above
 *  and right if the row above is denied.
 *  @param[in,out] ppSrcCoeff    packed coefficients
 *  @param[in,out] pSrcDstYPlane first sample of the half macroblock
 *  @param         srcDstYStep   bytes between rows, at least 1
 *  @param[in]     pMBIntraTypes 8 modes in coding order, 0 to 8
 *  @param         cbp4x2        bits 0 to 7 count
 *  @param         qp            0 to 51
 *  @param         edgeType      neighbours that cannot be used
 *  @retval moxStsNullPointer     a pointer or *ppSrcCoeff is null
 *  @retval moxStsOutOfRange      qp is not 0 to 51. Or, found when its block is due, a mode is above 8: the
 *                                blocks before it are done and their coefficients used
 *  @retval moxStsBadStep         srcDstYStep is 0 or below; tested after qp
 *  @retval moxStsEdgeSubstituted a warning: all blocks are done, at least one with 128 for a denied edge */
MOX_API MoxStatus moxiReconstructLumaIntraHalfMB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane,
                                                                Mox32s srcDstYStep, const Mox32u* pMBIntraTypes,
                                                                Mox32u cbp4x2, Mox32s qp, Mox32u edgeType);

/** Adds the chroma residual of an inter macroblock.
 *  @param[in,out] ppSrcCoeff    packed coefficients
 *  @param[in,out] pSrcDstUPlane 8 x 8 samples, the prediction
 *  @param[in,out] pSrcDstVPlane 8 x 8 samples, the prediction
 *  @param         srcDstUVStep  bytes between rows, of both planes
 *  @param         cbp4x4        bits 17 to 26 count
 *  @param         chromaQp      0 to 39
 *  @retval moxStsNullPointer a pointer or *ppSrcCoeff is null
 *  @retval moxStsOutOfRange  chromaQp is not 0 to 39 */
MOX_API MoxStatus moxiReconstructChromaInterMB_H264_16s8u_P2R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstUPlane,
                                                              Mox8u* pSrcDstVPlane, Mox32s srcDstUVStep, Mox32u cbp4x4,
                                                              Mox32s chromaQp);

/** Reconstructs the chroma of an intra macroblock.
 *  @param[in,out] ppSrcCoeff      packed coefficients
 *  @param[in,out] pSrcDstUPlane   first sample of the U block
 *  @param[in,out] pSrcDstVPlane   first sample of the V block
 *  @param         srcDstUVStep    bytes between rows, of both planes
 *  @param         intraChromaMode 0 to 3, in chroma's order
 *  @param         cbp4x4          bits 17 to 26 count
 *  @param         chromaQp        0 to 39
 *  @param         edgeType        neighbours that cannot be used
 *  @retval moxStsNullPointer     a pointer or *ppSrcCoeff is null
 *  @retval moxStsOutOfRange      chromaQp is not 0 to 39, or intraChromaMode not 0 to 3
 *  @retval moxStsEdgeUnavailable the mode needs an edge that edgeType denies; nothing is written */
MOX_API MoxStatus moxiReconstructChromaIntraMB_H264_16s8u_P2R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstUPlane,
                                                              Mox8u* pSrcDstVPlane, Mox32s srcDstUVStep,
                                                              Mox32u intraChromaMode, Mox32u cbp4x4, Mox32s chromaQp,
                                                              Mox32u edgeType);

/** Reconstructs the chroma of an intra macroblock whose left neighbours differ for its upper and its lower four rows.
 *  Only DC and vertical are possible.
 *  @param[in,out] ppSrcCoeff      packed coefficients
 *  @param[in,out] pSrcDstUPlane   first sample of the U block
 *  @param[in,out] pSrcDstVPlane   first sample of the V block
 *  @param         srcDstUVStep    bytes between rows, of both planes
 *  @param         intraChromaMode 0 or 2, in chroma's order
 *  @param         cbp4x4          bits 17 to 26 count
 *  @param         chromaQp        0 to 39; up to 51 it passes the first test
 *  @param         edgeTypeTop     1 denies the column left of the upper rows, 4 the row above; no other bit counts
 *  @param         edgeTypeBottom  1 denies the column left of the lower rows; no other bit counts
 *  @retval moxStsNullPointer     a pointer or *ppSrcCoeff is null
 *  @retval moxStsOutOfRange      chromaQp is not 0 to 51. Or, tested last, it is above 39: the prediction is
 *                                written, no coefficient is used
 *  @retval moxStsEdgeUnavailable mode 2 with the row above denied, or any mode but 0 and 2; nothing is written */
MOX_API MoxStatus moxiReconstructChromaIntraHalfsMB_H264_16s8u_P2R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstUPlane,
                                                                   Mox8u* pSrcDstVPlane, Mox32s srcDstUVStep,
                                                                   Mox32u intraChromaMode, Mox32u cbp4x4,
                                                                   Mox32s chromaQp, Mox32u edgeTypeTop,
                                                                   Mox32u edgeTypeBottom);

/** moxiReconstructChromaIntraHalfsMB_H264_16s8u_P2R under its other name. */
MOX_API MoxStatus moxiReconstructChromaIntraHalvesMB_H264_16s8u_P2R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstUPlane,
                                                                    Mox8u* pSrcDstVPlane, Mox32s srcDstUVStep,
                                                                    Mox32u intraChromaMode, Mox32u cbp4x4,
                                                                    Mox32s chromaQp, Mox32u edgeTypeTop,
                                                                    Mox32u edgeTypeBottom);

/** Adds the luma residual of an inter macroblock in 4x4 blocks, with a scaling table.
 *  @param[in,out] ppSrcCoeff    packed coefficients
 *  @param[in,out] pSrcDstYPlane 16 x 16 samples, the prediction
 *  @param         srcDstYStep   bytes between rows
 *  @param         cbp4x4        bits 1 to 16 count
 *  @param         qp            0 to 51
 *  @param[in]     pQuantTable   16 inverse scales
 *  @param         bypass        low 8 bits not 0, with qp 0: lossless
 *  @retval moxStsNullPointer a pointer or *ppSrcCoeff is null
 *  @retval moxStsOutOfRange  qp is not 0 to 51 */
MOX_API MoxStatus moxiReconstructLumaInter4x4MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane,
                                                               Mox32s srcDstYStep, Mox32u cbp4x4, Mox32s qp,
                                                               const Mox16s* pQuantTable, Mox32s bypass);

/** Adds the luma residual of an inter macroblock in 8x8 blocks, with a scaling table. As
 *  moxiReconstructLumaInter4x4MB_H264_16s8u_C1R, but:
 *  @param         cbp8x8      bits 0 to 3 count
 *  @param[in]     pQuantTable 64 inverse scales */
MOX_API MoxStatus moxiReconstructLumaInter8x8MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane,
                                                               Mox32s srcDstYStep, Mox32u cbp8x8, Mox32s qp,
                                                               const Mox16s* pQuantTable, Mox32s bypass);

/** Reconstructs the luma of an Intra 4x4 macroblock, with a scaling table.
 *  @param[in,out] ppSrcCoeff    packed coefficients
 *  @param[in,out] pSrcDstYPlane first sample of the macroblock
 *  @param         srcDstYStep   bytes between rows
 *  @param[in]     pMBIntraTypes 16 modes in coding order, 0 to 8, not tested; the prediction of another is unspecified
 *  @param         cbp4x4        bits 1 to 16 count
 *  @param         qp            0 to 51
 *  @param         edgeType      neighbours that cannot be used
 *  @param[in]     pQuantTable   16 inverse scales
 *  @param         bypass        low 8 bits not 0, with qp 0: lossless
 *  @retval moxStsNullPointer     a pointer or *ppSrcCoeff is null
 *  @retval moxStsOutOfRange      qp is not 0 to 51
 *  @retval moxStsEdgeSubstituted a warning: all blocks are done, at least one with 128 for a denied edge */
MOX_API MoxStatus moxiReconstructLumaIntra4x4MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane,
                                                               Mox32s srcDstYStep, const Mox32u* pMBIntraTypes,
                                                               Mox32u cbp4x4, Mox32s qp, Mox32u edgeType,
                                                               const Mox16s* pQuantTable, Mox32s bypass);

/** Reconstructs the luma of an Intra 8x8 macroblock (ITU-T H.264 8.3.2: prediction from filtered neighbours).
 *
 *  An edge that a mode uses and edgeType denies counts as 128 and is not reported. The samples above and right of block
 *  0 are those of the row above, of block 1 those of the macroblock above and right, of block 2 those of block 1; block
 *  3 has none. Where they are denied, the last sample above takes their place.
 *  @param[in,out] ppSrcCoeff    packed coefficients
 *  @param[in,out] pSrcDstYPlane first sample of the macroblock
 *  @param         srcDstYStep   bytes between rows
 *  @param[in]     pMBIntraTypes 4 modes in coding order, 0 to 8, not tested; the prediction of another is unspecified
 *  @param         cbp8x8        bits 0 to 3 count
 *  @param         qp            0 to 51
 *  @param         edgeType      neighbours that cannot be used
 *  @param[in]     pQuantTable   64 inverse scales
 *  @param         bypass        low 8 bits not 0, with qp 0: lossless
 *  @retval moxStsNullPointer a pointer or *ppSrcCoeff is null
 *  @retval moxStsOutOfRange  qp is not 0 to 51 */
MOX_API MoxStatus moxiReconstructLumaIntra8x8MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane,
                                                               Mox32s srcDstYStep, const Mox32u* pMBIntraTypes,
                                                               Mox32u cbp8x8, Mox32s qp, Mox32u edgeType,
                                                               const Mox16s* pQuantTable, Mox32s bypass);

/** Reconstructs the upper 16 x 8 luma samples of an Intra 4x4 macroblock, with a scaling table. As
 *  moxiReconstructLumaIntra4x4MB_H264_16s8u_C1R, but:
 *  @param[in]     pMBIntraTypes 8 modes in coding order
 *  @param         cbp4x2        bits 0 to 7 count */
MOX_API MoxStatus moxiReconstructLumaIntraHalf4x4MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane,
                                                                   Mox32s srcDstYStep, const Mox32u* pMBIntraTypes,
                                                                   Mox32u cbp4x2, Mox32s qp, Mox32u edgeType,
                                                                   const Mox16s* pQuantTable, Mox32s bypass);

/** Reconstructs the upper 16 x 8 luma samples of an Intra 8x8 macroblock. As
 *  moxiReconstructLumaIntra8x8MB_H264_16s8u_C1R, but:
 *  @param[in]     pMBIntraTypes 2 modes
 *  @param         cbp8x2        bits 0 and 1 count */
MOX_API MoxStatus moxiReconstructLumaIntraHalf8x8MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane,
                                                                   Mox32s srcDstYStep, const Mox32u* pMBIntraTypes,
                                                                   Mox32u cbp8x2, Mox32s qp, Mox32u edgeType,
                                                                   const Mox16s* pQuantTable, Mox32s bypass);

/** Reconstructs the luma of an Intra 16x16 macroblock, with a scaling table.
 *  @param[in,out] ppSrcCoeff    packed coefficients
 *  @param[in,out] pSrcDstYPlane first sample of the macroblock
 *  @param         srcDstYStep   bytes between rows
 *  @param         intraLumaMode 0 to 3
 *  @param         cbp4x4        bits 0 to 16 count; without bit 0 the DC values are zeros
 *  @param         qp            0 to 51
 *  @param         edgeType      neighbours that cannot be used
 *  @param[in]     pQuantTable   16 inverse scales; the first one is that of the DC values
 *  @param         bypass        low 8 bits not 0, with qp 0: lossless, the DC values as they are in the stream
 *  @retval moxStsNullPointer     a pointer or *ppSrcCoeff is null
 *  @retval moxStsOutOfRange      qp is not 0 to 51, or intraLumaMode not 0 to 3
 *  @retval moxStsEdgeUnavailable the mode needs an edge that edgeType denies; nothing is written */
MOX_API MoxStatus moxiReconstructLumaIntra_16x16MB_H264_16s8u_C1R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstYPlane,
                                                                  Mox32s srcDstYStep, Mox32u intraLumaMode,
                                                                  Mox32u cbp4x4, Mox32s qp, Mox32u edgeType,
                                                                  const Mox16s* pQuantTable, Mox32s bypass);

/** Adds the chroma residual of an inter macroblock, with a QP and a scaling table for each plane.
 *  @param[in,out] ppSrcCoeff    packed coefficients
 *  @param[in,out] pSrcDstUPlane 8 x 8 samples, the prediction
 *  @param[in,out] pSrcDstVPlane 8 x 8 samples, the prediction
 *  @param         srcDstUVStep  bytes between rows, of both planes
 *  @param         cbp4x4        bits 17 to 26 count
 *  @param         chromaQpU     0 to 39
 *  @param         chromaQpV     0 to 39
 *  @param[in]     pQuantTableU  16 inverse scales of U; the first one is that of the DC values
 *  @param[in]     pQuantTableV  16 inverse scales of V
 *  @param         bypass        low 8 bits not 0: a plane whose QP is 0 is lossless
 *  @retval moxStsNullPointer a pointer or *ppSrcCoeff is null
 *  @retval moxStsOutOfRange  a QP is not 0 to 39 */
MOX_API MoxStatus moxiReconstructChromaInter4x4MB_H264_16s8u_P2R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstUPlane,
                                                                 Mox8u* pSrcDstVPlane, Mox32s srcDstUVStep,
                                                                 Mox32u cbp4x4, Mox32s chromaQpU, Mox32s chromaQpV,
                                                                 const Mox16s* pQuantTableU, const Mox16s* pQuantTableV,
                                                                 Mox32s bypass);

/** Reconstructs the chroma of an intra macroblock, with a QP and a scaling table for each plane. As
 *  moxiReconstructChromaInter4x4MB_H264_16s8u_P2R, the planes needing no prediction, and:
 *  @param         intraChromaMode 0 to 3, in chroma's order
 *  @param         edgeType        neighbours that cannot be used
 *  @retval moxStsOutOfRange      a QP is not 0 to 39, or intraChromaMode not 0 to 3
 *  @retval moxStsEdgeUnavailable the mode needs an edge that edgeType denies; nothing is written */
MOX_API MoxStatus moxiReconstructChromaIntra4x4MB_H264_16s8u_P2R(Mox16s** ppSrcCoeff, Mox8u* pSrcDstUPlane,
                                                                 Mox8u* pSrcDstVPlane, Mox32s srcDstUVStep,
                                                                 Mox32u intraChromaMode, Mox32u cbp4x4,
                                                                 Mox32s chromaQpU, Mox32s chromaQpV, Mox32u edgeType,
                                                                 const Mox16s* pQuantTableU, const Mox16s* pQuantTableV,
                                                                 Mox32s bypass);

/** Reconstructs the chroma of an intra macroblock whose left neighbours differ for its upper and its lower four rows,
 *  with a QP and a scaling table for each plane. Only DC and vertical are possible. As
 *  moxiReconstructChromaInter4x4MB_H264_16s8u_P2R, the planes needing no prediction, and:
 *  @param         intraChromaMode 0 or 2, in chroma's order
 *  @param         edgeTypeTop     1 denies the column left of the upper rows, 4 the row above; no other bit counts
 *  @param         edgeTypeBottom  1 denies the column left of the lower rows; no other bit counts
 *  @retval moxStsOutOfRange      a QP is not 0 to 39; unlike the plain form, nothing is written
 *  @retval moxStsEdgeUnavailable mode 2 with the row above denied, or any mode but 0 and 2; nothing is written */
MOX_API MoxStatus moxiReconstructChromaIntraHalfs4x4MB_H264_16s8u_P2R(
    Mox16s** ppSrcCoeff, Mox8u* pSrcDstUPlane, Mox8u* pSrcDstVPlane, Mox32s srcDstUVStep, Mox32u intraChromaMode,
    Mox32u cbp4x4, Mox32s chromaQpU, Mox32s chromaQpV, Mox32u edgeTypeTop, Mox32u edgeTypeBottom,
    const Mox16s* pQuantTableU, const Mox16s* pQuantTableV, Mox32s bypass);

/** moxiReconstructChromaIntraHalfs4x4MB_H264_16s8u_P2R under its other name. */
MOX_API MoxStatus moxiReconstructChromaIntraHalves4x4MB_H264_16s8u_P2R(
    Mox16s** ppSrcCoeff, Mox8u* pSrcDstUPlane, Mox8u* pSrcDstVPlane, Mox32s srcDstUVStep, Mox32u intraChromaMode,
    Mox32u cbp4x4, Mox32s chromaQpU, Mox32s chromaQpV, Mox32u edgeTypeTop, Mox32u edgeTypeBottom,
    const Mox16s* pQuantTableU, const Mox16s* pQuantTableV, Mox32s bypass);

MOX_END_DECLS

#endif
