#include "moxenc/residual.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "moxenc/cavlc.hpp"

namespace moxenc {
namespace {

constexpr std::uint32_t kLumaBits = 0x1fffe, kChromaBits = 0x7fe0000;

/// Place of each raster block in coding order; the same table leads back.
constexpr std::uint32_t luma_bit(std::size_t block) { return 2u << example::kBlockRaster[block]; }

/// Transforms and quantises differences in place. Returns the number of levels, negative if the DC is one of them.
int quantise(std::array<Mox16s, 16>& block, int qp, bool intra, Mox8u& last) {
  std::int8_t count = 0;
  expect_ok(moxiTransformQuantResidual_H264_16s_C1I(block.data(), qp, &count, intra, scan_positions(), &last));
  return count;
}

/// As quantise, for a block whose DC is coded elsewhere.
int quantise_ac(std::array<Mox16s, 16>& block, int qp, bool intra, Mox8u& last) {
  const int count = quantise(block, qp, intra, last);
  block[0] = 0;
  return count < 0 ? -count - 1 : count;
}

/// How much the levels of a block matter: little for ones among zeros, the less the further up they lie. kHeavy if
/// there is anything else.
constexpr int kHeavy = 9;
int weight_of(const std::array<Mox16s, 16>& block, int first) {
  constexpr int kOfRun[16] = {3, 2, 2, 1, 1, 1};
  int weight = 0, run = 0;
  for (std::size_t i = static_cast<std::size_t>(first); i < 16; ++i) {
    const int level = block[example::kZigzag4x4[i]];
    if (level == 0) {
      ++run;
      continue;
    }
    if (std::abs(level) > 1) return kHeavy;
    weight += kOfRun[run];
    run = 0;
  }
  return weight;
}

/// The levels of coded blocks one behind the other, as reconstruction takes them.
class Packed {
 public:
  template <std::size_t N>
  void add(const std::array<Mox16s, N>& block) {
    std::ranges::copy(block, end_);
    end_ += N;
  }
  Mox16s** start() { return &start_; }

