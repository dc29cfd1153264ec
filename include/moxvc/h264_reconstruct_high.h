/** @file
 *  H.264 macroblock reconstruction of high profiles: samples of up to 14 bits, and 4:2:2 chroma (ITU-T H.264 8.3, 8.5).
 *
 *  The work is that of the functions with scaling tables in h264_reconstruct.h: prediction block by block in the
 *  plane itself, residual added in place, coefficients taken from a packed stream in the order of the blocks. As there
 *  are modes, edgeType, coding order, half macroblocks, the neighbours read and the samples written; a 4:2:2 chroma
 *  plane is 8 x 16 and its halves are 8 x 8. Arguments travel in a record for each plane.
 *
 *  Forms with 32s16u in their names take 32-bit coefficients and 16-bit samples of bitDepth bits, 8 to 14. Their sums
 *  and products wrap at 32 bits, results are limited to 0..2^bitDepth - 1, and 2^(bitDepth - 1) stands for a missing
 *  edge. Forms with 16s8u take 16-bit coefficients and 8-bit samples, have the arithmetic of h264_reconstruct.h, and
 *  do not look at bitDepth.
 *
 *  Dequantisation of x (of a DC value after its transform) with the scale s and per = qp / 6, in 4:2:2 chroma DC
 *  per = (qp + 3) / 6:
 *
 *  | block              | s              | below | value                             | from there on      |
 *  |--------------------|----------------|-------|-----------------------------------|--------------------|
 *  | 4x4                | pQuantTable[i] | per 4 | (s x + 2^(3 - per)) >> (4 - per)  | (s x) << (per - 4) |
 *  | 8x8                | pQuantTable[i] | per 6 | (s x + 2^(5 - per)) >> (6 - per)  | (s x) << (per - 6) |
 *  | Intra 16x16 DC     | pQuantTable[0] | per 6 | as 8x8                            | as 8x8             |
 *  | chroma DC of 4:2:0 | pQuantTable[0] | per 5 | (s x) >> (5 - per)                | (s x) << (per - 5) |
 *  | chroma DC of 4:2:2 | levelScaleDC   | per 6 | as 8x8                            | as 8x8             |
 *
 *  The transforms are those of h264_inverse_transform.h. A block becomes its residual by (y + 32) >> 6; one with
 *  nothing but its DC adds (DC + 32) >> 6 to every sample. The eight DC values of a 4:2:2 plane are four rows of two:
 *  value 2 y + x belongs to the block at (4 x, 4 y).
 *
 *  Lossless: with a bypass that is not 0 and a QP of 0, coefficients are differences of samples, added as they are. DC
 *  values, which are not transformed then, take the place of their blocks' coefficient 0. Prediction is the ordinary
 *  one.
 *
 *  Packed coefficients are those of h264_reconstruct.h, a DC block of 4:2:2 chroma taking 8 values in raster order, as
 *  the CAVLC decoder leaves them. U and V may share one pointer or have streams of their own: in this order are taken
 *  the DC block of U, that of V, the other blocks of U, those of V. Used coefficients may be overwritten unless they
 *  are lossless.
 *
 *  Order of tests: the record, or the array and both its records; in a record ppSrcDstCoeff, pSrcDstPlane,
 *  *ppSrcDstCoeff (even if no block is coded) and pQuantTable; pMBIntraTypes: all moxStsNullPointer. Then a srcDstStep
 *  below 1: moxStsBadStep. Then the QP, luma outside 0 to 51 + 6 (bitDepth - 8), chroma outside 0 to
 *  39 + 6 (bitDepth - 8), in 16s8u forms 0 to 39: moxStsOutOfRange. A bitDepth other than 8 to 14 has no QP, which
 *  gives the same. Then the mode, as the functions say. An error comes before anything is written. */
#ifndef MOXVC_H264_RECONSTRUCT_HIGH_H
#define MOXVC_H264_RECONSTRUCT_HIGH_H

