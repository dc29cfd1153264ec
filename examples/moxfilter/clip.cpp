#include "moxfilter/clip.hpp"

#include <algorithm>
#include <cstring>
#include <limits>

#include "moxdec/error.hpp"
#include "moxdec/file.hpp"
#include "moxdec/y4m.hpp"

namespace moxfilter {
namespace {

/// Calls visit(to, plane, y, width) for each row of a picture.
template <class Visit>
void each_row(const Frame& frame, Visit visit) {
  for (int plane = 0; plane < 3; ++plane) {
    const int height = frame.format().plane_height(plane), width = frame.format().plane_width(plane);
    for (int y = 0; y < height; ++y) {
      visit(frame.samples<Mox8u>(plane) + std::ptrdiff_t{y} * frame.step(plane), plane, y, width);
    }
  }
}

/// The rows of even number of one picture, those of odd number of the other.
FramePtr weave(const Frame& even, const Frame& odd) {
  auto woven = blank_like(even);
  each_row(*woven, [&](Mox8u* row, int plane, int y, int width) {
    std::memcpy(row, (y % 2 == 0 ? even : odd).shown_row(plane, y), static_cast<std::size_t>(width));
  });
  return woven;
}

/// With the sum of twelve evenly spread numbers, whose deviation is 65536, in place of the normal distribution: the
/// same on all machines.
FramePtr add_noise(const Frame& clean, int deviation, std::mt19937& random) {
  constexpr int kMean = 12 * 65535 / 2;
  auto noisy = blank_like(clean);
  each_row(*noisy, [&](Mox8u* row, int plane, int y, int width) {
    const auto* from = reinterpret_cast<const Mox8u*>(clean.shown_row(plane, y));
    for (int x = 0; x < width; ++x) {
      int sum = 0;
      for (int i = 0; i < 6; ++i) {
        const auto two = static_cast<Mox32u>(random());
        sum += static_cast<int>((two & 0xFFFF) + (two >> 16));
      }
      const int noise = ((sum - kMean) * deviation + 32768) >> 16;
      row[x] = static_cast<Mox8u>(std::clamp(from[x] + noise, 0, 255));
    }
  });
  return noisy;
}

}  // namespace

std::shared_ptr<Frame> blank_like(const Frame& frame) {
  const moxdec::FrameFormat& format = frame.format();
  // Whole samples of chroma, whatever its shifts.
  return std::make_shared<Frame>(format,
                                 moxdec::FrameLayout{(format.width + 3) / 4 * 4, (format.height + 1) / 2 * 2, 0, 0, 0});
}

Reader::Reader(const std::string& path) : data_(moxdec::read_file(path)), decoder_(moxdec::open_video(data_, path)) {}

FramePtr Reader::next() {
  const auto decoded = decoder_->next();
  if (!decoded) return nullptr;
  if (!format_) format_ = decoded->format();
  moxdec::require(format_->bit_depth == 8, "only samples of 8 bits can be filtered");
  moxdec::require(decoded->format() == *format_, "the format of the pictures changes");
  auto frame = blank_like(*decoded);
  each_row(*frame, [&](Mox8u* row, int plane, int y, int width) {
    std::memcpy(row, decoded->shown_row(plane, y), static_cast<std::size_t>(width));
  });
  return frame;
}

Clip::Clip(const ClipOptions& options)
    : options_(options), input_(options.input), random_(static_cast<std::mt19937::result_type>(options.seed)) {
  if (!options.original.empty()) original_.emplace(options.original);
}

std::optional<Pair> Clip::next() {
  const FramePtr frame = input_.next();
  if (!frame) return {};
  if (options_.interlace) {
    const FramePtr later = input_.next();
    if (!later) return {};
    const FramePtr &even = options_.first == kTop ? frame : later, &odd = options_.first == kTop ? later : frame;
    return Pair{weave(*even, *odd), options_.kept == kTop ? even : odd};
  }
  if (options_.noise > 0) return Pair{add_noise(*frame, options_.noise, random_), frame};
  if (!original_) return Pair{frame, nullptr};
  const FramePtr original = original_->next();
  moxdec::require(original && original->format() == frame->format(),
                  "the original has fewer pictures or another format");
  return Pair{frame, original};
}

moxdec::FrameRate Clip::rate() const {
  moxdec::FrameRate rate = input_.rate();
  if (!options_.interlace) return rate;
  if (rate.numerator % 2 == 0) {
    rate.numerator /= 2;
  } else if (rate.denominator <= std::numeric_limits<std::uint32_t>::max() / 2) {
    rate.denominator *= 2;
  }
  return rate;
}

bool Window::advance() {
  ++current_;
  while (!ended_ && std::ssize(pairs_) <= current_ + kReach) {
    auto pair = clip_.next();
    ended_ = !pair;
    if (pair) pairs_.push_back(std::move(*pair));
  }
  if (current_ > kReach) pairs_.pop_front(), --current_;
  return current_ < std::ssize(pairs_);
}

const Frame& Window::at(int offset) const {
  const int last = static_cast<int>(std::ssize(pairs_)) - 1;
  return *pairs_[static_cast<std::size_t>(std::clamp(current_ + offset, 0, last))].input;
}

}  // namespace moxfilter
