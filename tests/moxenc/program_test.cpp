/// The program: its arguments, messages and exit codes, and the same bytes from every generation of the library.
#include <gtest/gtest.h>

#include <filesystem>

#include "moxenc/clips.hpp"
#include "support/generations.hpp"

namespace mox::test {
namespace {

const std::string kMoxenc = "'" MOXVC_BIN_DIR "/moxenc' ";

std::string y4m(const std::string& header, int width, int height, int frames, const Formula& formula) {
  std::string bytes = "YUV4MPEG2 " + header + "\n";
  for (int i = 0; i < frames; ++i) {
    const Stream planes = raw_planes(*make_frame(width, height, i, formula));
    bytes += "FRAME\n";
    bytes.append(planes.begin(), planes.end());
  }
  return bytes;
}

/// Files of one test, removed at the end.
class Program : public testing::Test {
 protected:
  Program() : folder_(testing::TempDir() + "moxenc" + std::to_string(getpid())) {
    std::filesystem::create_directory(folder_);
  }
  ~Program() override { std::filesystem::remove_all(folder_); }
  std::string path(const std::string& name) const { return folder_ + "/" + name; }
  std::string file(const std::string& name, const std::string& bytes) const {
    std::ofstream(path(name), std::ios::binary) << bytes;
    return path(name);
  }

 private:
  std::string folder_;
};

TEST_F(Program, GenerationsGiveTheSameStream) {
  const std::string input = file("cuts.y4m", y4m("W98 H66 F50:1 C420jpeg", 98, 66, 9, formulas::cuts));
  std::vector<Stream> streams;
  for (const std::string generation : {"px", "e9", "v3"}) {
    if (!Library::open(generation)) continue;
    const std::string out = path(generation + ".264"), recon = path("recon.y4m"), decoded = path("decoded.y4m");
    const Ran ran = run("LD_LIBRARY_PATH='" MOXVC_LIB_DIR "/" + generation + ":" MOXVC_LIB_DIR "' " + kMoxenc + input +
                        " -o " + out + " --bitrate 400 --keyint 5 --recon " + recon);
    EXPECT_EQ(ran.code, 0) << ran.err;
    EXPECT_NE(ran.err.find(": 9 frames, "), std::string::npos) << ran.err;
    EXPECT_EQ(run(kMoxdec + out + " --quiet -o " + decoded).code, 0);
    EXPECT_TRUE(read_file(decoded) == read_file(recon)) << generation;
    streams.push_back(read_file(out));
    EXPECT_TRUE(streams.back() == streams.front()) << generation;
  }
  EXPECT_GE(streams.size(), 2u);
  const Ran piped = run(kMoxenc + input + " --quiet --frames 4 --bitrate 400 --keyint 5 -o -");
  EXPECT_EQ(piped.err, "");
  EXPECT_EQ(piped.out, std::string(streams[0].begin(), streams[0].begin() + std::ssize(piped.out)));
  EXPECT_EQ(run(kMoxenc + "--help").code, 0);
}

TEST_F(Program, ErrorsAreOneLineAndACode) {
  const std::string good = y4m("W16 H16", 16, 16, 2, formulas::pan), out = " -o " + path("out.264");
  const std::string clip = file("good.y4m", good), cut = file("cut.y4m", good.substr(0, good.size() - 1)),
                    uneven = file("uneven.y4m", y4m("W17 H16", 17, 16, 1, formulas::pan)),
                    none = file("none.y4m", "YUV4MPEG2 W16 H16\n"), noise = file("noise.bin", "noise");
  struct Case {
    std::string arguments;
    int code;
    std::string message;
  };
  for (const Case& c : {
           Case{"", 2, "no input (try moxenc --help)"},
           Case{clip, 2, "no output: -o is missing (try moxenc --help)"},
           Case{clip + out + " --qp", 2, "--qp takes a value (try moxenc --help)"},
           Case{clip + out + " --qp 52", 2, "--qp takes a number from 0 to 51 (try moxenc --help)"},
           Case{clip + out + " --bitrate 0", 2, "--bitrate takes a number from 1 to 1000000 (try moxenc --help)"},
           Case{clip + out + " --keyint 2x", 2, "--keyint takes a number from 1 to 1000000 (try moxenc --help)"},
           Case{clip + out + " --qp 9 --bitrate 9", 2, "--qp and --bitrate exclude each other (try moxenc --help)"},
           Case{clip + out + " --fast", 2, "unknown argument --fast (try moxenc --help)"},
           Case{"no/such/file" + out, 1, "no/such/file: No such file or directory"},
           Case{clip + " -o no/such/out.264", 1, "no/such/out.264: No such file or directory"},
           Case{clip + " --quiet -o /dev/full", 1, "/dev/full: No space left on device"},
           Case{clip + out + " --recon no/such/out.yuv", 1, "no/such/out.yuv: No such file or directory"},
           Case{cut + out, 1, cut + ": Y4M: frame 1 is cut off"},
           Case{uneven + out, 1, uneven + ": width and height must be even"},
           Case{none + out, 1, none + ": there are no frames"},
           Case{noise + out, 1, noise + ": not a Y4M file"},
       }) {
    const Ran ran = run(kMoxenc + c.arguments);
    EXPECT_EQ(ran.code, c.code) << c.arguments;
    EXPECT_EQ(ran.err, "moxenc: " + c.message + "\n") << c.arguments;
  }
}

}  // namespace
}  // namespace mox::test
