// Row kernels of the separable pipelines.
//
// A row is filtered in three parts: the left a outputs and the right K-1-a
// outputs read the scratch line of filter/border.h and use the form's border
// arithmetic (truncating), the middle outputs read the source row directly and
// use the interior arithmetic (rounding to nearest even, in vector registers).
// The two arithmetics differ on purpose; a rule object carries both.
//
// Internal API:
//   Row8u16s, Row16s, RowLow16s, Row32f   rules; built by their make() from the
//                                        kernel, divisor and a coefficient block
//                                        of kRowCoefBytes(K) bytes (16-aligned)
//   ownRowPass<Rule, C>(rule, src, dst, w, a, border, value, line)
//                                        one row: fill line, left, middle, right
//   kRowLineBytes<Src>(K, C)             scratch-line bytes to reserve per thread
//
// C is the channel count: taps step by C elements, the line holds whole pixels.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <type_traits>

#include "filter/border.h"
#include "filter/kernels/pipe_avx2.h"
#include "filter/kernels/pipe_simd.h"
#include "frame/kernels/simd.h"
#include "zevcv.h"

namespace v8 {

// Bytes of the coefficient block: one 16-byte register per tap at most.
constexpr int kRowCoefBytes(int K) { return 16 * K; }
template <class Src>
constexpr int kRowLineBytes(int K, int C) {
    return ((3 * K - 3) * C * static_cast<int>(sizeof(Src)) + 15) & ~15;
}

// ---------------------------------------------------------------- 8u -> 16s

struct Row8u16s {
    using Src = Zev8u;
    using Dst = Zev16s;
    static constexpr int kLanes = 8;
    const Zev16s* k;
    int K;
    float inv;
    bool intBoth;  // K = 3, divisor 1: 32-bit sum saturated in every column
    int shift;     // divisor 2^shift and every sum exact in float: the interior is a rounding shift; else -1
    bool narrow;   // ... and the sum plus the rounding term fits 16 bits: 16-bit lanes give the same
    const __m128i* pairs;
    bool wide = false;  // narrow, and the processor runs the 32-byte kernel

    static Row8u16s make(const Zev16s* kernel, int K, int divisor, void* coef) {
        float sumAbs = 0.0f;
        for (int j = 0; j < K; ++j) sumAbs += std::fabs(static_cast<float>(kernel[j]));
        int shift = pipe::pow2Shift(divisor);
        if (!(sumAbs * 255.0f < 16777216.0f)) shift = -1;
        const bool narrow = shift >= 0 && shift < 15 && sumAbs * 255.0f + static_cast<float>(1 << shift) < 32768.0f;
        auto* pairs = static_cast<__m128i*>(coef);
        if (narrow)  // one 16-bit weight register per tap
            for (int j = 0; j < K; ++j) pairs[j] = _mm_set1_epi16(kernel[j]);
        else
            pipe::makePairs(kernel, K, pairs);
        return Row8u16s{kernel,
                        K,
                        1.0f / static_cast<float>(divisor),
                        K == 3 && divisor == 1,
                        shift,
                        narrow,
                        pairs,
                        narrow && simd::hasAvx2()};
    }
    std::int32_t sum(const Src* p, int s) const {
        std::int32_t v = 0;
        for (int j = 0; j < K; ++j) v = pipe::wrapAdd(v, pipe::wrapMul(p[j * s], k[j]));
        return v;
    }
    bool vectorMiddle(int) const { return true; }
    int bulk(const Src* src, int C, Dst* dst, int total) const {
        return wide ? ownRowNarrow8u16s_avx2(src, C, dst, total, k, K, shift) : 0;
    }
    Dst mid(const Src* p, int s) const {
        std::int32_t v = sum(p, s);
        if (intBoth) return pipe::sat16(v);
        if (shift >= 0) return pipe::sat16(pipe::roundShift(v, shift));
        return pipe::roundSat16(static_cast<float>(v) * inv);
    }
    Dst edge(const Src* p, int s) const {
        std::int32_t v = sum(p, s);
        if (intBoth) return pipe::sat16(v);
        return static_cast<Dst>(pipe::truncClamp(static_cast<float>(v) * inv, -32768.0f, 32767.0f));
    }
    template <int KT, class Taps>
    void vec(const Taps& t, int e, Dst* out) const {
        const int n = KT ? KT : K;
        if (narrow) {
            __m128i v = pipe::roundShift8(pipe::lowTaps8(t, e, n, pairs), shift);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(out), v);
            return;
        }
        __m128i lo = _mm_setzero_si128(), hi = _mm_setzero_si128();
        pipe::maddTaps(t, e, pairs, 0, n, lo, hi);
        __m128i r;
        if (intBoth) {
            r = _mm_packs_epi32(lo, hi);
        } else if (shift >= 0) {
            r = _mm_packs_epi32(pipe::roundShift4(lo, shift), pipe::roundShift4(hi, shift));
        } else {
            __m128 vi = _mm_set1_ps(inv);
            r = pipe::roundPack(_mm_mul_ps(_mm_cvtepi32_ps(lo), vi), _mm_mul_ps(_mm_cvtepi32_ps(hi), vi));
        }
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), r);
    }
};

