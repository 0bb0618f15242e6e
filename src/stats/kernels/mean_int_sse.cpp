#define ZEV_ISA sse
#include <type_traits>

#include "stats/kernels/mean_int_body.h"

namespace v8 {

template <class L, bool Masked>
IntSums ownSumSq_8u_V8(const Zev8u* src, int srcStep, const Zev8u* mask, int maskStep, int width, int height) {
    return sse::sumSq8u<16, L, Masked>(src, srcStep, mask, maskStep, width, height);
}

template IntSums ownSumSq_8u_V8<stat::C1, false>(const Zev8u*, int, const Zev8u*, int, int, int);
template IntSums ownSumSq_8u_V8<stat::C1, true>(const Zev8u*, int, const Zev8u*, int, int, int);
template IntSums ownSumSq_8u_V8<stat::C3C, false>(const Zev8u*, int, const Zev8u*, int, int, int);
template IntSums ownSumSq_8u_V8<stat::C3C, true>(const Zev8u*, int, const Zev8u*, int, int, int);

// Rows are cut into runs short enough for 32-bit row sums of 8-bit values
// (and of 16-bit sums); squares of 16-bit values go to 64 bits at once.
template <class T, class L, bool Masked>
IntSums ownSumSqInt(const T* src, int srcStep, const Zev8u* mask, int maskStep, int width, int height) {
    constexpr bool small = sizeof(T) == 1;
    using Sum = std::conditional_t<small, std::int32_t, std::int64_t>;
    using Sq = std::conditional_t<small, std::uint32_t, std::uint64_t>;
    constexpr int kRun = 65536;
    IntSums r;
    std::uint32_t count = 0;
    for (int y = 0; y < height; ++y) {
        const T* p = stat::rowAt(src, srcStep, y);
        const Zev8u* m = Masked ? stat::rowAt(mask, maskStep, y) : nullptr;
        for (int x0 = 0; x0 < width; x0 += kRun) {
            int x1 = width - x0 > kRun ? x0 + kRun : width;
            Sum s = 0;
            Sq q = 0;
            for (int x = x0; x < x1; ++x) {
                std::int32_t v = p[x * L::ch];
                if constexpr (Masked) {
                    std::int32_t on = m[x] != 0;
                    v *= on;
                    count += on;
                }
                s += v;
                std::uint32_t a = static_cast<std::uint32_t>(v < 0 ? -v : v);
                q += static_cast<Sq>(a * a);
            }
            r.sum += s;
            r.sq += q;
        }
    }
    r.count = static_cast<std::int32_t>(count);
    return r;
}

#define ZEV_SUMSQ_INT(T)                                                                               \
    template IntSums ownSumSqInt<T, stat::C1, false>(const T*, int, const Zev8u*, int, int, int);  \
    template IntSums ownSumSqInt<T, stat::C1, true>(const T*, int, const Zev8u*, int, int, int);   \
    template IntSums ownSumSqInt<T, stat::C3C, false>(const T*, int, const Zev8u*, int, int, int); \
    template IntSums ownSumSqInt<T, stat::C3C, true>(const T*, int, const Zev8u*, int, int, int);
ZEV_SUMSQ_INT(Zev8u)
ZEV_SUMSQ_INT(Zev8s)
ZEV_SUMSQ_INT(Zev16u)
#undef ZEV_SUMSQ_INT

}  // namespace v8
