/// Where pictures come from: a file as it is, or spoiled so that it is known what a filter ought to make of it.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "moxdec/codec.hpp"
#include "moxfilter/filter.hpp"

namespace moxfilter {

using moxdec::Frame;
using FramePtr = std::shared_ptr<const Frame>;

/// Pictures of a file, all of one format and one layout.
class Reader {
 public:
  /// Throws std::runtime_error.
  explicit Reader(const std::string& path);
  /// Null behind the last one. Throws moxdec::DecodeError, also for other than 8-bit samples.
  FramePtr next();
  moxdec::FrameRate rate() const { return decoder_->frame_rate(); }

 private:
  std::vector<std::uint8_t> data_;
  std::unique_ptr<moxdec::Decoder> decoder_;
  std::optional<moxdec::FrameFormat> format_;
};

/// A copy in the layout of all pictures of the program: nothing around what is shown. Of samples not yet set.
std::shared_ptr<Frame> blank_like(const Frame& frame);

struct ClipOptions {
  std::string input;
  std::string original;    ///< a file with what the input was before it was spoiled
  bool interlace = false;  ///< weave the fields of each two pictures
  Field first = kTop, kept = kTop;
  int noise = 0;  ///< standard deviation of noise to add
  int seed = 1;
};

/// What to filter, and what should come out; null if that is not known.
struct Pair {
  FramePtr input, original;
};

class Clip {
 public:
  explicit Clip(const ClipOptions& options);
  /// Nothing behind the last one. Throws moxdec::DecodeError.
  std::optional<Pair> next();
  moxdec::FrameRate rate() const;

 private:
  ClipOptions options_;
  Reader input_;
  std::optional<Reader> original_;
  std::mt19937 random_;
};

/// A picture of the clip and its neighbours. At both ends the outermost picture stands for those that are not there.
class Window {
 public:
  static constexpr int kReach = 2;
  explicit Window(Clip& clip) : clip_(clip) {}
  /// Goes to the next picture, at first to the first one. False behind the last one.
  bool advance();
  const Frame& at(int offset) const;
  /// The one at offset 0.
  const Pair& current() const { return pairs_[static_cast<std::size_t>(current_)]; }

 private:
  Clip& clip_;
  std::deque<Pair> pairs_;
  int current_ = -1;
  bool ended_ = false;
};

}  // namespace moxfilter
