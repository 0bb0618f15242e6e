// Border argument and border fill, shared by every filter that reads outside its
// region (separable pipelines, fixed filters, morphology, pyramids).
//
// A border argument is one int: the low nibble says how missing pixels are made
// (zevBorderConst .. zevBorderMirrorR), bits 0x10..0x80 say that the rows or
// columns beyond that edge are real memory and are read as they are.
//
// API:
//   borderCode(b), inMemTop/Bottom/Left/Right(b), withoutRowFlags(b)
//   expandInMem(b)               6 in the low nibble -> 0xF0 (all four flags)
//   isPlainBorderCode(b)         0..4, the codes the exported pipelines take
//   isFlaggedBorderArg(b)        what the fixed filters accept (codes 0..4, 6, flags)
//   borderIndex(x, n, code, ..)  which of n real elements position x reads
//   fillBorder<T, C>(src, line, w, K, a, border, value) -> r
//                                builds the scratch line of one row (see below)
//   borderLineElems(w, K, C)     elements of that line
#pragma once

#include <cstring>

#include "zevcv.h"

namespace v8 {

constexpr int kBorderCodeMask = 0x0F;
constexpr int kBorderFlagMask = zevBorderInMemTop | zevBorderInMemBottom | zevBorderInMemLeft | zevBorderInMemRight;

constexpr int borderCode(int border) { return border & kBorderCodeMask; }
constexpr bool inMemTop(int border) { return (border & zevBorderInMemTop) != 0; }
constexpr bool inMemBottom(int border) { return (border & zevBorderInMemBottom) != 0; }
constexpr bool inMemLeft(int border) { return (border & zevBorderInMemLeft) != 0; }
constexpr bool inMemRight(int border) { return (border & zevBorderInMemRight) != 0; }

// The row stage only cares about horizontal meanings.
constexpr int withoutRowFlags(int border) { return border & ~(zevBorderInMemTop | zevBorderInMemBottom); }

// zevBorderInMem stands for "everything around the region is readable".
constexpr int expandInMem(int border) { return borderCode(border) == zevBorderInMem ? kBorderFlagMask : border; }

// The codes the exported pipelines accept: plain values, no flags.
constexpr bool isPlainBorderCode(int border) { return border >= zevBorderConst && border <= zevBorderMirrorR; }

// Border arguments of the filters that can read beyond their region: a code of
// 0..4 or 6, and high bits only together with at least one known flag.
constexpr bool isFlaggedBorderArg(int border) {
    const int code = borderCode(border);
    if (!(code <= zevBorderMirrorR || code == zevBorderInMem)) return false;
    if ((border & 0xFFF0) != 0 && (border & kBorderFlagMask) == 0) return false;
    return true;
}

// Index in 0..n-1 of the real element that position x (any integer, usually
// outside 0..n-1) reads under a synthesising code. Wrap is periodic with period n;
// Mirror reflects without repeating the end element (period 2n-2), MirrorR
// repeats it (period 2n); both bounce as often as needed for short lines.
// zevBorderConst has no source element and gives -1; unknown codes replicate.
// openLow / openHigh: that end is real memory, so a walk that reaches it goes on
// instead of reversing (the result may then lie outside 0..n-1).
inline int borderIndex(int x, int n, int code, bool openLow = false, bool openHigh = false) {
    if (x >= 0 && x < n) return x;
    switch (code) {
    case zevBorderConst:
        return -1;
    case zevBorderWrap: {
        int m = x % n;
        return m < 0 ? m + n : m;
    }
    case zevBorderMirror:
    case zevBorderMirrorR: {
        const bool edge = code == zevBorderMirrorR;  // the end element is seen twice
        if (x < 0 && openHigh) return edge ? -x - 1 : -x;
        if (x >= n && openLow) return edge ? 2 * n - 1 - x : 2 * n - 2 - x;
        if (!edge && n == 1) return 0;
        const int period = edge ? 2 * n : 2 * n - 2;
        int m = x % period;
        if (m < 0) m += period;
        if (m < n) return m;
        return edge ? period - 1 - m : period - m;
    }
    default:  // replicate
        return x < 0 ? 0 : n - 1;
    }
}

// Elements of the scratch line for a row of w pixels of C elements, kernel K.
constexpr int borderLineElems(int w, int K, int C = 1) { return (w >= K ? 3 * K - 3 : w + K - 1) * C; }

// Builds the scratch line of one row: what the windows crossing the row's ends
// read. Layout, in pixels of C interleaved elements:
//   a left-extension pixels | the first min(K-1, w) real pixels |
//   (w >= K only) the last K-1 real pixels | K-1-a right-extension pixels.
// Returns r, the pixel index where the right windows start: a+K-1 if w >= K,
// else a. src is the row's first pixel; value holds C border values and is read
// only for zevBorderConst on a side that is not flagged as in memory. A flagged
// side copies the pixels beyond the row's end from src[-a..-1] or src[w..].
template <class T, int C = 1>
int fillBorder(const T* src, T* line, int w, int K, int a, int border, const T* value) {
    const int code = borderCode(border);
    const int right = K - 1 - a;
    const int head = w < K - 1 ? w : K - 1;
    T* real = line + a * C;

    // Real pixels first: the extensions below may read them back.
    if (head > 0) std::memcpy(real, src, sizeof(T) * C * head);
    int r = a;
    if (w >= K && K > 1) {
        std::memcpy(real + head * C, src + (w - (K - 1)) * C, sizeof(T) * C * (K - 1));
    }
    if (w >= K) r = a + K - 1;
    T* ext = line + (r + (w >= K ? K - 1 : w)) * C;  // first right-extension pixel

    auto put = [&](T* dstPixel, int x, bool inMem) {
        if (inMem) {
            for (int c = 0; c < C; ++c) dstPixel[c] = src[x * C + c];
        } else if (code == zevBorderConst) {
            for (int c = 0; c < C; ++c) dstPixel[c] = value[c];
        } else {
            const int s = borderIndex(x, w, code);
            for (int c = 0; c < C; ++c) dstPixel[c] = src[s * C + c];
        }
    };
    for (int p = 0; p < a; ++p) put(line + p * C, p - a, inMemLeft(border));
    for (int j = 0; j < right; ++j) put(ext + j * C, w + j, inMemRight(border));
    return r;
}

}  // namespace v8
