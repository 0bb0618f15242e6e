// Kernel-specialised row and column routines of the fixed filters, written once
// against the arithmetic policies and instantiated per element type and
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
    static constexpr int K = 3, planes = 1;
    template <class P, class V> static void f(const V* s, V* o) { o[0] = P::sub(s[2], s[0]); }
};
struct RowScharr3 {  // 3 10 3
    static constexpr int K = 3, planes = 1;
    template <class P, class V> static void f(const V* s, V* o) {
        o[0] = P::add(P::add(P::template mul<3>(s[0]), P::template mul<10>(s[1])), P::template mul<3>(s[2]));
    }
};
struct RowDxNeg3 {  // 1 0 -1
    static constexpr int K = 3, planes = 1;
    template <class P, class V> static void f(const V* s, V* o) { o[0] = P::sub(s[0], s[2]); }
};
struct RowDxNeg5 {  // 1 2 0 -2 -1
    static constexpr int K = 5, planes = 1;
    template <class P, class V> static void f(const V* s, V* o) {
        o[0] = P::sub(P::sub(P::add(s[0], P::template mul<2>(s[1])), P::template mul<2>(s[3])), s[4]);
    }
};
struct RowD2x3 {  // 1 -2 1
    static constexpr int K = 3, planes = 1;
    template <class P, class V> static void f(const V* s, V* o) {
        o[0] = P::add(P::sub(s[0], P::template mul<2>(s[1])), s[2]);
    }
};
struct RowD2x5 {  // 1 0 -2 0 1
    static constexpr int K = 5, planes = 1;
    template <class P, class V> static void f(const V* s, V* o) {
        o[0] = P::add(P::sub(s[0], P::template mul<2>(s[2])), s[4]);
    }
};
struct RowSobel3 {  // 1 2 1
    static constexpr int K = 3, planes = 1;
    template <class P, class V> static void f(const V* s, V* o) {
        o[0] = P::add(P::add(s[0], P::template mul<2>(s[1])), s[2]);
    }
};
struct RowSobel5 {  // 1 4 6 4 1
    static constexpr int K = 5, planes = 1;
    template <class P, class V> static void f(const V* s, V* o) {
        o[0] = P::add(P::add(P::add(P::add(s[0], P::template mul<4>(s[1])), P::template mul<6>(s[2])),
                             P::template mul<4>(s[3])),
                      s[4]);
    }
};
struct RowAvr3 {
    static constexpr int K = 3, planes = 1;
    template <class P, class V> static void f(const V* s, V* o) { o[0] = P::add(P::add(s[0], s[1]), s[2]); }
};
struct RowAvr5 {
    static constexpr int K = 5, planes = 1;
    template <class P, class V> static void f(const V* s, V* o) {
        o[0] = P::add(P::add(P::add(P::add(s[0], s[1]), s[2]), s[3]), s[4]);
    }
};
// Two planes: the side sum s[x-1] + s[x+1] and the centre term 8 * s[x].
struct RowLap3 {
    static constexpr int K = 3, planes = 2;
    template <class P, class V> static void f(const V* s, V* o) {
        o[0] = P::add(s[0], s[2]);
        o[1] = P::template mul<8>(s[1]);
    }
};

// ---------------------------------------------------------------- column kernels
// Tap t reads plane plane[t] of ring row t.

