// Loading the pixels of one channel into a register, for the 8-bit vector
// kernels of the statistics; included by their bodies after ZEV_ISA is defined,
// so that each instruction set gets its own copy.
#pragma once

#include <immintrin.h>

#include <cstdint>

#include "frame/kernels/simd.h"
#include "stats/kernels/stat_common.h"

namespace v8::ZEV_ISA {
namespace {

// Pixels x .. x + 15 of a one-channel row.
inline __m128i loadPixels(const std::uint8_t* p, int x, stat::C1, __m128i) { return simd::load<__m128i>(p + x); }
// Pixels x .. x + 15 of one channel of three: 48 bytes from the channel's
// element of pixel x, sorted out by byte shuffles. The last load ends two bytes
// past pixel x + 15, so a loop keeps kSparePixels pixels behind it.
inline __m128i loadPixels(const std::uint8_t* p, int x, stat::C3C, __m128i) {
    const std::uint8_t* q = p + 3 * x;
    const __m128i a = simd::load<__m128i>(q), b = simd::load<__m128i>(q + 16), c = simd::load<__m128i>(q + 32);
    const __m128i ma = _mm_setr_epi8(0, 3, 6, 9, 12, 15, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1);
    const __m128i mb = _mm_setr_epi8(-1, -1, -1, -1, -1, -1, 2, 5, 8, 11, 14, -1, -1, -1, -1, -1);
    const __m128i mc = _mm_setr_epi8(-1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, 1, 4, 7, 10, 13);
    return _mm_or_si128(_mm_or_si128(_mm_shuffle_epi8(a, ma), _mm_shuffle_epi8(b, mb)), _mm_shuffle_epi8(c, mc));
}
#ifdef __AVX2__
inline __m256i loadPixels(const std::uint8_t* p, int x, stat::C1, __m256i) { return simd::load<__m256i>(p + x); }
#endif

// Pixels a vector loop leaves unread at the row's end, so that no load passes it.
template <class L>
constexpr int kSparePixels = L::ch == 1 ? 0 : 1;

}  // namespace
}  // namespace v8::ZEV_ISA
