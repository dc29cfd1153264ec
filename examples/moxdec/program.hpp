/// What the command lines of the example programs have in common: arguments, help, messages and exit codes.
#pragma once

#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

namespace moxdec {

struct UsageError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

/// The arguments of a program, one after the other.
class Arguments {
 public:
  Arguments(int count, char** values) : all_(values + 1, values + count) {}

  bool at_end() const { return next_ == all_.size(); }
  const std::string& next() { return all_[next_++]; }
  /// What follows the option that came last. Throws UsageError if nothing does.
  const std::string& value();
  /// The same as a number, a multiple of `unit`. Throws UsageError.
  int number(int low, int high = std::numeric_limits<int>::max(), int unit = 1);

 private:
  std::vector<std::string> all_;
  std::size_t next_ = 0;
};

struct Program {
  const char* name;
  const char* usage;
  const char* help;
};

void print_help(const Program& program);
/// Tells the exception in work on standard error. Returns the exit code: 2 for wrong usage, 1 for all else.
int report_error(const Program& program, const std::string& input);

/// Reads one input and the options, and runs. `Options` has `input` and `help`. `parse` takes an option by its name,
/// and its value from the arguments; it returns false if there is no such option. Returns the exit code.
template <class Options>
int run_program(const Program& program, Arguments arguments,
                bool (*parse)(Options&, const std::string& option, Arguments&), void (*run)(const Options&)) {
  Options options;
  try {
    while (!arguments.at_end()) {
      const std::string& argument = arguments.next();
      if (argument == "--help") {
        options.help = true;
      } else if (!parse(options, argument, arguments)) {
        if (argument.starts_with("-") || !options.input.empty()) throw UsageError("unknown argument " + argument);
        options.input = argument;
      }
    }
    if (options.input.empty() && !options.help) throw UsageError("no input");
    options.help ? print_help(program) : run(options);
    return 0;
  } catch (...) {
    return report_error(program, options.input);
  }
}

}  // namespace moxdec
