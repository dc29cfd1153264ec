#include "moxdec/start_codes.hpp"

#include <cstring>

namespace moxdec {
namespace {

/// The first place from `from` on where a start code lies whole, or the size of the data.
std::size_t find_start_code(Bytes data, std::size_t from) {
  for (std::size_t at = from + 2; at + 1 < data.size(); ++at) {
    const void* one = std::memchr(data.data() + at, 1, data.size() - at - 1);
    if (!one) break;
    at = static_cast<std::size_t>(static_cast<const std::uint8_t*>(one) - data.data());
    if (data[at - 1] == 0 && data[at - 2] == 0) return at - 2;
  }
  return data.size();
}

}  // namespace

UnitReader::UnitReader(Bytes data) : data_(data), position_(find_start_code(data, 0)) {}

bool UnitReader::next(Unit& unit) {
  if (position_ == data_.size()) return false;
  const std::size_t start = position_ + 4;
  position_ = find_start_code(data_, start);
  unit = {data_[start - 1], start, data_.subspan(start, position_ - start)};
  return true;
}

}  // namespace moxdec
