// Row routines with the weights of the fixed filters built in, by index:
//
//   0 3-tap kerDx      (-1, 0, 1)          6 3-tap kerSobel  (1, 2, 1)
//   1 3-tap kerScharr  (3, 10, 3)          7 5-tap kerSobel  (1, 4, 6, 4, 1)
//   2 3-tap kerDxNeg   (1, 0, -1)          8 3-tap kerAvr    (1, 1, 1)
//   3 5-tap kerDxNeg   (1, 2, 0, -2, -1)   9 5-tap kerAvr    (1, 1, 1, 1, 1)
//   4 3-tap kerDx2     (1, -2, 1)         10 3-tap kerLaplacian: two planes per
//   5 5-tap kerDx2     (1, 0, -2, 0, 1)      row, A = s[x-1] + s[x+1] at the row's
//                                            start, B = 8 * s[x] at (width+7) & ~7
//
// Each has the row-pipeline form with anchor K/2: `rows` source rows from src
// (byte step), row y written to dst[y]; the border argument's low nibble and its
// left/right in-memory flags apply (top/bottom flags are ignored here). 8u16s
// results are exact 16-bit sums; 32f sums run left to right over the taps.
//
//   owntabRow_8u16s[i](src, srcStep, dst, width, rows, border, borderValue, scratch)
//   owntabRow_32f[i](src, srcStep, dst, width, rows, border, borderValue, scratch)
//
// scratch: kFixedRowScratchBytes bytes per thread, any alignment.
#pragma once

#include "zevcv.h"

namespace v8 {

constexpr int kFixedRowCount = 11;
constexpr int kFixedRowScratchBytes = 256;

// Taps of a row routine by index.
constexpr int fixedRowTaps(int index) { return (index == 3 || index == 5 || index == 7 || index == 9) ? 5 : 3; }

using RowFixedFn_8u16s = void (*)(const Zev8u* src, int srcStep, Zev16s* const* dst, int width, int rows, int border,
                                  Zev8u borderValue, void* scratch);
using RowFixedFn_32f = void (*)(const Zev32f* src, int srcStep, Zev32f* const* dst, int width, int rows, int border,
                                Zev32f borderValue, void* scratch);

extern const RowFixedFn_8u16s owntabRow_8u16s[kFixedRowCount];
extern const RowFixedFn_32f owntabRow_32f[kFixedRowCount];

}  // namespace v8
