#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "moxvc/mpeg12_block.h"
#include "mpeg2/run_level_encoding_px.hpp"

using namespace mox;

MoxStatus moxiCreateRLEncodeTable(const MoxVlcSpec* pSpec, MoxRLEncodeTable** ppTable) {
  if (any_null(pSpec, ppTable)) return moxStsNullPointer;
  return active::build_run_level_table(pSpec, ppTable);
}

MoxStatus moxiPutIntraBlock(Mox32u** ppBitStream, Mox32s* pBitOffset, const Mox16s* pSrcBlock, Mox32s* pDCPred,
                            const Mox32u* pDCTable, const MoxRLEncodeTable* pACTable, const Mox32s* pScanMatrix,
                            Mox32s eobLength, Mox32u eobCode, Mox32s count) {
  if (any_null(ppBitStream, pBitOffset, pSrcBlock, pDCPred, pDCTable, pACTable, pScanMatrix) || any_null(*ppBitStream))
    return moxStsNullPointer;
  return active::put_intra(ppBitStream, pBitOffset, {pSrcBlock, pACTable, pScanMatrix, eobLength, eobCode}, pDCPred,
                           pDCTable, count);
}

MoxStatus moxiPutNonIntraBlock(Mox32u** ppBitStream, Mox32s* pBitOffset, const Mox16s* pSrcBlock,
                               const MoxRLEncodeTable* pACTable, const Mox32s* pScanMatrix, Mox32s eobLength,
                               Mox32u eobCode, Mox32s count) {
  if (any_null(ppBitStream, pBitOffset, pSrcBlock, pACTable, pScanMatrix) || any_null(*ppBitStream))
    return moxStsNullPointer;
  return active::put_non_intra(ppBitStream, pBitOffset, {pSrcBlock, pACTable, pScanMatrix, eobLength, eobCode}, count);
}
