// Routine types and the kernel tables of the fixed filters, one set per
// instruction level. Indices are shared by all forms:
//   row:    0 Dx3, 1 Scharr3, 2 DxNeg3, 3 DxNeg5, 4 D2x3, 5 D2x5, 6 Sobel3,
//           7 Sobel5, 8 Avr3, 9 Avr5, 10 Laplacian3 (two planes)
//   column: 0 Scharr3, 1 Dx3, 2 Sobel3, 3 Sobel5, 4 Dx5, 5 D2x3, 6 D2x5,
//           7 Laplacian3, 8 (16s, 32f) Sobel5 added to dst / (8s) Laplacian3,
//           9, 10 (integer) SobelNeg3, SobelNeg5 / (32f) Avr3, Avr5,
//           11 SobelNeg3, 12 SobelNeg5
//   column 8u (average to 8 bits): 0 Avr3, 1 Avr5
//   fused 3x3 row and column: 0 SobelHoriz, 1 ScharrHoriz, 2 SobelCross,
//           3 SobelVert, 4 SobelVertNeg, 5 SobelHorizSecond, 6 SobelVertSecond,
//           7 ScharrVert
#pragma once

#include "zevcv.h"

namespace v8::fixed {

// One source row (its first pixel) through the row kernel into dst; plane 1 of
// a two-plane kernel lands planeStride elements after plane 0. border carries
// the horizontal meaning only; line is scratch for the border windows.
template <class Src, class Mid>
using RowFn = void (*)(const Src* src, Mid* dst, int width, int planeStride, int border, Src value, Src* line);

// One output row from the kernel's ring rows; inv is 1/divisor where the form scales.
template <class Mid, class Dst>
using ColFn = void (*)(const Mid* const* rows, Dst* dst, int width, int planeStride, float inv);

// Fused 3x3: the source row src through the row kernel into slot, and the output
// row dst from r0, r1 (the two ring rows above) and slot.
template <class Src, class Mid, class Dst>
using RowColFn = void (*)(const Src* src, Mid* slot, const Mid* r0, const Mid* r1, Dst* dst, int width, int border,
                          Src value, Src* line);

// One output row of a float column kernel of any length: the sum of
// kernel[t] * rows[t][x] from tap 0 upward.
using ColTapsFn = void (*)(const Zev32f* const* rows, const Zev32f* kernel, int K, Zev32f* dst, int width);

struct KernelSet {
    const RowFn<Zev8u, Zev16s>* owntabRow_8u16s;
    const RowFn<Zev32f, Zev32f>* owntabRow_32f;
    const ColFn<Zev16s, Zev16s>* owntabColumn_8u16s;
    const ColFn<Zev16s, Zev8s>* owntabColumn_8u8s;
    const ColFn<Zev32f, Zev32f>* owntabColumn_32f;
    const ColFn<Zev16s, Zev8u>* owntabColumn_8u;
    ColTapsFn ownColumnTaps_32f;
    const RowColFn<Zev8u, Zev16s, Zev16s>* owntabRowColumn_8u16s;
    const RowColFn<Zev32f, Zev32f, Zev32f>* owntabRowColumn_32f;
};

// The tables for this processor: 32-byte registers where the processor has them.
const KernelSet& fixedKernels();
const KernelSet& fixedKernelsSsse3();
const KernelSet& fixedKernelsAvx2();

}  // namespace v8::fixed
