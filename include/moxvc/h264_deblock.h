/** @file
 *  H.264 in-loop deblocking of macroblock edges (ITU-T H.264 8.7), in place.
 *
 *  A call filters all vertical edges (Ver) or all horizontal edges (Hor) of one plane of one macroblock: its outer
 *  edge, the left or the upper one, and its inner edges. The edges are filtered in order, left to right or top to
 *  bottom, each on what the one before left behind. The MBAFF forms filter lines of one left edge, as a macroblock in
 *  a mixed frame and field pair needs it.
 *
 *  Strengths and thresholds. The caller works out bS (8.7.2.1) and alpha, beta and tc0 (8.7.2.2), for 16u forms
 *  scaled to the bit depth; the library has no tables for them. `pAlpha` and `pBeta` hold two values, [0] for the
 *  outer edge and [1] for all inner edges. Each edge has four bS and four tc0 values, each for a quarter of its
 *  lines:
 *
 *  | Form            | Edges e at         | Lines i | index in pBs | index in pThresholds | pBs, pThresholds |
 *  |-----------------|--------------------|---------|--------------|----------------------|------------------|
 *  | Luma Ver, Hor   | 0, 4, 8, 12        | 16      | 4 e + i / 4  | 4 e + i / 4          | 16, 16           |
 *  | Chroma Ver, Hor | 0, 4               | 8       | 8 e + i / 2  | 4 e + i / 2          | 12, 8            |
 *  | Chroma422 Ver   | 0, 4 (columns)     | 16      | 8 e + i / 4  | 4 e + i / 4          | 12, 8            |
 *  | Chroma422 Hor   | 0, 4, 8, 12 (rows) | 8       | 4 e + i / 2  | 4 e + i / 2          | 16, 16           |
 *  | Luma MBAFF      | 0                  | 8       | i / 2        | i / 2                | 4, 4             |
 *  | Chroma MBAFF    | 0                  | 4       | i            | i                    | 4, 4             |
 *
 *  So where chroma has two edges, they take rows 0 and 2 of the luma edges' bS; rows 1 and 3 are not read.
 *
 *  Filter. A line p3 p2 p1 p0 | q0 q1 q2 q3 across an edge is changed only if its bS is not 0 (but see the horizontal
 *  forms that go by the first bS of an edge), |p0 - q0| is below alpha, and |p1 - p0| and |q1 - q0| are below beta.
 *  It is filtered by the strong rule (8.7.2.4, for bS 4) or by the normal one (8.7.2.3, for bS 1 to 3). Each form
 *  tells where the strong rule runs; elsewhere any bS but 0, above 4 too, means the normal rule with the line's tc0.
 *  The limit tc of the normal rule, tc0 + 1 in chroma and tc0 + 0 to 2 in luma, keeps only its low 8 bits in 8u forms
 *  and 16 bits in 16u forms: a chroma tc0 of 255 gives a limit of 0. The normal rule limits p0 and q0 to 0..255, or
 *  to the bit depth, where it changes them.
 *
 *  Memory. The plane pointer is the macroblock's first sample. Across the outer edge luma reads four samples and
 *  changes up to three, chroma reads two and changes one. On the macroblock's side luma reads the block, chroma two
 *  samples behind the last edge: columns or rows -2 to 5, in Chroma422 Hor -2 to 13. An MBAFF form reads as many
 *  samples on both sides of its edge. An edge whose four bS are 0 is passed over, no sample of it read. Two
 *  macroblocks that share an edge must not be filtered at the same time.
 *
 *  Steps count bytes in 8u forms and samples in 16u forms. They may be negative. The result is not defined
 *  where rows overlap.
 *
 *  Status. moxStsNullPointer if a pointer is null, of the record forms the record itself first; nothing is written
 *  then. Nothing else is tested: neither steps nor the bit depth, nor strengths or thresholds.
 */
#ifndef MOXVC_H264_DEBLOCK_H
#define MOXVC_H264_DEBLOCK_H

#include "types.h"

MOX_BEGIN_DECLS

