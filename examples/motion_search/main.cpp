/// motion_search: finds how the blocks of a picture have moved since another one.
#include <charconv>
#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "motion_search/field.hpp"
#include "motion_search/input.hpp"
#include "motion_search/report.hpp"
#include "moxdec/output.hpp"

namespace motion_search {
namespace {

constexpr const char* kUsage = "usage: motion_search INPUT [--reference N] [--current N] [--range N] [-o OUT.png]\n";
constexpr const char* kHelp =
    "\n"
    "Predicts a picture from another one, block by block, and tells how well: with a full search, with a diamond\n"
    "search, and without motion.\n"
    "\n"
    "  INPUT          Y4M (8-bit 4:2:0), or a stream that moxdec decodes\n"
    "  --reference N  the frame to predict from, 0 (the first) if not given\n"
    "  --current N    the frame to predict, 1 if not given\n"
    "  --range N      search vectors of -N to N - 1 samples: a multiple of 4, 4 to 128, 16 if not given\n"
    "  -o OUT.png     draw the vectors of the full search over the picture: yellow one for 16x16, green four for 8x8,\n"
    "                 red where coding without prediction would be cheaper\n"
    "  --help         this text\n"
    "\n"
    "Exit code: 0 done, 1 the input is broken or not supported or the output failed, 2 wrong usage.\n";

struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

struct Options {
  std::string input, output;
  int reference = 0, current = 1, range = 16;
  bool help = false;
};

int parse_number(const std::string& option, std::string_view text, int low, int high, int unit) {
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc{} || end != text.data() + text.size() || number < low || number > high || number % unit) {
    throw UsageError(option + " takes " + (unit > 1 ? "a multiple of " + std::to_string(unit) : "a number") + " from " +
                     std::to_string(low) + " to " + std::to_string(high));
  }
  return number;
}

Options parse_options(const std::vector<std::string>& arguments) {
  constexpr int kMostFrames = 1000000, kMostRange = 128;
  Options options;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    const auto value = [&]() -> const std::string& {
      if (i + 1 == arguments.size()) throw UsageError(argument + " takes a value");
      return arguments[++i];
    };
    if (argument == "-o") {
      options.output = value();
    } else if (argument == "--reference") {
      options.reference = parse_number(argument, value(), 0, kMostFrames, 1);
    } else if (argument == "--current") {
      options.current = parse_number(argument, value(), 0, kMostFrames, 1);
    } else if (argument == "--range") {
      options.range = parse_number(argument, value(), kRangeUnit, kMostRange, kRangeUnit);
    } else if (argument == "--help") {
      options.help = true;
    } else if (argument.starts_with("-") || !options.input.empty()) {
      throw UsageError("unknown argument " + argument);
    } else {
      options.input = argument;
    }
  }
  if (options.input.empty() && !options.help) throw UsageError("no input");
  if (!options.output.empty() && !options.output.ends_with(".png")) throw UsageError("the output must end in .png");
  return options;
}

void run(const Options& options) {
  const FramePair frames = read_frames(options.input, options.reference, options.current);
  const Picture reference(*frames.reference, margin_for(options.range)), current(*frames.current, 0);
  std::printf("%s: frame %d from frame %d, %dx%d, vectors of -%d to %d samples, library %s\n", options.input.c_str(),
              options.current, options.reference, current.width(), current.height(), options.range, options.range - 1,
              moxvcGetLibVersion()->name);
  constexpr struct {
    Method method;
    const char* name;
  } kMethods[] = {{Method::kFull, "full search"}, {Method::kDiamond, "diamond search"}, {Method::kZero, "no motion"}};
  for (const auto& [method, name] : kMethods) {
    const Field field = estimate(current, reference, method, options.range);
    std::fputs(describe(name, field, current, predict(field, reference)).c_str(), stdout);
    if (method == Method::kFull && !options.output.empty()) moxdec::write_png(draw(field, current), options.output);
  }
}

int main_program(const std::vector<std::string>& arguments) {
  Options options;
  try {
    options = parse_options(arguments);
    if (options.help) {
      std::printf("%s%s", kUsage, kHelp);
      return 0;
    }
    run(options);
    return 0;
  } catch (const UsageError& error) {
    std::fprintf(stderr, "motion_search: %s (try motion_search --help)\n", error.what());
    return 2;
  } catch (const moxdec::OutputError& error) {
    std::fprintf(stderr, "motion_search: %s\n", error.what());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "motion_search: %s: %s\n", options.input.c_str(), error.what());
  }
  return 1;
}

}  // namespace
}  // namespace motion_search

int main(int argc, char** argv) { return motion_search::main_program({argv + 1, argv + argc}); }
