// Register operations of the norm kernels, per element type: the magnitude of an
// element or of a difference (as an unsigned or sign-cleared value of the same
// width, so that every kind accumulates magnitudes only), the mask widened to
// element lanes, and the gathering of one channel out of three interleaved ones.
#pragma once

#include <immintrin.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "zevcv.h"

namespace v8::normops {

inline __m128i load16(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
inline __m128i load8(const void* p) { return _mm_loadl_epi64(static_cast<const __m128i*>(p)); }
inline __m128i load4(const void* p) {
    std::int32_t v;
    std::memcpy(&v, p, 4);
    return _mm_cvtsi32_si128(v);
}

template <class T>
struct Mag;

// Unsigned bytes: |a - b| as the OR of the two saturating differences.
template <>
struct Mag<Zev8u> {
    using V = __m128i;
    using M = Zev8u;  // type of a magnitude
    static constexpr int E = 16;
    static V abs(V a) { return a; }
    static V absDiff(V a, V b) { return _mm_or_si128(_mm_subs_epu8(a, b), _mm_subs_epu8(b, a)); }
    static unsigned abs(Zev8u a) { return a; }
    static unsigned absDiff(Zev8u a, Zev8u b) { return a > b ? a - b : b - a; }
    static __m128i maskBytes(const Zev8u* m) { return load16(m); }
    static V excluded(__m128i bytes) { return _mm_cmpeq_epi8(bytes, _mm_setzero_si128()); }
    static V keep(V excluded, V v) { return _mm_andnot_si128(excluded, v); }
};

// Signed bytes: |-128| is 128, which still fits an unsigned byte; differences are
// taken on values biased by 0x80, where they are the unsigned ones.
template <>
struct Mag<Zev8s> : Mag<Zev8u> {
    static V abs(V a) { return _mm_abs_epi8(a); }
    static V absDiff(V a, V b) {
        const V bias = _mm_set1_epi8(static_cast<char>(0x80));
        return Mag<Zev8u>::absDiff(_mm_xor_si128(a, bias), _mm_xor_si128(b, bias));
    }
    static unsigned abs(Zev8s a) { return static_cast<unsigned>(a < 0 ? -a : a); }
    static unsigned absDiff(Zev8s a, Zev8s b) { return static_cast<unsigned>(a > b ? a - b : b - a); }
};

template <>
struct Mag<Zev16u> {
    using V = __m128i;
    using M = Zev16u;
    static constexpr int E = 8;
    static V abs(V a) { return a; }
    static V absDiff(V a, V b) { return _mm_or_si128(_mm_subs_epu16(a, b), _mm_subs_epu16(b, a)); }
    static unsigned abs(Zev16u a) { return a; }
    static unsigned absDiff(Zev16u a, Zev16u b) { return a > b ? a - b : b - a; }
    static __m128i maskBytes(const Zev8u* m) { return load8(m); }
    static V excluded(__m128i bytes) {
        V z = _mm_cmpeq_epi8(bytes, _mm_setzero_si128());
        return _mm_unpacklo_epi8(z, z);
    }
    static V keep(V excluded, V v) { return _mm_andnot_si128(excluded, v); }
};

// Floats: the magnitude is the value with its sign bit cleared, so a NaN stays a
// NaN; an excluded lane becomes +0 whatever it held.
template <>
struct Mag<Zev32f> {
    using V = __m128;
    using M = Zev32f;
    static constexpr int E = 4;
    static V absMask() { return _mm_castsi128_ps(_mm_set1_epi32(0x7fffffff)); }
    static V abs(V a) { return _mm_and_ps(a, absMask()); }
    static V absDiff(V a, V b) { return _mm_and_ps(_mm_sub_ps(a, b), absMask()); }
    static float abs(float a) { return std::bit_cast<float>(std::bit_cast<std::uint32_t>(a) & 0x7fffffffu); }
    static float absDiff(float a, float b) { return abs(a - b); }
    static __m128i maskBytes(const Zev8u* m) { return load4(m); }
    static V excluded(__m128i bytes) {
        __m128i z = _mm_cmpeq_epi8(bytes, _mm_setzero_si128());
        z = _mm_unpacklo_epi8(z, z);
        return _mm_castsi128_ps(_mm_unpacklo_epi16(z, z));
    }
    static V keep(V excluded, V v) { return _mm_andnot_ps(excluded, v); }
};

template <class V>
inline V fromBits(__m128i v) {
    if constexpr (std::is_same_v<V, __m128>) return _mm_castsi128_ps(v);
    else return v;
}

// One register of E pixels' elements of the chosen channel. For C1 a plain load;
// for C3 three registers (3 * E elements) gathered by byte shuffles. Lane i of
// the result holds pixel order[i] of the group, and the mask bytes are gathered
// in the same order, so that lanes and mask stay paired.
template <class T, int Ch>
struct Channel {
    using Mg = Mag<T>;
    using V = typename Mg::V;
    static constexpr int E = Mg::E;

    explicit Channel(int /*ch*/, const int* /*order*/ = nullptr) {}
    V load(const T* p) const {
        if constexpr (std::is_same_v<V, __m128>) return _mm_loadu_ps(p);
        else return load16(p);
    }
    __m128i maskBytes(const Zev8u* m) const { return Mg::maskBytes(m); }
};

template <class T>
struct Channel<T, 3> {
    using Mg = Mag<T>;
    using V = typename Mg::V;
    static constexpr int E = Mg::E;
    static constexpr int S = static_cast<int>(sizeof(T));

    // order: pixel taken into each lane (identity if null).
    Channel(int ch, const int* order = nullptr) {
        alignas(16) std::int8_t sh[3][16];
        alignas(16) std::int8_t ms[16];
        for (int v = 0; v < 3; ++v)
            for (int k = 0; k < 16; ++k) sh[v][k] = static_cast<std::int8_t>(0x80);
        for (int j = 0; j < E; ++j) {
            int pix = order ? order[j] : j;
            int idx = 3 * pix + ch;  // element index within the 3 * E elements
            for (int k = 0; k < S; ++k) sh[idx / E][j * S + k] = static_cast<std::int8_t>((idx % E) * S + k);
        }
        for (int k = 0; k < 16; ++k) ms[k] = static_cast<std::int8_t>(k < E ? (order ? order[k] : k) : 0x80);
        for (int v = 0; v < 3; ++v) shuf_[v] = _mm_load_si128(reinterpret_cast<const __m128i*>(sh[v]));
        maskShuf_ = _mm_load_si128(reinterpret_cast<const __m128i*>(ms));
        reorder_ = order != nullptr;
    }
    V load(const T* p) const {
        __m128i r = _mm_shuffle_epi8(load16(p), shuf_[0]);
        r = _mm_or_si128(r, _mm_shuffle_epi8(load16(p + E), shuf_[1]));
        r = _mm_or_si128(r, _mm_shuffle_epi8(load16(p + 2 * E), shuf_[2]));
        return fromBits<V>(r);
    }
    __m128i maskBytes(const Zev8u* m) const {
        __m128i b = Mg::maskBytes(m);
        return reorder_ ? _mm_shuffle_epi8(b, maskShuf_) : b;
    }

private:
    __m128i shuf_[3];
    __m128i maskShuf_;
    bool reorder_;
};

}  // namespace v8::normops
