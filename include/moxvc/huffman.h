/** @file
 *  Multi-level code tables: built from a plain description, read with the word cursor. */
#ifndef MOXVC_HUFFMAN_H
#define MOXVC_HUFFMAN_H

#include "types.h"

MOX_BEGIN_DECLS

typedef Mox32s MoxVlcSpec;
typedef Mox32s MoxVlcTable;

MOX_API MoxStatus moxiHuffmanTableInitAlloc_32s(const MoxVlcSpec* pSpec, MoxVlcTable** ppTable);
MOX_API MoxStatus moxiHuffmanRunLevelTableInitAlloc_32s(const MoxVlcSpec* pSpec, MoxVlcTable** ppTable);
MOX_API MoxStatus moxiHuffmanTableFree_32s(MoxVlcTable* pTable);
MOX_API MoxStatus moxiDecodeHuffmanOne_1u32s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox32s* pValue,
                                             const MoxVlcTable* pTable);
MOX_API MoxStatus moxiDecodeHuffmanPair_1u16s(const Mox32u** ppBitStream, Mox32s* pBitOffset, const MoxVlcTable* pTable,
                                              Mox8u* pFirst, Mox16s* pSecond);

MOX_END_DECLS

#endif
