// Operations for the row engine of pointwise.h. Each has a register form vec()
// and a scalar form one() with the same bits, so that prologue and tail agree
// with the blocks between them.
#pragma once

#include <cstdint>
#include <type_traits>

#include "frame/kernels/pointwise.h"
#include "zevcv.h"

namespace v8::kern {
inline namespace ZEV_SIMD_ISA {

// ---------------------------------------------------------------- scale rule
// p / 2^s rounded to nearest, ties to even, for s >= 1. The sum stays inside 32
// bits for every product of two 16-bit values and s up to 30.
inline int roundShiftEven(int p, int s) { return (p + (1 << (s - 1)) - 1 + ((p >> s) & 1)) >> s; }
inline __m128i roundShiftEven(__m128i p, __m128i bias, __m128i one, __m128i count) {
    __m128i odd = _mm_and_si128(_mm_sra_epi32(p, count), one);
    return _mm_sra_epi32(_mm_add_epi32(_mm_add_epi32(p, bias), odd), count);
}
// The same on unsigned 16-bit lanes, whose sums stay below 2^16.
inline __m128i roundShiftEven16(__m128i p, __m128i bias, __m128i one, __m128i count) {
    __m128i odd = _mm_and_si128(_mm_srl_epi16(p, count), one);
    return _mm_srl_epi16(_mm_add_epi16(_mm_add_epi16(p, bias), odd), count);
}

template <class T>
constexpr T saturate(std::int64_t v) {
    constexpr std::int64_t lo = std::is_signed_v<T> ? -(std::int64_t{1} << (8 * sizeof(T) - 1)) : 0;
    constexpr std::int64_t hi = std::is_signed_v<T> ? (std::int64_t{1} << (8 * sizeof(T) - 1)) - 1
                                                    : (std::int64_t{1} << (8 * sizeof(T))) - 1;
    return static_cast<T>(v < lo ? lo : (v > hi ? hi : v));
}

// ---------------------------------------------------------------- threshold
// Unsigned lanes of 8 or 16 bits: the saturating difference is 0 exactly where
// the first operand is not above the second.
template <class T>
inline __m128i subsU(__m128i a, __m128i b) {
    if constexpr (sizeof(T) == 1) return _mm_subs_epu8(a, b);
    else return _mm_subs_epu16(a, b);
}
template <class T>
inline __m128i isZeroU(__m128i a) {
    if constexpr (sizeof(T) == 1) return _mm_cmpeq_epi8(a, _mm_setzero_si128());
    else return _mm_cmpeq_epi16(a, _mm_setzero_si128());
}
inline __m128i select(__m128i keep, __m128i a, __m128i b) {
    return _mm_or_si128(_mm_and_si128(keep, a), _mm_andnot_si128(keep, b));
}

// Integer pixels beyond the threshold become value (greater-than when Greater,
// else less-than).
template <class T, bool Greater>
struct ThresholdValOp {
    T thr, val;
    __m128i vthr, vval;
    ThresholdValOp(T threshold, T value)
        : thr(threshold), val(value), vthr(simd::splat<__m128i>(threshold)), vval(simd::splat<__m128i>(value)) {}
    __m128i vec(__m128i a) const {
        __m128i keep = Greater ? isZeroU<T>(subsU<T>(a, vthr)) : isZeroU<T>(subsU<T>(vthr, a));
        return select(keep, a, vval);
    }
#ifdef __AVX2__
    // The wide constants are made here; the compiler lifts them out of the row loop.
    __m256i vec(__m256i a) const {
        const __m256i t = simd::splat<__m256i>(thr), v = simd::splat<__m256i>(val), z = _mm256_setzero_si256();
        __m256i keep;
        if constexpr (sizeof(T) == 1)
            keep = _mm256_cmpeq_epi8(Greater ? _mm256_subs_epu8(a, t) : _mm256_subs_epu8(t, a), z);
        else
            keep = _mm256_cmpeq_epi16(Greater ? _mm256_subs_epu16(a, t) : _mm256_subs_epu16(t, a), z);
        return _mm256_blendv_epi8(v, a, keep);
    }
#endif
    T one(T a) const { return (Greater ? a > thr : a < thr) ? val : a; }
};

// Float pixels beyond the threshold become the threshold. minps/maxps return
// their second operand unless the first wins the comparison, which keeps NaN
// pixels as they are, like the scalar comparison.
template <bool Greater>
struct ThresholdOp_32f {
    float thr;
    __m128 vthr;
    explicit ThresholdOp_32f(float threshold) : thr(threshold), vthr(_mm_set1_ps(threshold)) {}
    __m128 vec(__m128 a) const { return Greater ? _mm_min_ps(vthr, a) : _mm_max_ps(vthr, a); }
#ifdef __AVX2__
    __m256 vec(__m256 a) const {
        const __m256 t = _mm256_set1_ps(thr);
        return Greater ? _mm256_min_ps(t, a) : _mm256_max_ps(t, a);
    }
#endif
    float one(float a) const { return (Greater ? a > thr : a < thr) ? thr : a; }
};

// ---------------------------------------------------------------- min, max
// Where the operands compare unordered or equal the second one is taken.
template <class T, bool Max>
struct MinMaxEveryOp {
    __m128i vec(__m128i a, __m128i b) const {
        if constexpr (sizeof(T) == 1) return Max ? _mm_max_epu8(a, b) : _mm_min_epu8(a, b);
        // No unsigned 16-bit min/max below SSE4.1: a saturating difference does it.
        else return Max ? _mm_add_epi16(_mm_subs_epu16(a, b), b) : _mm_sub_epi16(a, _mm_subs_epu16(a, b));
    }
    __m128 vec(__m128 a, __m128 b) const { return Max ? _mm_max_ps(a, b) : _mm_min_ps(a, b); }
    __m128d vec(__m128d a, __m128d b) const { return Max ? _mm_max_pd(a, b) : _mm_min_pd(a, b); }
#ifdef __AVX2__
    __m256i vec(__m256i a, __m256i b) const {
        if constexpr (sizeof(T) == 1) return Max ? _mm256_max_epu8(a, b) : _mm256_min_epu8(a, b);
        else return Max ? _mm256_max_epu16(a, b) : _mm256_min_epu16(a, b);
    }
    __m256 vec(__m256 a, __m256 b) const { return Max ? _mm256_max_ps(a, b) : _mm256_min_ps(a, b); }
    __m256d vec(__m256d a, __m256d b) const { return Max ? _mm256_max_pd(a, b) : _mm256_min_pd(a, b); }
#endif
    T one(T a, T b) const { return (Max ? a > b : a < b) ? a : b; }
};

// ---------------------------------------------------------------- float arithmetic
// dst = src2 - src1.
struct SubOp_32f {
    __m128 vec(__m128 a, __m128 b) const { return _mm_sub_ps(b, a); }
#ifdef __AVX2__
    __m256 vec(__m256 a, __m256 b) const { return _mm256_sub_ps(b, a); }
#endif
    float one(float a, float b) const { return b - a; }
};

struct MulCOp_32f {
    float v;
    __m128 vv;
    explicit MulCOp_32f(float value) : v(value), vv(_mm_set1_ps(value)) {}
    __m128 vec(__m128 a) const { return _mm_mul_ps(a, vv); }
    float one(float a) const { return a * v; }
};

// sqrtss and sqrtps round alike and give the same NaN for negative input.
struct SqrtOp_32f {
    __m128 vec(__m128 a) const { return _mm_sqrt_ps(a); }
    float one(float a) const { return _mm_cvtss_f32(_mm_sqrt_ss(_mm_set_ss(a))); }
};

// ---------------------------------------------------------------- 8u subtraction
// dst = scale(max(src2 - src1, 0)), saturated. The scale policies work on the
// clipped difference d in [0, 255].
struct ScaleNone_8u {  // factor 0
    __m128i vec(__m128i d) const { return d; }
    int one(int d) const { return d; }
};
struct ScaleHalf_8u {  // factor 1: (d + ((d >> 1) & 1)) >> 1 == (d >> 1) + (d & (d >> 1) & 1)
    __m128i vec(__m128i d) const {
        __m128i half = _mm_and_si128(_mm_srli_epi16(d, 1), _mm_set1_epi8(0x7f));
        __m128i up = _mm_and_si128(_mm_and_si128(d, half), _mm_set1_epi8(1));
        return _mm_add_epi8(half, up);
    }
    int one(int d) const { return roundShiftEven(d, 1); }
};
struct ScalePos_8u {  // factors 2 to 8, in 16-bit lanes
    int s;
    __m128i count, bias, lsb;
    explicit ScalePos_8u(int sf)
        : s(sf), count(_mm_cvtsi32_si128(sf)), bias(_mm_set1_epi16(static_cast<short>((1 << (sf - 1)) - 1))),
          lsb(_mm_set1_epi16(1)) {}
    __m128i vec(__m128i d) const {
        __m128i z = _mm_setzero_si128();
        __m128i lo = roundShiftEven16(_mm_unpacklo_epi8(d, z), bias, lsb, count);
        __m128i hi = roundShiftEven16(_mm_unpackhi_epi8(d, z), bias, lsb, count);
        return _mm_packus_epi16(lo, hi);
    }
    int one(int d) const { return roundShiftEven(d, s); }
};
struct ScaleNeg_8u {  // factors -1 to -7: 255 << 7 still fits a signed 16-bit lane
    int k;
    __m128i count;
    explicit ScaleNeg_8u(int sf) : k(-sf), count(_mm_cvtsi32_si128(-sf)) {}
    __m128i vec(__m128i d) const {
        __m128i z = _mm_setzero_si128();
        __m128i lo = _mm_sll_epi16(_mm_unpacklo_epi8(d, z), count);
        __m128i hi = _mm_sll_epi16(_mm_unpackhi_epi8(d, z), count);
        return _mm_packus_epi16(lo, hi);
    }
    int one(int d) const { return d << k; }
};
struct ScaleBound_8u {  // factors -8 and below: any positive difference saturates
    __m128i vec(__m128i d) const { return _mm_andnot_si128(_mm_cmpeq_epi8(d, _mm_setzero_si128()), _mm_set1_epi8(-1)); }
    int one(int d) const { return d ? 255 : 0; }
};

template <class Scale>
struct SubSfsOp_8u {
    Scale scale;
    __m128i vec(__m128i a, __m128i b) const { return scale.vec(_mm_subs_epu8(b, a)); }
    std::uint8_t one(std::uint8_t a, std::uint8_t b) const {
        return saturate<std::uint8_t>(scale.one(b > a ? b - a : 0));
    }
};

// ---------------------------------------------------------------- 16s scaling
// dst = scale(src * value), saturated; the product p is 32-bit. The policies
// turn the two halves of the products into one register of 16-bit results.
struct ScaleNone_16s {
    __m128i vec(__m128i p0, __m128i p1) const { return _mm_packs_epi32(p0, p1); }
    int one(int p) const { return p; }
};
struct ScalePos_16s {  // factors 1 to 30
    int s;
    __m128i count, bias, lsb;
    explicit ScalePos_16s(int sf)
        : s(sf), count(_mm_cvtsi32_si128(sf)), bias(_mm_set1_epi32((1 << (sf - 1)) - 1)), lsb(_mm_set1_epi32(1)) {}
    __m128i vec(__m128i p0, __m128i p1) const {
        return _mm_packs_epi32(roundShiftEven(p0, bias, lsb, count), roundShiftEven(p1, bias, lsb, count));
    }
    int one(int p) const { return roundShiftEven(p, s); }
};
// Factors -1 to -15. A product outside 16 bits saturates whatever the shift, so
// it is clamped first and the shifted value then fits 32 bits.
struct ScaleNeg_16s {
    int k;
    __m128i count;
    explicit ScaleNeg_16s(int sf) : k(-sf), count(_mm_cvtsi32_si128(-sf)) {}
    __m128i vec(__m128i p0, __m128i p1) const {
        __m128i c = _mm_packs_epi32(p0, p1);
        __m128i lo = _mm_srai_epi32(_mm_unpacklo_epi16(c, c), 16);
        __m128i hi = _mm_srai_epi32(_mm_unpackhi_epi16(c, c), 16);
        return _mm_packs_epi32(_mm_sll_epi32(lo, count), _mm_sll_epi32(hi, count));
    }
    int one(int p) const {
        int c = saturate<std::int16_t>(p);
        return c * (1 << k);
    }
};
// Factors below -15: 0 stays 0, anything else goes to the limit of its sign.
struct ScaleBound_16s {
    __m128i vec(__m128i p0, __m128i p1) const {
        __m128i c = _mm_packs_epi32(p0, p1);
        __m128i z = _mm_setzero_si128();
        __m128i pos = _mm_and_si128(_mm_cmpgt_epi16(c, z), _mm_set1_epi16(32767));
        __m128i neg = _mm_and_si128(_mm_cmplt_epi16(c, z), _mm_set1_epi16(-32768));
        return _mm_or_si128(pos, neg);
    }
    int one(int p) const { return p > 0 ? 32767 : (p < 0 ? -32768 : 0); }
};

template <class Scale>
struct MulCSfsOp_16s {
    Scale scale;
    std::int16_t v;
    __m128i vv;
    MulCSfsOp_16s(Scale sc, std::int16_t value) : scale(sc), v(value), vv(_mm_set1_epi16(value)) {}
    __m128i vec(__m128i a) const {
        __m128i lo = _mm_mullo_epi16(a, vv), hi = _mm_mulhi_epi16(a, vv);
        return scale.vec(_mm_unpacklo_epi16(lo, hi), _mm_unpackhi_epi16(lo, hi));
    }
    std::int16_t one(std::int16_t a) const { return saturate<std::int16_t>(scale.one(int{a} * v)); }
};

}  // namespace ZEV_SIMD_ISA
}  // namespace v8::kern