/** Arguments of the 8-bit 4:2:2 forms. */
typedef struct MoxiDeblockParams {
  Mox8u* pSrcDstPlane;      /**< first sample of the macroblock's plane */
  Mox32s srcDstStep;        /**< bytes between rows */
  const Mox8u* pAlpha;      /**< 2 values: outer edge, inner edges */
  const Mox8u* pBeta;       /**< 2 values: outer edge, inner edges */
  const Mox8u* pThresholds; /**< tc0 values */
  const Mox8u* pBs;         /**< bS values */
} MoxiDeblockParams;

/** Arguments of the 16-bit forms. */
typedef struct MoxiDeblockParams_16u {
  Mox16u* pSrcDstPlane;      /**< first sample of the macroblock's plane */
  Mox32s srcDstStep;         /**< samples between rows */
  const Mox16u* pAlpha;      /**< 2 values: outer edge, inner edges; only the first is read in MBAFF forms */
  const Mox16u* pBeta;       /**< 2 values: outer edge, inner edges; only the first is read in MBAFF forms */
  const Mox16u* pThresholds; /**< tc0 values */
  const Mox8u* pBs;          /**< bS values, always 8-bit */
  Mox32s bitDepth;           /**< bits of a sample, 8 to 16 */
} MoxiDeblockParams_16u;

/** Vertical luma edges, 8-bit. The strong rule runs on the outer edge only, for each half edge of 8 lines whose two
 *  bS are both 4.
 *  @param[in,out] pSrcDst 16 x 16 samples and the 4 columns left of them, any alignment
 *  @param srcDstStep      bytes between rows
 *  @param[in] pAlpha      2 values: outer edge, inner edges
 *  @param[in] pBeta       2 values: outer edge, inner edges
 *  @param[in] pThresholds 16 tc0 values, 4 for each edge
 *  @param[in] pBs         16 bS values, 4 for each edge
 *  @retval moxStsNullPointer a pointer is null */
MOX_API MoxStatus moxiFilterDeblockingLuma_VerEdge_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, const Mox8u* pAlpha,
                                                                const Mox8u* pBeta, const Mox8u* pThresholds,
                                                                const Mox8u* pBs);

/** Horizontal luma edges, 8-bit. The strong rule runs on the outer edge only, if its four bS are all 4.
 *  @param[in,out] pSrcDst 16 x 16 samples and the 4 rows above them, any alignment
 *  @param srcDstStep      bytes between rows
 *  @param[in] pAlpha      2 values: outer edge, inner edges
 *  @param[in] pBeta       2 values: outer edge, inner edges
 *  @param[in] pThresholds 16 tc0 values, 4 for each edge
 *  @param[in] pBs         16 bS values, 4 for each edge
 *  @retval moxStsNullPointer a pointer is null */
MOX_API MoxStatus moxiFilterDeblockingLuma_HorEdge_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, const Mox8u* pAlpha,
                                                                const Mox8u* pBeta, const Mox8u* pThresholds,
                                                                const Mox8u* pBs);

/** Vertical chroma edges, 8-bit 4:2:0. The strong rule runs on the outer edge only, if its four bS are all 4.
 *  @param[in,out] pSrcDst columns -2 to 5 of 8 rows, any alignment
 *  @param srcDstStep      bytes between rows
 *  @param[in] pAlpha      2 values: outer edge, inner edge
 *  @param[in] pBeta       2 values: outer edge, inner edge
 *  @param[in] pThresholds 8 tc0 values, 4 for each edge
 *  @param[in] pBs         16 bS values of the luma edges, of which [0] to [3] and [8] to [11] are read
 *  @retval moxStsNullPointer a pointer is null */
MOX_API MoxStatus moxiFilterDeblockingChroma_VerEdge_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep,
                                                                  const Mox8u* pAlpha, const Mox8u* pBeta,
                                                                  const Mox8u* pThresholds, const Mox8u* pBs);

/** Horizontal chroma edges, 8-bit 4:2:0: as moxiFilterDeblockingChroma_VerEdge_H264_8u_C1IR on rows -2 to 5 of 8
 *  columns.
 *  @retval moxStsNullPointer a pointer is null */
MOX_API MoxStatus moxiFilterDeblockingChroma_HorEdge_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep,
                                                                  const Mox8u* pAlpha, const Mox8u* pBeta,
                                                                  const Mox8u* pThresholds, const Mox8u* pBs);

