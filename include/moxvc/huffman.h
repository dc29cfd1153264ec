/** @file
 *  Multi-level code tables: built from a plain description, read with the word cursor.
 *
 *  Word cursor. A stream position is the pair of `*ppBitStream`, the 32-bit word that holds the next bit, and
 *  `*pBitOffset`, the index of that bit in the word: 31 is the most significant bit and the first of a word, 0 the
 *  last. Words are in the machine's order: the caller packs each four stream bytes into one word, the first byte most
 *  significant. Reading moves the pair. The functions here do not test the offset. The length of the stream is not
 *  known to them: a read may touch the word behind the one that holds the last bit, so the caller pads by one word.
 *
 *  Description, `MoxVlcSpec`. An array of 32-bit words:
 *
 *      [0]                   not used
 *      [1]                   N, number of table levels
 *      [2] .. [N + 1]        width of each level in bits, root first; their sum reaches the longest code
 *      then for code length 1, 2, 3 and so on
 *                            c, number of codes of this length, 0 or more, and c entries
 *      a negative count      end of the description
 *
 *  An entry is (code, value) for a single-value table and (code, run, level) for a run-level table, the code
 *  right-aligned. Values have 24 bits, runs 8 bits, levels 16 bits. Run 254 is the custom for end of block, run 255 for
 *  escape; the table stores them like any other.
 *
 *  Table, `MoxVlcTable`. A tree of sub-tables in one array of 32-bit words. Word h of a (sub-)table is its width w in
 *  bits, the root being at h = 0; word h + 1 + i is the entry for value i of the next w bits of the stream. The low 8
 *  bits of an entry are its tag. 128 and more: a link, bits 8 and up are the h of the next level. Below 128: a leaf,
 *  the tag is how many of the bits read are to be given back to the stream, bits 8 and up (signed) are the value; a
 *  run-level leaf has the run in bits 8 to 15 and the level in bits 16 to 31. Entries of no code hold 0xF0F101: value
 *  61681, one bit to give back.
 *
 *  Tables are not changed by reading: any number of threads may share one. */
#ifndef MOXVC_HUFFMAN_H
#define MOXVC_HUFFMAN_H

#include "types.h"

MOX_BEGIN_DECLS

typedef Mox32s MoxVlcSpec;  /**< description of a set of codes */
typedef Mox32s MoxVlcTable; /**< multi-level table for decoding */

/** Builds a table for single values.
 *
 *  The description's layout is trusted: the counts must be those of the entries that follow, and a negative count must
 *  end it. Its contents are not checked, a wrong one gives a wrong table: of a code wider than its length the low bits
 *  are taken, a code longer than the widths' sum or one that begins with a shorter code is left out, of two equal codes
 *  the later one stands, a negative width counts as 0. Nothing outside the table is written for any of these.
 *  @param[in]  pSpec   description
 *  @param[out] ppTable the new table; release it with moxiHuffmanTableFree_32s
 *  @retval moxStsNullPointer pSpec or ppTable is null
 *  @retval moxStsNoMemory    there is no memory, the description has no codes, or the table would exceed 2^23 words
 *                            (the reach of a link); *ppTable is unchanged */
MOX_API MoxStatus moxiHuffmanTableInitAlloc_32s(const MoxVlcSpec* pSpec, MoxVlcTable** ppTable);

/** Builds a table for pairs of run and level; otherwise as moxiHuffmanTableInitAlloc_32s. */
MOX_API MoxStatus moxiHuffmanRunLevelTableInitAlloc_32s(const MoxVlcSpec* pSpec, MoxVlcTable** ppTable);

/** Releases a table of either builder.
 *  @retval moxStsNullPointer pTable is null */
MOX_API MoxStatus moxiHuffmanTableFree_32s(MoxVlcTable* pTable);

/** Reads one code of a single-value table.
 *  @param[in,out] ppBitStream, pBitOffset stream position, moved behind the code
 *  @param[out]    pValue its value
 *  @param[in]     pTable table
 *  @retval moxStsNullPointer a pointer or *ppBitStream is null; nothing is changed
 *  @retval moxStsBadBitstream no such code: *pValue is 61681 and the position is behind all bits that were read */
MOX_API MoxStatus moxiDecodeHuffmanOne_1u32s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox32s* pValue,
                                             const MoxVlcTable* pTable);

/** Reads one code of a run-level table.
 *  @param[in,out] ppBitStream, pBitOffset stream position, moved behind the code
 *  @param[in]     pTable  table
 *  @param[out]    pFirst  run
 *  @param[out]    pSecond level
 *  @retval moxStsNullPointer a pointer or *ppBitStream is null; nothing is changed
 *  @retval moxStsBadBitstream no such code; nothing is changed */
MOX_API MoxStatus moxiDecodeHuffmanPair_1u16s(const Mox32u** ppBitStream, Mox32s* pBitOffset, const MoxVlcTable* pTable,
                                              Mox8u* pFirst, Mox16s* pSecond);

MOX_END_DECLS

#endif
