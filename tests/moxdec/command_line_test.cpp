/// Arguments, messages and exit codes of the program.
#include <algorithm>

#include "moxdec/decoding.hpp"
#include "moxdec/stream_builder.hpp"

namespace mox::test {
namespace {

/// A stream in a file, removed at the end.
class TemporaryFile {
 public:
  TemporaryFile(const std::string& name, const Stream& bytes)
      : path_(testing::TempDir() + std::to_string(getpid()) + name) {
    std::ofstream(path_, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
  }
  ~TemporaryFile() { std::remove(path_.c_str()); }
  const std::string& path() const { return path_; }

 private:
  std::string path_;
};

TEST(CommandLine, ErrorsAreOneLineAndACode) {
  const TemporaryFile cabac("cabac.264", StreamBuilder().sps().pps({.cabac = true}).raw_slice({}, {1}).stream());
  const TemporaryFile noise("noise.bin", Stream(1000, 0x42));
  const TemporaryFile no_start("nothing.264", Stream(1000, 0x42));
  const TemporaryFile nothing("empty.bin", {});
  const std::string tiny = vector_path("h264_tiny_i.264");
  struct Case {
    std::string arguments;
    int code;
    std::string message;
  };
  for (const Case& c : {
           Case{"", 2, "moxdec: no input (try moxdec --help)"},
           Case{"--frames", 2, "moxdec: --frames takes a value (try moxdec --help)"},
           Case{"--frames 0 " + tiny, 2, "moxdec: --frames takes a number from 1 on (try moxdec --help)"},
           Case{"--frames 2x " + tiny, 2, "moxdec: --frames takes a number from 1 on (try moxdec --help)"},
           Case{"--threads 0 " + tiny, 2, "moxdec: --threads takes a number from 1 on (try moxdec --help)"},
           Case{tiny + " --threads", 2, "moxdec: --threads takes a value (try moxdec --help)"},
           Case{tiny + " -o", 2, "moxdec: -o takes a value (try moxdec --help)"},
           Case{"--fast " + tiny, 2, "moxdec: unknown argument --fast (try moxdec --help)"},
           Case{tiny + " second", 2, "moxdec: unknown argument second (try moxdec --help)"},
           Case{"no/such/file.264", 1, "moxdec: no/such/file.264: No such file or directory"},
           Case{"/", 1, "moxdec: /: Is a directory"},
           Case{tiny + " -o no/such/folder/out.yuv", 1, "moxdec: no/such/folder/out.yuv: No such file or directory"},
           Case{tiny + " -o no/such/folder/out.png", 1, "moxdec: no/such/folder/out.png: No such file or directory"},
           Case{tiny + " --quiet -o /dev/full", 1, "moxdec: /dev/full: No space left on device"},
           Case{noise.path(), 1, "moxdec: " + noise.path() + ": not a stream of a known kind"},
           Case{nothing.path(), 1, "moxdec: " + nothing.path() + ": not a stream of a known kind"},
           Case{no_start.path(), 1, "moxdec: " + no_start.path() + ": no start code found"},
           Case{cabac.path(), 1, "moxdec: " + cabac.path() + ": slice at byte 22: CABAC is not supported"},
       }) {
    const Ran ran = run(kMoxdec + c.arguments);
    EXPECT_EQ(ran.code, c.code) << c.arguments;
    EXPECT_EQ(ran.err, c.message + "\n") << c.arguments;
    EXPECT_EQ(ran.out, "") << c.arguments;
  }
}

TEST(CommandLine, FramesBeforeAnErrorAreWritten) {
  StreamBuilder b;
  b.sps().pps().raw_slice({.poc_lsb = 0}, {1}).nal(2, 1, BitWriter());
  const TemporaryFile partition("partition.264", b.stream());
  const Ran ran = run(kMoxdec + partition.path() + " -o -");
  EXPECT_EQ(ran.code, 1);
  EXPECT_EQ(ran.out.size(), 16u * 16 * 3 / 2);
}

TEST(CommandLine, FramesLimitAndQuiet) {
  const std::string tiny = vector_path("h264_tiny_i.264");
  const Ran all = run(kMoxdec + tiny + " -o - --quiet"), one = run(kMoxdec + " --frames 1 " + tiny + " -o -");
  EXPECT_EQ(all.err, "");
  EXPECT_EQ(all.out.size(), 2u * 64 * 64 * 3 / 2);
  EXPECT_NE(one.err.find(" 1 frames, "), std::string::npos) << one.err;
  EXPECT_EQ(one.out, all.out.substr(0, all.out.size() / 2));
  EXPECT_EQ(run(kMoxdec + tiny + " -o - --quiet --expand").out, all.out);
  EXPECT_EQ(run(kMoxdec + tiny + " -o - --quiet --threads 1000").out, all.out);
  const Ran help = run(kMoxdec + "--help");
  EXPECT_EQ(help.code, 0);
  EXPECT_EQ(
      help.out.rfind("usage: moxdec INPUT [-o OUT.yuv|OUT.y4m|OUT.png] [--frames N] [--threads N] [--quiet]\n", 0), 0u);
}

}  // namespace
}  // namespace mox::test
