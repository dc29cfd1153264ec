/// The built libraries, loaded side by side.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>

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

/// A suite whose tests run once for each generation: `lib` is the one under test, `px` the portable one.
class PerGeneration : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    std::string why;
    library_ = Library::open(GetParam(), &why);
    if (!library_) GTEST_SKIP() << why;
  }
  template <class Function>
  Function* lib(Symbol<Function> symbol) const {
    return (*library_)[symbol];
  }
  template <class Function>
  static Function* px(Symbol<Function> symbol) {
    return Library::portable()[symbol];
  }
  const Library& library() const { return *library_; }

 private:
  const Library* library_ = nullptr;
};

#define MOX_INSTANTIATE_GENERATIONS(Suite)                                \
  INSTANTIATE_TEST_SUITE_P(All, Suite, testing::Values("px", "e9", "v3"), \
                           [](const auto& generation) { return std::string(generation.param); })

}  // namespace mox::test
