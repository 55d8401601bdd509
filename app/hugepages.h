// app/hugepages.h - asking for large pages behind big arrays.
#pragma once

#include <cstddef>

// Asks the system to back the whole pages of [p, p + bytes) with large
// pages when bytes is 4 MiB or more: far fewer page faults as the array is
// first filled and fewer address-translation misses later. Only a request;
// nothing changes where the system declines.
void AskHugePages(void *p, size_t bytes);
