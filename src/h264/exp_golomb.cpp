#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "h264/exp_golomb_px.hpp"
#include "moxvc/h264_cavlc.h"

using namespace mox;

MoxStatus moxiDecodeExpGolombOne_H264_1u16s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox16s* pDst,
                                            Mox32s isSigned) {
  if (any_null(ppBitStream, pBitOffset, pDst) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 31)) return moxStsBadArg;
  return active::decode_exp_golomb(ppBitStream, pBitOffset, pDst, (isSigned & 0xFF) != 0);
}

MoxStatus moxiDecodeExpGolombOne_H264_1u32s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox32s* pDst,
                                            Mox32s isSigned) {
  if (any_null(ppBitStream, pBitOffset, pDst) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 31)) return moxStsBadArg;
  return active::decode_exp_golomb(ppBitStream, pBitOffset, pDst, isSigned != 0);
}
