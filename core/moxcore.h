/** @file
 *  The four functions that moxvc imports. Another library with these symbols and the name libmoxcore.so.6 can take
 *  the place of this one. */
#ifndef MOXCORE_H
#define MOXCORE_H

#ifdef __cplusplus
extern "C" {
#endif

/** Allocates memory for vector loads.
 *  @param length bytes, at least 1
 *  @return memory aligned to 64 bytes, or null for a length below 1 or when there is none left */
void* moxMalloc(int length);

/** Releases memory of moxMalloc; null is allowed. */
void moxFree(void* ptr);

/** Tells the size of the largest data cache of the running processor.
 *  @param[out] pSizeByte bytes
 *  @return 0, or -8 for a null pointer, or -1 when the operating system does not tell (nothing is written) */
int moxGetMaxCacheSizeB(int* pSizeByte);

/** The number of threads that a parallel region of the library may use, at least 1: the processors that this process
 *  may run on, cut to OMP_NUM_THREADS and OMP_THREAD_LIMIT where the environment sets them. */
int ownGetNumThreads(void);

#ifdef __cplusplus
}
#endif
#endif