 private:
  alignas(16) std::array<Mox16s, 17 * 16> levels_;
  Mox16s* start_ = levels_.data();
  Mox16s* end_ = levels_.data();
};

}  // namespace

void quantise_luma_inter(Macroblock& mb, const Planes& source, const Planes& picture) {
  constexpr int kLight = 6;
  Residual& residual = mb.residual;
  Mox16s sums[16];
  expect_ok(moxiSumsDiff16x16Blocks4x4_8u16s_C1(source.at[0], source.step[0], picture.at[0], picture.step[0], sums,
                                                residual.luma[0].data()));
  residual.coded &= kChromaBits;
  int weight = 0;
  for (std::size_t block = 0; block < 16; ++block) {
    if (quantise(residual.luma[block], mb.qp, false, residual.luma_last[block]) == 0) continue;
    residual.coded |= luma_bit(block);
    if (weight < kLight) weight += weight_of(residual.luma[block], 0);
  }
  if (weight < kLight) residual.coded &= kChromaBits;
}

bool quantise_luma_16x16(Macroblock& mb, const Planes& source, const Planes& picture) {
  Residual& residual = mb.residual;
  expect_ok(moxiSumsDiff16x16Blocks4x4_8u16s_C1(source.at[0], source.step[0], picture.at[0], picture.step[0],
                                                residual.luma_dc.data(), residual.luma[0].data()));
  residual.coded &= kChromaBits;
  for (std::size_t block = 0; block < 16; ++block) {
    if (quantise_ac(residual.luma[block], mb.qp, true, residual.luma_last[block]) != 0) {
      residual.coded |= luma_bit(block);
    }
  }
  std::int8_t count = 0;
  alignas(16) Mox16s transformed[16];
  const MoxStatus status = moxiTransformQuantLumaDC_H264_16s_C1I(residual.luma_dc.data(), transformed, mb.qp, &count, 1,
                                                                 scan_positions(), &residual.luma_dc_last);
  if (status == moxStsLevelOverflow) return false;
  expect_ok(status);
  if (count != 0) residual.coded |= 1;
  return true;
}

bool quantise_chroma(Macroblock& mb, const Planes& source, const Planes& picture) {
  constexpr int kLight = 7;
  Residual& residual = mb.residual;
  const int qp = chroma_qp(mb.qp);
  residual.coded &= ~kChromaBits;
  for (std::size_t plane = 0; plane < 2; ++plane) {
    auto& blocks = residual.chroma[plane];
    expect_ok(moxiSumsDiff8x8Blocks4x4_8u16s_C1(source.at[plane + 1], source.step[plane + 1], picture.at[plane + 1],
                                                picture.step[plane + 1], residual.chroma_dc[plane].data(),
                                                blocks[0].data()));
    int weight = 0;
    for (std::size_t block = 0; block < 4; ++block) {
      if (quantise_ac(blocks[block], qp, mb.is_intra(), residual.chroma_last[plane][block]) == 0) continue;
      residual.coded |= 1u << (19 + 4 * plane + block);
      weight += weight_of(blocks[block], 1);
    }
    if (weight < kLight) residual.coded &= ~(15u << (19 + 4 * plane));
    std::int8_t count = 0;
    Mox16s transformed[4];
    const MoxStatus status = moxiTransformQuantChromaDC_H264_16s_C1I(residual.chroma_dc[plane].data(), transformed, qp,
                                                                     &count, mb.is_intra(), 1);
    if (status == moxStsLevelOverflow) return false;
    expect_ok(status);
    if (count != 0) residual.coded |= 1u << (17 + plane);
  }
  return true;
}

void code_block(Macroblock& mb, std::size_t block, const Planes& source, const Planes& picture) {
  const auto row = static_cast<std::ptrdiff_t>(block / 4 * 4), column = static_cast<std::ptrdiff_t>(block % 4 * 4);
  const Mox8u* from = source.at[0] + row * source.step[0] + column;
  Mox8u* to = picture.at[0] + row * picture.step[0] + column;
  Residual& residual = mb.residual;
  auto& levels = residual.luma[block];
  expect_ok(moxiSub4x4_8u16s_C1R(from, source.step[0], to, picture.step[0], levels.data(), 8));
  residual.coded &= ~luma_bit(block);
  if (quantise(levels, mb.qp, true, residual.luma_last[block]) == 0) return;
  residual.coded |= luma_bit(block);
  alignas(16) std::array<Mox16s, 16> used = levels;
  expect_ok(moxiDequantTransformResidualAndAdd_H264_16s_C1I(to, used.data(), nullptr, to, picture.step[0],
                                                            picture.step[0], mb.qp, 1));
}

void reconstruct_luma(const Macroblock& mb, const Planes& picture, std::uint32_t unusable_neighbours) {
  const Residual& residual = mb.residual;
  if ((residual.coded & (kLumaBits | 1)) == 0) return;
  Packed packed;
  if (residual.coded & 1) packed.add(residual.luma_dc);
  for (const std::size_t block : example::kBlockRaster) {
    if (residual.coded & luma_bit(block)) packed.add(residual.luma[block]);
  }
  if (mb.kind == Kind::kIntra16x16) {
    expect_ok(moxiReconstructLumaIntra16x16MB_H264_16s8u_C1R(packed.start(), picture.at[0], picture.step[0],
                                                             mb.luma_mode, residual.coded, mb.qp, unusable_neighbours));
  } else {
    expect_ok(moxiReconstructLumaInterMB_H264_16s8u_C1R(packed.start(), picture.at[0], picture.step[0], residual.coded,
                                                        mb.qp));
  }
}

void reconstruct_chroma(const Macroblock& mb, const Planes& picture) {
  const Residual& residual = mb.residual;
  if ((residual.coded & kChromaBits) == 0) return;
  Packed packed;
  for (std::size_t plane = 0; plane < 2; ++plane) {
    if (residual.coded >> (17 + plane) & 1) packed.add(residual.chroma_dc[plane]);
  }
  for (std::size_t i = 0; i < 8; ++i) {
    if (residual.coded >> (19 + i) & 1) packed.add(residual.chroma[i / 4][i % 4]);
  }
  expect_ok(moxiReconstructChromaInterMB_H264_16s8u_P2R(packed.start(), picture.at[1], picture.at[2], picture.step[1],
                                                        residual.coded, chroma_qp(mb.qp)));
}

}  // namespace moxenc
