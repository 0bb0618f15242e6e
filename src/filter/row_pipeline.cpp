// Row border pipeline: a 1-D kernel along every row, each filtered row delivered
// to a caller-given row pointer, borders made per row in a small scratch line.
#include <atomic>
#include <cstdint>

#include "filter/border.h"
#include "filter/kernels/row.h"
#include "frame/bands.h"
#include "frame/check.h"
#include "frame/core.h"
#include "zev_impl.h"

namespace v8 {
namespace {

// Per-thread work area S, in bytes, for kernel size K; part of the interface.
struct AreaSize {
    int perTap, fixed;
    std::int64_t of(int K) const { return std::int64_t{perTap} * K + fixed; }
};
constexpr AreaSize kArea8u16sC1{36, 112}, kArea8u16sC3{60, 112}, kArea16sC1{48, 80}, kArea16sC3{40, 64},
    kAreaLowC1{24, 64}, kAreaLowC3{208, 64}, kArea32fC1{64, 64}, kArea32fC3{192, 32};

ZevStatus rowBufferSize(ZeviSize roi, int K, int* size, AreaSize area, int extraPerThread) {
    ZevStatus st = Check().ptrs(size).width(roi.width).height(roi.height).that(K >= 1, zevStsBadSize);
    if (st != zevStsNoError) return st;
    const int T = owncvGetMaxNumThreads();
    // Sizes past 2 GiB wrap as 32-bit arithmetic would, without undefined behaviour.
    const std::int64_t bytes = std::int64_t{T} * 32 + (std::int64_t{roi.height} + K) * T * 4 + T * area.of(K) +
                               std::int64_t{T} * extraPerThread;
    *size = static_cast<int>(static_cast<std::uint32_t>(bytes));
    return zevStsNoError;
}

// Checks shared by all forms, in their order; the element size test and the
// divisor test apply to some forms only.
template <class Src, int C, class Dst>
ZevStatus checkRow(const Src* src, int srcStep, Dst* const* dst, ZeviSize roi, const void* kernel, int K, int a,
                   int border, const Src* value, bool stepMultiple, bool hasDivisor, int divisor, const Zev8u* buffer) {
    Check c;
    c.ptrs(src, dst, kernel, buffer)
        .height(roi.height)
        .width(roi.width)
        .that(K >= 1, zevStsBadSize)
        .that(a >= 0 && a < K, zevStsBadAnchor)
        .step(srcStep, rowBytes<Src>(roi.width, C));
    if (stepMultiple) c.multiple(sizeof(Src), srcStep);
    c.that(isPlainBorderCode(border), zevStsBadArgument);
    if (C == 3) c.that(!(border == zevBorderConst && value == nullptr), zevStsNullPointer);
    if (hasDivisor) c.that(divisor != 0, zevStsBadArgument);
    return c;
}

// Runs every row through the rule, serially or in bands. makeRule(coefBlock)
// builds a thread's rule in its own area. A null row pointer ends its band.
template <int C, class Src, class Dst, class MakeRule>
ZevStatus runRows(const Src* src, int srcStep, Dst* const* dst, ZeviSize roi, int K, int a, int border,
                  const Src* value, Zev8u* buffer, int S, bool mayThread, MakeRule makeRule) {
    const int w = roi.width, h = roi.height;
    auto area = [&](int n, int t) {
        std::uintptr_t base = ZEV_INT_PTR(buffer) + static_cast<std::uintptr_t>(n) * 32 +
                              static_cast<std::uintptr_t>(K + h) * n * 4 + static_cast<std::uintptr_t>(t) * S;
        return reinterpret_cast<Zev8u*>((base + 31) & ~std::uintptr_t{31});
    };
    auto rows = [&](const Band& b) -> bool {
        Zev8u* mine = area(b.T, b.id);
        Src* line = reinterpret_cast<Src*>(mine);
        auto rule = makeRule(mine + kRowLineBytes<Src>(K, C));
        const Src* s = b.rowPtr(src, srcStep);
        for (int y = b.y0; y < b.y0 + b.rows; ++y) {
            if (dst[y] == nullptr) return false;
            ownRowPass<decltype(rule), C>(rule, s, dst[y], w, a, border, value, line);
            s = reinterpret_cast<const Src*>(reinterpret_cast<const Zev8u*>(s) + srcStep);
        }
        return true;
    };
    const std::int32_t elements = static_cast<std::int32_t>(std::int64_t{w} * h);
    if (!mayThread || elements < (owncvGetMaxNumThreads() << 15))
        return rows(Band{0, 1, 0, h, h}) ? zevStsNoError : zevStsNullPointer;
    std::atomic<bool> failed{false};
    forEachBand(ownGetNumThreads(), h, [&](const Band& b) {
        if (!rows(b)) failed.store(true, std::memory_order_relaxed);
    });
    return failed.load() ? zevStsNullPointer : zevStsNoError;
}

// The integer forms: a divisor, and a step-multiple test for 16-bit sources.
// Low's whole-row case (one channel) is settled once the row width is known.
template <class Rule, int C>
ZevStatus rowDivided(const typename Rule::Src* src, int srcStep, Zev16s** dst, ZeviSize roi, const Zev16s* kernel,
                     int K, int a, int border, const typename Rule::Src* value, int divisor, Zev8u* buffer,
                     AreaSize area) {
    using Src = typename Rule::Src;
    ZevStatus st =
        checkRow<Src, C>(src, srcStep, dst, roi, kernel, K, a, border, value, sizeof(Src) > 1, true, divisor, buffer);
    if (st != zevStsNoError) return st;
    return runRows<C>(src, srcStep, dst, roi, K, a, border, value, buffer, static_cast<int>(area.of(K)), true,
                      [&](void* coef) {
                          Rule r = Rule::make(kernel, K, divisor, coef);
                          if constexpr (std::is_same_v<Rule, RowLow16s>)
                              if (C == 1) r.wholeRowCase(roi.width, a, border, divisor);
                          return r;
                      });
}

template <int C>
ZevStatus row32f(const Zev32f* src, int srcStep, Zev32f** dst, ZeviSize roi, const Zev32f* kernel, int K, int a,
                 int border, const Zev32f* value, Zev8u* buffer) {
    ZevStatus st = checkRow<Zev32f, C>(src, srcStep, dst, roi, kernel, K, a, border, value, true, false, 1, buffer);
    if (st != zevStsNoError) return st;
    // The one-channel float form also asks whether separable work may thread.
    const bool mayThread = C == 3 || runsepomp(K) != 0;
    return runRows<C>(src, srcStep, dst, roi, K, a, border, value, buffer,
                      static_cast<int>((C == 1 ? kArea32fC1 : kArea32fC3).of(K)), mayThread,
                      [&](void* coef) { return Row32f::make(kernel, K, coef); });
}

}  // namespace
}  // namespace v8