#include "types.h"

MOX_BEGIN_DECLS

/** One plane of a macroblock. */
typedef struct MoxiReconstructHighRec {
  /** Address of the pointer into the packed coefficients, a Mox32s* in 32s16u forms, a Mox16s* in 16s8u forms. The
   *  pointer is left behind the last block used. */
  void* ppSrcDstCoeff;
  void* pSrcDstPlane; /**< first sample of the macroblock: Mox16u or Mox8u */
  Mox32s srcDstStep;  /**< distance of two rows, at least 1: samples of Mox16u, bytes of Mox8u */
  /** Coded blocks. Luma: bit 0 Intra 16x16 DC, bits 1..16 the 4x4 blocks; or bits 0..3 the 8x8 blocks; of a half
   *  macroblock bits 0..7 the 4x4 or bits 0 and 1 the 8x8 blocks. Chroma, of this plane: bit 0 DC, bits 1..4 (4:2:2:
   *  1..8) the 4x4 blocks in raster order. */
  Mox32u cbp;
  Mox32s qp;                 /**< QP, the offset of the bit depth included */
  const Mox16s* pQuantTable; /**< inverse scales of qp modulo 6 in raster order, 16, of 8x8 blocks 64 */
  Mox32u bypass;             /**< not 0: lossless if qp is 0 */
  Mox32u bitDepth;           /**< bits of a sample; in chroma that of U counts for both planes */
} MoxiReconstructHighRec;

/** Adds the luma residual of an inter macroblock in 4x4 blocks.
 *  @param[in] pRec the plane, holding the prediction; cbp bits 1 to 16 count
 *  @retval moxStsNullPointer pRec or a pointer of the record is null
 *  @retval moxStsBadStep     srcDstStep is below 1
 *  @retval moxStsOutOfRange  the QP or the bit depth is out of range */
MOX_API MoxStatus moxiReconstructLumaInter4x4_H264High_32s16u_IP1R(const MoxiReconstructHighRec* pRec);

/** Adds the luma residual of an inter macroblock in 8x8 blocks; cbp bits 0 to 3 count. Otherwise as
 *  moxiReconstructLumaInter4x4_H264High_32s16u_IP1R. */
MOX_API MoxStatus moxiReconstructLumaInter8x8_H264High_32s16u_IP1R(const MoxiReconstructHighRec* pRec);

/** Reconstructs the luma of an Intra 4x4 macroblock.
 *  @param[in] pRec          the plane; cbp bits 1 to 16 count
 *  @param[in] pMBIntraTypes 16 modes in coding order, 0 to 8, not tested; the prediction of another is unspecified
 *  @param     edgeType      neighbours that cannot be used
 *  @retval moxStsNullPointer     a pointer is null
 *  @retval moxStsBadStep         srcDstStep is below 1
 *  @retval moxStsOutOfRange      the QP or the bit depth is out of range
 *  @retval moxStsEdgeSubstituted a warning: all blocks are done, at least one with 2^(bitDepth - 1) for a denied
 *                                edge */
MOX_API MoxStatus moxiReconstructLumaIntra4x4_H264High_32s16u_IP1R(const MoxiReconstructHighRec* pRec,
                                                                   const Mox32u* pMBIntraTypes, Mox32u edgeType);

/** Reconstructs the luma of an Intra 8x8 macroblock, edges as in moxiReconstructLumaIntra8x8MB_H264_16s8u_C1R.
 *  @param[in] pRec          the plane; cbp bits 0 to 3 count
 *  @param[in] pMBIntraTypes 4 modes in coding order, 0 to 8, not tested; the prediction of another is unspecified
 *  @param     edgeType      neighbours that cannot be used; never reported
 *  @retval moxStsNullPointer a pointer is null
 *  @retval moxStsBadStep     srcDstStep is below 1
 *  @retval moxStsOutOfRange  the QP or the bit depth is out of range */
