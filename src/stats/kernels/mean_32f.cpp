// Single-precision sum kernels. Each one fixes which lane every pixel lands on
// and when lanes are reduced, because the rounding of the result follows from it.
#include <immintrin.h>

#include <algorithm>
#include <cstdint>

#include "stats/kernels/mean.h"
#include "stats/kernels/stat_common.h"

namespace v8 {
namespace {

using stat::rowAt;

// Pixels i .. i + 3 of a row; the three-channel form gathers every third element.
template <class L>
inline __m128 load4(const float* p, int i) {
    if constexpr (L::ch == 1) return _mm_loadu_ps(p + i);
    else return _mm_setr_ps(p[3 * i], p[3 * i + 3], p[3 * i + 6], p[3 * i + 9]);
}
template <class L>
inline float at(const float* p, int i) {
    return p[L::ch * i];
}

inline __m128 addLane0(__m128 acc, float x) { return _mm_add_ss(acc, _mm_set_ss(x)); }
inline __m128 square(__m128 v) { return _mm_mul_ps(v, v); }

// (v0 + v2) + (v1 + v3).
inline float reduce4(__m128 v) {
    __m128 h = _mm_add_ps(v, _mm_movehl_ps(v, v));
    return _mm_cvtss_f32(_mm_add_ss(h, _mm_shuffle_ps(h, h, 1)));
}

// All-ones lanes for the selected pixels among eight mask bytes.
inline void maskLanes8(const Zev8u* m, __m128& lo, __m128& hi) {
    __m128i b = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(m));
    __m128i on = _mm_xor_si128(_mm_cmpeq_epi8(b, _mm_setzero_si128()), _mm_set1_epi32(-1));
    __m128i w = _mm_unpacklo_epi8(on, on);
    lo = _mm_castsi128_ps(_mm_unpacklo_epi16(w, w));
    hi = _mm_castsi128_ps(_mm_unpackhi_epi16(w, w));
}

// Adds a register and its square to the two accumulators.
inline void addSumSq(__m128& s, __m128& q, __m128 v) {
    s = _mm_add_ps(s, v);
    q = _mm_add_ps(q, square(v));
}
inline void addSumSq(__m128& s, __m128& q, float x) {
    s = addLane0(s, x);
    q = addLane0(q, x * x);
}

}  // namespace

template <class L, bool ResetPerPair>
SumSq64f ownSumSq_32f_Pairs(const float* src, int srcStep, int width, int height) {
    SumSq64f r;
    __m128 s = _mm_setzero_ps(), q = _mm_setzero_ps();
    auto flush = [&] {
        r.sum += reduce4(s);
        r.sq += reduce4(q);
        s = q = _mm_setzero_ps();
    };
    int y = 0;
    for (; y + 2 <= height; y += 2) {
        const float* a = rowAt(src, srcStep, y);
        const float* b = rowAt(src, srcStep, y + 1);
        int i = 0;
        for (; i + 8 <= width; i += 8) {
            addSumSq(s, q, load4<L>(a, i));
            addSumSq(s, q, load4<L>(b, i));
            addSumSq(s, q, load4<L>(a, i + 4));
            addSumSq(s, q, load4<L>(b, i + 4));
        }
        for (; i < width; ++i) {
            addSumSq(s, q, at<L>(a, i));
            addSumSq(s, q, at<L>(b, i));
        }
        if constexpr (ResetPerPair) flush();
    }
    if (y < height) {
        const float* a = rowAt(src, srcStep, y);
        int i = 0;
        for (; i + 4 <= width; i += 4) addSumSq(s, q, load4<L>(a, i));
        for (; i < width; ++i) addSumSq(s, q, at<L>(a, i));
        if constexpr (ResetPerPair) flush();
    }
    if constexpr (!ResetPerPair) flush();
    return r;
}

template <class L>
SumSq64f ownSumSq_32f_Al(const float* src, int srcStep, int width, int height) {
    SumSq64f r;
    for (int y = 0; y < height; ++y) {
        const float* a = rowAt(src, srcStep, y);
        __m128 s = _mm_setzero_ps(), q = _mm_setzero_ps();
        int i = 0;
        if constexpr (L::ch == 1) {
            // Scalars until the 16-byte boundary; a row too short for an aligned
            // group stays scalar throughout.
            int lead = static_cast<int>((0u - static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(a))) & 15u) >> 2;
            for (int end = std::min(lead, width); i < end; ++i) addSumSq(s, q, a[i]);
            for (; i + 4 <= width; i += 4) addSumSq(s, q, _mm_load_ps(a + i));
        } else {
            for (; i + 4 <= width; i += 4) addSumSq(s, q, load4<L>(a, i));
        }
        for (; i < width; ++i) addSumSq(s, q, at<L>(a, i));
        r.sum += reduce4(s);
        r.sq += reduce4(q);
    }
    return r;
}

