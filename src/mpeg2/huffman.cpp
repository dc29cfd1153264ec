#include "moxvc/huffman.h"

#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "mpeg2/huffman_px.hpp"

using namespace mox;

MoxStatus moxiHuffmanTableInitAlloc_32s(const MoxVlcSpec* pSpec, MoxVlcTable** ppTable) {
  if (any_null(pSpec, ppTable)) return moxStsNullPointer;
  return active::build_vlc_table<active::SingleValue>(pSpec, ppTable);
}

MoxStatus moxiHuffmanRunLevelTableInitAlloc_32s(const MoxVlcSpec* pSpec, MoxVlcTable** ppTable) {
  if (any_null(pSpec, ppTable)) return moxStsNullPointer;
  return active::build_vlc_table<active::RunLevel>(pSpec, ppTable);
}

MoxStatus moxiHuffmanTableFree_32s(MoxVlcTable* pTable) {
  if (any_null(pTable)) return moxStsNullPointer;
  moxiFree(pTable);
  return moxStsOk;
}

MoxStatus moxiDecodeHuffmanOne_1u32s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox32s* pValue,
                                     const MoxVlcTable* pTable) {
  if (any_null(ppBitStream, pBitOffset, pValue, pTable) || any_null(*ppBitStream)) return moxStsNullPointer;
  return active::decode_huffman_one(ppBitStream, pBitOffset, pValue, pTable);
}

MoxStatus moxiDecodeHuffmanPair_1u16s(const Mox32u** ppBitStream, Mox32s* pBitOffset, const MoxVlcTable* pTable,
                                      Mox8u* pFirst, Mox16s* pSecond) {
  if (any_null(ppBitStream, pBitOffset, pTable, pFirst, pSecond) || any_null(*ppBitStream)) return moxStsNullPointer;
  return active::decode_huffman_pair(ppBitStream, pBitOffset, pTable, pFirst, pSecond);
}
