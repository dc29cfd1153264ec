/// The byte stream: NAL units between start codes, and their payload as words for the bit reader.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "moxdec/codec.hpp"
#include "moxdec/h264/bit_reader.hpp"

namespace moxdec::h264 {

enum NalType {
  kNalSlice = 1,
  kNalPartitionA = 2,
  kNalPartitionC = 4,
  kNalIdrSlice = 5,
  kNalSei = 6,
  kNalSps = 7,
  kNalPps = 8,
  kNalDelimiter = 9,
  kNalEndOfSequence = 10,
  kNalEndOfStream = 11,
  kNalPrefix = 14,
  kNalReserved18 = 18,
};

struct Nal {
  int ref_idc;
  int type;
  std::size_t position;  // of the first byte behind the start code
  Bytes payload;         // behind the one-byte header, emulation prevention still in it
};

/// The NAL units of a byte stream, one after the other.
class NalReader {
 public:
  explicit NalReader(Bytes data);
  /// Nothing behind the last unit. Throws DecodeError where a unit's header is broken.
  std::optional<Nal> next();

 private:
  Bytes data_;
  std::size_t position_;
};

/// A payload without emulation prevention bytes, in words whose first bit is bit 31. Behind the end lie words of ones,
/// where every variable-length code ends soon, so that a read beyond the end cannot go far before it is noticed.
class Rbsp {
 public:
  void assign(Bytes payload);
  /// At the first bit; ends before the stop bit.
  BitReader reader() const { return {words_.data(), bits_}; }

 private:
  std::vector<Mox32u> words_;
  std::size_t bits_ = 0;
};

}  // namespace moxdec::h264
