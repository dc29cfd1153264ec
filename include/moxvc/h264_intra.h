/** @file
 *  H.264 intra prediction of 8-bit blocks, in place (ITU-T H.264 8.3.1.2, 8.3.3, 8.3.4).
 *
 *  pSrcDst is the block's first sample. The neighbours are read from the same plane: the row above at -step, the column
 *  to the left at -1, the corner at -step - 1. `step` is the distance of two rows in bytes.
 *
 *  edgeAvailability says which neighbours may be used; other bits are ignored:
 *
 *  | bit | value | neighbour                                      |
 *  |-----|-------|------------------------------------------------|
 *  | 0   | 1     | the row above                                  |
 *  | 1   | 2     | the column to the left                         |
 *  | 5   | 32    | the sample above and left                      |
 *  | 6   | 64    | the four samples above and right, 4x4 only     |
 *
 *  | mode | 4x4                 | 16x16      | chroma     |
 *  |------|---------------------|------------|------------|
 *  | 0    | vertical            | vertical   | DC         |
 *  | 1    | horizontal          | horizontal | horizontal |
 *  | 2    | DC                  | DC         | vertical   |
 *  | 3    | diagonal down left  | plane      | plane      |
 *  | 4    | diagonal down right |            |            |
 *  | 5    | vertical right      |            |            |
 *  | 6    | horizontal down     |            |            |
 *  | 7    | vertical left       |            |            |
 *  | 8    | horizontal up       |            |            |
 *
 *  Read are the neighbours that the mode uses, as far as their bits are set; written is the block and nothing else.
 *  DC takes the edges that there are, and 128 if there is none. Where another mode lacks an edge, 16x16 and chroma
 *  refuse and leave the block as it was; 4x4 puts 128 in place of the edge and warns. */
#ifndef MOXVC_H264_INTRA_H
#define MOXVC_H264_INTRA_H

#include "types.h"

MOX_BEGIN_DECLS

/** Predicts a 4x4 luma block.
 *
 *  Modes 0, 3 and 7 use the row above, 1 and 8 the column to the left, 4, 5 and 6 both and the corner. Modes 3 and 7
 *  also use the four samples above and right; where those are denied, the last sample above takes their place without
 *  a warning, and where only the row above is denied, they are still read.
 *  @param[in,out] pSrcDst          first sample of the block
 *  @param         step             bytes between rows, at least 4
 *  @param         mode             0 to 8
 *  @param         edgeAvailability neighbours that may be used
 *  @retval moxStsNullPointer     pSrcDst is null
 *  @retval moxStsBadStep         step is below 4
 *  @retval moxStsOutOfRange      mode is not 0 to 8
 *  @retval moxStsEdgeSubstituted a warning: the block is written, with 128 for an edge that the mode uses and the flags
 *                                deny */
MOX_API MoxStatus moxiPredictIntra_4x4_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s step, Mox32s mode, Mox32s edgeAvailability);

/** Predicts a 16x16 luma macroblock.
 *
 *  Vertical needs the row above, horizontal the column to the left, plane both and the corner.
 *  @param[in,out] pSrcDst          first sample of the macroblock
 *  @param         step             bytes between rows, may be negative, not tested
 *  @param         mode             0 to 3
 *  @param         edgeAvailability neighbours that may be used
 *  @retval moxStsNullPointer     pSrcDst is null
 *  @retval moxStsOutOfRange      mode is not 0 to 3
 *  @retval moxStsEdgeUnavailable the mode needs an edge that the flags deny; nothing is written */
MOX_API MoxStatus moxiPredictIntra_16x16_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s step, Mox32s mode,
                                                      Mox32s edgeAvailability);

/** Predicts an 8x8 chroma block of 4:2:0. DC is formed for each 4x4 block on its own.
 *
 *  Vertical needs the row above, horizontal the column to the left, plane both and the corner.
 *  @param[in,out] pSrcDst          first sample of the block
 *  @param         step             bytes between rows, at least 8
 *  @param         mode             0 to 3, in chroma's order
 *  @param         edgeAvailability neighbours that may be used
 *  @retval moxStsNullPointer     pSrcDst is null
 *  @retval moxStsBadStep         step is below 8
 *  @retval moxStsOutOfRange      mode is not 0 to 3
 *  @retval moxStsEdgeUnavailable the mode needs an edge that the flags deny; nothing is written */
MOX_API MoxStatus moxiPredictIntraChroma8x8_H264_8u_C1IR(Mox8u* pSrcDst, Mox32s step, Mox32s mode,
                                                         Mox32s edgeAvailability);

MOX_END_DECLS

#endif
