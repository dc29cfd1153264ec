/** @file
 *  MPEG-4 warping: static sprites and global motion compensation (ISO/IEC 14496-2 7.8), the mean motion vector of a
 *  macroblock, and the change of a sprite's brightness.
 *
 *  Record. A warp is set up once for each video object plane (VOP), in the caller's memory: ask for the size, give that
 *  many bytes to moxiWarpInit_MPEG4, and use the record for any number of blocks. The memory may have any alignment:
 *  the record begins at the next multiple of 16, so a copy is good only at the same distance from one. It owns nothing,
 *  takes no call at its end, is only read after Init, and may be shared by threads. It carries a tag: memory that Init
 *  has not made a record is refused.
 *
 *      Mox8u memory[384];                           what moxiWarpGetSize_MPEG4 gives
 *      MoxiWarpSpec* spec = (MoxiWarpSpec*)memory;
 *      moxiWarpInit_MPEG4(spec, du, dv, 2, 0, 3, 0, 0, 1, &sprite, &vop);
 *      moxiWarpLuma_MPEG4_8u_C1R(reference, step, block, step, &rect, spec);
 *
 *  Coordinates. The rectangles of sprite, VOP and blocks are in luma samples of one coordinate system; the rectangle of
 *  a chroma block is in chroma samples. Sprite pointers point to the first sample of the sprite's rectangle, block
 *  pointers to the first sample of the block. In chroma the sprite is at x / 2, y / 2 (towards zero) and has
 *  (width + 1) / 2 x (height + 1) / 2 samples, which must be 1 or more of each.
 *
 *  Setup. Let a be the accuracy (0 to 3: 1/2, 1/4, 1/8, 1/16 of a sample), (x0, y0) the first sample of the VOP, W x H
 *  its size, du and dv the displacements of the warping points in half samples. Divisions // are to the nearest, halves
 *  away from zero. Positions below are in 1/16 of a sample; what is told of x with du holds of y with dv.
 *
 *      i0' = 16 x0 + 8 du0,  j0' = 16 y0 + 8 dv0
 *
 *  2 points. W' is the smallest power of 2 not below W:
 *
 *      i1'' = 16 (x0 + W') + (8 du0 (W - W') + 8 (du0 + du1) W') // W
 *      j1'' = 16 y0 + (8 dv0 (W - W') + 8 (dv0 + dv1) W') // W
 *      S = W',  (cx2, cy2) = (i1'' - i0', j1'' - j0'),  (cx1, cy1) = (-cy2, cx2)
 *
 *  3 points. With H' of H, and (i2'', j2'') made of du2, dv2, H and H' as (i1'', j1'') of du1, dv1, W and W', but
 *  shifted downwards: S is the greater of W' and H', and
 *
 *      (cx2, cy2) = (i1'' - i0', j1'' - j0') * S / W',  (cx1, cy1) = (i2'' - i0', j2'' - j0') * S / H'
 *
 *  4 points, of a static sprite only. With all of i0..i3, j0..j3 shifted left by a:
 *
 *      i0 = 2 x0 + du0          i1 = 2 (x0 + W) + du0 + du1    i2 = 2 x0 + du0 + du2
 *      j0 = 2 y0 + dv0          j1 = 2 y0 + dv0 + dv1          j2 = 2 (y0 + H) + dv0 + dv2
 *      i3 = 2 (x0 + W) + du0 + du1 + du2 + du3                 j3 = 2 (y0 + H) + dv0 + dv1 + dv2 + dv3
 *      p = i3 + i0 - i1 - i2   q = j2 - j3   r = i2 - i3   s = j3 + j0 - j1 - j2   t = i1 - i3   u = j1 - j3
 *      g = (p q - r s) H,      h = (s t - p u) W,          D = q t - r u               in 32-bit integers
 *      A = D (i1 - i0) H + g i1,  B = D (i2 - i0) W + h i2,  C = D i0 W H,  k = D W H  in double precision
 *
 *  and the same of the j for y.
 *
 *  Positions. Let dx = x - x0, dy = y - y0 for the sample (x, y), and the sprite begin at (xs, ys):
 *
 *      points   luma: position in x, before 16 xs is taken off
 *      0        16 x
 *      1        16 x + i0' - 16 x0
 *      2, 3     i0' + (cx2 dx + cx1 dy) / S, rounded to the accuracy
 *      4        (A dx + B dy + C) * (1 / (g dx + h dy + k)), rounded to the accuracy
 *
 *      points   chroma: the same, with x0 / 2 (towards zero) and xs / 2
 *      0        16 x
 *      1        16 x + ic - 16 (x0 / 2)
 *      2, 3     (2 S (i0' - 8) + cx2 X + cx1 Y) / (4 S), rounded to the accuracy     with X = 4 x - 2 x0 + 1, Y alike
 *      4        (2 A X + 2 B Y + 4 C - (2 << a) N) * (1 / (4 N)), rounded to the accuracy   with N = g X + h Y + 2 k
 *
 *  With v = i0' >> (3 - a), ic is ((v + 1) >> 1) << (3 - a) for a static sprite, ((v >> 1) | (v & 1)) << (3 - a) else.
 *  The accuracy is 2^(3 - a) in units of 1/16; with 2 and 3 points halves are rounded upwards, and with 4 points a
 *  position is moved away from zero by 0.5000000001 units of the accuracy and cut off. Integers wrap at 32 bits. A
 *  position of 4 points that fits no 32-bit number of units of the accuracy, or is no number, counts as -2^31.
 *
 *  Interpolation. With f and e the low 4 bits of a position in x and y, and p, q above r, s the samples about it:
 *
 *      top = 16 p + f (q - p),  bottom = 16 r + f (s - r)
 *      (16 top + e (bottom - top) + 128 - (z << (3 - a))) >> 8
 *
 *  z is 1 if roundingType is not 0 and the sprite is not static, else 0. Samples outside the sprite have the value of
 *  the nearest one inside.
 *
 *  Memory. Warping reads samples of the sprite's rectangle alone, at most all of them, and writes the block; the two
 *  must not overlap. Steps are in bytes, may be negative and are not tested; no plane needs an alignment. A rectangle
 *  of a block without samples is no error: nothing is done.
 *
 *  Status of functions with a record: null pointers, then the tag; nothing is written then. */
