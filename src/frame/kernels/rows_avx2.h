// Row kernels built for AVX2, reached only after a run-time check, where the
// wider registers measured faster on rows in the first cache level (square
// root and copies did not gain). They give the bits of the SSSE3 kernels.
#pragma once

#include "zevcv.h"

namespace v8 {

template <class T, bool Max>
void ownMinMaxEvery_avx2(const T* src1, const T* src2, T* dst, int len);
void ownSub_32f_avx2(const Zev32f* src1, const Zev32f* src2, Zev32f* dst, int len);

// Threshold rows over a region; Stream writes past the cache.
template <class T, bool Greater, bool Stream>
void ownThresholdValRows_avx2(const T* src, int srcStep, T* dst, int dstStep, int width, int height, T threshold,
                              T value);
template <bool Greater>
void ownThresholdRows_32f_avx2(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep, int width, int height,
                               Zev32f threshold);

}  // namespace v8
