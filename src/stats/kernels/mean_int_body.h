// The 8-bit one-channel sum kernel, generic over the register width; included
// once per instruction-set file after defining ZEV_ISA. Sums are exact, so the
// lanes may be combined in any order: byte sums by sums of absolute differences
// against zero, squares by multiply-add of word pairs into 32-bit lanes, which
// are flushed before they could overflow.
#include <cstdint>

#include "frame/kernels/simd.h"
#include "stats/kernels/mean.h"
#include "stats/kernels/stat_pixels_body.h"

namespace v8::ZEV_ISA {
namespace {

using namespace v8::simd;

inline __m128i zero(__m128i) { return _mm_setzero_si128(); }
inline __m128i sad0(__m128i v) { return _mm_sad_epu8(v, _mm_setzero_si128()); }
inline __m128i add64(__m128i a, __m128i b) { return _mm_add_epi64(a, b); }
inline __m128i add32(__m128i a, __m128i b) { return _mm_add_epi32(a, b); }
// Sum of squares of all bytes, in 32-bit lanes (four squares per lane).
inline __m128i squares(__m128i v) {
    __m128i z = _mm_setzero_si128();
    __m128i lo = _mm_unpacklo_epi8(v, z), hi = _mm_unpackhi_epi8(v, z);
    return _mm_add_epi32(_mm_madd_epi16(lo, lo), _mm_madd_epi16(hi, hi));
}
// Selected bytes kept, others zero; sel gets 1 per selected byte.
inline __m128i select(__m128i v, __m128i m, __m128i& sel) {
    __m128i off = _mm_cmpeq_epi8(m, _mm_setzero_si128());
    sel = _mm_andnot_si128(off, _mm_set1_epi8(1));
    return _mm_andnot_si128(off, v);
}
inline std::uint64_t hsum64(__m128i v) {
    alignas(16) std::uint64_t a[2];
    _mm_store_si128(reinterpret_cast<__m128i*>(a), v);
    return a[0] + a[1];
}
inline std::uint64_t hsum32(__m128i v) {
    alignas(16) std::uint32_t a[4];
    _mm_store_si128(reinterpret_cast<__m128i*>(a), v);
    return std::uint64_t{a[0]} + a[1] + a[2] + a[3];
}
#ifdef __AVX2__
inline __m256i zero(__m256i) { return _mm256_setzero_si256(); }
inline __m256i sad0(__m256i v) { return _mm256_sad_epu8(v, _mm256_setzero_si256()); }
inline __m256i add64(__m256i a, __m256i b) { return _mm256_add_epi64(a, b); }
inline __m256i add32(__m256i a, __m256i b) { return _mm256_add_epi32(a, b); }
inline __m256i squares(__m256i v) {
    __m256i z = _mm256_setzero_si256();
    __m256i lo = _mm256_unpacklo_epi8(v, z), hi = _mm256_unpackhi_epi8(v, z);
    return _mm256_add_epi32(_mm256_madd_epi16(lo, lo), _mm256_madd_epi16(hi, hi));
}
inline __m256i select(__m256i v, __m256i m, __m256i& sel) {
    __m256i off = _mm256_cmpeq_epi8(m, _mm256_setzero_si256());
    sel = _mm256_andnot_si256(off, _mm256_set1_epi8(1));
    return _mm256_andnot_si256(off, v);
}
inline std::uint64_t hsum64(__m256i v) {
    return hsum64(_mm256_castsi256_si128(v)) + hsum64(_mm256_extracti128_si256(v, 1));
}
inline std::uint64_t hsum32(__m256i v) {
    return hsum32(_mm256_castsi256_si128(v)) + hsum32(_mm256_extracti128_si256(v, 1));
}
#endif

// A 32-bit square lane gains at most 4 * 255^2 per register step.
constexpr int kFlushSteps = 8192;

template <int Bytes, class L, bool Masked>
IntSums sumSq8u(const std::uint8_t* src, int srcStep, const std::uint8_t* mask, int maskStep, int width, int height) {
    using V = Reg<std::uint8_t, Bytes>;
    // Vector steps end where the last load would still lie inside the row.
    const int vecEnd = width - kSparePixels<L>;
    std::uint64_t sum = 0, sq = 0, count = 0;
    for (int y = 0; y < height; ++y) {
        const std::uint8_t* p = stat::rowAt(src, srcStep, y);
        const std::uint8_t* m = Masked ? stat::rowAt(mask, maskStep, y) : nullptr;
        int x = 0;
        while (x + Bytes <= vecEnd) {
            V s = zero(V{}), q = zero(V{}), c = zero(V{});
            const int end = vecEnd - x > kFlushSteps * Bytes ? x + kFlushSteps * Bytes : vecEnd;
            for (; x + 2 * Bytes <= end; x += 2 * Bytes) {
                V v0 = loadPixels(p, x, L{}, V{}), v1 = loadPixels(p, x + Bytes, L{}, V{});
                if constexpr (Masked) {
                    V c0, c1;
                    v0 = select(v0, load<V>(m + x), c0);
                    v1 = select(v1, load<V>(m + x + Bytes), c1);
                    c = add64(c, sad0(c0));
                    c = add64(c, sad0(c1));
                }
                s = add64(s, add64(sad0(v0), sad0(v1)));
                q = add32(q, add32(squares(v0), squares(v1)));
            }
            for (; x + Bytes <= end; x += Bytes) {
                V v = loadPixels(p, x, L{}, V{});
                if constexpr (Masked) {
                    V c0;
                    v = select(v, load<V>(m + x), c0);
                    c = add64(c, sad0(c0));
                }
                s = add64(s, sad0(v));
                q = add32(q, squares(v));
            }
            sum += hsum64(s);
            sq += hsum32(q);
            if constexpr (Masked) count += hsum64(c);
        }
        for (; x < width; ++x) {
            std::uint32_t v = p[x * L::ch];
            if constexpr (Masked) {
                if (!m[x]) continue;
                ++count;
            }
            sum += v;
            sq += v * v;
        }
    }
    IntSums r;
    r.sum = static_cast<std::int64_t>(sum);
    r.sq = sq;
    r.count = Masked ? static_cast<std::int32_t>(count) : 0;
    return r;
}

}  // namespace
}  // namespace v8::ZEV_ISA
