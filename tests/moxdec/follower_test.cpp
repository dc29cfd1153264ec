/// A follower in the thread that leads it and in one of its own.
#include "moxdec/follower.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <stdexcept>
#include <vector>

namespace mox::test {
namespace {

using moxdec::Follower;

class Followers : public testing::TestWithParam<std::size_t> {};

/// A place is never filled again before the work on it is done, whichever thread is the slower one.
TEST_P(Followers, WorkOnAllPlacesInOrder) {
  constexpr int kSteps = 500;
  std::array<int, 16> places{};
  std::vector<int> seen;
  for (const bool slow_work : {false, true}) {
    seen.clear();
    std::size_t place = 0;
    Follower follower([&](std::size_t at) {
      if (slow_work && seen.size() % 8 == 0) std::this_thread::sleep_for(std::chrono::microseconds(100));
      seen.push_back(places[at]);
    });
    if (GetParam() > 0) follower.start(GetParam());
    for (int i = 0; i < kSteps; ++i) {
      places[place] = i;
      place = follower.advance();
      EXPECT_LT(place, std::max<std::size_t>(GetParam(), 1));
    }
    EXPECT_EQ(follower.wait(), nullptr);
    ASSERT_EQ(seen.size(), kSteps);
    for (int i = 0; i < kSteps; ++i) ASSERT_EQ(seen[static_cast<std::size_t>(i)], i);
  }
}

/// Work behind an exception is left out, but not what follows the wait.
TEST_P(Followers, HandTheFirstExceptionOver) {
  int done = 0;
  Follower follower([&](std::size_t) {
    if (++done == 3) throw std::runtime_error("third");
  });
  if (GetParam() > 0) follower.start(GetParam());
  for (int i = 0; i < 40; ++i) follower.advance();
  const std::exception_ptr error = follower.wait();
  ASSERT_NE(error, nullptr);
  EXPECT_THROW(std::rethrow_exception(error), std::runtime_error);
  EXPECT_EQ(done, 3);
  follower.advance();
  EXPECT_EQ(follower.wait(), nullptr);
  EXPECT_EQ(done, 4);
}

INSTANTIATE_TEST_SUITE_P(, Followers, testing::Values(0u, 1u, 2u, 5u, 16u));

}  // namespace
}  // namespace mox::test
