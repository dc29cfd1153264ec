#include "moxdec/h264/nal.hpp"

#include <bit>
#include <cstring>
#include <string>

#include "moxdec/error.hpp"

namespace moxdec::h264 {
namespace {

/// The first place from `from` on where two zero bytes and then `third` stand, or the size of the data.
std::size_t find_zeros_and(Bytes data, std::size_t from, std::uint8_t third) {
  while (from + 3 <= data.size()) {
    const void* zero = std::memchr(data.data() + from, 0, data.size() - from - 2);
    if (!zero) break;
    from = static_cast<std::size_t>(static_cast<const std::uint8_t*>(zero) - data.data());
    if (data[from + 1] == 0 && data[from + 2] == third) return from;
    ++from;
  }
  return data.size();
}

/// Copies without the third byte of each 00 00 03; returns how many bytes were written.
std::size_t copy_without_escapes(Bytes source, std::uint8_t* out) {
  std::size_t written = 0;
  for (std::size_t from = 0; from < source.size();) {
    const std::size_t escape = find_zeros_and(source, from, 3);
    const std::size_t end = escape == source.size() ? escape : escape + 2;
    std::memcpy(out + written, source.data() + from, end - from);
    written += end - from;
    from = end + 1;
  }
  return written;
}

}  // namespace

NalReader::NalReader(Bytes data) : data_(data), position_(find_zeros_and(data, 0, 1)) {
  require(position_ < data.size(), "no start code found");
}

std::optional<Nal> NalReader::next() {
  while (position_ < data_.size()) {
    const std::size_t start = position_ + 3;
    position_ = find_zeros_and(data_, start, 1);
    std::size_t end = position_;
    while (end > start && data_[end - 1] == 0) --end;
    if (end == start) continue;
    const std::uint8_t header = data_[start];
    if (header & 0x80) throw DecodeError("unit at byte " + std::to_string(start) + ": broken unit header");
    return Nal{header >> 5, header & 31, start, data_.subspan(start + 1, end - start - 1)};
  }
  return std::nullopt;
}

void Rbsp::assign(Bytes payload) {
  const std::size_t room = payload.size() / 4 + 1 + BitReader::kPaddingWords;
  if (words_.size() < room) words_.resize(room);
  auto* bytes = reinterpret_cast<std::uint8_t*>(words_.data());
  std::size_t size = copy_without_escapes(payload, bytes);
  const std::size_t words = size / 4 + 1;
  std::memset(bytes + size, 0xFF, 4 * (words + BitReader::kPaddingWords) - size);
  while (size > 0 && bytes[size - 1] == 0) --size;
  bits_ = size == 0 ? 0 : 8 * size - static_cast<std::size_t>(std::countr_zero(bytes[size - 1])) - 1;
  for (std::size_t i = 0; i < words; ++i) words_[i] = __builtin_bswap32(words_[i]);
}

}  // namespace moxdec::h264
