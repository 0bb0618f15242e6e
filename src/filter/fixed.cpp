// Fixed derivative and smoothing filters: Sobel, Scharr, Laplacian and the box
// lowpass, each a pair of kernel-specialised row and column routines run by the
// streaming engine; argument checks, buffer sizes and the band split live here.
#include <algorithm>
#include <cstdint>

#include "filter/border.h"
#include "filter/kernels/column_fixed.h"
#include "filter/kernels/fixed_engine.h"
#include "filter/kernels/fixed_tables.h"
#include "filter/kernels/row_fixed.h"
#include "frame/bands.h"
#include "frame/check.h"
#include "frame/core.h"
#include "zev_impl.h"

namespace v8 {
namespace {

using fixed::KernelSet;

// The row stage of one pass: the row routine, its shape and the vertical constant.
template <class Src, class Mid>
struct RowStage {
    std::conditional_t<std::is_same_v<Src, Zev32f>, RowFixedFn_32f, RowFixedFn_8u16s> fn;
    int planes;   // 2 for the Laplacian's side sums and centre terms
    Mid constant; // the row kernel's sum times the border value
};

enum FilterId { SobelHoriz, SobelVert, SobelNegVert, SobelCross, SobelHorizSecond, SobelVertSecond,
                ScharrHoriz, ScharrVert, Laplacian, Lowpass };

// Row and column table indices of each filter for 3x3 and 5x5 masks (-1: none).
struct Pass { int row, col; };
struct FilterDef { Pass m3, m5; };
constexpr FilterDef kFilters[] = {
    {{6, 1}, {7, 4}},   {{2, 2}, {3, 3}},  {{2, 11}, {3, 12}}, {{2, 1}, {3, 4}},  {{6, 5}, {7, 6}},
    {{4, 2}, {5, 3}},   {{1, 1}, {-1, -1}}, {{0, 0}, {-1, -1}}, {{10, 7}, {7, 6}}, {{8, 9}, {9, 10}},
};
// Index of the fused routine of each filter (-1: none).
constexpr int kFused[] = {0, 3, 4, 2, 5, 6, 1, 7, -1, -1};

// The 5x5 Laplacian's second pass, added to the first: D2x along rows, Sobel along columns.
constexpr Pass kLaplacian5Second{5, 8};

// Sum of the row kernel's weights, by row index: the vertical constant row.
constexpr int kRowSum[11] = {0, 16, 0, 0, 0, 0, 4, 16, 3, 5, 2};
constexpr int rowPlanes(int row) { return row == 10 ? 2 : 1; }

enum class Form { k8u16s, k8u8s, k32f, k8u };

template <class Src, class Dst>
constexpr Form formOf() {
    if constexpr (std::is_same_v<Src, Zev32f>) return Form::k32f;
    else if constexpr (std::is_same_v<Dst, Zev16s>) return Form::k8u16s;
    else if constexpr (std::is_same_v<Dst, Zev8s>) return Form::k8u8s;
    else return Form::k8u;
}

// ---------------------------------------------------------------- buffer sizes

// The pipelines' own reports for kernel K: rows of the 8u16s form for 8-bit
// sources, else 32f; columns of the form that matches the output (16s, 16s8s,
// 16s8u or 32f). They see the same thread budget as the caller's query.
std::int64_t pipelineBytes(Form form, int w, int h, int K) {
    const ZeviSize roi{w, h};
    int r = 0, c = 0;
    if (form == Form::k32f) {
        ZEVFN(zeviFilterRowBorderPipelineGetBufferSize_32f_C1R)(roi, K, &r);
        ZEVFN(zeviFilterColumnPipelineGetBufferSize_32f_C1R)(roi, K, &c);
    } else {
        ZEVFN(zeviFilterRowBorderPipelineGetBufferSize_8u16s_C1R)(roi, K, &r);
        if (form == Form::k8u16s) ZEVFN(zeviFilterColumnPipelineGetBufferSize_16s_C1R)(roi, K, &c);
        else if (form == Form::k8u8s) ZEVFN(zeviFilterColumnPipelineGetBufferSize_16s8s_C1R)(roi, K, &c);
        else ZEVFN(zeviFilterColumnPipelineGetBufferSize_16s8u_C1R)(roi, K, &c);
    }
    return std::int64_t{r} + c;
}

std::int64_t fixedBufferBytes(FilterId id, Form form, int width, int height, int K, int T) {
    // Each thread's share: its ring and scratch, and what the pipelines report.
    const std::int64_t W = (width + 15) & ~15;
    const bool isFloat = form == Form::k32f;
    std::int64_t head;  // ring, pointer array and scratch
    if (id == ScharrHoriz || id == ScharrVert) {
        if (isFloat) head = W * 84 + 0x11C;
        else if (form == Form::k8u16s && id == ScharrVert) head = W * 42 + 0x11C;
        else head = W * 42 + 0xDC;
    } else {
        int E, D, F;
        if (id == Laplacian) {
            E = isFloat ? 8 : 4, D = 0x150, F = 24;
        } else if (id == Lowpass) {
            E = isFloat ? 4 : 2, D = isFloat ? 0xB8 : 0xF8, F = 12;
        } else {
            E = isFloat ? 4 : 2, F = 12;
            D = form == Form::k8u8s ? 0xB8 : (form == Form::k8u16s && id == SobelVert ? 0xD8 : 0xF8);
        }
        head = W * E * (2 * K + 15) + D + std::int64_t{K} * F;
    }
    std::int64_t B = head + pipelineBytes(form, width, height, K);
    if (id == Laplacian && form == Form::k8u8s && K == 5) B += W * 2 * height + 32;
    const int tail = (id == SobelHoriz && form == Form::k8u16s) ? 64 : 32;
    return T * (B + tail);
}

ZevStatus fixedGetBufferSize(FilterId id, Form form, ZeviSize roi, int maskSize, bool hasMask, int* bufferSize) {
    ZevStatus st = Check().ptrs(bufferSize).roi(roi).that(!hasMask || maskSize == zevMskSize3x3 ||
                                                                maskSize == zevMskSize5x5,
                                                            zevStsBadMaskSize);
    if (st != zevStsNoError) return st;
    const int K = maskSize == zevMskSize5x5 ? 5 : 3;
    const std::int64_t n = fixedBufferBytes(id, form, roi.width, roi.height, K, ownGetNumThreads());
    if (n > INT32_MAX) return zevStsBadSize;  // the size does not fit the result
    *bufferSize = static_cast<int>(n);
    return zevStsNoError;
}

// ---------------------------------------------------------------- the filters

template <class Dst>
Dst* rowOf(Dst* base, int step, int y) {
    return reinterpret_cast<Dst*>(reinterpret_cast<std::uint8_t*>(base) + static_cast<std::ptrdiff_t>(y) * step);
}

template <class Src, class Mid>
RowStage<Src, Mid> rowStage(int row, Src value) {
    RowStage<Src, Mid> rs{};
    if constexpr (std::is_same_v<Src, Zev32f>) {
        rs.fn = owntabRow_32f[row];
        rs.constant = static_cast<float>(kRowSum[row]) * value;
    } else {
        rs.fn = owntabRow_8u16s[row];
        rs.constant = static_cast<Mid>(std::clamp(kRowSum[row] * static_cast<int>(value), -32768, 32767));
    }
    rs.planes = rowPlanes(row);
    return rs;
}

// Everything one band needs; a serial call is one band.
template <class Src, class Dst>
struct Job {
    using Mid = std::conditional_t<std::is_same_v<Src, Zev32f>, Zev32f, Zev16s>;
    const KernelSet& ks;
    FilterId id;
    int K;  // mask side
    int width, imageHeight;
    int srcStep, dstStep;
    Src value;
    int divisor;
    int inCache;  // 0: the column routines may write past the cache