// ---------------------------------------------------------------- 16s -> 16s

struct Row16s {
    using Src = Zev16s;
    using Dst = Zev16s;
    static constexpr int kLanes = 8;
    enum Mode {
        IntShort,  // K 3 or 5, small coefficients: 32-bit sum, then float
        FltShort,  // K 3 or 5, large coefficients: float products with pre-scaled weights
        FltSym,    // the same for a symmetric kernel: mirrored pixels added first
        IntLong,   // other K: 32-bit sums of four taps gathered in float
        FltLong,   // other K with a -32768 weight: float products
    };
    const Zev16s* k;
    int K;
    float inv;
    Mode mode;
    int shift;   // divisor 2^shift and every partial sum exact in float: integers suffice; else -1
    const __m128i* pairs;
    const __m128* cf;

    static Row16s make(const Zev16s* kernel, int K, int divisor, void* coef) {
        Row16s r{kernel, K, 1.0f / static_cast<float>(divisor), IntShort, -1, nullptr, nullptr};
        float sumAbs = 0.0f;
        bool minWeight = false;
        for (int j = 0; j < K; ++j) {
            sumAbs += std::fabs(static_cast<float>(kernel[j]));
            minWeight |= kernel[j] == -32768;
        }
        if (K == 3 || K == 5) {
            const bool sym = kernel[0] == kernel[K - 1] && (K == 3 || kernel[1] == kernel[3]);
            r.mode = sumAbs < 65535.0f ? IntShort : (sym ? FltSym : FltShort);
        } else {
            r.mode = minWeight ? FltLong : IntLong;
        }
        if ((r.mode == IntShort || r.mode == IntLong) && sumAbs * 32768.0f < 16777216.0f)
            r.shift = pipe::pow2Shift(divisor);
        if (r.mode == IntShort || r.mode == IntLong) {
            r.pairs = static_cast<__m128i*>(coef);
            pipe::makePairs(kernel, K, static_cast<__m128i*>(coef));
        } else {
            auto* c = static_cast<__m128*>(coef);
            for (int j = 0; j < K; ++j) c[j] = _mm_set1_ps(static_cast<float>(kernel[j]) * r.inv);
            r.cf = c;
        }
        return r;
    }
    bool shortK() const { return mode == IntShort || mode == FltShort || mode == FltSym; }
    float scaled(int j) const { return static_cast<float>(k[j]) * inv; }

    // Float products with pre-scaled weights, in tap order.
    float floatSum(const Src* p, int s) const {
        float f = static_cast<float>(p[0]) * scaled(0);
        for (int j = 1; j < K; ++j) f += static_cast<float>(p[j * s]) * scaled(j);
        return f;
    }
    float symSum(const Src* p, int s) const {
        const int m = K / 2;
        float f = (static_cast<float>(p[0]) + static_cast<float>(p[(K - 1) * s])) * scaled(0);
        if (K == 5) f += (static_cast<float>(p[s]) + static_cast<float>(p[3 * s])) * scaled(1);
        return f + static_cast<float>(p[m * s]) * scaled(m);
    }
    bool vectorMiddle(int n) const { return shortK() || n - 1 >= 16; }

