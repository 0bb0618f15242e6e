// The one generic kernel of the absolute difference, instantiated per element
// type and per register width by the files that include it (each built for its
// own instruction set). Include once per file after defining ZEV_ISA.
#include <bit>
#include <cstdint>
#include <type_traits>

#include "arith/kernels/absdiff.h"
#include "frame/kernels/simd.h"

namespace v8::ZEV_ISA {
namespace {

using namespace v8::simd;

// |a - b| per element: for unsigned integers the sum of the two saturating
// differences (one is always 0); for float the difference with its sign cleared.
template <class T>
struct AbsDiffOp {
    __m128i operator()(__m128i a, __m128i b) const requires(sizeof(T) == 1) {
        return _mm_or_si128(_mm_subs_epu8(a, b), _mm_subs_epu8(b, a));
    }
    __m128i operator()(__m128i a, __m128i b) const requires(sizeof(T) == 2) {
        return _mm_or_si128(_mm_subs_epu16(a, b), _mm_subs_epu16(b, a));
    }
    __m128 operator()(__m128 a, __m128 b) const {
        return _mm_and_ps(_mm_sub_ps(a, b), _mm_castsi128_ps(_mm_set1_epi32(0x7fffffff)));
    }
#ifdef __AVX2__
    __m256i operator()(__m256i a, __m256i b) const requires(sizeof(T) == 1) {
        return _mm256_or_si256(_mm256_subs_epu8(a, b), _mm256_subs_epu8(b, a));
    }
    __m256i operator()(__m256i a, __m256i b) const requires(sizeof(T) == 2) {
        return _mm256_or_si256(_mm256_subs_epu16(a, b), _mm256_subs_epu16(b, a));
    }
    __m256 operator()(__m256 a, __m256 b) const {
        return _mm256_and_ps(_mm256_sub_ps(a, b), _mm256_castsi256_ps(_mm256_set1_epi32(0x7fffffff)));
    }
#endif
    T operator()(T a, T b) const {
        if constexpr (std::is_same_v<T, float>) {
            float r = a - b;
            return std::bit_cast<float>(std::bit_cast<std::uint32_t>(r) & 0x7fffffffu);
        } else {
            return static_cast<T>(a > b ? a - b : b - a);
        }
    }
};

// Second operand: another image row, or a constant.
template <class T>
struct RowOperand {
    const T* p;
    template <class V, bool A>
    V vec(int i) const { return A ? loada<V>(p + i) : load<V>(p + i); }
    __m128i vec8(int i) const { return load8(p + i); }
    T at(int i) const { return p[i]; }
};
template <class T>
struct ConstOperand {
    T value;
    template <class V, bool A>
    V vec(int) const { return splat<V>(value); }
    __m128i vec8(int) const { return splat<__m128i>(value); }
    T at(int) const { return value; }
};

template <bool A, bool Stream, class V>
inline void put(void* p, V v) {
    if constexpr (A && Stream) stream(p, v);
    else if constexpr (A) storea(p, v);
    else store(p, v);
}

// One row: blocks of two registers, single registers, 16-byte registers
// (under wider sets), 8-byte steps for integers, then element by element.
template <int Bytes, bool A, bool Stream, class T, class B, class Op>
inline void row(const T* a, const B& b, T* d, int n, Op op) {
    using V = Reg<T, Bytes>;
    constexpr int E = Bytes / static_cast<int>(sizeof(T));
    int i = 0;
    for (; i <= n - 2 * E; i += 2 * E) {
        V x0 = A ? loada<V>(a + i) : load<V>(a + i);
        V x1 = A ? loada<V>(a + i + E) : load<V>(a + i + E);
        V y0 = b.template vec<V, A>(i);
        V y1 = b.template vec<V, A>(i + E);
        put<A, Stream>(d + i, op(x0, y0));
        put<A, Stream>(d + i + E, op(x1, y1));
    }
    if constexpr (Bytes > 16) {
        for (; i <= n - E; i += E) put<false, false>(d + i, op(load<V>(a + i), b.template vec<V, false>(i)));
        constexpr int E16 = 16 / static_cast<int>(sizeof(T));
        using V16 = Reg<T, 16>;
        for (; i <= n - E16; i += E16) store(d + i, op(load<V16>(a + i), b.template vec<V16, false>(i)));
    }
    if constexpr (!std::is_same_v<T, float>) {
        constexpr int E8 = 8 / static_cast<int>(sizeof(T));
        for (; i <= n - E8; i += E8) store8(d + i, op(load8(a + i), b.vec8(i)));
    }
    for (; i < n; ++i) d[i] = op(a[i], b.at(i));
}

template <class T>
inline const T* advance(const T* p, int step) {
    return reinterpret_cast<const T*>(reinterpret_cast<const std::uint8_t*>(p) + step);
}
template <class T>
inline T* advance(T* p, int step) {
    return reinterpret_cast<T*>(reinterpret_cast<std::uint8_t*>(p) + step);
}

// Whole region. The alignment test is done once, on all pointers and steps.
template <int Bytes, bool Stream, class T, class MakeB>
inline void rows(const T* a, int aStep, MakeB makeB, bool bAligned, T* d, int dStep, int width, int height) {
    AbsDiffOp<T> op;
    bool al = Bytes == 16 && bAligned && aligned16(a, aStep, d, dStep);
    for (int y = 0; y < height; ++y) {
        auto b = makeB(y);
        if (al) row<Bytes, true, Stream>(a, b, d, width, op);
        else row<Bytes, false, false>(a, b, d, width, op);
        a = advance(a, aStep);
        d = advance(d, dStep);
    }
    if constexpr (Stream) _mm_sfence();
}

template <int Bytes, bool Stream, class T>
void absDiff(const T* a, int aStep, const T* b, int bStep, T* d, int dStep, int width, int height) {
    rows<Bytes, Stream>(
        a, aStep, [&](int y) { return RowOperand<T>{advance(b, y * bStep)}; }, aligned16(b, bStep), d, dStep,
        width, height);
}

template <int Bytes, bool Stream, class T>
void absDiffC(const T* a, int aStep, T* d, int dStep, int width, int height, T value) {
    rows<Bytes, Stream>(
        a, aStep, [&](int) { return ConstOperand<T>{value}; }, true, d, dStep, width, height);
}

}  // namespace
}  // namespace v8::ZEV_ISA
