#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "moxvc/mpeg12_block.h"
#include "mpeg2/block_decoding_px.hpp"

using namespace mox;

MoxStatus moxiReconstructDCTBlockIntra_MPEG1_32s(const Mox32u** ppBitStream, Mox32s* pBitOffset,
                                                 const MoxVlcTable* pDCSizeTable, const MoxVlcTable* pACTable,
                                                 const Mox32s* pScanMatrix, Mox32s quantScale,
                                                 const Mox16s* pQuantMatrix, Mox16s* pDCPred, Mox16s* pDstBlock,
                                                 Mox32s* pDstSize) {
  if (any_null(ppBitStream, pBitOffset, pDCSizeTable, pACTable, pScanMatrix, pQuantMatrix, pDCPred, pDstBlock,
               pDstSize) ||
      any_null(*ppBitStream))
    return moxStsNullPointer;
  return active::decode_intra_mpeg1(ppBitStream, pBitOffset, pDCSizeTable, pACTable,
                                    {pScanMatrix, quantScale, pQuantMatrix, pDstBlock}, pDCPred, pDstSize);
}

MoxStatus moxiReconstructDCTBlockIntra_MPEG2_32s(const Mox32u** ppBitStream, Mox32s* pBitOffset,
                                                 const MoxVlcTable* pDCSizeTable, const MoxVlcTable* pACTable,
                                                 const Mox32s* pScanMatrix, Mox32s quantScale,
                                                 const Mox16s* pQuantMatrix, Mox16s* pDCPred, Mox32s shiftDC,
                                                 Mox16s* pDstBlock, Mox32s* pDstSize) {
  if (any_null(ppBitStream, pBitOffset, pDCSizeTable, pACTable, pScanMatrix, pQuantMatrix, pDCPred, pDstBlock,
               pDstSize) ||
      any_null(*ppBitStream))
    return moxStsNullPointer;
  return active::decode_intra_mpeg2(ppBitStream, pBitOffset, pDCSizeTable, pACTable,
                                    {pScanMatrix, quantScale, pQuantMatrix, pDstBlock}, pDCPred, shiftDC, pDstSize);
}

MoxStatus moxiReconstructDCTBlock_MPEG1_32s(const Mox32u** ppBitStream, Mox32s* pBitOffset,
                                            const MoxVlcTable* pFirstTable, const MoxVlcTable* pACTable,
                                            const Mox32s* pScanMatrix, Mox32s quantScale, const Mox16s* pQuantMatrix,
                                            Mox16s* pDstBlock, Mox32s* pDstSize) {
  if (any_null(ppBitStream, pBitOffset, pFirstTable, pACTable, pScanMatrix, pQuantMatrix, pDstBlock, pDstSize) ||
      any_null(*ppBitStream))
    return moxStsNullPointer;
  return active::decode_mpeg1(ppBitStream, pBitOffset, pFirstTable, pACTable,
                              {pScanMatrix, quantScale, pQuantMatrix, pDstBlock}, pDstSize);
}

MoxStatus moxiReconstructDCTBlock_MPEG2_32s(const Mox32u** ppBitStream, Mox32s* pBitOffset,
                                            const MoxVlcTable* pFirstTable, const MoxVlcTable* pACTable,
                                            const Mox32s* pScanMatrix, Mox32s quantScale, const Mox16s* pQuantMatrix,
                                            Mox16s* pDstBlock, Mox32s* pDstSize) {
  if (any_null(ppBitStream, pBitOffset, pFirstTable, pACTable, pScanMatrix, pQuantMatrix, pDstBlock, pDstSize) ||
      any_null(*ppBitStream))
    return moxStsNullPointer;
  return active::decode_mpeg2(ppBitStream, pBitOffset, pFirstTable, pACTable,
                              {pScanMatrix, quantScale, pQuantMatrix, pDstBlock}, pDstSize);
}
