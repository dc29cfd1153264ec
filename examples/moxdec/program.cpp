#include "moxdec/program.hpp"

#include <charconv>
#include <cstdio>
#include <exception>

#include "moxdec/file.hpp"

namespace moxdec {

const std::string& Arguments::value() {
  if (at_end()) throw UsageError(all_[next_ - 1] + " takes a value");
  return next();
}

int Arguments::number(int low, int high, int unit) {
  const std::string& option = all_[next_ - 1];
  const std::string& text = value();
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error == std::errc{} && end == text.data() + text.size() && number >= low && number <= high && number % unit == 0)
    return number;
  throw UsageError(option + " takes " + (unit > 1 ? "a multiple of " + std::to_string(unit) : "a number") + " from " +
                   std::to_string(low) +
                   (high < std::numeric_limits<int>::max() ? " to " + std::to_string(high) : " on"));
}

void print_help(const Program& program) { std::printf("%s%s", program.usage, program.help); }

int report_error(const Program& program, const std::string& input) {
  try {
    throw;
  } catch (const UsageError& error) {
    std::fprintf(stderr, "%s: %s (try %s --help)\n", program.name, error.what(), program.name);
    return 2;
  } catch (const OutputError& error) {
    std::fprintf(stderr, "%s: %s\n", program.name, error.what());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s: %s: %s\n", program.name, input.c_str(), error.what());
  }
  return 1;
}

}  // namespace moxdec
