/// The bits of a unit: words for the library's cursor, without the bits that keep start codes from arising by chance.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "moxdec/codec.hpp"
#include "moxdec/h264/bit_reader.hpp"

namespace moxdec::avs {

/// Exp-Golomb codes are those of H.264.
using h264::BitReader;

class Payload {
 public:
  /// Takes what stands behind a start code. In 00 00 02 the last two bits, 10, are no data. The data end in front of
  /// the last 1, which is stuffing.
  void assign(Bytes unit);
  BitReader reader() const { return {words_.data(), bits_}; }

 private:
  void add(Mox32u value, int bits);

  std::vector<Mox32u> words_;
  std::size_t bits_ = 0;
  std::uint64_t pending_ = 0;  // the low pending_bits_ of it, fewer than 32, do not fill a word yet
  int pending_bits_ = 0;
};

}  // namespace moxdec::avs