struct ColScharr3 {
    static constexpr int K = 3; static constexpr int plane[K] = {0, 0, 0};
    template <class P, class V> static V f(const V* r) {
        return P::add(P::add(P::template mul<3>(r[0]), P::template mul<10>(r[1])), P::template mul<3>(r[2]));
    }
};
struct ColDx3 {
    static constexpr int K = 3; static constexpr int plane[K] = {0, 0, 0};
    template <class P, class V> static V f(const V* r) { return P::sub(r[2], r[0]); }
};
struct ColSobel3 {
    static constexpr int K = 3; static constexpr int plane[K] = {0, 0, 0};
    template <class P, class V> static V f(const V* r) { return P::add(P::add(r[0], P::template mul<2>(r[1])), r[2]); }
};
struct ColSobel5 {
    static constexpr int K = 5; static constexpr int plane[K] = {0, 0, 0, 0, 0};
    template <class P, class V> static V f(const V* r) {
        return P::add(P::add(P::add(P::add(r[0], P::template mul<4>(r[1])), P::template mul<6>(r[2])),
                             P::template mul<4>(r[3])),
                      r[4]);
    }
};
struct ColDx5 {  // r4 - r0 + 2 (r3 - r1)
    static constexpr int K = 5; static constexpr int plane[K] = {0, 0, 0, 0, 0};
    template <class P, class V> static V f(const V* r) {
        return P::add(P::sub(r[4], r[0]), P::template mul<2>(P::sub(r[3], r[1])));
    }
};
struct ColD2x3 {
    static constexpr int K = 3; static constexpr int plane[K] = {0, 0, 0};
    template <class P, class V> static V f(const V* r) { return P::add(P::sub(r[0], P::template mul<2>(r[1])), r[2]); }
};
struct ColD2x5 {
    static constexpr int K = 5; static constexpr int plane[K] = {0, 0, 0, 0, 0};
    template <class P, class V> static V f(const V* r) { return P::add(P::sub(r[0], P::template mul<2>(r[2])), r[4]); }
};
struct ColLap3 {  // 2 (A0 + A2) - B1
    static constexpr int K = 3; static constexpr int plane[K] = {0, 1, 0};
    template <class P, class V> static V f(const V* r) { return P::sub(P::template mul<2>(P::add(r[0], r[2])), r[1]); }
};
template <class Col>
struct ColNeg {
    static constexpr int K = Col::K; static constexpr const int* plane = Col::plane;
    template <class P, class V> static V f(const V* r) { return P::neg(Col::template f<P>(r)); }
};
struct ColAvr3 {
    static constexpr int K = 3; static constexpr int plane[K] = {0, 0, 0};
    template <class P, class V> static V f(const V* r) { return P::add(P::add(r[0], r[1]), r[2]); }
};
struct ColAvr5 {
    static constexpr int K = 5; static constexpr int plane[K] = {0, 0, 0, 0, 0};
    template <class P, class V> static V f(const V* r) {
        return P::add(P::add(P::add(P::add(r[0], r[1]), r[2]), r[3]), r[4]);
    }
};

// ---------------------------------------------------------------- output stages
// put(): columns of the vector rule; tail(): the row's last columns where a
// form rounds differently there. vectorEnd(w): where the tail begins.

struct Put16s {
    static int vectorEnd(int w) { return w; }
    template <class P, class V> static void put(Zev16s* d, V v, float) { P::store(d, v); }
};
struct Add16s {  // adds to what the row holds, wrapping
    static int vectorEnd(int w) { return w; }
    template <class P, class V> static void put(Zev16s* d, V v, float) { P::store(d, P::add(P::load(d), v)); }
};
struct Put32f {
    static int vectorEnd(int w) { return w; }
    template <class P, class V> static void put(Zev32f* d, V v, float) { P::store(d, v); }
};
struct Add32f {
    static int vectorEnd(int w) { return w; }
    template <class P, class V> static void put(Zev32f* d, V v, float) { P::store(d, P::add(P::load(d), v)); }
};
template <int Taps>
struct Avr32f {  // plain average in float
    static constexpr float kScale = Taps == 3 ? 0.11111111f : 0.04f;
    static int vectorEnd(int w) { return w; }
    template <class P, class V> static void put(Zev32f* d, V v, float) { P::store(d, P::scale(v, kScale)); }
};

