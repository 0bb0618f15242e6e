// Core services and the thread budget: memory, processor queries, and the
// small decisions every threaded family makes before it opens a region.
#pragma once

#include <cstddef>
#include <cstdint>

#include "zevcv.h"

namespace v8 {

// ---- the five core operations
void* zevMalloc(int sizeBytes);
void zevFree(void* block);
ZevStatus zevGetMaxCacheSizeB(int* sizeBytes);
int zevGetNumCoresOnDie();
int ownGetNumThreads();

// ---- allocation wrappers: a count below 1 gives null without a call
void* zevsMalloc_8u(int count);
void* zevsMalloc_16u(int count);
void* zevsMalloc_32s(int count);
void* zevsMalloc_32f(int count);
void* zevsMalloc_64f(int count);
void zevsFree(void* block);

// ---- thread frame
int owncvGetMaxNumThreads();  // the budget, valid outside a region
int owncvGetNumThreads();     // size of the running team; 1 outside a region
int owncvGetIdThreads();      // this thread's number in its team
int owncvGetCacheSize();      // the cache size as the query gives it

// Zero when the machine has one core (stay serial), else the core count.
int runomp();
// Short separable kernels (3, 5) follow runomp; any other length may thread even on one core.
int runsepomp(int kernelSize);

// Integer pointer, for alignment arithmetic.
#define ZEV_INT_PTR(p) (reinterpret_cast<std::uintptr_t>(p))

}  // namespace v8
