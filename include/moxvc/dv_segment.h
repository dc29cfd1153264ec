/** @file
 *  Variable-length layer of DV video segments (IEC 61834-2 and SMPTE 314M: DV25 and DV50; SMPTE 370M: DV100).
 *
 *  A video segment is five macroblocks of five consecutive DIF blocks of 80 bytes, 400 bytes in all. Macroblock m, 0 to
 *  4, begins at byte 80 m: three bytes of header, which are not read; the quantisation number QNO in the low 4 bits of
 *  byte 3; then the blocks, at these bytes and with so many bits each:
 *
 *      DV      6 blocks   4 18 32 46: 112 bits, luma       60 70: 80 bits, chroma
 *      DV100   8 blocks   4 14 24 34 44 54: 80 bits        64 72: 64 bits
 *
 *  A block begins with 9 bits of DC, one bit m (mode) and two bits c (class); run-level codes follow. What a block does
 *  not need of its bits is used by blocks of the same macroblock for which theirs were too few, and what a macroblock
 *  does not need, by blocks of the others.
 *
 *  Decoding. The first pass decodes each block from its own bits, in the order of the blocks. A block ends with its
 *  end code, or with a code that passes the last scan position; that code does nothing else. A code is decoded if all
 *  its bits are there. The second pass goes from macroblock to macroblock: the blocks that need bits go on, in their
 *  order, with the bits that blocks of the macroblock have to spare, in the order of these; bits that are left over of
 *  the beginning of a code come first. A block is finished before the next one begins, and the bits behind its end go
 *  to that. The third pass does the same once for all blocks that still need bits and for all bits that are still left,
 *  macroblock after macroblock. Blocks that then have not ended stay as they are: the format's loss of high
 * frequencies. Nothing in a segment is an error.
 *
 *  Codes. A code moves on by its run and one scan position and stores its level there. A run alone has the level 0 and
 *  stores it. The escape, 1111111, a magnitude of 8 bits and a sign, has a run of 0.
 *
 *  Coefficients. pDst is 64 values for each block in the order of the blocks: 30 * 64 for DV, 40 * 64 for DV100. The
 *  caller clears it first: only the DC and the coefficients of codes are stored. The DC is its 9 bits, signed, times
 *  128; all others are their level times 64, -16320 to 16320. Coefficients stand in raster order, 8 v + u for the
 *  horizontal frequency u. Scan position n is, in blocks of 8-8 transforms, that of the zigzag; in blocks of 2-4-8
 *  transforms, for which m is 1, sums of the lines of two fields are rows 0 to 3 and differences are rows 4 to 7, and
 *  the scan is 0 32 1 33 8 40 2 34 9 41 16 48 24 56 17 49 10 42 3 35 4 36 11 43 18 50 25 57 26 58 19 51 12 44 5 37 6 38
 *  13 45 20 52 27 59 28 60 21 53 14 46 7 39 15 47 22 54 29 61 30 62 23 55 31 63. DV100 has the zigzag for all blocks.
 *
 *  Block parameters. pBlockParam is one word for each block, in the order of the blocks:
 *
 *      bit 0        1 if the block ended with the end code
 *      bits 4 - 6   c in bits 4 and 5, m in bit 6
 *      bits 8 - 15  scan position of the last coefficient stored, 0 if only the DC was
 *      bits 16 - 19 QNO
 *
 *  and 0 in all others.
 *
 *  Memory. pStream must have 408 readable bytes: the last ones are read, and do not count. Exactly the words of
 *  pBlockParam are written, and nothing outside of the coefficients. There is no alignment but that of elements.
 *
 *  Tables. pZigzagTables, two scans of 64 bytes one behind the other, and pHuffTable are there for callers that hold
 *  them. The functions use the constant tables of the standards and do not read either: both may be null.
 *
 *  Status. Null pointers are tested in the order of the arguments, those named with each function; nothing is written
 *  then. */
#ifndef MOXVC_DV_SEGMENT_H
#define MOXVC_DV_SEGMENT_H

#include "moxvc/types.h"

MOX_BEGIN_DECLS

