#include "moxdec/h264/bit_reader.hpp"

namespace moxdec::h264 {

void BitReader::aligned_bytes(std::uint8_t* out, std::size_t count) {
  const std::size_t start = (position() + 7) / 8;
  if (8 * (start + count) > bits_) overrun();
  for (std::size_t i = start; i < start + count; ++i) {
    *out++ = static_cast<std::uint8_t>(first_[i / 4] >> (24 - 8 * (i % 4)));
  }
  word_ = first_ + (start + count) / 4;
  offset_ = static_cast<Mox32s>(31 - 8 * ((start + count) % 4));
}

void BitReader::overrun() { throw DecodeError("the data end too early"); }

void BitReader::out_of_range(const char* name) { throw DecodeError(std::string(name) + " is out of range"); }

}  // namespace moxdec::h264
