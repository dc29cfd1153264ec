#include "moxvc/h264_cavlc_analysis.h"

#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "h264/cavlc_analysis_px.hpp"

using namespace mox;

namespace {
using Results16 = px::CavlcResults<Mox16s>;
using Results32 = px::CavlcResults<Mox32s>;

constexpr Mox32s kLastPosition = 15;
}  // namespace

MoxStatus moxiEncodeCoeffsCAVLC_H264_16s(const Mox16s* pSrc, Mox32s firstPos, const Mox32s* pScan, Mox32s lastPos,
                                         Mox8u* pTrailingOnes, Mox8u* pTrailingOneSigns, Mox8u* pNumOutCoeffs,
                                         Mox8u* pTotalZeros, Mox16s* pLevels, Mox8u* pRuns) {
  const Mox32s first = firstPos & 0xFF, last = lastPos & 0xFF;
  if (any_null(pSrc, pScan, pTrailingOnes, pTrailingOneSigns, pNumOutCoeffs, pTotalZeros, pLevels, pRuns)) {
    return moxStsNullPointer;
  }
  if (last > kLastPosition || last < first) return moxStsOutOfRange;
  return active::analyse_scanned(
      pSrc, first, pScan, last,
      Results16{pTrailingOnes, pTrailingOneSigns, pNumOutCoeffs, pTotalZeros, pLevels, pRuns});
}

MoxStatus moxiEncodeCoeffsCAVLC_H264_32s(const Mox32s* pSrc, Mox32s firstPos, const Mox32s* pScan, Mox32s lastPos,
                                         Mox8u* pTrailingOnes, Mox8u* pTrailingOneSigns, Mox8u* pNumOutCoeffs,
                                         Mox8u* pTotalZeros, Mox32s* pLevels, Mox8u* pRuns) {
  if (any_null(pSrc, pScan, pTrailingOnes, pTrailingOneSigns, pNumOutCoeffs, pTotalZeros, pLevels, pRuns)) {
    return moxStsNullPointer;
  }
  if (lastPos > kLastPosition || lastPos < firstPos) return moxStsOutOfRange;
  return active::analyse_scanned(
      pSrc, firstPos, pScan, lastPos,
      Results32{pTrailingOnes, pTrailingOneSigns, pNumOutCoeffs, pTotalZeros, pLevels, pRuns});
}

MoxStatus moxiEncodeChromaDcCoeffsCAVLC_H264_16s(const Mox16s* pSrc, Mox8u* pTrailingOnes, Mox8u* pTrailingOneSigns,
                                                 Mox8u* pNumOutCoeffs, Mox8u* pTotalZeros, Mox16s* pLevels,
                                                 Mox8u* pRuns) {
  const Results16 results{pTrailingOnes, pTrailingOneSigns, pNumOutCoeffs, pTotalZeros, pLevels, pRuns};
  if (any_null(pSrc, pTrailingOnes, pTrailingOneSigns, pNumOutCoeffs, pTotalZeros, pLevels, pRuns)) {
    return moxStsNullPointer;
  }
  return active::analyse_2x2(pSrc, results);
}

MoxStatus moxiEncodeCoeffsCAVLCChromaDC2x2_H264_32s(const Mox32s* pSrc, Mox8u* pTrailingOnes, Mox8u* pTrailingOneSigns,
                                                    Mox8u* pNumOutCoeffs, Mox8u* pTotalZeros, Mox32s* pLevels,
                                                    Mox8u* pRuns) {
  const Results32 results{pTrailingOnes, pTrailingOneSigns, pNumOutCoeffs, pTotalZeros, pLevels, pRuns};
  if (any_null(pSrc, pTrailingOnes, pTrailingOneSigns, pNumOutCoeffs, pTotalZeros, pLevels, pRuns)) {
    return moxStsNullPointer;
  }
  return active::analyse_2x2(pSrc, results);
}

MoxStatus moxiEncodeCoeffsCAVLCChromaDC2x4_H264_16s(const Mox16s* pSrc, Mox8u* pTrailingOnes, Mox8u* pTrailingOneSigns,
                                                    Mox8u* pNumOutCoeffs, Mox8u* pTotalZeros, Mox16s* pLevels,
                                                    Mox8u* pRuns) {
  const Results16 results{pTrailingOnes, pTrailingOneSigns, pNumOutCoeffs, pTotalZeros, pLevels, pRuns};
  if (any_null(pSrc, pTrailingOnes, pTrailingOneSigns, pNumOutCoeffs, pTotalZeros, pLevels, pRuns)) {
    return moxStsNullPointer;
  }
  return active::analyse_2x4(pSrc, results);
}

MoxStatus moxiEncodeCoeffsCAVLCChromaDC2x4_H264_32s(const Mox32s* pSrc, Mox8u* pTrailingOnes, Mox8u* pTrailingOneSigns,
                                                    Mox8u* pNumOutCoeffs, Mox8u* pTotalZeros, Mox32s* pLevels,
                                                    Mox8u* pRuns) {
  const Results32 results{pTrailingOnes, pTrailingOneSigns, pNumOutCoeffs, pTotalZeros, pLevels, pRuns};
  if (any_null(pSrc, pTrailingOnes, pTrailingOneSigns, pNumOutCoeffs, pTotalZeros, pLevels, pRuns)) {
    return moxStsNullPointer;
  }
  return active::analyse_2x4(pSrc, results);
}
