// 32-byte forms of the integer pipeline kernels whose results are exact
// integers, so that register width cannot change a bit. Reached only after the
// run-time processor check; each returns how many leading elements it did, the
// caller finishes the rest with the 16-byte kernels.
#pragma once

#include "zevcv.h"

namespace v8 {

// Row middle, 8-bit source, every partial sum and rounding term inside 16 bits:
// windows of taps stepping by C elements, divided by 2^shift rounding to even.
int ownRowNarrow8u16s_avx2(const Zev8u* src, int C, Zev16s* dst, int total, const Zev16s* kernel, int K,
                           int shift);

// Column, 16-bit rows, sums exact: 32-bit sums divided by 2^shift rounding to
// even, saturated to Dst.
template <class Dst>
int ownColumnExact16s_avx2(const Zev16s* const* rows, Dst* dst, int count, const Zev16s* kernel, int K, int shift);

// Column, 16-bit rows, the float rule of the vector columns: products of each
// row with weight[j] in tap order, clamped to 16 bits, rounded to nearest even,
// saturated to Dst. The same operations lane by lane as the 16-byte kernel.
template <class Dst>
int ownColumnFloat16s_avx2(const Zev16s* const* rows, Dst* dst, int count, const float* weight, int K);

}  // namespace v8
