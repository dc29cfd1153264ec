#include "moxdec/unit_decoder.hpp"

#include <utility>

#include "moxdec/error.hpp"

namespace moxdec {

std::shared_ptr<const Frame> UnitDecoder::next() {
  for (;;) {
    if (!ready_.empty()) {
      const auto frame = std::move(ready_.front());
      ready_.pop_front();
      return frame;
    }
    if (error_) std::rethrow_exception(error_);
    if (at_end_) return nullptr;
    advance();
  }
}

void UnitDecoder::advance() {
  try {
    Unit unit;
    if (units_.next(unit)) return decode_unit(unit);
    finish_stream();
    flush();
    at_end_ = true;
  } catch (const DecodeError&) {
    error_ = std::current_exception();
    finish_whole_picture();
    flush();
  }
}

void UnitDecoder::flush() {
  if (held_) show(std::exchange(held_, nullptr));
}

}  // namespace moxdec
