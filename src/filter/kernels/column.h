// Column kernels of the separable pipelines: output row y combines source rows
// y .. y+K-1 (kernel[i] on row y+i), no anchor, no border.
//
// Columns fall in two classes. The leading "vector" columns (a multiple of 4 for
// K = 3 and 5, of 16 otherwise) round to nearest even; the remaining tail
// columns truncate. Both are part of the results, whatever the register width.
//
// Internal API:
//   Col16s<Dst>::make(kernel, K, divisor, coefs)   16s rows to 16s, 8u or 8s
//   ColLow16s::make(kernel, K, divisor, coefs)     16-bit wrapping sums, Q14 scale
//   Col32f::make(kernel, K, coefs)                 float sums in tap order
//   ColCoefs                                       read-only coefficient registers,
//                                                  built once per call, shared by threads
//   ownColumnRows<KT>(rule, src, dst, dstStep, W, rows)
//                                        rows outputs of W elements; KT is K when
//                                        it is 3 or 5 (unrolled), else 0
#pragma once

#include <cmath>
#include <cstdint>
#include <type_traits>

#include "filter/kernels/pipe_avx2.h"
#include "filter/kernels/pipe_simd.h"
#include "frame/kernels/simd.h"
#include "zevcv.h"

namespace v8 {

// Coefficient registers; kernels longer than kMaxTaps take the scalar path,
// which gives the same bits.
struct ColCoefs {
    static constexpr int kMaxTaps = 32;
    __m128 f[kMaxTaps];
    __m128i pairs[kMaxTaps / 2];
    __m128i w16[kMaxTaps];
    float w[kMaxTaps];
};

template <class Dst>
struct OutRange;
template <>
struct OutRange<Zev16s> {
    static constexpr float lo = -32768.0f, hi = 32767.0f;
    static Zev16s sat(int v) { return pipe::sat16(v); }
    static __m128i pack(__m128i v16, __m128i) { return v16; }
    static void store(Zev16s* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
};
template <>
struct OutRange<Zev8u> {
    static constexpr float lo = 0.0f, hi = 255.0f;
    static Zev8u sat(int v) { return static_cast<Zev8u>(v < 0 ? 0 : (v > 255 ? 255 : v)); }
    static void store(Zev8u* p, __m128i v16) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm_packus_epi16(v16, v16));
    }
};
template <>
struct OutRange<Zev8s> {
    static constexpr float lo = -128.0f, hi = 127.0f;
    static Zev8s sat(int v) { return static_cast<Zev8s>(v < -128 ? -128 : (v > 127 ? 127 : v)); }
    static void store(Zev8s* p, __m128i v16) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm_packs_epi16(v16, v16));
    }
};

// Leading columns that take the vector rule.
inline int vectorColumns(int W, int K) { return (K == 3 || K == 5) ? (W & ~3) : (W & ~15); }

// ---------------------------------------------------------------- 16s rows

template <class Dst>
struct Col16s {
    using Src = Zev16s;
    static constexpr int kLanes = 8;
    const Zev16s* k;
    int K;
    float inv;
    int shift;   // divisor 2^shift and every partial sum exact in float: integer sums and a rounding shift; else -1
    bool simd;
    const ColCoefs* c;
    bool wide = false;  // shift >= 0, and the processor runs the 32-byte kernel

    static Col16s make(const Zev16s* kernel, int K, int divisor, ColCoefs* coefs) {
        Col16s r{kernel, K, 1.0f / static_cast<float>(divisor), -1, K <= ColCoefs::kMaxTaps, coefs};
        float sumAbs = 0.0f;
        for (int j = 0; j < K; ++j) sumAbs += std::fabs(static_cast<float>(kernel[j]));
        r.shift = sumAbs * 32768.0f < 16777216.0f ? pipe::pow2Shift(divisor) : -1;
        r.wide = simd::hasAvx2() && (r.shift >= 0 || K <= ColCoefs::kMaxTaps);
        if (r.simd) {
            // Each row enters as x << 16 against kernel * 2^-16 * inv: the same
            // products as x against kernel * inv, since both scalings are exact.
            for (int j = 0; j < K; ++j) coefs->f[j] = _mm_set1_ps(coefs->w[j] = r.weight(j));
            pipe::makePairs(kernel, K, coefs->pairs);
        }
        return r;
    }
    int bulk(const Src* const* rows, Dst* dst, int count) const {
        if (!wide) return 0;
        if (shift >= 0) return ownColumnExact16s_avx2(rows, dst, count, k, K, shift);
        return ownColumnFloat16s_avx2(rows, dst, count, c->w, K);
    }
    float weight(int j) const { return ((static_cast<float>(k[j]) * 1.5258789e-5f) * inv) * 65536.0f; }