/** Vertical chroma edges of interleaved U and V, 8-bit 4:2:0. Each line has its sample in U and in V, under the same
 *  bS and thresholds. The strong rule runs on the outer edge only, if its four bS are all 4.
 *  @param[in,out] pSrcDst column pairs -2 to 5 (bytes -4 to 11) of 8 rows; the inner edge lies at byte 8
 *  @param srcDstStep      bytes between rows
 *  @param[in] pAlpha      2 values: outer edge, inner edge
 *  @param[in] pBeta       2 values: outer edge, inner edge
 *  @param[in] pThresholds 8 tc0 values, 4 for each edge
 *  @param[in] pBs         16 bS values of the luma edges, of which [0] to [3] and [8] to [11] are read
 *  @retval moxStsNullPointer a pointer is null */
MOX_API MoxStatus moxiFilterDeblockingChroma_VerEdge_H264_8u_C2IR(Mox8u* pSrcDst, Mox32s srcDstStep,
                                                                  const Mox8u* pAlpha, const Mox8u* pBeta,
                                                                  const Mox8u* pThresholds, const Mox8u* pBs);

/** Horizontal chroma edges of interleaved U and V, 8-bit 4:2:0: as moxiFilterDeblockingChroma_VerEdge_H264_8u_C2IR on
 *  rows -2 to 5 of 8 column pairs, but the strong rule runs for each half edge of 4 lines whose two bS are both 4.
 *  @retval moxStsNullPointer a pointer is null */
MOX_API MoxStatus moxiFilterDeblockingChroma_HorEdge_H264_8u_C2IR(Mox8u* pSrcDst, Mox32s srcDstStep,
                                                                  const Mox8u* pAlpha, const Mox8u* pBeta,
                                                                  const Mox8u* pThresholds, const Mox8u* pBs);

/** Eight lines of a left luma edge, 8-bit MBAFF. The strong rule runs on each line whose bS is 4. With alpha 0 or
 *  four bS of 0 the function returns moxStsOk and reads no sample.
 *  @param[in,out] pSrcDst     columns -4 to 3 of 8 rows, any alignment
 *  @param         srcDstStep  bytes between rows
 *  @param         alpha,beta  thresholds of the edge, any value
 *  @param[in]     pThresholds 4 tc0 values, each for 2 lines
 *  @param[in]     pBs         4 bS values, each for 2 lines
 *  @retval moxStsNullPointer a pointer is null */
MOX_API MoxStatus moxiFilterDeblockingLuma_VerEdge_MBAFF_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32u alpha,
                                                                      Mox32u beta, const Mox8u* pThresholds,
                                                                      const Mox8u* pBs);

/** Four lines of a left chroma edge, 8-bit 4:2:0 MBAFF: as moxiFilterDeblockingLuma_VerEdge_MBAFF_H264_8u_C1IR on
 *  columns -2 to 1 of 4 rows, with a tc0 and a bS for each line.
 *  @retval moxStsNullPointer a pointer is null */
MOX_API MoxStatus moxiFilterDeblockingChroma_VerEdge_MBAFF_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32u alpha,
                                                                        Mox32u beta, const Mox8u* pThresholds,
                                                                        const Mox8u* pBs);

/** Vertical chroma edges, 8-bit 4:2:2: columns -2 to 5 of 16 rows. The strong rule runs on each line whose bS is 4,
 *  on both edges. 8 tc0 values; bS [0] to [3] and [8] to [11] are read.
 *  @retval moxStsNullPointer pParams or one of its pointers is null */
MOX_API MoxStatus moxiFilterDeblockingChroma422VerEdge_H264_8u_C1IR(const MoxiDeblockParams* pParams);

/** Horizontal chroma edges, 8-bit 4:2:2: rows -2 to 13 of 8 columns. The strong rule runs on any edge whose first bS
 *  is 4, for all its lines: the edge's other bS, 0 too, are not looked at then. 16 tc0 and 16 bS values.
 *  @retval moxStsNullPointer pParams or one of its pointers is null */
MOX_API MoxStatus moxiFilterDeblockingChroma422HorEdge_H264_8u_C1IR(const MoxiDeblockParams* pParams);

/** Not available: a left chroma edge, 8-bit 4:2:2 MBAFF.
 *  @retval moxStsRegionTooSmall always, with a null pointer too; nothing is read or written */
