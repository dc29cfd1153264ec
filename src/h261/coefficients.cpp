#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "h261/coefficients_px.hpp"
#include "moxvc/h261.h"

using namespace mox;

MoxStatus moxiDecodeCoeffsIntra_H261_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                           Mox32s* pIndexCoeff, Mox32s scan) {
  if (any_null(ppBitStream, pBitOffset, pCoef, pIndexCoeff) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 7)) return moxStsBadBitOffset;
  return active::decode_intra(ppBitStream, pBitOffset, pCoef, pIndexCoeff, coefficient_scan(scan),
                              active::KeepLevels());
}

MoxStatus moxiDecodeCoeffsInter_H261_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                           Mox32s* pIndexCoeff, Mox32s scan) {
  if (any_null(ppBitStream, pBitOffset, pCoef, pIndexCoeff) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 7)) return moxStsBadBitOffset;
  return active::decode_inter(ppBitStream, pBitOffset, pCoef, pIndexCoeff, coefficient_scan(scan),
                              active::KeepLevels());
}

MoxStatus moxiReconstructCoeffsIntra_H261_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                                Mox32s* pIndexCoeff, Mox32s qp) {
  if (any_null(ppBitStream, pBitOffset, pCoef, pIndexCoeff) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 7)) return moxStsBadBitOffset;
  if (outside(qp, 1, 31)) return moxStsBadQp;
  return active::decode_intra(ppBitStream, pBitOffset, pCoef, pIndexCoeff, ownvc_Zigzag, active::DequantizeLevels{qp});
}

MoxStatus moxiReconstructCoeffsInter_H261_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                                Mox32s* pIndexCoeff, Mox32s qp) {
  if (any_null(ppBitStream, pBitOffset, pCoef, pIndexCoeff) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 7)) return moxStsBadBitOffset;
  if (outside(qp, 1, 31)) return moxStsBadQp;
  return active::decode_inter(ppBitStream, pBitOffset, pCoef, pIndexCoeff, ownvc_Zigzag, active::DequantizeLevels{qp});
}

MoxStatus moxiEncodeCoeffsIntra_H261_16s1u(const Mox16s* pCoeffs, Mox8u** ppBitStream, Mox32s* pBitOffset,
                                           Mox32s countNonZero, Mox32s scan) {
  if (any_null(pCoeffs, ppBitStream, pBitOffset) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 7)) return moxStsBadBitOffset;
  if (outside(countNonZero, 1, 64)) return moxStsOutOfRange;
  return active::encode_intra(pCoeffs, ppBitStream, pBitOffset, countNonZero, coefficient_scan(scan));
}

MoxStatus moxiEncodeCoeffsInter_H261_16s1u(const Mox16s* pCoeffs, Mox8u** ppBitStream, Mox32s* pBitOffset,
                                           Mox32s countNonZero, Mox32s scan) {
  if (any_null(pCoeffs, ppBitStream, pBitOffset) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 7)) return moxStsBadBitOffset;
  if (outside(countNonZero, 1, 64)) return moxStsOutOfRange;
  return active::encode_inter(pCoeffs, ppBitStream, pBitOffset, countNonZero, coefficient_scan(scan));
}
