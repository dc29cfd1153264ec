#include "moxdec/error.hpp"

namespace moxdec {

void fail(const char* message) { throw DecodeError(message); }

}  // namespace moxdec
