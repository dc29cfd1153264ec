#include "moxdec/output.hpp"

#include <bit>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <numeric>
#include <optional>
#include <utility>
#include <vector>

#include "moxdec/contact_sheet.hpp"

namespace moxdec {
namespace {

static_assert(std::endian::native == std::endian::little, "16-bit samples are written as they lie in memory");

/// A file, or standard output for "-".
class OutputFile {
 public:
  explicit OutputFile(const std::string& path)
      : name_(path == "-" ? "standard output" : path), file_(path == "-" ? stdout : std::fopen(path.c_str(), "wb")) {
    if (!file_) fail();
  }
  ~OutputFile() {
    if (file_ && file_ != stdout) std::fclose(file_);
  }
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void write(const void* data, std::size_t size) {
    if (std::fwrite(data, 1, size, file_) != size) fail();
  }
  void close() {
    std::FILE* file = std::exchange(file_, nullptr);
    if ((file == stdout ? std::fflush(file) : std::fclose(file)) != 0) fail();
  }

 private:
  [[noreturn]] void fail() const { throw OutputError(name_ + ": " + std::strerror(errno)); }

  std::string name_;
  std::FILE* file_;
};

class RawWriter : public FrameWriter {
 public:
  explicit RawWriter(const std::string& path) : file_(path) {}

  void write(const Frame& frame, FrameRate) override {
    const FrameFormat& format = frame.format();
    for (int plane = 0; plane < 3; ++plane) {
      const auto row = static_cast<std::size_t>(format.plane_width(plane) * format.sample_bytes());
      const int rows = format.plane_height(plane);
      buffer_.resize(row * static_cast<std::size_t>(rows));
      for (int y = 0; y < rows; ++y) {
        std::memcpy(buffer_.data() + row * static_cast<std::size_t>(y), frame.shown_row(plane, y), row);
      }
      file_.write(buffer_.data(), buffer_.size());
    }
  }
  void finish() override { file_.close(); }

 protected:
  OutputFile file_;

 private:
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
      chroma += "mpeg2";
    }
    const std::string header = "YUV4MPEG2 W" + std::to_string(format.width) + " H" + std::to_string(format.height) +
                               " F" + std::to_string(rate.numerator) + ":" + std::to_string(rate.denominator) +
                               " Ip A0:0 C" + chroma + "\n";
    file_.write(header.data(), header.size());
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
