/// The way to the allocator: every allocation of the library goes through these wrappers of the core support library.
#pragma once

#include "moxvc/types.h"

namespace mox {

/// Room for `length` elements, aligned for vector loads; null for a length below 1 or when there is no memory.
Mox8u* moxsMalloc_8u(Mox32s length);
signed char* moxsMalloc_8s(Mox32s length);
Mox16u* moxsMalloc_16u(Mox32s length);

/// Releases memory of the wrappers above; null is passed on.
void moxsFree(void* pointer);
void moxiFree(void* pointer);

}  // namespace mox
