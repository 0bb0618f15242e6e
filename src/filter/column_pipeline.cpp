// Column pipeline: K intermediate rows, reached through row pointers, combined
// into each output row, scaled and narrowed into a normal image.
#include <cstdint>

#include "filter/kernels/column.h"
#include "frame/bands.h"
#include "frame/check.h"
#include "frame/core.h"
#include "zev_impl.h"

namespace v8 {
namespace {

// Per-thread area S of the integer forms, from the width; part of the interface.
struct ColumnArea {
    int round, perElem;  // elements rounded up to a multiple of `round`, bytes each
    std::int64_t of(int width) const {
        return ((std::int64_t{width} + round - 1) & ~std::int64_t{round - 1}) * perElem + 32;
    }
};
constexpr ColumnArea kCol16sC1{4, 12}, kCol16sC3{4, 36}, kColLowC1{8, 12}, kColLowC3{8, 36};

ZevStatus columnBufferSize(ZeviSize roi, int K, int* size, const ColumnArea* area) {
    ZevStatus st = Check().ptrs(size).width(roi.width).height(roi.height).that(K >= 1, zevStsBadSize);
    if (st != zevStsNoError) return st;
    if (area == nullptr) {  // the float forms keep nothing in the buffer
        *size = 32;
        return zevStsNoError;
    }
    const int T = owncvGetMaxNumThreads();
    // Sizes past 2 GiB wrap as 32-bit arithmetic would, without undefined behaviour.
    const std::int64_t bytes = std::int64_t{T} * 32 + (std::int64_t{roi.height} + K) * T * 4 + T * area->of(roi.width);
    *size = static_cast<int>(static_cast<std::uint32_t>(bytes));
    return zevStsNoError;
}

template <class Src, class Dst, int C>
ZevStatus checkColumn(const Src* const* src, const Dst* dst, int dstStep, ZeviSize roi, const void* kernel, int K,
                      bool hasDivisor, int divisor, const Zev8u* buffer) {
    Check c;
    c.ptrs(src, dst, kernel).height(roi.height).width(roi.width).that(K >= 1, zevStsBadSize);
    c.step(dstStep, rowBytes<Dst>(roi.width, C));
    if (sizeof(Dst) > 1) c.multiple(sizeof(Dst), dstStep);
    c.ptrs(buffer);
    if (hasDivisor) c.that(divisor != 0, zevStsBadArgument);
    if (!c.ok()) return c;
    // Every source row is checked before any output is written.
    const int n = roi.height + K - 1;
    for (int i = 0; i < n; ++i)
        if (src[i] == nullptr) return zevStsNullPointer;
    return zevStsNoError;
}

// All output rows through the rule, serially or in bands.
template <class Rule, class Dst>
void runColumns(const Rule& rule, const typename Rule::Src* const* src, Dst* dst, int dstStep, ZeviSize roi, int C,
                bool mayThread) {
    const int W = roi.width * C;
    auto band = [&](const Band& b) {
        Dst* d = b.rowPtr(dst, dstStep);
        const typename Rule::Src* const* s = src + b.y0;
        if (rule.K == 3) ownColumnRows<3>(rule, s, d, dstStep, W, b.rows);
        else if (rule.K == 5) ownColumnRows<5>(rule, s, d, dstStep, W, b.rows);
        else ownColumnRows<0>(rule, s, d, dstStep, W, b.rows);
    };
    const std::int32_t elements = static_cast<std::int32_t>(std::int64_t{roi.width} * roi.height * C);
    if (mayThread && elements >= (owncvGetMaxNumThreads() << 15) && runsepomp(rule.K) != 0)
        forEachBand(ownGetNumThreads(), roi.height, band);
    else
        band(Band{0, 1, 0, roi.height, roi.height});
}

template <class Dst, int C>
ZevStatus column16s(const Zev16s* const* src, Dst* dst, int dstStep, ZeviSize roi, const Zev16s* kernel, int K,
                    int divisor, Zev8u* buffer) {
    ZevStatus st = checkColumn<Zev16s, Dst, C>(src, dst, dstStep, roi, kernel, K, true, divisor, buffer);
    if (st != zevStsNoError) return st;
    ColCoefs coefs;
    runColumns(Col16s<Dst>::make(kernel, K, divisor, &coefs), src, dst, dstStep, roi, C, true);
    return zevStsNoError;
}

template <int C>
ZevStatus columnLow16s(const Zev16s* const* src, Zev16s* dst, int dstStep, ZeviSize roi, const Zev16s* kernel, int K,
                       int divisor, Zev8u* buffer) {
    ZevStatus st = checkColumn<Zev16s, Zev16s, C>(src, dst, dstStep, roi, kernel, K, true, divisor, buffer);
    if (st != zevStsNoError) return st;
    ColCoefs coefs;
    runColumns(ColLow16s::make(kernel, K, divisor, &coefs), src, dst, dstStep, roi, C, true);
    return zevStsNoError;
}

// The float forms never thread.
template <int C>
ZevStatus column32f(const Zev32f* const* src, Zev32f* dst, int dstStep, ZeviSize roi, const Zev32f* kernel, int K,
                    Zev8u* buffer) {
    ZevStatus st = checkColumn<Zev32f, Zev32f, C>(src, dst, dstStep, roi, kernel, K, false, 1, buffer);
    if (st != zevStsNoError) return st;
    ColCoefs coefs;
    runColumns(Col32f::make(kernel, K, &coefs), src, dst, dstStep, roi, C, false);
    return zevStsNoError;
}

}  // namespace
}  // namespace v8

