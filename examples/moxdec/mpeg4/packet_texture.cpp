#include "moxdec/mpeg4/packet_texture.hpp"

#include <algorithm>

namespace moxdec::mpeg4 {
namespace {

constexpr Mox32s kByIndex = -1;  // no scan

/// The bits from a position to `end`, with room in front of them for a reader that goes astray.
class BackwardBits {
 public:
  BackwardBits(ByteReader bits, std::size_t end) : size_(end - bits.position()), memory_(kRoom + size_ / 8 + 1) {
    for (std::size_t i = kRoom; 8 * (i - kRoom) < size_; ++i) {
      const std::size_t left = std::min<std::size_t>(8, end - bits.position());
      memory_[i] = static_cast<Mox8u>(bits.bits(static_cast<int>(left)) << (8 - left));
    }
    byte_ = memory_.data() + kRoom + size_ / 8;
    offset_ = static_cast<Mox32s>(size_ % 8);
  }
  BackwardBits(const BackwardBits&) = delete;
  BackwardBits& operator=(const BackwardBits&) = delete;

  /// Bits read so far; more than there are if a block reaches beyond the first one.
  std::size_t consumed() const {
    const std::size_t position =
        8 * static_cast<std::size_t>(byte_ - memory_.data()) + static_cast<std::size_t>(offset_);
    return 8 * kRoom + size_ - position;
  }
  std::size_t size() const { return size_; }

  bool read_block(const Macroblock& mb, Levels& levels) {
    Mox32s last = 0;
    const MoxStatus status =
        mb.intra ? moxiDecodeCoeffsIntraRVLCBack_MPEG4_1u16s(&byte_, &offset_, levels.data(), &last, mb.dc_codes)
                 : moxiDecodeCoeffsInterRVLCBack_MPEG4_1u16s(&byte_, &offset_, levels.data(), &last);
    return status == moxStsOk && consumed() <= size_;
  }

 private:
  static constexpr std::size_t kRoom = PaddedBytes::kPadding;

  std::size_t size_;
  std::vector<Mox8u> memory_;
  const Mox8u* byte_ = nullptr;
  Mox32s offset_ = 0;
};

}  // namespace

std::size_t PacketTexture::Run::trusted() const {
  const auto is_sure = [&](std::size_t behind) { return behind + kDoubtfulBits <= length; };
  return static_cast<std::size_t>(std::count_if(lengths.begin(), lengths.end(), is_sure));
}

bool PacketTexture::read_block(ByteReader& bits, const Macroblock& mb, int block, Levels& levels) const {
  if (!mb.is_coded(block)) return true;
  Mox32s last = 0;
  const MoxStatus status = mb.intra ? moxiDecodeCoeffsIntra_MPEG4_1u16s(bits.byte(), bits.offset(), levels.data(),
                                                                        &last, reversible_, mb.dc_codes, kByIndex)
                                    : moxiDecodeCoeffsInter_MPEG4_1u16s(bits.byte(), bits.offset(), levels.data(),
                                                                        &last, reversible_, kByIndex);
  return status == moxStsOk;
}

PacketTexture::Run PacketTexture::read_forwards(ByteReader bits, std::size_t end) const {
  const std::size_t start = bits.position();
  Run run;
  for (const Macroblock& mb : macroblocks_) {
    MacroblockLevels levels{};
    for (int block = 0; block < 6; ++block) {
      const bool whole = read_block(bits, mb, block, levels[block]) && bits.position() <= end;
      run.length = std::min(bits.position(), end) - start;
      if (!whole) return run;
    }
    run.levels.push_back(levels);
    run.lengths.push_back(run.length);
  }
  return run;
}

PacketTexture::Run PacketTexture::read_backwards(ByteReader bits, std::size_t end) const {
  BackwardBits backward(bits, end);
  Run run;
  for (auto mb = macroblocks_.rbegin(); mb != macroblocks_.rend(); ++mb) {
    MacroblockLevels levels{};
    for (int block = 5; block >= 0; --block) {
      const bool whole = !mb->is_coded(block) || backward.read_block(*mb, levels[block]);
      run.length = std::min(backward.consumed(), backward.size());
      if (!whole) return run;
    }
    run.levels.push_back(levels);
    run.lengths.push_back(run.length);
  }
  return run;
}

/// Levels that only stand for a difference from those of neighbours, which may be lost.
bool PacketTexture::depends_on_others(std::size_t macroblock) const {
  const Macroblock& mb = macroblocks_[macroblock];
  return mb.intra && (mb.ac_prediction || !mb.dc_codes);
}

void PacketTexture::read(const ByteReader& bits, std::size_t end) {
  const std::size_t count = macroblocks_.size();
  levels_.assign(count, std::nullopt);
  if (bits.position() > end) return;
  const Run forwards = read_forwards(bits, end);
  const bool whole = forwards.levels.size() == count && bits.position() + forwards.length == end;
  std::size_t first = whole ? count : forwards.trusted();
  if (!whole && reversible_) {
    const Run backwards = read_backwards(bits, end);
    std::size_t last = backwards.trusted();
    if (first + last > count) {
      first = std::min(first, count - backwards.levels.size());
      last = std::min(last, count - forwards.levels.size());
    }
    for (std::size_t i = 0; i < last; ++i) {
      const std::size_t macroblock = count - 1 - i;
      if (!depends_on_others(macroblock)) levels_[macroblock] = backwards.levels[i];
    }
  }
  std::copy_n(forwards.levels.begin(), first, levels_.begin());
}

}  // namespace moxdec::mpeg4
