#include "moxdec/h264/bit_reader.hpp"

namespace moxdec::h264 {

void BitReader::overrun() { throw DecodeError("the data end too early"); }

void BitReader::too_long() { throw DecodeError("code too long"); }

void BitReader::out_of_range(const char* name) { throw DecodeError(std::string(name) + " is out of range"); }

}  // namespace moxdec::h264
