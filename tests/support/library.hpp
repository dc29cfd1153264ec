/// Tests that run once for each generation of the library.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "support/generations.hpp"

namespace mox::test {

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
