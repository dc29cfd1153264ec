#include "moxdec/avs/slice_decoder.hpp"

#include <algorithm>

#include "moxdec/avs/prediction.hpp"
#include "moxdec/avs/tables.hpp"

namespace moxdec::avs {
namespace {

constexpr Part kWhole = {0, 0, 2, 2};
constexpr int kDcMode = 2;

/// Macroblock types count from skipped; intra ones come last and tell the coded blocks.
constexpr int kSkipped = 0;
constexpr int kFourP = 4, kIntraP = 5;
constexpr int kDirectB = 1, kSymmetricB = 4, kFirstPairB = 5, kFourB = 23, kIntraB = 24;

/// Part i of a macroblock in four parts, or in two, one above the other or side by side.
constexpr Part quarter(int i) { return {i % 2, i / 2, 1, 1}; }
constexpr Part half(int i, bool side_by_side) { return side_by_side ? Part{i, 0, 1, 2} : Part{0, i, 2, 1}; }

}  // namespace

SliceDecoder::SliceDecoder(Picture& picture, BitReader bits)
    : picture_(picture), bits_(bits), slice_(picture.next_address), predictor_(picture, slice_) {}

void SliceDecoder::decode(int start_code) {
  header_ = read_slice_header(bits_, picture_.sequence, picture_.header);
  address_ = start_code * picture_.mb_width();
  require(address_ == picture_.next_address && !picture_.is_complete(),
          "macroblocks are missing in front of the slice");
  qp_ = header_.qp;
  const bool skip_runs = picture_.header.skip_runs;
  while (bits_.more_data()) {
    if (skip_runs) {
      const Mox32u left = static_cast<Mox32u>(picture_.macroblocks() - address_);
      for (int run = bits_.ue(left, "mb_skip_run"); run > 0; --run) decode_skipped();
      if (!bits_.more_data()) break;
    }
    require(address_ < picture_.macroblocks(), "more macroblocks than the picture has");
    begin_macroblock();
    decode_macroblock();
    picture_.next_address = ++address_;
  }
}

void SliceDecoder::begin_macroblock() {
  mb_x_ = address_ % picture_.mb_width();
  mb_y_ = address_ / picture_.mb_width();
  picture_.slices[static_cast<std::size_t>(address_)] = slice_;
  predictor_.set_macroblock(mb_x_, mb_y_);
  set_motion(kWhole, {});
  for (int i = 0; i < 4; ++i) picture_.mode_at(2 * mb_x_ + i % 2, 2 * mb_y_ + i / 2) = -1;
  picture_.qps[static_cast<std::size_t>(address_)] = static_cast<std::uint8_t>(qp_);
}

void SliceDecoder::decode_macroblock() {
  if (picture_.header.type == PictureType::kI) return decode_intra(-1);
  const int first_intra = is_b() ? kIntraB : kIntraP;
  const int skip_is_no_type = picture_.header.skip_runs ? 1 : 0;
  const int type = bits_.ue(static_cast<Mox32u>(first_intra + 63), "mb_type") + skip_is_no_type;
  if (type >= first_intra) return decode_intra(std::min(type - first_intra, 63));
  if (type == kSkipped) {
    decode_skipped();
    --address_;
    return;
  }
  Partitions partitions = is_b() ? read_partitions_b(type) : read_partitions_p(type);
  decode_inter(partitions);
}

/// Also goes on to the next macroblock.
void SliceDecoder::decode_skipped() {
  begin_macroblock();
  if (is_b()) {
    for (int i = 0; i < 4; ++i) set_motion(quarter(i), predictor_.direct(i));
  } else {
    BlockMotion motion;
    motion.vector[kForward] = predictor_.predict_skipped();
    motion.reference[kForward] = 0;
    set_motion(kWhole, motion);
  }
  predict(header_.weighted && !header_.weighted_by_macroblock);
  picture_.next_address = ++address_;
}

void SliceDecoder::decode_intra(int blocks_code) {
  std::array<Mox32u, 4> modes;
  for (int i = 0; i < 4; ++i) modes[i] = static_cast<Mox32u>(read_luma_mode(i));
  const auto chroma_mode = static_cast<Mox32u>(bits_.ue(3, "intra_chroma_pred_mode"));
  const int blocks =
      blocks_code < 0 ? read_coded_blocks(false) : kCodedBlocks[static_cast<std::size_t>(blocks_code)][0];
  read_qp_change(blocks);
  read_blocks(blocks, true);
  const Mox32u edges = missing_edges();
  const char* const message = "an intra mode needs samples that are not there";
  require(moxiReconstructLumaIntra_AVS_16s8u_C1R(coefficients_.data(), picture_.sample(0, 16 * mb_x_, 16 * mb_y_),
                                                 picture_.frame->step(0), modes.data(), static_cast<Mox32u>(blocks),
                                                 qp_, edges) == moxStsOk,
          message);
  for (int plane = 1; plane < 3; ++plane) {
    require(
        moxiReconstructChromaIntra_AVS_16s8u_C1R(
            &coefficients_[64 * (plane + 3)], picture_.sample(plane, 8 * mb_x_, 8 * mb_y_), picture_.frame->step(plane),
            chroma_mode, static_cast<Mox32u>(blocks) >> (plane + 3), chroma_qp(qp_), edges) == moxStsOk,
        message);
  }
}

/// The smaller mode of the blocks to the left and above is predicted; DC if one of them is not intra or not there.
int SliceDecoder::read_luma_mode(int i) {
  const int x = 2 * mb_x_ + i % 2, y = 2 * mb_y_ + i / 2;
  const auto mode_at = [&](int bx, int by) {
    return is_available(bx >> 1, by >> 1) ? int{picture_.mode_at(bx, by)} : -1;
  };
  const int smaller = std::min(mode_at(x - 1, y), mode_at(x, y - 1));
  int mode = smaller < 0 ? kDcMode : smaller;
  if (!bits_.flag()) {
    const int other = static_cast<int>(bits_.bits(2));
    mode = other + (other >= mode ? 1 : 0);
  }
  picture_.mode_at(x, y) = static_cast<std::int8_t>(mode);
  return mode;
}

void SliceDecoder::decode_inter(Partitions& partitions) {
  read_motion(partitions);
  predict(header_.weighted && (!header_.weighted_by_macroblock || bits_.flag()));
  const int blocks = read_coded_blocks(true);
  read_qp_change(blocks);
  read_blocks(blocks, false);
  moxiReconstructLumaInter_AVS_16s8u_C1R(coefficients_.data(), picture_.sample(0, 16 * mb_x_, 16 * mb_y_),
                                         picture_.frame->step(0), static_cast<Mox32u>(blocks), qp_);
  for (int plane = 1; plane < 3; ++plane) {
    moxiReconstructChromaInter_AVS_16s8u_C1R(&coefficients_[64 * (plane + 3)],
                                             picture_.sample(plane, 8 * mb_x_, 8 * mb_y_), picture_.frame->step(plane),
                                             static_cast<Mox32u>(blocks) >> (plane + 3), chroma_qp(qp_));
  }
}

SliceDecoder::Partitions SliceDecoder::read_partitions_p(int type) {
  Partitions partitions;
  if (type == 1) {
    partitions.add(kWhole, Use::kForward);
  } else if (type < kFourP) {
    for (int i = 0; i < 2; ++i) partitions.add(half(i, type == 3), Use::kForward);
  } else {
    for (int i = 0; i < 4; ++i) partitions.add(quarter(i), Use::kForward);
  }
  if (picture_.header.single_reference) return partitions;
  for (Partition& partition : partitions) partition.reference = bits_.flag() ? 1 : 0;
  return partitions;
}

SliceDecoder::Partitions SliceDecoder::read_partitions_b(int type) {
  constexpr Use f = Use::kForward, b = Use::kBackward, s = Use::kSymmetric;
  constexpr std::array<std::array<Use, 2>, 9> kPairs = {
      {{f, f}, {b, b}, {f, b}, {b, f}, {f, s}, {b, s}, {s, f}, {s, b}, {s, s}}};
  Partitions partitions;
  if (type == kDirectB) {
    for (int i = 0; i < 4; ++i) partitions.add(quarter(i), Use::kDirect);
  } else if (type <= kSymmetricB) {
    partitions.add(kWhole, static_cast<Use>(type - kDirectB));
  } else if (type < kFourB) {
    const int pair = type - kFirstPairB;
    for (int i = 0; i < 2; ++i) {
      partitions.add(half(i, pair % 2 == 1), kPairs[static_cast<std::size_t>(pair / 2)][static_cast<std::size_t>(i)]);
    }
  } else {
    for (int i = 0; i < 4; ++i) partitions.add(quarter(i), static_cast<Use>(bits_.bits(2)));
  }
  return partitions;
}

/// All forward vectors come before the backward ones. Direct blocks are known at once, and later blocks are predicted
/// from them.
void SliceDecoder::read_motion(Partitions& partitions) {
  int block = 0;
  for (Partition& partition : partitions) {
    if (partition.use == Use::kDirect) partition.motion = predictor_.direct(block);
    ++block;
  }
  for (Partition& partition : partitions) {
    BlockMotion& motion = partition.motion;
    if (partition.use == Use::kForward || partition.use == Use::kSymmetric) {
      motion.vector[kForward] = read_vector(kForward, partition);
      motion.reference[kForward] = static_cast<std::int8_t>(partition.reference);
    }
    if (partition.use == Use::kSymmetric) {
      motion.vector[kBackward] = predictor_.symmetric(motion.vector[kForward]);
      motion.reference[kBackward] = 0;
    }
    set_motion(partition.part, motion);
  }
  for (Partition& partition : partitions) {
    if (partition.use != Use::kBackward) continue;
    partition.motion.vector[kBackward] = read_vector(kBackward, partition);
    partition.motion.reference[kBackward] = 0;
    set_motion(partition.part, partition.motion);
  }
}

Vector SliceDecoder::read_vector(Direction direction, const Partition& partition) {
  constexpr int kMost = 1 << 14;
  const int reference = direction == kForward ? partition.reference : 0;
  require(picture_.references[direction][static_cast<std::size_t>(reference)] != nullptr, "a reference is missing");
  Vector vector = predictor_.predict(direction, partition.part, reference);
  vector.x += bits_.se(-kMost, kMost, "mv_diff_x");
  vector.y += bits_.se(-kMost, kMost, "mv_diff_y");
  return vector;
}

void SliceDecoder::set_motion(Part part, const BlockMotion& motion) {
  for (int y = part.y; y < part.y + part.height; ++y) {
    for (int x = part.x; x < part.x + part.width; ++x) picture_.motion_at(2 * mb_x_ + x, 2 * mb_y_ + y) = motion;
  }
}

void SliceDecoder::predict(bool weighted) {
  predict_macroblock(picture_, mb_x_, mb_y_, weighted ? &header_.weights : nullptr);
}

int SliceDecoder::read_coded_blocks(bool inter) {
  return kCodedBlocks[static_cast<std::size_t>(bits_.ue(63, "cbp"))][inter ? 1 : 0];
}

void SliceDecoder::read_qp_change(int blocks) {
  if (blocks != 0 && !header_.fixed_qp) qp_ = (qp_ + bits_.se(-63, 63, "mb_qp_delta")) & 63;
  picture_.qps[static_cast<std::size_t>(address_)] = static_cast<std::uint8_t>(qp_);
}

void SliceDecoder::read_blocks(int blocks, bool intra) {
  const auto luma = intra ? moxiDecodeLumaBlockIntra_AVS_1u16s : moxiDecodeLumaBlockInter_AVS_1u16s;
  for (int i = 0; i < 6; ++i) {
    if (!(blocks >> i & 1)) continue;
    Mox32s count = 0;
    (i < 4 ? luma : moxiDecodeChromaBlock_AVS_1u16s)(bits_.word(), bits_.offset(), &count, &coefficients_[64 * i], 0);
    bits_.expect_no_overrun();
  }
}

/// As the library counts them.
Mox32u SliceDecoder::missing_edges() const {
  constexpr struct {
    Mox32u bit;
    int dx, dy;
  } kEdges[] = {{1, -1, 0}, {4, 0, -1}, {16, -1, -1}, {32, 1, -1}};
  Mox32u missing = 0;
  for (const auto& edge : kEdges) {
    if (!is_available(mb_x_ + edge.dx, mb_y_ + edge.dy)) missing |= edge.bit;
  }
  return missing;
}

/// In this slice, decoded or in work.
bool SliceDecoder::is_available(int mb_x, int mb_y) const {
  if (mb_x < 0 || mb_y < 0 || mb_x >= picture_.mb_width()) return false;
  return picture_.slices[static_cast<std::size_t>(mb_y * picture_.mb_width() + mb_x)] == slice_;
}

}  // namespace moxdec::avs
