// Arithmetic policies for the fused fixed-filter kernels. One kernel formula is
// written once against a policy and instantiated for plain scalars (border and
// tail columns) and for 16- or 32-byte registers. Integer policies compute in
// 16-bit lanes that wrap; the scalar integer policy computes exactly in int and
// the store keeps the low 16 bits, which is the same number.
#pragma once

#include <immintrin.h>

#include <cmath>
#include <cstdint>

#include "zevcv.h"

// Everything here lives in the instruction level's own namespace and calls
// intrinsics only: no inline function is shared with files built for another
// level, so the linker cannot hand one level's copy to another.
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
    static V load(const Zev32f* p) { return *p; }
    static void store(Zev32f* p, V v) { *p = v; }
};

// ---------------------------------------------------------------- registers
// Register wrappers by width: RI are 16-bit integer lanes, RF float lanes.

#define FIXED_INT16_OPS(RI, pre, N_, LOADU, STOREU)                                           \
    using V = RI;                                                                             \
    static constexpr int N = N_;                                                              \
    static V add(V a, V b) { return pre##_add_epi16(a, b); }                                 \
    static V sub(V a, V b) { return pre##_sub_epi16(a, b); }                                 \
    static V neg(V a) { return pre##_sub_epi16(V{}, a); }                                    \
    template <int k>                                                                          \
    static V mul(V a) {                                                                       \
        if constexpr (k == 1) return a;                                                       \
        else if constexpr (k == -1) return neg(a);                                            \
        else if constexpr (k == 2) return pre##_add_epi16(a, a);                             \
        else if constexpr (k == 4) return pre##_slli_epi16(a, 2);                            \
        else return pre##_mullo_epi16(a, pre##_set1_epi16(static_cast<short>(k)));           \
    }                                                                                         \
    static V load(const Zev16s* p) { return LOADU(reinterpret_cast<const V*>(p)); }           \
    static void store(Zev16s* p, V v) { STOREU(reinterpret_cast<V*>(p), v); }

#define FIXED_FLOAT_OPS(RF, pre, N_)                                                          \
    using V = RF;                                                                             \
    static constexpr int N = N_;                                                              \
    static V add(V a, V b) { return pre##_add_ps(a, b); }                                    \
    static V sub(V a, V b) { return pre##_sub_ps(a, b); }                                    \
    static V neg(V a) { return pre##_xor_ps(a, pre##_set1_ps(-0.0f)); }                     \
    template <int k>                                                                          \
    static V mul(V a) {                                                                       \
        if constexpr (k == 1) return a;                                                       \
        else if constexpr (k == -1) return neg(a);                                            \
        else return pre##_mul_ps(a, pre##_set1_ps(static_cast<float>(k)));                   \
    }                                                                                         \
    static V mul(V a, float k) { return pre##_mul_ps(a, pre##_set1_ps(k)); }                 \
    static V mul(V a, V k) { return pre##_mul_ps(a, k); }                                    \
    static V load1(float v) { return pre##_set1_ps(v); }                                      \
    static V load(const Zev32f* p) { return pre##_loadu_ps(p); }                              \
    static void store(Zev32f* p, V v) { pre##_storeu_ps(p, v); }

struct VecI16x8 {
    FIXED_INT16_OPS(__m128i, _mm, 8, _mm_loadu_si128, _mm_storeu_si128)
    // Eight bytes widened to eight 16-bit lanes.
    static V load(const Zev8u* p) {
        return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)), _mm_setzero_si128());
    }
};
struct VecF32x4 {
    FIXED_FLOAT_OPS(__m128, _mm, 4)
};

#ifdef __AVX2__
struct VecI16x16 {
    FIXED_INT16_OPS(__m256i, _mm256, 16, _mm256_loadu_si256, _mm256_storeu_si256)
    static V load(const Zev8u* p) { return _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))); }
};
struct VecF32x8 {
    FIXED_FLOAT_OPS(__m256, _mm256, 8)
};
#endif

#ifdef __AVX512BW__
struct VecI16x32 {
    FIXED_INT16_OPS(__m512i, _mm512, 32, _mm512_loadu_si512, _mm512_storeu_si512)
    static V load(const Zev8u* p) { return _mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p))); }
};
struct VecF32x16 {
    FIXED_FLOAT_OPS(__m512, _mm512, 16)
};
#endif

#undef FIXED_INT16_OPS
#undef FIXED_FLOAT_OPS

}  // namespace v8::fixed::FIXED_ISA
