// Minimum and maximum of a region, with or without a mask, on one channel, and
// the first position (row-major) of each. A first stage over all pixels keeps
// only values and row numbers, in parallel bands; a second scans the two
// winning rows for the columns.
#include <cstdint>
#include <type_traits>

#include "frame/bands.h"
#include "frame/check.h"
#include "frame/core.h"
#include "frame/kernels/simd.h"
#include "stats/kernels/minmax.h"
#include "stats/kernels/stat_common.h"
#include "zev_impl.h"

namespace v8 {
namespace {

using stat::C1;
using stat::C3C;

// Regions of this many pixels or more run the first stage in row bands.
constexpr std::int32_t kParallelPixels = 0x4000;

template <class T, class L, bool Masked>
ZevStatus checkArgs(const T* src, int srcStep, const Zev8u* mask, int maskStep, ZeviSize roi, int coi) {
    Check c;
    c.ptrs(src);
    if constexpr (Masked) c.ptrs(mask);
    c.roi(roi);
    stat::srcStep<T, L>(c, srcStep, roi.width);
    if constexpr (Masked) stat::maskStep(c, maskStep, roi.width);
    stat::stepMultiple<T>(c, srcStep);
    return stat::channelOfInterest<L>(c, coi);
}

template <class T, class L, bool Masked>
MinMaxStage<T> firstStage(const T* chan, int srcStep, const Zev8u* mask, int maskStep, int width, int rows) {
    // Vector kernels: 8u of either layout, 32f of one channel.
    constexpr bool vec = std::is_same_v<T, Zev8u> || (std::is_same_v<T, Zev32f> && L::ch == 1);
    if constexpr (vec) {
        if (L::ch == 1 && simd::hasAvx2())
            return ownMinMaxIndx_C1_avx2_1<T, Masked>(chan, srcStep, mask, maskStep, width, rows);
        return ownMinMaxIndx_V8_1<T, L, Masked>(chan, srcStep, mask, maskStep, width, rows);
    } else {
        return ownMinMaxIndx_1<T, L, Masked>(chan, srcStep, mask, maskStep, width, rows);
    }
}

// Band results in thread order. The first band that took part stands as it is;
// a later one replaces the minimum only if less, the maximum only if not less
// or equal (NaN included), the same tests the rows pass. So the first row with
// the extreme wins, as in one serial pass.
template <class T>
MinMaxStage<T> combine(const MinMaxStage<T>* slots, int count) {
    MinMaxStage<T> r;
    for (int t = 0; t < count; ++t) {
        const MinMaxStage<T>& s = slots[t];
        if (!s.found) continue;
        if (!r.found) {
            r = s;
            continue;
        }
        r.take(s.minVal, s.minRow, s.maxVal, s.maxRow);
    }
    return r;
}

template <class T, class L, bool Masked>
ZevStatus minMaxIndx(const T* src, int srcStep, const Zev8u* mask, int maskStep, ZeviSize roi, int coi,
                     Zev32f* minVal, Zev32f* maxVal, ZeviPoint* minIndex, ZeviPoint* maxIndex) {
    ZevStatus st = checkArgs<T, L, Masked>(src, srcStep, mask, maskStep, roi, coi);
    if (st != zevStsNoError) return st;
    const int width = roi.width, height = roi.height;
    const T* chan = stat::channelBase<L>(src, coi);

    MinMaxStage<T> s;
    const std::int32_t pixels = static_cast<std::int32_t>(std::int64_t{width} * height);
    if (pixels < kParallelPixels) {
        s = firstStage<T, L, Masked>(chan, srcStep, mask, maskStep, width, height);
    } else {
        forEachBandReduce<MinMaxStage<T>>(
            ownGetNumThreads(), height, MinMaxStage<T>{},
            [&](const Band& b, MinMaxStage<T>& slot) {
                slot = firstStage<T, L, Masked>(b.rowPtr(chan, srcStep), srcStep,
                                                Masked ? b.rowPtr(mask, maskStep) : mask, maskStep, width, b.rows);
                slot.minRow += b.y0;
                slot.maxRow += b.y0;
            },
            [&](const MinMaxStage<T>* slots, int T_) { s = combine(slots, T_); });
    }

    float lo = 0, hi = 0;
    ZeviPoint at0{0, 0}, at1{0, 0};
    if (s.found) {
        // A value that is not in its row (NaN, or the starting value of an
        // image of infinities) is not found: the vector scans of one-channel 8u
        // and 32f rows then stop at the row's end, the others leave column 0.
        constexpr bool scanToEnd = L::ch == 1 && !Masked && (std::is_same_v<T, Zev8u> || std::is_same_v<T, Zev32f>);
        const int notFound = scanToEnd ? width : 0;
        at0 = {ownMinMaxIndx_2<T, L, Masked>(stat::rowAt(chan, srcStep, s.minRow),
                                              Masked ? stat::rowAt(mask, maskStep, s.minRow) : nullptr, width,
                                              s.minVal, notFound),
               s.minRow};
        at1 = {ownMinMaxIndx_2<T, L, Masked>(stat::rowAt(chan, srcStep, s.maxRow),
                                              Masked ? stat::rowAt(mask, maskStep, s.maxRow) : nullptr, width,
                                              s.maxVal, notFound),
               s.maxRow};
        lo = static_cast<float>(s.minVal);
        hi = static_cast<float>(s.maxVal);
    }
    if (minVal) *minVal = lo;
    if (maxVal) *maxVal = hi;
    if (minIndex) *minIndex = at0;
    if (maxIndex) *maxIndex = at1;
    return zevStsNoError;
}

}  // namespace
}  // namespace v8

