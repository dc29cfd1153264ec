#include "moxvc/mpeg4_coefficients.h"

#include "frame/arguments.hpp"
#include "frame/generation.hpp"
#include "frame/scan_px.hpp"
#include "frame/state_record.hpp"
#include "mpeg4/coefficient_writing_px.hpp"
#include "mpeg4/coefficients_px.hpp"
#include "mpeg4/reversible_px.hpp"

using namespace mox;

namespace {

/// The scan index that the levels of an intra block follow: with noDCFlag the DC is none of them.
constexpr Mox32s start_index(Mox32s noDCFlag) { return noDCFlag ? 0 : -1; }

/// The scans that inter blocks know, and what other selectors stand for.
const ScanTable& inter_scan(Mox32s scan, const ScanTable& other) {
  return scan == 0 ? ownvc_Zigzag : scan == 1 ? ownvc_AltScanV : other;
}

/// Writers take only -1 for no scan.
const ScanTable& writing_scan(Mox32s scan) { return scan == -1 ? active::kNoScan : active::scan_table(scan); }

}  // namespace

MoxStatus moxiDecodeCoeffsIntra_MPEG4_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                            Mox32s* pIndexCoeff, Mox32s rvlcFlag, Mox32s noDCFlag, Mox32s scan) {
  if (any_null(ppBitStream, pBitOffset, pCoef, pIndexCoeff) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 7)) return moxStsBadBitOffset;
  const Mox32s start = start_index(noDCFlag);
  const ScanTable& table = active::scan_or_none(scan);
  return rvlcFlag
             ? active::decode_reversible(ppBitStream, pBitOffset, pCoef, start, pIndexCoeff, table, kReversibleIntra)
             : active::decode_texture(ppBitStream, pBitOffset, pCoef, start, pIndexCoeff, table, kIntraTexture);
}

MoxStatus moxiDecodeCoeffsInter_MPEG4_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                            Mox32s* pIndexCoeff, Mox32s rvlcFlag, Mox32s scan) {
  if (any_null(ppBitStream, pBitOffset, pCoef, pIndexCoeff) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 7)) return moxStsBadBitOffset;
  const ScanTable& table = inter_scan(scan, active::kNoScan);
  return rvlcFlag ? active::decode_reversible(ppBitStream, pBitOffset, pCoef, -1, pIndexCoeff, table, kReversibleInter)
                  : active::decode_texture(ppBitStream, pBitOffset, pCoef, -1, pIndexCoeff, table, kInterTexture);
}

MoxStatus moxiDecodeCoeffsIntraRVLCBack_MPEG4_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                                    Mox32s* pIndexCoeff, Mox32s noDCFlag) {
  if (any_null(ppBitStream, pBitOffset, pCoef, pIndexCoeff) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 7)) return moxStsBadBitOffset;
  return active::decode_backwards(ppBitStream, pBitOffset, pCoef, start_index(noDCFlag), pIndexCoeff,
                                  kReversibleIntra.backward);
}

MoxStatus moxiDecodeCoeffsInterRVLCBack_MPEG4_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                                    Mox32s* pIndexCoeff) {
  if (any_null(ppBitStream, pBitOffset, pCoef, pIndexCoeff) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 7)) return moxStsBadBitOffset;
  return active::decode_backwards(ppBitStream, pBitOffset, pCoef, -1, pIndexCoeff, kReversibleInter.backward);
}

MoxStatus moxiDecodeDCIntra_MPEG4_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pDC, Mox32s blockType) {
  if (any_null(ppBitStream, pBitOffset, pDC) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 7)) return moxStsBadBitOffset;
  return active::decode_texture_dc(ppBitStream, pBitOffset, pDC, blockType != 0);
}

// With rvlcFlag the record is the quantiser's to test, behind the block.
MoxStatus moxiReconstructCoeffsInter_MPEG4_1u16s(const Mox8u** ppBitStream, Mox32s* pBitOffset, Mox16s* pCoef,
                                                 Mox32s* pIndexCoeff, Mox32s rvlcFlag, Mox32s scan,
                                                 const MoxiQuantInvState* pQuantInvInterSpec, Mox32s qp) {
  if (any_null(ppBitStream, pBitOffset, pCoef, pIndexCoeff) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 7)) return moxStsBadBitOffset;
  const ScanTable& table = inter_scan(scan, ownvc_Zigzag);
  if (rvlcFlag) {
    const MoxStatus status =
        active::decode_reversible(ppBitStream, pBitOffset, pCoef, -1, pIndexCoeff, table, kReversibleInter);
    return status != moxStsOk ? status : moxiQuantInvInter_MPEG4_16s_C1I(pCoef, 63, pQuantInvInterSpec, qp);
  }
  if (any_null(pQuantInvInterSpec)) return moxStsNullPointer;
  const MoxiQuantInvState& state = *record_in(pQuantInvInterSpec);
  if (const MoxStatus status = active::check_state(state, active::kInvInterTag, qp)) return status;
  return active::reconstruct_texture(ppBitStream, pBitOffset, pCoef, pIndexCoeff, table, state, qp);
}

MoxStatus moxiEncodeCoeffsIntra_MPEG4_16s1u(const Mox16s* pCoeffs, Mox8u** ppBitStream, Mox32s* pBitOffset,
                                            Mox32s countNonZero, Mox32s rvlcFlag, Mox32s noDCFlag, Mox32s scan) {
  if (any_null(pCoeffs, ppBitStream, pBitOffset) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 7)) return moxStsBadBitOffset;
  const Mox32s first = start_index(noDCFlag) + 1;
  if (outside(countNonZero, 1, 64 - first)) return moxStsOutOfRange;
  const ScanTable& table = writing_scan(scan);
  return rvlcFlag
             ? active::encode_reversible(pCoeffs, ppBitStream, pBitOffset, countNonZero, first, table, kReversibleIntra)
             : active::encode_texture(pCoeffs, ppBitStream, pBitOffset, countNonZero, first, table, kIntraTexture);
}

MoxStatus moxiEncodeCoeffsInter_MPEG4_16s1u(const Mox16s* pCoeffs, Mox8u** ppBitStream, Mox32s* pBitOffset,
                                            Mox32s countNonZero, Mox32s rvlcFlag, Mox32s scan) {
  if (any_null(pCoeffs, ppBitStream, pBitOffset) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 7)) return moxStsBadBitOffset;
  if (outside(countNonZero, 1, 64)) return moxStsOutOfRange;
  const ScanTable& table = inter_scan(scan, scan == -1 ? active::kNoScan : ownvc_Zigzag);
  return rvlcFlag
             ? active::encode_reversible(pCoeffs, ppBitStream, pBitOffset, countNonZero, 0, table, kReversibleInter)
             : active::encode_texture(pCoeffs, ppBitStream, pBitOffset, countNonZero, 0, table, kInterTexture);
}

MoxStatus moxiEncodeDCIntra_MPEG4_16s1u(Mox16s dcCoeff, Mox8u** ppBitStream, Mox32s* pBitOffset, Mox32s blockType) {
  if (any_null(ppBitStream, pBitOffset) || any_null(*ppBitStream)) return moxStsNullPointer;
  if (outside(*pBitOffset, 0, 7)) return moxStsBadBitOffset;
  return active::encode_texture_dc(dcCoeff, ppBitStream, pBitOffset, blockType == 1);
}