    Dst mid(const Src* p, int s) const {
        switch (mode) {
        case IntShort: {
            std::int32_t v = 0;
            for (int j = 0; j < K; ++j) v = pipe::wrapAdd(v, pipe::wrapMul(p[j * s], k[j]));
            return shift >= 0 ? pipe::sat16(pipe::roundShift(v, shift)) : pipe::roundSat16(static_cast<float>(v) * inv);
        }
        case IntLong: {
            float f = 0.0f;
            int j = 0;
            for (; j + 4 <= K; j += 4) {
                std::int32_t v = 0;
                for (int i = j; i < j + 4; ++i) v = pipe::wrapAdd(v, pipe::wrapMul(p[i * s], k[i]));
                f += static_cast<float>(v);
            }
            for (; j < K; ++j) f += static_cast<float>(pipe::wrapMul(p[j * s], k[j]));
            return pipe::roundSat16(f * inv);
        }
        case FltSym:
            return pipe::roundSat16(symSum(p, s));
        default:
            return pipe::roundSat16(floatSum(p, s));
        }
    }
    Dst edge(const Src* p, int s) const {
        float f;
        if (shortK()) {
            f = static_cast<float>(p[0]) * static_cast<float>(k[0]);
            for (int j = 1; j < K; ++j) f += static_cast<float>(p[j * s]) * static_cast<float>(k[j]);
            f *= inv;
        } else {
            // Even and odd taps in two running sums; the last tap of an odd K comes last.
            float even = 0.0f, odd = 0.0f;
            const int paired = K & ~1;
            for (int j = 0; j < paired; j += 2) {
                even += static_cast<float>(p[j * s]) * scaled(j);
                odd += static_cast<float>(p[(j + 1) * s]) * scaled(j + 1);
            }
            f = even + odd;
            if (K & 1) f += static_cast<float>(p[(K - 1) * s]) * scaled(K - 1);
        }
        return static_cast<Dst>(pipe::truncClamp(f, -32768.0f, 32767.0f));
    }
    template <int KT, class Taps>
    void vec(const Taps& t, int e, Dst* out) const {
        const int K = KT ? KT : this->K;
        __m128i r;
        if (mode == IntShort || (mode == IntLong && shift >= 0)) {
            __m128i lo = _mm_setzero_si128(), hi = _mm_setzero_si128();
            pipe::maddTaps(t, e, pairs, 0, K, lo, hi);
            if (shift >= 0) {
                r = _mm_packs_epi32(pipe::roundShift4(lo, shift), pipe::roundShift4(hi, shift));
            } else {
                __m128 vi = _mm_set1_ps(inv);
                r = pipe::roundPack(_mm_mul_ps(_mm_cvtepi32_ps(lo), vi), _mm_mul_ps(_mm_cvtepi32_ps(hi), vi));
            }
        } else if (mode == IntLong) {
            __m128 fl = _mm_setzero_ps(), fh = _mm_setzero_ps();
            int j = 0;
            for (; j + 4 <= K; j += 4) {
                __m128i lo = _mm_setzero_si128(), hi = _mm_setzero_si128();
                pipe::maddTaps(t, e, pairs, j, j + 4, lo, hi);
                fl = _mm_add_ps(fl, _mm_cvtepi32_ps(lo));
                fh = _mm_add_ps(fh, _mm_cvtepi32_ps(hi));
            }
            for (; j < K; ++j) {
                __m128i lo = _mm_setzero_si128(), hi = _mm_setzero_si128();
                pipe::maddTaps(t, e, pairs, j, j + 1, lo, hi);
                fl = _mm_add_ps(fl, _mm_cvtepi32_ps(lo));
                fh = _mm_add_ps(fh, _mm_cvtepi32_ps(hi));
            }
            __m128 vi = _mm_set1_ps(inv);
            r = pipe::roundPack(_mm_mul_ps(fl, vi), _mm_mul_ps(fh, vi));
        } else {
            __m128 lo, hi;
            if (mode == FltSym) {
                const int m = K / 2;
                auto pairSum = [&](int j0, int j1, __m128& l, __m128& h) {
                    __m128 al, ah, bl, bh;
                    pipe::widen16to32f(pipe::load8x16(t.at(j0, e)), al, ah);
                    pipe::widen16to32f(pipe::load8x16(t.at(j1, e)), bl, bh);
                    l = _mm_mul_ps(_mm_add_ps(al, bl), cf[j0]);
                    h = _mm_mul_ps(_mm_add_ps(ah, bh), cf[j0]);
                };
                pairSum(0, K - 1, lo, hi);
                if (K == 5) {
                    __m128 l, h;
                    pairSum(1, 3, l, h);
                    lo = _mm_add_ps(lo, l);
                    hi = _mm_add_ps(hi, h);
                }
                __m128 xl, xh;
                pipe::widen16to32f(pipe::load8x16(t.at(m, e)), xl, xh);
                lo = _mm_add_ps(lo, _mm_mul_ps(xl, cf[m]));
                hi = _mm_add_ps(hi, _mm_mul_ps(xh, cf[m]));
            } else {
                pipe::floatTaps8(t, e, K, cf, lo, hi);
            }
            r = pipe::roundPack(lo, hi);
        }
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), r);
    }
};

