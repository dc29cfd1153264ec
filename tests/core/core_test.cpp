#include <gtest/gtest.h>
#include <sched.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

#include "moxcore.h"

namespace mox::test {
namespace {

TEST(Core, MemoryIsAlignedAndWholeBlocksAreUsable) {
  std::vector<unsigned char*> blocks;
  for (int length = 1; length <= 300; ++length) {
    auto* block = static_cast<unsigned char*>(moxMalloc(length));
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 64, 0u) << length;
    std::memset(block, length & 0xFF, static_cast<std::size_t>(length));
    blocks.push_back(block);
  }
  for (int length = 1; length <= 300; ++length) {
    unsigned char* block = blocks[static_cast<std::size_t>(length - 1)];
    EXPECT_TRUE(std::all_of(block, block + length, [=](int value) { return value == (length & 0xFF); })) << length;
    moxFree(block);
  }
  moxFree(nullptr);
}

TEST(Core, ExtremeLengths) {
  for (int length : {0, -1, INT_MIN}) EXPECT_EQ(moxMalloc(length), nullptr) << length;
  if (auto* block = static_cast<char*>(moxMalloc(INT_MAX))) {  // rounding up must not run past the largest int
    block[INT_MAX - 1] = 1;
    moxFree(block);
  }
}

TEST(Core, CacheSize) {
  EXPECT_EQ(moxGetMaxCacheSizeB(nullptr), -8);
  int size = -77;
  const int status = moxGetMaxCacheSizeB(&size);
  if (status == 0) {
    EXPECT_GE(size, 8 << 10) << "no x86-64 processor has less";
  } else {
    EXPECT_EQ(status, -1);
    EXPECT_EQ(size, -77) << "written without success";
  }
}

struct ThreadSettings {
  const char *num_threads, *thread_limit;
  int expected;  // kAll: as many as the process may use
};
constexpr int kAll = 0;

void set_or_clear(const char* name, const char* value) { value ? setenv(name, value, 1) : unsetenv(name); }

TEST(Core, ThreadCountFollowsTheEnvironment) {
  cpu_set_t allowed;
  ASSERT_EQ(sched_getaffinity(0, sizeof allowed, &allowed), 0);
  for (const ThreadSettings& s : {
           ThreadSettings{nullptr, nullptr, kAll},
           {"3", nullptr, 3},
           {"8,4", nullptr, 8},
           {" 5 ", nullptr, 5},
           {"12", "7", 7},
           {"6", "7", 6},
           {nullptr, "1", 1},
           {"0", nullptr, kAll},
           {"-4", nullptr, kAll},
           {"", "", kAll},
           {"many", "few", kAll},
           {"2", "0", 2},
           {"99999999999", nullptr, INT_MAX},
       }) {
    set_or_clear("OMP_NUM_THREADS", s.num_threads);
    set_or_clear("OMP_THREAD_LIMIT", s.thread_limit);
    EXPECT_EQ(ownGetNumThreads(), s.expected == kAll ? CPU_COUNT(&allowed) : s.expected)
        << "OMP_NUM_THREADS " << (s.num_threads ? s.num_threads : "not set") << ", OMP_THREAD_LIMIT "
        << (s.thread_limit ? s.thread_limit : "not set");
  }
  set_or_clear("OMP_NUM_THREADS", nullptr);
  set_or_clear("OMP_THREAD_LIMIT", nullptr);
}

TEST(Core, ThreadCountFollowsTheProcessorsAllowed) {
  int count = -1;
  std::thread([&] {
    cpu_set_t allowed, one;
    ASSERT_EQ(sched_getaffinity(0, sizeof allowed, &allowed), 0);
    CPU_ZERO(&one);
    for (int cpu = 0; cpu < CPU_SETSIZE && !CPU_COUNT(&one); ++cpu) {
      if (CPU_ISSET(cpu, &allowed)) CPU_SET(cpu, &one);
    }
    ASSERT_EQ(sched_setaffinity(0, sizeof one, &one), 0);
    count = ownGetNumThreads();
  }).join();
  EXPECT_EQ(count, 1);
}

}  // namespace
}  // namespace mox::test
