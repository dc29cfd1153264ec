#include "avs/coefficients_px.hpp"
#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "moxvc/avs_coefficients.h"

using namespace mox;

namespace {

template <const px::AvsFamily& kFamily>
MoxStatus decode(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox32s* pNumCoeff, Mox16s* pDstCoeffs,
                 Mox32u scanType) {
  if (any_null(ppBitStream) || any_null(*ppBitStream, pBitOffset, pNumCoeff, pDstCoeffs)) return moxStsNullPointer;
  return active::decode_avs_block<kFamily>(ppBitStream, pBitOffset, pNumCoeff, pDstCoeffs, scanType);
}

}  // namespace

MoxStatus moxiDecodeLumaBlockIntra_AVS_1u16s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox32s* pNumCoeff,
                                             Mox16s* pDstCoeffs, Mox32u scanType) {
  return decode<active::kAvsLumaIntra>(ppBitStream, pBitOffset, pNumCoeff, pDstCoeffs, scanType);
}

MoxStatus moxiDecodeLumaBlockInter_AVS_1u16s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox32s* pNumCoeff,
                                             Mox16s* pDstCoeffs, Mox32u scanType) {
  return decode<active::kAvsLumaInter>(ppBitStream, pBitOffset, pNumCoeff, pDstCoeffs, scanType);
}

MoxStatus moxiDecodeChromaBlock_AVS_1u16s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox32s* pNumCoeff,
                                          Mox16s* pDstCoeffs, Mox32u scanType) {
  return decode<active::kAvsChroma>(ppBitStream, pBitOffset, pNumCoeff, pDstCoeffs, scanType);
}