    // One pass of row index `row` and column index `col` over a band, with its
    // output rows given by out(y).
    template <class Out, class Fuse = fixed::NoFuse>
    void pass(Pass p, const Src* src, int rows, int border, std::uint8_t* buf, int y0, Out&& out,
              Fuse&& fuse = {}) const {
        const RowStage<Src, Mid> rs = rowStage<Src, Mid>(p.row, value);
        const int hborder = withoutRowFlags(border);
        fixed::ownFilterConvolution(
            src, srcStep, width, rows, rs.planes, K, border, rs.constant, buf, y0, imageHeight,
            [&](const Src* row, Mid* slot, void* scratch) {
                Mid* const d[1] = {slot};
                rs.fn(row, srcStep, d, width, 1, hborder, value, scratch);
            },
            [&](const Mid* const* win, int y) { out(win, y); }, fuse);
    }

    // The fused routine where this filter, mask and form have one. It gives the
    // pixels of the row routine followed by the column routine and is faster at
    // every size, so it is taken whenever it exists.
    template <class Dst2>
    auto fusedRoutine() const {
        constexpr Form form = formOf<Src, Dst2>();
        fixed::RowColFn<Src, Mid, Mid> fn = nullptr;
        if constexpr (form == Form::k8u16s || form == Form::k32f) {
            const int index = kFused[id];
            if (index >= 0) {
                if constexpr (form == Form::k32f)
                    fn = (K == 3 ? ks.owntabRowColumn_32f : ks.owntabRowColumn5x5_32f)[index];
                else
                    fn = (K == 3 ? ks.owntabRowColumn_8u16s : ks.owntabRowColumn5x5_8u16s)[index];
            }
        }
        return fn;
    }