using namespace v8;

extern "C" {

ZevStatus ZEVFN(zeviFilterColumnPipeline_16s_C1R)(const Zev16s** src, Zev16s* dst, int dstStep, ZeviSize roiSize,
                                                  const Zev16s* kernel, int kernelSize, int divisor, Zev8u* buffer) {
    return column16s<Zev16s, 1>(src, dst, dstStep, roiSize, kernel, kernelSize, divisor, buffer);
}
ZevStatus ZEVFN(zeviFilterColumnPipeline_16s_C3R)(const Zev16s** src, Zev16s* dst, int dstStep, ZeviSize roiSize,
                                                  const Zev16s* kernel, int kernelSize, int divisor, Zev8u* buffer) {
    return column16s<Zev16s, 3>(src, dst, dstStep, roiSize, kernel, kernelSize, divisor, buffer);
}
ZevStatus ZEVFN(zeviFilterColumnPipeline_Low_16s_C1R)(const Zev16s** src, Zev16s* dst, int dstStep,
                                                      ZeviSize roiSize, const Zev16s* kernel, int kernelSize,
                                                      int divisor, Zev8u* buffer) {
    return columnLow16s<1>(src, dst, dstStep, roiSize, kernel, kernelSize, divisor, buffer);
}
ZevStatus ZEVFN(zeviFilterColumnPipeline_Low_16s_C3R)(const Zev16s** src, Zev16s* dst, int dstStep,
                                                      ZeviSize roiSize, const Zev16s* kernel, int kernelSize,
                                                      int divisor, Zev8u* buffer) {
    return columnLow16s<3>(src, dst, dstStep, roiSize, kernel, kernelSize, divisor, buffer);
}
ZevStatus ZEVFN(zeviFilterColumnPipeline_16s8u_C1R)(const Zev16s** src, Zev8u* dst, int dstStep, ZeviSize roiSize,
                                                    const Zev16s* kernel, int kernelSize, int divisor, Zev8u* buffer) {
    return column16s<Zev8u, 1>(src, dst, dstStep, roiSize, kernel, kernelSize, divisor, buffer);
}
ZevStatus ZEVFN(zeviFilterColumnPipeline_16s8u_C3R)(const Zev16s** src, Zev8u* dst, int dstStep, ZeviSize roiSize,
                                                    const Zev16s* kernel, int kernelSize, int divisor, Zev8u* buffer) {
    return column16s<Zev8u, 3>(src, dst, dstStep, roiSize, kernel, kernelSize, divisor, buffer);
}
ZevStatus ZEVFN(zeviFilterColumnPipeline_16s8s_C1R)(const Zev16s** src, Zev8s* dst, int dstStep, ZeviSize roiSize,
                                                    const Zev16s* kernel, int kernelSize, int divisor, Zev8u* buffer) {
    return column16s<Zev8s, 1>(src, dst, dstStep, roiSize, kernel, kernelSize, divisor, buffer);
}
ZevStatus ZEVFN(zeviFilterColumnPipeline_16s8s_C3R)(const Zev16s** src, Zev8s* dst, int dstStep, ZeviSize roiSize,
                                                    const Zev16s* kernel, int kernelSize, int divisor, Zev8u* buffer) {
    return column16s<Zev8s, 3>(src, dst, dstStep, roiSize, kernel, kernelSize, divisor, buffer);
}
ZevStatus ZEVFN(zeviFilterColumnPipeline_32f_C1R)(const Zev32f** src, Zev32f* dst, int dstStep, ZeviSize roiSize,
                                                  const Zev32f* kernel, int kernelSize, Zev8u* buffer) {
    return column32f<1>(src, dst, dstStep, roiSize, kernel, kernelSize, buffer);
}
ZevStatus ZEVFN(zeviFilterColumnPipeline_32f_C3R)(const Zev32f** src, Zev32f* dst, int dstStep, ZeviSize roiSize,
                                                  const Zev32f* kernel, int kernelSize, Zev8u* buffer) {
    return column32f<3>(src, dst, dstStep, roiSize, kernel, kernelSize, buffer);
}

ZevStatus ZEVFN(zeviFilterColumnPipelineGetBufferSize_16s_C1R)(ZeviSize roiSize, int kernelSize, int* bufferSize) {
    return columnBufferSize(roiSize, kernelSize, bufferSize, &kCol16sC1);
}
ZevStatus ZEVFN(zeviFilterColumnPipelineGetBufferSize_16s_C3R)(ZeviSize roiSize, int kernelSize, int* bufferSize) {
    return columnBufferSize(roiSize, kernelSize, bufferSize, &kCol16sC3);
}
ZevStatus ZEVFN(zeviFilterColumnPipelineGetBufferSize_Low_16s_C1R)(ZeviSize roiSize, int kernelSize,
                                                                   int* bufferSize) {
    return columnBufferSize(roiSize, kernelSize, bufferSize, &kColLowC1);
}
ZevStatus ZEVFN(zeviFilterColumnPipelineGetBufferSize_Low_16s_C3R)(ZeviSize roiSize, int kernelSize,
                                                                   int* bufferSize) {
    return columnBufferSize(roiSize, kernelSize, bufferSize, &kColLowC3);
}
ZevStatus ZEVFN(zeviFilterColumnPipelineGetBufferSize_16s8u_C1R)(ZeviSize roiSize, int kernelSize, int* bufferSize) {
    return columnBufferSize(roiSize, kernelSize, bufferSize, &kCol16sC1);
}
ZevStatus ZEVFN(zeviFilterColumnPipelineGetBufferSize_16s8u_C3R)(ZeviSize roiSize, int kernelSize, int* bufferSize) {
    return columnBufferSize(roiSize, kernelSize, bufferSize, &kCol16sC3);
}
ZevStatus ZEVFN(zeviFilterColumnPipelineGetBufferSize_16s8s_C1R)(ZeviSize roiSize, int kernelSize, int* bufferSize) {
    return columnBufferSize(roiSize, kernelSize, bufferSize, &kCol16sC1);
}
ZevStatus ZEVFN(zeviFilterColumnPipelineGetBufferSize_16s8s_C3R)(ZeviSize roiSize, int kernelSize, int* bufferSize) {
    return columnBufferSize(roiSize, kernelSize, bufferSize, &kCol16sC3);
}
ZevStatus ZEVFN(zeviFilterColumnPipelineGetBufferSize_32f_C1R)(ZeviSize roiSize, int kernelSize, int* bufferSize) {
    return columnBufferSize(roiSize, kernelSize, bufferSize, nullptr);
}
ZevStatus ZEVFN(zeviFilterColumnPipelineGetBufferSize_32f_C3R)(ZeviSize roiSize, int kernelSize, int* bufferSize) {
    return columnBufferSize(roiSize, kernelSize, bufferSize, nullptr);
}

}  // extern "C"
