/// An allocator of the test's own, in place of the core library's: blocks end at an unreadable page, sizes are kept,
/// and the allocation number g_failing fails. For one source file of a program.
#pragma once

#include <map>
#include <memory>
#include <vector>

#include "support/guarded.hpp"

namespace {
std::map<void*, std::unique_ptr<mox::test::GuardedBytes>> g_live;
std::vector<int> g_sizes;
std::size_t g_failing;

void reset_allocator(std::size_t failing = 0) { g_sizes.clear(), g_failing = failing; }
}  // namespace

extern "C" __attribute__((visibility("default"))) void* moxMalloc(int length) {
  g_sizes.push_back(length);
  if (length < 1 || g_sizes.size() == g_failing) return nullptr;
  auto block = std::make_unique<mox::test::GuardedBytes>(length, mox::test::Placement::at_end());
  void* const address = block->data();
  g_live[address] = std::move(block);
  return address;
}
extern "C" __attribute__((visibility("default"))) void moxFree(void* pointer) { g_live.erase(pointer); }