#ifndef MOXVC_MPEG4_WARP_H
#define MOXVC_MPEG4_WARP_H

#include "types.h"

MOX_BEGIN_DECLS

/** Record of a warp; its fields are the library's own. */
typedef struct MoxiWarpSpec MoxiWarpSpec;

/** Bytes of memory for the record of a warp.
 *  @param[out] pSize 384
 *  @retval moxStsNullPointer pSize is null */
MOX_API MoxStatus moxiWarpGetSize_MPEG4(Mox32s* pSize);

/** Makes the record of a warp. Any error leaves the memory as it was.
 *  @param[out] pSpec            memory for the record
 *  @param[in]  pDU              numWarpingPoints displacements in x, in half samples; may be null for 0 points
 *  @param[in]  pDV              the same in y
 *  @param      numWarpingPoints 0 to 4; 4 for a static sprite only
 *  @param      spriteType       1 static sprite, any other value global motion compensation
 *  @param      warpingAccuracy  0 to 3
 *  @param      roundingType     of the VOP; 0 or not
 *  @param      quarterSample    not 0: vectors are in quarter samples
 *  @param      fcode            1 to 7: vectors are limited to -(16 << fcode)..(16 << fcode) - 1
 *  @param[in]  pSpriteRect      the sprite, or reference picture
 *  @param[in]  pVopRect         the VOP
 *  @retval moxStsNullPointer pSpec, pSpriteRect or pVopRect is null, or, tested last, one of pDU and pDV with points
 *  @retval moxStsOutOfRange  numWarpingPoints, 4 points, warpingAccuracy or fcode, in this order
 *  @retval moxStsBadSize     a width or height of a rectangle is below 1 */
MOX_API MoxStatus moxiWarpInit_MPEG4(MoxiWarpSpec* pSpec, const Mox32s* pDU, const Mox32s* pDV, Mox32s numWarpingPoints,
                                     Mox32s spriteType, Mox32s warpingAccuracy, Mox32s roundingType,
                                     Mox32s quarterSample, Mox32s fcode, const MoxiRect* pSpriteRect,
                                     const MoxiRect* pVopRect);

