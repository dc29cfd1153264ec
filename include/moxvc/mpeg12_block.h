/** @file
 *  MPEG-1/2 DCT coefficients (ISO/IEC 11172-2 2.4.3.6 and 2.4.4, ISO/IEC 13818-2 6.2.6 and 7.2 to 7.4): block decoding
 *  with inverse scan and dequantisation, and run-level encoding.
 *
 *  Blocks are 64 coefficients in raster order, `pScanMatrix` 64 raster positions (0 to 63, each once) in the order of
 *  the stream, weights 64 values in raster order. Arrays need the alignment of their elements only.
 *
 *  Codes. Coefficient tables are made from run-level descriptions (huffman.h): each code with its sign bit as its last
 *  bit, so that both signs of a level have an entry; run 254 for end of block, run 255 for escape. Decoders take the
 *  level as 8 bits, -128 to 127. DC sizes are single values.
 *
 *  Reading position. `*ppBitStream` is the 32-bit word with the next bit, `*pBitOffset` the index of that bit, 31
 *  (first) to 0 (last of the word), not tested; words are in the machine's order, the stream's first byte most
 *  significant. The word behind the one of the block's last bit may be read, so the caller pads by one word.
 *
 *  Writing position. `*pBitOffset` is the number of free bits of the word `*ppBitStream`, 32 (empty) to 1, not tested:
 *  one more than the reading offset of the same place. Bits are OR-ed into the word that is begun; a further word is
 *  assigned when a code reaches into it, but OR-ed into when a code begins there. So the caller clears the buffer. A
 *  word is not touched before a bit of it is written.
 *
 *  A decoder clears the block, then reads
 *
 *      intra      the DC size s and s bits d: the difference is 0 for s = 0, d if d's first bit is 1, else
 *                 d + 1 - 2^s, as 16 bits. Its sum with *pDCPred, 16 bits that wrap, is the new *pDCPred
 *      non-intra  1s for a first level of 1 or -1 (s = 1), otherwise a code of pFirstTable. That may be the same table
 *                 as pACTable, since no code of it that begins with 1 is looked for
 *      all        codes of pACTable up to end of block; the first coefficient of a non-intra block may end it as well
 *
 *  and stores each level l at its scan position, w being the weight there, q = quantScale, in 32 bits that wrap, /
 *  towards zero and sgn(0) = 0:
 *
 *      MPEG-1 intra      (2 * l * q * w) / 16               an even value other than 0 moves by 1 towards 0,
 *      MPEG-1 non-intra  ((2 * l + sgn(l)) * q * w) / 16    then it is limited to -2048..2047
 *      MPEG-2 intra      (2 * l * q * w) / 32               the low 16 bits are stored; there is no limit
 *      MPEG-2 non-intra  ((2 * l + sgn(l)) * q * w) / 32
 *
 *  MPEG-2 blocks end with mismatch control: if the sum of all 64 coefficients is even, coefficient 63 changes from odd
 *  to the even value below, or from even to the odd value above.
 *
 *  Corrupt data. A code that is none, a scan index beyond 63, and a DC size above 32 end the call with
 *  moxStsBadBitstream: the position is behind the code read last, fields of an escape included (behind the bits that
 *  were read minus one for what is no code), the coefficients stored so far stay, mismatch control is not done,
 *  *pDstSize is as it was, *pDCPred is the new one if there was a DC size. A call reads 65 codes at most.
 *
 *  Status. Pointers are tested, `*ppBitStream` among them; when one is null, nothing is changed. Nothing else is
 *  tested. */
#ifndef MOXVC_MPEG12_BLOCK_H
#define MOXVC_MPEG12_BLOCK_H

#include "huffman.h"
#include "types.h"

MOX_BEGIN_DECLS

