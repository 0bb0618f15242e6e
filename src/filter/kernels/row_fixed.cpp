// Fixed-weight row routines: one template per element type, instantiated per
// kernel; the tables below hold them by index.
#include "filter/kernels/row_fixed.h"

#include <cstdint>
#include <type_traits>
#include <utility>

#include "filter/kernels/row.h"

namespace v8 {
namespace {

template <int... W>
struct Weights {
    static constexpr int K = sizeof...(W);
    static constexpr int w[K] = {W...};
};

using KerDx = Weights<-1, 0, 1>;
using KerScharr = Weights<3, 10, 3>;
using KerDxNeg3 = Weights<1, 0, -1>;
using KerDxNeg5 = Weights<1, 2, 0, -2, -1>;
using KerDx2_3 = Weights<1, -2, 1>;
using KerDx2_5 = Weights<1, 0, -2, 0, 1>;
using KerSobel3 = Weights<1, 2, 1>;
using KerSobel5 = Weights<1, 4, 6, 4, 1>;
using KerAvr3 = Weights<1, 1, 1>;
using KerAvr5 = Weights<1, 1, 1, 1, 1>;
using KerLapA = Weights<1, 0, 1>;
using KerLapB = Weights<0, 8, 0>;

// 8-bit rows under small integer weights: every sum is exact in 16 bits, so
// interior and border columns agree and the vector form works in 16-bit lanes.
template <class Wt>
struct RowFixed8u16s {
    using Src = Zev8u;
    using Dst = Zev16s;
    static constexpr int kLanes = 8;
    static constexpr int K = Wt::K;
    bool vectorMiddle(int) const { return true; }
    Dst mid(const Src* p, int s) const {
        int v = 0;
        for (int j = 0; j < K; ++j) v += Wt::w[j] * p[j * s];
        return static_cast<Dst>(v);
    }
    Dst edge(const Src* p, int s) const { return mid(p, s); }
    template <int, class Taps>
    void vec(const Taps& t, int e, Dst* out) const {
        __m128i acc = _mm_setzero_si128();
        for (int j = 0; j < K; ++j) {
            if (Wt::w[j] == 0) continue;
            __m128i x = pipe::load8x16(t.at(j, e));
            acc = _mm_add_epi16(acc, Wt::w[j] == 1 ? x : _mm_mullo_epi16(x, _mm_set1_epi16(Wt::w[j])));
        }
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out), acc);
    }
};

// Float rows go through the general float rule with the weights as a kernel.
template <class Wt, std::size_t... I>
constexpr auto floatKernel(std::index_sequence<I...>) {
    struct Arr {
        Zev32f v[Wt::K];
    };
    return Arr{{static_cast<Zev32f>(Wt::w[I])...}};
}
template <class Wt>
constexpr auto kFloatKernel = floatKernel<Wt>(std::make_index_sequence<Wt::K>{});

template <class Src>
const Src* nextRow(const Src* p, int step) {
    return reinterpret_cast<const Src*>(reinterpret_cast<const std::uint8_t*>(p) + step);
}

// The rule for a weight set, per element type.
template <class Src, class Wt>
auto fixedRule(void* coef) {
    if constexpr (std::is_same_v<Src, Zev8u>) {
        (void)coef;
        return RowFixed8u16s<Wt>{};
    } else {
        return Row32f::make(kFloatKernel<Wt>.v, Wt::K, coef);
    }
}

// Rows through one weight set; with a second set (the Laplacian) each row also
// gets the second plane (width+7) & ~7 elements further on.
template <class Src, class Dst, class Wt, class Wt2 = void>
void fixedRows(const Src* src, int srcStep, Dst* const* dst, int width, int rows, int border, Src value,
               void* scratch) {
    // Line first, then the 16-aligned coefficient block of the float rule.
    auto base = reinterpret_cast<std::uintptr_t>(scratch);
    Src* line = reinterpret_cast<Src*>((base + 15) & ~std::uintptr_t{15});
    auto* coef = reinterpret_cast<std::uint8_t*>(line) + kRowLineBytes<Src>(5, 1);
    constexpr int a = Wt::K / 2;
    const auto rule = fixedRule<Src, Wt>(coef);
    if constexpr (std::is_void_v<Wt2>) {
        for (int y = 0; y < rows; ++y, src = nextRow(src, srcStep))
            ownRowPass<decltype(rule), 1>(rule, src, dst[y], width, a, border, &value, line);
    } else {
        const auto rule2 = fixedRule<Src, Wt2>(coef + kRowCoefBytes(Wt::K));
        for (int y = 0; y < rows; ++y, src = nextRow(src, srcStep)) {
            ownRowPass<decltype(rule), 1>(rule, src, dst[y], width, a, border, &value, line);
            ownRowPass<decltype(rule2), 1>(rule2, src, dst[y] + ((width + 7) & ~7), width, a, border, &value, line);
        }
    }
}

// Line of 5 taps (12 elements of up to 4 bytes) + coefficient registers + alignment.
static_assert(kRowLineBytes<Zev32f>(5, 1) + kRowCoefBytes(6) + 15 <= kFixedRowScratchBytes, "scratch too small");

template <class Src, class Dst>
struct Table {
    using Fn = void (*)(const Src*, int, Dst* const*, int, int, int, Src, void*);
    static constexpr Fn fns[kFixedRowCount] = {
        fixedRows<Src, Dst, KerDx>,     fixedRows<Src, Dst, KerScharr>, fixedRows<Src, Dst, KerDxNeg3>,
        fixedRows<Src, Dst, KerDxNeg5>, fixedRows<Src, Dst, KerDx2_3>,  fixedRows<Src, Dst, KerDx2_5>,
        fixedRows<Src, Dst, KerSobel3>, fixedRows<Src, Dst, KerSobel5>, fixedRows<Src, Dst, KerAvr3>,
        fixedRows<Src, Dst, KerAvr5>,   fixedRows<Src, Dst, KerLapA, KerLapB>,
    };
};

}  // namespace

const RowFixedFn_8u16s owntabRow_8u16s[kFixedRowCount] = {
    Table<Zev8u, Zev16s>::fns[0], Table<Zev8u, Zev16s>::fns[1], Table<Zev8u, Zev16s>::fns[2],
    Table<Zev8u, Zev16s>::fns[3], Table<Zev8u, Zev16s>::fns[4], Table<Zev8u, Zev16s>::fns[5],
    Table<Zev8u, Zev16s>::fns[6], Table<Zev8u, Zev16s>::fns[7], Table<Zev8u, Zev16s>::fns[8],
    Table<Zev8u, Zev16s>::fns[9], Table<Zev8u, Zev16s>::fns[10]};
const RowFixedFn_32f owntabRow_32f[kFixedRowCount] = {
    Table<Zev32f, Zev32f>::fns[0], Table<Zev32f, Zev32f>::fns[1], Table<Zev32f, Zev32f>::fns[2],
    Table<Zev32f, Zev32f>::fns[3], Table<Zev32f, Zev32f>::fns[4], Table<Zev32f, Zev32f>::fns[5],
    Table<Zev32f, Zev32f>::fns[6], Table<Zev32f, Zev32f>::fns[7], Table<Zev32f, Zev32f>::fns[8],
    Table<Zev32f, Zev32f>::fns[9], Table<Zev32f, Zev32f>::fns[10]};

}  // namespace v8
