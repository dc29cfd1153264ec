#include "moxdec/h261/group_decoder.hpp"

#include "common/h261_vlc_tables.hpp"
#include "moxvc.h"

namespace moxdec::h261 {
namespace {

/// A start code, or the zeros in front of one or at the end: no address begins with so many.
constexpr int kZerosOfStartCode = 15;

/// A sum of vector components comes back within -16 to 15.
int wrapped(int component) { return ((component + 16) & 31) - 16; }

}  // namespace

GroupDecoder::GroupDecoder(const Frame& frame, const Frame* reference, ByteReader& bits)
    : frame_(frame), reference_(reference), bits_(bits) {}

void GroupDecoder::decode(int mb_x, int mb_y) {
  first_x_ = mb_x, first_y_ = mb_y;
  read_quantiser();
  skip_spare_information(bits_);
  while (bits_.peek(kZerosOfStartCode) != 0) {
    const int increment = bits_.read(example::kH261Address, "broken address of a macroblock");
    if (increment == example::kH261Stuffing) continue;
    require(address_ + increment <= kGroupSize, "more macroblocks than the group has");
    copy_macroblocks(increment - 1);
    begin_macroblock(address_ + 1);
    decode_macroblock(read_modes());
  }
  copy_macroblocks(kGroupSize - address_);
}

/// Vectors are coded as differences along a row alone.
void GroupDecoder::begin_macroblock(int address) {
  address_ = address;
  mb_x_ = first_x_ + (address - 1) % kGroupWidth, mb_y_ = first_y_ + (address - 1) / kGroupWidth;
  if (mb_x_ == first_x_) vector_ = {};
}

void GroupDecoder::copy_macroblocks(int count) {
  for (; count > 0; --count) {
    begin_macroblock(address_ + 1);
    vector_ = {};
    decode_macroblock({});
  }
}

void GroupDecoder::read_quantiser() {
  quantiser_ = bits_.number(5);
  require(quantiser_ != 0, "a quantiser is 0");
}

GroupDecoder::Modes GroupDecoder::read_modes() {
  Modes modes;
  modes.type = bits_.read(example::kH261Type, "broken type of a macroblock");
  if (modes.type & example::kH261Quant) read_quantiser();
  if (modes.type & example::kH261Vector) {
    read_vector();
  } else {
    vector_ = {};
  }
  modes.vector = vector_;
  if (modes.type & example::kH261Intra) modes.pattern = 63;
  if (modes.type & example::kH261Pattern) {
    modes.pattern = bits_.read(example::kH261BlockPattern, "broken pattern of blocks");
  }
  return modes;
}

void GroupDecoder::read_vector() {
  for (int* component : {&vector_.x, &vector_.y}) {
    *component = wrapped(*component + bits_.read(example::kH261VectorDifference, "broken vector"));
  }
}

void GroupDecoder::decode_macroblock(const Modes& modes) {
  for (int i = 0; i < 6; ++i) {
    const int plane = i < 4 ? 0 : i - 3;
    const int x = i < 4 ? 16 * mb_x_ + i % 2 * 8 : 8 * mb_x_, y = i < 4 ? 16 * mb_y_ + i / 2 * 8 : 8 * mb_y_;
    const int step = frame_.step(plane);
    Mox8u* const target = frame_.samples<Mox8u>(plane) + y * step + x;
    if (modes.type & example::kH261Intra) {
      decode_intra_block(target, step);
    } else {
      predict(plane, x, y, modes, target);
      if (modes.pattern >> (5 - i) & 1) decode_residual_block(target, step);
    }
  }
}

/// Chroma vectors are half of the luma ones, towards zero.
void GroupDecoder::predict(int plane, int x, int y, const Modes& modes, Mox8u* target) const {
  require(reference_ != nullptr, "a picture that is predicted from is missing");
  const int scale = plane == 0 ? 1 : 2, step = reference_->step(plane);
  const int from_x = x + modes.vector.x / scale, from_y = y + modes.vector.y / scale;
  require(from_x >= 0 && from_y >= 0 && from_x + 8 <= frame_.layout().width / scale &&
              from_y + 8 <= frame_.layout().height / scale,
          "a vector points outside of the picture");
  const auto move = modes.type & example::kH261Filter ? moxiFilter8x8_H261_8u_C1R : moxiCopy8x8_8u_C1R;
  move(reference_->samples<Mox8u>(plane) + from_y * step + from_x, step, target, frame_.step(plane));
}

void GroupDecoder::decode_intra_block(Mox8u* target, int step) {
  Mox32s last = 0;
  require(
      moxiReconstructCoeffsIntra_H261_1u16s(bits_.byte(), bits_.offset(), block_.data(), &last, quantiser_) == moxStsOk,
      "broken coefficients");
  bits_.expect_inside();
  moxiDCT8x8InvOrSet_16s8u_C1R(block_.data(), target, step, last == 0);
}

void GroupDecoder::decode_residual_block(Mox8u* target, int step) {
  Mox32s last = 0;
  require(
      moxiReconstructCoeffsInter_H261_1u16s(bits_.byte(), bits_.offset(), block_.data(), &last, quantiser_) == moxStsOk,
      "broken coefficients");
  bits_.expect_inside();
  moxiDCT8x8Inv_16s_C1I(block_.data());
  moxiAdd8x8_16s8u_C1IRS(block_.data(), 16, target, step);
}

void skip_spare_information(ByteReader& bits) {
  while (bits.flag()) bits.skip(8);
}

}  // namespace moxdec::h261
