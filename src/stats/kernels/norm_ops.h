// Register operations of the norm kernels, per element type: the magnitude of an
// element or of a difference (as an unsigned or sign-cleared value of the same
// width, so that every kind accumulates magnitudes only), the mask widened to
// element lanes, and the gathering of one channel out of three interleaved ones.
// Integer operations exist for 16-byte registers and, in files built for AVX2,
// for 32-byte ones; floats use 16-byte registers only. Everything here has internal
// linkage in the namespace of the instruction set (ZEV_ISA) the including file is
// built for, so that no copy compiled for a wider set is shared with another file.
#pragma once

#include <immintrin.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "zevcv.h"

namespace v8::ZEV_ISA {
namespace {
namespace normops {

inline __m128i load8(const void* p) { return _mm_loadl_epi64(static_cast<const __m128i*>(p)); }
inline __m128i load4(const void* p) {
    std::int32_t v;
    std::memcpy(&v, p, 4);
    return _mm_cvtsi32_si128(v);
}

// ---- integer registers, by overload
template <class V> V loadu(const void* p);
template <> inline __m128i loadu<__m128i>(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
template <class V> V zero();
template <> inline __m128i zero<__m128i>() { return _mm_setzero_si128(); }
template <class V> V bytes(int v);
template <> inline __m128i bytes<__m128i>(int v) { return _mm_set1_epi8(static_cast<char>(v)); }
// Two-operand integer operations: name, 16-byte intrinsic, 32-byte intrinsic.
#define ZEV_NORM_INT_OPS(X)                                                           \
    X(vor, or_si128, or_si256) X(vxor, xor_si128, xor_si256)                          \
    X(vandnot, andnot_si128, andnot_si256) X(subsU8, subs_epu8, subs_epu8)            \
    X(subsU16, subs_epu16, subs_epu16) X(eq8, cmpeq_epi8, cmpeq_epi8)                 \
    X(maxU8, max_epu8, max_epu8) X(add16, add_epi16, add_epi16)                       \
    X(add32, add_epi32, add_epi32) X(add64, add_epi64, add_epi64)                     \
    X(madd16, madd_epi16, madd_epi16) X(mullo16, mullo_epi16, mullo_epi16)            \
    X(mulhiU16, mulhi_epu16, mulhi_epu16) X(lo8, unpacklo_epi8, unpacklo_epi8)        \
    X(hi8, unpackhi_epi8, unpackhi_epi8) X(lo16, unpacklo_epi16, unpacklo_epi16)      \
    X(hi16, unpackhi_epi16, unpackhi_epi16) X(lo32, unpacklo_epi32, unpacklo_epi32)   \
    X(hi32, unpackhi_epi32, unpackhi_epi32)

#define ZEV_NORM_OP_SSE(name, s, w) \
    inline __m128i name(__m128i a, __m128i b) { return _mm_##s(a, b); }
ZEV_NORM_INT_OPS(ZEV_NORM_OP_SSE)
#undef ZEV_NORM_OP_SSE
inline __m128i absI8(__m128i a) { return _mm_abs_epi8(a); }
inline __m128i sadZero(__m128i a) { return _mm_sad_epu8(a, _mm_setzero_si128()); }
// Mask bytes of the 8 word lanes of a register, widened: 0xFFFF where a byte is zero.
inline __m128i excludedWords(const Zev8u* m, __m128i) {
    __m128i z = _mm_cmpeq_epi8(load8(m), _mm_setzero_si128());
    return _mm_unpacklo_epi8(z, z);
}

#ifdef __AVX2__
template <> inline __m256i loadu<__m256i>(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
template <> inline __m256i zero<__m256i>() { return _mm256_setzero_si256(); }
template <> inline __m256i bytes<__m256i>(int v) { return _mm256_set1_epi8(static_cast<char>(v)); }
#define ZEV_NORM_OP_AVX2(name, s, w) \
    inline __m256i name(__m256i a, __m256i b) { return _mm256_##w(a, b); }
ZEV_NORM_INT_OPS(ZEV_NORM_OP_AVX2)
#undef ZEV_NORM_OP_AVX2
inline __m256i absI8(__m256i a) { return _mm256_abs_epi8(a); }
inline __m256i sadZero(__m256i a) { return _mm256_sad_epu8(a, _mm256_setzero_si256()); }
inline __m256i excludedWords(const Zev8u* m, __m256i) {
    __m128i z = _mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(m)), _mm_setzero_si128());
    return _mm256_cvtepi8_epi16(z);
}
#endif

// Sum of the 64-bit lanes.
template <class V>
inline std::uint64_t sumLanes64(V v) {
    alignas(32) std::uint64_t l[sizeof(V) / 8];
    std::memcpy(l, &v, sizeof(V));
    std::uint64_t s = 0;
    for (std::uint64_t x : l) s += x;
    return s;
}

// ---- magnitudes. For integers V is the register type; floats use __m128.
template <class T, class V = __m128i>
struct Mag;

// Unsigned bytes and words: |a - b| as the OR of the two saturating differences.
template <class T, class V>
    requires(std::is_unsigned_v<T>)
struct Mag<T, V> {
    using M = T;  // type of a magnitude
    using Reg = V;
    static constexpr int E = static_cast<int>(sizeof(V) / sizeof(T));
    static V abs(V a) { return a; }
    static V absDiff(V a, V b) {
        if constexpr (sizeof(T) == 1) return vor(subsU8(a, b), subsU8(b, a));
        else return vor(subsU16(a, b), subsU16(b, a));
    }
    static unsigned abs(T a) { return a; }
    static unsigned absDiff(T a, T b) { return a > b ? a - b : b - a; }
    // Lanes whose mask byte is zero, all ones.
    static V excluded(const Zev8u* m) {
        if constexpr (sizeof(T) == 1) return eq8(loadu<V>(m), zero<V>());
        else return excludedWords(m, V{});
    }
    static V keep(V excluded, V v) { return vandnot(excluded, v); }
};

// Signed bytes: |-128| is 128, which still fits an unsigned byte; differences are
// taken on values biased by 0x80, where they are the unsigned ones.
template <class V>
struct Mag<Zev8s, V> : Mag<Zev8u, V> {
    static V abs(V a) { return absI8(a); }
    static V absDiff(V a, V b) {
        const V bias = bytes<V>(0x80);
        return Mag<Zev8u, V>::absDiff(vxor(a, bias), vxor(b, bias));
    }
    static unsigned abs(Zev8s a) { return static_cast<unsigned>(a < 0 ? -a : a); }
    static unsigned absDiff(Zev8s a, Zev8s b) { return static_cast<unsigned>(a > b ? a - b : b - a); }
};

// Floats: the magnitude is the value with its sign bit cleared, so a NaN stays a
// NaN; an excluded lane becomes +0 whatever it held.
template <>
struct Mag<Zev32f, __m128i> {
    using M = Zev32f;
    using Reg = __m128;
    static constexpr int E = 4;
    static __m128 absMask() { return _mm_castsi128_ps(_mm_set1_epi32(0x7fffffff)); }
    static __m128 abs(__m128 a) { return _mm_and_ps(a, absMask()); }
    static __m128 absDiff(__m128 a, __m128 b) { return _mm_and_ps(_mm_sub_ps(a, b), absMask()); }
    static float abs(float a) { return std::bit_cast<float>(std::bit_cast<std::uint32_t>(a) & 0x7fffffffu); }
    static float absDiff(float a, float b) { return abs(a - b); }
    // From four mask bytes in the low lanes of bytes.
    static __m128 excludedFrom(__m128i bytes) {
        __m128i z = _mm_cmpeq_epi8(bytes, _mm_setzero_si128());
        z = _mm_unpacklo_epi8(z, z);
        return _mm_castsi128_ps(_mm_unpacklo_epi16(z, z));
    }
    static __m128 excluded(const Zev8u* m) { return excludedFrom(load4(m)); }
    static __m128 keep(__m128 excluded, __m128 v) { return _mm_andnot_ps(excluded, v); }
};

// One register of E pixels' elements of the chosen channel: for C1 a plain load.
template <class T, int Ch, class V = __m128i>
struct Channel {
    using Mg = Mag<T, V>;
    using R = typename Mg::Reg;
    explicit Channel(int /*ch*/) {}
    R load(const T* p) const {
        if constexpr (std::is_same_v<R, __m128>) return _mm_loadu_ps(p);
        else return loadu<R>(p);
    }
    R excluded(const Zev8u* m) const { return Mg::excluded(m); }
};

// For C3, three 16-byte registers (3 * E elements) gathered by byte shuffles.
// Floats put pixel 3 * (i - ch) % 4 of a group into lane i: that is where its
// element falls when the group's three registers are added one after the other.
// The mask bytes are gathered in the same order, so lanes and mask stay paired.
template <class T>
struct Channel<T, 3, __m128i> {
    using Mg = Mag<T, __m128i>;
    using R = typename Mg::Reg;
    static constexpr int E = Mg::E;
    static constexpr int S = static_cast<int>(sizeof(T));
    static constexpr bool kFloat = std::is_same_v<T, Zev32f>;

    static int pixelOfLane(int lane, int ch) { return kFloat ? (3 * ((lane - ch) & 3)) & 3 : lane; }

    explicit Channel(int ch) {
        alignas(16) std::int8_t sh[3][16];
        alignas(16) std::int8_t ms[16];
        for (int v = 0; v < 3; ++v)
            for (int k = 0; k < 16; ++k) sh[v][k] = static_cast<std::int8_t>(0x80);
        for (int j = 0; j < E; ++j) {
            int idx = 3 * pixelOfLane(j, ch) + ch;  // element index within the 3 * E elements
            for (int k = 0; k < S; ++k) sh[idx / E][j * S + k] = static_cast<std::int8_t>((idx % E) * S + k);
        }
        for (int k = 0; k < 16; ++k) ms[k] = static_cast<std::int8_t>(k < E ? pixelOfLane(k, ch) : 0x80);
        for (int v = 0; v < 3; ++v) shuf_[v] = _mm_load_si128(reinterpret_cast<const __m128i*>(sh[v]));
        maskShuf_ = _mm_load_si128(reinterpret_cast<const __m128i*>(ms));
    }
    R load(const T* p) const {
        __m128i r = _mm_shuffle_epi8(loadu<__m128i>(p), shuf_[0]);
        r = _mm_or_si128(r, _mm_shuffle_epi8(loadu<__m128i>(p + E), shuf_[1]));
        r = _mm_or_si128(r, _mm_shuffle_epi8(loadu<__m128i>(p + 2 * E), shuf_[2]));
        if constexpr (kFloat) return _mm_castsi128_ps(r);
        else return r;
    }
    R excluded(const Zev8u* m) const {
        if constexpr (kFloat) return Mg::excludedFrom(_mm_shuffle_epi8(load4(m), maskShuf_));
        else return Mg::excluded(m);
    }

private:
    __m128i shuf_[3];
    __m128i maskShuf_;
};

}  // namespace normops
}  // namespace
}  // namespace v8::ZEV_ISA
