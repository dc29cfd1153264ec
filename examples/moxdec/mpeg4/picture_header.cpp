#include "common/mpeg4_tables.hpp"
#include "moxdec/mpeg4/headers.hpp"

namespace moxdec::mpeg4 {
namespace {

/// So many ones, then a zero.
int read_seconds(ByteReader& bits) {
  int seconds = 0;
  while (bits.flag()) ++seconds;
  return seconds;
}

void read_time(ByteReader& bits, const Layer& layer, PictureHeader& picture) {
  picture.seconds = read_seconds(bits);
  bits.marker();
  picture.ticks = bits.number(layer.time_bits());
  bits.marker();
}

int read_displacement(ByteReader& bits) {
  const int length = bits.read(example::kWarpingLength, "broken displacement of a warping point");
  const int value = length > 0 ? bits.number(length) : 0;
  bits.marker();
  return length > 0 && value >> (length - 1) == 0 ? value - (1 << length) + 1 : value;
}

Trajectory read_trajectory(ByteReader& bits, const Layer& layer) {
  Trajectory trajectory;
  for (int i = 0; i < layer.warping_points; ++i) {
    trajectory.du[i] = read_displacement(bits);
    trajectory.dv[i] = read_displacement(bits);
  }
  return trajectory;
}

int read_intra_dc_threshold(ByteReader& bits) {
  constexpr std::array kFromQuantiser = {32, 13, 15, 17, 19, 21, 23, 0};
  return kFromQuantiser[bits.bits(3)];
}

void read_vector_ranges(ByteReader& bits, PictureHeader& picture) {
  const int count = picture.type == PictureType::kI ? 0 : picture.type == PictureType::kB ? 2 : 1;
  for (int s = 0; s < count; ++s) {
    picture.f_code[s] = bits.number(3);
    require(picture.f_code[s] > 0, "a range of vectors is none");
  }
}

}  // namespace

GroupHeader read_group_header(ByteReader& bits) {
  GroupHeader group;
  const int hours = bits.number(5), minutes = bits.number(6);
  bits.marker();
  group.seconds = 3600 * hours + 60 * minutes + bits.number(6);
  bits.skip(1);  // closed
  group.broken_link = bits.flag();
  return group;
}

PictureHeader read_picture_header(ByteReader& bits, const Layer& layer) {
  PictureHeader picture;
  picture.type = static_cast<PictureType>(bits.bits(2));
  const bool global = picture.type == PictureType::kS;
  require(!global || layer.global_motion, "a sprite's picture in a layer without a sprite");
  read_time(bits, layer, picture);
  picture.coded = bits.flag();
  if (!picture.coded) return picture;
  if (picture.type == PictureType::kP || global) picture.rounding = bits.flag();
  bits.skip(layer.complexity_bits[static_cast<int>(picture.type)]);
  picture.intra_dc_threshold = read_intra_dc_threshold(bits);
  if (layer.interlaced) {
    picture.top_field_first = bits.flag();
    picture.alternate_scan = bits.flag();
  }
  if (global) picture.trajectory = read_trajectory(bits, layer);
  picture.quantiser = bits.number(5);
  require(picture.quantiser > 0, "a quantiser is 0");
  read_vector_ranges(bits, picture);
  return picture;
}

void skip_header_extension(ByteReader& bits, const Layer& layer) {
  PictureHeader picture;
  read_time(bits, layer, picture);
  picture.type = static_cast<PictureType>(bits.bits(2));
  bits.skip(3);  // threshold of the intra DC
  if (picture.type == PictureType::kS) read_trajectory(bits, layer);
  read_vector_ranges(bits, picture);
}

}  // namespace moxdec::mpeg4
