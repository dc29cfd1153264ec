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

MoxStatus reconstruct_luma(Picture& picture, const Macroblock& mb, Mox16s** coefficients) {
  auto* luma = picture.samples<Mox8u>(0, 16 * mb.x, 16 * mb.y);
  const int step = picture.frame->step(0);
  if (mb.kind == MbKind::kIntra16x16) {
    return moxiReconstructLumaIntra16x16MB_H264_16s8u_C1R(coefficients, luma, step, mb.intra_16x16_mode, mb.coded,
                                                          mb.qp, mb.denied);
  }
  return moxiReconstructLumaIntraMB_H264_16s8u_C1R(coefficients, luma, step, mb.intra_modes.data(), mb.coded, mb.qp,
                                                   mb.denied);
}

}  // namespace

void reconstruct_intra(Picture& picture, const Slice& slice, Macroblock& mb) {
  if (mb.kind == MbKind::kRaw) return copy_raw(picture, mb);
  Mox16s* coefficients = mb.coefficients.data();
  MoxStatus status = reconstruct_luma(picture, mb, &coefficients);
  if (status == moxStsOk) {
    status = moxiReconstructChromaIntraMB_H264_16s8u_P2R(
        &coefficients, picture.samples<Mox8u>(1, 8 * mb.x, 8 * mb.y), picture.samples<Mox8u>(2, 8 * mb.x, 8 * mb.y),
        picture.frame->step(1), mb.chroma_mode, mb.coded, slice.chroma_qp[0][static_cast<std::size_t>(mb.qp)],
        mb.denied);
  }
  require(status == moxStsOk, "intra prediction from a neighbour that is not there");
}

void reconstruct_inter(Picture& picture, const Slice& slice, Macroblock& mb) {
  if (mb.coded == 0) return;
  Mox16s* coefficients = mb.coefficients.data();
  MoxStatus status =
      moxiReconstructLumaInterMB_H264_16s8u_C1R(&coefficients, picture.samples<Mox8u>(0, 16 * mb.x, 16 * mb.y),
                                                picture.frame->step(0), mb.coded, static_cast<Mox32u>(mb.qp));
  if (status == moxStsOk) {
    status = moxiReconstructChromaInterMB_H264_16s8u_P2R(
        &coefficients, picture.samples<Mox8u>(1, 8 * mb.x, 8 * mb.y), picture.samples<Mox8u>(2, 8 * mb.x, 8 * mb.y),
        picture.frame->step(1), mb.coded, slice.chroma_qp[0][static_cast<std::size_t>(mb.qp)]);
  }
  require(status == moxStsOk, "the residual cannot be rebuilt");
}

}  // namespace moxdec::h264