template <class L>
double ownSum_32f_M(const float* src, int srcStep, const Zev8u* mask, int maskStep, int width, int height) {
    __m128 s = _mm_setzero_ps();
    for (int y = 0; y < height; ++y) {
        const float* a = rowAt(src, srcStep, y);
        const Zev8u* m = rowAt(mask, maskStep, y);
        int i = 0;
        for (; i + 8 <= width; i += 8) {
            __m128 lo, hi;
            maskLanes8(m + i, lo, hi);
            s = _mm_add_ps(s, _mm_and_ps(load4<L>(a, i), lo));
            s = _mm_add_ps(s, _mm_and_ps(load4<L>(a, i + 4), hi));
        }
        for (; i < width; ++i)
            if (m[i]) s = addLane0(s, at<L>(a, i));
    }
    alignas(16) float l[4];
    _mm_store_ps(l, s);
    return (double{l[0]} + double{l[2]}) + (double{l[1]} + double{l[3]});
}

template <class L>
SumSq64f ownSumSq_32f_M(const float* src, int srcStep, const Zev8u* mask, int maskStep, int width, int height) {
    SumSq64f r;
    for (int y = 0; y < height; ++y) {
        const float* a = rowAt(src, srcStep, y);
        const Zev8u* m = rowAt(mask, maskStep, y);
        __m128 s = _mm_setzero_ps(), q = _mm_setzero_ps();
        int i = 0;
        for (; i + 8 <= width; i += 8) {
            __m128 lo, hi;
            maskLanes8(m + i, lo, hi);
            addSumSq(s, q, _mm_and_ps(load4<L>(a, i), lo));
            addSumSq(s, q, _mm_and_ps(load4<L>(a, i + 4), hi));
        }
        for (; i < width; ++i)
            if (m[i]) addSumSq(s, q, at<L>(a, i));
        r.sum += reduce4(s);
        r.sq += reduce4(q);
    }
    return r;
}

template <class L, bool Masked>
double ownSq_32f(const float* src, int srcStep, const Zev8u* mask, int maskStep, int width, int height, float meanF) {
    const __m128 mv = _mm_set1_ps(meanF);
    __m128 a0 = _mm_setzero_ps(), a1 = _mm_setzero_ps();
    for (int y = 0; y < height; ++y) {
        const float* a = rowAt(src, srcStep, y);
        const Zev8u* m = Masked ? rowAt(mask, maskStep, y) : nullptr;
        int i = 0;
        for (; i + 8 <= width; i += 8) {
            __m128 d0 = _mm_sub_ps(load4<L>(a, i), mv);
            __m128 d1 = _mm_sub_ps(load4<L>(a, i + 4), mv);
            if constexpr (Masked) {
                __m128 lo, hi;
                maskLanes8(m + i, lo, hi);
                d0 = _mm_and_ps(d0, lo);
                d1 = _mm_and_ps(d1, hi);
            }
            a0 = _mm_add_ps(a0, square(d0));
            a1 = _mm_add_ps(a1, square(d1));
        }
        for (; i < width; ++i) {
            if (Masked && !m[i]) continue;
            float d = at<L>(a, i) - meanF;
            a0 = addLane0(a0, d * d);
        }
    }
    return reduce4(_mm_add_ps(a0, a1));
}

std::int32_t ownCountMask(const Zev8u* mask, int maskStep, int width, int height) {
    std::uint32_t n = 0;
    const __m128i one = _mm_set1_epi8(1), z = _mm_setzero_si128();
    for (int y = 0; y < height; ++y) {
        const Zev8u* m = rowAt(mask, maskStep, y);
        int x = 0;
        __m128i c = _mm_setzero_si128();
        for (; x + 16 <= width; x += 16) {
            __m128i on = _mm_andnot_si128(_mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(m + x)), z), one);
            c = _mm_add_epi64(c, _mm_sad_epu8(on, z));
        }
        n += static_cast<std::uint32_t>(_mm_cvtsi128_si32(c)) +
             static_cast<std::uint32_t>(_mm_cvtsi128_si32(_mm_unpackhi_epi64(c, c)));
        for (; x < width; ++x) n += m[x] != 0;
    }
    return static_cast<std::int32_t>(n);
}

#define ZEV_MEAN32F(L)                                                                                  \
    template SumSq64f ownSumSq_32f_Pairs<L, false>(const float*, int, int, int);                        \
    template SumSq64f ownSumSq_32f_Pairs<L, true>(const float*, int, int, int);                         \
    template SumSq64f ownSumSq_32f_Al<L>(const float*, int, int, int);                                  \
    template double ownSum_32f_M<L>(const float*, int, const Zev8u*, int, int, int);                    \
    template SumSq64f ownSumSq_32f_M<L>(const float*, int, const Zev8u*, int, int, int);                \
    template double ownSq_32f<L, false>(const float*, int, const Zev8u*, int, int, int, float);         \
    template double ownSq_32f<L, true>(const float*, int, const Zev8u*, int, int, int, float);
ZEV_MEAN32F(stat::C1)
ZEV_MEAN32F(stat::C3C)
#undef ZEV_MEAN32F

}  // namespace v8
