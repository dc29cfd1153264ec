#include "moxdec/h263/motion.hpp"

#include <algorithm>
#include <cstdlib>

#include "common/h263_vlc_tables.hpp"

namespace moxdec::h263 {
namespace {

/// In half samples: more than across the largest picture and back.
constexpr int kLongest = 8191;

constexpr const char* kBroken = "broken vector";

Mox16s median(Mox16s a, Mox16s b, Mox16s c) { return std::max(std::min(a, b), std::min(std::max(a, b), c)); }

/// The prediction of the vector of luma block i, or of all: from the blocks at its left and above it, and from the
/// macroblock above at the right, in lower blocks from the other upper one. What is not in the segment counts as 0 at
/// the sides, and as the block at the left above.
MoxiMotionVector predicted(const Picture& picture, int x, int y, int i) {
  const Macroblock& macroblock = picture.at(x, y);
  const auto& own = macroblock.vectors;
  const Macroblock* const beside = picture.in_segment(x - 1, y, macroblock.segment);
  const MoxiMotionVector left = i & 1 ? own[i - 1] : beside ? beside->vectors[i + 1] : MoxiMotionVector{};
  MoxiMotionVector above, corner;
  if (i & 2) {
    above = own[0], corner = own[1];
  } else {
    const Macroblock* const over = picture.in_segment(x, y - 1, macroblock.segment);
    const Macroblock* const next = picture.in_segment(x + 1, y - 1, macroblock.segment);
    above = over ? over->vectors[i + 2] : left;
    corner = next ? next->vectors[2] : over ? MoxiMotionVector{} : left;
  }
  return {median(left.x, above.x, corner.x), median(left.y, above.y, corner.y)};
}

/// A sum that is too long comes back: plain within -32 to 31, extended within -63 to 63.
int read_component(ByteReader& bits, VectorCode code, int predicted) {
  const int sum = predicted + bits.read(example::kVectorDifference, kBroken);
  if (code == VectorCode::kPlain) return ((sum + 32) & 63) - 32;
  return sum < -63 ? sum + 64 : sum > 63 ? sum - 64 : sum;
}

/// A 1 for 0. Else a 0, then the magnitude behind its first 1, from there each bit in front of a 1, the sign, a 0.
int read_reversible(ByteReader& bits) {
  if (bits.flag()) return 0;
  for (int magnitude = 1; magnitude <= kLongest;) {
    const bool bit = bits.flag();
    if (!bits.flag()) return bit ? -magnitude : magnitude;
    magnitude = 2 * magnitude + bit;
  }
  throw DecodeError(kBroken);
}

MoxiMotionVector read_vector(ByteReader& bits, VectorCode code, MoxiMotionVector predicted) {
  int x, y;
  if (code == VectorCode::kReversible) {
    x = read_reversible(bits), y = read_reversible(bits);
    if (x == 1 && y == 1) bits.marker();  // six zeros in a row could begin a start code
    x += predicted.x, y += predicted.y;
    require(std::max(std::abs(x), std::abs(y)) <= kLongest, "a vector is too long");
  } else {
    x = read_component(bits, code, predicted.x), y = read_component(bits, code, predicted.y);
  }
  return {static_cast<Mox16s>(x), static_cast<Mox16s>(y)};
}

/// A sum of four components, so in sixteenths of a chroma sample, to half samples: parts of at most 2/16 are left out,
/// those from 14/16 on become a whole.
Mox16s chroma_component(int sum) {
  const int part = sum & 15;
  return static_cast<Mox16s>(2 * (sum >> 4) + (part > 13 ? 2 : part > 2 ? 1 : 0));
}

}  // namespace

void read_vectors(ByteReader& bits, Picture& picture, int mb_x, int mb_y) {
  Macroblock& macroblock = picture.at(mb_x, mb_y);
  const VectorCode code = picture.header.options.vector_code;
  for (int i = 0; i < 4; ++i) {
    macroblock.vectors[i] = i == 0 || macroblock.four_vectors
                                ? read_vector(bits, code, predicted(picture, mb_x, mb_y, i))
                                : macroblock.vectors[0];
  }
}

MoxiMotionVector chroma_vector(const Macroblock& macroblock) {
  int x = 0, y = 0;
  for (const MoxiMotionVector& vector : macroblock.vectors) x += vector.x, y += vector.y;
  return {chroma_component(x), chroma_component(y)};
}

}  // namespace moxdec::h263
