// Thresholds: pixels beyond a threshold are replaced, the others copied.
#include <cstdint>

#include "frame/bands.h"
#include "frame/check.h"
#include "frame/core.h"
#include "frame/kernels/elementwise_ops.h"
#include "frame/kernels/rows_avx2.h"
#include "frame/kernels/simd.h"
#include "frame/prims.h"

namespace v8 {
namespace {

using kern::Plane;

bool knownCompare(int cmpOp) { return cmpOp == zevCmpLess || cmpOp == zevCmpGreater; }

template <class T>
ZevStatus checkValArgs(const T* src, int srcStep, T* dst, int dstStep, ZeviSize roi, int cmpOp) {
    return Check()
        .that(knownCompare(cmpOp), zevStsUnsupportedCompare)
        .ptrs(src, dst)
        .roi(roi)
        .positiveSteps(srcStep, dstStep);
}

// The rows of a region on the calling thread, in AVX2 registers where the
// processor has them.
template <bool Stream, class T, bool Greater>
void serialRows(const T* src, int srcStep, T* dst, int dstStep, ZeviSize roi,
                const kern::ThresholdValOp<T, Greater>& op) {
    if (simd::hasAvx2())
        ownThresholdValRows_avx2<T, Greater, Stream>(src, srcStep, dst, dstStep, roi.width, roi.height, op.thr,
                                                     op.val);
    else
        kern::mapRows<Stream>(Plane<T>{dst, dstStep}, roi.width, roi.height, op, Plane<const T>{src, srcStep});
}
template <bool Greater>
void serialRows(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep, ZeviSize roi,
                const kern::ThresholdOp_32f<Greater>& op) {
    if (simd::hasAvx2())
        ownThresholdRows_32f_avx2<Greater>(src, srcStep, dst, dstStep, roi.width, roi.height, op.thr);
    else
        kern::mapRows<false>(Plane<Zev32f>{dst, dstStep}, roi.width, roi.height, op,
                             Plane<const Zev32f>{src, srcStep});
}

// Large images of the 16-bit routine: stores go past the cache when the data
// would not stay in it anyway (and only when they do not overwrite the
// source), and with a thread budget the rows run in bands.
constexpr std::int64_t kStreamBytes = 0x40000;
constexpr int kBandMinSide = 192;

template <class T>
bool streamPastCache(const T* src, const T* dst, ZeviSize roi) {
    const std::int64_t bytes = rowBytes<T>(roi.width) * roi.height;
    int cacheBytes = 0;
    return bytes > kStreamBytes && zevGetMaxCacheSizeB(&cacheBytes) == zevStsNoError && bytes > cacheBytes / 2 &&
           static_cast<const void*>(src) != static_cast<const void*>(dst);
}

template <bool Stream, class T, class Op>
void bandedRows(const T* src, int srcStep, T* dst, int dstStep, ZeviSize roi, const Op& op) {
    const int threads = ownGetNumThreads();
    if (threads > 1 && roi.width >= kBandMinSide && roi.height >= kBandMinSide) {
        forEachBand(threads, roi.height, [&](const Band& b) {
            serialRows<Stream>(b.rowPtr(src, srcStep), srcStep, b.rowPtr(dst, dstStep), dstStep,
                               ZeviSize{roi.width, b.rows}, op);
        });
    } else {
        serialRows<Stream>(src, srcStep, dst, dstStep, roi, op);
    }
}

template <class T, class Op>
void largeImageRows(const T* src, int srcStep, T* dst, int dstStep, ZeviSize roi, const Op& op) {
    if (streamPastCache(src, dst, roi)) bandedRows<true>(src, srcStep, dst, dstStep, roi, op);
    else bandedRows<false>(src, srcStep, dst, dstStep, roi, op);
}

// Checks, then runs rows(op) with the operation of the compare code.
template <class T, class Rows>
ZevStatus thresholdVal(const T* src, int srcStep, T* dst, int dstStep, ZeviSize roi, T threshold, T value,
                       int cmpOp, Rows rows) {
    ZevStatus st = checkValArgs(src, srcStep, dst, dstStep, roi, cmpOp);
    if (st != zevStsNoError) return st;
    if (cmpOp == zevCmpGreater) rows(kern::ThresholdValOp<T, true>(threshold, value));
    else rows(kern::ThresholdValOp<T, false>(threshold, value));
    return zevStsNoError;
}

}  // namespace

ZevStatus zeviThreshold_Val_8u_C1R(const Zev8u* src, int srcStep, Zev8u* dst, int dstStep, ZeviSize roiSize,
                                   Zev8u threshold, Zev8u value, int cmpOp) {
    return thresholdVal(src, srcStep, dst, dstStep, roiSize, threshold, value, cmpOp,
                        [&](const auto& op) { serialRows<false>(src, srcStep, dst, dstStep, roiSize, op); });
}

ZevStatus zeviThreshold_Val_16u_C1R(const Zev16u* src, int srcStep, Zev16u* dst, int dstStep, ZeviSize roiSize,
                                    Zev16u threshold, Zev16u value, int cmpOp) {
    return thresholdVal(src, srcStep, dst, dstStep, roiSize, threshold, value, cmpOp,
                        [&](const auto& op) { largeImageRows(src, srcStep, dst, dstStep, roiSize, op); });
}

ZevStatus zeviThreshold_GTVal_8u_C1R(const Zev8u* src, int srcStep, Zev8u* dst, int dstStep, ZeviSize roiSize,
                                     Zev8u threshold, Zev8u value) {
    return zeviThreshold_Val_8u_C1R(src, srcStep, dst, dstStep, roiSize, threshold, value, zevCmpGreater);
}

ZevStatus zeviThreshold_GTVal_16u_C1R(const Zev16u* src, int srcStep, Zev16u* dst, int dstStep, ZeviSize roiSize,
                                      Zev16u threshold, Zev16u value) {
    return zeviThreshold_Val_16u_C1R(src, srcStep, dst, dstStep, roiSize, threshold, value, zevCmpGreater);
}

ZevStatus zeviThreshold_32f_C1R(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep, ZeviSize roiSize,
                                Zev32f threshold, int cmpOp) {
    const std::int64_t row = rowBytes<Zev32f>(roiSize.width);
    ZevStatus st = Check()
                       .ptrs(src, dst)
                       .roi(roiSize)
                       .step(srcStep, row)
                       .step(dstStep, row)
                       .that(knownCompare(cmpOp), zevStsUnsupportedCompare);
    if (st != zevStsNoError) return st;
    if (cmpOp == zevCmpGreater)
        serialRows(src, srcStep, dst, dstStep, roiSize, kern::ThresholdOp_32f<true>(threshold));
    else
        serialRows(src, srcStep, dst, dstStep, roiSize, kern::ThresholdOp_32f<false>(threshold));
    return zevStsNoError;
}

ZevStatus zeviThreshold_LT_32f_C1R(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep, ZeviSize roiSize,
                                   Zev32f threshold) {
    return zeviThreshold_32f_C1R(src, srcStep, dst, dstStep, roiSize, threshold, zevCmpLess);
}

}  // namespace v8
