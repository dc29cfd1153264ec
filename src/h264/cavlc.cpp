#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "h264/cavlc_px.hpp"
#include "moxvc/h264_cavlc.h"

using namespace mox;

namespace {

template <class Coeff>
MoxStatus coeffs(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox16s* pNumCoeff, Coeff** ppDstCoeffs,
                 Mox32s uVLCSelect, Mox16s uMaxNumCoeff, const MoxVlcTable* const* ppTblCoeffToken,
                 const MoxVlcTable* const* ppTblTotalZeros, const MoxVlcTable* const* ppTblRunBefore,
                 const Mox32s* pScanMatrix) {
  if (any_null(ppBitStream, pBitOffset, ppDstCoeffs, pNumCoeff, ppTblCoeffToken, ppTblTotalZeros, ppTblRunBefore,
               pScanMatrix)) {
    return moxStsNullPointer;
  }
  if (any_null(*ppBitStream, *ppDstCoeffs)) return moxStsNullPointer;
  if (outside(uMaxNumCoeff, 15, 16)) return moxStsOutOfRange;
  if (uVLCSelect < 0) return moxStsOutOfRange;
  return active::decode_coeffs(ppBitStream, pBitOffset, pNumCoeff, ppDstCoeffs, uVLCSelect, ppTblCoeffToken,
                               active::RunTables{ppTblTotalZeros, ppTblRunBefore},
                               active::ScanBlock{uMaxNumCoeff, pScanMatrix + (16 - uMaxNumCoeff)});
}

template <class Block, class Coeff>
MoxStatus chroma_dc(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox16s* pNumCoeff, Coeff** ppDstCoeffs,
                    const MoxVlcTable* pTblCoeffToken, const MoxVlcTable* const* ppTblTotalZerosCR,
                    const MoxVlcTable* const* ppTblRunBefore) {
  if (any_null(ppBitStream, pBitOffset, pNumCoeff, ppDstCoeffs, pTblCoeffToken, ppTblTotalZerosCR, ppTblRunBefore)) {
    return moxStsNullPointer;
  }
  if (any_null(*ppBitStream, *ppDstCoeffs)) return moxStsNullPointer;
  return active::decode_chroma_dc<Block>(WordWindow::of_two_words({*ppBitStream, *pBitOffset}), ppBitStream, pBitOffset,
                                         pNumCoeff, ppDstCoeffs, pTblCoeffToken,
                                         active::RunTables{ppTblTotalZerosCR, ppTblRunBefore});
}

}  // namespace

MoxStatus moxiDecodeCAVLCCoeffs_H264_1u16s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox16s* pNumCoeff,
                                           Mox16s** ppDstCoeffs, Mox32s uVLCSelect, Mox16s uMaxNumCoeff,
                                           const MoxVlcTable* const* ppTblCoeffToken,
                                           const MoxVlcTable* const* ppTblTotalZeros,
                                           const MoxVlcTable* const* ppTblRunBefore, const Mox32s* pScanMatrix) {
  return coeffs(ppBitStream, pBitOffset, pNumCoeff, ppDstCoeffs, uVLCSelect, uMaxNumCoeff, ppTblCoeffToken,
                ppTblTotalZeros, ppTblRunBefore, pScanMatrix);
}

MoxStatus moxiDecodeCAVLCCoeffs_H264_1u32s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox16s* pNumCoeff,
                                           Mox32s** ppDstCoeffs, Mox32s uVLCSelect, Mox16s uMaxNumCoeff,
                                           const MoxVlcTable* const* ppTblCoeffToken,
                                           const MoxVlcTable* const* ppTblTotalZeros,
                                           const MoxVlcTable* const* ppTblRunBefore, const Mox32s* pScanMatrix) {
  return coeffs(ppBitStream, pBitOffset, pNumCoeff, ppDstCoeffs, uVLCSelect, uMaxNumCoeff, ppTblCoeffToken,
                ppTblTotalZeros, ppTblRunBefore, pScanMatrix);
}

MoxStatus moxiDecodeCAVLCChromaDcCoeffs_H264_1u16s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox16s* pNumCoeff,
                                                   Mox16s** ppDstCoeffs, const MoxVlcTable* pTblCoeffToken,
                                                   const MoxVlcTable* const* ppTblTotalZerosCR,
                                                   const MoxVlcTable* const* ppTblRunBefore) {
  if (any_null(ppBitStream, pBitOffset, pNumCoeff)) return moxStsNullPointer;
  return active::decode_chroma_dc_by_peek(ppBitStream, pBitOffset, pNumCoeff, ppDstCoeffs, pTblCoeffToken,
                                          active::RunTables{ppTblTotalZerosCR, ppTblRunBefore});
}

MoxStatus moxiDecodeCAVLCChromaDcCoeffs_H264_1u32s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox16s* pNumCoeff,
                                                   Mox32s** ppDstCoeffs, const MoxVlcTable* pTblCoeffToken,
                                                   const MoxVlcTable* const* ppTblTotalZerosCR,
                                                   const MoxVlcTable* const* ppTblRunBefore) {
  return chroma_dc<active::Dc2x2Block>(ppBitStream, pBitOffset, pNumCoeff, ppDstCoeffs, pTblCoeffToken,
                                       ppTblTotalZerosCR, ppTblRunBefore);
}

MoxStatus moxiDecodeCAVLCChroma422DcCoeffs_H264_1u16s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox16s* pNumCoeff,
                                                      Mox16s** ppDstCoeffs, const MoxVlcTable* pTblCoeffToken,
                                                      const MoxVlcTable* const* ppTblTotalZerosCR,
                                                      const MoxVlcTable* const* ppTblRunBefore) {
  return chroma_dc<active::Dc2x4Block>(ppBitStream, pBitOffset, pNumCoeff, ppDstCoeffs, pTblCoeffToken,
                                       ppTblTotalZerosCR, ppTblRunBefore);
}

MoxStatus moxiDecodeCAVLCChroma422DcCoeffs_H264_1u32s(const Mox32u** ppBitStream, Mox32s* pBitOffset, Mox16s* pNumCoeff,
                                                      Mox32s** ppDstCoeffs, const MoxVlcTable* pTblCoeffToken,
                                                      const MoxVlcTable* const* ppTblTotalZerosCR,
                                                      const MoxVlcTable* const* ppTblRunBefore) {
  return chroma_dc<active::Dc2x4Block>(ppBitStream, pBitOffset, pNumCoeff, ppDstCoeffs, pTblCoeffToken,
                                       ppTblTotalZerosCR, ppTblRunBefore);
}
