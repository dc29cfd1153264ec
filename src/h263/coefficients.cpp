#include "h263/coefficients_px.hpp"

#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "moxvc/h263_coefficients.h"

using namespace mox;

MoxStatus moxiDecodeCoeffsIntra_H263_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                           Mox32s* pIndexCoeff, Mox32s advIntraFlag, Mox32s modQuantFlag, Mox32s scan) {
  if (any_null(ppBitStream, pBitOffset, pCoef, pIndexCoeff) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 7)) return moxStsBadBitOffset;
  return active::decode_intra({ppBitStream, pBitOffset}, pCoef, pIndexCoeff, advIntraFlag != 0, modQuantFlag != 0,
                              scan);
}

MoxStatus moxiDecodeCoeffsInter_H263_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                           Mox32s* pIndexCoeff, Mox32s modQuantFlag, Mox32s scan) {
  if (any_null(ppBitStream, pBitOffset, pCoef, pIndexCoeff) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 7)) return moxStsBadBitOffset;
  return active::decode_inter({ppBitStream, pBitOffset}, pCoef, pIndexCoeff, modQuantFlag != 0, scan);
}

MoxStatus moxiDecodeDCIntra_H263_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pDC) {
  if (any_null(ppBitStream, pBitOffset, pDC) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 7)) return moxStsBadBitOffset;
  return active::decode_dc({ppBitStream, pBitOffset}, pDC);
}

MoxStatus moxiReconstructCoeffsIntra_H263_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                                Mox32s* pIndexCoeff, Mox32s cbp, Mox32s qp, Mox32s advIntraFlag,
                                                Mox32s scan, Mox32s modQuantFlag) {
  if (any_null(ppBitStream, pBitOffset, pCoef, pIndexCoeff) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 7)) return moxStsBadBitOffset;
  if (outside(qp, 1, 31)) return moxStsBadQp;
  const active::ReadPosition at{ppBitStream, pBitOffset};
  if (advIntraFlag) return active::reconstruct_advanced(at, pCoef, pIndexCoeff, qp, scan, modQuantFlag != 0);
  return active::reconstruct_intra(at, pCoef, pIndexCoeff, cbp != 0, qp, modQuantFlag != 0);
}

MoxStatus moxiReconstructCoeffsInter_H263_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                                Mox32s* pIndexCoeff, Mox32s qp, Mox32s modQuantFlag) {
  if (any_null(ppBitStream, pBitOffset, pCoef, pIndexCoeff) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 7)) return moxStsBadBitOffset;
  if (outside(qp, 1, 31)) return moxStsBadQp;
  return active::reconstruct_inter({ppBitStream, pBitOffset}, pCoef, pIndexCoeff, qp, modQuantFlag != 0);
}

MoxStatus moxiEncodeCoeffsIntra_H263_16s1u(const Mox16s* pCoeffs, Mox8u** ppBitStream, Mox32s* pBitOffset,
                                           Mox32s countNonZero, Mox32s advIntraFlag, Mox32s modQuantFlag, Mox32s scan) {
  if (any_null(pCoeffs, ppBitStream, pBitOffset) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 7)) return moxStsBadBitOffset;
  if (outside(countNonZero, 1, 64)) return moxStsOutOfRange;
  return active::encode_intra(pCoeffs, ppBitStream, pBitOffset, countNonZero, advIntraFlag != 0, modQuantFlag != 0,
                              scan);
}

MoxStatus moxiEncodeCoeffsInter_H263_16s1u(const Mox16s* pCoeffs, Mox8u** ppBitStream, Mox32s* pBitOffset,
                                           Mox32s countNonZero, Mox32s modQuantFlag, Mox32s scan) {
  if (any_null(pCoeffs, ppBitStream, pBitOffset) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 7)) return moxStsBadBitOffset;
  if (outside(countNonZero, 1, 64)) return moxStsOutOfRange;
  return active::encode_inter(pCoeffs, ppBitStream, pBitOffset, countNonZero, modQuantFlag != 0, scan);
}

MoxStatus moxiEncodeDCIntra_H263_16s1u(Mox16s dcCoeff, Mox8u** ppBitStream, Mox32s* pBitOffset) {
  if (any_null(ppBitStream, pBitOffset) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 7)) return moxStsBadBitOffset;
  return active::encode_dc(dcCoeff, ppBitStream, pBitOffset);
}
