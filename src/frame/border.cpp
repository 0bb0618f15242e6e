// Copies of a region into a larger one, with a border of repeated edge pixels
// or of a constant around it.
#include <cstddef>
#include <cstdint>

#include "frame/check.h"
#include "frame/kernels/border.h"
#include "frame/prims.h"

namespace v8 {
namespace {

using kern::BorderFrame;

// All sizes above zero, offsets not negative, and the source with its offsets
// inside the destination.
bool frameFits(ZeviSize src, ZeviSize dst, int top, int left) {
    return src.width > 0 && src.height > 0 && dst.width > 0 && dst.height > 0 && top >= 0 && left >= 0 &&
           std::int64_t{top} + src.height <= dst.height && std::int64_t{left} + src.width <= dst.width;
}

BorderFrame frameOf(ZeviSize src, ZeviSize dst, int top, int left) {
    return BorderFrame{src.width, src.height, dst.width, dst.height, top, left};
}

template <class T, int C>
T* interiorOf(T* dst, int dstStep, int top, int left) {
    return kern::byteOffset(dst, static_cast<std::ptrdiff_t>(top) * dstStep) + static_cast<std::ptrdiff_t>(left) * C;
}

template <class T>
ZevStatus checkCopyBorder(const T* src, int srcStep, ZeviSize srcSize, const T* dst, int dstStep, ZeviSize dstSize,
                          int top, int left) {
    return Check().ptrs(src, dst).positiveSteps(srcStep, dstStep).that(frameFits(srcSize, dstSize, top, left),
                                                                       zevStsBadSize);
}

// In place: srcDst is the source region, already inside the destination.
template <class T, int C>
ZevStatus replicateBorderIR(T* srcDst, int step, ZeviSize srcSize, ZeviSize dstSize, int top, int left) {
    ZevStatus st = Check().ptrs(srcDst).positiveSteps(step).that(frameFits(srcSize, dstSize, top, left),
                                                                 zevStsBadSize);
    if (st != zevStsNoError) return st;
    T* dst = kern::byteOffset(srcDst, -static_cast<std::ptrdiff_t>(top) * step) - static_cast<std::ptrdiff_t>(left) * C;
    kern::replicateFrame<T, C>(dst, step, frameOf(srcSize, dstSize, top, left));
    return zevStsNoError;
}

template <class T, int C>
ZevStatus replicateBorderR(const T* src, int srcStep, ZeviSize srcSize, T* dst, int dstStep, ZeviSize dstSize,
                           int top, int left) {
    ZevStatus st = checkCopyBorder(src, srcStep, srcSize, dst, dstStep, dstSize, top, left);
    if (st != zevStsNoError) return st;
    T* in = interiorOf<T, C>(dst, dstStep, top, left);
    if (in == src && srcStep == dstStep) return replicateBorderIR<T, C>(in, dstStep, srcSize, dstSize, top, left);
    const BorderFrame f = frameOf(srcSize, dstSize, top, left);
    kern::placeInterior<T, C>(src, srcStep, dst, dstStep, f);
    kern::replicateFrame<T, C>(dst, dstStep, f);
    return zevStsNoError;
}

template <class T>
ZevStatus constBorderR(const T* src, int srcStep, ZeviSize srcSize, T* dst, int dstStep, ZeviSize dstSize, int top,
                       int left, T value) {
    ZevStatus st = checkCopyBorder(src, srcStep, srcSize, dst, dstStep, dstSize, top, left);
    if (st != zevStsNoError) return st;
    const BorderFrame f = frameOf(srcSize, dstSize, top, left);
    kern::placeInterior<T, 1>(src, srcStep, dst, dstStep, f);
    kern::constFrame(dst, dstStep, f, value);
    return zevStsNoError;
}

}  // namespace

#define ZEV_REPLICATE_BORDER(T, tag, C)                                                                        \
    ZevStatus zeviCopyReplicateBorder_##tag##_C##C##R(const T* src, int srcStep, ZeviSize srcRoiSize, T* dst, \
                                                       int dstStep, ZeviSize dstRoiSize, int topBorderHeight,  \
                                                       int leftBorderWidth) {                                  \
        return replicateBorderR<T, C>(src, srcStep, srcRoiSize, dst, dstStep, dstRoiSize, topBorderHeight,    \
                                      leftBorderWidth);                                                        \
    }                                                                                                          \
    ZevStatus zeviCopyReplicateBorder_##tag##_C##C##IR(T* srcDst, int srcDstStep, ZeviSize srcRoiSize,        \
                                                        ZeviSize dstRoiSize, int topBorderHeight,              \
                                                        int leftBorderWidth) {                                 \
        return replicateBorderIR<T, C>(srcDst, srcDstStep, srcRoiSize, dstRoiSize, topBorderHeight,           \
                                       leftBorderWidth);                                                       \
    }

ZEV_REPLICATE_BORDER(Zev8u, 8u, 1)
ZEV_REPLICATE_BORDER(Zev8u, 8u, 3)
ZEV_REPLICATE_BORDER(Zev8u, 8u, 4)
ZEV_REPLICATE_BORDER(Zev32s, 32s, 1)
ZEV_REPLICATE_BORDER(Zev32s, 32s, 3)
ZEV_REPLICATE_BORDER(Zev32s, 32s, 4)
#undef ZEV_REPLICATE_BORDER

ZevStatus zeviCopyConstBorder_8u_C1R(const Zev8u* src, int srcStep, ZeviSize srcRoiSize, Zev8u* dst, int dstStep,
                                     ZeviSize dstRoiSize, int topBorderHeight, int leftBorderWidth, Zev8u value) {
    return constBorderR(src, srcStep, srcRoiSize, dst, dstStep, dstRoiSize, topBorderHeight, leftBorderWidth, value);
}
ZevStatus zeviCopyConstBorder_16s_C1R(const Zev16s* src, int srcStep, ZeviSize srcRoiSize, Zev16s* dst,
                                      int dstStep, ZeviSize dstRoiSize, int topBorderHeight, int leftBorderWidth,
                                      Zev16s value) {
    return constBorderR(src, srcStep, srcRoiSize, dst, dstStep, dstRoiSize, topBorderHeight, leftBorderWidth, value);
}
ZevStatus zeviCopyConstBorder_16u_C1R(const Zev16u* src, int srcStep, ZeviSize srcRoiSize, Zev16u* dst,
                                      int dstStep, ZeviSize dstRoiSize, int topBorderHeight, int leftBorderWidth,
                                      Zev16u value) {
    return constBorderR(src, srcStep, srcRoiSize, dst, dstStep, dstRoiSize, topBorderHeight, leftBorderWidth, value);
}

}  // namespace v8
