// The generic band kernel of the norms: per block of E pixels it loads the chosen
// channel, forms the magnitudes the form asks for, clears excluded lanes and feeds
// one accumulator per result; row tails go element by element. Included once per
// instruction-set file after defining ZEV_ISA; V is the integer register type.
#include <immintrin.h>

#include <cstdint>

#include "stats/kernels/norm.h"
#include "stats/kernels/norm_ops.h"

namespace v8::ZEV_ISA {
namespace {

using namespace normops;

template <class T>
inline const T* byteOffset(const T* p, std::ptrdiff_t bytes) {
    return reinterpret_cast<const T*>(reinterpret_cast<const std::uint8_t*>(p) + bytes);
}

// Accumulators, by magnitude type (bytes, words, floats), kind and register.
// Each takes whole registers with add(), tail elements with addScalar(), and is
// told where the vector part of a row ends (beginTail) and where the row ends
// (endRow). Integer accumulations are exact, so their lane order is free.
template <class M, NormKind K, class V>
struct Acc {
    static_assert(K == NormKind::Inf);
    V mx = zero<V>();
    unsigned s = 0;
    void add(V m) {
        if constexpr (sizeof(M) == 1) mx = maxU8(mx, m);
        else mx = add16(subsU16(mx, m), m);  // unsigned word maximum: (a -sat b) + b
    }
    void addScalar(unsigned m, int) { s = m > s ? m : s; }
    void beginTail() {}
    void endRow() {}
    double result() const {
        M l[sizeof(V) / sizeof(M)];
        std::memcpy(l, &mx, sizeof(V));
        unsigned r = s;
        for (M v : l) r = v > r ? v : r;
        return r;
    }
};

// 32-bit lanes that are widened to 64 bits before they could wrap.
template <class V>
struct Flushing {
    static constexpr int kBlocks = 8192;  // lane growth per block stays below 2^18
    V s32 = zero<V>();
    V s64 = zero<V>();
    int n = 0;
    void add32v(V v) {
        s32 = add32(s32, v);
        if (++n == kBlocks) flush();
    }
    void flush() {
        const V z = zero<V>();
        s64 = add64(s64, add64(lo32(s32, z), hi32(s32, z)));
        s32 = z;
        n = 0;
    }
    std::uint64_t total() {
        flush();
        return sumLanes64(s64);
    }
};

template <class M, class V>
struct IntSum {
    std::uint64_t s = 0;
    void beginTail() {}
    void endRow() {}
};

// Sums of byte magnitudes against zero, straight into 64-bit lanes.
template <class V>
struct Acc<Zev8u, NormKind::L1, V> : IntSum<Zev8u, V> {
    V s64 = zero<V>();
    void add(V m) { s64 = add64(s64, sadZero(m)); }
    void addScalar(unsigned m, int) { this->s += m; }
    double result() const { return static_cast<double>(this->s + sumLanes64(s64)); }
};

// Squares of bytes by multiply-add pairs.
template <class V>
struct Acc<Zev8u, NormKind::L2, V> : IntSum<Zev8u, V>, Flushing<V> {
    void add(V m) {
        V lo = lo8(m, zero<V>()), hi = hi8(m, zero<V>());
        this->add32v(add32(madd16(lo, lo), madd16(hi, hi)));
    }
    void addScalar(unsigned m, int) { this->s += std::uint64_t{m} * m; }
    double result() { return static_cast<double>(this->s + this->total()); }
};

template <class V>
struct Acc<Zev16u, NormKind::L1, V> : IntSum<Zev16u, V>, Flushing<V> {
    void add(V m) { this->add32v(add32(lo16(m, zero<V>()), hi16(m, zero<V>()))); }
    void addScalar(unsigned m, int) { this->s += m; }
    double result() { return static_cast<double>(this->s + this->total()); }
};

// Squares of words reach 32 bits: low and high halves of the products give the
// unsigned squares, summed in 64-bit lanes.
template <class V>
struct Acc<Zev16u, NormKind::L2, V> : IntSum<Zev16u, V> {
    V s64 = zero<V>();
    void add(V m) {
        const V z = zero<V>();
        V lo = mullo16(m, m), hi = mulhiU16(m, m);
        V q0 = lo16(lo, hi), q1 = hi16(lo, hi);
        s64 = add64(s64, add64(add64(lo32(q0, z), hi32(q0, z)), add64(lo32(q1, z), hi32(q1, z))));
    }
    void addScalar(unsigned m, int) { this->s += std::uint64_t{m} * m; }
    double result() const { return static_cast<double>(this->s + sumLanes64(s64)); }
};

// Largest float magnitude. The running maximum is the second operand, so a NaN
// magnitude never replaces it: NaN elements do not count.
template <class V>
struct Acc<Zev32f, NormKind::Inf, V> {
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
// The band's total is rounded once to single precision. The folds are written in
// intrinsics: GCC 12's straight-line vectorizer dropped the single-precision
// roundings of the plain scalar form when two of these ran side by side.
template <NormKind K, class V>
    requires(K != NormKind::Inf)
struct Acc<Zev32f, K, V> {
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

template <class T, NormForm F, NormKind K, int Ch, class V>
NormPart band(const NormSrc<T>& s, int rows) {
    using Mg = Mag<T, V>;
    using R = typename Mg::Reg;
    constexpr int E = Mg::E;
    constexpr bool kRel = F == NormForm::Rel;
    Acc<typename Mg::M, K, V> P;
    Acc<typename Mg::M, K, V> Q;
    Channel<T, Ch, V> chan(s.ch);

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
            R excl = chan.excluded(m + x);
            R va = chan.load(av + x * Ch);
            if constexpr (F == NormForm::Norm) {
                P.add(Mg::keep(excl, Mg::abs(va)));
            } else {
                R vb = chan.load(bv + x * Ch);
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
}  // namespace v8::ZEV_ISA

// Explicit instantiations of a kernel entry over forms and kinds.
#define ZEV_NORM_INST_K(Fn, T, F, Ch)                                                           \
    template NormPart Fn<T, NormForm::F, NormKind::Inf, Ch>(const NormSrc<T>&, int);             \
    template NormPart Fn<T, NormForm::F, NormKind::L1, Ch>(const NormSrc<T>&, int);              \
    template NormPart Fn<T, NormForm::F, NormKind::L2, Ch>(const NormSrc<T>&, int);
#define ZEV_NORM_INST_F(Fn, T, Ch) \
    ZEV_NORM_INST_K(Fn, T, Norm, Ch) ZEV_NORM_INST_K(Fn, T, Diff, Ch) ZEV_NORM_INST_K(Fn, T, Rel, Ch)
