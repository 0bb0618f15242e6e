// Mean of a masked region; mean and standard deviation of a region, with or
// without a mask. Integer sums are exact; 32f sums follow fixed lane orders, and
// a deviation that cancels badly is recomputed around the single-precision mean.
#include <cmath>
#include <cstdint>
#include <type_traits>

#include "frame/bands.h"
#include "frame/check.h"
#include "frame/core.h"
#include "frame/kernels/simd.h"
#include "stats/kernels/mean.h"
#include "stats/kernels/stat_common.h"
#include "zev_impl.h"

namespace v8 {
namespace {

using stat::C1;
using stat::C3C;

template <class T>
constexpr bool kFloat = std::is_same_v<T, Zev32f>;

// Which of the two public forms: zeviMean_* (mean only, always masked) or
// zeviMean_StdDev_*.
enum class Form { Mean, MeanStdDev };

// The argument chain. The mask step is judged before the step multiple for 32f
// and after it for the other types.
template <class T, class L, bool Masked>
ZevStatus checkArgs(const T* src, int srcStep, const Zev8u* mask, int maskStep, ZeviSize roi, int coi,
                    bool meanMissing) {
    Check c;
    c.ptrs(src);
    if constexpr (Masked) c.ptrs(mask);
    c.that(!meanMissing, zevStsNullPointer).roi(roi);
    stat::srcStep<T, L>(c, srcStep, roi.width);
    if constexpr (Masked && kFloat<T>) stat::maskStep(c, maskStep, roi.width);
    stat::stepMultiple<T>(c, srcStep);
    if constexpr (Masked && !kFloat<T>) stat::maskStep(c, maskStep, roi.width);
    return stat::channelOfInterest<L>(c, coi);
}

// Per-thread partial sums: exact integers, or doubles for 32f.
template <class T>
struct Slot {
    using Sum = std::conditional_t<kFloat<T>, double, std::int64_t>;
    using Sq = std::conditional_t<kFloat<T>, double, std::uint64_t>;
    Sum sum;
    Sq sq;
    std::int32_t count;
};

// Parallel above M << 17 elements (M << 16 for the unmasked one-channel 32f
// deviation); the masked 8u mean and the three-channel 32f deviation stay serial,
// the unmasked one-channel 8u deviation only threads with more than one core.
template <class T, class L, bool Masked, Form F>
bool goParallel(int width, int height) {
    if constexpr (F == Form::Mean && std::is_same_v<T, Zev8u> && L::ch == 1) return false;
    if constexpr (!Masked && kFloat<T> && L::ch == 3) return false;
    constexpr int shift = (!Masked && kFloat<T> && L::ch == 1) ? 16 : 17;
    const std::int32_t elements = static_cast<std::int32_t>(std::int64_t{width} * height);
    if (elements < (std::int64_t{owncvGetMaxNumThreads()} << shift)) return false;
    if constexpr (!Masked && std::is_same_v<T, Zev8u> && L::ch == 1) return runomp() != 0;
    return true;
}

// The 32f unmasked kernel for a band of n pixels starting at src (the image's
// own pointer, before the channel offset).
template <class L>
SumSq64f unmasked32f(const float* src, const float* chan, int srcStep, int width, int rows) {
    const std::int64_t n = std::int64_t{width} * rows;
    if constexpr (L::ch == 1) {
        if (n <= 5000) return ownSumSq_32f_Pairs<L, false>(chan, srcStep, width, rows);
        const bool al = (ZEV_INT_PTR(src) & 3) == 0 && (srcStep & 15) == 0;
        if (n >= 100000 || !al) return ownSumSq_32f_Pairs<L, true>(chan, srcStep, width, rows);
        return ownSumSq_32f_Al<L>(chan, srcStep, width, rows);
    } else {
        if (n < 5000) return ownSumSq_32f_Pairs<L, false>(chan, srcStep, width, rows);
        if (simd::aligned16(src, srcStep)) return ownSumSq_32f_Al<L>(chan, srcStep, width, rows);
        return ownSumSq_32f_Pairs<L, true>(chan, srcStep, width, rows);
    }
}

// Sums of one band. src is the image pointer, chan its channel's first element.
template <class T, class L, bool Masked, Form F>
Slot<T> bandSums(const T* src, const T* chan, int srcStep, const Zev8u* mask, int maskStep, int width, int rows) {
    Slot<T> s{};
    if constexpr (kFloat<T>) {
        if constexpr (!Masked) {
            SumSq64f r = unmasked32f<L>(src, chan, srcStep, width, rows);
            s.sum = r.sum;
            s.sq = r.sq;
        } else {
            if constexpr (F == Form::Mean) {
                s.sum = ownSum_32f_M<L>(chan, srcStep, mask, maskStep, width, rows);
            } else {
                SumSq64f r = ownSumSq_32f_M<L>(chan, srcStep, mask, maskStep, width, rows);
                s.sum = r.sum;
                s.sq = r.sq;
            }
            s.count = ownCountMask(mask, maskStep, width, rows);
        }
    } else {
        IntSums r;
        if constexpr (std::is_same_v<T, Zev8u>) {
            if (L::ch == 1 && simd::hasAvx2()) r = ownSumSq_8u_C1_avx2<Masked>(chan, srcStep, mask, maskStep, width, rows);
            else r = ownSumSq_8u_V8<L, Masked>(chan, srcStep, mask, maskStep, width, rows);
        } else {
            r = ownSumSqInt<T, L, Masked>(chan, srcStep, mask, maskStep, width, rows);
        }
        s.sum = r.sum;
        s.sq = r.sq;
        s.count = r.count;
    }
    return s;
}

template <class T, class L, bool Masked, Form F>
ZevStatus meanStdDev(const T* src, int srcStep, const Zev8u* mask, int maskStep, ZeviSize roi, int coi,
                     Zev64f* mean, Zev64f* stdDev) {
    ZevStatus st = checkArgs<T, L, Masked>(src, srcStep, mask, maskStep, roi, coi, F == Form::Mean && !mean);
    if (st != zevStsNoError) return st;
    const int width = roi.width, height = roi.height;
    const T* chan = stat::channelBase<L>(src, coi);

    Slot<T> total{};
    if (!goParallel<T, L, Masked, F>(width, height)) {
        total = bandSums<T, L, Masked, F>(src, chan, srcStep, mask, maskStep, width, height);
    } else {
        forEachBandReduce<Slot<T>>(
            ownGetNumThreads(), height, Slot<T>{},
            [&](const Band& b, Slot<T>& slot) {
                slot = bandSums<T, L, Masked, F>(b.rowPtr(src, srcStep), b.rowPtr(chan, srcStep), srcStep,
                                                 Masked ? b.rowPtr(mask, maskStep) : mask, maskStep, width, b.rows);
            },
            [&](const Slot<T>* slots, int T_) {
                for (int t = 0; t < T_; ++t) total.count += slots[t].count;
                if constexpr (kFloat<T>) {
                    total.sum = sumSlotsInOrder(T_, [&](int t) { return slots[t].sum; });
                    total.sq = sumSlotsInOrder(T_, [&](int t) { return slots[t].sq; });
                } else {
                    for (int t = 0; t < T_; ++t) {
                        total.sum += slots[t].sum;
                        total.sq += slots[t].sq;
                    }
                }
            });
    }

    const double n = Masked ? double(total.count) : double(std::int64_t{width} * height);
    double m = 0, sd = 0;
    if (n != 0) {
        m = double(total.sum) / n;
        if constexpr (F == Form::MeanStdDev) {
            const double meanSq = double(total.sq) / n;
            sd = std::fabs(meanSq - m * m);
            sd = std::sqrt(sd);
            // The square sums cancel when the spread is small against the mean:
            // recompute around the single-precision mean, on this thread.
            if constexpr (kFloat<T>) {
                if (stdDev && 0.05 * m * m > sd * sd) {
                    double acc = ownSq_32f<L, Masked>(chan, srcStep, mask, maskStep, width, height,
                                                      static_cast<float>(m));
                    sd = std::sqrt(acc / n);
                }
            }
        }
    }
    if (mean) *mean = m;
    if constexpr (F == Form::MeanStdDev)
        if (stdDev) *stdDev = sd;
    return zevStsNoError;
}

}  // namespace
}  // namespace v8

