// Row kernels of the absolute difference. The SSSE3 set (16-byte registers,
// aligned and unaligned block loops, streaming-store variants) is the floor;
// an AVX2 set of the plain kernels is reached by a run-time check. All give the
// same bits: each element depends only on the elements at its own position.
#pragma once

#include "zevcv.h"

namespace v8 {

// dst = |a - b| over width x height elements; Stream writes past the cache.
template <class T, bool Stream>
void ownAbsDiffRows_W7(const T* a, int aStep, const T* b, int bStep, T* d, int dStep, int width, int height);
template <class T>
void ownAbsDiffRows_avx2(const T* a, int aStep, const T* b, int bStep, T* d, int dStep, int width, int height);

// dst = |a - value|.
template <class T, bool Stream>
void ownAbsDiffCRows_W7(const T* a, int aStep, T* d, int dStep, int width, int height, T value);
template <class T>
void ownAbsDiffCRows_avx2(const T* a, int aStep, T* d, int dStep, int width, int height, T value);

}  // namespace v8