using namespace v8;

#define ZEV_MINMAX(T, tag)                                                                                       \
    ZevStatus ZEVFN(zeviMinMaxIndx_##tag##_C1R)(const T* src, int srcStep, ZeviSize roiSize, Zev32f* minVal,     \
                                                Zev32f* maxVal, ZeviPoint* minIndex, ZeviPoint* maxIndex) {      \
        return minMaxIndx<T, C1, false>(src, srcStep, nullptr, 0, roiSize, 1, minVal, maxVal, minIndex,          \
                                        maxIndex);                                                               \
    }                                                                                                            \
    ZevStatus ZEVFN(zeviMinMaxIndx_##tag##_C3CR)(const T* src, int srcStep, ZeviSize roiSize, int coi,           \
                                                 Zev32f* minVal, Zev32f* maxVal, ZeviPoint* minIndex,            \
                                                 ZeviPoint* maxIndex) {                                          \
        return minMaxIndx<T, C3C, false>(src, srcStep, nullptr, 0, roiSize, coi, minVal, maxVal, minIndex,       \
                                         maxIndex);                                                              \
    }                                                                                                            \
    ZevStatus ZEVFN(zeviMinMaxIndx_##tag##_C1MR)(const T* src, int srcStep, const Zev8u* mask, int maskStep,     \
                                                 ZeviSize roiSize, Zev32f* minVal, Zev32f* maxVal,               \
                                                 ZeviPoint* minIndex, ZeviPoint* maxIndex) {                     \
        return minMaxIndx<T, C1, true>(src, srcStep, mask, maskStep, roiSize, 1, minVal, maxVal, minIndex,       \
                                       maxIndex);                                                                \
    }                                                                                                            \
    ZevStatus ZEVFN(zeviMinMaxIndx_##tag##_C3CMR)(const T* src, int srcStep, const Zev8u* mask, int maskStep,    \
                                                  ZeviSize roiSize, int coi, Zev32f* minVal, Zev32f* maxVal,     \
                                                  ZeviPoint* minIndex, ZeviPoint* maxIndex) {                    \
        return minMaxIndx<T, C3C, true>(src, srcStep, mask, maskStep, roiSize, coi, minVal, maxVal, minIndex,    \
                                        maxIndex);                                                               \
    }

extern "C" {
ZEV_MINMAX(Zev8u, 8u)
ZEV_MINMAX(Zev8s, 8s)
ZEV_MINMAX(Zev16u, 16u)
ZEV_MINMAX(Zev32f, 32f)
}  // extern "C"