    void run(const Src* src, Dst* dst, int rows, int border, std::uint8_t* buf, int y0) const {
        const FilterDef& def = kFilters[id];
        const Pass first = K == 5 ? def.m5 : def.m3;
        constexpr Form form = formOf<Src, Dst>();
        const int w = width;
        if constexpr (form == Form::k8u8s) {
            if (id == Laplacian && K == 5) {
                laplacian5To8s(src, dst, rows, border, buf, y0);
                return;
            }
        }
        auto column = [&](const Mid* const* win, int y, int col) {
            Dst* d = rowOf(dst, dstStep, y);
            if constexpr (form == Form::k8u16s) owntabColumn_8u16s[col](win, d, dstStep, w, 1, inCache);
            else if constexpr (form == Form::k8u8s) owntabColumn_8u8s[col](win, d, dstStep, w, 1, divisor, inCache);
            else if constexpr (form == Form::k32f) owntabColumn_32f[col](win, d, dstStep, w, 1);
            else owntabColumn_8u[K == 5 ? 1 : 0](win, d, dstStep, w, 1, inCache);
        };
        const auto fused = fusedRoutine<Dst>();
        const int hborder = withoutRowFlags(border);
        pass(
            first, src, rows, border, buf, y0,
            [&](const Mid* const* win, int y) { column(win, y, first.col); },
            [&](const Src* row, Mid* slot, void* scratch, const Mid* const* win, int y) {
                if constexpr (form == Form::k8u16s || form == Form::k32f) {
                    if (!fused) return false;
                    Src* line = static_cast<Src*>(scratch);
                    const int r = fillBorder<Src>(row, line, w, K, K / 2, hborder, &value);
                    return fused(row, slot, win, rowOf(dst, dstStep, y), w, line, r);
                }
                return false;
            });
        if (id == Laplacian && K == 5) {
            pass(kLaplacian5Second, src, rows, border, buf, y0,
                 [&](const Mid* const* win, int y) { column(win, y, kLaplacian5Second.col); });
        }
    }

