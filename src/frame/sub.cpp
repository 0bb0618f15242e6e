// Subtraction of two images: dst = src2 - src1. Rows run through an OpenMP
// static loop; each row depends on nothing but its own pixels, so the split
// does not show in the result.
#include <cstdint>

#include "frame/check.h"
#include "frame/core.h"
#include "frame/kernels/elementwise_ops.h"
#include "frame/kernels/simd.h"
#include "frame/kernels/rows_avx2.h"
#include "frame/prims.h"

namespace v8 {
namespace {

using kern::Plane;

// Rows of a two-source operation on a static schedule of the thread budget, or
// on the calling thread; row(src1Row, src2Row, dstRow, width) does one row.
template <class T, class Row>
void subRows(const T* src1, int src1Step, const T* src2, int src2Step, T* dst, int dstStep, ZeviSize roi,
             const Row& row, bool parallel) {
    Plane<const T> a{src1, src1Step}, b{src2, src2Step};
    Plane<T> d{dst, dstStep};
    const int w = roi.width;
#pragma omp parallel for schedule(static) num_threads(ownGetNumThreads()) if (parallel)
    for (int y = 0; y < roi.height; ++y) row(a.row(y), b.row(y), d.row(y), w);
}

// Interleaved channels are one channel of channels times the width.
ZeviSize widen(ZeviSize roi, int channels) {
    roi.width = static_cast<std::int32_t>(static_cast<std::int64_t>(roi.width) * channels);
    return roi;
}

template <class Scale>
void subScaled(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step, Zev8u* dst, int dstStep,
               ZeviSize roi, Scale scale) {
    const kern::SubSfsOp_8u<Scale> op{scale};
    subRows(
        src1, src1Step, src2, src2Step, dst, dstStep, roi,
        [&](const Zev8u* a, const Zev8u* b, Zev8u* d, int w) { kern::mapRow<false>(d, w, op, a, b); }, true);
}

ZevStatus sub8uChannels(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step, Zev8u* dst, int dstStep,
                        ZeviSize roi, int scaleFactor, int channels) {
    if (roi.width < 1) return zevStsBadSize;
    return zeviSub_8u_C1RSfs(src1, src1Step, src2, src2Step, dst, dstStep, widen(roi, channels), scaleFactor);
}

}  // namespace

ZevStatus zeviSub_32f_C1R(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step, Zev32f* dst,
                          int dstStep, ZeviSize roiSize) {
    ZevStatus st = Check().ptrs(src1, src2, dst).roi(roiSize);
    if (st != zevStsNoError) return st;
    const bool parallel = std::int64_t{roiSize.width} + roiSize.height >= 256;
    if (simd::hasAvx2())
        subRows(src1, src1Step, src2, src2Step, dst, dstStep, roiSize, ownSub_32f_avx2, parallel);
    else
        subRows(
            src1, src1Step, src2, src2Step, dst, dstStep, roiSize,
            [](const Zev32f* a, const Zev32f* b, Zev32f* d, int w) { kern::mapRow<false>(d, w, kern::SubOp_32f{}, a, b); },
            parallel);
    return zevStsNoError;
}
ZevStatus zeviSub_32f_C3R(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step, Zev32f* dst,
                          int dstStep, ZeviSize roiSize) {
    return zeviSub_32f_C1R(src1, src1Step, src2, src2Step, dst, dstStep, widen(roiSize, 3));
}
ZevStatus zeviSub_32f_C4R(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step, Zev32f* dst,
                          int dstStep, ZeviSize roiSize) {
    return zeviSub_32f_C1R(src1, src1Step, src2, src2Step, dst, dstStep, widen(roiSize, 4));
}

ZevStatus zeviSub_8u_C1RSfs(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step, Zev8u* dst,
                            int dstStep, ZeviSize roiSize, int scaleFactor) {
    ZevStatus st = Check().ptrs(src1, src2, dst).height(roiSize.height).width(roiSize.width);
    if (st != zevStsNoError) return st;
    // Nothing below 2^9 survives a factor above 8.
    if (scaleFactor > 8) return zeviSet_8u_C1R(dst, dstStep, roiSize, 0);
    if (scaleFactor == 0)
        subScaled(src1, src1Step, src2, src2Step, dst, dstStep, roiSize, kern::ScaleNone_8u{});
    else if (scaleFactor == 1)
        subScaled(src1, src1Step, src2, src2Step, dst, dstStep, roiSize, kern::ScaleHalf_8u{});
    else if (scaleFactor > 1)
        subScaled(src1, src1Step, src2, src2Step, dst, dstStep, roiSize, kern::ScalePos_8u(scaleFactor));
    else if (scaleFactor >= -7)
        subScaled(src1, src1Step, src2, src2Step, dst, dstStep, roiSize, kern::ScaleNeg_8u(scaleFactor));
    else
        subScaled(src1, src1Step, src2, src2Step, dst, dstStep, roiSize, kern::ScaleBound_8u{});
    return zevStsNoError;
}
ZevStatus zeviSub_8u_C3RSfs(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step, Zev8u* dst,
                            int dstStep, ZeviSize roiSize, int scaleFactor) {
    return sub8uChannels(src1, src1Step, src2, src2Step, dst, dstStep, roiSize, scaleFactor, 3);
}
ZevStatus zeviSub_8u_C4RSfs(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step, Zev8u* dst,
                            int dstStep, ZeviSize roiSize, int scaleFactor) {
    return sub8uChannels(src1, src1Step, src2, src2Step, dst, dstStep, roiSize, scaleFactor, 4);
}

}  // namespace v8
