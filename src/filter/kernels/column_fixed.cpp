// Fixed-weight column routines. Each kernel's formula is written once, over a
// value type; the same text gives the 16-bit vector form, its scalar tail and
// the float forms, so vector and tail columns cannot drift apart.
#include "filter/kernels/column_fixed.h"

#include <immintrin.h>

#include <cstdint>

#include "filter/kernels/pipe_simd.h"

namespace v8 {
namespace {

// ---------------------------------------------------------------- value types

struct VI {  // eight 16-bit lanes, wrapping
    __m128i v;
};
inline VI operator+(VI a, VI b) { return {_mm_add_epi16(a.v, b.v)}; }
inline VI operator-(VI a, VI b) { return {_mm_sub_epi16(a.v, b.v)}; }
inline VI operator-(VI a) { return {_mm_sub_epi16(_mm_setzero_si128(), a.v)}; }
inline VI operator*(VI a, int c) { return {_mm_mullo_epi16(a.v, _mm_set1_epi16(static_cast<short>(c)))}; }

struct SI {  // one 16-bit value, wrapping
    std::int16_t v;
};
inline SI operator+(SI a, SI b) { return {static_cast<std::int16_t>(a.v + b.v)}; }
inline SI operator-(SI a, SI b) { return {static_cast<std::int16_t>(a.v - b.v)}; }
inline SI operator-(SI a) { return {static_cast<std::int16_t>(-a.v)}; }
inline SI operator*(SI a, int c) { return {static_cast<std::int16_t>(a.v * c)}; }

struct VF {  // four floats
    __m128 v;
};
inline VF operator+(VF a, VF b) { return {_mm_add_ps(a.v, b.v)}; }
inline VF operator-(VF a, VF b) { return {_mm_sub_ps(a.v, b.v)}; }
inline VF operator-(VF a) { return {_mm_xor_ps(a.v, _mm_set1_ps(-0.0f))}; }
inline VF operator*(VF a, float c) { return {_mm_mul_ps(a.v, _mm_set1_ps(c))}; }
inline VF operator*(VF a, int c) { return a * static_cast<float>(c); }

struct SF {
    float v;
};
inline SF operator+(SF a, SF b) { return {a.v + b.v}; }
inline SF operator-(SF a, SF b) { return {a.v - b.v}; }
inline SF operator-(SF a) { return {-a.v}; }
inline SF operator*(SF a, float c) { return {a.v * c}; }
inline SF operator*(SF a, int c) { return a * static_cast<float>(c); }

// ---------------------------------------------------------------- formulas

// r: rows of the window; b: the same rows' second plane (Laplacian only).
template <int Taps, bool Accumulate = false, int Planes = 1>
struct Formula {
    static constexpr int K = Taps;
    static constexpr bool kAccumulate = Accumulate;
    static constexpr int kPlanes = Planes;
};
struct Scharr3 : Formula<3> {
    template <class V>
    static V f(const V* r, const V*) {
        return r[0] * 3 + r[1] * 10 + r[2] * 3;
    }
};
struct Dx3 : Formula<3> {
    template <class V>
    static V f(const V* r, const V*) {
        return r[2] - r[0];
    }
};
struct Sobel3 : Formula<3> {
    template <class V>
    static V f(const V* r, const V*) {
        return r[0] + r[1] * 2 + r[2];
    }
};
struct Sobel5 : Formula<5> {
    template <class V>
    static V f(const V* r, const V*) {
        return r[0] + r[1] * 4 + r[2] * 6 + r[3] * 4 + r[4];
    }
};
struct Dx5 : Formula<5> {
    template <class V>
    static V f(const V* r, const V*) {
        return r[4] - r[0] + (r[3] - r[1]) * 2;
    }
};
struct Dx2_3 : Formula<3> {
    template <class V>
    static V f(const V* r, const V*) {
        return r[0] - r[1] * 2 + r[2];
    }
};
struct Dx2_5 : Formula<5> {
    template <class V>
    static V f(const V* r, const V*) {
        return r[0] - r[2] * 2 + r[4];
    }
};
struct Lap3 : Formula<3, false, 2> {
    template <class V>
    static V f(const V* a, const V* b) {
        return (a[0] + a[2]) * 2 - b[1];
    }
};
struct Lap5 : Formula<5, true> {
    template <class V>
    static V f(const V* r, const V* b) {
        return Sobel5::f(r, b);
    }
};
struct SobelNeg3 : Formula<3> {
    template <class V>
    static V f(const V* r, const V* b) {
        return -Sobel3::f(r, b);
    }
};
struct SobelNeg5 : Formula<5> {
    template <class V>
    static V f(const V* r, const V* b) {
        return -Sobel5::f(r, b);
    }
};
struct Avr3 : Formula<3> {
    template <class V>
    static V f(const V* r, const V*) {
        return (r[0] + r[1] + r[2]) * 0.11111111f;
    }
};
struct Avr5 : Formula<5> {
    template <class V>
    static V f(const V* r, const V*) {
        return (r[0] + r[1] + r[2] + r[3] + r[4]) * 0.04f;
    }
};
// The 16-bit sums of Lowpass; the scaling is the output's.
struct Sum3 : Formula<3> {
    template <class V>
    static V f(const V* r, const V*) {
        return r[0] + r[1] + r[2];
    }
};
struct Sum5 : Formula<5> {
    template <class V>
    static V f(const V* r, const V*) {
        return r[0] + r[1] + r[2] + r[3] + r[4];
    }
};

// ---------------------------------------------------------------- outputs

// Loads and stores of the value types, so that one output serves both.
inline VI vloadOf(const Zev16s* p) { return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))}; }
inline VF vloadOf(const Zev32f* p) { return {_mm_loadu_ps(p)}; }
inline void vstoreOf(Zev16s* d, VI v, bool stream) {
    if (stream && (reinterpret_cast<std::uintptr_t>(d) & 15) == 0)
        _mm_stream_si128(reinterpret_cast<__m128i*>(d), v.v);
    else
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d), v.v);
}
inline void vstoreOf(Zev32f* d, VF v, bool) { _mm_storeu_ps(d, v.v); }
template <class T>
struct ValuesOf;
template <>
struct ValuesOf<Zev16s> {
    using V = VI;
    using S = SI;
    static constexpr int L = 8;
};
template <>
struct ValuesOf<Zev32f> {
    using V = VF;
    using S = SF;
    static constexpr int L = 4;
};

