// app/hugepages.cpp - asking for large pages behind big arrays.
#include "app/hugepages.h"

#include <cstdint>

#include <sys/mman.h>
#include <unistd.h>

void AskHugePages(void *p, size_t bytes)
{
#ifdef MADV_HUGEPAGE
    if (bytes < ((size_t)4 << 20)) return;  // small arrays: not worth a syscall or the bloat
    const uintptr_t page = (uintptr_t)sysconf(_SC_PAGESIZE);
    const uintptr_t start = ((uintptr_t)p + page - 1) & ~(page - 1);
    const uintptr_t end = ((uintptr_t)p + bytes) & ~(page - 1);
    if (end > start) madvise((void *)start, end - start, MADV_HUGEPAGE);
#else
    (void)p;
    (void)bytes;
#endif
}
