// Accumulators: a 32f image takes, in place, a frame, its square, the product
// of two frames or a weighted step towards a frame, with or without a mask.
#include <cstdint>
#include <type_traits>

#include "arith/kernels/accumulate.h"
#include "arith/region.h"
#include "frame/bands.h"
#include "frame/check.h"
#include "frame/kernels/simd.h"
#include "zev_impl.h"

namespace v8 {
namespace {

// Bytes per pixel the masked product and weighted members weigh against the
// cache before each kernel call; zero for the members without the test. The
// figures are design constants, not exact byte counts.
template <class Op, class T, bool Masked>
constexpr int kCacheFactor = !Masked                            ? 0
                             : std::is_same_v<Op, AccProduct>  ? (sizeof(T) == 1 ? 8 : sizeof(T) == 2 ? 9 : 13)
                             : std::is_same_v<Op, AccWeighted> ? (sizeof(T) == 1 ? 5 : sizeof(T) == 2 ? 8 : 9)
                                                               : 0;

// Source step bounds, then, for 16u sources only, their multiples right away.
template <class T, class... S>
Check& sourceSteps(Check& c, int width, S... steps) {
    (c.step(steps, rowBytes<T>(width)), ...);
    if constexpr (std::is_same_v<T, Zev16u>) c.multiple(sizeof(T), steps...);
    return c;
}

// Accumulator multiple, joined by the 32f source steps whose multiples are
// judged with it.
template <class T, class... S>
Check& accumulatorMultiple(Check& c, int accStep, S... steps) {
    if constexpr (std::is_same_v<T, Zev32f>) return c.multiple(sizeof(Zev32f), steps..., accStep);
    else return c.multiple(sizeof(Zev32f), accStep);
}

template <class Op, class T, bool Masked>
ZevStatus check(const AccumArgs<T>& a, ZeviSize roi) {
    Check c;
    c.ptrs(a.src1, a.acc);
    if constexpr (kAccumTwoSources<Op>) c.ptrs(a.src2);
    if constexpr (Masked) c.ptrs(a.mask);
    c.roi(roi);
    if constexpr (kAccumTwoSources<Op>) sourceSteps<T>(c, roi.width, a.src1Step, a.src2Step);
    else sourceSteps<T>(c, roi.width, a.src1Step);
    if constexpr (Masked) c.step(a.maskStep, roi.width);
    c.step(a.accStep, rowBytes<Zev32f>(roi.width));
    if constexpr (kAccumTwoSources<Op>) accumulatorMultiple<T>(c, a.accStep, a.src1Step, a.src2Step);
    else accumulatorMultiple<T>(c, a.accStep, a.src1Step);
    return c;
}

// Offsets a row pointer by a band; absent images stay absent.
template <class P>
P* bandRow(const Band& b, P* p, int step) {
    return p ? b.rowPtr(p, step) : p;
}

template <class Op, class T, bool Masked>
ZevStatus accumulate(const AccumArgs<T>& a, ZeviSize roi) {
    ZevStatus st = check<Op, T, Masked>(a, roi);
    if (st != zevStsNoError) return st;
    auto kernel = simd::hasAvx2() ? ownAccumulate_avx2<Op, T, Masked> : ownAccumulate_W7<Op, T, Masked>;
    runRegion(roi.width, roi.height, [&](const Band& b) {
        AccumArgs<T> band = a;
        band.src1 = bandRow(b, a.src1, a.src1Step);
        band.src2 = bandRow(b, a.src2, a.src2Step);
        band.mask = bandRow(b, a.mask, a.maskStep);
        band.acc = bandRow(b, a.acc, a.accStep);
        band.dst = bandRow(b, a.dst, a.dstStep);
        constexpr int factor = kCacheFactor<Op, T, Masked>;
        const bool stream = factor != 0 && beyondCache(std::int64_t{factor} * roi.width * b.rows);
        kernel(band, roi.width, b.rows, stream);
    });
    return zevStsNoError;
}

// The public forms, in place: one source (mask and alpha as the member has
// them) or two sources for the product.
template <class Op, bool Masked, class T>
ZevStatus inPlace(const T* src, int srcStep, const Zev8u* mask, int maskStep, Zev32f* acc, int accStep, ZeviSize roi,
                  Zev32f alpha = 0.0f) {
    AccumArgs<T> a;
    a.src1 = src, a.src1Step = srcStep;
    a.mask = mask, a.maskStep = maskStep;
    a.acc = acc, a.dst = acc, a.accStep = a.dstStep = accStep;
    a.alpha = alpha;
    return accumulate<Op, T, Masked>(a, roi);
}

template <bool Masked, class T>
ZevStatus product(const T* src1, int src1Step, const T* src2, int src2Step, const Zev8u* mask, int maskStep,
                  Zev32f* acc, int accStep, ZeviSize roi) {
    AccumArgs<T> a;
    a.src1 = src1, a.src1Step = src1Step;
    a.src2 = src2, a.src2Step = src2Step;
    a.mask = mask, a.maskStep = maskStep;
    a.acc = acc, a.dst = acc, a.accStep = a.dstStep = accStep;
    return accumulate<AccProduct, T, Masked>(a, roi);
}

}  // namespace
}  // namespace v8