using namespace v8;

#define ZEV_MEAN_M(T, tag)                                                                                 \
    ZevStatus ZEVFN(zeviMean_##tag##_C1MR)(const T* src, int srcStep, const Zev8u* mask, int maskStep,     \
                                           ZeviSize roiSize, Zev64f* mean) {                               \
        return meanStdDev<T, C1, true, Form::Mean>(src, srcStep, mask, maskStep, roiSize, 1, mean, nullptr); \
    }                                                                                                      \
    ZevStatus ZEVFN(zeviMean_##tag##_C3CMR)(const T* src, int srcStep, const Zev8u* mask, int maskStep,    \
                                            ZeviSize roiSize, int coi, Zev64f* mean) {                     \
        return meanStdDev<T, C3C, true, Form::Mean>(src, srcStep, mask, maskStep, roiSize, coi, mean,      \
                                                    nullptr);                                              \
    }

#define ZEV_MEAN_SD(T, tag)                                                                                  \
    ZevStatus ZEVFN(zeviMean_StdDev_##tag##_C1R)(const T* src, int srcStep, ZeviSize roiSize, Zev64f* mean,  \
                                                 Zev64f* stdDev) {                                           \
        return meanStdDev<T, C1, false, Form::MeanStdDev>(src, srcStep, nullptr, 0, roiSize, 1, mean, stdDev); \
    }                                                                                                        \
    ZevStatus ZEVFN(zeviMean_StdDev_##tag##_C3CR)(const T* src, int srcStep, ZeviSize roiSize, int coi,      \
                                                  Zev64f* mean, Zev64f* stdDev) {                            \
        return meanStdDev<T, C3C, false, Form::MeanStdDev>(src, srcStep, nullptr, 0, roiSize, coi, mean,     \
                                                           stdDev);                                          \
    }                                                                                                        \
    ZevStatus ZEVFN(zeviMean_StdDev_##tag##_C1MR)(const T* src, int srcStep, const Zev8u* mask, int maskStep, \
                                                  ZeviSize roiSize, Zev64f* mean, Zev64f* stdDev) {          \
        return meanStdDev<T, C1, true, Form::MeanStdDev>(src, srcStep, mask, maskStep, roiSize, 1, mean,     \
                                                         stdDev);                                            \
    }                                                                                                        \
    ZevStatus ZEVFN(zeviMean_StdDev_##tag##_C3CMR)(const T* src, int srcStep, const Zev8u* mask,             \
                                                   int maskStep, ZeviSize roiSize, int coi, Zev64f* mean,    \
                                                   Zev64f* stdDev) {                                         \
        return meanStdDev<T, C3C, true, Form::MeanStdDev>(src, srcStep, mask, maskStep, roiSize, coi, mean,  \
                                                          stdDev);                                           \
    }

extern "C" {
ZEV_MEAN_M(Zev8u, 8u)
ZEV_MEAN_M(Zev8s, 8s)
ZEV_MEAN_M(Zev16u, 16u)
ZEV_MEAN_M(Zev32f, 32f)
ZEV_MEAN_SD(Zev8u, 8u)
ZEV_MEAN_SD(Zev8s, 8s)
ZEV_MEAN_SD(Zev16u, 16u)
ZEV_MEAN_SD(Zev32f, 32f)
}  // extern "C"
