#include "moxdec/h263/macroblock_decoder.hpp"

#include <algorithm>

#include "common/h263_quantiser_tables.hpp"
#include "common/h263_vlc_tables.hpp"
#include "moxdec/h263/motion.hpp"

namespace moxdec::h263 {
namespace {

/// In place of a type: a macroblock that is a copy.
constexpr int kNotCoded = -2;

/// Scan orders as the library counts them. A block that is predicted across has most of its rest in the first column.
constexpr int kZigzagScan = 0, kVerticalScan = 1, kHorizontalScan = 2;
constexpr int scan_of(IntraMode mode) {
  return mode == IntraMode::kDc ? kZigzagScan : mode == IntraMode::kVertical ? kHorizontalScan : kVerticalScan;
}

}  // namespace

void MacroblockDecoder::decode(int mb_x, int mb_y) {
  mb_x_ = mb_x, mb_y_ = mb_y;
  Macroblock& macroblock = picture_.at(mb_x, mb_y);
  require(macroblock.segment == Macroblock::kNoSegment, "a macroblock comes twice");
  macroblock.segment = segment_;
  const int type = read_type();
  macroblock.coded = type != kNotCoded;
  if (macroblock.coded) decode_coded(type);
  macroblock.quantiser = static_cast<Mox8u>(quantiser_);
}

/// Four times the type and the coded chroma blocks.
int MacroblockDecoder::read_type() {
  for (;;) {
    if (!picture_.header.intra && bits_.flag()) return kNotCoded;
    const int type = picture_.header.intra ? bits_.read(example::kMcbpcIntra, "broken type of a macroblock")
                                           : bits_.read(example::kMcbpcInter, "broken type of a macroblock");
    if (type != example::kMcbpcStuffing) return type;
  }
}

void MacroblockDecoder::decode_coded(int type_and_chroma) {
  using namespace example;
  const int type = type_and_chroma >> 2, chroma = type_and_chroma & 3;
  Macroblock& macroblock = picture_.at(mb_x_, mb_y_);
  macroblock.intra = type == kIntra || type == kIntraQ;
  macroblock.four_vectors = type == kInter4V || type == kInter4VQ;
  const IntraMode mode = macroblock.intra && options_.advanced_intra ? read_intra_mode() : IntraMode::kDc;
  const int luma = bits_.read(kCbpy, "broken pattern of blocks");
  // The codes are those of intra macroblocks for an inter one that has much coded, too.
  const bool as_intra = macroblock.intra || (options_.alternative_inter && chroma == 3);
  const int pattern = (as_intra ? luma : 15 - luma) << 2 | chroma;
  if (type == kInterQ || type == kIntraQ || type == kInter4VQ) read_quantiser_change();
  if (macroblock.intra) {
    for (int i = 0; i < 6; ++i) decode_intra_block(i, pattern >> (5 - i) & 1, mode);
    return;
  }
  read_vectors(bits_, picture_, mb_x_, mb_y_);
  macroblock.pattern = static_cast<Mox8u>(pattern);
  macroblock.first_residual = static_cast<int>(picture_.residuals.size());
  for (int i = 0; i < 6; ++i) {
    if (pattern >> (5 - i) & 1) decode_residual_block(i);
  }
}

IntraMode MacroblockDecoder::read_intra_mode() {
  if (!bits_.flag()) return IntraMode::kDc;
  return bits_.flag() ? IntraMode::kHorizontal : IntraMode::kVertical;
}

void MacroblockDecoder::read_quantiser_change() {
  if (!options_.modified_quantiser) {
    quantiser_ = std::clamp(quantiser_ + example::kH263QuantiserChange[bits_.bits(2)], 1, 31);
  } else if (bits_.flag()) {
    quantiser_ = example::kH263QuantiserStep[quantiser_ - 1][bits_.bits(1)];
  } else {
    quantiser_ = read_quantiser(bits_);
  }
}

int MacroblockDecoder::block_quantiser(int i) const {
  return i < 4 ? quantiser_ : options_.chroma_quantiser(quantiser_);
}

/// `coded`: there is more than the DC, or with advanced intra coding there is anything.
void MacroblockDecoder::decode_intra_block(int i, bool coded, IntraMode mode) {
  Mox32s last = 0;
  if (coded || !options_.advanced_intra) {
    require(moxiReconstructCoeffsIntra_H263_1u16s(bits_.byte(), bits_.offset(), block_.data(), &last, coded,
                                                  block_quantiser(i), options_.advanced_intra, scan_of(mode),
                                                  options_.modified_quantiser) == moxStsOk,
            "broken coefficients");
    bits_.expect_inside();
  } else {
    block_.fill(0);
  }
  if (options_.advanced_intra) intra_predictor_.complete(mb_x_, mb_y_, i, mode, block_);
  const BlockPlace place(i, mb_x_, mb_y_);
  moxiDCT8x8InvOrSet_16s8u_C1R(block_.data(), place.in(*picture_.frame), picture_.frame->step(place.plane),
                               last == 0 && !options_.advanced_intra);
}

/// With alternative codes, a block that runs over its end by the codes of inter blocks has those of intra ones.
void MacroblockDecoder::decode_residual_block(int i) {
  Mox32s last = 0;
  const int quantiser = block_quantiser(i), modified = options_.modified_quantiser;
  MoxStatus status =
      moxiReconstructCoeffsInter_H263_1u16s(bits_.byte(), bits_.offset(), block_.data(), &last, quantiser, modified);
  if (status == moxStsBadCode && options_.alternative_inter) {
    status =
        moxiDecodeCoeffsIntra_H263_1u16s(bits_.byte(), bits_.offset(), block_.data(), &last, 1, modified, kZigzagScan);
    moxiQuantInvInter_H263_16s_C1I(block_.data(), 63, quantiser, modified);
  }
  require(status == moxStsOk, "broken coefficients");
  bits_.expect_inside();
  if (modified) {
    for (Mox16s& value : block_) value = std::clamp<Mox16s>(value, -2048, 2047);
  }
  moxiDCT8x8Inv_16s_C1(block_.data(), picture_.residuals.emplace_back().data());
}

}  // namespace moxdec::h263