// Values stored as they are, or added to what dst holds (16-bit: wrapping).
template <class T>
struct OutPlain {
    using Src = T;
    using Dst = T;
    using V = typename ValuesOf<T>::V;
    using S = typename ValuesOf<T>::S;
    static constexpr int L = ValuesOf<T>::L;
    bool stream = false;
    int vectorColumns(int w) const { return w; }
    static V vload(const Src* p) { return vloadOf(p); }
    static S sload(const Src* p) { return {*p}; }
    template <bool Acc>
    void vstore(Dst* d, V v) const {
        vstoreOf(d, Acc ? vloadOf(d) + v : v, stream);
    }
    template <bool Acc>
    void smid(Dst* d, S s) const {
        *d = Acc ? (S{*d} + s).v : s.v;
    }
    template <bool Acc>
    void stail(Dst* d, S s) const {
        smid<Acc>(d, s);
    }
};

// The wrapped sum scaled by 1/divisor into 8 signed bits.
struct Out8s {
    using Src = Zev16s;
    using Dst = Zev8s;
    using V = VI;
    using S = SI;
    static constexpr int L = 8;
    float inv;
    int vectorColumns(int w) const { return w & ~3; }
    static V vload(const Src* p) { return vloadOf(p); }
    static S sload(const Src* p) { return {*p}; }
    template <bool>
    void vstore(Dst* d, V v) const {
        // s << 16 against 2^-16 * inv: the same products as s against inv.
        const __m128 c = _mm_set1_ps(1.5258789e-5f * inv);
        const __m128i z = _mm_setzero_si128();
        __m128 lo = _mm_mul_ps(_mm_cvtepi32_ps(_mm_unpacklo_epi16(z, v.v)), c);
        __m128 hi = _mm_mul_ps(_mm_cvtepi32_ps(_mm_unpackhi_epi16(z, v.v)), c);
        __m128i r = pipe::roundPack(lo, hi);
        _mm_storel_epi64(reinterpret_cast<__m128i*>(d), _mm_packs_epi16(r, r));
    }
    template <bool>
    void smid(Dst* d, S s) const {
        int v = pipe::roundSat16(static_cast<float>(s.v * 65536) * (1.5258789e-5f * inv));
        *d = static_cast<Dst>(v < -128 ? -128 : (v > 127 ? 127 : v));
    }
    template <bool>
    void stail(Dst* d, S s) const {
        *d = static_cast<Dst>(pipe::truncClamp(static_cast<float>(s.v) * inv, -128.0f, 127.0f));
    }
};

// Lowpass sums to 8 bits: (s + bias) * mul >> 16, clamped to 0..255.
template <int Bias, int Mul>
struct OutAvr8u {
    using Src = Zev16s;
    using Dst = Zev8u;
    using V = VI;
    using S = SI;
    static constexpr int L = 8;
    int vectorColumns(int w) const { return w; }
    static V vload(const Src* p) { return vloadOf(p); }
    static S sload(const Src* p) { return {*p}; }
    template <bool>
    void vstore(Dst* d, V v) const {
        __m128i t = _mm_mulhi_epi16(_mm_add_epi16(v.v, _mm_set1_epi16(Bias)), _mm_set1_epi16(Mul));
        _mm_storel_epi64(reinterpret_cast<__m128i*>(d), _mm_packus_epi16(t, t));
    }
    template <bool>
    void smid(Dst* d, S s) const {
        int t = (static_cast<std::int16_t>(s.v + Bias) * Mul) >> 16;
        *d = static_cast<Dst>(t < 0 ? 0 : (t > 255 ? 255 : t));
    }
    template <bool A>
    void stail(Dst* d, S s) const {
        smid<A>(d, s);
    }
};

