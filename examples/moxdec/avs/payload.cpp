#include "moxdec/avs/payload.hpp"

#include <bit>

namespace moxdec::avs {

void Payload::assign(Bytes unit) {
  words_.clear();
  pending_ = 0;
  pending_bits_ = 0;
  for (std::size_t i = 0; i < unit.size(); ++i) {
    const bool stuffed = i >= 2 && unit[i] == 2 && unit[i - 1] == 0 && unit[i - 2] == 0;
    stuffed ? add(0, 6) : add(unit[i], 8);
  }
  add(0, 32 - pending_bits_);
  std::size_t used = words_.size();
  while (used > 0 && words_[used - 1] == 0) --used;
  bits_ = used == 0 ? 0 : 32 * used - 1 - static_cast<std::size_t>(std::countr_zero(words_[used - 1]));
  words_.resize(words_.size() + BitReader::kPaddingWords, ~Mox32u{0});
}

void Payload::add(Mox32u value, int bits) {
  pending_ = pending_ << bits | value;
  pending_bits_ += bits;
  if (pending_bits_ < 32) return;
  pending_bits_ -= 32;
  words_.push_back(static_cast<Mox32u>(pending_ >> pending_bits_));
}

}  // namespace moxdec::avs
