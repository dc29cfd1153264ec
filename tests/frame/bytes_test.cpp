#include "frame/bytes.hpp"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "frame/memory.hpp"
#include "moxcore.h"
#include "support/call.hpp"
#include "support/guarded.hpp"
#include "support/random.hpp"

namespace {
int g_allocations, g_last_length, g_cache_size, g_cache_status, g_cache_queries;
void* g_freed;
}  // namespace

// A core library of the test's own, in place of the real one.
void* moxMalloc(int length) {
  ++g_allocations, g_last_length = length;
  static char room[16];
  return room;
}
void moxFree(void* pointer) { g_freed = pointer; }
int moxGetMaxCacheSizeB(int* size) {
  ++g_cache_queries, *size = g_cache_size;
  return g_cache_status;
}

namespace mox::test {
namespace {

TEST(Memory, LengthsBelowOneNeverReachTheAllocator) {
  g_allocations = 0;
  for (Mox32s length : {0, -1, -0x7FFFFFFF - 1}) {
    EXPECT_EQ(moxsMalloc_8u(length), nullptr);
    EXPECT_EQ(moxsMalloc_8s(length), nullptr);
    EXPECT_EQ(moxsMalloc_16u(length), nullptr);
  }
  EXPECT_EQ(moxsMalloc_16u(0x40000000), nullptr) << "2 GiB does not fit the allocator's argument";
  EXPECT_EQ(g_allocations, 0);
}

TEST(Memory, LengthsCountElements) {
  EXPECT_NE(moxsMalloc_8u(7), nullptr);
  EXPECT_EQ(g_last_length, 7);
  EXPECT_NE(moxsMalloc_8s(9), nullptr);
  EXPECT_EQ(g_last_length, 9);
  EXPECT_NE(moxsMalloc_16u(7), nullptr);
  EXPECT_EQ(g_last_length, 14);
}

TEST(Memory, FreePassesThePointerOn) {
  int something;
  for (void* pointer : {static_cast<void*>(&something), static_cast<void*>(nullptr)}) {
    g_freed = &g_freed;
    moxsFree(pointer);
    EXPECT_EQ(g_freed, pointer);
    g_freed = &g_freed;
    moxiFree(pointer);
    EXPECT_EQ(g_freed, pointer);
  }
}

TEST(Bytes, Runs) {
  Guarded<Mox8u> a(37), b(37);
  Guarded<Mox16s> c(19), d(19);
  Random random;
  random.fill(std::span(a.begin(), a.size()));
  random.fill(std::span(c.begin(), c.size()));
  moxsCopy_8u(a.data(), b.data(), 37);
  moxsCopy_16s(c.data(), d.data(), 19);
  EXPECT_EQ(a.copy(), b.copy());
  EXPECT_EQ(c.copy(), d.copy());
  moxsSet_8u(200, b.data() + 1, 35);
  EXPECT_EQ(b[0], a[0]);
  EXPECT_EQ(b[36], a[36]);
  EXPECT_TRUE(std::all_of(b.begin() + 1, b.end() - 1, [](Mox8u v) { return v == 200; }));
  moxsZero_8u(b.data(), 37);
  EXPECT_EQ(b.copy(), std::vector<Mox8u>(37));
  moxsCopy_8u(a.data(), b.data(), 0);
  EXPECT_EQ(b[0], 0);
}

TEST(Bytes, RegionCopy) {
  for (int step : {13, 40, -40}) {
    Plane<Mox8u> src(13, 9, step), dst(13, 9, 17), expected(13, 9, 17);
    Random random;
    random.fill(src.memory());
    for (int y = 0; y < 9; ++y) std::copy_n(src.at(0, y), 13, expected.at(0, y));
    ASSERT_EQ(moxiCopy_8u_C1R(src.at(0, 0), src.step(), dst.at(0, 0), dst.step(), {13, 9}), moxStsOk);
    EXPECT_EQ(dst.copy(), expected.copy());
  }
  Mox8u a = 1, b = 2;
  Call{&moxiCopy_8u_C1R, std::tuple{&a, 1, &b, 1, MoxiSize{1, 1}}}.keeps(&b, 1).expect_order(
      {{moxStsNullPointer, set<0>(nullptr)},
       {moxStsNullPointer, set<2>(nullptr)},
       {moxStsBadSize, set<4>(MoxiSize{0, 1})}});
  Call{&moxiCopy_8u_C1R, std::tuple{&a, 1, &b, 1, MoxiSize{1, 1}}}.expect_order(
      {{moxStsBadSize, set<4>(MoxiSize{1, 0})}});
}

TEST(Bytes, RegionFillIsTheSameOnEveryPath) {
  struct Case {
    int width, height, step, cache, status;
  };
  // Below and above the size at which the cache is asked for; larger and smaller than the cache; an unknown cache.
  for (const Case& c :
       {Case{13, 9, 13, 0, 0}, Case{13, 9, 21, 0, 0}, Case{13, 9, -21, 0, 0}, Case{1031, 600, 1031, 1, 0},
        Case{1031, 600, 1060, 1, 0}, Case{1031, 600, 1031, 1 << 30, 0}, Case{1031, 600, 1060, 1, -1}}) {
    Plane<Mox8u> plane(c.width, c.height, c.step), expected(c.width, c.height, c.step);
    for (int y = 0; y < c.height; ++y) std::fill_n(expected.at(0, y), c.width, Mox8u{77});
    g_cache_size = c.cache, g_cache_status = c.status, g_cache_queries = 0;
    ASSERT_EQ(moxiSet_8u_C1R(77, plane.at(0, 0), plane.step(), {c.width, c.height}), moxStsOk);
    EXPECT_EQ(g_cache_queries, c.width * c.height > 524288);
    EXPECT_TRUE(std::ranges::equal(plane.memory(), expected.memory()));
  }
  Mox8u a = 1;
  Call{&moxiSet_8u_C1R, std::tuple{Mox8u{3}, &a, 1, MoxiSize{1, 1}}}.keeps(&a, 1).expect_order(
      {{moxStsNullPointer, set<1>(nullptr)}, {moxStsBadSize, set<3>(MoxiSize{1, 0})}});
}

}  // namespace
}  // namespace mox::test
