// Border copies: a source region placed at (left, top) of a larger destination
// region, the frame around it made of repeated edge pixels or of a constant.
// The interior is placed first, so that the frame is always made from the
// destination's own rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "frame/kernels/pointwise.h"

namespace v8::kern {

// The destination region and where the source lies in it, in pixels.
struct BorderFrame {
    int srcW, srcH, dstW, dstH, top, left;
    int right() const { return dstW - left - srcW; }
    int bottom() const { return dstH - top - srcH; }
};

// count pixels of C channels, each a copy of px.
template <class T, int C>
inline void fillPixels(T* d, int count, const T* px) {
    if constexpr (C == 1 && sizeof(T) == 1) {
        std::memset(d, *px, static_cast<std::size_t>(count));
    } else {
        T p[C];
        for (int c = 0; c < C; ++c) p[c] = px[c];
        for (int i = 0; i < count; ++i)
            for (int c = 0; c < C; ++c) d[i * C + c] = p[c];
    }
}

// Source rows into the destination interior. The two may overlap (a region
// moved inside its own image), so rows go in the order that reads each before
// it is overwritten, and each row is a memmove.
template <class T, int C>
void placeInterior(const T* src, int srcStep, T* dst, int dstStep, const BorderFrame& f) {
    T* in = byteOffset(dst, static_cast<std::ptrdiff_t>(f.top) * dstStep) + static_cast<std::ptrdiff_t>(f.left) * C;
    const std::size_t bytes = static_cast<std::size_t>(f.srcW) * C * sizeof(T);
    const bool downward = reinterpret_cast<std::uintptr_t>(in) > reinterpret_cast<std::uintptr_t>(src);
    for (int k = 0; k < f.srcH; ++k) {
        int y = downward ? f.srcH - 1 - k : k;
        std::memmove(byteOffset(in, static_cast<std::ptrdiff_t>(y) * dstStep),
                     byteOffset(src, static_cast<std::ptrdiff_t>(y) * srcStep), bytes);
    }
}

// The frame around an interior already in place: the first and last pixels of
// each interior row repeat outward, then the first and last whole rows repeat
// upward and downward, so the corners take the corner pixels.
template <class T, int C>
void replicateFrame(T* dst, int dstStep, const BorderFrame& f) {
    const std::size_t rowBytes = static_cast<std::size_t>(f.dstW) * C * sizeof(T);
    for (int y = f.top; y < f.top + f.srcH; ++y) {
        T* r = byteOffset(dst, static_cast<std::ptrdiff_t>(y) * dstStep);
        fillPixels<T, C>(r, f.left, r + static_cast<std::ptrdiff_t>(f.left) * C);
        fillPixels<T, C>(r + static_cast<std::ptrdiff_t>(f.left + f.srcW) * C, f.right(),
                         r + static_cast<std::ptrdiff_t>(f.left + f.srcW - 1) * C);
    }
    const T* first = byteOffset(dst, static_cast<std::ptrdiff_t>(f.top) * dstStep);
    const T* last = byteOffset(dst, static_cast<std::ptrdiff_t>(f.top + f.srcH - 1) * dstStep);
    for (int y = 0; y < f.top; ++y) std::memcpy(byteOffset(dst, static_cast<std::ptrdiff_t>(y) * dstStep), first, rowBytes);
    for (int y = f.top + f.srcH; y < f.dstH; ++y)
        std::memcpy(byteOffset(dst, static_cast<std::ptrdiff_t>(y) * dstStep), last, rowBytes);
}

// The frame around an interior already in place, of one value.
template <class T>
void constFrame(T* dst, int dstStep, const BorderFrame& f, T value) {
    for (int y = 0; y < f.dstH; ++y) {
        T* r = byteOffset(dst, static_cast<std::ptrdiff_t>(y) * dstStep);
        if (y < f.top || y >= f.top + f.srcH) {
            fillPixels<T, 1>(r, f.dstW, &value);
        } else {
            fillPixels<T, 1>(r, f.left, &value);
            fillPixels<T, 1>(r + f.left + f.srcW, f.right(), &value);
        }
    }
}

}  // namespace v8::kern