MOX_API MoxStatus moxiReconstructLumaIntra8x8_H264High_32s16u_IP1R(const MoxiReconstructHighRec* pRec,
                                                                   const Mox32u* pMBIntraTypes, Mox32u edgeType);

/** Reconstructs the upper 16 x 8 luma samples of an Intra 4x4 macroblock: 8 modes; cbp bits 0 to 7 count. Otherwise as
 *  moxiReconstructLumaIntra4x4_H264High_32s16u_IP1R. */
MOX_API MoxStatus moxiReconstructLumaIntraHalf4x4_H264High_32s16u_IP1R(const MoxiReconstructHighRec* pRec,
                                                                       const Mox32u* pMBIntraTypes, Mox32u edgeType);

/** Reconstructs the upper 16 x 8 luma samples of an Intra 8x8 macroblock: 2 modes; cbp bits 0 and 1 count. Otherwise as
 *  moxiReconstructLumaIntra8x8_H264High_32s16u_IP1R. */
MOX_API MoxStatus moxiReconstructLumaIntraHalf8x8_H264High_32s16u_IP1R(const MoxiReconstructHighRec* pRec,
                                                                       const Mox32u* pMBIntraTypes, Mox32u edgeType);

/** Reconstructs the luma of an Intra 16x16 macroblock.
 *  @param[in] pRec          the plane; cbp bits 0 to 16 count, without bit 0 the DC values are zeros
 *  @param     intraLumaMode 0 to 3
 *  @param     edgeType      neighbours that cannot be used
 *  @retval moxStsNullPointer     a pointer is null
 *  @retval moxStsBadStep         srcDstStep is below 1
 *  @retval moxStsOutOfRange      the QP or the bit depth is out of range, or intraLumaMode is not 0 to 3
 *  @retval moxStsEdgeUnavailable the mode needs an edge that edgeType denies */
MOX_API MoxStatus moxiReconstructLumaIntra16x16_H264High_32s16u_IP1R(const MoxiReconstructHighRec* pRec,
                                                                     Mox32u intraLumaMode, Mox32u edgeType);

/** Adds the chroma residual of an inter macroblock in 4:2:0. If no cbp has a bit set, nothing is done.
 *  @param[in] ppRec records of U and V, their planes holding the prediction
 *  @retval moxStsNullPointer a pointer is null
 *  @retval moxStsBadStep     a srcDstStep is below 1
 *  @retval moxStsOutOfRange  a QP or the bit depth is out of range */
MOX_API MoxStatus moxiReconstructChromaInter4x4_H264High_32s16u_IP2R(MoxiReconstructHighRec* const* ppRec);

/** Reconstructs the chroma of an intra macroblock in 4:2:0.
 *  @param[in] ppRec           records of U and V
 *  @param     intraChromaMode 0 to 3, in chroma's order
 *  @param     edgeType        neighbours that cannot be used
 *  @retval moxStsNullPointer     a pointer is null
 *  @retval moxStsBadStep         a srcDstStep is below 1
 *  @retval moxStsOutOfRange      a QP or the bit depth is out of range, or intraChromaMode is not 0 to 3
 *  @retval moxStsEdgeUnavailable the mode needs an edge that edgeType denies */
MOX_API MoxStatus moxiReconstructChromaIntra4x4_H264High_32s16u_IP2R(MoxiReconstructHighRec* const* ppRec,
                                                                     Mox32u intraChromaMode, Mox32u edgeType);

/** Reconstructs the chroma of an intra macroblock in 4:2:0 whose left neighbours differ for its upper and its lower
 *  half. Only DC and vertical are possible.
 *  @param[in] ppRec           records of U and V
 *  @param     intraChromaMode 0 or 2, in chroma's order
 *  @param     edgeTypeTop     1 denies the column left of the upper rows, 4 the row above; no other bit counts
 *  @param     edgeTypeBottom  1 denies the column left of the lower rows; no other bit counts
 *  @retval moxStsNullPointer     a pointer is null
 *  @retval moxStsBadStep         a srcDstStep is below 1
 *  @retval moxStsOutOfRange      a QP or the bit depth is out of range
 *  @retval moxStsEdgeUnavailable mode 2 with the row above denied, or any mode but 0 and 2 */
