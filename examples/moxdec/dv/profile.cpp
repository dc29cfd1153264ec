#include "moxdec/dv/profile.hpp"

#include "moxdec/error.hpp"

namespace moxdec::dv {
namespace {

constexpr int kFirstVaux = 3, kVauxBlocks = 3, kPacks = 15, kPackBytes = 5, kSourcePack = 0x60;

/// The fourth byte of the VAUX source pack: the frame rate in bit 5, the kind of signal in bits 0 to 4.
int source_kind(Bytes sequence) {
  for (int i = 0; i < kVauxBlocks * kPacks; ++i) {
    const auto at = static_cast<std::size_t>((kFirstVaux + i / kPacks) * kBlockBytes + 3 + i % kPacks * kPackBytes);
    if (sequence[at] == kSourcePack) return sequence[at + 3];
  }
  throw DecodeError("no pack tells the kind of video");
}

}  // namespace

bool begins_sequence(Bytes data) {
  if (data.size() < static_cast<std::size_t>(kSequenceBytes)) return false;
  const struct {
    int block;
    Section section;
  } kFirst[] = {{0, Section::kHeader}, {1, Section::kSubcode}, {2, Section::kSubcode}, {3, Section::kVaux},
                {4, Section::kVaux},   {5, Section::kVaux},    {6, Section::kAudio},   {7, Section::kVideo}};
  for (const auto& [block, wanted] : kFirst) {
    if (section(&data[static_cast<std::size_t>(block * kBlockBytes)]) != static_cast<int>(wanted)) return false;
  }
  return true;
}

Profile read_profile(Bytes sequence) {
  require(begins_sequence(sequence), "this is no DIF sequence");
  constexpr int kConsumer = 0;
  const int source = source_kind(sequence), application = sequence[4] & 7;
  const bool at50 = source >> 5 & 1;
  const FrameRate rate = at50 ? FrameRate{25, 1} : FrameRate{30000, 1001};
  const int lines = at50 ? 576 : 480, sequences = at50 ? 12 : 10;
  switch (source & 31) {
    case 0x00:
      if (at50 && application == kConsumer) return {{720, lines, Chroma::k420, 8}, rate, Shuffling::k420, 1, sequences};
      return {{720, lines, Chroma::k411, 8}, rate, Shuffling::k411, 1, sequences};
    case 0x04: return {{720, lines, Chroma::k422, 8}, rate, Shuffling::k422, 2, sequences};
    case 0x14:
      if (at50) return {{1440, 1080, Chroma::k422, 8}, rate, Shuffling::k1080At50, 4, sequences};
      return {{1280, 1080, Chroma::k422, 8}, rate, Shuffling::k1080At60, 4, sequences};
    case 0x18:
      return {{960, 720, Chroma::k422, 8}, {2 * rate.numerator, rate.denominator}, Shuffling::k720, 2, sequences};
    default: throw DecodeError("this kind of video is not supported");
  }
}

}  // namespace moxdec::dv
