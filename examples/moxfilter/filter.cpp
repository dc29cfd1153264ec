#include "moxfilter/filter.hpp"

#include <algorithm>

namespace moxfilter {
namespace {

std::string text_of(MoxStatus status) {
  switch (status) {
    case moxStsBadSize: return "the size is not one it takes";
    case moxStsRegionTooSmall: return "it is too small";
    case moxStsOutOfRange: return "a parameter is out of range";
    case moxStsNoMemory: return "there is no memory";
    default: return "status " + std::to_string(status);
  }
}

template <class Visit>
void each_filter(Visit visit) {
  for (const auto& table : {deinterlacers(), denoisers()}) {
    for (const Filter& filter : table) visit(filter);
  }
}

std::string padded(std::string text, std::size_t columns) {
  text.resize(std::max(text.size() + 1, columns), ' ');
  return text;
}

}  // namespace

Refusal::Refusal(MoxStatus status) : std::runtime_error(text_of(status)) {}

void require_ok(MoxStatus status) {
  if (status != moxStsOk) throw Refusal(status);
}

int Setup::value(std::string_view parameter) const {
  const auto found = std::ranges::find(parameters, parameter, &Parameter::name);
  return values[static_cast<std::size_t>(found - parameters.begin())];
}

int Filter::find(std::string_view parameter) const {
  const auto found = std::ranges::find(parameters, parameter, &Parameter::name);
  return found == parameters.end() ? -1 : static_cast<int>(found - parameters.begin());
}

std::vector<int> Filter::standard_values() const {
  std::vector<int> values;
  for (const Parameter& parameter : parameters) values.push_back(parameter.standard);
  return values;
}

const Filter* find_filter(std::string_view name) {
  const Filter* found = nullptr;
  each_filter([&](const Filter& filter) {
    if (filter.name == name) found = &filter;
  });
  return found;
}

bool is_parameter(std::string_view name) {
  bool found = false;
  each_filter([&](const Filter& filter) { found |= filter.find(name) >= 0; });
  return found;
}

std::string describe_filters() {
  std::string text;
  each_filter([&](const Filter& filter) {
    const char* kind = filter.kind == Kind::kDeinterlacer ? "deinterlacer" : "denoiser";
    text += padded("  " + std::string(filter.name), 20) + kind + ": " + filter.text + "\n";
    for (const Parameter& p : filter.parameters) {
      text += padded("    " + std::string(p.name) + " N", 20) + p.text + ": " + std::to_string(p.low) + " to " +
              std::to_string(p.high) + ", " + std::to_string(p.standard) + " if not given\n";
    }
  });
  return text;
}

}  // namespace moxfilter
