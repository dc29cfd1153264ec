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
constexpr std::array<Mox32s, 17> scan_4x4(const std::array<std::uint8_t, 16>& order) {
  std::array<Mox32s, 17> scan{};
  std::ranges::copy(order, scan.begin());
  scan[16] = 15;
  return scan;
}
constexpr std::array<Mox32s, 17> kScans4x4[] = {scan_4x4(example::kZigzag4x4), scan_4x4(example::kFieldScan4x4)};

/// By part. The library clears 16 elements at its target before it stores a part, so the target lies behind the block.
constexpr std::array<std::array<Mox32s, 16>, 4> scans_8x8(const std::array<std::uint8_t, 64>& order) {
  std::array<std::array<Mox32s, 16>, 4> scans{};
  for (int i = 0; i < 64; ++i) scans[i % 4][i / 4] = order[i] - 64;
  return scans;
}
constexpr std::array<std::array<Mox32s, 16>, 4> kScans8x8[] = {scans_8x8(example::kZigzag8x8),
                                                               scans_8x8(example::kFieldScan8x8)};

/// The library's functions for each width of coefficients.
template <class Coeff>
constexpr auto kDecodeBlock = moxiDecodeCAVLCCoeffs_H264_1u16s;
template <>
constexpr auto kDecodeBlock<Mox32s> = moxiDecodeCAVLCCoeffs_H264_1u32s;
template <class Coeff>
constexpr std::array kDecodeChromaDc = {moxiDecodeCAVLCChromaDcCoeffs_H264_1u16s,
                                        moxiDecodeCAVLCChroma422DcCoeffs_H264_1u16s};
template <>
constexpr std::array kDecodeChromaDc<Mox32s> = {moxiDecodeCAVLCChromaDcCoeffs_H264_1u32s,
                                                moxiDecodeCAVLCChroma422DcCoeffs_H264_1u32s};

}  // namespace

CavlcTables::CavlcTables() {
  for (std::size_t i = 0; i < coeff_token_.size(); ++i) coeff_token_[i] = build(example::kCoeffTokenSpecs[i].data());
  for (std::size_t i = 0; i < chroma_dc_.size(); ++i) {
    chroma_dc_[i].token = build(example::kCoeffTokenSpecs[3 + i].data());
  }
  for (std::size_t i = 1; i < total_zeros_.size(); ++i)
    total_zeros_[i] = build(example::kTotalZerosSpecs[i - 1].data());
  for (std::size_t i = 1; i < 4; ++i) chroma_dc_[0].total_zeros[i] = build(example::kTotalZeros2x2Specs[i - 1].data());
  for (std::size_t i = 1; i < 8; ++i) chroma_dc_[1].total_zeros[i] = build(example::kTotalZeros2x4Specs[i - 1].data());
  for (std::size_t i = 1; i <= 7; ++i) run_before_[i] = build(example::kRunBeforeSpecs[i - 1].data());
  std::fill(run_before_.begin() + 8, run_before_.end(), run_before_[7]);
}

const MoxVlcTable* CavlcTables::build(const MoxVlcSpec* spec) {
  MoxVlcTable* table = nullptr;
  require(moxiHuffmanTableInitAlloc_32s(spec, &table) == moxStsOk, "a code table cannot be built");
  owned_[count_++].reset(table);
  return table;
}

void CavlcTables::broken() { throw DecodeError("broken coefficients"); }

template <class Coeff>
int CavlcTables::read(BitReader& bits, Coeff** out, int context, int max, const Mox32s* scan) const {
  Mox16s count = 0;
  const MoxStatus status =
      kDecodeBlock<Coeff>(bits.word(), bits.offset(), &count, out, context, static_cast<Mox16s>(max),
                          coeff_token_.data(), total_zeros_.data(), run_before_.data(), scan);
  if (status != moxStsOk || count > max) [[unlikely]]
    broken();
  bits.expect_no_overrun();
  return count;
}

template <class Coeff>
int CavlcTables::read_block(BitReader& bits, Coeff** out, int context, int max, bool field) const {
  return read(bits, out, context, max, kScans4x4[field].data());
}

template <class Coeff>
int CavlcTables::read_part_8x8(BitReader& bits, Coeff* block, int part, int context, bool field) const {
  Coeff* target = block + 64;
  return read(bits, &target, context, 16, kScans8x8[field][part].data());
}

template <class Coeff>
int CavlcTables::read_chroma_dc(BitReader& bits, Coeff** out, bool is_422) const {
  Mox16s count = 0;
  const ChromaDc& tables = chroma_dc_[is_422];
  const MoxStatus status = kDecodeChromaDc<Coeff>[is_422](bits.word(), bits.offset(), &count, out, tables.token,
                                                          tables.total_zeros.data(), run_before_.data());
  if (status != moxStsOk) [[unlikely]]
    broken();
  bits.expect_no_overrun();
  return count;
}

template int CavlcTables::read_block(BitReader&, Mox16s**, int, int, bool) const;
template int CavlcTables::read_block(BitReader&, Mox32s**, int, int, bool) const;
template int CavlcTables::read_part_8x8(BitReader&, Mox16s*, int, int, bool) const;
template int CavlcTables::read_part_8x8(BitReader&, Mox32s*, int, int, bool) const;
template int CavlcTables::read_chroma_dc(BitReader&, Mox16s**, bool) const;
template int CavlcTables::read_chroma_dc(BitReader&, Mox32s**, bool) const;

}  // namespace moxdec::h264
