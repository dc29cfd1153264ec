/// Packets whose elements are sorted by their weight: types with motion, or with the DC of an I picture; a marker; the
/// other modes; coefficients. With the first part whole, damage of the others costs texture alone: motion stays.
#include <bit>

#include "moxdec/mpeg4/picture_decoder.hpp"

namespace moxdec::mpeg4 {
namespace {

/// What ends the first part.
struct PartitionMarker {
  int length;
  Mox32u bits;
};
constexpr PartitionMarker kBehindDc = {19, 0x6B001}, kBehindMotion = {17, 0x1F001};

PartitionMarker marker_of(PictureType type) { return type == PictureType::kI ? kBehindDc : kBehindMotion; }

/// A macroblock that is known by its first part alone.
void leave_out_second_part(PartitionedMacroblock& macroblock, bool has_dc) {
  Macroblock& mb = macroblock.mb;
  mb.pattern = 0;
  mb.ac_prediction = false;
  if (!mb.intra || has_dc) return;
  mb.intra = false;
  mb.motion = {};
  mb.motion.used[kForward] = true;
}

}  // namespace

PartitionedMacroblock MacroblockReader::read_first_part(ByteReader& bits, const Place& place) {
  MbState& state = (*picture_.states)[static_cast<std::size_t>(place.address)];
  state = {};
  PartitionedMacroblock macroblock;
  Macroblock& mb = macroblock.mb;
  const std::optional<int> code = read_type(bits);
  if (!code) {
    macroblock.left_out = true;
    mb = read_left_out(place, state);
    return macroblock;
  }
  macroblock.code = *code;
  set_type(bits, *code / 4, mb);
  if (picture_.header.type == PictureType::kI) {
    read_quantiser(bits, *code / 4, mb);
    for (int i = 0; mb.dc_codes && i < 6; ++i) macroblock.dc[i] = Texture::read_dc(bits, i);
  }
  read_vectors(bits, place, mb, state);
  return macroblock;
}

void MacroblockReader::read_second_part(ByteReader& bits, PartitionedMacroblock& macroblock) {
  Macroblock& mb = macroblock.mb;
  if (macroblock.left_out) return;
  read_pattern(bits, macroblock.code, mb);
  if (picture_.header.type == PictureType::kI) return;
  read_quantiser(bits, macroblock.code / 4, mb);
  for (int i = 0; mb.intra && mb.dc_codes && i < 6; ++i) macroblock.dc[i] = Texture::read_dc(bits, i);
}

bool PictureDecoder::at_partition_end() const {
  const PartitionMarker marker = marker_of(picture_.header.type);
  return bits_.peek(marker.length) == marker.bits;
}

/// Where the coefficients end: in front of a zero and ones that fill the last byte before the next packet's marker or
/// before the end of the data.
ByteReader PictureDecoder::packet_end() const {
  ByteReader next = bits_, last = bits_;  // the latter: where the last byte that is not 0 begins
  int length = (8 - static_cast<int>(bits_.position() % 8)) % 8;  // of what belongs to the packet in that byte
  const auto at_marker = [&] { return picture_.layer.resync_markers && next.peek(marker_length()) == 1; };
  for (next.align(); next.left() > 0 && !at_marker(); next.skip(8)) {
    if (next.peek(8) == 0) continue;
    last = next;
    length = 8;
  }
  const int ones = std::countr_one(last.peek(length));
  if (ones < length) last.skip(length - 1 - ones);
  return last;
}

void PictureDecoder::decode_partitioned_packet() {
  const int first = next_;
  std::vector<PartitionedMacroblock> macroblocks;
  do {
    require(next_ < picture_.layer.macroblocks(), "the marker behind a partition is missing");
    begin_macroblock(next_++);
    macroblocks.push_back(reader_.read_first_part(bits_, place_));
  } while (!at_partition_end());
  bits_.skip(marker_of(picture_.header.type).length);

  const ByteReader end = packet_end();
  PacketTexture texture(picture_.layer.reversible_codes);
  const bool modes_known = read_second_parts(macroblocks);
  for (const PartitionedMacroblock& m : macroblocks) texture.expect(m.mb);
  if (modes_known) texture.read(bits_, end.position());
  for (std::size_t i = 0; i < macroblocks.size(); ++i) {
    begin_macroblock(first + static_cast<int>(i));
    rebuild(macroblocks[i], modes_known ? texture.levels(i) : nullptr);
  }
  bits_ = end;
}

/// False if they are damaged: then nothing is known of the texture.
bool PictureDecoder::read_second_parts(std::vector<PartitionedMacroblock>& macroblocks) {
  std::size_t whole = 0;
  try {
    for (; whole < macroblocks.size(); ++whole) reader_.read_second_part(bits_, macroblocks[whole]);
    return true;
  } catch (const DecodeError&) {
    const bool has_dc = picture_.header.type == PictureType::kI;
    for (std::size_t i = whole; i < macroblocks.size(); ++i) leave_out_second_part(macroblocks[i], has_dc);
    return false;
  }
}

void PictureDecoder::rebuild(const PartitionedMacroblock& macroblock, const MacroblockLevels* levels) {
  static constexpr MacroblockLevels kNoLevels{};
  Macroblock mb = macroblock.mb;
  if (!levels) {
    damaged_ = true;
    mb.ac_prediction = false;
    mb.pattern = 0;
    levels = &kNoLevels;
  }
  MbState& state = (*picture_.states)[static_cast<std::size_t>(place_.address)];
  state.intra = mb.intra;
  state.quantiser = static_cast<std::uint8_t>(mb.quantiser);
  if (!mb.intra) predict_macroblock(picture_, place_, mb.motion, workshop_.warp);
  for (int block = 0; block < 6; ++block) {
    const Levels& of_block = (*levels)[block];
    if (mb.intra) {
      texture_.set_intra_block(place_, mb, block, macroblock.dc[block], of_block);
    } else if (mb.is_coded(block)) {
      texture_.add_block(place_, mb, block, of_block);
    }
  }
}

}  // namespace moxdec::mpeg4