    // Both 5x5 Laplacian passes into a 16-bit image, then every pixel times
    // 1/divisor, clamped and truncated.
    void laplacian5To8s(const Src* src, Dst* dst, int rows, int border, std::uint8_t* buf, int y0) const {
        const int w = width;
        const int tw = (w + 15) & ~15;
        const std::size_t engine = fixed::ownEngineBytes(w, K, 1, sizeof(Mid));
        Zev16s* tmp = reinterpret_cast<Zev16s*>(
            (reinterpret_cast<std::uintptr_t>(buf + engine) + 31) & ~std::uintptr_t{31});
        auto into = [&](int col) {
            return [&, col](const Zev16s* const* win, int y) {
                owntabColumn_8u16s[col](win, tmp + static_cast<std::ptrdiff_t>(y) * tw, tw * 2, w, 1, 1);
            };
        };
        const float inv = 1.0f / static_cast<float>(divisor);
        pass(kFilters[Laplacian].m5, src, rows, border, buf, y0, into(kFilters[Laplacian].m5.col));
        pass(kLaplacian5Second, src, rows, border, buf, y0, into(kLaplacian5Second.col));
        for (int y = 0; y < rows; ++y) {
            const Zev16s* t = tmp + static_cast<std::ptrdiff_t>(y) * tw;
            Zev8s* d = reinterpret_cast<Zev8s*>(rowOf(dst, dstStep, y));
            for (int x = 0; x < w; ++x) {
                float f = std::min(127.0f, std::max(-128.0f, static_cast<float>(t[x]) * inv));
                d[x] = static_cast<Zev8s>(static_cast<int>(f));
            }
        }
    }
};

template <class Src, class Dst>
ZevStatus ownFixedFilter(FilterId id, const Src* src, int srcStep, Dst* dst, int dstStep, ZeviSize roi, int maskSize,
                         bool hasMask, int border, Src value, int divisor, Zev8u* buffer) {
    constexpr Form form = formOf<Src, Dst>();
    Check c;
    c.ptrs(src, dst, buffer).roi(roi).step(srcStep, rowBytes<Src>(roi.width)).step(dstStep, rowBytes<Dst>(roi.width));
    if constexpr (form == Form::k32f) c.multiple(sizeof(Zev32f), srcStep, dstStep);
    if constexpr (form == Form::k8u16s) c.multiple(sizeof(Zev16s), dstStep);
    c.that(isFlaggedBorderArg(border), zevStsBadArgument);
    if constexpr (form == Form::k8u8s) c.that(divisor != 0, zevStsBadArgument);
    if (hasMask) c.that(maskSize == zevMskSize3x3 || maskSize == zevMskSize5x5, zevStsBadMaskSize);
    if (!c.ok()) return c.status();

    border = expandInMem(border);
    const int K = (hasMask && maskSize == zevMskSize5x5) ? 5 : 3;
    const int w = roi.width, h = roi.height;
    // The column routines write past the cache when the image would not stay in it.
    int cacheBytes = 0;
    zevGetMaxCacheSizeB(&cacheBytes);
    const int inCache = std::int64_t{w} * h < cacheBytes / 2 ? 1 : 0;
    const Job<Src, Dst> job{fixed::fixedKernels(), id, K, w, h, srcStep, dstStep, value, divisor, inCache};

    const int M = owncvGetMaxNumThreads();
    const int minHeight = (id == Laplacian && form == Form::k8u8s) ? 64 : 256;
    const int cores = runomp();
    int team = 1;
    if (h >= 5 * M && w >= 256 && M > 1 && h >= minHeight && cores != 0)
        team = std::min({cores, h / 128, ownGetNumThreads()});
    if (team <= 1) {
        job.run(src, dst, h, border, buffer, 0);
        return zevStsNoError;
    }
    const int total = static_cast<int>(fixedBufferBytes(id, form, w, h, K, ownGetNumThreads()));
    forEachBand(team, h, [&](const Band& b) {
        job.run(b.rowPtr(src, srcStep), b.rowPtr(dst, dstStep), b.rows, border | b.inMemFlags(),
                b.share(buffer, total), b.y0);
    });
    return zevStsNoError;
}

}  // namespace
}  // namespace v8

using v8::ownFixedFilter;

// ---------------------------------------------------------------- entries