using namespace v8;

extern "C" {

// ---- d = s + d

ZevStatus ZEVFN(zeviAdd_8u32f_C1IR)(const Zev8u* src, int srcStep, Zev32f* srcDst, int srcDstStep, ZeviSize roiSize) {
    return inPlace<AccAdd, false>(src, srcStep, nullptr, 0, srcDst, srcDstStep, roiSize);
}
ZevStatus ZEVFN(zeviAdd_8s32f_C1IR)(const Zev8s* src, int srcStep, Zev32f* srcDst, int srcDstStep, ZeviSize roiSize) {
    return inPlace<AccAdd, false>(src, srcStep, nullptr, 0, srcDst, srcDstStep, roiSize);
}
ZevStatus ZEVFN(zeviAdd_16u32f_C1IR)(const Zev16u* src, int srcStep, Zev32f* srcDst, int srcDstStep,
                                     ZeviSize roiSize) {
    return inPlace<AccAdd, false>(src, srcStep, nullptr, 0, srcDst, srcDstStep, roiSize);
}
ZevStatus ZEVFN(zeviAdd_8u32f_C1IMR)(const Zev8u* src, int srcStep, const Zev8u* mask, int maskStep, Zev32f* srcDst,
                                     int srcDstStep, ZeviSize roiSize) {
    return inPlace<AccAdd, true>(src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize);
}
ZevStatus ZEVFN(zeviAdd_8s32f_C1IMR)(const Zev8s* src, int srcStep, const Zev8u* mask, int maskStep, Zev32f* srcDst,
                                     int srcDstStep, ZeviSize roiSize) {
    return inPlace<AccAdd, true>(src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize);
}
ZevStatus ZEVFN(zeviAdd_16u32f_C1IMR)(const Zev16u* src, int srcStep, const Zev8u* mask, int maskStep,
                                      Zev32f* srcDst, int srcDstStep, ZeviSize roiSize) {
    return inPlace<AccAdd, true>(src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize);
}
ZevStatus ZEVFN(zeviAdd_32f_C1IMR)(const Zev32f* src, int srcStep, const Zev8u* mask, int maskStep, Zev32f* srcDst,
                                   int srcDstStep, ZeviSize roiSize) {
    return inPlace<AccAdd, true>(src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize);
}

// ---- d = s * s + d

ZevStatus ZEVFN(zeviAddSquare_8u32f_C1IR)(const Zev8u* src, int srcStep, Zev32f* srcDst, int srcDstStep,
                                          ZeviSize roiSize) {
    return inPlace<AccSquare, false>(src, srcStep, nullptr, 0, srcDst, srcDstStep, roiSize);
}
ZevStatus ZEVFN(zeviAddSquare_8s32f_C1IR)(const Zev8s* src, int srcStep, Zev32f* srcDst, int srcDstStep,
                                          ZeviSize roiSize) {
    return inPlace<AccSquare, false>(src, srcStep, nullptr, 0, srcDst, srcDstStep, roiSize);
}
ZevStatus ZEVFN(zeviAddSquare_16u32f_C1IR)(const Zev16u* src, int srcStep, Zev32f* srcDst, int srcDstStep,
                                           ZeviSize roiSize) {
    return inPlace<AccSquare, false>(src, srcStep, nullptr, 0, srcDst, srcDstStep, roiSize);
}
ZevStatus ZEVFN(zeviAddSquare_32f_C1IR)(const Zev32f* src, int srcStep, Zev32f* srcDst, int srcDstStep,
                                        ZeviSize roiSize) {
    return inPlace<AccSquare, false>(src, srcStep, nullptr, 0, srcDst, srcDstStep, roiSize);
}
ZevStatus ZEVFN(zeviAddSquare_8u32f_C1IMR)(const Zev8u* src, int srcStep, const Zev8u* mask, int maskStep,
                                           Zev32f* srcDst, int srcDstStep, ZeviSize roiSize) {
    return inPlace<AccSquare, true>(src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize);
}
ZevStatus ZEVFN(zeviAddSquare_8s32f_C1IMR)(const Zev8s* src, int srcStep, const Zev8u* mask, int maskStep,
                                           Zev32f* srcDst, int srcDstStep, ZeviSize roiSize) {
    return inPlace<AccSquare, true>(src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize);
}
ZevStatus ZEVFN(zeviAddSquare_16u32f_C1IMR)(const Zev16u* src, int srcStep, const Zev8u* mask, int maskStep,
                                            Zev32f* srcDst, int srcDstStep, ZeviSize roiSize) {
    return inPlace<AccSquare, true>(src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize);
}
ZevStatus ZEVFN(zeviAddSquare_32f_C1IMR)(const Zev32f* src, int srcStep, const Zev8u* mask, int maskStep,
                                         Zev32f* srcDst, int srcDstStep, ZeviSize roiSize) {
    return inPlace<AccSquare, true>(src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize);
}

// ---- d = s1 * s2 + d

ZevStatus ZEVFN(zeviAddProduct_8u32f_C1IR)(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step,
                                           Zev32f* srcDst, int srcDstStep, ZeviSize roiSize) {
    return product<false>(src1, src1Step, src2, src2Step, nullptr, 0, srcDst, srcDstStep, roiSize);
}
ZevStatus ZEVFN(zeviAddProduct_8s32f_C1IR)(const Zev8s* src1, int src1Step, const Zev8s* src2, int src2Step,
                                           Zev32f* srcDst, int srcDstStep, ZeviSize roiSize) {
    return product<false>(src1, src1Step, src2, src2Step, nullptr, 0, srcDst, srcDstStep, roiSize);
}
ZevStatus ZEVFN(zeviAddProduct_16u32f_C1IR)(const Zev16u* src1, int src1Step, const Zev16u* src2, int src2Step,
                                            Zev32f* srcDst, int srcDstStep, ZeviSize roiSize) {
    return product<false>(src1, src1Step, src2, src2Step, nullptr, 0, srcDst, srcDstStep, roiSize);
}
ZevStatus ZEVFN(zeviAddProduct_32f_C1IR)(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step,
                                         Zev32f* srcDst, int srcDstStep, ZeviSize roiSize) {
    return product<false>(src1, src1Step, src2, src2Step, nullptr, 0, srcDst, srcDstStep, roiSize);
}
ZevStatus ZEVFN(zeviAddProduct_8u32f_C1IMR)(const Zev8u* src1, int src1Step, const Zev8u* src2, int src2Step,
                                            const Zev8u* mask, int maskStep, Zev32f* srcDst, int srcDstStep,
                                            ZeviSize roiSize) {
    return product<true>(src1, src1Step, src2, src2Step, mask, maskStep, srcDst, srcDstStep, roiSize);
}
ZevStatus ZEVFN(zeviAddProduct_8s32f_C1IMR)(const Zev8s* src1, int src1Step, const Zev8s* src2, int src2Step,
                                            const Zev8u* mask, int maskStep, Zev32f* srcDst, int srcDstStep,
                                            ZeviSize roiSize) {
    return product<true>(src1, src1Step, src2, src2Step, mask, maskStep, srcDst, srcDstStep, roiSize);
}
ZevStatus ZEVFN(zeviAddProduct_16u32f_C1IMR)(const Zev16u* src1, int src1Step, const Zev16u* src2, int src2Step,
                                             const Zev8u* mask, int maskStep, Zev32f* srcDst, int srcDstStep,
                                             ZeviSize roiSize) {
    return product<true>(src1, src1Step, src2, src2Step, mask, maskStep, srcDst, srcDstStep, roiSize);
}
ZevStatus ZEVFN(zeviAddProduct_32f_C1IMR)(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step,
                                          const Zev8u* mask, int maskStep, Zev32f* srcDst, int srcDstStep,
                                          ZeviSize roiSize) {
    return product<true>(src1, src1Step, src2, src2Step, mask, maskStep, srcDst, srcDstStep, roiSize);
}

// ---- d = (s - d) * alpha + d

ZevStatus ZEVFN(zeviAddWeighted_8u32f_C1IR)(const Zev8u* src, int srcStep, Zev32f* srcDst, int srcDstStep,
                                            ZeviSize roiSize, Zev32f alpha) {
    return inPlace<AccWeighted, false>(src, srcStep, nullptr, 0, srcDst, srcDstStep, roiSize, alpha);
}
ZevStatus ZEVFN(zeviAddWeighted_8s32f_C1IR)(const Zev8s* src, int srcStep, Zev32f* srcDst, int srcDstStep,
                                            ZeviSize roiSize, Zev32f alpha) {
    return inPlace<AccWeighted, false>(src, srcStep, nullptr, 0, srcDst, srcDstStep, roiSize, alpha);
}
ZevStatus ZEVFN(zeviAddWeighted_16u32f_C1IR)(const Zev16u* src, int srcStep, Zev32f* srcDst, int srcDstStep,
                                             ZeviSize roiSize, Zev32f alpha) {
    return inPlace<AccWeighted, false>(src, srcStep, nullptr, 0, srcDst, srcDstStep, roiSize, alpha);
}
ZevStatus ZEVFN(zeviAddWeighted_32f_C1IR)(const Zev32f* src, int srcStep, Zev32f* srcDst, int srcDstStep,
                                          ZeviSize roiSize, Zev32f alpha) {
    return inPlace<AccWeighted, false>(src, srcStep, nullptr, 0, srcDst, srcDstStep, roiSize, alpha);
}
ZevStatus ZEVFN(zeviAddWeighted_8u32f_C1IMR)(const Zev8u* src, int srcStep, const Zev8u* mask, int maskStep,
                                             Zev32f* srcDst, int srcDstStep, ZeviSize roiSize, Zev32f alpha) {
    return inPlace<AccWeighted, true>(src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize, alpha);
}
ZevStatus ZEVFN(zeviAddWeighted_8s32f_C1IMR)(const Zev8s* src, int srcStep, const Zev8u* mask, int maskStep,
                                             Zev32f* srcDst, int srcDstStep, ZeviSize roiSize, Zev32f alpha) {
    return inPlace<AccWeighted, true>(src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize, alpha);
}
ZevStatus ZEVFN(zeviAddWeighted_16u32f_C1IMR)(const Zev16u* src, int srcStep, const Zev8u* mask, int maskStep,
                                              Zev32f* srcDst, int srcDstStep, ZeviSize roiSize, Zev32f alpha) {
    return inPlace<AccWeighted, true>(src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize, alpha);
}
ZevStatus ZEVFN(zeviAddWeighted_32f_C1IMR)(const Zev32f* src, int srcStep, const Zev8u* mask, int maskStep,
                                           Zev32f* srcDst, int srcDstStep, ZeviSize roiSize, Zev32f alpha) {
    return inPlace<AccWeighted, true>(src, srcStep, mask, maskStep, srcDst, srcDstStep, roiSize, alpha);
}

// dst = (src1 - src2) * alpha + src2, not in place: always one serial call.
ZevStatus ZEVFN(zeviAddWeighted_32f_C1R)(const Zev32f* src1, int src1Step, const Zev32f* src2, int src2Step,
                                         Zev32f* dst, int dstStep, ZeviSize roiSize, Zev32f alpha) {
    ZevStatus st = checkTwoSourcesOneDest(src1, src1Step, src2, src2Step, dst, dstStep, roiSize);
    if (st != zevStsNoError) return st;
    AccumArgs<Zev32f> a;
    a.src1 = src1, a.src1Step = src1Step;
    a.acc = src2, a.accStep = src2Step;
    a.dst = dst, a.dstStep = dstStep;
    a.alpha = alpha;
    if (simd::hasAvx2()) ownAccumulate_avx2<AccWeighted, Zev32f, false>(a, roiSize.width, roiSize.height, false);
    else ownAccumulate_W7<AccWeighted, Zev32f, false>(a, roiSize.width, roiSize.height, false);
    return zevStsNoError;
}

}  // extern "C"
