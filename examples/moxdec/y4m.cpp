#include "moxdec/y4m.hpp"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <string>
#include <string_view>

#include "moxdec/error.hpp"

namespace moxdec {
namespace {

constexpr std::string_view kSignature = "YUV4MPEG2";
constexpr int kMaxSide = 16384;

std::string_view text_of(Bytes data) { return {reinterpret_cast<const char*>(data.data()), data.size()}; }

int parse_side(std::string_view text) {
  int side = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), side);
  require(error == std::errc{} && end == text.data() + text.size() && side >= 1 && side <= kMaxSide,
          "Y4M header: sides must be 1 to 16384 samples");
  return side;
}

void require_420(std::string_view chroma) {
  constexpr std::string_view kKinds[] = {"420", "420jpeg", "420mpeg2", "420paldv"};
  if (std::ranges::find(kKinds, chroma) == std::end(kKinds)) {
    throw DecodeError("Y4M header: only 8-bit 4:2:0 is supported, not C" + std::string(chroma));
  }
}

/// A field such as F30000:1001; 0/0 if it is none.
FrameRate parse_rate(std::string_view text) {
  FrameRate rate;
  const char* const end = text.data() + text.size();
  const auto [colon, error] = std::from_chars(text.data(), end, rate.numerator);
  if (error != std::errc{} || colon == end || *colon != ':') return {};
  const auto [last, second_error] = std::from_chars(colon + 1, end, rate.denominator);
  if (second_error != std::errc{} || last != end || rate.numerator == 0 || rate.denominator == 0) return {};
  return rate;
}

struct Header {
  FrameFormat format;
  FrameRate rate;
};

Header parse_header(std::string_view header) {
  FrameFormat format;
  FrameRate rate;
  header.remove_prefix(kSignature.size());
  while (!header.empty()) {
    const std::string_view field = header.substr(0, header.find(' '));
    header.remove_prefix(std::min(header.size(), field.size() + 1));
    if (field.empty()) continue;
    if (field[0] == 'W') format.width = parse_side(field.substr(1));
    if (field[0] == 'H') format.height = parse_side(field.substr(1));
    if (field[0] == 'F') rate = parse_rate(field.substr(1));
    if (field[0] == 'C') require_420(field.substr(1));
  }
  require(format.width > 0 && format.height > 0, "Y4M header: no width or no height");
  return {format, rate};
}

class Y4mReader : public Decoder {
 public:
  explicit Y4mReader(Bytes data) : rest_(text_of(data)), header_(parse_header(take_line())) {}

  std::shared_ptr<const Frame> next() override {
    if (rest_.empty()) return nullptr;
    if (!take_line().starts_with("FRAME")) fail("has no header");
    const int even_width = (header_.format.width + 1) / 2 * 2, even_height = (header_.format.height + 1) / 2 * 2;
    const auto frame = std::make_shared<Frame>(header_.format, FrameLayout{even_width, even_height, 0, 0, 0});
    for (int plane = 0; plane < 3; ++plane) {
      for (int y = 0; y < header_.format.plane_height(plane); ++y) take_row(*frame, plane, y);
    }
    ++count_;
    return frame;
  }
  FrameRate frame_rate() const override { return header_.rate; }

 private:
  std::string_view take_line() {
    const auto end = rest_.find('\n');
    if (end == std::string_view::npos) throw DecodeError("Y4M: a header line has no end");
    const std::string_view line = rest_.substr(0, end);
    rest_.remove_prefix(end + 1);
    return line;
  }
  void take_row(const Frame& frame, int plane, int y) {
    const auto width = static_cast<std::size_t>(header_.format.plane_width(plane));
    if (rest_.size() < width) fail("is cut off");
    std::memcpy(frame.samples<char>(plane) + std::ptrdiff_t{y} * frame.step(plane), rest_.data(), width);
    rest_.remove_prefix(width);
  }
  [[noreturn]] void fail(const char* what) const {
    throw DecodeError("Y4M: frame " + std::to_string(count_) + " " + what);
  }

  std::string_view rest_;
  Header header_;
  long long count_ = 0;
};

}  // namespace

bool is_y4m(Bytes data) { return text_of(data).starts_with(kSignature); }

std::unique_ptr<Decoder> open_y4m(Bytes data) { return std::make_unique<Y4mReader>(data); }

std::unique_ptr<Decoder> open_video(Bytes data, std::string_view file_name) {
  return is_y4m(data) ? open_y4m(data) : find_codec(data, file_name).open(data);
}

}  // namespace moxdec
