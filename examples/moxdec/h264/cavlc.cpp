#include "moxdec/h264/cavlc.hpp"

#include <algorithm>

#include "common/h264_scaling_tables.hpp"
#include "common/h264_tables.hpp"
#include "common/h264_vlc_tables.hpp"
#include "moxdec/error.hpp"

namespace moxdec::h264 {
namespace {

/// A block of 15 coefficients starts at scan index 1, and its tables allow one coefficient too many. The 17th index
/// keeps that one inside the block.
constexpr std::array<Mox32s, 17> kScan = [] {
  std::array<Mox32s, 17> scan{};
  std::ranges::copy(example::kZigzag4x4, scan.begin());
  scan[16] = 15;
  return scan;
}();

/// By part. The library clears 16 elements at its target before it stores a part, so the target lies behind the block.
constexpr std::array<std::array<Mox32s, 16>, 4> kScans8x8 = [] {
  std::array<std::array<Mox32s, 16>, 4> scans{};
  for (int i = 0; i < 64; ++i) scans[i % 4][i / 4] = example::kZigzag8x8[i] - 64;
  return scans;
}();

}  // namespace

CavlcTables::CavlcTables() {
  for (std::size_t i = 0; i < coeff_token_.size(); ++i) coeff_token_[i] = build(example::kCoeffTokenSpecs[i].data());
  chroma_dc_token_ = build(example::kCoeffTokenSpecs[3].data());
  for (std::size_t i = 1; i < total_zeros_.size(); ++i)
    total_zeros_[i] = build(example::kTotalZerosSpecs[i - 1].data());
  for (std::size_t i = 1; i < chroma_dc_total_zeros_.size(); ++i) {
    chroma_dc_total_zeros_[i] = build(example::kTotalZeros2x2Specs[i - 1].data());
  }
  for (std::size_t i = 1; i <= 7; ++i) run_before_[i] = build(example::kRunBeforeSpecs[i - 1].data());
  std::fill(run_before_.begin() + 8, run_before_.end(), run_before_[7]);
}

const MoxVlcTable* CavlcTables::build(const MoxVlcSpec* spec) {
  MoxVlcTable* table = nullptr;
  require(moxiHuffmanTableInitAlloc_32s(spec, &table) == moxStsOk, "a code table cannot be built");
  owned_[count_++].reset(table);
  return table;
}

int CavlcTables::read(BitReader& bits, Mox16s** out, int context, int max, const Mox32s* scan) const {
  Mox16s count = 0;
  const MoxStatus status =
      moxiDecodeCAVLCCoeffs_H264_1u16s(bits.word(), bits.offset(), &count, out, context, static_cast<Mox16s>(max),
                                       coeff_token_.data(), total_zeros_.data(), run_before_.data(), scan);
  require(status == moxStsOk && count <= max, "broken coefficients");
  bits.expect_no_overrun();
  return count;
}

int CavlcTables::read_block(BitReader& bits, Mox16s** out, int context, int max) const {
  return read(bits, out, context, max, kScan.data());
}

int CavlcTables::read_part_8x8(BitReader& bits, Mox16s* block, int part, int context) const {
  Mox16s* target = block + 64;
  return read(bits, &target, context, 16, kScans8x8[part].data());
}

int CavlcTables::read_chroma_dc(BitReader& bits, Mox16s** out) const {
  Mox16s count = 0;
  const MoxStatus status = moxiDecodeCAVLCChromaDcCoeffs_H264_1u16s(
      bits.word(), bits.offset(), &count, out, chroma_dc_token_, chroma_dc_total_zeros_.data(), run_before_.data());
  require(status == moxStsOk, "broken coefficients");
  bits.expect_no_overrun();
  return count;
}

}  // namespace moxdec::h264
