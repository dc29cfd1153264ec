/// Files as the programs read and write them: whole ones in, one piece after the other out.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <string>
#include <vector>

namespace moxdec {

/// The bytes of a file. Throws std::runtime_error with what the system says.
std::vector<std::uint8_t> read_file(const std::string& path);

/// Something could not be written; the message says what and why.
struct OutputError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// A file to write, or standard output for "-". Everything throws OutputError.
class OutputFile {
 public:
  explicit OutputFile(const std::string& path);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void write(const void* data, std::size_t size);
  /// To be called once at the end: only then is it known that all could be written.
  void close();

 private:
  [[noreturn]] void fail() const;

  std::string name_;
  std::FILE* file_;
};

}  // namespace moxdec
