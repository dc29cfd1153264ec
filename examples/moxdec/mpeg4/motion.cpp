#include "moxdec/mpeg4/motion.hpp"

#include <cstdlib>

#include "common/h263_vlc_tables.hpp"

namespace moxdec::mpeg4 {
namespace {

int read_component(ByteReader& bits, int f_code, int predicted) {
  const int code = bits.read(example::kVectorDifference, "broken vector"), size = f_code - 1;
  int difference = code;
  if (code != 0 && size > 0) {
    const int magnitude = ((std::abs(code) - 1) << size) + bits.number(size) + 1;
    difference = code < 0 ? -magnitude : magnitude;
  }
  const int low = -32 << size, range = 64 << size;
  return ((predicted + difference - low) & (range - 1)) + low;
}

}  // namespace

Vector read_vector(ByteReader& bits, int f_code, Vector predicted) {
  const int x = read_component(bits, f_code, predicted.x);
  return {x, read_component(bits, f_code, predicted.y)};
}

}  // namespace moxdec::mpeg4
