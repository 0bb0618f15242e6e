// The one row engine of the element-wise primitives (copy, fill, threshold,
// subtraction, minimum and maximum, scaling, square root). An operation is a
// functor with a 16-byte register form and a scalar form that give the same
// bits; the engine walks a row as a short scalar prologue up to the first
// 16-byte boundary of the destination, aligned stores (streaming ones past the
// cache when asked), and a scalar tail. Loads are aligned when every source
// falls in line with the destination. Nothing is read or written outside the row.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "frame/kernels/simd.h"

// Like the register helpers, these inline kernels get one copy per
// instruction set of the file that includes them.
namespace v8::kern {
inline namespace ZEV_SIMD_ISA {

template <class T>
inline T* byteOffset(T* p, std::ptrdiff_t bytes) {
    using B = std::conditional_t<std::is_const_v<T>, const std::uint8_t, std::uint8_t>;
    return reinterpret_cast<T*>(reinterpret_cast<B*>(p) + bytes);
}

// An image plane: origin and byte step.
template <class T>
struct Plane {
    T* p;
    int step;
    T* row(int y) const { return byteOffset(p, static_cast<std::ptrdiff_t>(y) * step); }
};

template <bool Stream, class V>
inline void putAligned(void* p, V v) {
    if constexpr (Stream) simd::stream(p, v);
    else simd::storea(p, v);
}

template <bool Aligned, class V>
inline V loadAs(const void* p) {
    if constexpr (Aligned) return simd::loada<V>(p);
    else return simd::load<V>(p);
}

// Whole registers of Bytes from element i on, stores aligned; returns where it stopped.
template <int Bytes, bool Aligned, bool Stream, class D, class Op, class... S>
inline int alignedBlocks(D* d, int i, int n, const Op& op, const S*... s) {
    using V = simd::Reg<D, Bytes>;
    constexpr int E = Bytes / static_cast<int>(sizeof(D));
    for (; i <= n - 2 * E; i += 2 * E) {
        V r0 = op.vec(loadAs<Aligned, V>(s + i)...);
        V r1 = op.vec(loadAs<Aligned, V>(s + i + E)...);
        putAligned<Stream>(d + i, r0);
        putAligned<Stream>(d + i + E, r1);
    }
    for (; i <= n - E; i += E) putAligned<Stream>(d + i, op.vec(loadAs<Aligned, V>(s + i)...));
    return i;
}

// One row of n elements: d[i] = op(s[i]...). The functor's vec() takes and
// gives registers of Bytes (16, or 32 in AVX2 files, which then also need the
// 16-byte form for the short remainder), its one() single elements.
template <bool Stream, int Bytes = 16, class D, class Op, class... S>
inline void mapRow(D* d, int n, const Op& op, const S*... s) {
    constexpr int E = Bytes / static_cast<int>(sizeof(D));
    const std::uintptr_t a = reinterpret_cast<std::uintptr_t>(d);
    int i = 0;
    if (a % sizeof(D) == 0) {
        int head = static_cast<int>(((Bytes - (a & (Bytes - 1))) & (Bytes - 1)) / sizeof(D));
        if (head > n) head = n;
        for (; i < head; ++i) d[i] = op.one(s[i]...);
        if (((reinterpret_cast<std::uintptr_t>(s + i) | ... | std::uintptr_t{0}) & (Bytes - 1)) == 0)
            i = alignedBlocks<Bytes, true, Stream>(d, i, n, op, s...);
        else
            i = alignedBlocks<Bytes, false, Stream>(d, i, n, op, s...);
        if constexpr (Bytes > 16) i = alignedBlocks<16, false, Stream>(d, i, n, op, s...);
    } else {
        // The destination is not even element-aligned: no boundary to reach.
        using V = simd::Reg<D, Bytes>;
        for (; i <= n - E; i += E) simd::store(d + i, op.vec(simd::load<V>(s + i)...));
    }
    for (; i < n; ++i) d[i] = op.one(s[i]...);
}

// Rows [0, height) of a region.
template <bool Stream, int Bytes = 16, class D, class Op, class... S>
inline void mapRows(Plane<D> d, int width, int height, const Op& op, Plane<const S>... s) {
    for (int y = 0; y < height; ++y) mapRow<Stream, Bytes>(d.row(y), width, op, s.row(y)...);
    if constexpr (Stream) _mm_sfence();
}

// ---------------------------------------------------------------- operations

template <class T>
struct CopyOp {
    template <class V>
    V vec(V a) const { return a; }
    T one(T a) const { return a; }
};

template <class T>
struct FillOp {
    T value;
    simd::Reg<T, 16> reg;
    explicit FillOp(T v) : value(v), reg(simd::splat<simd::Reg<T, 16>>(v)) {}
    simd::Reg<T, 16> vec() const { return reg; }
    T one() const { return value; }
};

}  // namespace ZEV_SIMD_ISA
}  // namespace v8::kern
