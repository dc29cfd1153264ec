#include "moxdec/h264/reconstruct.hpp"

#include <algorithm>
#include <utility>

#include "moxdec/error.hpp"
#include "moxdec/h264/lossless.hpp"
#include "moxdec/h264/rebuilding.hpp"

namespace moxdec::h264 {
namespace {

template <class Sample>
void copy_raw(const Rebuilding<Sample>& work) {
  const Mox16u* raw = work.mb.raw.data();
  const auto copy = [&](Sample* out, Mox32s step, int width, int height) {
    for (int y = 0; y < height; ++y, raw += width, out += step) {
      std::transform(raw, raw + width, out, [](Mox16u sample) { return static_cast<Sample>(sample); });
    }
  };
  copy(work.luma, work.luma_step, 16, 16);
  for (Sample* plane : work.chroma) copy(plane, work.chroma_step, 8, work.chroma_height);
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
  // For each block: the macroblocks that its neighbours above, left, and above and left belong to, seen from its half.
  constexpr Mox32u kNeighbours[4][3] = {
      {kDenyTop, kDenyLeft, kDenyTopLeft}, {kDenyTop, 0, kDenyTop}, {0, kDenyLeft, kDenyTopLeft}, {0, 0, 0}};
  for (int i = 0; i < 4; ++i) {
    const Mox32u used = kUsed[mb.intra_modes[i]];
    const Mox32u needed = (used & kDenyTop ? kNeighbours[i][0] : 0) | (used & kDenyLeft ? kNeighbours[i][1] : 0) |
                          (used & kDenyTopLeft ? kNeighbours[i][2] : 0);
    if (needed & mb.denied_halves[static_cast<std::size_t>(i / 2)]) return true;
  }
  return false;
}

template <class Work>
MoxStatus rebuild_16x16(Work& work) {
  Macroblock& mb = work.mb;
  const SumDirection sums = luma_sums(mb.intra_16x16_mode);
  if (!work.lossless || sums == SumDirection::kNone) return work.intra_16x16();
  const Mox32u coded = std::exchange(mb.coded, 0);
  const MoxStatus status = work.intra_16x16();
  if (status != moxStsOk) return status;
  const auto* dc = work.coefficients;
  work.coefficients += coded & kCodedDc ? 16 : 0;
  const PredictedPlane<typename Work::Sample> plane = {work.luma, work.luma_step, 4, 4, (1 << work.bit_depth) - 1};
  work.coefficients = add_sums(plane, sums, coded, dc, work.coefficients);
  return moxStsOk;
}

template <class Work>
MoxStatus rebuild_intra_luma(Work& work) {
  Macroblock& mb = work.mb;
  if (mb.kind == MbKind::kIntra16x16) return rebuild_16x16(work);
  if (work.lossless) sum_blocks(mb, work.coefficients);
  const bool is_4x4 = mb.kind == MbKind::kIntra4x4;
  if (!is_4x4 && uses_denied_neighbour(mb)) return moxStsEdgeUnavailable;
  if (!mb.has_split_left()) return is_4x4 ? work.intra_4x4() : work.intra_8x8();
  const MoxStatus status = is_4x4 ? work.intra_4x4_half(0) : work.intra_8x8_half(0);
  if (status != moxStsOk) return status;
  return is_4x4 ? work.intra_4x4_half(1) : work.intra_8x8_half(1);
}

/// Only DC prediction can do without a part of the left neighbours.
template <class Work>
MoxStatus predict_chroma(Work& work) {
  return work.mb.has_split_left() && work.mb.chroma_mode == 0 ? work.intra_chroma_halves() : work.intra_chroma();
}

template <class Work>
MoxStatus rebuild_intra_chroma(Work& work) {
  Macroblock& mb = work.mb;
  const SumDirection sums = chroma_sums(mb.chroma_mode);
  if (!work.lossless || sums == SumDirection::kNone) return predict_chroma(work);
  const auto coded = std::exchange(mb.coded_chroma, {});
  const MoxStatus status = predict_chroma(work);
  if (status != moxStsOk) return status;
  const int dc_values = work.chroma_height / 2;
  const auto *u_dc = work.coefficients, *v_dc = u_dc + (coded[0] & kCodedDc ? dc_values : 0);
  work.coefficients += (v_dc - u_dc) + (coded[1] & kCodedDc ? dc_values : 0);
  for (int i = 0; i < 2; ++i) {
    const PredictedPlane<typename Work::Sample> plane = {work.chroma[i], work.chroma_step, 2, work.chroma_height / 4,
                                                         (1 << work.bit_depth) - 1};
    work.coefficients = add_sums(plane, sums, coded[i], i == 0 ? u_dc : v_dc, work.coefficients);
  }
  return moxStsOk;
}

template <class Work>
void rebuild_intra(Work& work) {
  if (work.mb.kind == MbKind::kRaw) return copy_raw(work);
  MoxStatus status = rebuild_intra_luma(work);
  if (status == moxStsOk && work.chroma_height != 0) status = rebuild_intra_chroma(work);
  require(status == moxStsOk, "intra prediction from a neighbour that is not there");
}

template <class Work>
void rebuild_inter(Work& work) {
  MoxStatus status = work.inter_luma();
  if (status == moxStsOk && work.chroma_height != 0) status = work.inter_chroma();
  require(status == moxStsOk, "the residual cannot be rebuilt");
}

}  // namespace

void reconstruct_intra(Picture& picture, const Slice& slice, Macroblock& mb) {
  if (slice.header.sps->is_deep()) {
    Rebuilding16 work(picture, slice, mb);
    rebuild_intra(work);
  } else {
    Rebuilding8 work(picture, slice, mb);
    rebuild_intra(work);
  }
}

void reconstruct_inter(Picture& picture, const Slice& slice, Macroblock& mb) {
  if ((mb.coded | mb.coded_8x8 | mb.coded_chroma[0] | mb.coded_chroma[1]) == 0) return;
  if (slice.header.sps->is_deep()) {
    Rebuilding16 work(picture, slice, mb);
    rebuild_inter(work);
  } else {
    Rebuilding8 work(picture, slice, mb);
    rebuild_inter(work);
  }
}

}  // namespace moxdec::h264
