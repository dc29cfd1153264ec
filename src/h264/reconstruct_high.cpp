#include "h264/reconstruct_high.hpp"

#include "frame/arguments.hpp"
#include "h264/reconstruct.hpp"
#include "moxvc/h264_reconstruct_high.h"

namespace mox {
namespace {

using Rec = MoxiReconstructHighRec;

/// Largest QP of 8-bit samples; each further bit adds 6.
constexpr Mox32s kLumaQp = 51, kChromaQp = 39;

/// The record's pointers, as types that the form knows.
template <class Coeff>
Coeff** stream_of(const Rec& rec) {
  return static_cast<Coeff**>(rec.ppSrcDstCoeff);
}
template <class Pixel>
Pixel* plane_of(const Rec& rec) {
  return static_cast<Pixel*>(rec.pSrcDstPlane);
}

template <class Coeff>
bool lacks_pointer(const Rec* rec) {
  return rec == nullptr || no_stream(stream_of<Coeff>(*rec)) || any_null(rec->pSrcDstPlane, rec->pQuantTable);
}

/// True for a QP that samples of this depth do not have; samples of less than 8 or more than 14 bits have none.
constexpr bool bad_qp(Mox32s qp, Mox32u bitDepth, Mox32s largest) {
  return outside(bitDepth, 8, 14) || outside(qp, 0, largest + 6 * (static_cast<Mox32s>(bitDepth) - 8));
}
static_assert(!bad_qp(63, 10, kLumaQp) && bad_qp(64, 10, kLumaQp) && bad_qp(0, 0xFFFFFFFF, kLumaQp));

MoxStatus check_luma(const Rec* rec) {
  if (lacks_pointer<Mox32s>(rec)) return moxStsNullPointer;
  if (rec->srcDstStep < 1) return moxStsBadStep;
  return bad_qp(rec->qp, rec->bitDepth, kLumaQp) ? moxStsOutOfRange : moxStsOk;
}

/// Both planes have the first one's depth. 8-bit forms do not look at it.
template <class Coeff>
MoxStatus check_chroma(Rec* const* recs) {
  if (recs == nullptr || lacks_pointer<Coeff>(recs[0]) || lacks_pointer<Coeff>(recs[1])) return moxStsNullPointer;
  if (recs[0]->srcDstStep < 1 || recs[1]->srcDstStep < 1) return moxStsBadStep;
  const Mox32u depth = sizeof(Coeff) == 2 ? 8 : recs[0]->bitDepth;
  return bad_qp(recs[0]->qp, depth, kChromaQp) || bad_qp(recs[1]->qp, depth, kChromaQp) ? moxStsOutOfRange : moxStsOk;
}

HighResidual high(const Rec& rec, Mox32u bitDepth) {
  return {static_cast<Mox32s>(bitDepth), rec.qp, rec.pQuantTable, rec.bypass != 0};
}

template <class Pixel, class Residual>
ChromaPlane<Pixel, Residual> chroma_plane(const Rec& rec, const Residual& residual) {
  return {stream_of<typename Residual::Coeff>(rec), plane_of<Pixel>(rec), rec.srcDstStep, rec.cbp, residual};
}
/// Plane 0 or 1 of either chroma format, in the depth of the first.
auto chroma_420(Rec* const* recs, int plane) {
  const Rec& rec = *recs[plane];
  return chroma_plane<Mox16u>(rec, high(rec, recs[0]->bitDepth));
}
template <class Coeff>
auto chroma_422(Rec* const* recs, int plane, Mox32s levelScaleDC) {
  const Rec& rec = *recs[plane];
  if constexpr (sizeof(Coeff) == 2) {
    const ScaledResidual base(rec.qp, rec.pQuantTable, rec.bypass != 0);
    return chroma_plane<Mox8u>(rec, ScaledResidual422(base, rec.qp, levelScaleDC));
  } else {
    return chroma_plane<Mox16u>(rec, HighResidual422(high(rec, recs[0]->bitDepth), rec.qp, levelScaleDC));
  }
}

/// The three functions of 4:2:2, for both widths.
template <class Coeff>
MoxStatus inter_422(Rec* const* recs, Mox32s scaleU, Mox32s scaleV) {
  if (const MoxStatus bad = check_chroma<Coeff>(recs)) return bad;
  return chroma_inter<16>(chroma_422<Coeff>(recs, 0, scaleU), chroma_422<Coeff>(recs, 1, scaleV));
}
template <class Coeff>
MoxStatus intra_422(Rec* const* recs, Mox32u mode, Mox32u edgeType, Mox32s scaleU, Mox32s scaleV) {
  if (const MoxStatus bad = check_chroma<Coeff>(recs)) return bad;
  return chroma_intra<16>(chroma_422<Coeff>(recs, 0, scaleU), chroma_422<Coeff>(recs, 1, scaleV), mode, edgeType);
}
template <class Coeff>
MoxStatus intra_halves_422(Rec* const* recs, Mox32u mode, Mox32u edgeTypeTop, Mox32u edgeTypeBottom, Mox32s scaleU,
                           Mox32s scaleV) {
  if (const MoxStatus bad = check_chroma<Coeff>(recs)) return bad;
  return chroma_intra_halves<16>(chroma_422<Coeff>(recs, 0, scaleU), chroma_422<Coeff>(recs, 1, scaleV), mode,
                                 edgeTypeTop, edgeTypeBottom);
}

}  // namespace
}  // namespace mox

