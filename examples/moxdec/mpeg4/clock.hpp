/// Times of pictures, from which direct mode takes its distances.
#pragma once

#include <cstdint>

#include "moxdec/mpeg4/picture.hpp"

namespace moxdec::mpeg4 {

class Clock {
 public:
  /// Pictures count from this second on.
  void synchronise(std::int64_t second) { second_ = second; }
  /// The time of a picture in ticks. B pictures count from the second of the reference before them.
  std::int64_t time_of(const PictureHeader& header, const Layer& layer) {
    if (header.type != PictureType::kB) {
      earlier_second_ = second_;
      second_ += header.seconds;
      return second_ * layer.time_resolution + header.ticks;
    }
    return (earlier_second_ + header.seconds) * layer.time_resolution + header.ticks;
  }
  void begin_reference(std::int64_t time) {
    older_ = newer_;
    newer_ = time;
  }
  /// Whether a picture that is no B picture shows anything later than the latest reference.
  bool is_later(std::int64_t time) const { return time > newer_; }
  /// Of a B picture. The first one of a stream tells the duration of a frame. Throws DecodeError.
  Distances distances(std::int64_t time) {
    require(time > older_ && time < newer_, "the time of a B picture is not between those of its references");
    if (frame_ == 0) frame_ = time - older_;
    const std::int64_t first = frames(older_);
    return {time - older_, newer_ - older_, 2 * (frames(time) - first), 2 * (frames(newer_) - first)};
  }

 private:
  /// To the nearest.
  std::int64_t frames(std::int64_t time) const { return (time + frame_ / 2) / frame_; }

  std::int64_t second_ = 0, earlier_second_ = 0;
  std::int64_t older_ = -1, newer_ = -1;  // of references
  std::int64_t frame_ = 0;
};

}  // namespace moxdec::mpeg4
