/* A core library that has no memory to give. */
#include <stddef.h>

void* moxMalloc(int length) {
  (void)length;
  return NULL;
}

void moxFree(void* ptr) { (void)ptr; }

int moxGetMaxCacheSizeB(int* pSizeByte) {
  (void)pSizeByte;
  return -1;
}

int ownGetNumThreads(void) { return 1; }
