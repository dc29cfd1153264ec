/// Streams of units between start codes, 00 00 01 and a byte: MPEG-1, MPEG-2, MPEG-4 and AVS.
#pragma once

#include <cstddef>

#include "moxdec/codec.hpp"

namespace moxdec {

/// The bytes between two start codes, and their place in the stream.
struct Unit {
  int code;
  std::size_t position;  // of the first byte behind the start code
  Bytes payload;
};

/// The units of a stream, one after the other. What precedes the first start code is passed over.
class UnitReader {
 public:
  explicit UnitReader(Bytes data);
  /// False behind the last unit.
  bool next(Unit& unit);

 private:
  Bytes data_;
  std::size_t position_;
};

}  // namespace moxdec
