// Vector first stages of the extrema search for one-channel 8u and 32f rows,
// generic over the register width; included once per instruction-set file after
// defining ZEV_ISA. 8u extremes are exact in any lane order; the 32f lanes are
// the eight of the generic kernel, so both widths give the same bits.
#include <cstdint>

#include "frame/kernels/simd.h"
#include "stats/kernels/minmax.h"
#include "stats/kernels/stat_pixels_body.h"

namespace v8::ZEV_ISA {
namespace {

using namespace v8::simd;

// ---- 8u

inline __m128i vmin(__m128i a, __m128i b) { return _mm_min_epu8(a, b); }
inline __m128i vmax(__m128i a, __m128i b) { return _mm_max_epu8(a, b); }
inline __m128i isZero(__m128i m) { return _mm_cmpeq_epi8(m, _mm_setzero_si128()); }
inline __m128i orv(__m128i a, __m128i b) { return _mm_or_si128(a, b); }
inline __m128i andnotv(__m128i a, __m128i b) { return _mm_andnot_si128(a, b); }
inline __m128i ones(__m128i) { return _mm_set1_epi8(-1); }
inline __m128i zeros(__m128i) { return _mm_setzero_si128(); }
template <class Op>
inline int fold16(__m128i v, Op op) {
    v = op(v, _mm_srli_si128(v, 8));
    v = op(v, _mm_srli_si128(v, 4));
    v = op(v, _mm_srli_si128(v, 2));
    v = op(v, _mm_srli_si128(v, 1));
    return _mm_cvtsi128_si32(v) & 0xFF;
}
inline int hmin(__m128i v) { return fold16(v, [](__m128i a, __m128i b) { return _mm_min_epu8(a, b); }); }
inline int hmax(__m128i v) { return fold16(v, [](__m128i a, __m128i b) { return _mm_max_epu8(a, b); }); }
#ifdef __AVX2__
inline __m256i vmin(__m256i a, __m256i b) { return _mm256_min_epu8(a, b); }
inline __m256i vmax(__m256i a, __m256i b) { return _mm256_max_epu8(a, b); }
inline __m256i isZero(__m256i m) { return _mm256_cmpeq_epi8(m, _mm256_setzero_si256()); }
inline __m256i orv(__m256i a, __m256i b) { return _mm256_or_si256(a, b); }
inline __m256i andnotv(__m256i a, __m256i b) { return _mm256_andnot_si256(a, b); }
inline __m256i ones(__m256i) { return _mm256_set1_epi8(-1); }
inline __m256i zeros(__m256i) { return _mm256_setzero_si256(); }
inline int hmin(__m256i v) { return hmin(_mm_min_epu8(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1))); }
inline int hmax(__m256i v) { return hmax(_mm_max_epu8(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1))); }
#endif

template <int Bytes, class L, bool Masked>
MinMaxStage<std::uint8_t> stage8u(const std::uint8_t* src, int srcStep, const Zev8u* mask, int maskStep, int width,
                                  int height) {
    using V = Reg<std::uint8_t, Bytes>;
    MinMaxStage<std::uint8_t> r;
    int y = r.template start<Masked>(mask, maskStep, width, height);
    for (; y < height; ++y) {
        const std::uint8_t* p = stat::rowAt(src, srcStep, y);
        const Zev8u* m = Masked ? stat::rowAt(mask, maskStep, y) : nullptr;
        V lo0 = ones(V{}), lo1 = lo0, hi0 = zeros(V{}), hi1 = hi0;
        // An excluded byte becomes 255 for the minimum and 0 for the maximum.
        auto accumulate = [&](V& lo, V& hi, int x) {
            V v = loadPixels(p, x, L{}, V{});
            if constexpr (Masked) {
                V off = isZero(load<V>(m + x));
                lo = vmin(lo, orv(v, off));
                hi = vmax(hi, andnotv(off, v));
            } else {
                lo = vmin(lo, v);
                hi = vmax(hi, v);
            }
        };
        const int vecEnd = width - kSparePixels<L>;
        int x = 0;
        for (; x + 2 * Bytes <= vecEnd; x += 2 * Bytes) {
            accumulate(lo0, hi0, x);
            accumulate(lo1, hi1, x + Bytes);
        }
        if (x + Bytes <= vecEnd) {
            accumulate(lo0, hi0, x);
            x += Bytes;
        }
        int rowMin = hmin(vmin(lo0, lo1)), rowMax = hmax(vmax(hi0, hi1));
        for (; x < width; ++x) {
            if (Masked && !m[x]) continue;
            int v = p[x * L::ch];
            rowMin = v < rowMin ? v : rowMin;
            rowMax = v > rowMax ? v : rowMax;
        }
        r.take(rowMin, y, rowMax, y);
    }
    return r;
}

// ---- 32f: eight lanes, as two 16-byte registers or one 32-byte register

