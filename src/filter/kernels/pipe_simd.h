// Pieces shared by the row and column kernels of the separable pipelines: how a
// window's taps are reached (along a row, or down a set of row pointers), the
// tap sums in their three precisions, and the scalar conversions whose rounding
// is part of the results.
#pragma once

#include <immintrin.h>

#include <cstdint>

namespace v8::pipe {

// ---------------------------------------------------------------- scalar rules

// Round to nearest, ties to even, exactly as the vector conversion does it:
// a value outside the int range gives INT_MIN.
inline int cvtRound(float f) { return _mm_cvtss_si32(_mm_set_ss(f)); }

inline std::int16_t sat16(int v) {
    return static_cast<std::int16_t>(v < -32768 ? -32768 : (v > 32767 ? 32767 : v));
}

// Nearest even, saturated to 16 bits. Clamping first gives the same value as
// saturating the rounded result, and keeps sums beyond the int range saturating
// instead of turning into INT_MIN.
inline std::int16_t roundSat16(float f) {
    f = f < -32768.0f ? -32768.0f : f;
    f = f > 32767.0f ? 32767.0f : f;
    return static_cast<std::int16_t>(cvtRound(f));
}

// Clamp to [lo, hi], then truncate toward zero.
inline int truncClamp(float f, float lo, float hi) {
    f = f < lo ? lo : f;
    f = f > hi ? hi : f;
    return static_cast<int>(f);
}

// Wrapping integer arithmetic without undefined behaviour.
inline std::int32_t wrapAdd(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}
inline std::int32_t wrapMul(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

// ---------------------------------------------------------------- divisors 2^n

// A divisor 2^n (n >= 0) makes 1/divisor exact: where the sums are exact in
// float too, multiplying by it and rounding is an integer rounding shift. n, or
// -1 for any other divisor.
inline int pow2Shift(int divisor) {
    if (divisor <= 0 || (divisor & (divisor - 1)) != 0) return -1;
    return __builtin_ctz(static_cast<unsigned>(divisor));
}
// s / 2^n rounded to nearest, ties to even.
inline std::int32_t roundShift(std::int32_t s, int n) {
    if (n == 0) return s;
    return (s + (1 << (n - 1)) - 1 + ((s >> n) & 1)) >> n;
}
inline __m128i roundShift4(__m128i s, int n) {
    if (n == 0) return s;
    const __m128i odd = _mm_and_si128(_mm_srai_epi32(s, n), _mm_set1_epi32(1));
    return _mm_srai_epi32(_mm_add_epi32(_mm_add_epi32(s, _mm_set1_epi32((1 << (n - 1)) - 1)), odd), n);
}
// The same on 16-bit lanes, where s + 2^(n-1) stays inside 16 bits.
inline __m128i roundShift8(__m128i s, int n) {
    if (n == 0) return s;
    const __m128i odd = _mm_and_si128(_mm_srai_epi16(s, n), _mm_set1_epi16(1));
    return _mm_srai_epi16(_mm_add_epi16(_mm_add_epi16(s, _mm_set1_epi16(static_cast<short>((1 << (n - 1)) - 1))), odd),
                          n);
}

// Q14 reciprocal of a Low divisor, cut to 16 bits.
inline std::int16_t lowReciprocal(int divisor) {
    return static_cast<std::int16_t>(static_cast<int>(16384.0f / static_cast<float>(divisor)));
}

// The interior rule of Low: a 16-bit wrapped sum, scaled by the Q14 reciprocal.
inline std::int16_t lowScale(std::int16_t sum, std::int16_t r, bool unit) {
    if (unit) return sum;
    return sat16((static_cast<std::int32_t>(sum) * r) >> 14);
}

// ---------------------------------------------------------------- tap access

// Taps of a window along one row: tap j of element e is p[e + j * stride].
template <class T>
struct AlongRow {
    const T* p;
    int stride;
    const T* at(int j, int e) const { return p + e + static_cast<std::ptrdiff_t>(j) * stride; }
};

// Taps down a set of rows: tap j of element e is rows[j][e].
template <class T>
struct DownRows {
    const T* const* rows;
    const T* at(int j, int e) const { return rows[j] + e; }
};

// ---------------------------------------------------------------- vector loads

// Eight elements as signed 16-bit lanes.
inline __m128i load8x16(const std::uint8_t* p) {
    return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)), _mm_setzero_si128());
}
inline __m128i load8x16(const std::int16_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }

// Sign-extended halves of eight 16-bit lanes, as floats.
inline void widen16to32f(__m128i v, __m128& lo, __m128& hi) {
    lo = _mm_cvtepi32_ps(_mm_srai_epi32(_mm_unpacklo_epi16(v, v), 16));
    hi = _mm_cvtepi32_ps(_mm_srai_epi32(_mm_unpackhi_epi16(v, v), 16));
}

// ---------------------------------------------------------------- tap sums

// Coefficient block for the pairwise multiply-add: register i holds the pair
// (k[2i], k[2i+1]) in every 32-bit lane, the last pair of an odd K padded by 0.
inline void makePairs(const std::int16_t* k, int K, __m128i* pairs) {
    for (int i = 0; 2 * i < K; ++i) {
        std::uint16_t k0 = static_cast<std::uint16_t>(k[2 * i]);
        std::uint16_t k1 = 2 * i + 1 < K ? static_cast<std::uint16_t>(k[2 * i + 1]) : 0;
        pairs[i] = _mm_set1_epi32(static_cast<int>(k0 | (static_cast<std::uint32_t>(k1) << 16)));
    }
}

// 32-bit wrapping sums of taps [j0, j1) for eight elements from e; j0 is even.
// A lone last tap is paired with zero, so the pair's second weight drops out.
template <class Taps>
inline void maddTaps(const Taps& t, int e, const __m128i* pairs, int j0, int j1, __m128i& lo, __m128i& hi) {
    const __m128i zero = _mm_setzero_si128();
    int j = j0;
    for (; j + 1 < j1; j += 2) {
        __m128i a = load8x16(t.at(j, e)), b = load8x16(t.at(j + 1, e));
        lo = _mm_add_epi32(lo, _mm_madd_epi16(_mm_unpacklo_epi16(a, b), pairs[j >> 1]));
        hi = _mm_add_epi32(hi, _mm_madd_epi16(_mm_unpackhi_epi16(a, b), pairs[j >> 1]));
    }
    if (j < j1) {
        __m128i a = load8x16(t.at(j, e));
        if (j & 1) {  // weight sits in the pair's upper half
            lo = _mm_add_epi32(lo, _mm_madd_epi16(_mm_unpacklo_epi16(zero, a), pairs[j >> 1]));
            hi = _mm_add_epi32(hi, _mm_madd_epi16(_mm_unpackhi_epi16(zero, a), pairs[j >> 1]));
        } else {
            lo = _mm_add_epi32(lo, _mm_madd_epi16(_mm_unpacklo_epi16(a, zero), pairs[j >> 1]));
            hi = _mm_add_epi32(hi, _mm_madd_epi16(_mm_unpackhi_epi16(a, zero), pairs[j >> 1]));
        }
    }
}

// Float sum in tap order, k[0]*x[0] first, for eight 16-bit elements.
template <class Taps>
inline void floatTaps8(const Taps& t, int e, int K, const __m128* c, __m128& lo, __m128& hi) {
    __m128 xl, xh;
    widen16to32f(load8x16(t.at(0, e)), xl, xh);
    lo = _mm_mul_ps(xl, c[0]);
    hi = _mm_mul_ps(xh, c[0]);
    for (int j = 1; j < K; ++j) {
        widen16to32f(load8x16(t.at(j, e)), xl, xh);
        lo = _mm_add_ps(lo, _mm_mul_ps(xl, c[j]));
        hi = _mm_add_ps(hi, _mm_mul_ps(xh, c[j]));
    }
}

