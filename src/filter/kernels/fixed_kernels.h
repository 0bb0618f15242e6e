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

#include "filter/border.h"
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

// Fused 3x3 step: the new row (the window's third) through the row kernel into
// its ring row, and in the same pass the output row from the two older ring rows
// and the new values still in registers. Same numbers as the row routine
// followed by the column routine. Rows narrower than a register and the two
// border columns are declined (false, nothing written): the caller then runs
// the row and column routines.
template <class RowOp, class ColOp, class Out, class Src, class Mid, class Dst>
bool ownFixedRowColumn(const Src* src, Mid* slot, const Mid* r0, const Mid* r1, Dst* dst, int w, int border,
                       Src value, Src* line) {
    static_assert(RowOp::K == 3 && ColOp::K == 3, "3x3 kernels");
    using SP = typename PolicyOf<Mid>::S;
    using VP = typename PolicyOf<Mid>::V;
    if (w - 2 < VP::N) return false;
    const int r = fillBorder<Src>(src, line, w, 3, 1, border, &value);
    rowWindow<RowOp>(line, slot);
    rowWindow<RowOp>(line + r, slot + w - 1);
    int x = 1;
    for (; x + VP::N <= w - 1; x += VP::N) {
        typename VP::V t[3], o[1];
        for (int k = 0; k < 3; ++k) t[k] = VP::load(src + x - 1 + k);
        RowOp::template f<VP>(t, o);
        VP::store(slot + x, o[0]);
        typename VP::V c[3] = {VP::load(r0 + x), VP::load(r1 + x), o[0]};
        Out::template put<VP>(dst + x, ColOp::template f<VP>(c));
    }
    const int fused = x;
    for (; x < w - 1; ++x) rowWindow<RowOp>(src + x - 1, slot + x);
    auto column = [&](int xc) {
        typename SP::V c[3] = {SP::load(r0 + xc), SP::load(r1 + xc), SP::load(slot + xc)};
        Out::template put<SP>(dst + xc, ColOp::template f<SP>(c));
    };
    column(0);
    for (x = fused; x < w; ++x) column(x);
    return true;
}

// Gaussian step, any odd K: the new row through the weights (left to right from
// k[0] * s[0], as the float row pipeline sums) into slot, and in the same pass
// the output row from the window's K rows (the last being slot), summed from
// tap 0 as the float column pipeline does. Declines rows narrower than K plus a
// register.
inline bool ownGaussRowColumn(const Zev32f* src, Zev32f* slot, const Zev32f* const* win, Zev32f* dst, int w, int K,
                              const Zev32f* k, int border, Zev32f value, Zev32f* line) {
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
    const int r = fillBorder<Zev32f>(src, line, w, K, a, border, &value);
    for (int i = 0; i < a; ++i) slot[i] = rowScalar(line + i);
    for (int i = 0; i < K - 1 - a; ++i) slot[a + n + i] = rowScalar(line + r + i);
    int i = 0;
    for (; i + VF::N <= n; i += VF::N) {
        const Zev32f* s = src + i;
        typename VF::V acc = VF::mul(VF::load(s), k[0]);
        for (int t = 1; t < K; ++t) acc = VF::add(acc, VF::mul(VF::load(s + t), k[t]));
        VF::store(slot + a + i, acc);
        const int x = a + i;
        typename VF::V out = VF::mul(VF::load(win[0] + x), k[0]);
        for (int t = 1; t + 1 < K; ++t) out = VF::add(out, VF::mul(VF::load(win[t] + x), k[t]));
        VF::store(dst + x, VF::add(out, VF::mul(acc, k[K - 1])));
    }
    const int fusedEnd = a + i;
    for (; i < n; ++i) slot[a + i] = rowScalar(src + i);
    for (int x = 0; x < a; ++x) columnScalar(x);
    for (int x = fusedEnd; x < w; ++x) columnScalar(x);
    return true;
}

template <class Src>
constexpr auto rowColumnTable() {
    using M = typename PolicyOf<Src>::Mid;
    using Out = std::conditional_t<std::is_same_v<Src, Zev32f>, Put32f, Put16s>;
    return std::array<RowColFn<Src, M, M>, 8>{
        ownFixedRowColumn<RowSobel3, ColDx3, Out, Src, M, M>,     ownFixedRowColumn<RowScharr3, ColDx3, Out, Src, M, M>,
        ownFixedRowColumn<RowDxNeg3, ColDx3, Out, Src, M, M>,     ownFixedRowColumn<RowDxNeg3, ColSobel3, Out, Src, M, M>,
        ownFixedRowColumn<RowDxNeg3, ColNeg<ColSobel3>, Out, Src, M, M>,
        ownFixedRowColumn<RowSobel3, ColD2x3, Out, Src, M, M>,    ownFixedRowColumn<RowD2x3, ColSobel3, Out, Src, M, M>,
        ownFixedRowColumn<RowDx3, ColScharr3, Out, Src, M, M>};
}

// The fused tables, for this instruction level.
inline const KernelSet& kernelSet() {
    static constexpr auto rowcol8u = rowColumnTable<Zev8u>();
    static constexpr auto rowcol32f = rowColumnTable<Zev32f>();
    static constexpr KernelSet set{rowcol8u.data(), rowcol32f.data(), ownGaussRowColumn};
    return set;
}

}  // namespace v8::fixed::FIXED_ISA