using namespace mox;

MoxStatus moxiReconstructLumaInter4x4_H264High_32s16u_IP1R(const MoxiReconstructHighRec* pRec) {
  if (const MoxStatus bad = check_luma(pRec)) return bad;
  return inter_4x4(stream_of<Mox32s>(*pRec), plane_of<Mox16u>(*pRec), pRec->srcDstStep, pRec->cbp >> kFirstLumaBlock,
                   high(*pRec, pRec->bitDepth));
}

MoxStatus moxiReconstructLumaInter8x8_H264High_32s16u_IP1R(const MoxiReconstructHighRec* pRec) {
  if (const MoxStatus bad = check_luma(pRec)) return bad;
  return inter_8x8(stream_of<Mox32s>(*pRec), plane_of<Mox16u>(*pRec), pRec->srcDstStep, pRec->cbp,
                   high(*pRec, pRec->bitDepth));
}

MoxStatus moxiReconstructLumaIntra4x4_H264High_32s16u_IP1R(const MoxiReconstructHighRec* pRec,
                                                           const Mox32u* pMBIntraTypes, Mox32u edgeType) {
  if (any_null(pMBIntraTypes)) return moxStsNullPointer;
  if (const MoxStatus bad = check_luma(pRec)) return bad;
  return intra_4x4<16>(stream_of<Mox32s>(*pRec), plane_of<Mox16u>(*pRec), pRec->srcDstStep, pMBIntraTypes,
                       pRec->cbp >> kFirstLumaBlock, edgeType, high(*pRec, pRec->bitDepth));
}

MoxStatus moxiReconstructLumaIntra8x8_H264High_32s16u_IP1R(const MoxiReconstructHighRec* pRec,
                                                           const Mox32u* pMBIntraTypes, Mox32u edgeType) {
  if (any_null(pMBIntraTypes)) return moxStsNullPointer;
  if (const MoxStatus bad = check_luma(pRec)) return bad;
  return intra_8x8<4>(stream_of<Mox32s>(*pRec), plane_of<Mox16u>(*pRec), pRec->srcDstStep, pMBIntraTypes, pRec->cbp,
                      edgeType, high(*pRec, pRec->bitDepth));
}

MoxStatus moxiReconstructLumaIntraHalf4x4_H264High_32s16u_IP1R(const MoxiReconstructHighRec* pRec,
                                                               const Mox32u* pMBIntraTypes, Mox32u edgeType) {
  if (any_null(pMBIntraTypes)) return moxStsNullPointer;
  if (const MoxStatus bad = check_luma(pRec)) return bad;
  return intra_4x4<8>(stream_of<Mox32s>(*pRec), plane_of<Mox16u>(*pRec), pRec->srcDstStep, pMBIntraTypes, pRec->cbp,
                      edgeType, high(*pRec, pRec->bitDepth));
}

MoxStatus moxiReconstructLumaIntraHalf8x8_H264High_32s16u_IP1R(const MoxiReconstructHighRec* pRec,
                                                               const Mox32u* pMBIntraTypes, Mox32u edgeType) {
  if (any_null(pMBIntraTypes)) return moxStsNullPointer;
  if (const MoxStatus bad = check_luma(pRec)) return bad;
  return intra_8x8<2>(stream_of<Mox32s>(*pRec), plane_of<Mox16u>(*pRec), pRec->srcDstStep, pMBIntraTypes, pRec->cbp,
                      edgeType, high(*pRec, pRec->bitDepth));
}

