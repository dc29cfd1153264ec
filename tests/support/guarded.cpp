#include "support/guarded.hpp"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdio>

namespace mox::test {

GuardedBytes::GuardedBytes(std::size_t bytes, Placement placement) {
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  const std::size_t room =
      bytes + (placement.kind == Placement::kAligned ? static_cast<std::size_t>(placement.alignment) : 0);
  const std::size_t pages = (room + page - 1) / page + (room == 0);
  mapped_ = (pages + 2) * page;
  void* mapping = mmap(nullptr, mapped_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapping == MAP_FAILED ||
      mprotect(static_cast<std::byte*>(mapping) + page, pages * page, PROT_READ | PROT_WRITE)) {
    std::perror("guarded memory");
    std::abort();
  }
  mapping_ = static_cast<std::byte*>(mapping);
  data_ =
      placement.kind == Placement::kEnd ? mapping_ + (pages + 1) * page - bytes : mapping_ + page + placement.alignment;
}

GuardedBytes::~GuardedBytes() { munmap(mapping_, mapped_); }

}  // namespace mox::test