/** Codes by run and level, for encoding: an array of 32-bit words.
 *
 *      [0]               bits 0 to 9 code << 4 | length of the escape code, bits 10 to 19 the same of the end-of-block
 *                        code, bits 20 and up maxRun, the largest run with a code of its own (0 if there is none)
 *      [1 + r]           for run r, 0 to maxRun: byte offset of its section's header from the start of the table
 *      header            largest level of that run, -1 if the run has no code
 *      header + level    (in words, level signed and not 0) code << 16 | length
 *
 *  Section 0 has its header at word n0 / 2 + maxRun + 2, and each further one nr / 2 + ns / 2 + 1 words behind the
 *  header before, where n is a run's number of codes. The table has 2 * maxRun + all codes + 3 words. */
typedef Mox32s MoxRLEncodeTable;

/** Builds a table for encoding from a run-level description (huffman.h). Codes have up to 16 significant bits and are
 *  up to 32 bits long; each run's levels are 1 to n and -1 to -n without a gap. The layout of the description is
 *  trusted. A wrong one gives a wrong table, in which no header allows a level outside the table: runs are cut to 8
 *  bits, a level without a place in the table and a code longer than 32 bits are left out (and written as escapes).
 *  @param[in]  pSpec   description
 *  @param[out] ppTable the new table; release it with moxiHuffmanTableFree_32s
 *  @retval moxStsNullPointer pSpec or ppTable is null
 *  @retval moxStsNoMemory    there is no memory; *ppTable is unchanged */
MOX_API MoxStatus moxiCreateRLEncodeTable(const MoxVlcSpec* pSpec, MoxRLEncodeTable** ppTable);

/** Decodes an MPEG-1 intra block. The difference of the DC counts 8 times, and coefficient 0 is the new *pDCPred.
 *  @param[in,out] ppBitStream,pBitOffset position of the DC size; moved behind the block
 *  @param[in]     pDCSizeTable  single-value table of DC sizes
 *  @param[in]     pACTable      run-level table. Escape: 6 bits run, 8 bits signed level b; for b = 0 and b = -128
 *                               follow 8 bits c, and the level is c and c - 256
 *  @param[in]     pScanMatrix   raster positions
 *  @param         quantScale    quantiser scale, any value
 *  @param[in]     pQuantMatrix  weights
 *  @param[in,out] pDCPred       DC predictor
 *  @param[out]    pDstBlock     coefficients
 *  @param[out]    pDstSize      scan index of the last coefficient, 0 to 63
 *  @retval moxStsNullPointer  a pointer or *ppBitStream is null
 *  @retval moxStsBadBitstream corrupt data, see above */
MOX_API MoxStatus moxiReconstructDCTBlockIntra_MPEG1_32s(const Mox32u** ppBitStream, Mox32s* pBitOffset,
                                                         const MoxVlcTable* pDCSizeTable, const MoxVlcTable* pACTable,
                                                         const Mox32s* pScanMatrix, Mox32s quantScale,
                                                         const Mox16s* pQuantMatrix, Mox16s* pDCPred, Mox16s* pDstBlock,
                                                         Mox32s* pDstSize);

/** Decodes an MPEG-2 intra block; as moxiReconstructDCTBlockIntra_MPEG1_32s except for the difference of the DC, which
 *  counts once, and the escape: 6 bits run, 12 bits signed level.
 *  @param shiftDC coefficient 0 is the low 16 bits of *pDCPred << shiftDC: 3 - intra_dc_precision. Modulo 32 */
MOX_API MoxStatus moxiReconstructDCTBlockIntra_MPEG2_32s(const Mox32u** ppBitStream, Mox32s* pBitOffset,
                                                         const MoxVlcTable* pDCSizeTable, const MoxVlcTable* pACTable,
                                                         const Mox32s* pScanMatrix, Mox32s quantScale,
                                                         const Mox16s* pQuantMatrix, Mox16s* pDCPred, Mox32s shiftDC,
                                                         Mox16s* pDstBlock, Mox32s* pDstSize);

