#include "moxdec/frame.hpp"

#include <algorithm>
#include <new>

namespace moxdec {
namespace {

constexpr std::size_t kAlignment = 64;

constexpr std::size_t aligned(std::size_t bytes) { return (bytes + kAlignment - 1) / kAlignment * kAlignment; }

}  // namespace

Frame::Frame(const FrameFormat& format, const FrameLayout& layout) : format_(format), layout_(layout) {
  std::array<std::size_t, 3> coded{}, shown{};
  const auto sample = static_cast<std::size_t>(format.sample_bytes());
  std::size_t size = 0;
  for (int i = 0; i < 3; ++i) {
    const int shift_x = i == 0 ? 0 : chroma_shift_x(format.chroma),
              shift_y = i == 0 ? 0 : chroma_shift_y(format.chroma);
    const std::size_t margin_x = aligned(static_cast<std::size_t>(layout.margin >> shift_x) * sample);
    const auto margin_y = static_cast<std::size_t>(layout.margin >> shift_y);
    const std::size_t step = 2 * margin_x + aligned(static_cast<std::size_t>(layout.width >> shift_x) * sample);
    coded[i] = size + margin_y * step + margin_x;
    shown[i] = coded[i] + static_cast<std::size_t>(layout.top >> shift_y) * step +
               static_cast<std::size_t>(layout.left >> shift_x) * sample;
    planes_[i].step = static_cast<int>(step);
    size += (static_cast<std::size_t>(layout.height >> shift_y) + 2 * margin_y) * step;
  }
  memory_.reset(static_cast<std::byte*>(std::aligned_alloc(kAlignment, size)));
  if (!memory_) throw std::bad_alloc();
  std::fill_n(memory_.get(), size, std::byte{});  // damaged streams may leave samples out
  for (int i = 0; i < 3; ++i) {
    planes_[i].coded = memory_.get() + coded[i];
    planes_[i].shown = memory_.get() + shown[i];
  }
}

void Frame::fill_chroma(int value) {
  const auto fill = [&](auto sample) {
    for (int i = 1; i < 3; ++i) {
      const int rows = layout_.height >> chroma_shift_y(format_.chroma);
      auto* first = samples<decltype(sample)>(i);
      std::fill_n(first, std::ptrdiff_t{rows} * sample_step<decltype(sample)>(i), sample);
    }
  };
  format_.sample_bytes() == 1 ? fill(static_cast<std::uint8_t>(value)) : fill(static_cast<std::uint16_t>(value));
}

void Frame::repeat_lines(int first) {
  for (int i = 0; i < 3; ++i) {
    const int width = i == 0 ? layout_.width : layout_.width >> chroma_shift_x(format_.chroma);
    const int rows = i == 0 ? layout_.height : layout_.height >> chroma_shift_y(format_.chroma);
    for (int y = first; y < rows; y += 2) {
      std::byte* line = planes_[i].coded + std::ptrdiff_t{y} * planes_[i].step;
      std::copy_n(line, width * format_.sample_bytes(), line + (first == 0 ? 1 : -1) * planes_[i].step);
    }
  }
}

void FramePool::configure(const FrameFormat& format, const FrameLayout& layout) {
  if (format == format_ && layout == layout_) return;
  format_ = format;
  layout_ = layout;
  frames_.clear();
}

std::shared_ptr<Frame> FramePool::take() {
  for (const auto& frame : frames_) {
    if (frame.use_count() == 1) return frame;
  }
  return frames_.emplace_back(std::make_shared<Frame>(format_, layout_));
}

}  // namespace moxdec
