/// Headers of MPEG-4 video: the layer, which tells the form of all its pictures, and the pictures.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <optional>

#include "moxdec/byte_reader.hpp"

namespace moxdec::mpeg4 {

/// Start codes. Objects and layers have 32 and 16 numbers each.
enum StartCode {
  kFirstObject = 0x00,
  kLastObject = 0x1F,
  kFirstLayer = 0x20,
  kLastLayer = 0x2F,
  kSequenceStart = 0xB0,
  kSequenceEnd = 0xB1,
  kUserData = 0xB2,
  kGroupStart = 0xB3,
  kObjectStart = 0xB5,
  kPictureStart = 0xB6,
};

/// kS: predicted by global motion, too.
enum class PictureType { kI, kP, kB, kS };

/// What a layer's header says.
struct Layer {
  using Weights = std::array<Mox8u, 64>;

  int width = 0;
  int height = 0;
  int time_resolution = 1;  // ticks of a second
  int fixed_time_step = 0;  // ticks from picture to picture; 0: not told
  bool interlaced = false;
  bool quarter_sample = false;
  bool resync_markers = false;
  bool partitioned = false;       // packets of I and P pictures come in parts
  bool reversible_codes = false;  // of their coefficients
  bool global_motion = false;
  int warping_points = 0;
  int warping_accuracy = 0;
  std::optional<std::array<Weights, 2>> weights;  // intra, inter, in raster order; none: the quantiser without a matrix
  std::array<int, 4> complexity_bits{};           // to be passed over in headers of pictures, by type

  int mb_width() const { return (width + 15) / 16; }
  int mb_height() const { return (height + 15) / 16; }
  int time_bits() const { return bits_below(time_resolution); }
  /// Of the address of a macroblock.
  int address_bits() const { return bits_below(macroblocks()); }
  int macroblocks() const { return mb_width() * mb_height(); }

 private:
  /// What numbers below this one take, at least 1.
  static int bits_below(int end) {
    return std::max(1, static_cast<int>(std::bit_width(static_cast<unsigned>(end - 1))));
  }
};

/// Displacements of warping points in half samples.
struct Trajectory {
  std::array<Mox32s, 4> du{};
  std::array<Mox32s, 4> dv{};
};

struct PictureHeader {
  PictureType type = PictureType::kI;
  int seconds = 0;  // since the latest point of synchronisation
  int ticks = 0;
  bool coded = true;
  bool rounding = false;
  int intra_dc_threshold = 0;  // quantiser from which on the DC of intra blocks has the codes of the AC
  bool top_field_first = false;
  bool alternate_scan = false;
  Trajectory trajectory;
  int quantiser = 0;
  std::array<int, 2> f_code = {1, 1};  // forward, backward
};

/// A group's header: the time that its pictures count from.
struct GroupHeader {
  int seconds = 0;
  bool broken_link = false;
};

/// These read behind the start code, and throw DecodeError. `version` is that of the object, which a layer may replace.
Layer read_layer_header(ByteReader& bits, int version);
/// Returns the version of the object.
int read_object_header(ByteReader& bits);
GroupHeader read_group_header(ByteReader& bits);
PictureHeader read_picture_header(ByteReader& bits, const Layer& layer);
/// What a packet may repeat of the picture's header; it is passed over.
void skip_header_extension(ByteReader& bits, const Layer& layer);

}  // namespace moxdec::mpeg4
