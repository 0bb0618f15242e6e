// The generic band kernel of the norms (SSSE3): per block of E pixels it loads the
// chosen channel, forms the magnitudes the form asks for, clears excluded lanes and
// feeds one accumulator per result. Row tails go element by element.
#include <immintrin.h>

#include <cstdint>

#include "stats/kernels/norm.h"
#include "stats/kernels/norm_ops.h"

namespace v8 {
namespace {

using namespace normops;

template <class T>
inline const T* byteOffset(const T* p, std::ptrdiff_t bytes) {
    return reinterpret_cast<const T*>(reinterpret_cast<const std::uint8_t*>(p) + bytes);
}

inline std::uint64_t sumLanes64(__m128i v) {
    alignas(16) std::uint64_t l[2];
    _mm_store_si128(reinterpret_cast<__m128i*>(l), v);
    return l[0] + l[1];
}

// Accumulators, by magnitude type (bytes, words, floats) and kind. Each takes
// whole registers with add(), tail elements with addScalar(), and is told where
// the vector part of a row ends (beginTail) and where the row ends (endRow).
template <class M, NormKind K>
struct Acc;

// Largest byte or word magnitude; integers are exact in any order.
template <>
struct Acc<Zev8u, NormKind::Inf> {
    __m128i mx = _mm_setzero_si128();
    unsigned s = 0;
    void add(__m128i m) { mx = _mm_max_epu8(mx, m); }
    void addScalar(unsigned m, int) { s = m > s ? m : s; }
    void beginTail() {}
    void endRow() {}
    double result() const {
        alignas(16) std::uint8_t l[16];
        _mm_store_si128(reinterpret_cast<__m128i*>(l), mx);
        unsigned r = s;
        for (std::uint8_t v : l) r = v > r ? v : r;
        return r;
    }
};

template <>
struct Acc<Zev16u, NormKind::Inf> {
    __m128i mx = _mm_setzero_si128();
    unsigned s = 0;
    // No unsigned word maximum below SSE4.1: max(a, b) = (a -sat b) + b.
    void add(__m128i m) { mx = _mm_add_epi16(_mm_subs_epu16(mx, m), m); }
    void addScalar(unsigned m, int) { s = m > s ? m : s; }
    void beginTail() {}
    void endRow() {}
    double result() const {
        alignas(16) std::uint16_t l[8];
        _mm_store_si128(reinterpret_cast<__m128i*>(l), mx);
        unsigned r = s;
        for (std::uint16_t v : l) r = v > r ? v : r;
        return r;
    }
};

// Sums of byte magnitudes against zero, straight into 64-bit lanes.
template <>
struct Acc<Zev8u, NormKind::L1> {
    __m128i s64 = _mm_setzero_si128();
    std::uint64_t s = 0;
    void add(__m128i m) { s64 = _mm_add_epi64(s64, _mm_sad_epu8(m, _mm_setzero_si128())); }
    void addScalar(unsigned m, int) { s += m; }
    void beginTail() {}
    void endRow() {}
    double result() const { return static_cast<double>(s + sumLanes64(s64)); }
};

// 32-bit lanes that are widened to 64 bits before they could wrap.
struct Flushing {
    static constexpr int kBlocks = 8192;  // lane growth per block stays below 2^18
    __m128i s32 = _mm_setzero_si128();
    __m128i s64 = _mm_setzero_si128();
    int n = 0;
    void add32(__m128i v) {
        s32 = _mm_add_epi32(s32, v);
        if (++n == kBlocks) flush();
    }
    void flush() {
        const __m128i z = _mm_setzero_si128();
        s64 = _mm_add_epi64(s64, _mm_add_epi64(_mm_unpacklo_epi32(s32, z), _mm_unpackhi_epi32(s32, z)));
        s32 = z;
        n = 0;
    }
    std::uint64_t total() {
        flush();
        return sumLanes64(s64);
    }
};

// Squares of bytes by multiply-add pairs.
template <>
struct Acc<Zev8u, NormKind::L2> : Flushing {
    std::uint64_t s = 0;
    void add(__m128i m) {
        const __m128i z = _mm_setzero_si128();
        __m128i lo = _mm_unpacklo_epi8(m, z), hi = _mm_unpackhi_epi8(m, z);
        add32(_mm_add_epi32(_mm_madd_epi16(lo, lo), _mm_madd_epi16(hi, hi)));
    }
    void addScalar(unsigned m, int) { s += std::uint64_t{m} * m; }
    void beginTail() {}
    void endRow() {}
    double result() { return static_cast<double>(s + total()); }
};

template <>
struct Acc<Zev16u, NormKind::L1> : Flushing {
    std::uint64_t s = 0;
    void add(__m128i m) {
        const __m128i z = _mm_setzero_si128();
        add32(_mm_add_epi32(_mm_unpacklo_epi16(m, z), _mm_unpackhi_epi16(m, z)));
    }
    void addScalar(unsigned m, int) { s += m; }
    void beginTail() {}
    void endRow() {}
    double result() { return static_cast<double>(s + total()); }
};

// Squares of words reach 32 bits: low and high halves of the products give the
// unsigned squares, summed in 64-bit lanes.
template <>
struct Acc<Zev16u, NormKind::L2> {
    __m128i s64 = _mm_setzero_si128();
    std::uint64_t s = 0;
    void add(__m128i m) {
        const __m128i z = _mm_setzero_si128();
        __m128i lo = _mm_mullo_epi16(m, m), hi = _mm_mulhi_epu16(m, m);
        __m128i q0 = _mm_unpacklo_epi16(lo, hi), q1 = _mm_unpackhi_epi16(lo, hi);
        __m128i a = _mm_add_epi64(_mm_unpacklo_epi32(q0, z), _mm_unpackhi_epi32(q0, z));
        __m128i b = _mm_add_epi64(_mm_unpacklo_epi32(q1, z), _mm_unpackhi_epi32(q1, z));
        s64 = _mm_add_epi64(s64, _mm_add_epi64(a, b));
    }
    void addScalar(unsigned m, int) { s += std::uint64_t{m} * m; }
    void beginTail() {}
    void endRow() {}
    double result() const { return static_cast<double>(s + sumLanes64(s64)); }
};

// Largest float magnitude. The running maximum is the second operand, so a NaN
// magnitude never replaces it: NaN elements do not count.
template <>
struct Acc<Zev32f, NormKind::Inf> {
    __m128 mx = _mm_setzero_ps();
    float s = 0.0f;
    void add(__m128 m) { mx = _mm_max_ps(m, mx); }
    void addScalar(float m, int) { s = m > s ? m : s; }
    void beginTail() {}
    void endRow() {}
    double result() const {
        alignas(16) float l[4];
        _mm_store_ps(l, mx);
        float r = s;
        for (float v : l) r = v > r ? v : r;
        return r;
    }
};

// Float sums: four single lanes per row from zero; at the row's end lanes 2 and 3
// go onto lanes 0 and 1 in single precision, and those two into a pair of doubles.
// The band's total is rounded once to single precision.
template <NormKind K>
    requires(K != NormKind::Inf)
struct Acc<Zev32f, K> {
    static constexpr bool kSquare = K == NormKind::L2;
    __m128 acc = _mm_setzero_ps();
    __m128d rows = _mm_setzero_pd();  // the pair of doubles
    alignas(16) float l[4];
    void add(__m128 m) { acc = _mm_add_ps(acc, kSquare ? _mm_mul_ps(m, m) : m); }
    void beginTail() { _mm_store_ps(l, acc); }
    void addScalar(float m, int lane) {
        float v = kSquare ? m * m : m;
        l[lane] = l[lane] + v;
    }
    void endRow() {
        __m128 v = _mm_load_ps(l);
        __m128 folded = _mm_add_ps(v, _mm_movehl_ps(v, v));  // lanes 0 + 2, 1 + 3
        rows = _mm_add_pd(rows, _mm_cvtps_pd(folded));
        acc = _mm_setzero_ps();
    }
    double result() const {
        __m128d total = _mm_add_sd(rows, _mm_unpackhi_pd(rows, rows));
        return _mm_cvtss_f32(_mm_cvtsd_ss(_mm_setzero_ps(), total));
    }
};

// Lane of a float row's tail element: after the whole groups of four, a pair of
// elements goes into lanes 0 and 1 and a last single one into lane 0. In three
// channels every tail pixel goes into lane 0.
inline int tailLane(int idx, int rem, int ch) {
    if (ch == 3) return 0;
    return (rem >= 2 && idx < 2) ? idx : 0;
}

// Pixel order of the lanes for one channel of three-channel floats: element
// 3 * j + ch of a group of four pixels falls into lane (3 * j + ch) % 4 when the
// group's three registers are added in turn, so lane i holds pixel 3 * (i - ch) % 4.
struct FloatC3Order {
    int order[4];
    explicit FloatC3Order(int ch) {
        for (int i = 0; i < 4; ++i) order[i] = (3 * ((i - ch) & 3)) & 3;
    }
};

template <class T, NormForm F, NormKind K, int Ch>
NormPart band(const NormSrc<T>& s, int rows) {
    using Mg = Mag<T>;
    using V = typename Mg::V;
    constexpr int E = Mg::E;
    constexpr bool kRel = F == NormForm::Rel;
    constexpr bool kFloat = std::is_same_v<T, Zev32f>;
    Acc<typename Mg::M, K> P;
    Acc<typename Mg::M, K> Q;
    const int* order = nullptr;
    FloatC3Order fo(s.ch);
    if constexpr (kFloat && Ch == 3) order = fo.order;
    Channel<T, Ch> chan(s.ch, order);

    const int w = s.width;
    const int vecEnd = w / E * E;
    const int rem = w - vecEnd;
    const T* a = s.a + (Ch == 3 ? s.ch : 0);
    const T* b = s.b + (Ch == 3 ? s.ch : 0);
    const T* av = s.a;  // group loads start at the pixel, not at the channel
    const T* bv = s.b;
    const Zev8u* m = s.mask;
    for (int y = 0; y < rows; ++y) {
        int x = 0;
        for (; x < vecEnd; x += E) {
            V excl = Mg::excluded(chan.maskBytes(m + x));
            V va = chan.load(av + x * Ch);
            if constexpr (F == NormForm::Norm) {
                P.add(Mg::keep(excl, Mg::abs(va)));
            } else {
                V vb = chan.load(bv + x * Ch);
                P.add(Mg::keep(excl, Mg::absDiff(va, vb)));
                if constexpr (kRel) Q.add(Mg::keep(excl, Mg::abs(vb)));
            }
        }
        P.beginTail();
        if constexpr (kRel) Q.beginTail();
        for (; x < w; ++x) {
            if (m[x] == 0) continue;
            const int lane = tailLane(x - vecEnd, rem, Ch);
            const T ea = a[x * Ch];
            if constexpr (F == NormForm::Norm) {
                P.addScalar(Mg::abs(ea), lane);
            } else {
                const T eb = b[x * Ch];
                P.addScalar(Mg::absDiff(ea, eb), lane);
                if constexpr (kRel) Q.addScalar(Mg::abs(eb), lane);
            }
        }
        P.endRow();
        if constexpr (kRel) Q.endRow();
        a = byteOffset(a, s.aStep);
        av = byteOffset(av, s.aStep);
        if constexpr (F != NormForm::Norm) {
            b = byteOffset(b, s.bStep);
            bv = byteOffset(bv, s.bStep);
        }
        m = byteOffset(m, s.maskStep);
    }
    NormPart r{P.result(), 0.0};
    if constexpr (kRel) r.q = Q.result();
    return r;
}

}  // namespace

template <class T, NormForm F, NormKind K, int Ch>
NormPart ownNormBand_V8(const NormSrc<T>& s, int rows) {
    return band<T, F, K, Ch>(s, rows);
}

#define ZEV_NORM_INST_K(T, F, Ch)                                                          \
    template NormPart ownNormBand_V8<T, NormForm::F, NormKind::Inf, Ch>(const NormSrc<T>&, int); \
    template NormPart ownNormBand_V8<T, NormForm::F, NormKind::L1, Ch>(const NormSrc<T>&, int);  \
    template NormPart ownNormBand_V8<T, NormForm::F, NormKind::L2, Ch>(const NormSrc<T>&, int);
#define ZEV_NORM_INST_F(T, Ch) ZEV_NORM_INST_K(T, Norm, Ch) ZEV_NORM_INST_K(T, Diff, Ch) ZEV_NORM_INST_K(T, Rel, Ch)
#define ZEV_NORM_INST(T) ZEV_NORM_INST_F(T, 1) ZEV_NORM_INST_F(T, 3)
ZEV_NORM_INST(Zev8u)
ZEV_NORM_INST(Zev8s)
ZEV_NORM_INST(Zev16u)
ZEV_NORM_INST(Zev32f)

}  // namespace v8
