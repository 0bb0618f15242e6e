// Thin overloads over the vector registers, so that one kernel template can be
// instantiated for 16-byte (SSSE3) and, in files built for it, 32-byte (AVX2)
// registers. Overloads pick the instruction by register type.
#pragma once

#include <immintrin.h>

// Vector types as template arguments drop their alignment attributes; harmless here.
#pragma GCC diagnostic ignored "-Wignored-attributes"

#include <cstdint>
#include <type_traits>

// Files built for wider instruction sets get their own copies of these inline
// helpers, so that the linker cannot hand an SSSE3 caller an out-of-line copy
// compiled with AVX instructions (as at -O0).
#if defined(__AVX512F__)
#define ZEV_SIMD_ISA isa_avx512
#elif defined(__AVX2__)
#define ZEV_SIMD_ISA isa_avx2
#else
#define ZEV_SIMD_ISA isa_sse
#endif

namespace v8::simd {
inline namespace ZEV_SIMD_ISA {

// Register type holding elements of T, for a register width in bytes. (The
// vector types' alignment attributes do not matter to a type choice.)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wignored-attributes"
template <class T, int Bytes>
struct RegOf;
template <class T>
struct RegOf<T, 16> { using type = std::conditional_t<std::is_same_v<T, float>, __m128, __m128i>; };
template <>
struct RegOf<double, 16> { using type = __m128d; };
#ifdef __AVX2__
template <class T>
struct RegOf<T, 32> { using type = std::conditional_t<std::is_same_v<T, float>, __m256, __m256i>; };
template <>
struct RegOf<double, 32> { using type = __m256d; };
#endif
template <class T, int Bytes>
using Reg = typename RegOf<T, Bytes>::type;
#pragma GCC diagnostic pop

template <class V> V load(const void* p);    // any alignment
template <class V> V loada(const void* p);   // aligned to the register width
template <> inline __m128i load<__m128i>(const void* p) { return _mm_loadu_si128(static_cast<const __m128i*>(p)); }
template <> inline __m128i loada<__m128i>(const void* p) { return _mm_load_si128(static_cast<const __m128i*>(p)); }
template <> inline __m128 load<__m128>(const void* p) { return _mm_loadu_ps(static_cast<const float*>(p)); }
template <> inline __m128 loada<__m128>(const void* p) { return _mm_load_ps(static_cast<const float*>(p)); }
template <> inline __m128d load<__m128d>(const void* p) { return _mm_loadu_pd(static_cast<const double*>(p)); }
template <> inline __m128d loada<__m128d>(const void* p) { return _mm_load_pd(static_cast<const double*>(p)); }

inline void store(void* p, __m128i v) { _mm_storeu_si128(static_cast<__m128i*>(p), v); }
inline void storea(void* p, __m128i v) { _mm_store_si128(static_cast<__m128i*>(p), v); }
inline void stream(void* p, __m128i v) { _mm_stream_si128(static_cast<__m128i*>(p), v); }
inline void store(void* p, __m128 v) { _mm_storeu_ps(static_cast<float*>(p), v); }
inline void storea(void* p, __m128 v) { _mm_store_ps(static_cast<float*>(p), v); }
inline void stream(void* p, __m128 v) { _mm_stream_ps(static_cast<float*>(p), v); }
inline void store(void* p, __m128d v) { _mm_storeu_pd(static_cast<double*>(p), v); }
inline void storea(void* p, __m128d v) { _mm_store_pd(static_cast<double*>(p), v); }
inline void stream(void* p, __m128d v) { _mm_stream_pd(static_cast<double*>(p), v); }

// Low 8 bytes only.
inline __m128i load8(const void* p) { return _mm_loadl_epi64(static_cast<const __m128i*>(p)); }
inline void store8(void* p, __m128i v) { _mm_storel_epi64(static_cast<__m128i*>(p), v); }

template <class V, class T> V splat(T v);
template <> inline __m128i splat<__m128i>(std::uint8_t v) { return _mm_set1_epi8(static_cast<char>(v)); }
template <> inline __m128i splat<__m128i>(std::uint16_t v) { return _mm_set1_epi16(static_cast<short>(v)); }
template <> inline __m128 splat<__m128>(float v) { return _mm_set1_ps(v); }
template <> inline __m128d splat<__m128d>(double v) { return _mm_set1_pd(v); }
template <> inline __m128i splat<__m128i>(std::int16_t v) { return _mm_set1_epi16(v); }
template <> inline __m128i splat<__m128i>(std::int32_t v) { return _mm_set1_epi32(v); }

#ifdef __AVX2__
template <> inline __m256i load<__m256i>(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
template <> inline __m256i loada<__m256i>(const void* p) { return _mm256_load_si256(static_cast<const __m256i*>(p)); }
template <> inline __m256 load<__m256>(const void* p) { return _mm256_loadu_ps(static_cast<const float*>(p)); }
template <> inline __m256 loada<__m256>(const void* p) { return _mm256_load_ps(static_cast<const float*>(p)); }
inline void store(void* p, __m256i v) { _mm256_storeu_si256(static_cast<__m256i*>(p), v); }
inline void storea(void* p, __m256i v) { _mm256_store_si256(static_cast<__m256i*>(p), v); }
inline void stream(void* p, __m256i v) { _mm256_stream_si256(static_cast<__m256i*>(p), v); }
inline void store(void* p, __m256 v) { _mm256_storeu_ps(static_cast<float*>(p), v); }
inline void storea(void* p, __m256 v) { _mm256_store_ps(static_cast<float*>(p), v); }
inline void stream(void* p, __m256 v) { _mm256_stream_ps(static_cast<float*>(p), v); }
template <> inline __m256d load<__m256d>(const void* p) { return _mm256_loadu_pd(static_cast<const double*>(p)); }
template <> inline __m256d loada<__m256d>(const void* p) { return _mm256_load_pd(static_cast<const double*>(p)); }
inline void store(void* p, __m256d v) { _mm256_storeu_pd(static_cast<double*>(p), v); }
inline void storea(void* p, __m256d v) { _mm256_store_pd(static_cast<double*>(p), v); }
inline void stream(void* p, __m256d v) { _mm256_stream_pd(static_cast<double*>(p), v); }
template <> inline __m256i splat<__m256i>(std::uint8_t v) { return _mm256_set1_epi8(static_cast<char>(v)); }
template <> inline __m256i splat<__m256i>(std::uint16_t v) { return _mm256_set1_epi16(static_cast<short>(v)); }
template <> inline __m256 splat<__m256>(float v) { return _mm256_set1_ps(v); }
#endif

// Does the processor run the AVX2 kernels?
inline bool hasAvx2() { return __builtin_cpu_supports("avx2"); }

// All of these pointers and steps multiples of 16?
inline std::uintptr_t addrBits(const void* p) { return reinterpret_cast<std::uintptr_t>(p); }
inline std::uintptr_t addrBits(int step) { return static_cast<std::uintptr_t>(static_cast<unsigned>(step)); }
template <class... A>
inline bool aligned16(A... a) {
    return ((addrBits(a) | ... | std::uintptr_t{0}) & 15) == 0;
}

}  // namespace ZEV_SIMD_ISA
}  // namespace v8::simd
