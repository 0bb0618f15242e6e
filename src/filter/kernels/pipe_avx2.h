// 32-byte forms of the integer pipeline kernels whose results are exact
// integers, so that register width cannot change a bit. Reached only after the
// run-time processor check; each returns how many leading elements it did, the
// caller finishes the rest with the 16-byte kernels.
#pragma once

#include "zevcv.h"

namespace v8 {

// Row middle, 8-bit source, every partial sum inside 16 bits: n windows of
// taps stepping by C elements, from src into dst.
int ownRowNarrow8u16s_avx2(const Zev8u* src, int C, Zev16s* dst, int total, const Zev16s* kernel, int K);

// Column, 16-bit rows, divisor 1 and sums exact: 32-bit sums, saturated to Dst.
template <class Dst>
int ownColumnExact16s_avx2(const Zev16s* const* rows, Dst* dst, int count, const Zev16s* kernel, int K);

}  // namespace v8
