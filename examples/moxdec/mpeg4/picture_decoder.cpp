#include "moxdec/mpeg4/picture_decoder.hpp"

#include <algorithm>

namespace moxdec::mpeg4 {

PictureDecoder::PictureDecoder(const Picture& picture, Workshop& workshop, ByteReader bits)
    : picture_(picture),
      workshop_(workshop),
      bits_(bits),
      reader_(picture, workshop.warp),
      texture_(picture, workshop.quantisers, workshop.intra) {}

void PictureDecoder::decode() {
  decode_packet(picture_.header.quantiser);
  while (next_ < picture_.layer.macroblocks()) {
    const PacketHeader header = read_packet_header();
    skip_to(header.address);
    decode_packet(header.quantiser);
  }
}

/// Where a B picture's macroblocks have no bits, the next packet may begin before they are through.
void PictureDecoder::skip_to(int address) {
  constexpr auto kGap = "macroblocks are missing, or come twice";
  require(address >= next_ && address < picture_.layer.macroblocks(), kGap);
  while (next_ < address) {
    const bool no_bits = picture_.header.type == PictureType::kB && (*picture_.states)[next_].skipped;
    require(no_bits, kGap);
    decode_macroblock();
  }
}

void PictureDecoder::decode_packet(int quantiser) {
  reader_.begin_packet(quantiser);
  place_.first = next_;
  if (picture_.layer.partitioned && picture_.header.type != PictureType::kB) return decode_partitioned_packet();
  do {
    decode_macroblock();
  } while (next_ < picture_.layer.macroblocks() && !at_packet_end());
}

void PictureDecoder::decode_macroblock() {
  begin_macroblock(next_);
  rebuild(reader_.read(bits_, place_));
  ++next_;
}

void PictureDecoder::begin_macroblock(int address) {
  place_.address = address;
  place_.x = address % picture_.mb_width();
  place_.y = address / picture_.mb_width();
}

void PictureDecoder::rebuild(const Macroblock& mb) {
  if (mb.intra) return texture_.decode_intra(bits_, place_, mb);
  predict_macroblock(picture_, place_, mb.motion, workshop_.warp);
  texture_.add_residual(bits_, place_, mb);
}

/// Zeros, as many as no macroblock has in a row, and a one.
int PictureDecoder::marker_length() const {
  const auto& f_code = picture_.header.f_code;
  switch (picture_.header.type) {
    case PictureType::kI: return 17;
    case PictureType::kB: return 16 + std::max({f_code[kForward], f_code[kBackward], 2});
    default: return 16 + f_code[kForward];
  }
}

/// A zero, ones up to the next byte, at least none, and a marker.
bool PictureDecoder::at_packet_end() const {
  if (!picture_.layer.resync_markers) return false;
  const int filling = 8 - static_cast<int>(bits_.position() % 8);
  if (bits_.left() < static_cast<std::size_t>(filling + marker_length())) return false;
  if (bits_.peek(filling) != (1u << (filling - 1)) - 1) return false;
  ByteReader behind = bits_;
  behind.skip(filling);
  return behind.peek(marker_length()) == 1;
}

PictureDecoder::PacketHeader PictureDecoder::read_packet_header() {
  bits_.skip(1);
  bits_.align();
  bits_.skip(marker_length());
  PacketHeader header;
  header.address = bits_.number(picture_.layer.address_bits());
  header.quantiser = bits_.number(5);
  require(header.quantiser > 0, "a quantiser is 0");
  if (bits_.flag()) skip_header_extension(bits_, picture_.layer);
  return header;
}

}  // namespace moxdec::mpeg4
