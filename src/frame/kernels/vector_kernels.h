// Row kernels built for AVX2, reached only after a run-time check, where the
// wider registers measured faster on rows in the first cache level (square
// root and copies did not gain). They give the bits of the SSSE3 kernels.
#pragma once

#include "zevcv.h"

namespace v8 {

template <class T, bool Max>
void ownMinMaxEvery_avx2(const T* src1, const T* src2, T* dst, int len);
void ownSub_32f_avx2(const Zev32f* src1, const Zev32f* src2, Zev32f* dst, int len);

}  // namespace v8
