#include "support/random.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace mox::test {
namespace {

constexpr std::uint64_t kDefaultSeed = 20100317;

struct PrintSeed : testing::Environment {
  void SetUp() override {
    std::printf("seed %llu (set MOXVC_SEED for another)\n", static_cast<unsigned long long>(run_seed()));
  }
};
[[maybe_unused]] const auto* const kPrintSeed = testing::AddGlobalTestEnvironment(new PrintSeed);

}  // namespace

std::uint64_t run_seed() {
  const char* text = std::getenv("MOXVC_SEED");
  return text ? std::strtoull(text, nullptr, 10) : kDefaultSeed;
}

Random::Random() : engine_(run_seed()) {
  if (const auto* test = testing::UnitTest::GetInstance()->current_test_info()) {
    // The generation is no part of the name, so that all generations get the same inputs.
    const std::string full = std::string(test->test_suite_name()) + "." + test->name();
    std::string_view name = full;
    if (test->value_param()) name = name.substr(0, name.rfind('/'));
    std::uint64_t hash = run_seed();
    for (char c : name) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3ull;
    engine_.seed(hash);
  }
}

const char* name_of(Pattern pattern) {
  switch (pattern) {
    case Pattern::kRandom: return "random";
    case Pattern::kLow: return "all lowest";
    case Pattern::kHigh: return "all highest";
    case Pattern::kAlternating: return "alternating extremes";
    case Pattern::kRamp: return "ramp";
    case Pattern::kImpulse: return "impulse";
    case Pattern::kSparse: return "sparse";
  }
  return "?";
}

}  // namespace mox::test
