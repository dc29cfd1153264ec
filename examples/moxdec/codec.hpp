/// What a codec gives to the program: a guess whether a file is one of its streams, and a decoder from bytes to frames.
/// A new codec is one more file with a `Codec` and one more line in codec.cpp.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string_view>

#include "moxdec/frame.hpp"

namespace moxdec {

using Bytes = std::span<const std::uint8_t>;

/// Frames per second as a fraction; 0/0 if the stream does not tell.
struct FrameRate {
  std::uint32_t numerator = 0;
  std::uint32_t denominator = 0;
};

class Decoder {
 public:
  virtual ~Decoder() = default;
  /// The next frame in display order; null behind the last one. Frames of a stream may differ in format. A stream with
  /// an error gives the frames before it, then throws DecodeError.
  virtual std::shared_ptr<const Frame> next() = 0;
  /// Chooses another way to the same frames, where there is one: references with margins. To be called before next().
  virtual void expand_references() {}
  /// Spreads the work over so many threads, where it can be. To be called before next().
  virtual void set_threads(int /*count*/) {}
  /// Known once the first frame is out.
  virtual FrameRate frame_rate() const { return {}; }
};

struct Codec {
  std::string_view name;
  /// File name endings without the point, lower case.
  std::span<const std::string_view> extensions;
  /// How surely the data are a stream of this codec, from 0 (no) to 100.
  int (*probe)(Bytes data);
  /// The data must outlive the decoder.
  std::unique_ptr<Decoder> (*open)(Bytes data);
};

/// The codec that is surest of the data. A fitting file name ending decides between equals, and takes data that no
/// codec knows. Throws DecodeError if there is none.
const Codec& find_codec(Bytes data, std::string_view file_name);

}  // namespace moxdec
