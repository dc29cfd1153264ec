/// Parameter sets and slice headers (ITU-T H.264 7.3.2, 7.3.3, E.1.1).
#pragma once

#include "moxdec/codec.hpp"
#include "moxenc/bit_writer.hpp"

namespace moxenc {

struct SequenceHeader {
  int width, height;  ///< shown, even
  moxdec::FrameRate rate;
  int kbits;  ///< per second, 0 if not known
};
/// In a frame of the highest level.
inline constexpr int kMostMacroblocks = 139264;
/// The lowest level that allows the picture size, the frame rate and the bitrate, as level_idc; the highest one there
/// is if none does.
int level_of(const SequenceHeader& header);

/// These write whole payloads.
void write_sequence(BitWriter& bits, const SequenceHeader& header);
void write_picture_set(BitWriter& bits);

/// frame_num has 8 bits: that of the first picture of a sequence is 0.
inline constexpr int kFrameNumBits = 8;
/// QP that slice headers refer to.
inline constexpr int kInitialQp = 26;
struct SliceHeader {
  bool idr;    ///< an I picture that begins a sequence; else a P picture
  int idr_id;  ///< 0 or 1, differs between IDR pictures that follow one another
  int frame_num;
  int qp;
};
void write_slice_header(BitWriter& bits, const SliceHeader& header);

}  // namespace moxenc