#define ZEV_FIXED_FORMS(Name, Id, MASK_PARAM, MASK, HAS_MASK)                                                    \
    extern "C" ZevStatus ZEVFN(zeviFilter##Name##Border_8u16s_C1R)(                                              \
        const Zev8u* src, int srcStep, Zev16s* dst, int dstStep, ZeviSize roiSize MASK_PARAM, int borderType,    \
        Zev8u borderValue, Zev8u* buffer) {                                                                      \
        return ownFixedFilter(v8::Id, src, srcStep, dst, dstStep, roiSize, MASK, HAS_MASK, borderType,           \
                              borderValue, 1, buffer);                                                           \
    }                                                                                                            \
    extern "C" ZevStatus ZEVFN(zeviFilter##Name##Border_8u8s_C1R)(                                               \
        const Zev8u* src, int srcStep, Zev8s* dst, int dstStep, ZeviSize roiSize MASK_PARAM, int borderType,     \
        Zev8u borderValue, int divisor, Zev8u* buffer) {                                                         \
        return ownFixedFilter(v8::Id, src, srcStep, dst, dstStep, roiSize, MASK, HAS_MASK, borderType,           \
                              borderValue, divisor, buffer);                                                     \
    }                                                                                                            \
    extern "C" ZevStatus ZEVFN(zeviFilter##Name##Border_32f_C1R)(                                                \
        const Zev32f* src, int srcStep, Zev32f* dst, int dstStep, ZeviSize roiSize MASK_PARAM, int borderType,   \
        Zev32f borderValue, Zev8u* buffer) {                                                                     \
        return ownFixedFilter(v8::Id, src, srcStep, dst, dstStep, roiSize, MASK, HAS_MASK, borderType,           \
                              borderValue, 1, buffer);                                                           \
    }                                                                                                            \
    extern "C" ZevStatus ZEVFN(zeviFilter##Name##GetBufferSize_8u16s_C1R)(ZeviSize roiSize MASK_PARAM,           \
                                                                           int* bufferSize) {                    \
        return v8::fixedGetBufferSize(v8::Id, v8::Form::k8u16s, roiSize, MASK, HAS_MASK, bufferSize);            \
    }                                                                                                            \
    extern "C" ZevStatus ZEVFN(zeviFilter##Name##GetBufferSize_8u8s_C1R)(ZeviSize roiSize MASK_PARAM,            \
                                                                          int* bufferSize) {                     \
        return v8::fixedGetBufferSize(v8::Id, v8::Form::k8u8s, roiSize, MASK, HAS_MASK, bufferSize);             \
    }                                                                                                            \
    extern "C" ZevStatus ZEVFN(zeviFilter##Name##GetBufferSize_32f_C1R)(ZeviSize roiSize MASK_PARAM,             \
                                                                         int* bufferSize) {                      \
        return v8::fixedGetBufferSize(v8::Id, v8::Form::k32f, roiSize, MASK, HAS_MASK, bufferSize);              \
    }

#define ZEV_MASK_PARAM , int maskSize
#define ZEV_NO_MASK_PARAM
ZEV_FIXED_FORMS(SobelHoriz, SobelHoriz, ZEV_MASK_PARAM, maskSize, true)
ZEV_FIXED_FORMS(SobelVert, SobelVert, ZEV_MASK_PARAM, maskSize, true)
ZEV_FIXED_FORMS(SobelNegVert, SobelNegVert, ZEV_MASK_PARAM, maskSize, true)
ZEV_FIXED_FORMS(SobelCross, SobelCross, ZEV_MASK_PARAM, maskSize, true)
ZEV_FIXED_FORMS(SobelHorizSecond, SobelHorizSecond, ZEV_MASK_PARAM, maskSize, true)
ZEV_FIXED_FORMS(SobelVertSecond, SobelVertSecond, ZEV_MASK_PARAM, maskSize, true)
ZEV_FIXED_FORMS(Laplacian, Laplacian, ZEV_MASK_PARAM, maskSize, true)
ZEV_FIXED_FORMS(ScharrHoriz, ScharrHoriz, ZEV_NO_MASK_PARAM, zevMskSize3x3, false)
ZEV_FIXED_FORMS(ScharrVert, ScharrVert, ZEV_NO_MASK_PARAM, zevMskSize3x3, false)

#define ZEV_LOWPASS_FORM(tag, Src, Dst, form)                                                                    \
    extern "C" ZevStatus ZEVFN(zeviFilterLowpassBorder_##tag##_C1R)(const Src* src, int srcStep, Dst* dst,          \
                                                                    int dstStep, ZeviSize roiSize, int maskSize,   \
                                                                    int borderType, Src borderValue,               \
                                                                    Zev8u* buffer) {                               \
        return ownFixedFilter(v8::Lowpass, src, srcStep, dst, dstStep, roiSize, maskSize, true, borderType,         \
                              borderValue, 1, buffer);                                                             \
    }                                                                                                              \
    extern "C" ZevStatus ZEVFN(zeviFilterLowpassGetBufferSize_##tag##_C1R)(ZeviSize roiSize, int maskSize,         \
                                                                           int* bufferSize) {                      \
        return v8::fixedGetBufferSize(v8::Lowpass, v8::Form::form, roiSize, maskSize, true, bufferSize);            \
    }
ZEV_LOWPASS_FORM(8u, Zev8u, Zev8u, k8u)
ZEV_LOWPASS_FORM(32f, Zev32f, Zev32f, k32f)