MoxStatus moxiReconstructLumaIntra16x16_H264High_32s16u_IP1R(const MoxiReconstructHighRec* pRec, Mox32u intraLumaMode,
                                                             Mox32u edgeType) {
  if (const MoxStatus bad = check_luma(pRec)) return bad;
  const HighResidual residual = high(*pRec, pRec->bitDepth);
  Mox16u* const plane = plane_of<Mox16u>(*pRec);
  const MoxStatus predicted = predict_luma_16x16_h264(plane, pRec->srcDstStep, intraLumaMode,
                                                      neighbours_of_macroblock(edgeType), residual.depth);
  if (predicted != moxStsOk) return predicted;
  return residual_16x16(stream_of<Mox32s>(*pRec), plane, pRec->srcDstStep, pRec->cbp, residual);
}

MoxStatus moxiReconstructChromaInter4x4_H264High_32s16u_IP2R(MoxiReconstructHighRec* const* ppRec) {
  if (const MoxStatus bad = check_chroma<Mox32s>(ppRec)) return bad;
  return chroma_inter<8>(chroma_420(ppRec, 0), chroma_420(ppRec, 1));
}

MoxStatus moxiReconstructChromaIntra4x4_H264High_32s16u_IP2R(MoxiReconstructHighRec* const* ppRec,
                                                             Mox32u intraChromaMode, Mox32u edgeType) {
  if (const MoxStatus bad = check_chroma<Mox32s>(ppRec)) return bad;
  return chroma_intra<8>(chroma_420(ppRec, 0), chroma_420(ppRec, 1), intraChromaMode, edgeType);
}

MoxStatus moxiReconstructChromaIntraHalf4x4_H264High_32s16u_IP2R(MoxiReconstructHighRec* const* ppRec,
                                                                 Mox32u intraChromaMode, Mox32u edgeTypeTop,
                                                                 Mox32u edgeTypeBottom) {
  if (const MoxStatus bad = check_chroma<Mox32s>(ppRec)) return bad;
  return chroma_intra_halves<8>(chroma_420(ppRec, 0), chroma_420(ppRec, 1), intraChromaMode, edgeTypeTop,
                                edgeTypeBottom);
}

MoxStatus moxiReconstructChroma422Inter4x4_H264High_16s8u_IP2R(MoxiReconstructHighRec* const* ppRec,
                                                               Mox32s levelScaleDCU, Mox32s levelScaleDCV) {
  return inter_422<Mox16s>(ppRec, levelScaleDCU, levelScaleDCV);
}

MoxStatus moxiReconstructChroma422Inter4x4_H264High_32s16u_IP2R(MoxiReconstructHighRec* const* ppRec,
                                                                Mox32s levelScaleDCU, Mox32s levelScaleDCV) {
  return inter_422<Mox32s>(ppRec, levelScaleDCU, levelScaleDCV);
}

MoxStatus moxiReconstructChroma422Intra4x4_H264High_16s8u_IP2R(MoxiReconstructHighRec* const* ppRec,
                                                               Mox32u intraChromaMode, Mox32u edgeType,
                                                               Mox32s levelScaleDCU, Mox32s levelScaleDCV) {
  return intra_422<Mox16s>(ppRec, intraChromaMode, edgeType, levelScaleDCU, levelScaleDCV);
}

MoxStatus moxiReconstructChroma422Intra4x4_H264High_32s16u_IP2R(MoxiReconstructHighRec* const* ppRec,
                                                                Mox32u intraChromaMode, Mox32u edgeType,
                                                                Mox32s levelScaleDCU, Mox32s levelScaleDCV) {
  return intra_422<Mox32s>(ppRec, intraChromaMode, edgeType, levelScaleDCU, levelScaleDCV);
}

MoxStatus moxiReconstructChroma422IntraHalf4x4_H264High_16s8u_IP2R(MoxiReconstructHighRec* const* ppRec,
                                                                   Mox32u intraChromaMode, Mox32u edgeTypeTop,
                                                                   Mox32u edgeTypeBottom, Mox32s levelScaleDCU,
                                                                   Mox32s levelScaleDCV) {
  return intra_halves_422<Mox16s>(ppRec, intraChromaMode, edgeTypeTop, edgeTypeBottom, levelScaleDCU, levelScaleDCV);
}

MoxStatus moxiReconstructChroma422IntraHalf4x4_H264High_32s16u_IP2R(MoxiReconstructHighRec* const* ppRec,
                                                                    Mox32u intraChromaMode, Mox32u edgeTypeTop,
                                                                    Mox32u edgeTypeBottom, Mox32s levelScaleDCU,
                                                                    Mox32s levelScaleDCV) {
  return intra_halves_422<Mox32s>(ppRec, intraChromaMode, edgeTypeTop, edgeTypeBottom, levelScaleDCU, levelScaleDCV);
}
