// Gaussian of any odd size on float images: the weights are built per call,
// rows go through the exported float row pipeline and the columns sum the
// ring rows with the same weights. Vertical borders act on filtered rows, but
// the constant border is the border value itself, unfiltered.
#include <cmath>
#include <cstdint>

#include "filter/border.h"
#include "filter/kernels/fixed_engine.h"
#include "filter/kernels/fixed_tables.h"
#include "frame/check.h"
#include "frame/core.h"
#include "zev_impl.h"

namespace v8 {
namespace {

// Parts of the reported size, in the order the buffer is laid out by the report.
// R is the float row pipeline's report for K rows.
std::int64_t gaussBufferBytes(int width, int K) {
    const std::int64_t V = (K + width + 7) & ~7, U = (K + width + 3) & ~3, Q = (K + 3) & ~3;
    int R = 0;
    ZEVFN(zeviFilterRowBorderPipelineGetBufferSize_32f_C1R)(ZeviSize{width, K}, K, &R);
    return 2 * (V * 4 * K / 2) + Q * 4 + 32 + U * K * 8 + 64 + R + 32 + 32 + 32 + (K + K) * 4 + 32;
}

// w[i] = exp(-t^2 / (2 sigma^2)) with t = i - K/2, the denominator in float,
// normalised by the float sum of the weights.
void gaussWeights(Zev32f* w, int K, Zev32f sigma) {
    float sum = 0.0f;
    for (int i = 0; i < K; ++i) {
        const float t = static_cast<float>(i - K / 2);
        const float den = (sigma + sigma) * sigma;
        w[i] = static_cast<float>(std::exp((0.0 - t * t) / den));
        sum += w[i];
    }
    for (int i = 0; i < K; ++i) w[i] = w[i] / sum;
}

}  // namespace
}  // namespace v8

extern "C" ZevStatus ZEVFN(zeviFilterGaussBorder_32f_C1R)(const Zev32f* src, int srcStep, Zev32f* dst, int dstStep,
                                                          ZeviSize roiSize, int kernelSize, Zev32f sigma,
                                                          int borderType, Zev32f borderValue, Zev8u* buffer) {
    using namespace v8;
    const int w = roiSize.width, h = roiSize.height;
    // Steps are compared with the width in pixels here, and need not be multiples of 4.
    ZevStatus st = Check()
                       .ptrs(src, dst, buffer)
                       .that(h >= 1 && w >= 1, zevStsBadSize)
                       .step(srcStep, w)
                       .step(dstStep, w)
                       .that(kernelSize >= 3 && (kernelSize & 1) == 1, zevStsBadArgument)
                       .that(isPlainBorderCode(borderType & ~(zevBorderInMemTop | zevBorderInMemBottom)),
                             zevStsBadArgument);
    if (st != zevStsNoError) return st;

    const int K = kernelSize, a = K / 2;
    int code = borderCode(borderType);
    if (h == 1 && code != zevBorderConst) code = zevBorderReplicate;  // one row: its own border
    const int vborder = code | (borderType & (zevBorderInMemTop | zevBorderInMemBottom));

    // Layout: weights, the fused step's border line, the row pipeline's work
    // area, then the engine's ring.
    auto align = [](std::uint8_t* p, std::uintptr_t n) {
        return reinterpret_cast<std::uint8_t*>((reinterpret_cast<std::uintptr_t>(p) + n - 1) & ~(n - 1));
    };
    Zev32f* weights = reinterpret_cast<Zev32f*>(align(buffer, 16));
    gaussWeights(weights, K, sigma);
    Zev32f* line = weights + K;  // 3K - 3 elements
    Zev8u* rowBuffer = align(reinterpret_cast<std::uint8_t*>(line + 3 * K), 32);
    int rowBytes = 0;
    ZEVFN(zeviFilterRowBorderPipelineGetBufferSize_32f_C1R)(ZeviSize{w, K}, K, &rowBytes);
    std::uint8_t* ring = rowBuffer + rowBytes;

    const int tightStep = w * static_cast<int>(sizeof(Zev32f));
    const fixed::GaussStepFn step = fixed::fixedKernels().ownGaussRowColumn_32f;
    fixed::ownFilterConvolution(
        src, srcStep, w, h, 1, K, vborder, borderValue, ring, 0, h,
        [&](const Zev32f* row, Zev32f* slot, void*) {
            // One row at a time, so its own step never matters to the pipeline.
            Zev32f* out = slot;
            ZEVFN(zeviFilterRowBorderPipeline_32f_C1R)(row, tightStep, &out, ZeviSize{w, 1}, weights, K, a, code,
                                                       borderValue, rowBuffer);
        },
        [&](const Zev32f* const* win, int y) {
            Zev32f* d = reinterpret_cast<Zev32f*>(reinterpret_cast<std::uint8_t*>(dst) +
                                                  static_cast<std::ptrdiff_t>(y) * dstStep);
            // The float column form never uses its buffer; one row, so no step matters.
            ZEVFN(zeviFilterColumnPipeline_32f_C1R)(const_cast<const Zev32f**>(win), d, tightStep, ZeviSize{w, 1},
                                                    weights, K, rowBuffer);
        },
        // Both stages in one pass where the row is wide enough: the same sums.
        [&](const Zev32f* row, Zev32f* slot, void*, const Zev32f* const* win, int y) {
            Zev32f* d = reinterpret_cast<Zev32f*>(reinterpret_cast<std::uint8_t*>(dst) +
                                                  static_cast<std::ptrdiff_t>(y) * dstStep);
            const int r = fillBorder<Zev32f>(row, line, w, K, a, code, &borderValue);
            return step(row, slot, win, d, w, K, weights, line, r);
        },
        0);  // the row stages keep their scratch elsewhere
    return zevStsNoError;
}

extern "C" ZevStatus ZEVFN(zeviFilterGaussGetBufferSize_32f_C1R)(ZeviSize roiSize, int kernelSize, int* bufferSize) {
    using namespace v8;
    ZevStatus st = Check()
                       .ptrs(bufferSize)
                       .roi(roiSize)
                       .that(kernelSize >= 3 && (kernelSize & 1) == 1, zevStsBadArgument);
    if (st != zevStsNoError) return st;
    const std::int64_t n = gaussBufferBytes(roiSize.width, kernelSize);
    if (n > INT32_MAX) return zevStsBadSize;
    *bufferSize = static_cast<int>(n);
    return zevStsNoError;
}
