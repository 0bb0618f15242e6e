// The streaming engine of the fixed filters: source rows go through the row
// routine into a ring of intermediate rows, and every output row is made by the
// column routine from the ring rows around it. Rows above and below the region
// are either read from memory (in-memory flags) or made from the region's own
// rows by the vertical border rule, always as row-filtered rows; the constant
// border is a row of the row kernel's sum times the border value.
#pragma once

#include <climits>
#include <cstddef>
#include <cstdint>

#include "filter/border.h"
#include "zevcv.h"

namespace v8::fixed {

constexpr int kConstRow = INT_MIN;

// Which source row (relative to the band's first row) virtual row j reads, or
// kConstRow. y0 and imageHeight place the band in the whole image: wrap reaches
// the image's other end, not the band's.
inline int ownSourceRow(int j, int rows, int border, int y0, int imageHeight) {
    if (j >= 0 && j < rows) return j;
    if ((j < 0 && inMemTop(border)) || (j >= rows && inMemBottom(border))) return j;
    const int code = borderCode(border);
    if (code == zevBorderConst) return kConstRow;
    if (code == zevBorderWrap) {
        int y = (y0 + j) % imageHeight;
        if (y < 0) y += imageHeight;
        return y - y0;
    }
    // Mirrors walk to and fro over the band, going on past an end that is memory.
    return borderIndex(j, rows, code, inMemTop(border), inMemBottom(border));
}

// Elements of one plane of a ring row.
inline int ownRingPlane(int width) { return (width + 7) & ~7; }

// Ring rows start on 64-byte boundaries, so that the kernels' ring loads and
// stores can all sit on register boundaries.
inline std::size_t ownRingSlotBytes(int width, int planes, std::size_t midBytes) {
    return (static_cast<std::size_t>(ownRingPlane(width)) * planes * midBytes + 63) & ~std::size_t{63};
}

// Scratch of the fixed-weight row routines (border line and coefficients).
constexpr int kEngineScratchBytes = 256;

// Bytes the engine takes from its buffer: alignment, row scratch (a multiple of
// 64), Kc ring rows, the constant row and the window of Kc row pointers.
inline std::size_t ownEngineBytes(int width, int Kc, int planes, std::size_t midBytes,
                                  int scratchBytes = kEngineScratchBytes) {
    return 64 + scratchBytes + (static_cast<std::size_t>(Kc) + 1) * ownRingSlotBytes(width, planes, midBytes) +
           static_cast<std::size_t>(Kc) * sizeof(void*);
}

// Runs the region [0, rows) of a band whose first row is src.
//   rowCall(row, slot, scratch): one source row through the row kernel into a ring row;
//   col(window, y): output row y from window[0..Kc-1], the ring rows
//                   y - Kc/2 .. y + Kc-1 - Kc/2;
//   fuse(row, slot, scratch, window, y): both at once where a fused routine
//                   exists (returns false where it does not).
// constant is the value of every element of the vertical constant row;
// scratchBytes the size of the scratch handed to rowCall and fuse.
template <class Src, class Mid, class RowCall, class Col, class Fuse>
void ownFilterConvolution(const Src* src, int srcStep, int width, int rows, int planes, int Kc, int border,
                          Mid constant, std::uint8_t* buffer, int y0, int imageHeight, RowCall&& rowCall, Col&& col,
                          Fuse&& fuse, int scratchBytes = kEngineScratchBytes) {
    const int b = Kc / 2, below = Kc - 1 - b;
    const std::size_t slotBytes = ownRingSlotBytes(width, planes, sizeof(Mid));
    std::uint8_t* base = reinterpret_cast<std::uint8_t*>((reinterpret_cast<std::uintptr_t>(buffer) + 63) & ~std::uintptr_t{63});
    void* scratch = base;
    std::uint8_t* ring = base + scratchBytes;
    Mid* constRow = reinterpret_cast<Mid*>(ring + Kc * slotBytes);
    const Mid** window = reinterpret_cast<const Mid**>(ring + (Kc + 1) * slotBytes);

    if (borderCode(border) == zevBorderConst && !(inMemTop(border) && inMemBottom(border))) {
        const int n = ownRingPlane(width) * planes;
        for (int i = 0; i < n; ++i) constRow[i] = constant;
    }
    for (int k = 0; k < Kc; ++k) window[k] = constRow;

    for (int j = -b; j < rows + below; ++j) {
        const int s = ownSourceRow(j, rows, border, y0, imageHeight);
        const int y = j - below;  // output row due after this one, if >= 0
        for (int k = 0; k + 1 < Kc; ++k) window[k] = window[k + 1];
        if (s == kConstRow) {
            window[Kc - 1] = constRow;
        } else {
            Mid* slot = reinterpret_cast<Mid*>(ring + ((j + b) % Kc) * slotBytes);
            const Src* row = reinterpret_cast<const Src*>(reinterpret_cast<const std::uint8_t*>(src) +
                                                          static_cast<std::ptrdiff_t>(s) * srcStep);
            window[Kc - 1] = slot;
            if (y >= 0 && fuse(row, slot, scratch, static_cast<const Mid* const*>(window), y)) continue;
            rowCall(row, slot, scratch);
        }
        if (y >= 0) col(static_cast<const Mid* const*>(window), y);
    }
}

// No fused routine.
struct NoFuse {
    template <class... A>
    bool operator()(A&&...) const { return false; }
};

}  // namespace v8::fixed
