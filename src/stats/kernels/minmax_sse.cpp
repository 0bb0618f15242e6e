#define ZEV_ISA sse
#include "stats/kernels/minmax_body.h"

namespace v8 {

template <class T, class L, bool Masked>
MinMaxStage<T> ownMinMaxIndx_V8_1(const T* src, int srcStep, const Zev8u* mask, int maskStep, int width,
                                  int height) {
    return sse::stage<16, T, L, Masked>(src, srcStep, mask, maskStep, width, height);
}

#define ZEV_MINMAX_V8(T, L)                                                                                        \
    template MinMaxStage<T> ownMinMaxIndx_V8_1<T, L, false>(const T*, int, const Zev8u*, int, int, int); \
    template MinMaxStage<T> ownMinMaxIndx_V8_1<T, L, true>(const T*, int, const Zev8u*, int, int, int);
ZEV_MINMAX_V8(Zev8u, stat::C1)
ZEV_MINMAX_V8(Zev8u, stat::C3C)
ZEV_MINMAX_V8(Zev32f, stat::C1)
#undef ZEV_MINMAX_V8

int ownFirstSelectedRow(const Zev8u* mask, int maskStep, int width, int height) {
    const __m128i z = _mm_setzero_si128();
    for (int y = 0; y < height; ++y) {
        const Zev8u* m = stat::rowAt(mask, maskStep, y);
        int x = 0;
        for (; x + 16 <= width; x += 16)
            if (_mm_movemask_epi8(_mm_cmpeq_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(m + x)), z)) != 0xFFFF)
                return y;
        for (; x < width; ++x)
            if (m[x]) return y;
    }
    return height;
}

namespace {

// One lane step of the 32f search, as the vector instructions do it.
inline float keepMin(float best, float x) { return best < x ? best : x; }
inline float keepMax(float best, float x) { return best > x ? best : x; }

template <class Op>
inline float fold8(const float* l, Op op) {
    float a[4];
    for (int j = 0; j < 4; ++j) a[j] = op(l[j], l[j + 4]);
    return op(op(a[0], a[2]), op(a[1], a[3]));
}

}  // namespace

// The generic first stage: integer rows by plain row extremes (exact in any
// order), 32f rows on the eight lanes described with the declaration.
template <class T, class L, bool Masked>
MinMaxStage<T> ownMinMaxIndx_1(const T* src, int srcStep, const Zev8u* mask, int maskStep, int width, int height) {
    using Lim = MinMaxLimits<T>;
    using Val = typename Lim::Val;
    MinMaxStage<T> r;
    int y = r.template start<Masked>(mask, maskStep, width, height);
    float lo[8], hi[8];
    for (int j = 0; j < 8; ++j) {
        lo[j] = static_cast<float>(Lim::lo());
        hi[j] = static_cast<float>(Lim::hi());
    }
    for (; y < height; ++y) {
        const T* p = stat::rowAt(src, srcStep, y);
        const Zev8u* m = Masked ? stat::rowAt(mask, maskStep, y) : nullptr;
        Val rowMin, rowMax;
        if constexpr (std::is_same_v<T, float>) {
            const int blocks = width / 8 * 8;
            for (int x = 0; x < width; ++x) {
                if (Masked && !m[x]) continue;
                const int j = x < blocks ? x % 8 : 0;
                lo[j] = keepMin(lo[j], p[x * L::ch]);
                hi[j] = keepMax(hi[j], p[x * L::ch]);
            }
            rowMin = fold8(lo, keepMin);
            rowMax = fold8(hi, keepMax);
        } else {
            rowMin = Lim::lo();
            rowMax = Lim::hi();
            for (int x = 0; x < width; ++x) {
                Val v = p[x * L::ch];
                if (Masked && !m[x]) continue;
                rowMin = v < rowMin ? v : rowMin;
                rowMax = v > rowMax ? v : rowMax;
            }
        }
        r.take(rowMin, y, rowMax, y);
    }
    return r;
}

#define ZEV_MINMAX_1(T)                                                                                         \
    template MinMaxStage<T> ownMinMaxIndx_1<T, stat::C1, false>(const T*, int, const Zev8u*, int, int, int);  \
    template MinMaxStage<T> ownMinMaxIndx_1<T, stat::C1, true>(const T*, int, const Zev8u*, int, int, int);   \
    template MinMaxStage<T> ownMinMaxIndx_1<T, stat::C3C, false>(const T*, int, const Zev8u*, int, int, int); \
    template MinMaxStage<T> ownMinMaxIndx_1<T, stat::C3C, true>(const T*, int, const Zev8u*, int, int, int);
ZEV_MINMAX_1(Zev8u)
ZEV_MINMAX_1(Zev8s)
ZEV_MINMAX_1(Zev16u)
ZEV_MINMAX_1(Zev32f)
#undef ZEV_MINMAX_1

}  // namespace v8