// Float sum in tap order for four float elements.
template <class Taps>
inline __m128 floatTaps4(const Taps& t, int e, int K, const __m128* c) {
    __m128 acc = _mm_mul_ps(_mm_loadu_ps(t.at(0, e)), c[0]);
    for (int j = 1; j < K; ++j) acc = _mm_add_ps(acc, _mm_mul_ps(_mm_loadu_ps(t.at(j, e)), c[j]));
    return acc;
}

// 16-bit wrapping sum of eight elements: every product keeps its low 16 bits.
template <class Taps>
inline __m128i lowTaps8(const Taps& t, int e, int K, const __m128i* k16) {
    __m128i acc = _mm_mullo_epi16(load8x16(t.at(0, e)), k16[0]);
    for (int j = 1; j < K; ++j) acc = _mm_add_epi16(acc, _mm_mullo_epi16(load8x16(t.at(j, e)), k16[j]));
    return acc;
}

// Low's scaling of a wrapped sum: (sum * r) >> 14 in 32 bits, saturated.
inline __m128i lowScale8(__m128i sum, __m128i r) {
    __m128i pl = _mm_mullo_epi16(sum, r), ph = _mm_mulhi_epi16(sum, r);
    __m128i lo = _mm_srai_epi32(_mm_unpacklo_epi16(pl, ph), 14);
    __m128i hi = _mm_srai_epi32(_mm_unpackhi_epi16(pl, ph), 14);
    return _mm_packs_epi32(lo, hi);
}

inline __m128 clamp16f(__m128 v) {
    return _mm_min_ps(_mm_max_ps(v, _mm_set1_ps(-32768.0f)), _mm_set1_ps(32767.0f));
}
// Two float halves to eight 16-bit lanes: nearest even, saturated (as roundSat16).
inline __m128i roundPack(__m128 lo, __m128 hi) {
    return _mm_packs_epi32(_mm_cvtps_epi32(clamp16f(lo)), _mm_cvtps_epi32(clamp16f(hi)));
}

// ---------------------------------------------------------------- shared rules

// Low's interior rule: 16-bit wrapped sum, scaled by the Q14 reciprocal unless
// the divisor is 1. Rows and columns use it alike.
struct LowSum {
    const std::int16_t* k;
    int K;
    std::int16_t r;
    bool unit;
    const __m128i* k16;  // one register per tap

    static LowSum make(const std::int16_t* kernel, int K, int divisor, __m128i* block) {
        for (int j = 0; j < K; ++j) block[j] = _mm_set1_epi16(kernel[j]);
        return LowSum{kernel, K, lowReciprocal(divisor), divisor == 1, block};
    }
    template <class Taps>
    std::int16_t scalar(const Taps& t, int e) const {
        std::int16_t v = 0;
        for (int j = 0; j < K; ++j) v = static_cast<std::int16_t>(v + static_cast<std::int16_t>(*t.at(j, e) * k[j]));
        return lowScale(v, r, unit);
    }
    template <int KT, class Taps>
    void vec(const Taps& t, int e, std::int16_t* out) const {
        __m128i v = lowTaps8(t, e, KT ? KT : K, k16);
        if (!unit) v = lowScale8(v, _mm_set1_epi16(r));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), v);
    }
};

// Float sum in tap order from k[0] * x[0], unscaled: every float column.
struct FloatSum {
    const float* k;
    int K;
    const __m128* cf;  // one register per tap

    static FloatSum make(const float* kernel, int K, __m128* block) {
        for (int j = 0; j < K; ++j) block[j] = _mm_set1_ps(kernel[j]);
        return FloatSum{kernel, K, block};
    }
    template <class Taps>
    float scalar(const Taps& t, int e) const {
        float f = k[0] * *t.at(0, e);
        for (int j = 1; j < K; ++j) f += k[j] * *t.at(j, e);
        return f;
    }
    template <int KT, class Taps>
    void vec(const Taps& t, int e, float* out) const {
        _mm_storeu_ps(out, floatTaps4(t, e, KT ? KT : K, cf));
    }
};

}  // namespace v8::pipe
