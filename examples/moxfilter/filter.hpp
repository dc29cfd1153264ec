/// What the program knows of a filter: its name, its parameters, and how it runs over one plane. A new filter is one
/// more entry in the table of its kind.
#pragma once

#include <array>
#include <functional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "moxvc.h"

namespace moxfilter {

/// A whole number that is given as an option.
struct Parameter {
  std::string_view name;
  int low, high, standard;
  const char* text;
};

/// Rows of even number are the top field.
enum Field { kTop = 0, kBottom = 1 };

/// What does not change from picture to picture.
struct Setup {
  std::span<const Parameter> parameters;
  std::span<const int> values;  ///< of those parameters
  Field first = kTop;           ///< in time; for deinterlacers
  Field kept = kTop;            ///< whose rows stay; for deinterlacers
  MoxiSize size{};              ///< of the plane

  int value(std::string_view parameter) const;
};

/// One plane: of five pictures in a row, of what the filter made of the one before, and of its result. All have the
/// same step.
struct Job {
  std::array<const Mox8u*, 5> sources;  ///< [2] is the one to filter
  const Mox8u* last_result;             ///< for the first picture it is the picture itself
  Mox8u* result;
  Mox32s step;
  MoxiSize size;

  const Mox8u* source(int offset = 0) const { return sources[static_cast<std::size_t>(2 + offset)]; }
};

/// Filters a plane of pictures that come one after the other.
using PlaneFilter = std::function<MoxStatus(const Job&)>;

enum class Kind { kDeinterlacer, kDenoiser };

struct Filter {
  std::string_view name;
  const char* text;
  Kind kind;
  std::vector<Parameter> parameters;
  /// Throws Refusal.
  PlaneFilter (*open)(const Setup&);

  /// The position of a parameter, -1 if there is none.
  int find(std::string_view parameter) const;
  std::vector<int> standard_values() const;
};

/// The library does not take a plane or a parameter.
struct Refusal : std::runtime_error {
  explicit Refusal(MoxStatus status);
};
/// Throws Refusal for all but moxStsOk.
void require_ok(MoxStatus status);

std::span<const Filter> deinterlacers();
std::span<const Filter> denoisers();
/// Null if there is none.
const Filter* find_filter(std::string_view name);
/// A filter has such a parameter.
bool is_parameter(std::string_view name);
/// The tables as text.
std::string describe_filters();

}  // namespace moxfilter
