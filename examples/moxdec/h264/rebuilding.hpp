/// The library's functions that rebuild a macroblock, under one name for 8-bit and for deeper samples.
#pragma once

#include <cstddef>

#include "moxdec/h264/macroblock.hpp"
#include "moxdec/h264/picture.hpp"
#include "moxvc.h"

namespace moxdec::h264 {

/// What these functions take.
template <class SampleType>
struct Rebuilding {
  using Sample = SampleType;

  Rebuilding(Picture& picture, const Slice& slice, Macroblock& macroblock)
      : mb(macroblock),
        scales(*slice.scales),
        bit_depth(slice.header.sps->bit_depth_luma),
        chroma_height(slice.header.sps->chroma_mb_height()),
        luma(picture.samples<Sample>(0, mb.x, mb.y, mb.field)),
        chroma{picture.samples<Sample>(1, mb.x, mb.y, mb.field), picture.samples<Sample>(2, mb.x, mb.y, mb.field)},
        luma_step(picture.step<Sample>(0, mb.field)),
        chroma_step(picture.step<Sample>(1, mb.field)),
        coefficients(mb.coefficients<CoeffOf<Sample>>()) {
    const int offset = slice.header.sps->qp_offset();
    luma_qp = mb.qp + offset;
    lossless = slice.header.sps->transform_bypass && luma_qp == 0;
    for (int plane = 1; plane < 3; ++plane) {
      chroma_qp[plane - 1] = lossless ? 0 : slice.chroma_qp(plane, mb.qp) + offset;
    }
  }

  bool is_inter() const { return mb.kind == MbKind::kInter; }
  bool is_422() const { return chroma_height == 16; }
  const Mox16s* luma_scales() const { return scales.of_4x4(is_inter(), 0, luma_qp); }
  const Mox16s* luma_scales_8x8() const { return scales.of_8x8(is_inter(), luma_qp); }
  const Mox16s* chroma_scales(int i) const { return scales.of_4x4(is_inter(), 1 + i, chroma_qp[i]); }
  /// The DC values of 4:2:2 have a quantiser of their own.
  Mox32s dc_scale_422(int i) const { return scales.of_4x4(is_inter(), 1 + i, chroma_qp[i] + 3)[0]; }

  /// Of the upper (0) or the lower half of an Intra 4x4 or 8x8 macroblock.
  Sample* luma_half(int half) const { return luma + std::ptrdiff_t{8} * half * luma_step; }
  Mox32u denied_half(int half) const { return mb.denied_halves[static_cast<std::size_t>(half)]; }
  Mox32u coded_half(int half) const { return mb.coded >> (1 + 8 * half); }
  const Mox32u* modes_half(int half) const { return &mb.intra_modes[static_cast<std::size_t>(8 * half)]; }
  Mox32u coded_half_8x8(int half) const { return mb.coded_8x8 >> (2 * half); }
  const Mox32u* modes_half_8x8(int half) const { return &mb.intra_modes[static_cast<std::size_t>(2 * half)]; }

  Macroblock& mb;
  const LevelScales& scales;
  int bit_depth;
  int chroma_height;
  Sample* luma;
  Sample* chroma[2];
  Mox32s luma_step, chroma_step;  // in samples
  int luma_qp, chroma_qp[2];      // from 0 on
  bool lossless;
  CoeffOf<Sample>* coefficients;  // of the next block
};

struct Rebuilding8 : Rebuilding<Mox8u> {
  using Rebuilding::Rebuilding;
  MoxStatus intra_16x16();
  MoxStatus intra_8x8();
  MoxStatus intra_4x4();
  MoxStatus intra_8x8_half(int half);
  MoxStatus intra_4x4_half(int half);
  MoxStatus inter_luma();
  MoxStatus intra_chroma();
  MoxStatus intra_chroma_halves();
  MoxStatus inter_chroma();
};

struct Rebuilding16 : Rebuilding<Mox16u> {
  using Rebuilding::Rebuilding;
  MoxStatus intra_16x16();
  MoxStatus intra_8x8();
  MoxStatus intra_4x4();
  MoxStatus intra_8x8_half(int half);
  MoxStatus intra_4x4_half(int half);
  MoxStatus inter_luma();
  MoxStatus intra_chroma();
  MoxStatus intra_chroma_halves();
  MoxStatus inter_chroma();
};

/// 4:2:2 chroma of any depth.
template <class Sample>
MoxStatus rebuild_intra_422(Rebuilding<Sample>& work);
template <class Sample>
MoxStatus rebuild_intra_422_halves(Rebuilding<Sample>& work);
template <class Sample>
MoxStatus rebuild_inter_422(Rebuilding<Sample>& work);

}  // namespace moxdec::h264