MOX_API MoxStatus moxiFilterDeblockingChroma422VerEdgeMBAFF_H264_8u_C1IR(const MoxiDeblockParams* pParams);

/** Vertical luma edges, 16-bit: 16 x 16 samples and the 4 columns left of them. The strong rule runs on each line
 *  whose bS is 4, on any edge. 16 tc0 and 16 bS values.
 *  @retval moxStsNullPointer pParams or one of its pointers is null */
MOX_API MoxStatus moxiFilterDeblockingLumaVerEdge_H264_16u_C1IR(const MoxiDeblockParams_16u* pParams);

/** Horizontal luma edges, 16-bit: as moxiFilterDeblockingLumaVerEdge_H264_16u_C1IR with the 4 rows above.
 *  @retval moxStsNullPointer pParams or one of its pointers is null */
MOX_API MoxStatus moxiFilterDeblockingLumaHorEdge_H264_16u_C1IR(const MoxiDeblockParams_16u* pParams);

/** Eight lines of a left luma edge, 16-bit MBAFF: columns -4 to 3 of 8 rows. The strong rule runs on each line whose
 *  bS is 4. With alpha 0 or four bS of 0 no sample is read. 4 tc0 and 4 bS values, each for 2 lines.
 *  @retval moxStsNullPointer pParams or one of its pointers is null */
MOX_API MoxStatus moxiFilterDeblockingLumaVerEdgeMBAFF_H264_16u_C1IR(const MoxiDeblockParams_16u* pParams);

/** Vertical chroma edges, 16-bit 4:2:0: columns -2 to 5 of 8 rows. The strong rule runs on each line whose bS is 4,
 *  on both edges. 8 tc0 values; bS [0] to [3] and [8] to [11] are read.
 *  @retval moxStsNullPointer pParams or one of its pointers is null */
MOX_API MoxStatus moxiFilterDeblockingChromaVerEdge_H264_16u_C1IR(const MoxiDeblockParams_16u* pParams);

/** Horizontal chroma edges, 16-bit 4:2:0: rows -2 to 5 of 8 columns. The strong rule runs on the outer edge only, for
 *  all its lines, if its first bS is 4: the edge's other bS, 0 too, are not looked at then. 8 tc0 values; bS [0] to
 *  [3] and [8] to [11] are read.
 *  @retval moxStsNullPointer pParams or one of its pointers is null */
MOX_API MoxStatus moxiFilterDeblockingChromaHorEdge_H264_16u_C1IR(const MoxiDeblockParams_16u* pParams);

/** Four lines of a left chroma edge, 16-bit 4:2:0 MBAFF: columns -2 to 1 of 4 rows. The strong rule runs on each line
 *  whose bS is 4. With alpha 0 or four bS of 0 no sample is read. A tc0 and a bS for each line.
 *  @retval moxStsNullPointer pParams or one of its pointers is null; tested in the order plane, pThresholds, pBs,
 *      pAlpha, pBeta */
MOX_API MoxStatus moxiFilterDeblockingChromaVerEdgeMBAFF_H264_16u_C1IR(const MoxiDeblockParams_16u* pParams);

/** Vertical chroma edges, 16-bit 4:2:2: as moxiFilterDeblockingChroma422VerEdge_H264_8u_C1IR.
 *  @retval moxStsNullPointer pParams or one of its pointers is null */
MOX_API MoxStatus moxiFilterDeblockingChroma422VerEdge_H264_16u_C1IR(const MoxiDeblockParams_16u* pParams);

/** Horizontal chroma edges, 16-bit 4:2:2: as moxiFilterDeblockingChroma422HorEdge_H264_8u_C1IR.
 *  @retval moxStsNullPointer pParams or one of its pointers is null */
MOX_API MoxStatus moxiFilterDeblockingChroma422HorEdge_H264_16u_C1IR(const MoxiDeblockParams_16u* pParams);

/** Not available: a left chroma edge, 16-bit 4:2:2 MBAFF.
 *  @retval moxStsRegionTooSmall always, with a null pointer too; nothing is read or written */
MOX_API MoxStatus moxiFilterDeblockingChroma422VerEdgeMBAFF_H264_16u_C1IR(const MoxiDeblockParams_16u* pParams);

MOX_END_DECLS

#endif
