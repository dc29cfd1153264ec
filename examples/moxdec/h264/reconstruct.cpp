#include "moxdec/h264/reconstruct.hpp"

#include <cstring>

#include "moxdec/error.hpp"

namespace moxdec::h264 {
namespace {

void copy_raw(Picture& picture, const Macroblock& mb) {
  const std::uint8_t* raw = mb.raw.data();
  for (int plane = 0; plane < 3; ++plane) {
    const int size = plane == 0 ? 16 : 8;
    auto* out = picture.samples<Mox8u>(plane, size * mb.x, size * mb.y);
    for (int y = 0; y < size; ++y, raw += size, out += picture.frame->step(plane)) {
      std::memcpy(out, raw, static_cast<std::size_t>(size));
    }
  }
}

/// Where an 8x8 mode uses a neighbour that is denied, the library takes 128 and does not tell.
bool uses_denied_neighbour(const Macroblock& mb) {
  constexpr Mox32u kUsed[] = {kDenyTop,
                              kDenyLeft,
                              0,
                              kDenyTop,
                              kDenyTop | kDenyLeft | kDenyTopLeft,  // by mode
                              kDenyTop | kDenyLeft | kDenyTopLeft,
                              kDenyTop | kDenyLeft | kDenyTopLeft,
                              kDenyTop,
                              kDenyLeft};
  // For each block: the macroblocks that its neighbours above, left, and above and left belong to.
  constexpr Mox32u kNeighbours[4][3] = {
      {kDenyTop, kDenyLeft, kDenyTopLeft}, {kDenyTop, 0, kDenyTop}, {0, kDenyLeft, kDenyLeft}, {0, 0, 0}};
  for (int i = 0; i < 4; ++i) {
    const Mox32u used = kUsed[mb.intra_modes[i]];
    const Mox32u needed = (used & kDenyTop ? kNeighbours[i][0] : 0) | (used & kDenyLeft ? kNeighbours[i][1] : 0) |
                          (used & kDenyTopLeft ? kNeighbours[i][2] : 0);
    if (needed & mb.denied) return true;
  }
  return false;
}

/// What the library's functions take to rebuild a macroblock. Those without scales are the faster ones.
struct Rebuilding {
  Rebuilding(Picture& picture, const Slice& slice, Macroblock& macroblock)
      : mb(macroblock),
        scales(*slice.scales),
        luma(picture.samples<Mox8u>(0, 16 * mb.x, 16 * mb.y)),
        chroma{picture.samples<Mox8u>(1, 8 * mb.x, 8 * mb.y), picture.samples<Mox8u>(2, 8 * mb.x, 8 * mb.y)},
        luma_step(picture.frame->step(0)),
        chroma_step(picture.frame->step(1)),
        chroma_qp{slice.chroma_qp[0][mb.qp], slice.chroma_qp[1][mb.qp]},
        coefficients(mb.coefficients.data()) {}

  bool plain_luma() const { return scales.is_flat_4x4(); }
  bool plain_chroma() const { return scales.is_flat_4x4() && chroma_qp[0] == chroma_qp[1]; }
  const Mox16s* luma_scales() const { return scales.of_4x4(is_inter(), 0, mb.qp); }
  const Mox16s* chroma_scales(int plane) const { return scales.of_4x4(is_inter(), 1 + plane, chroma_qp[plane]); }
  bool is_inter() const { return mb.kind == MbKind::kInter; }

  MoxStatus intra_16x16();
  MoxStatus intra_8x8();
  MoxStatus intra_4x4();
  MoxStatus intra_chroma();
  MoxStatus inter_luma();
  MoxStatus inter_chroma();