// ---------------------------------------------------------------- Low 16s

// Interior: the shared 16-bit rule. Row ends: a 32-bit sum, cut to 16 bits.
struct RowLow16s : pipe::LowSum {
    using Src = Zev16s;
    using Dst = Zev16s;
    static constexpr int kLanes = 8;
    bool endsInterior = false;  // the whole-row case: the row's ends follow the interior rule

    static RowLow16s make(const Zev16s* kernel, int K, int divisor, void* coef) {
        return RowLow16s{pipe::LowSum::make(kernel, K, divisor, static_cast<__m128i*>(coef))};
    }
    // A symmetric 5-tap kernel over 16 with replicated ends runs as one whole row.
    void wholeRowCase(int w, int a, int border, int divisor) {
        endsInterior = K == 5 && border == zevBorderReplicate && a == 2 && k[0] == k[4] && k[1] == k[3] &&
                       divisor == 16 && w - 2 > 8;
    }
    bool vectorMiddle(int) const { return true; }
    Dst mid(const Src* p, int s) const { return scalar(pipe::AlongRow<Src>{p, s}, 0); }
    Dst edge(const Src* p, int s) const {
        if (endsInterior) return mid(p, s);
        std::int32_t v = 0;
        for (int j = 0; j < K; ++j) v = pipe::wrapAdd(v, static_cast<std::int32_t>(p[j * s]) * k[j]);
        if (unit) return static_cast<Dst>(v);
        return static_cast<Dst>(static_cast<std::uint32_t>(pipe::wrapMul(v, r)) >> 14);
    }
};

// ---------------------------------------------------------------- 32f

// Every column sums its products left to right, from k[0] * s[0].
struct Row32f : pipe::FloatSum {
    using Src = Zev32f;
    using Dst = Zev32f;
    static constexpr int kLanes = 4;

    static Row32f make(const Zev32f* kernel, int K, void* coef) {
        return Row32f{pipe::FloatSum::make(kernel, K, static_cast<__m128*>(coef))};
    }
    bool vectorMiddle(int) const { return true; }
    Dst mid(const Src* p, int s) const { return scalar(pipe::AlongRow<Src>{p, s}, 0); }
    Dst edge(const Src* p, int s) const { return mid(p, s); }
};

// ---------------------------------------------------------------- the row pass

// Middle outputs: n windows read straight from the row. dst is the first middle output.
template <class Rule, int C>
void ownRowMiddle(const Rule& R, const typename Rule::Src* src, typename Rule::Dst* dst, int n) {
    const int total = n * C;
    int e = 0;
    if (R.vectorMiddle(n)) {
        if constexpr (requires { R.bulk(src, C, dst, total); }) e = R.bulk(src, C, dst, total);
        pipe::AlongRow<typename Rule::Src> taps{src, C};
        auto run = [&](auto kt) {
            for (; e + Rule::kLanes <= total; e += Rule::kLanes) R.template vec<kt.value>(taps, e, dst + e);
        };
        // The common kernel sizes get loops unrolled over their taps.
        if (R.K == 3) run(std::integral_constant<int, 3>{});
        else if (R.K == 5) run(std::integral_constant<int, 5>{});
        else run(std::integral_constant<int, 0>{});
        for (; e < total; ++e) dst[e] = R.mid(src + e, C);
    } else {
        for (; e < total; ++e) dst[e] = R.edge(src + e, C);
    }
}

// One row: scratch line, left outputs, middle outputs, right outputs.
template <class Rule, int C>
void ownRowPass(const Rule& R, const typename Rule::Src* src, typename Rule::Dst* dst, int w, int a, int border,
                const typename Rule::Src* value, typename Rule::Src* line) {
    const int K = R.K;
    const int r = fillBorder<typename Rule::Src, C>(src, line, w, K, a, border, value);
    const int left = std::min(a, w);
    for (int i = 0; i < left * C; ++i) dst[i] = R.edge(line + i, C);
    const int n = w - K + 1;
    if (n > 0) ownRowMiddle<Rule, C>(R, src, dst + a * C, n);
    const int right = std::min(K - 1 - a, w - a);
    typename Rule::Dst* out = dst + (a + std::max(n, 0)) * C;
    for (int i = 0; i < right * C; ++i) out[i] = R.edge(line + r * C + i, C);
}

}  // namespace v8
