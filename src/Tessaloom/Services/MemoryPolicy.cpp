// SPDX-License-Identifier: GPL-3.0-or-later
#include "Services/MemoryPolicy.h"

#if defined(__GLIBC__)
#include <malloc.h>
#endif

void MemoryPolicy::returnLargeBlocksToSystem()
{
#if defined(__GLIBC__)
    // A fixed threshold also turns off glibc's habit of raising it after each freed
    // mapping, which is what moves picture buffers into the heap.
    mallopt(M_MMAP_THRESHOLD, largeBlockBytes);
#endif
}
