#include "moxdec/mpeg4/texture.hpp"

namespace moxdec::mpeg4 {
namespace {

constexpr int kZigzag = 0, kAlternateVertical = 1, kAlternateHorizontal = 2;
constexpr Mox32s kBitsPerPixel = 8, kPlainCodes = 0;

}  // namespace

Quantisers::Quantisers(const Layer& layer) {
  Mox32s sizes[2] = {};
  moxiQuantInvIntraGetSize_MPEG4(&sizes[0]);
  moxiQuantInvInterGetSize_MPEG4(&sizes[1]);
  for (int i = 0; i < 2; ++i) {
    memory_[i].resize(static_cast<std::size_t>(sizes[i]));
    auto* const record = reinterpret_cast<MoxiQuantInvState*>(memory_[i].data());
    const Mox8u* const weights = layer.weights ? (*layer.weights)[i].data() : nullptr;
    const auto init = i == 0 ? moxiQuantInvIntraInit_MPEG4 : moxiQuantInvInterInit_MPEG4;
    require(init(weights, record, kBitsPerPixel) == moxStsOk, "a quantiser cannot be built");
  }
}

Texture::Target Texture::target(const Place& place, const Macroblock& mb, int block) const {
  const Frame& frame = *picture_.frame;
  if (block >= 4) {
    const int plane = block - 3, step = frame.step(plane);
    return {frame.samples<Mox8u>(plane) + 8 * place.y * step + 8 * place.x, step};
  }
  const int step = frame.step(0), column = block % 2, lower = block / 2;
  Mox8u* const left = frame.samples<Mox8u>(0) + 16 * place.y * step + 16 * place.x + 8 * column;
  if (mb.field_transform) return {left + lower * step, 2 * step};
  return {left + 8 * lower * step, step};
}

Mox16s Texture::read_dc(ByteReader& bits, int block) {
  Mox16s dc = 0;
  require(moxiDecodeDCIntra_MPEG4_1u16s(bits.byte(), bits.offset(), &dc, block >= 4) == moxStsOk,
          "broken DC of a block");
  bits.expect_inside();
  return dc;
}

void Texture::decode_intra(ByteReader& bits, const Place& place, const Macroblock& mb) {
  for (int block = 0; block < 6; ++block) {
    decode_intra_block(bits, place, mb, block, mb.dc_codes ? read_dc(bits, block) : Mox16s{0});
  }
}

int Texture::scan(const IntraSource& source, const Macroblock& mb) const {
  if (!mb.ac_prediction || picture_.header.alternate_scan) return scan();
  return source.from_above ? kAlternateHorizontal : kAlternateVertical;
}

int Texture::scan() const { return picture_.header.alternate_scan ? kAlternateVertical : kZigzag; }

void Texture::decode_intra_block(ByteReader& bits, const Place& place, const Macroblock& mb, int block, Mox16s dc) {
  const IntraSource source = intra_.source(picture_, place, block);
  block_ = {};
  Mox32s last = 0;
  if (mb.is_coded(block)) {
    require(moxiDecodeCoeffsIntra_MPEG4_1u16s(bits.byte(), bits.offset(), block_.data(), &last, kPlainCodes,
                                              mb.dc_codes, scan(source, mb)) == moxStsOk,
            "broken coefficients");
    bits.expect_inside();
  }
  finish_intra_block(place, mb, block, source, dc, last == 0);
}

void Texture::set_intra_block(const Place& place, const Macroblock& mb, int block, Mox16s dc, const Levels& levels) {
  const IntraSource source = intra_.source(picture_, place, block);
  moxiScanInv_16s_C1(levels.data(), block_.data(), 63, scan(source, mb));
  finish_intra_block(place, mb, block, source, dc, false);
}

/// From the levels of a block in raster order.
void Texture::finish_intra_block(const Place& place, const Macroblock& mb, int block, const IntraSource& source,
                                 Mox16s dc, bool ac_is_zero) {
  if (mb.dc_codes) block_[0] = dc;
  IntraPredictor::add(source, mb, block, block_.data());
  intra_.keep_levels(place, block, block_.data());
  moxiQuantInvIntra_MPEG4_16s_C1I(block_.data(), 63, quantisers_.intra(), mb.quantiser, block >= 4);
  intra_.keep_dc(place, block, block_[0]);
  const bool dc_alone = ac_is_zero && !mb.ac_prediction && block_[63] == 0;
  const auto [samples, step] = target(place, mb, block);
  moxiDCT8x8InvOrSet_16s8u_C1R(block_.data(), samples, step, dc_alone);
}

void Texture::add_residual(ByteReader& bits, const Place& place, const Macroblock& mb) {
  for (int block = 0; block < 6; ++block) {
    if (!mb.is_coded(block)) continue;
    Mox32s last = 0;
    require(moxiReconstructCoeffsInter_MPEG4_1u16s(bits.byte(), bits.offset(), block_.data(), &last, kPlainCodes,
                                                   scan(), quantisers_.inter(), mb.quantiser) == moxStsOk,
            "broken coefficients");
    bits.expect_inside();
    add_residual_block(place, mb, block);
  }
}

void Texture::add_block(const Place& place, const Macroblock& mb, int block, const Levels& levels) {
  moxiScanInv_16s_C1(levels.data(), block_.data(), 63, scan());
  moxiQuantInvInter_MPEG4_16s_C1I(block_.data(), 63, quantisers_.inter(), mb.quantiser);
  add_residual_block(place, mb, block);
}

void Texture::add_residual_block(const Place& place, const Macroblock& mb, int block) {
  moxiDCT8x8Inv_16s_C1I(block_.data());
  const auto [samples, step] = target(place, mb, block);
  moxiAdd8x8_16s8u_C1IRS(block_.data(), 16, samples, step);
}

}  // namespace moxdec::mpeg4