    // Vector rule, one column: float products in tap order, nearest, saturated.
    template <class Taps>
    Dst vmid(const Taps& t, int e) const {
        if (shift >= 0) {
            std::int32_t v = 0;
            for (int j = 0; j < K; ++j) v += static_cast<std::int32_t>(*t.at(j, e)) * k[j];
            return OutRange<Dst>::sat(pipe::sat16(pipe::roundShift(v, shift)));
        }
        float f = static_cast<float>(*t.at(0, e)) * weight(0);
        for (int j = 1; j < K; ++j) f += static_cast<float>(*t.at(j, e)) * weight(j);
        return OutRange<Dst>::sat(pipe::roundSat16(f));
    }
    // Tail rule: products (float)x * (float)k in tap order, times inv at the end,
    // clamped to the output range, truncated.
    template <class Taps>
    Dst tail(const Taps& t, int e) const {
        float f = static_cast<float>(*t.at(0, e)) * static_cast<float>(k[0]);
        for (int j = 1; j < K; ++j) f += static_cast<float>(*t.at(j, e)) * static_cast<float>(k[j]);
        return static_cast<Dst>(pipe::truncClamp(f * inv, OutRange<Dst>::lo, OutRange<Dst>::hi));
    }
    template <int KT, class Taps>
    void vec(const Taps& t, int e, Dst* out) const {
        const int n = KT ? KT : K;
        __m128i r;
        if (shift >= 0) {
            __m128i lo = _mm_setzero_si128(), hi = _mm_setzero_si128();
            pipe::maddTaps(t, e, c->pairs, 0, n, lo, hi);
            r = _mm_packs_epi32(pipe::roundShift4(lo, shift), pipe::roundShift4(hi, shift));
        } else {
            __m128 lo, hi;
            pipe::floatTaps8(t, e, n, c->f, lo, hi);
            r = pipe::roundPack(lo, hi);
        }
        OutRange<Dst>::store(out, r);
    }
};

// ---------------------------------------------------------------- Low 16s, 32f

// A rule shared with the rows that every column takes alike, tail columns in
// scalar form. Kernels longer than the coefficient block run scalar throughout.
template <class Rule, class T, int Lanes>
struct ColAlike : Rule {
    using Src = T;
    using Dst = T;
    static constexpr int kLanes = Lanes;
    bool simd = true;

    template <class Taps>
    Dst vmid(const Taps& t, int e) const { return this->scalar(t, e); }
    template <class Taps>
    Dst tail(const Taps& t, int e) const { return this->scalar(t, e); }
};

struct ColLow16s : ColAlike<pipe::LowSum, Zev16s, 8> {
    static ColLow16s make(const Zev16s* kernel, int K, int divisor, ColCoefs* coefs) {
        if (K > ColCoefs::kMaxTaps)
            return {{{kernel, K, pipe::lowReciprocal(divisor), divisor == 1, nullptr}, false}};
        return {{pipe::LowSum::make(kernel, K, divisor, coefs->w16)}};
    }
};

struct Col32f : ColAlike<pipe::FloatSum, Zev32f, 4> {
    static Col32f make(const Zev32f* kernel, int K, ColCoefs* coefs) {
        if (K > ColCoefs::kMaxTaps) return {{{kernel, K, nullptr}, false}};
        return {{pipe::FloatSum::make(kernel, K, coefs->f)}};
    }
};

// ---------------------------------------------------------------- driver

template <int KT, class Rule, class Dst>
void ownColumnRows(const Rule& R, const typename Rule::Src* const* src, Dst* dst, int dstStep, int W, int rows) {
    const int nVec = vectorColumns(W, R.K);
    for (int y = 0; y < rows; ++y) {
        pipe::DownRows<typename Rule::Src> t{src + y};
        Dst* d =
            reinterpret_cast<Dst*>(reinterpret_cast<std::uint8_t*>(dst) + static_cast<std::ptrdiff_t>(y) * dstStep);
        int e = 0;
        if constexpr (requires { R.bulk(t.rows, d, nVec); }) e = R.bulk(t.rows, d, nVec);
        if (R.simd)
            for (; e + Rule::kLanes <= nVec; e += Rule::kLanes) R.template vec<KT>(t, e, d + e);
        for (; e < nVec; ++e) d[e] = R.vmid(t, e);
        for (; e < W; ++e) d[e] = R.tail(t, e);
    }
}

}  // namespace v8
