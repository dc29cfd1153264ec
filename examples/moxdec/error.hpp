/// The one kind of failure of the decoder: a message that says what is wrong and where.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>

namespace moxdec {

struct DecodeError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// Throws a DecodeError. Apart, so that the tests for errors stay small where they are.
[[noreturn]] void fail(const char* message);
inline void require(bool good, const char* message) {
  if (!good) [[unlikely]]
    fail(message);
}

/// Does a part of the work; adds to its errors where they happened.
template <class Work>
void located(const char* part, std::size_t position, Work work) {
  try {
    work();
  } catch (const DecodeError& error) {
    throw DecodeError(std::string(part) + " at byte " + std::to_string(position) + ": " + error.what());
  }
}

}  // namespace moxdec
