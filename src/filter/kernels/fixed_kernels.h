// Fused 3x3 row-and-column routines of the fixed filters, written once against
// the arithmetic policies and instantiated per element type, kernel pair and
// register width. Include after defining FIXED_ISA (the namespace the
// instantiations go to), with the vector policies VI (16-bit lanes) and VF
// (float lanes) named by FIXED_VI / FIXED_VF: each instruction level gets its
// own copies, so no inline function is shared between differently-built files.
//
// Float formulas keep the order they are written in; taps with weight 0 are
// left out rather than multiplied.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <type_traits>

#include "filter/kernels/fixed_simd.h"
#include "filter/kernels/fixed_tables.h"

namespace v8::fixed::FIXED_ISA {

// ---------------------------------------------------------------- row kernels

struct RowDx3 {  // -1 0 1
    static constexpr int K = 3;
    template <class P, class V> static void f(const V* s, V* o) { o[0] = P::sub(s[2], s[0]); }
};
struct RowScharr3 {  // 3 10 3
    static constexpr int K = 3;
    template <class P, class V> static void f(const V* s, V* o) {
        o[0] = P::add(P::add(P::template mul<3>(s[0]), P::template mul<10>(s[1])), P::template mul<3>(s[2]));
    }
};
struct RowDxNeg3 {  // 1 0 -1
    static constexpr int K = 3;
    template <class P, class V> static void f(const V* s, V* o) { o[0] = P::sub(s[0], s[2]); }
};
struct RowD2x3 {  // 1 -2 1
    static constexpr int K = 3;
    template <class P, class V> static void f(const V* s, V* o) {
        o[0] = P::add(P::sub(s[0], P::template mul<2>(s[1])), s[2]);
    }
};
struct RowSobel3 {  // 1 2 1
    static constexpr int K = 3;
    template <class P, class V> static void f(const V* s, V* o) {
        o[0] = P::add(P::add(s[0], P::template mul<2>(s[1])), s[2]);
    }
};

struct RowDxNeg5 {  // 1 2 0 -2 -1
    static constexpr int K = 5;
    template <class P, class V> static void f(const V* s, V* o) {
        o[0] = P::sub(P::sub(P::add(s[0], P::template mul<2>(s[1])), P::template mul<2>(s[3])), s[4]);
    }
};
struct RowD2x5 {  // 1 0 -2 0 1
    static constexpr int K = 5;
    template <class P, class V> static void f(const V* s, V* o) {
        o[0] = P::add(P::sub(s[0], P::template mul<2>(s[2])), s[4]);
    }
};
struct RowSobel5 {  // 1 4 6 4 1
    static constexpr int K = 5;
    template <class P, class V> static void f(const V* s, V* o) {
        o[0] = P::add(P::add(P::add(P::add(s[0], P::template mul<4>(s[1])), P::template mul<6>(s[2])),
                             P::template mul<4>(s[3])),
                      s[4]);
    }
};

// ---------------------------------------------------------------- column kernels

struct ColScharr3 {
    static constexpr int K = 3;
    template <class P, class V> static V f(const V* r) {
        return P::add(P::add(P::template mul<3>(r[0]), P::template mul<10>(r[1])), P::template mul<3>(r[2]));
    }
};
struct ColDx3 {
    static constexpr int K = 3;
    template <class P, class V> static V f(const V* r) { return P::sub(r[2], r[0]); }
};
struct ColSobel3 {
    static constexpr int K = 3;
    template <class P, class V> static V f(const V* r) { return P::add(P::add(r[0], P::template mul<2>(r[1])), r[2]); }
};
struct ColD2x3 {
    static constexpr int K = 3;
    template <class P, class V> static V f(const V* r) { return P::add(P::sub(r[0], P::template mul<2>(r[1])), r[2]); }
};
struct ColSobel5 {
    static constexpr int K = 5;
    template <class P, class V> static V f(const V* r) {
        return P::add(P::add(P::add(P::add(r[0], P::template mul<4>(r[1])), P::template mul<6>(r[2])),
                             P::template mul<4>(r[3])),
                      r[4]);
    }
};
struct ColDx5 {  // r4 - r0 + 2 (r3 - r1)
    static constexpr int K = 5;
    template <class P, class V> static V f(const V* r) {
        return P::add(P::sub(r[4], r[0]), P::template mul<2>(P::sub(r[3], r[1])));
    }
};
struct ColD2x5 {
    static constexpr int K = 5;
    template <class P, class V> static V f(const V* r) { return P::add(P::sub(r[0], P::template mul<2>(r[2])), r[4]); }
};
template <class Col>
struct ColNeg {
    static constexpr int K = Col::K;
    template <class P, class V> static V f(const V* r) { return P::neg(Col::template f<P>(r)); }
};

// ---------------------------------------------------------------- output stages

struct Put16s {  // wrapping 16-bit result
    template <class P, class V> static void put(Zev16s* d, V v) { P::store(d, v); }
};
struct Put32f {
    template <class P, class V> static void put(Zev32f* d, V v) { P::store(d, v); }
};

using VI = FIXED_VI;
using VF = FIXED_VF;

// Scalar and vector policy by element type, and the row stage's output type.
template <class T> struct PolicyOf;
template <> struct PolicyOf<Zev16s> { using S = ScalarI16; using V = VI; using Mid = Zev16s; };
template <> struct PolicyOf<Zev8u> { using S = ScalarI16; using V = VI; using Mid = Zev16s; };
template <> struct PolicyOf<Zev32f> { using S = ScalarF32; using V = VF; using Mid = Zev32f; };

// One output of the row kernel from the K elements at s.
template <class Op, class Src, class Mid>
inline void rowWindow(const Src* s, Mid* d) {
    using SP = typename PolicyOf<Mid>::S;
    typename SP::V t[Op::K], o[1];
    for (int i = 0; i < Op::K; ++i) t[i] = SP::load(s + i);
    Op::template f<SP>(t, o);
    SP::store(d, o[0]);
}

// Elements before p reaches a register boundary, if p is element-aligned and
// that leaves a register's worth of the n elements; else 0.
template <class VP, class T>
inline int leadIn(const T* p, int n) {
    constexpr std::uintptr_t bytes = VP::N * sizeof(T);
    const std::uintptr_t addr = reinterpret_cast<std::uintptr_t>(p);
    if (addr % sizeof(T) != 0) return 0;
    const int lead = static_cast<int>(((bytes - addr % bytes) % bytes) / sizeof(T));
    return lead + VP::N <= n ? lead : 0;
}

// Fused step: the new row (the window's last) through the row kernel into its
// ring row (border columns from its scratch line, already filled: line, and r
// where the right windows start), and in the same pass the output row from the
// K-1 older ring rows and the new values still in registers. Same numbers as the row routine followed
// by the column routine. Rows narrower than K plus a register are declined
// (false, nothing written): the caller then runs the row and column routines.
template <class RowOp, class ColOp, class Out, class Src, class Mid, class Dst>
bool ownFixedRowColumn(const Src* src, Mid* slot, const Mid* const* win, Dst* dst, int w, const Src* line, int r) {
    static_assert(RowOp::K == ColOp::K, "square masks");
    constexpr int K = RowOp::K, a = K / 2;
    using SP = typename PolicyOf<Mid>::S;
    using VP = typename PolicyOf<Mid>::V;
    const int n = w - K + 1;  // windows inside the row
    if (n < VP::N) return false;
    // Local copies: the stores below cannot change them, so they stay in registers.
    const Mid* older[K - 1];
    for (int k = 0; k + 1 < K; ++k) older[k] = win[k];
    for (int i = 0; i < a; ++i) rowWindow<RowOp>(line + i, slot + i);
    for (int i = 0; i < K - 1 - a; ++i) rowWindow<RowOp>(line + r + i, slot + a + n + i);
    // Scalar lead-in up to a ring address on a register boundary (ring rows
    // start on one): loads and stores that straddle cache lines cost more than
    // the few scalar windows.
    const int lead = leadIn<VP>(slot + a, n);
    for (int i = 0; i < lead; ++i) rowWindow<RowOp>(src + i, slot + a + i);
    int i = lead;
    for (; i + VP::N <= n; i += VP::N) {
        typename VP::V t[K], o[1], c[K];
        for (int k = 0; k < K; ++k) t[k] = VP::load(src + i + k);
        RowOp::template f<VP>(t, o);
        VP::store(slot + a + i, o[0]);
        for (int k = 0; k + 1 < K; ++k) c[k] = VP::load(older[k] + a + i);
        c[K - 1] = o[0];
        Out::template put<VP>(dst + a + i, ColOp::template f<VP>(c));
    }
    const int fusedEnd = a + i;
    for (; i < n; ++i) rowWindow<RowOp>(src + i, slot + a + i);
    auto column = [&](int x) {
        typename SP::V c[K];
        for (int k = 0; k + 1 < K; ++k) c[k] = SP::load(older[k] + x);
        c[K - 1] = SP::load(slot + x);
        Out::template put<SP>(dst + x, ColOp::template f<SP>(c));
    };
    for (int x = 0; x < a + lead; ++x) column(x);
    for (int x = fusedEnd; x < w; ++x) column(x);
    return true;
}

// Gaussian step, any odd K (border columns from the filled scratch line, as in
// the fused step above): the new row through the weights (left to right from
// k[0] * s[0], as the float row pipeline sums) into slot, and in the same pass
// the output row from the window's K rows (the last being slot), summed from
// tap 0 as the float column pipeline does. Declines rows narrower than K plus a
// register. KC is K where it is known at build time (weights held in
// registers), 0 for any other K.
template <int KC>
bool ownGaussStep(const Zev32f* src, Zev32f* slot, const Zev32f* const* win, Zev32f* dst, int w, int Kany,
                  const Zev32f* k, const Zev32f* line, int r) {
    const int K = KC ? KC : Kany;
    const int a = K / 2, n = w - K + 1;
    if (n < VF::N) return false;
    auto rowScalar = [&](const Zev32f* s) {
        float acc = k[0] * s[0];
        for (int i = 1; i < K; ++i) acc = acc + k[i] * s[i];
        return acc;
    };
    auto columnScalar = [&](int x) {
        float acc = k[0] * win[0][x];
        for (int t = 1; t < K; ++t) acc = acc + k[t] * win[t][x];
        dst[x] = acc;
    };
    for (int i = 0; i < a; ++i) slot[i] = rowScalar(line + i);
    for (int i = 0; i < K - 1 - a; ++i) slot[a + n + i] = rowScalar(line + r + i);
    constexpr int kHeld = KC ? KC : 1;
    typename VF::V kv[kHeld];
    const Zev32f* rows[kHeld];
    for (int t = 0; t < kHeld; ++t) kv[t] = VF::load1(k[t]), rows[t] = win[t];
    const int lead = leadIn<VF>(slot + a, n);  // as in the fused step
    for (int i = 0; i < lead; ++i) slot[a + i] = rowScalar(src + i);
    int i = lead;
    for (; i + VF::N <= n; i += VF::N) {
        const Zev32f* s = src + i;
        const int x = a + i;
        typename VF::V acc, out;
        if constexpr (KC != 0) {
            acc = VF::mul(VF::load(s), kv[0]);
            for (int t = 1; t < KC; ++t) acc = VF::add(acc, VF::mul(VF::load(s + t), kv[t]));
            out = VF::mul(VF::load(rows[0] + x), kv[0]);
            for (int t = 1; t + 1 < KC; ++t) out = VF::add(out, VF::mul(VF::load(rows[t] + x), kv[t]));
            out = VF::add(out, VF::mul(acc, kv[KC - 1]));
        } else {
            acc = VF::mul(VF::load(s), k[0]);
            for (int t = 1; t < K; ++t) acc = VF::add(acc, VF::mul(VF::load(s + t), k[t]));
            out = VF::mul(VF::load(win[0] + x), k[0]);
            for (int t = 1; t + 1 < K; ++t) out = VF::add(out, VF::mul(VF::load(win[t] + x), k[t]));
            out = VF::add(out, VF::mul(acc, k[K - 1]));
        }
        VF::store(slot + x, acc);
        VF::store(dst + x, out);
    }
    const int fusedEnd = a + i;
    for (; i < n; ++i) slot[a + i] = rowScalar(src + i);
    for (int x = 0; x < a + lead; ++x) columnScalar(x);
    for (int x = fusedEnd; x < w; ++x) columnScalar(x);
    return true;
}

inline bool ownGaussRowColumn(const Zev32f* src, Zev32f* slot, const Zev32f* const* win, Zev32f* dst, int w, int K,
                              const Zev32f* k, const Zev32f* line, int r) {
    switch (K) {
    case 3: return ownGaussStep<3>(src, slot, win, dst, w, K, k, line, r);
    case 5: return ownGaussStep<5>(src, slot, win, dst, w, K, k, line, r);
    case 7: return ownGaussStep<7>(src, slot, win, dst, w, K, k, line, r);
    default: return ownGaussStep<0>(src, slot, win, dst, w, K, k, line, r);
    }
}

template <class Src>
constexpr auto rowColumnTable3() {
    using M = typename PolicyOf<Src>::Mid;
    using Out = std::conditional_t<std::is_same_v<Src, Zev32f>, Put32f, Put16s>;
    return std::array<RowColFn<Src, M, M>, kRowColumnCount>{
        ownFixedRowColumn<RowSobel3, ColDx3, Out, Src, M, M>,     ownFixedRowColumn<RowScharr3, ColDx3, Out, Src, M, M>,
        ownFixedRowColumn<RowDxNeg3, ColDx3, Out, Src, M, M>,     ownFixedRowColumn<RowDxNeg3, ColSobel3, Out, Src, M, M>,
        ownFixedRowColumn<RowDxNeg3, ColNeg<ColSobel3>, Out, Src, M, M>,
        ownFixedRowColumn<RowSobel3, ColD2x3, Out, Src, M, M>,    ownFixedRowColumn<RowD2x3, ColSobel3, Out, Src, M, M>,
        ownFixedRowColumn<RowDx3, ColScharr3, Out, Src, M, M>};
}

// The same filters with 5x5 masks; Scharr has none.
template <class Src>
constexpr auto rowColumnTable5() {
    using M = typename PolicyOf<Src>::Mid;
    using Out = std::conditional_t<std::is_same_v<Src, Zev32f>, Put32f, Put16s>;
    return std::array<RowColFn<Src, M, M>, kRowColumnCount>{
        ownFixedRowColumn<RowSobel5, ColDx5, Out, Src, M, M>,     nullptr,
        ownFixedRowColumn<RowDxNeg5, ColDx5, Out, Src, M, M>,     ownFixedRowColumn<RowDxNeg5, ColSobel5, Out, Src, M, M>,
        ownFixedRowColumn<RowDxNeg5, ColNeg<ColSobel5>, Out, Src, M, M>,
        ownFixedRowColumn<RowSobel5, ColD2x5, Out, Src, M, M>,    ownFixedRowColumn<RowD2x5, ColSobel5, Out, Src, M, M>,
        nullptr};
}

// The fused tables, for this instruction level.
inline const KernelSet& kernelSet() {
    static constexpr auto rc8u3 = rowColumnTable3<Zev8u>();
    static constexpr auto rc32f3 = rowColumnTable3<Zev32f>();
    static constexpr auto rc8u5 = rowColumnTable5<Zev8u>();
    static constexpr auto rc32f5 = rowColumnTable5<Zev32f>();
    static constexpr KernelSet set{rc8u3.data(), rc32f3.data(), rc8u5.data(), rc32f5.data(), ownGaussRowColumn};
    return set;
}

}  // namespace v8::fixed::FIXED_ISA
