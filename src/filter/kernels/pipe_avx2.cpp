
#include "filter/kernels/pipe_avx2.h"

#include <immintrin.h>

#include <cstdint>

namespace v8 {

namespace {

// s / 2^n, nearest with ties to even, on 32- or 16-bit lanes.
inline __m256i roundShift32(__m256i s, int n) {
    if (n == 0) return s;
    const __m256i odd = _mm256_and_si256(_mm256_srai_epi32(s, n), _mm256_set1_epi32(1));
    return _mm256_srai_epi32(_mm256_add_epi32(_mm256_add_epi32(s, _mm256_set1_epi32((1 << (n - 1)) - 1)), odd), n);
}
inline __m256i roundShift16(__m256i s, int n) {
    if (n == 0) return s;
    const __m256i odd = _mm256_and_si256(_mm256_srai_epi16(s, n), _mm256_set1_epi16(1));
    const __m256i bias = _mm256_set1_epi16(static_cast<short>((1 << (n - 1)) - 1));
    return _mm256_srai_epi16(_mm256_add_epi16(_mm256_add_epi16(s, bias), odd), n);
}

}  // namespace

int ownRowNarrow8u16s_avx2(const Zev8u* src, int C, Zev16s* dst, int total, const Zev16s* kernel, int K, int shift) {
    int e = 0;
    for (; e + 16 <= total; e += 16) {
        __m256i acc = _mm256_setzero_si256();
        for (int j = 0; j < K; ++j) {
            __m256i x = _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(src + e + j * C)));
            acc = _mm256_add_epi16(acc, _mm256_mullo_epi16(x, _mm256_set1_epi16(kernel[j])));
        }
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + e), roundShift16(acc, shift));
    }
    return e;
}

namespace {

// 16 lanes of 16 bits, saturated, in element order, stored as Dst.
inline void store16(Zev16s* d, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(d), v); }
inline void store16(Zev8u* d, __m256i v) {
    __m256i p = _mm256_permute4x64_epi64(_mm256_packus_epi16(v, v), 0x08);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm256_castsi256_si128(p));
}
inline void store16(Zev8s* d, __m256i v) {
    __m256i p = _mm256_permute4x64_epi64(_mm256_packs_epi16(v, v), 0x08);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm256_castsi256_si128(p));
}

inline __m256i pairOf(const Zev16s* k, int j, int K) {
    std::uint32_t lo = static_cast<std::uint16_t>(k[j]);
    std::uint32_t hi = j + 1 < K ? static_cast<std::uint16_t>(k[j + 1]) : 0u;
    return _mm256_set1_epi32(static_cast<int>(lo | (hi << 16)));
}

}  // namespace

template <class Dst>
int ownColumnExact16s_avx2(const Zev16s* const* rows, Dst* dst, int count, const Zev16s* kernel, int K, int shift) {
    if (K > 16) return 0;
    __m256i pairs[8];
    for (int j = 0; j < K; j += 2) pairs[j / 2] = pairOf(kernel, j, K);
    const __m256i zero = _mm256_setzero_si256();
    int e = 0;
    for (; e + 16 <= count; e += 16) {
        __m256i lo = zero, hi = zero;
        for (int j = 0; j < K; j += 2) {
            __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rows[j] + e));
            __m256i b = j + 1 < K ? _mm256_loadu_si256(reinterpret_cast<const __m256i*>(rows[j + 1] + e)) : zero;
            // Interleaving and packing both stay within 128-bit halves, so the
            // element order comes back as it was.
            lo = _mm256_add_epi32(lo, _mm256_madd_epi16(_mm256_unpacklo_epi16(a, b), pairs[j / 2]));
            hi = _mm256_add_epi32(hi, _mm256_madd_epi16(_mm256_unpackhi_epi16(a, b), pairs[j / 2]));
        }
        store16(dst + e, _mm256_packs_epi32(roundShift32(lo, shift), roundShift32(hi, shift)));
    }
    return e;
}

template <class Dst>
int ownColumnFloat16s_avx2(const Zev16s* const* rows, Dst* dst, int count, const float* weight, int K) {
    const __m256 lo16 = _mm256_set1_ps(-32768.0f), hi16 = _mm256_set1_ps(32767.0f);
    int e = 0;
    for (; e + 16 <= count; e += 16) {
        __m256 lo = _mm256_setzero_ps(), hi = _mm256_setzero_ps();
        for (int j = 0; j < K; ++j) {
            const __m256 c = _mm256_set1_ps(weight[j]);
            const Zev16s* p = rows[j] + e;
            __m256 xl = _mm256_cvtepi32_ps(_mm256_cvtepi16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))));
            __m256 xh =
                _mm256_cvtepi32_ps(_mm256_cvtepi16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 8))));
            if (j == 0) {
                lo = _mm256_mul_ps(xl, c);
                hi = _mm256_mul_ps(xh, c);
            } else {
                lo = _mm256_add_ps(lo, _mm256_mul_ps(xl, c));
                hi = _mm256_add_ps(hi, _mm256_mul_ps(xh, c));
            }
        }
        __m256i il = _mm256_cvtps_epi32(_mm256_min_ps(_mm256_max_ps(lo, lo16), hi16));
        __m256i ih = _mm256_cvtps_epi32(_mm256_min_ps(_mm256_max_ps(hi, lo16), hi16));
        // Packing works within 128-bit halves: restore the element order.
        store16(dst + e, _mm256_permute4x64_epi64(_mm256_packs_epi32(il, ih), 0xD8));
    }
    return e;
}

template int ownColumnFloat16s_avx2<Zev16s>(const Zev16s* const*, Zev16s*, int, const float*, int);
template int ownColumnFloat16s_avx2<Zev8u>(const Zev16s* const*, Zev8u*, int, const float*, int);
template int ownColumnFloat16s_avx2<Zev8s>(const Zev16s* const*, Zev8s*, int, const float*, int);

template int ownColumnExact16s_avx2<Zev16s>(const Zev16s* const*, Zev16s*, int, const Zev16s*, int, int);
template int ownColumnExact16s_avx2<Zev8u>(const Zev16s* const*, Zev8u*, int, const Zev16s*, int, int);
template int ownColumnExact16s_avx2<Zev8s>(const Zev16s* const*, Zev8s*, int, const Zev16s*, int, int);

}  // namespace v8