/** Warps a block of luma; 16x16 blocks of 0 and 1 points are fastest.
 *  @param[in]  pSrcY    sprite
 *  @param      srcYStep bytes between its rows
 *  @param[out] pDst     block
 *  @param      dstStep  bytes between its rows
 *  @param[in]  pDstRect the block's place and size
 *  @param[in]  pSpec    record
 *  @retval moxStsNullPointer pSrcY, pDst, pDstRect or pSpec is null
 *  @retval moxStsBadContext  pSpec has another tag */
MOX_API MoxStatus moxiWarpLuma_MPEG4_8u_C1R(const Mox8u* pSrcY, Mox32s srcYStep, Mox8u* pDst, Mox32s dstStep,
                                            const MoxiRect* pDstRect, const MoxiWarpSpec* pSpec);

/** Warps a block of both chroma planes; 8x8 blocks of 0 and 1 points are fastest.
 *  @param[in]  pSrcU    sprite
 *  @param      srcUStep bytes between its rows
 *  @param[in]  pSrcV    sprite
 *  @param      srcVStep bytes between its rows
 *  @param[out] pDstU    block
 *  @param      dstUStep bytes between its rows
 *  @param[out] pDstV    block
 *  @param      dstVStep bytes between its rows
 *  @param[in]  pDstRect the block's place and size, in chroma samples
 *  @param[in]  pSpec    record
 *  @retval moxStsNullPointer pSrcU, pSrcV, pDstU, pDstV, pDstRect or pSpec is null
 *  @retval moxStsBadContext  pSpec has another tag */
MOX_API MoxStatus moxiWarpChroma_MPEG4_8u_P2R(const Mox8u* pSrcU, Mox32s srcUStep, const Mox8u* pSrcV, Mox32s srcVStep,
                                              Mox8u* pDstU, Mox32s dstUStep, Mox8u* pDstV, Mox32s dstVStep,
                                              const MoxiRect* pDstRect, const MoxiWarpSpec* pSpec);

/** The motion vector that stands for the warp of a macroblock of 16x16, for the prediction of other vectors. Only for
 *  a VOP at (0, 0) and up to 3 points has it a meaning. Before the vector is limited by fcode it is
 *
 *      0 points     0
 *      1 point      i0' >> 3, or i0' >> 2 in quarter samples: its low 16 bits
 *      2, 3 points  (M + (M < 0 ? -1 : 0) + 2^(n - 1)) >> n  with n = a + 8, or a + 7 in quarter samples
 *
 *  with M = 256 ((i0' >> (3 - a)) - (xOffset << (a + 1))) - (1920 << (a + 1)) plus the sum over the macroblock of
 *  (cx2 dx + cx1 dy) / (S << (3 - a)), each rounded to the nearest with halves upwards; dx and dy run from xOffset and
 *  yOffset.
 *  @param      xOffset of the macroblock's first sample in the VOP
 *  @param      yOffset of the macroblock's first sample in the VOP
 *  @param[out] pGMV    vector
 *  @param[in]  pSpec   record
 *  @retval moxStsNullPointer pGMV or pSpec is null
 *  @retval moxStsBadContext  pSpec has another tag */
MOX_API MoxStatus moxiCalcGlobalMV_MPEG4(Mox32s xOffset, Mox32s yOffset, MoxiMotionVector* pGMV,
                                         const MoxiWarpSpec* pSpec);

/** Changes the brightness of a sprite: each sample p becomes (p m + 520) >> 10, limited to 0..255, with
 *  m = (1024 brightnessChange + (brightnessChange < 0 ? -50 : 50)) / 100 + 1024, divided towards zero. A change of 0
 *  leaves the sprite as it is.
 *  @param[in,out] pSrcDst          sprite
 *  @param         srcDstStep       bytes between its rows
 *  @param         width            columns; below 1 there is nothing to do
 *  @param         height           rows; the same
 *  @param         brightnessChange in hundredths, -112 to 1648
 *  @retval moxStsNullPointer pSrcDst is null
 *  @retval moxStsOutOfRange  brightnessChange */
MOX_API MoxStatus moxiChangeSpriteBrightness_MPEG4_8u_C1IR(Mox8u* pSrcDst, Mox32s srcDstStep, Mox32s width,
                                                           Mox32s height, Mox32s brightnessChange);

MOX_END_DECLS

#endif
