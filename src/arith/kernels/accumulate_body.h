// The one generic accumulator kernel, instantiated per operation, source type,
// mask form and register width by the files that include it (each built for its
// own instruction set). Include once per file after defining ZEV_ISA.
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "arith/kernels/accumulate.h"
#include "frame/kernels/simd.h"

namespace v8::ZEV_ISA {
namespace {

using namespace v8::simd;

// ---- float lanes

inline __m128 add(__m128 a, __m128 b) { return _mm_add_ps(a, b); }
inline __m128 sub(__m128 a, __m128 b) { return _mm_sub_ps(a, b); }
inline __m128 mul(__m128 a, __m128 b) { return _mm_mul_ps(a, b); }
inline __m128 clearWhere(__m128 off, __m128 v) { return _mm_andnot_ps(off, v); }
inline __m128 splatf(float v, __m128*) { return _mm_set1_ps(v); }
#ifdef __AVX2__
inline __m256 add(__m256 a, __m256 b) { return _mm256_add_ps(a, b); }
inline __m256 sub(__m256 a, __m256 b) { return _mm256_sub_ps(a, b); }
inline __m256 mul(__m256 a, __m256 b) { return _mm256_mul_ps(a, b); }
inline __m256 clearWhere(__m256 off, __m256 v) { return _mm256_andnot_ps(off, v); }
inline __m256 splatf(float v, __m256*) { return _mm256_set1_ps(v); }
#endif

// Loads of one register of lanes: sources widened to float (zero or sign
// extension, then an exact conversion), and the mask as all-ones lanes where
// the mask byte is zero, i.e. where the pixel is excluded.
template <class V>
struct Lanes;

template <>
struct Lanes<__m128> {
    static constexpr int N = 4;
    static __m128i bytes4(const void* p) {
        std::int32_t v;
        std::memcpy(&v, p, 4);
        return _mm_cvtsi32_si128(v);
    }
    static __m128 widen(const Zev8u* p) {
        const __m128i z = _mm_setzero_si128();
        return _mm_cvtepi32_ps(_mm_unpacklo_epi16(_mm_unpacklo_epi8(bytes4(p), z), z));
    }
    static __m128 widen(const Zev8s* p) {
        __m128i x = bytes4(p);
        x = _mm_unpacklo_epi16(_mm_unpacklo_epi8(x, x), _mm_unpacklo_epi8(x, x));
        return _mm_cvtepi32_ps(_mm_srai_epi32(x, 24));
    }
    static __m128 widen(const Zev16u* p) {
        return _mm_cvtepi32_ps(_mm_unpacklo_epi16(load8(p), _mm_setzero_si128()));
    }
    static __m128 widen(const Zev32f* p) { return _mm_loadu_ps(p); }
    static __m128 excluded(const Zev8u* m) {
        __m128i x = _mm_cmpeq_epi8(bytes4(m), _mm_setzero_si128());
        x = _mm_unpacklo_epi8(x, x);
        return _mm_castsi128_ps(_mm_unpacklo_epi16(x, x));
    }
    static __m128 loadAcc(const Zev32f* p) { return _mm_loadu_ps(p); }
    template <bool Stream>
    static void put(Zev32f* p, __m128 v) {
        if constexpr (Stream) _mm_stream_ps(p, v);
        else _mm_storeu_ps(p, v);
    }
};

#ifdef __AVX2__
template <>
struct Lanes<__m256> {
    static constexpr int N = 8;
    static __m256 widen(const Zev8u* p) { return _mm256_cvtepi32_ps(_mm256_cvtepu8_epi32(load8(p))); }
    static __m256 widen(const Zev8s* p) { return _mm256_cvtepi32_ps(_mm256_cvtepi8_epi32(load8(p))); }
    static __m256 widen(const Zev16u* p) { return _mm256_cvtepi32_ps(_mm256_cvtepu16_epi32(load<__m128i>(p))); }
    static __m256 widen(const Zev32f* p) { return _mm256_loadu_ps(p); }
    static __m256 excluded(const Zev8u* m) {
        return _mm256_castsi256_ps(_mm256_cmpeq_epi32(_mm256_cvtepu8_epi32(load8(m)), _mm256_setzero_si256()));
    }
    static __m256 loadAcc(const Zev32f* p) { return _mm256_loadu_ps(p); }
    // Streams need only 16-byte alignment here: two halves.
    template <bool Stream>
    static void put(Zev32f* p, __m256 v) {
        if constexpr (Stream) {
            _mm_stream_ps(p, _mm256_castps256_ps128(v));
            _mm_stream_ps(p + 4, _mm256_extractf128_ps(v, 1));
        } else {
            _mm256_storeu_ps(p, v);
        }
    }
};
#endif

// ---- the operations, vector block form (with the lane mask where each one
// puts it) and scalar form (an excluded scalar pixel never gets here).

template <class Op>
struct Apply;

template <>
struct Apply<AccAdd> {
    template <bool M, class V>
    static V vec(V s1, V, V d, V off, V) {
        if constexpr (M) s1 = clearWhere(off, s1);
        return add(s1, d);
    }
    static float one(float s1, float, float d, float) { return s1 + d; }
};

template <>
struct Apply<AccSquare> {
    template <bool M, class V>
    static V vec(V s1, V, V d, V off, V) {
        if constexpr (M) s1 = clearWhere(off, s1);
        return add(mul(s1, s1), d);
    }
    static float one(float s1, float, float d, float) { return s1 * s1 + d; }
};

template <>
struct Apply<AccProduct> {
    template <bool M, class V>
    static V vec(V s1, V s2, V d, V off, V) {
        if constexpr (M) s1 = clearWhere(off, s1);
        return add(mul(s1, s2), d);
    }
    static float one(float s1, float s2, float d, float) { return s1 * s2 + d; }
};

template <>
struct Apply<AccWeighted> {
    template <bool M, class V>
    static V vec(V s1, V, V d, V off, V alpha) {
        V t = mul(sub(s1, d), alpha);
        if constexpr (M) t = clearWhere(off, t);
        return add(t, d);
    }
    static float one(float s1, float, float d, float alpha) { return (s1 - d) * alpha + d; }
};

// One row's pointers.
template <class T>
struct Row {
    const T* s1;
    const T* s2;
    const Zev8u* m;
    const Zev32f* acc;
    Zev32f* d;
};

template <class Op, class T, bool M, class V, bool Stream>
inline void block(const Row<T>& r, int x, V alpha) {
    using L = Lanes<V>;
    V s1 = L::widen(r.s1 + x);
    V s2 = s1;
    if constexpr (kAccumTwoSources<Op>) s2 = L::widen(r.s2 + x);
    V off = s1;
    if constexpr (M) off = L::excluded(r.m + x);
    L::template put<Stream>(r.d + x, Apply<Op>::template vec<M>(s1, s2, L::loadAcc(r.acc + x), off, alpha));
}

// Vector blocks over [x, end), end - x a multiple of 4: full registers, then
// (for wider registers) 4-pixel steps.
template <class Op, class T, bool M, class V, bool Stream>
inline void blocks(const Row<T>& r, int x, int end, float alpha) {
    constexpr int N = Lanes<V>::N;
    const V va = splatf(alpha, static_cast<V*>(nullptr));
    for (; x <= end - 2 * N; x += 2 * N) {
        block<Op, T, M, V, Stream>(r, x, va);
        block<Op, T, M, V, Stream>(r, x + N, va);
    }
    for (; x <= end - N; x += N) block<Op, T, M, V, Stream>(r, x, va);
    if constexpr (N > 4) {
        const __m128 va4 = _mm_set1_ps(alpha);
        for (; x < end; x += 4) block<Op, T, M, __m128, Stream>(r, x, va4);
    }
}

// Element access that makes no assumption on alignment: the scalar paths are
// also the whole row for images off their element alignment.
template <class T>
inline float at(const T* p, int x) {
    T v;
    std::memcpy(&v, p + x, sizeof v);
    return static_cast<float>(v);
}

// Pixel by pixel over [x, end); excluded pixels are left alone.
template <class Op, class T, bool M>
inline void scalars(const Row<T>& r, int x, int end, float alpha) {
    for (; x < end; ++x) {
        if constexpr (M)
            if (r.m[x] == 0) continue;
        float s2 = 0.0f;
        if constexpr (kAccumTwoSources<Op>) s2 = at(r.s2, x);
        const float v = Apply<Op>::one(at(r.s1, x), s2, at(r.acc, x), alpha);
        std::memcpy(r.d + x, &v, sizeof v);
    }
}

template <class P>
inline P* advance(P* p, int step) {
    using B = std::conditional_t<std::is_const_v<P>, const std::uint8_t, std::uint8_t>;
    return p ? reinterpret_cast<P*>(reinterpret_cast<B*>(p) + step) : p;
}

// Whole region, row by row; V is the widest register of the instruction set.
template <class V, class Op, class T, bool M>
void accumulate(const AccumArgs<T>& a, int width, int height, bool useStream) {
    Row<T> r{a.src1, a.src2, a.mask, a.acc, a.dst};
    bool streamed = false;
    for (int y = 0; y < height; ++y) {
        // Without a prologue, rows under 4 pixels have no block and go scalar.
        int x0 = 0;
        if constexpr (kAccumPrologue<Op, T, M>) {
            x0 = accumPrologue(r.d, width);
            scalars<Op, T, M>(r, 0, x0, a.alpha);
        }
        const int end = x0 + ((width - x0) & ~3);
        bool aligned = aligned16(r.d + x0);
        if constexpr (sizeof(T) == 4)
            aligned = aligned && aligned16(r.s1 + x0) && (!kAccumTwoSources<Op> || aligned16(r.s2 + x0));
        if (useStream && aligned) {
            blocks<Op, T, M, V, true>(r, x0, end, a.alpha);
            streamed = true;
        } else {
            blocks<Op, T, M, V, false>(r, x0, end, a.alpha);
        }
        scalars<Op, T, M>(r, end, width, a.alpha);
        r = Row<T>{advance(r.s1, a.src1Step), advance(r.s2, a.src2Step), advance(r.m, a.maskStep),
                   advance(r.acc, a.accStep), advance(r.d, a.dstStep)};
    }
    if (streamed) _mm_sfence();
}

}  // namespace
}  // namespace v8::ZEV_ISA
