// Column routines with the weights of the fixed filters built in, by index.
// Row r0 is src[y], r1 src[y+1], and so on.
//
//   index  owntabColumn_8u16s / _8u8s            owntabColumn_32f
//   0      3-tap kerScharr  3r0 + 10r1 + 3r2     same
//   1      3-tap kerDx      r2 - r0              same
//   2      3-tap kerSobel   r0 + 2r1 + r2        same
//   3      5-tap kerSobel   r0+4r1+6r2+4r3+r4    same
//   4      5-tap kerDx      r4 - r0 + 2(r3-r1)   same
//   5      3-tap kerDx2     r0 - 2r1 + r2        same
//   6      5-tap kerDx2     r0 - 2r2 + r4        same
//   7      3-tap kerLaplacian 2(A(r0)+A(r2)) - B(r1), rows of two planes
//          (A at the row start, B at (width+7) & ~7)           same
//   8      5-tap kerLaplacian dst += 5-tap kerSobel            same
//          (the 8u8s table repeats entry 7 here)
//   9/11   3-tap kerSobelNeg                     9: 3-tap kerAvr (sum * 0.11111111f), 11: kerSobelNeg
//   10/12  5-tap kerSobelNeg                     10: 5-tap kerAvr (sum * 0.04f), 12: kerSobelNeg
//
// 16s output: 16-bit wrapping arithmetic, no saturation. 8s output: the wrapped
// 16-bit sum s scaled by 1/divisor: leading columns (a multiple of 4) round to
// nearest even and saturate, the last width mod 4 columns clamp to -128..127 and
// truncate. 32f: the formulas in float, evaluated left to right as written.
// owntabColumn_8u (Lowpass, 8-bit output): 0: ((s + 5) * 7280) >> 16 over 3 rows,
// 1: (s * 2621) >> 16 over 5 rows, clamped to 0..255.
//
// inCache = 0 makes the integer routines write aligned rows past the cache.
#pragma once

#include "zevcv.h"

namespace v8 {

constexpr int kFixedColumnCount = 13;

// Rows a column routine reads per output row, by index (the same in every table,
// but for entry 8 of owntabColumn_8u8s, which reads 3).
int fixedColumnTaps(int index);

using ColFixedFn_8u16s = void (*)(const Zev16s* const* src, Zev16s* dst, int dstStep, int width, int rows,
                                  int inCache);
using ColFixedFn_8u8s = void (*)(const Zev16s* const* src, Zev8s* dst, int dstStep, int width, int rows, int divisor,
                                 int inCache);
using ColFixedFn_8u = void (*)(const Zev16s* const* src, Zev8u* dst, int dstStep, int width, int rows, int inCache);
using ColFixedFn_32f = void (*)(const Zev32f* const* src, Zev32f* dst, int dstStep, int width, int rows);

extern const ColFixedFn_8u16s owntabColumn_8u16s[kFixedColumnCount];
extern const ColFixedFn_8u8s owntabColumn_8u8s[kFixedColumnCount];
extern const ColFixedFn_8u owntabColumn_8u[2];
extern const ColFixedFn_32f owntabColumn_32f[kFixedColumnCount];

}  // namespace v8
