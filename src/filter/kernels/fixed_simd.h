// Arithmetic policies for the fixed-filter kernels. One kernel formula is
// written once against a policy and instantiated for plain scalars (border and
// tail columns) and for 16- or 32-byte registers. Integer policies compute in
// 16-bit lanes that wrap; the scalar integer policy computes exactly in int and
// the store keeps the low 16 bits, which is the same number.
#pragma once

#include <immintrin.h>

#include <cmath>
#include <cstdint>

#include "frame/kernels/simd.h"
#include "zevcv.h"

#ifndef FIXED_ISA
#error "define FIXED_ISA, the namespace of this instruction level's kernels"
#endif

namespace v8::fixed::FIXED_ISA {

// ---------------------------------------------------------------- scalar

struct ScalarI16 {
    using V = int;
    static constexpr int N = 1;
    static V add(V a, V b) { return a + b; }
    static V sub(V a, V b) { return a - b; }
    static V neg(V a) { return -a; }
    template <int k>
    static V mul(V a) { return k * a; }
    static V load(const Zev8u* p) { return *p; }
    static V load(const Zev16s* p) { return *p; }
    static void store(Zev16s* p, V v) { *p = static_cast<Zev16s>(static_cast<std::uint16_t>(v)); }
};

struct ScalarF32 {
    using V = float;
    static constexpr int N = 1;
    static V add(V a, V b) { return a + b; }
    static V sub(V a, V b) { return a - b; }
    static V neg(V a) { return -a; }
    template <int k>
    static V mul(V a) {
        if constexpr (k == 1) return a;
        else if constexpr (k == -1) return -a;
        else return a * static_cast<float>(k);
    }
    static V scale(V a, float f) { return a * f; }
    static V load(const Zev32f* p) { return *p; }
    static void store(Zev32f* p, V v) { *p = v; }
};

// ---------------------------------------------------------------- 16-byte registers

struct VecI16x8 {
    using V = __m128i;
    static constexpr int N = 8;
    static V add(V a, V b) { return _mm_add_epi16(a, b); }
    static V sub(V a, V b) { return _mm_sub_epi16(a, b); }
    static V neg(V a) { return _mm_sub_epi16(_mm_setzero_si128(), a); }
    template <int k>
    static V mul(V a) {
        if constexpr (k == 1) return a;
        else if constexpr (k == -1) return neg(a);
        else if constexpr (k == 2) return _mm_add_epi16(a, a);
        else if constexpr (k == 4) return _mm_slli_epi16(a, 2);
        else if constexpr (k == 8) return _mm_slli_epi16(a, 3);
        else return _mm_mullo_epi16(a, _mm_set1_epi16(static_cast<short>(k)));
    }
    // Eight bytes widened to eight 16-bit lanes.
    static V load(const Zev8u* p) { return _mm_unpacklo_epi8(simd::load8(p), _mm_setzero_si128()); }
    static V load(const Zev16s* p) { return simd::load<__m128i>(p); }
    static void store(Zev16s* p, V v) { simd::store(p, v); }
    // Lanes as two halves of 32-bit floats, sign kept.
    static __m128 lowF(V v) { return _mm_cvtepi32_ps(_mm_srai_epi32(_mm_unpacklo_epi16(v, v), 16)); }
    static __m128 highF(V v) { return _mm_cvtepi32_ps(_mm_srai_epi32(_mm_unpackhi_epi16(v, v), 16)); }
    // Round to nearest (the default mode), saturate to 16 and then to 8 bits.
    static void storeS8(Zev8s* p, V v, float inv) {
        const __m128 k = _mm_set1_ps(inv);
        __m128i w = _mm_packs_epi32(_mm_cvtps_epi32(_mm_mul_ps(lowF(v), k)), _mm_cvtps_epi32(_mm_mul_ps(highF(v), k)));
        simd::store8(p, _mm_packs_epi16(w, w));
    }
    static void storeU8(Zev8u* p, V v) { simd::store8(p, _mm_packus_epi16(v, v)); }
    static V mulhiU(V a, std::uint16_t k) { return _mm_mulhi_epu16(a, _mm_set1_epi16(static_cast<short>(k))); }
    static V splat16(int k) { return _mm_set1_epi16(static_cast<short>(k)); }
    static V clampLow0(V a) { return _mm_max_epi16(a, _mm_setzero_si128()); }
};

struct VecF32x4 {
    using V = __m128;
    static constexpr int N = 4;
    static V add(V a, V b) { return _mm_add_ps(a, b); }
    static V sub(V a, V b) { return _mm_sub_ps(a, b); }
    static V neg(V a) { return _mm_xor_ps(a, _mm_set1_ps(-0.0f)); }
    template <int k>
    static V mul(V a) {
        if constexpr (k == 1) return a;
        else if constexpr (k == -1) return neg(a);
        else return _mm_mul_ps(a, _mm_set1_ps(static_cast<float>(k)));
    }
    static V scale(V a, float f) { return _mm_mul_ps(a, _mm_set1_ps(f)); }
    static V mul(V a, float f) { return scale(a, f); }
    static V load(const Zev32f* p) { return simd::load<__m128>(p); }
    static void store(Zev32f* p, V v) { simd::store(p, v); }
};

#ifdef __AVX2__
// ---------------------------------------------------------------- 32-byte registers

struct VecI16x16 {
    using V = __m256i;
    static constexpr int N = 16;
    static V add(V a, V b) { return _mm256_add_epi16(a, b); }
    static V sub(V a, V b) { return _mm256_sub_epi16(a, b); }
    static V neg(V a) { return _mm256_sub_epi16(_mm256_setzero_si256(), a); }
    template <int k>
    static V mul(V a) {
        if constexpr (k == 1) return a;
        else if constexpr (k == -1) return neg(a);
        else if constexpr (k == 2) return _mm256_add_epi16(a, a);
        else if constexpr (k == 4) return _mm256_slli_epi16(a, 2);
        else if constexpr (k == 8) return _mm256_slli_epi16(a, 3);
        else return _mm256_mullo_epi16(a, _mm256_set1_epi16(static_cast<short>(k)));
    }
    static V load(const Zev8u* p) { return _mm256_cvtepu8_epi16(simd::load<__m128i>(p)); }
    static V load(const Zev16s* p) { return simd::load<__m256i>(p); }
    static void store(Zev16s* p, V v) { simd::store(p, v); }
    static __m256 lowF(V v) { return _mm256_cvtepi32_ps(_mm256_cvtepi16_epi32(_mm256_castsi256_si128(v))); }
    static __m256 highF(V v) { return _mm256_cvtepi32_ps(_mm256_cvtepi16_epi32(_mm256_extracti128_si256(v, 1))); }
    static void storeS8(Zev8s* p, V v, float inv) {
        const __m256 k = _mm256_set1_ps(inv);
        __m256i w = _mm256_packs_epi32(_mm256_cvtps_epi32(_mm256_mul_ps(lowF(v), k)),
                                       _mm256_cvtps_epi32(_mm256_mul_ps(highF(v), k)));  // lanes interleaved
        w = _mm256_permute4x64_epi64(w, 0xD8);
        __m128i b = _mm_packs_epi16(_mm256_castsi256_si128(w), _mm256_extracti128_si256(w, 1));
        simd::store(p, b);
    }
    static void storeU8(Zev8u* p, V v) {
        __m128i b = _mm_packus_epi16(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1));
        simd::store(p, b);
    }
    static V mulhiU(V a, std::uint16_t k) { return _mm256_mulhi_epu16(a, _mm256_set1_epi16(static_cast<short>(k))); }
    static V splat16(int k) { return _mm256_set1_epi16(static_cast<short>(k)); }
    static V clampLow0(V a) { return _mm256_max_epi16(a, _mm256_setzero_si256()); }
};

struct VecF32x8 {
    using V = __m256;
    static constexpr int N = 8;
    static V add(V a, V b) { return _mm256_add_ps(a, b); }
    static V sub(V a, V b) { return _mm256_sub_ps(a, b); }
    static V neg(V a) { return _mm256_xor_ps(a, _mm256_set1_ps(-0.0f)); }
    template <int k>
    static V mul(V a) {
        if constexpr (k == 1) return a;
        else if constexpr (k == -1) return neg(a);
        else return _mm256_mul_ps(a, _mm256_set1_ps(static_cast<float>(k)));
    }
    static V scale(V a, float f) { return _mm256_mul_ps(a, _mm256_set1_ps(f)); }
    static V mul(V a, float f) { return scale(a, f); }
    static V load(const Zev32f* p) { return simd::load<__m256>(p); }
    static void store(Zev32f* p, V v) { simd::store(p, v); }
};
#endif

}  // namespace v8::fixed::FIXED_ISA