MOX_API MoxStatus moxiReconstructChromaIntraHalf4x4_H264High_32s16u_IP2R(MoxiReconstructHighRec* const* ppRec,
                                                                         Mox32u intraChromaMode, Mox32u edgeTypeTop,
                                                                         Mox32u edgeTypeBottom);

/** Adds the chroma residual of an inter macroblock in 4:2:2, 8-bit. As
 *  moxiReconstructChromaInter4x4_H264High_32s16u_IP2R, and:
 *  @param levelScaleDCU inverse scale of U's DC values, which is that of QP + 3
 *  @param levelScaleDCV the same of V */
MOX_API MoxStatus moxiReconstructChroma422Inter4x4_H264High_16s8u_IP2R(MoxiReconstructHighRec* const* ppRec,
                                                                       Mox32s levelScaleDCU, Mox32s levelScaleDCV);

/** moxiReconstructChroma422Inter4x4_H264High_16s8u_IP2R with 32-bit coefficients and 16-bit samples. */
MOX_API MoxStatus moxiReconstructChroma422Inter4x4_H264High_32s16u_IP2R(MoxiReconstructHighRec* const* ppRec,
                                                                        Mox32s levelScaleDCU, Mox32s levelScaleDCV);

/** Reconstructs the chroma of an intra macroblock in 4:2:2, 8-bit. As
 *  moxiReconstructChromaIntra4x4_H264High_32s16u_IP2R, and:
 *  @param levelScaleDCU inverse scale of U's DC values, which is that of QP + 3
 *  @param levelScaleDCV the same of V */
MOX_API MoxStatus moxiReconstructChroma422Intra4x4_H264High_16s8u_IP2R(MoxiReconstructHighRec* const* ppRec,
                                                                       Mox32u intraChromaMode, Mox32u edgeType,
                                                                       Mox32s levelScaleDCU, Mox32s levelScaleDCV);

/** moxiReconstructChroma422Intra4x4_H264High_16s8u_IP2R with 32-bit coefficients and 16-bit samples. */
MOX_API MoxStatus moxiReconstructChroma422Intra4x4_H264High_32s16u_IP2R(MoxiReconstructHighRec* const* ppRec,
                                                                        Mox32u intraChromaMode, Mox32u edgeType,
                                                                        Mox32s levelScaleDCU, Mox32s levelScaleDCV);

/** Reconstructs the chroma of an intra macroblock in 4:2:2, 8-bit, whose left neighbours differ for its upper and its
 *  lower eight rows. As moxiReconstructChromaIntraHalf4x4_H264High_32s16u_IP2R, and:
 *  @param levelScaleDCU inverse scale of U's DC values, which is that of QP + 3
 *  @param levelScaleDCV the same of V */
MOX_API MoxStatus moxiReconstructChroma422IntraHalf4x4_H264High_16s8u_IP2R(MoxiReconstructHighRec* const* ppRec,
                                                                           Mox32u intraChromaMode, Mox32u edgeTypeTop,
                                                                           Mox32u edgeTypeBottom, Mox32s levelScaleDCU,
                                                                           Mox32s levelScaleDCV);

/** moxiReconstructChroma422IntraHalf4x4_H264High_16s8u_IP2R with 32-bit coefficients and 16-bit samples. */
MOX_API MoxStatus moxiReconstructChroma422IntraHalf4x4_H264High_32s16u_IP2R(MoxiReconstructHighRec* const* ppRec,
                                                                            Mox32u intraChromaMode, Mox32u edgeTypeTop,
                                                                            Mox32u edgeTypeBottom, Mox32s levelScaleDCU,
                                                                            Mox32s levelScaleDCV);

MOX_END_DECLS

#endif
