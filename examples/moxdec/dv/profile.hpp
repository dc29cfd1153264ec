/// Kinds of DV streams, and what the first DIF sequence of a frame tells about them.
#pragma once

#include "moxdec/codec.hpp"

namespace moxdec::dv {

inline constexpr int kBlockBytes = 80, kBlocksPerSequence = 150, kSequenceBytes = kBlocksPerSequence * kBlockBytes;
inline constexpr int kSegmentsPerSequence = 27, kMacroblocks = 5;

/// Sections of DIF blocks.
enum class Section { kHeader, kSubcode, kVaux, kAudio, kVideo };
constexpr int section(const std::uint8_t* block) { return block[0] >> 5; }

/// The ways in which macroblocks are dealt out to segments.
enum class Shuffling { k411, k420, k422, k720, k1080At60, k1080At50 };

struct Profile {
  FrameFormat format;
  FrameRate rate;
  Shuffling shuffling;
  int channels;
  int sequences;  ///< in each channel

  bool is_dv100() const { return shuffling >= Shuffling::k720; }
  int blocks() const { return is_dv100() ? 8 : 6; }
  std::size_t frame_bytes() const { return static_cast<std::size_t>(channels * sequences) * kSequenceBytes; }
};

/// True if these are the first blocks of a DIF sequence; needs the bytes of one.
bool begins_sequence(Bytes data);
/// The profile of a frame, by its first sequence. Throws DecodeError.
Profile read_profile(Bytes sequence);

}  // namespace moxdec::dv