struct F8x2 {
    __m128 a, b;  // lanes 0-3, 4-7
};
inline F8x2 splat8(float v, F8x2) { return {_mm_set1_ps(v), _mm_set1_ps(v)}; }
inline F8x2 load8f(const float* p, F8x2) { return {_mm_loadu_ps(p), _mm_loadu_ps(p + 4)}; }
inline F8x2 min8(F8x2 best, F8x2 x) { return {_mm_min_ps(best.a, x.a), _mm_min_ps(best.b, x.b)}; }
inline F8x2 max8(F8x2 best, F8x2 x) { return {_mm_max_ps(best.a, x.a), _mm_max_ps(best.b, x.b)}; }
// Selected lanes from x, the others from keep.
inline F8x2 pick8(const Zev8u* m, F8x2 x, F8x2 keep) {
    __m128i on = _mm_xor_si128(_mm_cmpeq_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(m)),
                                              _mm_setzero_si128()),
                               _mm_set1_epi32(-1));
    __m128i w = _mm_unpacklo_epi8(on, on);
    __m128 sa = _mm_castsi128_ps(_mm_unpacklo_epi16(w, w)), sb = _mm_castsi128_ps(_mm_unpackhi_epi16(w, w));
    return {_mm_or_ps(_mm_and_ps(sa, x.a), _mm_andnot_ps(sa, keep.a)),
            _mm_or_ps(_mm_and_ps(sb, x.b), _mm_andnot_ps(sb, keep.b))};
}
inline __m128 half(F8x2 v, int i) { return i ? v.b : v.a; }
inline F8x2 withLane0(F8x2 v, __m128 lo) { return {lo, v.b}; }
#ifdef __AVX2__
inline __m256 splat8(float v, __m256) { return _mm256_set1_ps(v); }
inline __m256 load8f(const float* p, __m256) { return _mm256_loadu_ps(p); }
inline __m256 min8(__m256 best, __m256 x) { return _mm256_min_ps(best, x); }
inline __m256 max8(__m256 best, __m256 x) { return _mm256_max_ps(best, x); }
inline __m256 pick8(const Zev8u* m, __m256 x, __m256 keep) {
    __m128i off = _mm_cmpeq_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(m)), _mm_setzero_si128());
    __m256 offv = _mm256_castsi256_ps(_mm256_cvtepi8_epi32(off));
    return _mm256_blendv_ps(x, keep, offv);
}
inline __m128 half(__m256 v, int i) { return i ? _mm256_extractf128_ps(v, 1) : _mm256_castps256_ps128(v); }
inline __m256 withLane0(__m256 v, __m128 lo) { return _mm256_blend_ps(v, _mm256_castps128_ps256(lo), 1); }
#endif

// Fold: lanes j and j + 4, then j and j + 2, then 0 and 1.
template <class Op>
inline float fold8(__m128 a, __m128 b, Op op) {
    __m128 v = op(a, b);
    v = op(v, _mm_movehl_ps(v, v));
    return _mm_cvtss_f32(op(v, _mm_shuffle_ps(v, v, 1)));
}

template <int Bytes, bool Masked>
MinMaxStage<float> stage32f(const float* src, int srcStep, const Zev8u* mask, int maskStep, int width,
                            int height) {
    using V = std::conditional_t<Bytes == 16, F8x2, Reg<float, Bytes>>;
    MinMaxStage<float> r;
    int y = r.template start<Masked>(mask, maskStep, width, height);
    V lo = splat8(MinMaxLimits<float>::lo(), V{}), hi = splat8(MinMaxLimits<float>::hi(), V{});
    auto mn = [](__m128 b, __m128 x) { return _mm_min_ps(b, x); };
    auto mx = [](__m128 b, __m128 x) { return _mm_max_ps(b, x); };
    for (; y < height; ++y) {
        const float* p = stat::rowAt(src, srcStep, y);
        const Zev8u* m = Masked ? stat::rowAt(mask, maskStep, y) : nullptr;
        int x = 0;
        for (; x + 8 <= width; x += 8) {
            V v = load8f(p + x, V{});
            if constexpr (Masked) {
                lo = min8(lo, pick8(m + x, v, lo));
                hi = max8(hi, pick8(m + x, v, hi));
            } else {
                lo = min8(lo, v);
                hi = max8(hi, v);
            }
        }
        if (x < width) {
            __m128 l0 = half(lo, 0), h0 = half(hi, 0);
            for (; x < width; ++x) {
                if (Masked && !m[x]) continue;
                __m128 v = _mm_set_ss(p[x]);
                l0 = _mm_min_ss(l0, v);
                h0 = _mm_max_ss(h0, v);
            }
            lo = withLane0(lo, l0);
            hi = withLane0(hi, h0);
        }
        float rowMin = fold8(half(lo, 0), half(lo, 1), mn);
        float rowMax = fold8(half(hi, 0), half(hi, 1), mx);
        r.take(rowMin, y, rowMax, y);
    }
    return r;
}

template <int Bytes, class T, class L, bool Masked>
MinMaxStage<T> stage(const T* src, int srcStep, const Zev8u* mask, int maskStep, int width, int height) {
    if constexpr (std::is_same_v<T, float>) return stage32f<Bytes, Masked>(src, srcStep, mask, maskStep, width, height);
    else return stage8u<Bytes, L, Masked>(src, srcStep, mask, maskStep, width, height);
}

}  // namespace
}  // namespace v8::ZEV_ISA