// 8-bit signed output: the wrapped 16-bit sum times 1/divisor; leading columns in
// blocks of four round to nearest even, the last width % 4 columns truncate.
struct Put8s {
    static int vectorEnd(int w) { return w & ~3; }
    static float value(int s, float inv) {
        return static_cast<float>(static_cast<Zev16s>(static_cast<std::uint16_t>(s))) * inv;
    }
    template <class P, class V> static void put(Zev8s* d, V v, float inv) {
        if constexpr (P::N == 1) {
            float r = std::nearbyint(value(v, inv));
            *d = static_cast<Zev8s>(static_cast<int>(std::min(127.0f, std::max(-128.0f, r))));
        } else {
            P::storeS8(d, v, inv);
        }
    }
    static void tail(Zev8s* d, int s, float inv) {
        float f = std::min(127.0f, std::max(-128.0f, value(s, inv)));
        *d = static_cast<Zev8s>(static_cast<int>(f));
    }
};

// 8-bit average of 9 or 25 pixels in fixed point: (s + 5) * 7280 >> 16 and
// s * 2621 >> 16. The 5x5 form has no rounding term.
template <int Taps>
struct Avr8u {
    static constexpr int kMul = Taps == 3 ? 7280 : 2621;
    static constexpr int kAdd = Taps == 3 ? 5 : 0;
    static int vectorEnd(int w) { return w; }
    template <class P, class V> static void put(Zev8u* d, V v, float) {
        if constexpr (P::N == 1) {
            int r = ((static_cast<Zev16s>(static_cast<std::uint16_t>(v)) + kAdd) * kMul) >> 16;
            *d = static_cast<Zev8u>(std::min(255, std::max(0, r)));
        } else {
            V s = P::clampLow0(P::add(v, P::splat16(kAdd)));
            P::storeU8(d, P::mulhiU(s, static_cast<std::uint16_t>(kMul)));
        }
    }
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
inline void rowWindow(const Src* s, Mid* d, int planeStride) {
    using SP = typename PolicyOf<Mid>::S;
    typename SP::V t[Op::K], o[2];
    for (int i = 0; i < Op::K; ++i) t[i] = SP::load(s + i);
    Op::template f<SP>(t, o);
    for (int p = 0; p < Op::planes; ++p) SP::store(d + p * planeStride, o[p]);
}

// One row through a K-tap kernel with anchor K/2. Border columns take their
// windows from the scratch line, the others straight from the row.
template <class Op, class Src, class Mid>
void ownFixedRow(const Src* src, Mid* dst, int w, int planeStride, int border, Src value, Src* line) {
    using VP = typename PolicyOf<Mid>::V;
    constexpr int K = Op::K, a = K / 2;
    auto window = [&](const Src* s, Mid* d) { rowWindow<Op>(s, d, planeStride); };
    const int r = fillBorder<Src>(src, line, w, K, a, border, &value);
    const int left = std::min(a, w);
    for (int i = 0; i < left; ++i) window(line + i, dst + i);
    int n = w - K + 1;
    if (n > 0) {
        Mid* d = dst + a;
        int i = 0;
        for (; i + VP::N <= n; i += VP::N) {
            typename VP::V t[K], o[2];
            for (int k = 0; k < K; ++k) t[k] = VP::load(src + i + k);
            Op::template f<VP>(t, o);
            for (int p = 0; p < Op::planes; ++p) VP::store(d + i + p * planeStride, o[p]);
        }
        for (; i < n; ++i) window(src + i, d + i);
    }
    const int right = std::min(K - 1 - a, w - a);
    Mid* d = dst + a + std::max(0, n);
    for (int i = 0; i < right; ++i) window(line + r + i, d + i);
}

template <class Out> struct HasTail {
    template <class O> static auto test(int) -> decltype(&O::tail, std::true_type{});
    template <class O> static std::false_type test(...);
    static constexpr bool value = decltype(test<Out>(0))::value;
};

// One output row from K ring rows.
template <class Op, class Out, class Mid, class Dst>
void ownFixedColumn(const Mid* const* rows, Dst* dst, int w, int planeStride, float inv) {
    using SP = typename PolicyOf<Mid>::S;
    using VP = typename PolicyOf<Mid>::V;
    constexpr int K = Op::K;
    const Mid* r[K];
    for (int k = 0; k < K; ++k) r[k] = rows[k] + Op::plane[k] * planeStride;
    const int xv = Out::vectorEnd(w);
    int x = 0;
    for (; x + VP::N <= xv; x += VP::N) {
        typename VP::V t[K];
        for (int k = 0; k < K; ++k) t[k] = VP::load(r[k] + x);
        Out::template put<VP>(dst + x, Op::template f<VP>(t), inv);
    }
    for (; x < w; ++x) {
        typename SP::V t[K];
        for (int k = 0; k < K; ++k) t[k] = SP::load(r[k] + x);
        typename SP::V v = Op::template f<SP>(t);
        if constexpr (HasTail<Out>::value) {
            if (x >= xv) {
                Out::tail(dst + x, v, inv);
                continue;
            }
        }
        Out::template put<SP>(dst + x, v, inv);
    }
}

// The column table of one output form; entries 8 to 10 differ between forms.
// Fused 3x3 step: the new row (the window's third) through the row kernel into
// its ring row, and in the same pass the output row from the two older ring rows
// and the new values still in registers. Same numbers as the row routine
// followed by the column routine.
template <class RowOp, class ColOp, class Out, class Src, class Mid, class Dst>
void ownFixedRowColumn(const Src* src, Mid* slot, const Mid* r0, const Mid* r1, Dst* dst, int w, int border,
                       Src value, Src* line) {
    static_assert(RowOp::K == 3 && ColOp::K == 3 && RowOp::planes == 1, "3x3 single-plane kernels");
    using SP = typename PolicyOf<Mid>::S;
    using VP = typename PolicyOf<Mid>::V;
    const Mid* rows[3] = {r0, r1, slot};
    if (w - 2 < VP::N) {
        ownFixedRow<RowOp, Src, Mid>(src, slot, w, 0, border, value, line);
        ownFixedColumn<ColOp, Out, Mid, Dst>(rows, dst, w, 0, 1.0f);
        return;
    }
    const int r = fillBorder<Src>(src, line, w, 3, 1, border, &value);
    rowWindow<RowOp>(line, slot, 0);
    rowWindow<RowOp>(line + r, slot + w - 1, 0);
    int x = 1;
    for (; x + VP::N <= w - 1; x += VP::N) {
        typename VP::V t[3], o[2];
        for (int k = 0; k < 3; ++k) t[k] = VP::load(src + x - 1 + k);
        RowOp::template f<VP>(t, o);
        VP::store(slot + x, o[0]);
        typename VP::V c[3] = {VP::load(r0 + x), VP::load(r1 + x), o[0]};
        Out::template put<VP>(dst + x, ColOp::template f<VP>(c), 1.0f);
    }
    const int fused = x;
    for (; x < w - 1; ++x) rowWindow<RowOp>(src + x - 1, slot + x, 0);
    auto column = [&](int xc) {
        typename SP::V c[3] = {SP::load(r0 + xc), SP::load(r1 + xc), SP::load(slot + xc)};
        Out::template put<SP>(dst + xc, ColOp::template f<SP>(c), 1.0f);
    };
    column(0);
    for (x = fused; x < w; ++x) column(x);
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

// Float column of any length, taps summed from tap 0 upward.
inline void ownColumnTaps32f(const Zev32f* const* rows, const Zev32f* kernel, int K, Zev32f* dst, int w) {
    int x = 0;
    for (; x + VF::N <= w; x += VF::N) {
        typename VF::V acc = VF::mul(VF::load(rows[0] + x), kernel[0]);
        for (int t = 1; t < K; ++t) acc = VF::add(acc, VF::mul(VF::load(rows[t] + x), kernel[t]));
        VF::store(dst + x, acc);
    }
    for (; x < w; ++x) {
        float acc = rows[0][x] * kernel[0];
        for (int t = 1; t < K; ++t) acc = acc + rows[t][x] * kernel[t];
        dst[x] = acc;
    }
}

template <class Out, class Mid, class Dst>
constexpr std::array<ColFn<Mid, Dst>, 13> columnTable(ColFn<Mid, Dst> e8, ColFn<Mid, Dst> e9, ColFn<Mid, Dst> e10) {
    return {ownFixedColumn<ColScharr3, Out, Mid, Dst>, ownFixedColumn<ColDx3, Out, Mid, Dst>,
            ownFixedColumn<ColSobel3, Out, Mid, Dst>,  ownFixedColumn<ColSobel5, Out, Mid, Dst>,
            ownFixedColumn<ColDx5, Out, Mid, Dst>,     ownFixedColumn<ColD2x3, Out, Mid, Dst>,
            ownFixedColumn<ColD2x5, Out, Mid, Dst>,    ownFixedColumn<ColLap3, Out, Mid, Dst>,
            e8, e9, e10,
            ownFixedColumn<ColNeg<ColSobel3>, Out, Mid, Dst>, ownFixedColumn<ColNeg<ColSobel5>, Out, Mid, Dst>};
}

template <class Src>
constexpr std::array<RowFn<Src, typename PolicyOf<Src>::Mid>, 11> rowTable() {
    using M = typename PolicyOf<Src>::Mid;
    return {ownFixedRow<RowDx3, Src, M>,    ownFixedRow<RowScharr3, Src, M>, ownFixedRow<RowDxNeg3, Src, M>,
            ownFixedRow<RowDxNeg5, Src, M>, ownFixedRow<RowD2x3, Src, M>,    ownFixedRow<RowD2x5, Src, M>,
            ownFixedRow<RowSobel3, Src, M>, ownFixedRow<RowSobel5, Src, M>,  ownFixedRow<RowAvr3, Src, M>,
            ownFixedRow<RowAvr5, Src, M>,   ownFixedRow<RowLap3, Src, M>};
}

// The tables by index, for this instruction level.
inline const KernelSet& kernelSet() {
    static constexpr auto row8u = rowTable<Zev8u>();
    static constexpr auto row32f = rowTable<Zev32f>();
    static constexpr auto col16s = columnTable<Put16s, Zev16s, Zev16s>(
        ownFixedColumn<ColSobel5, Add16s, Zev16s, Zev16s>, ownFixedColumn<ColNeg<ColSobel3>, Put16s, Zev16s, Zev16s>,
        ownFixedColumn<ColNeg<ColSobel5>, Put16s, Zev16s, Zev16s>);
    static constexpr auto col8s = columnTable<Put8s, Zev16s, Zev8s>(
        ownFixedColumn<ColLap3, Put8s, Zev16s, Zev8s>, ownFixedColumn<ColNeg<ColSobel3>, Put8s, Zev16s, Zev8s>,
        ownFixedColumn<ColNeg<ColSobel5>, Put8s, Zev16s, Zev8s>);
    static constexpr auto col32f = columnTable<Put32f, Zev32f, Zev32f>(
        ownFixedColumn<ColSobel5, Add32f, Zev32f, Zev32f>, ownFixedColumn<ColAvr3, Avr32f<3>, Zev32f, Zev32f>,
        ownFixedColumn<ColAvr5, Avr32f<5>, Zev32f, Zev32f>);
    static constexpr ColFn<Zev16s, Zev8u> col8u[2] = {ownFixedColumn<ColAvr3, Avr8u<3>, Zev16s, Zev8u>,
                                                      ownFixedColumn<ColAvr5, Avr8u<5>, Zev16s, Zev8u>};
    static constexpr auto rowcol8u = rowColumnTable<Zev8u>();
    static constexpr auto rowcol32f = rowColumnTable<Zev32f>();
    static constexpr KernelSet set{row8u.data(), row32f.data(), col16s.data(),   col8s.data(),     col32f.data(),
                                   col8u,        ownColumnTaps32f, rowcol8u.data(), rowcol32f.data()};
    return set;
}

}  // namespace v8::fixed::FIXED_ISA
