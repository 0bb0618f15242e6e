// Serial-or-banded choice shared by the pixelwise arithmetic families.
#pragma once

#include <cstdint>

#include "frame/bands.h"
#include "frame/check.h"
#include "frame/core.h"

namespace v8 {

// Regions of this many elements or more run in row bands on the thread budget;
// the region opens even on one core.
constexpr std::int32_t kArithParallelElements = 0x40000;

// The region, serially or in bands; run(band) calls the kernel on one band.
// The element count is the 32-bit product of the region's members.
template <class Run>
void runRegion(int width, int height, Run run) {
    std::int32_t elements = static_cast<std::int32_t>(std::int64_t{width} * height);
    if (elements < kArithParallelElements) {
        run(Band{0, 1, 0, height, height});
        return;
    }
    forEachBand(ownGetNumThreads(), height, run);
}

// Should a kernel touching this many bytes write past the cache? Yes unless the
// amount is below the largest cache; a failed query counts as no cache at all.
inline bool beyondCache(std::int64_t touchedBytes) {
    int cacheBytes = 0;
    zevGetMaxCacheSizeB(&cacheBytes);
    return !(touchedBytes < cacheBytes);
}

// The chain of a function with two sources and a destination of one element
// type: pointers, size, each step against the row, then the step multiples.
template <class T>
ZevStatus checkTwoSourcesOneDest(const T* src1, int src1Step, const T* src2, int src2Step, const T* dst,
                                 int dstStep, ZeviSize roi) {
    const std::int64_t row = rowBytes<T>(roi.width);
    return Check()
        .ptrs(src1, src2, dst)
        .roi(roi)
        .step(src1Step, row)
        .step(src2Step, row)
        .step(dstStep, row)
        .multiple(sizeof(T), src1Step, src2Step, dstStep);
}

}  // namespace v8
