/// Samples of more than 8 bits, and 4:2:2 chroma.
#include "moxdec/h264/rebuilding.hpp"

namespace moxdec::h264 {
namespace {

template <class Sample>
MoxiReconstructHighRec record(Rebuilding<Sample>& work, Sample* samples, Mox32s step, Mox32u coded, int qp,
                              const Mox16s* scales) {
  return {&work.coefficients, samples, step, coded, qp, scales, work.lossless, static_cast<Mox32u>(work.bit_depth)};
}

MoxiReconstructHighRec luma_record(Rebuilding16& work) {
  return record<Mox16u>(work, work.luma, work.luma_step, work.mb.coded, work.luma_qp, work.luma_scales());
}
MoxiReconstructHighRec luma_record_8x8(Rebuilding16& work) {
  return record<Mox16u>(work, work.luma, work.luma_step, work.mb.coded_8x8, work.luma_qp, work.luma_scales_8x8());
}

/// U and V, as the library takes them.
template <class Sample>
struct ChromaRecords {
  explicit ChromaRecords(Rebuilding<Sample>& work) : planes{plane(work, 0), plane(work, 1)} {}
  static MoxiReconstructHighRec plane(Rebuilding<Sample>& work, int i) {
    return record(work, work.chroma[i], work.chroma_step, work.mb.coded_chroma[static_cast<std::size_t>(i)],
                  work.chroma_qp[i], work.chroma_scales(i));
  }

  MoxiReconstructHighRec planes[2];
  MoxiReconstructHighRec* pointers[2] = {&planes[0], &planes[1]};
};

template <class Sample>
constexpr auto kIntra422 = moxiReconstructChroma422Intra4x4_H264High_16s8u_IP2R;
template <>
constexpr auto kIntra422<Mox16u> = moxiReconstructChroma422Intra4x4_H264High_32s16u_IP2R;
template <class Sample>
constexpr auto kIntra422Halves = moxiReconstructChroma422IntraHalf4x4_H264High_16s8u_IP2R;
template <>
constexpr auto kIntra422Halves<Mox16u> = moxiReconstructChroma422IntraHalf4x4_H264High_32s16u_IP2R;
template <class Sample>
constexpr auto kInter422 = moxiReconstructChroma422Inter4x4_H264High_16s8u_IP2R;
template <>
constexpr auto kInter422<Mox16u> = moxiReconstructChroma422Inter4x4_H264High_32s16u_IP2R;

}  // namespace

MoxStatus Rebuilding16::intra_16x16() {
  const auto rec = luma_record(*this);
  return moxiReconstructLumaIntra16x16_H264High_32s16u_IP1R(&rec, mb.intra_16x16_mode, mb.denied);
}

MoxStatus Rebuilding16::intra_8x8() {
  const auto rec = luma_record_8x8(*this);
  return moxiReconstructLumaIntra8x8_H264High_32s16u_IP1R(&rec, mb.intra_modes.data(), mb.denied);
}

MoxStatus Rebuilding16::intra_4x4() {
  const auto rec = luma_record(*this);
  return moxiReconstructLumaIntra4x4_H264High_32s16u_IP1R(&rec, mb.intra_modes.data(), mb.denied);
}

MoxStatus Rebuilding16::intra_8x8_half(int half) {
  const auto rec = record<Mox16u>(*this, luma_half(half), luma_step, coded_half_8x8(half), luma_qp, luma_scales_8x8());
  return moxiReconstructLumaIntraHalf8x8_H264High_32s16u_IP1R(&rec, modes_half_8x8(half), denied_half(half));
}

MoxStatus Rebuilding16::intra_4x4_half(int half) {
  const auto rec = record<Mox16u>(*this, luma_half(half), luma_step, coded_half(half), luma_qp, luma_scales());
  return moxiReconstructLumaIntraHalf4x4_H264High_32s16u_IP1R(&rec, modes_half(half), denied_half(half));
}

MoxStatus Rebuilding16::inter_luma() {
  if (mb.transform_8x8) {
    const auto rec = luma_record_8x8(*this);
    return moxiReconstructLumaInter8x8_H264High_32s16u_IP1R(&rec);
  }
  const auto rec = luma_record(*this);
  return moxiReconstructLumaInter4x4_H264High_32s16u_IP1R(&rec);
}

MoxStatus Rebuilding16::intra_chroma() {
  if (is_422()) return rebuild_intra_422<Sample>(*this);
  ChromaRecords<Sample> records(*this);
  return moxiReconstructChromaIntra4x4_H264High_32s16u_IP2R(records.pointers, mb.chroma_mode, mb.denied);
}

MoxStatus Rebuilding16::intra_chroma_halves() {
  if (is_422()) return rebuild_intra_422_halves<Sample>(*this);
  ChromaRecords<Sample> records(*this);
  return moxiReconstructChromaIntraHalf4x4_H264High_32s16u_IP2R(records.pointers, mb.chroma_mode, denied_half(0),
                                                                denied_half(1));
}

MoxStatus Rebuilding16::inter_chroma() {
  if (is_422()) return rebuild_inter_422<Sample>(*this);
  ChromaRecords<Sample> records(*this);
  return moxiReconstructChromaInter4x4_H264High_32s16u_IP2R(records.pointers);
}

template <class Sample>
MoxStatus rebuild_intra_422(Rebuilding<Sample>& work) {
  ChromaRecords<Sample> records(work);
  return kIntra422<Sample>(records.pointers, work.mb.chroma_mode, work.mb.denied, work.dc_scale_422(0),
                           work.dc_scale_422(1));
}

template <class Sample>
MoxStatus rebuild_intra_422_halves(Rebuilding<Sample>& work) {
  ChromaRecords<Sample> records(work);
  return kIntra422Halves<Sample>(records.pointers, work.mb.chroma_mode, work.denied_half(0), work.denied_half(1),
                                 work.dc_scale_422(0), work.dc_scale_422(1));
}

template <class Sample>
MoxStatus rebuild_inter_422(Rebuilding<Sample>& work) {
  ChromaRecords<Sample> records(work);
  return kInter422<Sample>(records.pointers, work.dc_scale_422(0), work.dc_scale_422(1));
}

template MoxStatus rebuild_intra_422(Rebuilding<Mox8u>&);
template MoxStatus rebuild_intra_422_halves(Rebuilding<Mox8u>&);
template MoxStatus rebuild_inter_422(Rebuilding<Mox8u>&);

}  // namespace moxdec::h264
