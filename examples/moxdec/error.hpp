/// The one kind of failure of the decoder: a message that says what is wrong and where.
#pragma once

#include <stdexcept>
#include <string>

namespace moxdec {

struct DecodeError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Throws a DecodeError unless `good`.
inline void require(bool good, const char* message) {
  if (!good) [[unlikely]]
    throw DecodeError(message);
}

}  // namespace moxdec
