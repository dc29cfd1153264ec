#include "frame/memory.hpp"

#include "moxcore.h"

namespace mox {
namespace {
template <class T>
T* allocate(Mox32s length) {
  constexpr Mox32s kLongest = 0x7FFFFFFF / static_cast<Mox32s>(sizeof(T));
  if (length < 1 || length > kLongest) return nullptr;
  return static_cast<T*>(moxMalloc(length * static_cast<Mox32s>(sizeof(T))));
}
}  // namespace

Mox8u* moxsMalloc_8u(Mox32s length) { return allocate<Mox8u>(length); }
signed char* moxsMalloc_8s(Mox32s length) { return allocate<signed char>(length); }
Mox16u* moxsMalloc_16u(Mox32s length) { return allocate<Mox16u>(length); }
void moxsFree(void* pointer) { moxFree(pointer); }
void moxiFree(void* pointer) { moxFree(pointer); }

}  // namespace mox
