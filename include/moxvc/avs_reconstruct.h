/** @file
 *  AVS reconstruction (GB/T 20090.2, 9.5 to 9.8), 8-bit 4:2:0: prediction plus residual of a macroblock.
 *
 *  One luma call and one chroma call for each chroma plane finish a macroblock. An intra function predicts its blocks
 *  in the plane itself, from the samples around them; for an inter function the caller has written the prediction into
 *  the plane. The residual is then made from the levels and added, and the sum is limited to 0..255. Of the
 *  calculation, nothing is promised but what stands here.
 *
 *  Planes point at the macroblock's first sample; a step is the distance of two rows in bytes, may be negative and is
 *  not tested. Written are 16 x 16 luma or 8 x 8 chroma samples. Neighbours must not be deblocked yet.
 *
 *  Coefficients. Levels as they come from avs_coefficients.h: a block is 64 values in raster order, block b of luma
 *  begins at pSrcCoeffs + 64 b. Blocks 0 to 3 lie at (0,0) (8,0) (0,8) (8,8). Bit b of cbp tells whether block b has
 *  levels; the chroma functions have one block, bit 0. Blocks without their bit are not read, other bits are ignored.
 *
 *  Dequantisation (9.5): w = (level * D + 2^(S - 1)) >> S, limited to -32768..32767, with D and S of the qp, which make
 *  about 2 * 2^(qp / 8) of a level. S is 14 - (qp >> 3), and 1 more where D is 65535.
 *
 *      qp  0 ..  7   32768 36061 38968 42495 46341 50535 55437 60424
 *      qp  8 .. 15   32932 35734 38968 42495 46177 50535 55109 59933
 *      qp 16 .. 23   65535 35734 38968 42577 46341 50617 55027 60097
 *      qp 24 .. 31   32809 35734 38968 42454 46382 50576 55109 60056
 *      qp 32 .. 39   65535 35734 38968 42495 46320 50515 55109 60076
 *      qp 40 .. 47   65535 35744 38968 42495 46341 50535 55099 60087
 *      qp 48 .. 55   65535 35734 38973 42500 46341 50535 55109 60097
 *      qp 56 .. 63   32771 35734 38965 42497 46341 50535 55109 60099
 *
 *  The chroma qp of a luma qp is the same up to 42; for 43 to 63 it is 42 43 43 44 44 45 45 46 46 47 47 48 48 48 49 49
 *  49 50 50 50 51.
 *
 *  Inverse transform (9.6). With the rows of T below, one for each frequency, all sums exact:
 *  h = (w * T + 4) >> 3, limited to -32768..32767, then r = (T' * h + 64) >> 7, limited likewise.
 *
 *       8   8   8   8   8   8   8   8
 *      10   9   6   2  -2  -6  -9 -10
 *      10   4  -4 -10 -10  -4   4  10
 *       9  -2 -10  -6   6  10   2  -9
 *       8  -8  -8   8   8  -8  -8   8
 *       6 -10   2   9  -9  -2  10  -6
 *       4 -10  10  -4  -4  10 -10   4
 *       2  -6   9 -10  10  -9   6  -2
 *
 *  Intra prediction (9.8). r[1] to r[8] are the samples above the block, r[9] to r[16] those above and right, c[1] to
 *  c[8] those to the left from the top down, c[9] to c[16] those below them, r[0] = c[0] the corner. Where there are no
 *  samples above and right, r[8] stands for them, likewise c[8] for those left and below; r[17] is r[16], c[17] is
 *  c[16]. Where the corner cannot be used, r[0] is r[1] and c[0] is c[1].
 *
 *  With F(v, i) = (v[i - 1] + 2 v[i] + v[i + 1] + 2) >> 2, at column x and row y:
 *
 *  | luma | chroma | mode       | sample                                       | needs               |
 *  |------|--------|------------|----------------------------------------------|---------------------|
 *  | 0    | 2      | vertical   | r[x + 1]                                     | above               |
 *  | 1    | 1      | horizontal | c[y + 1]                                     | left                |
 *  | 2    | 0      | DC         | (F(r, x + 1) + F(c, y + 1)) >> 1             |                     |
 *  | 3    |        | down left  | (F(r, x + y + 2) + F(c, x + y + 2)) >> 1     | above, left         |
 *  | 4    |        | down right | F(v, x - y)                                  | above, left, corner |
 *  |      | 3      | plane      | (a + (x - 3) b + (y - 3) d + 16) >> 5        | above, left, corner |
 *
 *  DC is F(r, x + 1) or F(c, y + 1) alone if the other edge cannot be used, and 128 if none can. Down right runs over
 *  the line v, where v[i] is r[i] for i of 0 to 8 and c[-i] for i of -8 to -1. Plane is limited to 0..255; a is
 *  16 (r[8] + c[8]), b is (17 s + 16) >> 5 with s the sum of i (r[4 + i] - r[4 - i]) for i of 1 to 4, and d likewise of
 *  c.
 *
 *  edgeType: neighbouring macroblocks that cannot be used: 1 left, 4 above, 16 above and left, 32 above and right;
 *  other bits are ignored. Of luma, block 0 has the left macroblock's samples left and below, the others have none
 *  there, nor has chroma. Above and right, block 3 has none, block 2 has those of block 1, block 0 those above block 1,
 *  block 1 and chroma those of the macroblock above and right. Only neighbours that may be used are read.
 *
 *  Order of tests: pointers in argument order (moxStsNullPointer); qp, then the modes (moxStsOutOfRange); then the
 *  edges that the modes need (moxStsEdgeUnavailable). All tests come before anything is written.
 */
