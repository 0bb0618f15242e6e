#include "frame/core.h"

#include <omp.h>
#include <sched.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <initializer_list>

namespace v8 {

void* zevMalloc(int sizeBytes) {
    if (sizeBytes < 1) return nullptr;
    void* p = nullptr;
    // 64 bytes: any vector path of the library can run aligned on a fresh block.
    if (posix_memalign(&p, 64, static_cast<std::size_t>(sizeBytes)) != 0) return nullptr;
    return p;
}

void zevFree(void* block) { std::free(block); }

namespace {

long cacheFromSysfs() {
    long best = 0;
    for (int index = 0; index < 16; ++index) {
        char path[96];
        std::snprintf(path, sizeof path, "/sys/devices/system/cpu/cpu0/cache/index%d/size", index);
        FILE* f = std::fopen(path, "r");
        if (!f) break;
        long value = 0;
        char unit = 0;
        int got = std::fscanf(f, "%ld%c", &value, &unit);
        std::fclose(f);
        if (got < 1) continue;
        if (unit == 'K') value *= 1024;
        else if (unit == 'M') value *= 1024 * 1024;
        if (value > best) best = value;
    }
    return best;
}

long queryLargestCache() {
    long best = 0;
#ifdef _SC_LEVEL3_CACHE_SIZE
    for (int name : {_SC_LEVEL1_DCACHE_SIZE, _SC_LEVEL2_CACHE_SIZE, _SC_LEVEL3_CACHE_SIZE, _SC_LEVEL4_CACHE_SIZE}) {
        long v = sysconf(name);
        if (v > best) best = v;
    }
#endif
    if (best <= 0) best = cacheFromSysfs();
    if (best > 0x7fffffffL) best = 0x7fffffffL;
    return best;
}

int queryCores() {
    cpu_set_t set;
    CPU_ZERO(&set);
    if (sched_getaffinity(0, sizeof set, &set) == 0) {
        int n = CPU_COUNT(&set);
        if (n > 0) return n;
    }
    long n = sysconf(_SC_NPROCESSORS_ONLN);
    return n > 0 ? static_cast<int>(n) : 1;
}

}  // namespace

// The machine does not change under a running process: ask once.
ZevStatus zevGetMaxCacheSizeB(int* sizeBytes) {
    static const long cached = queryLargestCache();
    if (!sizeBytes) return zevStsNullPointer;
    if (cached <= 0) return zevStsNoMemory;  // no value to give
    *sizeBytes = static_cast<int>(cached);
    return zevStsNoError;
}

int zevGetNumCoresOnDie() {
    static const int cores = queryCores();
    return cores;
}

int ownGetNumThreads() {
    int n = omp_get_max_threads();
    return n > 0 ? n : 1;
}

void* zevsMalloc_8u(int count) { return count < 1 ? nullptr : zevMalloc(count); }
namespace {
// The byte count is a 32-bit product with no overflow test; wrap it the way the
// hardware would instead of leaving it undefined.
void* mallocElements(int count, unsigned bytes) {
    return count < 1 ? nullptr : zevMalloc(static_cast<int>(static_cast<unsigned>(count) * bytes));
}
}  // namespace
void* zevsMalloc_16u(int count) { return mallocElements(count, 2); }
void* zevsMalloc_32s(int count) { return mallocElements(count, 4); }
void* zevsMalloc_32f(int count) { return mallocElements(count, 4); }
void* zevsMalloc_64f(int count) { return mallocElements(count, 8); }
void zevsFree(void* block) { zevFree(block); }

int owncvGetMaxNumThreads() { return ownGetNumThreads(); }
int owncvGetNumThreads() { return omp_get_num_threads(); }
int owncvGetIdThreads() { return omp_get_thread_num(); }

int owncvGetCacheSize() {
    int size = 0;
    zevGetMaxCacheSizeB(&size);
    return size;
}

int runomp() {
    int cores = zevGetNumCoresOnDie();
    return cores == 1 ? 0 : cores;
}

int runsepomp(int kernelSize) {
    return (kernelSize == 3 || kernelSize == 5) ? runomp() : (runomp() | 1);
}

}  // namespace v8