/** Decodes an MPEG-1 non-intra block.
 *  @param[in,out] ppBitStream,pBitOffset position of the first coefficient; moved behind the block
 *  @param[in]     pFirstTable  run-level table for a first code that begins with 0
 *  @param[in]     pACTable     run-level table. Escape as in moxiReconstructDCTBlockIntra_MPEG1_32s
 *  @param[in]     pScanMatrix  raster positions
 *  @param         quantScale   quantiser scale, any value
 *  @param[in]     pQuantMatrix weights
 *  @param[out]    pDstBlock    coefficients
 *  @param[out]    pDstSize     scan index of the last coefficient, 0 to 63; -1 if an end of block came first
 *  @retval moxStsNullPointer  a pointer or *ppBitStream is null
 *  @retval moxStsBadBitstream corrupt data, see above */
MOX_API MoxStatus moxiReconstructDCTBlock_MPEG1_32s(const Mox32u** ppBitStream, Mox32s* pBitOffset,
                                                    const MoxVlcTable* pFirstTable, const MoxVlcTable* pACTable,
                                                    const Mox32s* pScanMatrix, Mox32s quantScale,
                                                    const Mox16s* pQuantMatrix, Mox16s* pDstBlock, Mox32s* pDstSize);

/** Decodes an MPEG-2 non-intra block; as moxiReconstructDCTBlock_MPEG1_32s except for the escape, 6 bits run and 12
 *  bits signed level, and for *pDstSize, which is 1 where the last coefficient is the first one. */
MOX_API MoxStatus moxiReconstructDCTBlock_MPEG2_32s(const Mox32u** ppBitStream, Mox32s* pBitOffset,
                                                    const MoxVlcTable* pFirstTable, const MoxVlcTable* pACTable,
                                                    const Mox32s* pScanMatrix, Mox32s quantScale,
                                                    const Mox16s* pQuantMatrix, Mox16s* pDstBlock, Mox32s* pDstSize);

/** Writes an intra block: the DC size s, the bit length of |d| with d = pSrcBlock[0] - *pDCPred; s bits of d, or of
 *  d - 1 if d is negative; the next `count` coefficients other than 0; the end of the block. A coefficient is written
 *  with its code and, where its run and level have none, as an MPEG-2 escape: 000001, whatever the table says, 6 bits
 *  run, the low 12 bits of the level.
 *  @param[in,out] ppBitStream,pBitOffset writing position; moved behind the block
 *  @param[in]     pSrcBlock   coefficients
 *  @param[in,out] pDCPred     DC predictor; becomes pSrcBlock[0]
 *  @param[in]     pDCTable    for each DC size from 0 that can occur the code and its length, 1 to 32; not tested
 *  @param[in]     pACTable    table of moxiCreateRLEncodeTable
 *  @param[in]     pScanMatrix raster positions
 *  @param         eobLength   length of the end-of-block code, 32 at most; below 1 none is written
 *  @param         eobCode     end-of-block code
 *  @param         count       number of coefficients other than 0 behind the first. With fewer, those of the lowest
 *                             scan positions are written; with more, all. 0 and below: none
 *  @retval moxStsNullPointer a pointer or *ppBitStream is null */
MOX_API MoxStatus moxiPutIntraBlock(Mox32u** ppBitStream, Mox32s* pBitOffset, const Mox16s* pSrcBlock, Mox32s* pDCPred,
                                    const Mox32u* pDCTable, const MoxRLEncodeTable* pACTable, const Mox32s* pScanMatrix,
                                    Mox32s eobLength, Mox32u eobCode, Mox32s count);

/** Writes a non-intra block: as moxiPutIntraBlock, but with pSrcBlock[0] as the first coefficient, written as 10 for 1
 *  and 11 for -1, otherwise with its code or an escape, whatever `count` is.
 *  @param count number of coefficients other than 0, the first one included */
MOX_API MoxStatus moxiPutNonIntraBlock(Mox32u** ppBitStream, Mox32s* pBitOffset, const Mox16s* pSrcBlock,
                                       const MoxRLEncodeTable* pACTable, const Mox32s* pScanMatrix, Mox32s eobLength,
                                       Mox32u eobCode, Mox32s count);

MOX_END_DECLS

#endif
