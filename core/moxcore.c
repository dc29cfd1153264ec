#include "moxcore.h"

#include <limits.h>
#include <sched.h>
#include <stdlib.h>
#include <unistd.h>

#define MOX_EXPORT __attribute__((visibility("default")))

enum { kAlignment = 64 };

MOX_EXPORT void* moxMalloc(int length) {
  if (length < 1) return NULL;
  const size_t rounded = ((size_t)length + kAlignment - 1) / kAlignment * kAlignment;
  return aligned_alloc(kAlignment, rounded);
}

MOX_EXPORT void moxFree(void* ptr) { free(ptr); }

MOX_EXPORT int moxGetMaxCacheSizeB(int* pSizeByte) {
  static const int levels[] = {_SC_LEVEL1_DCACHE_SIZE, _SC_LEVEL2_CACHE_SIZE, _SC_LEVEL3_CACHE_SIZE,
                               _SC_LEVEL4_CACHE_SIZE};
  long largest = 0;
  if (!pSizeByte) return -8;
  for (size_t i = 0; i < sizeof levels / sizeof *levels; ++i) {
    const long size = sysconf(levels[i]);
    if (size > largest) largest = size;
  }
  if (largest < 1) return -1;
  *pSizeByte = largest > INT_MAX ? INT_MAX : (int)largest;
  return 0;
}

/* A positive number at the start of an environment variable, such as the first of the list "8,4"; else `otherwise`. */
static long positive_setting(const char* name, long otherwise) {
  const char* text = getenv(name);
  if (!text) return otherwise;
  const long value = strtol(text, NULL, 10);
  return value > 0 ? value : otherwise;
}

MOX_EXPORT int ownGetNumThreads(void) {
  cpu_set_t allowed;
  long count = sched_getaffinity(0, sizeof allowed, &allowed) == 0 ? CPU_COUNT(&allowed) : 1;
  count = positive_setting("OMP_NUM_THREADS", count);
  const long limit = positive_setting("OMP_THREAD_LIMIT", count);
  if (count > limit) count = limit;
  return count < 1 ? 1 : count > INT_MAX ? INT_MAX : (int)count;
}
