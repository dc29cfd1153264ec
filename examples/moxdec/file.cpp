#include "moxdec/file.hpp"

#include <cerrno>
#include <cstring>
#include <memory>
#include <utility>

namespace moxdec {

std::vector<std::uint8_t> read_file(const std::string& path) {
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"), std::fclose);
  if (!file) throw std::runtime_error(std::strerror(errno));
  std::vector<std::uint8_t> data;
  for (std::size_t got = 1; got > 0;) {
    constexpr std::size_t kChunk = 1 << 20;
    const std::size_t size = data.size();
    data.resize(size + kChunk);
    got = std::fread(data.data() + size, 1, kChunk, file.get());
    data.resize(size + got);
  }
  if (std::ferror(file.get())) throw std::runtime_error(std::strerror(errno));
  return data;
}

OutputFile::OutputFile(const std::string& path)
    : name_(path == "-" ? "standard output" : path), file_(path == "-" ? stdout : std::fopen(path.c_str(), "wb")) {
  if (!file_) fail();
}

OutputFile::~OutputFile() {
  if (file_ && file_ != stdout) std::fclose(file_);
}

void OutputFile::write(const void* data, std::size_t size) {
  if (std::fwrite(data, 1, size, file_) != size) fail();
}

void OutputFile::close() {
  std::FILE* file = std::exchange(file_, nullptr);
  if ((file == stdout ? std::fflush(file) : std::fclose(file)) != 0) fail();
}

void OutputFile::fail() const { throw OutputError(name_ + ": " + std::strerror(errno)); }

}  // namespace moxdec