  Macroblock& mb;
  const LevelScales& scales;
  Mox8u* luma;
  Mox8u* chroma[2];
  Mox32s luma_step, chroma_step;
  int chroma_qp[2];
  Mox16s* coefficients;
};

MoxStatus Rebuilding::intra_16x16() {
  if (plain_luma()) {
    return moxiReconstructLumaIntra16x16MB_H264_16s8u_C1R(&coefficients, luma, luma_step, mb.intra_16x16_mode, mb.coded,
                                                          mb.qp, mb.denied);
  }
  return moxiReconstructLumaIntra_16x16MB_H264_16s8u_C1R(&coefficients, luma, luma_step, mb.intra_16x16_mode, mb.coded,
                                                         mb.qp, mb.denied, luma_scales(), 0);
}

MoxStatus Rebuilding::intra_8x8() {
  if (uses_denied_neighbour(mb)) return moxStsEdgeUnavailable;
  return moxiReconstructLumaIntra8x8MB_H264_16s8u_C1R(&coefficients, luma, luma_step, mb.intra_modes.data(),
                                                      mb.coded_8x8, mb.qp, mb.denied, scales.of_8x8(false, mb.qp), 0);
}

MoxStatus Rebuilding::intra_4x4() {
  if (plain_luma()) {
    return moxiReconstructLumaIntraMB_H264_16s8u_C1R(&coefficients, luma, luma_step, mb.intra_modes.data(), mb.coded,
                                                     mb.qp, mb.denied);
  }
  return moxiReconstructLumaIntra4x4MB_H264_16s8u_C1R(&coefficients, luma, luma_step, mb.intra_modes.data(), mb.coded,
                                                      mb.qp, mb.denied, luma_scales(), 0);
}

MoxStatus Rebuilding::intra_chroma() {
  if (plain_chroma()) {
    return moxiReconstructChromaIntraMB_H264_16s8u_P2R(&coefficients, chroma[0], chroma[1], chroma_step, mb.chroma_mode,
                                                       mb.coded, chroma_qp[0], mb.denied);
  }
  return moxiReconstructChromaIntra4x4MB_H264_16s8u_P2R(&coefficients, chroma[0], chroma[1], chroma_step,
                                                        mb.chroma_mode, mb.coded, chroma_qp[0], chroma_qp[1], mb.denied,
                                                        chroma_scales(0), chroma_scales(1), 0);
}

MoxStatus Rebuilding::inter_luma() {
  if (mb.transform_8x8) {
    return moxiReconstructLumaInter8x8MB_H264_16s8u_C1R(&coefficients, luma, luma_step, mb.coded_8x8, mb.qp,
                                                        scales.of_8x8(true, mb.qp), 0);
  }
  if (plain_luma()) {
    return moxiReconstructLumaInterMB_H264_16s8u_C1R(&coefficients, luma, luma_step, mb.coded, mb.qp);
  }
  return moxiReconstructLumaInter4x4MB_H264_16s8u_C1R(&coefficients, luma, luma_step, mb.coded, mb.qp, luma_scales(),
                                                      0);
}

MoxStatus Rebuilding::inter_chroma() {
  if (plain_chroma()) {
    return moxiReconstructChromaInterMB_H264_16s8u_P2R(&coefficients, chroma[0], chroma[1], chroma_step, mb.coded,
                                                       chroma_qp[0]);
  }
  return moxiReconstructChromaInter4x4MB_H264_16s8u_P2R(&coefficients, chroma[0], chroma[1], chroma_step, mb.coded,
                                                        chroma_qp[0], chroma_qp[1], chroma_scales(0), chroma_scales(1),
                                                        0);
}

}  // namespace

void reconstruct_intra(Picture& picture, const Slice& slice, Macroblock& mb) {
  if (mb.kind == MbKind::kRaw) return copy_raw(picture, mb);
  Rebuilding work(picture, slice, mb);
  MoxStatus status = mb.kind == MbKind::kIntra16x16 ? work.intra_16x16()
                     : mb.kind == MbKind::kIntra8x8 ? work.intra_8x8()
                                                    : work.intra_4x4();
  if (status == moxStsOk) status = work.intra_chroma();
  require(status == moxStsOk, "intra prediction from a neighbour that is not there");
}

void reconstruct_inter(Picture& picture, const Slice& slice, Macroblock& mb) {
  if (mb.coded == 0 && mb.coded_8x8 == 0) return;
  Rebuilding work(picture, slice, mb);
  MoxStatus status = work.inter_luma();
  if (status == moxStsOk) status = work.inter_chroma();
  require(status == moxStsOk, "the residual cannot be rebuilt");
}

}  // namespace moxdec::h264
