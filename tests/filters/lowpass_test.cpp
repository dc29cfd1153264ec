#include "filters/lowpass.hpp"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "filters/filtering.hpp"
#include "oracle/denoise.hpp"
#include "support/call.hpp"
#include "support/library.hpp"

namespace {
// In place of the core library's: a chosen number of threads, and one block of memory that ends at an unreadable page.
int g_threads = 1;
bool g_failing = false;
std::vector<int> g_sizes;
std::unique_ptr<mox::test::GuardedBytes> g_block;
}  // namespace

extern "C" __attribute__((visibility("default"))) int ownGetNumThreads() { return g_threads; }
extern "C" __attribute__((visibility("default"))) void* moxMalloc(int length) {
  g_sizes.push_back(length);
  if (g_failing) return nullptr;
  g_block = std::make_unique<mox::test::GuardedBytes>(length, mox::test::Placement::at_end());
  return g_block->data();
}
extern "C" __attribute__((visibility("default"))) void moxFree(void*) { g_block = nullptr; }

namespace mox::test {
namespace {

/// The filter is internal: each generation has it in a module of its own.
class Lowpass : public PerGeneration {
 protected:
  void SetUp() override {
    PerGeneration::SetUp();
    if (IsSkipped()) return;
    const std::string path = MOXVC_BIN_DIR "/../tests/lowpass_" + std::string(GetParam()) + ".so";
    void* const module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(module, nullptr) << dlerror();
    filter = reinterpret_cast<decltype(filter)>(dlsym(module, "lowpass"));
    ASSERT_NE(filter, nullptr);
    g_threads = 1, g_failing = false;
  }
  MoxStatus (*filter)(const Mox8u*, Mox32s, Mox8u*, Mox32s, MoxiSize, Mox32s);
};

int sum_of_nine(const Look& look, int x, int y) {
  int sum = 0;
  for (int i = 0; i < 9; ++i) sum += look(0, x - 1 + i % 3, y - 1 + i / 3);
  return sum;
}

TEST_P(Lowpass, EqualsDefinitionWithAnyNumberOfThreads) {
  Random random;
  for (int mask : {33, 55}) {
    const int reach = mask == 33 ? 1 : 2;
    for (int width : kWidths) {
      for (int height = 1; height <= 9 && !HasFatalFailure(); ++height) {
        for (int threads : {1, 2, 3, 7}) {
          g_threads = threads;
          g_sizes.clear();
          // Row 0 of the planes is that of the region; its column 0 is theirs at `reach`.
          Filtering f{1, width + 2 * reach, {-reach, height + reach}, {0, height}, 0, width};
          f.upright = true;
          f.run(
              random,
              [&](auto src, int srcStep, Mox8u* dst, int dstStep) {
                return filter(src[0] + reach, srcStep, dst, dstStep, {width, height}, mask);
              },
              [&](const Look& look, int x, int y) {
                const auto sample = [&](int u, int v) { return look(0, u, v); };
                return mask == 33 ? sum_of_nine(look, x + 1, y) / 9 : oracle::lowpass_5x5(sample, x + 2, y);
              });
          EXPECT_EQ(g_sizes, mask == 33 ? std::vector<int>() : std::vector<int>{2 * threads * (width + 4)});
          EXPECT_EQ(g_block, nullptr) << "not freed";
        }
      }
    }
  }
  EXPECT_GE(threads_of_this_process(), 7) << "the rows were not spread over the team";
}

TEST_P(Lowpass, Impulses) {
  const auto spread = [&](Mox8u level, Mox8u peak, int mask) {
    std::vector<Mox8u> plane(9 * 40, level), out(5 * 36);
    plane[4 * 40 + 20] = peak;
    EXPECT_EQ(filter(&plane[2 * 40 + 2], 40, out.data(), 36, {36, 5}, mask), moxStsOk);
    return std::vector<Mox8u>(out.begin() + 2 * 36 + 15, out.begin() + 2 * 36 + 22);
  };
  EXPECT_EQ(spread(0, 255, 33), (std::vector<Mox8u>{0, 0, 28, 28, 28, 0, 0}));
  EXPECT_EQ(spread(255, 255, 33), std::vector<Mox8u>(7, 255));
  EXPECT_EQ(spread(0, 255, 55), (std::vector<Mox8u>{0, 6, 24, 36, 24, 6, 0})) << "weights of 6, 24 and 36 of 256";
  EXPECT_EQ(spread(255, 255, 55), std::vector<Mox8u>(7, 255));
  EXPECT_EQ(spread(10, 20, 55), (std::vector<Mox8u>{10, 10, 11, 11, 11, 10, 10})) << "10 + 60, 240, 360 of 256";
}

TEST_P(Lowpass, Arguments) {
  std::vector<Mox8u> plane(20 * 20), out(400);
  const Mox8u* const src = plane.data() + 42;
  g_threads = 3;
  using Faults = std::vector<Call<const Mox8u*, Mox32s, Mox8u*, Mox32s, MoxiSize, Mox32s>::Fault>;
  const Faults faults = {{moxStsNullPointer, set<0>(nullptr)},
                         {moxStsNullPointer, set<2>(nullptr)},
                         {moxStsBadSize, set<4>(MoxiSize{0, 8})},
                         {moxStsBadSize, set<4>(MoxiSize{8, -1})},
                         {moxStsBadStep, set<1>(0)},
                         {moxStsBadStep, set<3>(-20)},
                         {moxStsBadMask, set<5>(35)},
                         {moxStsBadMask, set<5>(0)}};
  for (int mask : {33, 55}) {
    Call(filter, std::tuple{src, 20, out.data(), 20, MoxiSize{8, 8}, mask}).keeps(out.data(), 400).expect_order(faults);
  }
  std::fill(out.begin(), out.end(), Mox8u{1});
  g_failing = true;
  EXPECT_EQ(filter(src, 20, out.data(), 20, {8, 8}, 55), moxStsNoMemory);
  EXPECT_EQ(out, std::vector<Mox8u>(400, 1));
  g_failing = false, g_threads = 1 << 20;
  g_sizes.clear();
  EXPECT_EQ(filter(src, 20, out.data(), 20, {1 << 20, 8}, 55), moxStsNoMemory) << "more than an allocation can have";
  EXPECT_TRUE(g_sizes.empty());
}

MOX_INSTANTIATE_GENERATIONS(Lowpass);

}  // namespace
}  // namespace mox::test
