#include "moxdec/output.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdio>
#include <cstring>
#include <numeric>
#include <optional>
#include <vector>

#include "moxdec/contact_sheet.hpp"
#include "moxdec/file.hpp"

namespace moxdec {
namespace {

static_assert(std::endian::native == std::endian::little, "16-bit samples are written as they lie in memory");

class RawWriter : public FrameWriter {
 public:
  explicit RawWriter(const std::string& path) : file_(path) {}

  void write(const Frame& frame, FrameRate) override {
    const FrameFormat& format = frame.format();
    for (int plane = 0; plane < 3; ++plane) {
      const auto row = static_cast<std::size_t>(format.plane_width(plane) * format.sample_bytes());
      const auto rows = static_cast<std::size_t>(format.plane_height(plane));
      const bool in_one_piece = static_cast<std::size_t>(frame.step(plane)) == row;
      file_.write(in_one_piece ? frame.shown_row(plane, 0) : joined_rows(frame, plane, row), row * rows);
    }
  }
  void finish() override { file_.close(); }

 protected:
  OutputFile file_;

 private:
  const std::byte* joined_rows(const Frame& frame, int plane, std::size_t row) {
    const int rows = frame.format().plane_height(plane);
    buffer_.resize(std::max(buffer_.size(), row * static_cast<std::size_t>(rows)));
    for (int y = 0; y < rows; ++y) {
      std::memcpy(buffer_.data() + row * static_cast<std::size_t>(y), frame.shown_row(plane, y), row);
    }
    return buffer_.data();
  }

  std::vector<std::byte> buffer_;
};

class Y4mWriter : public RawWriter {
 public:
  using RawWriter::RawWriter;

  void write(const Frame& frame, FrameRate rate) override {
    if (!format_) write_header(frame.format(), rate);
    if (*format_ != frame.format()) throw OutputError("the frame format changes, which Y4M cannot hold");
    file_.write("FRAME\n", 6);
    RawWriter::write(frame, rate);
  }

 private:
  void write_header(const FrameFormat& format, FrameRate rate) {
    format_ = format;
    const std::uint32_t divisor = std::gcd(rate.numerator, rate.denominator);
    rate = divisor == 0 ? FrameRate{25, 1} : FrameRate{rate.numerator / divisor, rate.denominator / divisor};
    std::string chroma = format.chroma == Chroma::k411 ? "411" : format.chroma == Chroma::k422 ? "422" : "420";
    if (format.bit_depth > 8) {
      chroma.append("p").append(std::to_string(format.bit_depth));
    } else if (format.chroma == Chroma::k420) {
      chroma.append("mpeg2");
    }
    std::array<char, 120> header;
    const int size = std::snprintf(header.data(), header.size(), "YUV4MPEG2 W%d H%d F%u:%u Ip A0:0 C%s\n", format.width,
                                   format.height, rate.numerator, rate.denominator, chroma.c_str());
    file_.write(header.data(), static_cast<std::size_t>(size));
  }

  std::optional<FrameFormat> format_;
};

}  // namespace

std::unique_ptr<FrameWriter> open_writer(const std::string& path) {
  if (path.ends_with(".png")) return std::make_unique<ContactSheet>(path);
  if (path.ends_with(".y4m")) return std::make_unique<Y4mWriter>(path);
  return std::make_unique<RawWriter>(path);
}

}  // namespace moxdec
