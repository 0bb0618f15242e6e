// The fused row-and-column routines of the fixed filters, one table per mask
// size, element type and instruction level, by index:
//   0 SobelHoriz, 1 ScharrHoriz, 2 SobelCross, 3 SobelVert, 4 SobelVertNeg,
//   5 SobelHorizSecond, 6 SobelVertSecond, 7 ScharrVert (no Scharr at 5x5)
// Each is the row routine of the row table followed by the column routine of
// the column table (row_fixed.h, column_fixed.h), done in one pass.
#pragma once

#include "zevcv.h"

namespace v8::fixed {

// The source row src through the row kernel into slot, and the output row dst
// from window[0..K-2] (the ring rows above) and slot. line: the row's scratch
// line, filled by the caller; r: where its right windows start. Returns false,
// having written nothing, for rows too narrow for it. (The caller fills the
// line so that these files, built per instruction level, share no code.)
template <class Src, class Mid, class Dst>
using RowColFn = bool (*)(const Src* src, Mid* slot, const Mid* const* window, Dst* dst, int width, const Src* line,
                          int r);

constexpr int kRowColumnCount = 8;

// Gaussian step of any odd K with float weights k: the source row through the
// weights into slot (the window's last row) and the output row from the K
// window rows. Returns false, having written nothing, for narrow rows.
using GaussStepFn = bool (*)(const Zev32f* src, Zev32f* slot, const Zev32f* const* window, Zev32f* dst, int width,
                             int K, const Zev32f* k, const Zev32f* line, int r);

struct KernelSet {
    const RowColFn<Zev8u, Zev16s, Zev16s>* owntabRowColumn_8u16s;
    const RowColFn<Zev32f, Zev32f, Zev32f>* owntabRowColumn_32f;
    const RowColFn<Zev8u, Zev16s, Zev16s>* owntabRowColumn5x5_8u16s;
    const RowColFn<Zev32f, Zev32f, Zev32f>* owntabRowColumn5x5_32f;
    GaussStepFn ownGaussRowColumn_32f;
};

// The tables for this processor: the widest registers it has.
const KernelSet& fixedKernels();
const KernelSet& fixedKernelsSsse3();
const KernelSet& fixedKernelsAvx2();
const KernelSet& fixedKernelsAvx512();
bool hasAvx512();

}  // namespace v8::fixed
