// Absolute difference of two images, or of an image and a constant.
#include <algorithm>
#include <cstdint>

#include "arith/kernels/absdiff.h"
#include "arith/region.h"
#include "frame/bands.h"
#include "frame/check.h"
#include "frame/core.h"
#include "frame/kernels/simd.h"
#include "zev_impl.h"

namespace v8 {
namespace {

// Bytes a kernel call touches, per element of its band, for the cache test of
// the wide types (8-bit images have none).
template <class T, bool Const>
constexpr int kTouchedPerElement = sizeof(T) == 2 ? 6 : (Const ? 8 : 12);

// Writes go past the cache when the band's data would not fit in it anyway.
template <class T, bool Const>
bool streamStores(int width, int rows) {
    return beyondCache(std::int64_t{kTouchedPerElement<T, Const>} * width * rows);
}

template <class T>
ZevStatus absDiff(const T* src1, int src1Step, const T* src2, int src2Step, T* dst, int dstStep, ZeviSize roi) {
    ZevStatus st = checkTwoSourcesOneDest(src1, src1Step, src2, src2Step, dst, dstStep, roi);
    if (st != zevStsNoError) return st;
    const bool avx2 = simd::hasAvx2();
    runRegion(roi.width, roi.height, [&](const Band& b) {
        const T* a = b.rowPtr(src1, src1Step);
        const T* c = b.rowPtr(src2, src2Step);
        T* d = b.rowPtr(dst, dstStep);
        if constexpr (sizeof(T) > 1) {
            if (streamStores<T, false>(roi.width, b.rows))
                return ownAbsDiffRows_W7<T, true>(a, src1Step, c, src2Step, d, dstStep, roi.width, b.rows);
        }
        if (avx2)
            ownAbsDiffRows_avx2<T>(a, src1Step, c, src2Step, d, dstStep, roi.width, b.rows);
        else
            ownAbsDiffRows_W7<T, false>(a, src1Step, c, src2Step, d, dstStep, roi.width, b.rows);
    });
    return zevStsNoError;
}

// value arrives already clamped to the element's range.
template <class T>
ZevStatus absDiffC(const T* src, int srcStep, T* dst, int dstStep, ZeviSize roi, T value) {
    const bool avx2 = simd::hasAvx2();
    runRegion(roi.width, roi.height, [&](const Band& b) {
        const T* a = b.rowPtr(src, srcStep);
        T* d = b.rowPtr(dst, dstStep);
        if constexpr (sizeof(T) > 1) {
            if (streamStores<T, true>(roi.width, b.rows))
                return ownAbsDiffCRows_W7<T, true>(a, srcStep, d, dstStep, roi.width, b.rows, value);
        }
        if (avx2)
            ownAbsDiffCRows_avx2<T>(a, srcStep, d, dstStep, roi.width, b.rows, value);
        else
            ownAbsDiffCRows_W7<T, false>(a, srcStep, d, dstStep, roi.width, b.rows, value);
    });
    return zevStsNoError;
}

template <class T>
ZevStatus checkC(const T* src, int srcStep, T* dst, int dstStep, ZeviSize roi) {
    const std::int64_t row = rowBytes<T>(roi.width);
    return Check().ptrs(src, dst).roi(roi).step(srcStep, row).step(dstStep, row).multiple(sizeof(T), srcStep, dstStep);
}

template <class T>
ZevStatus absDiffCClamped(const T* src, int srcStep, T* dst, int dstStep, ZeviSize roi, int value) {
    ZevStatus st = checkC(src, srcStep, dst, dstStep, roi);
    if (st != zevStsNoError) return st;
    constexpr int top = (1 << (8 * sizeof(T))) - 1;
    return absDiffC<T>(src, srcStep, dst, dstStep, roi, static_cast<T>(std::clamp(value, 0, top)));
}

}  // namespace
}  // namespace v8

using namespace v8;

extern "C" {

ZevStatus ZEVFN(zeviAbsDiff_8u_C1R)(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step, Zev8u* dst,
                                    int dstStep, ZeviSize roiSize) {
    return absDiff(src1, src1Step, src2, src2Step, dst, dstStep, roiSize);
}

// Three interleaved channels are one channel of three times the width.
ZevStatus ZEVFN(zeviAbsDiff_8u_C3R)(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step, Zev8u* dst,
                                    int dstStep, ZeviSize roiSize) {
    roiSize.width = static_cast<std::int32_t>(std::int64_t{roiSize.width} * 3);
    return ZEVFN(zeviAbsDiff_8u_C1R)(src1, src1Step, src2, src2Step, dst, dstStep, roiSize);
}

ZevStatus ZEVFN(zeviAbsDiff_16u_C1R)(const Zev16u* src1, int src1Step, const Zev16u* src2, int src2Step,
                                     Zev16u* dst, int dstStep, ZeviSize roiSize) {
    return absDiff(src1, src1Step, src2, src2Step, dst, dstStep, roiSize);
}

ZevStatus ZEVFN(zeviAbsDiff_32f_C1R)(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step,
                                     Zev32f* dst, int dstStep, ZeviSize roiSize) {
    return absDiff(src1, src1Step, src2, src2Step, dst, dstStep, roiSize);
}

ZevStatus ZEVFN(zeviAbsDiffC_8u_C1R)(const Zev8u* src, int srcStep, Zev8u* dst, int dstStep, ZeviSize roiSize,
                                     int value) {
    return absDiffCClamped(src, srcStep, dst, dstStep, roiSize, value);
}

ZevStatus ZEVFN(zeviAbsDiffC_16u_C1R)(const Zev16u* src, int srcStep, Zev16u* dst, int dstStep, ZeviSize roiSize,
                                      int value) {
    return absDiffCClamped(src, srcStep, dst, dstStep, roiSize, value);
}

ZevStatus ZEVFN(zeviAbsDiffC_32f_C1R)(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep, ZeviSize roiSize,
                                      Zev32f value) {
    ZevStatus st = checkC(src, srcStep, dst, dstStep, roiSize);
    if (st != zevStsNoError) return st;
    return absDiffC(src, srcStep, dst, dstStep, roiSize, value);
}

}  // extern "C"
