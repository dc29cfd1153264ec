/// 8-bit samples. The functions without scales are the faster ones.
#include "moxdec/h264/rebuilding.hpp"

namespace moxdec::h264 {
namespace {

bool plain_luma(const Rebuilding8& work) { return work.scales.is_flat_4x4() && !work.lossless; }
bool plain_chroma(const Rebuilding8& work) { return plain_luma(work) && work.chroma_qp[0] == work.chroma_qp[1]; }

/// Chroma's part of the library's pattern.
Mox32u chroma_pattern(const Macroblock& mb) {
  const auto [u, v] = mb.coded_chroma;
  return (u & kCodedDc) << 17 | (v & kCodedDc) << 18 | u >> 1 << 19 | v >> 1 << 23;
}

}  // namespace

MoxStatus Rebuilding8::intra_16x16() {
  if (plain_luma(*this)) {
    return moxiReconstructLumaIntra16x16MB_H264_16s8u_C1R(&coefficients, luma, luma_step, mb.intra_16x16_mode, mb.coded,
                                                          luma_qp, mb.denied);
  }
  return moxiReconstructLumaIntra_16x16MB_H264_16s8u_C1R(&coefficients, luma, luma_step, mb.intra_16x16_mode, mb.coded,
                                                         luma_qp, mb.denied, luma_scales(), lossless);
}

MoxStatus Rebuilding8::intra_8x8() {
  return moxiReconstructLumaIntra8x8MB_H264_16s8u_C1R(&coefficients, luma, luma_step, mb.intra_modes.data(),
                                                      mb.coded_8x8, luma_qp, mb.denied, luma_scales_8x8(), lossless);
}

MoxStatus Rebuilding8::intra_4x4() {
  if (plain_luma(*this)) {
    return moxiReconstructLumaIntraMB_H264_16s8u_C1R(&coefficients, luma, luma_step, mb.intra_modes.data(), mb.coded,
                                                     luma_qp, mb.denied);
  }
  return moxiReconstructLumaIntra4x4MB_H264_16s8u_C1R(&coefficients, luma, luma_step, mb.intra_modes.data(), mb.coded,
                                                      luma_qp, mb.denied, luma_scales(), lossless);
}

MoxStatus Rebuilding8::intra_8x8_half(int half) {
  return moxiReconstructLumaIntraHalf8x8MB_H264_16s8u_C1R(&coefficients, luma_half(half), luma_step,
                                                          modes_half_8x8(half), coded_half_8x8(half), luma_qp,
                                                          denied_half(half), luma_scales_8x8(), lossless);
}

MoxStatus Rebuilding8::intra_4x4_half(int half) {
  return moxiReconstructLumaIntraHalf4x4MB_H264_16s8u_C1R(&coefficients, luma_half(half), luma_step, modes_half(half),
                                                          coded_half(half), luma_qp, denied_half(half), luma_scales(),
                                                          lossless);
}

MoxStatus Rebuilding8::inter_luma() {
  if (mb.transform_8x8) {
    return moxiReconstructLumaInter8x8MB_H264_16s8u_C1R(&coefficients, luma, luma_step, mb.coded_8x8, luma_qp,
                                                        luma_scales_8x8(), lossless);
  }
  if (plain_luma(*this)) {
    return moxiReconstructLumaInterMB_H264_16s8u_C1R(&coefficients, luma, luma_step, mb.coded, luma_qp);
  }
  return moxiReconstructLumaInter4x4MB_H264_16s8u_C1R(&coefficients, luma, luma_step, mb.coded, luma_qp, luma_scales(),
                                                      lossless);
}

MoxStatus Rebuilding8::intra_chroma() {
  if (is_422()) return rebuild_intra_422<Sample>(*this);
  if (plain_chroma(*this)) {
    return moxiReconstructChromaIntraMB_H264_16s8u_P2R(&coefficients, chroma[0], chroma[1], chroma_step, mb.chroma_mode,
                                                       chroma_pattern(mb), chroma_qp[0], mb.denied);
  }
  return moxiReconstructChromaIntra4x4MB_H264_16s8u_P2R(&coefficients, chroma[0], chroma[1], chroma_step,
                                                        mb.chroma_mode, chroma_pattern(mb), chroma_qp[0], chroma_qp[1],
                                                        mb.denied, chroma_scales(0), chroma_scales(1), lossless);
}

MoxStatus Rebuilding8::intra_chroma_halves() {
  if (is_422()) return rebuild_intra_422_halves<Sample>(*this);
  return moxiReconstructChromaIntraHalfs4x4MB_H264_16s8u_P2R(
      &coefficients, chroma[0], chroma[1], chroma_step, mb.chroma_mode, chroma_pattern(mb), chroma_qp[0], chroma_qp[1],
      denied_half(0), denied_half(1), chroma_scales(0), chroma_scales(1), lossless);
}

MoxStatus Rebuilding8::inter_chroma() {
  if (is_422()) return rebuild_inter_422<Sample>(*this);
  if (plain_chroma(*this)) {
    return moxiReconstructChromaInterMB_H264_16s8u_P2R(&coefficients, chroma[0], chroma[1], chroma_step,
                                                       chroma_pattern(mb), chroma_qp[0]);
  }
  return moxiReconstructChromaInter4x4MB_H264_16s8u_P2R(&coefficients, chroma[0], chroma[1], chroma_step,
                                                        chroma_pattern(mb), chroma_qp[0], chroma_qp[1],
                                                        chroma_scales(0), chroma_scales(1), lossless);
}

}  // namespace moxdec::h264
