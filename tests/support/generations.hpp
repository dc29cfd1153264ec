/// The built libraries, loaded side by side.
#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace mox::test {

/// The name and the type of an exported function; make one with MOX_FN.
template <class Function>
struct Symbol {
  const char* name;
};
#define MOX_FN(function) \
  ::mox::test::Symbol<decltype(function)> { #function }

/// One generation of the library, kept loaded until the program ends.
class Library {
 public:
  /// Null, with the reason in `why`, if that generation was not built or the processor cannot run it.
  static const Library* open(std::string_view generation, std::string* why = nullptr);
  /// The portable generation, which the others are compared with.
  static const Library& portable();

  /// The address of an exported function; ends the program with a message if it is missing.
  template <class Function>
  Function* operator[](Symbol<Function> symbol) const {
    return reinterpret_cast<Function*>(address(symbol.name));
  }
  void* address(const char* name) const;
  const std::string& path() const { return path_; }

 private:
  Library(void* handle, std::string path) : handle_(handle), path_(std::move(path)) {}
  void* handle_;
  std::string path_;
};

}  // namespace mox::test
