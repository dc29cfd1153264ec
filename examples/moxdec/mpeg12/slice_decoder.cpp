#include "moxdec/mpeg12/slice_decoder.hpp"

#include <algorithm>

#include "common/mpeg12_tables.hpp"
#include "moxvc.h"

namespace moxdec::mpeg12 {
namespace {

/// Where a block of a macroblock lies: plane, sample column, first row, and rows from one to the next.
struct Place {
  int plane, x, y, gap;
};
/// Blocks 0 to 3 are luma, then U and V in turn. With a field transform, the upper blocks hold the rows of the top
/// field; 4:2:0 chroma, which has one block a plane, has none.
Place place_of(int i, bool field_transform, bool one_chroma_block) {
  const int plane = i < 4 ? 0 : 1 + i % 2, lower = i < 4 ? i / 2 : i / 2 - 2;
  const bool fields = field_transform && !(plane > 0 && one_chroma_block);
  return {plane, i < 4 ? i % 2 * 8 : 0, fields ? lower : 8 * lower, fields ? 2 : 1};
}

}  // namespace

SliceDecoder::SliceDecoder(Picture& picture, const Weights& weights, const CodeTables& tables, WordReader bits)
    : picture_(picture),
      header_(picture.header),
      weights_(weights),
      tables_(tables),
      bits_(bits),
      motion_reader_(header_, tables) {}

void SliceDecoder::decode(int start_code) {
  read_header(start_code);
  reset_dc();
  const int first = address_ + read_increment();
  require(first == picture_.next_address, "macroblocks are missing, or come twice");
  begin_macroblock(first);
  for (;;) {
    decode_macroblock();
    if (bits_.peek(23) == 0) return;
    skip_macroblocks(read_increment() - 1);
    begin_macroblock(address_ + 1);
  }
}

void SliceDecoder::read_header(int start_code) {
  int row = start_code - kFirstSlice;
  if (picture_.sequence.mpeg2 && picture_.sequence.height > 2800) row += bits_.number(3) << 7;
  address_ = row * picture_.mb_width() - 1;
  set_scale(bits_.number(5));
  skip_extra_information(bits_);
}

void SliceDecoder::set_scale(int code) {
  require(code != 0, "a quantiser scale is 0");
  scale_ = picture_.sequence.mpeg2 ? example::kQuantiserScales[header_.nonlinear_scale][code] : code;
}

void SliceDecoder::reset_dc() {
  dc_.fill(static_cast<Mox16s>(picture_.sequence.mpeg2 ? 128 << header_.intra_dc_precision : 1024));
}

int SliceDecoder::read_increment() {
  for (int sum = 0;;) {
    const int value = tables_.address_increment.read(bits_, "broken address of a macroblock");
    if (value < example::kAddressEscape) return sum + value;
    if (value == example::kAddressEscape) {
      sum += 33;
      require(sum < picture_.macroblocks(), "more macroblocks than the picture has");
    } else {
      require(!picture_.sequence.mpeg2, "broken address of a macroblock");
    }
  }
}

void SliceDecoder::begin_macroblock(int address) {
  require(address < picture_.macroblocks(), "more macroblocks than the picture has");
  address_ = address;
  picture_.next_address = address + 1;
  mb_x_ = address % picture_.mb_width(), mb_y_ = address / picture_.mb_width();
}

void SliceDecoder::skip_macroblocks(int count) {
  if (count == 0) return;
  require(header_.type != PictureType::kI, "a macroblock of an I picture is left out");
  if (header_.type == PictureType::kP) {
    motion_reader_.reset();
    motion_.used = {true, false};
  }
  require(motion_.any(), "a macroblock of a B picture is left out behind an intra one");
  reset_dc();
  motion_reader_.repeat(motion_);
  for (; count > 0; --count) {
    begin_macroblock(address_ + 1);
    predict_macroblock(picture_, mb_x_, mb_y_, motion_, residual_);
  }
}

void SliceDecoder::decode_macroblock() {
  const Modes modes = read_modes();
  motion_ = modes.motion;
  if (modes.type & example::kIntra) {
    motion_.used = {};
    for (int i = 0; i < block_count(); ++i) decode_intra_block(i, modes.field_transform);
    return;
  }
  reset_dc();
  for (int i = 0; i < block_count(); ++i) {
    if (modes.pattern >> (7 - i) & 1) decode_residual_block(i, modes.field_transform);
  }
  predict_macroblock(picture_, mb_x_, mb_y_, motion_, residual_);
  if (modes.pattern) residual_ = {};
}

SliceDecoder::Modes SliceDecoder::read_modes() {
  using namespace example;
  Modes modes;
  modes.type = tables_.macroblock_type(header_.type).read(bits_, "broken type of a macroblock");
  const bool intra = modes.type & kIntra, moves = modes.type & (kMotionForward | kMotionBackward);
  const bool has_kind = !header_.is_frame() || !header_.frame_pred_frame_dct;
  const int kind = moves && has_kind ? read_motion_type() : 0;
  modes.motion.kind = header_.is_frame() ? MotionKind::kFrame : MotionKind::kField;
  if (kind == 3) modes.motion.kind = MotionKind::kDualPrime;
  if (kind == 1) modes.motion.kind = MotionKind::kField;
  if (kind == 2) modes.motion.kind = header_.is_frame() ? MotionKind::kFrame : MotionKind::k16x8;
  if (header_.is_frame() && !header_.frame_pred_frame_dct && (intra || modes.type & kPattern)) {
    modes.field_transform = bits_.flag();
  }
  if (modes.type & kQuant) set_scale(bits_.number(5));
  read_motion(modes);
  if (modes.type & kPattern) modes.pattern = read_pattern();
  return modes;
}

int SliceDecoder::read_motion_type() {
  const int type = bits_.number(2);
  require(type != 0, "a kind of motion is none");
  require(type != 3 || header_.type == PictureType::kP, "dual prime in a B picture");
  return type;
}

void SliceDecoder::read_motion(Modes& modes) {
  using namespace example;
  const bool concealment = modes.type & kIntra && header_.concealment_vectors;
  if (modes.type & kMotionForward || concealment) motion_reader_.read(bits_, kForward, modes.motion);
  if (modes.type & kMotionBackward) motion_reader_.read(bits_, kBackward, modes.motion);
  if (concealment) bits_.marker();
  if (modes.type & kIntra) {
    if (!concealment) motion_reader_.reset();
  } else if (!modes.motion.any()) {  // in P pictures: as it was
    motion_reader_.reset();
    motion_reader_.repeat(modes.motion);
    modes.motion.used[kForward] = true;
  }
}

int SliceDecoder::read_pattern() {
  const int six = tables_.coded_block_pattern.read(bits_, "broken pattern of blocks");
  if (picture_.sequence.chroma != Chroma::k420) return six << 2 | bits_.number(2);
  require(six != 0, "broken pattern of blocks");
  return six << 2;
}

void SliceDecoder::decode_intra_block(int i, bool field_transform) {
  const Place place = place_of(i, field_transform, block_count() == 6);
  const bool chroma = place.plane > 0;
  const auto& matrix = weights_.of[chroma][0];
  const auto* const scan = tables_.scans[header_.alternate_scan].data();
  const auto* const dc_size = tables_.dc_size[chroma].get();
  const auto* const ac = tables_.coefficients[header_.intra_vlc_format].get();
  Mox32s last = 0;
  const MoxStatus status =
      picture_.sequence.mpeg2
          ? moxiReconstructDCTBlockIntra_MPEG2_32s(bits_.word(), bits_.offset(), dc_size, ac, scan, scale_,
                                                   matrix.data(), &dc_[place.plane], 3 - header_.intra_dc_precision,
                                                   block_.data(), &last)
          : moxiReconstructDCTBlockIntra_MPEG1_32s(bits_.word(), bits_.offset(), dc_size, ac, scan, scale_,
                                                   matrix.data(), &dc_[place.plane], block_.data(), &last);
  require(status == moxStsOk, "broken coefficients");
  bits_.expect_inside();
  saturate();
  const View view = view_of(*picture_.frame, header_.structure);
  const int step = view.step[place.plane];
  const int x = (16 * mb_x_ >> int{chroma}) + place.x;
  const int y = (16 * mb_y_ >> (chroma ? picture_.chroma_rows_shift() : 0)) + place.y;
  const bool dc_alone = last == 0 && block_[63] == 0;
  moxiDCT8x8InvOrSet_16s8u_C1R(block_.data(), view.base[place.plane] + y * step + x, place.gap * step, dc_alone);
}

void SliceDecoder::decode_residual_block(int i, bool field_transform) {
  const Place place = place_of(i, field_transform, block_count() == 6);
  const auto& matrix = weights_.of[place.plane > 0][1];
  const auto* const scan = tables_.scans[header_.alternate_scan].data();
  const auto* const codes = tables_.coefficients[0].get();
  const auto reconstruct =
      picture_.sequence.mpeg2 ? moxiReconstructDCTBlock_MPEG2_32s : moxiReconstructDCTBlock_MPEG1_32s;
  Mox32s last = 0;
  const MoxStatus status =
      reconstruct(bits_.word(), bits_.offset(), codes, codes, scan, scale_, matrix.data(), block_.data(), &last);
  require(status == moxStsOk, "broken coefficients");
  bits_.expect_inside();
  saturate();
  const int row = Residual::step(place.plane);
  Mox16s* const target = residual_.plane(place.plane) + place.y * row + place.x;
  moxiDCT8x8Inv_16s_C1R(block_.data(), target, 2 * place.gap * row);
}

/// MPEG-2 coefficients have 12 bits, which the library does not see to.
void SliceDecoder::saturate() {
  if (!picture_.sequence.mpeg2) return;
  for (Mox16s& value : block_) value = std::clamp<Mox16s>(value, -2048, 2047);
}

}  // namespace moxdec::mpeg12
