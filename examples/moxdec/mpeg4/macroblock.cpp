#include "moxdec/mpeg4/macroblock.hpp"

#include <algorithm>

#include "common/h263_vlc_tables.hpp"
#include "moxdec/mpeg4/direct.hpp"

namespace moxdec::mpeg4 {
namespace {

/// A block whose vector another one is predicted from: the macroblock it lies in, in columns and rows from that one's,
/// and its number there.
struct Candidate {
  int dx, dy, block;
};
constexpr Candidate kCandidates[4][3] = {{{-1, 0, 1}, {0, -1, 2}, {1, -1, 2}},
                                         {{0, 0, 0}, {0, -1, 3}, {1, -1, 2}},
                                         {{-1, 0, 3}, {0, 0, 0}, {0, 0, 1}},
                                         {{0, 0, 2}, {0, 0, 0}, {0, 0, 1}}};

int median(int a, int b, int c) { return std::max(std::min(a, b), std::min(std::max(a, b), c)); }

enum BidirectionalType { kDirect, kInterpolated, kBackwardOnly, kForwardOnly };

BidirectionalType read_bidirectional_type(ByteReader& bits) {
  int zeros = 0;
  while (!bits.flag()) {
    require(++zeros < 4, "broken type of a macroblock");
  }
  return static_cast<BidirectionalType>(zeros);
}

}  // namespace

void MacroblockReader::begin_packet(int quantiser) {
  quantiser_ = quantiser;
  first_coded_ = true;
  latest_ = {};
}

void MacroblockReader::change_quantiser(int change) { quantiser_ = std::clamp(quantiser_ + change, 1, 31); }

Macroblock MacroblockReader::read(ByteReader& bits, const Place& place) {
  if (picture_.header.type == PictureType::kB) return read_bidirectional(bits, place);
  MbState& state = (*picture_.states)[static_cast<std::size_t>(place.address)];
  state = {};
  Macroblock mb = read_reference(bits, place, state);
  state.intra = mb.intra;
  state.quantiser = static_cast<std::uint8_t>(mb.quantiser);
  return mb;
}

Macroblock MacroblockReader::read_reference(ByteReader& bits, const Place& place, MbState& state) {
  const std::optional<int> code = read_type(bits);
  if (!code) return read_left_out(place, state);
  const int type = *code / 4;
  Macroblock mb;
  set_type(bits, type, mb);
  read_pattern(bits, *code, mb);
  read_quantiser(bits, type, mb);
  if (picture_.layer.interlaced) read_interlaced(bits, mb, !mb.intra && mb.motion.kind == MotionKind::kFrame);
  read_vectors(bits, place, mb, state);
  return mb;
}

/// With the chroma blocks that are coded; none if the macroblock is left out.
std::optional<int> MacroblockReader::read_type(ByteReader& bits) const {
  const bool intra_picture = picture_.header.type == PictureType::kI;
  for (;;) {
    if (!intra_picture && bits.flag()) return std::nullopt;
    constexpr auto kBroken = "broken type of a macroblock";
    const int code =
        intra_picture ? bits.read(example::kMcbpcIntra, kBroken) : bits.read(example::kMcbpcInter, kBroken);
    require(code < 4 * example::kInter4VQ, kBroken);
    if (code != example::kMcbpcStuffing) return code;
  }
}

/// As it was in the reference, or warped from it.
Macroblock MacroblockReader::read_left_out(const Place& place, MbState& state) const {
  Macroblock mb;
  mb.quantiser = quantiser_;
  mb.motion.used[kForward] = true;
  if (picture_.header.type == PictureType::kS) {
    set_global(place, mb.motion, state);
  } else {
    state.skipped = true;
  }
  return mb;
}

void MacroblockReader::set_global(const Place& place, Motion& motion, MbState& state) const {
  motion.kind = state.kind = MotionKind::kGlobal;
  state.set_vector(warp_.vector(place));
}

void MacroblockReader::set_type(ByteReader& bits, int type, Macroblock& mb) const {
  mb.intra = type == example::kIntra || type == example::kIntraQ;
  const bool one_vector = type == example::kInter || type == example::kInterQ;
  if (type == example::kInter4V) mb.motion.kind = MotionKind::kBlocks;
  if (one_vector && picture_.header.type == PictureType::kS && bits.flag()) mb.motion.kind = MotionKind::kGlobal;
  mb.motion.used[kForward] = !mb.intra;
}

void MacroblockReader::read_pattern(ByteReader& bits, int code, Macroblock& mb) const {
  if (mb.intra) mb.ac_prediction = bits.flag();
  const int luma = bits.read(example::kCbpy, "broken pattern of blocks");
  mb.pattern = (mb.intra ? luma : 15 - luma) << 2 | code % 4;
}

void MacroblockReader::read_quantiser(ByteReader& bits, int type, Macroblock& mb) {
  const int before = quantiser_;
  constexpr std::array kChanges = {-1, -2, 1, 2};
  if (type == example::kInterQ || type == example::kIntraQ) change_quantiser(kChanges[bits.bits(2)]);
  mb.quantiser = quantiser_;
  mb.dc_codes = (first_coded_ ? quantiser_ : before) < picture_.header.intra_dc_threshold;
  first_coded_ = false;
}

void MacroblockReader::read_interlaced(ByteReader& bits, Macroblock& mb, bool may_predict_fields) const {
  if (mb.intra || mb.pattern) mb.field_transform = bits.flag();
  if (!may_predict_fields || !bits.flag()) return;
  mb.motion.kind = MotionKind::kFields;
  for (const Direction s : {kForward, kBackward}) {
    if (!mb.motion.used[s]) continue;
    for (int& parity : mb.motion.vectors[s].parity) parity = bits.flag();
  }
}

void MacroblockReader::read_vectors(ByteReader& bits, const Place& place, Macroblock& mb, MbState& state) const {
  if (mb.intra) return;
  const int f_code = picture_.header.f_code[kForward];
  Vectors& vectors = mb.motion.vectors[kForward];
  state.kind = mb.motion.kind;
  switch (mb.motion.kind) {
    case MotionKind::kGlobal: return set_global(place, mb.motion, state);
    case MotionKind::kFrame:
      state.set_vector(read_vector(bits, f_code, predicted_vector(place, 0)));
      vectors.of = state.block;
      return;
    case MotionKind::kBlocks:
      for (int i = 0; i < 4; ++i) state.block[i] = read_vector(bits, f_code, predicted_vector(place, i));
      vectors.of = state.block;
      return;
    case MotionKind::kFields:
      const Vector predicted = predicted_vector(place, 0);
      for (int i = 0; i < 2; ++i) vectors.of[i] = read_field_vector(bits, f_code, predicted);
      state.fields = vectors;
      state.set_vector(frame_vector(vectors));
  }
}

/// The median of three neighbours' vectors. One that is missing counts as zero, two as the third.
Vector MacroblockReader::predicted_vector(const Place& place, int block) const {
  std::array<Vector, 3> vectors;
  int known = 0, latest = 0;
  for (int i = 0; i < 3; ++i) {
    const Candidate& c = kCandidates[block][i];
    if (!place.has_neighbour(c.dx, c.dy, picture_.mb_width())) continue;
    const auto address = static_cast<std::size_t>(place.address + c.dy * picture_.mb_width() + c.dx);
    vectors[i] = (*picture_.states)[address].block[c.block];
    ++known;
    latest = i;
  }
  if (known == 1) return vectors[latest];
  return {median(vectors[0].x, vectors[1].x, vectors[2].x), median(vectors[0].y, vectors[1].y, vectors[2].y)};
}

Macroblock MacroblockReader::read_bidirectional(ByteReader& bits, const Place& place) {
  const MbState& colocated = (*picture_.states)[static_cast<std::size_t>(place.address)];
  if (place.x == 0) latest_ = {};
  Macroblock mb;
  mb.quantiser = quantiser_;
  if (colocated.skipped) {
    mb.motion.used[kForward] = true;
    return mb;
  }
  if (bits.flag()) {
    mb.motion = direct_motion(picture_, colocated, {});
    return mb;
  }
  const bool has_pattern = !bits.flag();
  const BidirectionalType type = read_bidirectional_type(bits);
  if (has_pattern) mb.pattern = bits.number(6);
  if (type != kDirect && mb.pattern && bits.flag()) change_quantiser(bits.flag() ? 2 : -2);
  mb.quantiser = quantiser_;
  mb.motion.used = {type != kBackwardOnly, type != kForwardOnly};
  if (picture_.layer.interlaced) read_interlaced(bits, mb, type != kDirect);
  if (type == kDirect) {
    mb.motion = direct_motion(picture_, colocated, read_vector(bits, 1, {}));
    return mb;
  }
  for (const Direction s : {kForward, kBackward}) {
    if (mb.motion.used[s]) read_bidirectional_vectors(bits, s, mb.motion);
  }
  return mb;
}

void MacroblockReader::read_bidirectional_vectors(ByteReader& bits, Direction s, Motion& motion) {
  const int f_code = picture_.header.f_code[s];
  auto& latest = latest_[s];
  auto& vectors = motion.vectors[s].of;
  if (motion.kind == MotionKind::kFrame) {
    vectors.fill(read_vector(bits, f_code, latest[0]));
    latest.fill(vectors[0]);
    return;
  }
  for (int i = 0; i < 2; ++i) {
    vectors[i] = read_field_vector(bits, f_code, latest[i]);
    latest[i] = {vectors[i].x, 2 * vectors[i].y};
  }
}

}  // namespace moxdec::mpeg4