#ifndef MOXVC_AVS_RECONSTRUCT_H
#define MOXVC_AVS_RECONSTRUCT_H

#include "types.h"

MOX_BEGIN_DECLS

/** Reconstructs the luma of an intra macroblock.
 *  @param[in]     pSrcCoeffs    levels of 4 blocks
 *  @param[in,out] pSrcDst       first sample of the macroblock
 *  @param         srcDstStep    bytes between rows
 *  @param[in]     pMBIntraTypes 4 luma modes, 0 to 4
 *  @param         cbp           bits 0 to 3: blocks with levels
 *  @param         qp            0 to 63
 *  @param         edgeType      neighbours that cannot be used
 *  @retval moxStsNullPointer     pSrcCoeffs, pSrcDst or pMBIntraTypes is null
 *  @retval moxStsOutOfRange      qp is not 0 to 63, or a mode not 0 to 4
 *  @retval moxStsEdgeUnavailable a mode needs an edge that edgeType denies */
MOX_API MoxStatus moxiReconstructLumaIntra_AVS_16s8u_C1R(const Mox16s* pSrcCoeffs, Mox8u* pSrcDst, Mox32s srcDstStep,
                                                         const Mox32u* pMBIntraTypes, Mox32u cbp, Mox32s qp,
                                                         Mox32u edgeType);

/** Adds the luma residual of an inter macroblock.
 *  @param[in]     pSrcCoeffs levels of 4 blocks
 *  @param[in,out] pSrcDst    16 x 16 samples, the prediction
 *  @param         srcDstStep bytes between rows
 *  @param         cbp        bits 0 to 3: blocks with levels
 *  @param         qp         0 to 63
 *  @retval moxStsNullPointer pSrcCoeffs or pSrcDst is null
 *  @retval moxStsOutOfRange  qp is not 0 to 63 */
MOX_API MoxStatus moxiReconstructLumaInter_AVS_16s8u_C1R(const Mox16s* pSrcCoeffs, Mox8u* pSrcDst, Mox32s srcDstStep,
                                                         Mox32u cbp, Mox32s qp);

/** Reconstructs one chroma plane of an intra macroblock.
 *  @param[in]     pSrcCoeffs      levels of the block
 *  @param[in,out] pSrcDst         first sample of the block
 *  @param         srcDstStep      bytes between rows
 *  @param         intraChromaMode 0 to 3
 *  @param         cbp             bit 0: the block has levels
 *  @param         qp              0 to 63, that of chroma
 *  @param         edgeType        neighbours that cannot be used
 *  @retval moxStsNullPointer     pSrcCoeffs or pSrcDst is null
 *  @retval moxStsOutOfRange      qp is not 0 to 63, or intraChromaMode not 0 to 3
 *  @retval moxStsEdgeUnavailable the mode needs an edge that edgeType denies */
MOX_API MoxStatus moxiReconstructChromaIntra_AVS_16s8u_C1R(const Mox16s* pSrcCoeffs, Mox8u* pSrcDst, Mox32s srcDstStep,
                                                           Mox32u intraChromaMode, Mox32u cbp, Mox32s qp,
                                                           Mox32u edgeType);

/** Adds the residual of one chroma plane of an inter macroblock.
 *  @param[in]     pSrcCoeffs levels of the block
 *  @param[in,out] pSrcDst    8 x 8 samples, the prediction
 *  @param         srcDstStep bytes between rows
 *  @param         cbp        bit 0: the block has levels
 *  @param         qp         0 to 63, that of chroma
 *  @retval moxStsNullPointer pSrcCoeffs or pSrcDst is null
 *  @retval moxStsOutOfRange  qp is not 0 to 63 */
MOX_API MoxStatus moxiReconstructChromaInter_AVS_16s8u_C1R(const Mox16s* pSrcCoeffs, Mox8u* pSrcDst, Mox32s srcDstStep,
                                                           Mox32u cbp, Mox32s qp);

MOX_END_DECLS

#endif
