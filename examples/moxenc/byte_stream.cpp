#include "moxenc/byte_stream.hpp"

namespace moxenc {

void append_unit(std::vector<std::uint8_t>& stream, Unit unit, const BitWriter& payload) {
  stream.insert(stream.end(), {0, 0, 0, 1, static_cast<std::uint8_t>(unit)});
  int zeros = 0;
  for (const std::uint8_t byte : payload.bytes()) {
    if (zeros == 2 && byte <= 3) stream.push_back(3), zeros = 0;
    stream.push_back(byte);
    zeros = byte == 0 ? zeros + 1 : 0;
  }
}

}  // namespace moxenc
