/// What decoders of streams with start codes have in common: MPEG-1, MPEG-2, MPEG-4 and AVS.
#pragma once

#include <deque>
#include <exception>
#include <memory>
#include <utility>

#include "moxdec/codec.hpp"
#include "moxdec/start_codes.hpp"

namespace moxdec {

/// Goes from unit to unit until there are frames to show. B pictures are shown at once, references when the next one
/// is whole. After an error the whole pictures before it are still shown.
class UnitDecoder : public Decoder {
 public:
  std::shared_ptr<const Frame> next() final;

 protected:
  explicit UnitDecoder(Bytes data) : units_(data) {}

  // These throw DecodeError.
  virtual void decode_unit(const Unit& unit) = 0;
  /// Behind the last unit.
  virtual void finish_stream() = 0;
  /// Shows or holds a picture that an error found whole, but not finished.
  virtual void finish_whole_picture() {}

  void show(std::shared_ptr<const Frame> frame) { ready_.push_back(std::move(frame)); }
  /// Shows the reference before this one, and this one in its turn.
  void hold(std::shared_ptr<const Frame> frame) {
    flush();
    held_ = std::move(frame);
  }
  /// Shows the reference that has not been shown.
  void flush();

 private:
  void advance();

  UnitReader units_;
  std::shared_ptr<const Frame> held_;
  std::deque<std::shared_ptr<const Frame>> ready_;
  std::exception_ptr error_;
  bool at_end_ = false;
};

}  // namespace moxdec