using namespace v8;

extern "C" {

ZevStatus ZEVFN(zeviFilterRowBorderPipeline_8u16s_C1R)(const Zev8u* src, int srcStep, Zev16s** dst, ZeviSize roiSize,
                                                       const Zev16s* kernel, int kernelSize, int xAnchor,
                                                       int borderType, Zev8u borderValue, int divisor, Zev8u* buffer) {
    return rowDivided<Row8u16s, 1>(src, srcStep, dst, roiSize, kernel, kernelSize, xAnchor, borderType, &borderValue,
                                   divisor, buffer, kArea8u16sC1);
}
ZevStatus ZEVFN(zeviFilterRowBorderPipeline_8u16s_C3R)(const Zev8u* src, int srcStep, Zev16s** dst, ZeviSize roiSize,
                                                       const Zev16s* kernel, int kernelSize, int xAnchor,
                                                       int borderType, const Zev8u* borderValue, int divisor,
                                                       Zev8u* buffer) {
    return rowDivided<Row8u16s, 3>(src, srcStep, dst, roiSize, kernel, kernelSize, xAnchor, borderType, borderValue,
                                   divisor, buffer, kArea8u16sC3);
}
ZevStatus ZEVFN(zeviFilterRowBorderPipeline_16s_C1R)(const Zev16s* src, int srcStep, Zev16s** dst, ZeviSize roiSize,
                                                     const Zev16s* kernel, int kernelSize, int xAnchor, int borderType,
                                                     Zev16s borderValue, int divisor, Zev8u* buffer) {
    return rowDivided<Row16s, 1>(src, srcStep, dst, roiSize, kernel, kernelSize, xAnchor, borderType, &borderValue,
                                 divisor, buffer, kArea16sC1);
}
ZevStatus ZEVFN(zeviFilterRowBorderPipeline_16s_C3R)(const Zev16s* src, int srcStep, Zev16s** dst, ZeviSize roiSize,
                                                     const Zev16s* kernel, int kernelSize, int xAnchor, int borderType,
                                                     const Zev16s* borderValue, int divisor, Zev8u* buffer) {
    return rowDivided<Row16s, 3>(src, srcStep, dst, roiSize, kernel, kernelSize, xAnchor, borderType, borderValue,
                                 divisor, buffer, kArea16sC3);
}
ZevStatus ZEVFN(zeviFilterRowBorderPipeline_Low_16s_C1R)(const Zev16s* src, int srcStep, Zev16s** dst, ZeviSize roiSize,
                                                         const Zev16s* kernel, int kernelSize, int xAnchor,
                                                         int borderType, Zev16s borderValue, int divisor,
                                                         Zev8u* buffer) {
    return rowDivided<RowLow16s, 1>(src, srcStep, dst, roiSize, kernel, kernelSize, xAnchor, borderType, &borderValue,
                                    divisor, buffer, kAreaLowC1);
}
ZevStatus ZEVFN(zeviFilterRowBorderPipeline_Low_16s_C3R)(const Zev16s* src, int srcStep, Zev16s** dst, ZeviSize roiSize,
                                                         const Zev16s* kernel, int kernelSize, int xAnchor,
                                                         int borderType, const Zev16s* borderValue, int divisor,
                                                         Zev8u* buffer) {
    return rowDivided<RowLow16s, 3>(src, srcStep, dst, roiSize, kernel, kernelSize, xAnchor, borderType, borderValue,
                                    divisor, buffer, kAreaLowC3);
}
ZevStatus ZEVFN(zeviFilterRowBorderPipeline_32f_C1R)(const Zev32f* src, int srcStep, Zev32f** dst, ZeviSize roiSize,
                                                     const Zev32f* kernel, int kernelSize, int xAnchor, int borderType,
                                                     Zev32f borderValue, Zev8u* buffer) {
    return row32f<1>(src, srcStep, dst, roiSize, kernel, kernelSize, xAnchor, borderType, &borderValue, buffer);
}
ZevStatus ZEVFN(zeviFilterRowBorderPipeline_32f_C3R)(const Zev32f* src, int srcStep, Zev32f** dst, ZeviSize roiSize,
                                                     const Zev32f* kernel, int kernelSize, int xAnchor, int borderType,
                                                     const Zev32f* borderValue, Zev8u* buffer) {
    return row32f<3>(src, srcStep, dst, roiSize, kernel, kernelSize, xAnchor, borderType, borderValue, buffer);
}

ZevStatus ZEVFN(zeviFilterRowBorderPipelineGetBufferSize_8u16s_C1R)(ZeviSize roiSize, int kernelSize, int* bufferSize) {
    return rowBufferSize(roiSize, kernelSize, bufferSize, kArea8u16sC1, 0);
}
ZevStatus ZEVFN(zeviFilterRowBorderPipelineGetBufferSize_8u16s_C3R)(ZeviSize roiSize, int kernelSize, int* bufferSize) {
    return rowBufferSize(roiSize, kernelSize, bufferSize, kArea8u16sC3, 0);
}
ZevStatus ZEVFN(zeviFilterRowBorderPipelineGetBufferSize_16s_C1R)(ZeviSize roiSize, int kernelSize, int* bufferSize) {
    return rowBufferSize(roiSize, kernelSize, bufferSize, kArea16sC1, 0);
}
ZevStatus ZEVFN(zeviFilterRowBorderPipelineGetBufferSize_16s_C3R)(ZeviSize roiSize, int kernelSize, int* bufferSize) {
    return rowBufferSize(roiSize, kernelSize, bufferSize, kArea16sC3, 0);
}
ZevStatus ZEVFN(zeviFilterRowBorderPipelineGetBufferSize_Low_16s_C1R)(ZeviSize roiSize, int kernelSize,
                                                                      int* bufferSize) {
    return rowBufferSize(roiSize, kernelSize, bufferSize, kAreaLowC1, 0);
}
ZevStatus ZEVFN(zeviFilterRowBorderPipelineGetBufferSize_Low_16s_C3R)(ZeviSize roiSize, int kernelSize,
                                                                      int* bufferSize) {
    return rowBufferSize(roiSize, kernelSize, bufferSize, kAreaLowC3, 0);
}
ZevStatus ZEVFN(zeviFilterRowBorderPipelineGetBufferSize_32f_C1R)(ZeviSize roiSize, int kernelSize, int* bufferSize) {
    return rowBufferSize(roiSize, kernelSize, bufferSize, kArea32fC1, 16);
}
ZevStatus ZEVFN(zeviFilterRowBorderPipelineGetBufferSize_32f_C3R)(ZeviSize roiSize, int kernelSize, int* bufferSize) {
    return rowBufferSize(roiSize, kernelSize, bufferSize, kArea32fC3, 0);
}

}  // extern "C"
