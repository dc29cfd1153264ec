#include "moxvc/dv_segment.h"

#include "dv/huffman_px.hpp"
#include "dv/segment_px.hpp"
#include "frame/arguments.hpp"
#include "frame/generation.hpp"

using namespace mox;

MoxStatus moxiInitAllocHuffmanTable_DV_32u(const Mox32u* pTable1, const Mox32u* pTable2, Mox32u** ppHuffTable) {
  if (any_null(pTable1, pTable2, ppHuffTable)) return moxStsNullPointer;
  return active::build_dv_table(pTable1, pTable2, ppHuffTable);
}

MoxStatus moxiFreeHuffmanTable_DV_32u(Mox32u* pHuffTable) {
  if (any_null(pHuffTable)) return moxStsNullPointer;
  moxiFree(pHuffTable);
  return moxStsOk;
}

MoxStatus moxiHuffmanDecodeSegment_DV_8u16s(const Mox8u* pStream, const Mox8u* /*pZigzagTables*/,
                                            const Mox32u* /*pHuffTable*/, Mox16s* pDst, Mox32u* pBlockParam) {
  if (any_null(pStream, pDst, pBlockParam)) return moxStsNullPointer;
  return active::dv_decode_segment<active::kDvSixBlocks>(pStream, pDst, pBlockParam);
}

MoxStatus moxiHuffmanDecodeSegmentOnePass_DV_8u16s(const Mox8u* pStream, const Mox8u* /*pZigzagTables*/,
                                                   const Mox32u* /*pHuffTable*/, Mox16s* pDst, Mox32u* pBlockParam,
                                                   Mox32s numCoeffs) {
  if (any_null(pStream, pDst, pBlockParam)) return moxStsNullPointer;
  return active::dv_decode_segment_one_pass(pStream, pDst, pBlockParam, numCoeffs);
}

MoxStatus moxiHuffmanDecodeSegment_DV100_8u16s(const Mox8u* pStream, const Mox8u* /*pZigzagTables*/,
                                               const Mox32u* /*pHuffTable*/, Mox16s* pDst, Mox32u* pBlockParam) {
  if (any_null(pStream, pDst, pBlockParam)) return moxStsNullPointer;
  return active::dv_decode_segment<active::kDvEightBlocks>(pStream, pDst, pBlockParam);
}