// ---------------------------------------------------------------- driver

template <class Fm, class Out>
void columnRows(const typename Out::Src* const* src, typename Out::Dst* dst, int dstStep, int width, int rows,
                const Out& out) {
    constexpr int K = Fm::K;
    const int plane = Fm::kPlanes == 2 ? ((width + 7) & ~7) : 0;
    const int nVec = out.vectorColumns(width);
    for (int y = 0; y < rows; ++y) {
        const typename Out::Src* const* r = src + y;
        auto* d = reinterpret_cast<typename Out::Dst*>(reinterpret_cast<std::uint8_t*>(dst) +
                                                       static_cast<std::ptrdiff_t>(y) * dstStep);
        int e = 0;
        for (; e + Out::L <= nVec; e += Out::L) {
            typename Out::V a[K], b[K];
            for (int j = 0; j < K; ++j) {
                a[j] = Out::vload(r[j] + e);
                if (Fm::kPlanes == 2) b[j] = Out::vload(r[j] + plane + e);
            }
            out.template vstore<Fm::kAccumulate>(d + e, Fm::f(a, b));
        }
        for (; e < width; ++e) {
            typename Out::S a[K], b[K];
            for (int j = 0; j < K; ++j) {
                a[j] = Out::sload(r[j] + e);
                if (Fm::kPlanes == 2) b[j] = Out::sload(r[j] + plane + e);
            }
            if (e < nVec)
                out.template smid<Fm::kAccumulate>(d + e, Fm::f(a, b));
            else
                out.template stail<Fm::kAccumulate>(d + e, Fm::f(a, b));
        }
    }
}

template <class Fm>
void col8u16s(const Zev16s* const* src, Zev16s* dst, int dstStep, int width, int rows, int inCache) {
    columnRows<Fm>(src, dst, dstStep, width, rows, OutPlain<Zev16s>{inCache == 0});
    if (inCache == 0) _mm_sfence();
}
template <class Fm>
void col8u8s(const Zev16s* const* src, Zev8s* dst, int dstStep, int width, int rows, int divisor, int) {
    columnRows<Fm>(src, dst, dstStep, width, rows, Out8s{1.0f / static_cast<float>(divisor)});
}
template <class Fm, int Bias, int Mul>
void col8u(const Zev16s* const* src, Zev8u* dst, int dstStep, int width, int rows, int) {
    columnRows<Fm>(src, dst, dstStep, width, rows, OutAvr8u<Bias, Mul>{});
}
template <class Fm>
void col32f(const Zev32f* const* src, Zev32f* dst, int dstStep, int width, int rows) {
    columnRows<Fm>(src, dst, dstStep, width, rows, OutPlain<Zev32f>{});
}

}  // namespace

int fixedColumnTaps(int index) {
    static constexpr int taps[kFixedColumnCount] = {3, 3, 3, 5, 5, 3, 5, 3, 5, 3, 5, 3, 5};
    return taps[index];
}

const ColFixedFn_8u16s owntabColumn_8u16s[kFixedColumnCount] = {
    col8u16s<Scharr3>,   col8u16s<Dx3>,       col8u16s<Sobel3>,   col8u16s<Sobel5>, col8u16s<Dx5>,
    col8u16s<Dx2_3>,     col8u16s<Dx2_5>,     col8u16s<Lap3>,     col8u16s<Lap5>,   col8u16s<SobelNeg3>,
    col8u16s<SobelNeg5>, col8u16s<SobelNeg3>, col8u16s<SobelNeg5>};
const ColFixedFn_8u8s owntabColumn_8u8s[kFixedColumnCount] = {
    col8u8s<Scharr3>,   col8u8s<Dx3>,       col8u8s<Sobel3>,   col8u8s<Sobel5>, col8u8s<Dx5>,
    col8u8s<Dx2_3>,     col8u8s<Dx2_5>,     col8u8s<Lap3>,     col8u8s<Lap3>,   col8u8s<SobelNeg3>,
    col8u8s<SobelNeg5>, col8u8s<SobelNeg3>, col8u8s<SobelNeg5>};
const ColFixedFn_8u owntabColumn_8u[2] = {col8u<Sum3, 5, 7280>, col8u<Sum5, 0, 2621>};
const ColFixedFn_32f owntabColumn_32f[kFixedColumnCount] = {
    col32f<Scharr3>, col32f<Dx3>,  col32f<Sobel3>, col32f<Sobel5>, col32f<Dx5>,       col32f<Dx2_3>,    col32f<Dx2_5>,
    col32f<Lap3>,    col32f<Lap5>, col32f<Avr3>,   col32f<Avr5>,   col32f<SobelNeg3>, col32f<SobelNeg5>};

}  // namespace v8