/** Builds a decoding table out of two lists of codes.
 *
 *  A list: word 0 has the index width b of the table in its low byte; words 1 and 2 are not read; then for each length
 *  L from 1 to b a word with the number of codes, and three words for each code: the code, the run, the level.
 *
 *  The table: 2^b1 entries of pTable1, then 2^b2 of pTable2. An entry has its length in bits 0 to 7, the run in bits 8
 *  to 15, the level times 64 in bits 16 to 31, both cut off to their bits. A code of length L makes 2^(b - L) entries,
 *  from (code << (b - L)) modulo 2^b on; their length is L, in the second table L + 4. A later code replaces an earlier
 *  one. Entries without a code have the length 255 and 0 else.
 *  @param[in]  pTable1,pTable2 lists of codes
 *  @param[out] ppHuffTable     receives the table, to be released with moxiFreeHuffmanTable_DV_32u; null if there is no
 *                              memory
 *  @retval moxStsNullPointer pTable1, pTable2 or ppHuffTable is null
 *  @retval moxStsNoMemory    there is no memory for the table, or it would take 2^31 bytes and more */
MOX_API MoxStatus moxiInitAllocHuffmanTable_DV_32u(const Mox32u* pTable1, const Mox32u* pTable2, Mox32u** ppHuffTable);

/** Releases a table.
 *  @param[in] pHuffTable table of moxiInitAllocHuffmanTable_DV_32u
 *  @retval moxStsNullPointer pHuffTable is null */
MOX_API MoxStatus moxiFreeHuffmanTable_DV_32u(Mox32u* pHuffTable);

/** Decodes a segment of five macroblocks with six blocks each, in three passes.
 *  @param[in]     pStream       the segment, 400 bytes, and 8 bytes more
 *  @param[in]     pZigzagTables not read
 *  @param[in]     pHuffTable    not read
 *  @param[in,out] pDst          30 * 64 coefficients, all 0 before
 *  @param[out]    pBlockParam   30 words
 *  @retval moxStsNullPointer pStream, pDst or pBlockParam is null */
MOX_API MoxStatus moxiHuffmanDecodeSegment_DV_8u16s(const Mox8u* pStream, const Mox8u* pZigzagTables,
                                                    const Mox32u* pHuffTable, Mox16s* pDst, Mox32u* pBlockParam);

/** The same in the first pass alone, with `numCoeffs` scan positions in place of 64: for pictures of a reduced size.
 *  @param[in]     pStream       the segment, 400 bytes, and 8 bytes more
 *  @param[in]     pZigzagTables not read
 *  @param[in]     pHuffTable    not read
 *  @param[in,out] pDst          30 * 64 coefficients, all 0 before
 *  @param[out]    pBlockParam   30 words
 *  @param         numCoeffs     scan positions of a block, the DC's among them: 1 to 64. It is not tested; less counts
 *                               as 1, more as 64
 *  @retval moxStsNullPointer pStream, pDst or pBlockParam is null */
MOX_API MoxStatus moxiHuffmanDecodeSegmentOnePass_DV_8u16s(const Mox8u* pStream, const Mox8u* pZigzagTables,
                                                           const Mox32u* pHuffTable, Mox16s* pDst, Mox32u* pBlockParam,
                                                           Mox32s numCoeffs);

/** Decodes a segment of five macroblocks with eight blocks each, in three passes.
 *  @param[in]     pStream       the segment, 400 bytes, and 8 bytes more
 *  @param[in]     pZigzagTables not read
 *  @param[in]     pHuffTable    not read
 *  @param[in,out] pDst          40 * 64 coefficients, all 0 before
 *  @param[out]    pBlockParam   40 words
 *  @retval moxStsNullPointer pStream, pDst or pBlockParam is null */
MOX_API MoxStatus moxiHuffmanDecodeSegment_DV100_8u16s(const Mox8u* pStream, const Mox8u* pZigzagTables,
                                                       const Mox32u* pHuffTable, Mox16s* pDst, Mox32u* pBlockParam);

MOX_END_DECLS

#endif
